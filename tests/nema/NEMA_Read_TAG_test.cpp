#include "nema/NEMA_Read_TAG.h"

#include <gtest/gtest.h>

#include <memory>

#include "tests/nema/opened_source.h"
#include "tests/support/log_recorder.h"
#include "util/memory.h"

static const unsigned ERROR_CODE = 5;

#define WARNING_HEAD                                                                                                   \
    "    \xF1\x05"                                                                                                     \
    "WARNING:\x02 "

static std::string Trace (const std::string &what) { return "NEMA_Get_Data_Element() --> failed to read " + what; }

// One source, read element by element, with all that it reports.
class NemaReadTag : public testing::TestWithParam<int> {
protected:
    Log_Recorder                   log {5};
    std::unique_ptr<Opened_Source> opened;
    bool                           silent = false; // Without settings.

    uint16_t group = 0, element = 0, vr = 0;
    int32_t  length = 0;

    void Open (const Bytes &bytes) {
        opened = std::make_unique<Opened_Source> (GetParam (), bytes);
        if (silent) opened->source.settings = nullptr;
        log.Clear ();
    }

    int Get (uint8_t mode, int32_t limit = 0) {
        group = element = vr = 0x1111;
        length               = 0x11111111;
        return NEMA_Get_Data_Element (nullptr, &opened->source, mode, &group, &element, &vr, &length, limit);
    }

    int Get (uint8_t mode, const std::string &hex, int32_t limit = 0) {
        Open (Hex (hex));
        return Get (mode, limit);
    }

    int64_t Position () const { return opened->Position (); }

    // "(gggg,eeee) VR length @position", VR 00 when there is none.
    std::string Seen () const {
        char text[64];
        snprintf (text, sizeof text, "(%04x,%04x) %c%c %d @%d", group, element, Code_First (vr, '0'),
                  Code_Second (vr, '0'), length, static_cast<int> (Position ()));
        return text;
    }

    // The texts of what was written at the warning kinds, with their display codes.
    std::vector<std::string> Warnings () const {
        std::vector<std::string> texts;
        for (const Log_Line &line : log.lines)
            if (line.kind < LOG_TRACE1) texts.push_back (line.text);
        return texts;
    }

    typedef std::vector<std::string> Texts;

    std::string End_Report (int obtained, int wanted) const {
        return "End of File while reading: (" + std::to_string (obtained) + " /vs/ " + std::to_string (wanted) + ") (" +
               opened->Name () + ")";
    }

    // All of the depth-1 traces, locations by their module only.
    Texts Failures () const {
        Texts texts;
        for (const Log_Line &line : log.lines)
            if (line.kind == LOG_TRACE1) texts.push_back (line.text.substr (0, line.text.find (" line:")));
        return texts;
    }
};

INSTANTIATE_TEST_SUITE_P (Sources, NemaReadTag, testing::Values (NEMA_FILE, NEMA_MEMORY),
                          [] (const auto &kind) { return kind.param == NEMA_FILE ? "File" : "Memory"; });

// --- modes -----------------------------------------------------------------

TEST_P (NemaReadTag, ReadsExplicitHeadersInEveryByteOrder) {
    EXPECT_EQ (Get (MODE_EXPLICIT, "08 00 60 00 43 53 02 01"), 1);
    EXPECT_EQ (Seen (), "(0008,0060) CS 258 @8");
    EXPECT_EQ (Get (MODE_EXPLICIT | MODE_BIG_ENDIAN, "00 08 00 60 43 53 01 02"), 1);
    EXPECT_EQ (Seen (), "(0008,0060) CS 258 @8");
    EXPECT_EQ (Get (MODE_EXPLICIT | MODE_SWAB, "00 08 00 60 43 53 01 02"), 1);
    EXPECT_EQ (Seen (), "(0008,0060) CS 258 @8");
    EXPECT_EQ (Get (MODE_EXPLICIT | MODE_SWAB | MODE_BIG_ENDIAN, "08 00 60 00 43 53 02 01"), 1);
    EXPECT_EQ (Seen (), "(0008,0060) CS 258 @8");
    EXPECT_EQ (Warnings (), Texts ());
}

TEST_P (NemaReadTag, ReadsExplicitLongLengthsInEveryByteOrder) {
    EXPECT_EQ (Get (MODE_EXPLICIT, "E1 7F 10 10 4F 42 00 00 04 03 02 01"), 1);
    EXPECT_EQ (Seen (), "(7fe1,1010) OB 16909060 @12");
    EXPECT_EQ (Get (MODE_EXPLICIT | MODE_BIG_ENDIAN, "7F E1 10 10 4F 42 00 00 01 02 03 04"), 1);
    EXPECT_EQ (Seen (), "(7fe1,1010) OB 16909060 @12");
    EXPECT_EQ (Get (MODE_EXPLICIT | MODE_SWAB, "7F E1 10 10 4F 42 00 00 03 04 01 02"), 1);
    EXPECT_EQ (Seen (), "(7fe1,1010) OB 16909060 @12");
    EXPECT_EQ (Get (MODE_EXPLICIT | MODE_SWAB | MODE_BIG_ENDIAN, "E1 7F 10 10 4F 42 00 00 02 01 04 03"), 1);
    EXPECT_EQ (Seen (), "(7fe1,1010) OB 16909060 @12");
}

TEST_P (NemaReadTag, ReadsImplicitHeadersInEveryByteOrder) {
    EXPECT_EQ (Get (0, "08 00 60 00 04 03 02 01"), 1);
    EXPECT_EQ (Seen (), "(0008,0060) 00 16909060 @8");
    EXPECT_EQ (Get (MODE_BIG_ENDIAN, "00 08 00 60 01 02 03 04"), 1);
    EXPECT_EQ (Seen (), "(0008,0060) 00 16909060 @8");
    EXPECT_EQ (Get (MODE_SWAB, "00 08 00 60 03 04 01 02"), 1);
    EXPECT_EQ (Seen (), "(0008,0060) 00 16909060 @8");
    EXPECT_EQ (Get (MODE_SWAB | MODE_BIG_ENDIAN, "08 00 60 00 02 01 04 03"), 1);
    EXPECT_EQ (Seen (), "(0008,0060) 00 16909060 @8");
}

TEST_P (NemaReadTag, ReadsFromWhereTheSourceStands) {
    Open (Hex ("FF 08 00 60 00 43 53 02 00 41 42 10 00 10 00 50 4E 00 00"));
    ASSERT_EQ (NEMA_Seek (&opened->source, 1), 1);
    EXPECT_EQ (Get (MODE_EXPLICIT), 1);
    EXPECT_EQ (Seen (), "(0008,0060) CS 2 @9");
    ASSERT_EQ (NEMA_Seek (&opened->source, 11), 1);
    EXPECT_EQ (Get (MODE_EXPLICIT), 1);
    EXPECT_EQ (Seen (), "(0010,0010) PN 0 @19");
}

// --- traces ----------------------------------------------------------------

