// The log on Linux: its default directory in /tmp, where anybody may have planted something, and processes that write into
// the same file.
#include "util/my_error_fct.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/system.h"
#include "tests/support/temporary.h"

static std::vector<std::string> boxes;

static int Box_Hook (Window, const char *text, const char *caption, Window_Icon) {
    boxes.push_back (std::string (caption) + "|" + text);
    return 0;
}

static std::string Default_Scratch () {
    char path[SYSTEM_PATH_SIZE];
    return System_Scratch_Path (path, sizeof path) ? path : "";
}

// Runs a test in a process of its own in which the default scratch directory does not exist: the superuser becomes a user
// who has none, anybody else's is put aside meanwhile.
static void Without_Default_Scratch (const std::function<void (const std::string &plain)> &what) {
    fflush (stdout);
    pid_t child = fork ();
    if (!child) {
        uid_t user = 54321 + static_cast<uid_t> (getpid ()) % 100000;
        EXPECT_TRUE (geteuid () || !setresuid (user, user, user));
        std::string plain = Default_Scratch ();
        plain.pop_back ();
        std::string     aside = plain + ".aside-" + std::to_string (getpid ());
        std::error_code ignored;
        bool            moved = !rename (plain.c_str (), aside.c_str ());
        Log_Settings_Reset ();
        Log_Sink_Set (Log_Program_Sink);
        Window_Box_Hook_Set (Box_Hook);
        boxes.clear ();
        what (plain);
        std::filesystem::remove_all (plain, ignored);
        EXPECT_TRUE (!moved || !rename (aside.c_str (), plain.c_str ()));
        fflush (stdout);
        _exit (testing::Test::HasFailure ());
    }
    int status = -1;
    waitpid (child, &status, 0);
    EXPECT_EQ (status, 0);
}

static void Expect_One_Box (const std::string &plain) {
    ASSERT_EQ (boxes.size (), 1u);
    EXPECT_EQ (boxes[0], "Error writing to Scratch dir|Unable to create directory: \"" + plain +
                             "/\"\nMake sure you have the necessary permisions");
}

TEST (PosixLog, DefaultScratchDirectoryIsMadeForTheUserOnly) {
    Without_Default_Scratch ([] (const std::string &plain) {
        Log_Message (nullptr, LOG_AUDIT, "text");
        EXPECT_EQ (Read_Whole (plain + "/audit.dat"), "text\n");
        struct stat facts = {};
        EXPECT_EQ (stat (plain.c_str (), &facts), 0);
        EXPECT_EQ (facts.st_mode & 07777, 0700u);
        EXPECT_TRUE (boxes.empty ());
    });
}

TEST (PosixLog, OpenDefaultScratchDirectoryIsTightened) {
    Without_Default_Scratch ([] (const std::string &plain) {
        mkdir (plain.c_str (), 0700);
        chmod (plain.c_str (), 0777);
        Log_Message (nullptr, LOG_AUDIT, "text");
        EXPECT_EQ (Read_Whole (plain + "/audit.dat"), "text\n");
        struct stat facts = {};
        EXPECT_EQ (stat (plain.c_str (), &facts), 0);
        EXPECT_EQ (facts.st_mode & 07777, 0700u);
    });
}

TEST (PosixLog, PlantedLinkIsRefusedWithOneBox) {
    Without_Default_Scratch ([] (const std::string &plain) {
        Temporary_Directory target;
        target.Write ("trace.dat", std::string ("mine"));
        EXPECT_EQ (symlink (target.path.c_str (), plain.c_str ()), 0);
        for (int i = 0; i < 3; i++) Log_Message (nullptr, LOG_AUDIT, "text");
        Log_Message (nullptr, LOG_ERRLOG, "text");
        Log_Banner ();
        EXPECT_EQ (Log_File_Open ("other.dat"), nullptr);
        Expect_One_Box (plain);
        EXPECT_FALSE (std::filesystem::exists (target.File ("audit.dat")));
        EXPECT_EQ (Read_Whole (target.File ("trace.dat")), "mine");
    });
}

TEST (PosixLog, PlantedFileIsRefused) {
    Without_Default_Scratch ([] (const std::string &plain) {
        FILE *file = fopen (plain.c_str (), "w");
        ASSERT_NE (file, nullptr);
        fclose (file);
        Log_Message (nullptr, LOG_AUDIT, "text");
        Expect_One_Box (plain);
    });
}

TEST (PosixLog, DefaultScratchDirectoryByItsNameIsCheckedTheSame) {
    Without_Default_Scratch ([] (const std::string &plain) {
        Temporary_Directory target;
        EXPECT_EQ (symlink (target.path.c_str (), plain.c_str ()), 0);
        snprintf (Log.scratch, sizeof Log.scratch, "%s", plain.c_str ());
        Log_Message (nullptr, LOG_AUDIT, "text");
        snprintf (Log.audit_name, sizeof Log.audit_name, "%s/audit.dat", plain.c_str ());
        Log_Message (nullptr, LOG_AUDIT, "text");
        Expect_One_Box (plain);
        EXPECT_FALSE (std::filesystem::exists (target.File ("audit.dat")));
    });
}

TEST (PosixLog, ReadOnlyScratchDirectoryLosesLinesInSilence) {
    Without_Default_Scratch ([] (const std::string &) {
        Temporary_Directory directory;
        snprintf (Log.scratch, sizeof Log.scratch, "%s", directory.path.c_str ());
        chmod (directory.path.c_str (), 0500);
        Log.trace_level = -1;
        Log.audit_mode  = 1;
        EXPECT_EQ (Log_Message (nullptr, LOG_REPORT, "text"), 1);
        Log_Message (nullptr, LOG_ERRLOG, "text");
        EXPECT_TRUE (std::filesystem::is_empty (directory.path));
        EXPECT_TRUE (boxes.empty ());
        chmod (directory.path.c_str (), 0700);
    });
}

TEST (PosixLog, ScratchDirectoryBelowAReadOnlyOneIsReportedOnce) {
    Without_Default_Scratch ([] (const std::string &) {
        Temporary_Directory directory;
        std::string         below = directory.path + "below";
        snprintf (Log.scratch, sizeof Log.scratch, "%s/", below.c_str ());
        chmod (directory.path.c_str (), 0500);
        for (int i = 0; i < 3; i++) Log_Message (nullptr, LOG_AUDIT, "text");
        Expect_One_Box (below);
        chmod (directory.path.c_str (), 0700);
    });
}

TEST (PosixLog, ProcessesDoNotTearEachOthersLines) {
    const int PROCESSES = 4, LINES = 100;

    Temporary_Directory directory;
    std::vector<pid_t>  children;
    fflush (stdout);
    for (int p = 0; p < PROCESSES; p++) {
        pid_t child = fork ();
        if (!child) {
            Log_Settings_Reset ();
            snprintf (Log.scratch, sizeof Log.scratch, "%s", directory.path.c_str ());
            std::string text (9000, static_cast<char> ('a' + p));
            for (int i = 0; i < LINES; i++) Log_Program_Sink (nullptr, LOG_AUDIT, text.c_str ());
            _exit (0);
        }
        children.push_back (child);
    }
    for (pid_t child : children) waitpid (child, nullptr, 0);

    std::istringstream file (Read_Whole (directory.File ("audit.dat")));
    int                count = 0;
    for (std::string line; std::getline (file, line); count++) {
        ASSERT_EQ (line.size (), 9000u);
        ASSERT_EQ (line, std::string (9000, line[0]));
    }
    EXPECT_EQ (count, PROCESSES * LINES);
}
