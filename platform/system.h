// What the program asks of the operating system besides windows and drawing: paths, files, facts, error texts, threads.
// Two back ends implement it, win32/ and posix/. Names of files are bytes; on Windows they are UTF-8.
#pragma once

#include <stddef.h>
#include <stdint.h>

// --- the program's entry ---------------------------------------------------

// What the system starts the program with: on Windows the text of the command line behind the program's name, on Linux
// its words. The one that is not given is none.
struct Program_Arguments {
    const char         *text;
    int                 count;
    const char *const  *words;
    int                 in_window = 0;  // The input names are shown in the window, as if they had been dropped on it.
};

// Supplied by app/, called by the back end's entry. The result goes through System_Exit_Status.
int Program_Run (const Program_Arguments *arguments);

// The exit status that stands for the program's result. Windows keeps the number. A Linux status has 8 bits: 0..254, a
// larger number gives 254 and a negative one 255.
int System_Exit_Status (int result);

// --- paths -----------------------------------------------------------------

static const size_t SYSTEM_PATH_SIZE = 4096;   // Bytes that hold any path, with its terminating zero.

char        System_Separator (void);            // Between directories: '\\' or '/'.
int         System_Is_Separator (char c);       // Also '/' on Windows.
const char *System_Line_End (void);             // What a text file's line ends with on disk: "\r\n" or "\n".
size_t      System_Directory_Limit (void);      // Longest path of a directory that can be made, in characters.

// Each writes a path that ends in a separator into result (size bytes). 0 when there is none or it does not fit.
int System_Install_Path (char *result, size_t size);    // Linux: folder of the executable when it holds the program's data,
                                                        // else ../share/tagwright/, else /usr/share/tagwright/. Windows:
                                                        // folder of the executable when it holds in-place.txt, else 0.
int System_User_Data_Path (char *result, size_t size);  // APPDATA; on Linux else XDG_DATA_HOME, else ~/.local/share.
int System_Scratch_Path (char *result, size_t size);    // Default of the scratch directory: C:\Temp\ or /tmp/tagwright-UID/.

// --- directories and files -------------------------------------------------

int System_Is_Directory (const char *path);
int System_File_Exists (const char *path);                         // Anything by that name; sets the last error when not.
int System_File_Size_Of (const char *path, int64_t *size);         // 1 and the size in bytes, or 0.
int System_Directory_Make (const char *path);                      // One level. 1 also when it is there already.
int System_File_Delete (const char *path);

// Calls action with the name of everything directly in the directory, but "." and "..", in no order. A result of 0 ends
// the listing. 1, or 0 when the directory can't be read (to its end).
typedef int (*System_Directory_Action) (void *context, const char *name);
int System_Directory_List (const char *path, System_Directory_Action action, void *context);

// Copies the bytes of a regular file to a new one. Fails when there is anything by that name already. A copy that fails
// half-way leaves no file. 1, or 0.
int System_File_Copy (const char *from, const char *to);

// Makes the directory that log files go to by default, readable by its user only. On Linux 0 when the path exists and is
// not a directory owned by the user (a name in /tmp may have been planted). On Windows as System_Directory_Make.
int System_Private_Directory_Make (const char *path);

// --- reading files ---------------------------------------------------------

struct System_File;     // An open file, read only.

System_File *System_File_Open (const char *name);           // None when it can't be opened or is not a regular file.
void         System_File_Close (System_File *file);         // Accepts none. Mappings stay valid.
int64_t      System_File_Size (const System_File *file);    // In bytes, when it was opened.

// Reads up to count bytes at a position. The number read (0 at the end), or -1.
int64_t System_File_Read (System_File *file, int64_t position, void *destination, size_t count);

// A read-only view of part of a file. Bytes that vanish because the file shrinks are read as zero.
struct System_Mapping {
    void           *base;       // Start of the view, at a page.
    size_t          size;       // Of the view.
    const uint8_t  *bytes;      // The byte asked for.
};

