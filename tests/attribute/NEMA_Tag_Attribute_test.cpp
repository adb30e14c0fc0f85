#include "attribute/NEMA_Tag_Attribute.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include "attribute/sort.h"
#include "attribute/value.h"
#include "tests/support/lists.h"
#include "tests/support/log_recorder.h"

static const Settings warning_settings = {LOG_WARNING, LOG_REPORT, MODE_EXPLICIT, 0, nullptr, nullptr};

static Attribute *Get (Test_List *list, uint16_t group, uint16_t element) {
    return DICOM_Attribute_Get (nullptr, &list->cursor, list->first, group, element, 0);
}

static Attribute *Find (Test_List *list, uint16_t group, uint16_t element) {
    return DICOM_Attribute_Find_Or_Insert (nullptr, &list->cursor, &list->first, group, element);
}

// --- finding ---------------------------------------------------------------

TEST (NemaTagAttribute, WildcardsFindTheFirstRecord) {
    Test_List list;
    EXPECT_EQ (nullptr, Get (&list, TAG_ANY, TAG_ANY));
    Attribute *first = list.Add (0x0008, 0x0016);
    Attribute *name  = list.Add (0x0010, 0x0010);
    list.Add (0x0010, 0x0020);
    EXPECT_EQ (first, Get (&list, TAG_ANY, TAG_ANY));
    EXPECT_EQ (name, Get (&list, 0x0010, TAG_ANY));
    EXPECT_EQ (name, Get (&list, TAG_ANY, 0x0010));
    EXPECT_EQ (nullptr, Get (&list, 0x0012, TAG_ANY));
}

// Tags as a file may hold them.
TEST (NemaTagAttribute, TheTagOfARecordMatchesNoOther) {
    Test_List list;
    EXPECT_EQ (nullptr, DICOM_Attribute_Get_Exact (nullptr, &list.cursor, nullptr, TAG_ANY, TAG_ANY));
    list.Add (0x0008, 0x0016);
    list.Add (0x0011, 0x0010);
    for (auto &tag : {std::pair<uint16_t, uint16_t> {0x0011, 0xFFFF}, {0xFFFF, 0x0010}, {0xFFFF, 0xFFFF}}) {
        EXPECT_EQ (nullptr, DICOM_Attribute_Get_Exact (nullptr, &list.cursor, list.first, tag.first, tag.second));
        Attribute *added = list.Add (tag.first, tag.second);
        EXPECT_EQ (added, DICOM_Attribute_Get_Exact (nullptr, &list.cursor, list.first, tag.first, tag.second));
    }
}

TEST (NemaTagAttribute, OfEqualTagsTheFirstIsFoundWhateverWasSearchedBefore) {
    Test_List  list;
    Attribute *one = list.Add (0x0008, 0x0016);
    Attribute *two = list.Add (0x0010, 0x0010);
    list.Add (0x0010, 0x0010);
    Attribute *last = list.Add (0x0020, 0x0010);
    EXPECT_EQ (last, Get (&list, 0x0020, 0x0010));
    EXPECT_EQ (two, Get (&list, 0x0010, 0x0010));
    EXPECT_EQ (nullptr, Get (&list, 0x0010, 0x0011));
    EXPECT_EQ (two, Get (&list, 0x0010, 0x0010));
    EXPECT_EQ (one, Get (&list, 0x0008, 0x0016));
    EXPECT_EQ (nullptr, Get (&list, 0x0030, 0x0000));
    EXPECT_EQ (last, Get (&list, 0x0020, 0x0010));
}

TEST (NemaTagAttribute, AnUnorderedListIsSearchedWhole) {
    Test_List  list;
    Attribute *high = list.Add (0x0020, 0x0010);
    Attribute *low  = list.Add (0x0008, 0x0016);
    Attribute *mid  = list.Add (0x0010, 0x0010);
    EXPECT_EQ (mid, Get (&list, 0x0010, 0x0010));
    EXPECT_EQ (low, Get (&list, 0x0008, 0x0016));
    EXPECT_EQ (high, Get (&list, 0x0020, 0x0010));
    EXPECT_EQ (nullptr, Get (&list, 0x0009, 0x0010));
}

TEST (NemaTagAttribute, GettingInsideAMissingSequenceCreatesIt) {
    Test_List list;
    list.Add (0x0008, 0x0016);
    DICOM_Attribute_Sequence_Start (nullptr, &list.cursor, 0x0040, 0xA730, PRIVATE, 0);
    for (int i = 0; i < 3; i++) list.Item ();
    EXPECT_EQ (nullptr, Get (&list, 0x0008, 0x0100));
    list.Reset ();
    Attribute *sequence = Get (&list, 0x0040, 0xA730);
    ASSERT_NE (nullptr, sequence);
    EXPECT_EQ (VR_SQ, sequence->vr_file);
    EXPECT_EQ (VR_SQ, sequence->vr);
    EXPECT_EQ (PRIVATE, sequence->flags);
    EXPECT_EQ (0, sequence->level);
    EXPECT_EQ (1, sequence->nb_item);
    EXPECT_EQ (sequence, list.first->last);
}

