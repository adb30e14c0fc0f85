// A field shows the last lines of a list that may be long, and is written to much more often than it is drawn. So a line
// is stored as it came, with its display codes, and its runs are found anew each time it is drawn; only rows that changed
// are drawn, and of a line no more than the field shows of it. What would surprise: of many lines written in a row some are
// left to the next paint event. See Is_Due.
#include "tools/texts.h"

#include <string.h>

#include <algorithm>

#include "tools/keyboard.h"
#include "tools/primitives.h"
#include "util/memory.h"
#include "util/text.h"

static const char *const MODULE = "texts";

static const int COLOUR       = 170; // Of each component, when the user chose none.
static const int LEFT_MARGIN  = 2;   // From the field's edge to its first character.
static const int FRAME        = 1;   // One ring: the characters begin close to it.
static const int RUN_LIMIT    = 512; // Bytes drawn with one call: a line may have a million.
static const int SMALLEST     = 30;  // A field narrower or lower than this has no slider.
static const int DEFAULT_LINE = 16;  // Pitch of a field that could not be measured.
static const int DEFAULT_TAB  = 32;  // Its way from one tab stop to the next.

// A tab stop is as wide as four characters of a heading. The legend of the main window counts on it: the heading of its
// first column is measured, so that the texts below reach the next column with the tabs that they have, in every size.
static const char *const TAB_SAMPLE = " Color code:";
static const int64_t     TAB_COUNT  = 3; // Stops that the sample covers.

// --- geometry --------------------------------------------------------------

// Pixels left <= x < right, bottom <= y < top.
struct Text_Area {
    int left, bottom, right, top;
};

static int Has_Size (const Text_Widget *text) { return text->widget.w > 0 && text->widget.h > 0; }

static int Has_Slider (const Text_Widget *text) { return !(text->slider.widget.state & WIDGET_HIDDEN); }

// Inside the frame, left of the slider.
static Text_Area Inside (const Text_Widget *text) {
    const Widget *widget = &text->widget;
    Text_Area     area   = {widget->x + FRAME, widget->y + FRAME, widget->x + widget->w + 1 - FRAME,
                            widget->y + widget->h + 1 - FRAME};
    if (Has_Slider (text)) area.right = text->slider.widget.x - LEFT_MARGIN;
    return area;
}

static int Pitch (const Text_Widget *text) { return text->pitch > 0 ? text->pitch : DEFAULT_LINE; }

static int Rows (const Text_Widget *text) {
    int rows = (text->widget.h + 1 - 2 * WIDGET_BORDER) / Pitch (text);
    return rows > 0 ? rows : 1;
}

int Texts::Visible_Lines (const Text_Widget *text) {
    int rows = Rows (text) - (text->echo ? 1 : 0);
    return rows > 0 ? rows : 1;
}

// The lowest pixels of a row's characters, 0 the highest row.
static int Row_Bottom (const Text_Widget *text, int row) {
    return text->widget.y + text->widget.h + 1 - WIDGET_BORDER - (row + 1) * Pitch (text);
}

static int Last_Top (const Text_Widget *text) {
    int hidden = text->line_count - Texts::Visible_Lines (text);
    return hidden > 0 ? hidden : 0;
}

// --- the list --------------------------------------------------------------

static Text_Line *Line_At (const Text_Widget *text, int index) {
    return &text->lines[(text->line_start + index) % TEXT_LINES];
}

const char *Texts::Line (const Text_Widget *text, int index) {
    return index >= 0 && index < text->line_count ? Line_At (text, index)->text : "";
}

// The bytes up to the next line feed. A carriage return before it belongs to the line's end.
static size_t Piece_Length (const char *line, const char **next) {
    const char *end    = strchr (line, '\n');
    size_t      length = end ? (size_t)(end - line) : strlen (line);
    *next              = line + length + (end ? 1 : 0);
    return length && line[length - 1] == '\r' ? length - 1 : length;
}

// None after the memory message.
static char *Copy (Text_Widget *text, const char *piece, size_t length) {
    Window window = text->widget.window;
    if (!text->lines) {
        size_t bytes = TEXT_LINES * sizeof (Text_Line);
        void  *ring  = Memory_Calloc (window, HERE ("text->lines", TEXT_LINES, sizeof (Text_Line)), bytes);
        text->lines  = static_cast<Text_Line *> (ring);
        if (!ring) return nullptr;
    }
    void *block = Memory_Text (window, HERE ("text->lines[].text", length + 1, 1), length + 1);
    char *copy  = static_cast<char *> (block);
    if (!copy) return nullptr;
    memcpy (copy, piece, length);
    copy[length] = 0;
    return copy;
}

