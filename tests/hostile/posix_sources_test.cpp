// What Linux has under names of files and what is no file.
#include <gtest/gtest.h>

#include "tests/hostile/hostile_window.h"
#include "tests/platform/posix_process.h"
#include "tests/support/program.h"

static const char NO_FILE[] = "[ERROR_BAD_FILE_TYPE] Not a regular file";

// In a process that is ended when it waits for something.
static void Expect_Refused (const std::string &name, const char *reason) {
    SCOPED_TRACE (name);
    EXPECT_EQ (0, In_Child ([&] {
                   Feed feed;
                   feed.Refused (name, reason);
                   return testing::Test::HasFailure () ? 1 : 0;
               }));
}

TEST (HostilePosixSources, FifoWithoutAWriter) {
    Feed        feed;
    std::string name = feed.tables.directory.File ("fifo");
    ASSERT_TRUE (Fifo_Make (name));
    Expect_Refused (name, NO_FILE);
}

TEST (HostilePosixSources, FifoWithAWriter) {
    Feed        feed;
    std::string name = feed.tables.directory.File ("fifo");
    ASSERT_TRUE (Fifo_Make (name));
    Fifo_Writer writer (name, Read_Whole (feed.good));
    ASSERT_LE (0, writer.descriptor);
    Expect_Refused (name, NO_FILE);
}

TEST (HostilePosixSources, FifoDroppedOnTheWindow) {
    EXPECT_EQ (0, In_Child ([&] {
                   Hostile_Window window;
                   std::string    name = window.feed.tables.directory.File ("fifo");
                   if (!Fifo_Make (name)) return 2;
                   window.Take (name);
                   window.Expect_Usable ();
                   return testing::Test::HasFailure () ? 1 : 0;
               }));
}

TEST (HostilePosixSources, Devices) {
    for (const char *name : {"/dev/zero", "/dev/null", "/dev/full", "/dev/random", "/dev/tty"})
        Expect_Refused (name, NO_FILE);
}

TEST (HostilePosixSources, TerminalThatWaitsForInput) {
    Terminal terminal;
    ASSERT_NE ("", terminal.name);
    Expect_Refused (terminal.name, NO_FILE);
}

TEST (HostilePosixSources, FilesOfTheSystemThatHaveNoSize) {
    Feed feed;
    EXPECT_EQ (16, feed.Run ("/proc/self/status", feed.good, 1).count);
    EXPECT_NE (std::string::npos,
               feed.Run ("/proc/self/status", "", 0).warnings.find ("is not a valid part-10 DICOM file"));
}

TEST (HostilePosixSources, FileWithoutPermission) {
    Feed        feed;
    std::string name = feed.Write (Everything (EXPLICIT_LITTLE).bytes);
    Rights_Set (name, 0);
    Rights_Set (feed.tables.directory.path, 0755);
    EXPECT_EQ (0, In_Child ([&] {
                   if (!Rights_Drop ()) return 2;
                   feed.Refused (name, "[ERROR_ACCESS_DENIED] Permission denied");
                   return testing::Test::HasFailure () ? 1 : 0;
               }));
}

// --- the program in batch mode ---------------------------------------------

TEST (HostilePosixSources, ProgramEndsWithItsCount) {
    Feed        feed;
    std::string fifo = feed.tables.directory.File ("fifo");
    ASSERT_TRUE (Fifo_Make (fifo));
    for (const std::string &name : {fifo, std::string ("/dev/zero"), feed.tables.directory.path}) {
        Temporary_Directory user;
        EXPECT_EQ (16, Program_Run_Built (user, Quoted (name) + " " + Quoted (feed.good)).status) << name;
        EXPECT_EQ (16, Program_Run_Built (user, Quoted (feed.good) + " " + Quoted (name)).status) << name;
        EXPECT_EQ (0, Program_Run_Built (user, Quoted (name) + " " + Quoted (name)).status) << name;
    }
}