TEST (NemaTagAttribute, GettingInsideItemThreeGrowsTheItems) {
    Test_List list;
    list.Add (0x0040, 0xA730, "SQ");
    list.Open (0x0040, 0xA730);
    list.Item ();
    list.Add (0x0008, 0x0100, "SH", "A ");
    list.Item ();
    list.Item ();
    EXPECT_EQ (nullptr, Get (&list, 0x0008, 0x0100));
    EXPECT_EQ ("(0040,A730)[(0008,0100)][][]", Outline (list.first));
}

TEST (NemaTagAttribute, AnItemIndexBelowZeroIsTheFirstItem) {
    Test_List list;
    list.Add (0x0040, 0xA730, "SQ");
    list.Open (0x0040, 0xA730);
    Attribute *inside = list.Add (0x0008, 0x0100, "SH", "A "); // no item was started
    EXPECT_EQ (inside, list.first->item[0]);
    EXPECT_EQ (inside, Get (&list, 0x0008, 0x0100));
}

TEST (NemaTagAttribute, TheSlotOfAListThatIsDeepEnoughIsNone) {
    Test_List list;
    list.Add (0x0008, 0x0016);
    EXPECT_EQ (nullptr, DICOM_Attribute_Item_Slot (nullptr, &list.cursor, list.first, 0));
}

TEST (NemaTagAttribute, ItemsOfASecondSequenceOfTheSameTagJoinTheFirst) {
    Test_List list;
    list.Add (0x0040, 0xA730, "SQ");
    list.Add (0x0040, 0xA730, "SQ");
    list.Open (0x0040, 0xA730);
    list.Item ();
    list.Add (0x0008, 0x0100);
    EXPECT_EQ ("(0040,A730)[(0008,0100)] (0040,A730)", Outline (list.first));
}

TEST (NemaTagAttribute, PatternsMatchUpperCaseDigits) {
    EXPECT_EQ (1, DICOM_Attribute_Tag_Match ("0008", "00*", 0x0008, 0x0012));
    EXPECT_EQ (1, DICOM_Attribute_Tag_Match ("7FE0", "0?10", 0x7FE0, 0x0010));
    EXPECT_EQ (0, DICOM_Attribute_Tag_Match ("7fe0", "0010", 0x7FE0, 0x0010));
    EXPECT_EQ (0, DICOM_Attribute_Tag_Match ("0008", "0012", 0x0008, 0x0013));
    EXPECT_EQ (0, DICOM_Attribute_Tag_Match (nullptr, "*", 0x0008, 0x0012));
    EXPECT_EQ (0, DICOM_Attribute_Tag_Match ("*", nullptr, 0x0008, 0x0012));
}

// --- inserting -------------------------------------------------------------

TEST (NemaTagAttribute, InsertAppendsInReadingOrder) {
    Test_List  list;
    Attribute *one = list.Add (0x0010, 0x0010, "PN", "Doe^John");
    Attribute *two = list.Add (0x0008, 0x0016, "UI", "1.2 ");
    EXPECT_EQ ("(0010,0010) (0008,0016)", Outline (list.first));
    EXPECT_EQ (one, list.first);
    EXPECT_EQ (two, list.first->last);
    EXPECT_EQ ("Doe^John", Value (one));
    EXPECT_EQ (VR_PN, one->vr_file);
    EXPECT_EQ (ORIGIN_DICOM, one->flags);
    EXPECT_EQ (0, one->level);
    EXPECT_EQ (nullptr, two->next);
}

TEST (NemaTagAttribute, InsertGoesOnAtTheTrueEndWhenLastDoesNotNameIt) {
    Test_List list;
    list.Add (0x0020, 0x0010);
    list.Add (0x0028, 0x0010);
    ASSERT_NE (nullptr, Find (&list, 0x0008, 0x0016)); // becomes the first record and its own last
    EXPECT_EQ (list.first, list.first->last);
    list.Add (0x7FE0, 0x0010);
    EXPECT_EQ ("(0008,0016) (0020,0010) (0028,0010) (7FE0,0010)", Outline (list.first));
    ASSERT_NE (nullptr, Find (&list, 0x0020, 0x0011)); // last names a record in the middle
    list.Add (0x7FE1, 0x0010);
    EXPECT_EQ ("(0008,0016) (0020,0010) (0020,0011) (0028,0010) (7FE0,0010) (7FE1,0010)", Outline (list.first));
}

TEST (NemaTagAttribute, ARecordWithoutLastIsWalkedToItsEnd) {
    Test_List list;
    list.Add (0x0008, 0x0016);
    list.Add (0x0008, 0x0018);
    list.first->last = nullptr;
    list.Add (0x0010, 0x0010);
    EXPECT_EQ ("(0008,0016) (0008,0018) (0010,0010)", Outline (list.first));
}

