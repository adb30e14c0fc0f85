// Drawing on Windows. A window is drawn in memory of its own, from which the screen is filled: so nothing flickers, and
// what was drawn can be read back while the window is covered or hidden. Shapes and images are written straight into that
// memory, which makes their pixels the same ones on every system; GDI draws the text.
#include "platform/win32/window_private.h"

#include <limits.h>
#include <stdlib.h>
#include <string.h>

static const int64_t SURFACE_LIMIT = 1 << 28; // Pixels: 1 GB.
static const int     FONT_LIMIT    = 2000;    // Pixels of height.
static const int     TEXT_FAR      = 1 << 24; // GDI counts in 27 bits, and the end of a text must be counted, too.

// A rectangle as platform/drawing.h has it: y upwards, right and top left out.
struct Area {
    int64_t left, bottom, right, top;
};

struct Drawing_Record {
    Window_State *window; // None while there is no session, and when its window is gone.
    int           open;
    Area          clip;
    RECT          changed; // Rows downwards.
};

static Drawing_Record session;

// --- surface ---------------------------------------------------------------

// The system's pixels have blue in the low byte.
static uint32_t Pixel_Of (uint32_t colour) { return (colour & 0xFF) << 16 | (colour & 0xFF00) | (colour >> 16 & 0xFF); }

static void Pixels_Fill (uint32_t *pixels, int64_t count, uint32_t pixel) {
    for (int64_t i = 0; i < count; i++) pixels[i] = pixel;
}

static uint32_t *Row_At (const Surface *surface, int64_t y) {
    return surface->pixels + (surface->height - 1 - y) * surface->row_pixels;
}

