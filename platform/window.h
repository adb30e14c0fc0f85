// What the program asks of the window system: windows and their events, the pointer, cursors, message boxes. Above this
// header a window is an opaque handle; no system type is seen. Pixels are counted from the bottom-left one of the client
// area, (0, 0), with y growing upwards; each back end converts. Drawing is platform/drawing.h.
#pragma once

#include <limits.h>
#include <stdint.h>

struct Window_Record;                 // Only a back end knows what is in it.
typedef struct Window_Record *Window; // None is allowed wherever a window is asked for, and then nothing happens.

// --- events ----------------------------------------------------------------

enum Window_Event_Kind {
    WINDOW_CREATE,              // First event of a window, before it is shown.
    WINDOW_SIZE,
    WINDOW_PAINT,
    WINDOW_DESTROY,             // Last event of a window.
    WINDOW_FOCUS_LOST,
    WINDOW_KEY_DOWN,
    WINDOW_SYSTEM_KEY_DOWN,     // With Alt.
    WINDOW_CHARACTER,
    WINDOW_MOUSE_MOVE,
    WINDOW_BUTTON_DOWN,
    WINDOW_BUTTON_UP,
    WINDOW_WHEEL,
    WINDOW_DROP
};

enum Window_Button   { WINDOW_BUTTON_LEFT = 1, WINDOW_BUTTON_RIGHT = 2, WINDOW_BUTTON_MIDDLE = 4 };
enum Window_Modifier { WINDOW_SHIFT = 1, WINDOW_CONTROL = 2, WINDOW_ALT = 4 };

// Keys that make no character; all others are WINDOW_KEY_OTHER.
enum Window_Key {
    WINDOW_KEY_OTHER, WINDOW_KEY_LEFT, WINDOW_KEY_RIGHT, WINDOW_KEY_UP, WINDOW_KEY_DOWN_ARROW, WINDOW_KEY_HOME,
    WINDOW_KEY_END, WINDOW_KEY_DELETE, WINDOW_KEY_PAGE_UP, WINDOW_KEY_PAGE_DOWN
};

static const int WINDOW_NOTCH = 120;    // What one notch of a wheel adds up to.

struct Window_Event {
    Window_Event_Kind  kind;
    int                width, height;   // Create, size: client area in pixels.
    int                x, y;            // Mouse and wheel: the pointer. Outside of the client area while captured.
    int                button;          // Button down, up: a Window_Button.
    int                modifiers;       // Keys, mouse: Window_Modifier bits that are down.
    int                key;             // Key down: a Window_Key.
    uint32_t           character;       // Character: Unicode; 8 backspace, 9 tab, 13 enter, 27 escape.
    int                wheel;           // Positive away from the user.
    int                file_count;      // Drop: none is possible.
    const char *const *files;           // Drop: paths, whole, in the order given; valid during the event.
};

// Answers 1 when it has dealt with the event, 0 for what the system does by itself.
typedef int (*Window_Procedure) (Window window, const Window_Event *event);

// --- windows ---------------------------------------------------------------

static const int WINDOW_DEFAULT_POSITION = INT_MIN;

struct Window_Description {
    const char       *title;        // Also names the kind of window to the system. UTF-8.
    int               x, y;         // Top-left corner on the screen, y downwards, or WINDOW_DEFAULT_POSITION.
    int               width;        // With the system's frame where there is one that it counts (Windows); off-screen
    int               height;       // always the client area itself.
    uint32_t          background;   // Packed colour (platform/drawing.h) of what has not been drawn yet.
    Window_Procedure  procedure;
    int               accept_drops;
    int               off_screen;   // 1: never seen; needs no display. Drawn, read and sent events like any other.
};

// A hidden window, after its create event; Window_Destroy releases it. None on failure: then Window_Error_Text says why
// (static text, until the next call).
Window      Window_Create (const Window_Description *description);
const char *Window_Error_Text (void);
void        Window_Destroy (Window window);         // With its destroy event.
void        Window_Show (Window window);            // With a paint event at once: the program may be busy afterwards.
void        Window_Client_Size (Window window, int *width, int *height);    // 0, 0 without a window.
void        Window_Client_Resize (Window window, int width, int height);    // With a size event.

void Window_Invalidate (Window window);     // A paint event follows when the queue is empty.
void Window_Update (Window window);         // Puts what has been drawn so far on the screen, at once and without events.

int  Window_Loop (void);                    // Delivers events until Window_Quit; its code.
void Window_Quit (int code);

// Delivers an event as if the system had: pointer, buttons and modifiers follow it. What the procedure answers.
int  Window_Send (Window window, const Window_Event *event);

// Posts the program's message "thread text waiting" to the window, from any thread. Left to default handling.
void Window_Post_Thread_Message (Window window);

// --- pointer ---------------------------------------------------------------

void Window_Capture (Window window);        // All mouse events go to the window, also outside of it.
void Window_Capture_End (void);
void Window_Pointer (Window window, int *x, int *y);    // Where the pointer is now. 0, 0 without a window.
int  Window_Button_Down (int button);       // 1 while this Window_Button is down. 0 for any other value.
int  Window_Modifier_Down (int modifier);   // The same for a Window_Modifier; never the locked state of a key.

enum Window_Cursor {
    WINDOW_CURSOR_ARROW, WINDOW_CURSOR_WEST_EAST, WINDOW_CURSOR_NORTH_SOUTH, WINDOW_CURSOR_ALL, WINDOW_CURSOR_WAIT
};

void          Window_Cursor_Set (Window window, Window_Cursor cursor);      // Stays until the next one.
Window_Cursor Window_Cursor_Get (Window window);

// --- message boxes ---------------------------------------------------------

enum Window_Icon { WINDOW_ICON_NONE, WINDOW_ICON_INFORMATION, WINDOW_ICON_WARNING, WINDOW_ICON_ERROR, WINDOW_ICON_QUESTION };

// Shows text with one button and waits until it is pressed. Without a display the caption and the text go to standard
// error instead. An empty caption leaves the caption bar empty.
void Window_Message_Box (Window owner, const char *text, const char *caption, Window_Icon icon);

// Asks a question with the buttons Yes and No. 1 for Yes, 0 for No; without a display the question goes to standard error
// and the answer is No.
int Window_Question_Box (Window owner, const char *text, const char *caption);

// A box shown by a test instead of the real one; the result is the answer to a question. None restores the real boxes.
typedef int (*Window_Box_Hook) (Window owner, const char *text, const char *caption, Window_Icon icon);
void Window_Box_Hook_Set (Window_Box_Hook hook);
