// Shows every widget of the toolkit in every look, as large as the window has room for, and lets them be used: drag the
// sliders, press the boxes, scroll the list, type into the field.
//
//   gallery [width height]              a window on the screen
//   gallery --picture FILE width height its picture as a PNG file, without a display (Linux)
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tools/boxes.h"
#include "tools/buttons.h"
#include "tools/icon.h"
#include "tools/keyboard.h"
#include "tools/primitives.h"
#include "tools/sliders.h"
#include "tools/texts.h"
#include "util/my_error_fct.h"

// --- the page --------------------------------------------------------------

// Four panels in two rows above the list. Sizes are those in a window of 800 x 600 units; Scaled gives them in pixels.
static const int GAP         = 8;
static const int LIST_HEIGHT = 150;
static const int TITLE       = 26; // Height of a panel's title.

static float scale = 1;

static int Scaled (int units) { return static_cast<int> (scale * static_cast<float> (units)); }

enum Panel_Name { PANEL_SLIDERS, PANEL_BUTTONS, PANEL_FRAMES, PANEL_TEXTS, PANELS };

static const char *const TITLES[PANELS] = {"Sliders", "Boxes and buttons", "Frames, fills and arrows",
                                           "Icons and texts"};

static Widget      page;
static Box_Widget  panels[PANELS];
static Text_Widget list;
static Text_Widget field;

enum { SLIDERS = 8, BOXES = 4, BUTTONS = 5 };
static Slider        sliders[SLIDERS];
static Box_Widget    boxes[BOXES];
static Button_Widget buttons[BUTTONS];

static Drawing_Font title_font, regular_font, bold_font, italic_font, fixed_font;

static void Place (Widget *widget, int x, int y, int w, int h) {
    widget->x = static_cast<int16_t> (x);
    widget->y = static_cast<int16_t> (y);
    widget->w = static_cast<int16_t> (w < 0 ? 0 : w);
    widget->h = static_cast<int16_t> (h < 0 ? 0 : h);
}

// Places a widget in a panel, (x, y) from its top-left corner to the widget's own, y downwards, in units.
static void Place_In (Panel_Name panel, Widget *widget, int x, int y, int w, int h) {
    const Widget *outer = &panels[panel].widget;
    Place (widget, outer->x + Scaled (x), outer->y + outer->h - Scaled (y + h), Scaled (w), Scaled (h));
}

static void Colour (Widget *widget, int red, int green, int blue) {
    widget->colour[0] = static_cast<int16_t> (red);
    widget->colour[1] = static_cast<int16_t> (green);
    widget->colour[2] = static_cast<int16_t> (blue);
    widget->colour[3] = 255;
}

// The pixels of a rectangle in a panel, given as Place_In takes it.
struct Area {
    int x1, x2, y1, y2;
};
static Area In (Panel_Name panel, int x, int y, int w, int h) {
    Widget widget = {};
    Place_In (panel, &widget, x, y, w, h);
    return {widget.x, widget.x + widget.w, widget.y, widget.y + widget.h};
}

// --- layout ----------------------------------------------------------------

static void Make_Fonts (Window window) {
    const struct {
        Drawing_Font *font;
        const char   *face, *weight, *style;
    } FONTS[] = {{&title_font, "Arial", "bold", "r"},
                 {&regular_font, "Arial", "regular", "r"},
                 {&bold_font, "Arial", "bold", "r"},
                 {&italic_font, "Arial", "regular", "i"},
                 {&fixed_font, "Courier", "regular", "r"}};
    for (const auto &font : FONTS) {
        Drawing_Font_Free (*font.font);
        *font.font = Y_Create_Font (window, font.face, font.weight, font.style, Scaled (10));
    }
}

static void Layout_Panels (Window window, int width, int height) {
    int gap     = Scaled (GAP);
    int columns = (width - gap * 3) / 2;
    int rows    = (height - Scaled (LIST_HEIGHT) - gap * 4) / 2;

    Place (&page, 0, 0, width, height);
    Widget_Init (&page, window, "Gallery");
    for (int i = 0; i < PANELS; i++) {
        Place (&panels[i].widget, gap + i % 2 * (columns + gap), height - (1 + i / 2) * (rows + gap), columns, rows);
        panels[i].widget.state |= WIDGET_FIXED;
        Boxs::Init (&panels[i], window);
    }
}

