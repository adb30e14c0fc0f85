// What the program asks of the window system. Above this header a window is an opaque handle; no system type is seen.
#pragma once

struct Window_Record;                 // Only a back end knows what is in it.
typedef struct Window_Record *Window; // None is allowed wherever a window is asked for.

enum Window_Icon { WINDOW_ICON_NONE, WINDOW_ICON_INFORMATION, WINDOW_ICON_WARNING, WINDOW_ICON_ERROR, WINDOW_ICON_QUESTION };

// --- message boxes ---------------------------------------------------------

// Shows text with one button and waits until it is pressed. Without a display the caption and the text go to standard
// error instead. An empty caption leaves the caption bar empty.
void Window_Message_Box (Window owner, const char *text, const char *caption, Window_Icon icon);

// Asks a question with the buttons Yes and No. 1 for Yes, 0 for No; without a display the question goes to standard error
// and the answer is No.
int Window_Question_Box (Window owner, const char *text, const char *caption);

// A box shown by a test instead of the real one; the result is the answer to a question. None restores the real boxes.
typedef int (*Window_Box_Hook) (Window owner, const char *text, const char *caption, Window_Icon icon);
void Window_Box_Hook_Set (Window_Box_Hook hook);

// --- messages --------------------------------------------------------------

// Posts the program's message "thread text waiting" to the window, from any thread. Nothing happens without a window.
void Window_Post_Thread_Message (Window window);
