#include "compare/attribute_comparison.h"

#include <gtest/gtest.h>
#include <string.h>

#include <vector>

#include "attribute/NEMA_Tag_Attribute.h"
#include "attribute/NEMA_Tag_Copy.h"
#include "attribute/value.h"
#include "tables/data_dictionary.h"
#include "tests/support/lists.h"
#include "tests/support/log_recorder.h"
#include "tests/support/temporary.h"
#include "util/memory.h"

static const char *const MODULE = "attribute_comparison_test";

static const int NO_LENGTH = -2; // The length is that of the bytes.

// --- lists -----------------------------------------------------------------

// A list whose records also say their dictionary VR and, where it isn't that of the bytes, their length.
struct Tree : Test_List {
    Attribute *Add (uint16_t group, uint16_t element, const char *vr_file, const char *vr, const std::string &bytes,
                    int32_t length = NO_LENGTH) {
        Attribute *added = Test_List::Add (group, element, vr_file, bytes);
        added->vr        = *vr ? Code (vr[0], vr[1]) : static_cast<uint16_t> (0);
        if (length != NO_LENGTH) added->length = length;
        return added;
    }
    Attribute *Text (uint16_t group, uint16_t element, const char *vr, const std::string &bytes) {
        return Add (group, element, vr, vr, bytes);
    }
    void Open (uint16_t group, uint16_t element) {
        Add (group, element, "SQ", "SQ", "", LENGTH_UNDEFINED);
        Test_List::Open (group, element);
    }
};

// Two sides, what merges them, and the walks over them.
struct Sides {
    Tree     a, b, merged;
    Settings settings = {};

    void Merge () {
        for (Tree *side : {&a, &b}) {
            merged.Reset ();
            ASSERT_EQ (1, DICOM_Attribute_Copy (nullptr, &merged.cursor, &merged.first, side->first));
        }
    }

    int Diff (int depth = 0, int skipped = 0) {
        merged.cursor.settings = &settings;
        merged.Reset ();
        int count = Diff_Lists (nullptr, &merged.cursor, merged.first, a.first, b.first, depth, skipped);
        EXPECT_EQ (0, merged.cursor.depth);
        return count;
    }

    int Modality () {
        merged.cursor.settings = &settings;
        merged.Reset ();
        int count = Modality_Diff_Lists (nullptr, &merged.cursor, merged.first, a.first, b.first, 0, 0);
        EXPECT_EQ (0, merged.cursor.depth);
        return count;
    }

    Attribute *Found (uint16_t group, uint16_t element) {
        merged.Reset ();
        return DICOM_Attribute_Get (nullptr, &merged.cursor, merged.first, group, element, 0);
    }

    // In an item of a top-level sequence.
    Attribute *Found (uint16_t group, uint16_t element, uint16_t sequence, int item) {
        merged.Reset ();
        DICOM_Attribute_Sequence_Start (nullptr, &merged.cursor, 0x0008, sequence, 0, 0);
        for (int i = 0; i <= item; i++) DICOM_Attribute_Item_Start (nullptr, &merged.cursor, 0);
        return DICOM_Attribute_Get (nullptr, &merged.cursor, merged.first, group, element, 0);
    }
};

// --- expected lines --------------------------------------------------------

static std::string Padded (const std::string &text, size_t columns) {
    return text.size () < columns ? text + std::string (columns - text.size (), ' ') : text;
}

static std::string Pair (const std::string &a, const std::string &b) {
    return std::string (60 - a.size (), ' ') + a + " /vs/ " + b;
}

static std::string Line (const std::string &head, const std::string &description, const std::string &a,
                         const std::string &b) {
    return Padded (head, 50) + Padded (description, 40) + " " + Pair (a, b);
}

static const char *const NO_NAME = "(no database def.)";

static void Expect_Line (const Log_Recorder &log, const std::string &line) {
    EXPECT_TRUE (log.Has (LOG_AUDIT, line)) << "expected: " << Clean (line) << "\n" << log.All ();
}

// --- list walk -------------------------------------------------------------

TEST (AttributeComparison, EmptyListsHaveNoDifference) {
    Log_Recorder log;
    Sides        sides;
    EXPECT_EQ (0, sides.Diff ());
    EXPECT_EQ (0, sides.Modality ());
    EXPECT_EQ (0, Diff_Attribute (nullptr, &sides.merged.cursor, nullptr, nullptr, nullptr, 0, 0));
    EXPECT_EQ (0, Modality_Diff_Attribute (nullptr, &sides.merged.cursor, nullptr, nullptr, nullptr, 0, 0));
    EXPECT_TRUE (log.lines.empty ()) << log.All ();
}

TEST (AttributeComparison, EqualAttributesAreNeitherCountedNorWritten) {
    Log_Recorder log;
    Sides        sides;
    for (Tree *side : {&sides.a, &sides.b}) {
        side->Text (0x0008, 0x0060, "CS", "CT");
        side->Add (0x0010, 0x0010, "", "PN", "Doe^John");
        side->Text (0x0010, 0x0020, "LO", "");
    }
    sides.Merge ();
    EXPECT_EQ (0, sides.Diff ());
    EXPECT_EQ (0, log.Count (LOG_AUDIT));
    EXPECT_EQ (DIFFERENCE_NONE, sides.Found (0x0010, 0x0010)->flags);
}

TEST (AttributeComparison, ListsAreMergedByTag) {
    Log_Recorder log;
    Sides        sides;
    sides.a.Text (0x0008, 0x0020, "DA", "20160615");
    sides.a.Text (0x0010, 0x0010, "PN", "A^");
    sides.a.Text (0x0010, 0x0030, "DA", "19700101");
    sides.b.Text (0x0008, 0x0060, "CS", "CT");
    sides.b.Text (0x0010, 0x0010, "PN", "A^");
    sides.b.Text (0x0010, 0x0020, "LO", "ID");
    EXPECT_EQ (4, sides.Diff ());
    ASSERT_EQ (4u, log.lines.size ());
    EXPECT_NE (std::string::npos, Clean (log.lines[0].text).find ("- (0008,0020)"));
    EXPECT_NE (std::string::npos, Clean (log.lines[1].text).find ("+ (0008,0060)"));
    EXPECT_NE (std::string::npos, Clean (log.lines[2].text).find ("+ (0010,0020)"));
    EXPECT_NE (std::string::npos, Clean (log.lines[3].text).find ("- (0010,0030)"));
}

