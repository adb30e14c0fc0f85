#include "syntax/syntax_check.h"

#include <gtest/gtest.h>

#include "attribute/value.h"
#include "tables/data_dictionary.h"
#include "tests/support/lists.h"
#include "tests/support/log_recorder.h"
#include "tests/support/temporary.h"
#include "tests/syntax/findings.h"

static const Settings    warning_settings = {LOG_WARNING, LOG_REPORT, MODE_EXPLICIT, 0, nullptr, nullptr};
static const std::string NUL (1, '\0');

struct Check_Case {
    const char *vr;
    std::string value;
    int         result;
    std::string findings; // Without their prefix, "W: " or "N: " before each, each ended by a line feed.
};

static void Expect_Check (const Check_Case &one, uint16_t group = 0x0018) {
    Log_Recorder log;
    Attribute    attribute = Record (group, 0x0022, one.vr, one.value);
    if (one.value.empty ()) Value_New (nullptr, {0, "", "", 0, 0}, &attribute, 0);
    std::string before = Value (&attribute);
    EXPECT_EQ (one.result, DICOM_Attribute_Syntax_Tag (nullptr, &warning_settings, &attribute)) << one.vr << one.value;
    EXPECT_EQ (one.findings, Findings (log)) << one.vr << " " << one.value;
    EXPECT_EQ (before, Value (&attribute));
    EXPECT_EQ (ORIGIN_DICOM, attribute.flags);
    Value_Release (&attribute);
}

// --- texts -----------------------------------------------------------------

TEST (SyntaxCheck, GoodValuesPassInSilence) {
    static const Check_Case cases[] = {
        {"AE", "STATION 1", 1, ""},
        {"AS", "045Y", 1, ""},
        {"AT", std::string ("\x10\x00\x10\x00", 4), 1, ""},
        {"CS", "ORIGINAL\\PRIMARY ", 1, ""},
        {"CS", "", 1, ""},
        {"CS", "    ", 1, ""},
        {"DA", "20240131", 1, ""},
        {"DS", "1.5\\-2e3 ", 1, ""},
        {"DT", "20240131120000.5+0100 ", 1, ""},
        {"FD", std::string (16, '\1'), 1, ""},
        {"FL", std::string (8, '\1'), 1, ""},
        {"IS", "12\\-5 ", 1, ""},
        {"LO", " some text", 1, ""},
        {"LT", std::string (10240, 'a') + "   ", 1, ""},
        {"OF", std::string (8, '\1'), 1, ""},
        {"OW", std::string (6, '\1'), 1, ""},
        {"PN", "Doe^John=Doe^J", 1, ""},
        {"SH", "sixteen letters ", 1, ""},
        {"SL", std::string (8, '\1'), 1, ""},
        {"SS", std::string (6, '\1'), 1, ""},
        {"ST", std::string (1024, 'a'), 1, ""},
        {"TM", "123000.5 ", 1, ""},
        {"UI", "1.2.840" + NUL, 1, ""},
        {"UL", std::string (8, '\1'), 1, ""},
        {"US", std::string (6, '\1'), 1, ""},
        {"UT", std::string (20000, 'a'), 1, ""},
    };
    for (const Check_Case &one : cases) Expect_Check (one);
}

TEST (SyntaxCheck, VrsWithoutACheckGiveZero) {
    for (const char *vr : {"OB", "SQ", "UN", "UC", "UH", "OX", "ZZ"}) Expect_Check ({vr, "abc", 0, ""});
}

TEST (SyntaxCheck, NoValuePasses) {
    Attribute attribute = Record (0x0018, 0x0022, "AS");
    attribute.length    = 7;
    EXPECT_EQ (1, DICOM_Attribute_Syntax_Tag (nullptr, &warning_settings, &attribute));
}

TEST (SyntaxCheck, TheDictionaryVrIsUsedWhenTheFileGaveNone) {
    Log_Recorder log;
    Attribute    attribute = Record (0x0018, 0x0022, "", "abc");
    attribute.vr           = VR_CS;
    DICOM_Attribute_Syntax_Tag (nullptr, &warning_settings, &attribute);
    EXPECT_EQ ("N: 3 char in \"abc\" not from set \"ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_ \\\"\n", Findings (log));
    Value_Release (&attribute);
}

