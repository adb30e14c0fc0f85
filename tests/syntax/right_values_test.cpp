// Syntax_Is_Right takes short ways, each of which must come to what the rules ask one by one. Here they stand one by one, a
// byte at a time, and what they let through is shown to both passes, which must have nothing to say and nothing to change.
#include <string.h>

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "attribute/value.h"
#include "syntax/cleanup.h"
#include "syntax/syntax_check.h"
#include "tables/data_dictionary.h"
#include "tests/support/lists.h"
#include "tests/support/log_recorder.h"

static const char *const VRS[] = {"AE", "AS", "AT", "CS", "DA", "DS", "DT", "FD", "FL", "IS", "LO", "LT", "OF", "OW",
                                  "PN", "SH", "SL", "SS", "ST", "TM", "UI", "UL", "US", "UT", "OB", "UN", "SQ", "zz"};

static const Settings settings = {LOG_WARNING, LOG_REPORT, MODE_EXPLICIT, 0, nullptr, nullptr};

#if defined(__SANITIZE_ADDRESS__)
static const size_t SHOWN_OF    = 499; // One of so many right values is shown to the passes.
static const size_t LONG_STEP   = 8;   // From one length to the next.
static const size_t FILLED_STEP = 11;
#else
static const size_t SHOWN_OF    = 49;
static const size_t LONG_STEP   = 1;
static const size_t FILLED_STEP = 1;
#endif

static const size_t LONG = 9; // More than two steps of a look at several bytes.

static size_t Next_Length (size_t length) { return length + (length < LONG ? 1 : LONG_STEP); }

// --- the rules one by one --------------------------------------------------

static bool Is_Blank (char byte) { return byte == ' ' || byte == '\t'; }

static bool Is_Allowed (const Syntax_Rule *rule, uint8_t byte) {
    if (rule->form == SYNTAX_TITLE) return byte >= 0x20 && byte <= 0x7E;
    return byte && (!rule->set || strchr (rule->set, byte));
}

// The number of values, or 0.
static int Pieces (const std::string &text, size_t max) {
    int count = 1;
    for (size_t start = 0;; count++) {
        size_t      stop  = text.find ('\\', start);
        std::string piece = text.substr (start, stop == std::string::npos ? stop : stop - start);
        if (piece.size () > max) return 0;
        if (!piece.empty () && (Is_Blank (piece.front ()) || Is_Blank (piece.back ()))) return 0;
        if (stop == std::string::npos) return count;
        start = stop + 1;
    }
}

static int Text_Values (const Syntax_Rule *rule, std::string text) {
    static const size_t INTEGER_SURE = 8;
    size_t              max = rule->form == SYNTAX_INTEGER ? INTEGER_SURE : static_cast<size_t> (rule->maximum);
    if (rule->even != SYNTAX_NONE && text.size () % 2) return 0;
    if (rule->even != SYNTAX_NONE && text.back () == static_cast<char> (rule->even)) {
        text.pop_back ();
        max--;
    }
    if (text.back () == '\\') return 0;
    for (char byte : text)
        if (!Is_Allowed (rule, static_cast<uint8_t> (byte))) return 0;
    return Pieces (text, max);
}

static int Values (const Syntax_Rule *rule, const std::string &value) {
    int  length = static_cast<int> (value.size ());
    bool old    = length >= 3 && (value[2] == ':' || value[2] == '.');
    if (!length) return 0;
    switch (rule->form) {
    case SYNTAX_BINARY: return length % rule->unit ? 0 : rule->counted ? length / rule->unit : 1;
    case SYNTAX_SINGLE: return length <= rule->maximum && value.back () && value.back () != ' ';
    case SYNTAX_AGE:
    case SYNTAX_DATE: return length == rule->maximum && Text_Values (rule, value) == 1;
    case SYNTAX_TIME: return old ? 0 : Text_Values (rule, value);
    default: return Text_Values (rule, value);
    }
}

// --- a value ---------------------------------------------------------------

// Lies in a block of its own size, so that the sanitizers see a byte too many that is looked at.
struct Sample {
    std::unique_ptr<char[]> bytes;
    Attribute               attribute = {};
};

static Sample Sample_Of (const char *vr, const std::string &value, const Dictionary_Entry *definition) {
    Sample sample;
    sample.bytes.reset (new char[value.size ()]);
    memcpy (sample.bytes.get (), value.data (), value.size ());
    sample.attribute.group      = 0x0018;
    sample.attribute.vr_file    = Code (vr[0], vr[1]);
    sample.attribute.length     = static_cast<int32_t> (value.size ());
    sample.attribute.data       = reinterpret_cast<uint8_t *> (sample.bytes.get ());
    sample.attribute.definition = definition;
    return sample;
}

