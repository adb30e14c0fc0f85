// Each VR with what the program says of a wrong length.
#pragma once

#include <stddef.h>
#include <string.h>

#include "tests/support/stream.h"

struct Value_Rule {
    const char *vr;
    uint16_t    group, element; // An attribute that has this VR; where there is none, a private one.
    int         unit;           // Bytes of which the length is a multiple; 0 when that doesn't matter.
    size_t      most;           // Bytes of one value.
    const char *wrong_unit;     // What is said of another length.
    const char *too_long;       // What is said of more bytes.
    char        fill;
};

static const char TOO_LONG[] = "String too long! (";

static const Value_Rule RULES[] = {
    {"AE", 0x0008, 0x0054, 0, 16, "", TOO_LONG, 'A'},
    {"AS", 0x0010, 0x1010, 0, 4, "", "Expecting 4 bytes but got ", '0'},
    {"AT", 0x0028, 0x0009, 4, 70, "Expecting multiple 2*\"Unigned Short\" but got ", "", '\x01'},
    {"CS", 0x0008, 0x0060, 0, 16, "", TOO_LONG, 'A'},
    {"DA", 0x0008, 0x0020, 0, 10, "", "Expecting 6, 8 or 10 bytes but got ", '1'},
    {"DS", 0x0018, 0x0050, 0, 16, "", TOO_LONG, '1'},
    {"DT", 0x0008, 0x002A, 0, 26, "", TOO_LONG, '1'},
    {"FD", 0x0018, 0x9073, 8, 70, "Expecting \"Floation Point Double\" but got ", "", '\x01'},
    {"FL", 0x0046, 0x0117, 4, 70, "Expecting \"Floation Point\" but got ", "", '\x01'},
    {"IS", 0x0020, 0x0013, 0, 9, "", "Value out of range (", '3'},
    {"LO", 0x0008, 0x0070, 0, 64, "", TOO_LONG, 'x'},
    {"LT", 0x0010, 0x4000, 0, 10240, "", TOO_LONG, 'x'},
    {"OB", 0x0009, 0x1001, 0, 70, "", "", '\x01'},
    {"OF", 0x0009, 0x1002, 0, 70, "", "", '\x01'}, // Not one of the explicit VRs that are kept.
    {"OW", 0x0028, 0x1201, 2, 70, "Expecting \"Other Word\" but got ", "", '\x01'},
    {"OX", 0x0009, 0x1006, 2, 70, "Expecting \"Other Word\" but got ", "", '\x01'}, // Taken as an OW.
    {"PN", 0x0010, 0x0010, 0, 320, "", TOO_LONG, 'x'},
    {"SH", 0x0008, 0x0050, 0, 16, "", TOO_LONG, 'x'},
    {"SL", 0x0018, 0x6020, 4, 70, "Expecting \"Signed Long\" but got ", "", '\x01'},
    {"SS", 0x0018, 0x9219, 2, 70, "Expecting \"Signed Short\" but got ", "", '\x01'},
    {"ST", 0x0008, 0x0081, 0, 1024, "", TOO_LONG, 'x'},
    {"TM", 0x0008, 0x0030, 0, 16, "", TOO_LONG, '1'},
    {"UH", 0x0009, 0x1007, 0, 70, "", "", '\x01'},
    {"UI", 0x0008, 0x0018, 0, 64, "", TOO_LONG, '1'},
    {"UL", 0x0008, 0x0001, 4, 70, "Expecting \"Signed Long\" but got ", "", '\x01'},
    {"UN", 0x0009, 0x1003, 0, 70, "", "", 'x'},
    {"US", 0x0028, 0x0010, 2, 70, "Expecting \"Unsigned Short\" but got ", "", '\x01'},
    {"UT", 0x0009, 0x1004, 0, 70, "", "", 'x'}, // Taken as if it were missing.
    {"ZZ", 0x0009, 0x1005, 0, 70, "", "", 'x'}, // There is none.
};

// The reader takes the length of an OF as one of 16 bits.
static inline void Add_Value (Stream *stream, const Value_Rule &rule, size_t length) {
    if (strcmp (rule.vr, "OF")) {
        Stream_Add_Bytes (stream, rule.group, rule.element, rule.vr, std::string (length, rule.fill));
        return;
    }
    std::string value (length, rule.fill);
    Stream_Add_16 (stream, rule.group);
    Stream_Add_16 (stream, rule.element);
    Stream_Add_Raw (stream, rule.vr, 2);
    Stream_Add_16 (stream, static_cast<uint16_t> (length));
    Stream_Add_Raw (stream, value.data (), value.size ());
}
