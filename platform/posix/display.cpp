// Finds and loads the module. Only places that belong to the program or to the system are looked at, never the working
// directory or the search path of libraries: a library that somebody left there must not be run.
#include "platform/posix/display.h"

#include <dlfcn.h>
#include <limits.h>
#include <stdio.h>

#include "platform/posix/private.h"

static const Display *display;
static char           error_text[3 * PATH_MAX];

const Display *Display_Get (void) { return display; }

const char *Display_Error_Text (void) { return error_text; }

// --- looking for it --------------------------------------------------------

struct Place {
    int         below_program;
    const char *folder;
};

static const Place PLACES[] = {{1, ""}, {1, "../lib/tagwright/"}, {0, "/usr/lib/tagwright/"}};

static int Path_At (const Place *place, char *path, size_t size) {
    char program[PATH_MAX] = "";
    if (place->below_program && !System_Program_Folder (program, sizeof program)) return 0;
    int length = snprintf (path, size, "%s%s%s", program, place->folder, DISPLAY_FILE);
    return length > 0 && (size_t)length < size;
}

static int Exists (const char *path) {
    FILE *file = fopen (path, "rb");
    if (file) fclose (file);
    return file != nullptr;
}

static void Missing_Text (void) {
    char program[PATH_MAX] = "";
    System_Program_Folder (program, sizeof program);
    snprintf (
        error_text, sizeof error_text,
        "The window needs %s, which belongs to the program. It was looked for in %s, in %s../lib/tagwright/ and in "
        "/usr/lib/tagwright/. Install the program anew, or build it with the packages libsdl2-dev and libpango1.0-dev.",
        DISPLAY_FILE, program, program);
}

// --- loading it ------------------------------------------------------------

static const Display *Load_From (const char *path) {
    void *module = dlopen (path, RTLD_NOW | RTLD_LOCAL);
    if (!module) {
        snprintf (error_text, sizeof error_text,
                  "The window needs the packages libsdl2-2.0-0 and libpangocairo-1.0-0; install them. (%s)",
                  dlerror ());
        return nullptr;
    }
    Display_Entry  entry = reinterpret_cast<Display_Entry> (dlsym (module, DISPLAY_ENTRY));
    const Display *table = entry ? entry (sizeof (Display)) : nullptr;
    if (!table)
        snprintf (error_text, sizeof error_text,
                  "%s belongs to another version of the program. Install the program anew.", path);
    return table;
}

const Display *Display_Load (void) {
    if (display) return display;
    char path[PATH_MAX];
    for (const Place &place : PLACES) {
        if (!Path_At (&place, path, sizeof path) || !Exists (path)) continue;
        return display = Load_From (path);
    }
    Missing_Text ();
    return nullptr;
}
