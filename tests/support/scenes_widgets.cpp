// Scenes of sliders, boxes and buttons.
#include <initializer_list>
#include <memory>

#include "tests/support/scenes.h"
#include "tools/buttons.h"
#include "tools/device.h"
#include "tools/sliders.h"

static void Place (Widget *widget, int x, int y, int w, int h, uint32_t state) {
    widget->state     = state;
    widget->name      = "scene";
    widget->x         = static_cast<int16_t> (x);
    widget->y         = static_cast<int16_t> (y);
    widget->w         = static_cast<int16_t> (w);
    widget->h         = static_cast<int16_t> (h);
    widget->colour[0] = widget->colour[1] = widget->colour[2] = 190;
}

// --- sliders ---------------------------------------------------------------

// What is done with the mouse: a press at an offset along the slider, and from there a move.
struct Slider_Case {
    const char *label;
    uint32_t    state;
    int         value, visible; // Of 100.
    int         press, move;    // 0: none. The offset; by how many pixels.
};

static void Press (Slider *slider, const Slider_Case &item) {
    const bool vertical = (item.state & WIDGET_VERTICAL) != 0;
    for (int by = 0; by <= item.move; by += item.move ? item.move : 1) {
        const int along = item.press + by;
        Device::Pointer_Set (slider->widget.x + (vertical ? 8 : along), slider->widget.y + (vertical ? along : 8));
        if (!Sliders::Select (slider, by ? MOUSE_HELD : MOUSE_PRESSED)) continue;
        slider->value = Sliders::Read (slider);
        Sliders::Adjust (slider);
    }
}

static void Draw_Slider (Window window, int x, int y, int w, int h, const Slider_Case &item) {
    std::unique_ptr<Slider> slider = std::make_unique<Slider> ();
    Place (&slider->widget, x, y, w, h, item.state);
    slider->maximum = 100;
    slider->value   = static_cast<float> (item.value);
    slider->step    = 10;
    Sliders::Init (slider.get (), window);
    Sliders::Proportion (slider.get (), item.visible, 100);
    Sliders::Draw (slider.get ());
    if (item.press) Press (slider.get (), item);
    Sliders::Exit (slider.get ());
}

static const uint32_t RIGHT_TO_LEFT = SLIDER_HORIZONTAL | WIDGET_REVERSED;
static const uint32_t UPWARDS       = SLIDER_HORIZONTAL | WIDGET_VERTICAL;

void Scene_Sliders_Across (Window window) {
    static const Slider_Case CASES[] = {
        {"Minimum", SLIDER_HORIZONTAL, 0, 30, 0, 0},
        {"Middle", SLIDER_HORIZONTAL, 50, 30, 0, 0},
        {"Maximum", SLIDER_HORIZONTAL, 100, 30, 0, 0},
        {"Reversed minimum", RIGHT_TO_LEFT, 0, 30, 0, 0},
        {"Short thumb", SLIDER_HORIZONTAL, 40, 1, 0, 0},
        {"Long thumb", SLIDER_HORIZONTAL, 40, 85, 0, 0},
        {"All seen", SLIDER_HORIZONTAL, 0, 100, 0, 0},
        {"Left arrow pressed", SLIDER_HORIZONTAL, 50, 30, 5, 0},
        {"Right arrow pressed", SLIDER_HORIZONTAL, 50, 30, 205, 0},
        {"Track pressed", SLIDER_HORIZONTAL, 0, 30, 180, 0},
        {"Dragged", SLIDER_HORIZONTAL, 50, 30, 105, 30},
        {"Disabled", SLIDER_HORIZONTAL_DISABLED, 0, 100, 0, 0},
        {"Hidden", SLIDER_HORIZONTAL | WIDGET_HIDDEN, 0, 30, 0, 0},
    };
    int y = 12 * 24 + 8;
    for (const Slider_Case &item : CASES) {
        Draw_Slider (window, 128, y, 210, 16, item);
        Scene_Label (window, 8, y + 4, item.label);
        y -= 24;
    }
}

