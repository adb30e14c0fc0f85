// What the sources of the Windows back end share: the record behind a window, the memory that it is drawn in, and the way
// from bytes to the system's characters. Memory and screen count rows downwards; only what is behind platform/drawing.h
// and the events knows of y growing upwards.
#pragma once

#include <windows.h>

#include "platform/drawing.h"
#include "platform/window.h"

// --- surface ---------------------------------------------------------------

// Zero bytes are one that holds nothing.
struct Surface {
    HDC       context;      // Owned; text is drawn through it.
    HBITMAP   bitmap;       // Owned; selected in context.
    HGDIOBJ   previous;     // What context came with.
    uint32_t *pixels;       // Of the bitmap: rows from top to bottom; red << 16 | green << 8 | blue, highest byte unused.
    int       width;        // May be 0, and then nothing can be drawn.
    int       height;
    int       row_pixels;
};

// What was drawn stays where it is, counted from the bottom-left corner; what is new gets the background. 0 when there is
// no memory: then the surface is what it was.
int  Surface_Resize (Surface *surface, int width, int height, uint32_t background);
void Surface_Free (Surface *surface);       // What is in it.

// --- windows ---------------------------------------------------------------

struct Window_State {
    Window_State     *next;
    HWND              handle;
    Window_Procedure  procedure;
    int               off_screen;
    int               created;          // Its create event was delivered.
    uint32_t          background;
    Window_Cursor     cursor;
    Surface           surface;          // As large as the client area.
    RECT              changed;          // What the screen doesn't show yet of it. May be empty.
    int               paint_posted;     // Off-screen: a paint message is on its way.
    int               paint_missed;     // A paint event is owed: the last occasion came in the middle of an event.
    int               pointer_sent;     // The pointer is where Window_Send put it.
    int               pointer_x;
    int               pointer_y;
    wchar_t           lead;             // First half of a character that comes in two, or 0.
};

// The window's record, or none for what is no window of ours.
Window_State *Window_State_Of (Window window);

static inline Window Window_Of (const Window_State *state) { return reinterpret_cast<Window> (state->handle); }

// Hands the event to the program. Afterwards the window may be gone.
int  Window_Deliver (Window_State *state, const Window_Event *event);

// A part of the surface was drawn. It goes to the screen at once, in the middle of an event at its end.
void Window_Changed (Window_State *state, const RECT *part);
void Window_Flush_All (void);
void Window_Cursor_Show (const Window_State *state);

// The system's own messages to all windows of ours.
LRESULT CALLBACK Window_Message (HWND handle, UINT message, WPARAM word, LPARAM parameter);

static const UINT MESSAGE_THREAD = WM_USER + 1;     // "Thread text waiting"; left to the default handling.
static const UINT MESSAGE_PAINT  = WM_APP + 1;      // An off-screen window is to be painted.

// Where buttons and modifiers come from: the last event that was sent, or the system.
struct Window_Input {
    int sent;
    int buttons;
    int modifiers;
};
extern Window_Input Input;

int Window_Modifiers (void);        // Those that are down.

void Window_State_Link (Window_State *state, HWND handle);
void Window_State_Drop (Window_State *state);   // Unlinks and frees it.
extern Window_State *Window_State_New;          // Of the window that is being created; taken by its first message.

// --- drawing ---------------------------------------------------------------

void Drawing_Forget (const Window_State *state);    // Its window is going; an open session draws nothing any more.

// --- text ------------------------------------------------------------------

// Valid UTF-8 as such, other bytes in the system's ANSI code page, control characters as blanks. The result has room for
// length units and is not terminated. The number of units.
int Text_To_UTF16 (const char *text, int length, wchar_t *result);