TEST_P (NemaReadTag, TracesWhatItReads) {
    Open (Hex ("FF FF 1C 00 60 00 43 53 02 01"));
    ASSERT_EQ (NEMA_Seek (&opened->source, 2), 1);
    EXPECT_EQ (Get (MODE_EXPLICIT), 1);
    EXPECT_EQ (log.All (), "14: in NEMA_Get_Data_Element(mode:0008)\n"
                           "15: --> reading (001c,0060)\n"
                           "14: [000002] --> (001c,0060) VR:CS lenght:00000102 (258)\n");
}

TEST_P (NemaReadTag, TracesZerosForAMissingVR) {
    EXPECT_EQ (Get (0x41, "00 08 00 60 FF FF FF FF"), 1);
    EXPECT_EQ (log.All (), "14: in NEMA_Get_Data_Element(mode:0041)\n"
                           "15: --> reading (0008,0060)\n"
                           "14: [000000] --> (0008,0060) VR:00 lenght:FFFFFFFF (-1)\n");
}

// --- VRs -------------------------------------------------------------------

TEST_P (NemaReadTag, SixVRsHaveReservedBytesAndALongLength) {
    for (const char *name : {"OB", "OW", "OX", "SQ", "UN", "UT"}) {
        Open (Hex ("09 00 10 10") + From_Text (name) + Hex ("00 00 06 00 01 00"));
        EXPECT_EQ (Get (MODE_EXPLICIT), 1);
        EXPECT_EQ (Seen (), std::string ("(0009,1010) ") + name + " 65542 @12");
    }
}

TEST_P (NemaReadTag, AllOtherVRsHaveAShortLength) {
    std::string long_names = "OB OW OX SQ UN UT ";
    for (char first = 'A'; first <= 'Z'; first++)
        for (char second = 'A'; second <= 'Z'; second++) {
            std::string name = {first, second};
            if (long_names.find (name + " ") != std::string::npos) continue;
            Open (Hex ("19 00 10 10") + From_Text (name) + Hex ("06 00 01 00 00 00"));
            EXPECT_EQ (Get (MODE_EXPLICIT), 1);
            EXPECT_EQ (Seen (), "(0019,1010) " + name + " 6 @8");
        }
}

TEST_P (NemaReadTag, ReservedBytesMayHoldAnything) {
    for (const char *name : {"OB", "OX", "UN"}) {
        Open (Hex ("09 00 10 10") + From_Text (name) + Hex ("34 12 06 00 00 00"));
        EXPECT_EQ (Get (MODE_EXPLICIT), 1);
        EXPECT_EQ (Seen (), std::string ("(0009,1010) ") + name + " 6 @12");
    }
    EXPECT_EQ (Warnings (), Texts ());
}

TEST_P (NemaReadTag, VRThatIsNoPairOfCapitalsEndsInSilence) {
    for (const char *name : {"@A", "[A", "A@", "A[", "aA", "Aa", "0A", "A ", "  "}) {
        Open (Hex ("08 00 60 00") + From_Text (name) + Hex ("02 00 00 00 00 00"));
        EXPECT_EQ (Get (MODE_EXPLICIT), 0) << name;
        EXPECT_EQ (log.All (), "14: in NEMA_Get_Data_Element(mode:0008)\n15: --> reading (0008,0060)\n") << name;
    }
    Open (Hex ("08 00 60 00 00 00 00 00"));
    EXPECT_EQ (Get (MODE_EXPLICIT), 0);
    Open (Hex ("08 00 60 00 FF FF 00 00"));
    EXPECT_EQ (Get (MODE_EXPLICIT), 0);
    for (const char *name : {"AZ", "ZA"}) {
        Open (Hex ("08 00 60 00") + From_Text (name) + Hex ("02 00"));
        EXPECT_EQ (Get (MODE_EXPLICIT), 1) << name;
    }
}

// --- group 2 ---------------------------------------------------------------

TEST_P (NemaReadTag, MetaGroupIsLittleEndianAndExplicitWhateverTheMode) {
    for (int mode = 0; mode < 16; mode++) {
        EXPECT_EQ (Get (static_cast<uint8_t> (mode), "02 00 10 00 55 49 12 01"), 1) << mode;
        EXPECT_EQ (Seen (), "(0002,0010) UI 274 @8") << mode;
        EXPECT_EQ (Get (static_cast<uint8_t> (mode), "02 00 01 00 4F 42 00 00 02 00 00 00"), 1) << mode;
        EXPECT_EQ (Seen (), "(0002,0001) OB 2 @12") << mode;
    }
}

TEST_P (NemaReadTag, MetaGroupWithoutCapitalsIsImplicitWhateverTheMode) {
    for (int mode = 0; mode < 16; mode++) {
        EXPECT_EQ (Get (static_cast<uint8_t> (mode), "02 00 10 00 12 00 00 00"), 1) << mode;
        EXPECT_EQ (Seen (), "(0002,0010) 00 18 @8") << mode;
        EXPECT_EQ (Get (static_cast<uint8_t> (mode), "02 00 10 00 41 12 00 00"), 1) << mode;
        EXPECT_EQ (Seen (), "(0002,0010) 00 4673 @8") << mode;
        EXPECT_EQ (Get (static_cast<uint8_t> (mode), "02 00 10 00 12 41 00 00"), 1) << mode;
        EXPECT_EQ (Seen (), "(0002,0010) 00 16658 @8") << mode;
    }
}

TEST_P (NemaReadTag, MetaGroupIsFoundInTheMiddleOfAStream) {
    Open (Hex ("00 00 00 02 00 10 00 55 49 12 00"));
    ASSERT_EQ (NEMA_Seek (&opened->source, 3), 1);
    EXPECT_EQ (Get (MODE_BIG_ENDIAN), 1);
    EXPECT_EQ (Seen (), "(0002,0010) UI 18 @11");
}

TEST_P (NemaReadTag, MetaGroupIsKnownByItsBytesAsStored) {
    // A group 0002 of a big-endian stream is read like any other.
    EXPECT_EQ (Get (MODE_EXPLICIT | MODE_BIG_ENDIAN, "00 02 00 10 55 49 00 12"), 1);
    EXPECT_EQ (Seen (), "(0002,0010) UI 18 @8");
    EXPECT_EQ (Get (MODE_BIG_ENDIAN, "00 02 00 10 55 49 00 12"), 1);
    EXPECT_EQ (Seen (), "(0002,0010) 00 1430847506 @8");
}

TEST_P (NemaReadTag, MetaGroupKeepsTheVendorField) {
    EXPECT_EQ (Get (MODE_GE, "02 00 10 00 55 49 0D 00"), 1);
    EXPECT_EQ (Seen (), "(0002,0010) UI 10 @8");
}

// --- items and delimiters --------------------------------------------------