TEST (SyntaxCheck, PrefixesNameTagAndVr) {
    Log_Recorder log;
    Attribute    note = Record (0x0018, 0x0022, "AE", "a\1"), warning = Record (0x0018, 0x0022, "FD", "ab");
    DICOM_Attribute_Syntax_Tag (nullptr, &warning_settings, &note);
    DICOM_Attribute_Syntax_Tag (nullptr, &warning_settings, &warning);
    EXPECT_TRUE (log.Has (LOG_REPORT, "\xF0    (\x01"
                                      "0018\x02,\x01"
                                      "0022\x02) VR=\x01"
                                      "AE\x02 \x01"
                                      "1\x02"
                                      " Invalid character in data"));
    EXPECT_TRUE (log.Has (LOG_WARNING, "    \xF1\x05WARNING:\x02 (\x01"
                                       "0018\x02,\x01"
                                       "0022\x02) VR=\x01"
                                       "FD\x02 "
                                       "Invalid data! Expecting \"Floation Point Double\" but got \x01"
                                       "2\x02 bytes"));
    Value_Release (&note);
    Value_Release (&warning);
}

TEST (SyntaxCheck, WithoutKindsNothingIsWritten) {
    Log_Recorder log;
    Settings     silent    = {};
    Attribute    attribute = Record (0x0018, 0x0022, "CS", "original\\");
    EXPECT_EQ (1, DICOM_Attribute_Syntax_Tag (nullptr, &silent, &attribute));
    EXPECT_EQ (1, DICOM_Attribute_Syntax_Tag (nullptr, nullptr, &attribute));
    EXPECT_EQ (0u, log.lines.size ());
    Value_Release (&attribute);
}

TEST (SyntaxCheck, WrongPaddingIsNoticed) {
    static const Check_Case cases[] = {
        {"CS", "AXIAL" + NUL, 1, "N: invalid padding char used in \"AXIAL\" (NULL instead of SPACE)\n"},
        {"CS", "  AXIAL" + NUL + "  ", 1, "N: invalid padding char used in \"  AXIAL\" (NULL instead of SPACE)\n"},
        {"LT", "text" + NUL, 1, "N: invalid padding char used in \"text\" (NULL instead of SPACE)\n"},
        {"UI", "1.2.840 ", 1, "N: invalid padding char used in \"1.2.840 \" (SPACE instead of NULL)\n"},
        {"UI", "1.2.84 " + NUL, 1, "N: invalid padding char used in \"1.2.84 \" (SPACE instead of NULL)\n"},
        {"UI", NUL + NUL, 1, ""},
    };
    for (const Check_Case &one : cases) Expect_Check (one);
}

TEST (SyntaxCheck, OnlyOneWrongPadIsTakenOff) {
    Expect_Check ({"SH", "A" + NUL + NUL, 1, "N: invalid padding char used in \"A\" (NULL instead of SPACE)\n"});
    Expect_Check ({"CS", "A" + NUL + NUL, 1,
                   "N: invalid padding char used in \"A\" (NULL instead of SPACE)\n"
                   "N: 1 char in \"A\" not from set \"ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_ \\\"\n"});
}

TEST (SyntaxCheck, CharactersOutsideTheSetAreCounted) {
    static const Check_Case cases[] = {
        {"CS", "original", 1, "N: 8 char in \"original\" not from set \"ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_ \\\"\n"},
        {"DS", "1,5 ", 1, "N: 1 char in \"1,5\" not from set \"0123456789+-Ee. \\\"\n"},
        {"DT", "2024/01 ", 1, "N: 1 char in \"2024/01\" not from set \"0123456789+-. \\\"\n"},
        {"IS", "1x2 ", 1, "N: 1 char in \"1x2\" not from set \"0123456789+- \\\"\n"},
        {"TM", "12h30m ", 1, "N: 2 char in \"12h30m\" not from set \"0123456789. \\\"\n"},
        {"UI", "1.a.2" + NUL, 1, "N: 1 char in \"1.a.2\" not from set \"0123456789. \\\"\n"},
        {"AE",
         "a\xE4"
         "b\t",
         1, "N: 2 Invalid character in data\n"},
        {"AE", "~\x7F ", 1, "N: 1 Invalid character in data\n"},
    };
    for (const Check_Case &one : cases) Expect_Check (one);
}

