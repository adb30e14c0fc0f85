// Message boxes without a display: the user reads caption and text on standard error.
#include "platform/window.h"

#include <stdio.h>

static Window_Box_Hook hook;

static void Write (const char *text, const char *caption) {
    if (!caption) caption = "";
    fprintf (stderr, "%s%s%s\n", caption, caption[0] ? "\n" : "", text);
}

void Window_Message_Box (Window owner, const char *text, const char *caption, Window_Icon icon) {
    if (hook) hook (owner, text, caption, icon);
    else Write (text, caption);
}

int Window_Question_Box (Window owner, const char *text, const char *caption) {
    if (hook) return hook (owner, text, caption, WINDOW_ICON_QUESTION);
    Write (text, caption);
    return 0;
}

void Window_Box_Hook_Set (Window_Box_Hook box) { hook = box; }

// There are no windows yet, so there is no queue that a message could be put into.
void Window_Post_Thread_Message (Window) {}
