// The run is a row of phases: names, both sides, definitions, listings, merge, walk, release, result. Which walk runs
// is decided by the names given: a file that was named but can't be read makes every attribute of the other one
// absent, it doesn't turn a comparison of two files into one with a definition.
#include "compare/comparison_run.h"

#include <stdio.h>
#include <string.h>

#include "attribute/NEMA_Tag_Attribute.h"
#include "attribute/NEMA_Tag_Complement.h"
#include "attribute/NEMA_Tag_Copy.h"
#include "attribute/listing.h"
#include "attribute/value.h"
#include "compare/attribute_comparison.h"
#include "compare/difference_list.h"
#include "compare/file_reader.h"
#include "platform/system.h"
#include "tables/modality.h"
#include "util/error_text.h"
#include "util/my_error_fct.h"
#include "util/text.h"

static const char *const MODULE = "comparison_run";

Comparison Comparison_Last;

static bool Is_Empty (const char *name) { return !name || !*name; }

// --- state -----------------------------------------------------------------

// The rows go first: they point into the merged list.
static void Result_Delete (Window window, SequenceCursor *cursor) {
    Rows_Free ();
    if (Comparison_Last.merged) List_Delete (window, cursor, &Comparison_Last.merged);
}

// An owned copy of a name; an empty one is kept as none. 1, or 0 after the strdup message.
static int Name_Copy (Window window, Memory_Site site, const char *name, char **copy) {
    *copy = Is_Empty (name) ? nullptr : Memory_Strdup (window, site, name);
    return Is_Empty (name) || *copy != nullptr;
}

// Both names are copied before the old ones go, since a run may be repeated with the names of the last one.
static int Names_Keep (Window window, const char *name_a, const char *name_b) {
    char *copy_a = nullptr, *copy_b = nullptr;
    int   kept = Name_Copy (window, HERE ("Name_File_A", 0, 0), name_a, &copy_a) &&
               Name_Copy (window, HERE ("Name_File_B", 0, 0), name_b, &copy_b);
    Memory_Free (Comparison_Last.Name_File_A);
    Memory_Free (Comparison_Last.Name_File_B);
    Comparison_Last.Name_File_A = copy_a;
    Comparison_Last.Name_File_B = copy_b;
    return kept;
}

// --- definition ------------------------------------------------------------

Attribute *Definition_Read_List (Window window, SequenceCursor *cursor, Attribute *list) {
    DICOM_Attribute_Sequence_Reset (window, cursor);
    if (Log.trace_level >= 1)
        Log_Section (window, LOG_TRACE1,
                     "-----                         Read IOD definition                       ----- ");

    const char *modality = DICOM_Modality_Name (window, list);
    if (!modality) {
        Log_Message (window, LOG_WARNING, "unable to read Module def.");
        return nullptr;
    }
    Attribute *definition = DICOM_Module_Read (window, cursor->settings, modality);
    if (!definition) {
        Log_Message (window, LOG_WARNING, "unable to read Module def. for %s", modality);
        return nullptr;
    }
    DICOM_Attribute_Set_Type (window, cursor, definition, list);
    DICOM_Attribute_Sequence_Reset (window, cursor);
    if (Log.trace_level >= 1) DICOM_Attribute_List (window, cursor, list, LOG_TRACE1);
    return definition;
}

// --- phases ----------------------------------------------------------------

static Attribute *Read_Side (Window window, SequenceCursor *cursor, const char *name) {
    Log_Message (window, LOG_REPORT, "    Reading: %s", name);
    return File_Read_List (window, cursor, name);
}

static void Trace_List (Window window, SequenceCursor *cursor, Attribute *list, const char *title) {
    if (Log.trace_level < 1) return;
    Log_Section (window, LOG_TRACE1, title);
    DICOM_Attribute_Sequence_Reset (window, cursor);
    DICOM_Attribute_List (window, cursor, list, LOG_TRACE1);
}

