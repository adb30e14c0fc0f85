// The frame around the panes: fonts, one session a pane, scroll ranges, and the way out when a limit is passed. A pane's
// rectangle is drawn less the line around it, which it shares with its neighbours, and less the strips that sliders lie
// in: those belong to SetScrollRanges, so that a repaint leaves the sliders as they are.
#include "view/result_view.h"

#include <limits.h>
#include <string.h>

#include <algorithm>

#include "compare/attribute_comparison.h"
#include "compare/comparison_run.h"
#include "tools/primitives.h"
#include "util/my_error_fct.h"
#include "util/text.h"
#include "view/result_view_private.h"

static const int FONT_POINTS = 10;
static const int BASE_LINE   = 14; // Of the heading below the pane's top.
static const int FIRST_BAND  = 36; // Room above the first line, margin not counted.
static const int ERASE_STEP  = 500;
static const int ERASE_COUNT = 3;
static const int RANGE_MORE  = 4 * WIDGET_BORDER; // What can be scrolled beyond the content.
static const int WHEEL_LINES = 3;                 // Of a notch or a click on an arrow.

Result_View Result;

// --- fonts -----------------------------------------------------------------

static Drawing_Font fonts[View::FONT_COUNT];
static int          fonts_made;

Drawing_Font View::Font (View_Font font) { return fonts[font]; }

static void Fonts_Make (Window window) {
    if (fonts_made) return;
    fonts[View::FONT_REGULAR]    = Y_Create_Font (window, "Arial", "regular", nullptr, FONT_POINTS);
    fonts[View::FONT_BOLD]       = Y_Create_Font (window, "Arial", "bold", nullptr, FONT_POINTS);
    fonts[View::FONT_FIXED]      = Y_Create_Font (window, "Courier", "regular", nullptr, FONT_POINTS);
    fonts[View::FONT_FIXED_BOLD] = Y_Create_Font (window, "Courier", "bold", nullptr, FONT_POINTS);
    fonts_made                   = 1;
}

static void Fonts_Free (void) {
    for (Drawing_Font &font : fonts) {
        Drawing_Font_Free (font);
        font = nullptr;
    }
    fonts_made = 0;
}

// --- limits ----------------------------------------------------------------

struct Passed_Limit {
    const char *what; // None: no limit was passed.
    int         value, limit;
    uint16_t    group, element; // Of the record, or of the sequence around the item.
};

static Passed_Limit passed;

static const Attribute *Attribute_Around (const Row *row) {
    while (row > Rows.rows && !row->attribute) row--;
    return row->attribute;
}

int View::Limit_Passed (const char *what, int value, int limit, const Row *row) {
    const Attribute *attribute = Attribute_Around (row);
    passed                     = {what, value, limit, 0, 0};
    if (attribute) {
        passed.group   = attribute->group;
        passed.element = attribute->element;
    }
    return 0;
}

int View::Limit_Is_Passed (void) { return passed.what != nullptr; }

static const char *Name_Or_None (const char *name) { return name && *name ? name : "no file"; }

// Outside of a session. The box delivers paint events; they draw nothing any more, so that no other limit is passed.
static void Limit_Report (Window window) {
    Log_Message (window, LOG_ERROR,
                 "The %s of (%04X,%04X) is %d, and at most %d can be shown.\n\n(A) %s\n(B) %s\n\n"
                 "The program ends. Nothing is lost: files are only read.",
                 passed.what, passed.group, passed.element, passed.value, passed.limit,
                 Name_Or_None (Comparison_Last.Name_File_A), Name_Or_None (Comparison_Last.Name_File_B));
    Window_Quit (View::FATAL_EXIT);
}

// --- rows ------------------------------------------------------------------

uint32_t View::Row_Colour (const Row *row) {
    const int code = row->code & ~ROW_CONTAINER;
    if (!code) return VIEW_BLUE;
    if (code & DIFFERENCE_SKIPPED) return VIEW_GREEN;
    if (code & DIFFERENCE_FILE_ONLY) return VIEW_YELLOW;
    return VIEW_BLACK;
}

// --- panes -----------------------------------------------------------------

static const int SCROLL_LIMIT = 1 << 30; // Far outside of any list.

