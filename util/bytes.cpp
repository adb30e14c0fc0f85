// Values are taken apart and put together byte by byte, so nothing depends on alignment or on this machine's order.
#include "util/bytes.h"

#include <string.h>

// The flags that a reading mode uses, too.
static const int REVERSED = 1;
static const int PAIRS    = 2;

// value has the order of this machine, which is little endian on all systems that the program is built for.
static const uint8_t *Swap_To (int flags, const void *value, uint8_t *buffer, int size) {
    const uint8_t *bytes = static_cast<const uint8_t *> (value);
    for (int i = 0; i < size; i++) buffer[i] = bytes[flags & REVERSED ? size - 1 - i : i];
    return buffer;
}

const uint8_t *Bytes_Swap_To_Double (int flags, double value) {
    static uint8_t buffer[8];
    return Swap_To (flags, &value, buffer, 8);
}

const uint8_t *Bytes_Swap_To_Float (int flags, float value) {
    static uint8_t buffer[4];
    return Swap_To (flags, &value, buffer, 4);
}

const uint8_t *Bytes_Swap_To_Long (int flags, int32_t value) {
    static uint8_t buffer[4];
    return Swap_To (flags, &value, buffer, 4);
}

const uint8_t *Bytes_Swap_To_Short (int flags, int16_t value) {
    static uint8_t buffer[2];
    return Swap_To (flags, &value, buffer, 2);
}

const uint8_t *Bytes_Swap_To_Unsigned_Short (int flags, uint16_t value) {
    static uint8_t buffer[2];
    return Swap_To (flags, &value, buffer, 2);
}

// Reversing all bytes and exchanging those of each pair are one permutation each: place i comes from i with some bits
// turned over, since the sizes are powers of two.
void Bytes_Order (int flags, const uint8_t *bytes, uint8_t *result, int size) {
    int turned = (flags & REVERSED ? size - 1 : 0) ^ (flags & PAIRS ? 1 : 0);
    for (int i = 0; i < size; i++) result[i] = bytes[i ^ turned];
}

uint16_t Bytes_Swap_From_Short (int flags, const uint8_t *bytes) {
    uint8_t ordered[2];
    Bytes_Order (flags, bytes, ordered, 2);
    return (uint16_t)(ordered[0] | ordered[1] << 8);
}

uint32_t Bytes_Swap_From_Long (int flags, const uint8_t *bytes) {
    uint8_t ordered[4];
    Bytes_Order (flags, bytes, ordered, 4);
    return (uint32_t)ordered[0] | (uint32_t)ordered[1] << 8 | (uint32_t)ordered[2] << 16 | (uint32_t)ordered[3] << 24;
}