TEST (SyntaxCheck, EachPieceIsMeasured) {
    static const Check_Case cases[] = {
        {"SH", "ABCDEFGHIJKLMNOPQRS\\short", 1,
         "W: String too long! (19/vs/16 max) Truncated to \"ABCDEFGHIJKLMNOP\"(QRS)\n"},
        {"AE", "ABCDEFGHIJKLMNOPQ", 1, "W: String too long! (17/vs/16 max) Truncated to \"ABCDEFGHIJKLMNOP\"(Q)\n"},
        {"CS", "ABCDEFGHIJKLMNOPQ", 1, "W: String too long! (17/vs/16 max) Truncated to \"ABCDEFGHIJKLMNOP\"(Q)\n"},
        {"DS", "12345678901234567", 1, "W: String too long! (17/vs/16 max) Truncated to \"1234567890123456\"(7)\n"},
        {"DT", "123456789012345678901234567", 1,
         "W: String too long! (27/vs/26 max) Truncated to \"12345678901234567890123456\"(7)\n"},
        {"DT", " 20240131123000.000000+0100", 1,
         "W: String too long! (27/vs/26 max) Truncated to \" 20240131123000.000000+010\"(0)\n"},
        {"IS", "-000000000000", 0, "W: Value out of range (000000000000 \\vs\\ -2**31 to 2**31 - 1)\n"},
        {"IS", "- - - - - - -1", 1, "W: String too long! (14/vs/12 max) Truncated to \"- - - - - - \"(-1)\n"},
        {"TM", "12300000000000000", 1, "W: String too long! (17/vs/16 max) Truncated to \"1230000000000000\"(0)\n"},
        {"SH", "123456789012345 \\1", 1, ""},
        {"SH", "123456789012345  \\1", 1, "W: String too long! (17/vs/16 max) Truncated to \"123456789012345 \"( )\n"},
    };
    for (const Check_Case &one : cases) Expect_Check (one);
    for (auto [vr, max] : {std::pair ("LO", 64), std::pair ("PN", 320), std::pair ("UI", 64)}) {
        std::string long_text (static_cast<size_t> (max), '1');
        Expect_Check ({vr, long_text, 1, ""});
        Expect_Check ({vr, long_text + "2", 1,
                       "W: String too long! (" + std::to_string (max + 1) + "/vs/" + std::to_string (max) +
                           " max) Truncated to \"" + long_text + "\"(2)\n"});
    }
}

TEST (SyntaxCheck, SingleTextsAreMeasuredAsAWhole) {
    Expect_Check ({"LT", std::string (10241, '\\'), 1, "W: String too long! (10241/vs/10240 max) \n"});
    Expect_Check ({"ST", std::string (1025, 'a'), 1, "W: String too long! (1025/vs/1024 max) \n"});
    Expect_Check ({"ST", std::string (1024, 'a') + NUL + "more", 1, ""});
}

TEST (SyntaxCheck, ATrailingBackslashIsNoticedInEvenGroups) {
    Expect_Check ({"SH", "A\\", 1, "N: last char is (=\\)!\n"});
    Expect_Check ({"SH", "A\\", 1, ""}, 0x0019);
}

TEST (SyntaxCheck, TextsEndAtTheirFirstNul) {
    Expect_Check ({"SH", "A" + NUL + "BCDEFGHIJKLMNOPQRSTUVW", 1, ""});
    Expect_Check ({"IS", "1" + NUL + "99999999999", 1, "N: 1 char in \"1\" not from set \"0123456789+- \\\"\n"});
}

