// Message boxes and posted messages on Windows. A window's opaque handle is the system's own.
#include "platform/window.h"

#include <stdio.h>

#include <windows.h>

static const UINT MESSAGE_THREAD = WM_USER + 1; // "Thread text waiting"; left to the default handling.

static Window_Box_Hook box_hook;

static HWND Handle (Window window) { return reinterpret_cast<HWND> (window); }

// --- message boxes ---------------------------------------------------------

static UINT Icon_Flag (Window_Icon icon) {
    switch (icon) {
    case WINDOW_ICON_INFORMATION: return MB_ICONINFORMATION;
    case WINDOW_ICON_WARNING: return MB_ICONEXCLAMATION;
    case WINDOW_ICON_ERROR: return MB_ICONSTOP;
    case WINDOW_ICON_QUESTION: return MB_ICONQUESTION;
    default: return 0;
    }
}

// A box that belongs to a window stays above it. One without an owner would open behind the windows of other programs, so
// it is made topmost. Where no box can be shown (no desktop), its texts go to standard error.
static int Box_Show (Window owner, const char *text, const char *caption, UINT flags) {
    UINT above  = owner ? MB_APPLMODAL : MB_TASKMODAL | MB_TOPMOST | MB_SETFOREGROUND;
    int  button = MessageBoxA (Handle (owner), text, caption, flags | above);

    if (button <= 0) {
        fprintf (stderr, "%s\n%s\n", caption, text);
        fflush (stderr);
    }
    return button;
}

void Window_Message_Box (Window owner, const char *text, const char *caption, Window_Icon icon) {
    if (box_hook) box_hook (owner, text, caption, icon);
    else Box_Show (owner, text, caption, MB_OK | Icon_Flag (icon));
}

int Window_Question_Box (Window owner, const char *text, const char *caption) {
    if (box_hook) return box_hook (owner, text, caption, WINDOW_ICON_QUESTION);
    return Box_Show (owner, text, caption, MB_YESNO | MB_ICONQUESTION) == IDYES;
}

void Window_Box_Hook_Set (Window_Box_Hook hook) { box_hook = hook; }

// --- messages --------------------------------------------------------------

void Window_Post_Thread_Message (Window window) {
    if (window) PostMessageA (Handle (window), MESSAGE_THREAD, 0, 0);
}
