// Prints what the program reads from each file named, for corpus_test.py:
//   file NAME
//   gggg,eeee LENGTH        an element in stream order; the length is -1 when undefined
//   nested COUNT            attributes after all phases, at every depth
//   self COUNT              differences of the file with itself, of two files and in the merged list
#include <stdio.h>

#include "compare/comparison_run.h"
#include "compare/file_reader.h"
#include "util/memory.h"
#include "util/my_error_fct.h"

static int Silent (Window, int, const char *) { return 1; }

static void Print_Elements (SequenceCursor *cursor, const char *name) {
    Attribute *elements = File_Read_Elements (nullptr, cursor, name);
    for (const Attribute *record = elements; record; record = record->next)
        printf ("%04x,%04x %d\n", record->group, record->element, record->length);
    List_Delete (nullptr, cursor, &elements);
}

static int Count (const Attribute *list) {
    int count = 0;
    for (const Attribute *record = list; record; record = record->next) {
        count++;
        for (int32_t i = 0; i < record->nb_item; i++) count += Count (record->item[i]);
    }
    return count;
}

static void Print_Nested (SequenceCursor *cursor, const char *name) {
    Attribute *list = File_Read_List (nullptr, cursor, name);
    printf ("nested %d\n", Count (list));
    List_Delete (nullptr, cursor, &list);
}

// At trace level 5, so that every trace and listing is formatted too.
static void Print_Self (const Settings *settings, const char *name) {
    Log.trace_level = 5;
    int batch       = Comparison_Run (nullptr, settings, name, name, 1);
    int merged      = Comparison_Run (nullptr, settings, name, name, 0);
    Log.trace_level = 0;
    printf ("self %d\n", batch + merged);
}

int main (int count, char **words) {
    Settings settings     = {};
    settings.mode_start   = MODE_EXPLICIT;
    settings.kind_warning = LOG_WARNING;
    settings.kind_note    = LOG_REPORT;

    Log_Sink_Set (Silent);
    for (int i = 1; i < count; i++) {
        SequenceCursor cursor = {};
        cursor.settings       = &settings;
        printf ("file %s\n", words[i]);
        Print_Elements (&cursor, words[i]);
        Print_Nested (&cursor, words[i]);
        Print_Self (&settings, words[i]);
        fflush (stdout);
    }
    Comparison_Free (nullptr);
    return 0;
}