TEST_P (NemaReadTag, ItemTagsHaveNoVRInAnyMode) {
    struct {
        const char *bytes;
        uint16_t    element;
    } tags[] = {{"00 E0", 0xE000}, {"0D E0", 0xE00D}, {"DD E0", 0xE0DD}};
    for (const auto &tag : tags)
        for (uint8_t mode : std::initializer_list<uint8_t> {0x00, 0x08, 0x18, 0x38, 0xF8}) {
            EXPECT_EQ (Get (mode, std::string ("FE FF") + tag.bytes + "41 42 01 00"), 1);
            EXPECT_EQ (group, 0xFFFE);
            EXPECT_EQ (element, tag.element);
            EXPECT_EQ (vr, 0);
            EXPECT_EQ (length, 0x00014241);
            EXPECT_EQ (Position (), 8);
        }
    EXPECT_EQ (Get (MODE_EXPLICIT | MODE_BIG_ENDIAN, "FF FE E0 00 00 01 02 04"), 1);
    EXPECT_EQ (Seen (), "(fffe,e000) 00 66052 @8");
}

TEST_P (NemaReadTag, LengthOfAnItemTagIsNeverSwabbed) {
    EXPECT_EQ (Get (MODE_EXPLICIT | MODE_SWAB, "FF FE E0 00 04 02 01 00"), 1);
    EXPECT_EQ (Seen (), "(fffe,e000) 00 66052 @8");
    EXPECT_EQ (Get (MODE_SWAB | MODE_BIG_ENDIAN, "FE FF 00 E0 00 01 02 04"), 1);
    EXPECT_EQ (Seen (), "(fffe,e000) 00 66052 @8");
}

TEST_P (NemaReadTag, ItemTagInTheWrongByteOrderIsNoElement) {
    EXPECT_EQ (Get (0, "FF FE E0 00 04 00 00 00"), 0);
    EXPECT_EQ (Warnings (), Texts ());
    EXPECT_EQ (Failures (), Texts ());
    EXPECT_EQ (Get (MODE_EXPLICIT, "FF FE E0 00 4C 4F 04 00"), 0);
    EXPECT_EQ (Get (MODE_BIG_ENDIAN, "FE FF 00 E0 00 00 00 04"), 0);
    EXPECT_EQ (Get (0, "FF FE E0 00 05 00 00 00"), 0);
    EXPECT_EQ (Warnings (), Texts {WARNING_HEAD "tag lenght is odd in tag (feff,00e0)"});
    EXPECT_EQ (Get (0, "FF FE E1 00 04 00 00 00"), 1);
    EXPECT_EQ (Seen (), "(feff,00e1) 00 4 @8");
}

// --- Philips ---------------------------------------------------------------

static const char philips_warning[] = WARNING_HEAD "Fix Philips bug: tag (3F3F,003F) replaced by (FFFE,E000)";

TEST_P (NemaReadTag, PhilipsItemIsRepaired) {
    for (uint8_t mode : {uint8_t (0), uint8_t (MODE_EXPLICIT)}) {
        EXPECT_EQ (Get (mode, "3F 3F 3F 00 0A 00 00 00"), 1);
        EXPECT_EQ (Seen (), "(fffe,e000) 00 10 @8");
        EXPECT_EQ (Warnings (), Texts {philips_warning});
    }
    EXPECT_EQ (Get (MODE_EXPLICIT | MODE_BIG_ENDIAN, "3F 3F 00 3F 00 00 00 0A"), 1);
    EXPECT_EQ (Seen (), "(fffe,e000) 00 10 @8");
    EXPECT_EQ (Warnings (), Texts {philips_warning});
    EXPECT_EQ (Get (MODE_EXPLICIT, "3F 3F 3F 00 FF FF FF FF"), 1);
    EXPECT_EQ (Seen (), "(fffe,e000) 00 -1 @8");
}

TEST_P (NemaReadTag, PhilipsItemIsTracedAsItWasRead) {
    EXPECT_EQ (Get (MODE_EXPLICIT, "3F 3F 3F 00 0A 00 00 00"), 1);
    EXPECT_EQ (log.All (), "14: in NEMA_Get_Data_Element(mode:0008)\n"
                           "15: --> reading (3f3f,003f)\n"
                           "2:     WARNING: Fix Philips bug: tag (3F3F,003F) replaced by (FFFE,E000)\n"
                           "14: [000000] --> (fffe,e000) VR:00 lenght:0000000A (10)\n");
}

TEST_P (NemaReadTag, PhilipsItemIsNothingElse) {
    EXPECT_EQ (Get (0, "3F 3F 00 3F 0A 00 00 00"), 1);
    EXPECT_EQ (Seen (), "(3f3f,3f00) 00 10 @8");
    EXPECT_EQ (Get (0, "3F 00 3F 00 0A 00 00 00"), 1);
    EXPECT_EQ (Seen (), "(003f,003f) 00 10 @8");
    EXPECT_EQ (Get (MODE_BIG_ENDIAN, "3F 3F 3F 00 00 00 00 0A"), 1);
    EXPECT_EQ (Seen (), "(3f3f,3f00) 00 10 @8");
    EXPECT_EQ (Warnings (), Texts ());
}

// --- ends and failures -----------------------------------------------------

struct Cut_Case {
    size_t      count; // Bytes that are left of the header.
    int         obtained;
    int         wanted;
    const char *what; // What the trace names; none when there is no trace.
};

// Cuts the header and checks both reports and the result for each number of bytes that is left.
#define EXPECT_CUTS(mode, hex, cases)                                                                                  \
    for (const Cut_Case &cut : cases) {                                                                                \
        SCOPED_TRACE (cut.count);                                                                                      \
        Bytes bytes = Hex (hex);                                                                                       \
        bytes.resize (cut.count);                                                                                      \
        Open (bytes);                                                                                                  \
        EXPECT_EQ (Get (mode), 0);                                                                                     \
        EXPECT_EQ (Warnings (), Texts {End_Report (cut.obtained, cut.wanted)});                                        \
        Texts traces = {"file:NEMA_Read_Data"};                                                                        \
        if (cut.what) traces.push_back (Trace (cut.what));                                                             \
        EXPECT_EQ (Failures (), traces);                                                                               \
        EXPECT_EQ (Position (), static_cast<int64_t> (cut.count));                                                     \
    }

TEST_P (NemaReadTag, ExplicitHeaderCutAnywhereFails) {
    const Cut_Case cases[] = {
        {0, 0, 2, "group"}, {1, 1, 2, "group"}, {2, 0, 2, "element"},      {3, 1, 2, "element"},
        {4, 0, 2, nullptr}, {5, 1, 2, nullptr}, {6, 0, 2, "size (VR:CS)"}, {7, 1, 2, "size (VR:CS)"},
    };
    EXPECT_CUTS (MODE_EXPLICIT, "08 00 60 00 43 53 02 00", cases);
    EXPECT_CUTS (MODE_EXPLICIT | MODE_BIG_ENDIAN, "00 08 00 60 43 53 00 02", cases);
}

