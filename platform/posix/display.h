// How the program reaches its display on Linux: a module, tagwright_display.so, that holds platform/sdl/ and is loaded when
// the first window is made. A comparison without a window must not pay for the libraries of windows and fonts, whose
// loading alone takes many times what comparing two small files does. The module is never unloaded.
#pragma once

#include <stddef.h>

#include "platform/drawing.h"
#include "platform/window.h"

// Functions that the module holds under the same names as the program, which passes each call on.
// clang-format off
#define DISPLAY_FUNCTIONS(ENTRY) \
    ENTRY (Window_Create)         ENTRY (Window_Error_Text)       ENTRY (Window_Destroy)          ENTRY (Window_Show)          \
    ENTRY (Window_Client_Size)    ENTRY (Window_Client_Resize)    ENTRY (Window_Invalidate)       ENTRY (Window_Update)        \
    ENTRY (Window_Loop)           ENTRY (Window_Quit)             ENTRY (Window_Send)                                          \
    ENTRY (Window_Post_Thread_Message)                            ENTRY (Window_Capture)          ENTRY (Window_Capture_End)   \
    ENTRY (Window_Pointer)        ENTRY (Window_Button_Down)      ENTRY (Window_Modifier_Down)                                 \
    ENTRY (Window_Cursor_Set)     ENTRY (Window_Cursor_Get)                                                                    \
    ENTRY (Drawing_Begin)         ENTRY (Drawing_End)             ENTRY (Drawing_Pixels_Per_Inch) ENTRY (Drawing_Clip)         \
    ENTRY (Drawing_Clip_All)      ENTRY (Drawing_Fill)            ENTRY (Drawing_Line)            ENTRY (Drawing_Image)        \
    ENTRY (Drawing_Font_Create)   ENTRY (Drawing_Font_Free)       ENTRY (Drawing_Font_Measure)    ENTRY (Drawing_Text_Width)   \
    ENTRY (Drawing_Text)          ENTRY (Drawing_Pixel)           ENTRY (Drawing_Picture_Write)
// clang-format on

// Shows a real box: 1 for the button OK or Yes, 0 for No or a box closed otherwise. -1 when there is no window on a screen,
// or the system can't show it; then nothing was shown.
typedef int (*Display_Box) (Window owner, const char *text, const char *caption, Window_Icon icon, int question);

struct Display {
#define DISPLAY_FIELD(name) decltype (&::name) name;
    DISPLAY_FUNCTIONS (DISPLAY_FIELD)
#undef DISPLAY_FIELD
    Display_Box box;
};

static const char DISPLAY_FILE[]  = "tagwright_display.so";
static const char DISPLAY_ENTRY[] = "Tagwright_Display";

// The one function that the module exports. None when the program was built with another table.
typedef const Display *(*Display_Entry) (size_t table_size);

// --- the program's side ----------------------------------------------------

const Display *Display_Get (void);      // None while the module isn't loaded.
const Display *Display_Load (void);     // Loads it when it isn't. None on failure; then Display_Error_Text says why.
const char    *Display_Error_Text (void);