TEST (NemaTagAttribute, InsertIntoAnEmptyDeepPlaceCreatesTheSequencesOnTheWay) {
    Test_List list;
    list.Open (0x0040, 0xA730);
    list.Item ();
    list.Open (0x0040, 0xA043);
    list.Item ();
    Attribute *deep = list.Add (0x0008, 0x0100, "SH", "A ");
    EXPECT_EQ ("(0040,A730)[(0040,A043)[(0008,0100)]]", Outline (list.first));
    EXPECT_EQ (2, deep->level);
    EXPECT_EQ (list.first, list.first->last);
    EXPECT_EQ (1, list.first->item[0]->level);
    EXPECT_EQ (VR_SQ, list.first->item[0]->vr);
}

TEST (NemaTagAttribute, TracesNameTheTagAtEntryAndAfterEachStep) {
    Test_List list;
    list.Add (0x0040, 0xA730, "SQ");
    list.Open (0x0040, 0xA730);
    list.Item ();
    Log_Recorder log (5);
    list.Add (0x0008, 0x0100, "SH", "ABCD");
    EXPECT_EQ (2, log.Count (LOG_TRACE5, "in DICOM_Attribute_Insert(0008,0100) SH 4 bytes"));
    EXPECT_EQ (1, log.Count (LOG_TRACE4, "in DICOM_Attribute_Copy_Tag(0008,0100)"));
    log.Clear ();
    Get (&list, 0x0008, 0x0100);
    EXPECT_EQ (2, log.Count (LOG_TRACE5, "in DICOM_Attribute_Get(0008,0100)"));
    EXPECT_EQ (1, log.Count (LOG_TRACE5, "in DICOM_Attribute_Sequence_End(depth:1)"));
    log.Clear ();
    DICOM_Attribute_Delete (nullptr, &list.cursor, &list.first, 0x0008, 0x0100);
    EXPECT_EQ (2, log.Count (LOG_TRACE5, "in DICOM_Attribute_Delete(0008,0100)"));
    EXPECT_EQ (1, log.Count (LOG_TRACE5, "in DICOM_Attribute_Free(0008,0100)"));
    list.Reset ();
    log.Clear ();
    list.Add (0x0050, 0x0004);
    EXPECT_EQ (1, log.Count (LOG_TRACE5, "in DICOM_Attribute_Insert(0050,0004) -- 0 bytes"));
}

// --- ordered placement -----------------------------------------------------

TEST (NemaTagAttribute, FindOrInsertKeepsTagOrder) {
    Test_List list;
    list.Add (0x0008, 0x0016);
    list.Add (0x0008, 0x0030);
    Attribute *middle = Find (&list, 0x0008, 0x0020);
    ASSERT_NE (nullptr, middle);
    EXPECT_EQ ("(0008,0016) (0008,0020) (0008,0030)", Outline (list.first));
    EXPECT_EQ (middle, list.first->last);
    EXPECT_EQ (middle, Find (&list, 0x0008, 0x0020));
    EXPECT_EQ ("(0008,0016) (0008,0020) (0008,0030)", Outline (list.first));
    EXPECT_EQ (0, middle->flags + middle->vr + middle->length);
}

TEST (NemaTagAttribute, FindOrInsertMayBecomeTheFirstRecord) {
    Test_List list;
    list.Add (0x0010, 0x0010);
    Attribute *front = Find (&list, 0x0008, 0x0016);
    EXPECT_EQ (front, list.first);
    EXPECT_EQ (front, front->last);
    EXPECT_EQ ("(0008,0016) (0010,0010)", Outline (list.first));
}

TEST (NemaTagAttribute, FindOrInsertIntoNothingAndIntoAnEmptyItem) {
    Test_List list;
    ASSERT_NE (nullptr, Find (&list, 0x0040, 0xA730));
    EXPECT_EQ (list.first, list.first->last);
    list.Open (0x0040, 0xA730);
    list.Item ();
    Attribute *inside = Find (&list, 0x0008, 0x0100);
    ASSERT_NE (nullptr, inside);
    EXPECT_EQ (1, inside->level);
    EXPECT_EQ ("(0040,A730)[(0008,0100)]", Outline (list.first));
}

TEST (NemaTagAttribute, FindOrInsertReturnsTheLastOfEqualTags) {
    Test_List list;
    list.Add (0x0008, 0x0016);
    list.Add (0x0008, 0x0016);
    Attribute *last = list.Add (0x0008, 0x0016);
    list.Add (0x0010, 0x0010);
    EXPECT_EQ (last, Find (&list, 0x0008, 0x0016));
    EXPECT_EQ (last, Find (&list, 0x0008, 0x0016));
}

