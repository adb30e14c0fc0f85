// The operating system behind system.h, on Windows. All calls are the ANSI ones: the manifest makes UTF-8 the active code
// page, so names of files pass through as bytes. Memory comes from malloc, since this folder stands below util/memory.h;
// a failure is an error code like any other.
#include "platform/system.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include <windows.h>

// --- entry and paths -------------------------------------------------------

int System_Exit_Status (int result) { return result; }

char        System_Separator (void) { return '\\'; }
int         System_Is_Separator (char c) { return c == '\\' || c == '/'; }
const char *System_Line_End (void) { return "\r\n"; }

// A directory must leave room for a short file name and the terminating zero.
size_t System_Directory_Limit (void) { return MAX_PATH - 12 - 1; }

// Windows programs find their install path in the registry, where only an administrator can write it. A copy that was
// put somewhere without one, by unpacking it or for one user, says by a file beside the program that all is there.
int System_Install_Path (char *result, size_t size) {
    static const char MARK[] = "in-place.txt";
    char              path[SYSTEM_PATH_SIZE];
    DWORD             length = GetModuleFileNameA (nullptr, path, sizeof path);
    char             *last   = length && length < sizeof path ? strrchr (path, '\\') : nullptr;
    if (last && (size_t)(last + 1 - path) + sizeof MARK <= sizeof path && (size_t)(last + 1 - path) < size) {
        memcpy (last + 1, MARK, sizeof MARK);
        if (System_File_Exists (path)) {
            last[1] = 0;
            memcpy (result, path, strlen (path) + 1);
            return 1;
        }
    }
    SetLastError (ERROR_PATH_NOT_FOUND);
    return 0;
}

int System_User_Data_Path (char *result, size_t size) {
    const char *path   = getenv ("APPDATA");
    size_t      length = path ? strlen (path) : 0;

    if (!length) return 0;
    int ends = System_Is_Separator (path[length - 1]);
    if (length + (ends ? 1 : 2) > size) return 0;
    memcpy (result, path, length);
    if (!ends) result[length++] = System_Separator ();
    result[length] = 0;
    return 1;
}

int System_Scratch_Path (char *result, size_t size) {
    static const char path[] = "C:\\Temp\\";

    if (size < sizeof path) return 0;
    memcpy (result, path, sizeof path);
    return 1;
}

// --- directories and files -------------------------------------------------

