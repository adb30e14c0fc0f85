#include "compare/difference_list.h"

#include <gtest/gtest.h>

#include <chrono>
#include <deque>
#include <initializer_list>

#include "tests/support/log_recorder.h"
#include "util/memory.h"

// Merged records that a test lays out itself.
struct Merged_Tree {
    std::deque<Attribute>                records;
    std::deque<std::vector<Attribute *>> items;

    Attribute *Record (uint16_t code) {
        records.push_back ({});
        records.back ().flags = code;
        return &records.back ();
    }
    Attribute        *List (std::initializer_list<Attribute *> list) { return List (std::vector<Attribute *> (list)); }
    static Attribute *List (const std::vector<Attribute *> &list) {
        for (size_t i = 1; i < list.size (); i++) list[i - 1]->next = list[i];
        return list.empty () ? nullptr : list[0];
    }
    Attribute *Sequence (uint16_t code, std::vector<Attribute *> lists) {
        Attribute *record = Record (code);
        items.push_back (std::move (lists));
        record->nb_item = static_cast<int32_t> (items.back ().size ());
        record->item    = items.back ().data ();
        return record;
    }
    ~Merged_Tree () { Rows_Free (); }
};

// "level kind code name" of all rows, one a line.
static std::string Shown () {
    std::string text;
    for (int i = 0; i < Rows.count; i++) {
        const Row &row = Rows.rows[i];
        char       line[80];
        snprintf (line, sizeof line, "%d %d %04x %s\n", row.level, row.kind, row.code, row.name ? row.name : "-");
        text += line;
    }
    return text;
}

static std::string Lines () {
    std::string text;
    for (int i = 0; i < Rows.count; i++) text += std::to_string (Rows.rows[i].line) + " ";
    return text;
}

// A sequence of two items; one attribute of the second item differs.
static Attribute *Two_Items (Merged_Tree *tree, uint16_t own_code) {
    Attribute *first  = tree->List ({tree->Record (0), tree->Record (0)});
    Attribute *second = tree->List ({tree->Record (0), tree->Record (2)});
    return tree->Sequence (own_code, {first, second});
}

// --- building --------------------------------------------------------------

TEST (DifferenceList, NothingMergedIsTheRootAlone) {
    EXPECT_EQ (1, Rows_Build (nullptr, nullptr));
    EXPECT_EQ ("0 2 0000 -\n", Shown ());
    EXPECT_EQ (nullptr, Rows.rows[0].attribute);
    EXPECT_EQ (1, Rows_Layout ());
    EXPECT_EQ (1, Rows.visible);
    EXPECT_EQ (0, Rows.selected);
    Rows_Free ();
    EXPECT_EQ (0, Rows.count);
    EXPECT_EQ (nullptr, Rows.rows);
}

TEST (DifferenceList, AttributesFollowTheRootAndTheLastIsMarked) {
    Merged_Tree tree;
    Attribute  *a = tree.Record (0), *b = tree.Record (16);
    EXPECT_EQ (3, Rows_Build (nullptr, tree.List ({a, b})));
    EXPECT_EQ ("0 2 0000 -\n"
               "1 4 0000 -\n"
               "1 20 0010 -\n",
               Shown ());
    EXPECT_EQ (a, Rows.rows[1].attribute);
    EXPECT_EQ (b, Rows.rows[2].attribute);
}

TEST (DifferenceList, DifferenceIsCountedInItemAndSequence) {
    Merged_Tree tree;
    Attribute  *sequence = Two_Items (&tree, 0);
    EXPECT_EQ (9, Rows_Build (nullptr, tree.List ({sequence, tree.Record (0)})));
    EXPECT_EQ ("0 2 0000 -\n"
               "1 1 0002 (1 diff)\n"
               "2 2 8000 Item 1\n"
               "3 4 0000 -\n"
               "3 20 0000 -\n"
               "2 18 8002 Item 2 (1 diff)\n"
               "3 4 0000 -\n"
               "3 20 0002 -\n"
               "1 20 0000 -\n",
               Shown ());
    EXPECT_EQ (sequence, Rows.rows[1].attribute);
    EXPECT_EQ (nullptr, Rows.rows[2].attribute);
}

