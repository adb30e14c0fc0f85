#include "compare/comparison_run.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <system_error>

#include "attribute/NEMA_Tag_Attribute.h"
#include "compare/attribute_comparison.h"
#include "compare/difference_list.h"
#include "tables/data_dictionary.h"
#include "tests/support/examples.h"
#include "tests/support/lists.h"
#include "tests/support/log_recorder.h"
#include "tests/support/stream.h"
#include "tests/support/temporary.h"
#include "util/error_text.h"
#include "util/memory.h"

// Two files in a directory of their own, and a run over them.
struct Pair_Run {
    Temporary_Directory directory;
    Settings            settings = {};
    std::string         a, b;

    Pair_Run () { settings.mode_start = MODE_EXPLICIT; }
    ~Pair_Run () { Comparison_Free (nullptr); }

    void Write (const Stream &stream_a, const Stream &stream_b) {
        a = directory.Write ("a.dcm", stream_a.bytes);
        b = directory.Write ("b.dcm", stream_b.bytes);
    }
    int Start (int batch) { return Comparison_Start (nullptr, &settings, a.c_str (), b.c_str (), batch); }
    int Run (int batch) { return Comparison_Run (nullptr, &settings, a.c_str (), b.c_str (), batch); }
};

static Stream File_Of (const char *name, int items = 1) {
    Stream stream = Stream_Begin_File (EXPLICIT_LITTLE);
    Stream_Open_Sequence (&stream, 0x0008, 0x1140, false);
    for (int i = 0; i < items; i++) {
        Stream_Open_Item (&stream, true);
        Stream_Add_Text (&stream, 0x0008, 0x1150, "UI", "1.2.3");
        Stream_Close_Item (&stream);
    }
    Stream_Close_Sequence (&stream);
    Stream_Add_Text (&stream, 0x0010, 0x0010, "PN", name);
    return stream;
}

static const Attribute *Merged (uint16_t group, uint16_t element) {
    for (const Attribute *record = Comparison_Last.merged; record; record = record->next)
        if (record->group == group && record->element == element) return record;
    return nullptr;
}

static int Place (const Log_Recorder &log, int kind, const std::string &text) {
    for (size_t i = 0; i < log.lines.size (); i++)
        if (log.lines[i].kind == kind && log.lines[i].text == text) return static_cast<int> (i);
    return -1;
}

// --- two files -------------------------------------------------------------

TEST (ComparisonRun, BatchReportsNamesAndCount) {
    Pair_Run     run;
    Log_Recorder log;
    run.Write (File_Of ("Doe^John"), File_Of ("Doe^Jane", 2));
    EXPECT_EQ (2, run.Start (1));
    ASSERT_EQ (11u, log.lines.size ()) << log.All ();
    EXPECT_EQ ("    \x02"
               "Compare A: \x01" +
                   run.a,
               log.lines[0].text);
    EXPECT_EQ ("    \x02      /vs/     B: \x01" + run.b, log.lines[1].text);
    EXPECT_EQ ("    Reading: " + run.a, log.lines[2].text);
    EXPECT_EQ (LOG_THREAD, log.lines[3].kind);
    EXPECT_EQ ("", log.lines[4].text);
    EXPECT_EQ ("    Reading: " + run.b, log.lines[5].text);
    EXPECT_EQ (LOG_THREAD, log.lines[6].kind);
    EXPECT_EQ (LOG_AUDIT, log.lines[7].kind);
    EXPECT_EQ (LOG_AUDIT, log.lines[8].kind);
    EXPECT_EQ ("\xF1\x02"
               "Found \x01"
               "2\x02 differences",
               log.lines[9].text);
    EXPECT_EQ ("Found 2 differences", log.lines[10].text);
    EXPECT_EQ (LOG_AUDIT, log.lines[10].kind);
    for (size_t i : {0, 1, 2, 4, 5, 9}) EXPECT_EQ (LOG_REPORT, log.lines[i].kind);
    EXPECT_EQ (nullptr, Comparison_Last.merged);
}

