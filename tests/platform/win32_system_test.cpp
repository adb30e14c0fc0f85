#include <stdlib.h>
#include <string.h>

#include <atomic>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <windows.h>

#include "platform/system.h"
#include "tests/platform/win32_child.h"
#include "tests/support/temporary.h"

// --- helpers ---------------------------------------------------------------

static const char    NARROW[] = "Pr\xC3\xBC"
                                "fung \xE6\x97\xA5\xE6\x9C\xAC.dat"; // UTF-8 of the next one
static const wchar_t WIDE[]   = L"Pr\u00FCfung \u65E5\u672C.dat";

// A file whose name only the wide calls decide.
static std::string Write_Wide (const Temporary_Directory &directory, const std::string &bytes) {
    std::wstring name = std::wstring (directory.path.begin (), directory.path.end ()) + WIDE;
    DWORD        done = 0;
    HANDLE       file = CreateFileW (name.c_str (), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    EXPECT_NE (file, INVALID_HANDLE_VALUE);
    WriteFile (file, bytes.data (), (DWORD)bytes.size (), &done, nullptr);
    CloseHandle (file);
    return directory.path + NARROW;
}

static std::vector<unsigned char> Counted_Bytes (size_t count) {
    std::vector<unsigned char> bytes (count);
    for (size_t i = 0; i < count; i++) bytes[i] = (unsigned char)(i * 7 + i / 251);
    return bytes;
}

// --- paths -----------------------------------------------------------------

TEST (Win32System, ConventionsOfTheSystem) {
    EXPECT_EQ (System_Separator (), '\\');
    EXPECT_TRUE (System_Is_Separator ('\\'));
    EXPECT_TRUE (System_Is_Separator ('/'));
    EXPECT_FALSE (System_Is_Separator (':'));
    EXPECT_STREQ (System_Line_End (), "\r\n");
    EXPECT_EQ (System_Directory_Limit (), 247u);
}

TEST (Win32System, TheCodePageIsUtf8) { EXPECT_EQ (GetACP (), (UINT)CP_UTF8); }

TEST (Win32System, ScratchPathIsOnTheSystemDrive) {
    char path[SYSTEM_PATH_SIZE];
    ASSERT_TRUE (System_Scratch_Path (path, sizeof path));
    EXPECT_STREQ (path, "C:\\Temp\\");
    EXPECT_TRUE (System_Scratch_Path (path, 9));
    EXPECT_FALSE (System_Scratch_Path (path, 8));
}

TEST (Win32System, UserDataPathIsAppdataWithASeparator) {
    const char *given  = getenv ("APPDATA");
    std::string before = given ? given : "";
    char        path[SYSTEM_PATH_SIZE];

    _putenv_s ("APPDATA", "C:\\Users\\J\xC3\xBCrgen");
    ASSERT_TRUE (System_User_Data_Path (path, sizeof path));
    EXPECT_STREQ (path, "C:\\Users\\J\xC3\xBCrgen\\");
    EXPECT_TRUE (System_User_Data_Path (path, 18));
    EXPECT_FALSE (System_User_Data_Path (path, 17)) << "no room for the separator";
    EXPECT_FALSE (System_User_Data_Path (path, 5));
    _putenv_s ("APPDATA", "D:\\Data\\");
    ASSERT_TRUE (System_User_Data_Path (path, 9));
    EXPECT_STREQ (path, "D:\\Data\\");
    _putenv_s ("APPDATA", ""); // Removes it.
    EXPECT_FALSE (System_User_Data_Path (path, sizeof path));
    _putenv_s ("APPDATA", before.c_str ());
}

TEST (Win32System, InstallPathIsLeftToTheRegistry) {
    char path[SYSTEM_PATH_SIZE];
    EXPECT_FALSE (System_Install_Path (path, sizeof path));
}

// --- directories and files -------------------------------------------------

TEST (Win32System, DirectoriesAreMadeOneLevelAtATime) {
    Temporary_Directory directory;
    std::string         name = directory.File (NARROW);

    EXPECT_FALSE (System_Is_Directory (name.c_str ()));
    EXPECT_FALSE (System_Directory_Make ((name + "\\below").c_str ()));
    EXPECT_EQ (System_Last_Error (), (unsigned)ERROR_PATH_NOT_FOUND);
    EXPECT_TRUE (System_Directory_Make (name.c_str ()));
    EXPECT_TRUE (System_Directory_Make (name.c_str ())) << "it is there already";
    EXPECT_TRUE (System_Is_Directory (name.c_str ()));
    EXPECT_TRUE (System_Directory_Make ((name + "/below").c_str ()));
    EXPECT_TRUE (System_Private_Directory_Make ((name + "\\private").c_str ()));
    EXPECT_TRUE (System_Is_Directory ((name + "\\private").c_str ()));
    EXPECT_TRUE (System_Directory_Make ("C:\\"));
}

TEST (Win32System, AFileIsNoDirectory) {
    Temporary_Directory directory;
    std::string         name = Write_Wide (directory, "12345");
    int64_t             size = 0;

    EXPECT_TRUE (System_File_Exists (name.c_str ()));
    EXPECT_FALSE (System_Is_Directory (name.c_str ()));
    EXPECT_FALSE (System_Directory_Make (name.c_str ()));
    EXPECT_EQ (System_Last_Error (), (unsigned)ERROR_ALREADY_EXISTS);
    EXPECT_FALSE (System_Private_Directory_Make (name.c_str ()));
    ASSERT_TRUE (System_File_Size_Of (name.c_str (), &size));
    EXPECT_EQ (size, 5);
    EXPECT_FALSE (System_File_Size_Of (directory.path.c_str (), &size));
    EXPECT_TRUE (System_File_Delete (name.c_str ()));
    EXPECT_FALSE (System_File_Exists (name.c_str ()));
    EXPECT_EQ (System_Last_Error (), (unsigned)ERROR_FILE_NOT_FOUND);
    EXPECT_FALSE (System_File_Delete (name.c_str ()));
    EXPECT_FALSE (System_File_Size_Of (name.c_str (), &size));
}

// --- listing and copying ---------------------------------------------------

static int Collect (void *context, const char *name) {
    std::set<std::string> *names = static_cast<std::set<std::string> *> (context);
    return names->insert (name).second;
}

TEST (Win32System, ListingNamesWhatIsDirectlyInIt) {
    Temporary_Directory directory;
    Write_Wide (directory, "12345");
    directory.Write ("b.txt", std::string ("x"));
    System_Directory_Make (directory.File ("below").c_str ());
    for (const std::string &path : {directory.path, directory.path.substr (0, directory.path.size () - 1)}) {
        std::set<std::string> names;
        EXPECT_TRUE (System_Directory_List (path.c_str (), Collect, &names));
        EXPECT_EQ (names, (std::set<std::string> {NARROW, "b.txt", "below"}));
    }
    std::set<std::string> names;
    EXPECT_TRUE (System_Directory_List (directory.File ("below").c_str (), Collect, &names));
    EXPECT_FALSE (System_Directory_List (directory.File ("none").c_str (), Collect, &names));
    EXPECT_EQ (System_Last_Error (), (unsigned)ERROR_PATH_NOT_FOUND);
    EXPECT_FALSE (System_Directory_List (directory.File ("b.txt").c_str (), Collect, &names));
    EXPECT_FALSE (System_Directory_List (std::string (SYSTEM_PATH_SIZE, 'x').c_str (), Collect, &names));
    EXPECT_EQ (System_Last_Error (), (unsigned)ERROR_FILENAME_EXCED_RANGE);
    EXPECT_TRUE (names.empty ());
}

static int End (void *context, const char *) {
    ++*static_cast<int *> (context);
    return 0;
}

TEST (Win32System, ListingEndsWhenAsked) {
    Temporary_Directory directory;
    int                 count = 0;
    directory.Write ("a.txt", std::string ("x"));
    directory.Write ("b.txt", std::string ("x"));
    EXPECT_TRUE (System_Directory_List (directory.path.c_str (), End, &count));
    EXPECT_EQ (count, 1);
}

TEST (Win32System, CopyHasTheSameBytesAndNeverReplaces) {
    Temporary_Directory directory;
    for (size_t size : {0u, 1u, 65536u, 200000u}) {
        std::vector<unsigned char> bytes = Counted_Bytes (size);
        std::string                from = directory.Write ("from", bytes), to = directory.File (NARROW);
        EXPECT_TRUE (System_File_Copy (from.c_str (), to.c_str ()));
        EXPECT_EQ (Read_Whole (to), std::string (bytes.begin (), bytes.end ()));
        EXPECT_FALSE (System_File_Copy (from.c_str (), to.c_str ()));
        EXPECT_EQ (System_Last_Error (), (unsigned)ERROR_FILE_EXISTS);
        EXPECT_TRUE (System_File_Delete (to.c_str ()));
    }
    EXPECT_FALSE (System_File_Copy (directory.File ("none").c_str (), directory.File ("to").c_str ()));
    EXPECT_EQ (System_Last_Error (), (unsigned)ERROR_FILE_NOT_FOUND);
    EXPECT_FALSE (System_File_Exists (directory.File ("to").c_str ()));
}

// The copy is for the user to edit.
TEST (Win32System, CopyOfAWriteProtectedFileCanBeWritten) {
    Temporary_Directory directory;
    std::string         from = directory.Write ("from", std::string ("x")), to = directory.File ("to");
    SetFileAttributesA (from.c_str (), FILE_ATTRIBUTE_READONLY);
    EXPECT_TRUE (System_File_Copy (from.c_str (), to.c_str ()));
    EXPECT_FALSE (GetFileAttributesA (to.c_str ()) & FILE_ATTRIBUTE_READONLY);
    SetFileAttributesA (from.c_str (), FILE_ATTRIBUTE_NORMAL);
}

// --- reading files ---------------------------------------------------------

TEST (Win32System, AMissingFileSaysSo) {
    Temporary_Directory directory;
    EXPECT_EQ (System_File_Open (directory.File ("none").c_str ()), nullptr);
    EXPECT_EQ (System_Last_Error (), (unsigned)ERROR_FILE_NOT_FOUND);
}

TEST (Win32System, OnlyDiskFilesAreOpened) {
    Temporary_Directory directory;
    EXPECT_EQ (System_File_Open (directory.path.c_str ()), nullptr);
    EXPECT_EQ (System_File_Open ("NUL"), nullptr);
    EXPECT_EQ (System_Last_Error (), (unsigned)ERROR_NOT_SUPPORTED);

    HANDLE pipe =
        CreateNamedPipeA ("\\\\.\\pipe\\tagwright-test", PIPE_ACCESS_OUTBOUND, PIPE_TYPE_BYTE, 1, 100, 100, 0, nullptr);
    ASSERT_NE (pipe, INVALID_HANDLE_VALUE);
    EXPECT_EQ (System_File_Open ("\\\\.\\pipe\\tagwright-test"), nullptr);
    EXPECT_EQ (System_Last_Error (), (unsigned)ERROR_NOT_SUPPORTED);
    CloseHandle (pipe);
}

TEST (Win32System, ReadsAtAnyPosition) {
    Temporary_Directory directory;
    std::string         name      = Write_Wide (directory, "0123456789");
    System_File        *file      = System_File_Open (name.c_str ());
    char                bytes[20] = "";

    ASSERT_NE (file, nullptr);
    EXPECT_EQ (System_File_Size (file), 10);
    EXPECT_EQ (System_File_Read (file, 6, bytes, 3), 3);
    EXPECT_STREQ (bytes, "678");
    EXPECT_EQ (System_File_Read (file, 8, bytes, 20), 2);
    EXPECT_EQ (memcmp (bytes, "89", 2), 0);
    EXPECT_EQ (System_File_Read (file, 10, bytes, 1), 0);
    EXPECT_EQ (System_File_Read (file, 5000000000, bytes, 1), 0);
    EXPECT_EQ (System_File_Read (file, 0, bytes, 0), 0);
    EXPECT_EQ (System_File_Read (file, -1, bytes, 1), -1);
    System_File_Close (file);
    System_File_Close (nullptr);
}

TEST (Win32System, OthersMayReadAndWriteAnOpenFile) {
    Temporary_Directory directory;
    std::string         name = directory.Write ("shared.dat", std::string ("abc"));
    System_File        *file = System_File_Open (name.c_str ());
    char                bytes[10];

    ASSERT_NE (file, nullptr);
    HANDLE other = CreateFileA (name.c_str (), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE (other, INVALID_HANDLE_VALUE);
    DWORD done = 0;
    EXPECT_TRUE (WriteFile (other, "ABCDE", 5, &done, nullptr));
    EXPECT_EQ (System_File_Size (file), 3) << "as it was opened";
    EXPECT_EQ (System_File_Read (file, 0, bytes, 10), 5);
    System_File *second = System_File_Open (name.c_str ());
    EXPECT_NE (second, nullptr) << "also while somebody writes";
    System_File_Close (second);
    System_File_Close (file);
    CloseHandle (other);
}

TEST (Win32System, SizesAndPositionsHave64Bits) {
    Temporary_Directory directory;
    std::string         name  = directory.File ("large.dat");
    const int64_t       place = 5000000000; // Beyond 32 bits; a hole, not data.
    LARGE_INTEGER       where;
    int64_t             size = 0;
    DWORD               done = 0;
    char                bytes[10];

    HANDLE writer = CreateFileA (name.c_str (), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DeviceIoControl (writer, FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &done, nullptr);
    where.QuadPart = place;
    ASSERT_TRUE (SetFilePointerEx (writer, where, nullptr, FILE_BEGIN));
    ASSERT_TRUE (WriteFile (writer, "tail", 4, &done, nullptr));
    CloseHandle (writer);

    ASSERT_TRUE (System_File_Size_Of (name.c_str (), &size));
    EXPECT_EQ (size, place + 4);
    System_File *file = System_File_Open (name.c_str ());
    ASSERT_NE (file, nullptr);
    EXPECT_EQ (System_File_Size (file), place + 4);
    EXPECT_EQ (System_File_Read (file, place, bytes, 10), 4);
    EXPECT_EQ (memcmp (bytes, "tail", 4), 0);

    System_Mapping mapping;
    ASSERT_TRUE (System_File_Map (file, place, 4, &mapping));
    EXPECT_EQ (memcmp (mapping.bytes, "tail", 4), 0);
    System_File_Unmap (&mapping);
    System_File_Close (file);
}

TEST (Win32System, AViewOutlivesItsFile) {
    Temporary_Directory        directory;
    std::vector<unsigned char> bytes = Counted_Bytes (300000);
    std::string                name  = directory.Write ("mapped.dat", bytes);
    System_File               *file  = System_File_Open (name.c_str ());
    System_Mapping             first, second;

    ASSERT_NE (file, nullptr);
    ASSERT_TRUE (System_File_Map (file, 0, bytes.size (), &first));
    ASSERT_TRUE (System_File_Map (file, 131077, 100000, &second));
    System_File_Close (file);
    EXPECT_EQ (memcmp (first.bytes, bytes.data (), bytes.size ()), 0);
    EXPECT_EQ (memcmp (second.bytes, bytes.data () + 131077, 100000), 0);
    EXPECT_EQ (System_Map_Faults (), 0);
    System_File_Unmap (&first);
    System_File_Unmap (&second);
    EXPECT_EQ (second.base, nullptr);
    System_File_Unmap (&second);
    EXPECT_TRUE (System_File_Delete (name.c_str ())) << "no view holds it any more";
}

TEST (Win32System, AViewMustLieInsideTheFile) {
    Temporary_Directory directory;
    System_File        *file = System_File_Open (directory.Write ("short.dat", std::string ("0123456789")).c_str ());
    System_Mapping      mapping;

    ASSERT_NE (file, nullptr);
    EXPECT_FALSE (System_File_Map (file, 0, 11, &mapping));
    EXPECT_FALSE (System_File_Map (file, 5, 6, &mapping));
    EXPECT_FALSE (System_File_Map (file, 11, 1, &mapping));
    EXPECT_FALSE (System_File_Map (file, 5, SIZE_MAX, &mapping));
    EXPECT_FALSE (System_File_Map (file, -1, 1, &mapping));
    EXPECT_FALSE (System_File_Map (file, 0, 0, &mapping));
    EXPECT_TRUE (System_File_Map (file, 9, 1, &mapping));
    EXPECT_EQ (*mapping.bytes, '9');
    System_File_Unmap (&mapping);
    System_File_Close (file);
}

// --- facts -----------------------------------------------------------------

TEST (Win32System, TheComputerHasAName) {
    char name[300] = "", expected[300] = "";
    GetEnvironmentVariableA ("COMPUTERNAME", expected, sizeof expected);
    ASSERT_TRUE (System_Computer_Name (name, sizeof name));
    EXPECT_STREQ (name, expected);
    EXPECT_FALSE (System_Computer_Name (name, 1));
}

TEST (Win32System, TheVersionIsTheTrueOne) {
    typedef LONG (WINAPI * True_Version) (OSVERSIONINFOW *);
    OSVERSIONINFOEXW truth    = {};
    truth.dwOSVersionInfoSize = sizeof truth;
    auto ask                  = reinterpret_cast<True_Version> (
        reinterpret_cast<void *> (GetProcAddress (GetModuleHandleA ("ntdll.dll"), "RtlGetVersion")));
    ASSERT_EQ (ask (reinterpret_cast<OSVERSIONINFOW *> (&truth)), 0);

    System_Version version = {};
    ASSERT_TRUE (System_Version_Get (&version));
    EXPECT_EQ (version.platform, 2);
    EXPECT_EQ (version.major, (int)truth.dwMajorVersion);
    EXPECT_EQ (version.minor, (int)truth.dwMinorVersion);
    EXPECT_EQ (version.build, (int)truth.dwBuildNumber);
    EXPECT_TRUE (version.has_service_pack);
    EXPECT_EQ (version.pack_major, truth.wServicePackMajor);
    EXPECT_EQ (version.pack_minor, truth.wServicePackMinor);
}

TEST (Win32System, ProcessorsAreCounted) {
    System_Processor processor = {};
    System_Processor_Get (&processor);
    EXPECT_EQ (processor.count, GetActiveProcessorCount (0));
    EXPECT_EQ (processor.type, 8664u); // PROCESSOR_AMD_X8664
    EXPECT_EQ (processor.oem, 9u);     // PROCESSOR_ARCHITECTURE_AMD64
}

// --- processes -------------------------------------------------------------

TEST (Win32System, TheExitStatusIsTheFullNumber) {
    for (int number : {0, 12, 254, 300, 100000, -3, -6}) {
        Child_Result result = Child_Run ("status", std::to_string (number), CHILD_PIPE);
        ASSERT_TRUE (result.started);
        EXPECT_EQ ((int)result.status, number);
    }
}

TEST (Win32System, ConsoleOutputGoesToThePipeThatWasGiven) {
    Child_Result result = Child_Run ("write", "REPORT:  text", CHILD_PIPE);
    ASSERT_TRUE (result.started);
    EXPECT_EQ (result.status, 0u);
    EXPECT_EQ (result.output, "REPORT:  text");
}

TEST (Win32System, ConsoleOutputGoesToTheFileThatWasGiven) {
    Temporary_Directory directory;
    Child_Result        result = Child_Run ("write", "REPORT:  text", CHILD_FILE, directory.File ("output"));
    ASSERT_TRUE (result.started);
    EXPECT_EQ (result.status, 0u);
    EXPECT_EQ (Read_Whole (directory.File ("output")), "REPORT:  text");
}

// Without a desktop (Wine without a display) no window can be made, nor a console, and the call must say so.
TEST (Win32System, AProcessWithoutOutputGetsAConsole) {
    HWND window  = CreateWindowExA (0, "STATIC", "", WS_OVERLAPPED, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    bool desktop = window != nullptr;
    if (desktop) DestroyWindow (window);

    Child_Result result = Child_Run ("console", "TRACE:   shown", CHILD_NONE);
    ASSERT_TRUE (result.started);
    EXPECT_EQ (result.status, desktop ? CONSOLE_SHOWS : CONSOLE_REFUSED);
}

// --- errors ----------------------------------------------------------------

TEST (Win32System, ErrorNamesAreThePublishedOnes) {
    EXPECT_STREQ (System_Error_Name (0), "[ERROR_SUCCESS]");
    EXPECT_STREQ (System_Error_Name (1), "[ERROR_INVALID_FUNCTION]");
    EXPECT_STREQ (System_Error_Name (2), "[ERROR_FILE_NOT_FOUND]");
    EXPECT_STREQ (System_Error_Name (3), "[ERROR_PATH_NOT_FOUND]");
    EXPECT_STREQ (System_Error_Name (5), "[ERROR_ACCESS_DENIED]");
    EXPECT_STREQ (System_Error_Name (258), "[WAIT_TIMEOUT]");
    EXPECT_STREQ (System_Error_Name (1400), "[ERROR_INVALID_WINDOW_HANDLE]");
    EXPECT_STREQ (System_Error_Name (1460), "[ERROR_TIMEOUT]");
    EXPECT_STREQ (System_Error_Name (2000), "OpenGL [ERROR_INVALID_PIXEL_FORMAT]");
    EXPECT_STREQ (System_Error_Name (2005), "OpenGL [ERROR_CLIPPING_NOT_SUPPORTED]");
    for (unsigned code : {1461u, 1999u, 2006u, 65535u, 0x80070002u, 0xFFFFFFFFu})
        EXPECT_EQ (System_Error_Name (code), nullptr) << code;
}

TEST (Win32System, TheTableOfErrorNamesIsWhole) {
    int named = 0;
    for (unsigned code = 0; code <= 2005; code++) {
        const char *name = System_Error_Name (code);
        if (!name) continue;
        named++;
        bool graphics = !strncmp (name, "OpenGL [ERROR_", 14);
        EXPECT_EQ (graphics, code >= 2000) << name;
        EXPECT_EQ (name[strlen (name) - 1], ']') << name;
        EXPECT_EQ (strspn (strchr (name, '[') + 1, "ABCDEFGHIJKLMNOPQRSTUVWXYZ_0123456789k"),
                   strlen (strchr (name, '[')) - 2)
            << name;
    }
    EXPECT_EQ (named, 598);
}

TEST (Win32System, ErrorMessagesHaveNoLineEnd) {
    char text[1000] = "";
    ASSERT_TRUE (System_Error_Message (ERROR_FILE_NOT_FOUND, text, sizeof text));
    ASSERT_GT (strlen (text), 5u);
    EXPECT_EQ (strpbrk (text, "\r\n"), nullptr);

    char cut[6];
    ASSERT_TRUE (System_Error_Message (ERROR_FILE_NOT_FOUND, cut, sizeof cut));
    EXPECT_EQ (std::string (cut), std::string (text).substr (0, 5));
    EXPECT_FALSE (System_Error_Message (ERROR_FILE_NOT_FOUND, cut, 0));
}

TEST (Win32System, InsertsOfAMessageStay) {
    char text[1000] = "";
    ASSERT_TRUE (System_Error_Message (ERROR_BAD_EXE_FORMAT, text, sizeof text));
    EXPECT_NE (strstr (text, "%1"), nullptr) << text;
}

TEST (Win32System, AnUnknownErrorHasNoMessage) {
    char text[1000];
    EXPECT_FALSE (System_Error_Message (0x2FFFFFFF, text, sizeof text));
}

// The threads agree by turns alone, since starting and joining one are calls that change the error.
TEST (Win32System, TheLastErrorIsTheThreadsOwn) {
    std::atomic<int> turn {0};
    unsigned         others = 0;
    std::thread      other ([&] {
        while (turn != 1) {
        }
        System_Last_Error_Set (ERROR_PATH_NOT_FOUND);
        others = System_Last_Error ();
        turn   = 2;
    });
    System_Last_Error_Set (ERROR_ACCESS_DENIED);
    turn = 1;
    while (turn != 2) {
    }
    unsigned mine = System_Last_Error ();
    other.join ();
    EXPECT_EQ (mine, (unsigned)ERROR_ACCESS_DENIED);
    EXPECT_EQ (others, (unsigned)ERROR_PATH_NOT_FOUND);
}

// --- threads ---------------------------------------------------------------

TEST (Win32System, ThreadsHaveDifferentIdentifiers) {
    uint64_t mine = System_Thread_Identifier (), other = 0;
    std::thread ([&other] { other = System_Thread_Identifier (); }).join ();
    EXPECT_NE (mine, other);
    EXPECT_EQ (mine, System_Thread_Identifier ());
}

TEST (Win32System, AMutexHeldElsewhereTimesOut) {
    System_Mutex *mutex = System_Mutex_Create ();
    ASSERT_NE (mutex, nullptr);
    ASSERT_EQ (System_Mutex_Wait (mutex, 0), SYSTEM_WAIT_ENTERED);

    System_Wait answer = SYSTEM_WAIT_ENTERED;
    ULONGLONG   start  = GetTickCount64 ();
    std::thread ([&] { answer = System_Mutex_Wait (mutex, 100); }).join ();
    EXPECT_EQ (answer, SYSTEM_WAIT_TIMEOUT);
    EXPECT_GE (GetTickCount64 () - start, 80u);

    System_Mutex_Release (mutex);
    std::thread ([&] {
        answer = System_Mutex_Wait (mutex, 100);
        System_Mutex_Release (mutex);
    }).join ();
    EXPECT_EQ (answer, SYSTEM_WAIT_ENTERED);
    System_Mutex_Destroy (mutex);
    System_Mutex_Destroy (nullptr);
}

TEST (Win32System, AMutexLeftBehindIsEntered) {
    System_Mutex *mutex = System_Mutex_Create ();
    std::thread ([mutex] { System_Mutex_Wait (mutex, 0); }).join ();
    EXPECT_EQ (System_Mutex_Wait (mutex, 1000), SYSTEM_WAIT_ENTERED);
    System_Mutex_Destroy (mutex);
}

TEST (Win32System, WaitingForADestroyedMutexFails) {
    System_Mutex *mutex = System_Mutex_Create ();
    System_Mutex_Destroy (mutex);
    EXPECT_EQ (System_Mutex_Wait (mutex, 0), SYSTEM_WAIT_FAILED);
    EXPECT_EQ (System_Last_Error (), (unsigned)ERROR_INVALID_HANDLE);
}
