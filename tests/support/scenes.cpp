#include "tests/support/scenes.h"

#include <initializer_list>
#include <stdio.h>

#include "tools/primitives.h"

// --- for scenes ------------------------------------------------------------

Window Scene_Window (const Scene *scene) {
    Window_Description description = {};
    description.title              = scene->name;
    description.width              = scene->width;
    description.height             = scene->height;
    description.background         = SCENE_BACKGROUND;
    description.off_screen         = 1;
    Window window                  = Window_Create (&description);
    if (window) scene->draw (window);
    return window;
}

void Scene_Label (Window window, int x, int y, const char *text) {
    Drawing_Font font = Y_Create_Font (window, "Arial", "medium", "r", 7);
    if (Device::Begin (window, nullptr, "Scene_Label")) {
        Tools::DrawText (font, x, y, text, Drawing_Colour (60, 60, 60));
        Device::End ();
    }
    Drawing_Font_Free (font);
}

Scene_Widget::Scene_Widget (Window window, int x, int y, int w, int h, int red, int green, int blue, uint32_t state) {
    widget.state     = state;
    widget.name      = "scene";
    widget.x         = static_cast<int16_t> (x);
    widget.y         = static_cast<int16_t> (y);
    widget.w         = static_cast<int16_t> (w);
    widget.h         = static_cast<int16_t> (h);
    widget.colour[0] = static_cast<int16_t> (red);
    widget.colour[1] = static_cast<int16_t> (green);
    widget.colour[2] = static_cast<int16_t> (blue);
    Widget_Init (&widget, window, "Scene_Widget");
}

Scene_Widget::~Scene_Widget () { Widget_Exit (&widget); }

// --- fills -----------------------------------------------------------------

static const int FILL_PITCH = 72;

static void Fill_Own (Widget *widget, int x1, int x2, int y1, int y2) { Tools::Fill (widget, 0, x1, x2, y1, y2); }

static void Fill_Nothing (Widget *widget, int x1, int x2, int y1, int y2) {
    Tools::Fill (widget, FILL_NONE, x1, x2, y1, y2);
}

static void Fill_Cleared (Widget *widget, int, int, int, int) { Tools::Clear (widget); }

struct Fill_Case {
    const char *label;
    void (*fill) (Widget *widget, int x1, int x2, int y1, int y2);
};

// Each active and inactive, in a frame that the fill must not touch at its right and lower side.
static void Scene_Fills (Window window) {
    static const Fill_Case CASES[] = {
        {"Fill", Fill_Own},       {"Blue", Tools::Fill_Blue},     {"Grey", Tools::Fill_Grey},
        {"Red", Tools::Fill_Red}, {"Yellow", Tools::Fill_Yellow}, {"Green", Tools::Fill_Green},
        {"None", Fill_Nothing},   {"Clear", Fill_Cleared},
    };
    int x = 8;
    for (const Fill_Case &item : CASES) {
        for (uint32_t state : {0u, static_cast<uint32_t> (WIDGET_INACTIVE)}) {
            const int    y = state ? 24 : 64;
            Scene_Widget framed (window, x, y, 56, 28, 240, 200, 160, state);
            Tools::Cadre (&framed.widget, 0, Tools::CADRE_RAISED, 0, x, x + 56, y, y + 28);
            item.fill (&framed.widget, x, x + 56, y, y + 28);
        }
        Scene_Label (window, x, 6, item.label);
        x += FILL_PITCH;
    }
}

// --- pictures --------------------------------------------------------------

static const int PICTURE_W = 40, PICTURE_H = 24;

// A ramp from red to green with a blue top row and a white left column; its alpha falls from top to bottom.
static const uint8_t *Picture_Pixels (void) {
    static uint8_t pixels[PICTURE_W * PICTURE_H * 4];
    uint8_t       *pixel = pixels;
    for (int y = 0; y < PICTURE_H; y++)
        for (int x = 0; x < PICTURE_W; x++, pixel += 4) {
            const int ramp = x * 255 / (PICTURE_W - 1);
            pixel[0]       = y < 2 || x < 2 ? 255 : 0;
            pixel[1]       = static_cast<uint8_t> (x < 2 ? 255 : y < 2 ? 0 : ramp);
            pixel[2]       = static_cast<uint8_t> (x < 2 ? 255 : y < 2 ? 0 : 255 - ramp);
            pixel[3]       = static_cast<uint8_t> (255 - y * 10);
        }
    return pixels;
}

