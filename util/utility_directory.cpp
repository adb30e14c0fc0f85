// Directories by path.
#include "util/utility_directory.h"

#include <string.h>

#include "platform/system.h"
#include "util/my_error_fct.h"
#include "util/text.h"

static const char *const MODULE = "utility_directory";

static int Is_Letter (char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

static int Is_Drive (const char *path) {
    if (!Is_Letter (path[0]) || path[1] != ':') return 0;
    return !path[2] || (System_Is_Separator (path[2]) && !path[3]);
}

// Without separators at the end, but never empty: the root is one. 0 when it is too long.
static int Copy_Plain (const char *path, char *plain, size_t size) {
    if (!Text_Copy (plain, size, path)) return 0;
    for (size_t end = strlen (plain); end > 1 && System_Is_Separator (plain[end - 1]); end--) plain[end - 1] = 0;
    return 1;
}

int Directory_Check (const char *path) {
    char plain[SYSTEM_PATH_SIZE];
    if (Is_Drive (path)) return 1;
    return Copy_Plain (path, plain, sizeof plain) && System_Is_Directory (plain);
}

// Only what is there in the end counts: a level may exist without being visible (a share's name, a directory that may
// only be passed through), and another process may be making the same levels.
static int Make_Levels (char *path) {
    for (char *place = path + 1; *place; place++) {
        char separator = *place;
        if (!System_Is_Separator (separator)) continue;
        *place = 0;
        if (!System_Is_Directory (path)) System_Directory_Make (path);
        *place = separator;
    }
    return System_Directory_Make (path);
}

int Directory_Make (Window window, const char *path) {
    char   plain[SYSTEM_PATH_SIZE];
    size_t length = strlen (path);
    size_t limit  = System_Directory_Limit ();
    if (length > limit || !Copy_Plain (path, plain, sizeof plain)) {
        Log_Message (window, LOG_TRACE1, "File:%s, Line:%d", MODULE, __LINE__);
        Log_Message (window, LOG_WARNING, "Path too long (%d char > max=%d)", (int)length, (int)limit);
        return 0;
    }
    if (!plain[0]) return 0;
    return System_Is_Directory (plain) || Make_Levels (plain);
}