// --- integers --------------------------------------------------------------

TEST (SyntaxCheck, IntegersAreJudgedByTheirDigits) {
    static const Check_Case cases[] = {
        {"IS", "12.5", 0, "W: Invalid data! Expecting VR=IS but got VR=DS\n"},
        {"IS", "3000000000", 0, "W: Value out of range (3000000000 \\vs\\ -2**31 to 2**31 - 1)\n"},
        {"IS", "2999999999", 1, ""},
        {"IS", "-2999999999 ", 1, ""},
        {"IS", "12345678901", 0, "W: Value out of range (12345678901 \\vs\\ -2**31 to 2**31 - 1)\n"},
        {"IS", "1\\123456789", 0, "W: Value out of range (\\123456789 \\vs\\ -2**31 to 2**31 - 1)\n"},
        {"IS", "1\\12345678", 1, ""},
        {"IS", "3000000000\\3000000001", 0, "W: Value out of range (3000000000 \\vs\\ -2**31 to 2**31 - 1)\n"},
        {"IS", "1\\123456789\\2", 0, "W: Value out of range (\\123456789 \\vs\\ -2**31 to 2**31 - 1)\n"},
    };
    for (const Check_Case &one : cases) Expect_Check (one);
}

TEST (SyntaxCheck, AnEndlessIntegerIsReportedAsFarAsAMessageGoes) {
    Log_Recorder log;
    Attribute    attribute = Record (0x0018, 0x0022, "IS", std::string (50000, '1'));
    EXPECT_EQ (0, DICOM_Attribute_Syntax_Tag (nullptr, &warning_settings, &attribute));
    ASSERT_EQ (1u, log.lines.size ());
    EXPECT_EQ (static_cast<size_t> (LOG_TEXT_SIZE - 1), log.lines[0].text.size ());
    Value_Release (&attribute);
}

// --- binary lengths --------------------------------------------------------

TEST (SyntaxCheck, BinaryLengthsAreMultiplesOfTheirUnit) {
    for (const Binary_Rule &rule : BINARY_RULES)
        for (size_t length = 1; length <= 3 * rule.unit; length++) {
            bool good = length % rule.unit == 0;
            Expect_Check ({rule.vr, std::string (length, '\1'), good, Length_Finding (rule, length)});
        }
}

TEST (SyntaxCheck, AgesHaveFourBytes) {
    Expect_Check ({"AS", "45Y", 0, "W: Invalid data! Expecting 4 bytes but got 3 bytes\n"});
    Expect_Check ({"AS", "0045Y", 0, "W: Invalid data! Expecting 4 bytes but got 5 bytes\n"});
    Expect_Check ({"AS", "045y", 1, "N: 1 char in \"045y\" not from set \"0123456789DWMY\"\n"});
}

// --- dates and times -------------------------------------------------------

TEST (SyntaxCheck, OldDatesAreRecognised) {
    static const Check_Case cases[] = {
        {"DA", "2024.01.31", 0, "N: Old syntax! 2024.01.31 should be changed to 20240131\n"},
        {"DA", "240131", 0, "N: Old syntax! 240131 should be changed to 20240231\n"},
        {"DA", "600031", 0, "N: Old syntax! 600031 should be changed to 19600131\n"},
        {"DA", "590031", 0, "N: Old syntax! 590031 should be changed to 20590131\n"},
        {"DA", "991131", 0, "N: Old syntax! 991131 should be changed to 19991231\n"},
        {"DA", "19100.01.3", 0, "W: Y2K bug! 19100.01.3 = 2000013? (last digit of day is lost!)\n"},
        {"DA", "1910.01.31", 0, "N: Old syntax! 1910.01.31 should be changed to 19100131\n"},
        {"DA", "20100.01.3", 0, "N: Old syntax! 20100.01.3 should be changed to 20100000\n"},
        {"DA", "", 0, "W: Invalid data! Expecting 6, 8 or 10 bytes but got 0 bytes\n"},
        {"DA", "2024013", 0, "W: Invalid data! Expecting 6, 8 or 10 bytes but got 7 bytes\n"},
        {"DA", "20240131\\20240201", 0, "W: Invalid data! Expecting 6, 8 or 10 bytes but got 17 bytes\n"},
        {"DA", "2024-1-3", 1, "N: 2 char in \"2024-1-3\" not from set \"0123456789.\\\"\n"},
        {"DA", "2024-01-31", 0,
         "N: 2 char in \"2024-01-31\" not from set \"0123456789.\\\"\n"
         "N: Old syntax! 2024-01-31 should be changed to 20240131\n"},
    };
    for (const Check_Case &one : cases) Expect_Check (one);
}

