// Byte order of single values, for writers and readers of binary fields that say their order in flags.
#pragma once

#include <stdint.h>

// Each copies value into a static buffer of its own, reversed when bit 0 of flags is set. Valid until its next call.
const uint8_t *Bytes_Swap_To_Double (int flags, double value);      // 8 bytes
const uint8_t *Bytes_Swap_To_Float  (int flags, float value);       // 4 bytes
const uint8_t *Bytes_Swap_To_Long   (int flags, int32_t value);     // 4 bytes
const uint8_t *Bytes_Swap_To_Short  (int flags, int16_t value);     // 2 bytes
const uint8_t *Bytes_Swap_To_Unsigned_Short (int flags, uint16_t value);

// Copies size bytes (2, 4 or 8) into result, ordered by bits 0 and 1 of flags: neither bit as stored; bit 0 alone all
// bytes reversed; bit 1 alone the two bytes of each 16-bit unit exchanged; both: the units reversed, each kept as it is.
void Bytes_Order (int flags, const uint8_t *bytes, uint8_t *result, int size);

// The same, as numbers (the stored order being little endian).
uint16_t Bytes_Swap_From_Short (int flags, const uint8_t *bytes);
uint32_t Bytes_Swap_From_Long  (int flags, const uint8_t *bytes);