static void Select_Case (Window window, int x, const char *label, int selected, const Tools::Picture *image,
                         uint32_t flags, int inset) {
    Scene_Widget framed (window, x, 24, 64, 40);
    Tools::Clear (&framed.widget);
    Tools::Cadre (&framed.widget, 0, Tools::CADRE_RAISED, 2, x, x + 64, 24, 64);
    Tools::Fill_Select (&framed.widget, selected, image, flags, inset, x, x + 65, 23, 64);
    Scene_Label (window, x, 6, label);
}

static void Scene_Selects (Window window) {
    const Tools::Picture picture = {Picture_Pixels (), PICTURE_W, PICTURE_H};
    Select_Case (window, 8, "Normal", 0, nullptr, 0, 4);
    Select_Case (window, 88, "Selected", 1, nullptr, 0, 4);
    Select_Case (window, 168, "None", 1, nullptr, FILL_NONE, 4);
    Select_Case (window, 248, "Picture", 1, &picture, 0, 4);
    Select_Case (window, 328, "Picture, cut", 1, &picture, 0, 16);
    Select_Case (window, 408, "All inset", 1, nullptr, 0, 33);
}

struct Image_Case {
    const char *label;
    int         dx, dy, source_x, source_y, w, h;
    uint32_t    background;
};

// Each in a frame of the image's size; the last two are cut by the frame, as by the window's edge.
static void Scene_Images (Window window) {
    static const Image_Case CASES[] = {
        {"Copied", 0, 0, 0, 0, PICTURE_W, PICTURE_H, 0},
        {"On white", 0, 0, 0, 0, PICTURE_W, PICTURE_H, Drawing_Colour (255, 255, 255)},
        {"On blue", 0, 0, 0, 0, PICTURE_W, PICTURE_H, Drawing_Colour (0, 0, 255)},
        {"On black", 0, 0, 0, 0, PICTURE_W, PICTURE_H, 0xFF000000},
        {"A part", 8, 6, 16, 8, 16, 10, 0},
        {"Beyond left", 0, 0, -12, -6, PICTURE_W, PICTURE_H, 0},
        {"Beyond right", 0, 0, 20, 0, PICTURE_W, PICTURE_H, 0},
        {"Clipped", 20, 12, 0, 0, PICTURE_W, PICTURE_H, 0},
    };
    int x = 8;
    for (const Image_Case &item : CASES) {
        Scene_Widget framed (window, x, 24, PICTURE_W + 1, PICTURE_H + 1);
        Tools::Cadre (&framed.widget, 0, Tools::CADRE_RAISED, 0, x, x + PICTURE_W + 1, 24, 24 + PICTURE_H + 1);
        if (Device::Begin (window, nullptr, "Scene_Images")) {
            Device::ClipTo (x + 1, 24, PICTURE_W, PICTURE_H);
            Device::Draw_Image (x + 1 + item.dx, 25 + item.dy, Picture_Pixels (), item.source_x, item.source_y, item.w,
                                item.h, PICTURE_W, item.background);
            Device::End ();
        }
        Scene_Label (window, x, 6, item.label);
        x += 68;
    }
}

// --- frames ----------------------------------------------------------------

static void Cadre_Row (Window window, int y, const char *label, uint32_t state, int direction) {
    for (int depth = 0; depth <= 4; depth++) {
        const int    x = 96 + depth * 48;
        Scene_Widget framed (window, x, y, 36, 24);
        Tools::Clear (&framed.widget);
        Tools::Cadre (&framed.widget, state, direction, depth, x, x + 36, y, y + 24);
    }
    Scene_Label (window, 8, y + 8, label);
}