TEST (ComparisonRun, EqualFilesReportNoChanges) {
    for (int batch : {0, 1}) {
        Pair_Run     run;
        Log_Recorder log;
        run.Write (File_Of ("Doe^John"), File_Of ("Doe^John"));
        EXPECT_EQ (0, run.Start (batch));
        EXPECT_EQ (0, log.Count (LOG_AUDIT)) << log.All ();
        int told = 0;
        for (const Log_Line &line : log.lines) told += line.kind == LOG_REPORT && line.text == "\xF1\x02No changes";
        EXPECT_EQ (batch ? 1 : 2, told);
    }
}

// The result of an interactive run is told by the run and again by its caller.
TEST (ComparisonRun, InteractiveReportsTheCountTwice) {
    Pair_Run     run;
    Log_Recorder log;
    run.Write (File_Of ("Doe^John"), File_Of ("Doe^Jane"));
    EXPECT_EQ (1, run.Start (0));
    EXPECT_EQ (1, log.Count (LOG_REPORT, "    Analysing differences"));
    EXPECT_EQ (2, log.Count (LOG_REPORT, "Found 1 differences"));
    EXPECT_EQ (2, log.Count (LOG_AUDIT, "Found 1 differences"));
}

TEST (ComparisonRun, RunAloneIsSilentAboutTheCountInBatch) {
    Pair_Run     run;
    Log_Recorder log;
    run.Write (File_Of ("Doe^John"), File_Of ("Doe^Jane"));
    EXPECT_EQ (1, run.Run (1));
    EXPECT_FALSE (log.Contains ("Found"));
    EXPECT_FALSE (log.Contains ("Compare A"));
}

TEST (ComparisonRun, ARunMayBeRepeatedWithTheNamesThatTheLastOneKept) {
    Pair_Run run;
    run.Write (File_Of ("Doe^John"), File_Of ("Doe^Jane"));
    EXPECT_EQ (1, run.Run (1));
    EXPECT_EQ (1, Comparison_Run (nullptr, &run.settings, Comparison_Last.Name_File_B, Comparison_Last.Name_File_A, 1));
    EXPECT_EQ (run.b, Comparison_Last.Name_File_A);
    EXPECT_EQ (run.a, Comparison_Last.Name_File_B);
}

TEST (ComparisonRun, NamesAreKept) {
    Pair_Run     run;
    Log_Recorder log;
    run.Write (File_Of ("Doe^John"), File_Of ("Doe^Jane"));
    run.Run (1);
    EXPECT_EQ (run.a, Comparison_Last.Name_File_A);
    EXPECT_EQ (run.b, Comparison_Last.Name_File_B);
    Comparison_Run (nullptr, &run.settings, run.b.c_str (), "", 1);
    EXPECT_EQ (run.b, Comparison_Last.Name_File_A);
    EXPECT_EQ (nullptr, Comparison_Last.Name_File_B);
    Comparison_Run (nullptr, &run.settings, "", nullptr, 1);
    EXPECT_EQ (nullptr, Comparison_Last.Name_File_A);
}

TEST (ComparisonRun, SkippedTagsAreLeftOut) {
    Pair_Run     run;
    Log_Recorder log;
    char         group[] = "0010", element[] = "00*";
    char        *groups[] = {group}, *elements[] = {element};
    run.settings.Nb_Skip      = 1;
    run.settings.Skip_Group   = groups;
    run.settings.Skip_Element = elements;
    run.Write (File_Of ("Doe^John"), File_Of ("Doe^Jane"));
    EXPECT_EQ (0, run.Run (0));
    EXPECT_EQ (DIFFERENCE_SKIPPED, Merged (0x0010, 0x0010)->flags);
}

// --- merged list -----------------------------------------------------------

