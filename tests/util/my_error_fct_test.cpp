// The reporting call: what reaches box, console, list, trace file, audit file and error-log file, letter for letter.
#include "util/my_error_fct.h"

#include <string.h>

#include <algorithm>
#include <filesystem>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/system.h"
#include "tests/support/temporary.h"

struct Box {
    std::string text, caption;
    Window_Icon icon;
};

static std::vector<Box>         boxes;
static int                      box_answer;
static std::vector<std::string> shown;

static int Box_Hook (Window, const char *text, const char *caption, Window_Icon icon) {
    boxes.push_back ({text, caption, icon});
    return box_answer;
}

static void List_Hook (Window, const char *text, int over) {
    shown.push_back ((over ? "over " : "line ") + std::string (text));
}

static int Silent (Window, int, const char *) { return 1; }

static int         sink_calls;
static int         sink_kind;
static std::string sink_text;

static int Counting_Sink (Window, int kind, const char *text) {
    sink_calls++;
    sink_kind = kind;
    sink_text = text;
    return 42;
}

// With the line ends that this system's text files have on disk.
static std::string On_Disk (const std::string &text) {
    std::string result;
    for (char c : text) result += c == '\n' ? System_Line_End () : std::string (1, c);
    return result;
}

class MyErrorFct : public testing::Test {
protected:
    void SetUp () override {
        Log_Settings_Reset ();
        Scratch (directory.path);
        Log.program_name    = "Prog";
        Log.program_version = "1.0";
        Log_Sink_Set (Log_Program_Sink);
        Log_List_Set (List_Hook);
        Window_Box_Hook_Set (Box_Hook);
        boxes.clear ();
        shown.clear ();
        sink_calls = 0;
        box_answer = 0;
    }

    void TearDown () override {
        Log_Settings_Reset ();
        Log_Sink_Set (Silent);
        Log_List_Set (nullptr);
        Window_Box_Hook_Set (nullptr);
    }

    static void Name (char *field, const std::string &text) {
        ASSERT_LT (text.size (), static_cast<size_t> (LOG_PATH_SIZE));
        memcpy (field, text.c_str (), text.size () + 1);
    }

    static void Scratch (const std::string &path) { Name (Log.scratch, path); }

    static void Level (int level) { Log.trace_level = static_cast<int8_t> (level); }

    std::string Trace () const { return Read_Whole (directory.File ("trace.dat")); }
    std::string Audit () const { return Read_Whole (directory.File ("audit.dat")); }
    std::string Errors () const { return Read_Whole (directory.File ("Kestrelbay.err")); }
    bool        Exists (const std::string &name) const { return std::filesystem::exists (directory.File (name)); }

    void Forget () {
        for (const char *name : {"trace.dat", "audit.dat", "Kestrelbay.err"})
            std::filesystem::remove (directory.File (name));
        boxes.clear ();
        shown.clear ();
        int level = Log.trace_level, mode = Log.audit_mode;
        Log_Settings_Reset ();
        Scratch (directory.path);
        Log.program_name    = "Prog";
        Log.program_version = "1.0";
        Level (level);
        Log.audit_mode = static_cast<uint8_t> (mode);
    }

    Temporary_Directory directory;
};

// --- routing ---------------------------------------------------------------

// A text with display codes, and blanks and tabs around it.
static const char RAW[]   = "\xF1\x04 Found\t\x01"
                            "12\xF0 differences\x02 \t";
static const char CLEAN[] = " Found\t12 differences \t";

// What one kind leaves where; "" nothing. The levels -3..5 at which the trace file gets its line are marked with x.
struct Expected {
    int         kind;
    std::string box;
    std::string list;
    std::string console;
    std::string trace;
    const char *levels;
    std::string audit_timed; // Mode 1, behind the time stamp.
    std::string audit_bare;  // Mode 2.
};

static std::vector<Expected> Program_Routes () {
    const std::string C = CLEAN, R = RAW;
    // clang-format off
    std::vector<Expected> routes = {
        {LOG_ERROR,    C,  "",          "ERROR: " + C + "\n",    "ERROR:   " + C + "\n", "xxx.xxxxx", "Found\t12 differences\n", ""},
        {LOG_WARNING,  "", "line " + R, "WARNING: " + C + "\n",  "WARNING: " + C + "\n", ".xx.xxxxx", "Found\t12 differences\n", ""},
        {LOG_QUESTION, C,  "",          "",                      "",                     ".........", "",                        ""},
        {LOG_REPORT,   "", "line " + R, "REPORT:  " + C + "\n",  "REPORT: " + C + "\n",  "..x.xxxxx", C + "\n",                  ""},
        {LOG_AUDIT,    "", "",          "AUDIT:   " + C + " \n", "",                     ".........", C + "\n",                  C + "\n"},
        {LOG_THREAD,   "", "",          "THREAD:  " + C + "\n",  "THREAD:  " + C + "\n", "..x.xxxxx", C + "\n",                  ""},
        {LOG_ERRLOG,   "", "",          "ERRLOG: " + C + "\n",   "",                     ".........", "",                        ""},
        {LOG_OVER,     "", "over " + R, "OVER:   " + C + "\n",   "OVER: " + C + "\n",    "..x.xxxxx", "",                        ""},
    };
    const char *const depths[] = {"....xxxxx", ".....xxxx", "......xxx", ".......xx", "........x",
                                  ".........", ".........", ".........", "........."};
    // clang-format on
    for (int depth = 1; depth <= 9; depth++) {
        std::string line = std::string (static_cast<size_t> (4 * (depth - 1)), ' ') + C;
        routes.push_back ({LOG_TRACE1 + depth - 1, "", "", "TRACE:   " + line + " \n", "TRACE:   " + line + "\n",
                           depths[depth - 1], "", ""});
    }
    return routes;
}