static int Bitmap_Make (Surface *surface, int rows) {
    BITMAPINFO info              = {};
    info.bmiHeader.biSize        = sizeof info.bmiHeader;
    info.bmiHeader.biWidth       = surface->row_pixels;
    info.bmiHeader.biHeight      = -rows; // From top to bottom.
    info.bmiHeader.biPlanes      = 1;
    info.bmiHeader.biBitCount    = 32;
    info.bmiHeader.biCompression = BI_RGB;

    void *pixels    = nullptr;
    surface->bitmap = CreateDIBSection (surface->context, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
    surface->pixels = static_cast<uint32_t *> (pixels);
    if (!surface->bitmap) return 0;
    surface->previous = SelectObject (surface->context, surface->bitmap);
    return 1;
}

// There is no bitmap without pixels: one that is empty in our count has one row and column that are never seen.
static int Surface_Make (Surface *surface, int width, int height) {
    if ((int64_t)width * height > SURFACE_LIMIT) {
        SetLastError (ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
    surface->width      = width;
    surface->height     = height;
    surface->row_pixels = width > 0 ? width : 1;
    surface->context    = CreateCompatibleDC (nullptr);
    if (!surface->context) return 0;
    if (!Bitmap_Make (surface, height > 0 ? height : 1)) {
        DWORD error = GetLastError ();
        Surface_Free (surface);
        SetLastError (error ? error : ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
    SetBkMode (surface->context, TRANSPARENT);
    SetTextAlign (surface->context, TA_LEFT | TA_TOP | TA_NOUPDATECP);
    return 1;
}

int Surface_Resize (Surface *surface, int width, int height, uint32_t background) {
    Surface next = {};
    if (!Surface_Make (&next, width > 0 ? width : 0, height > 0 ? height : 0)) return 0;

    Pixels_Fill (next.pixels, (int64_t)next.row_pixels * next.height, Pixel_Of (background));
    int columns = next.width < surface->width ? next.width : surface->width;
    int rows    = next.height < surface->height ? next.height : surface->height;
    for (int y = 0; y < rows; y++)
        memcpy (Row_At (&next, y), Row_At (surface, y), (size_t)columns * sizeof *next.pixels);
    Surface_Free (surface);
    *surface = next;
    return 1;
}

void Surface_Free (Surface *surface) {
    if (surface->previous) SelectObject (surface->context, surface->previous);
    if (surface->bitmap) DeleteObject (surface->bitmap);
    if (surface->context) DeleteDC (surface->context);
    *surface = Surface {};
}

// --- device context --------------------------------------------------------

Drawing Drawing_Begin (Window window) {
    Window_State *state = Window_State_Of (window);
    if (!state || session.open) return nullptr;

    session        = Drawing_Record {};
    session.window = state;
    session.open   = 1;
    Drawing_Clip_All (&session);
    return &session;
}

void Drawing_End (Drawing drawing) {
    if (!drawing || !drawing->open) return;
    Window_State *state   = drawing->window;
    RECT          changed = drawing->changed;

    *drawing = Drawing_Record {};
    if (state) Window_Changed (state, &changed);
}

void Drawing_Forget (const Window_State *state) {
    if (session.window == state) session.window = nullptr;
}

static const Surface *Surface_Of (Drawing drawing) {
    return drawing && drawing->window ? &drawing->window->surface : nullptr;
}

// One unit is one pixel on every screen, so the measure of fonts is the same as well.
int Drawing_Pixels_Per_Inch (Drawing) { return USER_DEFAULT_SCREEN_DPI; }

// --- clip ------------------------------------------------------------------

void Drawing_Clip (Drawing drawing, int left, int bottom, int right, int top) {
    if (drawing) drawing->clip = Area {left, bottom, right, top};
}

void Drawing_Clip_All (Drawing drawing) { Drawing_Clip (drawing, 0, 0, INT_MAX, INT_MAX); }

static int Area_Is_Empty (const Area *area) { return area->left >= area->right || area->bottom >= area->top; }

static Area Area_Common (const Area *a, const Area *b) {
    return Area {a->left > b->left ? a->left : b->left, a->bottom > b->bottom ? a->bottom : b->bottom,
                 a->right < b->right ? a->right : b->right, a->top < b->top ? a->top : b->top};
}

// What may be drawn of an area: inside of the clip and of the window, which may have become smaller since.
static Area Visible (Drawing drawing, const Surface *surface, const Area *area) {
    Area window = {0, 0, surface->width, surface->height};
    Area inside = Area_Common (&drawing->clip, &window);
    return Area_Common (area, &inside);
}

static RECT Rows_Down (const Surface *surface, const Area *area) {
    return RECT {(LONG)area->left, (LONG)(surface->height - area->top), (LONG)area->right,
                 (LONG)(surface->height - area->bottom)};
}

static void Note_Changed (Drawing drawing, const Surface *surface, const Area *area) {
    RECT part = Rows_Down (surface, area);
    UnionRect (&drawing->changed, &drawing->changed, &part);
}

// --- shapes ----------------------------------------------------------------

static void Fill (Drawing drawing, const Surface *surface, const Area *area, uint32_t colour) {
    Area     part  = Visible (drawing, surface, area);
    uint32_t pixel = Pixel_Of (colour);

    if (Area_Is_Empty (&part)) return;
    for (int64_t y = part.bottom; y < part.top; y++)
        Pixels_Fill (Row_At (surface, y) + part.left, part.right - part.left, pixel);
    Note_Changed (drawing, surface, &part);
}

void Drawing_Fill (Drawing drawing, int left, int bottom, int right, int top, uint32_t colour) {
    const Surface *surface = Surface_Of (drawing);
    Area           area    = {left, bottom, right, top};
    if (surface) Fill (drawing, surface, &area, colour);
}

// A line goes along the axis on which its ends are farther apart, one pixel a step, and across on the other.
struct Drawn_Line {
    int64_t start_along, start_across;
    int     sign_along, sign_across;
    int64_t steps;         // Along.
    int64_t rise;          // Across, over all steps; not more than them.
    int     is_horizontal; // Along is x.
};

static Drawn_Line Line_Of (int64_t x1, int64_t y1, int64_t x2, int64_t y2) {
    int64_t right = x2 - x1, up = y2 - y1;
    int64_t wide = right < 0 ? -right : right, high = up < 0 ? -up : up;

    if (wide >= high) return Drawn_Line {x1, y1, right < 0 ? -1 : 1, up < 0 ? -1 : 1, wide, high, 1};
    return Drawn_Line {y1, x1, up < 0 ? -1 : 1, right < 0 ? -1 : 1, high, wide, 0};
}

// The first step that lies in low <= place < high, and the one after the last. Only these are walked: the ends may be four
// thousand million pixels apart.
static void Line_Steps (const Drawn_Line *line, int64_t low, int64_t high, int64_t *from, int64_t *to) {
    *from = line->sign_along > 0 ? low - line->start_along : line->start_along - (high - 1);
    *to   = line->sign_along > 0 ? high - line->start_along : line->start_along - low + 1;
    if (*from < 0) *from = 0;
    if (*to > line->steps) *to = line->steps;
}

// The pixels of one step: as many across as the line is wide.
static Area Line_Piece (const Drawn_Line *line, int64_t along, int64_t across, int64_t width) {
    int64_t low = across - width / 2;
    if (line->is_horizontal) return Area {along, low, along + 1, low + width};
    return Area {low, along, low + width, along + 1};
}

void Drawing_Line (Drawing drawing, int x1, int y1, int x2, int y2, int width, uint32_t colour) {
    const Surface *surface = Surface_Of (drawing);
    if (!surface) return;

    Drawn_Line line  = Line_Of (x1, y1, x2, y2);
    Area       whole = {INT64_MIN, INT64_MIN, INT64_MAX, INT64_MAX};
    Area       clip  = Visible (drawing, surface, &whole);
    int64_t    from, to;
    if (Area_Is_Empty (&clip)) return;
    if (line.is_horizontal) Line_Steps (&line, clip.left, clip.right, &from, &to);
    else Line_Steps (&line, clip.bottom, clip.top, &from, &to);
    if (from >= to) return;

    // The rise at a step is step * rise / steps, rounded; quotient and remainder are carried along.
    uint64_t steps = (uint64_t)line.steps, rise = (uint64_t)line.rise;
    uint64_t quotient = (uint64_t)from * rise / steps, remainder = (uint64_t)from * rise % steps;
    for (int64_t step = from; step < to; step++) {
        int64_t up    = (int64_t)(quotient + (2 * remainder >= steps));
        Area    piece = Line_Piece (&line, line.start_along + line.sign_along * step,
                                    line.start_across + line.sign_across * up, width > 1 ? width : 1);
        Fill (drawing, surface, &piece, colour);
        remainder += rise;
        if (remainder >= steps) {
            remainder -= steps;
            quotient++;
        }
    }
}

void Drawing_Image (Drawing drawing, int x, int y, int width, int height, const uint8_t *pixels, int row_pixels) {
    const Surface *surface = Surface_Of (drawing);
    if (!surface || !pixels || width < 1 || height < 1) return;

    Area area = {x, y, (int64_t)x + width, (int64_t)y + height};
    Area part = Visible (drawing, surface, &area);
    if (Area_Is_Empty (&part)) return;
    for (int64_t row = part.bottom; row < part.top; row++) {
        const uint8_t *source = pixels + ((area.top - 1 - row) * row_pixels + part.left - x) * 4;
        memcpy (Row_At (surface, row) + part.left, source, (size_t)(part.right - part.left) * 4);
    }
    Note_Changed (drawing, surface, &part);
}

// --- fonts -----------------------------------------------------------------

// A font's record is the system's own handle.
static HFONT Handle (Drawing_Font font) { return reinterpret_cast<HFONT> (font); }

// The system's own "Courier" is made of pixels, for few sizes and few characters. Its outlines have another name. Where a
// face is missing, the family decides what is taken for it.
struct Face {
    const char *asked;
    const char *taken;
    DWORD       family;
};

static const Face faces[] = {
    {"Arial", "Arial", VARIABLE_PITCH | FF_SWISS},
    {"Courier", "Courier New", FIXED_PITCH | FF_MODERN},
    {"Courier New", "Courier New", FIXED_PITCH | FF_MODERN},
};

static Face Face_Of (const char *name) {
    for (const Face &face : faces)
        if (name && !lstrcmpiA (name, face.asked)) return face;
    return Face {name, name, DEFAULT_PITCH | FF_DONTCARE};
}

Drawing_Font Drawing_Font_Create (const char *name, int height, int bold, int italic) {
    Face  face   = Face_Of (name);
    int   pixels = height < 1 ? 1 : height > FONT_LIMIT ? FONT_LIMIT : height;
    HFONT font   = CreateFontA (-pixels, 0, 0, 0, bold ? FW_BOLD : FW_DONTCARE, italic ? TRUE : FALSE, FALSE, FALSE,
                                DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, ANTIALIASED_QUALITY,
                                face.family, face.taken);
    return reinterpret_cast<Drawing_Font> (font);
}

void Drawing_Font_Free (Drawing_Font font) {
    if (font) DeleteObject (Handle (font));
}

// The font of today's boxes and menus. The system gives it in the size for its screen; the program counts in pixels, so
// it is taken back to the size for 96 an inch.
static HFONT System_Font_Make (void) {
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize            = sizeof metrics;
    if (!SystemParametersInfoW (SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0)) return nullptr;

    LOGFONTW *facts  = &metrics.lfMessageFont;
    HDC       screen = GetDC (nullptr);
    int       dots   = screen ? GetDeviceCaps (screen, LOGPIXELSY) : 0;
    facts->lfQuality = ANTIALIASED_QUALITY;
    if (dots > 0) facts->lfHeight = MulDiv (facts->lfHeight, USER_DEFAULT_SCREEN_DPI, dots);
    if (screen) ReleaseDC (nullptr, screen);
    return CreateFontIndirectW (facts);
}

// Made once and kept until the program ends.
static HFONT System_Font (void) {
    static HFONT font;
    if (!font) font = System_Font_Make ();
    return font ? font : static_cast<HFONT> (GetStockObject (DEFAULT_GUI_FONT));
}

static HGDIOBJ Font_Select (const Surface *surface, Drawing_Font font) {
    return SelectObject (surface->context, font ? Handle (font) : System_Font ());
}

void Drawing_Font_Measure (Drawing drawing, Drawing_Font font, Drawing_Font_Metrics *metrics) {
    const Surface *surface = Surface_Of (drawing);
    TEXTMETRICW    facts   = {};

    if (surface) {
        HGDIOBJ previous = Font_Select (surface, font);
        GetTextMetricsW (surface->context, &facts);
        SelectObject (surface->context, previous);
    }
    *metrics = Drawing_Font_Metrics {facts.tmHeight, facts.tmDescent, facts.tmAveCharWidth};
}

// --- text ------------------------------------------------------------------

// A run in the system's characters. Most are short and need no memory.
struct Run {
    wchar_t  few[256];
    wchar_t *text; // few, or owned.
    int      count;
};

// 0 when there is nothing in it, or no memory.
static int Run_Make (Run *run, const char *text, int length) {
    run->text = run->few;
    if (!text || length < 1) return 0;
    if (length > (int)(sizeof run->few / sizeof run->few[0]))
        run->text = static_cast<wchar_t *> (malloc ((size_t)length * sizeof *run->text));
    if (!run->text) return 0;
    run->count = Text_To_UTF16 (text, length, run->text);
    return 1;
}

static void Run_Free (Run *run) {
    if (run->text != run->few) free (run->text);
}

int Drawing_Text_Width (Drawing drawing, Drawing_Font font, const char *text, int length) {
    const Surface *surface = Surface_Of (drawing);
    Run            run;
    SIZE           size = {};

    if (!surface || !Run_Make (&run, text, length)) return 0;
    HGDIOBJ previous = Font_Select (surface, font);
    GetTextExtentPoint32W (surface->context, run.text, run.count, &size);
    SelectObject (surface->context, previous);
    Run_Free (&run);
    return size.cx;
}

// Where a run may leave ink: italics lean out of their cells, and accents may stand above them.
static Area Ink (int x, int y, int height) {
    return Area {(int64_t)x - height, (int64_t)y - height, INT64_MAX, (int64_t)y + 2 * (int64_t)height};
}

static void Run_Draw (Drawing drawing, const Surface *surface, int x, int y, const Run *run) {
    TEXTMETRICW facts = {};
    GetTextMetricsW (surface->context, &facts);
    Area area = Ink (x, y, facts.tmHeight);
    Area part = Visible (drawing, surface, &area);
    if (x < -TEXT_FAR || Area_Is_Empty (&part)) return;

    RECT clip = Rows_Down (surface, &part);
    ExtTextOutW (surface->context, x, surface->height - y - facts.tmHeight, ETO_CLIPPED, &clip, run->text,
                 (UINT)run->count, nullptr);
    GdiFlush (); // The others write pixels past it.
    Note_Changed (drawing, surface, &part);
}

void Drawing_Text (Drawing drawing, Drawing_Font font, int x, int y, const char *text, int length, uint32_t colour) {
    const Surface *surface = Surface_Of (drawing);
    Run            run;

    if (!surface || !Run_Make (&run, text, length)) return;
    HGDIOBJ previous = Font_Select (surface, font);
    SetTextColor (surface->context, colour & 0xFFFFFF);
    Run_Draw (drawing, surface, x, y, &run);
    SelectObject (surface->context, previous);
    Run_Free (&run);
}

// --- reading back ----------------------------------------------------------

uint32_t Drawing_Pixel (Drawing drawing, int x, int y) {
    const Surface *surface = Surface_Of (drawing);
    if (!surface || x < 0 || y < 0 || x >= surface->width || y >= surface->height) return 0xFFFFFFFF;
    return Pixel_Of (Row_At (surface, y)[x]);
}

// There is no writer of PNG files here: a picture of a window on Windows is taken from the screen.
int Drawing_Picture_Write (Window, const char *) { return 0; }