static void Scene_Cadres (Window window) {
    Cadre_Row (window, 136, "Raised", 0, Tools::CADRE_RAISED);
    Cadre_Row (window, 100, "Sunken", 0, Tools::CADRE_SUNKEN);
    Cadre_Row (window, 64, "Raised, bare", WIDGET_NO_OUTLINE, Tools::CADRE_RAISED);
    Cadre_Row (window, 28, "Sunken, bare", WIDGET_NO_OUTLINE, Tools::CADRE_SUNKEN);
    Scene_Widget framed (window, 344, 136, 36, 24);
    Tools::Clear (&framed.widget);
    Tools::Cadre (&framed.widget, 0, Tools::CADRE_RAISED, 0, 344, 380, 136, 160);
    Tools::Cadre_Outline (&framed.widget, 344, 380, 136, 160);
    Scene_Label (window, 344, 120, "Outline");
    for (int depth = 0; depth <= 4; depth++) {
        char text[32];
        snprintf (text, sizeof text, "Depth %d", depth);
        Scene_Label (window, 96 + depth * 48, 8, text);
    }
}

// --- arrows ----------------------------------------------------------------

static void Arrow_Group (Window window, int x, int y, int size, int pressed, uint32_t state) {
    for (int direction = Tools::ARROW_LEFT; direction <= Tools::ARROW_DOWN; direction++, x += size + 6) {
        Scene_Widget button (window, x, y, size, size, 170, 170, 170);
        Tools::Clear (&button.widget);
        Tools::Cadre (&button.widget, 0, pressed ? Tools::CADRE_SUNKEN : Tools::CADRE_RAISED, 1, x, x + size, y,
                      y + size);
        button.widget.state = state;
        Tools::Arrow (&button.widget, direction, pressed, x, x + size, y, y + size);
    }
}

static void Scene_Arrows (Window window) {
    static const int SIZES[] = {10, 13, 16, 24};
    int              x       = 64;
    for (int size : SIZES) {
        Arrow_Group (window, x, 84, size, 0, 0);
        Arrow_Group (window, x, 48, size, 1, 0);
        Arrow_Group (window, x, 12, size, 0, WIDGET_INACTIVE);
        x += 4 * (size + 6) + 16;
    }
    Scene_Label (window, 8, 88, "Raised");
    Scene_Label (window, 8, 52, "Pressed");
    Scene_Label (window, 8, 16, "Inactive");
}

// --- texts -----------------------------------------------------------------

struct Text_Case {
    const char *label, *text;
    uint32_t    flags;
};

static void Draw_Text_Case (Window window, Drawing_Font font, int x, int y, int w, int h, const Text_Case &item) {
    const int    dark = item.flags & WIDGET_TEXT_WHITE ? 90 : 220;
    Scene_Widget framed (window, x, y, w, h, dark, dark, dark);
    Tools::Clear (&framed.widget);
    Tools::Cadre (&framed.widget, WIDGET_NO_OUTLINE, Tools::CADRE_SUNKEN, 1, x, x + w, y, y + h);
    Tools::Text (&framed.widget, font, item.text, item.flags, x, y, w, h, 3);
    if (item.label) Scene_Label (window, x, y - 14, item.label);
}

static const uint32_t ALIGNMENTS_X[] = {WIDGET_ALIGN_LEFT, 0, WIDGET_ALIGN_RIGHT};
static const uint32_t ALIGNMENTS_Y[] = {WIDGET_ALIGN_TOP, 0, WIDGET_ALIGN_BOTTOM};

static void Scene_Text_Alignment (Window window) {
    static const char *const TEXTS[3][3] = {
        {"Top left", "Top", "Top right"}, {"Left", "Centre", "Right"}, {"Bottom left", "Bottom", "Bottom right"}};
    Drawing_Font font = Y_Create_Font (window, "Arial", nullptr, nullptr, 10);
    for (int row = 0; row < 3; row++)
        for (int column = 0; column < 3; column++)
            Draw_Text_Case (window, font, 8 + column * 128, 104 - row * 48, 116, 40,
                            {nullptr, TEXTS[row][column], ALIGNMENTS_X[column] | ALIGNMENTS_Y[row]});
    Drawing_Font_Free (font);
}