TEST_P (NemaReadTag, ExplicitLongHeaderCutAnywhereFails) {
    const Cut_Case cases[] = {
        {6, 0, 2, "size (VR:UT)"}, {7, 1, 2, "size (VR:UT)"},  {8, 0, 4, "size (VR:UT)"},
        {9, 1, 4, "size (VR:UT)"}, {10, 2, 4, "size (VR:UT)"}, {11, 3, 4, "size (VR:UT)"},
    };
    EXPECT_CUTS (MODE_EXPLICIT, "08 00 60 00 55 54 00 00 02 00 00 00", cases);
    const Cut_Case other[] = {{6, 0, 2, "size (VR:OX)"}, {7, 1, 2, "size (VR:OX)"}, {9, 1, 4, "size (VR:OX)"}};
    EXPECT_CUTS (MODE_EXPLICIT, "08 00 60 00 4F 58 00 00 02 00 00 00", other);
}

TEST_P (NemaReadTag, ImplicitHeaderCutAnywhereFails) {
    const Cut_Case cases[] = {
        {0, 0, 2, "group"},        {1, 1, 2, "group"},        {2, 0, 2, "element"},      {3, 1, 2, "element"},
        {4, 0, 4, "size (VR:00)"}, {5, 1, 4, "size (VR:00)"}, {6, 2, 4, "size (VR:00)"}, {7, 3, 4, "size (VR:00)"},
    };
    EXPECT_CUTS (0, "08 00 60 00 02 00 00 00", cases);
    EXPECT_CUTS (MODE_BIG_ENDIAN, "00 08 00 60 00 00 00 02", cases);
}

TEST_P (NemaReadTag, MetaHeaderCutAnywhereFails) {
    // What the look at the VR finds behind the end is reported in front of the element.
    for (size_t count = 2; count < 5; count++) {
        Bytes bytes = Hex ("02 00 10 00 55 49 12 00");
        bytes.resize (count);
        Open (bytes);
        EXPECT_EQ (Get (MODE_EXPLICIT), 0);
        EXPECT_EQ (Warnings (), Texts {End_Report (0, 1)});
        EXPECT_EQ (Failures (), (Texts {"file:NEMA_Read_Data", Trace ("VR byte[0]")}));
    }
    const Cut_Case cases[] = {{5, 0, 1, "VR byte[1]"}, {6, 0, 2, "size (VR:UI)"}, {7, 1, 2, "size (VR:UI)"}};
    EXPECT_CUTS (MODE_EXPLICIT, "02 00 10 00 55 49 12 00", cases);
    const Cut_Case implicit[] = {{6, 2, 4, "size (VR:00)"}, {7, 3, 4, "size (VR:00)"}};
    EXPECT_CUTS (MODE_EXPLICIT, "02 00 10 00 12 00 00 00", implicit);
}

TEST_P (NemaReadTag, ItemWithoutItsLengthFails) {
    const Cut_Case cases[] = {{4, 0, 4, "size (VR:00)"}, {7, 3, 4, "size (VR:00)"}};
    EXPECT_CUTS (MODE_EXPLICIT, "FE FF 00 E0 00 00 00 00", cases);
    EXPECT_CUTS (MODE_EXPLICIT, "FE FF 0E E0 00 00 00 00", cases);
}

TEST_P (NemaReadTag, DelimiterWithoutItsLengthCounts) {
    for (const char *tag : {"FE FF 0D E0", "FE FF DD E0"})
        for (size_t count = 0; count < 4; count++) {
            Open (Hex (tag) + Bytes (count));
            EXPECT_EQ (Get (MODE_EXPLICIT, 4), 1);
            EXPECT_EQ (group, 0xFFFE);
            EXPECT_EQ (element, tag[6] == '0' ? 0xE00D : 0xE0DD);
            EXPECT_EQ (vr, 0);
            EXPECT_EQ (length, 0);
            EXPECT_EQ (Warnings (), Texts {End_Report (static_cast<int> (count), 4)});
            EXPECT_EQ (Failures (), (Texts {"file:NEMA_Read_Data", Trace ("size (VR:00)")}));
        }
}

TEST_P (NemaReadTag, FailureLeavesTheOutputsAlone) {
    EXPECT_EQ (Get (MODE_EXPLICIT, "08 00 60 00 43 53"), 0);
    EXPECT_EQ (group, 0x1111);
    EXPECT_EQ (element, 0x1111);
    EXPECT_EQ (vr, 0x1111);
    EXPECT_EQ (length, 0x11111111);
}

// --- lengths ---------------------------------------------------------------

TEST_P (NemaReadTag, LengthFromTheLimitOnIsRefused) {
    for (uint32_t claimed : {8u, 100u, 0x7FFFFFFFu}) {
        char hex[64], text[16];
        snprintf (hex, sizeof hex, "08 00 60 00 %02X %02X %02X %02X", claimed & 255, claimed >> 8 & 255,
                  claimed >> 16 & 255, claimed >> 24);
        snprintf (text, sizeof text, "%08X", claimed);
        int32_t limit = static_cast<int32_t> (claimed);
        EXPECT_EQ (Get (0, hex, limit), 0);
        EXPECT_EQ (Failures (), Texts {std::string ("NEMA_Get_Data_Element() --> failed size to big (=") + text + ")"});
        EXPECT_EQ (Warnings (), Texts ());
        EXPECT_EQ (Get (0, hex, limit - 1), 0);
        EXPECT_EQ (Get (0, hex, 0), 1);
        EXPECT_EQ (length, limit);
        if (limit == INT32_MAX) continue;
        EXPECT_EQ (Get (0, hex, limit + 1), 1);
        EXPECT_EQ (length, limit);
    }
}

TEST_P (NemaReadTag, UndefinedLengthPassesEveryLimit) {
    for (int32_t limit : {0, 1, 12, INT32_MAX}) {
        EXPECT_EQ (Get (MODE_EXPLICIT, "08 00 60 00 53 51 00 00 FF FF FF FF", limit), 1);
        EXPECT_EQ (Seen (), "(0008,0060) SQ -1 @12");
        EXPECT_EQ (Warnings (), Texts ());
    }
}

TEST_P (NemaReadTag, LengthsBelowUndefinedAreRefused) {
    for (int32_t limit : {0, 8, INT32_MAX}) {
        EXPECT_EQ (Get (0, "08 00 60 00 FE FF FF FF", limit), 0);
        EXPECT_EQ (Warnings (), Texts ());
        EXPECT_EQ (Failures (), Texts ());
        EXPECT_EQ (Get (0, "08 00 60 00 00 00 00 80", limit), 0);
        EXPECT_EQ (Warnings (), Texts ());
        EXPECT_EQ (Get (0, "08 00 60 00 01 00 00 80", limit), 0);
        EXPECT_EQ (Warnings (), Texts {WARNING_HEAD "tag lenght is odd in tag (0008,0060)"});
        EXPECT_EQ (Failures (), Texts ());
    }
}