void Scene_Sliders_Upright (Window window) {
    static const Slider_Case CASES[] = {
        {"First", SLIDER_VERTICAL, 0, 30, 0, 0},    {"Middle", SLIDER_VERTICAL, 50, 30, 0, 0},
        {"Last", SLIDER_VERTICAL, 100, 30, 0, 0},   {"Upwards", UPWARDS, 0, 30, 0, 0},
        {"Short", SLIDER_VERTICAL, 40, 1, 0, 0},    {"Up", SLIDER_VERTICAL, 50, 30, 205, 0},
        {"Down", SLIDER_VERTICAL, 50, 30, 5, 0},    {"Page", SLIDER_VERTICAL, 0, 30, 40, 0},
        {"Drag", SLIDER_VERTICAL, 50, 30, 105, 30}, {"Disabled", SLIDER_VERTICAL_DISABLED, 0, 100, 0, 0},
    };
    int x = 16;
    for (const Slider_Case &item : CASES) {
        Draw_Slider (window, x, 24, 16, 210, item);
        Scene_Label (window, x - 8, 6, item.label);
        x += 48;
    }
}

// From one that has no room for anything to one of another thickness.
void Scene_Slider_Sizes (Window window) {
    int x = 8;
    for (int length : {6, 12, 16, 24, 32, 36, 44, 56, 80}) {
        Draw_Slider (window, x, 96, length, 16, {"", SLIDER_HORIZONTAL, 50, 50, 0, 0});
        Draw_Slider (window, x, 72, length, 16, {"", SLIDER_HORIZONTAL_DISABLED, 50, 50, 0, 0});
        x += length + 12;
    }
    x = 8;
    for (int thickness : {4, 8, 12, 24, 48}) {
        Draw_Slider (window, x, 8, 70, thickness < 48 ? thickness : 52, {"", SLIDER_HORIZONTAL, 50, 50, 0, 0});
        x += 82;
    }
}

// --- boxes and buttons -----------------------------------------------------

// A ramp that a picture's place and size are seen by.
static const Tools::Picture *Picture (int highlighted) {
    enum { W = 48, H = 20 };
    static uint8_t              pixels[2][W * H * 4];
    static const Tools::Picture pictures[2] = {{pixels[0], W, H}, {pixels[1], W, H}};
    uint8_t                    *pixel       = pixels[highlighted];
    for (int y = 0; y < H; y++)
        for (int x = 0; x < W; x++, pixel += 4) {
            const bool edge = x == 0 || y == 0 || x == W - 1 || y == H - 1;
            pixel[0]        = static_cast<uint8_t> (edge ? 0 : highlighted ? 90 : 220 - y * 4);
            pixel[1]        = static_cast<uint8_t> (edge ? 0 : 120 + x * 2);
            pixel[2]        = static_cast<uint8_t> (edge ? 0 : highlighted ? 250 : 90);
            pixel[3]        = 255;
        }
    return &pictures[highlighted];
}

struct Box_Case {
    const char *caption;
    uint32_t    state;
    const char *label;
    int         under_pointer, with_picture;
    int16_t     margin;
};

// Boxes and buttons have the same look in a record of their own.
template <class Record>
static void Draw_Case (Window window, Drawing_Font font, int x, int y, int w, int h, const Box_Case &item,
                       void (*init) (Record *, Window), void (*draw) (Record *), int (*select) (Record *, int),
                       void (*leave) (Record *)) {
    Record record = {};
    Place (&record.widget, x, y, w, h, item.state);
    record.look.label  = item.label;
    record.look.font   = font;
    record.look.margin = item.margin;
    if (item.with_picture) {
        record.look.image           = Picture (0);
        record.look.image_highlight = Picture (1);
    }
    init (&record, window);
    draw (&record);
    Device::Pointer_Set (x + 3, y + 3);
    if (item.under_pointer) select (&record, MOUSE_MOVED);
    leave (&record);
    Scene_Label (window, x, y - 14, item.caption);
}

static const int COLUMN = 96, ROW = 68;

