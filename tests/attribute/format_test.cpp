#include "attribute/format.h"

#include <gtest/gtest.h>

#include <random>

#include "attribute/NEMA_Tag_Attribute.h"
#include "attribute/NEMA_Tag_Complement.h"
#include "attribute/value.h"
#include "syntax/cleanup.h"
#include "syntax/syntax_check.h"
#include "syntax/syntax_rules.h"
#include "tables/data_dictionary.h"
#include "tests/support/lists.h"
#include "tests/support/log_recorder.h"

static const Settings warning_settings = {LOG_WARNING, LOG_REPORT, MODE_EXPLICIT, 0, nullptr, nullptr};

// A stream's flat list with the positions that its elements have in an explicit-VR stream of 8-byte headers.
struct Flat {
    Test_List list;
    uint32_t  position = 0;

    // length: what the header says when it isn't the number of value bytes (items, sequences).
    Attribute *Add (uint16_t group, uint16_t element, const char *vr = "", const std::string &value = "") {
        Attribute *record = list.Add (group, element, vr, value);
        record->pos_tag   = position;
        record->pos_data  = position + 8;
        position += 8 + static_cast<uint32_t> (value.size ());
        return record;
    }
    Attribute *Length (int32_t length, uint16_t group, uint16_t element, const char *vr = "") {
        Attribute *record = Add (group, element, vr);
        record->length    = length;
        return record;
    }
    Attribute *Item (int32_t length = LENGTH_UNDEFINED) {
        Attribute *record = Length (length, 0xFFFE, 0xE000);
        record->vr        = VR_ITEM;
        return record;
    }
    void Item_End () { Add (0xFFFE, 0xE00D); }
    void Sequence_End () { Add (0xFFFE, 0xE0DD); }
};

// The nested list, without item tags and delimiters when plain.
struct Nested {
    Attribute *first;

    explicit Nested (Flat *flat, const Settings *settings = &warning_settings)
        : first (DICOM_Attribute_Format (nullptr, settings, flat->list.first)) {}
    ~Nested () { Delete (TAG_ANY); }
    void Delete (uint16_t group) {
        SequenceCursor cursor = {};
        DICOM_Attribute_Delete (nullptr, &cursor, &first, group, TAG_ANY);
    }
    std::string Plain () {
        Delete (GROUP_DELIMITER);
        return Outline (first);
    }
};

// --- nesting ---------------------------------------------------------------

TEST (Format, NothingGivesNothing) {
    EXPECT_EQ (nullptr, DICOM_Attribute_Format (nullptr, &warning_settings, nullptr));
}

TEST (Format, AFlatListStaysFlatAndTheInputStays) {
    Flat flat;
    flat.Add (0x0008, 0x0016, "UI", "1.2 ");
    flat.Add (0x0010, 0x0010, "PN", "Doe^John");
    Nested nested (&flat);
    EXPECT_EQ ("(0008,0016) (0010,0010)", Outline (nested.first));
    EXPECT_EQ ("(0008,0016) (0010,0010)", Outline (flat.list.first));
    EXPECT_EQ (nested.first->data, flat.list.first->data);
}

TEST (Format, DelimitersCloseItemsAndSequences) {
    Log_Recorder log;
    Flat         flat;
    flat.Length (-1, 0x0008, 0x1140, "SQ");
    for (int i = 0; i < 2; i++) {
        flat.Item ();
        flat.Add (0x0008, 0x1150, "UI", "1.2 ");
        flat.Length (-1, 0x0040, 0xA170, "SQ");
        flat.Item ();
        flat.Add (0x0008, 0x0100, "SH", "A ");
        flat.Item_End ();
        flat.Sequence_End ();
        flat.Item_End ();
    }
    flat.Sequence_End ();
    flat.Add (0x0010, 0x0010, "PN", "Doe^John");
    Nested nested (&flat);
    EXPECT_EQ ("(0008,1140)[(FFFE,E000) (0008,1150) (0040,A170)[(FFFE,E000) (0008,0100) (FFFE,E00D)] (FFFE,E0DD) "
               "(FFFE,E00D)][(FFFE,E000) (0008,1150) (0040,A170)[(FFFE,E000) (0008,0100) (FFFE,E00D)] (FFFE,E0DD) "
               "(FFFE,E00D)] (FFFE,E0DD) (0010,0010)",
               Outline (nested.first));
    EXPECT_EQ ("(0008,1140)[(0008,1150) (0040,A170)[(0008,0100)]][(0008,1150) (0040,A170)[(0008,0100)]] (0010,0010)",
               nested.Plain ());
    EXPECT_EQ (0u, log.lines.size ());
}

TEST (Format, DefinedLengthsCloseByPosition) {
    Log_Recorder log;
    Flat         flat;
    Attribute   *sequence = flat.Length (0, 0x0008, 0x1140, "SQ");
    for (int i = 0; i < 2; i++) {
        Attribute *item = flat.Item (0);
        flat.Add (0x0008, 0x1150, "UI", "1.2 ");
        Attribute *inner      = flat.Length (0, 0x0040, 0xA170, "SQ");
        Attribute *inner_item = flat.Item (0);
        flat.Add (0x0008, 0x0100, "SH", "A ");
        inner_item->length = static_cast<int32_t> (flat.position - inner_item->pos_data);
        inner->length      = static_cast<int32_t> (flat.position - inner->pos_data);
        item->length       = static_cast<int32_t> (flat.position - item->pos_data);
    }
    sequence->length = static_cast<int32_t> (flat.position - sequence->pos_data);
    flat.Add (0x0010, 0x0010, "PN", "Doe^John");
    Nested nested (&flat);
    EXPECT_EQ ("(0008,1140)[(0008,1150) (0040,A170)[(0008,0100)]][(0008,1150) (0040,A170)[(0008,0100)]] (0010,0010)",
               nested.Plain ());
    EXPECT_EQ (0u, log.lines.size ());
}

TEST (Format, AnEmptySequenceOfDefinedLengthIsClosedByTheNextTag) {
    Flat flat;
    flat.Length (0, 0x0008, 0x1140, "SQ");
    flat.Add (0x0008, 0x1150, "UI", "1.2 ");
    EXPECT_EQ ("(0008,1140) (0008,1150)", Nested (&flat).Plain ());
}

