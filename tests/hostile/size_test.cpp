// Small things in great numbers, and one inside the other: the time they take grows with their number and no faster.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "attribute/attribute.h"
#include "tests/hostile/feed.h"
#include "tests/hostile/many.h"
#include "tests/platform/process_time.h"
#include "tests/support/log_recorder.h"

// --- time ------------------------------------------------------------------

static const double TICKS = 0.1; // Seconds that the coarsest clock still tells well.
static const int    OFTEN = 1000;

// Of one turn; what takes too little to be told is done several times.
static double Seconds (const std::function<void ()> &what) {
    double start = Process_User_Seconds (), spent = 0;
    int    times = 0;
    while (spent < TICKS && times < OFTEN) {
        what ();
        spent = Process_User_Seconds () - start;
        times++;
    }
    return spent / times;
}

// Four times as much takes less than eight times as long; quadratic growth would take sixteen times. What disturbs one
// measurement doesn't disturb three.
static void Expect_Linear (const std::string &what, const std::function<void ()> &few,
                           const std::function<void ()> &many) {
    double time_few = 1e9, time_many = 1e9;
    for (int turn = 0; turn < 3; turn++) {
        time_few  = std::min (time_few, Seconds (few));
        time_many = std::min (time_many, Seconds (many));
        if (time_many < 8 * time_few) break;
    }
    EXPECT_LT (time_many, 8 * time_few) << what;
}

// All that is done with a file, for a fourth of the number and for all of it, which has so many attributes.
static void Expect_Linear_Runs (Feed *feed, const std::function<Stream (int)> &make, int number, int attributes) {
    std::string few  = feed->tables.directory.Write ("few.dcm", make (number / 4).bytes);
    std::string many = feed->tables.directory.Write ("many.dcm", make (number).bytes);
    auto read = [feed] (const std::string &name) { return [feed, name] { Attributes_Read (&feed->settings, name); }; };
    auto run  = [feed] (const std::string &a, const std::string &b, int batch, int *count) {
        return [=] { *count = feed->Run (a, b, batch).count; };
    };
    int fewer = -1, alone = -1, in_batch = -1, in_window = -1, with_good = -1;
    Expect_Linear ("read", read (few), read (many));
    Expect_Linear ("batch", run (few, few, 1, &fewer), run (many, many, 1, &in_batch));
    Expect_Linear ("interactive", run (few, few, 0, &fewer), run (many, many, 0, &in_window));
    Expect_Linear ("with a good file", run (few, feed->good, 0, &fewer), run (many, feed->good, 0, &with_good));
    Expect_Linear ("with the definition", run (few, "", 0, &fewer), run (many, "", 0, &alone));
    EXPECT_EQ (0, in_batch);
    EXPECT_EQ (0, in_window);
    EXPECT_LE (1, with_good);
    EXPECT_EQ (attributes, alone);
}

// --- nesting ---------------------------------------------------------------

TEST (HostileSize, TenThousandNestedSequences) {
    Feed feed;
    for (bool defined_length : {true, false}) {
        SCOPED_TRACE (defined_length);
        Stream      stream = Nested_Sequences (DEEP, defined_length);
        std::string name   = feed.Write (stream.bytes);
        feed.Elements (stream.bytes);
        {
            Log_Recorder log;
            EXPECT_EQ (1 + DEEP + 2, Attributes_Read (&feed.settings, name));
            EXPECT_EQ (DEEP - 9, log.Count (LOG_WARNING, "To many \"sequences\" in DICOM stream"));
        }
        feed.Comparisons (name, 1 + DEEP + 2);
        Expect_Linear_Runs (
            &feed, [=] (int depth) { return Nested_Sequences (depth, defined_length); }, DEEPEST, 1 + DEEPEST + 2);
    }
}

// --- numbers ---------------------------------------------------------------

// A million of them in every kind of run; each single element with fewer.
static void Check_Million (Feed *feed, const std::function<Stream (int)> &make, int attributes) {
    Expect_Linear_Runs (feed, make, MILLION, attributes);
    feed->All (make (MANY).bytes);
}

TEST (HostileSize, MillionEmptyItems) {
    Feed feed;
    for (bool defined_length : {true, false}) {
        SCOPED_TRACE (defined_length);
        Check_Million (
            &feed, [=] (int items) { return Empty_Items (items, defined_length); }, 3);
    }
}

static void Check_Elements (Order order, int sort_warnings) {
    Feed feed;
    auto make = [=] (int count) { return Elements_In (order, count); };
    Check_Million (&feed, make, 1 + MILLION);
    Log_Recorder log;
    EXPECT_EQ (1 + MANY, Attributes_Read (&feed.settings, feed.Write (make (MANY).bytes)));
    EXPECT_EQ (sort_warnings, log.Count (LOG_WARNING, "tags should be sorted!"));
}

TEST (HostileSize, MillionElementsAscending) { Check_Elements (ASCENDING, 0); }
TEST (HostileSize, MillionElementsDescending) { Check_Elements (DESCENDING, 1); }
TEST (HostileSize, MillionElementsAllEqual) { Check_Elements (ALL_EQUAL, 0); }

// Lists of different orders are merged into one.
TEST (HostileSize, ListsOfDifferentOrders) {
    static const Order PAIRS[][2] = {{ASCENDING, DESCENDING}, {DESCENDING, ALL_EQUAL}, {ALL_EQUAL, ASCENDING}};

    Feed feed;
    auto write = [&feed] (const char *name, Order order, int count) {
        return feed.tables.directory.Write (name, Elements_In (order, count).bytes);
    };
    for (const auto &pair : PAIRS) {
        SCOPED_TRACE (std::to_string (pair[0]) + " " + std::to_string (pair[1]));
        std::string few_a = write ("few_a", pair[0], MANY / 4), few_b = write ("few_b", pair[1], MANY / 4);
        std::string many_a = write ("many_a", pair[0], MANY), many_b = write ("many_b", pair[1], MANY);
        int         counts[2];
        for (int batch = 0; batch < 2; batch++)
            Expect_Linear (
                "batch " + std::to_string (batch), [&] { feed.Run (few_a, few_b, batch); },
                [&] { counts[batch] = feed.Run (many_a, many_b, batch).count; });
        EXPECT_EQ (counts[0], counts[1]);
        EXPECT_LE (1, counts[0]);
        EXPECT_GE (2 * MANY, counts[0]);
    }
}
