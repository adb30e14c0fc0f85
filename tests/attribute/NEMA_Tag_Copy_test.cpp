#include "attribute/NEMA_Tag_Copy.h"

#include <gtest/gtest.h>

#include <chrono>

#include "attribute/NEMA_Tag_Attribute.h"
#include "attribute/value.h"
#include "tables/data_dictionary.h"
#include "tests/support/lists.h"
#include "tests/support/log_recorder.h"

static const char *const MODULE = "NEMA_Tag_Copy_test";

static const Settings warning_settings = {LOG_WARNING, LOG_REPORT, MODE_EXPLICIT, 0, nullptr, nullptr};

static int Copy_Onto (Test_List *list, Attribute *target, Attribute *source) {
    int result = DICOM_Attribute_Copy_Tag (nullptr, &list->cursor, &list->first, target, source);
    Value_Release (source);
    return result;
}

static void Describe (Attribute *attribute, const char *text) {
    attribute->description = Memory_Strdup (nullptr, HERE ("description", 0, 0), text);
}

// --- one record ------------------------------------------------------------

TEST (NemaTagCopy, EveryScalarIsTaken) {
    Test_List  list;
    Attribute *target = DICOM_Attribute_Find_Or_Insert (nullptr, &list.cursor, &list.first, 0x0010, 0x0010);
    Attribute  source = Record (0x0010, 0x0010, "PN", "Doe^John", ORIGIN_DICOM | RETIRED);
    source.mode       = MODE_EXPLICIT;
    source.vr         = VR_LO;
    source.type       = Code ('1', 'C');
    source.pos_tag    = 100;
    source.pos_data   = 108;
    source.diff_a     = 5;
    source.diff_b     = 6;
    source.definition = reinterpret_cast<const Dictionary_Entry *> (&list);
    Describe (&source, "Name");
    ASSERT_EQ (1, Copy_Onto (&list, target, &source));
    EXPECT_EQ (MODE_EXPLICIT, target->mode);
    EXPECT_EQ (VR_PN, target->vr_file);
    EXPECT_EQ (VR_LO, target->vr);
    EXPECT_EQ (Code ('1', 'C'), target->type);
    EXPECT_EQ (100u, target->pos_tag);
    EXPECT_EQ (108u, target->pos_data);
    EXPECT_EQ (5, target->diff_a);
    EXPECT_EQ (6, target->diff_b);
    EXPECT_EQ (ORIGIN_DICOM | RETIRED, target->flags);
    EXPECT_EQ (source.definition, target->definition);
    EXPECT_EQ ("Doe^John", Value (target));
    EXPECT_STREQ ("Name", target->description);
    EXPECT_NE (source.description, target->description);
    Memory_Free (source.description);
}

TEST (NemaTagCopy, ZeroFieldsOfTheSourceLeaveTheTarget) {
    Test_List  list;
    Attribute *target      = DICOM_Attribute_Find_Or_Insert (nullptr, &list.cursor, &list.first, 0x0010, 0x0010);
    target->mode           = MODE_BIG_ENDIAN;
    target->vr             = VR_PN;
    target->vr_file        = VR_PN;
    target->type           = Code ('2', ' ');
    target->pos_tag        = 7;
    target->pos_data       = 8;
    target->diff_a         = 9;
    target->diff_b         = 10;
    Dictionary_Entry known = {};
    target->definition     = &known;
    Attribute source       = Record (0x0010, 0x0010, "", "", 0);
    ASSERT_EQ (1, Copy_Onto (&list, target, &source));
    EXPECT_EQ (MODE_BIG_ENDIAN, target->mode);
    EXPECT_EQ (VR_PN, target->vr);
    EXPECT_EQ (VR_PN, target->vr_file);
    EXPECT_EQ (Code ('2', ' '), target->type);
    EXPECT_EQ (7u, target->pos_tag);
    EXPECT_EQ (8u, target->pos_data);
    EXPECT_EQ (9, target->diff_a);
    EXPECT_EQ (10, target->diff_b);
    EXPECT_EQ (&known, target->definition);
}