TEST (Format, AnEmptySequenceOfUndefinedLengthHoldsNothing) {
    Flat flat;
    flat.Length (-1, 0x0008, 0x1140, "SQ");
    flat.Sequence_End ();
    flat.Add (0x0008, 0x1150, "UI", "1.2 ");
    EXPECT_EQ ("(0008,1140) (0008,1150)", Nested (&flat).Plain ());
}

TEST (Format, AnEndBeyondTheNumberRangeIsNeverReached) {
    Flat       flat;
    Attribute *sequence = flat.Length (INT32_MAX, 0x0008, 0x1140, "SQ");
    sequence->pos_data  = 0x7FFFFFF0;
    flat.Item ();
    flat.Add (0x0008, 0x1150, "UI", "1.2 ");
    EXPECT_EQ ("(0008,1140)[(0008,1150)]", Nested (&flat).Plain ());
}

TEST (Format, FragmentsOfEncapsulatedDataAreItems) {
    Flat flat;
    flat.Length (-1, 0x7FE0, 0x0010, "OB");
    flat.Item (0);
    Attribute *fragment = flat.Add (0xFFFE, 0xE000, "", "JPEG");
    fragment->vr        = VR_FRAGMENT;
    flat.Sequence_End ();
    flat.Add (0xFFFC, 0xFFFC, "OB");
    Nested nested (&flat);
    EXPECT_EQ ("(7FE0,0010)[(FFFE,E000)][(FFFE,E000)] (FFFE,E0DD) (FFFC,FFFC)", Outline (nested.first));
    EXPECT_EQ ("JPEG", Value (nested.first->item[1]));
}

TEST (Format, SequencesOpenInTenDepthsAtMost) {
    Log_Recorder log;
    Flat         flat;
    for (int i = 0; i < 12; i++) {
        flat.Length (-1, 0x0040, static_cast<uint16_t> (0xA730 + i), "SQ");
        flat.Item ();
    }
    flat.Add (0x0050, 0x0004, "CS", "A ");
    for (int i = 0; i < 12; i++) {
        flat.Item_End ();
        flat.Sequence_End ();
    }
    flat.Add (0x0060, 0x3000, "CS", "A ");
    Nested nested (&flat);
    EXPECT_EQ (3, log.Count (LOG_WARNING, "To many \"sequences\" in DICOM stream"));
    EXPECT_EQ (3, log.Count (LOG_WARNING, "To many \"out of sequences\" in DICOM stream ("));
    std::string plain = nested.Plain ();
    EXPECT_NE (std::string::npos, plain.find ("(0050,0004)"));
    EXPECT_EQ (" (0060,3000)", plain.substr (plain.size () - 12));
}

TEST (Format, TenThousandNestedSequencesEnd) {
    Flat flat;
    for (int i = 0; i < 10000; i++) {
        flat.Length (-1, 0x0040, 0xA730, "SQ");
        flat.Item ();
    }
    Nested nested (&flat);
    EXPECT_NE (nullptr, nested.first);
}

TEST (Format, AnEndWithoutASequenceIsWarnedAbout) {
    Log_Recorder log;
    Flat         flat;
    flat.Add (0x0008, 0x0016, "UI", "1.2 ");
    flat.Sequence_End ();
    flat.Add (0x0010, 0x0010, "PN", "A ");
    EXPECT_EQ ("(0008,0016) (0010,0010)", Nested (&flat).Plain ());
    EXPECT_EQ ("    WARNING: To many \"out of sequences\" in DICOM stream (0008,0016)\n", log.Text (LOG_WARNING));
}

// --- structural faults -----------------------------------------------------

TEST (Format, AnUndefinedSequenceFollowedByATagDoesNotOpen) {
    for (int last : {0, 1}) {
        Log_Recorder log;
        Flat         flat;
        flat.Length (-1, 0x0008, 0x1140, "SQ");
        if (!last) flat.Add (0x0010, 0x0010, "PN", "A ");
        Nested nested (&flat);
        EXPECT_EQ (last ? "(0008,1140)" : "(0008,1140) (0010,0010)", Outline (nested.first));
        EXPECT_TRUE (log.Has (LOG_WARNING, "    \xF1\x05WARNING:\x02 (\x01"
                                           "0008\x02,\x01"
                                           "1140\x02) Syntax Error! "
                                           "VR=SQ should be followed by an \"item\" tag"));
        EXPECT_TRUE (nested.first->flags & DELETED);
    }
}

TEST (Format, UndefinedBytesMustBeFollowedByAnItem) {
    for (const char *vr : {"OB", "OW", "UN"}) {
        Log_Recorder log;
        Flat         flat;
        flat.Length (-1, 0x7FE0, 0x0010, vr);
        flat.Sequence_End ();
        Nested nested (&flat);
        EXPECT_TRUE (nested.first->flags & DELETED);
        EXPECT_EQ (1, log.Count (LOG_WARNING, std::string ("    WARNING: (7fe0,0010) Syntax Error! VR=") + vr +
                                                  " Variable length tag should be followed by an \"item\" tag"));
    }
}

TEST (Format, UndefinedTextIsAnError) {
    Log_Recorder log;
    Flat         flat;
    flat.Length (-1, 0x0040, 0xA160, "UT")->vr = VR_UT;
    Nested nested (&flat);
    EXPECT_TRUE (nested.first->flags & DELETED);
    EXPECT_EQ ("    WARNING: (0040,a160) Syntax Error! Variable length tag is not allowed for VR=UT\n",
               log.Text (LOG_WARNING));
}

TEST (Format, UndefinedLengthsOfOtherVrsAreStoredAsTheyAre) {
    Log_Recorder log;
    Flat         flat;
    flat.Length (-1, 0x0010, 0x0010, "PN");
    flat.Item ();
    Nested nested (&flat);
    EXPECT_EQ ("(0010,0010) (FFFE,E000)", Outline (nested.first));
    EXPECT_EQ (LENGTH_UNDEFINED, nested.first->length);
    EXPECT_EQ (0u, log.lines.size ());
}