TEST (AttributeComparison, UnsortedListEqualsItself) {
    Log_Recorder log;
    Sides        sides;
    for (Tree *side : {&sides.a, &sides.b}) {
        side->Text (0x0010, 0x0010, "PN", "A^");
        side->Text (0x0008, 0x0060, "CS", "CT");
        side->Text (0x0008, 0x0060, "CS", "MR");
        side->Text (0x0020, 0x0010, "SH", "1 ");
    }
    EXPECT_EQ (0, sides.Diff ());
}

// Attributes that are the same are passed without the steps of the others where no merged list wants their record. The
// subject stands between two that are the same, and on the other side it is changed.
struct Passed {
    const char *what;
    void (*change) (Tree *tree, Attribute *subject);
    int count;
};

static const Passed PASSED[] = {
    {"nothing", [] (Tree *, Attribute *) {}, 0},
    {"group", [] (Tree *, Attribute *subject) { subject->group++; }, 2},
    {"element", [] (Tree *, Attribute *subject) { subject->element++; }, 2},
    {"VR", [] (Tree *, Attribute *subject) { subject->vr_file = VR_SH; }, 1},
    {"VR of the dictionary", [] (Tree *, Attribute *subject) { subject->vr = VR_SH; }, 0},
    {"no VR", [] (Tree *, Attribute *subject) { subject->vr_file = 0; }, 1},
    {"shorter", [] (Tree *, Attribute *subject) { subject->length--; }, 1},
    {"empty", [] (Tree *, Attribute *subject) { subject->length = 0; }, 1},
    {"undefined length", [] (Tree *, Attribute *subject) { subject->length = LENGTH_UNDEFINED; }, 1},
    {"first byte", [] (Tree *, Attribute *subject) { subject->data[0]++; }, 1},
    {"last byte", [] (Tree *, Attribute *subject) { subject->data[subject->length - 1]++; }, 1},
    {"no bytes", [] (Tree *, Attribute *subject) { Value_Release (subject); }, 1},
    {"all else", [] (Tree *, Attribute *subject) { subject->flags++, subject->vm++, subject->pos_data++; }, 0},
};

// The two ways: with a merged list, which tells of every tag, and without.
static void Expect_Passed (Sides *sides, int count, const std::string &what) {
    Log_Recorder log;
    EXPECT_EQ (count, sides->Diff ()) << what;
    std::string passed = log.All ();
    log.Clear ();
    sides->Merge ();
    EXPECT_EQ (count, sides->Diff ()) << what;
    EXPECT_EQ (log.All (), passed) << what;
}

TEST (AttributeComparison, SameAttributesArePassedAsTheyWouldBeCompared) {
    for (const Passed &passed : PASSED) {
        for (size_t length : {2u, 40u, 65535u, 65536u}) {
            for (bool in_a : {true, false}) {
                Sides sides;
                for (Tree *side : {&sides.a, &sides.b}) {
                    side->Text (0x0008, 0x0060, "CS", "CT");
                    Attribute *subject = side->Text (0x0009, 0x1001, "LO", std::string (length, 'x'));
                    side->Text (0x0010, 0x0010, "PN", "A^");
                    if ((side == &sides.a) == in_a) passed.change (side, subject);
                }
                Expect_Passed (&sides, passed.count, passed.what + (" " + std::to_string (length)));
            }
        }
    }
}

// What has no bytes to compare: items count all the same, whichever side has them.
TEST (AttributeComparison, SameAttributesWithoutBytesArePassedUnlessTheyHaveItems) {
    for (int32_t length : {0, 1, 8, static_cast<int> (LENGTH_UNDEFINED)}) {
        for (int items : {0, 1, 2, 3}) {
            Sides sides;
            for (Tree *side : {&sides.a, &sides.b}) {
                side->Add (0x0008, 0x0096, "SQ", "SQ", "", length);
                if (!(items & (side == &sides.a ? 1 : 2))) continue;
                side->Test_List::Open (0x0008, 0x0096);
                side->Item ();
                side->Text (0x0010, 0x0010, "PN", side == &sides.a ? "A^" : "B^");
                side->Close ();
            }
            Expect_Passed (&sides, items != 0, std::to_string (length) + " " + std::to_string (items));
        }
    }
}

TEST (AttributeComparison, UndefinedLengthIsNoneToCompare) {
    Sides sides;
    for (Tree *side : {&sides.a, &sides.b}) side->Add (0x0009, 0x1001, "UN", "", "bytes", LENGTH_UNDEFINED);
    Expect_Passed (&sides, 0, "undefined");
}

// A trace of the search for the merged record is written for all tags, also where there is no merged list.
TEST (AttributeComparison, TracesTellOfSameAttributes) {
    Sides sides;
    for (Tree *side : {&sides.a, &sides.b}) side->Text (0x0010, 0x0010, "PN", "A^");
    for (int level : {4, 5}) {
        Log_Recorder log (level);
        EXPECT_EQ (0, sides.Diff ());
        EXPECT_EQ (level == 5, log.Contains ("in DICOM_Attribute_Get(0010,0010)"));
    }
}

// --- codes -----------------------------------------------------------------

TEST (AttributeComparison, DifferentBytes) {
    Log_Recorder log;
    Sides        sides;
    sides.a.Text (0x0010, 0x0010, "PN", "ABC");
    sides.b.Text (0x0010, 0x0010, "PN", "ABD");
    sides.Merge ();
    EXPECT_EQ (1, sides.Diff ());
    EXPECT_EQ (1, log.Count (LOG_AUDIT));
    EXPECT_TRUE (log.Has (LOG_AUDIT, "\xF1\x04!\x02 (0010,0010)       PN (   3) 1 bytes diff     "
                                     "(no database def.)                       "
                                     "                                                       \"ABC\" /vs/ \"ABD\""))
        << log.All ();
    EXPECT_EQ (DIFFERENCE_BYTES, sides.Found (0x0010, 0x0010)->flags);
    EXPECT_EQ (1, sides.Found (0x0010, 0x0010)->diff_a);
    EXPECT_EQ (0, sides.Found (0x0010, 0x0010)->diff_b);
}

TEST (AttributeComparison, BytesAreCountedAcrossLongValues) {
    Log_Recorder log;
    Sides        sides;
    std::string  bytes (300001, 'x');
    sides.a.Add (0x7FE0, 0x0010, "OW", "OW", bytes);
    for (size_t place : {0u, 1u, 65535u, 65536u, 131071u, 299999u, 300000u}) bytes[place] = 'y';
    sides.b.Add (0x7FE0, 0x0010, "OW", "OW", bytes);
    sides.Merge ();
    EXPECT_EQ (1, sides.Diff ());
    EXPECT_EQ (7, sides.Found (0x7FE0, 0x0010)->diff_a);
    EXPECT_EQ (1, log.Count (LOG_AUDIT, "! (7FE0,0010)       OW (300001) 7 bytes diff"));
}