// The sequence's own difference counts, but its row shows the codes inside only.
TEST (DifferenceList, SequenceThatDiffersItselfCountsOneMore) {
    Merged_Tree tree;
    Rows_Build (nullptr, Two_Items (&tree, 8));
    EXPECT_STREQ ("(2 diff)", Rows.rows[1].name);
    EXPECT_EQ (2, Rows.rows[1].code);
}

TEST (DifferenceList, OwnDifferenceAloneIsNamedButIsNoCode) {
    Merged_Tree tree;
    Attribute  *inner = tree.Sequence (16, {tree.Record (0)});
    Rows_Build (nullptr, tree.Sequence (0, {inner}));
    EXPECT_EQ ("0 2 0000 -\n"
               "1 17 0000 -\n"
               "2 18 8000 Item 1\n"
               "3 17 0000 (1 diff)\n"
               "4 18 8000 Item 1\n"
               "5 20 0000 -\n",
               Shown ());
}

TEST (DifferenceList, BitsAboveTheDifferenceCodesAreNoDifference) {
    Merged_Tree tree;
    Rows_Build (nullptr, tree.Sequence (0x7000, {tree.Record (0)}));
    EXPECT_EQ (nullptr, Rows.rows[1].name);
    EXPECT_EQ (0, Rows.rows[1].code);
}

// Inner sequences, having lost the mark of a container, count once more in what is around them; items never do.
TEST (DifferenceList, DeepDifferenceCountsAtEveryContainer) {
    Merged_Tree tree;
    Attribute  *inner = tree.Sequence (0, {tree.Record (4)});
    Rows_Build (nullptr, tree.Sequence (0, {tree.List ({inner, tree.Record (1)})}));
    EXPECT_EQ ("0 2 0000 -\n"
               "1 17 0005 (3 diff)\n"
               "2 18 8005 Item 1 (3 diff)\n"
               "3 1 0004 (1 diff)\n"
               "4 18 8004 Item 1 (1 diff)\n"
               "5 20 0004 -\n"
               "3 20 0001 -\n",
               Shown ());
}

TEST (DifferenceList, SkippedAndModalityCodesCount) {
    for (int code : {1, 64, 128, 256, 512}) {
        Merged_Tree tree;
        Rows_Build (nullptr, tree.Sequence (0, {tree.Record (static_cast<uint16_t> (code))}));
        EXPECT_STREQ ("(1 diff)", Rows.rows[1].name) << code;
        EXPECT_EQ (code, Rows.rows[1].code);
        EXPECT_EQ (0x8000 | code, Rows.rows[2].code);
    }
}

TEST (DifferenceList, FirstEmptySlotEndsTheItems) {
    Merged_Tree tree;
    Attribute  *sequence = tree.Sequence (0, {tree.Record (0), nullptr, tree.Record (2)});
    EXPECT_EQ (4, Rows_Build (nullptr, tree.List ({sequence})));
    EXPECT_STREQ ("Item 1", Rows.rows[2].name);
    EXPECT_EQ (ROW_UNFOLDED, Rows.rows[2].kind) << "the slot behind it exists";
    EXPECT_EQ (nullptr, Rows.rows[1].name);
}

// Slots make the sequence, whether or not they hold anything.
TEST (DifferenceList, SequenceWithoutSlotsIsAPlainAttribute) {
    Merged_Tree tree;
    Attribute  *none = tree.Record (2), *empty = tree.Sequence (0, {nullptr});
    none->vr = VR_SQ;
    EXPECT_EQ (3, Rows_Build (nullptr, tree.List ({none, empty})));
    EXPECT_EQ (ROW_ATTRIBUTE, Rows.rows[1].kind);
    EXPECT_EQ (2, Rows.rows[1].code);
    EXPECT_EQ (ROW_FOLDED | ROW_LAST, Rows.rows[2].kind);
}