static void Layout_Sliders (Window window) {
    for (int i = 0; i < SLIDERS; i++) {
        Slider *slider       = &sliders[i];
        int     disabled     = i % 4 == 3;
        slider->minimum      = 0;
        slider->maximum      = 100;
        slider->widget.state = i < 4 ? SLIDER_HORIZONTAL : SLIDER_VERTICAL;
        if (disabled) slider->widget.state |= SLIDER_DISABLED;
        if (i < 4) Place_In (PANEL_SLIDERS, &slider->widget, 16, TITLE + 10 + 30 * i, 228, WIDGET_SLIDER_THICKNESS);
        else Place_In (PANEL_SLIDERS, &slider->widget, 260 + 30 * (i - 4), TITLE + 10, WIDGET_SLIDER_THICKNESS, 163);
        Sliders::Init (slider, window);
        Sliders::Proportion (slider, 1 + i % 4, 5);
    }
}

static void Layout_Buttons (Window window) {
    for (int i = 0; i < BOXES; i++) {
        Place_In (PANEL_BUTTONS, &boxes[i].widget, 16 + i * 90, TITLE + 8, 84, 32);
        boxes[i].look.font = regular_font;
        Boxs::Init (&boxes[i], window);
    }
    for (int i = 0; i < 3; i++) Place_In (PANEL_BUTTONS, &buttons[i].widget, 16 + i * 90, TITLE + 52, 84, 32);
    Place_In (PANEL_BUTTONS, &buttons[3].widget, 16, TITLE + 100, 328, 8);
    Place_In (PANEL_BUTTONS, &buttons[4].widget, 360, TITLE + 52, 8, 121);
    for (Button_Widget &button : buttons) {
        button.look.font = regular_font;
        Buttons::Init (&button, window);
    }
}

static void Layout_Lists (Window window, int width) {
    int gap = Scaled (GAP);
    Place (&list.widget, gap, gap, width - 2 * gap, Scaled (LIST_HEIGHT));
    list.size = Scaled (10);
    Texts::Init (&list, window);

    Place_In (PANEL_TEXTS, &field.widget, 16, 178, 356, 22);
    field.size = Scaled (10);
    Texts::Init (&field, window);
}

static void Layout (Window window, int width, int height) {
    float across = static_cast<float> (width) / 800, down = static_cast<float> (height) / 600;
    scale = across < down ? across : down;
    Make_Fonts (window);
    Layout_Panels (window, width, height);
    Layout_Sliders (window);
    Layout_Buttons (window);
    Layout_Lists (window, width);
}

// --- drawing ---------------------------------------------------------------

static void Draw_Buttons (void) {
    for (Box_Widget &box : boxes) Box::Draw (&box);
    for (Button_Widget &button : buttons) Button::Draw (&button);
}

static void Draw_Fills (void) {
    typedef void (*Fill) (Widget * widget, int x1, int x2, int y1, int y2);
    static const Fill FILLS[] = {Tools::Fill_Blue, Tools::Fill_Grey, Tools::Fill_Red, Tools::Fill_Yellow,
                                 Tools::Fill_Green};
    int               x       = 16;
    for (Fill fill : FILLS) {
        Area area = In (PANEL_FRAMES, x, 118, 62, 22), around = In (PANEL_FRAMES, x - 2, 116, 66, 26);
        fill (&page, area.x1, area.x2, area.y1, area.y2);
        Tools::Cadre_Outline (&page, around.x1, around.x2, around.y1, around.y2);
        x += 71;
    }
}

static void Draw_Arrows (void) {
    Widget inactive = page;
    inactive.state  = WIDGET_INACTIVE;
    for (int i = 0; i < 12; i++) {
        Area area = In (PANEL_FRAMES, 16 + i * 30, 158, 20, 20);
        Tools::Arrow (i < 8 ? &page : &inactive, i % 4, i >= 4 && i < 8, area.x1, area.x2, area.y1, area.y2);
    }
}

static void Draw_Frames (void) {
    for (int i = 0; i < 10; i++) {
        uint32_t state = i < 5 ? 0u : uint32_t {WIDGET_NO_OUTLINE};
        Area raised = In (PANEL_FRAMES, 16 + i * 36, 34, 28, 30), sunken = In (PANEL_FRAMES, 16 + i * 36, 74, 28, 30);
        Tools::Cadre (&page, state, Tools::CADRE_RAISED, i % 5, raised.x1, raised.x2, raised.y1, raised.y2);
        Tools::Cadre (&page, state, Tools::CADRE_SUNKEN, i % 5, sunken.x1, sunken.x2, sunken.y1, sunken.y2);
    }
}

