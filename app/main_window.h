// The main window: creates it, lays its widgets out, and turns the system's events into calls of the view, the toolkit
// and the comparison.
#pragma once

#include "attribute/settings.h"
#include "platform/window.h"

struct Main_Window_Place {
    int x, y;               // WINDOW_DEFAULT_POSITION possible.
    int width, height;
};

// Creates the window, hidden. None on failure.
Window Main_Window_Create (const Main_Window_Place *place, const Settings *settings);

// Shows it with the help and the colour legend, and delivers events until it is closed. The exit code.
int  Main_Window_Run (Window window);

int  Main_Window_Procedure (Window window, const Window_Event *event);
void Window_Layout (Window window, int width, int height);  // Places all widgets for a client area of this size.
void Pointer_Store (Window window, int x, int y);           // (0, 0): where the system says that the pointer is.
void Main_Window_Help (Window window);                      // Writes help and legend into the text list.

// The log's way into the text list (Log_List_Set).
void Main_Window_List (Window window, const char *text, int over);

// The file names of the last two drops, and how many files were dropped so far.
struct Drop_Slots {
    char name[2][2048];
    int  count;
};
extern Drop_Slots Drops;
static const int DROP_NAME_LIMIT = 260;     // Characters of a path that a slot takes.

void Main_Window_Exit (void);               // Forgets slots, wheel and layout, and releases the widgets.