TEST (DifferenceList, NamesAreCutToTwentyBytes) {
    Merged_Tree              tree;
    std::vector<Attribute *> slots;
    for (int i = 0; i < 1000; i++) {
        std::vector<Attribute *> list;
        for (int j = 0; j < (i == 999 ? 12345 : 1); j++) list.push_back (tree.Record (i == 999 ? 2 : 0));
        slots.push_back (tree.List (list));
    }
    Rows_Build (nullptr, tree.Sequence (0, slots));
    EXPECT_STREQ ("Item 999", Rows.rows[1 + 2 * 998 + 1].name);
    EXPECT_STREQ ("Item 1000 (12345 di", Rows.rows[1 + 2 * 999 + 1].name);
    EXPECT_STREQ ("(12345 diff)", Rows.rows[1].name);
}

TEST (DifferenceList, NewRowsReplaceTheOldOnes) {
    Merged_Tree tree;
    Rows_Build (nullptr, Two_Items (&tree, 2));
    Rows_Layout ();
    Rows_Select (1);
    long live = Memory_Live ();
    Rows_Build (nullptr, nullptr);
    EXPECT_GT (live, Memory_Live ());
    EXPECT_EQ (1, Rows.count);
    EXPECT_EQ (0, Rows.selected);
    EXPECT_EQ (0, Rows.visible);
    EXPECT_EQ (0, Rows_At (0));
}

// --- title -----------------------------------------------------------------

TEST (DifferenceList, TitleHasAnyLength) {
    Merged_Tree tree;
    std::string text (5000, 't');
    Rows_Build (nullptr, nullptr);
    EXPECT_EQ (1, Rows_Title (nullptr, "first"));
    EXPECT_EQ (1, Rows_Title (nullptr, text.c_str ()));
    EXPECT_EQ (text, Rows.rows[0].name);
    Rows_Free ();
    EXPECT_EQ (1, Rows_Title (nullptr, "no rows"));
}

TEST (DifferenceList, TitleWithoutMemoryKeepsTheOldOne) {
    Merged_Tree  tree;
    Log_Recorder log;
    Rows_Build (nullptr, nullptr);
    Rows_Title (nullptr, "first");
    Memory_Fail_At (1);
    EXPECT_EQ (0, Rows_Title (nullptr, "second"));
    Memory_Fail_At (0);
    EXPECT_EQ (1, log.Count (LOG_ERROR, " of difference_list \nmemory error in strdup (var=List->name)"));
    EXPECT_STREQ ("first", Rows.rows[0].name);
}

// --- lines -----------------------------------------------------------------

TEST (DifferenceList, LinesSkipWhatIsFolded) {
    Merged_Tree tree;
    Rows_Build (nullptr, tree.List ({Two_Items (&tree, 0), tree.Record (0)}));
    EXPECT_EQ (3, Rows_Layout ());
    EXPECT_EQ ("0 1 -1 -1 -1 -1 -1 -1 2 ", Lines ());
    EXPECT_EQ (0, Rows_At (0));
    EXPECT_EQ (1, Rows_At (1));
    EXPECT_EQ (8, Rows_At (2));
    for (int line : {-2147483647 - 1, -1, 3, 9, 2147483647}) EXPECT_EQ (0, Rows_At (line)) << line;
}

TEST (DifferenceList, UnfoldingShowsItemsAndFoldingAnItemHidesItsAttributes) {
    Merged_Tree tree;
    Rows_Build (nullptr, tree.List ({Two_Items (&tree, 0), tree.Record (0)}));
    Rows_Layout ();
    EXPECT_EQ (1, Rows_Toggle (1, 0));
    EXPECT_EQ (ROW_UNFOLDED, Rows.rows[1].kind);
    EXPECT_EQ ("0 1 2 3 4 5 6 7 8 ", Lines ());
    EXPECT_EQ (1, Rows_Toggle (2, 1));
    EXPECT_EQ (ROW_FOLDED, Rows.rows[2].kind);
    EXPECT_EQ ("0 1 2 -1 -1 3 4 5 6 ", Lines ());
    EXPECT_EQ (7, Rows.visible);
    EXPECT_EQ (5, Rows_At (3));
    EXPECT_EQ (1, Rows_Toggle (3, 1));
    EXPECT_EQ (ROW_FOLDED | ROW_LAST, Rows.rows[5].kind);
    EXPECT_EQ ("0 1 2 -1 -1 3 -1 -1 4 ", Lines ());
    EXPECT_EQ (1, Rows_Toggle (1, 0));
    EXPECT_EQ ("0 1 -1 -1 -1 -1 -1 -1 2 ", Lines ());
    EXPECT_EQ (1, Rows_Toggle (1, 0)) << "what is folded inside stays so";
    EXPECT_EQ ("0 1 2 -1 -1 3 -1 -1 4 ", Lines ());
}

