// The log where it can't be written, where somebody has planted something, and where several write at once: in this
// process, and in runs of the program, whose results and exit codes are as ever.
#include "util/my_error_fct.h"

#include <signal.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include <gtest/gtest.h>

#include "platform/system.h"
#include "tests/platform/plain_user.h"
#include "tests/support/program.h"
#include "tests/support/temporary.h"

using Lines = std::vector<std::string>;

// Complete ones only: what stands behind the last line feed is told.
static Lines Lines_Of (const std::string &path) {
    Lines              lines;
    std::istringstream text (Read_Whole (path));
    for (std::string line; std::getline (text, line);) {
        EXPECT_FALSE (text.eof ()) << path << " ends in the middle of: " << line;
        lines.push_back (line);
    }
    return lines;
}

// 1 when all lines are among the others, in their order.
static bool Is_Part_Of (const Lines &lines, const Lines &all) {
    auto place = all.begin ();
    for (const std::string &line : lines) {
        place = std::find (place, all.end (), line);
        if (place++ == all.end ()) return false;
    }
    return true;
}

static void Scratch_Set (const std::string &path) { Log.scratch[path.copy (Log.scratch, sizeof Log.scratch - 1)] = 0; }

// --- the program -----------------------------------------------------------

static const int DIFFERENCES = 12; // Of the two examples.

// The program and two files, where every user may read them.
struct Installed {
    Temporary_Directory folder;

    Installed () {
        std::filesystem::copy_file (Program_Built (), folder.File ("tagwright"));
        for (const char *name : {"ct_a.dcm", "ct_b.dcm"})
            std::filesystem::copy_file (TAGWRIGHT_SOURCE_DIR "/examples/" + std::string (name), folder.File (name));
        std::filesystem::permissions (folder.path, std::filesystem::perms (0755));
    }
    std::string Pair () const { return Quoted (folder.File ("ct_a.dcm")) + " " + Quoted (folder.File ("ct_b.dcm")); }
};

// A plain user's runs of the program. Call in Without_Default_Scratch.
struct User_Runs {
    const Installed    &installed;
    Temporary_Directory user;
    Program_Result      result = {};

    explicit User_Runs (const Installed &program) : installed (program) { Write_User_Tables (user); }

    // scratch: none for the default one. before: shell commands. after: more words and redirections.
    void Run (const std::string &scratch, const std::string &before = "", const std::string &after = "") {
        user.Write ("Kestrelbay/Tagwright.ini",
                    "audit = audit.dat\n" + (scratch.empty () ? "" : "scratch = " + scratch + "\n"));
        std::string command = before + (before.empty () ? "" : "; ") + "APPDATA=" + Quoted (user.path) + " " +
                              Quoted (installed.folder.File ("tagwright")) + " -t -1 " + installed.Pair () + " > " +
                              Quoted (user.File ("output.txt")) + " 2> " + Quoted (user.File ("errors.txt")) + after;
        int status    = std::system (command.c_str ());
        result.status = WIFEXITED (status) ? WEXITSTATUS (status) : -1;
        result.output = Read_Whole (user.File ("output.txt"));
        result.errors = Read_Whole (user.File ("errors.txt"));
    }
    void Expect_As_Ever () const {
        EXPECT_EQ (DIFFERENCES, result.status) << result.errors;
        EXPECT_EQ ("", result.output);
        EXPECT_EQ ("", result.errors);
    }
    void Expect_Box (const std::string &directory) const {
        EXPECT_EQ (DIFFERENCES, result.status);
        EXPECT_EQ ("", result.output);
        EXPECT_EQ ("Error writing to Scratch dir\nUnable to create directory: \"" + directory +
                       "\"\nMake sure you have the necessary permisions\n",
                   result.errors);
    }
};

// Without_Default_Scratch for runs of the program.
static void With_Program (const std::function<void (User_Runs &runs, const std::string &plain)> &what,
                          const Plain_User_Test                                                 &before = nullptr) {
    Installed installed;
    Without_Default_Scratch (
        [&] (const std::string &plain) {
            User_Runs runs (installed);
            what (runs, plain);
        },
        before);
}