TEST_P (NemaReadTag, OddLengthIsReportedAndKept) {
    EXPECT_EQ (Get (MODE_EXPLICIT, "08 00 1B 00 4C 4F 07 00"), 1);
    EXPECT_EQ (Seen (), "(0008,001b) LO 7 @8");
    EXPECT_EQ (Warnings (), Texts {WARNING_HEAD "tag lenght is odd in tag (0008,001b)"});
    EXPECT_EQ (Get (0, "08 00 1B 00 FF FF FF 7F"), 1);
    EXPECT_EQ (length, 0x7FFFFFFF);
    EXPECT_EQ (Warnings (), Texts {WARNING_HEAD "tag lenght is odd in tag (0008,001b)"});
    EXPECT_EQ (Get (MODE_EXPLICIT, "FE FF 00 E0 01 00 00 00"), 1);
    EXPECT_EQ (Warnings (), Texts {WARNING_HEAD "tag lenght is odd in tag (fffe,e000)"});
}

TEST_P (NemaReadTag, WarningsHaveTheKindOfTheSettings) {
    Open (Hex ("08 00 1B 00 4C 4F 07 00"));
    opened->settings.kind_warning = LOG_REPORT;
    EXPECT_EQ (Get (MODE_EXPLICIT), 1);
    EXPECT_EQ (log.Count (LOG_REPORT, "tag lenght is odd"), 1);
    Open (Hex ("08 00 1B 00 4C 4F 07 00"));
    opened->settings.kind_warning = 0;
    EXPECT_EQ (Get (MODE_EXPLICIT), 1);
    EXPECT_EQ (Warnings (), Texts ());
}

// Every repair, each as it is with reports.
TEST_P (NemaReadTag, WithoutSettingsRepairsAreSilent) {
    silent = true;
    EXPECT_EQ (Get (MODE_EXPLICIT, "08 00 1B 00 4C 4F 07 00"), 1);
    EXPECT_EQ (Seen (), "(0008,001b) LO 7 @8");
    EXPECT_EQ (Warnings (), Texts ());
    EXPECT_EQ (Get (MODE_EXPLICIT | MODE_GE, "08 00 1B 00 4C 4F 07 00"), 1);
    EXPECT_EQ (Warnings (), Texts ());
    EXPECT_EQ (Get (MODE_EXPLICIT | MODE_GE, "08 00 1B 00 4C 4F 0D 00"), 1);
    EXPECT_EQ (Seen (), "(0008,001b) LO 10 @8");
    EXPECT_EQ (Warnings (), Texts ());
    EXPECT_EQ (Get (MODE_EXPLICIT, "3F 3F 3F 00 0A 00 00 00"), 1);
    EXPECT_EQ (Seen (), "(fffe,e000) 00 10 @8");
    EXPECT_EQ (Warnings (), Texts ());
    EXPECT_EQ (Get (MODE_EXPLICIT, "40 00 75 02 53 51 12 00"), 1);
    EXPECT_EQ (Seen (), "(ffff,ffff) OB 18 @8");
    EXPECT_EQ (Warnings (), Texts ());
    EXPECT_EQ (Get (MODE_EXPLICIT, "09 00 10 10 55 4C 06 00 20 20 20 20"), 1);
    EXPECT_EQ (Seen (), "(0009,1010) CS 4 @8");
    EXPECT_EQ (Warnings (), Texts ());
    EXPECT_EQ (Get (0, "E0 7F 10 00 FF FF FF FF FF D8 FF E0 FF D9"), 1);
    EXPECT_EQ (Seen (), "(7fe0,0010) 00 6 @8");
    EXPECT_EQ (Warnings (), Texts ());
}

// --- GE --------------------------------------------------------------------

TEST_P (NemaReadTag, GELengthThirteenBecomesTen) {
    EXPECT_EQ (Get (MODE_EXPLICIT | MODE_GE, "08 00 1B 00 4C 4F 0D 00"), 1);
    EXPECT_EQ (Seen (), "(0008,001b) LO 10 @8");
    EXPECT_EQ (Warnings (), Texts {WARNING_HEAD "Fix GE bug: lenght from 13 to 10 in tag (0008,001b)"});
    EXPECT_EQ (log.Count (LOG_TRACE4), 1); // A repaired element has no trace of its own.
    EXPECT_EQ (Get (MODE_GE, "08 00 1B 00 0D 00 00 00"), 1);
    EXPECT_EQ (Seen (), "(0008,001b) 00 10 @8");
    EXPECT_EQ (Get (MODE_GE | MODE_BIG_ENDIAN, "00 08 00 1B 00 00 00 0D"), 1);
    EXPECT_EQ (Seen (), "(0008,001b) 00 10 @8");
}

TEST_P (NemaReadTag, OnlyTheGEFieldEnablesItsRepair) {
    for (uint8_t vendor : std::initializer_list<uint8_t> {0x00, 0x20, 0x30, 0x50, 0x90, 0xF0}) {
        EXPECT_EQ (Get (MODE_EXPLICIT | vendor, "08 00 1B 00 4C 4F 0D 00"), 1);
        EXPECT_EQ (length, 13);
        EXPECT_EQ (Warnings (), Texts {WARNING_HEAD "tag lenght is odd in tag (0008,001b)"});
    }
    for (const char *other : {"0C", "0E"}) {
        EXPECT_EQ (Get (MODE_EXPLICIT | MODE_GE, std::string ("08 00 1B 00 4C 4F 00 00").replace (18, 2, other)), 1);
        EXPECT_EQ (Warnings (), Texts ());
    }
}

TEST_P (NemaReadTag, OtherOddLengthsOfGEBringTwoMoreLines) {
    EXPECT_EQ (Get (MODE_EXPLICIT | MODE_GE, "08 00 1B 00 4C 4F 0B 00"), 1);
    EXPECT_EQ (Seen (), "(0008,001b) LO 11 @8");
    EXPECT_EQ (Warnings (), (Texts {WARNING_HEAD "tag lenght is odd in tag (0008,001b)",
                                    "\x05"
                                    "Oups! We assumed this was a GE 13/10 bug, it no longer appears that way",
                                    "\x05"
                                    "Please contact Kestrelbay for further assistance."}));
}

TEST_P (NemaReadTag, ItemsLoseTheGEField) {
    EXPECT_EQ (Get (MODE_EXPLICIT | MODE_GE, "FE FF 00 E0 0D 00 00 00"), 1);
    EXPECT_EQ (length, 13);
    EXPECT_EQ (Warnings (), Texts {WARNING_HEAD "tag lenght is odd in tag (fffe,e000)"});
}

TEST_P (NemaReadTag, LimitComesBeforeTheGERepair) {
    EXPECT_EQ (Get (MODE_EXPLICIT | MODE_GE, "08 00 1B 00 4C 4F 0D 00", 13), 0);
    EXPECT_EQ (Failures (), Texts {"NEMA_Get_Data_Element() --> failed size to big (=0000000D)"});
    EXPECT_EQ (Get (MODE_EXPLICIT | MODE_GE, "08 00 1B 00 4C 4F 0D 00", 14), 1);
    EXPECT_EQ (length, 10);
}