// "15-Jun-2016 12:34:56 " removed; a text that does not begin so is left and fails the comparison.
static std::string Without_Time (const std::string &text) {
    static const std::regex stamp ("^[0-3][0-9]-[A-Z][a-z][a-z]-[0-9]{4} [0-2][0-9]:[0-5][0-9]:[0-6][0-9] ");
    return std::regex_replace (text, stamp, "@");
}

TEST_F (MyErrorFct, EveryKindReachesItsPlacesAtEveryLevelAndAuditMode) {
    for (const Expected &route : Program_Routes ())
        for (int level = -3; level <= 5; level++)
            for (int mode = 0; mode <= 2; mode++) {
                SCOPED_TRACE (testing::Message () << "kind " << route.kind << " level " << level << " mode " << mode);
                Level (level);
                Log.audit_mode = static_cast<uint8_t> (mode);
                Forget ();
                bool is_trace   = route.kind >= LOG_TRACE1;
                bool on_console = level > 0 && (!is_trace || level > route.kind - LOG_TRACE1);
                testing::internal::CaptureStdout ();
                int         result  = Log_Message (nullptr, route.kind, "%s", RAW);
                std::string console = testing::internal::GetCapturedStdout ();

                EXPECT_EQ (result, route.kind == LOG_QUESTION ? 0 : 1);
                EXPECT_EQ (console, on_console ? route.console : "");
                EXPECT_EQ (Trace (), route.levels[level + 3] == 'x' ? On_Disk (route.trace) : "");
                std::string timed = route.audit_timed.empty () ? "" : "@" + On_Disk (route.audit_timed);
                std::string bare  = On_Disk (route.audit_bare);
                EXPECT_EQ (mode == 1 ? Without_Time (Audit ()) : Audit (), mode == 0 ? "" : mode == 1 ? timed : bare);
                EXPECT_EQ (shown,
                           route.list.empty () ? std::vector<std::string> () : std::vector<std::string> {route.list});
                ASSERT_EQ (boxes.size (), route.box.empty () ? 0u : 1u);
                EXPECT_EQ (boxes.empty () ? "" : boxes[0].text, route.box);
                EXPECT_EQ (std::string (Log_Thread_Text (0)), route.kind == LOG_THREAD ? RAW : "");
                EXPECT_EQ (Exists ("Kestrelbay.err"), route.kind == LOG_ERRLOG);
                EXPECT_EQ (Exists ("trace.dat"), route.levels[level + 3] == 'x');
                EXPECT_EQ (Exists ("audit.dat"), mode == 1 ? !timed.empty () : mode == 2 && !route.audit_bare.empty ());
            }
}

TEST_F (MyErrorFct, TracesThatReachTheSinkBelowZeroGoToTheTraceFileOnly) {
    Level (-1);
    testing::internal::CaptureStdout ();
    EXPECT_EQ (Log_Program_Sink (nullptr, LOG_TRACE2, "deep"), 1);
    EXPECT_EQ (testing::internal::GetCapturedStdout (), "");
    EXPECT_EQ (Trace (), On_Disk ("TRACE:       deep\n"));
}

TEST_F (MyErrorFct, LevelsBelowMinusThreeSilenceEvenErrors) {
    Level (-4);
    EXPECT_EQ (Log_Message (nullptr, LOG_ERROR, "bad"), 1);
    EXPECT_FALSE (Exists ("trace.dat"));
    EXPECT_EQ (boxes.size (), 1u);
    Level (-128);
    Log_Message (nullptr, LOG_ERROR, "bad");
    EXPECT_FALSE (Exists ("trace.dat"));
}

TEST_F (MyErrorFct, UnknownKindsDoNothingInTheSink) {
    Level (5);
    for (int kind : {-1, 0, 9, 10, 20, 128, 129, 132}) EXPECT_EQ (Log_Program_Sink (nullptr, kind, "text"), 1);
    EXPECT_FALSE (Exists ("trace.dat"));
    EXPECT_TRUE (boxes.empty ());
}

TEST_F (MyErrorFct, ErrorBoxHasStopIconAndNoCaption) {
    Log_Message (nullptr, LOG_ERROR,
                 "\x04"
                 "bad %d",
                 7);
    ASSERT_EQ (boxes.size (), 1u);
    EXPECT_EQ (boxes[0].text, "bad 7");
    EXPECT_EQ (boxes[0].caption, "");
    EXPECT_EQ (boxes[0].icon, WINDOW_ICON_ERROR);
}

TEST_F (MyErrorFct, QuestionReturnsItsAnswerUnderTheProgramName) {
    box_answer = 1;
    EXPECT_EQ (Log_Message (nullptr, LOG_QUESTION, "go %s?", "on"), 1);
    box_answer = 0;
    EXPECT_EQ (Log_Message (nullptr, LOG_QUESTION, "go %s?", "on"), 0);
    ASSERT_EQ (boxes.size (), 2u);
    EXPECT_EQ (boxes[0].text, "go on?");
    EXPECT_EQ (boxes[0].caption, "Prog");
    EXPECT_EQ (boxes[0].icon, WINDOW_ICON_QUESTION);
}