TEST (ComparisonRun, MergedListHoldsBothSides) {
    Pair_Run     run;
    Log_Recorder log;
    Stream       b = File_Of ("Doe^Jane", 2);
    Stream_Add_Text (&b, 0x0010, 0x0020, "LO", "ID");
    run.Write (File_Of ("Doe^John"), b);
    EXPECT_EQ (3, run.Run (0));
    EXPECT_EQ ("(0002,0010) (0008,1140)[(0008,1150)][(0008,1150)] (0010,0010) (0010,0020)",
               Outline (Comparison_Last.merged));
    EXPECT_EQ (DIFFERENCE_NONE, Merged (0x0008, 0x1140)->flags);
    EXPECT_EQ (DIFFERENCE_NONE, Merged (0x0008, 0x1140)->item[0]->flags);
    EXPECT_EQ (DIFFERENCE_ONLY_B, Merged (0x0008, 0x1140)->item[1]->flags);
    EXPECT_EQ (DIFFERENCE_BYTES, Merged (0x0010, 0x0010)->flags);
    EXPECT_EQ (3, Merged (0x0010, 0x0010)->diff_a);
    EXPECT_EQ (DIFFERENCE_ONLY_B, Merged (0x0010, 0x0020)->flags);
    EXPECT_STREQ ("Patient's Name", Merged (0x0010, 0x0010)->description);
    EXPECT_EQ (std::string (50, ' ') + "\"Doe^John\" /vs/ \"Doe^Jane\"",
               reinterpret_cast<const char *> (Merged (0x0010, 0x0010)->data));
}

TEST (ComparisonRun, NewRunReplacesTheMergedList) {
    Pair_Run     run;
    Log_Recorder log;
    run.Write (File_Of ("Doe^John"), File_Of ("Doe^Jane"));
    run.Run (0);
    Stream small = Stream_Begin_File (EXPLICIT_LITTLE);
    run.Write (small, small);
    run.Run (0);
    EXPECT_EQ ("(0002,0010)", Outline (Comparison_Last.merged));
    run.Run (1);
    EXPECT_EQ (nullptr, Comparison_Last.merged);
}

// --- a file and its definition ---------------------------------------------

TEST (ComparisonRun, OneFileCountsItsAttributes) {
    Pair_Run     run;
    Log_Recorder log;
    run.Write (File_Of ("Doe^John", 2), File_Of (""));
    run.b = "";
    EXPECT_EQ (5, run.Start (0));
    EXPECT_TRUE (log.Has (LOG_REPORT, "    \x02      /vs/     B: \x01Modality description")) << log.All ();
    EXPECT_EQ (1, log.Count (LOG_REPORT, "    Reading: "));
    EXPECT_EQ (2, log.Count (LOG_AUDIT, "Found 5 differences"));
    EXPECT_EQ (2, log.Count (LOG_AUDIT));
    EXPECT_EQ ("(0002,0010) (0008,1140)[(0008,1150)][(0008,1150)] (0010,0010)", Outline (Comparison_Last.merged));
    EXPECT_EQ (DIFFERENCE_FILE_ONLY, Merged (0x0010, 0x0010)->flags);
    EXPECT_EQ (5, run.Run (1));
}

// --- missing and unreadable files ------------------------------------------

static void Expect_Missing (const Log_Recorder &log, const std::string &name) {
    for (int kind : {LOG_REPORT, LOG_AUDIT}) {
        int place = Place (log, kind,
                           "\xF1\x04"
                           "ERROR:\x02 Unable to open file: " +
                               name);
        ASSERT_LE (0, place) << log.All ();
        ASSERT_LT (static_cast<size_t> (place) + 1, log.lines.size ());
        EXPECT_EQ (kind, log.lines[static_cast<size_t> (place) + 1].kind);
        EXPECT_EQ (0u, log.lines[static_cast<size_t> (place) + 1].text.find ("\x02    [ERROR_FILE_NOT_FOUND] "));
    }
    EXPECT_EQ (6u, log.lines.size ()) << log.All ();
}

TEST (ComparisonRun, MissingFileFailsInBatch) {
    for (bool first : {true, false}) {
        Pair_Run     run;
        Log_Recorder log;
        run.Write (File_Of ("Doe^John"), File_Of ("Doe^Jane"));
        (first ? run.a : run.b) = run.directory.File ("missing.dcm");
        EXPECT_EQ (-3, run.Start (1));
        Expect_Missing (log, first ? run.a : run.b);
    }
}

TEST (ComparisonRun, EmptySecondNameFailsInBatchBeforeReading) {
    Pair_Run     run;
    Log_Recorder log;
    run.Write (File_Of ("Doe^John"), File_Of ("Doe^Jane"));
    run.b = "";
    EXPECT_EQ (COMPARISON_FAILED, run.Start (1));
    EXPECT_EQ (2u, log.lines.size ()) << log.All ();
    EXPECT_EQ (COMPARISON_FAILED, Comparison_Start (nullptr, &run.settings, run.a.c_str (), nullptr, 1));
}