TEST_P (NemaReadTag, RoganRepairIsNeverTaken) {
    for (uint8_t mode : std::initializer_list<uint8_t> {0x30, 0x38})
        for (int32_t limit : {0, 21, 24, 27, 28}) {
            EXPECT_EQ (Get (mode, "FE FF 00 E0 14 00 00 00", limit), 1);
            EXPECT_EQ (Seen (), "(fffe,e000) 00 20 @8");
            EXPECT_EQ (Warnings (), Texts ());
        }
    EXPECT_EQ (Get (0x39, "FF FE E0 00 00 00 00 14", 24), 1);
    EXPECT_EQ (Seen (), "(fffe,e000) 00 20 @8");
}

// --- Siemens: reserved bytes -----------------------------------------------

TEST_P (NemaReadTag, SiemensReservedLengthIsSkipped) {
    for (const char *name : {"OB", "OW", "SQ", "UN", "UT"}) {
        Open (Hex ("40 00 75 02") + From_Text (name) + Hex ("12 01 FE FF 00 E0"));
        EXPECT_EQ (Get (MODE_EXPLICIT, 20), 1);
        EXPECT_EQ (Seen (), "(ffff,ffff) OB 274 @8");
        EXPECT_EQ (Warnings (), Texts {WARNING_HEAD "Fix Siemens bug: tag (0040,0275) is skipped"});
        EXPECT_EQ (log.Count (LOG_TRACE4), 1);
    }
    EXPECT_EQ (Get (MODE_EXPLICIT | MODE_BIG_ENDIAN, "00 40 02 75 53 51 01 12"), 1);
    EXPECT_EQ (Seen (), "(ffff,ffff) OB 274 @8");
    EXPECT_EQ (Get (MODE_EXPLICIT, "40 00 75 02 53 51 FF FF"), 1);
    EXPECT_EQ (Seen (), "(ffff,ffff) OB 65535 @8");
}

TEST_P (NemaReadTag, SiemensReservedLengthNeedsAllItsMarks) {
    EXPECT_EQ (Get (MODE_EXPLICIT, "40 00 75 02 53 51 00 00 12 00 00 00"), 1);
    EXPECT_EQ (Seen (), "(0040,0275) SQ 18 @12");
    EXPECT_EQ (Get (MODE_EXPLICIT, "40 00 76 02 53 51 12 00 14 00 00 00"), 1);
    EXPECT_EQ (Seen (), "(0040,0276) SQ 20 @12");
    EXPECT_EQ (Get (MODE_EXPLICIT, "41 00 75 02 53 51 12 00 14 00 00 00"), 1);
    EXPECT_EQ (Seen (), "(0041,0275) SQ 20 @12");
    EXPECT_EQ (Get (MODE_EXPLICIT, "40 00 75 02 4F 58 12 00 14 00 00 00"), 1);
    EXPECT_EQ (Seen (), "(0040,0275) OX 20 @12");
    EXPECT_EQ (Get (MODE_EXPLICIT, "40 00 75 02 4C 4F 12 00"), 1);
    EXPECT_EQ (Seen (), "(0040,0275) LO 18 @8");
    EXPECT_EQ (Get (0, "40 00 75 02 53 51 12 00"), 1);
    EXPECT_EQ (Seen (), "(0040,0275) 00 1200467 @8");
    EXPECT_EQ (log.Count (LOG_WARNING, "Siemens"), 0);
}

// --- Siemens: blank text as a number ---------------------------------------

TEST_P (NemaReadTag, SiemensBlankNumberBecomesAText) {
    EXPECT_EQ (Get (MODE_EXPLICIT, "09 00 1E 10 55 4C 06 00 20 20 20 20 09 00"), 1);
    EXPECT_EQ (Seen (), "(0009,101e) CS 4 @8");
    EXPECT_EQ (Warnings (), Texts {WARNING_HEAD "Fix Siemens bug: lenght changed from 6 to 4 in tag (0009,101e)"});
    EXPECT_EQ (log.Count (LOG_TRACE4), 1);
    EXPECT_EQ (Get (MODE_EXPLICIT | MODE_BIG_ENDIAN, "00 09 10 1E 55 4C 00 06 20 20 20 20"), 1);
    EXPECT_EQ (Seen (), "(0009,101e) CS 4 @8");
}

TEST_P (NemaReadTag, SiemensNumberThatIsNotBlankStays) {
    for (const char *value :
         {"21 20 20 20 20 20", "20 00 20 20 20 20", "20 20 1F 20 20 20", "20 20 20 00 20 20", "20 20 20", "20", ""}) {
        EXPECT_EQ (Get (MODE_EXPLICIT, std::string ("09 00 1E 10 55 4C 06 00") + value), 1) << value;
        EXPECT_EQ (Seen (), "(0009,101e) UL 6 @8") << value;
        EXPECT_EQ (Warnings (), Texts ()) << value;
        EXPECT_EQ (Failures (), Texts ()) << value;
    }
}

TEST_P (NemaReadTag, SiemensBlankNumberNeedsAllItsMarks) {
    const std::string value = "20 20 20 20 20 20 20 20";
    EXPECT_EQ (Get (MODE_EXPLICIT, "0B 00 1E 10 55 4C 06 00" + value), 1);
    EXPECT_EQ (Seen (), "(000b,101e) UL 6 @8");
    EXPECT_EQ (Get (MODE_EXPLICIT, "09 00 1E 10 53 4C 06 00" + value), 1);
    EXPECT_EQ (Seen (), "(0009,101e) SL 6 @8");
    EXPECT_EQ (Get (MODE_EXPLICIT, "09 00 1E 10 55 4C 08 00" + value), 1);
    EXPECT_EQ (Seen (), "(0009,101e) UL 8 @8");
    EXPECT_EQ (Get (0, "09 00 1E 10 06 00 00 00" + value), 1);
    EXPECT_EQ (Seen (), "(0009,101e) 00 6 @8");
    EXPECT_EQ (Warnings (), Texts ());
}

// --- Siemens: pixel data ---------------------------------------------------

static const char pixel_header[]    = "E0 7F 10 00 4F 42 00 00 FF FF FF FF";
static const char jpeg_start[]      = "FF D8 FF E0";
static const char exchanged_start[] = "E0 FF D8 FF";

static std::string Pixel_Warning (int length) {
    return WARNING_HEAD "Fix Siemens bug: lenght changed from -1 to " + std::to_string (length) + " in tag (7fe0,0010)";
}

TEST_P (NemaReadTag, PixelDataEndsWithTheEndMark) {
    EXPECT_EQ (Get (MODE_EXPLICIT, std::string (pixel_header) + jpeg_start + "01 02 03 04 FF D9 FF D9 05 06", 100), 1);
    EXPECT_EQ (Seen (), "(7fe0,0010) OB 10 @12");
    EXPECT_EQ (Warnings (), Texts {Pixel_Warning (10)});
    EXPECT_TRUE (log.Contains ("[000000] --> (7fe0,0010) VR:OB lenght:0000000A (10)"));
}