// The definition for a file that was read, or none. Either way the file's attributes know their types afterwards.
static Attribute *Read_Definition (Window window, SequenceCursor *cursor, Attribute *list, const char *name) {
    if (!list) return nullptr;
    Log_Message (window, LOG_REPORT, "    Reading DICOM Modality tables for:" COLOUR_BLUE " %s", name);
    return Definition_Read_List (window, cursor, list);
}

static void Merge_Side (Window window, SequenceCursor *cursor, const Attribute *list) {
    DICOM_Attribute_Sequence_Reset (window, cursor);
    DICOM_Attribute_Copy (window, cursor, &Comparison_Last.merged, list);
}

// From here on the data of a merged record are the text that the walk writes, or none: a record that the walk doesn't find,
// or has no memory for, must not show bytes that end nowhere. The lengths stay.
static void Values_Release (Attribute *list) {
    for (Attribute *record = list; record; record = record->next) {
        Value_Release (record);
        for (int32_t i = 0; i < record->nb_item; i++) Values_Release (record->item[i]);
    }
}

// Every tag of both files, or of the file and its definition; the values are shared, not copied.
static void Merge (Window window, SequenceCursor *cursor, const Attribute *list_a, const Attribute *list_b,
                   Attribute *definition, bool two_files) {
    Log_Message (window, LOG_REPORT, "    Analysing differences");
    Merge_Side (window, cursor, list_a);
    if (two_files) {
        Merge_Side (window, cursor, list_b);
    } else {
        DICOM_Attribute_Sequence_Reset (window, cursor);
        DICOM_Attribute_Complement (window, cursor, definition);
        Merge_Side (window, cursor, definition);
    }
    Trace_List (window, cursor, Comparison_Last.merged,
                "-----                       Stool DICOM Merge                            ----- ");
    Values_Release (Comparison_Last.merged);
}

static int Walk (Window window, SequenceCursor *cursor, Attribute *list_a, Attribute *list_b, Attribute *definition,
                 bool two_files) {
    DICOM_Attribute_Sequence_Reset (window, cursor);
    int count = two_files ? Diff_Lists (window, cursor, Comparison_Last.merged, list_a, list_b, 0, 0)
                          : Modality_Diff_Lists (window, cursor, Comparison_Last.merged, list_a, definition, 0, 0);
    Log_Message (window, LOG_TRACE1, "==> %d dif", count);
    return count;
}

// "a /vs/ b" of the files' base names, or "a" alone; owned. None after the strdup message.
static char *Title_Create (Window window, const char *name_a, const char *name_b) {
    Text_Path a, b;
    Text_Split_Path (name_a ? name_a : "", &a);
    Text_Split_Path (name_b ? name_b : "", &b);
    const char *between = name_b ? " /vs/ " : "";
    size_t      size    = a.base_length + strlen (between) + b.base_length + 1;
    char       *title   = static_cast<char *> (Memory_Text (window, HERE ("List->name", 0, 0), size));
    if (title)
        snprintf (title, size, "%.*s%s%.*s", static_cast<int> (a.base_length), a.base, between,
                  static_cast<int> (b.base_length), b.base);
    return title;
}

// What the view shows. Rows that there was no memory for are missing. 1, or 0 when there was none for the title.
static int Show_Rows (Window window) {
    int titled = 1;
    if (Rows_Build (window, Comparison_Last.merged) > 0) {
        char *title = Title_Create (window, Comparison_Last.Name_File_A, Comparison_Last.Name_File_B);
        titled      = title && Rows_Title (window, title);
        Memory_Free (title);
    }
    Rows_Layout ();
    return titled;
}

// Large values are views of their files. Bytes of a file that shrank meanwhile were taken as zero.
static void Report_Vanished_Bytes (Window window) {
    if (System_Map_Faults () <= 0) return;
    Log_Message (window, LOG_WARNING,
                 EMPHASIS COLOUR_YELLOW "WARNING:" COLOUR_BLACK
                                        " a file changed while it was read: its missing bytes count as zero");
}

static void Report_Count (Window window, int count) {
    if (count >= 1) {
        Log_Message (window, LOG_REPORT, EMPHASIS COLOUR_BLACK "Found " COLOUR_BLUE "%d" COLOUR_BLACK " differences",
                     count);
        Log_Message (window, LOG_AUDIT, "Found %d differences", count);
    } else {
        Log_Message (window, LOG_REPORT, EMPHASIS COLOUR_BLACK "No changes");
    }
}