TEST_F (MyErrorFct, AnotherAuditModeWritesNothing) {
    Log.audit_mode = 3;
    Log_Message (nullptr, LOG_AUDIT, "text");
    EXPECT_FALSE (Exists ("audit.dat"));
}

TEST_F (MyErrorFct, WithoutAListReportsStillReachTheFiles) {
    Log_List_Set (nullptr);
    Level (-1);
    Log_Message (nullptr, LOG_REPORT, "text");
    EXPECT_EQ (Trace (), On_Disk ("REPORT: text\n"));
}

TEST_F (MyErrorFct, EmptyAndMultiLineTextsKeepTheirForm) {
    Level (-1);
    Log.audit_mode = 1;
    Log_Message (nullptr, LOG_WARNING, "%s", "");
    Log_Message (nullptr, LOG_WARNING, "one\ntwo");
    EXPECT_EQ (Trace (), On_Disk ("WARNING: \nWARNING: one\ntwo\n"));
}

// --- formatting ------------------------------------------------------------

TEST_F (MyErrorFct, TextsAreCutAt10239Characters) {
    Log_Sink_Set (Counting_Sink);
    for (size_t length : {10238, 10239, 10240, 20000}) {
        std::string text (length, 'x');
        Log_Message (nullptr, LOG_REPORT, "%s", text.c_str ());
        EXPECT_EQ (sink_text.size (), length < 10239 ? length : 10239);
    }
}

TEST_F (MyErrorFct, LongestTextReachesTheFilesWhole) {
    Level (-1);
    Log.audit_mode = 2;
    std::string text (20000, 'x');
    Log_Message (nullptr, LOG_REPORT, "%s", text.c_str ());
    Log_Message (nullptr, LOG_AUDIT, "%s", text.c_str ());
    Log_Message (nullptr, LOG_ERRLOG, "%s", text.c_str ());
    std::string cut (10239, 'x');
    EXPECT_EQ (Trace (), On_Disk ("REPORT: " + cut + "\n"));
    EXPECT_EQ (Audit (), On_Disk (cut + "\n"));
    EXPECT_NE (Errors ().find (On_Disk (")========\n" + cut + "\n")), std::string::npos);
    Level (5);
    testing::internal::CaptureStdout ();
    Log_Message (nullptr, LOG_TRACE5, "%s", text.c_str ());
    EXPECT_EQ (testing::internal::GetCapturedStdout (), "TRACE:   " + std::string (16, ' ') + cut + " \n");
}

TEST_F (MyErrorFct, ShallowerLevelDoesNotEvenFormat) {
    Log_Sink_Set (Counting_Sink);
    Level (3);
    // An address that formatting would read, and crash.
    EXPECT_EQ (Log_Message (nullptr, LOG_TRACE4, "%s", reinterpret_cast<const char *> (1)), 1);
    EXPECT_EQ (sink_calls, 0);
    EXPECT_EQ (Log_Message (nullptr, LOG_TRACE3, "%s", "here"), 42);
    EXPECT_EQ (sink_calls, 1);
}

TEST_F (MyErrorFct, TraceThatNobodyReadsIsNotEvenPassed) {
    int  asked = 0;
    auto ask   = [&] { return ++asked; };
    Log_Sink_Set (Counting_Sink);
    Level (3);
    EXPECT_EQ (Log_Message (nullptr, LOG_TRACE4, "%d", ask ()), 1);
    EXPECT_EQ (Log_Message (nullptr, 0, "%d", ask ()), 1);
    EXPECT_EQ (asked, 0);
    EXPECT_EQ (Log_Message (nullptr, LOG_TRACE3, "%d", ask ()), 42);
    EXPECT_EQ (asked, 1);
    EXPECT_EQ ((Log_Message)(nullptr, LOG_TRACE4, "text"), 1);
    EXPECT_EQ (sink_calls, 1);
}

TEST_F (MyErrorFct, HighestLevelsReachTheDeepestTraces) {
    Log_Sink_Set (Counting_Sink);
    Level (8);
    Log_Message (nullptr, LOG_TRACE9, "text");
    EXPECT_EQ (sink_calls, 0);
    Level (9);
    Log_Message (nullptr, LOG_TRACE9, "text");
    EXPECT_EQ (sink_calls, 1);
}

TEST_F (MyErrorFct, MuteSilencesEverything) {
    Log.mute = 1;
    Level (5);
    box_answer = 1;
    for (int kind = -1; kind <= 140; kind++) EXPECT_EQ (Log_Message (nullptr, kind, "text", "more"), 0) << kind;
    EXPECT_FALSE (Exists ("trace.dat"));
    EXPECT_FALSE (Exists ("audit.dat"));
    EXPECT_TRUE (boxes.empty ());
    EXPECT_TRUE (shown.empty ());
}

TEST_F (MyErrorFct, UnlistedKindsWriteNothingAndReturnOne) {
    Log_Sink_Set (Counting_Sink);
    Level (9);
    std::vector<int> kinds = {-1000, -1, 0, 9, 10, 132, 133, 256, 1000};
    for (int kind = 20; kind <= 128; kind++) kinds.push_back (kind);
    for (int kind : kinds) EXPECT_EQ (Log_Message (nullptr, kind, "text"), 1) << kind;
    EXPECT_EQ (sink_calls, 0);
    EXPECT_TRUE (boxes.empty ());
}