TEST (ComparisonRun, EmptyFirstNameFailsInBatch) {
    Pair_Run     run;
    Log_Recorder log;
    run.Write (File_Of ("Doe^John"), File_Of ("Doe^Jane"));
    EXPECT_EQ (COMPARISON_FAILED, Comparison_Start (nullptr, &run.settings, "", run.b.c_str (), 1));
    EXPECT_TRUE (log.Contains ("Unable to open file: "));
}

// A file that was named and can't be read is absent, not a reason to compare with a definition.
TEST (ComparisonRun, UnreadableFileMakesTheOtherOneAbsent) {
    for (int batch : {0, 1}) {
        for (bool first : {true, false}) {
            Pair_Run     run;
            Log_Recorder log;
            run.Write (File_Of ("Doe^John"), File_Of ("Doe^John"));
            (first ? run.a : run.b) = run.directory.path;
            EXPECT_EQ (4, run.Start (batch));
            EXPECT_EQ (1, log.Count (LOG_WARNING, "Unable to open file"));
            EXPECT_EQ (4, log.Count (LOG_AUDIT, first ? "+ " : "- ")) << log.All ();
            if (!batch) {
                EXPECT_EQ (first ? DIFFERENCE_ONLY_B : DIFFERENCE_ONLY_A, Merged (0x0010, 0x0010)->flags);
            }
        }
    }
}

TEST (ComparisonRun, TwoUnreadableFilesAreEqual) {
    Pair_Run     run;
    Log_Recorder log;
    run.a = run.directory.path;
    run.b = run.directory.Write ("empty.dcm", std::string ());
    EXPECT_EQ (0, run.Start (1));
    EXPECT_EQ (1, log.Count (LOG_WARNING, "End of File while reading: (0 /vs/ 4)"));
    EXPECT_EQ (0, run.Start (0));
    EXPECT_EQ (nullptr, Comparison_Last.merged);
}

TEST (ComparisonRun, MissingFilesAreReadAsEmptyWhenInteractive) {
    Pair_Run     run;
    Log_Recorder log;
    run.a = run.directory.File ("missing.dcm");
    run.b = "";
    EXPECT_EQ (0, run.Start (0));
    EXPECT_EQ (1, log.Count (LOG_WARNING, "Unable to open file"));
}

// --- traces ----------------------------------------------------------------

TEST (ComparisonRun, ListsAreTracedInTheirOrder) {
    static const char *const titles[] = {
        "-----                       Stool DICOM File A                           ----- ",
        "-----                       Stool DICOM File B                           ----- ",
        "-----                       Stool DICOM Merge                            ----- "};
    for (int batch : {0, 1}) {
        Pair_Run     run;
        Log_Recorder log (1);
        run.Write (File_Of ("Doe^John"), File_Of ("Doe^Jane"));
        run.Run (batch);
        int before = 0;
        for (int i = 0; i < (batch ? 2 : 3); i++) {
            int place = Place (log, LOG_TRACE1, titles[i]);
            ASSERT_LT (before, place) << titles[i];
            EXPECT_EQ ("\n\n\n", log.lines[static_cast<size_t> (place) - 2].text);
            EXPECT_EQ (std::string (79, '-'), log.lines[static_cast<size_t> (place) + 1].text);
            before = place;
        }
        EXPECT_LT (before, Place (log, LOG_TRACE1, "==> 1 dif"));
        EXPECT_EQ (batch ? 2 : 3, log.Count (LOG_TRACE1, "Stool syntax: group & element color:"));
        EXPECT_EQ (batch ? 0 : 1, log.Count (LOG_TRACE1, "Stool DICOM Merge"));
    }
}

TEST (ComparisonRun, NoTraceAtLevelZero) {
    Pair_Run     run;
    Log_Recorder log;
    run.Write (File_Of ("Doe^John"), File_Of ("Doe^Jane"));
    run.Run (0);
    EXPECT_EQ (0, log.Count (LOG_TRACE1));
}

// --- rows ------------------------------------------------------------------

static const char *Title () { return Rows.count ? Rows.rows[0].name : nullptr; }