TEST (NemaTagCopy, AnUnknownVrBecomesUn) {
    Test_List  list;
    Attribute *target = DICOM_Attribute_Find_Or_Insert (nullptr, &list.cursor, &list.first, 0x0010, 0x0010);
    Attribute  source = Record (0x0010, 0x0010, "", "", ORIGIN_DICOM | VR_UNKNOWN);
    source.vr         = VR_CS;
    ASSERT_EQ (1, Copy_Onto (&list, target, &source));
    EXPECT_EQ (VR_UN, target->vr);
}

TEST (NemaTagCopy, ValuesAreSharedNotCopied) {
    Test_List  list;
    Attribute  source = Record (0x0010, 0x0010, "PN", "Doe^John");
    uint8_t   *bytes  = source.data;
    Attribute *target = DICOM_Attribute_Insert (nullptr, &list.cursor, &list.first, &source, 0);
    EXPECT_EQ (bytes, target->data);
    Value_Release (&source);
    EXPECT_EQ ("Doe^John", Value (target));
}

TEST (NemaTagCopy, ATargetWithFlagsAndAValueKeepsItsScalars) {
    Test_List  list;
    Attribute *target = list.Add (0x0010, 0x0010, "PN", "Old^Name");
    Describe (target, "old");
    Attribute source = Record (0x0010, 0x0010, "LO", "New^Name", ORIGIN_DICOM | RETIRED);
    Describe (&source, "new");
    ASSERT_EQ (1, Copy_Onto (&list, target, &source));
    EXPECT_EQ ("Old^Name", Value (target));
    EXPECT_EQ (VR_PN, target->vr_file);
    EXPECT_EQ (ORIGIN_DICOM, target->flags);
    EXPECT_STREQ ("old", target->description);
    Memory_Free (source.description);
}

TEST (NemaTagCopy, AnUndefinedLengthCountsAsALength) {
    Test_List  list;
    Attribute *target = list.Add (0x0010, 0x0010, "PN");
    target->length    = LENGTH_UNDEFINED;
    Attribute source  = Record (0x0010, 0x0010, "LO", "New^Name");
    ASSERT_EQ (1, Copy_Onto (&list, target, &source));
    EXPECT_EQ (LENGTH_UNDEFINED, target->length);
}

TEST (NemaTagCopy, ALengthWithoutBytesTakesTheOldBytesAway) {
    Test_List  list;
    Attribute *target = DICOM_Attribute_Find_Or_Insert (nullptr, &list.cursor, &list.first, 0x0010, 0x0010);
    Attribute  value  = Record (0x0010, 0x0010, "PN", "AB", 0);
    ASSERT_EQ (1, Copy_Onto (&list, target, &value));
    EXPECT_EQ ("AB", Value (target));
    Attribute source = Record (0x0010, 0x0010, "PN", "", 0);
    source.length    = 1000;
    ASSERT_EQ (1, Copy_Onto (&list, target, &source));
    EXPECT_EQ (1000, target->length);
    EXPECT_EQ (nullptr, target->data);
}

TEST (NemaTagCopy, AnEmptyDescriptionRemovesTheOld) {
    Test_List  list;
    Attribute *target = DICOM_Attribute_Find_Or_Insert (nullptr, &list.cursor, &list.first, 0x0010, 0x0010);
    Describe (target, "old");
    Attribute source = Record (0x0010, 0x0010);
    Describe (&source, "");
    ASSERT_EQ (1, Copy_Onto (&list, target, &source));
    EXPECT_EQ (nullptr, target->description);
    Memory_Free (source.description);
}