// 1 when the oldest line made room.
static int Append (Text_Widget *text, char *copy) {
    int full = text->line_count == TEXT_LINES;
    if (full) {
        Memory_Free (Line_At (text, 0)->text);
        text->line_start = (text->line_start + 1) % TEXT_LINES;
    } else text->line_count++;
    *Line_At (text, text->line_count - 1) = {copy, 0};
    return full;
}

static void Replace_Last (Text_Widget *text, char *copy) {
    Text_Line *last = Line_At (text, text->line_count - 1);
    Memory_Free (last->text);
    *last = {copy, 0};
}

// Stores the text's lines, the first one in place of the last one when over is 1. How many of the oldest were dropped.
static int Store (Text_Widget *text, const char *line, int over) {
    int dropped = 0;
    do {
        const char *next;
        size_t      length = Piece_Length (line, &next);
        char       *copy   = Copy (text, line, length);
        if (copy && over && text->line_count) Replace_Last (text, copy);
        else if (copy) dropped += Append (text, copy);
        over = 0;
        line = next;
    } while (*line);
    return dropped;
}

static void Free_Lines (Text_Widget *text) {
    for (int i = 0; i < text->line_count; i++) Memory_Free (Line_At (text, i)->text);
    Memory_Free (text->lines);
    text->lines      = nullptr;
    text->line_start = text->line_count = text->line_top = text->scrolled = 0;
}

// --- a line's runs ---------------------------------------------------------

// What the bytes that are no characters do. A font is named by its place in Text_Widget.
struct Code {
    unsigned char byte;
    uint32_t      colour;
    Drawing_Font Text_Widget::*font; // None: the code sets the colour.
};

// clang-format off
static const Code CODES[] = {
    {0x01, Drawing_Colour (0, 0, 255),     nullptr},
    {0x02, Drawing_Colour (0, 0, 0),       nullptr},
    {0x03, Drawing_Colour (255, 255, 255), nullptr},
    {0x04, Drawing_Colour (255, 0, 0),     nullptr},
    {0x05, Drawing_Colour (255, 255, 0),   nullptr},
    {0x06, Drawing_Colour (0, 160, 0),     nullptr},
    {0xF0, 0,                              &Text_Widget::normal},
    {0xF1, 0,                              &Text_Widget::bold},
    {0xF2, 0,                              &Text_Widget::oblique},
};
// clang-format on

static const uint32_t BLACK = Drawing_Colour (0, 0, 0);

// What a line has come to while it is drawn.
struct Pen {
    Text_Widget *text;
    int          start; // x of the line's first character.
    int          y;
    int          right; // Nothing is seen from this x on.
    int          width; // Of the line so far.
    Drawing_Font font;
    uint32_t     colour;
};

static int Is_Continuation (char byte) { return (byte & 0xC0) == 0x80; }

// The byte of the code for the normal font also begins characters beyond U+FFFF, such as file names may hold.
static int Is_Long_Character (const char *byte) {
    return (unsigned char)byte[0] == 0xF0 && (unsigned char)byte[1] >= 0x90 && Is_Continuation (byte[1]) &&
           Is_Continuation (byte[2]) && Is_Continuation (byte[3]);
}

// None for a byte that is drawn.
static const Code *Code_At (const char *byte) {
    if (Is_Long_Character (byte)) return nullptr;
    for (const Code &code : CODES)
        if (code.byte == (unsigned char)*byte) return &code;
    return nullptr;
}

static void Take_Code (Pen *pen, const Code *code) {
    if (code->font) pen->font = pen->text->*code->font;
    else pen->colour = code->colour;
}

// A cut there would part the bytes of a character.
static int Whole_Characters (const char *run, int length) {
    int whole = length;
    while (whole > length - 4 && whole > 1 && Is_Continuation (run[whole])) whole--;
    return Is_Continuation (run[whole]) ? length : whole;
}

static int Run_Length (const char *run) {
    int length = 0;
    while (run[length] && run[length] != '\t' && !Code_At (run + length)) {
        length += Is_Long_Character (run + length) ? 4 : 1;
        if (length >= RUN_LIMIT) return Whole_Characters (run, length);
    }
    return length;
}