static void Expect_Quiet (const char *vr, const std::string &value, const Dictionary_Entry *definition) {
    Log_Recorder log;
    Attribute    attribute = Record (0x0018, 0x0022, vr, value);
    attribute.definition   = definition;
    uint16_t flags         = attribute.flags;
    DICOM_Attribute_Syntax_Tag (nullptr, &settings, &attribute);
    DICOM_Attribute_Cleanup_Tag (nullptr, &settings, &attribute);
    ASSERT_EQ (log.All (), "") << vr << " (" << value << ")";
    ASSERT_EQ (Value (&attribute), value) << vr;
    ASSERT_EQ (attribute.flags, flags) << vr << " (" << value << ")";
    Value_Release (&attribute);
}

struct Tally {
    size_t looked_at = 0, right = 0;
};

static void Expect_As_Rules (Tally *tally, const char *vr, const std::string &value) {
    const Syntax_Rule *rule   = Syntax_Rule_Of (Code (vr[0], vr[1]));
    Sample             sample = Sample_Of (vr, value, nullptr);
    int                right  = Syntax_Is_Right (&sample.attribute);
    ASSERT_EQ (right, !rule || Values (rule, value) > 0) << vr << " (" << value << ")";
    tally->looked_at++;
    if (rule && right && tally->right++ % SHOWN_OF == 0) Expect_Quiet (vr, value, nullptr);
}

// --- tests -----------------------------------------------------------------

static void Expect_Every_Byte (Tally *tally, const char *vr, size_t length) {
    for (size_t place = 0; place < length; place++)
        for (int byte = 0; byte <= 0xFF; byte++) {
            std::string value (length, '1');
            value[place] = static_cast<char> (byte);
            ASSERT_NO_FATAL_FAILURE (Expect_As_Rules (tally, vr, value));
        }
}

TEST (SyntaxIsRight, EveryByteAtEveryPlace) {
    Tally tally;
    for (const char *vr : VRS)
        for (size_t length = 0; length <= 40; length = Next_Length (length))
            ASSERT_NO_FATAL_FAILURE (Expect_Every_Byte (&tally, vr, length));
    EXPECT_GT (tally.right, tally.looked_at / 10);
    EXPECT_LT (tally.right, tally.looked_at / 2);
}

// Blanks, pads, backslashes and what is allowed in some texts only, in all orders, as the first two and the last three
// bytes.
static void Expect_Every_Shape (Tally *tally, const char *vr, size_t filled) {
    static const std::string bytes ("1A \t\\.\0", 7);
    for (size_t shape = 0; shape < 7 * 7 * 7 * 7 * 7; shape++) {
        std::string ends;
        for (size_t left = shape; ends.size () < 5; left /= 7) ends += bytes[left % 7];
        std::string value = ends.substr (0, 2) + std::string (filled, '1') + ends.substr (2);
        ASSERT_NO_FATAL_FAILURE (Expect_As_Rules (tally, vr, value));
    }
}

TEST (SyntaxIsRight, EveryShapeOfText) {
    Tally tally;
    for (const char *vr : VRS)
        for (size_t filled = 0; filled <= 11; filled += FILLED_STEP)
            ASSERT_NO_FATAL_FAILURE (Expect_Every_Shape (&tally, vr, filled));
    EXPECT_GT (tally.right, tally.looked_at / 20);
    EXPECT_LT (tally.right, tally.looked_at / 2);
}

// A backslash at every place and none, with every pad and none, around the greatest lengths.
static void Expect_Every_Cut (Tally *tally, const char *vr, size_t length) {
    for (const std::string &end : {std::string (), std::string (" "), std::string ("  "), std::string ("\0", 1)})
        for (size_t place = 0; place <= length; place++) {
            std::string value (length, '2');
            if (place < length) value[place] = '\\';
            ASSERT_NO_FATAL_FAILURE (Expect_As_Rules (tally, vr, value + end));
        }
}

TEST (SyntaxIsRight, EveryCutOfLongText) {
    Tally tally;
    for (const char *vr : VRS) {
        for (size_t length = 1; length <= 70; length = Next_Length (length))
            ASSERT_NO_FATAL_FAILURE (Expect_Every_Cut (&tally, vr, length));
        for (size_t length : {129, 130, 318, 319, 320, 321, 322, 1023, 1024, 1025})
            ASSERT_NO_FATAL_FAILURE (Expect_As_Rules (&tally, vr, std::string (length, '2')));
    }
    EXPECT_GT (tally.right, tally.looked_at / 10);
    EXPECT_LT (tally.right, tally.looked_at / 2);
}

