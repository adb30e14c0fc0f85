#include "attribute/sort.h"

#include <gtest/gtest.h>
#include <string.h>
#include <time.h>

#include <random>
#include <vector>

#include "attribute/NEMA_Tag_Attribute.h"
#include "tests/support/lists.h"
#include "tests/support/log_recorder.h"

static const char *const MODULE = "sort_test";

static const Settings warning_settings = {LOG_WARNING, LOG_REPORT, MODE_EXPLICIT, 0, nullptr, nullptr};

typedef std::vector<uint16_t> Elements;

static void Describe (Attribute *attribute, const char *text) {
    attribute->description = Memory_Strdup (nullptr, HERE ("description", 0, 0), text);
}

static int Sort (Test_List *list) {
    list->Reset ();
    return DICOM_Attribute_Sort (nullptr, &list->cursor, &list->first);
}

// --- order -----------------------------------------------------------------

TEST (Sort, TagsAscendAtEveryDepth) {
    Test_List list;
    list.Add (0x0010, 0x0020);
    list.Add (0x0008, 0x0016);
    list.Add (0x0010, 0x0010);
    list.Open (0x0010, 0x0010);
    for (int item = 0; item < 2; item++) {
        list.Item ();
        list.Add (0x0010, 0x0020);
        list.Add (0x0008, 0x0016);
        list.Add (0x0008, 0x0005);
    }
    list.Open (0x0008, 0x0016);
    list.Item ();
    list.Add (0x0040, 0x0002);
    list.Add (0x0040, 0x0001);
    ASSERT_EQ (1, Sort (&list));
    EXPECT_EQ ("(0008,0016) (0010,0010)[(0008,0005) (0008,0016) (0010,0020)]"
               "[(0008,0005) (0008,0016)[(0040,0001) (0040,0002)] (0010,0020)] (0010,0020)",
               Outline (list.first));
    EXPECT_EQ (0, list.cursor.depth);
}

TEST (Sort, TheItemOfTheCursorIsSortedAlone) {
    Test_List list;
    list.Add (0x0040, 0x0275);
    list.Open (0x0040, 0x0275);
    list.Item ();
    list.Add (0x0010, 0x0020);
    list.Add (0x0010, 0x0010);
    list.Close ();
    list.Add (0x0008, 0x0016);
    list.Open (0x0040, 0x0275);
    list.Item ();
    ASSERT_EQ (1, DICOM_Attribute_Sort (nullptr, &list.cursor, &list.first));
    EXPECT_EQ ("(0040,0275)[(0010,0010) (0010,0020)] (0008,0016)", Outline (list.first));
}

TEST (Sort, ItemsBehindAnEmptySlotStay) {
    Test_List list;
    list.Add (0x0040, 0x0275);
    list.Open (0x0040, 0x0275);
    list.Item ();
    list.Item ();
    list.Add (0x0010, 0x0020);
    list.Add (0x0010, 0x0010);
    ASSERT_EQ (1, Sort (&list));
    EXPECT_EQ ("(0040,0275)[][(0010,0020) (0010,0010)]", Outline (list.first));
}

TEST (Sort, NothingToSortGivesZero) {
    Test_List list;
    EXPECT_EQ (0, DICOM_Attribute_Sort (nullptr, &list.cursor, nullptr));
    EXPECT_EQ (0, Sort (&list));

    list.Add (0x0008, 0x0016);
    list.Open (0x0040, 0x0275);
    list.Item ();
    EXPECT_EQ (0, DICOM_Attribute_Sort (nullptr, &list.cursor, &list.first));
}

TEST (Sort, EachStepIsTraced) {
    Test_List list;
    list.Add (0x0040, 0x0275);
    list.Open (0x0040, 0x0275);
    list.Item ();
    list.Add (0x0010, 0x0020);
    Log_Recorder log (5);
    DICOM_Attribute_Sort (nullptr, &list.cursor, &list.first);
    EXPECT_EQ (LOG_TRACE5, log.lines[0].kind);
    EXPECT_EQ ("in DICOM_Attribute_Sort(level=0)", log.lines[0].text);
    EXPECT_EQ (1, log.Count (LOG_TRACE5, "in DICOM_Attribute_Sort(level=1)"));
    EXPECT_EQ (2, log.Count (LOG_TRACE5, "in DICOM_Attribute_Sort"));
}

// --- definitions of one tag ------------------------------------------------

