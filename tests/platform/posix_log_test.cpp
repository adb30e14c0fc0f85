// The log on Linux: its default directory in /tmp, where anybody may have planted something, and processes that write into
// the same file.
#include "util/my_error_fct.h"

#include <fcntl.h>
#include <signal.h>
#include <string.h>
#include <sys/mman.h>
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
#include "tests/platform/plain_user.h"
#include "tests/support/temporary.h"

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

// --- files that stay open between lines ------------------------------------

// Writes lines into an audit file of its own directory.
class PosixLogFile : public testing::Test {
protected:
    void SetUp () override {
        Log_Settings_Reset ();
        Log_Sink_Set (Log_Program_Sink);
        snprintf (Log.scratch, sizeof Log.scratch, "%s", directory.path.c_str ());
        snprintf (Log.audit_name, sizeof Log.audit_name, "audit.dat");
        path = directory.File ("audit.dat");
        Line ("one");
        Line ("two");
        ASSERT_EQ (Read_Whole (path), "one\ntwo\n");
    }
    void TearDown () override {
        Log_Files_End ();
        Log_Settings_Reset ();
        Log_Sink_Set (nullptr);
    }
    static void Line (const char *text) { Log_Message (nullptr, LOG_AUDIT, "%s", text); }

    Temporary_Directory directory;
    std::string         path;
};

TEST_F (PosixLogFile, ARemovedFileIsMadeAnew) {
    std::filesystem::remove (path);
    Line ("three");
    EXPECT_EQ (Read_Whole (path), "three\n");
}

TEST_F (PosixLogFile, ARenamedFileGetsNoMoreLines) {
    std::string other = directory.File ("other.dat");
    std::filesystem::rename (path, other);
    Line ("three");
    EXPECT_EQ (Read_Whole (other), "one\ntwo\n");
    EXPECT_EQ (Read_Whole (path), "three\n");
}

TEST_F (PosixLogFile, AFilePutInItsPlaceGetsTheLines) {
    std::string other = directory.File ("other.dat");
    directory.Write ("new.dat", std::string ("new\n"));
    std::filesystem::rename (path, other);
    std::filesystem::rename (directory.File ("new.dat"), path);
    Line ("three");
    EXPECT_EQ (Read_Whole (other), "one\ntwo\n");
    EXPECT_EQ (Read_Whole (path), "new\nthree\n");
}

TEST_F (PosixLogFile, ALinkThatPointsElsewhereNowIsFollowed) {
    std::string other = directory.File ("other.dat");
    std::filesystem::remove (path);
    directory.Write ("a.dat", std::string ());
    std::filesystem::create_symlink (directory.File ("a.dat"), path);
    Line ("three");
    std::filesystem::remove (path);
    std::filesystem::create_symlink (other, path);
    Line ("four");
    EXPECT_EQ (Read_Whole (directory.File ("a.dat")), "three\n");
    EXPECT_EQ (Read_Whole (other), "four\n");
}

TEST_F (PosixLogFile, ADirectoryThatWentIsMadeAnew) {
    std::string away = directory.path.substr (0, directory.path.size () - 1) + ".away";
    std::filesystem::rename (directory.path, away);
    Line ("three");
    EXPECT_EQ (Read_Whole (path), "three\n");
    EXPECT_EQ (Read_Whole (away + "/audit.dat"), "one\ntwo\n");
    std::filesystem::remove_all (away);
}

// Of a process of its own, since the superuser may write everywhere.
TEST (PosixLog, AFileThatMayNotBeWrittenAnyMoreGetsNoLines) {
    Without_Default_Scratch ([] (const std::string &plain) {
        std::string file = plain + "/audit.dat";
        Log_Message (nullptr, LOG_AUDIT, "one");
        EXPECT_EQ (chmod (file.c_str (), 0400), 0);
        Log_Message (nullptr, LOG_AUDIT, "two");
        EXPECT_EQ (Read_Whole (file), "one\n");
        EXPECT_EQ (chmod (file.c_str (), 0600), 0);
        Log_Message (nullptr, LOG_AUDIT, "three");
        EXPECT_EQ (Read_Whole (file), "one\nthree\n");
        EXPECT_TRUE (boxes.empty ());
    });
}

TEST_F (PosixLogFile, LinesOfOtherWritersAndACutFileStayWhole) {
    FILE *other = fopen (path.c_str (), "a");
    ASSERT_NE (other, nullptr);
    fputs ("other\n", other);
    fclose (other);
    Line ("three");
    EXPECT_EQ (Read_Whole (path), "one\ntwo\nother\nthree\n");
    EXPECT_EQ (truncate (path.c_str (), 4), 0);
    Line ("four");
    EXPECT_EQ (Read_Whole (path), "one\nfour\n");
}