static void Expect_Whole_Logs (const std::string &directory) {
    Lines trace = Lines_Of (directory + "/Tagwright_trace.dat"), audit = Lines_Of (directory + "/audit.dat");
    EXPECT_EQ (13u, audit.size ());
    EXPECT_EQ ("Found 12 differences", audit.empty () ? "" : audit.back ());
    ASSERT_FALSE (trace.empty ());
    EXPECT_EQ (1, std::count (trace.begin (), trace.end (), "REPORT: Comparing 2 files..."));
    EXPECT_EQ ("REPORT: Done", trace.back ());
}

TEST (LogUnderFire, MissingDirectoriesAreMade) {
    With_Program ([] (User_Runs &runs, const std::string &) {
        for (const char *name : {"one", "some/levels/below"}) {
            runs.Run (runs.user.File (name));
            runs.Expect_As_Ever ();
            Expect_Whole_Logs (runs.user.File (name));
        }
    });
}

TEST (LogUnderFire, ADirectoryThatCanNotBeMadeIsToldOnce) {
    With_Program ([] (User_Runs &runs, const std::string &) {
        runs.user.Write ("file", std::string ("mine"));
        std::filesystem::create_directory (runs.user.File ("closed"));
        chmod (runs.user.File ("closed").c_str (), 0500);
        for (const char *name : {"file/", "file/below/", "closed/below/", "closed/one/two/"}) {
            runs.Run (runs.user.File (name));
            runs.Expect_Box (runs.user.File (name));
        }
        EXPECT_EQ ("mine", Read_Whole (runs.user.File ("file")));
        EXPECT_TRUE (std::filesystem::is_empty (runs.user.File ("closed")));
        chmod (runs.user.File ("closed").c_str (), 0700);
    });
}

TEST (LogUnderFire, WhatMayNotBeWrittenLosesItsLinesInSilence) {
    With_Program ([] (User_Runs &runs, const std::string &) {
        std::string closed = runs.user.File ("closed"), open = runs.user.File ("open");
        std::filesystem::create_directory (closed);
        std::filesystem::create_directory (open);
        chmod (closed.c_str (), 0500);
        runs.Run (closed);
        runs.Expect_As_Ever ();
        EXPECT_TRUE (std::filesystem::is_empty (closed));

        runs.user.Write ("open/audit.dat", std::string ("before\n"));
        chmod ((open + "/audit.dat").c_str (), 0400);
        runs.Run (open);
        runs.Expect_As_Ever ();
        EXPECT_EQ ("before\n", Read_Whole (open + "/audit.dat"));
        EXPECT_EQ ("REPORT: Done", Lines_Of (open + "/Tagwright_trace.dat").back ());
    });
}

// --- full disks ------------------------------------------------------------

// A file may not grow beyond a limit: what writes at the limit is cut and refused as on a full disk. A limit needs no
// rights, no mount and no room, so it is there in every container.

static const std::string LIMITED = "ulimit -f ";

TEST (LogUnderFire, AFullDiskTakesWholeLinesOnly) {
    With_Program ([] (User_Runs &runs, const std::string &) {
        std::string scratch = runs.user.File ("logs");
        runs.Run (scratch);
        Lines trace = Lines_Of (scratch + "/Tagwright_trace.dat"), audit = Lines_Of (scratch + "/audit.dat");
        for (const char *blocks : {"0", "1", "2"}) {
            std::filesystem::remove_all (scratch);
            runs.Run (scratch, LIMITED + blocks);
            runs.Expect_As_Ever ();
            Lines some_trace = Lines_Of (scratch + "/Tagwright_trace.dat"), some = Lines_Of (scratch + "/audit.dat");
            EXPECT_TRUE (Is_Part_Of (some_trace, trace)) << blocks;
            EXPECT_TRUE (Is_Part_Of (some, audit)) << blocks;
            EXPECT_LT (some.size (), audit.size ()) << blocks;
            EXPECT_EQ (*blocks == '0', some_trace.empty () && some.empty ()) << blocks;
        }
        std::string before = Read_Whole (scratch + "/audit.dat"); // There is room again.
        runs.Run (scratch);
        runs.Expect_As_Ever ();
        Lines more = Lines_Of (scratch + "/audit.dat");
        ASSERT_EQ (audit, Lines (more.end () - 13, more.end ()));
        EXPECT_EQ (0u, Read_Whole (scratch + "/audit.dat").find (before));
    });
}