// Two definitions of (0010,0010), compared and, when a comes last, exchanged.
struct Pair {
    Test_List  list {&warning_settings};
    Attribute *a = list.Add (0x0010, 0x0010);
    Attribute *b = list.Add (0x0010, 0x0010);

    int Swap () { return DICOM_Attribute_Sort_Swap (nullptr, &list.cursor, a, b); }
};

TEST (Sort, BothGetTheStricterType) {
    Pair pair;
    pair.a->type = Code ('3', ' ');
    pair.b->type = Code ('1', 'C');
    EXPECT_EQ (0, pair.Swap ());
    EXPECT_EQ (Code ('1', 'C'), pair.a->type);
    EXPECT_EQ (Code ('1', 'C'), pair.b->type);
}

TEST (Sort, MarksOfOneAreGivenToTheOther) {
    for (uint16_t mark : Elements {0x0200, DELETED, INVALID}) {
        for (int from = 0; from < 2; from++) {
            Pair pair;
            (from ? pair.b : pair.a)->flags = static_cast<uint16_t> (ORIGIN_MODULE | mark | APPEND);
            (from ? pair.a : pair.b)->flags = RETIRED;
            pair.Swap ();
            EXPECT_EQ (ORIGIN_MODULE | mark | APPEND, (from ? pair.b : pair.a)->flags);
            EXPECT_EQ (RETIRED | mark, (from ? pair.a : pair.b)->flags);
        }
    }
}

TEST (Sort, AMissingVrIsTakenAndAnotherStays) {
    Pair pair;
    pair.a->vr = VR_LO;
    pair.Swap ();
    EXPECT_EQ (VR_LO, pair.b->vr);
    pair.a->vr = 0;
    pair.b->vr = VR_SH;
    pair.Swap ();
    EXPECT_EQ (VR_SH, pair.a->vr);
    pair.a->vr = VR_LO;
    pair.Swap ();
    EXPECT_EQ (VR_LO, pair.a->vr);
    EXPECT_EQ (VR_SH, pair.b->vr);
}

TEST (Sort, DifferentTagsMergeNothing) {
    Pair pair;
    pair.b->element = 0x0020;
    pair.a->type    = Code ('1', ' ');
    pair.a->vr      = VR_LO;
    EXPECT_EQ (0, pair.Swap ());
    EXPECT_EQ (0, pair.b->type);
    EXPECT_EQ (0, pair.b->vr);
    EXPECT_EQ (1, DICOM_Attribute_Sort_Swap (nullptr, &pair.list.cursor, pair.b, pair.a));
    pair.b->element = 0x0010;
    pair.b->group   = 0x0008;
    EXPECT_EQ (1, pair.Swap ());
    EXPECT_EQ (0, DICOM_Attribute_Sort_Swap (nullptr, &pair.list.cursor, pair.b, pair.a));
}

TEST (Sort, AuthorityDecidesBetweenDefinitions) {
    static uint8_t value[] = "v";
    Test_List      list;
    const int      kinds = 16;
    for (int i = 0; i < kinds; i++) {
        for (int j = 0; j < kinds; j++) {
            Attribute records[2] = {};
            for (int k = 0; k < 2; k++) {
                int kind               = k ? j : i;
                records[k].flags       = static_cast<uint16_t> ((kind & 8 ? FORCED : 0) | (kind & 2 ? 0 : DEFAULT));
                records[k].data        = kind & 4 ? value : nullptr;
                records[k].description = kind & 1 ? reinterpret_cast<char *> (value) : nullptr;
            }
            // The higher number is the stronger definition; overriding ones are all alike.
            int expected = i >= 8 && j >= 8 ? 0 : j > i;
            EXPECT_EQ (expected, DICOM_Attribute_Sort_Swap (nullptr, &list.cursor, &records[0], &records[1]))
                << i << " " << j;
        }
    }
}

TEST (Sort, OverridesShareTheTypeOnly) {
    Pair pair;
    pair.a->type  = Code ('3', ' ');
    pair.b->type  = Code ('1', ' ');
    pair.a->flags = FORCED | DELETED;
    pair.b->flags = FORCED;
    pair.b->vr    = VR_LO;
    Describe (pair.b, "described");
    EXPECT_EQ (0, pair.Swap ());
    EXPECT_EQ (Code ('1', ' '), pair.a->type);
    EXPECT_EQ (0, pair.a->vr);
    EXPECT_EQ (FORCED, pair.b->flags);
}