TEST (NemaTagAttribute, FindOrInsertWalksAnUnorderedListFromItsStart) {
    Test_List list;
    list.Add (0x0008, 0x0016);
    list.Add (0x0020, 0x0010);
    Attribute *late = list.Add (0x0010, 0x0010);
    EXPECT_EQ (late, Get (&list, 0x0010, 0x0010));
    Attribute *early = Find (&list, 0x0010, 0x0010); // stops before (0020,0010)
    EXPECT_NE (late, early);
    EXPECT_EQ ("(0008,0016) (0010,0010) (0020,0010) (0010,0010)", Outline (list.first));
    EXPECT_EQ (early, Get (&list, 0x0010, 0x0010));
}

TEST (NemaTagAttribute, AnUnorderedListStaysSoWhateverBecomesItsFirstRecord) {
    Test_List list;
    list.Add (0x0008, 0x0016);
    Attribute *high = list.Add (0x0030, 0x0010);
    Attribute *low  = list.Add (0x0010, 0x0010);
    DICOM_Attribute_Delete (nullptr, &list.cursor, &list.first, 0x0008, 0x0016);
    EXPECT_EQ (high, list.first);
    EXPECT_EQ (low, Get (&list, 0x0010, 0x0010));
    EXPECT_EQ (list.first, Find (&list, 0x0008, 0x0018));
    EXPECT_EQ ("(0008,0018) (0030,0010) (0010,0010)", Outline (list.first));
    EXPECT_EQ (low, Get (&list, 0x0010, 0x0010));
}

TEST (NemaTagAttribute, OfEqualTagsTheFirstIsFoundAfterASecondWasInserted) {
    Test_List  list;
    Attribute *first = list.Add (0x0030, 0x0010);
    list.Add (0x0020, 0x0010);
    list.Add (0x0050, 0x0010);
    EXPECT_NE (first, Find (&list, 0x0030, 0x0010)); // The walk ends behind (0020,0010).
    EXPECT_EQ ("(0030,0010) (0020,0010) (0030,0010) (0050,0010)", Outline (list.first));
    EXPECT_EQ (first, Get (&list, 0x0030, 0x0010));
}

TEST (NemaTagAttribute, FindOrInsertRecordsTheTagOnTheCursor) {
    Test_List list;
    DICOM_Attribute_Sequence_Set (nullptr, &list.cursor, 0, 1, 1, 1);
    Find (&list, 0x0008, 0x0016);
    EXPECT_EQ (0x0008, list.cursor.group[0]);
    EXPECT_EQ (0x0016, list.cursor.element[0]);
    EXPECT_EQ (0, list.cursor.flags[0]);
}

TEST (NemaTagAttribute, OrderedPlacementInAnyOrderGivesASortedList) {
    Test_List list;
    uint32_t  seed = 12345;
    for (int i = 0; i < 500; i++) {
        seed = seed * 1664525 + 1013904223;
        ASSERT_NE (nullptr,
                   Find (&list, static_cast<uint16_t> (seed >> 28), static_cast<uint16_t> (seed >> 20 & 0x3F)));
        if (i % 7 == 0) Get (&list, static_cast<uint16_t> (seed >> 27 & 0xF), 0x10);
    }
    for (Attribute *record = list.first; record->next; record = record->next)
        ASSERT_LT (Tag_Compare (record->group, record->element, record->next->group, record->next->element), 0);
}

// --- long lists ------------------------------------------------------------

// What the store does with one list, done by walking from its start: the rule that every short cut has to agree with.
struct Plain_List {
    std::vector<std::pair<uint32_t, const Attribute *>> records;

    const Attribute *Get (uint32_t tag) const {
        for (const auto &record : records)
            if (record.first == tag) return record.second;
        return nullptr;
    }
    // The place of the record with the tag, or, with found 0, the one where a new one belongs.
    size_t Place (uint32_t tag, int *found) const {
        size_t at = 0;
        *found    = 0;
        if (records.empty ()) return 0;
        while (at + 1 < records.size () && records[at + 1].first <= tag) at++;
        *found = records[at].first == tag;
        return *found || (at == 0 && records[0].first > tag) ? at : at + 1;
    }
    void Delete (uint32_t tag) {
        for (size_t i = records.size (); i-- > 0;)
            if (records[i].first == tag) records.erase (records.begin () + static_cast<std::ptrdiff_t> (i));
    }
};

struct Twins {
    Test_List  list;
    Plain_List plain;