static void Room_Set (rlim_t bytes) {
    rlimit limit;
    getrlimit (RLIMIT_FSIZE, &limit);
    limit.rlim_cur = bytes;
    setrlimit (RLIMIT_FSIZE, &limit);
}

// The library's log in a process of its own, which is a plain user's.
static void With_Log (const std::function<void (const Temporary_Directory &directory)> &what) {
    Without_Default_Scratch ([&] (const std::string &) {
        Temporary_Directory directory;
        Scratch_Set (directory.path);
        Log.trace_level = -1;
        signal (SIGXFSZ, SIG_IGN);
        what (directory);
        Room_Set (RLIM_INFINITY);
    });
}

TEST (LogUnderFire, ADiskThatIsFullForAWhileLosesTheseLinesOnly) {
    With_Log ([] (const Temporary_Directory &directory) {
        auto write = [] (const char *text) {
            for (int i = 10; i < 30; i++) {
                Log_Message (nullptr, LOG_AUDIT, "%s %d", text, i);
                Log_Message (nullptr, LOG_REPORT, "%s %d", text, i);
                Log_Message (nullptr, LOG_ERRLOG, "%s %d", text, i);
            }
        };
        for (rlim_t room = 180; room < 260; room++) { // "before 10\n" and so on, then wherever a line can be cut.
            for (const char *name : {"audit.dat", "trace.dat", "Kestrelbay.err"})
                std::filesystem::remove (directory.File (name));
            write ("before");
            Room_Set (room);
            write ("meanwhile");
            Room_Set (RLIM_INFINITY);
            write ("after");
            Lines  audit = Lines_Of (directory.File ("audit.dat"));
            size_t fit   = room < 200 ? 0 : (room - 200) / 13;
            ASSERT_EQ (40 + fit, audit.size ()) << room;
            EXPECT_EQ ("before 29", audit[19]);
            EXPECT_EQ (fit ? "meanwhile 10" : "after 10", audit[20]) << room;
            EXPECT_EQ ("after 10", audit[20 + fit]) << room;
            EXPECT_EQ ("after 29", audit.back ());
            EXPECT_EQ ("REPORT: after 29", Lines_Of (directory.File ("trace.dat")).back ());
            EXPECT_EQ ("after 29", Lines_Of (directory.File ("Kestrelbay.err")).back ());
        }
        EXPECT_TRUE (boxes.empty ());
    });
}

// Its header stands before the first line that reaches the file.
TEST (LogUnderFire, TheErrorLogsHeaderIsNotLostToAFullDisk) {
    With_Log ([] (const Temporary_Directory &directory) {
        for (rlim_t room : {0, 5, 40}) {
            std::filesystem::remove (directory.File ("Kestrelbay.err"));
            Log_Settings_Reset ();
            Scratch_Set (directory.path);
            Room_Set (room);
            Log_Message (nullptr, LOG_ERRLOG, "one");
            Room_Set (RLIM_INFINITY);
            Log_Message (nullptr, LOG_ERRLOG, "two");
            Log_Message (nullptr, LOG_ERRLOG, "three");
            Lines lines = Lines_Of (directory.File ("Kestrelbay.err"));
            ASSERT_EQ (4u, lines.size ()) << room;
            EXPECT_EQ (0u, lines[1].find ("======== No Name Demo =====(")) << lines[1];
            EXPECT_EQ ("two", lines[2]);
            EXPECT_EQ ("three", lines[3]);
        }
    });
}

// --- what was planted ------------------------------------------------------

TEST (LogUnderFire, ALinkInPlaceOfTheDefaultDirectoryIsRefused) {
    With_Program ([] (User_Runs &runs, const std::string &plain) {
        std::string victim = runs.user.File ("victim");
        std::filesystem::create_directory (victim);
        runs.user.Write ("victim/Tagwright_trace.dat", std::string ("mine"));
        EXPECT_EQ (0, symlink (victim.c_str (), plain.c_str ()));
        runs.Run ("");
        runs.Expect_Box (plain + "/");
        EXPECT_EQ ("mine", Read_Whole (victim + "/Tagwright_trace.dat"));
        EXPECT_FALSE (std::filesystem::exists (victim + "/audit.dat"));
    });
}