TEST (Sort, TwoOverridesWarnWheneverTheyAreCompared) {
    Test_List list (&warning_settings);
    for (const char *text : {"first", "second"}) {
        Attribute *record = list.Add (0x0010, 0x0010, "LO", text);
        record->flags     = ORIGIN_MODULE | FORCED;
    }
    list.Add (0x0008, 0x0016); // Moves in front of both, a pass each.
    Log_Recorder log;
    ASSERT_EQ (1, Sort (&list));
    EXPECT_EQ ("(0008,0016) (0010,0010) (0010,0010)", Outline (list.first));
    EXPECT_EQ ("first", Value (list.first->next));
    EXPECT_EQ (3u, log.lines.size ());
    EXPECT_TRUE (log.Has (LOG_WARNING, EMPHASIS COLOUR_YELLOW "WARNING:" COLOUR_BLACK " (" COLOUR_BLUE
                                                              "0010" COLOUR_BLACK "," COLOUR_BLUE "0010" COLOUR_BLACK
                                                              ") Tag is defined as OVERRIDE twice!"));
    EXPECT_EQ ("WARNING: (0010,0010) Tag is defined as OVERRIDE twice!", Clean (log.lines[0].text));
}

TEST (Sort, WithoutAWarningKindOverridesAreSilent) {
    Test_List list;
    for (int i = 0; i < 2; i++) list.Add (0x0010, 0x0010)->flags = FORCED;
    list.Add (0x0008, 0x0016);
    Log_Recorder log;
    ASSERT_EQ (1, Sort (&list));
    EXPECT_EQ ("", log.Text (LOG_WARNING));
}

// --- the list afterwards ---------------------------------------------------

TEST (Sort, TheStoreFindsAndAppendsAfterwards) {
    Test_List list;
    for (uint16_t element : Elements {0x0030, 0x0010, 0x0020, 0x0040}) list.Add (0x0010, element);
    DICOM_Attribute_Get (nullptr, &list.cursor, list.first, 0x0010, 0x0020, 0);
    ASSERT_EQ (1, Sort (&list));
    EXPECT_EQ (nullptr, list.first->last);
    EXPECT_EQ (nullptr, list.first->seek);
    EXPECT_EQ (0, list.first->unordered);
    for (uint16_t element : Elements {0x0010, 0x0020, 0x0030, 0x0040}) {
        Attribute *found = DICOM_Attribute_Get (nullptr, &list.cursor, list.first, 0x0010, element, 0);
        ASSERT_NE (nullptr, found);
        EXPECT_EQ (element, found->element);
    }
    list.Add (0x0010, 0x0050);
    DICOM_Attribute_Find_Or_Insert (nullptr, &list.cursor, &list.first, 0x0010, 0x0025);
    EXPECT_EQ ("(0010,0010) (0010,0020) (0010,0025) (0010,0030) (0010,0040) (0010,0050)", Outline (list.first));
}

TEST (Sort, ASortedListForgetsItsEnd) {
    Test_List list;
    list.Add (0x0010, 0x0010);
    list.Add (0x0010, 0x0020);
    DICOM_Attribute_Get (nullptr, &list.cursor, list.first, 0x0010, 0x0020, 0);
    ASSERT_EQ (1, Sort (&list));
    EXPECT_EQ (nullptr, list.first->last);
    EXPECT_EQ (nullptr, list.first->seek);
}

// --- the passes, to the letter ---------------------------------------------

static int Literal_Swap (std::vector<std::string> *warnings, Attribute *a, Attribute *b) {
    if (a->group > b->group) return 1;
    if (a->group < b->group) return 0;
    if (a->element > b->element) return 1;
    if (a->element < b->element) return 0;

    if (a->type < b->type) b->type = a->type;
    else a->type = b->type;
    if ((a->flags & FORCED) && (b->flags & FORCED)) {
        warnings->push_back (std::to_string (a->element));
        return 0;
    }
    for (uint16_t mark : Elements {0x0200, 0x0100, 0x0800}) {
        if ((a->flags & mark) || (b->flags & mark)) {
            a->flags = static_cast<uint16_t> (a->flags | mark);
            b->flags = static_cast<uint16_t> (b->flags | mark);
        }
    }
    if (a->vr && !b->vr) b->vr = a->vr;
    else if (b->vr && !a->vr) a->vr = b->vr;

    if ((b->flags & FORCED) && !(a->flags & FORCED)) return 1;
    if ((a->flags & FORCED) && !(b->flags & FORCED)) return 0;
    if (b->data && !a->data) return 1;
    if (a->data && !b->data) return 0;
    if ((a->flags & DEFAULT) && !(b->flags & DEFAULT)) return 1;
    if (!(a->flags & DEFAULT) && (b->flags & DEFAULT)) return 0;
    return b->description && !a->description;
}

