// The reading of UTF-8 that the program has: both back ends draw by it, and whoever counts, cuts or skips characters goes
// by it too, so that all see the same ones in the same bytes.
#pragma once

#include <stdint.h>

// The character that starts at a byte before end, and its length in bytes. 0 when what starts there isn't valid: a form
// longer than its character needs, half of a pair of UTF-16, or beyond the last character.
inline int UTF8_Character (const char *at, const char *end, uint32_t *character) {
    const uint32_t least[5] = {0, 0, 0x80, 0x800, 0x10000};     // Longer forms of smaller characters are none.
    const uint8_t  first    = static_cast<uint8_t> (*at);
    const int      length   = first < 0x80 ? 1 : first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 0;
    if (!length || end - at < length) return 0;
    uint32_t result = length == 1 ? first : first & (0xFFu >> (length + 1));
    for (int i = 1; i < length; i++) {
        const uint8_t next = static_cast<uint8_t> (at[i]);
        if ((next & 0xC0) != 0x80) return 0;
        result = result << 6 | (next & 0x3F);
    }
    if (result < least[length] || result > 0x10FFFF || (result >= 0xD800 && result < 0xE000)) return 0;
    *character = result;
    return length;
}

// 1 for what has no picture of its own, and might end a run or turn its direction: it is drawn as a blank.
inline int UTF8_Is_Control (uint32_t character) {
    const int control = character < 0x20 || (character >= 0x7F && character < 0xA0);
    const int format  = (character >= 0x2028 && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069);
    return control || format;
}

// Stands for a byte that is neither UTF-8 nor a character of the single-byte code.
static const uint32_t UTF8_UNKNOWN = 0xFFFD;