TEST (LogUnderFire, AnotherUsersDirectoryIsRefused) {
    for (mode_t mode : {0777, 0700}) {
        auto mine = [mode] (const std::string &plain) {
            if (geteuid ()) return;
            EXPECT_EQ (0, mkdir (plain.c_str (), 0777));
            EXPECT_EQ (0, chmod (plain.c_str (), mode));
        };
        With_Program (
            [mode] (User_Runs &runs, const std::string &plain) {
                EXPECT_EQ (0, System_Private_Directory_Make ("/usr")); // The superuser's, whoever runs the test.
                EXPECT_STREQ ("[ERROR_PRIVILEGE_NOT_HELD]", System_Error_Name (System_Last_Error ()));
                if (!std::filesystem::exists (plain)) return;
                runs.Run ("");
                runs.Expect_Box (plain + "/");
                EXPECT_TRUE (mode == 0700 || std::filesystem::is_empty (plain));
            },
            mine);
    }
}

TEST (LogUnderFire, AnOpenDefaultDirectoryIsClosedToOthers) {
    With_Program ([] (User_Runs &runs, const std::string &plain) {
        for (mode_t mode : {0777, 0750, 0000, 01777, 02700}) {
            std::filesystem::remove_all (plain);
            EXPECT_EQ (0, mkdir (plain.c_str (), 0700));
            EXPECT_EQ (0, chmod (plain.c_str (), mode));
            runs.Run ("");
            runs.Expect_As_Ever ();
            struct stat facts = {};
            EXPECT_EQ (0, stat (plain.c_str (), &facts));
            EXPECT_EQ (0700u, facts.st_mode & 07777) << mode;
            Expect_Whole_Logs (plain);
        }
    });
}

// As others may have left them while the directory was open to them.
TEST (LogUnderFire, LinksAndPipesInTheDefaultDirectoryAreNotWrittenTo) {
    With_Program ([] (User_Runs &runs, const std::string &plain) {
        std::string victim = plain + ".victim", audit = plain + "/audit.dat";
        std::ofstream (victim) << "mine\n";
        for (int kind = 0; kind < 4; kind++) {
            std::filesystem::remove_all (plain);
            EXPECT_EQ (0, mkdir (plain.c_str (), 0777));
            if (kind == 0) EXPECT_EQ (0, symlink (victim.c_str (), audit.c_str ()));
            else if (kind == 1) EXPECT_EQ (0, link (victim.c_str (), audit.c_str ()));
            else if (kind == 2) EXPECT_EQ (0, mkfifo (audit.c_str (), 0600));
            else EXPECT_EQ (0, symlink ((victim + ".new").c_str (), audit.c_str ()));
            runs.Run ("");
            runs.Expect_As_Ever ();
            EXPECT_EQ ("mine\n", Read_Whole (victim)) << kind;
            EXPECT_FALSE (std::filesystem::exists (victim + ".new"));
            EXPECT_EQ ("REPORT: Done", Lines_Of (plain + "/Tagwright_trace.dat").back ());
        }
        std::filesystem::remove (victim);
    });
}

// In a directory of one's own choice they are what one wants.
TEST (LogUnderFire, LinksInAnyOtherDirectoryAreFollowed) {
    With_Program ([] (User_Runs &runs, const std::string &) {
        std::string scratch = runs.user.File ("logs");
        std::filesystem::create_directory (scratch);
        EXPECT_EQ (0, symlink (runs.user.File ("elsewhere.dat").c_str (), (scratch + "/audit.dat").c_str ()));
        runs.Run (scratch);
        runs.Expect_As_Ever ();
        EXPECT_EQ ("Found 12 differences", Lines_Of (runs.user.File ("elsewhere.dat")).back ());
    });
}

// --- several writers -------------------------------------------------------

static const int WRITERS = 2;

// Runs what in processes of their own, which start together, and waits for them.
static void In_Processes (const std::function<void (int writer)> &what, const std::function<void ()> &meanwhile) {
    std::vector<pid_t> children;
    fflush (stdout);
    for (int writer = 0; writer < WRITERS; writer++) {
        pid_t child = fork ();
        if (!child) {
            what (writer);
            _exit (0);
        }
        children.push_back (child);
    }
    if (meanwhile) meanwhile ();
    for (pid_t child : children) {
        int status = -1;
        waitpid (child, &status, 0);
        EXPECT_EQ (0, status);
    }
}