    void Append (uint32_t tag) {
        Attribute *record = list.Add (static_cast<uint16_t> (tag >> 16), static_cast<uint16_t> (tag));
        plain.records.push_back ({tag, record});
    }
    void Find_Or_Insert (uint32_t tag) {
        int        found;
        size_t     place  = plain.Place (tag, &found);
        Attribute *record = Find (&list, static_cast<uint16_t> (tag >> 16), static_cast<uint16_t> (tag));
        ASSERT_NE (nullptr, record);
        if (found) ASSERT_EQ (plain.records[place].second, record) << std::hex << tag;
        else plain.records.insert (plain.records.begin () + static_cast<std::ptrdiff_t> (place), {tag, record});
    }
    void Get_Both (uint32_t tag) {
        ASSERT_EQ (plain.Get (tag), Get (&list, static_cast<uint16_t> (tag >> 16), static_cast<uint16_t> (tag)))
            << std::hex << tag;
    }
    void Delete (uint32_t tag) {
        plain.Delete (tag);
        DICOM_Attribute_Delete (nullptr, &list.cursor, &list.first, static_cast<uint16_t> (tag >> 16),
                                static_cast<uint16_t> (tag));
    }
    void Check_Order () const {
        const Attribute *record = list.first;
        for (const auto &expected : plain.records) {
            ASSERT_EQ (expected.second, record);
            record = record->next;
        }
        ASSERT_EQ (nullptr, record);
    }
};

static uint32_t Next_Random (uint32_t *seed, uint32_t limit) {
    *seed = *seed * 1664525 + 1013904223;
    return (*seed >> 8) % limit;
}

// Appends now and then, so that the list is in order for a while and then no longer.
static void Do_Anything (Twins *twins, uint32_t seed, int steps, uint32_t tags, uint32_t appends) {
    for (int step = 0; step < steps; step++) {
        uint32_t tag    = 0x00100000 + Next_Random (&seed, tags) * 16;
        uint32_t choice = Next_Random (&seed, 1000);
        if (choice < appends) twins->Append (tag);
        else if (choice < 500) twins->Find_Or_Insert (tag);
        else if (choice < 998) twins->Get_Both (tag);
        else twins->Delete (tag);
        if (testing::Test::HasFatalFailure ()) return;
    }
    twins->Check_Order ();
}

TEST (NemaTagAttribute, ShortCutsFindAndPlaceWhatTheWalkFromTheStartDoes) {
    for (uint32_t appends : {0u, 1u, 20u, 300u}) {
        for (uint32_t tags : {300u, 5000u, 1000000u}) {
            SCOPED_TRACE (std::to_string (appends) + " " + std::to_string (tags));
            Twins twins;
            Do_Anything (&twins, appends * 7 + tags, 4000, tags, appends);
            if (HasFatalFailure ()) return;
        }
    }
}

TEST (NemaTagAttribute, ALongListSortedAnewIsFoundAnew) {
    Twins twins;
    for (uint32_t i = 0; i < 3000; i++) twins.Append (0x00100000 + (3000 - i) * 16);
    for (uint32_t i = 0; i < 3000; i += 7) twins.Get_Both (0x00100000 + i * 16);
    EXPECT_NE (nullptr, twins.list.first->index);
    ASSERT_EQ (1, DICOM_Attribute_Sort (nullptr, &twins.list.cursor, &twins.list.first));
    EXPECT_EQ (nullptr, twins.list.first->index);
    std::sort (twins.plain.records.begin (), twins.plain.records.end ());
    twins.Check_Order ();
    Do_Anything (&twins, 5, 3000, 3000, 1);
}

TEST (NemaTagAttribute, WithoutMemoryForAShortCutSearchesGoOn) {
    for (int descending = 0; descending < 2; descending++) {
        long before = Memory_Live ();
        for (long n = 1;; n++) {
            Log_Recorder log;
            Twins        twins;
            for (uint32_t i = 0; i < 2000; i++) twins.Append (0x00100000 + (descending ? 2000 - i : i) * 16);
            Memory_Fail_At (n);
            for (uint32_t i = 1; i < 60; i++) twins.Get_Both (0x00100000 + (i * 7919 % 2000) * 16);
            int failed = Memory_Failed ();
            Memory_Fail_At (0);
            EXPECT_EQ (failed, log.Text (LOG_ERROR).find ("memory error in ") != std::string::npos);
            for (uint32_t i = 1; i < 500; i++) twins.Get_Both (0x00100000 + (i * 7919 % 2000) * 16);
            EXPECT_NE (nullptr, twins.list.first->index);
            if (failed) continue;
            EXPECT_GT (n, 2);
            break;
        }
        EXPECT_EQ (before, Memory_Live ());
    }
}

// A walk from the start for each would take minutes.
TEST (NemaTagAttribute, TagsInAnyOrderCostLinearTime) {
    static const uint32_t COUNT = 300000;
    auto                  start = std::chrono::steady_clock::now ();
    Test_List             descending, shuffled;
    for (uint32_t i = COUNT; i > 0; i--)
        descending.Add (static_cast<uint16_t> (i >> 8), static_cast<uint16_t> (i << 8));
    for (uint32_t i = 0; i < COUNT; i++) {
        uint32_t tag = static_cast<uint32_t> (uint64_t {i} * 7919 % COUNT);
        ASSERT_NE (nullptr,
                   Get (&descending, static_cast<uint16_t> ((tag + 1) >> 8), static_cast<uint16_t> ((tag + 1) << 8)));
        ASSERT_NE (nullptr, Find (&shuffled, static_cast<uint16_t> (tag >> 8), static_cast<uint16_t> (tag << 8)));
    }
    for (uint32_t i = 0; i < COUNT; i++) {
        uint32_t tag = static_cast<uint32_t> (uint64_t {i} * 104729 % COUNT);
        ASSERT_NE (nullptr, Get (&shuffled, static_cast<uint16_t> (tag >> 8), static_cast<uint16_t> (tag << 8)));
    }
    EXPECT_LT (std::chrono::steady_clock::now () - start, std::chrono::seconds (30));
}

