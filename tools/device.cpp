// The session and what is drawn in it. The lock is the system's mutex, which a thread may enter twice; that a session is
// open already is therefore asked of the thread's own mark before the mutex is touched. All else here is read and written
// by the thread only that has entered.
#include "tools/device.h"

#include <algorithm>
#include <atomic>
#include <stddef.h>
#include <string.h>

#include "platform/system.h"
#include "util/memory.h"
#include "util/my_error_fct.h"

static const char *const MODULE = "device";

static const int COORDINATE_LIMIT = 1 << 28; // Sums of a few coordinates stay within an int.
static const int IMAGE_LIMIT      = 65535;   // The longest side of an image; see util/utility_IGB.h.
static const int LOCK_PATIENCE    = 1000;    // Milliseconds of one of the waits that a wait without limit is made of.

namespace Device {

int Bounded (int coordinate) { return std::clamp (coordinate, -COORDINATE_LIMIT, COORDINATE_LIMIT); }

// --- reports ---------------------------------------------------------------

// What is reported once only: a session is begun and ended, and a font made, far too often for more.
enum Fault { FAULT_NESTED, FAULT_NOT_OPEN, FAULT_ABANDONED, FAULT_FONT, FAULT_COUNT };

static std::atomic<int> reported[FAULT_COUNT];

static int First_Time (Fault fault) { return !reported[fault].exchange (1); }

void Reports_Reset (void) {
    for (std::atomic<int> &mark : reported) mark = 0;
}

static void Report_Nested (Window window, const char *caller) {
    if (!First_Time (FAULT_NESTED)) return;
    Log_Message (window, LOG_ERRLOG, "WARNING: in Device::Begin()");
    Log_Message (window, LOG_ERRLOG, "A drawing session is open already, no other is begun in it (caller:%s)",
                 caller ? caller : "no name");
}

static void Report_Not_Open (void) {
    if (!First_Time (FAULT_NOT_OPEN)) return;
    Log_Message (nullptr, LOG_ERRLOG, "WARNING: in Device::End()");
    Log_Message (nullptr, LOG_ERRLOG, "No drawing session is open, none is ended");
}

static void Report_Abandoned (Window window) {
    if (!First_Time (FAULT_ABANDONED)) return;
    Log_Message (window, LOG_ERRLOG, "WARNING: in Device::Begin()");
    Log_Message (window, LOG_ERRLOG, "A thread has ended in its drawing session, which is ended for it");
}

// --- regions ---------------------------------------------------------------

Region *Region_Create (Window window, int x, int y, int w, int h) {
    Region *region =
        static_cast<Region *> (Memory_Malloc (window, HERE ("region", 1, sizeof (Region)), sizeof (Region)));
    if (region) *region = {x, y, w, h};
    return region;
}

void Region_Free (Region *region) { Memory_Free (region); }

// --- session ---------------------------------------------------------------

struct Session {
    std::atomic<System_Mutex *> lock; // Made on first use, never destroyed.
    Window                      window;
    Drawing                     drawing;
    uint32_t                    colour; // Stays from session to session.
    int                         x, y;   // Current point.
};

static Session          session;
static thread_local int open; // The session is this thread's. (Systems give a thread's number to a later one.)
static Watcher          watcher;

static void Tell (Call_Kind kind, int x = 0, int y = 0, int w = 0, int h = 0, uint32_t colour = 0,
                  Drawing_Font font = nullptr, const char *text = nullptr, int length = 0) {
    const Call call = {kind, x, y, w, h, colour, font, text, length};
    if (watcher) watcher (&call);
}

void Watch (Watcher new_watcher) { watcher = new_watcher; }

int Is_Open (void) { return open; }

Window Current_Window (void) { return Is_Open () ? session.window : nullptr; }

Drawing Current_Drawing (void) { return Is_Open () ? session.drawing : nullptr; }

// Of two threads that come first at once, the later one gives its lock up for the other's.
static System_Mutex *Lock (void) {
    System_Mutex *lock = session.lock;
    if (lock) return lock;
    System_Mutex *made = System_Mutex_Create ();
    if (session.lock.compare_exchange_strong (lock, made)) return made;
    System_Mutex_Destroy (made);
    return lock;
}

static int Lock_Enter (void) {
    System_Mutex *lock = Lock ();
    System_Wait   wait = lock ? SYSTEM_WAIT_TIMEOUT : SYSTEM_WAIT_FAILED;
    while (wait == SYSTEM_WAIT_TIMEOUT) wait = System_Mutex_Wait (lock, LOCK_PATIENCE);
    return wait == SYSTEM_WAIT_ENTERED;
}

static void Close (void) {
    Drawing_End (session.drawing);
    Tell (CALL_END);
    session.drawing = nullptr;
    session.window  = nullptr;
}

// The lock of a thread that ended in its session goes to the next one, but its context is still taken, and no other is
// given for the window before it is back.
static void Close_Abandoned (Window window) {
    if (!session.drawing) return;
    Report_Abandoned (window);
    Close ();
}

int Begin (Window window, const Region *, const char *caller) {
    if (open) {
        Report_Nested (window, caller);
        return 0;
    }
    if (!window || !Lock_Enter ()) return 0;
    Close_Abandoned (window);
    session.drawing = Drawing_Begin (window);
    if (!session.drawing) {
        System_Mutex_Release (session.lock);
        return 0;
    }
    session.window = window;
    session.x = session.y = 0;
    open                  = 1;
    Tell (CALL_BEGIN);
    return 1;
}

void End (void) {
    if (!open) {
        Report_Not_Open ();
        return;
    }
    Close ();
    open = 0;
    System_Mutex_Release (session.lock);
}

// --- clip ------------------------------------------------------------------

// The rectangle between two corners, in the seam's terms: there the upper row is the one left out. Corners that are not
// the lower left and the upper right one enclose nothing.
struct Covered {
    int left, bottom, right, top;
};

static Covered Cover (int left, int bottom, int right, int top) {
    return {left, bottom + 1, std::max (left, right), std::max (bottom, top) + 1};
}

void ClipTo (int x, int y, int w, int h) {
    if (!Is_Open ()) return;
    const int left = Bounded (x), bottom = Bounded (y);
    Covered   covered = Cover (left, bottom, left + Bounded (w), bottom + Bounded (h));
    Drawing_Clip (session.drawing, covered.left, covered.bottom, covered.right, covered.top);
    Tell (CALL_CLIP, x, y, w, h);
}

void ClipToClient (void) {
    if (!Is_Open ()) return;
    Drawing_Clip_All (session.drawing);
    Tell (CALL_CLIP_ALL);
}

// --- drawing with the current colour ---------------------------------------

void Colour_Set (uint32_t colour) { session.colour = colour; }

uint32_t Colour_Get (void) { return session.colour; }

void MoveTo (int x, int y) {
    if (!Is_Open ()) return;
    session.x = x;
    session.y = y;
}

void LineTo (int x, int y, int width) {
    if (!Is_Open ()) return;
    Drawing_Line (session.drawing, Bounded (session.x), Bounded (session.y), Bounded (x), Bounded (y),
                  std::clamp (width, 0, IMAGE_LIMIT), session.colour);
    Tell (CALL_LINE, session.x, session.y, x, y, session.colour);
    MoveTo (x, y);
}

void FillRect (int left, int bottom, int right, int top) {
    if (!Is_Open ()) return;
    Covered covered = Cover (Bounded (left), Bounded (bottom), Bounded (right), Bounded (top));
    if (covered.left == covered.right || covered.bottom == covered.top) return;
    Drawing_Fill (session.drawing, covered.left, covered.bottom, covered.right, covered.top, session.colour);
    Tell (CALL_FILL, left, bottom, right, top, session.colour);
}

void Rectangle (int x1, int y1, int x2, int y2) {
    MoveTo (x1, y1);
    LineTo (x2, y1, 0);
    LineTo (x2, y2, 0);
    LineTo (x1, y2, 0);
    LineTo (x1, y1, 0);
}

// --- images ----------------------------------------------------------------

static const int PIXEL_BYTES = 4;

// A part of an image: blue, green, red, alpha; rows from top to bottom.
struct Part {
    const uint8_t *pixels;
    int            w, h, row_pixels;
};

static uint8_t Blend (uint8_t channel, uint8_t alpha, uint32_t background) {
    return static_cast<uint8_t> ((channel * alpha + (background & 255) * (255u - alpha)) >> 8);
}

static void Blend_Row (uint8_t *to, const uint8_t *from, int count, uint32_t background) {
    for (; count > 0; count--, to += PIXEL_BYTES, from += PIXEL_BYTES) {
        to[0] = Blend (from[0], from[3], background >> 16);
        to[1] = Blend (from[1], from[3], background >> 8);
        to[2] = Blend (from[2], from[3], background);
        to[3] = 255;
    }
}

// The caller owns the pixels. None when there is no memory.
static uint8_t *Blended (const Part &part, uint32_t background) {
    const size_t row    = static_cast<size_t> (part.w) * PIXEL_BYTES;
    uint8_t     *result = static_cast<uint8_t *> (Memory_Try (row * static_cast<size_t> (part.h)));
    for (int y = 0; result && y < part.h; y++)
        Blend_Row (result + static_cast<size_t> (y) * row,
                   part.pixels + static_cast<size_t> (y) * static_cast<size_t> (part.row_pixels) * PIXEL_BYTES, part.w,
                   background);
    return result;
}

static void Draw_Part (int x, int y, const Part &part) {
    Drawing_Image (session.drawing, Bounded (x), Bounded (y), part.w, part.h, part.pixels, part.row_pixels);
}

// 0 after the message.
static int Draw_Blended (int x, int y, const Part &part, uint32_t background) {
    uint8_t *copy = Blended (part, background);
    if (!copy) {
        Log_Message (session.window, LOG_TRACE1, "draw_image() failed in new");
        return 0;
    }
    Draw_Part (x, y, {copy, part.w, part.h, part.w});
    Memory_Free (copy);
    return 1;
}

// What lies outside of the source's rows is not drawn; how many rows there are is the caller's to know.
void Draw_Image (int x, int y, const uint8_t *pixels, int source_x, int source_y, int w, int h, int row_pixels,
                 uint32_t background) {
    if (!Is_Open () || !pixels || w < 1 || h < 1 || row_pixels < 1 || w > IMAGE_LIMIT || h > IMAGE_LIMIT ||
        row_pixels > IMAGE_LIMIT || source_x >= row_pixels || source_x <= -w || source_y <= -h ||
        source_y > IMAGE_LIMIT)
        return;
    const int before = std::max (0, -source_x), above = std::max (0, -source_y);
    const int column = source_x + before, row = source_y + above;
    Part      part = {pixels +
                          (static_cast<size_t> (row) * static_cast<size_t> (row_pixels) + static_cast<size_t> (column)) *
                              PIXEL_BYTES,
                      std::min (w - before, row_pixels - column), h - above, row_pixels};
    x              = Bounded (x) + before;
    if (!background) Draw_Part (x, y, part);
    else if (!Draw_Blended (x, y, part, background)) return;
    Tell (CALL_IMAGE, x, y, part.w, part.h, background);
}

// --- text ------------------------------------------------------------------

void Draw_Run (Drawing_Font font, int x, int y, const char *text, int length, uint32_t colour) {
    if (!Is_Open () || !text || length < 1) return;
    Drawing_Text (session.drawing, font, Bounded (x), Bounded (y), text, length, colour);
    Tell (CALL_TEXT, x, y, 0, 0, colour, font, text, length);
}

int Run_Width (Drawing_Font font, const char *text, int length) {
    if (!Is_Open () || !text || length < 1) return 0;
    return Drawing_Text_Width (session.drawing, font, text, length);
}

void Font_Measure (Drawing_Font font, Drawing_Font_Metrics *metrics) {
    *metrics = {};
    if (Is_Open ()) Drawing_Font_Measure (session.drawing, font, metrics);
}

// --- pointer and keys ------------------------------------------------------

static int pointer_x, pointer_y;

void Pointer_Set (int x, int y) {
    pointer_x = x;
    pointer_y = y;
}

void Pointer_Get (int *x, int *y) {
    *x = pointer_x;
    *y = pointer_y;
}

int ButtonDown (int button) {
    switch (button) {
    case 1: return Window_Button_Down (WINDOW_BUTTON_LEFT);
    case 2: return Window_Button_Down (WINDOW_BUTTON_RIGHT);
    case 4: return Window_Button_Down (WINDOW_BUTTON_MIDDLE);
    default: return 0;
    }
}

// Virtual key codes (either key, the left one, the right one) and the flags that key events carry.
int ModifierDown (int key) {
    switch (key) {
    case 16:
    case 160:
    case 161:
    case 64: return Window_Modifier_Down (WINDOW_SHIFT);
    case 17:
    case 162:
    case 163:
    case 32: return Window_Modifier_Down (WINDOW_CONTROL);
    case 18:
    case 164:
    case 165: return Window_Modifier_Down (WINDOW_ALT);
    default: return 0;
    }
}

// --- fonts -----------------------------------------------------------------

static const int POINTS_DEFAULT   = 12;
static const int POINTS_LIMIT     = 2000;
static const int PIXELS_PER_INCH  = 96; // Where there is no window to ask.
static const int DENSITY_LIMIT    = 10000;
static const int FONT_WEIGHT_BOLD = 700;

static Font_Maker font_maker = Drawing_Font_Create;

void Font_Maker_Set (Font_Maker maker) { font_maker = maker ? maker : Drawing_Font_Create; }

static int Pixels_Per_Inch (Window window) {
    if (Is_Open ()) return Drawing_Pixels_Per_Inch (session.drawing);
    if (!Begin (window, nullptr, "Y_Create_Font")) return PIXELS_PER_INCH;
    int result = Drawing_Pixels_Per_Inch (session.drawing);
    End ();
    return result;
}

// The divisor counts whole steps of 96 pixels: all other measures of the window are pixels, so a screen of twice the
// density must not have texts of twice the height. A screen below the first step counts as on it.
int Font_Height (int points, int pixels_per_inch) {
    const int density = std::clamp (pixels_per_inch, 1, DENSITY_LIMIT);
    if (points < 1) points = POINTS_DEFAULT;
    return std::min (points, POINTS_LIMIT) * density / (std::max (1, density / PIXELS_PER_INCH) * 72);
}

static int Is_Word (const char *text, const char *word) { return text && !strcmp (text, word); }

static Drawing_Font Font_Create (Window window, const char *face, int bold, int italic, int points) {
    const int    height = std::max (1, Font_Height (points, Pixels_Per_Inch (window)));
    Drawing_Font font   = font_maker (face, height, bold, italic);
    if (font || !First_Time (FAULT_FONT)) return font;
    Log_Message (window, LOG_ERRLOG, "WARNING: in Y_Create_Font()");
    Log_Message (window, LOG_ERRLOG, "Unable to allocate font:(name:%s height:%d weight:%d )", face, height,
                 bold ? FONT_WEIGHT_BOLD : 0);
    return nullptr;
}

} // namespace Device

Drawing_Font Y_Create_Font (Window window, const char *face, const char *weight, const char *style, int size) {
    if (!face && !weight && !style && !size) return nullptr;
    const int bold   = Device::Is_Word (weight, "bold");
    const int italic = Device::Is_Word (style, "i") || Device::Is_Word (style, "o");
    return Device::Font_Create (window, face && face[0] ? face : "Arial", bold, italic, size);
}