int View::Scroll_Value (const Slider *slider) {
    return std::clamp (Text_Truncate (slider->value), -SCROLL_LIMIT, SCROLL_LIMIT);
}

View::Pane View::Pane_Of (Box_Widget *box, const Slider *horizontal, const Box_Widget *tree, const Slider *vertical) {
    const Widget *area   = &box->widget;
    const int     scroll = Scroll_Value (vertical), height = tree->widget.h;
    Pane          pane;
    pane.box    = box;
    pane.x0     = area->x - Scroll_Value (horizontal);
    pane.y0     = scroll - WIDGET_MARGIN + height + area->y - FIRST_BAND;
    pane.first  = std::max (0, scroll / VIEW_PITCH);
    pane.end    = std::min (Rows.visible, 1 + (height + scroll) / VIEW_PITCH);
    pane.left   = area->x + 1;
    pane.right  = std::max (pane.left, area->x + area->w - (box == tree ? VIEW_STRIP : 0));
    pane.bottom = area->y + VIEW_STRIP;
    pane.top    = std::max (pane.bottom, area->y + area->h);
    return pane;
}

// Pixels left to right - 1, bottom to top - 1.
static void Clip (int left, int bottom, int right, int top) {
    Device::ClipTo (left, bottom - 1, right - left, std::max (0, top - bottom));
}

void View::Clip_Lines (const Pane *pane) { Clip (pane->left, pane->bottom, pane->right, pane->top - VIEW_HEADING); }

static void Draw_Background (const View::Pane *pane) {
    Clip (pane->left, pane->bottom, pane->right, pane->top);
    Device::Colour_Set (Widget_Colour (pane->box->widget.colour));
    Device::FillRect (pane->left - 1, pane->bottom - 2, pane->right + 1, pane->top);
}

static void Erase_Heading (const View::Pane *pane, int y) {
    static char blanks[126 + 1];
    memset (blanks, ' ', sizeof blanks - 1);
    for (int i = 0; i < ERASE_COUNT; i++)
        Tools::DrawText (fonts[View::FONT_BOLD], pane->x0 + i * ERASE_STEP, y, blanks, VIEW_BLACK);
}

// Texts stand on their cell's bottom, headings on their base line.
static int Heading_Bottom (const Widget *box) {
    Drawing_Font_Metrics metrics;
    Device::Font_Measure (fonts[View::FONT_BOLD], &metrics);
    return box->y + box->h - BASE_LINE - metrics.descent;
}

struct Pane_Content {
    void (*heading) (const View::Pane *pane, int y);
    int (*lines) (const View::Pane *pane);
};

// 0 when a limit was passed.
static int Draw_Pane (const View::Pane *pane, const Pane_Content *content) {
    const Widget *box = &pane->box->widget;
    if (!Device::Begin (box->window, box->region, "View::Redraw")) return 1;
    Draw_Background (pane);
    const int y = Heading_Bottom (box);
    Erase_Heading (pane, y);
    content->heading (pane, y);
    View::Clip_Lines (pane);
    const int drawn = content->lines (pane);
    Device::ClipToClient ();
    if (Device::Is_Open ()) Device::End (); // An icon may have ended it and failed to begin anew.
    return drawn;
}

void View::Redraw (Box_Widget *tree, Box_Widget *description, Box_Widget *value, Slider *vertical, Slider *tree_slider,
                   Slider *description_slider, Slider *value_slider) {
    static const Pane_Content tree_content        = {Tree_Heading, Tree_Lines};
    static const Pane_Content value_content       = {Value_Heading, Value_Lines};
    static const Pane_Content description_content = {Description_Heading, Description_Lines};

    struct {
        Box_Widget         *box;
        const Slider       *slider;
        const Pane_Content *content;
    } const panes[] = {{tree, tree_slider, &tree_content},
                       {value, value_slider, &value_content},
                       {description, description_slider, &description_content}};

    if (Limit_Is_Passed () || Is_Hidden (vertical)) return;
    Fonts_Make (tree->widget.window);
    for (const auto &entry : panes) {
        if (Is_Hidden (entry.slider)) continue;
        Pane pane = Pane_Of (entry.box, entry.slider, tree, vertical);
        if (!Draw_Pane (&pane, entry.content)) {
            Limit_Report (tree->widget.window);
            return;
        }
    }
}