int System_Is_Directory (const char *path) {
    DWORD attributes = GetFileAttributesA (path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

int System_File_Exists (const char *path) { return GetFileAttributesA (path) != INVALID_FILE_ATTRIBUTES; }

int System_File_Size_Of (const char *path, int64_t *size) {
    WIN32_FILE_ATTRIBUTE_DATA facts;

    if (!GetFileAttributesExA (path, GetFileExInfoStandard, &facts)) return 0;
    if (facts.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
        SetLastError (ERROR_ACCESS_DENIED);
        return 0;
    }
    *size = (int64_t)(((uint64_t)facts.nFileSizeHigh << 32) | facts.nFileSizeLow);
    return 1;
}

// The root of a drive answers "access denied" where other directories answer "already exists", so what counts after a
// failure is what is there.
int System_Directory_Make (const char *path) {
    if (CreateDirectoryA (path, nullptr)) return 1;
    DWORD error = GetLastError ();
    if (System_Is_Directory (path)) return 1;
    SetLastError (error);
    return 0;
}

int System_Private_Directory_Make (const char *path) { return System_Directory_Make (path); }

int System_File_Delete (const char *path) { return DeleteFileA (path) != 0; }

static int Is_Self_Or_Parent (const char *name) { return !strcmp (name, ".") || !strcmp (name, ".."); }

// What matches a directory with a star behind it, so there is always something to find.
static HANDLE Find_First (const char *path, WIN32_FIND_DATAA *found) {
    char pattern[SYSTEM_PATH_SIZE];

    size_t length = strlen (path);
    int    ends   = length && System_Is_Separator (path[length - 1]);
    if (length + 3 > sizeof pattern) {
        SetLastError (ERROR_FILENAME_EXCED_RANGE);
        return INVALID_HANDLE_VALUE;
    }
    snprintf (pattern, sizeof pattern, "%s%s*", path, ends ? "" : "\\");
    return FindFirstFileA (pattern, found);
}

int System_Directory_List (const char *path, System_Directory_Action action, void *context) {
    WIN32_FIND_DATAA found;
    HANDLE           handle = Find_First (path, &found);
    if (handle == INVALID_HANDLE_VALUE) return 0;

    DWORD error = 0;
    for (;;) {
        if (!Is_Self_Or_Parent (found.cFileName) && !action (context, found.cFileName)) break;
        if (FindNextFileA (handle, &found)) continue;
        error = GetLastError ();
        if (error == ERROR_NO_MORE_FILES) error = 0;
        break;
    }
    FindClose (handle);
    SetLastError (error);
    return !error;
}

// --- reading files ---------------------------------------------------------

struct System_File {
    HANDLE  handle;  // Owned.
    HANDLE  section; // Owned; made at the first mapping, none before.
    int64_t size;    // When it was opened.
};

static System_File *File_Refuse (HANDLE handle, DWORD error) {
    CloseHandle (handle);
    SetLastError (error);
    return nullptr;
}

// Devices ("CON", "COM1") and pipes can be opened by name like files. They are refused: they have no size and may block.
System_File *System_File_Open (const char *name) {
    HANDLE handle = CreateFileA (name, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                 FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return nullptr;
    if (GetFileType (handle) != FILE_TYPE_DISK) return File_Refuse (handle, ERROR_NOT_SUPPORTED);

    LARGE_INTEGER size;
    if (!GetFileSizeEx (handle, &size)) return File_Refuse (handle, GetLastError ());

    System_File *file = static_cast<System_File *> (calloc (1, sizeof *file));
    if (!file) return File_Refuse (handle, ERROR_NOT_ENOUGH_MEMORY);
    file->handle = handle;
    file->size   = size.QuadPart;
    return file;
}

void System_File_Close (System_File *file) {
    if (!file) return;
    if (file->section) CloseHandle (file->section);
    CloseHandle (file->handle);
    free (file);
}

int64_t System_File_Size (const System_File *file) { return file->size; }

// One read at a position. The number read, 0 at the end, or -1.
static int64_t File_Read_Piece (HANDLE handle, int64_t position, void *destination, DWORD count) {
    OVERLAPPED place = {};
    place.Offset     = (DWORD)((uint64_t)position & 0xFFFFFFFF);
    place.OffsetHigh = (DWORD)((uint64_t)position >> 32);

    DWORD done = 0;
    if (ReadFile (handle, destination, count, &done, &place)) return done;
    return GetLastError () == ERROR_HANDLE_EOF ? 0 : -1;
}

int64_t System_File_Read (System_File *file, int64_t position, void *destination, size_t count) {
    static const size_t PIECE = 1 << 30; // A single read counts in 32 bits.

    if (position < 0) {
        SetLastError (ERROR_NEGATIVE_SEEK);
        return -1;
    }
    uint8_t *bytes = static_cast<uint8_t *> (destination);
    size_t   total = 0;
    while (total < count) {
        size_t  wanted = count - total < PIECE ? count - total : PIECE;
        int64_t done   = File_Read_Piece (file->handle, position + (int64_t)total, bytes + total, (DWORD)wanted);
        if (done < 0) return -1;
        if (done == 0) break;
        total += (size_t)done;
    }
    return (int64_t)total;
}

// A mapped file on a local disk can't be shortened: Windows refuses it while a view exists. Another machine knows of no
// view, and a page that it took away would end the program. Such files are not mapped; whoever asked reads them instead.
static int File_Is_Remote (HANDLE handle) {
    FILE_REMOTE_PROTOCOL_INFO remote;
    return GetFileInformationByHandleEx (handle, FileRemoteProtocolInfo, &remote, sizeof remote) != 0;
}

static DWORD Granularity (void) {
    SYSTEM_INFO facts;
    GetSystemInfo (&facts);
    return facts.dwAllocationGranularity;
}

int System_File_Map (System_File *file, int64_t position, size_t length, System_Mapping *mapping) {
    if (position < 0 || !length || position > file->size || length > (uint64_t)(file->size - position)) {
        SetLastError (ERROR_INVALID_PARAMETER);
        return 0;
    }
    if (!file->section) {
        if (File_Is_Remote (file->handle)) {
            SetLastError (ERROR_NOT_SUPPORTED);
            return 0;
        }
        file->section = CreateFileMappingA (file->handle, nullptr, PAGE_READONLY, 0, 0, nullptr);
        if (!file->section) return 0;
    }
    size_t   skipped = (size_t)(position % Granularity ());
    uint64_t start   = (uint64_t)position - skipped;
    void    *base    = MapViewOfFile (file->section, FILE_MAP_READ, (DWORD)(start >> 32), (DWORD)(start & 0xFFFFFFFF),
                                      length + skipped);
    if (!base) return 0;
    mapping->base  = base;
    mapping->size  = length + skipped;
    mapping->bytes = static_cast<const uint8_t *> (base) + skipped;
    return 1;
}

// Unlocking pages that were never locked takes them out of the working set.
void System_View_Release (const void *bytes, size_t count) { VirtualUnlock (const_cast<void *> (bytes), count); }

void System_File_Unmap (System_Mapping *mapping) {
    if (mapping->base) UnmapViewOfFile (mapping->base);
    *mapping = System_Mapping {};
}

int System_Map_Faults (void) { return 0; } // What is mapped can't vanish, see File_Is_Remote.

// --- memory ----------------------------------------------------------------

// Large pages need a privilege that users don't have; a whole piece is cheaper than many all the same.
void *System_Pages_Take (size_t size) { return VirtualAlloc (nullptr, size, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE); }

void System_Pages_Return (void *pages, size_t) { VirtualFree (pages, 0, MEM_RELEASE); }

// --- copying files ---------------------------------------------------------

// Not the system's own copying, which takes the attributes along: a copy of a write-protected file is for writing.
static int Copy_Bytes (System_File *from, HANDLE to) {
    char    bytes[65536];
    int64_t position = 0;
    for (;;) {
        int64_t count = System_File_Read (from, position, bytes, sizeof bytes);
        if (count <= 0) return count == 0;
        DWORD written = 0;
        if (!WriteFile (to, bytes, (DWORD)count, &written, nullptr)) return 0;
        if (written != (DWORD)count) {
            SetLastError (ERROR_DISK_FULL);
            return 0;
        }
        position += count;
    }
}

static int Copy_To (System_File *from, const char *to) {
    HANDLE handle = CreateFileA (to, GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return 0;
    int   copied = Copy_Bytes (from, handle);
    DWORD error  = GetLastError ();
    if (!CloseHandle (handle) && copied) {
        copied = 0;
        error  = GetLastError ();
    }
    if (!copied) DeleteFileA (to);
    SetLastError (error);
    return copied;
}

int System_File_Copy (const char *from, const char *to) {
    System_File *source = System_File_Open (from);
    if (!source) return 0;
    int   copied = Copy_To (source, to);
    DWORD error  = GetLastError ();
    System_File_Close (source);
    SetLastError (error);
    return copied;
}

// --- log files -------------------------------------------------------------

// Access that can only append: the system puts each write at the end as it is then, so that processes don't tear each
// other's lines. Nothing is kept open, since that would hinder others to remove or rename the file.
int System_Append (const char *path, const void *bytes, size_t count) {
    HANDLE handle = CreateFileA (path, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                 nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return 0;
    DWORD written = 0;
    int   done    = WriteFile (handle, bytes, static_cast<DWORD> (count), &written, nullptr) && written == count;
    CloseHandle (handle);
    return done;
}

int System_Append_Again (const char *, const void *, size_t) { return 0; }

void System_Append_End (void) {}

// --- facts for the banner --------------------------------------------------

void System_Now (const char *format, char *result, size_t size) {
    time_t now = time (nullptr);
    tm     local;
    if (localtime_s (&local, &now) || !strftime (result, size, format, &local)) result[0] = 0;
}

int System_Computer_Name (char *result, size_t size) {
    DWORD count = size > MAXDWORD ? MAXDWORD : (DWORD)size;
    return GetComputerNameA (result, &count) != 0;
}

// True numbers only because the manifest names the systems the program knows; without it Windows 10 calls itself 6.2.
int System_Version_Get (System_Version *version) {
    OSVERSIONINFOEXA record = {};
    OSVERSIONINFOA  *short_one =
        reinterpret_cast<OSVERSIONINFOA *> (&record); // Its fields are the first of the long one.

    record.dwOSVersionInfoSize = sizeof (OSVERSIONINFOEXA);
    int extended               = GetVersionExA (short_one) != 0;
    if (!extended) {
        record.dwOSVersionInfoSize = sizeof (OSVERSIONINFOA);
        if (!GetVersionExA (short_one)) return 0;
    }
    version->platform         = (int)record.dwPlatformId;
    version->major            = (int)record.dwMajorVersion;
    version->minor            = (int)record.dwMinorVersion;
    version->build            = (int)record.dwBuildNumber;
    version->has_service_pack = extended;
    version->pack_major       = extended ? record.wServicePackMajor : 0;
    version->pack_minor       = extended ? record.wServicePackMinor : 0;
    return 1;
}

void System_Processor_Get (System_Processor *processor) {
    SYSTEM_INFO facts;
    GetSystemInfo (&facts);
    processor->count = facts.dwNumberOfProcessors;
    processor->type  = facts.dwProcessorType;
    processor->oem   = facts.dwOemId;
}

// --- console ---------------------------------------------------------------

// Makes standard output write to the console. A stream that had nowhere to write at the start can't be opened anew in
// every C library; it is then replaced by one that was opened for the console.
static int Output_To_Console (void) {
    if (!freopen ("CONOUT$", "w", stdout)) {
        FILE *opened = fopen ("CONOUT$", "w");
        if (!opened) return 0;
        *stdout = *opened;
    }
    return 1;
}

// A console is made by another process, which may fail (there is no desktop) after the call that asked for it went well.
static int Console_Answers (void) {
    HANDLE console = CreateFileA ("CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                  OPEN_EXISTING, 0, nullptr);
    DWORD  mode;
    if (console == INVALID_HANDLE_VALUE) return 0;
    int answers = GetConsoleMode (console, &mode) != 0;
    CloseHandle (console);
    return answers;
}

static System_Console_Hook console_hook;

void System_Console_Hook_Set (System_Console_Hook hook) { console_hook = hook; }

// A windowed program has no console unless it makes one. It may have been given something to write to all the same (a
// pipe, a file, the console of whoever redirected it): that is kept, so that the output of a batch run can be redirected.
int System_Console_Open (void) {
    if (console_hook) return console_hook ();
    HANDLE given = GetStdHandle (STD_OUTPUT_HANDLE);
    int    kept  = given && given != INVALID_HANDLE_VALUE && GetFileType (given) != FILE_TYPE_UNKNOWN;

    if (!kept) {
        AllocConsole (); // Fails when there is one already, which then serves.
        if (!Console_Answers () || !Output_To_Console ()) return 0;
    }
    return !setvbuf (stdout, nullptr, _IONBF, 0);
}

// --- errors ----------------------------------------------------------------

unsigned System_Last_Error (void) { return GetLastError (); }
void     System_Last_Error_Set (unsigned code) { SetLastError (code); }
unsigned System_Memory_Error (void) { return ERROR_NOT_ENOUGH_MEMORY; }

// The system's own memory takes the text first, so that a text longer than result is cut and not refused.
int System_Error_Message (unsigned code, char *result, size_t size) {
    static const DWORD FLAGS =
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    static const DWORD languages[] = {LANG_SYSTEM_DEFAULT, 0}; // 0: any that has the text.

    if (!size) return 0;
    for (DWORD language : languages) {
        char *text   = nullptr;
        DWORD length = FormatMessageA (FLAGS, nullptr, code, language, reinterpret_cast<char *> (&text), 0, nullptr);
        if (!length) continue;
        while (length && (text[length - 1] == '\n' || text[length - 1] == '\r')) length--;
        size_t kept = length < size ? length : size - 1;
        memcpy (result, text, kept);
        result[kept] = 0;
        LocalFree (text);
        return 1;
    }
    return 0;
}

// --- threads ---------------------------------------------------------------

uint64_t System_Thread_Identifier (void) { return GetCurrentThreadId (); }

// The mutex is the system's handle.
System_Mutex *System_Mutex_Create (void) {
    return static_cast<System_Mutex *> (CreateMutexA (nullptr, FALSE, nullptr));
}

// A mutex whose owner ended without leaving belongs to the one who waited for it.
System_Wait System_Mutex_Wait (System_Mutex *mutex, int milliseconds) {
    switch (WaitForSingleObject (mutex, milliseconds < 0 ? 0 : (DWORD)milliseconds)) {
    case WAIT_OBJECT_0:
    case WAIT_ABANDONED: return SYSTEM_WAIT_ENTERED;
    case WAIT_TIMEOUT: return SYSTEM_WAIT_TIMEOUT;
    default: return SYSTEM_WAIT_FAILED;
    }
}

void System_Mutex_Release (System_Mutex *mutex) { ReleaseMutex (mutex); }

void System_Mutex_Destroy (System_Mutex *mutex) {
    if (mutex) CloseHandle (mutex);
}

// --- registry --------------------------------------------------------------

static HKEY Key (System_Registry_Key key) { return reinterpret_cast<HKEY> (key); }

System_Registry_Key System_Registry_Root (void) { return reinterpret_cast<System_Registry_Key> (HKEY_LOCAL_MACHINE); }

// Always the 64-bit view, whatever the installer was built for.
unsigned System_Registry_Open (System_Registry_Key parent, const char *name, System_Registry_Key *key) {
    HKEY    opened = nullptr;
    LSTATUS status = RegOpenKeyExA (Key (parent), name, 0, KEY_READ | KEY_WOW64_64KEY, &opened);
    *key           = reinterpret_cast<System_Registry_Key> (opened);
    return (unsigned)status;
}

unsigned System_Registry_Close (System_Registry_Key key) { return (unsigned)RegCloseKey (Key (key)); }

// Texts only. The call terminates what lacks its zero and fills in the environment names of an expandable text.
unsigned System_Registry_Read (System_Registry_Key key, const char *value, char *result, size_t size) {
    DWORD count = size > MAXDWORD ? MAXDWORD : (DWORD)size;
    return (unsigned)RegGetValueA (Key (key), nullptr, value, RRF_RT_REG_SZ, nullptr, result, &count);
}