static void Draw_Run (Pen *pen, const char *run, int length) {
    Device::Draw_Run (pen->font, pen->start + pen->width, pen->y, run, length, pen->colour);
    pen->width += Device::Run_Width (pen->font, run, length);
}

// The first one behind this width.
static int Tab_Stop (const Text_Widget *text, int width) {
    int64_t tabs = text->tabs > 0 ? text->tabs : TAB_COUNT * DEFAULT_TAB;
    int64_t stop = (width * TAB_COUNT / tabs + 1) * tabs;
    return (int)((stop + TAB_COUNT - 1) / TAB_COUNT);
}

static void Draw_Line (Pen *pen, const char *line) {
    while (*line && pen->start + pen->width < pen->right) {
        const Code *code   = Code_At (line);
        int         length = 1;
        if (code) Take_Code (pen, code);
        else if (*line == '\t') pen->width = Tab_Stop (pen->text, pen->width);
        else {
            length = Run_Length (line);
            Draw_Run (pen, line, length);
        }
        line += length;
    }
}

static Pen Pen_At (Text_Widget *text, const Text_Area *area, int row) {
    return {text, text->widget.x + LEFT_MARGIN, Row_Bottom (text, row), area->right, 0, text->normal, BLACK};
}

// --- drawing ---------------------------------------------------------------

static int Can_Draw (const Text_Widget *text) {
    return text->widget.window && text->widget.validity & WIDGET_INITIALISED && Has_Size (text) && !Device::Is_Open ();
}

// By pixels; the device leaves the lower row out and takes the upper one in.
static void Fill (const Text_Area *area, uint32_t colour) {
    if (area->left >= area->right || area->bottom >= area->top) return;
    Device::Colour_Set (colour);
    Device::FillRect (area->left, area->bottom - 1, area->right, area->top - 1);
}

// The area, as far as the widget's own clip lets it be seen.
static void Clip (const Text_Widget *text, const Text_Area *area) {
    const Widget_Rectangle *clip = &text->widget.clip;
    Text_Area               seen = *area;
    if (clip->w) {
        seen.left   = std::max<int> (seen.left, clip->x);
        seen.bottom = std::max (seen.bottom, clip->y + 1);
        seen.right  = std::min (seen.right, clip->x + clip->w);
        seen.top    = std::min (seen.top, clip->y + clip->h + 1);
    }
    Device::ClipTo (seen.left, seen.bottom - 1, seen.right - seen.left, seen.top - seen.bottom);
}

// A line too long for the field is shown around its cursor.
static void Draw_Typed (Text_Widget *text, const Text_Area *area, int row) {
    Pen pen    = Pen_At (text, area, row);
    int length = (int)strnlen (text->text, TEXT_SIZE - 1);
    int before = Device::Run_Width (pen.font, text->text, std::clamp (text->cursor, 0, length));
    pen.start -= std::max (0, pen.start + before + LEFT_MARGIN - area->right);
    Text_Area bar = {pen.start + before, pen.y, pen.start + before + 1, pen.y + Pitch (text)};
    Draw_Run (&pen, text->text, length);
    Fill (&bar, BLACK);
}

static void Draw_Row (Text_Widget *text, const Text_Area *area, int row) {
    int index = text->line_top + row;
    if (row < Texts::Visible_Lines (text) && index < text->line_count) {
        Pen pen = Pen_At (text, area, row);
        Draw_Line (&pen, Line_At (text, index)->text);
        Line_At (text, index)->width = pen.width;
    } else if (text->echo) Draw_Typed (text, area, row);
}

// The row after the last line that is shown, where typing stands.
static int End_Row (const Text_Widget *text) {
    return std::min (text->line_count - text->line_top, Texts::Visible_Lines (text));
}

// From this row on, down to the frame.
static void Draw_Rows (Text_Widget *text, int first) {
    Text_Area area = Inside (text);
    Text_Area fill = area;
    int       last = End_Row (text) - (text->echo ? 0 : 1);
    if (!Widget_Begin (&text->widget, MODULE)) return;
    Clip (text, &area);
    if (first > 0) fill.top = Row_Bottom (text, first - 1);
    Fill (&fill, Widget_Colour (text->widget.colour));
    for (int row = first; row <= last; row++) Draw_Row (text, &area, row);
    Widget_End (&text->widget);
    if (first == 0) text->stale = 0;
}

