// Files that name a private creator in every 70 bytes or so, each another one.
#include <gtest/gtest.h>
#include <time.h>

#include <algorithm>
#include <functional>

#include "compare/comparison_run.h"
#include "tests/hostile/creators.h"
#include "tests/hostile/feed.h"
#include "tests/support/log_recorder.h"
#include "util/memory.h"

// A directory with many tables, one of them long.
struct Creators_Feed : Feed {
    Creators_Feed () {
        for (int i = 0; i < 300; i++) tables.Private ("MAKER " + std::to_string (i), "(0011,1001) desc=other\n");
        tables.Private ("LONG", Long_Table ());
    }
};

// With the system's work: files that can't be opened are mostly that.
static double Least_Seconds (const std::function<void ()> &what) {
    double least = 1e9;
    for (int turn = 0; turn < 3; turn++) {
        clock_t start = clock ();
        what ();
        least = std::min (least, static_cast<double> (clock () - start) / CLOCKS_PER_SEC);
    }
    return least;
}

// The creators are new each time.
static double Seconds (Feed *feed, const std::function<std::string (int)> &creator, int count) {
    std::string name = feed->Write (Creators (count, creator).bytes);
    return Least_Seconds ([=] {
        DICOM_Module_Private_Free (nullptr);
        EXPECT_EQ (0, feed->Run (name, name, 1).count);
    });
}

// Each costs little more than one that is known.
static void Expect_Quick (const std::function<std::string (int)> &creator) {
    static const int COUNT = 6000;

    Creators_Feed feed;
    double        known = Seconds (
               &feed, [] (int) { return Unknown_Creator (0); }, COUNT);
    double other = Seconds (&feed, creator, COUNT);
    EXPECT_LT (other, 6 * std::max (known, 0.01)) << creator (0);
}

TEST (HostileCreators, WithoutTableTakeLittleTime) { Expect_Quick (Unknown_Creator); }
TEST (HostileCreators, OfOneTableTakeLittleTime) { Expect_Quick (Known_Creator); }
TEST (HostileCreators, BeyondAsciiTakeLittleTime) {
    Expect_Quick ([] (int i) { return "\xC3\x84" + Unknown_Creator (i).substr (0, 62); });
}

TEST (HostileCreators, KeepTheirNamesAndNoMore) {
    static const int COUNT = 4000;

    Creators_Feed feed;
    for (auto creator : {Unknown_Creator, Known_Creator}) {
        long        live = Memory_Live ();
        std::string name = feed.Write (Creators (COUNT, creator).bytes);
        EXPECT_EQ (0, feed.Run (name, name, 1).count);
        EXPECT_EQ (0, feed.Run (name, name, 0).count);
        EXPECT_LE (2 * COUNT, feed.Run (name, "", 0).count);
        Comparison_Free (nullptr);
        EXPECT_LT (Memory_Live (), live + COUNT + 3 * LONG_TABLE);
        DICOM_Module_Private_Free (nullptr);
    }
}

// Each run has creators of its own; their table changes between the runs.
TEST (HostileCreators, OfManyFilesAreFoundInTablesThatChange) {
    Creators_Feed feed;
    for (int run = 0; run < 20; run++) {
        std::string text = "description " + std::to_string (run);
        feed.tables.Private ("LONG", "(0011,1001) desc=\"" + text + "\"\n");
        std::string  a = feed.Write (Creators (50, [run] (int i) { return Known_Creator (100 * run + i); }).bytes);
        Log_Recorder log;
        Comparison_Start (nullptr, &feed.settings, a.c_str (), feed.good.c_str (), 1);
        EXPECT_EQ (50, log.Count (LOG_AUDIT, " " + text + " ")) << run;
    }
}
