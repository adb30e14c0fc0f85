// First, since the system's headers have macros that its names don't bear.
#include "util/my_error_fct.h"

#include "tests/platform/win32_child.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <windows.h>

#include "platform/system.h"
#include "tests/platform/win32_drop.h"

static const char ROLE[]     = "TAGWRIGHT_TEST_ROLE";
static const char ARGUMENT[] = "TAGWRIGHT_TEST_ARGUMENT";

// --- roles -----------------------------------------------------------------

// Ends abruptly after writing, so that what stayed in a buffer is lost. 0 when the console could be opened.
static int Write_And_Die (const char *text) {
    int opened = System_Console_Open ();
    fputs (text, stdout);
    TerminateProcess (GetCurrentProcess (), opened ? 0 : 1);
    return 1;
}

// Logs so many lines into the directory and ends abruptly.
static int Log_And_Die (const char *directory) {
    Log_Settings_Reset ();
    Log_Sink_Set (Log_Program_Sink);
    snprintf (Log.scratch, sizeof Log.scratch, "%s", directory);
    for (int i = 0; i < CHILD_LOG_LINES; i++) Log_Message (nullptr, LOG_AUDIT, "line %d", i);
    TerminateProcess (GetCurrentProcess (), 0);
    return 1;
}

// Opens a console, writes to it and reads back what stands at its start.
static unsigned long Write_To_Console (const char *text) {
    char  shown[80] = "";
    DWORD count     = 0;

    if (GetConsoleWindow () || !System_Console_Open ()) return CONSOLE_REFUSED;
    fputs (text, stdout);
    HANDLE console = CreateFileA ("CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                  OPEN_EXISTING, 0, nullptr);
    if (!ReadConsoleOutputCharacterA (console, shown, (DWORD)strlen (text), COORD {0, 0}, &count))
        return CONSOLE_UNREADABLE;
    return strcmp (shown, text) ? CONSOLE_DIFFERENT : CONSOLE_SHOWS;
}

// Drops two files on the window with this title. 0 when they are on their way.
static int Drop_On (const char *title) {
    HWND window = FindWindowA (nullptr, title);
    return window && Drop_Post (window, {L"C:\\from another.dcm", L"D:\\\u00E9t\u00E9.dcm"}) ? 0 : 1;
}

static int Role_Run (const char *role, const char *argument) {
    if (!strcmp (role, "status")) return System_Exit_Status (atoi (argument));
    if (!strcmp (role, "log")) return Log_And_Die (argument);
    if (!strcmp (role, "write")) return Write_And_Die (argument);
    if (!strcmp (role, "console")) return (int)Write_To_Console (argument);
    if (!strcmp (role, "drop")) return Drop_On (argument);
    return 99;
}

static bool Role_Begin () {
    char role[80], argument[MAX_PATH] = "";
    if (!GetEnvironmentVariableA (ROLE, role, sizeof role)) return false;
    GetEnvironmentVariableA (ARGUMENT, argument, sizeof argument);
    ExitProcess ((UINT)Role_Run (role, argument));
}

static const bool child = Role_Begin ();

// --- starting --------------------------------------------------------------

static std::string Read_All (HANDLE pipe) {
    std::string text;
    char        piece[256];
    DWORD       count;
    while (ReadFile (pipe, piece, sizeof piece, &count, nullptr) && count) text.append (piece, count);
    return text;
}

Child_Result Child_Run (const std::string &role, const std::string &argument, Child_Output output,
                        const std::string &file) {
    SECURITY_ATTRIBUTES inherit = {sizeof inherit, nullptr, TRUE};
    STARTUPINFOA        startup = {};
    PROCESS_INFORMATION process = {};
    Child_Result        result  = {child, 0, ""};
    HANDLE              reading = nullptr, writing = nullptr;
    char                program[MAX_PATH];

    GetModuleFileNameA (nullptr, program, sizeof program);
    SetEnvironmentVariableA (ROLE, role.c_str ());
    SetEnvironmentVariableA (ARGUMENT, argument.c_str ());
    if (output == CHILD_PIPE) {
        CreatePipe (&reading, &writing, &inherit, 0);
        SetHandleInformation (reading, HANDLE_FLAG_INHERIT, 0);
    } else if (output == CHILD_FILE) {
        writing = CreateFileA (file.c_str (), GENERIC_WRITE, 0, &inherit, CREATE_ALWAYS, 0, nullptr);
    }
    startup.cb         = sizeof startup;
    startup.dwFlags    = STARTF_USESTDHANDLES;
    startup.hStdOutput = writing;
    result.started     = CreateProcessA (program, nullptr, nullptr, nullptr, TRUE, DETACHED_PROCESS, nullptr, nullptr,
                                         &startup, &process) != 0;
    SetEnvironmentVariableA (ROLE, nullptr);
    SetEnvironmentVariableA (ARGUMENT, nullptr);
    if (writing) CloseHandle (writing);
    if (!result.started) return result;

    if (reading) {
        result.output = Read_All (reading);
        CloseHandle (reading);
    }
    WaitForSingleObject (process.hProcess, 60000);
    GetExitCodeProcess (process.hProcess, &result.status);
    CloseHandle (process.hProcess);
    CloseHandle (process.hThread);
    return result;
}
