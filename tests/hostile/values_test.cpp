// Values of every VR with lengths that the VR doesn't allow.
#include <gtest/gtest.h>
#include <string.h>

#include <set>

#include "nema/NEMA_Read_Data.h"
#include "tests/hostile/expected.h"
#include "tests/hostile/feed.h"

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

static bool Contains (const std::string &text, const std::string &part) {
    return text.find (part) != std::string::npos;
}

static bool Has_Long_Length (Stream_Syntax syntax, const Value_Rule &rule) {
    static const std::set<std::string> LONG = {"OB", "OW", "OX", "UN", "UT"};
    return syntax == IMPLICIT_LITTLE || LONG.count (rule.vr);
}

static const size_t MAPPED = NEMA_MAP_LENGTH; // From here on a value is a view of its file.

// 0 to 71 bytes, around the most that the VR allows, at the ends of what a 16-bit length can say, and mapped ones.
static std::vector<size_t> Lengths (Stream_Syntax syntax, const Value_Rule &rule) {
    std::vector<size_t> lengths;
    for (size_t length = 0; length <= 71; length++) lengths.push_back (length);
    for (size_t length : {rule.most - 1, rule.most, rule.most + 1, MAPPED - 3, MAPPED - 2, MAPPED - 1})
        if (length > 71) lengths.push_back (length);
    if (Has_Long_Length (syntax, rule)) lengths.insert (lengths.end (), {MAPPED, MAPPED + 1, MAPPED + 4465});
    return lengths;
}

static bool Fits (const Value_Rule &rule, size_t length) {
    if (!length) return true;
    if (!strcmp (rule.vr, "AS")) return length == 4;
    if (!strcmp (rule.vr, "DA")) return length == 6 || length == 8 || length == 10;
    return length <= rule.most;
}

// The reader takes the length of an OF as one of 16 bits.
static void Add_Value (Stream *stream, const Value_Rule &rule, size_t length) {
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

static void Check (Feed *feed, Stream_Syntax syntax, const Value_Rule &rule, size_t length) {
    SCOPED_TRACE (std::string (rule.vr) + " of " + std::to_string (length) + " in " + std::to_string (syntax));
    Stream stream = Stream_Begin_File (syntax);
    Add_Value (&stream, rule, length);
    Stream_Add_Bytes (&stream, 0x7FE0, 0x0020, "OB", "behind"); // Which must not be missed.
    feed->Elements (stream.bytes);
    EXPECT_EQ (3u, Expect (stream.bytes).elements.size ());

    std::string name = feed->Write (stream.bytes);
    if (length % 5 == 0 || length >= MAPPED) feed->Comparisons (name, 3);
    std::string said = feed->Run (name, name, 1).warnings;
    EXPECT_EQ (length % 2 == 1, Contains (said, "tag lenght is odd")) << said;
    EXPECT_EQ (!strcmp (rule.vr, "OX"), Contains (said, "Explicit VR=OX is invalid!")) << said;
    if (*rule.wrong_unit) {
        bool wrong = length % static_cast<size_t> (rule.unit) != 0;
        EXPECT_EQ (wrong, Contains (said, rule.wrong_unit + std::to_string (length) + " bytes")) << said;
    }
    if (*rule.too_long) {
        EXPECT_EQ (!Fits (rule, length), Contains (said, rule.too_long)) << said;
    }
}

TEST (HostileValues, EveryVrInEveryLength) {
    Feed feed;
    for (const Value_Rule &rule : RULES)
        for (size_t length : Lengths (EXPLICIT_LITTLE, rule)) Check (&feed, EXPLICIT_LITTLE, rule, length);
}

TEST (HostileValues, EveryVrOfTheDictionaryInEveryLength) {
    Feed feed;
    for (const Value_Rule &rule : RULES)
        if (rule.group % 2 == 0)
            for (size_t length : Lengths (IMPLICIT_LITTLE, rule)) Check (&feed, IMPLICIT_LITTLE, rule, length);
}

TEST (HostileValues, EveryVrOfABigEndianStreamInEveryLength) {
    Feed feed;
    for (const Value_Rule &rule : RULES)
        for (size_t length : Lengths (EXPLICIT_BIG, rule)) Check (&feed, EXPLICIT_BIG, rule, length);
}

// --- sequences -------------------------------------------------------------

// What is no item, repeated and cut to the length.
static std::string Repeated (const std::string &part, size_t length) {
    std::string value;
    while (value.size () < length) value += part;
    return value.substr (0, length);
}

// An element without value, which may stand anywhere but in a sequence.
static std::string Empty_Element (Stream_Syntax syntax) {
    Stream element = Stream_Begin (syntax);
    Stream_Add_Header (&element, 0x0010, 0x0010, "PN", 0);
    return std::string (element.bytes.begin (), element.bytes.end ());
}

static std::string Check_Sequence (Feed *feed, Stream_Syntax syntax, const std::string &value) {
    Stream stream = Stream_Begin_File (syntax);
    Stream_Add_Bytes (&stream, 0x0008, 0x1140, "SQ", value);
    Stream_Add_Bytes (&stream, 0x7FE0, 0x0020, "OB", "behind");
    feed->Elements (stream.bytes);
    std::string name = feed->Write (stream.bytes);
    if (value.size () % 5 == 0) feed->Comparisons (name, Expect (stream.bytes).Attributes ());
    return feed->Outline (name);
}

TEST (HostileValues, SequencesOfEveryLengthWithoutItems) {
    Feed feed;
    for (Stream_Syntax syntax : HOSTILE_SYNTAXES) {
        const std::string element = Empty_Element (syntax);
        for (size_t length = 0; length <= 71; length++) {
            SCOPED_TRACE (std::to_string (length) + " in " + std::to_string (syntax));
            for (char byte : {'\0', '\1', 'x', 'A', '\xFF'}) Check_Sequence (&feed, syntax, std::string (length, byte));
            std::string outline = Check_Sequence (&feed, syntax, Repeated (element, length));
            if (length % element.size ()) continue;
            std::string elements = Repeated ("(0010,0010) ", 12 * (length / element.size ()));
            if (length) elements = "[" + elements.substr (0, elements.size () - 1) + "]";
            EXPECT_EQ ("(0002,0010) (0008,1140)" + elements + " (7FE0,0020)", outline);
        }
    }
}