void Scene_Boxes (Window window) {
    static const Box_Case CASES[] = {
        {"Normal", 0, "Patient", 0, 0, 0},
        {"Highlighted", 0, "Patient", 1, 0, 0},
        {"Wide inset", WIDGET_INSET_WIDE, "Patient", 1, 0, 0},
        {"Fixed", WIDGET_FIXED, "Patient", 1, 0, 0},
        {"Inactive", WIDGET_INACTIVE, "Patient", 1, 0, 0},
        {"Label free", WIDGET_LABEL_FREE, "Patient", 0, 0, 0},
        {"Label at the bottom", WIDGET_ALIGN_BOTTOM, "Patient", 1, 0, 0},
        {"Label left, blue", WIDGET_LABEL_FREE | WIDGET_ALIGN_LEFT | WIDGET_TEXT_BLUE, "Patient", 0, 0, 0},
        {"Picture", 0, nullptr, 0, 1, 0},
        {"Picture highlighted", 0, nullptr, 1, 1, 0},
        {"No outline", WIDGET_NO_OUTLINE, nullptr, 0, 0, 0},
    };
    Drawing_Font font = Y_Create_Font (window, "Arial", "medium", "r", 9);
    int          i    = 0;
    for (const Box_Case &item : CASES) {
        Draw_Case<Box_Widget> (window, font, 8 + i % 4 * COLUMN, 24 + (2 - i / 4) * ROW, 84, 44, item, Boxs::Init,
                               Box::Draw, Box::Select, Boxs::Exit);
        i++;
    }
    for (int size : {0, 1, 2, 3, 5, 8, 12}) {
        Draw_Case<Box_Widget> (window, font, 304 + size * 6, 24, size, size ? 44 : 20, {"", 0, nullptr, 0, 0, 0},
                               Boxs::Init, Box::Draw, Box::Select, Boxs::Exit);
    }
    Scene_Label (window, 304, 10, "Widths 0 to 12");
    Drawing_Font_Free (font);
}

void Scene_Buttons (Window window) {
    static const uint32_t ACROSS  = WIDGET_ARROWS | WIDGET_ARROWS_ACROSS;
    static const Box_Case CASES[] = {
        {"Normal", WIDGET_LABEL_FREE, "Open", 0, 0, 0},
        {"Highlighted", WIDGET_LABEL_FREE, "Open", 1, 0, 0},
        {"Inactive", WIDGET_LABEL_FREE | WIDGET_INACTIVE, "Open", 0, 0, 0},
        {"Picture", 0, nullptr, 0, 1, 0},
        {"Arrows", WIDGET_ARROWS, nullptr, 0, 0, 0},
        {"Arrows highlighted", WIDGET_ARROWS, nullptr, 1, 0, 0},
        {"Arrows inactive", ACROSS | WIDGET_INACTIVE, nullptr, 0, 0, 0},
        {"Arrows, label", ACROSS | WIDGET_LABEL_FREE, "1", 0, 0, 0},
    };
    Drawing_Font font = Y_Create_Font (window, "Arial", "medium", "r", 9);
    int          i    = 0;
    for (const Box_Case &item : CASES) {
        const int h = item.state & WIDGET_ARROWS_ACROSS ? 30 : 44;
        Draw_Case<Button_Widget> (window, font, 8 + i % 4 * COLUMN, 24 + (1 - i / 4) * ROW, 84, h, item, Buttons::Init,
                                  Button::Draw, Button::Select, Buttons::Exit);
        i++;
    }
    Drawing_Font_Free (font);
}

// As in the main window: their ends lie outside.
void Scene_Separators (Window window) {
    static const int PLACES[][4] = {
        {-4, 100, 408, 8}, {-4, 70, 408, 8}, {100, -4, 8, 75}, {200, -4, 8, 75}, {300, 10, 40, 8}};
    int i = 0;
    for (const int *place : PLACES) {
        const Box_Case item = {"", 0, nullptr, i & 1, 0, 1};
        Draw_Case<Button_Widget> (window, nullptr, place[0], place[1], place[2], place[3], item, Buttons::Init,
                                  Button::Draw, Button::Select, Buttons::Exit);
        i++;
    }
}
