#include "app/trace_key.h"

#include <gtest/gtest.h>

#include "platform/system.h"
#include "tests/support/log_recorder.h"
#include "tests/support/temporary.h"
#include "tools/primitives.h"

// Tracing into a directory of the test, with a known program.
struct Trace_Keys {
    Temporary_Directory scratch;
    Log_Settings        before = Log;
    Log_Recorder        log;

    explicit Trace_Keys (int level) : log (level) {
        scratch.path.copy (Log.scratch, sizeof Log.scratch - 1);
        Log.scratch[scratch.path.size ()] = 0;
        Log.program_identifier            = "PROGRAM 100%s";
    }
    ~Trace_Keys () { Log = before; }
};

TEST (TraceKey, DigitsAreLevelsUpToFive) {
    static const int LEVELS[] = {0, 1, 2, 3, 4, 5, 5, 5, 5};
    for (int digit = 0; digit <= 8; digit++) {
        Trace_Keys keys (2);
        Trace_Level_Key (nullptr, digit);
        EXPECT_EQ (LEVELS[digit], Log.trace_level) << digit;
        ASSERT_EQ (1u, keys.log.lines.size ()) << keys.log.All ();
        EXPECT_TRUE (keys.log.Has (LOG_REPORT, "Trace level: " + std::to_string (LEVELS[digit])));
    }
}

TEST (TraceKey, NineOnlySaysWhoTheProgramIs) {
    for (int level : {0, 3}) {
        Trace_Keys keys (level);
        Trace_Level_Key (nullptr, 9);
        EXPECT_EQ (level, Log.trace_level);
        ASSERT_EQ (1u, keys.log.lines.size ());
        EXPECT_TRUE (keys.log.Has (LOG_REPORT, "PROGRAM 100%s"));
    }
}

TEST (TraceKey, NoDigitIsNoKey) {
    Trace_Keys keys (1);
    for (int digit : {-1, 10, 1000}) Trace_Level_Key (nullptr, digit);
    EXPECT_EQ (1, Log.trace_level);
    EXPECT_EQ ("", keys.log.All ());
}

TEST (TraceKey, TracingStartsWithTheBanners) {
    Trace_Keys keys (0);
    Trace_Level_Key (nullptr, 3);
    EXPECT_EQ (3, Log.trace_level);
    const std::vector<Log_Line> &lines = keys.log.lines;
    ASSERT_LT (8u, lines.size ());
    EXPECT_EQ ("Trace level: 3", lines[0].text);
    EXPECT_EQ (0u, lines[1].text.find ("==== ==== "));
    size_t last = lines.size () - 1;
    EXPECT_EQ ("---- Kestrelbay Libraries: ----", lines[last - 3].text);
    EXPECT_EQ (Library_Banner (nullptr), lines[last - 2].text);
    EXPECT_EQ (Tools::Banner (nullptr), lines[last - 1].text);
    EXPECT_EQ ("", lines[last].text);
    for (size_t i = 1; i <= last; i++) EXPECT_EQ (LOG_TRACE1, lines[i].kind) << i;
}

static int No_Console (void) { return 0; }

// The level counts all the same.
TEST (TraceKey, WithoutAConsoleTracingStartsWithoutTheBanners) {
    Trace_Keys keys (0);
    System_Console_Hook_Set (No_Console);
    Trace_Level_Key (nullptr, 3);
    System_Console_Hook_Set (nullptr);
    EXPECT_EQ (3, Log.trace_level);
    ASSERT_EQ (1u, keys.log.lines.size ()) << keys.log.All ();
    EXPECT_TRUE (keys.log.Has (LOG_REPORT, "Trace level: 3"));
}

// Also from a level below 0, which traces already.
TEST (TraceKey, TracingThatIsOnHasNoBannerAgain) {
    for (int level : {-2, 1, 5}) {
        Trace_Keys keys (level);
        Trace_Level_Key (nullptr, 4);
        EXPECT_EQ (4, Log.trace_level);
        EXPECT_EQ (0, keys.log.Count (LOG_TRACE1)) << keys.log.All ();
    }
}