TEST (Format, DescendingTagsAtTheTopWarnOnce) {
    Log_Recorder log;
    Flat         flat;
    flat.Add (0x0020, 0x0010, "SH", "A ");
    flat.Add (0x0010, 0x0010, "PN", "A ");
    flat.Add (0x0008, 0x0016, "UI", "A ");
    Nested nested (&flat);
    EXPECT_EQ ("(0020,0010) (0010,0010) (0008,0016)", Outline (nested.first));
    EXPECT_TRUE (log.Has (LOG_WARNING, "    \xF1\x05WARNING:\x02 (\x01"
                                       "0010\x02,\x01"
                                       "0010\x02) tags should be sorted!"));
    EXPECT_EQ (1, log.Count (LOG_WARNING));
}

TEST (Format, EqualTagsAreInOrder) {
    Log_Recorder log;
    Flat         flat;
    flat.Add (0x0020, 0x0010, "SH", "A ");
    flat.Add (0x0020, 0x0010, "SH", "A ");
    Nested nested (&flat);
    EXPECT_EQ (0, log.Count (LOG_WARNING));
}

TEST (Format, OnlyStreamRecordsAreCheckedForOrder) {
    Log_Recorder log;
    Flat         flat;
    flat.Add (0x0020, 0x0010, "SH", "A ");
    flat.Add (0x0010, 0x0010, "PN", "A ")->flags = ORIGIN_MODULE;
    Nested nested (&flat);
    EXPECT_EQ (0, log.Count (LOG_WARNING));
}

TEST (Format, AMissingEndOfAnUndefinedSequenceIsMended) {
    Log_Recorder log;
    Flat         flat;
    flat.Length (-1, 0x0040, 0xA730, "SQ");
    flat.Item ();
    flat.Add (0x0040, 0xA160, "ST", "A ");
    flat.Add (0x0010, 0x0010, "PN", "A ");
    flat.Add (0x0050, 0x0004, "CS", "A ");
    Nested nested (&flat);
    EXPECT_EQ ("(0040,A730)[(0040,A160)] (0010,0010) (0050,0004)", nested.Plain ());
    EXPECT_EQ ("    WARNING: (0010,0010) missing end of sequence tag!\n", log.Text (LOG_WARNING));
}

TEST (Format, AMissingEndStopsOneLevelARecord) {
    Flat flat;
    flat.Length (-1, 0x0040, 0xA730, "SQ");
    flat.Item ();
    flat.Length (-1, 0x0040, 0xA731, "SQ");
    flat.Item ();
    flat.Add (0x0040, 0xA160, "ST", "A ");
    flat.Add (0x0010, 0x0010, "PN", "A ");
    flat.Add (0x0010, 0x0009, "PN", "A ");
    EXPECT_EQ ("(0040,A730)[(0040,A731)[(0040,A160)] (0010,0010)] (0010,0009)", Nested (&flat).Plain ());
}

TEST (Format, ASequenceOfKnownEndKeepsDescendingTags) {
    Flat       flat;
    Attribute *sequence = flat.Length (0, 0x0040, 0xA730, "SQ");
    flat.Item ();
    flat.Add (0x0040, 0xA160, "ST", "A ");
    flat.Add (0x0010, 0x0010, "PN", "A ");
    sequence->length = static_cast<int32_t> (flat.position - sequence->pos_data);
    Log_Recorder log;
    EXPECT_EQ ("(0040,A730)[(0040,A160) (0010,0010)]", Nested (&flat).Plain ());
    EXPECT_EQ (0, log.Count (LOG_WARNING));
}

TEST (Format, AnUnknownTagFollowedByAnItemBecomesASequence) {
    for (int defined : {0, 1}) {
        Flat       flat;
        Attribute *unknown = flat.Length (-1, 0x0009, 0x1001);
        flat.Item ();
        flat.Add (0x0008, 0x0100, "SH", "A ");
        flat.Item_End ();
        if (defined) unknown->length = static_cast<int32_t> (flat.position - unknown->pos_data);
        else flat.Sequence_End ();
        flat.Add (0x0010, 0x0010, "PN", "A ");
        Nested nested (&flat);
        EXPECT_EQ (LENGTH_UNDEFINED, nested.first->length);
        EXPECT_EQ ("(0009,1001)[(0008,0100)] (0010,0010)", nested.Plain ());
        EXPECT_TRUE (nested.first->flags & VR_UNKNOWN);
        EXPECT_EQ (VR_UN, nested.first->vr);
    }
}

TEST (Format, AnUnknownTagBeforeTheNextItemOfItsSequenceOpensNothing) {
    Flat flat;
    flat.Length (-1, 0x0008, 0x1140, "SQ");
    Attribute *item = flat.Item (0);
    flat.Length (0, 0x0009, 0x1001);
    item->length = static_cast<int32_t> (flat.position - item->pos_data);
    flat.Item ();
    flat.Add (0x0008, 0x1150, "UI", "A ");
    flat.Item_End ();
    flat.Sequence_End ();
    EXPECT_EQ ("(0008,1140)[(0009,1001)][(0008,1150)]", Nested (&flat).Plain ());
}

TEST (Format, AnUnknownTagBeforeAnItemInsideItsOwnItemBecomesASequence) {
    Flat flat;
    flat.Length (-1, 0x0008, 0x1140, "SQ");
    Attribute *item = flat.Item (0);
    flat.Length (-1, 0x0009, 0x1001);
    flat.Item ();
    flat.Add (0x0008, 0x1150, "UI", "A ");
    flat.Item_End ();
    flat.Sequence_End ();
    item->length = static_cast<int32_t> (flat.position - item->pos_data);
    flat.Sequence_End ();
    EXPECT_EQ ("(0008,1140)[(0009,1001)[(0008,1150)]]", Nested (&flat).Plain ());
}

TEST (Format, ItemsAndDelimitersNeverOpenASequence) {
    Flat flat;
    flat.Sequence_End ();
    flat.Item ();
    flat.Add (0x0008, 0x1150, "UI", "A ");
    Nested nested (&flat);
    EXPECT_EQ ("(FFFE,E0DD) (FFFE,E000) (0008,1150)", Outline (nested.first));
}