// --- deleting --------------------------------------------------------------

static void Fill_Nested (Test_List *list) {
    list->Add (0x0008, 0x0016);
    list->Add (0x0040, 0xA730, "SQ");
    list->Open (0x0040, 0xA730);
    for (int i = 0; i < 2; i++) {
        list->Item ();
        list->Add (0xFFFE, 0xE000);
        list->Add (0x0008, 0x0100);
        list->Add (0x0008, 0x0100);
        list->Add (0xFFFE, 0xE00D);
    }
    list->Close ();
    list->Add (0xFFFE, 0xE0DD);
    list->Add (0x0008, 0x0100);
}

TEST (NemaTagAttribute, DeleteRemovesAtEveryDepth) {
    Test_List list;
    Fill_Nested (&list);
    EXPECT_EQ (1, DICOM_Attribute_Delete (nullptr, &list.cursor, &list.first, GROUP_DELIMITER, TAG_ANY));
    EXPECT_EQ ("(0008,0016) (0040,A730)[(0008,0100) (0008,0100)][(0008,0100) (0008,0100)] (0008,0100)",
               Outline (list.first));
    EXPECT_EQ (1, DICOM_Attribute_Delete (nullptr, &list.cursor, &list.first, 0x0008, 0x0100));
    EXPECT_EQ ("(0008,0016) (0040,A730)[][]", Outline (list.first));
    list.Add (0x0050, 0x0004);
    EXPECT_EQ ("(0008,0016) (0040,A730)[][] (0050,0004)", Outline (list.first));
}

TEST (NemaTagAttribute, DeletingEverythingEmptiesTheListAndItsItems) {
    long before = Memory_Live ();
    {
        Test_List list;
        Fill_Nested (&list);
        EXPECT_EQ (1, DICOM_Attribute_Delete (nullptr, &list.cursor, &list.first, TAG_ANY, TAG_ANY));
        EXPECT_EQ (nullptr, list.first);
        EXPECT_EQ (0, DICOM_Attribute_Delete (nullptr, &list.cursor, &list.first, TAG_ANY, TAG_ANY));
        EXPECT_EQ (0, DICOM_Attribute_Delete (nullptr, &list.cursor, nullptr, TAG_ANY, TAG_ANY));
        EXPECT_EQ (0, list.cursor.depth);
    }
    EXPECT_EQ (before, Memory_Live ());
}

TEST (NemaTagAttribute, DeletingTheFirstKeepsLastValid) {
    Test_List list;
    list.Add (0x0008, 0x0016);
    list.Add (0x0010, 0x0010);
    Attribute *last = list.Add (0x0020, 0x0010);
    Get (&list, 0x0020, 0x0010);
    DICOM_Attribute_Delete (nullptr, &list.cursor, &list.first, 0x0008, 0x0016);
    EXPECT_EQ (last, list.first->last);
    DICOM_Attribute_Delete (nullptr, &list.cursor, &list.first, 0x0020, 0x0010);
    EXPECT_EQ (list.first, list.first->last);
    EXPECT_EQ (nullptr, Get (&list, 0x0020, 0x0010));
    list.Add (0x0030, 0x0010);
    EXPECT_EQ ("(0010,0010) (0030,0010)", Outline (list.first));
}

// A search must not go on from a record that is gone: the sanitizers see it.
TEST (NemaTagAttribute, DeletingTheRecordThatWasFoundLastForgetsIt) {
    Test_List list;
    for (uint16_t element : {uint16_t (0x0010), uint16_t (0x0020), uint16_t (0x0030)}) list.Add (0x0010, element);
    EXPECT_NE (nullptr, Get (&list, 0x0010, 0x0020));
    DICOM_Attribute_Delete (nullptr, &list.cursor, &list.first, 0x0010, 0x0020);
    EXPECT_EQ (nullptr, list.first->seek);
    EXPECT_EQ (nullptr, Get (&list, 0x0010, 0x0020));
    EXPECT_NE (nullptr, Get (&list, 0x0010, 0x0030));
}

