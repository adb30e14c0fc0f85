// The committed example files, and what is said about them.
#include <gtest/gtest.h>

#include "compare/comparison_run.h"
#include "tests/support/examples.h"
#include "tests/support/log_recorder.h"
#include "tests/support/temporary.h"

static std::string Path (const std::string &name) { return std::string (TAGWRIGHT_SOURCE_DIR) + "/examples/" + name; }

static int Compare (const std::string &a, const std::string &b, int batch) {
    Settings settings   = {};
    settings.mode_start = MODE_EXPLICIT;
    int count           = Comparison_Start (nullptr, &settings, Path (a).c_str (), Path (b).c_str (), batch);
    Comparison_Free (nullptr);
    return count;
}

TEST (Examples, FilesAreThoseThatTheCodeWrites) {
    for (const Example &example : Examples_Make ()) {
        std::string written (example.bytes.begin (), example.bytes.end ());
        EXPECT_TRUE (Read_Whole (Path (example.name)) == written) << example.name << ": run make_examples examples";
        EXPECT_GT (20480u, example.bytes.size ()) << example.name;
    }
}

TEST (Examples, PairsHaveTheirDifferences) {
    for (const Example_Pair &pair : Example_Pairs ()) {
        for (int batch : {0, 1}) {
            Log_Recorder log;
            EXPECT_EQ (pair.differences, Compare (pair.a, pair.b, batch)) << pair.a << " " << pair.b;
            EXPECT_EQ (pair.differences + (batch ? 1 : 2), log.Count (LOG_AUDIT)) << log.All ();
        }
    }
}

TEST (Examples, FileEqualsItself) {
    for (const Example &example : Examples_Make ()) {
        for (int batch : {0, 1}) {
            Log_Recorder log;
            EXPECT_EQ (0, Compare (example.name, example.name, batch)) << example.name;
            EXPECT_EQ (0, log.Count (LOG_AUDIT)) << log.All ();
        }
    }
}

TEST (Examples, ReadmeNamesEveryFileAndCount) {
    std::string readme = Read_Whole (Path ("README.md"));
    for (const Example &example : Examples_Make ())
        EXPECT_NE (std::string::npos, readme.find ("`" + example.name + "`")) << example.name;
    for (const Example_Pair &pair : Example_Pairs ()) {
        std::string line = std::string ("| `") + pair.a + " " + pair.b + "` | " + std::to_string (pair.differences);
        EXPECT_NE (std::string::npos, readme.find (line)) << line;
    }
}

TEST (Examples, CtPairHasEveryKindOfDifference) {
    Log_Recorder log;
    EXPECT_EQ (12, Compare ("ct_a.dcm", "ct_b.dcm", 1));
    for (const char *line : {"! (0002,0003)       UI (  18) 1 bytes diff", "! (0008,0018)       UI (  18) 1 bytes diff",
                             "! (0008,0033)       TM (13/vs/6)", "! > (0008,1155)     UI (  16) 1 bytes diff",
                             "+ > (0008,1150)     UI (  26)", "+ > (0008,1155)     UI (  16)",
                             "- (0010,1010)       AS (   4)", "! (0010,4000)       LT implicit/vs/explicit",
                             "+ (0018,1030)       LO (  12)", "! (0020,4000)       LT explicit/vs/implicit",
                             "! (0028,0106)       US /vs/ SS", "! (7FE0,0010)       OW (8192) 1 bytes diff"})
        EXPECT_EQ (1, log.Count (LOG_AUDIT, line)) << line;
}