TEST (Format, AFreshDepthForgetsTheEndsOfAnOlderSequence) {
    for (int reach : {26, 1000}) { // Up to an attribute of what follows, and behind all of it.
        Flat       flat;
        Attribute *first = flat.Length (0, 0x0008, 0x1140, "SQ");
        Attribute *item  = flat.Item (0);
        flat.Add (0x0008, 0x1150, "UI", "A ");
        first->length = static_cast<int32_t> (flat.position - first->pos_data);
        item->length  = reach;
        flat.Length (-1, 0x0008, 0x1199, "SQ");
        flat.Item ();
        flat.Add (0x0008, 0x1150, "UI", "A ");
        flat.Item_End ();
        flat.Sequence_End ();
        Log_Recorder log (4);
        EXPECT_EQ ("(0008,1140)[(0008,1150)] (0008,1199)[(0008,1150)]", Nested (&flat).Plain ());
        EXPECT_EQ (0, log.Count (LOG_TRACE4, "\"Stop of Item\" from size")) << reach;
    }
}

TEST (Format, TheEndOfAnItemIsFoundOnce) {
    Flat flat;
    flat.Length (-1, 0x0008, 0x1140, "SQ");
    flat.Item (0);
    flat.Add (0x0008, 0x1150, "UI", "A ");
    flat.Add (0x0008, 0x1155, "UI", "A ");
    flat.Sequence_End ();
    Log_Recorder log (4);
    EXPECT_EQ ("(0008,1140)[(0008,1150) (0008,1155)]", Nested (&flat).Plain ());
    EXPECT_EQ (1, log.Count (LOG_TRACE4, "\"Stop of Item\" from size"));
}

TEST (Format, AnItemEndsWithTheSequenceInItThatReachesItsEnd) {
    Flat flat;
    flat.Length (-1, 0x0008, 0x1140, "SQ");
    Attribute *item = flat.Item (0);
    flat.Length (-1, 0x0040, 0xA170, "SQ");
    flat.Item ();
    item->length = static_cast<int32_t> (flat.position - item->pos_data);
    flat.Sequence_End ();
    Log_Recorder log (4);
    Nested       nested (&flat);
    ASSERT_FALSE (log.lines.empty ());
    EXPECT_EQ ("\"Stop of Item\" from size", log.lines.back ().text);
}

// --- marks -----------------------------------------------------------------

TEST (Format, RetiredAndPrivateTagsAreMarked) {
    Log_Recorder     log;
    Flat             flat;
    Dictionary_Entry retired                    = {};
    retired.name                                = "Length to End";
    retired.nb_vr                               = -1;
    retired.vr[0]                               = VR_UL;
    flat.Add (0x0008, 0x0001, "UL")->definition = &retired;
    flat.Add (0x0009, 0x0010, "LO", "MAKER ");
    Nested nested (&flat);
    EXPECT_EQ (ORIGIN_DICOM | RETIRED, nested.first->flags);
    EXPECT_EQ (ORIGIN_DICOM | PRIVATE, nested.first->next->flags);
    EXPECT_TRUE (log.Has (LOG_REPORT, "    (0008,0001) Retired from DICOM (Length to End)"));
}

TEST (Format, WithoutSettingsItIsSilent) {
    Log_Recorder log;
    Flat         flat;
    flat.Add (0x0020, 0x0010, "SH", "A ");
    flat.Add (0x0010, 0x0010, "OX", "A ");
    flat.Length (-1, 0x0030, 0x0010, "SQ");
    Nested nested (&flat, nullptr);
    EXPECT_EQ (0u, log.lines.size ());
}

TEST (Format, StepsAreTraced) {
    Flat flat;
    flat.Length (-1, 0x0008, 0x1140, "SQ");
    flat.Item ();
    flat.Item_End ();
    flat.Item (0);
    flat.Sequence_End ();
    flat.Length (0, 0x0008, 0x1199, "SQ");
    flat.Length (-1, 0x7FE0, 0x0010, "OB");
    flat.Item (0);
    flat.Sequence_End ();
    Log_Recorder log (4);
    Nested       nested (&flat);
    std::string  text;
    for (const Log_Line &line : log.lines)
        if (line.text.find ("Start of") != std::string::npos || line.text.find ("Stop of") != std::string::npos)
            text += line.text + "\n";
    EXPECT_EQ ("\"Start of Sequence\" tag (0008,1140) size=-1 (End_Of_Sequence[1]:FFFFFFFF)\n"
               "\"Start of Item\" tag (fffe,e000) size=-1 (End_Of_Item[1]:FFFFFFFF)\n"
               "\"Stop of Item\" tag (fffe,e00d) size=0 (End_Of_Item:FFFFFFFF)\n"
               "\"Start of Item\" tag (fffe,e000) size=0 (End_Of_Item[1]:0020)\n"
               "\"Stop of Item\" from size\n"
               "\"Stop of Sequence\" tag (fffe,e0dd) size=0 (End_Of_Item:FFFFFFFF)\n"
               "\"Start of Sequence\" tag (0008,1199) size=0 (End_Of_Sequence[1]:0030)\n"
               "\"Stop of Sequence\" from size\n"
               "\"Start of Sequence\" tag (7fe0,0010) size=-1 (End_Of_Sequence:FFFFFFFF)\n"
               "\"Start of Item\" tag (fffe,e000) size=0 (End_Of_Item[1]:0040)\n"
               "\"Stop of Item\" from size\n"
               "\"Stop of Sequence\" tag (fffe,e0dd) size=0 (End_Of_Item:FFFFFFFF)\n",
               text);
    EXPECT_EQ (1, log.Count (LOG_TRACE4, "in DICOM_Attribute_Format()"));
    EXPECT_EQ (1, log.Count (LOG_TRACE4, "DICOM_Attribute_Format (0008,1199) (pos:0028)"));
}

// --- VR check --------------------------------------------------------------

static int Check (Attribute *attribute) { return DICOM_Attribute_VR_Check (nullptr, &warning_settings, attribute); }