TEST (NemaTagCopy, TheTagIsRecordedOnTheCursor) {
    Test_List  list;
    Attribute *target    = list.Add (0x0010, 0x0010);
    list.cursor.flags[0] = 99;
    list.cursor.group[0] = 99;
    Attribute source     = Record (0x0010, 0x0010);
    ASSERT_EQ (1, Copy_Onto (&list, target, &source));
    EXPECT_EQ (0x0010, list.cursor.group[0]);
    EXPECT_EQ (0x0010, list.cursor.element[0]);
    EXPECT_EQ (0, list.cursor.flags[0]);
}

// --- appending -------------------------------------------------------------

struct Append_Case {
    const char *vr;
    const char *result; // Of "X" with "ABC" appended.
};

TEST (NemaTagCopy, AppendingFollowsTheVr) {
    static const Append_Case cases[] = {
        {"AE", "X\\ABC "}, {"AS", "X\\ABC "}, {"CS", "X\\ABC "}, {"DS", "X\\ABC "}, {"IS", "X\\ABC "},
        {"LO", "X\\ABC "}, {"PN", "X\\ABC "}, {"SH", "X\\ABC "}, {"LT", "X\nABC "}, {"ST", "X\nABC "},
        {"UT", "X\nABC "}, {"AT", "XABC"},    {"FD", "XABC"},    {"FL", "XABC"},    {"OB", "XABC"},
        {"OF", "XABC"},    {"OW", "XABC"},    {"OX", "XABC"},    {"SL", "XABC"},    {"SS", "XABC"},
        {"UL", "XABC"},    {"UN", "XABC"},    {"US", "XABC"},    {"DA", "X"},       {"DT", "X"},
        {"SQ", "X"},       {"TM", "X"},       {"UI", "X"},       {"UC", "X"},       {"", "X"}};
    for (const Append_Case &one : cases) {
        Log_Recorder log;
        Test_List    list (&warning_settings);
        Attribute   *target = list.Add (0x0018, 0x0022, "CS", "X");
        Attribute    source = Record (0x0018, 0x0022, one.vr, "ABC", ORIGIN_DICOM | APPEND);
        ASSERT_EQ (1, Copy_Onto (&list, target, &source));
        EXPECT_EQ (one.result, Value (target)) << one.vr;
        bool warns = std::string ("DA DT SQ TM UI").find (one.vr) != std::string::npos && *one.vr;
        EXPECT_EQ (warns, log.Has (LOG_WARNING, "\xF1\x05WARNING:\x02 Unable to append to tag (0018,0022)")) << one.vr;
        EXPECT_EQ (warns ? 1 : 0, log.Count (LOG_WARNING)) << one.vr;
    }
}

TEST (NemaTagCopy, TheDictionaryVrDecidesWhenTheStreamHasNone) {
    Test_List  list;
    Attribute *target = list.Add (0x0018, 0x0022, "CS", "X");
    Attribute  source = Record (0x0018, 0x0022, "", "ABC", APPEND);
    source.vr         = VR_CS;
    ASSERT_EQ (1, Copy_Onto (&list, target, &source));
    EXPECT_EQ ("X\\ABC ", Value (target));
    EXPECT_EQ (6, target->length);
}

TEST (NemaTagCopy, AppendingToNothingReplaces) {
    Test_List  list;
    Attribute *target = list.Add (0x0018, 0x0022, "CS");
    Attribute  source = Record (0x0018, 0x0022, "CS", "ABC", APPEND);
    ASSERT_EQ (1, Copy_Onto (&list, target, &source));
    EXPECT_EQ ("ABC", Value (target));
}

TEST (NemaTagCopy, AppendingDoesNotTouchWhoSharesTheOldValue) {
    Test_List  list;
    Attribute *target = list.Add (0x0018, 0x0022, "CS", "X");
    Attribute  keeper = {};
    keeper.length     = 1;
    Value_Share (&keeper, target);
    Attribute source = Record (0x0018, 0x0022, "CS", "ABC", APPEND);
    ASSERT_EQ (1, Copy_Onto (&list, target, &source));
    EXPECT_EQ ("X", Value (&keeper));
    Value_Release (&keeper);
}