static void Literal_Sort (std::vector<std::string> *warnings, std::vector<Attribute> *records) {
    for (int exchanged = 1; exchanged;) {
        exchanged = 0;
        for (size_t i = 1; i < records->size (); i++) {
            if (!Literal_Swap (warnings, &(*records)[i - 1], &(*records)[i])) continue;
            std::swap ((*records)[i - 1], (*records)[i]);
            exchanged = 1;
        }
    }
}

typedef std::minstd_rand Random;

// How a random list is made: how many records, of how many tags, and how often definitions differ.
struct Shape {
    int      lists;
    unsigned records;
    unsigned tags;
    unsigned variety; // One in variety has each mark.
};

static Attribute Random_Record (Random *random, const Shape *shape, uint32_t number) {
    static const uint16_t types[] = {
        0, Code ('1', ' '), Code ('1', 'C'), Code ('2', ' '), Code ('2', 'C'), Code ('3', ' ')};
    static const uint16_t vrs[]  = {VR_LO, VR_SH, VR_US};
    auto                  below  = [&] (unsigned n) { return static_cast<unsigned> ((*random) () % n); };
    auto                  one_in = [&] (unsigned n) { return below (n) == 0; };

    std::string value  = one_in (shape->variety) ? "v" : "";
    Attribute   record = Record (0x0010, static_cast<uint16_t> (below (shape->tags)), "", value, ORIGIN_MODULE);
    for (uint16_t mark : Elements {FORCED, DEFAULT, DELETED, INVALID, RETIRED, APPEND})
        if (one_in (shape->variety)) record.flags = static_cast<uint16_t> (record.flags | mark);
    if (one_in (shape->variety)) record.flags |= 0x0200;
    if (one_in (shape->variety)) Describe (&record, "d");
    if (one_in (2)) record.vr = vrs[below (3)];
    record.type    = types[below (6)];
    record.pos_tag = number; // Tells the records apart.
    return record;
}

static std::string Everything (const Attribute *record) {
    char text[100];
    snprintf (text, sizeof text, "%u:(%04x,%04x) flags=%04x type=%04x vr=%04x %c%c\n", record->pos_tag, record->group,
              record->element, record->flags, record->type, record->vr, record->data ? 'v' : '-',
              record->description ? 'd' : '-');
    return text;
}

static void Compare_With_Literal (Random *random, const Shape *shape) {
    unsigned               count = static_cast<unsigned> ((*random) () % (shape->records + 1));
    std::vector<Attribute> records (count);
    Test_List              list (&warning_settings);
    for (unsigned i = 0; i < count; i++) {
        records[i] = Random_Record (random, shape, i + 1);
        // Inserted as the reader does it; then made alike, for a copy doesn't take everything.
        Attribute *added = DICOM_Attribute_Insert (nullptr, &list.cursor, &list.first, &records[i], 0);
        ASSERT_NE (nullptr, added);
        added->flags = records[i].flags;
    }

    std::vector<std::string> expected_warnings, warnings;
    Literal_Sort (&expected_warnings, &records);
    Log_Recorder log;
    ASSERT_EQ (count ? 1 : 0, Sort (&list));
    for (const Log_Line &line : log.lines) {
        ASSERT_EQ (LOG_WARNING, line.kind);
        warnings.push_back (
            std::to_string (strtol (Clean (line.text).c_str () + strlen ("WARNING: (0010,"), nullptr, 16)));
    }

    std::string expected, found;
    for (const Attribute &record : records) expected += Everything (&record);
    for (const Attribute *record = list.first; record; record = record->next) found += Everything (record);
    EXPECT_EQ (expected, found);
    EXPECT_EQ (expected_warnings, warnings);
    for (Attribute &record : records) {
        Attribute *copy = static_cast<Attribute *> (
            Memory_Calloc (nullptr, HERE ("copy", 1, sizeof (Attribute)), sizeof (Attribute)));
        *copy = record;
        DICOM_Attribute_Free (nullptr, copy);
    }
}