TEST (FormatVrCheck, KnownExplicitVrsAreKeptAndOthersDropped) {
    for (const char *vr : {"AE", "AS", "AT", "CS", "DA", "DS", "DT", "FD", "FL", "IS", "LO", "LT", "OB",
                           "OW", "PN", "SH", "SL", "SQ", "SS", "ST", "TM", "UH", "UI", "UL", "UN", "US"}) {
        Attribute attribute = Record (0x0010, 0x0010, vr);
        EXPECT_EQ (1, Check (&attribute)) << vr;
        EXPECT_EQ (Code (vr[0], vr[1]), attribute.vr_file) << vr;
        EXPECT_EQ (ORIGIN_DICOM, attribute.flags) << vr;
    }
    for (const char *vr : {"UT", "UC", "UR", "OF", "OD", "OL", "OV", "SV", "UV", "ZZ", "Ia"}) {
        Attribute attribute = Record (0x0010, 0x0010, vr);
        attribute.vr        = VR_PN;
        EXPECT_EQ (1, Check (&attribute)) << vr;
        EXPECT_EQ (0, attribute.vr_file) << vr;
    }
}

TEST (FormatVrCheck, OxBecomesOwWithAWarning) {
    Log_Recorder log;
    Attribute    attribute = Record (0x7FE0, 0x0010, "OX");
    EXPECT_EQ (1, Check (&attribute));
    EXPECT_EQ (VR_OW, attribute.vr_file);
    EXPECT_TRUE (attribute.flags & SYNTAX_ERROR);
    EXPECT_TRUE (log.Has (LOG_WARNING, "    \xF1\x05WARNING:\x02 (\x01"
                                       "7fe0\x02,\x01"
                                       "0010\x02) Explicit VR=OX is invalid!"));
}

TEST (FormatVrCheck, MismatchesNameOneTwoOrThreeVrs) {
    Dictionary_Entry entry           = {};
    entry.vr[0]                      = VR_US;
    entry.vr[1]                      = VR_SS;
    entry.vr[2]                      = VR_OW;
    static const char *const texts[] = {
        "    (0028,1200)  Explicit VR (=LO) does not match definition! (=US)",
        "    (0028,1200)  Explicit VR (=LO) does not match definition! (=US or SS)",
        "    (0028,1200)  Explicit VR (=LO) does not match definition! (=US, SS or OW)"};
    for (int sign : {1, -1}) {
        for (int count = 1; count <= 3; count++) {
            Log_Recorder log;
            entry.nb_vr          = static_cast<int8_t> (sign * count);
            Attribute attribute  = Record (0x0028, 0x1200, "LO");
            attribute.definition = &entry;
            EXPECT_EQ (0, Check (&attribute));
            EXPECT_TRUE (log.Has (LOG_REPORT, texts[count - 1]));
            EXPECT_EQ (VR_LO, attribute.vr_file);
            EXPECT_EQ (1, DICOM_Attribute_VR_Match (nullptr, &warning_settings, &attribute, entry.vr[count - 1]));
        }
    }
}

TEST (FormatVrCheck, NothingIsComparedWithoutVrsInTheDictionary) {
    Log_Recorder     log;
    Dictionary_Entry entry = {};
    entry.vr[0]            = VR_RT;
    Attribute attribute    = Record (0x0028, 0x1200, "LO");
    EXPECT_EQ (1, DICOM_Attribute_VR_Match (nullptr, &warning_settings, &attribute, VR_US));
    attribute.definition = &entry;
    EXPECT_EQ (1, DICOM_Attribute_VR_Match (nullptr, &warning_settings, &attribute, VR_US));
    EXPECT_EQ (1, Check (&attribute));
    EXPECT_EQ (0u, log.lines.size ());
}

TEST (FormatVrCheck, AMismatchLeavesThePlaceholder) {
    Dictionary_Entry entry = {};
    entry.nb_vr            = 1;
    entry.vr[0]            = VR_RT;
    Attribute attribute    = Record (0x0028, 0x1200, "LO");
    attribute.vr           = VR_RT;
    attribute.definition   = &entry;
    EXPECT_EQ (0, Check (&attribute));
    EXPECT_EQ (VR_RT, attribute.vr);
}

TEST (FormatVrCheck, ThePlaceholderIsResolvedByLength) {
    for (auto [length, vr] : {std::pair (2, VR_US), std::pair (4, VR_UL), std::pair (0, VR_OB), std::pair (6, VR_OB),
                              std::pair (-1, VR_OB)}) {
        Attribute attribute = Record (0x0028, 0x1200);
        attribute.vr        = VR_RT;
        attribute.length    = length;
        EXPECT_EQ (1, Check (&attribute));
        EXPECT_EQ (vr, attribute.vr);
        EXPECT_FALSE (attribute.flags & VR_UNKNOWN);
    }
}

struct Guess_Case {
    std::string value;
    const char *vr; // "" when nothing can be guessed.
};

static void Expect_Guess (const Guess_Case &one, uint16_t group, uint16_t element, uint8_t mode = 0) {
    Attribute attribute = Record (group, element, "", one.value);
    attribute.mode      = mode;
    EXPECT_EQ (*one.vr ? 1 : 0, Check (&attribute)) << one.value;
    std::string vr = attribute.vr ? std::string {Code_First (attribute.vr, ' '), Code_Second (attribute.vr, ' ')} : "";
    EXPECT_EQ (one.vr, vr) << one.value << " " << one.value.size ();
    EXPECT_TRUE (attribute.flags & VR_UNKNOWN);
    Value_Release (&attribute);
}

