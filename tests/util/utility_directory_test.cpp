#include "util/utility_directory.h"

#include <atomic>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/system.h"
#include "tests/support/log_recorder.h"
#include "tests/support/temporary.h"

class UtilityDirectory : public testing::Test {
protected:
    // "a/b" below the test's directory, in the system's own form.
    std::string Path (std::string below) const {
        for (char &c : below)
            if (c == '/') c = System_Separator ();
        return directory.path + below;
    }

    Temporary_Directory directory;
};

TEST_F (UtilityDirectory, CheckKnowsDrives) {
    EXPECT_EQ (Directory_Check ("C:"), 1);
    EXPECT_EQ (Directory_Check ("z:"), 1);
    std::string drive = "C:";
    EXPECT_EQ (Directory_Check ((drive + System_Separator ()).c_str ()), 1);
    EXPECT_EQ (Directory_Check ("1:"), 0);
    EXPECT_EQ (Directory_Check ("::"), 0);
    EXPECT_EQ (Directory_Check ("[:"), 0); // Behind the letters.
    EXPECT_EQ (Directory_Check ("{:"), 0);
    EXPECT_EQ (Directory_Check ("C:none"), 0);
    EXPECT_EQ (Directory_Check ((drive + System_Separator () + "none").c_str ()), 0);
    EXPECT_EQ (Directory_Check (":"), 0);
    EXPECT_EQ (Directory_Check (""), 0);
}

TEST_F (UtilityDirectory, CheckTakesASeparatorAtTheEnd) {
    std::string plain = directory.path.substr (0, directory.path.size () - 1);
    EXPECT_EQ (Directory_Check (plain.c_str ()), 1);
    EXPECT_EQ (Directory_Check (directory.path.c_str ()), 1);
    EXPECT_EQ (Directory_Check ((directory.path + System_Separator ()).c_str ()), 1);
    EXPECT_EQ (Directory_Check ("."), 1);
    std::string root (1, System_Separator ());
    EXPECT_EQ (Directory_Check (root.c_str ()), 1);
}

TEST_F (UtilityDirectory, CheckTakesADotInTheName) {
    std::filesystem::create_directory (Path ("a.b"));
    EXPECT_EQ (Directory_Check (Path ("a.b").c_str ()), 1);
    EXPECT_EQ (Directory_Check (Path ("a.b/").c_str ()), 1);
}

TEST_F (UtilityDirectory, CheckRefusesFilesAndWhatIsMissing) {
    directory.Write ("file", std::string ("x"));
    EXPECT_EQ (Directory_Check (Path ("file").c_str ()), 0);
    EXPECT_EQ (Directory_Check (Path ("none").c_str ()), 0);
    EXPECT_EQ (Directory_Check (std::string (3 * SYSTEM_PATH_SIZE, 'x').c_str ()), 0);
}

TEST_F (UtilityDirectory, MakeMakesAllMissingLevels) {
    Log_Recorder recorder (9);
    EXPECT_EQ (Directory_Make (nullptr, Path ("a/b/c/").c_str ()), 1);
    EXPECT_TRUE (std::filesystem::is_directory (Path ("a/b/c")));
    EXPECT_EQ (Directory_Make (nullptr, Path ("a/b/c").c_str ()), 1);
    EXPECT_EQ (Directory_Make (nullptr, Path ("a/x//y//").c_str ()), 1);
    EXPECT_TRUE (std::filesystem::is_directory (Path ("a/x/y")));
    EXPECT_EQ (recorder.All (), "");
}

TEST_F (UtilityDirectory, MakeOfRelativePath) {
    std::filesystem::path before = std::filesystem::current_path ();
    std::filesystem::current_path (directory.path);
    std::string relative = std::string ("r") + System_Separator () + "s";
    EXPECT_EQ (Directory_Make (nullptr, relative.c_str ()), 1);
    EXPECT_EQ (Directory_Make (nullptr, "t"), 1);
    std::filesystem::current_path (before);
    EXPECT_TRUE (std::filesystem::is_directory (Path ("r/s")));
    EXPECT_TRUE (std::filesystem::is_directory (Path ("t")));
}

TEST_F (UtilityDirectory, MakeFailsWhereAFileStands) {
    directory.Write ("file", std::string ("x"));
    EXPECT_EQ (Directory_Make (nullptr, Path ("file").c_str ()), 0);
    EXPECT_EQ (Directory_Make (nullptr, Path ("file/below").c_str ()), 0);
    EXPECT_EQ (Directory_Make (nullptr, ""), 0);
}

TEST_F (UtilityDirectory, MakeReportsAPathThatIsTooLong) {
    Log_Recorder recorder (1);
    int          limit = static_cast<int> (System_Directory_Limit ());
    std::string  path  = directory.path;
    path.resize (static_cast<size_t> (limit) + 1, 'x');
    EXPECT_EQ (Directory_Make (nullptr, path.c_str ()), 0);
    ASSERT_EQ (recorder.lines.size (), 2u);
    EXPECT_EQ (recorder.lines[0].kind, LOG_TRACE1);
    EXPECT_EQ (recorder.lines[0].text.find ("File:utility_directory, Line:"), 0u);
    EXPECT_EQ (recorder.lines[1].kind, LOG_WARNING);
    EXPECT_EQ (recorder.lines[1].text,
               "Path too long (" + std::to_string (limit + 1) + " char > max=" + std::to_string (limit) + ")");

    recorder.Clear ();
    path.pop_back ();
    Directory_Make (nullptr, path.c_str ());
    EXPECT_FALSE (recorder.Contains ("Path too long"));
}

TEST_F (UtilityDirectory, MakeAtTheSameTimeSucceedsForAll) {
    for (int round = 0; round < 20; round++) {
        std::string              path = Path ("round" + std::to_string (round) + "/a/b/c/d/e");
        std::atomic<int>         made (0), ready (0);
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; i++)
            threads.emplace_back ([&] {
                for (ready++; ready < 4;) std::this_thread::yield ();
                made += Directory_Make (nullptr, path.c_str ());
            });
        for (std::thread &thread : threads) thread.join ();
        ASSERT_EQ (made, 4);
    }
}
