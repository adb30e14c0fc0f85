// One window, whose widgets are the Result of view/result_view.h. Each event is one small function here. What would
// surprise: a drop blocks until its comparison is done, and meanwhile the window shows the lines of the text list only
// because each of them is put on the screen when it is written.
#include "app/main_window.h"

#include <algorithm>

#include "app/start_up.h"
#include "app/trace_key.h"
#include "compare/comparison_run.h"
#include "tools/device.h"
#include "tools/keyboard.h"
#include "tools/primitives.h"
#include "util/my_error_fct.h"
#include "util/text.h"
#include "view/result_view.h"

static const int COORDINATE_LIMIT = 32000; // Of widgets, which hold 16 bits.

static Window           shown; // None before the create event and after the destroy event.
static const Settings  *settings;
static int              wheel; // What didn't make a whole notch yet.
static int              running;
static Window_Event     first_drop; // Of the files that the program was started with.
static Main_Window_Loop test_loop;

Drop_Slots Drops;

// --- widgets ---------------------------------------------------------------

static const int16_t EDGE_COLOUR[4] = {170, 170, 170, 255};

static const int TEXT_POINTS = 9; // So that the whole help is seen.
static const int WHEEL_LINES = 3; // That a notch scrolls the text list by.

static void Widget_Prepare (Widget *widget, const char *name, const int16_t colour[4], uint32_t state) {
    widget->name  = name;
    widget->state = state;
    std::copy (colour, colour + 4, widget->colour);
}

static void Widgets_Prepare (void) {
    Widget_Prepare (&Result.frame.widget, "Main window", EDGE_COLOUR, WIDGET_FIXED);
    Widget_Prepare (&Result.tree.widget, "Tree", VIEW_PANE_COLOUR, WIDGET_FIXED);
    Widget_Prepare (&Result.description.widget, "Description", VIEW_PANE_COLOUR, WIDGET_FIXED);
    Widget_Prepare (&Result.value.widget, "Value", VIEW_PANE_COLOUR, WIDGET_FIXED);
    Widget_Prepare (&Result.vertical.widget, "Vertical slider", EDGE_COLOUR, SLIDER_VERTICAL);
    Widget_Prepare (&Result.tree_slider.widget, "Tree slider", EDGE_COLOUR, SLIDER_HORIZONTAL);
    Widget_Prepare (&Result.description_slider.widget, "Description slider", EDGE_COLOUR, SLIDER_HORIZONTAL);
    Widget_Prepare (&Result.value_slider.widget, "Value slider", EDGE_COLOUR, SLIDER_HORIZONTAL);
    Widget_Prepare (&Result.strip_separator.widget, "Strip separator", EDGE_COLOUR, 0);
    Widget_Prepare (&Result.left_separator.widget, "Left separator", EDGE_COLOUR, 0);
    Widget_Prepare (&Result.right_separator.widget, "Right separator", EDGE_COLOUR, 0);
    Widget_Prepare (&Result.text.widget, "Text list", EDGE_COLOUR, 0);
    Result.text.size = TEXT_POINTS;
}

// --- layout ----------------------------------------------------------------

// Corners of a widget: all four lines belong to it.
struct Extent {
    int left, bottom, right, top;
};

static int16_t Coordinate (int value) {
    return static_cast<int16_t> (std::clamp (value, -COORDINATE_LIMIT, COORDINATE_LIMIT));
}

// Corners that have no room between them make an empty widget.
static void Widget_Place (Widget *widget, const Extent &extent) {
    widget->x = Coordinate (extent.left);
    widget->y = Coordinate (extent.bottom);
    widget->w = Coordinate (std::max (0, extent.right - extent.left));
    widget->h = Coordinate (std::max (0, extent.top - extent.bottom));
}

static void Box_Place (Window window, Box_Widget *box, const Extent &extent) {
    Widget_Place (&box->widget, extent);
    Boxs::Init (box, window);
}

static void Button_Place (Window window, Button_Widget *button, const Extent &extent) {
    Widget_Place (&button->widget, extent);
    Buttons::Init (button, window);
}

// A hidden slider keeps a place of one pixel at least, so that it can be initialised.
static void Slider_Place (Window window, Slider *slider, uint32_t state, const Extent &extent, const Widget &pane) {
    bool hidden          = pane.w < LAYOUT_SMALLEST || pane.h < LAYOUT_SMALLEST;
    slider->widget.state = hidden ? state | WIDGET_HIDDEN : state;
    Widget_Place (&slider->widget, extent);
    slider->widget.w = std::max<int16_t> (1, slider->widget.w);
    slider->widget.h = std::max<int16_t> (1, slider->widget.h);
    Sliders::Init (slider, window);
}