// --- run -------------------------------------------------------------------

int Comparison_Run (Window window, const Settings *settings, const char *name_a, const char *name_b, int batch) {
    SequenceCursor cursor     = {};
    Attribute     *list_a     = nullptr;
    Attribute     *list_b     = nullptr;
    Attribute     *definition = nullptr; // The cache's, until it is emptied.
    bool           two_files  = !Is_Empty (name_b);
    cursor.settings           = settings;

    Result_Delete (window, &cursor);
    if (!Names_Keep (window, name_a, name_b)) return 0;
    name_a = Comparison_Last.Name_File_A;
    name_b = Comparison_Last.Name_File_B;

    if (!Is_Empty (name_a)) {
        list_a = Read_Side (window, &cursor, name_a);
        Log_Message (window, LOG_REPORT, "");
    }
    if (two_files) list_b = Read_Side (window, &cursor, name_b);

    if (!batch) {
        definition = Read_Definition (window, &cursor, list_a, name_a);
        Read_Definition (window, &cursor, list_b, name_b); // For the types of B's attributes.
    }
    Trace_List (window, &cursor, list_a,
                "-----                       Stool DICOM File A                           ----- ");
    Trace_List (window, &cursor, list_b,
                "-----                       Stool DICOM File B                           ----- ");

    if (!batch) Merge (window, &cursor, list_a, list_b, definition, two_files);
    int count = Walk (window, &cursor, list_a, list_b, definition, two_files);
    List_Delete (window, &cursor, &list_a);
    List_Delete (window, &cursor, &list_b);
    DICOM_Module_Free (window);
    Report_Vanished_Bytes (window);
    if (batch) return count;
    if (!Show_Rows (window)) return 0;
    Report_Count (window, count);
    return count;
}

// --- the lines around it ---------------------------------------------------

// 1, or 0 after telling that there is no such file, to the user and in the audit file.
static int Check_Exists (Window window, const char *name) {
    static const int KINDS[] = {LOG_REPORT, LOG_AUDIT};
    if (System_File_Exists (name)) return 1;

    unsigned error = System_Last_Error ();
    for (int kind : KINDS) {
        Log_Message (window, kind, EMPHASIS COLOUR_RED "ERROR:" COLOUR_BLACK " Unable to open file: %s", name);
        Log_Message (window, kind, COLOUR_BLACK "    %s", Error_Text (error));
    }
    return 0;
}

int Comparison_Start (Window window, const Settings *settings, const char *name_a, const char *name_b, int batch) {
    if (!name_a) name_a = "";
    if (!name_b) name_b = "";
    Log_Message (window, LOG_REPORT, "    " COLOUR_BLACK "Compare A: " COLOUR_BLUE "%s", name_a);
    Log_Message (window, LOG_REPORT, "    " COLOUR_BLACK "      /vs/     B: " COLOUR_BLUE "%s",
                 *name_b ? name_b : "Modality description");

    // From the command line files are named in pairs.
    if (batch && (!Check_Exists (window, name_a) || !*name_b || !Check_Exists (window, name_b)))
        return COMPARISON_FAILED;

    int count = Comparison_Run (window, settings, name_a, name_b, batch);
    Report_Count (window, count);
    return count;
}

void Comparison_Check_Tables (Window window, const Settings *settings, const char *name) {
    SequenceCursor cursor = {};
    cursor.settings       = settings;
    Attribute *list       = Read_Side (window, &cursor, name);
    Read_Definition (window, &cursor, list, name);
    List_Delete (window, &cursor, &list);
    DICOM_Module_Free (window);
    Report_Vanished_Bytes (window);
}

void Comparison_Free (Window window) {
    SequenceCursor cursor = {};
    Result_Delete (window, &cursor);
    Memory_Free (Comparison_Last.Name_File_A);
    Memory_Free (Comparison_Last.Name_File_B);
    Comparison_Last = {};
}