TEST (DifferenceList, RootFoldsInTheColumnLeftOfItself) {
    Merged_Tree tree;
    Rows_Build (nullptr, tree.Record (0));
    Rows_Layout ();
    EXPECT_EQ (0, Rows_Toggle (0, 0));
    EXPECT_EQ (1, Rows_Toggle (0, -1));
    EXPECT_EQ (1, Rows.visible);
}

TEST (DifferenceList, OnlyTheBoxOfAContainerToggles) {
    Merged_Tree tree;
    Rows_Build (nullptr, tree.List ({Two_Items (&tree, 0), tree.Record (0)}));
    Rows_Layout ();
    for (int column : {-2147483647 - 1, -1, 1, 2, 2147483647}) EXPECT_EQ (0, Rows_Toggle (1, column)) << column;
    EXPECT_EQ (0, Rows_Toggle (2, 0)) << "plain attribute";
    for (int line : {-1, 3, 2147483647}) EXPECT_EQ (0, Rows_Toggle (line, 0)) << "no row";
    Rows.rows[1].kind = ROW_FOLDED | ROW_MARK;
    EXPECT_EQ (0, Rows_Toggle (1, 0)) << "mark";
    EXPECT_EQ (3, Rows.visible);
}

TEST (DifferenceList, MarkRowsHaveALine) {
    Merged_Tree tree;
    Rows_Build (nullptr, tree.List ({tree.Record (0), tree.Record (0)}));
    Rows.rows[1].kind = ROW_MARK;
    EXPECT_EQ (3, Rows_Layout ());
    EXPECT_EQ (0, Rows_Select (1));
    EXPECT_EQ (0, Rows.selected);
    EXPECT_EQ (ROW_MARK, Rows.rows[1].kind);
}

// --- selection -------------------------------------------------------------

TEST (DifferenceList, SelectionMoves) {
    Merged_Tree tree;
    Rows_Build (nullptr, tree.List ({Two_Items (&tree, 0), tree.Record (0)}));
    Rows_Layout ();
    EXPECT_EQ (8, Rows_Select (2));
    EXPECT_EQ (8, Rows.selected);
    EXPECT_EQ (ROW_ATTRIBUTE | ROW_LAST | ROW_SELECTED, Rows.rows[8].kind);
    EXPECT_EQ (1, Rows_Select (1));
    EXPECT_EQ (ROW_ATTRIBUTE | ROW_LAST, Rows.rows[8].kind);
    EXPECT_EQ (ROW_FOLDED | ROW_SELECTED, Rows.rows[1].kind);
    EXPECT_EQ (1, Rows_Select (1)) << "once more";
    EXPECT_EQ (ROW_FOLDED | ROW_SELECTED, Rows.rows[1].kind);
    EXPECT_EQ (1, Rows_Toggle (1, 0)) << "selected rows fold";
    EXPECT_EQ (ROW_UNFOLDED | ROW_SELECTED, Rows.rows[1].kind);
}

