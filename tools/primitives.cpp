// All operations have one shape: check the widget, find out whether there is anything to draw, and draw it in a session.
#include "tools/primitives.h"

#include <algorithm>
#include <stdio.h>
#include <string.h>

#include "platform/utf8.h"
#include "tools/device.h"

static const char *const LIBRARY  = "Kestrelbay_Tools";
static const char *const VERSION  = "21.7";
static const char *const REVISION = "1";

static const uint32_t BLACK       = Drawing_Colour (0, 0, 0);
static const uint32_t WHITE       = Drawing_Colour (255, 255, 255);
static const uint32_t LABEL_BLUE  = Drawing_Colour (64, 64, 230); // Texts and highlighted frames.
static const uint32_t HIGHLIGHT   = Drawing_Colour (230, 100, 100);
static const uint32_t ARROW_DARK  = Drawing_Colour (110, 110, 110);
static const uint32_t ARROW_LIGHT = Drawing_Colour (216, 216, 216);

namespace Tools {

using Device::Bounded;

// Two corners, lower left and upper right.
struct Corners {
    int left, bottom, right, top;
};

static Corners Corners_Of (int x1, int x2, int y1, int y2) {
    return {Bounded (x1), Bounded (y1), Bounded (x2), Bounded (y2)};
}

static Corners Inset (const Corners &corners, int inset) {
    return {corners.left + inset, corners.bottom + inset, corners.right - inset, corners.top - inset};
}

// 1 when nothing lies between the corners, not even a line.
static int Is_Crossed (const Corners &corners) { return corners.right < corners.left || corners.top < corners.bottom; }

// --- fills -----------------------------------------------------------------

static void Fill_Corners (Widget *widget, const char *type, const Corners &corners, uint32_t colour) {
    if (!Widget_Begin (widget, type)) return;
    Device::Colour_Set (colour);
    Device::FillRect (corners.left, corners.bottom, corners.right, corners.top);
    Widget_End (widget);
}

// One unit more below and at the right than its corners enclose, since they leave those lines of the frame out.
void Clear (Widget *widget) {
    static const char *const TYPE = "Tools::Clear";
    Widget_Check (widget, TYPE);
    if (widget->w < 1 || widget->h < 1) return;
    Fill_Corners (widget, TYPE, {widget->x, widget->y - 1, widget->x + widget->w + 1, widget->y + widget->h},
                  Widget_Colour (widget->colour));
}

void Fill (Widget *widget, uint32_t flags, int x1, int x2, int y1, int y2) {
    static const char *const TYPE = "Tools::Fill";
    Widget_Check (widget, TYPE);
    if ((widget->state & WIDGET_INACTIVE) || (flags & FILL_NONE)) return;
    Fill_Corners (widget, TYPE, Corners_Of (x1, x2, y1, y2), Widget_Colour (widget->colour));
}

static void Fill_Fixed (Widget *widget, const char *type, uint32_t colour, const Corners &corners) {
    Widget_Check (widget, type);
    if (!(widget->state & WIDGET_INACTIVE)) Fill_Corners (widget, type, corners, colour);
}

void Fill_Blue (Widget *widget, int x1, int x2, int y1, int y2) {
    Fill_Fixed (widget, "Tools::Fill_Blue", Drawing_Colour (0, 0, 255), Corners_Of (x1, x2, y1, y2));
}

void Fill_Grey (Widget *widget, int x1, int x2, int y1, int y2) {
    Fill_Fixed (widget, "Tools::Fill_Grey", Drawing_Colour (170, 170, 170), Corners_Of (x1, x2, y1, y2));
}

void Fill_Red (Widget *widget, int x1, int x2, int y1, int y2) {
    Fill_Fixed (widget, "Tools::Fill_Red", Drawing_Colour (255, 0, 0), Corners_Of (x1, x2, y1, y2));
}

void Fill_Yellow (Widget *widget, int x1, int x2, int y1, int y2) {
    Fill_Fixed (widget, "Tools::Fill_Yellow", Drawing_Colour (255, 255, 0), Corners_Of (x1, x2, y1, y2));
}

void Fill_Green (Widget *widget, int x1, int x2, int y1, int y2) {
    Fill_Fixed (widget, "Tools::Fill_Green", Drawing_Colour (0, 255, 0), Corners_Of (x1, x2, y1, y2));
}

// In the top left corner of what is enclosed.
static void Copy_Picture (const Picture *image, const Corners &corners) {
    const int w = std::min (corners.right - corners.left, image->width);
    const int h = std::min (corners.top - corners.bottom, image->height);
    Device::Draw_Image (corners.left, corners.top - h + 1, image->pixels, 0, 0, w, h, image->width, 0);
}

void Fill_Select (Widget *widget, int selected, const Picture *image, uint32_t flags, int inset, int x1, int x2, int y1,
                  int y2) {
    static const char *const TYPE = "Tools::Fill_Select";
    Widget_Check (widget, TYPE);
    if (flags & FILL_NONE) return;
    const Corners corners = Inset (Corners_Of (x1, x2, y1, y2), Bounded (inset));
    if (!image) {
        Fill_Corners (widget, TYPE, corners, selected ? HIGHLIGHT : Widget_Colour (widget->colour));
        return;
    }
    if (!Widget_Begin (widget, TYPE)) return;
    Copy_Picture (image, corners);
    Widget_End (widget);
}

// --- frames ----------------------------------------------------------------

void Cadre_Outline (Widget *widget, int x1, int x2, int y1, int y2) {
    static const char *const TYPE = "Tools::Cadre_Outline";
    Widget_Check (widget, TYPE);
    const Corners corners = Inset (Corners_Of (x1, x2, y1, y2), 1);
    if (Is_Crossed (corners) || !Widget_Begin (widget, TYPE)) return;
    Device::Colour_Set (LABEL_BLUE);
    Device::Rectangle (corners.left, corners.bottom, corners.right, corners.top);
    Widget_End (widget);
}

static const int CADRE_STEP  = 80;    // The outermost ring's distance from the widget's colour.
static const int CADRE_RINGS = 65536; // More than the widest widget has room for.

static uint32_t Shaded (const Widget *widget, int step) {
    int16_t colour[4];
    for (int i = 0; i < 4; i++)
        colour[i] = static_cast<int16_t> (std::clamp (widget->colour[i] + (i < 3 ? step : 0), 0, 255));
    return Widget_Colour (colour);
}

static void Line (int x1, int y1, int x2, int y2) {
    Device::MoveTo (x1, y1);
    Device::LineTo (x2, y2, 0);
}

// The lower right edges own the two corners where light and shade meet.
static void Ring (const Corners &ring, uint32_t upper_left, uint32_t lower_right) {
    Device::Colour_Set (upper_left);
    Line (ring.left, ring.bottom + 1, ring.left, ring.top + 1);
    Line (ring.left, ring.top, ring.right, ring.top);
    Device::Colour_Set (lower_right);
    Line (ring.left, ring.bottom, ring.right + 1, ring.bottom);
    Line (ring.right, ring.bottom, ring.right, ring.top + 1);
}

static void Rings (const Widget *widget, int direction, int depth, Corners ring) {
    const int fall = depth > 0 ? CADRE_STEP / depth : 0;
    int       step = fall ? CADRE_STEP : 0; // Too many rings for whole steps: all are in the widget's own colour.
    for (int k = 0; k < std::min (depth, CADRE_RINGS) && !Is_Crossed (ring); k++) {
        const uint32_t light = Shaded (widget, step), shade = Shaded (widget, -step);
        if (direction == CADRE_RAISED) Ring (ring, light, shade);
        else Ring (ring, shade, light);
        ring = Inset (ring, 1);
        step -= fall;
    }
}

// The outline stays visible: where there is one, the rings begin one unit inside of it.
void Cadre (Widget *widget, uint32_t state, int direction, int depth, int x1, int x2, int y1, int y2) {
    static const char *const TYPE = "Tools::Cadre";
    Widget_Check (widget, TYPE);
    Corners corners = Corners_Of (x1, x2, y1, y2);
    if (Is_Crossed (corners) || !Widget_Begin (widget, TYPE)) return;
    if (!(state & WIDGET_NO_OUTLINE)) {
        Device::Colour_Set (BLACK);
        Device::Rectangle (corners.left, corners.bottom, corners.right, corners.top);
        corners = Inset (corners, 1);
    }
    Rings (widget, direction, depth, corners);
    Widget_End (widget);
}

// --- arrows ----------------------------------------------------------------

static const int HEAD_LINES = 1000; // At most.

// A head in terms of its own direction: it has its tip at line 0 and grows by one unit on both sides with each line.
// Its middle lies between low and high, which are the same where the rectangle has a middle row of pixels.
struct Head {
    int direction;
    int tip, low, high; // Where the tip is, along the direction, and the middle, across it.
    int lines;
    int rim; // 1 where there is room for one.
};

static int Is_Across (int direction) { return direction == ARROW_LEFT || direction == ARROW_RIGHT; }

static int Points_Up (int direction) { return direction == ARROW_RIGHT || direction == ARROW_UP; }

// About a third of the rectangle, moved towards its tip where it can't be exactly in the middle: the eye expects it there.
static Head Head_In (const Corners &corners, int direction) {
    const int w = corners.right - corners.left + 1, h = corners.top - corners.bottom + 1;
    const int across = Is_Across (direction), along_size = across ? w : h, across_size = across ? h : w;
    const int start = across ? corners.left : corners.bottom, side = across ? corners.bottom : corners.left;
    const int lines = std::clamp ((std::min (w, h) * 3 + 5) / 10, 1, HEAD_LINES), before = (along_size - lines) / 2;
    const int tip = Points_Up (direction) ? start + along_size - 1 - before : start + before;
    return {direction, tip, side + (across_size - 1) / 2, side + across_size / 2, lines, std::min (w, h) > 2};
}

// One line of the head across its direction, from low to high, both included.
static void Head_Line (const Head &head, int line, int low, int high) {
    const int along = Points_Up (head.direction) ? head.tip - line : head.tip + line;
    if (Is_Across (head.direction)) Line (along, low, along, high + 1);
    else Line (low, along, high + 1, along);
}

static void Head_Body (const Head &head, uint32_t colour) {
    Device::Colour_Set (colour);
    for (int line = 0; line < head.lines; line++) Head_Line (head, line, head.low - line, head.high + line);
}

// The three sides of the head and its tip, one unit outside of its body: what looks up or left is in one colour, the rest
// in the other one.
static void Head_Rim (const Head &head, uint32_t upper_left, uint32_t lower_right) {
    const int across = Is_Across (head.direction), down_right = Points_Up (head.direction) == across;
    for (int line = 0; line < head.lines; line++) {
        Device::Colour_Set (across ? lower_right : upper_left);
        Head_Line (head, line, head.low - line - 1, head.low - line - 1);
        Device::Colour_Set (across ? upper_left : lower_right);
        Head_Line (head, line, head.high + line + 1, head.high + line + 1);
    }
    Device::Colour_Set (down_right ? lower_right : upper_left);
    Head_Line (head, -1, head.low, head.high);
    Device::Colour_Set (down_right ? upper_left : lower_right);
    Head_Line (head, head.lines, head.low - head.lines, head.high + head.lines);
}

void Arrow (Widget *widget, int direction, int pressed, int x1, int x2, int y1, int y2) {
    static const char *const TYPE = "Tools::Arrow";
    Widget_Check (widget, TYPE);
    const Corners corners = Corners_Of (x1, x2, y1, y2);
    if (Is_Crossed (corners) || !Widget_Begin (widget, TYPE)) return;
    const Head head = Head_In (corners, direction);
    if (widget->state & WIDGET_INACTIVE) Head_Body (head, ARROW_LIGHT);
    else {
        if (head.rim) Head_Rim (head, pressed ? ARROW_DARK : ARROW_LIGHT, pressed ? ARROW_LIGHT : ARROW_DARK);
        Head_Body (head, BLACK);
    }
    Widget_End (widget);
}

// --- characters ------------------------------------------------------------

static const int CHARACTER_SIZE = 4; // Bytes of the longest one.

int Character_Length (const char *text) {
    uint32_t  character;
    const int length = UTF8_Character (text, text + strnlen (text, CHARACTER_SIZE), &character);
    return length ? length : 1;
}

// Bytes of the whole characters at the start of a text that fit into a limit.
static int Fitting (const char *text, int limit) {
    int length = 0;
    while (text[length]) {
        int character = Character_Length (text + length);
        if (length + character > limit) break;
        length += character;
    }
    return length;
}

// --- runs and tabs ---------------------------------------------------------

static const int TAB_CHARACTERS = 4; // Average widths from one tab stop to the next.

static Drawing_Font_Metrics Metrics (Drawing_Font font) {
    Drawing_Font_Metrics metrics;
    Device::Font_Measure (font, &metrics);
    return metrics;
}

// Draws a text with its tabs, or only measures it. The x behind it.
static int Tabbed (Drawing_Font font, int x, int y, const char *text, int length, uint32_t colour, int drawn) {
    const int start = x;
    for (;;) {
        const char *tab = static_cast<const char *> (memchr (text, '\t', static_cast<size_t> (length)));
        const int   run = tab ? static_cast<int> (tab - text) : length;
        if (drawn) Device::Draw_Run (font, x, y, text, run, colour);
        x += Device::Run_Width (font, text, run);
        if (!tab) return x;
        const int stop = std::max (1, TAB_CHARACTERS * Metrics (font).average_width);
        x              = start + ((x - start) / stop + 1) * stop;
        text += run + 1;
        length -= run + 1;
    }
}

int DrawText (Drawing_Font font, int x, int y, const char *text, uint32_t colour) {
    if (!text || !Device::Is_Open ()) return x;
    return Tabbed (font, Bounded (x), y, text, Fitting (text, DRAW_TEXT_LIMIT), colour, 1);
}

int TextWidth (Drawing_Font font, const char *text) {
    if (!text || !Device::Is_Open ()) return 0;
    int tabs = 0;
    for (const char *c = text; *c; c++) tabs += *c == '\t';
    const int tab_width = tabs ? (TAB_CHARACTERS - 1) * Metrics (font).average_width : 0;
    return Device::Run_Width (font, text, static_cast<int> (strlen (text))) + tabs * tab_width;
}

// --- texts in rectangles ---------------------------------------------------

static const int TEXT_MARGIN = 2;   // At least.
static const int LABEL_LIMIT = 128; // Characters: longer texts keep their "&", and are no vertical texts beyond it.
static const int MNEMONIC    = '&';

// Where a text goes.
struct Text_Place {
    Drawing_Font font;
    uint32_t     flags, colour;
    int          x, y, w, h;
    int          margin, inset; // At the lower and upper side; at the left and the right one.
    int          height;        // Of the font.
};

static uint32_t Text_Colour (uint32_t flags) {
    return flags & WIDGET_TEXT_BLUE ? LABEL_BLUE : flags & WIDGET_TEXT_WHITE ? WHITE : BLACK;
}

// The text without its "&", in buffer, or itself when it has too many characters to be a label.
static const char *Mnemonics_Removed (const char *text, char buffer[LABEL_LIMIT * CHARACTER_SIZE + 1]) {
    size_t used  = 0;
    int    count = 0;
    for (const char *c = text; *c; count++) {
        if (count == LABEL_LIMIT) return text;
        const size_t length = static_cast<size_t> (Character_Length (c));
        if (*c != MNEMONIC) {
            memcpy (buffer + used, c, length);
            used += length;
        }
        c += length;
    }
    buffer[used] = 0;
    return buffer;
}

static int Half (int value) { return (value - (value < 0)) / 2; }

// To the left, to the right, or centred between left and right. What is too wide to be centred shows its beginning.
static int Aligned_X (uint32_t flags, int left, int right, int width) {
    if (flags & WIDGET_ALIGN_LEFT) return left;
    if (flags & WIDGET_ALIGN_RIGHT) return right - width;
    return left + std::max (0, Half (right - left - width));
}

// The lowest row of a block of this height; the row at bottom itself is not covered.
static int Aligned_Y (uint32_t flags, int bottom, int top, int height) {
    if (flags & WIDGET_ALIGN_BOTTOM) return bottom + 1;
    if (flags & WIDGET_ALIGN_TOP) return top - height + 1;
    return bottom + Half (top - bottom - height) + 1;
}

static void Text_Across (const Text_Place &place, const char *text) {
    const int length = Fitting (text, INT16_MAX);
    const int width  = Tabbed (place.font, 0, 0, text, length, 0, 0);
    const int x      = Aligned_X (place.flags, place.x + place.inset, place.x + place.w - place.inset, width);
    const int y = Aligned_Y (place.flags, place.y + 1 + place.margin, place.y + place.h - place.margin, place.height);
    Tabbed (place.font, x, y, text, length, place.colour, 1);
}

static int Character_Count (const char *text, int limit) {
    int count = 0;
    for (; *text && count < limit; count++) text += Character_Length (text);
    return count;
}

// The left and the right end of the column that characters are centred in.
static void Column (const Text_Place &place, int *left, int *right) {
    *left  = place.x;
    *right = place.x + place.w;
    if (!(place.flags & (WIDGET_ALIGN_LEFT | WIDGET_ALIGN_RIGHT))) return;
    const int width = 3 * Metrics (place.font).average_width;
    *left           = Aligned_X (place.flags, place.x + place.inset, place.x + place.w - place.inset, width);
    *right          = *left + width;
}

// The lowest row of a column of this height. What is too high to be centred shows its beginning.
static int Column_Y (const Text_Place &place, int height) {
    const int      bottom = place.y + place.margin, top = place.y + place.h - place.margin;
    const uint32_t flags = place.flags | (height > top - bottom ? WIDGET_ALIGN_TOP : 0u);
    return Aligned_Y (flags, bottom, top, height);
}

static void Text_Downwards (const Text_Place &place, const char *text) {
    const int count = Character_Count (text, LABEL_LIMIT), needed = count * place.height;
    int       left, right, y = Column_Y (place, needed) + needed;
    Column (place, &left, &right);
    for (int i = 0; i < count; i++) {
        const int length = Character_Length (text);
        const int x      = Aligned_X (0, left, right, Device::Run_Width (place.font, text, length));
        y -= place.height;
        Device::Draw_Run (place.font, x, y, text, length, place.colour);
        text += length;
    }
}

// A text is cut at the ends of its line, and where the rectangle ends; not at its upper and lower margin, since letters
// without their feet can't be read. What the widget clips is clipped further.
static void Clip_Text (const Widget *widget, const Text_Place &place) {
    const int inset = place.flags & WIDGET_VERTICAL ? 0 : place.inset;
    Corners   clip  = {place.x + inset, place.y, place.x + place.w - inset, place.y + place.h};
    if (widget->clip.w) {
        clip.left   = std::max<int> (clip.left, widget->clip.x);
        clip.bottom = std::max<int> (clip.bottom, widget->clip.y);
        clip.right  = std::min (clip.right, widget->clip.x + widget->clip.w);
        clip.top    = std::min (clip.top, widget->clip.y + widget->clip.h);
    }
    Device::ClipTo (clip.left, clip.bottom, clip.right - clip.left, clip.top - clip.bottom);
}

void Text (Widget *widget, Drawing_Font font, const char *text, uint32_t flags, int x, int y, int w, int h,
           int margin) {
    static const char *const TYPE = "Tools::Text";
    Widget_Check (widget, TYPE);
    if (!text) return;
    char buffer[LABEL_LIMIT * CHARACTER_SIZE + 1];
    text = Mnemonics_Removed (text, buffer);
    if (!text[0] || !Widget_Begin (widget, TYPE)) return;
    margin                 = std::max (TEXT_MARGIN, Bounded (margin));
    const Text_Place place = {font,
                              flags,
                              Text_Colour (flags),
                              Bounded (x),
                              Bounded (y),
                              Bounded (w),
                              Bounded (h),
                              margin,
                              std::max (WIDGET_MARGIN, 2 * margin),
                              Metrics (font).height};
    Clip_Text (widget, place);
    if (flags & WIDGET_VERTICAL) Text_Downwards (place, text);
    else Text_Across (place, text);
    Widget_End (widget);
}

// --- library ---------------------------------------------------------------

const char *Banner (const char *check) {
    static char text[64];
    if (check && strcmp (check, VERSION)) return nullptr;
    snprintf (text, sizeof text, "%s (Static) %s (rev-%s)", LIBRARY, VERSION, REVISION);
    return text;
}

} // namespace Tools