TEST (SyntaxCheck, OldTimesAreRecognised) {
    static const Check_Case cases[] = {
        {"TM", "12:30:00", 0, "N: Old syntax! 12:30:00 should be changed to 123000\n"},
        {"TM", "12.30.00.5", 0, "N: Old syntax! 12.30.00.5 should be changed to 123000.5\n"},
        {"TM", "12:30", 0, "N: Old syntax! 12:30 should be changed to 1230\n"},
        {"TM", "12:", 0, "N: Old syntax! 12: should be changed to 12\n"},
        {"TM", "12:30:00.1234567", 0, "N: Old syntax! 12:30:00.1234567 should be changed to 123000.1234567\n"},
        {"TM", "12:30:00.12345678", 0, "W: String too long! (17/vs/16 max) Truncated to \"12:30:00.1234567\"(8)\n"},
    };
    for (const Check_Case &one : cases) Expect_Check (one);
}

// --- multiplicity ----------------------------------------------------------

static std::string Multiplicity (uint16_t minimum, uint16_t maximum, int count, int8_t nb_vr = 1) {
    Log_Recorder     log;
    Dictionary_Entry entry = {};
    entry.nb_vr            = nb_vr;
    entry.vm[0]            = {minimum, maximum};
    Attribute attribute    = Record (0x0028, 0x0010, "US", std::string (static_cast<size_t> (2 * count), '\1'));
    attribute.definition   = &entry;
    int result             = DICOM_Attribute_Syntax_Tag (nullptr, &warning_settings, &attribute);
    EXPECT_EQ (result, log.lines.empty ());
    Value_Release (&attribute);
    return Findings (log);
}

TEST (SyntaxCheck, TheNumberOfValuesIsCompared) {
    EXPECT_EQ ("", Multiplicity (1, 1, 1));
    EXPECT_EQ ("W: Invalid number of values in data!, Expecting VN=1 but got 3 values\n", Multiplicity (1, 1, 3));
    EXPECT_EQ ("", Multiplicity (2, 0xFFFF, 2));
    EXPECT_EQ ("W: Not enough values in data! Expecting VN=2-n but got 1 values\n", Multiplicity (2, 0xFFFF, 1));
    EXPECT_EQ ("", Multiplicity (2, 0xFFFF, 500));
    EXPECT_EQ ("W: Not enough values in data! Expecting VN=2-4 but got 1 values\n", Multiplicity (2, 4, 1));
    EXPECT_EQ ("W: To many values in data! Expecting VN=2-4 but got 5 values\n", Multiplicity (2, 4, 5));
    EXPECT_EQ ("", Multiplicity (2, 4, 4));
}

TEST (SyntaxCheck, RetiredEntriesAreComparedAndEntriesWithoutPairsAreNot) {
    EXPECT_EQ ("W: Invalid number of values in data!, Expecting VN=1 but got 2 values\n", Multiplicity (1, 1, 2, -1));
    EXPECT_EQ ("", Multiplicity (1, 1, 2, 0));
    EXPECT_EQ ("", Multiplicity (0xFFFF, 0xFFFF, 2));
}

