// The log on Windows where it can't be written, and whose files go away.

// First, since the system's headers have macros that its names don't bear.
#include "util/my_error_fct.h"

#include <filesystem>

#include <gtest/gtest.h>

#include <windows.h>

#include "tests/platform/win32_child.h"
#include "tests/support/log_recorder.h"
#include "tests/support/temporary.h"

static std::string boxes;

static int Box_Heard (Window, const char *text, const char *caption, Window_Icon) {
    boxes += std::string (caption) + "|" + text + "\n";
    return 0;
}

// The program's log in a directory of the test.
class Win32Log : public testing::Test {
protected:
    void SetUp () override {
        Log_Settings_Reset ();
        Log_Sink_Set (Log_Program_Sink);
        Window_Box_Hook_Set (Box_Heard);
        boxes.clear ();
    }
    void TearDown () override {
        Log_List_Set (nullptr);
        Log_Settings_Reset ();
        Window_Box_Hook_Set (nullptr);
        Log = before;
        Log_Recorder silent; // Its end leaves the sink that writes nothing.
    }
    static void Scratch_Set (const std::string &path) {
        Log.scratch[path.copy (Log.scratch, sizeof Log.scratch - 1)] = 0;
    }
    static void Line (const char *text) { Log_Message (nullptr, LOG_AUDIT, "%s", text); }

    Log_Settings        before = Log;
    Temporary_Directory directory;
};

TEST_F (Win32Log, MissingDirectoriesAreMade) {
    Scratch_Set (directory.File ("some\\levels\\below"));
    Line ("one");
    Line ("two");
    EXPECT_EQ ("one\r\ntwo\r\n", Read_Whole (directory.File ("some\\levels\\below\\audit.dat")));
    EXPECT_EQ ("", boxes);
}

TEST_F (Win32Log, AFileInPlaceOfTheDirectoryIsToldOnce) {
    std::string path = directory.Write ("file", std::string ("mine")) + "\\";
    Scratch_Set (path);
    for (int i = 0; i < 3; i++) Line ("text");
    Log_Message (nullptr, LOG_ERRLOG, "text");
    EXPECT_EQ ("Error writing to Scratch dir|Unable to create directory: \"" + path +
                   "\"\nMake sure you have the necessary permisions\n",
               boxes);
    EXPECT_EQ ("mine", Read_Whole (directory.File ("file")));
}

static int listed;

// Nobody could be told of the path with every line.
TEST_F (Win32Log, APathThatIsTooLongIsToldOnce) {
    std::string path = directory.File ("x");
    path += std::string (250 - path.size (), 'x');
    ASSERT_GT (path.size (), System_Directory_Limit ());
    Scratch_Set (path);
    listed = 0;
    Log_List_Set ([] (Window, const char *, int) { listed++; });
    for (int i = 0; i < 3; i++) Line ("text");
    EXPECT_EQ (0, listed);
    EXPECT_EQ ("Error writing to Scratch dir|Unable to create directory: \"" + path +
                   "\\\"\nMake sure you have the necessary permisions\n",
               boxes);
}

TEST_F (Win32Log, AProgramThatEndsAbruptlyLeavesEveryLine) {
    std::string lines;
    for (int i = 0; i < CHILD_LOG_LINES; i++) lines += "line " + std::to_string (i) + "\r\n";
    ASSERT_TRUE (Child_Run ("log", directory.path, CHILD_NONE).started);
    EXPECT_EQ (lines, Read_Whole (directory.File ("audit.dat")));
}

// The superuser of a Wine may write into read-only files, but nobody into one that somebody has for himself.
TEST_F (Win32Log, AFileThatIsHeldLosesItsLinesInSilence) {
    Scratch_Set (directory.path);
    std::string path = directory.File ("audit.dat");
    Line ("one");
    HANDLE held = CreateFileA (path.c_str (), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_NE (INVALID_HANDLE_VALUE, held);
    Line ("two");
    CloseHandle (held);
    EXPECT_EQ ("one\r\n", Read_Whole (path));
    Line ("three");
    EXPECT_EQ ("one\r\nthree\r\n", Read_Whole (path));
    EXPECT_EQ ("", boxes);
}

TEST_F (Win32Log, ARemovedAndARenamedFileAreMadeAnew) {
    Scratch_Set (directory.path);
    std::string path = directory.File ("audit.dat");
    Line ("one");
    EXPECT_TRUE (std::filesystem::remove (path));
    Line ("two");
    std::filesystem::rename (path, directory.File ("away.dat"));
    Line ("three");
    EXPECT_EQ ("two\r\n", Read_Whole (directory.File ("away.dat")));
    EXPECT_EQ ("three\r\n", Read_Whole (path));
}