TEST (ComparisonRun, InteractiveRunLeavesTitledRows) {
    Pair_Run     run;
    Log_Recorder log;
    run.Write (File_Of ("Doe^John"), File_Of ("Doe^Jane"));
    run.Run (0);
    EXPECT_STREQ ("a /vs/ b", Title ());
    ASSERT_LT (4, Rows.count);
    EXPECT_EQ (Comparison_Last.merged, Rows.rows[1].attribute);
    EXPECT_GT (Rows.count, Rows.visible) << "sequences are folded";
    EXPECT_EQ (Rows.count - 1, Rows_At (Rows.visible - 1));
    EXPECT_EQ (2, Rows.rows[Rows.count - 1].code) << log.All ();

    run.b = "";
    run.Run (0);
    EXPECT_STREQ ("a", Title ());
    EXPECT_EQ (Comparison_Last.merged, Rows.rows[1].attribute);
}

TEST (ComparisonRun, TitleIsMadeOfBaseNames) {
    static const struct {
        const char *a, *b, *title;
    } NAMES[] = {
        {"/no/where/one.two.dcm", "x/three", "one.two /vs/ three"},
        {"/no/where/.hidden", "", ".hidden"},
        {"/no/where/", "b.dcm", " /vs/ b"},
        {"", "b.dcm", " /vs/ b"},
        {"", "", ""},
        {"50%s.dcm", "%n%n", "50%s /vs/ %n%n"},
    };
    for (const auto &names : NAMES) {
        Pair_Run     run;
        Log_Recorder log;
        run.a = names.a;
        run.b = names.b;
        run.Run (0);
        EXPECT_STREQ (names.title, Title ());
        EXPECT_EQ (1, Rows.count);
        EXPECT_EQ (1, Rows.visible);
    }
}

TEST (ComparisonRun, TitleHasAnyLength) {
    Pair_Run     run;
    Log_Recorder log;
    run.a = std::string (3000, 'a');
    run.b = std::string (20000, 'b');
    run.Run (0);
    EXPECT_EQ (run.a + " /vs/ " + run.b, Title ());
}

TEST (ComparisonRun, BatchRunLeavesNoRows) {
    Pair_Run     run;
    Log_Recorder log;
    run.Write (File_Of ("Doe^John"), File_Of ("Doe^Jane"));
    run.Run (0);
    EXPECT_LT (0, Rows.count);
    run.Run (1);
    EXPECT_EQ (0, Rows.count);
    EXPECT_EQ (0, Rows.visible);
    run.Run (0);
    Comparison_Free (nullptr);
    EXPECT_EQ (0, Rows.count);
}

// The rows point into the merged list of their run. While the next one is on, the window may be drawn: without rows.
static int rows_meanwhile;

static int Look_At_Rows (Window, int kind, const char *text) {
    if (kind == LOG_REPORT && Clean (text).find ("differences") == std::string::npos) rows_meanwhile += Rows.count;
    return 1;
}

TEST (ComparisonRun, OldRowsAreGoneDuringARun) {
    Pair_Run     run;
    Log_Recorder log;
    run.Write (File_Of ("Doe^John"), File_Of ("Doe^Jane"));
    run.Run (0);
    rows_meanwhile = 0;
    Log_Sink_Set (Look_At_Rows);
    run.Run (0);
    EXPECT_EQ (0, rows_meanwhile);
    EXPECT_LT (0, Rows.count);
}

TEST (ComparisonRun, TitleWithoutMemoryLeavesRowsWithoutTitle) {
    Dictionary_Build (nullptr);
    int told = 0;
    for (long n = 1, failed = 1; failed; n++) {
        Pair_Run     run;
        Log_Recorder log;
        run.Write (File_Of ("Doe^John"), File_Of ("Doe^Jane"));
        Memory_Fail_At (n);
        int count = run.Run (0);
        failed    = Memory_Failed ();
        Memory_Fail_At (0);
        if (!log.Count (LOG_ERROR, "memory error in strdup (var=List->name)")) continue;
        told++;
        EXPECT_EQ (0, count);
        EXPECT_EQ (nullptr, Title ());
        EXPECT_EQ (4, Rows.visible);
    }
    EXPECT_EQ (2, told);
}

// --- merged values ---------------------------------------------------------

