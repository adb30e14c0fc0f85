// Message boxes: small windows of our own that nothing else passes by until they are answered. The library has boxes, too,
// but they show nothing where an X server lacks its old bitmap fonts, as most do today.
#include "platform/drawing.h"
#include "platform/sdl/private.h"
#include "platform/window.h"

#include <string.h>

static const int MARGIN        = 20;
static const int ICON_SIZE     = 36;
static const int TEXT_WIDTH    = 560; // Longer lines are broken.
static const int LINE_LIMIT    = 40;  // What is too long for a screen is cut.
static const int BUTTON_WIDTH  = 84;
static const int BUTTON_HEIGHT = 28;

static const uint32_t BACKGROUND = Drawing_Colour (242, 242, 242);
static const uint32_t SURFACE    = Drawing_Colour (225, 225, 225);
static const uint32_t EDGE       = Drawing_Colour (150, 150, 150);
static const uint32_t FOCUS      = Drawing_Colour (64, 64, 230);
static const uint32_t BLACK      = Drawing_Colour (0, 0, 0);
static const uint32_t WHITE      = Drawing_Colour (255, 255, 255);

struct Box_Line {
    const char *text; // Borrowed from the caller's.
    int         length;
};

// There is one box at a time, since nothing that is shown meanwhile could ask for another.
struct Box {
    Window_Icon icon;
    const char *labels[2];
    int         label_count;
    int         focused; // The button that Enter presses.
    int         pressed; // The one that the mouse has taken, or -1.
    int         answer;  // The button pressed at last, or -1.
    int         done;
    Box_Line    lines[LINE_LIMIT];
    int         line_count;
    int         line_height;
    int         text_width; // Of the longest line.
};
static Box box;

// --- layout ----------------------------------------------------------------

static int Is_Inside_A_Character (char c) { return ((unsigned char)c & 0xC0) == 0x80; }

// How much of a line fits into the width: whole words when possible, and one character at least.
static int Fitting (Drawing drawing, const char *text, int length) {
    if (Drawing_Text_Width (drawing, nullptr, text, length) <= TEXT_WIDTH) return length;
    int fitting = 0, word = 0;
    for (int end = 1; end <= length; end++) {
        if (end < length && Is_Inside_A_Character (text[end])) continue;
        if (fitting && Drawing_Text_Width (drawing, nullptr, text, end) > TEXT_WIDTH) break;
        fitting = end;
        if (text[end - 1] == ' ') word = end;
    }
    return word ? word : fitting;
}

static void Line_Add (Drawing drawing, const char *text, int length) {
    int width                   = Drawing_Text_Width (drawing, nullptr, text, length);
    box.lines[box.line_count++] = {text, length};
    if (width > box.text_width) box.text_width = width;
}

static void Lines_Lay_Out (Drawing drawing, const char *text) {
    for (const char *at = text; *at && box.line_count < LINE_LIMIT;) {
        int length = (int)strcspn (at, "\n");
        do {
            int part = Fitting (drawing, at, length);
            Line_Add (drawing, at, part);
            at += part;
            length -= part;
        } while (length > 0 && box.line_count < LINE_LIMIT);
        if (*at == '\n') at++;
    }
}

static int Text_Left (void) { return box.icon == WINDOW_ICON_NONE ? MARGIN : 2 * MARGIN + ICON_SIZE; }

static Area Button_Area (Window window, int button) {
    int right = window->width - MARGIN - (box.label_count - 1 - button) * (BUTTON_WIDTH + 10);
    return {right - BUTTON_WIDTH, MARGIN, right, MARGIN + BUTTON_HEIGHT};
}

static int Button_At (Window window, int x, int y) {
    for (int button = 0; button < box.label_count; button++) {
        Area area = Button_Area (window, button);
        if (x >= area.left && x < area.right && y >= area.bottom && y < area.top) return button;
    }
    return -1;
}

static void Size_Set (Window_Description *description) {
    int buttons         = box.label_count * (BUTTON_WIDTH + 10);
    int text            = box.line_count * box.line_height;
    int width           = Text_Left () + box.text_width + MARGIN;
    description->width  = width > buttons + 2 * MARGIN + 100 ? width : buttons + 2 * MARGIN + 100;
    description->height = 3 * MARGIN + BUTTON_HEIGHT + (text > ICON_SIZE ? text : ICON_SIZE);
}

// --- drawing ---------------------------------------------------------------

static void Draw_Middle (Drawing drawing, Drawing_Font font, const Area *area, const char *text, uint32_t colour) {
    Drawing_Font_Metrics metrics;
    int                  length = (int)strlen (text);
    Drawing_Font_Measure (drawing, font, &metrics);
    int width = Drawing_Text_Width (drawing, font, text, length);
    Drawing_Text (drawing, font, (area->left + area->right - width) / 2,
                  (area->bottom + area->top - metrics.height) / 2, text, length, colour);
}

static void Draw_Icon (Drawing drawing, const Area *area) {
    static const struct {
        const char *sign;
        uint32_t    colour;
    } LOOKS[] = {{"", 0},
                 {"i", Drawing_Colour (40, 90, 180)},
                 {"!", Drawing_Colour (200, 130, 0)},
                 {"!", Drawing_Colour (190, 30, 30)},
                 {"?", Drawing_Colour (40, 90, 180)}};
    if (box.icon == WINDOW_ICON_NONE) return;
    Drawing_Font font = Drawing_Font_Create (nullptr, 26, 1, 0);
    Drawing_Fill (drawing, area->left, area->bottom, area->right, area->top, LOOKS[box.icon].colour);
    Draw_Middle (drawing, font, area, LOOKS[box.icon].sign, WHITE);
    Drawing_Font_Free (font);
}