// "prefix writer number filling", the filling as long as the number says.
static std::string Numbered (int writer, int number) {
    return std::to_string (writer) + " " + std::to_string (number) + " " +
           std::string (static_cast<size_t> (number % 97), static_cast<char> ('a' + writer));
}

// Every line as it was written, each writer's in their order. next: the number that each of them comes to next.
static void Expect_Numbered (const Lines &lines, const std::string &prefix, std::vector<int> *next) {
    for (const std::string &line : lines) {
        ASSERT_EQ (0u, line.find (prefix)) << line;
        int writer = line[prefix.size ()] - '0';
        ASSERT_TRUE (writer >= 0 && writer < WRITERS) << line;
        ASSERT_EQ (prefix + Numbered (writer, (*next)[static_cast<size_t> (writer)]++), line);
    }
}

TEST (LogUnderFire, TwoWritersLoseAndTearNothing) {
    const int LINES = 20000;

    Temporary_Directory directory;
    In_Processes (
        [&] (int writer) {
            Log_Settings_Reset ();
            Scratch_Set (directory.path);
            Log.trace_level = -1;
            for (int i = 0; i < LINES; i++) {
                std::string text = Numbered (writer, i);
                Log_Program_Sink (nullptr, LOG_REPORT, text.c_str ());
                Log_Program_Sink (nullptr, LOG_AUDIT, text.c_str ());
                Log_Program_Sink (nullptr, LOG_ERRLOG, text.c_str ());
            }
        },
        nullptr);

    std::vector<int> next (WRITERS);
    Expect_Numbered (Lines_Of (directory.File ("trace.dat")), "REPORT: ", &next);
    EXPECT_EQ (std::vector<int> (WRITERS, LINES), next);
    next.assign (WRITERS, 0);
    Expect_Numbered (Lines_Of (directory.File ("audit.dat")), "", &next);
    EXPECT_EQ (std::vector<int> (WRITERS, LINES), next);

    Lines errors  = Lines_Of (directory.File ("Kestrelbay.err"));
    auto  headers = std::remove_if (errors.begin (), errors.end (),
                                    [] (const std::string &line) { return line.empty () || line[0] == '='; });
    EXPECT_EQ (2 * WRITERS, errors.end () - headers); // An empty line and the header for each run.
    errors.erase (headers, errors.end ());
    next.assign (WRITERS, 0);
    Expect_Numbered (errors, "", &next);
    EXPECT_EQ (std::vector<int> (WRITERS, LINES), next);
}

// A log is renamed away again and again, as it is when logs are rotated.
TEST (LogUnderFire, RenamedFilesHoldEveryLineOfTwoWriters) {
    const int LINES = 5000, RENAMES = 15;

    Temporary_Directory directory;
    auto                name    = [&] (int number) { return directory.File ("audit.dat." + std::to_string (number)); };
    int                 renamed = 0;
    In_Processes (
        [&] (int writer) {
            Log_Settings_Reset ();
            Scratch_Set (directory.path);
            for (int i = 0; i < LINES; i++) Log_Program_Sink (nullptr, LOG_AUDIT, Numbered (writer, i).c_str ());
        },
        [&] {
            for (int i = 0; i < RENAMES; i++) {
                usleep (500);
                renamed += !rename (directory.File ("audit.dat").c_str (), name (renamed).c_str ());
            }
        });
    EXPECT_GT (renamed, 0);

    // A line may reach the file that was renamed a moment ago, so each file is in order by itself.
    std::map<std::string, int> seen;
    for (int i = 0; i <= renamed; i++)
        for (const std::string &line : Lines_Of (i < renamed ? name (i) : directory.File ("audit.dat"))) seen[line]++;
    EXPECT_EQ (static_cast<size_t> (WRITERS * LINES), seen.size ());
    for (int writer = 0; writer < WRITERS; writer++)
        for (int i = 0; i < LINES; i++) ASSERT_EQ (1, seen[Numbered (writer, i)]) << writer << " " << i;
}