// --- slider ----------------------------------------------------------------

static int16_t To_16 (int number) {
    return (int16_t)(number > INT16_MAX ? INT16_MAX : number < INT16_MIN ? INT16_MIN : number);
}

// Value and range say how many lines are above the field.
static void Slider_Follow (Text_Widget *text) {
    Slider  *slider      = &text->slider;
    int      hidden      = Last_Top (text);
    uint32_t kept        = slider->widget.state & WIDGET_HIDDEN;
    slider->minimum      = 0;
    slider->maximum      = (float)hidden;
    slider->value        = (float)text->line_top;
    slider->step         = 1;
    slider->widget.state = kept | (hidden ? SLIDER_VERTICAL : SLIDER_VERTICAL_DISABLED);
    if (!kept) Sliders::Proportion (slider, Texts::Visible_Lines (text), text->line_count);
}

static void Slider_Place (Text_Widget *text) {
    const Widget *field  = &text->widget;
    Widget       *widget = &text->slider.widget;
    widget->name         = "text slider";
    widget->x            = To_16 (field->x + field->w - WIDGET_BORDER - WIDGET_SLIDER_THICKNESS);
    widget->y            = To_16 (field->y + WIDGET_BORDER);
    widget->w            = WIDGET_SLIDER_THICKNESS;
    widget->h            = To_16 (field->h - 2 * WIDGET_BORDER);
    widget->clip         = field->clip;
    widget->state        = 0;
    if (field->w < SMALLEST || field->h < SMALLEST) widget->state = WIDGET_HIDDEN;
    if (Has_Slider (text)) Sliders::Init (&text->slider, field->window);
    Slider_Follow (text);
}

static void Slider_Draw (Text_Widget *text) {
    if (Has_Slider (text)) Sliders::Draw (&text->slider);
}

// After a change of the list. Draws only what a viewer could see.
static void Slider_Update (Text_Widget *text) {
    Slider  *slider = &text->slider;
    uint32_t state  = slider->widget.state;
    int      half   = slider->half;
    int      thumb  = Sliders::Thumb (slider);
    Slider_Follow (text);
    if (state != slider->widget.state || half != slider->half) Slider_Draw (text);
    else if (thumb != Sliders::Thumb (slider) && Has_Slider (text)) Sliders::Adjust (slider);
}

// --- init and exit ---------------------------------------------------------

static const char *Face (const Text_Widget *text) { return text->face ? text->face : "Arial"; }

static void Fonts_Free (Text_Widget *text) {
    Drawing_Font_Free (text->normal);
    Drawing_Font_Free (text->bold);
    Drawing_Font_Free (text->oblique);
    text->normal = text->bold = text->oblique = nullptr;
    text->fonts_made                          = 0;
}

static void Fonts_Make (Text_Widget *text) {
    Window window = text->widget.window;
    if (text->fonts_made && text->made_size == text->size && !strcmp (text->made_face, Face (text))) return;
    Fonts_Free (text);
    text->normal     = Y_Create_Font (window, Face (text), "medium", "r", text->size);
    text->bold       = Y_Create_Font (window, Face (text), "bold", "r", text->size);
    text->oblique    = Y_Create_Font (window, Face (text), "medium", "o", text->size);
    text->made_size  = text->size;
    text->fonts_made = Text_Copy (text->made_face, TEXT_FACE, Face (text));
}

static void Measure (Text_Widget *text) {
    Drawing_Font_Metrics metrics;
    int                  own = !Device::Is_Open ();
    if (own && !Widget_Begin (&text->widget, MODULE)) return;
    Device::Font_Measure (text->normal, &metrics);
    text->pitch           = metrics.height;
    text->tabs            = Device::Run_Width (text->bold, TAB_SAMPLE, (int)strlen (TAB_SAMPLE));
    text->character_width = Device::Run_Width (text->normal, "H", 1);
    if (own) Widget_End (&text->widget);
}

static void Top_Set (Text_Widget *text, int64_t top) {
    int last       = Last_Top (text);
    text->line_top = top < 0 ? 0 : top > last ? last : (int)top;
    text->scrolled = text->line_top < last;
}