TEST (NemaTagAttribute, DeletingStopsAtTheFirstEmptyItem) {
    Test_List list;
    list.Add (0x0040, 0xA730, "SQ");
    list.Open (0x0040, 0xA730);
    for (int i = 0; i < 3; i++) {
        list.Item ();
        if (i != 1) list.Add (0x0008, 0x0100);
    }
    list.Reset ();
    EXPECT_EQ (1, DICOM_Attribute_Delete (nullptr, &list.cursor, &list.first, 0x0008, 0x0100));
    EXPECT_EQ ("(0040,A730)[][][(0008,0100)]", Outline (list.first));
}

TEST (NemaTagAttribute, ItemsBehindAnEmptySlotAreReleasedToo) {
    long before = Memory_Live ();
    {
        Test_List list;
        list.Add (0x0040, 0xA730, "SQ");
        list.Open (0x0040, 0xA730);
        list.Item ();
        list.Item ();
        list.Add (0x0008, 0x0100, "SH", "A ");
        EXPECT_EQ ("(0040,A730)[][(0008,0100)]", Outline (list.first));
    }
    EXPECT_EQ (before, Memory_Live ());
}

TEST (NemaTagAttribute, FreeingNothingIsAllowed) {
    Log_Recorder log (5);
    DICOM_Attribute_Free (nullptr, nullptr);
    EXPECT_EQ (0u, log.lines.size ());
}

// --- types -----------------------------------------------------------------

TEST (NemaTagAttribute, TypesComeFromTheReferenceAtEveryDepth) {
    Test_List reference, list;
    for (Test_List *one : {&reference, &list}) {
        one->Add (0x0008, 0x0016);
        one->Add (0x0040, 0xA730);
        one->Open (0x0040, 0xA730);
        one->Item ();
        one->Add (0x0008, 0x0100);
        if (one == &list) {
            one->Item ();
            one->Add (0x0008, 0x0100, "", "x ");
        }
        one->Close ();
        one->Reset ();
    }
    reference.first->type                = Code ('1', ' ');
    reference.first->vr                  = VR_UI;
    reference.first->next->item[0]->type = Code ('2', 'C');
    reference.first->next->item[0]->vr   = VR_SH;
    list.first->next->item[1]->vr        = VR_LO;
    DICOM_Attribute_Set_Type (nullptr, &list.cursor, reference.first, list.first);
    EXPECT_EQ (Code ('1', ' '), list.first->type);
    EXPECT_EQ (VR_UI, list.first->vr);
    EXPECT_EQ (Code ('2', 'C'), list.first->next->item[0]->type);
    EXPECT_EQ (Code ('2', 'C'), list.first->next->item[1]->type);
    EXPECT_EQ (VR_SH, list.first->next->item[0]->vr);
    EXPECT_EQ (VR_LO, list.first->next->item[1]->vr);
    EXPECT_EQ (0, list.cursor.depth);
}

TEST (NemaTagAttribute, TypesComeFromTheSameTagOnly) {
    Test_List  reference, list;
    Attribute *described = reference.Add (0x0011, 0x0010, "LO");
    described->type      = Code ('1', ' ');
    described->vr        = VR_LO;
    list.Add (0x0011, 0xFFFF);
    list.Add (0xFFFF, 0xFFFF);
    DICOM_Attribute_Set_Type (nullptr, &list.cursor, reference.first, list.first);
    for (const Attribute *record = list.first; record; record = record->next) {
        EXPECT_EQ (0, record->type);
        EXPECT_EQ (0, record->vr);
    }
}

TEST (NemaTagAttribute, SettingTypesCreatesNothingInTheReference) {
    Test_List reference, list;
    reference.Add (0x0008, 0x0016);
    reference.Add (0x0008, 0x1140, "SQ");
    std::string before = Outline (reference.first);
    for (uint16_t element : {uint16_t (0x1140), uint16_t (0x2112)}) {
        list.Add (0x0008, element, "SQ");
        list.Open (0x0008, element);
        list.Item ();
        list.Add (0x0008, 0x1150);
        list.Close ();
    }
    DICOM_Attribute_Set_Type (nullptr, &list.cursor, reference.first, list.first);
    EXPECT_EQ (before, Outline (reference.first));
}

// --- memory ----------------------------------------------------------------

