#include "tests/app/whole_window.h"

#include <filesystem>

#include "app/main_window.h"
#include "compare/comparison_run.h"
#include "nema/NEMA_Read_Value.h"
#include "tables/data_dictionary.h"
#include "tables/definition_files.h"
#include "tools/icon.h"
#include "view/result_view.h"

static int No_Loop (Window) { return 0; }

static int Silent (Window, int, const char *) { return 1; }

static int No_Box (Window, const char *, const char *, Window_Icon) { return 0; }

Whole_Window::Whole_Window (int width, int height, const std::string &folder)
    : folder_before (std::filesystem::current_path ().string ()) {
    static const std::string installed = std::string (TAGWRIGHT_SOURCE_DIR) + "/";
    std::filesystem::current_path (folder);
    DICOM_Module_Dir_Set ((installed + "DICOM Tables/").c_str ());
    Icon_Install_Path_Set (installed.c_str ());

    settings.mode_start                                                  = MODE_EXPLICIT;
    Log.scratch[scratch.path.copy (Log.scratch, sizeof Log.scratch - 1)] = 0;
    Log.audit_mode                                                       = 0;
    Log.trace_level                                                      = 0;
    Log_Sink_Set (Log_Program_Sink);
    Window_Box_Hook_Set (No_Box);
    Main_Window_Loop_Set (No_Loop);
    Main_Window_Place place = {0, 0, width, height};
    window                  = Main_Window_Create (&place, &settings);
    Main_Window_Help (window);
    Window_Event event = {};
    event.kind         = WINDOW_PAINT;
    Window_Send (window, &event);
}

Whole_Window::~Whole_Window () {
    Main_Window_Exit ();
    Comparison_Free (nullptr);
    NEMA_Value_Rings_Free ();
    DICOM_Module_Private_Free (nullptr);
    DICOM_Module_Dir_Set ("");
    Icon_Free_All ();
    Main_Window_Loop_Set (nullptr);
    Window_Box_Hook_Set (nullptr);
    Log_Sink_Set (Silent);
    Log = log_before;
    std::filesystem::current_path (folder_before);
}

void Whole_Window::Skip (const std::string &group, const std::string &element) {
    skipped[0].push_back (group);
    skipped[1].push_back (element);
    for (int half : {0, 1}) {
        skip_lists[half].clear ();
        for (std::string &text : skipped[half]) skip_lists[half].push_back (text.data ());
    }
    settings.Nb_Skip      = static_cast<int32_t> (skipped[0].size ());
    settings.Skip_Group   = skip_lists[0].data ();
    settings.Skip_Element = skip_lists[1].data ();
}

void Whole_Window::Drop (const std::vector<std::string> &files) {
    std::vector<const char *> names;
    for (const std::string &file : files) names.push_back (file.c_str ());
    Window_Event event = {};
    event.kind         = WINDOW_DROP;
    event.file_count   = static_cast<int> (names.size ());
    event.files        = names.data ();
    Window_Send (window, &event);
}

// --- mouse -----------------------------------------------------------------

void Whole_Window::Mouse (Window_Event_Kind kind, int x, int y) {
    Window_Event event = {};
    event.kind         = kind;
    event.x            = x;
    event.y            = y;
    event.button       = WINDOW_BUTTON_LEFT;
    Window_Send (window, &event);
}

void Whole_Window::Drag (int from_x, int from_y, int to_x, int to_y) {
    Mouse (WINDOW_MOUSE_MOVE, from_x, from_y);
    Mouse (WINDOW_BUTTON_DOWN, from_x, from_y);
    Mouse (WINDOW_MOUSE_MOVE, to_x, to_y);
    Mouse (WINDOW_BUTTON_UP, to_x, to_y);
}

// Each is held where the view puts the pointer into it. The right one first: it has to make room.
void Whole_Window::Separators (int left, int right, int strip_height) {
    int width, height;
    Window_Client_Size (window, &width, &height);
    const Widget &strip = Result.strip_separator.widget;
    Drag (100, strip.y + 5, 100, height - strip_height + 5);
    int y = Result.tree.widget.h / 2;
    Drag (Result.right_separator.widget.x + 4, y, right + 4, y);
    Drag (Result.left_separator.widget.x + 4, y, left + 4, y);
    Mouse (WINDOW_MOUSE_MOVE, 1, 1);
}

void Whole_Window::Values_From (int x) {
    Result.value_slider.value = static_cast<float> (x);
    View::ResetView (window);
}

void Whole_Window::Scroll (int notches) {
    Window_Event event = {};
    event.kind         = WINDOW_WHEEL;
    event.x = event.y = 50;
    event.wheel       = -notches * WINDOW_NOTCH;
    Window_Send (window, &event);
}

static const Row *Row_With (uint16_t group, uint16_t element, int level) {
    for (int i = 0; i < Rows.count; i++) {
        const Row *row = &Rows.rows[i];
        if (row->line < 0 || row->level != level || !row->attribute) continue;
        if (row->attribute->group == group && row->attribute->element == element) return row;
    }
    return nullptr;
}

int Whole_Window::Click (uint16_t group, uint16_t element, int level, int on_box) {
    const Row    *row  = Row_With (group, element, level);
    const Widget &tree = Result.tree.widget;
    if (!row) return 0;
    int bottom = static_cast<int> (Result.vertical.value) - 6 + tree.h + tree.y - 36 - VIEW_PITCH * row->line;
    if (bottom < VIEW_STRIP || bottom > tree.h - VIEW_HEADING) return 0;
    int x = tree.x - static_cast<int> (Result.tree_slider.value) + 12 + VIEW_PITCH * (row->level - 1) + 7;
    if (!on_box) x += 50;
    Mouse (WINDOW_BUTTON_DOWN, x, bottom + 5);
    Mouse (WINDOW_BUTTON_UP, x, bottom + 5);
    return 1;
}

int Whole_Window::Fold (uint16_t group, uint16_t element, int level) { return Click (group, element, level, 1); }

int Whole_Window::Select (uint16_t group, uint16_t element, int level) { return Click (group, element, level, 0); }
