// The tables directory is what tells at the next start that the user has tables, so nothing is copied into one that exists.
// A copy that was broken off, or found nothing to copy, must not pass as complete: the version comes last, and without one
// the user is told at every start that the installed tables are more recent and how to get them.
#include "app/tables_directory.h"

#include <stdio.h>
#include <string.h>

#include "platform/system.h"
#include "tables/definition_files.h"
#include "util/error_text.h"
#include "util/file.h"
#include "util/my_error_fct.h"
#include "util/text.h"
#include "util/utility_directory.h"

static const char *const VERSION_FILE      = "version.txt";
static const int         VERSION_OF_USER   = 0;                       // When there is none to be read,
static const int         VERSION_INSTALLED = 2004;                    // so that tables without one count as old.
static const size_t      PATH_TEXT_SIZE    = SYSTEM_PATH_SIZE + 1024; // A directory and a file name in it.

#define WARNING_HEAD EMPHASIS COLOUR_YELLOW "WARNING:" COLOUR_BLACK " "

// What the listing of the installed tables works with. Both directories end in a separator.
struct Directories {
    const char *installed;
    const char *user;
    int         tables;  // 1 when there is a table,
    int         version; // and when one is the version.
};

static void Report_Failure (const char *format, const char *name, unsigned error) {
    Log_Message (nullptr, LOG_WARNING, format, name);
    Log_Message (nullptr, LOG_WARNING, "\t\t" COLOUR_BLACK "%s", Error_Text (error));
}

// --- copying ---------------------------------------------------------------

// Tables are the regular files that end in ".txt", written in any case.
static int Is_Table (const char *directory, const char *name) {
    static const char EXTENSION[] = ".TXT";
    size_t            length      = strlen (name);
    if (length < sizeof EXTENSION - 1) return 0;
    for (size_t i = 0; i < sizeof EXTENSION - 1; i++) {
        char c = name[length - (sizeof EXTENSION - 1) + i];
        if (c >= 'a' && c <= 'z') c = static_cast<char> (c - 'a' + 'A');
        if (c != EXTENSION[i]) return 0;
    }
    char path[PATH_TEXT_SIZE];
    snprintf (path, sizeof path, "%s%s", directory, name);
    return !System_Is_Directory (path);
}

static void Copy_Table (const Directories *directories, const char *name) {
    char from[PATH_TEXT_SIZE];
    char to[PATH_TEXT_SIZE];
    snprintf (from, sizeof from, "%s%s", directories->installed, name);
    snprintf (to, sizeof to, "%s%s", directories->user, name);
    if (System_File_Copy (from, to)) return;
    unsigned error = System_Last_Error ();
    if (System_File_Exists (to)) return; // Of another program that started at the same time.
    Report_Failure (WARNING_HEAD "Unable to copy file: " COLOUR_BLUE "%s", from, error);
}

static int Is_Version (const char *name) { return !strcmp (name, VERSION_FILE); }

static int Find_Listed (void *context, const char *name) {
    Directories *directories = static_cast<Directories *> (context);
    if (!Is_Table (directories->installed, name)) return 1;
    directories->tables = 1;
    if (Is_Version (name)) directories->version = 1;
    return 1;
}

static int Copy_Listed (void *context, const char *name) {
    const Directories *directories = static_cast<const Directories *> (context);
    if (!Is_Version (name) && Is_Table (directories->installed, name)) Copy_Table (directories, name);
    return 1;
}

// 1 when there is at least one table; else the reason has been reported.
static int Find_Tables (Directories *directories) {
    static const char TEXT[] = WARNING_HEAD "There are no DICOM tables to copy in " COLOUR_BLUE "%s";
    if (!System_Directory_List (directories->installed, Find_Listed, directories)) {
        Report_Failure (TEXT, directories->installed, System_Last_Error ());
        return 0;
    }
    if (!directories->tables) Log_Message (nullptr, LOG_WARNING, TEXT, directories->installed);
    return directories->tables;
}

static void Copy_All (Directories *directories) {
    Log_Message (nullptr, LOG_REPORT, "DICOM tables do not exist in " COLOUR_BLUE "%s", directories->user);
    Log_Message (nullptr, LOG_REPORT, "copying all files from: " COLOUR_BLUE "%s", directories->installed);
    Log_Message (nullptr, LOG_REPORT, "to: " COLOUR_BLUE "%s", directories->user);
    Log_Message (nullptr, LOG_REPORT, "");

    if (!Directory_Make (nullptr, directories->user)) {
        Report_Failure (WARNING_HEAD "Unable to create directory: " COLOUR_BLUE "%s", directories->user,
                        System_Last_Error ());
        return;
    }
    if (!Find_Tables (directories)) return;
    if (!System_Directory_List (directories->installed, Copy_Listed, directories))
        Report_Failure (WARNING_HEAD "Unable to read directory: " COLOUR_BLUE "%s", directories->installed,
                        System_Last_Error ());
    if (directories->version) Copy_Table (directories, VERSION_FILE);
}

// --- versions --------------------------------------------------------------

// The number at the start of the directory's version file; missing when there is none.
static int Version_Read (const char *directory, int missing) {
    char path[PATH_TEXT_SIZE];
    char text[64];
    snprintf (path, sizeof path, "%s%s", directory, VERSION_FILE);
    File   *file   = File_Open (path);
    int64_t length = file ? File_Read (file, text, sizeof text - 1) : 0;
    File_Close (file);

    text[length > 0 ? length : 0] = 0;
    const char *number            = text + strspn (text, " \t\n\v\f\r");
    const char *digits            = number + (*number == '-' || *number == '+');
    return *digits >= '0' && *digits <= '9' ? Text_To_Integer (number) : missing;
}

static void Compare_Versions (const Directories *directories) {
    int user      = Version_Read (directories->user, VERSION_OF_USER);
    int installed = Version_Read (directories->installed, VERSION_INSTALLED);
    if (installed <= user) return;

    Log_Message (nullptr, LOG_WARNING,
                 EMPHASIS COLOUR_YELLOW "WARNING:" EMPHASIS_END              COLOUR_BLACK
                                        " The DICOM tables in " EMPHASIS_END COLOUR_BLUE "%s",
                 directories->installed);
    Log_Message (nullptr, LOG_WARNING, "\t\t" COLOUR_BLACK " are more recent than the ones in " COLOUR_BLUE "%s",
                 directories->user);
    Log_Message (nullptr, LOG_WARNING,
                 "\t\t" COLOUR_BLACK
                 " you may want to delete the older directory to force an update! (version " COLOUR_BLUE
                 "%d" COLOUR_BLACK "/vs/" COLOUR_BLUE "%d" COLOUR_BLACK ")",
                 installed, user);
    Log_Message (nullptr, LOG_WARNING, "");
}

// --- both ------------------------------------------------------------------

void Tables_Provide (const char *install_path) {
    char installed[PATH_TEXT_SIZE];
    snprintf (installed, sizeof installed, "%s%s%c", install_path ? install_path : "", TABLES_DIRECTORY,
              System_Separator ());
    const char *user = DICOM_Module_Dir_Set (nullptr);
    if (!user) return;
    Directories directories = {installed, user, 0, 0};

    if (!Directory_Check (directories.user)) Copy_All (&directories);
    Compare_Versions (&directories);
}
