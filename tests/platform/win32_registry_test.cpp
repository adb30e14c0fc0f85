#include <string.h>

#include <string>

#include <gtest/gtest.h>
#include <windows.h>

#include "platform/system.h"
#include "tests/support/log_recorder.h"
#include "util/win_registry.h"

static const char PARENT[] = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths";

// The key of an installed program, for as long as a test runs.
class App_Path {
public:
    explicit App_Path (const std::string &program) : name (program) {
        RegCreateKeyExA (HKEY_LOCAL_MACHINE, Path ().c_str (), 0, nullptr, 0, KEY_ALL_ACCESS | KEY_WOW64_64KEY, nullptr,
                         &key, nullptr);
    }
    ~App_Path () {
        RegCloseKey (key);
        RegDeleteKeyExA (HKEY_LOCAL_MACHINE, Path ().c_str (), KEY_WOW64_64KEY, 0);
    }
    void Set (const char *value, DWORD type, const std::string &bytes) {
        RegSetValueExA (key, value, 0, type, reinterpret_cast<const BYTE *> (bytes.data ()), (DWORD)bytes.size ());
    }
    std::string Path () const { return std::string (PARENT) + "\\" + name; }

private:
    std::string name;
    HKEY        key = nullptr;
};

// Walks to the key one name at a time, as the program does.
static System_Registry_Key Open (const std::string &name) {
    System_Registry_Key key = System_Registry_Root ();
    for (const char *step : {"SOFTWARE", "Microsoft", "Windows", "CurrentVersion", "App Paths", name.c_str ()}) {
        System_Registry_Key next = 0;
        EXPECT_EQ (System_Registry_Open (key, step, &next), 0u) << step;
        if (key != System_Registry_Root ()) {
            EXPECT_EQ (System_Registry_Close (key), 0u) << step;
        }
        key = next;
    }
    return key;
}

TEST (Win32Registry, ValuesAreReadByName) {
    App_Path program ("Tagwright test values.exe");
    program.Set ("Path", REG_SZ,
                 std::string ("C:\\Programme\\Pr\xC3\xBC"
                              "fer\0",
                              22));
    program.Set ("", REG_SZ, std::string ("C:\\Other\\Tagwright.exe\0", 23));

    System_Registry_Key key = Open ("Tagwright test values.exe");
    char                text[100];
    EXPECT_EQ (System_Registry_Read (key, "Path", text, sizeof text), 0u);
    EXPECT_STREQ (text, "C:\\Programme\\Pr\xC3\xBC"
                        "fer");
    EXPECT_EQ (System_Registry_Read (key, "", text, sizeof text), 0u);
    EXPECT_STREQ (text, "C:\\Other\\Tagwright.exe");
    EXPECT_EQ (System_Registry_Read (key, "Missing", text, sizeof text), (unsigned)ERROR_FILE_NOT_FOUND);
    EXPECT_EQ (System_Registry_Close (key), 0u);
}

TEST (Win32Registry, AValueWithoutItsZeroIsTerminated) {
    App_Path program ("Tagwright test zero.exe");
    program.Set ("Path", REG_SZ, "C:\\Bare");

    System_Registry_Key key = Open ("Tagwright test zero.exe");
    char                text[100];
    memset (text, 'x', sizeof text);
    EXPECT_EQ (System_Registry_Read (key, "Path", text, sizeof text), 0u);
    EXPECT_STREQ (text, "C:\\Bare");
    System_Registry_Close (key);
}

TEST (Win32Registry, EnvironmentNamesAreFilledIn) {
    App_Path program ("Tagwright test expand.exe");
    program.Set ("Path", REG_EXPAND_SZ, std::string ("%SystemDrive%\\Tagwright\0", 24));

    System_Registry_Key key = Open ("Tagwright test expand.exe");
    char                text[100];
    EXPECT_EQ (System_Registry_Read (key, "Path", text, sizeof text), 0u);
    EXPECT_STREQ (text, "C:\\Tagwright");
    System_Registry_Close (key);
}

TEST (Win32Registry, AValueThatDoesNotFitIsRefused) {
    App_Path program ("Tagwright test long.exe");
    program.Set ("Path", REG_SZ, std::string ("C:\\12345\0", 9));

    System_Registry_Key key = Open ("Tagwright test long.exe");
    char                text[9];
    EXPECT_EQ (System_Registry_Read (key, "Path", text, 9), 0u);
    EXPECT_EQ (System_Registry_Read (key, "Path", text, 8), (unsigned)ERROR_MORE_DATA);
    System_Registry_Close (key);
}

TEST (Win32Registry, ANumberIsNoText) {
    App_Path program ("Tagwright test number.exe");
    program.Set ("Path", REG_DWORD, std::string ("\x01\x02\x03\x04", 4));

    System_Registry_Key key = Open ("Tagwright test number.exe");
    char                text[100];
    EXPECT_NE (System_Registry_Read (key, "Path", text, sizeof text), 0u);
    System_Registry_Close (key);
}

TEST (Win32Registry, AMissingKeyGivesItsErrorCode) {
    System_Registry_Key key = 1;
    EXPECT_EQ (System_Registry_Open (System_Registry_Root (), "SOFTWARE\\No such maker", &key),
               (unsigned)ERROR_FILE_NOT_FOUND);
    EXPECT_EQ (key, 0u);
    EXPECT_EQ (System_Registry_Close (0), (unsigned)ERROR_INVALID_HANDLE);
}

// --- the install path, through the real registry ---------------------------

TEST (Win32Registry, TheInstallPathOfAProgramIsFound) {
    App_Path     program ("Tagwright test install.exe");
    Log_Recorder log (5);
    char         path[SYSTEM_PATH_SIZE] = "";

    program.Set ("Path", REG_SZ, std::string ("C:\\Kestrelbay\\T\xC3\xA4g\0", 19));
    for (const char *name : {"Tagwright test install", "Tagwright test install.exe"}) {
        ASSERT_TRUE (Registry_Get_Path (nullptr, name, path, sizeof path)) << log.All ();
        EXPECT_STREQ (path, "C:\\Kestrelbay\\T\xC3\xA4g\\");
    }
}

TEST (Win32Registry, TheDefaultValueGivesTheInstallPathToo) {
    App_Path     program ("Tagwright test default.exe");
    Log_Recorder log (5);
    char         path[SYSTEM_PATH_SIZE] = "";

    program.Set ("", REG_SZ, std::string ("D:\\Programs\\Tagwright.exe\0", 26));
    ASSERT_TRUE (Registry_Get_Path (nullptr, "Tagwright test default", path, sizeof path)) << log.All ();
    EXPECT_STREQ (path, "D:\\Programs\\");
}

TEST (Win32Registry, AProgramThatIsNotInstalledIsReported) {
    Log_Recorder log (1);
    char         path[SYSTEM_PATH_SIZE] = "";

    EXPECT_FALSE (Registry_Get_Path (nullptr, "Tagwright test missing", path, sizeof path));
    EXPECT_TRUE (log.Contains ("Unable to access key: Tagwright test missing.exe")) << log.All ();
    EXPECT_TRUE (log.Contains ("[ERROR_FILE_NOT_FOUND]")) << log.All ();
}
