// Compares each file named with its definition and prints what modality_test.py judges:
//   file NAME
//   report TEXT             each report of the run, in their order
//   warning TEXT            each warning of the definition tables
//   count COUNT             what the run returned
//   modality NAME           of the definition
//   file_list, definition, merged: a list as JSON, [[tag, code, [item, ...]], ...]; the code is of use in merged only
#include <stdio.h>
#include <string.h>

#include "compare/comparison_run.h"
#include "compare/file_reader.h"
#include "tables/definition_files.h"
#include "tables/modality.h"
#include "util/my_error_fct.h"

static const char *const READING   = "    Reading DICOM Modality tables for:";
static const char *const ANALYSING = "    Analysing differences";

static int in_tables; // 1 while the definition is read.

static int Print_Message (Window, int kind, const char *text) {
    static char clean[LOG_TEXT_SIZE];
    Log_Clean_Text (text, clean, sizeof clean);
    if (kind == LOG_REPORT) {
        if (!strncmp (clean, READING, strlen (READING))) in_tables = 1;
        if (!strcmp (clean, ANALYSING)) in_tables = 0;
        printf ("report %s\n", clean);
    } else if (kind == LOG_ERROR || (kind == LOG_WARNING && (in_tables || strstr (clean, "DICOM_")))) {
        printf ("warning %s\n", clean);
    }
    return 1;
}

static int Silent (Window, int, const char *) { return 1; }

static void Print_List (const Attribute *list) {
    printf ("[");
    for (const Attribute *record = list; record; record = record->next) {
        printf ("%s[\"%04x,%04x\",%d,[", record == list ? "" : ",", record->group, record->element, record->flags);
        for (int32_t i = 0; i < record->nb_item; i++) {
            if (i) printf (",");
            Print_List (record->item[i]);
        }
        printf ("]]");
    }
    printf ("]");
}

static void Print_Named (const char *name, const Attribute *list) {
    printf ("%s ", name);
    Print_List (list);
    printf ("\n");
}

static void Print_Run (const Settings *settings, const char *name) {
    Log_Sink_Set (Print_Message);
    in_tables = 0;
    int count = Comparison_Start (nullptr, settings, name, "", 0);
    Log_Sink_Set (Silent);
    printf ("count %d\n", count);
    Print_Named ("merged", Comparison_Last.merged);
}

static void Print_Sides (const Settings *settings, const char *name) {
    SequenceCursor cursor = {};
    cursor.settings       = settings;
    Attribute *list       = File_Read_List (nullptr, &cursor, name);
    Attribute *definition = list ? Definition_Read_List (nullptr, &cursor, list) : nullptr;
    if (list) printf ("modality %s\n", DICOM_Modality_Name (nullptr, list));
    Print_Named ("file_list", list);
    Print_Named ("definition", definition);
    List_Delete (nullptr, &cursor, &list);
    DICOM_Module_Free (nullptr);
}

int main (int count, char **words) {
    Settings settings     = {};
    settings.mode_start   = MODE_EXPLICIT;
    settings.kind_warning = LOG_WARNING;
    if (count < 2) {
        fputs ("usage: dump_modality TABLES FILE...\n", stderr);
        return 2;
    }
    DICOM_Module_Dir_Set (words[1]);
    for (int i = 2; i < count; i++) {
        printf ("file %s\n", words[i]);
        Print_Run (&settings, words[i]);
        Print_Sides (&settings, words[i]);
        fflush (stdout);
    }
    Comparison_Free (nullptr);
    DICOM_Module_Private_Free (nullptr);
    DICOM_Module_Dir_Set ("");
    return 0;
}