TEST_F (MyErrorFct, SinkGetsKindAndTextAndGivesTheResult) {
    Log_Sink_Set (Counting_Sink);
    EXPECT_EQ (Log_Message (nullptr, LOG_REPORT, "%d of %s", 3, "four"), 42);
    EXPECT_EQ (sink_kind, LOG_REPORT);
    EXPECT_EQ (sink_text, "3 of four");
}

TEST_F (MyErrorFct, PlainBoxesTakeCaptionFirst) {
    Log_Sink_Set (Counting_Sink);
    const struct {
        int         kind;
        Window_Icon icon;
    } cases[] = {{LOG_BOX_INFO, WINDOW_ICON_INFORMATION},
                 {LOG_BOX_WARNING, WINDOW_ICON_WARNING},
                 {LOG_BOX_ERROR, WINDOW_ICON_ERROR}};
    for (const auto &one : cases) {
        boxes.clear ();
        EXPECT_EQ (Log_Message (nullptr, one.kind, "100 %d", "%s: %d", "value", 12), 1);
        ASSERT_EQ (boxes.size (), 1u);
        EXPECT_EQ (boxes[0].caption, "100 %d");
        EXPECT_EQ (boxes[0].text, "value: 12");
        EXPECT_EQ (boxes[0].icon, one.icon);
    }
    EXPECT_EQ (sink_calls, 0);
    std::string text (20000, 'x');
    Log_Message (nullptr, LOG_BOX_INFO, "caption", "%s", text.c_str ());
    EXPECT_EQ (boxes.back ().text.size (), 10239u);
}

TEST_F (MyErrorFct, CleanTextKeepsPrintableTabAndLineFeed) {
    std::string all, kept;
    for (int c = 1; c < 256; c++) {
        all += static_cast<char> (c);
        if (c == 9 || c == 10 || (c >= 32 && c <= 126)) kept += static_cast<char> (c);
    }
    char clean[300];
    Log_Clean_Text (all.c_str (), clean, sizeof clean);
    EXPECT_EQ (clean, kept);
}

TEST_F (MyErrorFct, CleanTextFindsEachByteInEachPlace) {
    for (size_t length = 1; length < 20; length++)
        for (size_t place = 0; place < length; place++)
            for (int c = 1; c < 256; c++) {
                std::string text (length, 'x'), kept (text);
                text[place] = static_cast<char> (c);
                if (c == 9 || c == 10 || (c >= 32 && c <= 126)) kept[place] = static_cast<char> (c);
                else kept.erase (place, 1);
                char clean[20];
                Log_Clean_Text (text.c_str (), clean, sizeof clean);
                ASSERT_EQ (clean, kept) << c << " at " << place << " of " << length;
            }
}

TEST_F (MyErrorFct, CleanTextStaysInItsBuffer) {
    char clean[] = "~~~~";
    Log_Clean_Text ("abc", clean, 0);
    EXPECT_STREQ (clean, "~~~~");
    Log_Clean_Text ("abc", clean, 1);
    EXPECT_EQ (clean[0], 0);
    EXPECT_EQ (clean[1], '~');
    Log_Clean_Text ("\x01"
                    "abc",
                    clean, 3);
    EXPECT_STREQ (clean, "ab");
    Log_Clean_Text ("abc", clean, 4);
    EXPECT_STREQ (clean, "abc");
}

TEST_F (MyErrorFct, SectionIsFourLines) {
    Level (2);
    testing::internal::CaptureStdout ();
    Log_Section (nullptr, LOG_TRACE2, "-----  100%  -----");
    testing::internal::GetCapturedStdout ();
    std::string dashes (79, '-');
    EXPECT_EQ (Trace (), On_Disk ("TRACE:       \n\n\n\nTRACE:       " + dashes +
                                  "\nTRACE:       -----  100%  -----\nTRACE:       " + dashes + "\n"));
}

// --- thread ring -----------------------------------------------------------

TEST_F (MyErrorFct, ThreadRingWrapsAt128) {
    for (int i = 0; i < 128; i++) Log_Message (nullptr, LOG_THREAD, "text %d", i);
    EXPECT_STREQ (Log_Thread_Text (0), "text 0");
    EXPECT_STREQ (Log_Thread_Text (127), "text 127");
    Log_Message (nullptr, LOG_THREAD, "text 128");
    EXPECT_STREQ (Log_Thread_Text (0), "text 128");
    EXPECT_STREQ (Log_Thread_Text (1), "text 1");
    EXPECT_STREQ (Log_Thread_Text (-1), "");
    EXPECT_STREQ (Log_Thread_Text (128), "");
}

TEST_F (MyErrorFct, ThreadRingKeepsItsOrderThroughItsWholeIndex) {
    for (int i = 0; i < 65536; i++) Log_Program_Sink (nullptr, LOG_THREAD, "old");
    Log_Program_Sink (nullptr, LOG_THREAD, "first slot again");
    EXPECT_STREQ (Log_Thread_Text (0), "first slot again");
    EXPECT_STREQ (Log_Thread_Text (1), "old");
}

TEST_F (MyErrorFct, ThreadTextsAreCutAt1023BytesAndKeepTheirCodes) {
    std::string text = "\x01" + std::string (1022, 'x');
    Log_Message (nullptr, LOG_THREAD, "%s", text.c_str ());
    Log_Message (nullptr, LOG_THREAD, "%sy", text.c_str ());
    EXPECT_EQ (Log_Thread_Text (0), text);
    EXPECT_EQ (Log_Thread_Text (1), text);
}