TEST_P (NemaReadTag, PixelDataWithExchangedBytesEndsWithTheExchangedMark) {
    EXPECT_EQ (Get (MODE_EXPLICIT, std::string (pixel_header) + exchanged_start + "FF D9 03 04 D9 FF 05 06", 100), 1);
    EXPECT_EQ (Seen (), "(7fe0,0010) OB 10 @12");
    EXPECT_EQ (Warnings (), Texts {Pixel_Warning (10)});
}

TEST_P (NemaReadTag, PixelDataIsRepairedInEveryMode) {
    const std::string value = std::string (jpeg_start) + "FF D9";
    EXPECT_EQ (Get (0, "E0 7F 10 00 FF FF FF FF" + value), 1);
    EXPECT_EQ (Seen (), "(7fe0,0010) 00 6 @8");
    EXPECT_EQ (Get (MODE_EXPLICIT | MODE_BIG_ENDIAN, "7F E0 00 10 4F 42 00 00 FF FF FF FF" + value), 1);
    EXPECT_EQ (Seen (), "(7fe0,0010) OB 6 @12");
    EXPECT_EQ (Get (MODE_EXPLICIT | MODE_SWAB, "7F E0 00 10 4F 57 00 00 FF FF FF FF" + value), 1);
    EXPECT_EQ (Seen (), "(7fe0,0010) OW 6 @12");
}

TEST_P (NemaReadTag, EndMarkAtAnOddOffsetIsNotSeen) {
    EXPECT_EQ (Get (MODE_EXPLICIT, std::string (pixel_header) + jpeg_start + "01 FF D9 00", 100), 0);
    EXPECT_EQ (Warnings (), Texts ());
    EXPECT_EQ (Position (), 12);
    EXPECT_EQ (Get (MODE_EXPLICIT, std::string (pixel_header) + jpeg_start + "01 FF D9 00 FF D9", 100), 1);
    EXPECT_EQ (length, 10);
}

TEST_P (NemaReadTag, MissingEndMarkIsNoElementAndSilent) {
    for (const char *value : {"", "01", "01 02 03", "FF", "D9 FF", "01 02 03 04 05 06 07 FF"})
        for (int32_t limit : {0, 1000}) {
            EXPECT_EQ (Get (MODE_EXPLICIT, std::string (pixel_header) + jpeg_start + value, limit), 0) << value;
            EXPECT_EQ (Position (), 12);
            EXPECT_EQ (Warnings (), Texts ());
            EXPECT_EQ (Failures (), Texts ());
        }
}

TEST_P (NemaReadTag, EndMarkIsLookedForUpToTheLimit) {
    const std::string stream = std::string (pixel_header) + jpeg_start + "01 02 03 04 FF D9 05 06"; // Offset 8.
    for (int32_t limit : {4, 7, 8}) {
        EXPECT_EQ (Get (MODE_EXPLICIT, stream, limit), 0) << limit;
        EXPECT_EQ (Position (), 12);
    }
    for (int32_t limit : {9, 10, 11, 0, INT32_MAX}) {
        EXPECT_EQ (Get (MODE_EXPLICIT, stream, limit), 1) << limit;
        EXPECT_EQ (Seen (), "(7fe0,0010) OB 10 @12");
    }
}

TEST_P (NemaReadTag, EndMarkIsFoundFarAway) {
    for (size_t offset : {4094u, 4096u, 4098u, 65534u, 65536u, 300000u}) {
        Bytes value = Hex (jpeg_start);
        value.resize (offset, 0xFF);
        Open (Hex (pixel_header) + value + Hex ("FF D9 00"));
        EXPECT_EQ (Get (MODE_EXPLICIT, 1000000), 1);
        EXPECT_EQ (length, static_cast<int32_t> (offset) + 2);
        EXPECT_EQ (Position (), 12);
    }
}

TEST_P (NemaReadTag, EndMarkIsTheLastThingInTheSource) {
    EXPECT_EQ (Get (MODE_EXPLICIT, std::string (pixel_header) + jpeg_start + "FF D9"), 1);
    EXPECT_EQ (Seen (), "(7fe0,0010) OB 6 @12");
    // One of its bytes lies behind the end of a chunk.
    Bytes value = Hex (jpeg_start);
    value.resize (4096, 1);
    Open (Hex (pixel_header) + value + Hex ("FF"));
    EXPECT_EQ (Get (MODE_EXPLICIT), 0);
}

TEST_P (NemaReadTag, OtherPixelDataKeepsItsLength) {
    for (const char *value : {"FE FF 00 E0 00 00 00 00 FF D9", "FF D8 FF E1 FF D9", "FF D8 FF DB FF D9", "FF D8 FF",
                              "FF", "", "D8 FF E0 FF FF D9"}) {
        EXPECT_EQ (Get (MODE_EXPLICIT, std::string (pixel_header) + value, 100), 1) << value;
        EXPECT_EQ (Seen (), "(7fe0,0010) OB -1 @12") << value;
        EXPECT_EQ (Warnings (), Texts ()) << value;
    }
    EXPECT_EQ (Get (MODE_EXPLICIT, std::string ("E0 7F 10 00 4F 42 00 00 08 00 00 00") + jpeg_start + "01 02 FF D9"),
               1);
    EXPECT_EQ (length, 8);
    EXPECT_EQ (Get (MODE_EXPLICIT, std::string ("E0 7F 11 00 4F 42 00 00 FF FF FF FF") + jpeg_start + "FF D9"), 1);
    EXPECT_EQ (length, -1);
    EXPECT_EQ (Get (MODE_EXPLICIT, std::string ("E1 7F 10 00 4F 42 00 00 FF FF FF FF") + jpeg_start + "FF D9"), 1);
    EXPECT_EQ (length, -1);
}

// --- faults of the file ----------------------------------------------------

class NemaReadTagFile : public NemaReadTag {
protected:
    // The four reports of a failed move.
    void Expect_Move_Failed (int64_t position) {
        EXPECT_EQ (opened->source.file, nullptr);
        EXPECT_EQ (Warnings (), (Texts {"\xF1\x04"
                                        "ERROR:\x02 while seeking pos " +
                                            std::to_string (position),
                                        Error_Text_Of (ERROR_CODE), "file: (" + opened->Name () + ")"}));
        EXPECT_EQ (Failures (), Texts {"file:NEMA_Read_TAG"});
    }
};

INSTANTIATE_TEST_SUITE_P (Sources, NemaReadTagFile, testing::Values (NEMA_FILE), [] (const auto &) { return "File"; });