int  System_File_Map (System_File *file, int64_t position, size_t length, System_Mapping *mapping);  // 1 or 0.
void System_File_Unmap (System_Mapping *mapping);
void System_View_Release (const void *bytes, size_t count);     // Of a view: whole pages in there leave the memory of the
                                                                // process; they come back when they are looked at again.
int  System_Map_Faults (void);      // Pages that had vanished since the last call; 0 is the rule.

// --- memory ----------------------------------------------------------------

// Size bytes (a power of 2), in large pages where the system has them. None when there are none. Given back as a whole.
void *System_Pages_Take (size_t size);
void  System_Pages_Return (void *pages, size_t size);

// --- log files -------------------------------------------------------------

// Adds bytes to the end of a file, which is made when it is missing, as one piece that other writers don't tear. They are
// in the file when the call returns, whatever happens to the program afterwards. 1, or 0.
int System_Append (const char *path, const void *bytes, size_t count);

// The same if the file that the path names is the very one that the last call with this path added to, so that no directory
// has to be looked at. 0 when it isn't or may not be any more; then nothing was written.
int System_Append_Again (const char *path, const void *bytes, size_t count);

void System_Append_End (void);      // Lets go of the files that are kept for System_Append_Again.

// --- facts for the banner --------------------------------------------------

// The local date and time as strftime writes them in this format; empty when there are none or they don't fit. Any thread may
// ask, since each logs.
void System_Now (const char *format, char *result, size_t size);

struct System_Version {
    int platform;                           // 0 Win32s, 1 the 9x family, 2 the NT family, 3 any other system.
    int major, minor, build;
    int has_service_pack, pack_major, pack_minor;
};

struct System_Processor {
    unsigned count, type, oem;
};

int  System_Computer_Name (char *result, size_t size);      // 1 or 0.
int  System_Version_Get (System_Version *version);          // 1 or 0.
void System_Processor_Get (System_Processor *processor);

// --- console ---------------------------------------------------------------

// Gives the program a console and makes standard output write to it, unbuffered. On Linux standard output is the console.
int System_Console_Open (void);

// A console opened by a test instead of the real one; the result is what System_Console_Open returns. None restores it.
typedef int (*System_Console_Hook) (void);
void System_Console_Hook_Set (System_Console_Hook hook);

// --- errors ----------------------------------------------------------------

unsigned    System_Last_Error (void);               // The thread's last error: GetLastError, errno.
void        System_Last_Error_Set (unsigned code);
unsigned    System_Memory_Error (void);             // The code of memory that ran out.
const char *System_Error_Name (unsigned code);      // "[ERROR_FILE_NOT_FOUND]" or none. On Linux the Win32 name that
                                                    // corresponds to an errno.
int         System_Error_Message (unsigned code, char *result, size_t size);    // The system's text, without line end.

// --- threads ---------------------------------------------------------------

struct System_Mutex;

enum System_Wait { SYSTEM_WAIT_ENTERED, SYSTEM_WAIT_TIMEOUT, SYSTEM_WAIT_FAILED };

uint64_t      System_Thread_Identifier (void);
System_Mutex *System_Mutex_Create (void);                           // None on failure.
System_Wait   System_Mutex_Wait (System_Mutex *mutex, int milliseconds);
void          System_Mutex_Release (System_Mutex *mutex);
void          System_Mutex_Destroy (System_Mutex *mutex);           // Accepts none.

// --- registry --------------------------------------------------------------

// Read access to the system's registry. A system without one (Linux) has no keys: every open fails.
typedef uintptr_t System_Registry_Key;

System_Registry_Key System_Registry_Root (void);                                        // Local machine.
unsigned System_Registry_Open (System_Registry_Key parent, const char *name, System_Registry_Key *key);  // 0 or an error code.
unsigned System_Registry_Close (System_Registry_Key key);
unsigned System_Registry_Read (System_Registry_Key key, const char *value, char *result, size_t size);   // "" is the default
                                                                                        // value. 0 or an error code.