TEST (Sort, EqualsTheLiteralPassesForRandomLists) {
    static const Shape shapes[] = {
        {1500, 4, 2, 2}, // Every small case.
        {3000, 7, 3, 2},  {1500, 12, 2, 3}, {1500, 12, 5, 4},   {1500, 12, 12, 8}, {300, 60, 20, 5},
        {300, 60, 2, 30}, {300, 60, 60, 3}, {40, 300, 100, 20}, {40, 300, 3, 100},
    };
    Random random (20040101);
    for (const Shape &shape : shapes) {
        for (int i = 0; i < shape.lists && !testing::Test::HasFailure (); i++) {
            SCOPED_TRACE (testing::Message () << "list " << i << " of up to " << shape.records << " records");
            Compare_With_Literal (&random, &shape);
        }
    }
}

// --- cost ------------------------------------------------------------------

static double Seconds_To_Sort (Test_List *list) {
    clock_t start = clock ();
    EXPECT_EQ (1, Sort (list));
    return static_cast<double> (clock () - start) / CLOCKS_PER_SEC;
}

TEST (Sort, ALongDescendingListWithDoubleTagsIsSortedAtOnce) {
    // Passes over 100,000 records, compared 100,000 times each, would take minutes.
    Test_List list (&warning_settings);
    for (int i = 50000; i > 0; i--) {
        for (int twice = 0; twice < 2; twice++) {
            Attribute *record = list.Add (static_cast<uint16_t> (i >> 8), static_cast<uint16_t> (i & 0xFF));
            record->type      = twice ? Code ('1', ' ') : Code ('3', ' ');
        }
    }
    EXPECT_LT (Seconds_To_Sort (&list), 5.0);
    int disorder = 0, merged = 0;
    for (Attribute *record = list.first; record; record = record->next) {
        if (record->next &&
            Tag_Compare (record->group, record->element, record->next->group, record->next->element) > 0)
            disorder++;
        merged += record->type == Code ('1', ' ');
    }
    EXPECT_EQ (0, disorder);
    EXPECT_EQ (100000, merged);
}

TEST (Sort, ManyDefinitionsOfOneTagAreSortedAtOnce) {
    Test_List list;
    for (int i = 0; i < 50000; i++) {
        Attribute *record = list.Add (0x0010, 0x0010);
        record->type      = static_cast<uint16_t> (i % 6 ? Code ('3', ' ') : Code ('1', 'C'));
        record->flags     = static_cast<uint16_t> (i % 2 ? ORIGIN_MODULE : ORIGIN_MODULE | DEFAULT);
    }
    EXPECT_LT (Seconds_To_Sort (&list), 5.0);
    EXPECT_EQ (0, list.first->flags & DEFAULT);
    EXPECT_EQ (Code ('1', 'C'), list.first->type);
}

// --- failures --------------------------------------------------------------

TEST (Sort, WithoutMemoryTheListStaysAsItWas) {
    for (int n = 1;; n++) {
        Test_List list;
        for (uint16_t element : Elements {0x0030, 0x0010, 0x0020}) list.Add (0x0010, element);
        list.Open (0x0010, 0x0030);
        list.Item ();
        for (uint16_t element : Elements {0x0002, 0x0001}) list.Add (0x0040, element);
        list.Reset ();
        long         live = Memory_Live ();
        Log_Recorder log;
        Memory_Fail_At (n);
        int sorted = Sort (&list);
        int failed = Memory_Failed ();
        Memory_Fail_At (0);
        EXPECT_EQ (live, Memory_Live ());
        if (!failed) {
            EXPECT_EQ (1, sorted);
            EXPECT_EQ (5, n);
            break;
        }
        EXPECT_EQ (0, sorted);
        EXPECT_EQ (1, log.Count (LOG_ERROR, n % 2 ? "of sort \nmemory error in malloc (var=nodes, dim="
                                                  : "of sort \nmemory error in malloc (var=loud, dim="));
        EXPECT_EQ (n < 3 ? "(0010,0030)[(0040,0001) (0040,0002)] (0010,0010) (0010,0020)"
                         : "(0010,0010) (0010,0020) (0010,0030)[(0040,0002) (0040,0001)]",
                   Outline (list.first));
        EXPECT_EQ (1, Sort (&list));
        EXPECT_EQ ("(0010,0010) (0010,0020) (0010,0030)[(0040,0001) (0040,0002)]", Outline (list.first));
    }
}
