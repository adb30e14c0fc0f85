// A file's way from bytes to a nested list, and a comparison of two of them with all that the window shows of it.
#include <string.h>

#include "compare/comparison_run.h"
#include "compare/difference_list.h"
#include "compare/file_reader.h"
#include "fuzz/fuzz.h"
#include "fuzz/scratch.h"
#include "tables/definition_files.h"
#include "util/my_error_fct.h"
#include "view/result_view.h"

static int Is_Same_Text (const char *a, const char *b) { return a && b ? !strcmp (a, b) : a == b; }

static int Is_Same_Value (const Attribute *a, const Attribute *b) {
    if (a->length != b->length || !a->data != !b->data) return 0;
    return !a->data || a->length < 1 || !memcmp (a->data, b->data, static_cast<size_t> (a->length));
}

static int Is_Same_List (const Attribute *a, const Attribute *b) {
    for (; a && b; a = a->next, b = b->next) {
        if (a->group != b->group || a->element != b->element || a->level != b->level) return 0;
        if (a->vr_file != b->vr_file || a->vr != b->vr || a->flags != b->flags || a->mode != b->mode) return 0;
        if (a->pos_tag != b->pos_tag || a->pos_data != b->pos_data) return 0;
        if (a->definition != b->definition || !Is_Same_Text (a->description, b->description)) return 0;
        if (!Is_Same_Value (a, b) || a->nb_item != b->nb_item) return 0;
        for (int32_t i = 0; i < a->nb_item; i++)
            if (!Is_Same_List (a->item[i], b->item[i])) return 0;
    }
    return !a && !b;
}

// A file that was read in silence, and so at once, holds what the phases come to one by one.
static void Compare_With_Phases (const std::string &name, const Attribute *list, Settings settings) {
    SequenceCursor cursor = {};
    cursor.settings       = &settings;
    settings.kind_warning = LOG_WARNING;
    settings.kind_note    = LOG_REPORT;
    Attribute *in_phases  = File_Read_List (nullptr, &cursor, name.c_str ());
    if (!Is_Same_List (list, in_phases)) Fuzz_Fail ("%s: the phases come to another list", name.c_str ());
    List_Delete (nullptr, &cursor, &in_phases);
}

void Fuzz_File (const uint8_t *bytes, size_t size) {
    static const std::string name = Fuzz_Directory () + "a.dcm";

    Fuzz_Bytes     input    = {bytes, size};
    Settings       settings = Fuzz_Settings (Fuzz_Byte (&input));
    SequenceCursor cursor   = {};
    cursor.settings         = &settings;
    Fuzz_Write (name, input);
    DICOM_Module_Dir_Set (Fuzz_Tables ().c_str ());

    Attribute *list = File_Read_List (nullptr, &cursor, name.c_str ());
    if (!settings.kind_note && !Log.trace_level) Compare_With_Phases (name, list, settings);
    List_Delete (nullptr, &cursor, &list);
    DICOM_Module_Private_Free (nullptr);
    DICOM_Module_Dir_Set ("");
}

// What the window does with rows, without drawing: labels of all of them, and a click on every line and every box.
static void Click_Everywhere () {
    for (int i = 0; i < Rows.count; i++) {
        View::DiffLabel (&Rows.rows[i]);
        View::SizeLabel (&Rows.rows[i]);
        View::VrLabel (&Rows.rows[i]);
    }
    for (int line = 0; line < Rows.visible && line < 1000; line++) {
        Rows_Select (line);
        int row = Rows_At (line);
        Rows_Toggle (line, Rows.rows ? Rows.rows[row].level - 1 : 0);
    }
}

void Fuzz_Comparison (const uint8_t *bytes, size_t size) {
    static const std::string name_a = Fuzz_Directory () + "a.dcm", name_b = Fuzz_Directory () + "b.dcm";

    // In the order in which the configuration file would have given them.
    static char  group[] = "0010", element[] = "*", any[] = "*", creator[] = "115?";
    static char *groups[] = {group, any, any}, *elements[] = {element, creator, nullptr};

    Fuzz_Bytes input      = {bytes, size};
    uint8_t    choice     = Fuzz_Byte (&input);
    Settings   settings   = Fuzz_Settings (choice);
    settings.Nb_Skip      = 3;
    settings.Skip_Group   = groups;
    settings.Skip_Element = elements;
    Fuzz_Write (name_a, Fuzz_Take (&input, input.left / 2));
    Fuzz_Write (name_b, input);
    DICOM_Module_Dir_Set (Fuzz_Tables ().c_str ());

    int batch = (choice & FUZZ_BATCH) != 0;
    Comparison_Run (nullptr, &settings, name_a.c_str (), name_b.c_str (), batch);
    if (!batch) {
        Click_Everywhere ();
        Comparison_Run (nullptr, &settings, name_a.c_str (), "", batch);
        Click_Everywhere ();
    }
    Comparison_Free (nullptr);
    DICOM_Module_Private_Free (nullptr);
    DICOM_Module_Dir_Set ("");
}