TEST (AttributeComparison, ManyDifferentBytesAreAllCounted) {
    for (size_t length : {239u, 240u, 241u, 255u, 256u, 257u, 28000u, 70000u}) {
        Log_Recorder log;
        Sides        sides;
        sides.a.Add (0x7FE0, 0x0010, "OB", "OB", std::string (length, 'x'));
        sides.b.Add (0x7FE0, 0x0010, "OB", "OB", std::string (length, 'y'));
        sides.Merge ();
        EXPECT_EQ (1, sides.Diff ());
        EXPECT_EQ (static_cast<int32_t> (length), sides.Found (0x7FE0, 0x0010)->diff_a);
    }
}

// A view gives the memory of its pages back while it is compared, and shows the same bytes afterwards.
TEST (AttributeComparison, BytesAreCountedAcrossLongViews) {
    static const uint32_t LENGTH = (9u << 20) + 5, SLICE = 4u << 20;

    Log_Recorder        log;
    Temporary_Directory directory;
    Sides               sides;
    std::string         bytes (LENGTH, 'x');
    for (Tree *side : {&sides.a, &sides.b}) {
        if (side == &sides.b)
            for (uint32_t place : {0u, SLICE - 1, SLICE, SLICE + 1, 2 * SLICE, LENGTH - 1}) bytes[place] = 'y';
        const char *name = side == &sides.a ? "a.dat" : "b.dat";
        File       *file = File_Open (directory.Write (name, "head" + bytes).c_str ());
        ASSERT_NE (nullptr, file);
        ASSERT_EQ (1, File_Seek (file, 4));
        Attribute *record = side->Add (0x7FE0, 0x0010, "OW", "OW", "", static_cast<int32_t> (LENGTH));
        ASSERT_EQ (1, Value_Map (nullptr, record, file, record->length));
        File_Close (file);
    }
    sides.Merge ();
    EXPECT_EQ (1, sides.Diff ());
    EXPECT_EQ (6, sides.Found (0x7FE0, 0x0010)->diff_a);
    EXPECT_EQ (0, memcmp (sides.b.first->data, bytes.data (), LENGTH));
}

TEST (AttributeComparison, NoBytesOnEitherSideIsNoDifference) {
    Log_Recorder log;
    Sides        sides;
    sides.a.Add (0x0008, 0x1140, "SQ", "SQ", "", 84);
    sides.b.Add (0x0008, 0x1140, "SQ", "SQ", "", 84);
    sides.a.Add (0x0009, 0x1140, "OB", "", "", LENGTH_UNDEFINED);
    sides.b.Add (0x0009, 0x1140, "OB", "", "", LENGTH_UNDEFINED);
    EXPECT_EQ (0, sides.Diff ());
}

TEST (AttributeComparison, BytesOnOneSideDifferEverywhere) {
    for (bool in_a : {true, false}) {
        Log_Recorder log;
        Sides        sides;
        sides.a.Add (0x0009, 0x1001, "UN", "", in_a ? "12345678" : "", 8);
        sides.b.Add (0x0009, 0x1001, "UN", "", in_a ? "" : "12345678", 8);
        sides.Merge ();
        EXPECT_EQ (1, sides.Diff ());
        EXPECT_EQ (8, sides.Found (0x0009, 0x1001)->diff_a);
    }
}

TEST (AttributeComparison, SharedValueIsEqual) {
    Log_Recorder log;
    Sides        sides;
    Attribute   *a = sides.a.Text (0x0009, 0x1001, "UN", "12345678");
    Attribute   *b = sides.b.Text (0x0009, 0x1001, "UN", "abcdefgh");
    Value_Share (b, a);
    EXPECT_EQ (0, sides.Diff ());
}

// The line names the length of B first.
TEST (AttributeComparison, DifferentLength) {
    Log_Recorder log;
    Sides        sides;
    sides.a.Text (0x0010, 0x0020, "LO", "AB");
    sides.b.Text (0x0010, 0x0020, "LO", "ABCD");
    sides.Merge ();
    EXPECT_EQ (1, sides.Diff ());
    Expect_Line (log, Line ("\xF1\x04!\x02 (0010,0020)       LO (4/vs/2)", NO_NAME, "\"AB\"", "\"ABCD\""));
    EXPECT_EQ (DIFFERENCE_LENGTH, sides.Found (0x0010, 0x0020)->flags);
    EXPECT_EQ (2, sides.Found (0x0010, 0x0020)->diff_a);
    EXPECT_EQ (4, sides.Found (0x0010, 0x0020)->diff_b);
}

TEST (AttributeComparison, UndefinedAgainstDefinedLength) {
    Log_Recorder log;
    Sides        sides;
    sides.a.Add (0x0008, 0x1140, "SQ", "SQ", "", LENGTH_UNDEFINED);
    sides.b.Add (0x0008, 0x1140, "SQ", "SQ", "", 0);
    EXPECT_EQ (1, sides.Diff ());
    Expect_Line (log, Line ("\xF1\x04!\x02 (0008,1140)       SQ (0/vs/-1)", NO_NAME, "(sequence)", "(empty)"));
}

// The line names the VR of B first.
TEST (AttributeComparison, DifferentVr) {
    Log_Recorder log;
    Sides        sides;
    sides.a.Add (0x0028, 0x0106, "SS", "US", std::string ("\x18\0", 2));
    sides.b.Add (0x0028, 0x0106, "US", "US", std::string ("\x19\0\x1A\0", 4));
    sides.Merge ();
    EXPECT_EQ (1, sides.Diff ());
    Expect_Line (log, Line ("\xF1\x04!\x02 (0028,0106)       US /vs/ SS", NO_NAME, "24", "25 \\ 26"));
    EXPECT_EQ (DIFFERENCE_VR, sides.Found (0x0028, 0x0106)->flags);
    EXPECT_EQ (VR_SS, sides.Found (0x0028, 0x0106)->diff_a);
    EXPECT_EQ (VR_US, sides.Found (0x0028, 0x0106)->diff_b);
}