TEST (FormatVrCheck, TextsAreGuessedFromTheirCharacters) {
    static const std::string nul (1, '\0');
    static const Guess_Case  cases[] = {
         {"1.2.840.10008" + nul, "UI"}, // padded, digits and dots
         {"1.2" + nul, "UI"},
         {"1/2" + nul, "UI"},
         {"1.2\\3.4" + nul, "UI"},    // the backslash separates
         {"1.2.840.10008.12", "DS"},  // 16 characters
         {"1.2.840.10008.123", "UI"}, // 17
         {std::string (64, '1'), "UI"},
         {std::string (65, '1'), "ST"},
         {std::string (65, '1') + nul, "UI"},
         {"12\\-5", "IS"},
         {"12/24 ", "IS"},
         {"  +5  ", "IS"},
         {"            ", "IS"}, // twelve blanks: nothing is in no set
         {"             ", "DS"},
         {std::string (17, ' '), "ST"},
         {"123456789012", "IS"},
         {"1234567890123", "DS"},
         {"123456789012\\1", "DS"}, // the longest piece counts its backslash
         {"12345678901\\1", "IS"},
         {"3.5E2 ", "DS"},
         {"3.5e-2", "DS"},
         {"3.5/2 ", "DS"},
         {"AXIAL ", "CS"},
         {"A_B 1/2\\X", "CS"},
         {"ABCDEFGHIJKLMNOP", "CS"},
         {"ABCDEFGHIJKLMNOPQ", "ST"},
         {"Axial ", "ST"},
         {"Axial\\Coronal ", "SH"},
         {"AXIAL" + nul, "CS"},
         {"Axial is the name\\b ", "ST"},
         {"abcdefghijklmno\\b ", "SH"}, // 16 with the backslash
         {"abcdefghijklmnop\\b", "ST"},
         {"12" + nul + nul, "SL"}, // two zeros: no text, a number of four bytes
    };
    for (const Guess_Case &one : cases) Expect_Guess (one, 0x0019, 0x1001);
}

TEST (FormatVrCheck, OtherBytesAreGuessedFromTheirLength) {
    static const Guess_Case cases[] = {
        {std::string ("\x01\x02", 2), "SS"},
        {std::string ("\x00\x00", 2), "SS"},
        {std::string ("\x3F\x42\x0F\x00", 4), "SL"}, // 999999
        {std::string ("\x40\x42\x0F\x00", 4), "FL"}, // 1000000: a tiny float
        {std::string ("\xC1\xBD\xF0\xFF", 4), "SL"}, // -999999
        {std::string ("\x00\x00\x80\x3F", 4), "FL"}, // 1.0
        {std::string ("\x00\x50\xC3\x47", 4), ""},   // 100000.0
        {std::string ("\xFF\x4F\xC3\x47", 4), "FL"}, // just below
        {std::string ("\x00\x50\xC3\xC7", 4), ""},   // -100000.0
        {std::string ("\x00\x00\x00\x80", 4), ""},   // -0.0
        {std::string ("\x00\x00\xC0\x7F", 4), ""},   // not a number
        {std::string ("\x01\x02\x03", 3), ""},
        {std::string ("\x01\x02\x03\x04\x05\x06", 6), ""},
        {std::string ("\xE4\x62", 2), "SS"},
        {std::string ("A\x7F", 2), "SS"}, // DEL is no text
        {std::string ("A\t", 2), "SS"},   // nor is a tab
        {std::string ("\x01", 1), ""},
        {std::string (1024, '\x01'), ""},
        {std::string (1024, 'a'), "ST"},
        {std::string (1025, 'a'), "OB"},
    };
    for (const Guess_Case &one : cases) Expect_Guess (one, 0x0019, 0x1001);
    Expect_Guess ({std::string ("\x00\x0F\x42\x3F", 4), "SL"}, 0x0019, 0x1001, MODE_BIG_ENDIAN);
}

TEST (FormatVrCheck, GroupLengthsAndPrivateCreatorsAreKnownByTheirElement) {
    Expect_Guess ({"ABCD", "UL"}, 0x0019, 0x0000);
    Expect_Guess ({"12", "LO"}, 0x0019, 0x0010);
    Expect_Guess ({"12", "LO"}, 0x0019, 0x00FF);
    Expect_Guess ({"12", "IS"}, 0x0019, 0x000F);
    Expect_Guess ({"12", "IS"}, 0x0019, 0x0100);
    Expect_Guess ({"12", "IS"}, 0x0018, 0x0010);
    Expect_Guess ({std::string (1025, '1'), "OB"}, 0x0019, 0x0010);
}

TEST (FormatVrCheck, AnEmptyBufferIsGuessedAsBlanksAre) {
    Attribute attribute = Record (0x0019, 0x1001, "", "A");
    attribute.length    = 0;
    EXPECT_EQ (1, Check (&attribute));
    EXPECT_EQ (VR_IS, attribute.vr);
    Value_Release (&attribute);
}

TEST (FormatVrCheck, WithoutDataNothingIsGuessed) {
    Attribute attribute = Record (0x0019, 0x1001);
    attribute.length    = 2000;
    EXPECT_EQ (1, Check (&attribute));
    EXPECT_EQ (0, attribute.vr);
    EXPECT_TRUE (attribute.flags & VR_UNKNOWN);
}

TEST (FormatVrCheck, TheGuessStaysInTheFlatRecordAndTheNestedOneIsUn) {
    Flat flat;
    flat.Add (0x0019, 0x1001, "", "AXIAL ");
    Nested nested (&flat);
    EXPECT_EQ (VR_CS, flat.list.first->vr);
    EXPECT_EQ (VR_UN, nested.first->vr);
}

// --- a list given away -----------------------------------------------------

// Elements, items and ends in any order, of a few tags, so that sequences come twice, end wrongly and nest too deep.
static void Add_Random (Flat *flat, std::mt19937 *random) {
    auto       below  = [random] (uint32_t count) { return (*random) () % count; };
    uint16_t   tag    = static_cast<uint16_t> (0x1140 + below (4));
    uint16_t   group  = static_cast<uint16_t> (0x0008 + below (4));
    int32_t    length = below (2) ? LENGTH_UNDEFINED : static_cast<int32_t> (8 * below (12));
    Attribute *record = nullptr;
    switch (below (8)) {
    case 0:
    case 1: record = flat->Length (length, group, tag, "SQ"); break;
    case 2:
    case 3: flat->Item (length); break;
    case 4: flat->Item_End (); break;
    case 5: flat->Sequence_End (); break;
    case 6: record = flat->Length (length, group, tag, below (2) ? "" : below (2) ? "OB" : "UT"); break;
    default: record = flat->Add (group, tag, below (3) ? "SH" : below (2) ? "" : "OX", below (2) ? "VALUE " : "12");
    }
    if (record && record->data && !below (4)) record->vr_file = below (2) ? VR_CS : VR_US;
    if (record && record->data && !below (4)) record->mode |= MODE_BIG_ENDIAN;
    if (record && below (2)) record->definition = Dictionary_Lookup (nullptr, group, tag);
}