void Texts::Init (Text_Widget *text, Window window) {
    int16_t *colour = text->widget.colour;
    if (!Widget_Init (&text->widget, window, "Texts::Init")) return;
    if (!colour[0] && !colour[1] && !colour[2]) colour[0] = colour[1] = colour[2] = COLOUR;
    Fonts_Make (text);
    Measure (text);
    Top_Set (text, text->scrolled ? text->line_top : TEXT_LINES);
    Rescale_Cursor (text);
    Slider_Place (text);
}

void Texts::Exit (Text_Widget *text) {
    Free_Lines (text);
    Fonts_Free (text);
    Sliders::Exit (&text->slider);
    Widget_Exit (&text->widget);
    text->active = 0;
}

// --- draw and scroll -------------------------------------------------------

void Texts::Re_Write (Text_Widget *text) {
    Widget_Check (&text->widget, "Texts::Re_Write");
    if (!Can_Draw (text)) return;
    text->written = 0;
    Draw_Rows (text, 0);
    Slider_Update (text);
}

void Text::Draw (Text_Widget *text) {
    Widget *widget = &text->widget;
    Widget_Check (widget, "Text::Draw");
    if (!Can_Draw (text)) return;
    text->written = 0;
    Tools::Clear (widget);
    Tools::Cadre (widget, widget->state | WIDGET_NO_OUTLINE, Tools::CADRE_SUNKEN, FRAME, widget->x,
                  widget->x + widget->w, widget->y, widget->y + widget->h);
    Draw_Rows (text, 0);
    Slider_Follow (text);
    Slider_Draw (text);
}

static void Scroll_To (Text_Widget *text, int64_t top) {
    int before = text->line_top;
    Top_Set (text, top);
    if (text->line_top != before && Can_Draw (text)) Draw_Rows (text, 0);
}

void Texts::Scroll (Text_Widget *text, int lines) {
    Widget_Check (&text->widget, "Texts::Scroll");
    Scroll_To (text, (int64_t)text->line_top + lines);
    if (Can_Draw (text)) Slider_Update (text);
}

// --- mouse -----------------------------------------------------------------

static const int MOUSE_STATES = 15; // Bits of a state that count.

static void Follow_Thumb (Text_Widget *text) {
    text->slider.value = Sliders::Read (&text->slider);
    Sliders::Adjust (&text->slider);
    Scroll_To (text, (int64_t)(text->slider.value + 0.5f));
}

static int Press (Text_Widget *text) {
    if (!text->active) return 0;
    if (Has_Slider (text)) Slider_Follow (text);
    if (Sliders::Select (&text->slider, MOUSE_PRESSED)) Follow_Thumb (text);
    return 1;
}

static int Drag (Text_Widget *text) {
    if (!text->slider.drag) return 0;
    if (Sliders::Select (&text->slider, MOUSE_HELD)) Follow_Thumb (text);
    return 1;
}

static int Release (Text_Widget *text) {
    if (!text->slider.drag && !text->slider.pressed) return 0;
    Sliders::Deselect (&text->slider);
    Slider_Update (text);
    return 0;
}

int Texts::Select (Text_Widget *text, int mouse_state) {
    int x, y;
    Widget_Check (&text->widget, "Texts::Select");
    Device::Pointer_Get (&x, &y);
    text->active = !(text->widget.state & WIDGET_MOUSE_IGNORED) && Widget_Contains (&text->widget, x, y);
    mouse_state &= MOUSE_STATES;
    if (mouse_state == MOUSE_HELD) return Drag (text);
    return mouse_state & MOUSE_PRESSED ? Press (text) : Release (text);
}

int Text::Select (Text_Widget *text, int mouse_state) { return Texts::Select (text, mouse_state); }

// --- writing ---------------------------------------------------------------

static const uint32_t SINGLY   = 100; // Times of writing that draw, after which
static const uint32_t TOGETHER = 50;  // only one of so many does.

// A comparison may report thousands of lines, and nobody can read them as they pass: drawing each would be all that it
// does. Lines that are not drawn ask for a paint event, with which the field's user draws it and the count begins anew.
static int Is_Due (Text_Widget *text) {
    text->written++;
    return text->written <= SINGLY || text->written % TOGETHER == 0;
}

// Draws what differs from before: the rows from first on.
static void Show_Written (Text_Widget *text, int first) {
    int seen = first < Rows (text);
    if (!Can_Draw (text) || (seen && !Is_Due (text))) {
        Window_Invalidate (text->widget.window);
        text->stale = 1;
        return;
    }
    if (seen) Draw_Rows (text, text->stale ? 0 : first);
    Slider_Update (text);
    Window_Update (text->widget.window);
}

