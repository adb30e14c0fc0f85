#include "util/win_registry.h"

#include <string.h>

#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/log_recorder.h"

// A registry made up by the test. Keys are numbered as they are opened, from 101 on; 100 is the root.
struct Registry {
    std::string                        chain; // What was done, in order.
    std::string                        open_fails, close_fails;
    std::map<std::string, std::string> values;
    std::vector<std::string>           names;
    int                                open_keys;
    size_t                             value_size;
};

static Registry registry;

static unsigned Fake_Open (System_Registry_Key parent, const char *name, System_Registry_Key *key) {
    registry.chain += "open " + std::to_string (parent) + " " + name + "\n";
    if (registry.open_fails == name) return 2;
    registry.names.push_back (name);
    registry.open_keys++;
    *key = 100 + registry.names.size ();
    return 0;
}

static unsigned Fake_Close (System_Registry_Key key) {
    registry.chain += "close " + std::to_string (key) + "\n";
    registry.open_keys--;
    return registry.names[key - 101] == registry.close_fails ? 5 : 0;
}

static unsigned Fake_Read (System_Registry_Key key, const char *value, char *result, size_t size) {
    registry.chain += "read " + std::to_string (key) + " " + value + "\n";
    registry.value_size = size;
    auto found          = registry.values.find (value);
    if (found == registry.values.end ()) return 2;
    if (found->second.size () >= size) return 234;
    memcpy (result, found->second.c_str (), found->second.size () + 1);
    return 0;
}

static const Registry_Access ACCESS = {100, Fake_Open, Fake_Close, Fake_Read};

class WinRegistry : public testing::Test {
protected:
    void SetUp () override { registry = {}; }

    int Read (const char *program = "Prog") {
        return Registry_Read_Path (nullptr, &ACCESS, program, result, sizeof result);
    }

    // The four lines of a key that fails.
    void Expect_Failure (const std::string &what) {
        ASSERT_EQ (recorder.lines.size (), 4u) << recorder.All ();
        for (const Log_Line &line : recorder.lines) EXPECT_EQ (line.kind, LOG_TRACE1);
        EXPECT_EQ (recorder.lines[0].text, "Failed in Registry_Get_Path(Prog,)");
        EXPECT_EQ (recorder.lines[1].text.find ("File:win_registry Line:"), 0u);
        EXPECT_EQ (recorder.lines[2].text, "Unable to " + what);
    }

    Log_Recorder recorder {9};
    char         result[1024] = "untouched";
};

TEST_F (WinRegistry, ReadsTheValuePath) {
    registry.values["Path"] = "C:\\Program Files\\Prog";
    EXPECT_EQ (Read (), 1);
    EXPECT_STREQ (result, "C:\\Program Files\\Prog\\");
    EXPECT_EQ (recorder.All (),
               "11: Registry_Get_Path(): Installation Path from registry = \"C:\\Program Files\\Prog\\\"\n");
    EXPECT_EQ (
        registry.chain,
        "open 100 SOFTWARE\nopen 101 Microsoft\nclose 101\nopen 102 Windows\nclose 102\nopen 103 CurrentVersion\n"
        "close 103\nopen 104 App Paths\nclose 104\nopen 105 Prog.exe\nclose 105\nread 106 Path\nclose 106\n");
    EXPECT_EQ (registry.value_size, 771u);
}

TEST_F (WinRegistry, ExeIsAppendedOnce) {
    registry.values["Path"] = "C:\\P";
    EXPECT_EQ (Read ("Prog.exe"), 1);
    EXPECT_NE (registry.chain.find ("open 105 Prog.exe\n"), std::string::npos);
    registry                = {};
    registry.values["Path"] = "C:\\P";
    EXPECT_EQ (Read (".exe2"), 1);
    EXPECT_NE (registry.chain.find ("open 105 .exe2.exe\n"), std::string::npos);
    registry                = {};
    registry.values["Path"] = "C:\\P";
    EXPECT_EQ (Read ("x"), 1);
    EXPECT_NE (registry.chain.find ("open 105 x.exe\n"), std::string::npos);
}

TEST_F (WinRegistry, DefaultValueGivesItsDirectory) {
    registry.values[""] = "D:\\Apps\\Prog\\Prog.exe";
    EXPECT_EQ (Read (), 1);
    EXPECT_STREQ (result, "D:\\Apps\\Prog\\");
    EXPECT_NE (registry.chain.find ("read 106 Path\nread 106 \nclose 106\n"), std::string::npos);
}

TEST_F (WinRegistry, EmptyPathCountsAsMissing) {
    registry.values["Path"] = "";
    registry.values[""]     = "D:\\Apps\\Prog.exe";
    EXPECT_EQ (Read (), 1);
    EXPECT_STREQ (result, "D:\\Apps\\");
}

