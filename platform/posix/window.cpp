// Windows on Linux: every call is passed on to the module of platform/posix/display.h. Before the first window there is
// none, and a call has nothing to act on. Boxes need no module: without a window on a screen, the user reads caption and
// text on standard error.
#include "platform/window.h"

#include <stdio.h>

#include "platform/posix/display.h"

// --- windows ---------------------------------------------------------------

Window Window_Create (const Window_Description *description) {
    const Display *display = Display_Load ();
    return display ? display->Window_Create (description) : nullptr;
}

const char *Window_Error_Text (void) {
    return Display_Get () ? Display_Get ()->Window_Error_Text () : Display_Error_Text ();
}

void Window_Destroy (Window window) {
    if (window) Display_Get ()->Window_Destroy (window);
}

void Window_Show (Window window) {
    if (window) Display_Get ()->Window_Show (window);
}

void Window_Client_Size (Window window, int *width, int *height) {
    *width = *height = 0;
    if (window) Display_Get ()->Window_Client_Size (window, width, height);
}

void Window_Client_Resize (Window window, int width, int height) {
    if (window) Display_Get ()->Window_Client_Resize (window, width, height);
}

void Window_Invalidate (Window window) {
    if (window) Display_Get ()->Window_Invalidate (window);
}

void Window_Update (Window window) {
    if (window) Display_Get ()->Window_Update (window);
}

// --- events ----------------------------------------------------------------

// A program may ask for its end before it has a window, and must not wait for one then.
static int quit_early;
static int quit_code;

int Window_Loop (void) {
    if (Display_Get () && !quit_early) return Display_Get ()->Window_Loop ();
    int code   = quit_early ? quit_code : 0;
    quit_early = 0;
    return code;
}

void Window_Quit (int code) {
    quit_early = !Display_Get (); // The last call counts, whichever side it reaches.
    quit_code  = code;
    if (Display_Get ()) Display_Get ()->Window_Quit (code);
}

int Window_Send (Window window, const Window_Event *event) {
    return window && event ? Display_Get ()->Window_Send (window, event) : 0;
}

void Window_Post_Thread_Message (Window window) {
    if (window) Display_Get ()->Window_Post_Thread_Message (window);
}

// --- pointer ---------------------------------------------------------------

void Window_Capture (Window window) {
    if (window) Display_Get ()->Window_Capture (window);
}

void Window_Capture_End (void) {
    if (Display_Get ()) Display_Get ()->Window_Capture_End ();
}

void Window_Pointer (Window window, int *x, int *y) {
    *x = *y = 0;
    if (window) Display_Get ()->Window_Pointer (window, x, y);
}

int Window_Button_Down (int button) { return Display_Get () ? Display_Get ()->Window_Button_Down (button) : 0; }

int Window_Modifier_Down (int modifier) { return Display_Get () ? Display_Get ()->Window_Modifier_Down (modifier) : 0; }

void Window_Cursor_Set (Window window, Window_Cursor cursor) {
    if (window) Display_Get ()->Window_Cursor_Set (window, cursor);
}

Window_Cursor Window_Cursor_Get (Window window) {
    return window ? Display_Get ()->Window_Cursor_Get (window) : WINDOW_CURSOR_ARROW;
}

// --- message boxes ---------------------------------------------------------

static Window_Box_Hook hook;

static void Write (const char *text, const char *caption) {
    if (!caption) caption = "";
    fprintf (stderr, "%s%s%s\n", caption, caption[0] ? "\n" : "", text);
}

// What the user answered, or -1 when there is no display to ask him on.
static int Box_Show (Window owner, const char *text, const char *caption, Window_Icon icon, int question) {
    return Display_Get () ? Display_Get ()->box (owner, text, caption, icon, question) : -1;
}

void Window_Message_Box (Window owner, const char *text, const char *caption, Window_Icon icon) {
    if (hook) hook (owner, text, caption, icon);
    else if (Box_Show (owner, text, caption, icon, 0) < 0) Write (text, caption);
}

int Window_Question_Box (Window owner, const char *text, const char *caption) {
    if (hook) return hook (owner, text, caption, WINDOW_ICON_QUESTION);
    int answer = Box_Show (owner, text, caption, WINDOW_ICON_QUESTION, 1);
    if (answer < 0) Write (text, caption);
    return answer > 0;
}

void Window_Box_Hook_Set (Window_Box_Hook box) { hook = box; }