// Index 0 stands for no selection, so the root is never taken out of it again.
TEST (DifferenceList, RootStaysSelected) {
    Merged_Tree tree;
    Rows_Build (nullptr, tree.Record (0));
    Rows_Layout ();
    EXPECT_EQ (0, Rows_Select (0));
    EXPECT_EQ (ROW_UNFOLDED | ROW_SELECTED, Rows.rows[0].kind);
    EXPECT_EQ (1, Rows_Select (1));
    EXPECT_EQ (ROW_UNFOLDED | ROW_SELECTED, Rows.rows[0].kind);
    EXPECT_EQ (ROW_ATTRIBUTE | ROW_LAST | ROW_SELECTED, Rows.rows[1].kind);
    EXPECT_EQ (0, Rows_Select (0));
    EXPECT_EQ (ROW_ATTRIBUTE | ROW_LAST, Rows.rows[1].kind);
}

TEST (DifferenceList, NothingIsSelectedOutsideOfTheLines) {
    EXPECT_EQ (0, Rows_Select (0));
    EXPECT_EQ (0, Rows_Layout ());
    Merged_Tree tree;
    Rows_Build (nullptr, tree.List ({Two_Items (&tree, 0), tree.Record (0)}));
    Rows_Layout ();
    EXPECT_EQ (8, Rows_Select (2));
    for (int line : {-2147483647 - 1, -1, 3, 8, 9, 2147483647}) EXPECT_EQ (0, Rows_Select (line)) << line;
    EXPECT_EQ (8, Rows.selected);
    EXPECT_TRUE (Rows.rows[8].kind & ROW_SELECTED);
}

// --- growing ---------------------------------------------------------------

TEST (DifferenceList, RowsGrowAheadAndAreZero) {
    Merged_Tree              tree;
    std::vector<Attribute *> list;
    for (int i = 0; i < 11; i++) list.push_back (tree.Record (0));
    EXPECT_EQ (12, Rows_Build (nullptr, tree.List (list)));
    ASSERT_EQ (20, Rows.capacity);
    for (int i = 12; i < 20; i++) {
        EXPECT_EQ (0, Rows.rows[i].kind);
        EXPECT_EQ (nullptr, Rows.rows[i].name);
    }
    EXPECT_EQ (12, Rows_Layout ());
}

TEST (DifferenceList, MemoryMessagesStateChunksOfTen) {
    Merged_Tree              tree;
    Log_Recorder             log;
    std::vector<Attribute *> list;
    for (int i = 0; i < 50; i++) list.push_back (tree.Record (0));
    Attribute *first = tree.List (list);

    Memory_Fail_At (1);
    EXPECT_EQ (0, Rows_Build (nullptr, first));
    EXPECT_EQ (1, log.Count (LOG_ERROR, " of difference_list \nmemory error in calloc (var=(*list), dim=10x32)"));
    EXPECT_EQ (0, Rows_Layout ());
    static const struct { int n, rows; } GROWTH[] = {{2, 10}, {3, 20}, {4, 40}};
    for (auto growth : GROWTH) {
        log.Clear ();
        Memory_Fail_At (growth.n);
        EXPECT_EQ (growth.rows, Rows_Build (nullptr, first));
        Memory_Fail_At (0);
        EXPECT_EQ (1, log.Count (LOG_ERROR, "memory error in realloc (var=(*list), dim=" +
                                                std::to_string (growth.rows + 10) + "x32)"));
        EXPECT_EQ (growth.rows, Rows_Layout ());
    }
}

TEST (DifferenceList, NameWithoutMemoryEndsTheRowsBeforeIt) {
    Merged_Tree  tree;
    Log_Recorder log;
    Attribute   *sequence = Two_Items (&tree, 0);
    Memory_Fail_At (2);
    EXPECT_EQ (2, Rows_Build (nullptr, sequence));
    EXPECT_EQ (1, log.Count (LOG_ERROR, "memory error in calloc (var=(*list)[line].name, dim=20x1)"));
    EXPECT_EQ (0, Rows.rows[2].kind);
    Memory_Fail_At (4);
    EXPECT_EQ (8, Rows_Build (nullptr, sequence));
    EXPECT_EQ (1, log.Count (LOG_ERROR, "memory error in calloc (var=(*list)[start].name, dim=20x1)"));
    Memory_Fail_At (0);
    EXPECT_EQ (2, log.Count (LOG_ERROR));
    EXPECT_EQ (2, Rows.rows[1].code);
}