static void Draw_Icons (void) {
    static const char *const NAMES[] = {"icon_type_1.tga", "icon_type_1C.tga", "icon_type_2.tga", "icon_type_2C.tga",
                                        "icon_type_3.tga", "icon_type_0.tga",  "icon_dot.tga"};
    int                      x       = 16;
    if (!Widget_Begin (&page, "Gallery")) return;
    for (const char *name : NAMES) {
        Area area = In (PANEL_TEXTS, x, 30, 16, 16);
        Icon_Draw_Image (&page, area.x1, area.y1, "gallery", name);
        x += 30;
    }
    Widget_End (&page);
}

static void Draw_Fonts (void) {
    const struct {
        Drawing_Font font;
        const char  *text;
    } LINES[] = {{regular_font, "Arial (0010,0010) Patient's Name"},
                 {bold_font, "Arial bold (0010,0010) \xC3\x84\xC3\xA9\xC3\xB1"},
                 {italic_font, "Arial italic 1\t2\t3"},
                 {fixed_font, "Courier 1.2.840.10008.1.2"}};
    int y     = 58;
    if (!Widget_Begin (&page, "Gallery")) return;
    for (const auto &line : LINES) {
        Area area = In (PANEL_TEXTS, 16, y, 200, 18);
        Tools::DrawText (line.font, area.x1, area.y1, line.text, 0);
        y += 22;
    }
    Widget_End (&page);
}

static void Draw_Aligned (void) {
    const struct {
        const char *text;
        uint32_t    flags;
    } LINES[] = {{"Left", WIDGET_ALIGN_LEFT | WIDGET_TEXT_BLUE},
                 {"C&entre", 0},
                 {"Right", WIDGET_ALIGN_RIGHT | WIDGET_TEXT_WHITE}};
    int y     = 34;
    for (const auto &line : LINES) {
        Area area = In (PANEL_TEXTS, 236, y, 100, 24);
        Tools::Cadre (&page, WIDGET_NO_OUTLINE, Tools::CADRE_SUNKEN, 1, area.x1, area.x2, area.y1, area.y2);
        Tools::Text (&page, regular_font, line.text, line.flags, area.x1, area.y1, area.x2 - area.x1, area.y2 - area.y1,
                     2);
        y += 32;
    }
    Area down = In (PANEL_TEXTS, 346, 34, 26, 88);
    Tools::Text (&page, regular_font, "Down", WIDGET_VERTICAL, down.x1, down.y1, down.x2 - down.x1, down.y2 - down.y1,
                 2);
}

static void Draw (void) {
    Tools::Clear (&page);
    for (int i = 0; i < PANELS; i++) {
        const Widget *outer = &panels[i].widget;
        Box::Draw (&panels[i]);
        Tools::Text (&page, title_font, TITLES[i], WIDGET_ALIGN_LEFT, outer->x + Scaled (6),
                     outer->y + outer->h - Scaled (TITLE), outer->w - Scaled (12), Scaled (TITLE), 2);
    }
    for (Slider &slider : sliders) Sliders::Draw (&slider);
    Draw_Buttons ();
    Draw_Frames ();
    Draw_Fills ();
    Draw_Arrows ();
    Draw_Icons ();
    Draw_Fonts ();
    Draw_Aligned ();
    Text::Draw (&field);
    Text::Draw (&list);
}

// --- events ----------------------------------------------------------------

static void Mouse (int state) {
    for (Slider &slider : sliders) {
        if (!Sliders::Select (&slider, state)) continue;
        slider.value = Sliders::Read (&slider);
        Sliders::Adjust (&slider);
    }
    for (Box_Widget &box : boxes) Box::Select (&box, state);
    for (Button_Widget &button : buttons) Button::Select (&button, state);
    Text::Select (&list, state);
}

static void Wheel (int notches) {
    if (list.active) Texts::Scroll (&list, -notches);
    else Sliders::Scroll (&sliders[SLIDERS / 2], -notches);
}

static void Type (int key) {
    if (!Texts::Read_Echo (&field, key)) return;
    Text::Write (&list, field.text);
    field.text[0] = 0;
    Texts::Rescale_Cursor (&field);
    Text::Draw (&field);
}

