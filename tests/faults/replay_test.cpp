// What the fuzzer has found stays found: every file in tests/faults/TARGET is fed to the target again. The files are named
// for the fault that they showed. A fault shows as a crash, a sanitizer's report or a test that takes no end.
#include <gtest/gtest.h>
#include <time.h>

#include <filesystem>
#include <string>
#include <vector>

#include "fuzz/fuzz.h"
#include "tests/support/temporary.h"
#include "util/memory.h"

static const std::string FOLDER = TAGWRIGHT_SOURCE_DIR "/tests/faults/";

static std::vector<std::string> Inputs (const std::string &folder) {
    std::vector<std::string> names;
    std::error_code          none;
    for (const auto &entry : std::filesystem::directory_iterator (folder, none))
        if (entry.is_regular_file ()) names.push_back (entry.path ().string ());
    return names;
}

static void Feed (const Fuzz_Target &target, const std::string &bytes) {
    EXPECT_TRUE (Fuzz_Is_Clean (&target, reinterpret_cast<const uint8_t *> (bytes.data ()), bytes.size ()));
}

// Seconds of processor time that an input may take, sanitizers included.
static const double PATIENCE = 10;

static void Feed_In_Time (const Fuzz_Target &target, const std::string &bytes) {
    clock_t start = clock ();
    Feed (target, bytes);
    EXPECT_LT (static_cast<double> (clock () - start) / CLOCKS_PER_SEC, PATIENCE);
}

TEST (Faults, EveryInputThatWasOneIsReadToItsEnd) {
    for (const Fuzz_Target &target : Fuzz_Targets)
        for (const std::string &name : Inputs (FOLDER + target.name)) {
            SCOPED_TRACE (name);
            Feed_In_Time (target, Read_Whole (name));
        }
}

// A folder that no target is named for would never be read.
TEST (Faults, EveryFolderBelongsToATarget) {
    for (const auto &entry : std::filesystem::directory_iterator (FOLDER)) {
        if (!entry.is_directory ()) continue;
        bool known = false;
        for (const Fuzz_Target &target : Fuzz_Targets) known |= entry.path ().filename ().string () == target.name;
        EXPECT_TRUE (known) << entry.path ().string ();
    }
}

TEST (Fuzz, TargetsTakeNoBytesAndEveryFirstByte) {
    for (const Fuzz_Target &target : Fuzz_Targets) {
        Feed (target, "");
        for (int first = 0; first < 256; first += 7)
            Feed_In_Time (target, std::string (1, static_cast<char> (first)) + "x");
    }
}

// What the fuzzer starts from takes no fault either: the examples, listed and silent, alone and with themselves.
TEST (Fuzz, ExamplesPassThroughTheTargetsOfFiles) {
    static const char CHOICES[] = {0x00, 0x15, 0x1D, 0x35, '\x90'};

    std::vector<std::string> names = Inputs (TAGWRIGHT_SOURCE_DIR "/examples");
    EXPECT_GE (names.size (), 10u);
    for (const std::string &name : names) {
        SCOPED_TRACE (name);
        std::string bytes = Read_Whole (name);
        EXPECT_FALSE (bytes.empty ());
        for (char choice : CHOICES) {
            Feed_In_Time (Fuzz_Targets[0], choice + bytes);
            Feed_In_Time (Fuzz_Targets[1], choice + bytes + bytes);
        }
    }
}

// Every position of a file is changed once in a run of the test, by bytes that mean something and by others. What a fuzzer
// does for hours, in a second and everywhere.
TEST (Fuzz, ChangedExamplesPassThroughTheTargetsOfFiles) {
    static const std::string BYTES ("\x00\x01\x7F\x80\xFF\xFE\xE0\r\\SQ", 11);

    unsigned number = 1;
    for (const char *name : {"nested_a.dcm", "nested_b.dcm", "damaged.dcm", "big_endian.dcm", "implicit_a.dcm"}) {
        std::string whole = Read_Whole (TAGWRIGHT_SOURCE_DIR "/examples/" + std::string (name));
        ASSERT_FALSE (whole.empty ());
        for (int start = 0; start < 40; start++) {
            SCOPED_TRACE (name + std::string (" ") + std::to_string (start));
            std::string changed = whole;
            for (size_t at = start; at < changed.size (); at += 40) {
                number      = number * 1103515245 + 12345;
                changed[at] = BYTES[(number >> 16) % BYTES.size ()];
                if (at + 1 < changed.size () && number & 0x8000) at += 120; // Leave something readable.
            }
            Feed_In_Time (Fuzz_Targets[0], static_cast<char> (start) + changed);
            Feed_In_Time (Fuzz_Targets[1], static_cast<char> (start) + whole + changed);
            Feed_In_Time (Fuzz_Targets[1], '\x15' + changed + whole.substr (0, whole.size () * start / 40));
        }
    }
}

// A leak that something static still points to is one, too: the sanitizers would not see it.
static std::vector<void *> leaked;
static void                Leak (const uint8_t *, size_t) { leaked.push_back (Memory_Try (1)); }

TEST (Fuzz, MemoryThatEachRunAddsIsALeak) {
    static const Fuzz_Target LEAKING = {"leaking", Leak};
    EXPECT_EQ (Fuzz_Is_Clean (&LEAKING, nullptr, 0), 0);
    for (void *block : leaked) Memory_Free (block);
    leaked.clear ();
}

static void *kept;
static void  Keep (const uint8_t *, size_t) {
     if (!kept) kept = Memory_Try (1);
}

TEST (Fuzz, MemoryThatIsAllocatedOnceMayStay) {
    static const Fuzz_Target KEEPING = {"keeping", Keep};
    EXPECT_EQ (Fuzz_Is_Clean (&KEEPING, nullptr, 0), 1);
    EXPECT_NE (kept, nullptr);
    Memory_Free (kept);
}