TEST (Format, AListGivenAwayBecomesWhatItsCopyWouldBe) {
    Dictionary_Build (nullptr);
    for (uint32_t seed = 0; seed < 3000; seed++) {
        long before = Memory_Live ();
        {
            Flat         copied, given;
            std::mt19937 random (seed), again (seed);
            for (uint32_t i = seed % 60; i > 0; i--) {
                Add_Random (&copied, &random);
                Add_Random (&given, &again);
            }
            Log_Recorder copying (4);
            Nested       copy (&copied);
            Log_Recorder giving (4);
            Attribute   *list = DICOM_Attribute_Format_Own (nullptr, &warning_settings, &given.list.first);
            EXPECT_EQ (nullptr, given.list.first);
            ASSERT_EQ (Fields (copy.first), Fields (list)) << seed;
            ASSERT_EQ (copying.All (), giving.All ()) << seed;
            SequenceCursor cursor = {};
            DICOM_Attribute_Delete (nullptr, &cursor, &list, TAG_ANY, TAG_ANY);
        }
        ASSERT_EQ (before, Memory_Live ()) << seed;
    }
}

// The passes of a reader behind the nested list, one by one, or only those that a lean list has left.
static std::string Read_On (Attribute **list, unsigned left, int lean) {
    SequenceCursor cursor = {};
    cursor.settings       = &warning_settings;
    if (lean && (left & FORMAT_LEFT_VALUES)) DICOM_Attribute_Check_And_Clean (nullptr, &cursor, *list);
    if (!lean) DICOM_Attribute_Syntax_Walk (nullptr, &cursor, *list);
    if (!lean) DICOM_Attribute_Cleanup_Walk (nullptr, &cursor, *list);
    cursor          = {};
    cursor.settings = &warning_settings;
    if (!lean || (left & FORMAT_LEFT_DESCRIPTIONS)) DICOM_Attribute_Complement (nullptr, &cursor, *list);
    else DICOM_Attribute_Complement_Top (nullptr, &cursor, *list);
    if (left & FORMAT_LEFT_STRUCTURE) DICOM_Attribute_Delete (nullptr, &cursor, list, GROUP_DELIMITER, TAG_ANY);
    std::string fields = Fields (*list);
    DICOM_Attribute_Delete (nullptr, &cursor, list, TAG_ANY, TAG_ANY);
    return fields;
}

// The lean list that a reader gets which gives away the records of a flat one.
static Attribute *Format_Lean (Attribute **flat, unsigned *left) {
    Format_Pass pass;
    DICOM_Attribute_Format_Start (&pass, nullptr, &warning_settings, Syntax_Is_Right);
    while (*flat) {
        Attribute *record = *flat;
        *flat             = record->next;
        EXPECT_EQ (1, DICOM_Attribute_Format_Next (&pass, record));
    }
    return DICOM_Attribute_Format_End (&pass, left);
}

static void Empty_Last (Test_List *list) {
    Attribute *last = list->first->last;
    if (!last->data) return;
    Value_Release (last);
    last->length = 0;
}

// As a reader hands them over when the dictionary has all their tags; then there is mostly nothing to complete.
static void Know_All (Flat *flat) {
    for (Attribute *record = flat->list.first; record; record = record->next) {
        if (record->group == GROUP_DELIMITER) continue;
        record->group &= 0xFFFE;
        record->definition = Dictionary_Lookup (nullptr, 0x0008, 0x1140);
        record->vr         = record->definition->vr[0];
    }
}

TEST (Format, ALeanListComesToWhatAllPassesMakeOfAWholeOne) {
    Dictionary_Build (nullptr);
    int times[FORMAT_LEFT_ALL + 1] = {};
    for (uint32_t seed = 0; seed < 6000; seed++) {
        long before = Memory_Live ();
        {
            Flat         whole, lean;
            unsigned     left;
            std::mt19937 random (seed), again (seed);
            for (uint32_t i = seed % 60; i > 0; i--) {
                Add_Random (&whole, &random);
                Add_Random (&lean, &again);
                if (seed % 7) continue; // Elsewhere values are mostly wrong.
                for (Flat *flat : {&whole, &lean}) Empty_Last (&flat->list);
            }
            for (Flat *flat : {&whole, &lean})
                if (seed % 3 == 0) Know_All (flat);
            Log_Recorder first_said;
            Attribute   *first    = DICOM_Attribute_Format_Own (nullptr, &warning_settings, &whole.list.first);
            std::string  expected = Read_On (&first, FORMAT_LEFT_ALL, 0);
            Log_Recorder second_said;
            Attribute   *second = Format_Lean (&lean.list.first, &left);
            times[left]++;
            ASSERT_EQ (expected, Read_On (&second, left, 1)) << seed;
            ASSERT_EQ (first_said.All (), second_said.All ()) << seed;
        }
        ASSERT_EQ (before, Memory_Live ()) << seed;
    }
    for (unsigned left = 0; left <= FORMAT_LEFT_ALL; left++) {
        if ((left & FORMAT_LEFT_STRUCTURE) && !(left & FORMAT_LEFT_DESCRIPTIONS)) EXPECT_EQ (0, times[left]);
        else EXPECT_GT (times[left], 20) << left;
    }
}

static Attribute *Add_Known (Flat *flat, uint16_t group, uint16_t element, const char *vr, const std::string &value) {
    Attribute *record  = flat->Add (group, element, vr, value);
    record->definition = Dictionary_Lookup (nullptr, group, element);
    if (record->definition) record->vr = record->definition->vr[0];
    return record;
}