// An implicit VR that isn't that of the other side counts as a different one and shows as dashes.
TEST (AttributeComparison, DifferentVrWhenOneIsImplicit) {
    Log_Recorder log;
    Sides        sides;
    sides.a.Add (0x0028, 0x0106, "", "US", std::string ("\x18\0", 2));
    sides.b.Add (0x0028, 0x0106, "SS", "US", std::string ("\x18\0", 2));
    sides.a.Add (0x0028, 0x0107, "SS", "US", std::string ("\x18\0", 2));
    sides.b.Add (0x0028, 0x0107, "", "US", std::string ("\x18\0", 2));
    EXPECT_EQ (2, sides.Diff ());
    Expect_Line (log, Line ("\xF1\x04!\x02 (0028,0106)       SS /vs/ --", NO_NAME, "24", "24"));
    Expect_Line (log, Line ("\xF1\x04!\x02 (0028,0107)       -- /vs/ SS", NO_NAME, "24", "24"));
}

TEST (AttributeComparison, ExplicitAgainstImplicit) {
    Log_Recorder log;
    Sides        sides;
    sides.a.Add (0x0010, 0x0010, "PN", "PN", "A^");
    sides.b.Add (0x0010, 0x0010, "", "PN", "A^");
    sides.Merge ();
    EXPECT_EQ (1, sides.Diff ());
    Expect_Line (log, Line ("\xF1\x04!\x02 (0010,0010)       PN explicit/vs/implicit", NO_NAME, "\"A^\"", "\"A^\""));
    EXPECT_EQ (DIFFERENCE_EXPLICIT_IMPLICIT, sides.Found (0x0010, 0x0010)->flags);
}

TEST (AttributeComparison, ImplicitAgainstExplicit) {
    Log_Recorder log;
    Sides        sides;
    sides.a.Add (0x0010, 0x0010, "", "PN", "A^");
    sides.b.Add (0x0010, 0x0010, "PN", "PN", "B^");
    sides.Merge ();
    EXPECT_EQ (1, sides.Diff ());
    Expect_Line (log, Line ("\xF1\x04!\x02 (0010,0010)       PN implicit/vs/explicit", NO_NAME, "\"A^\"", "\"B^\""));
    EXPECT_EQ (DIFFERENCE_IMPLICIT_EXPLICIT, sides.Found (0x0010, 0x0010)->flags);
}

TEST (AttributeComparison, OnlyInA) {
    Log_Recorder log;
    Sides        sides;
    sides.a.Text (0x0010, 0x1010, "AS", "046Y");
    sides.Merge ();
    EXPECT_EQ (1, sides.Diff ());
    Expect_Line (log, Line ("\xF1\x04-\x02 (0010,1010)       AS (   4)", NO_NAME, "\"046Y\"", "(no tag)"));
    EXPECT_EQ (DIFFERENCE_ONLY_A, sides.Found (0x0010, 0x1010)->flags);
}

TEST (AttributeComparison, OnlyInB) {
    Log_Recorder log;
    Sides        sides;
    sides.b.Text (0x0010, 0x1010, "AS", "046Y");
    sides.Merge ();
    EXPECT_EQ (1, sides.Diff ());
    Expect_Line (log, Line ("\xF1\x04+\x02 (0010,1010)       AS (   4)", NO_NAME, "(no tag)", "\"046Y\""));
    EXPECT_EQ (DIFFERENCE_ONLY_B, sides.Found (0x0010, 0x1010)->flags);
}

TEST (AttributeComparison, VrComesFromTheStreamThenTheDictionaryThenTheOtherSide) {
    Log_Recorder log;
    Sides        sides;
    sides.a.Add (0x0011, 0x1001, "", "", "AB");
    sides.a.Add (0x0011, 0x1002, "", "SH", "AB");
    sides.b.Add (0x0011, 0x1002, "", "SH", "ABCD");
    sides.a.Add (0x0011, 0x1003, "", "", "AB");
    sides.b.Add (0x0011, 0x1003, "", "LO", "ABCD");
    EXPECT_EQ (3, sides.Diff ());
    EXPECT_EQ (1, log.Count (LOG_AUDIT, "- (0011,1001)       -- (   2)"));
    EXPECT_EQ (1, log.Count (LOG_AUDIT, "! (0011,1002)       SH (4/vs/2)"));
    EXPECT_EQ (1, log.Count (LOG_AUDIT, "! (0011,1003)       LO (4/vs/2)"));
}

// --- audit line ------------------------------------------------------------

TEST (AttributeComparison, DescriptionTakesFortyColumns) {
    Log_Recorder log;
    Sides        sides;
    Attribute   *a = sides.a.Text (0x0010, 0x0010, "PN", "A^");
    a->description = Memory_Strdup (nullptr, HERE ("description", 0, 0), "0123456789012345678901234567890123456789ABC");
    EXPECT_EQ (1, sides.Diff ());
    Expect_Line (log, Line ("\xF1\x04-\x02 (0010,0010)       PN (   2)", "0123456789012345678901234567890123456789",
                            "\"A^\"", "(no tag)"));
}

TEST (AttributeComparison, DescriptionIsTheFirstThatExists) {
    Dictionary_Entry entry_a = {}, entry_b = {};
    entry_a.name = "name a";
    entry_b.name = "name b";

    struct Case {
        bool        a, b, name_a, name_b;
        const char *expected;
    };
    for (const Case &test : {Case {true, true, true, true, "text a"}, Case {false, true, true, true, "text b"},
                             Case {false, false, true, true, "name a"}, Case {false, false, false, true, "name b"},
                             Case {false, false, false, false, nullptr}}) {
        Log_Recorder log;
        Sides        sides;
        Attribute   *a = sides.a.Text (0x0010, 0x0010, "PN", "A^");
        Attribute   *b = sides.b.Text (0x0010, 0x0010, "PN", "B^");
        sides.Merge ();
        if (test.a) a->description = Memory_Strdup (nullptr, HERE ("description", 0, 0), "text a");
        if (test.b) b->description = Memory_Strdup (nullptr, HERE ("description", 0, 0), "text b");
        if (test.name_a) a->definition = &entry_a;
        if (test.name_b) b->definition = &entry_b;
        EXPECT_EQ (1, sides.Diff ());
        Expect_Line (log, Line ("\xF1\x04!\x02 (0010,0010)       PN (   2) 1 bytes diff",
                                test.expected ? test.expected : NO_NAME, "\"A^\"", "\"B^\""));
        Attribute *record = sides.Found (0x0010, 0x0010);
        EXPECT_STREQ (test.expected, record->description);
        a->definition = nullptr;
        b->definition = nullptr;
    }
}