static void Draw_Button (Window window, Drawing drawing, int button) {
    Area area   = Button_Area (window, button);
    int  border = button == box.focused ? 2 : 1;
    Drawing_Fill (drawing, area.left, area.bottom, area.right, area.top, border == 2 ? FOCUS : EDGE);
    Drawing_Fill (drawing, area.left + border, area.bottom + border, area.right - border, area.top - border,
                  button == box.pressed ? EDGE : SURFACE);
    Draw_Middle (drawing, nullptr, &area, box.labels[button], BLACK);
}

static void Draw (Window window) {
    Drawing drawing = Drawing_Begin (window);
    if (!drawing) return;
    int  top  = window->height - MARGIN;
    Area icon = {MARGIN, top - ICON_SIZE, MARGIN + ICON_SIZE, top};
    Drawing_Fill (drawing, 0, 0, window->width, window->height, BACKGROUND);
    Draw_Icon (drawing, &icon);
    for (int i = 0; i < box.line_count; i++)
        Drawing_Text (drawing, nullptr, Text_Left (), top - (i + 1) * box.line_height, box.lines[i].text,
                      box.lines[i].length, BLACK);
    for (int button = 0; button < box.label_count; button++) Draw_Button (window, drawing, button);
    Drawing_End (drawing);
}

// --- answering -------------------------------------------------------------

static void Press (int button) {
    box.answer = button;
    box.done   = 1;
}

static void On_Character (Window window, uint32_t character) {
    if (character == 13 || character == ' ') Press (box.focused);
    if (character == 27) Press (box.label_count - 1);
    if (character == 9) box.focused = (box.focused + 1) % box.label_count;
    Window_Invalidate (window);
}

static void On_Arrow (Window window, int key) {
    if (key == WINDOW_KEY_LEFT) box.focused = 0;
    if (key == WINDOW_KEY_RIGHT) box.focused = box.label_count - 1;
    Window_Invalidate (window);
}

static void On_Button (Window window, const Window_Event *event) {
    int button = event->button == WINDOW_BUTTON_LEFT ? Button_At (window, event->x, event->y) : -1;
    if (event->kind == WINDOW_BUTTON_UP && button >= 0 && button == box.pressed) Press (button);
    box.pressed = event->kind == WINDOW_BUTTON_DOWN ? button : -1;
    Window_Invalidate (window);
}

static int Box_Procedure (Window window, const Window_Event *event) {
    switch (event->kind) {
    case WINDOW_PAINT: Draw (window); return 1;
    case WINDOW_CHARACTER: On_Character (window, event->character); return 1;
    case WINDOW_KEY_DOWN: On_Arrow (window, event->key); return 1;
    case WINDOW_BUTTON_DOWN:
    case WINDOW_BUTTON_UP: On_Button (window, event); return 1;
    default: return 0;
    }
}

// --- the box ---------------------------------------------------------------

static int Onto_Screen (int place, int size, int start, int screen) {
    int last = start + screen - size;
    if (place > last) place = last;
    return place < start ? start : place;
}

// In the middle of its parent, but whole on the screen.
static void Place_Set (Window parent, Window_Description *description) {
    int      x, y;
    SDL_Rect screen = {};
    SDL_GetWindowPosition (parent->shown, &x, &y);
    x += (parent->width - description->width) / 2;
    y += (parent->height - description->height) / 2;
    int known      = !SDL_GetDisplayUsableBounds (SDL_GetWindowDisplayIndex (parent->shown), &screen);
    description->x = known ? Onto_Screen (x, description->width, screen.x, screen.w) : x;
    description->y = known ? Onto_Screen (y, description->height, screen.y, screen.h) : y;
}

static void Lay_Out (Window parent, const char *text, Window_Description *description) {
    static Drawing_Record measuring; // Texts are measured alike everywhere.
    measuring = {parent, {}};
    Drawing_Font_Metrics metrics;
    Drawing_Font_Measure (&measuring, nullptr, &metrics);
    box.line_height = metrics.height + 3;
    Lines_Lay_Out (&measuring, text);
    Size_Set (description);
    Place_Set (parent, description);
}

int Box_Show (Window owner, const char *text, const char *caption, Window_Icon icon, int question) {
    Window parent = owner && owner->shown ? owner : Window_On_Screen ();
    if (!parent || icon < WINDOW_ICON_NONE || icon > WINDOW_ICON_QUESTION) return -1;
    box                            = {};
    box.icon                       = icon;
    box.labels[0]                  = question ? "Yes" : "OK";
    box.labels[1]                  = "No";
    box.label_count                = question ? 2 : 1;
    box.pressed                    = -1;
    box.answer                     = -1;
    Window_Description description = {caption, 0, 0, 0, 0, BACKGROUND, Box_Procedure, 0, 0};
    Lay_Out (parent, text ? text : "", &description);

    Window window = Window_Create (&description);
    if (!window) return -1;
    SDL_SetWindowResizable (window->shown, SDL_FALSE);
    SDL_SetWindowModalFor (window->shown, parent->shown);
    Window_Alone (window, &box.done);
    return box.answer == 0;
}