// A report that storing itself gives rise to (there is no memory) may come back here by way of the log: it is dropped.
static void Put (Text_Widget *text, const char *line, int over, const char *type) {
    if (!line || text->storing) return;
    text->storing = 1;
    Widget_Check (&text->widget, type);
    int count     = text->line_count;
    int top       = text->line_top;
    int dropped   = Store (text, line, over);
    text->storing = 0;
    Top_Set (text, text->scrolled ? (int64_t)top - dropped : TEXT_LINES);
    int moved = text->line_top + dropped != top;
    int first = count - dropped - text->line_top - (over && count ? 1 : 0);
    Show_Written (text, moved || first < 0 ? 0 : first);
}

void Text::Write (Text_Widget *text, const char *line) { Put (text, line, 0, "Text::Write"); }

void Text::OverWrite (Text_Widget *text, const char *line) { Put (text, line, 1, "Text::OverWrite"); }

// --- typed line ------------------------------------------------------------

// Where the character before the one at position starts.
static int Character_Before (const char *line, int position) {
    int start = 0;
    while (start < position && start + Tools::Character_Length (line + start) < position)
        start += Tools::Character_Length (line + start);
    return start;
}

void Texts::Rescale_Cursor (Text_Widget *text) {
    text->text[TEXT_SIZE - 1] = 0;
    int length                = (int)strlen (text->text);
    int start                 = 0;
    if (text->cursor > length) text->cursor = length;
    if (text->cursor < 0) text->cursor = 0;
    while (start < text->cursor && start + Tools::Character_Length (text->text + start) <= text->cursor)
        start += Tools::Character_Length (text->text + start);
    text->cursor = start;
}

static void Remove (Text_Widget *text, int from, int to) {
    memmove (text->text + from, text->text + to, strlen (text->text + to) + 1);
    text->cursor = from;
}

// A character up to 255 has one or two bytes of UTF-8. One that doesn't fit whole is not taken.
static void Insert (Text_Widget *text, int character) {
    char bytes[2] = {(char)(0xC0 | character >> 6), (char)(0x80 | (character & 0x3F))};
    int  count    = 2;
    int  length   = (int)strlen (text->text);
    if (character < 0x80) {
        bytes[0] = (char)character;
        count    = 1;
    }
    if (length + count >= TEXT_SIZE) return;
    char *place = text->text + text->cursor;
    memmove (place + count, place, length - text->cursor + 1);
    memcpy (place, bytes, count);
    text->cursor += count;
}

static void Take_Key (Text_Widget *text, int key) {
    int length = (int)strlen (text->text);
    int before = Character_Before (text->text, text->cursor);
    int after  = text->cursor < length ? text->cursor + Tools::Character_Length (text->text + text->cursor) : length;
    switch (key) {
    case KEY_MOVEMENT + WINDOW_KEY_LEFT: text->cursor = before; break;
    case KEY_MOVEMENT + WINDOW_KEY_RIGHT: text->cursor = after; break;
    case KEY_MOVEMENT + WINDOW_KEY_HOME: text->cursor = 0; break;
    case KEY_MOVEMENT + WINDOW_KEY_END: text->cursor = length; break;
    case KEY_MOVEMENT + WINDOW_KEY_DELETE: Remove (text, text->cursor, after); break;
    case KEY_CHARACTER + '\b': Remove (text, before, text->cursor); break;
    case KEY_CHARACTER + 27: Remove (text, 0, length); break;
    default: break;
    }
}

// Not the control characters of either half.
static int Is_Printable (int character) {
    return (character >= 0x20 && character < 0x7F) || (character >= 0xA0 && character <= 0xFF);
}

int Texts::Read_Echo (Text_Widget *text, int key) {
    Widget_Check (&text->widget, "Texts::Read_Echo");
    if (!text->echo || !key) return 0;
    if (key == KEY_CHARACTER + '\r') return 1;
    Rescale_Cursor (text);
    if (Is_Printable (key - KEY_CHARACTER)) Insert (text, key - KEY_CHARACTER);
    else Take_Key (text, key);
    if (Can_Draw (text)) Draw_Rows (text, text->stale ? 0 : End_Row (text));
    return 0;
}
