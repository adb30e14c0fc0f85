// Prints what the trace of depth 2 tells of one file: the elements as they are read, and the listing after each phase.
#include <stdio.h>

#include "compare/file_reader.h"
#include "util/memory.h"
#include "util/my_error_fct.h"

static int Print (Window, int kind, const char *text) {
    static char clean[LOG_TEXT_SIZE];
    Log_Clean_Text (text, clean, sizeof clean);
    if (kind == LOG_TRACE2) printf ("%s\n", clean);
    else if (kind < LOG_TRACE1) printf ("[%d] %s\n", kind, clean);
    return 1;
}

int main (int count, char **words) {
    if (count != 2) {
        fputs ("usage: dump_listing FILE\n", stderr);
        return 2;
    }
    Settings settings     = {};
    settings.mode_start   = MODE_EXPLICIT;
    settings.kind_warning = LOG_WARNING;
    settings.kind_note    = LOG_REPORT;
    SequenceCursor cursor = {};
    cursor.settings       = &settings;
    Log.trace_level       = 2;
    Log_Sink_Set (Print);
    Attribute *list = File_Read_List (nullptr, &cursor, words[1]);
    Log.trace_level = 0;
    List_Delete (nullptr, &cursor, &list);
    return 0;
}