// The pad gives way to the marks, column by column, until there is none.
TEST (AttributeComparison, HeadAtEveryDepth) {
    static const char *const heads[] = {"(0011,1001)       UN",    "> (0011,1001)     UN",   ">> (0011,1001)    UN",
                                        ">>> (0011,1001)   UN",    ">>>> (0011,1001)  UN",   ">>>>> (0011,1001) UN",
                                        ">>>>>> (0011,1001) UN",   ">>>>>>> (0011,1001) UN", ">>>>>>>> (0011,1001) UN",
                                        ">>>>>>>>> (0011,1001) UN"};
    for (int depth = 0; depth < 10; depth++) {
        Log_Recorder log;
        Sides        sides;
        sides.a.Text (0x0011, 0x1001, "UN", "ABC");
        sides.b.Text (0x0011, 0x1001, "UN", "ABD");
        EXPECT_EQ (1, sides.Diff (depth));
        Expect_Line (log,
                     Line (std::string ("\xF1\x04!\x02 ") + heads[depth] + " (   3) 1 bytes diff", NO_NAME, "", ""));
    }
}

TEST (AttributeComparison, LongHeadIsNotFollowedByABlank) {
    Log_Recorder log;
    Sides        sides;
    sides.a.Add (0x0011, 0x1001, "UN", "", "", 2000000000);
    sides.b.Add (0x0011, 0x1001, "UN", "", "", 2000000001);
    EXPECT_EQ (1, sides.Diff (9));
    std::string head = "\xF1\x04!\x02 >>>>>>>>> (0011,1001) UN (2000000001/vs/2000000000)";
    ASSERT_LT (50u, head.size ());
    Expect_Line (log, head + Padded (NO_NAME, 40) + " " + Pair ("", ""));
}

TEST (AttributeComparison, ValueTextsAreCutToSixtyColumns) {
    Log_Recorder log;
    Sides        sides;
    sides.a.Text (0x0008, 0x0070, "LO", std::string (64, 'a'));
    sides.b.Text (0x0008, 0x0070, "LO", std::string (66, 'b'));
    EXPECT_EQ (1, sides.Diff ());
    Expect_Line (log, Line ("\xF1\x04!\x02 (0008,0070)       LO (66/vs/64)", NO_NAME, "\"" + std::string (59, 'a'),
                            "\"" + std::string (59, 'b')));
}

// --- items -----------------------------------------------------------------

static void Add_Sequence (Tree *tree, const std::vector<std::string> &items) {
    tree->Open (0x0008, 0x1140);
    for (const std::string &text : items) {
        tree->Item ();
        tree->Text (0x0008, 0x1150, "UI", text);
        tree->Text (0x0008, 0x1155, "UI", text + "." + text);
    }
    tree->Close ();
}

TEST (AttributeComparison, ItemsArePairedByNumber) {
    Log_Recorder log;
    Sides        sides;
    Add_Sequence (&sides.a, {"1.2", "1.3", "1.4"});
    Add_Sequence (&sides.b, {"1.3", "1.3"});
    sides.Merge ();
    EXPECT_EQ (4, sides.Diff ());
    Expect_Line (log, Line ("\xF1\x04!\x02 > (0008,1150)     UI (   3) 1 bytes diff", NO_NAME, "\"1.2\"", "\"1.3\""));
    Expect_Line (
        log, Line ("\xF1\x04!\x02 > (0008,1155)     UI (   7) 2 bytes diff", NO_NAME, "\"1.2.1.2\"", "\"1.3.1.3\""));
    Expect_Line (log, Line ("\xF1\x04-\x02 > (0008,1150)     UI (   3)", NO_NAME, "\"1.4\"", "(no tag)"));
    EXPECT_EQ (DIFFERENCE_NONE, sides.Found (0x0008, 0x1140)->flags);
    EXPECT_EQ (DIFFERENCE_BYTES, sides.Found (0x0008, 0x1155, 0x1140, 0)->flags);
    EXPECT_EQ (DIFFERENCE_NONE, sides.Found (0x0008, 0x1155, 0x1140, 1)->flags);
    EXPECT_EQ (DIFFERENCE_ONLY_A, sides.Found (0x0008, 0x1155, 0x1140, 2)->flags);
}

TEST (AttributeComparison, SequenceOnlyInBCountsWithAllItHolds) {
    Log_Recorder log;
    Sides        sides;
    Add_Sequence (&sides.b, {"1.2", "1.3", "1.4"});
    sides.Merge ();
    EXPECT_EQ (7, sides.Diff ());
    EXPECT_EQ (7, log.Count (LOG_AUDIT, "+ "));
    Expect_Line (log, Line ("\xF1\x04+\x02 (0008,1140)       SQ (  -1)", NO_NAME, "(no tag)", "(sequence)"));
    EXPECT_EQ (DIFFERENCE_ONLY_B, sides.Found (0x0008, 0x1150, 0x1140, 2)->flags);
}

TEST (AttributeComparison, SequenceOnlyInACountsWithAllItHolds) {
    Log_Recorder log;
    Sides        sides;
    Add_Sequence (&sides.a, {"1.2"});
    EXPECT_EQ (3, sides.Diff ());
    EXPECT_EQ (3, log.Count (LOG_AUDIT, "- "));
}

// An item without attributes doesn't hide the ones behind it.
TEST (AttributeComparison, ItemsBehindAnEmptyOneAreCompared) {
    Log_Recorder log;
    Sides        sides;
    for (Tree *side : {&sides.a, &sides.b}) {
        side->Open (0x0008, 0x1140);
        side->Item ();
        side->Item ();
        side->Text (0x0008, 0x1150, "UI", side == &sides.a ? "1.2" : "1.3");
        side->Close ();
    }
    ASSERT_EQ (2, sides.a.first->nb_item);
    ASSERT_EQ (nullptr, sides.a.first->item[0]);
    EXPECT_EQ (1, sides.Diff ());
}

static void Add_Deep (Tree *tree, const std::string &text) {
    for (int depth = 0; depth < 9; depth++) {
        tree->Open (0x0040, 0xA730);
        tree->Item ();
    }
    tree->Text (0x0040, 0xA160, "ST", text);
    for (int depth = 0; depth < 9; depth++) tree->Close ();
}

TEST (AttributeComparison, DeepestItem) {
    Log_Recorder log;
    Sides        sides;
    Add_Deep (&sides.a, "one!");
    Add_Deep (&sides.b, "two!");
    sides.Merge ();
    EXPECT_EQ (1, sides.Diff ());
    Expect_Line (log,
                 Line ("\xF1\x04!\x02 >>>>>>>>> (0040,A160) ST (   4) 3 bytes diff", NO_NAME, "\"one!\"", "\"two!\""));
}

