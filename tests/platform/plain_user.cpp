#include "tests/platform/plain_user.h"

#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include <gtest/gtest.h>

#include "platform/system.h"
#include "util/my_error_fct.h"

std::vector<std::string> boxes;

static int Box_Hook (Window, const char *text, const char *caption, Window_Icon) {
    boxes.push_back (std::string (caption) + "|" + text);
    return 0;
}

static std::string Scratch_Of (uid_t user) { return "/tmp/tagwright-" + std::to_string (user); }

static uid_t User_Of (pid_t process) { return geteuid () ? geteuid () : 54321 + static_cast<uid_t> (process) % 100000; }

static void Run (const Plain_User_Test &what, const Plain_User_Test &before) {
    uid_t           user  = User_Of (getpid ());
    std::string     plain = Scratch_Of (user), aside = plain + ".aside-" + std::to_string (getpid ());
    std::error_code ignored;
    bool            moved = !rename (plain.c_str (), aside.c_str ());
    if (before) before (plain);
    EXPECT_TRUE (geteuid () || !setresuid (user, user, user));
    Log_Settings_Reset ();
    Log_Sink_Set (Log_Program_Sink);
    Window_Box_Hook_Set (Box_Hook);
    boxes.clear ();
    what (plain);
    std::filesystem::remove_all (plain, ignored);
    EXPECT_TRUE (!moved || !rename (aside.c_str (), plain.c_str ()));
}

void Without_Default_Scratch (const Plain_User_Test &what, const Plain_User_Test &before) {
    fflush (stdout);
    pid_t child = fork ();
    if (!child) {
        Run (what, before);
        fflush (stdout);
        _exit (testing::Test::HasFailure ());
    }
    int status = -1;
    waitpid (child, &status, 0);
    EXPECT_EQ (status, 0);
    if (geteuid ()) return;
    std::error_code ignored; // What was made before may not be the plain user's.
    std::filesystem::remove_all (Scratch_Of (User_Of (child)), ignored);
}

void Expect_One_Box (const std::string &plain) {
    ASSERT_EQ (boxes.size (), 1u);
    EXPECT_EQ (boxes[0], "Error writing to Scratch dir|Unable to create directory: \"" + plain +
                             "/\"\nMake sure you have the necessary permisions");
}