// Along the bottom inner edge, up to room from the right one.
static void Slider_Place_Bottom (Window window, Slider *slider, const Widget &pane, int room) {
    int bottom = pane.y + WIDGET_MARGIN;
    Slider_Place (window, slider, SLIDER_HORIZONTAL,
                  {pane.x + WIDGET_MARGIN, bottom, pane.x + pane.w - room, bottom + WIDGET_SLIDER_THICKNESS}, pane);
}

// Along the right inner edge, above the strip of the one at the bottom.
static void Slider_Place_Right (Window window, Slider *slider, const Widget &pane, int strip) {
    int right = pane.x + pane.w - WIDGET_MARGIN;
    Slider_Place (window, slider, SLIDER_VERTICAL,
                  {right - WIDGET_SLIDER_THICKNESS, pane.y + strip, right, pane.y + pane.h - WIDGET_MARGIN}, pane);
}

static void Sliders_Place (Window window) {
    Slider_Place_Right (window, &Result.vertical, Result.tree.widget, VIEW_STRIP);
    Slider_Place_Bottom (window, &Result.tree_slider, Result.tree.widget, VIEW_STRIP);
    Slider_Place_Bottom (window, &Result.description_slider, Result.description.widget, WIDGET_MARGIN);
    Slider_Place_Bottom (window, &Result.value_slider, Result.value.widget, WIDGET_MARGIN);
}

static void Start_Values_Set (void) {
    if (!Result.strip_height) Result.strip_height = LAYOUT_STRIP;
    if (!Result.left) Result.left = LAYOUT_LEFT;
    if (!Result.right) Result.right = LAYOUT_RIGHT;
}

static const int LEFT_ROOM  = 38; // That the vertical separators leave to the right of them, as when they are dragged.
static const int RIGHT_ROOM = 18;
static const int GAP        = 18; // Between them.

// A separator of a window that has become too small for it is drawn, and can be taken, at the last place that it could be
// dragged to. Its own place isn't forgotten.
static int Kept_Inside (int place, int highest) { return std::max (LAYOUT_SEPARATOR, std::min (place, highest)); }

static void Panes_Place (Window window, int width, int top) {
    static const int S     = LAYOUT_SEPARATOR;
    int              left  = Kept_Inside (Result.left, width - LEFT_ROOM);
    int              right = std::max (left + GAP, Kept_Inside (Result.right, width - RIGHT_ROOM));
    Box_Place (window, &Result.tree, {0, 0, std::min (left, width - 1), top});
    Box_Place (window, &Result.description, {left + S, 0, std::min (right, width - 1), top});
    Box_Place (window, &Result.value, {right + S, 0, width - 1, top});
    Button_Place (window, &Result.left_separator, {left, -4, left + S, top + 7});
    Button_Place (window, &Result.right_separator, {right, -4, right + S, top + 7});
}

// The text list ends with the client area's highest line and begins behind the separator.
void Window_Layout (Window window, int width, int height) {
    width  = std::clamp (width, 0, COORDINATE_LIMIT - 16);
    height = std::clamp (height, 0, COORDINATE_LIMIT - 16);
    Start_Values_Set ();
    int top = height - Kept_Inside (Result.strip_height, height - LAYOUT_SEPARATOR);

    Box_Place (window, &Result.frame, {0, 0, width - 1, height - 1});
    Panes_Place (window, width, top);
    Button_Place (window, &Result.strip_separator, {-4, top, width + 4, top + LAYOUT_SEPARATOR});
    Widget_Place (&Result.text.widget, {0, std::max (0, top + LAYOUT_SEPARATOR), width - 1, height - 1});
    Texts::Init (&Result.text, window);
    Sliders_Place (window);
    View::SetScrollRanges (&Result.tree, &Result.description, &Result.value, &Result.vertical, &Result.tree_slider,
                           &Result.description_slider, &Result.value_slider);
}

// --- text list -------------------------------------------------------------

void Main_Window_List (Window, const char *text, int over) {
    if (!shown) return;
    if (over) Text::OverWrite (&Result.text, text);
    else Text::Write (&Result.text, text);
}

// clang-format off
static const char *const HELP[] = {
    "",
    "----- ----- ----- Tagwright ----- ----- -----",
    EMPHASIS COLOUR_BLACK "- Drag & Drop 1 DICOM file on this window to compare it with its modality description",
    EMPHASIS COLOUR_BLACK "- Drag & Drop 2 DICOM files on this window  to compare them to one another",
    "",
    EMPHASIS " Color code:\t Comparing with Modality:\t\t\t Comparing with another file:",
    EMPHASIS COLOUR_GREEN  " green " COLOUR_BLACK EMPHASIS_END "\t\t\t not used \t\t\t\t\t\t\t skiped tags as defined in .ini",
    EMPHASIS COLOUR_YELLOW " yellow" COLOUR_BLACK EMPHASIS_END "\t\t\t in the file but not in the modality \t\t not used",
    EMPHASIS COLOUR_BLUE   " blue  " COLOUR_BLACK EMPHASIS_END "\t\t\t in the modality but not in the file \t\t no difference",
    EMPHASIS COLOUR_BLACK  " black " COLOUR_BLACK EMPHASIS_END "\t\t\t in both the file and the modality \t\t different",
};
// clang-format on