TEST_F (MyErrorFct, ResetEmptiesTheThreadRing) {
    Log_Message (nullptr, LOG_THREAD, "one");
    Log_Settings_Reset ();
    EXPECT_STREQ (Log_Thread_Text (0), "");
}

TEST_F (MyErrorFct, AnyThreadMayQueueATextAndWriteItsLines) {
    Log.audit_mode = 1;
    std::thread thread ([] { Log_Message (nullptr, LOG_THREAD, "from elsewhere"); });
    thread.join ();
    EXPECT_STREQ (Log_Thread_Text (0), "from elsewhere");
    EXPECT_EQ (Without_Time (Audit ()), On_Disk ("@from elsewhere\n"));
}

// --- settings --------------------------------------------------------------

TEST_F (MyErrorFct, LibraryDefaults) {
    Log_Settings_Reset ();
    EXPECT_EQ (Log.trace_level, 0);
    EXPECT_EQ (Log.audit_mode, 2);
    EXPECT_EQ (Log.mute, 0);
    EXPECT_STREQ (Log.scratch, "");
    EXPECT_STREQ (Log.trace_name, "trace.dat");
    EXPECT_STREQ (Log.audit_name, "audit.dat");
    EXPECT_STREQ (Log.error_name, "Kestrelbay.err");
    EXPECT_EQ (Log.rolling_limit, 0);
    EXPECT_STREQ (Log.program_name, "No Name");
    EXPECT_STREQ (Log.program_version, "Demo");
    EXPECT_STREQ (Log.program_identifier, "");
    EXPECT_STREQ (Log.program_date, "");
}

// --- files -----------------------------------------------------------------

TEST_F (MyErrorFct, LinesAreAppended) {
    directory.Write ("audit.dat", std::string ("before\n"));
    Log_Message (nullptr, LOG_AUDIT, "one");
    Log_Message (nullptr, LOG_AUDIT, "two");
    EXPECT_EQ (Audit (), "before\n" + On_Disk ("one\ntwo\n"));
}

TEST_F (MyErrorFct, NameWithItsOwnDirectoryStaysThere) {
    std::string own = directory.path + "own" + System_Separator () + "deep" + System_Separator ();
    Name (Log.trace_name, own + "trace.dat");
    Level (-1);
    Log_Message (nullptr, LOG_REPORT, "text");
    EXPECT_EQ (Read_Whole (own + "trace.dat"), On_Disk ("REPORT: text\n"));
    EXPECT_FALSE (Exists ("trace.dat"));
}

TEST_F (MyErrorFct, ScratchDirectoryIsMadeWithAllItsLevels) {
    Scratch (directory.path + "a" + System_Separator () + "b" + System_Separator ());
    Log_Message (nullptr, LOG_AUDIT, "text");
    EXPECT_EQ (Read_Whole (std::string (Log.scratch) + "audit.dat"), On_Disk ("text\n"));
}

TEST_F (MyErrorFct, ScratchDirectoryWithoutSeparatorGetsOne) {
    Scratch (directory.path + "plain");
    Log_Message (nullptr, LOG_AUDIT, "text");
    EXPECT_EQ (Read_Whole (directory.File ("plain") + System_Separator () + "audit.dat"), On_Disk ("text\n"));
}

TEST_F (MyErrorFct, ScratchDirectoryThatCannotBeMadeIsReportedOnce) {
    std::string bad = directory.Write ("file", std::string ("x")) + System_Separator () + "below" + System_Separator ();
    Scratch (bad);
    Level (-1);
    for (int i = 0; i < 5; i++) EXPECT_EQ (Log_Message (nullptr, LOG_REPORT, "text"), 1);
    Log_Message (nullptr, LOG_AUDIT, "text");
    Log_Message (nullptr, LOG_ERRLOG, "text");
    ASSERT_EQ (boxes.size (), 1u);
    EXPECT_EQ (boxes[0].caption, "Error writing to Scratch dir");
    EXPECT_EQ (boxes[0].text,
               "Unable to create directory: \"" + bad + "\"\nMake sure you have the necessary permisions");
    EXPECT_EQ (boxes[0].icon, WINDOW_ICON_ERROR);
    EXPECT_EQ (Log_File_Open ("trace.dat"), nullptr);

    Log_Settings_Reset (); // A new run reports it again.
    Scratch (bad);
    Log_Message (nullptr, LOG_AUDIT, "text");
    EXPECT_EQ (boxes.size (), 2u);
}

TEST_F (MyErrorFct, FileThatCannotBeOpenedLosesItsLineInSilenceAndTheAuditStillRuns) {
    std::filesystem::create_directory (directory.File ("trace.dat"));
    Level (-1);
    Log.audit_mode = 1;
    EXPECT_EQ (Log_Message (nullptr, LOG_WARNING, "text"), 1);
    EXPECT_EQ (Without_Time (Audit ()), On_Disk ("@text\n"));
    EXPECT_TRUE (boxes.empty ());
}

TEST_F (MyErrorFct, EmptyNameOpensNothing) {
    EXPECT_EQ (Log_File_Open (""), nullptr);
    EXPECT_TRUE (boxes.empty ());
}

