// From the tables of a modality to its definition, in the steps in which a file's list is made: flat, nested, corrected,
// without item tags; then sorted and copied, which merges what several tables say of one attribute.
#include "attribute/NEMA_Tag_Attribute.h"
#include "attribute/NEMA_Tag_Copy.h"
#include "attribute/format.h"
#include "attribute/listing.h"
#include "attribute/sort.h"
#include "syntax/cleanup.h"
#include "tables/definition_files_private.h"

static void List_Free (Window window, Attribute **list) {
    SequenceCursor cursor = {};
    DICOM_Attribute_Delete (window, &cursor, list, TAG_ANY, TAG_ANY);
}

// --- tables ----------------------------------------------------------------

// The flat list of all tables of a modality.
struct Flat {
    Window          window;
    const Settings *settings;
    Attribute      *list;
    int             records; // Read so far.
};

static File *Module_File_Open (Window window, const char *modality, char *name) {
    int fits = Definition_Name (name, "DICOM_Module_%s.txt", modality);
    Log_Message (window, LOG_TRACE4, "module IOD file:%s in dir:%s", name, Definition_Directory ());
    File *file = fits ? Definition_Open (name) : nullptr;
    if (file) return file;
    Log_Message (window, LOG_WARNING,
                 DEFINITION_WARNING
                 " Unable to open module IOD file:" DEFINITION_BLUE ("%s") " in dir:" DEFINITION_BLUE ("%s"),
                 name, Definition_Directory ());
    Definition_Name (name, "DICOM_Module_%s.txt", "OT_Image");
    return Definition_Open (name);
}

static int Read_Module (Flat *flat, const char *module, const char *label, int line_number) {
    char name[DEFINITION_NAME_SIZE];
    Definition_Name (name, "DICOM_Attributes_%s.txt", module); // What a line holds fits.
    File *file = Definition_Open (name);
    if (!file) {
        Definition_Warn (flat->window, " reading IOD file:", label, line_number);
        Log_Message (flat->window, LOG_WARNING,
                     DEFINITION_DETAIL " Unable to open attributes file:" DEFINITION_BLUE ("%s"), name);
        return 1;
    }
    int done = Definition_Read (flat->window, flat->settings, file, name, &flat->list, &flat->records);
    File_Close (file);
    return done;
}

// Every line of the module file names an attributes file.
static int Read_Module_Lines (Flat *flat, File *file, const char *label) {
    char line[DEFINITION_LINE_SIZE];
    for (int number = 1; DICOM_Module_Read_Line (flat->window, file, number, line, label, nullptr);
         number += number < INT32_MAX) {
        Log_Message (flat->window, LOG_TRACE4, "%s[%d] -> %s", label, number, line);
        const char *module = Definition_Trim (line);
        if (*module && !Read_Module (flat, module, label, number)) return 0;
    }
    return 1;
}

// 1; 0 without a directory or a module file, or when memory ran out.
static int Read_Modality (Flat *flat, const char *modality) {
    if (!Definition_Directory ()) {
        Log_Message (flat->window, LOG_WARNING, DEFINITION_WARNING " DICOM_Module_Dir is undefined!");
        return 0;
    }
    char  label[DEFINITION_NAME_SIZE];
    File *file = Module_File_Open (flat->window, modality, label);
    if (!file) return 0;
    int done = Read_Module_Lines (flat, file, label);
    File_Close (file);
    return done;
}

// --- phases ----------------------------------------------------------------

static void Phase (Window window, const char *title) {
    if (Log.trace_level >= 4) Log_Section (window, LOG_TRACE1, title);
}

static void Trace_List (Window window, SequenceCursor *cursor, Attribute *list, int kind) {
    if (Log.trace_level < kind - LOG_TRACE1 + 1) return;
    DICOM_Attribute_Sequence_Reset (window, cursor);
    DICOM_Attribute_List (window, cursor, list, kind);
    DICOM_Attribute_Sequence_Reset (window, cursor);
}

static void Trace_End (Window window) {
    static const char RULE[] = "-------------------------------------------------------------------------------";
    if (Log.trace_level < 4) return;
    Log_Message (window, LOG_TRACE1, "\n\n\n");
    for (int i = 0; i < 3; i++) Log_Message (window, LOG_TRACE1, "%s", RULE);
}

// Takes over the flat list. The nested, corrected and sorted tree without item tags; 0 when there is none or memory ran
// out.
static int Make_Tree (Window window, SequenceCursor *cursor, Attribute **flat, Attribute **tree) {
    Phase (window, "-----                        Format of sequences                         ------");
    *tree = DICOM_Attribute_Format (window, cursor->settings, *flat);
    List_Free (window, flat);
    if (!*tree) {
        Log_Message (window, LOG_TRACE1, "Failed in DICOM_Attribute_Format()");
        return 0;
    }
    DICOM_Attribute_Cleanup_Walk (window, cursor, *tree);
    Trace_List (window, cursor, *tree, LOG_TRACE5);

    Phase (window, "-----                         Deleting DICOM tags                        ------");
    DICOM_Attribute_Delete (window, cursor, tree, GROUP_DELIMITER, TAG_ANY);
    Trace_List (window, cursor, *tree, LOG_TRACE4);

    Phase (window, "-----                         Sorting DICOM tags                         ------");
    int sorted = !*tree || DICOM_Attribute_Sort (window, cursor, tree);
    Trace_List (window, cursor, *tree, LOG_TRACE4);
    if (!sorted) List_Free (window, tree);
    return sorted;
}

// Takes over the tree.
static int Copy_Tree (Window window, SequenceCursor *cursor, Attribute **tree, Attribute **place) {
    Phase (window, "-----                         copying DICOM tags                         ------");
    DICOM_Attribute_Sequence_Reset (window, cursor);
    int copied = DICOM_Attribute_Copy (window, cursor, place, *tree);
    if (!copied) Log_Message (window, LOG_TRACE1, "Failed in DICOM_Attribute_Copy()");
    List_Free (window, tree);
    if (!copied) return 0;
    Trace_List (window, cursor, *place, LOG_TRACE5);
    Trace_End (window);
    return 1;
}

static int Assemble (Window window, const Settings *settings, Attribute **flat, Attribute **place) {
    SequenceCursor cursor = {};
    Attribute     *tree   = nullptr;
    cursor.settings       = settings;
    Phase (window, "-----                        From Module files                           ------");
    Trace_List (window, &cursor, *flat, LOG_TRACE5);
    return Make_Tree (window, &cursor, flat, &tree) && Copy_Tree (window, &cursor, &tree, place);
}

int DICOM_Module_Assemble (Window window, const Settings *settings, const char *modality, Attribute **place) {
    Flat flat = {window, settings, nullptr, 0};
    int  read = Read_Modality (&flat, modality);
    Definition_Includes_Empty (window);
    int done = read && Assemble (window, settings, &flat.list, place);
    List_Free (window, &flat.list);
    return done;
}