// Navigation, insertion and copying with the n-th allocation failing: reported, nothing lost, list usable.
TEST (NemaTagAttribute, EveryFailedAllocationIsReportedAndLeavesTheListUsable) {
    int failures = 0;
    for (long n = 1;; n++) {
        long before = Memory_Live ();
        bool failed;
        {
            Log_Recorder log;
            Test_List    list (&warning_settings);
            Attribute    source = Record (0x0008, 0x0100, "SH", "ABCD");
            Memory_Fail_At (n);
            list.Open (0x0040, 0xA730);
            list.Item ();
            Attribute *one = DICOM_Attribute_Insert (nullptr, &list.cursor, &list.first, &source, 0);
            for (int i = 0; i < 4; i++) list.Item ();
            Attribute *two = DICOM_Attribute_Insert (nullptr, &list.cursor, &list.first, &source, 0);
            list.Open (0x0040, 0xA043);
            list.Item ();
            Attribute *three = DICOM_Attribute_Insert (nullptr, &list.cursor, &list.first, &source, 0);
            list.Reset ();
            Attribute *four = Find (&list, 0x0010, 0x0010);
            failed          = Memory_Failed ();
            Memory_Fail_At (0);
            EXPECT_EQ (failed, !one || !two || !three || !four) << n;
            EXPECT_EQ (failed, log.Count (LOG_ERROR, "memory error in ") == 1) << n;
            EXPECT_EQ (failed, log.Contains (" of NEMA_Tag_Attribute ")) << n;
            list.Add (0x0020, 0x0010);
            EXPECT_NE (std::string::npos, Outline (list.first).find ("(0020,0010)"));
            Value_Release (&source);
        }
        EXPECT_EQ (before, Memory_Live ()) << n;
        if (!failed) break;
        failures++;
    }
    EXPECT_GE (failures, 7);
}

TEST (NemaTagAttribute, AFailedItemSlotIsWarnedAboutWithTheTag) {
    Log_Recorder log;
    Test_List    list (&warning_settings);
    list.Add (0x0040, 0xA730, "SQ");
    list.Open (0x0040, 0xA730);
    list.Item ();
    Attribute source = Record (0x000A, 0x01AF, "SH");
    Memory_Fail_At (1);
    EXPECT_EQ (nullptr, DICOM_Attribute_Insert (nullptr, &list.cursor, &list.first, &source, 0));
    EXPECT_TRUE (log.Contains ("of NEMA_Tag_Attribute \nmemory error in realloc (var=pt->item, dim=1x8)"));
    EXPECT_TRUE (log.Has (LOG_WARNING, "    \xF1\x05"
                                       "Failed\x02 to insert tag(\x01"
                                       "000A\x02,\x01"
                                       "01AF\x02)"));
}

TEST (NemaTagAttribute, TheRecordAndItsItemsAreNamedInTheMessages) {
    Log_Recorder log;
    Test_List    list (&warning_settings);
    Memory_Fail_At (1);
    EXPECT_EQ (nullptr, Find (&list, 0x0008, 0x0016));
    EXPECT_TRUE (log.Contains ("memory error in calloc (var=insert, dim=1x96)"));
    log.Clear ();
    list.Open (0x0040, 0xA730);
    Attribute source = Record (0x0008, 0x0016);
    Memory_Fail_At (2);
    EXPECT_EQ (nullptr, DICOM_Attribute_Insert (nullptr, &list.cursor, &list.first, &source, 0));
    EXPECT_TRUE (log.Contains ("memory error in calloc (var=insert->item, dim=1x8)"));
    EXPECT_EQ (nullptr, list.first);
}

// --- cost ------------------------------------------------------------------

static double Seconds (void (*work) (int), int size) {
    auto start = std::chrono::steady_clock::now ();
    work (size);
    return std::chrono::duration<double> (std::chrono::steady_clock::now () - start).count ();
}

// Ten times the records may cost at most forty times the time: a quadratic walk costs a hundred times. The best of three
// takes the machine's other work out.
static void Expect_Linear (void (*work) (int), int size) {
    double small = 1e9, large = 1e9;
    for (int i = 0; i < 3; i++) {
        small = std::min (small, Seconds (work, size));
        large = std::min (large, Seconds (work, size * 10));
    }
    EXPECT_LT (large, small * 40 + 0.05);
}

TEST (NemaTagAttribute, ManyItemsCostLinearTime) {
    Expect_Linear (
        [] (int size) {
            Test_List list;
            list.Add (0x0040, 0xA730, "SQ");
            list.Open (0x0040, 0xA730);
            for (int i = 0; i < size; i++) {
                list.Item ();
                list.Add (0x0008, 0x0100);
            }
        },
        3000);
}

TEST (NemaTagAttribute, ManySequencesInOrderCostLinearTime) {
    Expect_Linear (
        [] (int size) {
            Test_List list;
            for (int i = 0; i < size; i++) {
                uint16_t group   = static_cast<uint16_t> (0x0040 + (i >> 12)),
                         element = static_cast<uint16_t> (i & 0xFFF);
                list.Add (group, element, "SQ");
                list.Open (group, element);
                list.Item ();
                list.Add (0x0008, 0x0100);
                list.Close ();
            }
        },
        3000);
}

TEST (NemaTagAttribute, OrderedPlacementUpAndDownCostsLinearTime) {
    for (int down : {0, 1}) {
        static int descending;
        descending = down;
        Expect_Linear (
            [] (int size) {
                Test_List list;
                for (int i = 0; i < size; i++) {
                    int n = descending ? size - i : i;
                    Find (&list, static_cast<uint16_t> (n >> 8), static_cast<uint16_t> (n & 0xFF));
                }
            },
            3000);
    }
}