// What a sequence with an item holds is left to be completed; what stands in the top list always is.
TEST (Format, OnlyWhatItemsLackIsLeftToBeCompleted) {
    static const struct {
        uint16_t inside, element, top;
        unsigned left;
    } cases[] = {{0x0008, 0x0104, 0x0010, 0},
                 {0x0009, 0x0104, 0x0010, FORMAT_LEFT_DESCRIPTIONS},
                 {0x0008, 0x0104, 0x0011, 0},
                 {0x0008, 0x0FF1, 0x0010, 0}};
    for (auto &one : cases) {
        Flat flat;
        Add_Known (&flat, 0x0008, 0x1140, "SQ", "")->length = LENGTH_UNDEFINED;
        flat.Item ();
        Add_Known (&flat, one.inside, one.element, "LO", "TEXT");
        flat.Item_End ();
        flat.Sequence_End ();
        Add_Known (&flat, one.top, 0x0010, "PN", "Doe^John");
        unsigned       left;
        SequenceCursor cursor = {};
        Attribute     *list   = Format_Lean (&flat.list.first, &left);
        EXPECT_EQ (one.left, left) << one.inside << " " << one.element << " " << one.top;
        DICOM_Attribute_Delete (nullptr, &cursor, &list, TAG_ANY, TAG_ANY);
    }
}

// A sequence of two items, one of them empty.
static void Add_Two_Items (Flat *flat) {
    flat->Length (-1, 0x0008, 0x1140, "SQ");
    flat->Item ();
    flat->Add (0x0008, 0x1150, "UI", "1.2 ");
    flat->Item_End ();
    flat->Item ();
    flat->Sequence_End ();
}

// Implicit VRs and such that the length decides, and attributes of a sequence that has no item for them.
TEST (Format, ALeanListChoosesVrsAndMakesItems) {
    Flat     whole, lean;
    unsigned left;
    for (Flat *flat : {&whole, &lean}) {
        Add_Known (flat, 0x0008, 0x0060, "", "CT");
        Add_Known (flat, 0x0028, 0x0106, "", "12")->vr   = VR_RT;
        flat->Length (8, 0x0040, 0xA730, "SQ")->pos_data = 0;
        Add_Known (flat, 0x0040, 0xA040, "", "TEXT");
    }
    Log_Recorder log;
    Attribute   *first    = DICOM_Attribute_Format_Own (nullptr, &warning_settings, &whole.list.first);
    std::string  expected = Read_On (&first, FORMAT_LEFT_ALL, 0);
    Attribute   *second   = Format_Lean (&lean.list.first, &left);
    EXPECT_EQ (VR_US, second->next->vr);
    EXPECT_EQ (expected, Read_On (&second, left, 1));
}

TEST (Format, EveryFailedAllocationEndsALeanListAndLeavesTheRest) {
    for (long n = 1;; n++) {
        long before = Memory_Live ();
        bool failed;
        {
            Log_Recorder log;
            Flat         flat;
            unsigned     left;
            Add_Two_Items (&flat);
            flat.Length (4000, 0x0040, 0xA730, "SQ"); // No item follows, so one is made for what it has.
            flat.Add (0x0040, 0xA040, "CS", "TEXT");
            flat.Add (0x0040, 0xA041, "CS", "TEXT");
            Format_Pass pass;
            DICOM_Attribute_Format_Start (&pass, nullptr, &warning_settings, Syntax_Is_Right);
            Memory_Fail_At (n);
            int refused = 0;
            while (flat.list.first && !refused) {
                Attribute *record = flat.list.first;
                flat.list.first   = record->next;
                refused           = !DICOM_Attribute_Format_Next (&pass, record);
                if (!refused) continue;
                record->next    = flat.list.first;
                flat.list.first = record;
            }
            failed = Memory_Failed ();
            Memory_Fail_At (0);
            EXPECT_EQ (failed, refused) << n;
            EXPECT_EQ (failed, flat.list.first && !DICOM_Attribute_Format_Next (&pass, flat.list.first)) << n;
            Attribute *list = DICOM_Attribute_Format_End (&pass, &left);
            EXPECT_EQ (failed, list == nullptr) << n;
            EXPECT_EQ (failed ? 1 : 0, log.Count (LOG_ERROR, "memory error in ")) << n;
            SequenceCursor cursor = {};
            DICOM_Attribute_Delete (nullptr, &cursor, &list, TAG_ANY, TAG_ANY);
        }
        EXPECT_EQ (before, Memory_Live ()) << n;
        if (!failed) break;
        ASSERT_LT (n, 20);
    }
}

TEST (Format, ARecordThatCannotBeTakenOverStaysWithTheGiver) {
    for (long n = 1;; n++) {
        long before = Memory_Live ();
        bool failed;
        {
            Log_Recorder log;
            Flat         flat;
            Add_Two_Items (&flat);
            Memory_Fail_At (n);
            Attribute *list = DICOM_Attribute_Format_Own (nullptr, &warning_settings, &flat.list.first);
            failed          = Memory_Failed ();
            Memory_Fail_At (0);
            EXPECT_EQ (failed, list == nullptr) << n;
            EXPECT_EQ (failed, flat.list.first != nullptr) << n;
            EXPECT_EQ (failed ? 1 : 0, log.Count (LOG_ERROR, "memory error in ")) << n;
            SequenceCursor cursor = {};
            DICOM_Attribute_Delete (nullptr, &cursor, &list, TAG_ANY, TAG_ANY);
        }
        EXPECT_EQ (before, Memory_Live ()) << n;
        if (!failed) break;
        ASSERT_LT (n, 10);
    }
}

// --- memory ----------------------------------------------------------------

TEST (Format, EveryFailedAllocationGivesNoneAndLeaksNothing) {
    int failures = 0;
    for (long n = 1;; n++) {
        long before = Memory_Live ();
        bool failed;
        {
            Log_Recorder log;
            Flat         flat;
            Add_Two_Items (&flat);
            Memory_Fail_At (n);
            Nested nested (&flat);
            failed = Memory_Failed ();
            Memory_Fail_At (0);
            EXPECT_EQ (failed, nested.first == nullptr) << n;
            EXPECT_EQ (failed ? 1 : 0, log.Count (LOG_ERROR, "memory error in ")) << n;
        }
        EXPECT_EQ (before, Memory_Live ()) << n;
        if (!failed) break;
        failures++;
    }
    EXPECT_GE (failures, 8);
}
