#include "util/bytes.h"

#include <string.h>

#include <string>

#include <gtest/gtest.h>

static std::string Hex (const uint8_t *bytes, int size) {
    std::string text;
    char        two[3];
    for (int i = 0; i < size; i++) {
        snprintf (two, sizeof two, "%02X", bytes[i]);
        text += two;
    }
    return text;
}

TEST (Bytes, SwapToKeepsOrReverses) {
    EXPECT_EQ (Hex (Bytes_Swap_To_Double (0, 1.0), 8), "000000000000F03F");
    EXPECT_EQ (Hex (Bytes_Swap_To_Double (1, 1.0), 8), "3FF0000000000000");
    EXPECT_EQ (Hex (Bytes_Swap_To_Float (0, 1.5f), 4), "0000C03F");
    EXPECT_EQ (Hex (Bytes_Swap_To_Float (1, 1.5f), 4), "3FC00000");
    EXPECT_EQ (Hex (Bytes_Swap_To_Long (0, 0x01020304), 4), "04030201");
    EXPECT_EQ (Hex (Bytes_Swap_To_Long (1, 0x01020304), 4), "01020304");
    EXPECT_EQ (Hex (Bytes_Swap_To_Long (1, -2), 4), "FFFFFFFE");
    EXPECT_EQ (Hex (Bytes_Swap_To_Short (0, -2), 2), "FEFF");
    EXPECT_EQ (Hex (Bytes_Swap_To_Short (1, -2), 2), "FFFE");
    EXPECT_EQ (Hex (Bytes_Swap_To_Unsigned_Short (0, 0x0102), 2), "0201");
    EXPECT_EQ (Hex (Bytes_Swap_To_Unsigned_Short (1, 0x0102), 2), "0102");
}

TEST (Bytes, SwapToLooksAtBitZeroOnly) {
    EXPECT_EQ (Hex (Bytes_Swap_To_Long (2, 0x01020304), 4), "04030201");
    EXPECT_EQ (Hex (Bytes_Swap_To_Long (0xF3, 0x01020304), 4), "01020304");
}

TEST (Bytes, EachSizeHasItsOwnBuffer) {
    const uint8_t *eight  = Bytes_Swap_To_Double (0, 1.0);
    const uint8_t *real   = Bytes_Swap_To_Float (0, 1.5f);
    const uint8_t *whole  = Bytes_Swap_To_Long (0, 1);
    const uint8_t *two    = Bytes_Swap_To_Short (0, 2);
    const uint8_t *second = Bytes_Swap_To_Unsigned_Short (0, 3);
    EXPECT_EQ (Hex (eight, 8), "000000000000F03F");
    EXPECT_EQ (Hex (real, 4), "0000C03F");
    EXPECT_EQ (Hex (whole, 4), "01000000");
    EXPECT_EQ (Hex (two, 2), "0200");
    EXPECT_EQ (Hex (second, 2), "0300");
    EXPECT_EQ (Bytes_Swap_To_Long (0, 9), whole);
    EXPECT_EQ (Hex (whole, 4), "09000000");
}

static std::string Ordered (int flags, int size) {
    static const uint8_t bytes[] = {1, 2, 3, 4, 5, 6, 7, 8};

    uint8_t result[8] = {};
    Bytes_Order (flags, bytes, result, size);
    return Hex (result, size);
}

TEST (Bytes, OrderBySizeAndFlags) {
    EXPECT_EQ (Ordered (0, 2), "0102");
    EXPECT_EQ (Ordered (1, 2), "0201");
    EXPECT_EQ (Ordered (2, 2), "0201");
    EXPECT_EQ (Ordered (3, 2), "0102");
    EXPECT_EQ (Ordered (0, 4), "01020304");
    EXPECT_EQ (Ordered (1, 4), "04030201");
    EXPECT_EQ (Ordered (2, 4), "02010403");
    EXPECT_EQ (Ordered (3, 4), "03040102");
    EXPECT_EQ (Ordered (0, 8), "0102030405060708");
    EXPECT_EQ (Ordered (1, 8), "0807060504030201");
    EXPECT_EQ (Ordered (2, 8), "0201040306050807");
    EXPECT_EQ (Ordered (3, 8), "0708050603040102");
    EXPECT_EQ (Ordered (0xFC, 4), "01020304");
}

TEST (Bytes, SwapFromGivesNumbers) {
    static const uint8_t bytes[] = {0, 0x81, 0x02, 0x03, 0xF4}; // Read from an odd place: nothing is aligned.

    EXPECT_EQ (Bytes_Swap_From_Short (0, bytes + 1), 0x0281);
    EXPECT_EQ (Bytes_Swap_From_Short (1, bytes + 1), 0x8102);
    EXPECT_EQ (Bytes_Swap_From_Short (2, bytes + 1), 0x8102);
    EXPECT_EQ (Bytes_Swap_From_Short (3, bytes + 1), 0x0281);
    EXPECT_EQ (Bytes_Swap_From_Long (0, bytes + 1), 0xF4030281u);
    EXPECT_EQ (Bytes_Swap_From_Long (1, bytes + 1), 0x810203F4u);
    EXPECT_EQ (Bytes_Swap_From_Long (2, bytes + 1), 0x03F48102u);
    EXPECT_EQ (Bytes_Swap_From_Long (3, bytes + 1), 0x0281F403u);
}