TEST (SyntaxCheck, PiecesAreCountedWithTheEmptyOnes) {
    Log_Recorder     log;
    Dictionary_Entry entry = {};
    entry.nb_vr            = 1;
    entry.vm[0]            = {1, 1};
    Attribute attribute    = Record (0x0019, 0x0010, "LO", "A\\");
    attribute.definition   = &entry;
    EXPECT_EQ (0, DICOM_Attribute_Syntax_Tag (nullptr, &warning_settings, &attribute));
    EXPECT_EQ ("W: Invalid number of values in data!, Expecting VN=1 but got 2 values\n", Findings (log));
    Value_Release (&attribute);
}

// However many units they have, these are one value.
TEST (SyntaxCheck, WordsFloatsAndTagsInARowAreOneValue) {
    for (const char *vr : {"OF", "OW", "AT"}) {
        Log_Recorder     log;
        Dictionary_Entry entry = {};
        entry.nb_vr            = 1;
        entry.vm[0]            = {1, 1};
        Attribute attribute    = Record (0x0028, 0x0010, vr, std::string (8, '\1'));
        attribute.definition   = &entry;
        EXPECT_EQ (1, DICOM_Attribute_Syntax_Tag (nullptr, &warning_settings, &attribute)) << vr;
        EXPECT_EQ ("", Findings (log)) << vr;
        Value_Release (&attribute);
    }
}

// --- byte order ------------------------------------------------------------

static std::string Swabbed (const char *vr, const std::string &value, uint8_t mode = MODE_BIG_ENDIAN) {
    Attribute attribute = Record (0x0028, 0x0010, vr, value), keeper = {};
    keeper.length = attribute.length;
    Value_Share (&keeper, &attribute);
    attribute.mode = mode;
    EXPECT_EQ (1, DICOM_Attribute_Syntax_Swab (nullptr, &attribute));
    EXPECT_EQ (mode & ~MODE_BIG_ENDIAN, attribute.mode);
    EXPECT_EQ (value, Value (&keeper)) << "who shares the value keeps its bytes";
    std::string result = Value (&attribute);
    Value_Release (&attribute);
    Value_Release (&keeper);
    return result;
}

TEST (SyntaxCheck, SwabReversesUnits) {
    for (const char *vr : {"SS", "US", "OW"}) {
        EXPECT_EQ ("2143", Swabbed (vr, "1234"));
        EXPECT_EQ ("21435", Swabbed (vr, "12345"));
        EXPECT_EQ ("1", Swabbed (vr, "1"));
    }
    for (const char *vr : {"SL", "UL", "FL", "OF"}) {
        EXPECT_EQ ("43218765", Swabbed (vr, "12345678"));
        EXPECT_EQ ("12345", Swabbed (vr, "12345"));
    }
    EXPECT_EQ ("87654321", Swabbed ("FD", "12345678"));
    EXPECT_EQ ("123456789012", Swabbed ("FD", "123456789012"));
    for (const char *vr : {"AT", "CS", "OB", "UN", "SQ"}) EXPECT_EQ ("1234", Swabbed (vr, "1234"));
    EXPECT_EQ ("1234", Swabbed ("US", "1234", MODE_EXPLICIT));
    EXPECT_EQ ("2143", Swabbed ("US", "1234", MODE_BIG_ENDIAN | MODE_EXPLICIT));
}

TEST (SyntaxCheck, WithoutAValueTheOrderStays) {
    Attribute attribute = Record (0x0028, 0x0010, "US");
    attribute.mode      = MODE_BIG_ENDIAN;
    EXPECT_EQ (1, DICOM_Attribute_Syntax_Swab (nullptr, &attribute));
    EXPECT_EQ (MODE_BIG_ENDIAN, attribute.mode);
}

// --- walk and memory -------------------------------------------------------

TEST (SyntaxCheck, TheWalkGoesIntoItemsUntilTheFirstEmptySlot) {
    Log_Recorder log;
    Test_List    list (&warning_settings);
    list.Add (0x0008, 0x0060, "CS", "ct");
    list.Add (0x0040, 0xA730, "SQ");
    list.Open (0x0040, 0xA730);
    list.Item ();
    list.Add (0x0008, 0x0100, "CS", "a ");
    list.Item ();
    list.Item ();
    list.Add (0x0008, 0x0100, "CS", "b ");
    list.Reset ();
    EXPECT_EQ (1, DICOM_Attribute_Syntax_Walk (nullptr, &list.cursor, list.first));
    EXPECT_EQ (2, log.Count (LOG_REPORT, "not from set"));
    EXPECT_EQ (0, list.cursor.depth);
}