void Main_Window_Help (Window window) {
    for (const char *line : HELP) Log_Message (window, LOG_REPORT, "%s", line);
}

// --- drops -----------------------------------------------------------------

static int Character_Count (const char *text) {
    int count = 0;
    for (; *text; count++) text += Tools::Character_Length (text);
    return count;
}

// 1, or 0 after the message that the path is too long: a part of it would be another file.
static int Drop_Take (Window window, const char *path) {
    static_assert (DROP_NAME_LIMIT * 4 < sizeof Drops.name[0], "a slot has room for the longest characters of UTF-8");
    char *slot = Drops.name[Drops.count & 1];
    if (Character_Count (path) > DROP_NAME_LIMIT) {
        Log_Message (window, LOG_WARNING,
                     EMPHASIS COLOUR_RED "ERROR:" COLOUR_BLACK " Path is longer than %d characters, not compared: %s",
                     DROP_NAME_LIMIT, path);
        return 0;
    }
    Text_Copy (slot, sizeof Drops.name[0], path);
    Drops.count = (Drops.count + 1u) & INT_MAX; // From the greatest number to 0: the slots go on taking turns.
    return 1;
}

static int Drop_Take_All (Window window, const Window_Event *event) {
    int taken = 0;
    for (int i = 0; i < event->file_count; i++) taken += Drop_Take (window, event->files[i]);
    return taken;
}

// The cursor of the view is put back as it was.
static void Drop_Compare (Window window) {
    Window_Cursor cursor = Window_Cursor_Get (window);
    Window_Cursor_Set (window, WINDOW_CURSOR_WAIT);
    running = 1;
    Comparison_Start (window, settings, Drops.name[0], Drops.name[1], 0);
    Log_Files_End (); // Until the next drop, which may be hours away.
    running = 0;
    Window_Cursor_Set (window, cursor);
    View::ResetView (window);
}

// A drop of no file repeats the comparison; one whose files were all refused doesn't: its result would be another one's.
static void Main_Window_On_Drop (Window window, const Window_Event *event) {
    if (running) return; // A message box of the run lets events in.
    Log_Message (window, LOG_REPORT, EMPHASIS COLOUR_BLACK "Comparing %d file%s...", event->file_count,
                 event->file_count >= 2 ? "s" : "");
    int taken = Drop_Take_All (window, event);
    if (taken || event->file_count <= 0) Drop_Compare (window);
    Log_Message (window, LOG_REPORT, EMPHASIS COLOUR_BLACK "Done");
}

// --- mouse -----------------------------------------------------------------

void Pointer_Store (Window window, int x, int y) {
    if (!x && !y) Window_Pointer (window, &x, &y);
    Device::Pointer_Set (x, y);
}

// Under the device's lock: the pointer belongs to what is drawn.
static void Pointer_Follow (Window window, const Window_Event *event) {
    int begun = Device::Begin (window, nullptr, "Main_Window_Procedure");
    Pointer_Store (window, event->x, event->y);
    if (begun) Device::End ();
}

static void Main_Window_On_Mouse_Move (Window window, const Window_Event *event) {
    Pointer_Follow (window, event);
    View::OnMouseMove (window, Device::ButtonDown (WINDOW_BUTTON_LEFT));
}

static void Main_Window_On_Button_Down (Window window, const Window_Event *event) {
    Window_Capture (window);
    Pointer_Follow (window, event);
    View::OnButton (window, MOUSE_PRESSED);
}

static void Main_Window_On_Button_Up (Window window, const Window_Event *event) {
    Window_Capture_End ();
    Pointer_Follow (window, event);
    View::OnButton (window, MOUSE_MOVED);
}

// --- wheel -----------------------------------------------------------------

static int Slider_Is_Active (const Slider *slider) {
    return !(slider->widget.state & (WIDGET_INACTIVE | WIDGET_MOUSE_IGNORED | WIDGET_HIDDEN));
}

static void Wheel_Scroll (int notches) {
    Slider *const order[] = {&Result.vertical, &Result.tree_slider, &Result.value_slider, &Result.description_slider};
    if (Result.text.active) {
        Texts::Scroll (&Result.text, -notches * WHEEL_LINES);
        return;
    }
    for (Slider *slider : order)
        if (Slider_Is_Active (slider)) {
            Sliders::Wheel (slider, notches);
            return;
        }
}