static void Scene_Text_Kinds (Window window) {
    static const Text_Case CASES[] = {
        {"Black", "Patient's Name", 0},
        {"Blue", "Patient's Name", WIDGET_TEXT_BLUE},
        {"White", "Patient's Name", WIDGET_TEXT_WHITE},
        {"Cut, left", "Image Orientation (Patient)", WIDGET_ALIGN_LEFT},
        {"Cut, centred", "Image Orientation (Patient)", 0},
        {"Cut, right", "Image Orientation (Patient)", WIDGET_ALIGN_RIGHT},
        {"Mnemonics", "&Open && &close", 0},
        {"Tabs", "a\tb\tlong\tc", WIDGET_ALIGN_LEFT},
        {"UTF-8",
         "Gr\xC3\xBC\xC3\x9F"
         "e \xC3\xA0 \xC3\x89ric",
         0},
        {"Single bytes",
         "Gr\xFC\xDF"
         "e \xE0 \xC9ric",
         0},
        {"System font", "Patient's Name", 0},
        {"Bold", "Patient's Name", 0},
    };
    Drawing_Font plain = Y_Create_Font (window, "Arial", nullptr, nullptr, 10);
    Drawing_Font bold  = Y_Create_Font (window, "Arial", "bold", nullptr, 10);
    for (int i = 0; i < 12; i++) {
        Drawing_Font font = i == 10 ? nullptr : i == 11 ? bold : plain;
        Draw_Text_Case (window, font, 8 + i % 3 * 128, 164 - i / 3 * 48, 116, 24, CASES[i]);
    }
    Drawing_Font_Free (plain);
    Drawing_Font_Free (bold);
}

static void Scene_Text_Vertical (Window window) {
    Drawing_Font font = Y_Create_Font (window, "Arial", nullptr, nullptr, 8);
    for (int row = 0; row < 3; row++)
        for (int column = 0; column < 3; column++)
            Draw_Text_Case (window, font, 8 + (row * 3 + column) * 56, 8, 48, 96,
                            {nullptr, "D&own\xC3\xA9", WIDGET_VERTICAL | ALIGNMENTS_X[column] | ALIGNMENTS_Y[row]});
    Drawing_Font_Free (font);
}

// Lines with tab stops, and the end that DrawText gives for each.
static void Scene_Text_Tabs (Window window) {
    static const char *const LINES[] = {"Tag\tVR\tName", "0010\tPN\tPatient's Name", "0008,0005\tCS\tCharacter Set",
                                        "\t\tindented"};
    Drawing_Font             font    = Y_Create_Font (window, "Courier", nullptr, nullptr, 10);
    int                      y       = 72;
    if (!Device::Begin (window, nullptr, "Scene_Text_Tabs")) return;
    for (const char *line : LINES) {
        const int end = Tools::DrawText (font, 8, y, line, Drawing_Colour (0, 0, 0));
        Device::Colour_Set (Drawing_Colour (255, 0, 0));
        Device::FillRect (end, y - 1, end + 1, y + 14);
        y -= 20;
    }
    Device::End ();
    Drawing_Font_Free (font);
}

// --- all of them -----------------------------------------------------------

const Scene SCENES[] = {
    {"fills", 584, 100, Scene_Fills},
    {"selects", 480, 72, Scene_Selects},
    {"images", 552, 56, Scene_Images},
    {"cadres", 392, 168, Scene_Cadres},
    {"arrows", 488, 116, Scene_Arrows},
    {"text_alignment", 392, 152, Scene_Text_Alignment},
    {"text_kinds", 392, 196, Scene_Text_Kinds},
    {"text_vertical", 512, 112, Scene_Text_Vertical},
    {"text_tabs", 320, 96, Scene_Text_Tabs},
    {"sliders_across", 346, 324, Scene_Sliders_Across},
    {"sliders_upright", 496, 244, Scene_Sliders_Upright},
    {"slider_sizes", 438, 124, Scene_Slider_Sizes},
    {"boxes", 392, 214, Scene_Boxes},
    {"buttons", 392, 146, Scene_Buttons},
    {"separators", 400, 120, Scene_Separators},
    {"texts_help", 800, 152, Scene_Texts_Help},
    {"texts_codes", 417, 168, Scene_Texts_Codes},
    {"texts_scrolled", 753, 184, Scene_Texts_Scrolled},
    {"texts_slider", 761, 184, Scene_Texts_Slider},
    {"texts_typed", 761, 133, Scene_Texts_Typed},
    {"texts_narrow", 546, 117, Scene_Texts_Narrow},
};

const int SCENE_COUNT = sizeof SCENES / sizeof SCENES[0];