TEST_F (WinRegistry, FinalSeparatorIsNotDoubled) {
    registry.values["Path"] = "C:\\P\\";
    EXPECT_EQ (Read (), 1);
    EXPECT_STREQ (result, "C:\\P\\");
}

TEST_F (WinRegistry, NoValueIsAWarning) {
    EXPECT_EQ (Read (), 0);
    EXPECT_EQ (recorder.All (),
               "2: Failed to get in Registry information\n2: The application ma have been installed incorectly...\n");
    EXPECT_STREQ (result, "");
    EXPECT_EQ (registry.open_keys, 0);
}

TEST_F (WinRegistry, DefaultValueWithoutDirectoryIsNoValue) {
    registry.values[""] = "Prog.exe";
    EXPECT_EQ (Read (), 0);
    EXPECT_EQ (recorder.Count (LOG_WARNING), 2);
}

TEST_F (WinRegistry, EveryKeyThatCannotBeOpenedIsReportedAndNoneStaysOpen) {
    for (const char *key : {"SOFTWARE", "Microsoft", "Windows", "CurrentVersion", "App Paths", "Prog.exe"}) {
        registry            = {};
        registry.open_fails = key;
        recorder.Clear ();
        EXPECT_EQ (Read (), 0);
        Expect_Failure (std::string ("access key: ") + key);
        EXPECT_EQ (recorder.lines[3].text.find ("[ERROR_FILE_NOT_FOUND] "), 0u) << recorder.lines[3].text;
        EXPECT_EQ (registry.open_keys, 0) << key;
        EXPECT_STREQ (result, "");
    }
}

TEST_F (WinRegistry, EveryKeyThatCannotBeClosedIsReported) {
    for (const char *key : {"SOFTWARE", "Microsoft", "Windows", "CurrentVersion", "App Paths", "Prog.exe"}) {
        registry                = {};
        registry.close_fails    = key;
        registry.values["Path"] = "C:\\P";
        recorder.Clear ();
        EXPECT_EQ (Read (), 0);
        Expect_Failure (std::string ("close key: ") + key);
        EXPECT_EQ (registry.open_keys, 0) << key;
        EXPECT_STREQ (result, "");
    }
}

TEST_F (WinRegistry, ValueThatIsTooLongIsNotRead) {
    registry.values["Path"] = std::string (771, 'x');
    EXPECT_EQ (Read (), 0);
    EXPECT_EQ (recorder.Count (LOG_WARNING), 2);
    registry.values["Path"] = std::string (770, 'x');
    EXPECT_EQ (Read (), 1);
    EXPECT_EQ (result, std::string (770, 'x') + "\\");
}

TEST_F (WinRegistry, ResultThatDoesNotFitIsAFailure) {
    for (const char *path : {"C:\\Prog", "C:\\Pro\\x"}) {
        registry                = {};
        registry.values["Path"] = path;
        recorder.Clear ();
        char small[8];
        memset (small, 'k', sizeof small);
        EXPECT_EQ (Registry_Read_Path (nullptr, &ACCESS, "Prog", small, sizeof small), 0);
        EXPECT_STREQ (small, "");
        EXPECT_EQ (recorder.Count (LOG_TRACE1, "Failed in Registry_Get_Path(Prog,)"), 1);
    }
    registry                = {};
    registry.values["Path"] = "C:\\Prog";
    char exact[9];
    EXPECT_EQ (Registry_Read_Path (nullptr, &ACCESS, "Prog", exact, sizeof exact), 1);
    EXPECT_STREQ (exact, "C:\\Prog\\");
    EXPECT_EQ (Registry_Read_Path (nullptr, &ACCESS, "Prog", exact, 0), 0);
}

TEST_F (WinRegistry, SystemsOwnRegistryDoesNotKnowThisProgram) {
    EXPECT_EQ (Registry_Read_Path (nullptr, nullptr, "No such program of ours", result, sizeof result), 0);
    EXPECT_EQ (recorder.Count (LOG_TRACE1, "Failed in Registry_Get_Path(No such program of ours,)"), 1);
    EXPECT_EQ (recorder.Count (LOG_TRACE1, "Unable to access key: "), 1);
}

TEST_F (WinRegistry, GetPathTakesTheSystemsInstallPathFirst) {
    char expected[SYSTEM_PATH_SIZE];
    int  has_path = System_Install_Path (expected, sizeof expected);
    EXPECT_EQ (Registry_Get_Path (nullptr, "No such program of ours", result, sizeof result), has_path);
    EXPECT_STREQ (result, has_path ? expected : "");
    EXPECT_EQ (recorder.Count (LOG_TRACE1, "Registry_Get_Path(): Installation Path = \""), has_path);
}