static void Main_Window_On_Wheel (Window window, const Window_Event *event) {
    static const int FARTHEST = 1 << 20; // A wheel that reports more is broken.
    Pointer_Follow (window, event);
    wheel       = std::clamp (event->wheel, -FARTHEST, FARTHEST) + wheel;
    int notches = wheel / WINDOW_NOTCH;
    if (!notches) return;
    wheel %= WINDOW_NOTCH;
    Wheel_Scroll (notches);
    View::Redraw_All ();
}

// --- other events ----------------------------------------------------------

static void Main_Window_On_Create (Window window, const Window_Event *event) {
    shown = window;
    Widgets_Prepare ();
    View::Layout_Set (Window_Layout);
    Window_Layout (window, event->width, event->height);
}

static void Main_Window_On_Size (Window window, const Window_Event *event) {
    Window_Layout (window, event->width, event->height);
    Window_Invalidate (window);
}

static void Main_Window_On_Destroy (Window window) {
    View::RestoreCursor ();
    if (window != shown) return; // Closed behind the loop's back: it has ended.
    shown = nullptr;
    Window_Quit (0);
}

// Everything, since the system doesn't say what was lost.
static void Main_Window_On_Paint (Window window) {
    Tools::Clear (&Result.frame.widget);
    View::Draw_All (window);
}

static int Main_Window_On_Key (Window window, const Window_Event *event) {
    int digit = Keyboard::Code (event) - (KEY_CHARACTER + '0');
    if (digit < 0 || digit > 9) return 0;
    Trace_Level_Key (window, digit);
    return 1;
}

// Other buttons are the system's.
static int Main_Window_On_Button (Window window, const Window_Event *event) {
    if (event->button != WINDOW_BUTTON_LEFT) return 0;
    if (event->kind == WINDOW_BUTTON_DOWN) Main_Window_On_Button_Down (window, event);
    else Main_Window_On_Button_Up (window, event);
    return 1;
}

// clang-format off
int Main_Window_Procedure (Window window, const Window_Event *event) {
    switch (event->kind) {
    case WINDOW_CREATE:          Main_Window_On_Create (window, event);     return 1;
    case WINDOW_SIZE:            Main_Window_On_Size (window, event);       return 1;
    case WINDOW_PAINT:           Main_Window_On_Paint (window);             return 1;
    case WINDOW_DESTROY:         Main_Window_On_Destroy (window);           return 1;
    case WINDOW_FOCUS_LOST:                                                 return 1;
    case WINDOW_KEY_DOWN:
    case WINDOW_SYSTEM_KEY_DOWN:
    case WINDOW_CHARACTER:       return Main_Window_On_Key (window, event);
    case WINDOW_MOUSE_MOVE:      Main_Window_On_Mouse_Move (window, event); return 1;
    case WINDOW_BUTTON_DOWN:
    case WINDOW_BUTTON_UP:       return Main_Window_On_Button (window, event);
    case WINDOW_WHEEL:           Main_Window_On_Wheel (window, event);      return 1;
    case WINDOW_DROP:            Main_Window_On_Drop (window, event);       return 1;
    }
    return 0;
}
// clang-format on

// --- life ------------------------------------------------------------------

void Main_Window_Loop_Set (Main_Window_Loop loop) { test_loop = loop; }

Window Main_Window_Create (const Main_Window_Place *place, const Settings *borrowed) {
    Window_Description description = {};
    description.title              = PROGRAM_TITLE;
    description.x                  = place->x;
    description.y                  = place->y;
    description.width              = place->width;
    description.height             = place->height;
    description.background         = Widget_Colour (EDGE_COLOUR);
    description.procedure          = Main_Window_Procedure;
    description.accept_drops       = 1;
    description.off_screen         = test_loop != nullptr;

    settings = borrowed;
    Log_List_Set (Main_Window_List);
    Window window = Window_Create (&description);
    if (!window) Main_Window_Exit ();
    return window;
}

// Closed by the program, it ends no loop.
static void Close (void) {
    Window window = shown;
    shown         = nullptr;
    Window_Destroy (window);
}

void Main_Window_Files_Set (const char *const *files, int count) {
    first_drop            = {};
    first_drop.kind       = WINDOW_DROP;
    first_drop.files      = files;
    first_drop.file_count = count;
}

int Main_Window_Run (Window window) {
    Window_Invalidate (window);
    Main_Window_Help (window);
    if (first_drop.file_count) Window_Send (window, &first_drop);
    int result = test_loop ? test_loop (window) : Window_Loop ();
    Close ();
    return result;
}

void Main_Window_Exit (void) {
    Close ();
    Log_List_Set (nullptr);
    View::Layout_Set (nullptr);
    View::Exit ();
    Result   = {};
    Drops    = {};
    settings = nullptr;
    wheel    = 0;
    running  = 0;
    Main_Window_Files_Set (nullptr, 0);
}