// --- skipped tags ----------------------------------------------------------

static void Skip (Settings *settings, char **groups, char **elements, int count) {
    settings->Nb_Skip      = count;
    settings->Skip_Group   = groups;
    settings->Skip_Element = elements;
}

TEST (AttributeComparison, SkippedTagIsMarkedOnly) {
    Log_Recorder log;
    Sides        sides;
    char         group[] = "0010", element[] = "0010";
    char        *groups[] = {group}, *elements[] = {element};
    Skip (&sides.settings, groups, elements, 1);
    sides.a.Text (0x0010, 0x0010, "PN", "A^");
    sides.b.Text (0x0010, 0x0010, "PN", "B^");
    sides.a.Text (0x0010, 0x0020, "LO", "1 ");
    sides.b.Text (0x0010, 0x0020, "LO", "2 ");
    sides.Merge ();
    EXPECT_EQ (1, sides.Diff ());
    EXPECT_EQ (1, log.Count (LOG_AUDIT));
    EXPECT_EQ (DIFFERENCE_SKIPPED, sides.Found (0x0010, 0x0010)->flags);
    EXPECT_EQ (Pair ("\"A^\"", "\"B^\""), reinterpret_cast<char *> (sides.Found (0x0010, 0x0010)->data));
    EXPECT_EQ (DIFFERENCE_BYTES, sides.Found (0x0010, 0x0020)->flags);
}

TEST (AttributeComparison, SkipEntriesAreWildcards) {
    Log_Recorder log;
    Sides        sides;
    char         any[] = "*", group[] = "00?9", element[] = "10*";
    char        *groups[] = {nullptr, any, group}, *elements[] = {any, nullptr, element};
    Skip (&sides.settings, groups, elements, 3);
    sides.a.Text (0x0009, 0x1001, "LO", "skipped ");
    sides.a.Text (0x0009, 0x1101, "LO", "element differs ");
    sides.a.Text (0x0019, 0x1001, "LO", "skipped ");
    sides.a.Text (0x0020, 0x1001, "LO", "group differs ");
    EXPECT_EQ (2, sides.Diff ());
    EXPECT_EQ (1, log.Count (LOG_AUDIT, "(0009,1101)"));
    EXPECT_EQ (1, log.Count (LOG_AUDIT, "(0020,1001)"));
}

TEST (AttributeComparison, SkippedSequenceSkipsAllInside) {
    Log_Recorder log;
    Sides        sides;
    char         group[] = "0008", element[] = "1140";
    char        *groups[] = {group}, *elements[] = {element};
    Skip (&sides.settings, groups, elements, 1);
    Add_Sequence (&sides.a, {"1.2", "1.3"});
    Add_Sequence (&sides.b, {"1.4"});
    sides.b.Text (0x0010, 0x0010, "PN", "A^");
    sides.Merge ();
    EXPECT_EQ (1, sides.Diff ());
    EXPECT_EQ (1, log.Count (LOG_AUDIT));
    EXPECT_EQ (DIFFERENCE_SKIPPED, sides.Found (0x0008, 0x1140)->flags);
    EXPECT_EQ (DIFFERENCE_SKIPPED, sides.Found (0x0008, 0x1150, 0x1140, 0)->flags);
    EXPECT_EQ (DIFFERENCE_SKIPPED, sides.Found (0x0008, 0x1155, 0x1140, 1)->flags);
}

TEST (AttributeComparison, InheritedSkipCountsNothing) {
    Log_Recorder log;
    Sides        sides;
    sides.a.Text (0x0010, 0x0010, "PN", "A^");
    EXPECT_EQ (0, sides.Diff (1, 1));
    EXPECT_EQ (0, log.Count (LOG_AUDIT));
}

// --- merged records --------------------------------------------------------

TEST (AttributeComparison, MergedRecordGetsValueTextAndKeepsItsQuantities) {
    Log_Recorder log;
    Sides        sides;
    sides.a.Text (0x0010, 0x0010, "PN", "A^");
    sides.b.Text (0x0010, 0x0010, "PN", "A^");
    sides.Merge ();
    Attribute *record   = sides.Found (0x0010, 0x0010);
    record->diff_a      = 7;
    record->diff_b      = 8;
    record->description = Memory_Strdup (nullptr, HERE ("description", 0, 0), "old");
    EXPECT_EQ (0, sides.Diff ());
    EXPECT_EQ (Pair ("\"A^\"", "\"A^\""), reinterpret_cast<char *> (record->data));
    EXPECT_EQ (2, record->length);
    EXPECT_EQ (nullptr, record->description);
    EXPECT_EQ (7, record->diff_a);
    EXPECT_EQ (8, record->diff_b);
    EXPECT_STREQ ("A^", std::string (reinterpret_cast<char *> (sides.a.first->data), 2).c_str ());
}

TEST (AttributeComparison, TagThatTheMergedListLacksStillCounts) {
    Log_Recorder log;
    Sides        sides;
    sides.merged.Text (0x0008, 0x0060, "CS", "CT");
    sides.a.Text (0x0010, 0x0010, "PN", "A^");
    EXPECT_EQ (1, sides.Diff ());
    EXPECT_EQ (1, log.Count (LOG_AUDIT));
    EXPECT_EQ (1, sides.Modality ());
    EXPECT_EQ (nullptr, sides.merged.first->next);
}

// A file may hold tags whose numbers match anything in look-ups; they are told apart like all others, at every depth.
static const uint16_t ALL_BITS[][2] = {{0x0011, 0xFFFF}, {0xFFFF, 0x0010}, {0xFFFF, 0xFFFF}};

static void Add_All_Bits (Tree *tree, const char *value) {
    tree->Text (0x0008, 0x0100, "SH", "same");
    tree->Text (0x0010, 0x0010, "PN", "same");
    tree->Text (0x0011, 0x0010, "LO", "same");
    for (auto &tag : ALL_BITS) tree->Text (tag[0], tag[1], "LO", value);
}

static Attribute *All_Bits_Record (Attribute *list, int index) {
    while (list && (list->group != ALL_BITS[index][0] || list->element != ALL_BITS[index][1])) list = list->next;
    return list;
}

