// Where the bytes come from: what is no file, names that can't be, files that change while they are read, files too large.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>

#include "compare/comparison_run.h"
#include "compare/file_reader.h"
#include "platform/system.h"
#include "tests/hostile/feed.h"
#include "tests/support/log_recorder.h"

static bool Is_Windows () { return System_Separator () == '\\'; }

// --- names -----------------------------------------------------------------

TEST (HostileSources, DirectoryIsRefused) {
    Feed feed;
    feed.Refused (feed.tables.directory.path, "ERROR: Unable to open file");
}

TEST (HostileSources, MissingFileIsRefused) {
    Feed feed;
    feed.Missing (feed.tables.directory.File ("missing.dcm"));
    feed.Missing (feed.good + System_Separator () + "below a file");
}

TEST (HostileSources, NameThatIsTooLongIsMissing) {
    Feed feed;
    for (size_t length : {255, 256, 300, 4095, 4096, 5000, 40000})
        feed.Missing (feed.tables.directory.File (std::string (length, 'x')));
}

// As far as the system takes it as a name, it is one.
TEST (HostileSources, NameThatIsNotUtf8) {
    Feed        feed;
    std::string bytes = Read_Whole (feed.good);
    for (const char *odd : {"\xFF\xFE.dcm", "\x80", "a\xC3.dcm", "\xED\xA0\x80", "new\nline", "\x01\x02"}) {
        std::string   name = feed.tables.directory.File (odd);
        std::ofstream file (name, std::ios::binary);
        file << bytes;
        file.close ();
        if (file.fail () || Read_Whole (name) != bytes) {
            EXPECT_TRUE (Is_Windows ());
            continue;
        }
        EXPECT_EQ (0, feed.Comparisons (name, 16));
    }
}

// --- files that change -----------------------------------------------------

static const int VALUE = 1000;

// Elements of 1,000 bytes, each of which is noted as unknown when it is read: more than is read ahead.
static Stream Long_File (int elements) {
    Stream stream = Stream_Begin_File (EXPLICIT_LITTLE);
    for (int i = 0; i < elements; i++)
        Stream_Add_Bytes (&stream, 0x0011, static_cast<uint16_t> (0x1000 + i), "LO", std::string (VALUE, 'x'));
    return stream;
}

// What happens to the file when the message comes for the n-th time.
static struct Change {
    const char            *message;
    int                    n;
    std::function<void ()> what;
    std::string            warnings;
} change;

static int Change_Then (Window, int kind, const char *text) {
    std::string clean = Clean (text);
    if (kind == LOG_WARNING) change.warnings += clean + "\n";
    if (clean.find (change.message) != std::string::npos && --change.n == 0) change.what ();
    return 1;
}

// Elements read from a file that changes meanwhile.
static int Read_Changing (Feed *feed, const std::string &name, const char *message, int n,
                          const std::function<void ()> &what) {
    Log_Recorder restores_the_sink;
    change = {message, n, what, ""};
    Log_Sink_Set (Change_Then);
    SequenceCursor cursor = {};
    cursor.settings       = &feed->settings;
    Attribute *list       = File_Read_Elements (nullptr, &cursor, name.c_str ());
    int        count      = 0;
    for (const Attribute *record = list; record; record = record->next) count++;
    List_Delete (nullptr, &cursor, &list);
    EXPECT_GE (0, change.n) << "it never changed";
    return count;
}

static bool Told (const std::string &part) { return change.warnings.find (part) != std::string::npos; }

// What was there is kept, and where it ended is told.
TEST (HostileSources, FileThatShrinksWhileItIsRead) {
    Feed   feed;
    Stream stream = Long_File (200);
    size_t size   = stream.bytes.size ();
    for (size_t left : {size_t (0), size_t (100), size_t (70000), size_t (100000), size - 1}) {
        SCOPED_TRACE (left);
        std::string     name = feed.Write (stream.bytes);
        std::error_code error;
        int             count =
            Read_Changing (&feed, name, "Unknown tag", 3, [&] { std::filesystem::resize_file (name, left, error); });
        ASSERT_FALSE (error) << error.message ();
        // Bytes that had been read ahead are there.
        size_t there = std::max (left, size_t (65536) + 128);
        EXPECT_LE (static_cast<int> ((there - 65536) / (VALUE + 8)), count);
        EXPECT_GE (static_cast<int> (there / (VALUE + 8)) + 1, count);
        EXPECT_TRUE (Told ("End of File while reading: (")) << change.warnings;
        EXPECT_TRUE (Told ("reading stopped at byte ")) << change.warnings;
        EXPECT_TRUE (Told (" of " + std::to_string (size))) << change.warnings;
    }
}