TEST (DifferenceList, EveryMemoryFailureIsToldAndLeavesRowsToUse) {
    Merged_Tree              tree;
    std::vector<Attribute *> list;
    for (int i = 0; i < 12; i++) list.push_back (Two_Items (&tree, 0));
    Attribute *first = tree.List (list);
    long       live  = Memory_Live ();
    for (long n = 1, failed = 1; failed; n++) {
        Log_Recorder log;
        Memory_Fail_At (n);
        int count = Rows_Build (nullptr, first);
        Rows_Layout ();
        failed = Memory_Failed ();
        Memory_Fail_At (0);
        EXPECT_EQ (failed, log.Count (LOG_ERROR, "memory error in ")) << n;
        EXPECT_EQ (count, Rows.count);
        for (int line = 0; line < Rows.visible; line++) Rows_Toggle (line, Rows.rows[Rows_At (line)].level - 1);
        EXPECT_LE (count ? 1 : 0, Rows.visible);
        Rows_Free ();
        EXPECT_EQ (live, Memory_Live ()) << n;
    }
}

TEST (DifferenceList, RowsAreFoundWithoutTheIndex) {
    Merged_Tree  tree;
    Log_Recorder log;
    Rows_Build (nullptr, tree.List ({Two_Items (&tree, 0), tree.Record (0)}));
    Memory_Fail_At (1);
    EXPECT_EQ (3, Rows_Layout ());
    EXPECT_EQ (1, log.Count (LOG_ERROR, "memory error in malloc (var=line_rows, dim=9x4)"));
    EXPECT_EQ (nullptr, Rows.line_rows);
    EXPECT_EQ (8, Rows_At (2));
    Memory_Fail_At (1);
    EXPECT_EQ (1, Rows_Toggle (1, 0));
    Memory_Fail_At (0);
    EXPECT_EQ (5, Rows_At (5));
    EXPECT_EQ (8, Rows_Select (8));
    EXPECT_EQ (1, Rows_Toggle (1, 0)) << "the index comes back";
    EXPECT_NE (nullptr, Rows.line_rows);
    EXPECT_EQ (8, Rows_At (2));
}

// --- size ------------------------------------------------------------------

static double Milliseconds (std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double, std::milli> (std::chrono::steady_clock::now () - start).count ();
}

// The bounds are generous: a search or a growth a row would take many times as long.
TEST (DifferenceList, ManyRowsAreQuick) {
    Merged_Tree              tree;
    std::vector<Attribute *> list;
    for (int i = 0; i < 100000; i++) list.push_back (tree.Sequence (0, {tree.Record (2)}));
    Attribute *first = tree.List (list);

    auto start = std::chrono::steady_clock::now ();
    EXPECT_EQ (300001, Rows_Build (nullptr, first));
    EXPECT_GT (2000.0, Milliseconds (start));
    EXPECT_EQ (100001, Rows_Layout ());
    start = std::chrono::steady_clock::now ();
    for (int i = 0; i < 10; i++) EXPECT_EQ (1, Rows_Toggle (50000, 0));
    EXPECT_GT (500.0, Milliseconds (start));
    start = std::chrono::steady_clock::now ();
    for (int line = 0; line < 100001; line++) Rows_Select (line);
    EXPECT_GT (500.0, Milliseconds (start));
}

TEST (DifferenceList, NestingOfAnyDepthIsSafe) {
    Merged_Tree tree;
    Attribute  *record = tree.Record (2);
    for (int i = 0; i < 200; i++) record = tree.Sequence (0, {record});
    EXPECT_EQ (402, Rows_Build (nullptr, record));
    EXPECT_EQ (401, Rows.rows[401].level);
    EXPECT_STREQ ("(200 diff)", Rows.rows[1].name);
    EXPECT_EQ (2, Rows_Layout ());
    for (int line = 1; line < Rows.visible; line++) {
        bool folded = Rows.rows[line].kind & ROW_FOLDED;
        EXPECT_EQ (folded ? 1 : 0, folded && Rows_Toggle (line, line - 1)) << line;
    }
    EXPECT_EQ (402, Rows.visible);
}