static Dictionary_Entry Wanting (int nb_vr, int minimum, int maximum) {
    Dictionary_Entry entry = {};
    entry.nb_vr            = static_cast<int8_t> (nb_vr);
    entry.vm[0]            = {static_cast<uint16_t> (minimum), static_cast<uint16_t> (maximum)};
    return entry;
}

static bool Is_Wanted (const Dictionary_Entry &entry, int count) {
    int minimum = static_cast<int16_t> (entry.vm[0].minimum), maximum = static_cast<int16_t> (entry.vm[0].maximum);
    if (!entry.nb_vr || minimum < 0) return true;
    if (minimum == maximum) return count == minimum;
    return count >= minimum && (maximum < 1 || count <= maximum);
}

static void Expect_As_Wanted (const char *vr, const std::string &value, int count, const Dictionary_Entry &entry) {
    Sample sample = Sample_Of (vr, value, &entry);
    bool   right  = Is_Wanted (entry, count);
    ASSERT_EQ (Syntax_Is_Right (&sample.attribute), right)
        << vr << " " << count << " " << entry.vm[0].minimum << " " << entry.vm[0].maximum;
    if (right) Expect_Quiet (vr, value, &entry);
}

TEST (SyntaxIsRight, AsManyValuesAsTheDictionaryWants) {
    static const char *const numbers[] = {"", "12", "1\\2 ", "1\\2\\31", "1\\2\\3\\4 "};
    for (int nb_vr : {-1, 0, 1, 3})
        for (int minimum = -1; minimum <= 4; minimum++)
            for (int maximum = -1; maximum <= 4; maximum++)
                for (int count = 1; count <= 4; count++) {
                    Dictionary_Entry entry = Wanting (nb_vr, minimum, maximum);
                    size_t           units = static_cast<size_t> (count);
                    Expect_As_Wanted ("DS", numbers[count], count, entry);
                    Expect_As_Wanted ("US", std::string (units * 2, '\0'), count, entry);
                    Expect_As_Wanted ("FD", std::string (units * 8, '\0'), count, entry);
                    Expect_As_Wanted ("OW", std::string (units * 2, '\0'), 1, entry);
                    ASSERT_FALSE (HasFatalFailure ());
                }
}

TEST (SyntaxIsRight, WhatIsAskedBesideTheBytes) {
    Sample sample = Sample_Of ("CS", "1 ", nullptr);
    EXPECT_TRUE (Syntax_Is_Right (&sample.attribute));
    sample.attribute.mode = MODE_BIG_ENDIAN; // Is still to be changed.
    EXPECT_FALSE (Syntax_Is_Right (&sample.attribute));
    sample.attribute.mode = MODE_EXPLICIT | MODE_GE_ROGAN;
    EXPECT_TRUE (Syntax_Is_Right (&sample.attribute));

    sample.attribute.vr     = VR_US; // The stream's counts.
    sample.attribute.length = 1;
    EXPECT_FALSE (Syntax_Is_Right (&sample.attribute));
    sample.attribute.length  = 2;
    sample.attribute.vr_file = 0;
    EXPECT_TRUE (Syntax_Is_Right (&sample.attribute));
    sample.attribute.vr = VR_UL;
    EXPECT_FALSE (Syntax_Is_Right (&sample.attribute));
    sample.attribute.vr = 0;
    EXPECT_TRUE (Syntax_Is_Right (&sample.attribute));

    for (int32_t length : {LENGTH_UNDEFINED, INT32_MIN, -2, -64}) {
        sample.attribute.length = length;
        for (const char *vr : VRS) {
            sample.attribute.vr = Code (vr[0], vr[1]);
            EXPECT_FALSE (Syntax_Is_Right (&sample.attribute)) << vr << length;
        }
    }
    sample.attribute.data = nullptr; // A sequence, or no value.
    EXPECT_TRUE (Syntax_Is_Right (&sample.attribute));
}

// Each VR's rule is found, and none for any other two letters or bytes.
TEST (SyntaxRules, AreFoundByTheirVrAlone) {
    int found = 0;
    for (unsigned vr = 0; vr <= 0xFFFF; vr++) {
        const Syntax_Rule *rule = Syntax_Rule_Of (static_cast<uint16_t> (vr));
        if (rule) {
            EXPECT_EQ (rule->vr, vr);
        }
        found += rule != nullptr;
    }
    EXPECT_EQ (found, 24);
    for (const char *vr : VRS) {
        bool has = strcmp (vr, "OB") && strcmp (vr, "UN") && strcmp (vr, "SQ") && strcmp (vr, "zz");
        EXPECT_EQ (Syntax_Rule_Of (Code (vr[0], vr[1])) != nullptr, has) << vr;
    }
}