TEST (AttributeComparison, TagsOfAllBitsAreMarkedThemselves) {
    for (bool modality : {false, true}) {
        Log_Recorder log;
        Sides        sides;
        for (Tree *side : {&sides.a, &sides.b}) {
            side->Open (0x0008, 0x0096);
            side->Item ();
            Add_All_Bits (side, side == &sides.a ? "one " : "two ");
            side->Close ();
            Add_All_Bits (side, side == &sides.a ? "one " : "two ");
        }
        sides.Merge ();
        EXPECT_EQ (modality ? 13 : 6, modality ? sides.Modality () : sides.Diff ());
        int same = modality ? DIFFERENCE_FILE_AND_DEFINITION : DIFFERENCE_NONE;
        int own  = modality ? DIFFERENCE_FILE_AND_DEFINITION : DIFFERENCE_BYTES;
        for (Attribute *list : {sides.merged.first, sides.merged.first->item[0]}) {
            for (int i = 0; i < 3; i++) {
                Attribute *record = All_Bits_Record (list, i);
                ASSERT_NE (nullptr, record);
                EXPECT_EQ (own, record->flags) << i;
                EXPECT_NE (nullptr, strstr (reinterpret_cast<char *> (record->data), "\"one \""));
            }
            for (Attribute *record = list; record->group != 0x0011; record = record->next)
                EXPECT_EQ (same, record->flags) << std::hex << record->group;
        }
    }
}

// An entry that only the definition has is blue, and no difference for what is around it.
TEST (AttributeComparison, TagOfAllBitsInTheDefinitionOnly) {
    Log_Recorder log;
    Sides        sides;
    sides.a.Text (0x0010, 0x0010, "PN", "A^");
    sides.b.Text (0x0010, 0x0010, "PN", "");
    Attribute *entry = sides.b.Text (0xFFFF, 0xFFFF, "", "");
    entry->flags     = ORIGIN_MODULE;
    sides.Merge ();
    EXPECT_EQ (1, sides.Modality ());
    EXPECT_EQ (DIFFERENCE_FILE_AND_DEFINITION, sides.merged.first->flags);
    EXPECT_EQ (DIFFERENCE_NONE, All_Bits_Record (sides.merged.first, 2)->flags);
}

TEST (AttributeComparison, MemoryFailureEndsTheTagOnly) {
    struct Case {
        long        n;
        const char *message;
    };
    for (const Case &test : {Case {1, "memory error in strdup (var=tag->data)"},
                             Case {2, "memory error in strdup (var=tag->description)"}}) {
        for (bool modality : {false, true}) {
            Log_Recorder log;
            long         live = Memory_Live ();
            {
                Sides      sides;
                Attribute *a   = sides.a.Text (0x0010, 0x0010, "PN", "A^");
                a->description = Memory_Strdup (nullptr, HERE ("description", 0, 0), "text");
                sides.a.Text (0x0010, 0x0020, "LO", "1 ");
                sides.Merge ();
                Memory_Fail_At (test.n);
                EXPECT_EQ (1, modality ? sides.Modality () : sides.Diff ());
                EXPECT_EQ (1, Memory_Failed ());
                Memory_Fail_At (0);
                EXPECT_EQ (1, log.Count (LOG_ERROR, test.message)) << log.All ();
                EXPECT_EQ (1, log.Count (LOG_ERROR, "of attribute_comparison \n"));
                EXPECT_EQ (DIFFERENCE_NONE, sides.Found (0x0010, 0x0010)->flags);
                EXPECT_EQ (modality ? DIFFERENCE_FILE_ONLY : DIFFERENCE_ONLY_A, sides.Found (0x0010, 0x0020)->flags);
            }
            EXPECT_EQ (live, Memory_Live ());
        }
    }
}

// A sequence whose texts can't be kept isn't entered either.
TEST (AttributeComparison, MemoryFailureLeavesItemsOut) {
    Log_Recorder log;
    Sides        sides;
    Add_Sequence (&sides.a, {"1.2"});
    sides.Merge ();
    Memory_Fail_At (1);
    EXPECT_EQ (0, sides.Diff ());
    Memory_Fail_At (0);
    EXPECT_EQ (0, log.Count (LOG_AUDIT));
}

// --- modality walk ---------------------------------------------------------

TEST (AttributeComparison, ModalityWalkCountsTheAttributesOfTheFile) {
    Log_Recorder log;
    Sides        sides;
    char         any[]      = "*";
    char        *anything[] = {any};
    Skip (&sides.settings, anything, anything, 1);
    sides.a.Text (0x0008, 0x0060, "CS", "CT");
    Add_Sequence (&sides.a, {"1.2", "1.3"});
    sides.a.Text (0x0010, 0x0010, "PN", "A^");
    sides.b.Text (0x0008, 0x0060, "CS", "");
    Add_Sequence (&sides.b, {"1.2"});
    sides.b.Text (0x0010, 0x0020, "LO", "");
    sides.Merge ();
    EXPECT_EQ (7, sides.Modality ());
    EXPECT_TRUE (log.lines.empty ()) << log.All ();
    EXPECT_EQ (DIFFERENCE_FILE_AND_DEFINITION, sides.Found (0x0008, 0x0060)->flags);
    EXPECT_EQ (DIFFERENCE_FILE_AND_DEFINITION, sides.Found (0x0008, 0x1150, 0x1140, 0)->flags);
    EXPECT_EQ (DIFFERENCE_FILE_ONLY, sides.Found (0x0008, 0x1150, 0x1140, 1)->flags);
    EXPECT_EQ (DIFFERENCE_FILE_ONLY, sides.Found (0x0010, 0x0010)->flags);
    EXPECT_EQ (DIFFERENCE_NONE, sides.Found (0x0010, 0x0020)->flags);
    EXPECT_STREQ ("       \"CT\"", reinterpret_cast<char *> (sides.Found (0x0008, 0x0060)->data));
    EXPECT_STREQ ("", reinterpret_cast<char *> (sides.Found (0x0010, 0x0020)->data));
}

TEST (AttributeComparison, ModalityValueTextIsCutToSixtyColumns) {
    Log_Recorder log;
    Sides        sides;
    sides.a.Text (0x0008, 0x0070, "LO", std::string (64, 'a'));
    sides.Merge ();
    EXPECT_EQ (1, sides.Modality ());
    EXPECT_EQ ("       \"" + std::string (59, 'a'), reinterpret_cast<char *> (sides.merged.first->data));
}

// --- value text ------------------------------------------------------------

static std::string Text_Of (const char *vr_file, const char *vr, const std::string &bytes, int32_t length = NO_LENGTH) {
    Tree tree;
    return Value_Text (nullptr, tree.Add (0x0011, 0x1001, vr_file, vr, bytes, length));
}