// A large value is a view of the file, which loses its pages before they are looked at: while the file is read, between
// the sides, and before the differences are sought. Where a file that is viewed can't be cut (Windows), nothing is missing.
TEST (HostileSources, FileThatShrinksUnderItsView) {
    static const struct {
        const char *message;
        int         n;
    } MOMENTS[] = {{"Unknown tag", 1}, {"Reading: ", 2}, {"Analysing differences", 1}};

    for (int batch : {1, 0})
        for (const auto &moment : MOMENTS) {
            SCOPED_TRACE (std::string (moment.message) + std::to_string (batch));
            Feed   feed;
            Stream stream = Stream_Begin_File (EXPLICIT_LITTLE);
            Stream_Add_Text (&stream, 0x0011, 0x1001, "LO", "noted");
            Stream_Add_Bytes (&stream, 0x7FE0, 0x0010, "OB", std::string (500000, 'p'));
            std::string a = feed.Write (stream.bytes), b = feed.tables.directory.Write ("b.dcm", stream.bytes);

            std::error_code error;
            Log_Recorder    restores_the_sink;
            change = {moment.message, moment.n, [&] { std::filesystem::resize_file (a, 100000, error); }, ""};
            Log_Sink_Set (Change_Then);
            int  count   = Comparison_Start (nullptr, &feed.settings, a.c_str (), b.c_str (), batch);
            bool missing = change.n <= 0 && !error;
            EXPECT_EQ (missing ? 1 : 0, count);
            // Windows has no view of more than there is, so the value is read instead.
            bool told = Told ("WARNING: a file changed while it was read: its missing bytes count as zero\n") ||
                        (Is_Windows () && Told ("End of File while reading: (") && Told ("reading stopped at byte "));
            EXPECT_EQ (missing, told) << change.warnings;
            EXPECT_EQ (0, Comparison_Start (nullptr, &feed.settings, b.c_str (), b.c_str (), batch)) << "the next run";
        }
}

// Its size is that at which it was opened.
TEST (HostileSources, FileThatGrowsWhileItIsRead) {
    Feed                       feed;
    Stream                     stream = Long_File (100);
    std::vector<unsigned char> more (stream.bytes.begin () + 200, stream.bytes.end ());
    for (int n : {1, 50, 100}) {
        std::string name  = feed.Write (stream.bytes);
        int         count = Read_Changing (&feed, name, "Unknown tag", n, [&] {
            std::ofstream file (name, std::ios::binary | std::ios::app);
            file.write (reinterpret_cast<const char *> (more.data ()), static_cast<std::streamsize> (more.size ()));
        });
        EXPECT_EQ (101, count);
        EXPECT_EQ ("", change.warnings);
        EXPECT_LT (stream.bytes.size (), std::filesystem::file_size (name));
    }
}

// Who has opened it goes on with it.
TEST (HostileSources, FileThatIsRemovedWhileItIsRead) {
    Feed            feed;
    std::error_code error;
    std::string     name = feed.Write (Long_File (200).bytes);
    int count = Read_Changing (&feed, name, "Unknown tag", 3, [&] { std::filesystem::remove (name, error); });
    EXPECT_EQ (201, count);
    EXPECT_EQ ("", change.warnings);
    EXPECT_EQ (!error, !std::filesystem::exists (name));
}

// After the run has begun and before it is opened.
TEST (HostileSources, FileThatIsRemovedBeforeItIsRead) {
    for (int batch : {1, 0}) {
        Feed         feed;
        std::string  name = feed.Write (Everything (EXPLICIT_LITTLE).bytes);
        Log_Recorder restores_the_sink;
        change = {"    Reading: ", 1, [&] { std::filesystem::remove (name); }, ""};
        Log_Sink_Set (Change_Then);
        EXPECT_EQ (16, Comparison_Start (nullptr, &feed.settings, name.c_str (), feed.good.c_str (), batch));
        EXPECT_TRUE (Told ("ERROR: Unable to open file\n[ERROR_FILE_NOT_FOUND] ")) << change.warnings;
        EXPECT_TRUE (Told ("file: (" + name + ")\n")) << change.warnings;
    }
}

// --- devices of Windows ----------------------------------------------------

TEST (HostileSources, DeviceNamesOfWindows) {
    Feed feed;
    for (const char *name : {"NUL", "nul", "CON", "NUL.dcm"}) {
        if (Is_Windows ()) feed.Refused (name, "ERROR: Unable to open file");
        else feed.Missing (name);
    }
}