TEST (LogUnderFire, ARemovedFileBeginsAnewWithAWholeLine) {
    const int LINES = 5000;

    Temporary_Directory directory;
    int                 removed = 0;
    In_Processes (
        [&] (int writer) {
            Log_Settings_Reset ();
            Scratch_Set (directory.path);
            for (int i = 0; i < LINES; i++) Log_Program_Sink (nullptr, LOG_AUDIT, Numbered (writer, i).c_str ());
        },
        [&] {
            for (int i = 0; i < 15; i++) {
                usleep (500);
                removed += !unlink (directory.File ("audit.dat").c_str ());
            }
        });
    EXPECT_GT (removed, 0);
    for (const std::string &line : Lines_Of (directory.File ("audit.dat"))) {
        std::istringstream words (line);
        int                writer = -1, number = -1;
        ASSERT_TRUE (words >> writer >> number) << line;
        ASSERT_EQ (Numbered (writer, number), line);
    }
}

TEST (LogUnderFire, TwoWritersShareFilesThatRoll) {
    const int LINES = 1000, LIMIT = 4000;

    Temporary_Directory directory;
    In_Processes (
        [&] (int writer) {
            Log_Settings_Reset ();
            Scratch_Set (directory.path);
            Log.rolling_limit = LIMIT;
            for (int i = 0; i < LINES; i++) Log_Program_Sink (nullptr, LOG_AUDIT, Numbered (writer, i).c_str ());
        },
        nullptr);

    std::vector<int> next (WRITERS);
    int              files = 0;
    for (;; files++) {
        char name[32];
        snprintf (name, sizeof name, "audit_%03d.dat", files);
        std::string path = directory.File (name);
        if (!std::filesystem::exists (path)) break;
        Expect_Numbered (Lines_Of (path), "", &next);
        EXPECT_LT (std::filesystem::file_size (path), static_cast<size_t> (LIMIT + 2 * 110)) << name;
    }
    EXPECT_EQ (std::vector<int> (WRITERS, LINES), next);
    EXPECT_GT (files, 20);
}

// Two programs with the same scratch directory, many pairs each.
TEST (LogUnderFire, TwoProgramsShareTheAuditFile) {
    const int PAIRS = 9; // 9 times 12 differences still fit into a status.

    With_Program ([&] (User_Runs &runs, const std::string &) {
        std::string scratch = runs.user.File ("logs"), pairs, both, codes = runs.user.File ("codes");
        runs.user.Write ("Kestrelbay/Tagwright.ini", "audit = audit.dat\nscratch = " + scratch + "\n");
        for (int i = 0; i < PAIRS; i++) pairs += " " + runs.installed.Pair ();
        for (int i = 0; i < WRITERS; i++)
            both += "(" + Quoted (runs.installed.folder.File ("tagwright")) + pairs + "; echo $? >> " + Quoted (codes) +
                    ") & ";
        std::string command = "export APPDATA=" + Quoted (runs.user.path) + "; " + both + "wait";
        EXPECT_EQ (0, std::system (command.c_str ()));
        EXPECT_EQ (Lines (WRITERS, std::to_string (PAIRS * DIFFERENCES)), Lines_Of (codes));

        std::map<std::string, int> seen;
        for (const std::string &line : Lines_Of (scratch + "/audit.dat")) seen[line]++;
        EXPECT_EQ (13u, seen.size ());
        for (const auto &line : seen) EXPECT_EQ (WRITERS * PAIRS, line.second) << line.first;
    });
}

// --- closed streams --------------------------------------------------------

// What is meant for the console must not get into the files that are opened next, which take the numbers of what is closed.
TEST (LogUnderFire, NothingMeantForAClosedConsoleGetsIntoTheLogs) {
    With_Program ([] (User_Runs &runs, const std::string &) {
        std::string scratch = runs.user.File ("logs");
        runs.Run (scratch, "", " -t 1");
        std::string trace = Read_Whole (scratch + "/Tagwright_trace.dat"), audit = Read_Whole (scratch + "/audit.dat");
        ASSERT_NE ("", trace);
        Expect_Whole_Logs (scratch);
        for (const char *closed : {" >&-", " <&- >&-", " <&- >&- 2>&-", " 2>&-", " <&-"}) {
            std::filesystem::remove_all (scratch);
            runs.Run (scratch, "", std::string (" -t 1") + closed);
            EXPECT_EQ (DIFFERENCES, runs.result.status) << closed;
            EXPECT_EQ (trace, Read_Whole (scratch + "/Tagwright_trace.dat")) << closed;
            EXPECT_EQ (audit, Read_Whole (scratch + "/audit.dat")) << closed;
        }
    });
}