TEST_F (PosixLogFile, AnEndOfTheProgramLosesNoLine) {
    pid_t child = fork ();
    if (!child) {
        for (int i = 0; i < 100; i++) Line ("more");
        raise (SIGKILL);
    }
    int status = 0;
    waitpid (child, &status, 0);
    EXPECT_TRUE (WIFSIGNALED (status));
    EXPECT_EQ (Read_Whole (path).size (), strlen ("one\ntwo\n") + 100 * strlen ("more\n"));
}

// The first count lines of the process that is killed, as they stand in the file.
static std::string Killed_Lines (int count) {
    std::string lines;
    for (int line = 0; line < count; line++)
        lines +=
            "TRACE:   " + std::string (16, ' ') + std::string (line % 300, 'x') + " " + std::to_string (line) + ".\n";
    return lines;
}

// A process that writes trace lines until it is killed tells after each how many it has logged; this one asks how many those
// are, kills it in the middle, and must then find each of them in the file, whole. Behind them may stand the line that was
// being written: all of it, or the beginning, since the system lets a killed process's write end between two pages.
TEST_F (PosixLogFile, AKilledProcessLeavesEachLoggedLineWhole) {
    static const int ROUNDS = 5, LINES = 200;

    Log.trace_level = 5;
    for (int round = 0; round < ROUNDS; round++) {
        int  console = open ("/dev/null", O_WRONLY);
        int *logged  = static_cast<int *> (
            mmap (nullptr, sizeof (int), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
        ASSERT_NE (logged, MAP_FAILED);
        std::filesystem::remove (directory.File ("trace.dat"));
        fflush (stdout);
        pid_t child = fork ();
        if (!child) {
            dup2 (console, STDOUT_FILENO);
            for (int line = 0;; line++) {
                Log_Message (nullptr, LOG_TRACE5, "%s %d.", std::string (line % 300, 'x').c_str (), line);
                __atomic_store_n (logged, line + 1, __ATOMIC_SEQ_CST);
            }
        }
        while (__atomic_load_n (logged, __ATOMIC_SEQ_CST) < LINES + 37 * round) {
        }
        int         sure     = __atomic_load_n (logged, __ATOMIC_SEQ_CST);
        std::string meantime = Read_Whole (directory.File ("trace.dat"));
        kill (child, SIGKILL);
        waitpid (child, nullptr, 0);
        close (console);

        std::string end    = Read_Whole (directory.File ("trace.dat"));
        std::string before = Killed_Lines (sure), all = Killed_Lines (*logged);
        EXPECT_EQ (meantime.substr (0, before.size ()), before);
        EXPECT_EQ (end.substr (0, all.size ()), all);
        EXPECT_EQ (end, Killed_Lines (*logged + 1).substr (0, end.size ()));
        munmap (logged, sizeof (int));
    }
}

TEST_F (PosixLogFile, ManyNamesKeepAFewFilesOpen) {
    auto open_files = [] {
        auto entries = std::filesystem::directory_iterator ("/proc/self/fd");
        return std::distance (begin (entries), end (entries));
    };
    Log_Files_End ();
    auto before = open_files ();
    for (int i = 0; i < 40; i++) {
        snprintf (Log.audit_name, sizeof Log.audit_name, "audit%d.dat", i % 20);
        Line ("line");
    }
    for (int i = 0; i < 20; i++)
        EXPECT_EQ (Read_Whole (directory.File (("audit" + std::to_string (i) + ".dat").c_str ())), "line\nline\n");
    EXPECT_LE (open_files (), before + 3);
    Log_Files_End ();
    EXPECT_EQ (open_files (), before);
}

// The reader of a FIFO waits until the last writer has closed it.
TEST_F (PosixLogFile, AFifoIsClosedAfterEachLine) {
    std::string fifo = directory.File ("fifo");
    ASSERT_EQ (mkfifo (fifo.c_str (), 0600), 0);
    snprintf (Log.audit_name, sizeof Log.audit_name, "fifo");
    for (const char *text : {"three", "four"}) {
        int  reader    = open (fifo.c_str (), O_RDONLY | O_NONBLOCK);
        char bytes[20] = "";
        Line (text);
        EXPECT_EQ (read (reader, bytes, sizeof bytes), static_cast<ssize_t> (strlen (text) + 1));
        EXPECT_EQ (bytes, std::string (text) + "\n");
        EXPECT_EQ (read (reader, bytes, sizeof bytes), 0) << "the end, no wait for more";
        close (reader);
    }
}