TEST_F (MyErrorFct, EndlessNamesOpenNothingAndEnd) {
    Level (5);
    // A single name of more than 255 characters is too long for every file system.
    for (size_t length : {std::max<size_t> (System_Directory_Limit () + 1, 256), SYSTEM_PATH_SIZE - 2, SYSTEM_PATH_SIZE,
                          3 * SYSTEM_PATH_SIZE}) {
        std::string name (length, 'd');
        testing::internal::CaptureStdout ();
        EXPECT_EQ (Log_File_Open ((directory.path + name).c_str ()), nullptr);
        EXPECT_EQ (Log_File_Open ((directory.path + name + System_Separator () + "x.dat").c_str ()), nullptr);
        testing::internal::GetCapturedStdout ();
    }
    EXPECT_LE (boxes.size (), 1u);
}

TEST_F (MyErrorFct, FileWithoutRollingHasNoNumber) {
    FILE *file = Log_File_Open ("some.file.txt");
    ASSERT_NE (file, nullptr);
    fclose (file);
    EXPECT_TRUE (Exists ("some.file.txt"));
}

TEST_F (MyErrorFct, RollingTakesTheFirstFileThatHasRoom) {
    Log.rolling_limit = 10;
    directory.Write ("audit_000.dat", std::string (10, 'x'));
    directory.Write ("audit_001.dat", std::string (11, 'x'));
    Log_Message (nullptr, LOG_AUDIT, "12345678"); // With its line end 9 or 10 bytes.
    EXPECT_EQ (Read_Whole (directory.File ("audit_002.dat")), On_Disk ("12345678\n"));
    Log_Message (nullptr, LOG_AUDIT, "9");
    if (std::string (System_Line_End ()).size () == 1)
        EXPECT_EQ (Read_Whole (directory.File ("audit_002.dat")), "12345678\n9\n");
    else EXPECT_EQ (Read_Whole (directory.File ("audit_003.dat")), "9\r\n");
    EXPECT_EQ (Read_Whole (directory.File ("audit_000.dat")), std::string (10, 'x'));
    EXPECT_FALSE (Exists ("audit.dat"));
}

TEST_F (MyErrorFct, RollingPassesOverADirectory) {
    Log.rolling_limit = 10;
    std::filesystem::create_directory (directory.File ("audit_000.dat"));
    Log_Message (nullptr, LOG_AUDIT, "text");
    EXPECT_EQ (Read_Whole (directory.File ("audit_001.dat")), On_Disk ("text\n"));
}

TEST_F (MyErrorFct, RollingEndsAt999WhateverItsSize) {
    Log.rolling_limit = 1;
    for (int i = 0; i < 1000; i++) {
        char name[32];
        snprintf (name, sizeof name, "audit_%03d.dat", i);
        directory.Write (name, std::string ("full"));
    }
    Log_Message (nullptr, LOG_AUDIT, "one");
    Log_Message (nullptr, LOG_AUDIT, "two");
    EXPECT_EQ (Read_Whole (directory.File ("audit_999.dat")), "full" + On_Disk ("one\ntwo\n"));
    EXPECT_FALSE (Exists ("audit_1000.dat"));
    std::filesystem::remove (directory.File ("audit_998.dat"));
    Log_Message (nullptr, LOG_AUDIT, "three");
    EXPECT_EQ (Read_Whole (directory.File ("audit_998.dat")), On_Disk ("three\n"));
}

// --- error log -------------------------------------------------------------

static const char HEADER[] =
    "\r?\n======== Prog 1\\.0 =====\\([0-3][0-9] [A-Z][a-z][a-z] [0-9]{4} [0-2][0-9]:[0-5][0-9]\\)========\r?\n";

TEST_F (MyErrorFct, ErrorLogHeaderComesOnceARunAndNothingIsEverCut) {
    Log_Message (nullptr, LOG_ERRLOG, "\x04one");
    Log_Message (nullptr, LOG_ERRLOG, "two");
    EXPECT_TRUE (std::regex_match (Errors (), std::regex (HEADER + std::string ("one\r?\ntwo\r?\n")))) << Errors ();
    std::string before = Errors ();
    Log_Settings_Reset ();
    Scratch (directory.path);
    Log.program_name    = "Prog";
    Log.program_version = "1.0";
    Log_Message (nullptr, LOG_ERRLOG, "three");
    ASSERT_EQ (Errors ().substr (0, before.size ()), before);
    EXPECT_TRUE (
        std::regex_match (Errors ().substr (before.size ()), std::regex (HEADER + std::string ("three\r?\n"))));
    EXPECT_NE (Errors ().find (System_Line_End ()), std::string::npos);
}

TEST_F (MyErrorFct, ErrorLogHeaderWaitsForTheFirstLineThatCanBeWritten) {
    std::filesystem::create_directory (directory.File ("Kestrelbay.err"));
    Log_Message (nullptr, LOG_ERRLOG, "lost");
    std::filesystem::remove (directory.File ("Kestrelbay.err"));
    Log_Message (nullptr, LOG_ERRLOG, "kept");
    EXPECT_TRUE (std::regex_match (Errors (), std::regex (HEADER + std::string ("kept\r?\n")))) << Errors ();
}

// --- banner ----------------------------------------------------------------

static System_Version facts_version;
static int            facts_has_name, facts_has_version;

static int Facts_Name (char *result, size_t size) {
    snprintf (result, size, "%s", "STATION");
    return facts_has_name;
}

static int Facts_Version (System_Version *version) {
    *version = facts_version;
    return facts_has_version;
}

static void Facts_Processor (System_Processor *processor) { *processor = {4, 586, 9}; }

static const Log_Facts FACTS = {Facts_Name, Facts_Version, Facts_Processor};