static int Procedure (Window window, const Window_Event *event) {
    if (event->kind >= WINDOW_MOUSE_MOVE && event->kind <= WINDOW_WHEEL) Device::Pointer_Set (event->x, event->y);
    switch (event->kind) {
    case WINDOW_CREATE:
    case WINDOW_SIZE: Layout (window, event->width, event->height); return 1;
    case WINDOW_PAINT: Draw (); return 1;
    case WINDOW_DESTROY: Window_Quit (0); return 1;
    case WINDOW_MOUSE_MOVE: Mouse (Device::ButtonDown (1) ? MOUSE_HELD : MOUSE_MOVED); return 1;
    case WINDOW_BUTTON_DOWN:
        Window_Capture (window);
        Mouse (MOUSE_PRESSED);
        return 1;
    case WINDOW_BUTTON_UP:
        Window_Capture_End ();
        Mouse (MOUSE_RELEASED);
        return 1;
    case WINDOW_WHEEL: Wheel (event->wheel / WINDOW_NOTCH); return 1;
    case WINDOW_KEY_DOWN:
    case WINDOW_CHARACTER: Type (Keyboard::Code (event)); return 1;
    default: return 0;
    }
}

// --- contents --------------------------------------------------------------

static void Fill_List (void) {
    static const char *const LINES[] = {
        "----- ----- ----- The text list ----- ----- -----",
        EMPHASIS COLOUR_BLACK "Bold black,\xF0 regular,\xF2 oblique,\xF0 " COLOUR_BLUE "blue, " COLOUR_RED
                              "red, " COLOUR_YELLOW "yellow, " COLOUR_GREEN "green, \x03white",
        EMPHASIS COLOUR_YELLOW "WARNING:" EMPHASIS_END COLOUR_BLACK "  file: " COLOUR_BLUE "/data/series/ct_0001.dcm",
        EMPHASIS COLOUR_RED "ERROR:" COLOUR_BLACK " Unable to open file: ct_0002.dcm",
        "A\ttab\tevery\tfour\tcharacters",
        EMPHASIS COLOUR_BLACK "Found " COLOUR_BLUE "12" COLOUR_BLACK " differences"};
    for (int i = 0; i < 3; i++)
        for (const char *line : LINES) Text::Write (&list, line);
    snprintf (field.text, sizeof field.text, "typed text");
    field.cursor = 5;
}

static void Fill_Widgets (void) {
    static const float       VALUES[SLIDERS] = {0, 50, 100, 0, 0, 50, 100, 0};
    static const char *const LABELS[BOXES]   = {"Box", "Highlighted", "Inactive", "L&abel"};
    for (int i = 0; i < SLIDERS; i++) sliders[i].value = VALUES[i];

    for (int i = 0; i < BOXES; i++) {
        boxes[i].look.label   = LABELS[i];
        boxes[i].widget.state = WIDGET_LABEL_FREE;
        Colour (&boxes[i].widget, 190, 190, 190);
    }
    boxes[1].look.hover = HOVER_HIGHLIGHTED;
    boxes[2].widget.state |= WIDGET_INACTIVE;

    for (Button_Widget &button : buttons) Colour (&button.widget, 190, 190, 190);
    buttons[0].look.label   = "Button";
    buttons[0].widget.state = WIDGET_LABEL_FREE;
    buttons[1].widget.state = WIDGET_ARROWS;
    buttons[2].widget.state = WIDGET_ARROWS | WIDGET_ARROWS_ACROSS;

    Colour (&page, 170, 170, 170);
    for (Box_Widget &panel : panels) Colour (&panel.widget, 170, 170, 170);
    Colour (&field.widget, 235, 235, 235);
    field.echo = 1;
}

int main (int count, char **words) {
    const char        *picture     = count > 2 && !strcmp (words[1], "--picture") ? words[2] : nullptr;
    int                first       = picture ? 3 : 1;
    Window_Description description = {};
    description.title              = "Gallery of widgets";
    description.x                  = WINDOW_DEFAULT_POSITION;
    description.y                  = WINDOW_DEFAULT_POSITION;
    description.width              = count > first ? atoi (words[first]) : 800;
    description.height             = count > first + 1 ? atoi (words[first + 1]) : 600;
    description.background         = Drawing_Colour (170, 170, 170);
    description.procedure          = Procedure;
    description.off_screen         = picture != nullptr;

    Icon_Install_Path_Set (TAGWRIGHT_SOURCE_DIR "/");
    Fill_Widgets ();
    Window window = Window_Create (&description);
    if (!window) {
        fprintf (stderr, "%s\n", Window_Error_Text ());
        return 1;
    }
    Fill_List ();
    if (picture) {
        Draw ();
        return !Drawing_Picture_Write (window, picture);
    }
    Window_Show (window);
    return Window_Loop ();
}