static std::string Text_Of (const char *vr, const std::string &bytes) { return Text_Of (vr, "", bytes); }

TEST (ValueText, NoTagAndNoValue) {
    EXPECT_STREQ ("(no tag)", Value_Text (nullptr, nullptr));
    for (const char *vr : {"PN", "US", "FD", "OB", "SQ", "UN"}) EXPECT_EQ ("(empty)", Text_Of (vr, ""));
}

TEST (ValueText, Texts) {
    for (const char *vr : {"AE", "AS", "CS", "DA", "DS", "DT", "IS", "LO", "LT", "PN", "SH", "ST", "TM", "UI", "UT"}) {
        EXPECT_EQ ("\"A\\B \"", Text_Of (vr, "A\\B ")) << vr;
        EXPECT_EQ ("\"A\\B \"", Text_Of ("", vr, "A\\B ")) << vr;
    }
}

TEST (ValueText, TextIsCutAtSixtyBytes) {
    EXPECT_EQ ("\"" + std::string (59, 'x') + "\"", Text_Of ("LO", std::string (59, 'x')));
    EXPECT_EQ ("\"" + std::string (60, 'x') + "\"", Text_Of ("LO", std::string (60, 'x')));
    EXPECT_EQ ("\"" + std::string (60, 'x') + "\"", Text_Of ("LO", std::string (61, 'x')));
}

TEST (ValueText, TextEndsAtItsFirstZeroByte) {
    EXPECT_EQ ("\"1.2.840.10008.1.2\"", Text_Of ("UI", std::string ("1.2.840.10008.1.2\0", 18)));
    EXPECT_EQ ("\"\"", Text_Of ("UI", std::string ("\0\0", 2)));
}

TEST (ValueText, TextWithoutBytes) {
    EXPECT_EQ ("\"\"", Text_Of ("LO", "", "", LENGTH_UNDEFINED));
    EXPECT_EQ ("\"\"", Text_Of ("LO", "", "", 8));
    EXPECT_EQ ("", Text_Of ("US", "", "", 8));
    EXPECT_EQ ("", Text_Of ("FL", "", "", 8));
    EXPECT_EQ ("", Text_Of ("OB", "", "", 8));
    EXPECT_EQ ("", Text_Of ("OB", "", "", LENGTH_UNDEFINED));
}

TEST (ValueText, Integers) {
    EXPECT_EQ ("65535", Text_Of ("US", "\xFF\xFF"));
    EXPECT_EQ ("-1 \\ 1", Text_Of ("SS", std::string ("\xFF\xFF\1\0", 4)));
    EXPECT_EQ ("-2", Text_Of ("SL", "\xFE\xFF\xFF\xFF"));
    EXPECT_EQ ("513", Text_Of ("UL", std::string ("\1\2\0\0", 4)));
    EXPECT_EQ ("", Text_Of ("US", "\1"));
}

TEST (ValueText, AtMostTenIntegers) {
    std::string ten (20, '\0'), eleven (22, '\0'), many (200000, '\0');
    std::string shown = "0 \\ 0 \\ 0 \\ 0 \\ 0 \\ 0 \\ 0 \\ 0 \\ 0 \\ 0";
    EXPECT_EQ (shown, Text_Of ("US", ten));
    EXPECT_EQ (shown + "...", Text_Of ("US", eleven));
    EXPECT_EQ (shown + "...", Text_Of ("US", many));
}

TEST (ValueText, LongNumbersAreCutToTheBuffer) {
    std::string text = Text_Of ("SL", std::string (44, '\x81'));
    EXPECT_EQ (62u, text.size ());
    EXPECT_EQ ("-2122219135 \\ -2122219135 \\ -2122219135 \\ -2122219135 \\ -21222", text);
}

TEST (ValueText, FloatingPoint) {
    EXPECT_EQ ("1.500 \\ -2.000", Text_Of ("FL", std::string ("\0\0\xC0\x3F\0\0\0\xC0", 8)));
    EXPECT_EQ ("1.500", Text_Of ("FD", std::string ("\0\0\0\0\0\0\xF8\x3F", 8)));
    EXPECT_EQ ("", Text_Of ("FD", std::string ("\0\0\0\0\0\0\xF8\x3F\0\0\0\0", 12)));
    EXPECT_EQ ("", Text_Of ("FD", std::string (100, '\0')));
}

TEST (ValueText, DotsFollowEveryOneOfManyFloats) {
    EXPECT_EQ ("0.000 \\ 0.000 \\ 0.000 \\ 0.000 \\ 0.000 \\ 0.000 \\ 0.000 \\ 0.000 ",
               Text_Of ("FL", std::string (40, '\0')));
    EXPECT_EQ ("0.000... \\ 0.000... \\ 0.000... \\ 0.000... \\ 0.000... \\ 0.000..",
               Text_Of ("FL", std::string (44, '\0')));
}

TEST (ValueText, Bytes) {
    EXPECT_EQ ("01 AB ", Text_Of ("OB", "\x01\xAB"));
    EXPECT_EQ ("00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 ", Text_Of ("OB", std::string (16, '\0')));
    EXPECT_EQ ("00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 ...", Text_Of ("OB", std::string (17, '\0')));
}

TEST (ValueText, Words) {
    EXPECT_EQ ("01AB 23", Text_Of ("OW", "\x01\xAB\x23").substr (0, 7));
    EXPECT_EQ ("0000 0000 0000 0000 0000 0000 0000 0000 ", Text_Of ("OW", std::string (16, '\0')));
    EXPECT_EQ ("0000 0000 0000 0000 0000 0000 0000 0000 ...", Text_Of ("OW", std::string (17, '\0')));
}

TEST (ValueText, SequencesAndOthers) {
    EXPECT_EQ ("(sequence)", Text_Of ("SQ", "", "", LENGTH_UNDEFINED));
    for (const char *vr : {"AT", "OF", "UN", "RT", "Ia", "Ib", "ZZ", ""}) EXPECT_EQ ("", Text_Of (vr, "ABCD")) << vr;
}

TEST (ValueText, DoesNotTouchTheAttribute) {
    Tree       tree;
    Attribute *attribute = tree.Text (0x0011, 0x1001, "US", std::string (64, '\1'));
    attribute->vm        = 5;
    Value_Text (nullptr, attribute);
    EXPECT_EQ (5, attribute->vm);
    EXPECT_EQ (64, attribute->length);
}
