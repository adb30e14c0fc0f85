// The main window: creates it, lays its widgets out, and turns the system's events into calls of the view, the toolkit
// and the comparison.
#pragma once

#include "attribute/settings.h"
#include "platform/window.h"

// --- layout ----------------------------------------------------------------

static const int LAYOUT_STRIP     = 160;    // Height of the text list's strip at the start,
static const int LAYOUT_LEFT      = 300;    // and where the separators lie then.
static const int LAYOUT_RIGHT     = 318;
static const int LAYOUT_SEPARATOR = 8;      // Thickness.
static const int LAYOUT_SMALLEST  = 30;     // A pane that is narrower or lower has no sliders, and nothing is drawn in it.

// --- the window ------------------------------------------------------------

struct Main_Window_Place {
    int x, y;               // WINDOW_DEFAULT_POSITION possible.
    int width, height;
};

// Creates the window, hidden; from then on the log's lines are shown in its text list. None on failure: Window_Error_Text
// says why. One at a time. settings are borrowed as long as it lives.
Window Main_Window_Create (const Main_Window_Place *place, const Settings *settings);

// Shows help and colour legend and delivers events until the window is closed, which it is in any case afterwards. The
// exit code.
int  Main_Window_Run (Window window);

// The files that Main_Window_Run takes as its first drop, after the help. Borrowed until it has ended; none is possible.
void Main_Window_Files_Set (const char *const *files, int count);


int  Main_Window_Procedure (Window window, const Window_Event *event);
void Window_Layout (Window window, int width, int height);  // Places all widgets for a client area of this size.
void Pointer_Store (Window window, int x, int y);           // (0, 0): where the system says that the pointer is.
void Main_Window_Help (Window window);                      // Writes help and legend into the text list.

// The log's way into the text list (Log_List_Set), whatever window the line names.
void Main_Window_List (Window window, const char *text, int over);

// --- drops -----------------------------------------------------------------

// The file names of the last two drops, and how many files were taken so far. A file goes into the slot of the count's
// lowest bit; slots are never emptied.
struct Drop_Slots {
    char name[2][2048];
    int  count;
};
extern Drop_Slots Drops;
static const int DROP_NAME_LIMIT = 260;     // Characters of a path that a slot takes; a longer one is refused.

void Main_Window_Exit (void);               // Closes the window, forgets slots, wheel and layout, releases the widgets.

// --- for tests -------------------------------------------------------------

// Runs instead of the system's loop, over an off-screen window; none restores it.
typedef int (*Main_Window_Loop) (Window window);
void Main_Window_Loop_Set (Main_Window_Loop loop);