class MyErrorFctBanner : public MyErrorFct {
protected:
    void SetUp () override {
        MyErrorFct::SetUp ();
        Level (1);
        Log.program_identifier = "IDENT 1";
        Log.program_date       = "15/06/2016";
        facts_version          = {2, 5, 1, 2600, 1, 3, 4};
        facts_has_name = facts_has_version = 1;
    }

    // The lines of the trace file without "TRACE:   ".
    std::string Banner () {
        testing::internal::CaptureStdout ();
        Log_Banner_From (&FACTS);
        testing::internal::GetCapturedStdout ();
        return std::regex_replace (Trace (), std::regex ("TRACE:   |\r"), "");
    }
};

static const char BANNER_START[] =
    "==== ==== Prog 1\\.0 ==== \\([0-3][0-9] [A-Z][a-z][a-z] [0-9]{4} [0-2][0-9]:[0-5][0-9]\\) ==== ====\n\n"
    "Prog_ID:      IDENT 1\nProg_Date:    15/06/2016\n"
    "Compile:      [A-Z][a-z][a-z] [ 1-3][0-9] [0-9]{4}\n\n---- Computer Info: ----\n";

static const char BANNER_END[] = "Processor:      4 x 586 \\(OEM ID: 9\\)\n\n-----------------------\n";

TEST_F (MyErrorFctBanner, SaysWhoWhenAndWhere) {
    std::string expected =
        BANNER_START +
        std::string ("Computer Name:  STATION\nSystem:         Windows XP\n"
                     "                version 5\\.1 \\(Build 2600\\)\n                Service Pack 3\\.4\n") +
        BANNER_END;
    std::string banner = Banner ();
    EXPECT_TRUE (std::regex_match (banner, std::regex (expected))) << banner;
}

TEST_F (MyErrorFctBanner, MissingNameIsNoted) {
    facts_has_name       = 0;
    std::string expected = BANNER_START +
                           std::string ("File:my_error_fct Line:[0-9]+\nin GetComputerName\\(\\)\n"
                                        "System:         Windows XP\n                version 5\\.1 \\(Build 2600\\)\n"
                                        "                Service Pack 3\\.4\n") +
                           BANNER_END;
    std::string banner = Banner ();
    EXPECT_TRUE (std::regex_match (banner, std::regex (expected))) << banner;
}

TEST_F (MyErrorFctBanner, MissingVersionEndsIt) {
    facts_has_version  = 0;
    std::string banner = Banner ();
    EXPECT_TRUE (std::regex_match (banner, std::regex (BANNER_START + std::string ("Computer Name:  STATION\n"))))
        << banner;
}

TEST_F (MyErrorFctBanner, ShortVersionRecordHasNoServicePack) {
    facts_version.has_service_pack = 0;
    EXPECT_EQ (Banner ().find ("Service Pack"), std::string::npos);
}

TEST_F (MyErrorFctBanner, OtherSystemsHaveNoSystemLine) {
    facts_version      = {3, 6, 1, 0, 0, 0, 0};
    std::string banner = Banner ();
    EXPECT_EQ (banner.find ("System:"), std::string::npos);
    EXPECT_NE (banner.find ("STATION\n                version 6.1 (Build 0)\nProcessor:"), std::string::npos) << banner;
}

TEST_F (MyErrorFctBanner, StartsTheTraceFileAnewAndLeavesTheOthers) {
    directory.Write ("trace.dat", std::string ("old"));
    directory.Write ("audit.dat", std::string ("old"));
    EXPECT_EQ (Banner ().find ("==== ==== Prog"), 0u);
    EXPECT_EQ (Audit (), "old");
}

TEST_F (MyErrorFctBanner, AtLevelZeroOnlyDeletes) {
    Level (0);
    directory.Write ("trace.dat", std::string ("old"));
    Log_Banner ();
    EXPECT_FALSE (Exists ("trace.dat"));
}

TEST_F (MyErrorFctBanner, DeletesTheNumberedFileThatWouldBeWritten) {
    Level (0);
    Log.rolling_limit = 5;
    directory.Write ("trace_000.dat", std::string ("full!"));
    directory.Write ("trace_001.dat", std::string ("old"));
    Log_Banner ();
    EXPECT_TRUE (Exists ("trace_000.dat"));
    EXPECT_FALSE (Exists ("trace_001.dat"));
}

TEST_F (MyErrorFctBanner, DeletesByTheNamesOwnDirectory) {
    Level (0);
    std::string own = directory.path + "own" + System_Separator ();
    std::filesystem::create_directory (own);
    directory.Write (std::string ("own") + System_Separator () + "trace.dat", std::string ("old"));
    directory.Write ("trace.dat", std::string ("other"));
    Name (Log.trace_name, own + "trace.dat");
    Log_Banner ();
    EXPECT_FALSE (std::filesystem::exists (own + "trace.dat"));
    EXPECT_EQ (Trace (), "other");
}

TEST_F (MyErrorFctBanner, MissingScratchDirectoryIsNotMadeForDeleting) {
    Level (0);
    Scratch (directory.path + "none" + System_Separator ());
    Log_Banner ();
    EXPECT_FALSE (Exists ("none"));
    EXPECT_TRUE (boxes.empty ());
}

TEST_F (MyErrorFctBanner, OfThisMachineIsComplete) {
    testing::internal::CaptureStdout ();
    Log_Banner ();
    testing::internal::GetCapturedStdout ();
    for (const char *part :
         {"Computer Name:  ", "                version ", "Processor:      ", "-----------------------"})
        EXPECT_NE (Trace ().find (part), std::string::npos) << part;
}