TEST_P (NemaReadTagFile, EachReadMayFail) {
    struct {
        const char *hex;
        const char *what[7]; // Of each read in turn; "" has no trace.
    } headers[] = {
        {"08 00 60 00 43 53 02 00", {"group", "element", "", "size (VR:CS)"}},
        {"08 00 60 00 4F 42 00 00 02 00 00 00", {"group", "element", "", "size (VR:OB)", "size (VR:OB)"}},
        {"FE FF 00 E0 02 00 00 00", {"group", "element", "size (VR:00)"}},
        {"02 00 10 00 55 49 02 00", {"group", "VR byte[0]", "VR byte[1]", "element", "", "size (VR:UI)"}},
    };
    for (const auto &header : headers)
        for (int n = 0; header.what[n]; n++) {
            SCOPED_TRACE (std::string (header.hex) + " read " + std::to_string (n));
            Open (Hex (header.hex));
            File_Fail_At (FILE_READ, n + 1, ERROR_CODE);
            EXPECT_EQ (Get (MODE_EXPLICIT), 0);
            EXPECT_EQ (Warnings (), (Texts {"Error reading file " + opened->Name (), Error_Text_Of (ERROR_CODE)}));
            Texts traces = {"file:NEMA_Read_Data"};
            if (header.what[n][0]) traces.push_back (Trace (header.what[n]));
            EXPECT_EQ (Failures (), traces);
            EXPECT_NE (opened->source.file, nullptr);
        }
}

TEST_P (NemaReadTagFile, DelimiterWhoseLengthCannotBeReadCounts) {
    Open (Hex ("FE FF DD E0 00 00 00 00"));
    File_Fail_At (FILE_READ, 3, ERROR_CODE);
    EXPECT_EQ (Get (MODE_EXPLICIT), 1);
    EXPECT_EQ (element, 0xE0DD);
    EXPECT_EQ (length, 0);
}

TEST_P (NemaReadTagFile, FailedMoveInTheMetaGroupClosesTheFile) {
    for (long n : {1, 2}) {
        Open (Hex ("FF FF 02 00 10 00 55 49 02 00"));
        ASSERT_EQ (NEMA_Seek (&opened->source, 2), 1);
        File_Fail_At (FILE_SEEK, n, ERROR_CODE);
        EXPECT_EQ (Get (MODE_EXPLICIT), 0);
        Expect_Move_Failed (n == 1 ? 6 : 4);
    }
}

TEST_P (NemaReadTagFile, FailedMoveAfterALookClosesTheFile) {
    Open (Hex ("09 00 1E 10 55 4C 06 00 20 20 20 20"));
    File_Fail_At (FILE_SEEK, 1, ERROR_CODE);
    EXPECT_EQ (Get (MODE_EXPLICIT), 0);
    Expect_Move_Failed (8);
    for (long n : {1, 2}) {
        Open (Hex (std::string (pixel_header) + jpeg_start + "FF D9"));
        File_Fail_At (FILE_SEEK, n, ERROR_CODE);
        EXPECT_EQ (Get (MODE_EXPLICIT), 0);
        Expect_Move_Failed (12);
    }
}

TEST_P (NemaReadTagFile, ClosedFileFailsCleanly) {
    Open (Hex ("02 00 10 00 55 49 02 00"));
    File_Fail_At (FILE_SEEK, 1, ERROR_CODE);
    EXPECT_EQ (Get (MODE_EXPLICIT), 0);
    for (int again = 0; again < 2; again++) {
        log.Clear ();
        EXPECT_EQ (Get (MODE_EXPLICIT), 0);
        EXPECT_EQ (log.Count (LOG_TRACE1, "using lseek()"), 1);
        EXPECT_EQ (log.Count (LOG_WARNING, "Error reading file " + opened->Name ()), 1);
        EXPECT_EQ (log.Count (LOG_TRACE1, Trace ("group")), 1);
    }
}

TEST_P (NemaReadTagFile, FailedPositionIsTracedAndTheReadingGoesOn) {
    Open (Hex ("08 00 60 00 43 53 02 00"));
    File_Fail_At (FILE_TELL, 1, ERROR_CODE);
    EXPECT_EQ (Get (MODE_EXPLICIT), 1);
    EXPECT_EQ (Seen (), "(0008,0060) CS 2 @8");
    EXPECT_EQ (Failures (), (Texts {"file:NEMA_Read_TAG", "using lseek()", Error_Text_Of (ERROR_CODE),
                                    "file: (" + opened->Name () + ")"}));
    EXPECT_EQ (Warnings (), Texts ());
    EXPECT_TRUE (log.Contains ("[FFFFFFFF] --> (0008,0060) VR:CS lenght:00000002 (2)"));
}

TEST_P (NemaReadTagFile, FailedPositionInTheMetaGroupIsAskedForAgain) {
    Open (Hex ("02 00 10 00 55 49 02 00"));
    File_Fail_At (FILE_TELL, 1, ERROR_CODE);
    EXPECT_EQ (Get (0), 1);
    EXPECT_EQ (Seen (), "(0002,0010) UI 2 @8");
    EXPECT_EQ (log.Count (LOG_TRACE1, "using lseek()"), 1);
}

TEST_P (NemaReadTagFile, WithoutAPositionThereIsNoLook) {
    Open (Hex ("09 00 1E 10 55 4C 06 00 20 20 20 20"));
    File_Fail_At (FILE_TELL, 2, ERROR_CODE);
    EXPECT_EQ (Get (MODE_EXPLICIT), 1);
    EXPECT_EQ (Seen (), "(0009,101e) UL 6 @8");
    Open (Hex (std::string (pixel_header) + jpeg_start + "FF D9"));
    File_Fail_At (FILE_TELL, 2, ERROR_CODE);
    EXPECT_EQ (Get (MODE_EXPLICIT), 1);
    EXPECT_EQ (Seen (), "(7fe0,0010) OB -1 @12");
    EXPECT_EQ (log.Count (LOG_TRACE1, "using lseek()"), 1);
}

TEST_P (NemaReadTagFile, FailedLookFindsNothing) {
    Open (Hex ("09 00 1E 10 55 4C 06 00 20 20 20 20"));
    File_Fail_At (FILE_READ, 5, ERROR_CODE);
    EXPECT_EQ (Get (MODE_EXPLICIT), 1);
    EXPECT_EQ (Seen (), "(0009,101e) UL 6 @8");
    Open (Hex (std::string (pixel_header) + jpeg_start + "FF D9"));
    File_Fail_At (FILE_READ, 6, ERROR_CODE);
    EXPECT_EQ (Get (MODE_EXPLICIT), 1);
    EXPECT_EQ (Seen (), "(7fe0,0010) OB -1 @12");
    Open (Hex (std::string (pixel_header) + jpeg_start + "FF D9"));
    File_Fail_At (FILE_READ, 7, ERROR_CODE);
    EXPECT_EQ (Get (MODE_EXPLICIT), 0);
    EXPECT_EQ (Position (), 12);
    EXPECT_EQ (Warnings (), Texts ());
}

TEST_P (NemaReadTag, AsksForNoMemory) {
    Open (Hex (std::string (pixel_header) + jpeg_start + "FF D9"));
    Memory_Fail_At (1);
    EXPECT_EQ (Get (MODE_EXPLICIT), 1);
    EXPECT_EQ (Memory_Failed (), 0);
    Memory_Fail_At (0);
}
