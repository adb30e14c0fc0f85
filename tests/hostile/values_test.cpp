// Values of every VR with lengths that the VR doesn't allow.
#include <gtest/gtest.h>
#include <string.h>

#include <set>

#include "nema/NEMA_Read_Data.h"
#include "tests/hostile/expected.h"
#include "tests/hostile/feed.h"
#include "tests/hostile/value_rules.h"

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