// Texts and their blocks are owned, values of the file would be shared bytes without an end.
static void Expect_Texts (const Attribute *list, const char *part) {
    for (const Attribute *record = list; record; record = record->next) {
        const char *text = reinterpret_cast<const char *> (record->data);
        EXPECT_TRUE (!text || strstr (text, part)) << record->group;
        for (int32_t i = 0; i < record->nb_item; i++) Expect_Texts (record->item[i], part);
    }
}

TEST (ComparisonRun, MergedDataAreTextsOrNone) {
    Dictionary_Build (nullptr);
    int without = 0;
    for (long n = 0, failed = 1; failed; n++) {
        Pair_Run     run;
        Log_Recorder log;
        run.Write (File_Of ("Doe^John"), File_Of ("Doe^Jane", 2));
        Memory_Fail_At (n);
        run.Run (0);
        failed = !n || Memory_Failed ();
        Memory_Fail_At (0);
        Expect_Texts (Comparison_Last.merged, " /vs/ ");
        if (log.Count (LOG_ERROR, "(var=tag->data)")) without++;
    }
    EXPECT_LT (4, without);
}

// --- failures --------------------------------------------------------------

TEST (ComparisonRun, MemoryFailureForANameEndsTheRun) {
    for (long n : {1L, 2L}) {
        Pair_Run     run;
        Log_Recorder log;
        run.Write (File_Of ("Doe^John"), File_Of ("Doe^Jane"));
        Memory_Fail_At (n);
        EXPECT_EQ (0, run.Run (1));
        EXPECT_EQ (1, Memory_Failed ());
        Memory_Fail_At (0);
        ASSERT_EQ (1u, log.lines.size ()) << log.All ();
        EXPECT_EQ (1, log.Count (LOG_ERROR, " of comparison_run \nmemory error in strdup (var=Name_File_" +
                                                std::string (n == 1 ? "A)" : "B)")));
    }
}

TEST (ComparisonRun, EveryMemoryFailureIsToldAndLeaksNothing) {
    Dictionary_Build (nullptr);
    for (int batch : {1, 0}) {
        for (const char *second : {"b", ""}) {
            long live = Memory_Live ();
            for (long n = 1;; n++) {
                int failed = 0;
                {
                    Pair_Run     run;
                    Log_Recorder log;
                    run.Write (File_Of ("Doe^John", 2), File_Of ("Doe^Jane", 3));
                    if (!*second) run.b = "";
                    Memory_Fail_At (n);
                    run.Run (batch);
                    failed = Memory_Failed ();
                    Memory_Fail_At (0);
                    EXPECT_EQ (failed, log.Count (LOG_ERROR, "memory error in ")) << n << "\n" << log.All ();
                    log.Clear ();
                    EXPECT_EQ (*second ? 2 : 5, run.Run (batch)) << n;
                    EXPECT_EQ (0, log.Count (LOG_ERROR));
                }
                EXPECT_EQ (live, Memory_Live ()) << n;
                if (!failed) break;
                ASSERT_GT (10000, n);
            }
        }
    }
}

// --- a file that shrinks ---------------------------------------------------

static std::string     shrinking_file;
static std::string     heard;
static std::error_code shrink_error;

// Cuts A when B is announced: its pixels are mapped then and not yet looked at.
static int Shrink (Window, int kind, const char *text) {
    if (kind == LOG_WARNING) heard += Clean (text) + "\n";
    if (kind == LOG_REPORT && std::string (text).empty ())
        std::filesystem::resize_file (shrinking_file, 4096, shrink_error);
    return 1;
}

// Where a mapped file can't be cut (Windows), nothing is missing.
TEST (ComparisonRun, FileThatShrinksMeanwhileIsWarnedAbout) {
    Pair_Run     run;
    Log_Recorder log;
    Stream       stream = File_Of ("Doe^John");
    Stream_Add_Bytes (&stream, 0x7FE0, 0x0010, "OW", std::string (200000, 'p'));
    run.Write (stream, stream);
    shrinking_file = run.a;
    heard.clear ();
    Log_Sink_Set (Shrink);
    int count = run.Run (1);
    if (shrink_error) {
        EXPECT_EQ (0, count);
        EXPECT_EQ ("", heard);
    } else {
        EXPECT_EQ (1, count);
        EXPECT_EQ ("WARNING: a file changed while it was read: its missing bytes count as zero\n", heard);
    }
}
