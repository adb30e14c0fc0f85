// Both walks look at a glance whether a value is right. What they say and leave must be what the rules come to one by one.
#include <random>

#include <gtest/gtest.h>

#include "attribute/value.h"
#include "syntax/cleanup.h"
#include "syntax/syntax_check.h"
#include "tables/data_dictionary.h"
#include "tests/support/lists.h"
#include "tests/support/log_recorder.h"

static const Settings settings = {LOG_WARNING, LOG_REPORT, MODE_EXPLICIT, 0, nullptr, nullptr};

static std::string Without_Glance (Attribute *attribute) {
    Log_Recorder log;
    DICOM_Attribute_Syntax_Tag (nullptr, &settings, attribute);
    DICOM_Attribute_Cleanup_Swab (nullptr, attribute);
    DICOM_Attribute_Cleanup_Tag (nullptr, &settings, attribute);
    return log.All ();
}

static std::string With_Walks (Attribute *attribute) {
    Log_Recorder   log;
    SequenceCursor cursor = {};
    cursor.settings       = &settings;
    DICOM_Attribute_Syntax_Walk (nullptr, &cursor, attribute);
    DICOM_Attribute_Cleanup_Walk (nullptr, &cursor, attribute);
    return log.All ();
}

// Mostly what is right for some VR, with blanks, pads, backslashes and strange bytes now and then.
static std::string Random_Value (std::mt19937 *random) {
    static const std::string letters ("0123456789.-+eYABC \\\\:^_\t\0\xE4\x1F~ab", 30);
    size_t                   length = (*random) () % 4 ? (*random) () % 20 : (*random) () % 80;
    size_t                   simple = (*random) () % 3 ? 10 : letters.size ();
    std::string              value;
    while (value.size () < length) value += letters[(*random) () % ((*random) () % 8 ? simple : letters.size ())];
    if ((*random) () % 3 == 0) value += ' ';
    if ((*random) () % 6 == 0) value += '\0';
    return value;
}

static Attribute Made (uint16_t group, const char *vr, const std::string &value, uint8_t mode,
                       const Dictionary_Entry *definition) {
    Attribute attribute = Record (group, 0x0022, vr, value);
    if (value.empty ()) Value_New (nullptr, {0, "", "", 0, 0}, &attribute, 0);
    attribute.mode       = mode;
    attribute.definition = definition;
    return attribute;
}

TEST (SyntaxGlance, WalksSayAndLeaveWhatTheRulesDoOneByOne) {
    static const char *const vrs[]         = {"AE", "AS", "AT", "CS", "DA", "DS", "DT", "FD", "FL", "IS",
                                              "LO", "LT", "OF", "OW", "PN", "SH", "SL", "SS", "ST", "TM",
                                              "UI", "UL", "US", "UT", "OB", "UN", "SQ", "zz"};
    const Dictionary_Entry  *definitions[] = {nullptr, Dictionary_Lookup (nullptr, 0x0010, 0x0010), // One value,
                                              Dictionary_Lookup (nullptr, 0x0028, 0x0030),          // two,
                                              Dictionary_Lookup (nullptr, 0x0008, 0x0008),          // two or more,
                                              Dictionary_Lookup (nullptr, 0x0008, 0x1030)};         // again one.
    std::mt19937             random (20261121);
    int                      right = 0, silent = 0, surely = 0;

    for (int i = 0; i < 100000; i++) {
        const char             *vr         = vrs[random () % (sizeof vrs / sizeof *vrs)];
        std::string             value      = Random_Value (&random);
        uint16_t                group      = random () % 4 ? 0x0018 : 0x0019;
        uint8_t                 mode       = random () % 4 ? MODE_EXPLICIT : MODE_EXPLICIT | MODE_BIG_ENDIAN;
        const Dictionary_Entry *definition = definitions[random () % 5];
        Attribute               expected   = Made (group, vr, value, mode, definition);
        Attribute               walked     = Made (group, vr, value, mode, definition);
        Attribute               marked     = Made (group, vr, value, mode, definition);
        right += Syntax_Rule_Of (expected.vr_file) && Syntax_Glance (nullptr, nullptr, &expected);
        std::string said = Without_Glance (&expected);
        silent += said.empty ();
        ASSERT_EQ (said, With_Walks (&walked)) << vr << " (" << value << ")";
        ASSERT_EQ (Value (&expected), Value (&walked)) << vr << " (" << value << ")";
        ASSERT_EQ (expected.flags, walked.flags) << vr << " (" << value << ")";
        ASSERT_EQ (expected.mode, walked.mode) << vr << " (" << value << ")";
        int quiet = said.empty () && Value (&expected) == Value (&marked) && expected.flags == marked.flags &&
                    expected.mode == marked.mode && !expected.data == !marked.data;
        if (Syntax_Is_Right (&marked)) {
            ASSERT_TRUE (quiet) << vr << " (" << value << ")";
            surely++;
        }
        Value_Release (&expected);
        Value_Release (&walked);
        Value_Release (&marked);
    }
    EXPECT_GT (surely, 15000);
    EXPECT_GT (right, 20000);
    EXPECT_GT (silent, 15000);
}

TEST (SyntaxGlance, TracesTellOfEveryStep) {
    Log_Recorder   log (5);
    SequenceCursor cursor    = {};
    Attribute      attribute = Record (0x0018, 0x0022, "CS", "AXIAL ");
    cursor.settings          = &settings;
    DICOM_Attribute_Syntax_Walk (nullptr, &cursor, &attribute);
    DICOM_Attribute_Cleanup_Walk (nullptr, &cursor, &attribute);
    EXPECT_EQ (log.Count (LOG_TRACE5, "in DICOM_Tag_Syntax_Text_Multiple(0018,0022)"), 1);
    EXPECT_EQ (log.Count (LOG_TRACE5, "in DICOM_Tag_Cleanup_Text_Multiple(0018,0022)"), 1);
    Value_Release (&attribute);
}