TEST (NemaTagCopy, AppendingALengthWithoutBytesGrowsByZeros) {
    Test_List  list;
    Attribute *target = list.Add (0x0018, 0x0022, "CS", "X");
    Attribute  source = Record (0x0018, 0x0022, "CS", "", APPEND);
    source.length     = 3;
    ASSERT_EQ (1, Copy_Onto (&list, target, &source));
    EXPECT_EQ (std::string ("X\0\0\0\0\0", 6), Value (target));
}

TEST (NemaTagCopy, AppendingToALengthWithoutBytesGivesZerosFirst) {
    Test_List  list;
    Attribute *target = list.Add (0x0018, 0x0022, "OB");
    target->length    = 2;
    Attribute source  = Record (0x0018, 0x0022, "OB", "AB", APPEND);
    ASSERT_EQ (1, Copy_Onto (&list, target, &source));
    EXPECT_EQ (std::string ("\0\0AB", 4), Value (target));
}

TEST (NemaTagCopy, LengthsThatCannotBeAddedAreRefused) {
    for (int32_t length : {LENGTH_UNDEFINED, INT32_MAX}) {
        Log_Recorder log;
        Test_List    list (&warning_settings);
        Attribute   *target = list.Add (0x0018, 0x0022, "OB", "X");
        Attribute    source = Record (0x0018, 0x0022, "OB", "", APPEND);
        source.length       = length;
        ASSERT_EQ (1, Copy_Onto (&list, target, &source));
        EXPECT_EQ ("X", Value (target));
        EXPECT_EQ (1, log.Count (LOG_WARNING, "Unable to append to tag (0018,0022)"));
    }
}

// --- items -----------------------------------------------------------------

static void Fill_Items (Test_List *list, int count, const char *value) {
    list->Add (0x0040, 0xA730, "SQ");
    list->Open (0x0040, 0xA730);
    for (int i = 0; i < count; i++) {
        list->Item ();
        list->Add (0x0008, 0x0100, "SH", value);
    }
    list->Close ();
}

static int Copy_List (Test_List *target, Test_List *source) {
    target->Reset ();
    return DICOM_Attribute_Copy (nullptr, &target->cursor, &target->first, source->first);
}

TEST (NemaTagCopy, AListIsCopiedWithItsItems) {
    Test_List source, target;
    source.Add (0x0008, 0x0016, "UI", "1.2 ");
    Fill_Items (&source, 2, "A ");
    ASSERT_EQ (1, Copy_List (&target, &source));
    EXPECT_EQ (Outline (source.first), Outline (target.first));
    EXPECT_EQ ("A ", Value (target.first->next->item[1]));
    EXPECT_EQ (1, target.first->next->item[1]->level);
    EXPECT_EQ (0, target.cursor.depth);
}

TEST (NemaTagCopy, CopyingASecondListMergesItByTag) {
    Test_List a, b, merged;
    a.Add (0x0008, 0x0016);
    a.Add (0x0020, 0x0010);
    Fill_Items (&a, 1, "A ");
    b.Add (0x0008, 0x0018);
    b.Add (0x0020, 0x0010);
    Fill_Items (&b, 3, "B ");
    ASSERT_EQ (1, Copy_List (&merged, &a));
    ASSERT_EQ (1, Copy_List (&merged, &b));
    EXPECT_EQ ("(0008,0016) (0008,0018) (0020,0010) (0040,A730)[(0008,0100)][(0008,0100)][(0008,0100)]",
               Outline (merged.first));
    EXPECT_EQ ("A ", Value (merged.first->next->next->next->item[0]));
    EXPECT_EQ ("B ", Value (merged.first->next->next->next->item[1]));
}

TEST (NemaTagCopy, NoListIsASuccess) {
    Test_List target;
    EXPECT_EQ (1, DICOM_Attribute_Copy (nullptr, &target.cursor, &target.first, nullptr));
    EXPECT_EQ (nullptr, target.first);
}