TEST (SyntaxCheck, TracesNameTheTag) {
    Attribute    attribute = Record (0x0018, 0x0022, "IS", "1 ");
    Log_Recorder log (5);
    DICOM_Attribute_Syntax_Tag (nullptr, &warning_settings, &attribute);
    DICOM_Attribute_Syntax_Swab (nullptr, &attribute);
    EXPECT_EQ ("in DICOM_Attribute_Syntax_Tag(0018,0022)\nin DICOM_Tag_Syntax_Valid_Int(0018,0022)\n"
               "in DICOM_Tag_Syntax_Text_Multiple(0018,0022)\nin DICOM_Attribute_Syntax_Swab(0018,0022)\n",
               log.Text (LOG_TRACE5));
    Value_Release (&attribute);
}

TEST (SyntaxCheck, FailedMemoryEndsTheCheck) {
    static const struct {
        const char *vr, *value, *message;
        long        n;
    } cases[] = {
        {"CS", "AXIAL ", "memory error in malloc (var=mom_tag.data, dim=7x1)", 1},
        {"TM", "12:30", "memory error in malloc (var=new_time, dim=6x1)", 2},
    };
    for (const auto &one : cases) {
        Log_Recorder log;
        Attribute    attribute = Record (0x0018, 0x0022, one.vr, one.value);
        long         before    = Memory_Live ();
        Memory_Fail_At (one.n);
        EXPECT_EQ (0, DICOM_Attribute_Syntax_Tag (nullptr, &warning_settings, &attribute));
        EXPECT_EQ (1, Memory_Failed ());
        EXPECT_TRUE (log.Contains (std::string ("of syntax_check \n") + one.message));
        EXPECT_EQ (before, Memory_Live ());
        EXPECT_EQ (one.value, Value (&attribute));
        Value_Release (&attribute);
    }
}

TEST (SyntaxCheck, AFailedSwabLeavesTheValueAsItWas) {
    Log_Recorder log;
    Attribute    attribute = Record (0x0028, 0x0010, "US", "1234"), keeper = {};
    Value_Share (&keeper, &attribute);
    attribute.mode = MODE_BIG_ENDIAN;
    Memory_Fail_At (1);
    EXPECT_EQ (0, DICOM_Attribute_Syntax_Swab (nullptr, &attribute));
    EXPECT_TRUE (log.Contains ("memory error in malloc (var=tag->data, dim=4x1)"));
    EXPECT_EQ (MODE_BIG_ENDIAN, attribute.mode);
    EXPECT_EQ ("1234", Value (&attribute));
    Value_Release (&attribute);
    Value_Release (&keeper);
}

TEST (SyntaxCheck, BinaryAndMappedValuesAreNotCopied) {
    Temporary_Directory directory;
    std::string         name = directory.Write ("value.dat", std::string (70000, 'a') + "  ");
    File               *file = File_Open (name.c_str ());
    ASSERT_NE (nullptr, file);
    Attribute mapped = Record (0x0018, 0x0022, "UT");
    mapped.length    = 70002;
    ASSERT_EQ (1, Value_Map (nullptr, &mapped, file, 70002));
    File_Close (file);
    Attribute words = Record (0x7FE0, 0x0010, "OW", std::string (1000, 'a'));
    Memory_Fail_At (1);
    EXPECT_EQ (1, DICOM_Attribute_Syntax_Tag (nullptr, &warning_settings, &mapped));
    EXPECT_EQ (1, DICOM_Attribute_Syntax_Tag (nullptr, &warning_settings, &words));
    EXPECT_EQ (0, Memory_Failed ());
    Memory_Fail_At (0);
    EXPECT_EQ (70002, mapped.length);
    Value_Release (&mapped);
    Value_Release (&words);
}