TEST_F (MyErrorFctBanner, SystemNames) {
    EXPECT_STREQ (Log_System_Name (0, 4, 0), "Win32s");
    EXPECT_STREQ (Log_System_Name (1, 4, 0), "Windows 95");
    EXPECT_STREQ (Log_System_Name (1, 3, 9), "Windows 95");
    EXPECT_STREQ (Log_System_Name (1, 4, 1), "Windows 98");
    EXPECT_STREQ (Log_System_Name (1, 5, 0), "Windows 98");
    EXPECT_STREQ (Log_System_Name (2, 5, 0), "Windows 2000");
    EXPECT_STREQ (Log_System_Name (2, 5, 1), "Windows XP");
    EXPECT_STREQ (Log_System_Name (2, 5, 2), "Windows NT");
    EXPECT_STREQ (Log_System_Name (2, 10, 0), "Windows NT");
    EXPECT_STREQ (Log_System_Name (2, 4, 1), "Windows NT");
    EXPECT_EQ (Log_System_Name (3, 5, 1), nullptr);
    EXPECT_EQ (Log_System_Name (-1, 5, 1), nullptr);
}

TEST_F (MyErrorFct, LibraryBannerChecksFiveCharacters) {
    ASSERT_NE (Library_Banner (nullptr), nullptr);
    EXPECT_TRUE (
        std::regex_match (Library_Banner (nullptr), std::regex ("Kestrelbay_Util \\(Static\\) 21\\.7 \\(rev-.+\\)")));
    EXPECT_STREQ (Library_Banner ("21.7"), Library_Banner (nullptr));
    for (const char *other : {"21.70", "21.8", "21.", "", "121.7"})
        EXPECT_EQ (Library_Banner (other), nullptr) << other;
}

// --- before the program's sink is there ------------------------------------

static std::vector<Expected> Default_Routes () {
    const std::string C = CLEAN;
    // clang-format off
    std::vector<Expected> routes = {
        {LOG_ERROR,    C,  "", "",                          "ERROR:   " + C + "\n",     "xxx.xxxxx", "",       ""},
        {LOG_WARNING,  "", "", "WARNING: " + C + " \n",     "WARNING: " + C + "\n",     "xxx.xxxxx", "",       ""},
        {LOG_QUESTION, C,  "", "",                          "",                         ".........", "",       ""},
        {LOG_REPORT,   "", "", "REPORT:  " + C + "\n",      "REPORT: " + C + "\n",      "..x.xxxxx", C + "\n", ""},
        {LOG_AUDIT,    "", "", "AUDIT:   " + C + " \n",     "AUDIT:   " + C + "\n",     "xxx.xxxxx", C + "\n", C + "\n"},
        {LOG_THREAD,   "", "", "THREAD:  " + C + "\n",      "THREAD:  " + C + "\n",     "..x.xxxxx", C + "\n", ""},
        {LOG_ERRLOG,   "", "", "ERROR LOG:   " + C + " \n", "ERROR LOG:   " + C + "\n", "xxx.xxxxx", "",       ""},
        {LOG_OVER,     "", "", "OVER:   " + C + "\n",       "OVER: " + C + "\n",        "..x.xxxxx", "",       ""},
        {LOG_TRACE1,   "", "", "TRACE:   " + C + " \n",     "TRACE:   " + C + "\n",     "....xxxxx", "",       ""},
        {LOG_TRACE3,   "", "", "TRACE:           " + C + " \n", "TRACE:           " + C + "\n", "......xxx", "", ""},
    };
    // clang-format on
    return routes;
}

TEST_F (MyErrorFct, DefaultSinkRoutes) {
    Log_Sink_Set (nullptr);
    for (const Expected &route : Default_Routes ())
        for (int level = -3; level <= 5; level++)
            for (int mode = 0; mode <= 2; mode++) {
                SCOPED_TRACE (testing::Message () << "kind " << route.kind << " level " << level << " mode " << mode);
                Level (level);
                Log.audit_mode = static_cast<uint8_t> (mode);
                Forget ();
                bool on_console = level > 0 && (route.kind < LOG_TRACE1 || level > route.kind - LOG_TRACE1);
                testing::internal::CaptureStdout ();
                Log_Message (nullptr, route.kind, "%s", RAW);
                EXPECT_EQ (testing::internal::GetCapturedStdout (), on_console ? route.console : "");
                EXPECT_EQ (Trace (), route.levels[level + 3] == 'x' ? On_Disk (route.trace) : "");
                std::string bare  = On_Disk (route.audit_bare);
                std::string timed = route.audit_timed.empty () ? "" : "@" + On_Disk (route.audit_timed);
                if (bare.empty () && mode == 1) bare = timed;
                EXPECT_EQ (Without_Time (Audit ()), mode == 0 ? "" : bare);
                EXPECT_EQ (boxes.size (), route.box.empty () ? 0u : 1u);
                EXPECT_TRUE (shown.empty ());
                EXPECT_STREQ (Log_Thread_Text (0), "");
                EXPECT_FALSE (Exists ("Kestrelbay.err"));
            }
}

TEST_F (MyErrorFct, DefaultQuestionHasTheLibrarysCaption) {
    Log_Sink_Set (nullptr);
    box_answer = 1;
    EXPECT_EQ (Log_Message (nullptr, LOG_QUESTION, "well?"), 1);
    ASSERT_EQ (boxes.size (), 1u);
    EXPECT_EQ (boxes[0].caption, "Kestrelbay_Util");
}