TEST (NemaTagCopy, AnAppendingSourceAddsItsItemsBehind) {
    Test_List source, target;
    Fill_Items (&source, 2, "B ");
    source.first->flags |= APPEND;
    Fill_Items (&target, 1, "A ");
    Log_Recorder log (5);
    ASSERT_EQ (1, Copy_List (&target, &source));
    EXPECT_EQ (3, log.Count (LOG_TRACE5, "-> root->Item_Number[1] = ")); // Each start has its stop.
    EXPECT_EQ (3, log.Count (LOG_TRACE5, "-> Item_Number[1] = 3") + log.Count (LOG_TRACE5, "-> Item_Number[1] = 2"));
    ASSERT_EQ (3, target.first->nb_item);
    EXPECT_EQ ("A ", Value (target.first->item[0]));
    EXPECT_EQ ("B ", Value (target.first->item[1]));
    EXPECT_EQ ("B ", Value (target.first->item[2]));
    EXPECT_EQ (0, target.cursor.depth);
}

TEST (NemaTagCopy, AForcedTargetTakesItemsOnly) {
    Test_List source, target;
    Fill_Items (&source, 2, "B ");
    source.first->type = Code ('1', ' ');
    target.Add (0x0040, 0xA730, "SQ");
    target.first->flags = FORCED;
    ASSERT_EQ (1, Copy_List (&target, &source));
    EXPECT_EQ (FORCED, target.first->flags);
    EXPECT_EQ (0, target.first->type);
    EXPECT_EQ ("(0040,A730)[(0008,0100)][(0008,0100)]", Outline (target.first));
}

TEST (NemaTagCopy, AForcedSourceGivesEmptyItems) {
    Test_List source, target;
    Fill_Items (&source, 2, "B ");
    source.first->flags = FORCED;
    target.Add (0x0040, 0xA730, "SQ");
    ASSERT_EQ (1, Copy_List (&target, &source));
    EXPECT_EQ ("(0040,A730)[][]", Outline (target.first));
}

TEST (NemaTagCopy, ItemsAreCopiedUntilTheFirstEmptySlot) {
    Test_List source, target;
    source.Add (0x0040, 0xA730, "SQ");
    source.Open (0x0040, 0xA730);
    source.Item ();
    source.Add (0x0008, 0x0100);
    source.Item ();
    source.Item ();
    source.Add (0x0008, 0x0102);
    ASSERT_EQ (1, Copy_List (&target, &source));
    EXPECT_EQ ("(0040,A730)[(0008,0100)][][]", Outline (target.first));
}

TEST (NemaTagCopy, TracesNameEachRecord) {
    Log_Recorder log (5);
    Test_List    source, target;
    source.Add (0x0008, 0x0016);
    log.Clear ();
    Copy_List (&target, &source);
    EXPECT_EQ (1, log.Count (LOG_TRACE5, "in DICOM_Attribute_Copy()"));
    EXPECT_EQ ("DICOM_Attribute_Copy (0008,0016)\nin DICOM_Attribute_Copy_Tag(0008,0016)\n", log.Text (LOG_TRACE4));
}

// --- memory ----------------------------------------------------------------

TEST (NemaTagCopy, EveryFailedAllocationOfACopyIsReported) {
    int failures = 0;
    for (long n = 1;; n++) {
        long before = Memory_Live ();
        bool failed;
        {
            Log_Recorder log;
            Test_List    source (&warning_settings), target (&warning_settings);
            source.Add (0x0008, 0x0016, "UI", "1.2 ");
            Describe (source.first, "SOP Class UID");
            Fill_Items (&source, 2, "A ");
            Memory_Fail_At (n);
            int result = Copy_List (&target, &source);
            failed     = Memory_Failed ();
            Memory_Fail_At (0);
            EXPECT_EQ (!failed, result) << n;
            EXPECT_EQ (failed ? 1 : 0, log.Count (LOG_ERROR)) << n;
            EXPECT_EQ (failed, log.Contains ("Warning: Failed in DICOM_Attribute_Copy(")) << n;
            EXPECT_EQ (0, target.cursor.depth) << n;
            EXPECT_EQ (1, Copy_List (&target, &source)) << n;
            EXPECT_EQ (Outline (source.first), Outline (target.first)) << n;
        }
        EXPECT_EQ (before, Memory_Live ()) << n;
        if (!failed) break;
        failures++;
    }
    EXPECT_GE (failures, 6);
}