void View::Redraw_All (void) {
    Redraw (&Result.tree, &Result.description, &Result.value, &Result.vertical, &Result.tree_slider,
            &Result.description_slider, &Result.value_slider);
}

// --- scroll ranges ---------------------------------------------------------

// A strip of the pane, its edge's line left as it is.
static void Fill_Strip (Box_Widget *box, int is_vertical) {
    const Widget *area = &box->widget;
    const int     left = is_vertical ? std::max<int> (area->x, area->x + area->w - VIEW_STRIP) : area->x + 1;
    const int     top  = is_vertical ? area->y + area->h : std::min<int> (area->y + VIEW_STRIP, area->y + area->h);
    Tools::Fill (&box->widget, 0, left, area->x + area->w, area->y, top - 1);
}

static int64_t Content_Height (void) { return (static_cast<int64_t> (Rows.visible) + 1) * VIEW_PITCH; }

static void Set_Range (Box_Widget *box, Slider *slider, int is_vertical, int64_t content) {
    if (View::Is_Hidden (slider)) return;
    const int length     = is_vertical ? slider->widget.h : slider->widget.w;
    const int is_enabled = length < content;
    slider->widget.state = is_vertical ? (is_enabled ? SLIDER_VERTICAL : SLIDER_VERTICAL_DISABLED)
                                       : (is_enabled ? SLIDER_HORIZONTAL : SLIDER_HORIZONTAL_DISABLED);
    slider->step         = VIEW_PITCH * (is_vertical ? WHEEL_LINES : 1);
    slider->minimum      = 0;
    slider->maximum      = is_enabled ? static_cast<float> (RANGE_MORE + content - length) : 0;
    if (!is_enabled) slider->value = 0;
    Fill_Strip (box, is_vertical);
    Sliders::Init (slider, box->widget.window);
    Sliders::Proportion (slider, length, static_cast<int> (std::min<int64_t> (content, INT_MAX)));
}

int View::SetScrollRanges (Box_Widget *tree, Box_Widget *description, Box_Widget *value, Slider *vertical,
                           Slider *tree_slider, Slider *description_slider, Slider *value_slider) {
    if (Limit_Is_Passed ()) return 1;
    Set_Range (tree, tree_slider, 0, VIEW_TREE_WIDTH);
    Set_Range (description, description_slider, 0, VIEW_DETAIL_WIDTH);
    Set_Range (value, value_slider, 0, VIEW_VALUE_WIDTH);
    Set_Range (tree, vertical, 1, Content_Height ());
    for (Slider *slider : {tree_slider, description_slider, value_slider, vertical})
        if (!Is_Hidden (slider)) Sliders::Draw (slider);
    return 1;
}

void View::Set_Ranges (void) {
    SetScrollRanges (&Result.tree, &Result.description, &Result.value, &Result.vertical, &Result.tree_slider,
                     &Result.description_slider, &Result.value_slider);
}

// --- everything ------------------------------------------------------------

static Button_Widget *const separators[] = {&Result.strip_separator, &Result.left_separator, &Result.right_separator};
static Box_Widget *const    boxes[]      = {&Result.tree, &Result.description, &Result.value};
static Slider *const        sliders[]    = {&Result.vertical, &Result.tree_slider, &Result.description_slider,
                                            &Result.value_slider};

void View::Draw_All (Window) {
    if (Limit_Is_Passed ()) return;
    for (Button_Widget *separator : separators) Button::Draw (separator);
    for (Box_Widget *box : boxes) Box::Draw (box);
    Text::Draw (&Result.text);
    Set_Ranges ();
    Redraw_All ();
}

void View::ResetView (Window window) {
    Separators_Forget ();
    for (Button_Widget *separator : separators) separator->look.hover = HOVER_NORMAL;
    Draw_All (window);
}

void View::Exit (void) {
    RestoreCursor ();
    Separators_Forget ();
    Fonts_Free ();
    passed = {};
    for (Button_Widget *separator : separators) Buttons::Exit (separator);
    for (Box_Widget *box : boxes) Boxs::Exit (box);
    Boxs::Exit (&Result.frame);
    for (Slider *slider : sliders) Sliders::Exit (slider);
    Texts::Exit (&Result.text);
}
