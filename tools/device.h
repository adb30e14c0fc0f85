// The drawing device: one session at a time for the whole program, opened on a window, drawn in, and ended by the code
// that opened it. Everything that the toolkit draws goes through here to the seam.
//
// Coordinates are pixels from the bottom-left one of the client area, y growing upwards. What is given as two corners
// reaches from the left one, included, to the right one, left out, and from the lower one, left out, to the upper one,
// included: y counts against the direction in which rows are stored, so the row left out is the lower one. The rectangle
// of a widget of size w x h has w + 1 by h + 1 pixels, its frame's lines included. Corners in another order (the right one
// left of the left one) enclose nothing. Coordinates may be any number.
#pragma once

#include <stdint.h>

#include "platform/drawing.h"
#include "platform/window.h"

namespace Device {

// A rectangle of the window that a widget covers. Made by the widget's Init, owned by the widget.
struct Region {
    int x, y, w, h;
};

Region *Region_Create (Window window, int x, int y, int w, int h);  // None after the memory message.
void    Region_Free (Region *region);                               // Accepts none.

// --- session ---------------------------------------------------------------

// Enters the lock, which other threads wait for, and takes the window's device context. region is for the reader of the
// code; nothing is done with it. 1, or 0 without a session: when the window can't be drawn, and when this thread has one
// open already. That one is a mistake of the program: the first time it is reported with the caller (kind LOG_ERRLOG). So
// is a thread that ended in its session, which is then ended for it.
int Begin (Window window, const Region *region, const char *caller);

// Gives the context back and leaves the lock. Without a session of this thread, reported like the other mistake.
void End (void);

int    Is_Open (void);          // 1 while this thread has a session.
Window Current_Window (void);   // Of the session, or none.
Drawing Current_Drawing (void); // Of the session, or none.

// A coordinate that sums of a few can't overflow: cut to 28 bits, far outside of any window.
int Bounded (int coordinate);

// --- clip ------------------------------------------------------------------

void ClipTo (int x, int y, int w, int h);   // From (x, y) to (x + w, y + h). Replaces the last clip.
void ClipToClient (void);

// --- drawing with the current colour ---------------------------------------

// The colour stays from session to session. Without a session the drawing operations do nothing.
void     Colour_Set (uint32_t colour);
uint32_t Colour_Get (void);

void MoveTo (int x, int y);                 // The current point; (0, 0) when a session begins.
void LineTo (int x, int y, int width);      // From the current point up to (x, y), which is left out and becomes current.
void FillRect (int left, int bottom, int right, int top);
void Rectangle (int x1, int y1, int x2, int y2);    // Four lines, from (x1, y1) around to it.

// Copies w x h pixels of an image of blue, green, red and alpha bytes, from pixel (source_x, source_y) of it on, counted
// from its top left, with the top row at y + h - 1. What lies left of, right of or above the image is not drawn; that it
// has the rows asked for is the caller's care. Nothing for sides beyond 65535. background 0 copies the colours as they
// are; on any other (opaque black has its fourth byte) each pixel is blended on that colour by its alpha.
// "draw_image() failed in new" (LOG_TRACE1) when there is no memory for the blended copy; then nothing is drawn.
void Draw_Image (int x, int y, const uint8_t *pixels, int source_x, int source_y, int w, int h, int row_pixels,
                 uint32_t background);

// --- fonts and text --------------------------------------------------------

// A single run of text with its cell's bottom at y; see Tools::DrawText for tabs.
void Draw_Run (Drawing_Font font, int x, int y, const char *text, int length, uint32_t colour);
int  Run_Width (Drawing_Font font, const char *text, int length);           // 0 without a session.
void Font_Measure (Drawing_Font font, Drawing_Font_Metrics *metrics);       // All 0 without a session.

// Height in pixels of a font of this size in points.
int Font_Height (int points, int pixels_per_inch);

// --- pointer and keys ------------------------------------------------------

// The pointer as the window procedure saw it last, in screen terms of no window in particular: kept between sessions.
void Pointer_Set (int x, int y);            // In pixels of the client area.
void Pointer_Get (int *x, int *y);

int ButtonDown (int button);                // 1 left, 2 right, 4 middle: whether it is down; any other value 0.
int ModifierDown (int key);                 // 16, 160, 161, 64: Shift; 17, 162, 163, 32: Control; 18, 164, 165: Alt.

// --- for tests -------------------------------------------------------------

enum Call_Kind { CALL_BEGIN, CALL_END, CALL_CLIP, CALL_CLIP_ALL, CALL_FILL, CALL_LINE, CALL_IMAGE, CALL_TEXT };

// What reached the seam. Numbers are those given to the operation above; of an image those of the part that is drawn.
struct Call {
    Call_Kind     kind;
    int           x, y, w, h;       // Fill: left, bottom, right, top. Line: from, to.
    uint32_t      colour;
    Drawing_Font  font;
    const char   *text;             // Not terminated; valid during the call.
    int           length;
};
typedef void (*Watcher) (const Call *call);
void Watch (Watcher watcher);       // None ends it.

void Reports_Reset (void);          // What is reported once in the program's life is reported once more.

typedef Drawing_Font (*Font_Maker) (const char *face, int height, int bold, int italic);
void Font_Maker_Set (Font_Maker maker);     // Makes the fonts instead of the back end; none restores it.

}

// --- fonts -----------------------------------------------------------------

// A font of this size in points (below 1: 12) for the window. weight "bold" is bold; style "i" or "o" is italic; no face
// means "Arial". None when face, weight, style and size are all absent, and when the font can't be made: then, once in
// the program's life, "WARNING: in Y_Create_Font()" and the font's facts are reported (LOG_ERRLOG). The caller owns it.
Drawing_Font Y_Create_Font (Window window, const char *face, const char *weight, const char *style, int size);