TEST (NemaTagCopy, FailuresNameWhatCouldNotGrow) {
    Log_Recorder log;
    Test_List    list (&warning_settings);
    Attribute   *target = list.Add (0x0018, 0x0022, "CS", "X");
    Attribute    source = Record (0x0018, 0x0022, "CS", "ABC", APPEND);
    Memory_Fail_At (1);
    EXPECT_EQ (0, Copy_Onto (&list, target, &source));
    EXPECT_TRUE (log.Contains ("of NEMA_Tag_Copy \nmemory error in realloc (var=target->data, dim=6x1)"));
    EXPECT_EQ ("X", Value (target));

    Attribute described = Record (0x0018, 0x0023);
    Describe (&described, "text");
    Memory_Fail_At (2);
    EXPECT_EQ (nullptr, DICOM_Attribute_Insert (nullptr, &list.cursor, &list.first, &described, 0));
    EXPECT_TRUE (log.Contains ("of NEMA_Tag_Copy \nmemory error in strdup (var=target->description)"));
    EXPECT_TRUE (log.Has (LOG_WARNING, "    \xF1\x05WARNING:\x02 Failed in DICOM_Attribute_Copy(0018,0023)"));
    Memory_Free (described.description);

    Test_List items, empty (&warning_settings);
    Fill_Items (&items, 2, "A ");
    Memory_Fail_At (2);
    EXPECT_EQ (0, Copy_List (&empty, &items));
    EXPECT_TRUE (log.Contains ("of NEMA_Tag_Copy \nmemory error in realloc (var=target->item, dim=2x8)"));
}

// The second file of a comparison finds each of its tags in the merged list.
TEST (NemaTagCopy, TagsThatAreThereAreFoundInLinearTime) {
    Test_List source, merged;
    for (int i = 0; i < 60000; i++) {
        source.Add (0x0010, static_cast<uint16_t> (i));
        merged.Add (0x0010, static_cast<uint16_t> (i));
    }
    merged.Reset ();
    auto start = std::chrono::steady_clock::now ();
    EXPECT_EQ (1, DICOM_Attribute_Copy (nullptr, &merged.cursor, &merged.first, source.first));
    EXPECT_GT (std::chrono::milliseconds (1500), std::chrono::steady_clock::now () - start);
    int count = 0;
    for (const Attribute *record = merged.first; record; record = record->next) count++;
    EXPECT_EQ (60000, count);
}

// The hint that the search leaves stands at the first of several records with one tag.
TEST (NemaTagCopy, SearchBehindEqualTagsFindsTheFirstOne) {
    Test_List  list;
    Attribute *first = list.Add (0x0010, 0x0010), *second = list.Add (0x0010, 0x0020);
    list.Add (0x0010, 0x0020);
    list.Add (0x0010, 0x0030);
    list.Reset ();
    DICOM_Attribute_Find_Or_Insert (nullptr, &list.cursor, &list.first, 0x0010, 0x0020);
    EXPECT_EQ (second, DICOM_Attribute_Get (nullptr, &list.cursor, list.first, 0x0010, 0x0020, 0));
    DICOM_Attribute_Find_Or_Insert (nullptr, &list.cursor, &list.first, 0x0010, 0x0030);
    EXPECT_EQ (second, DICOM_Attribute_Get (nullptr, &list.cursor, list.first, 0x0010, 0x0020, 0));
    EXPECT_EQ (first, DICOM_Attribute_Get (nullptr, &list.cursor, list.first, 0x0010, 0x0010, 0));
}
