// Where the program was installed. Windows keeps it under the program's name, in a key that is reached level by level.
#include "util/win_registry.h"

#include <string.h>

#include "util/error_text.h"
#include "util/my_error_fct.h"
#include "util/text.h"

static const char *const MODULE = "win_registry";

static const size_t VALUE_SIZE = 771; // Bytes of a path in the registry that are read.

// What a message names when something fails.
struct Request {
    Window                 window;
    const Registry_Access *access;
    const char            *program; // As the caller gave it.
    const char            *result;
};

static void Report (const Request *request, int line, const char *what, const char *key, unsigned error) {
    Log_Message (request->window, LOG_TRACE1, "Failed in Registry_Get_Path(%s,%s)", request->program, request->result);
    Log_Message (request->window, LOG_TRACE1, "File:%s Line:%d", MODULE, line);
    Log_Message (request->window, LOG_TRACE1, "Unable to %s key: %s", what, key);
    Log_Message (request->window, LOG_TRACE1, "%s", Error_Text (error));
}

static int Close (const Request *request, System_Registry_Key key, const char *name) {
    unsigned error = request->access->close (key);
    if (error) Report (request, __LINE__, "close", name, error);
    return !error;
}

// Opens the key of the program, each level relative to the one before, which is closed then.
static int Open_Program (const Request *request, const char *executable, System_Registry_Key *key) {
    const char *const levels[] = {"SOFTWARE", "Microsoft", "Windows", "CurrentVersion", "App Paths", executable};

    System_Registry_Key parent = request->access->root;
    const char         *before = nullptr;
    for (const char *level : levels) {
        System_Registry_Key child;
        unsigned            error = request->access->open (parent, level, &child);
        if (error) Report (request, __LINE__, "access", level, error);
        int closed = !before || Close (request, parent, before);
        if (error) return 0;
        if (!closed) {
            request->access->close (child);
            return 0;
        }
        parent = child;
        before = level;
    }
    *key = parent;
    return 1;
}

// The value "Path", or else the directory of the program's full name. A value that names no directory counts as missing.
static int Read_Directory (const Registry_Access *access, System_Registry_Key key, char *directory, size_t size) {
    if (!access->read (key, "Path", directory, size) && directory[0]) return 1;
    if (access->read (key, "", directory, size)) return 0;
    char *last = strrchr (directory, '\\');
    if (!last) return 0;
    *last = 0;
    return 1;
}

static int Has_Ending (const char *text, const char *ending) {
    size_t length = strlen (text);
    size_t tail   = strlen (ending);
    return length >= tail && !strcmp (text + length - tail, ending);
}

static int Read_Program (const Request *request, const char *executable, char *directory, size_t size) {
    System_Registry_Key key;
    if (!Open_Program (request, executable, &key)) return 0;
    int found = Read_Directory (request->access, key, directory, size);
    if (!Close (request, key, executable)) return 0;
    if (!found) {
        Log_Message (request->window, LOG_WARNING, "Failed to get in Registry information");
        Log_Message (request->window, LOG_WARNING, "The application ma have been installed incorectly...");
    }
    return found;
}

int Registry_Read_Path (Window window, const Registry_Access *access, const char *program, char *result, size_t size) {
    static const Registry_Access SYSTEM = {System_Registry_Root (), System_Registry_Open, System_Registry_Close,
                                           System_Registry_Read};

    char          executable[SYSTEM_PATH_SIZE];
    char          directory[VALUE_SIZE];
    const Request request = {window, access ? access : &SYSTEM, program, result};
    size_t        used    = 0;
    size_t        length  = 0;
    if (!size) return 0;
    result[0] = 0;
    Text_Append (executable, sizeof executable, &used, "%s%s", program, Has_Ending (program, ".exe") ? "" : ".exe");
    if (!Read_Program (&request, executable, directory, sizeof directory)) return 0;

    Text_Append (result, size, &length, "%s%s", directory, Has_Ending (directory, "\\") ? "" : "\\");
    if (length < strlen (directory) || !Has_Ending (result, "\\")) {
        result[0] = 0;
        Log_Message (window, LOG_TRACE1, "Failed in Registry_Get_Path(%s,%s)", program, result);
        Log_Message (window, LOG_TRACE1, "File:%s Line:%d", MODULE, __LINE__);
        return 0;
    }
    Log_Message (window, LOG_TRACE1, "Registry_Get_Path(): Installation Path from registry = \"%s\"", result);
    return 1;
}

int Registry_Get_Path (Window window, const char *program, char *result, size_t size) {
    if (!System_Install_Path (result, size)) return Registry_Read_Path (window, nullptr, program, result, size);
    Log_Message (window, LOG_TRACE1, "Registry_Get_Path(): Installation Path = \"%s\"", result);
    return 1;
}
