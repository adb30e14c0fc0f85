// What the sources of this back end share: the window record and the picture that it keeps.
#pragma once

#define SDL_MAIN_HANDLED
#include <SDL.h>
#include <cairo.h>
#include <stdint.h>

#include "platform/drawing.h"
#include "platform/window.h"

// A rectangle of pixels as the header counts them: left <= x < right, bottom <= y < top.
struct Area {
    int left, bottom, right, top;
};

static inline int Area_Is_Empty (const Area *area) { return area->left >= area->right || area->bottom >= area->top; }

// Every coordinate is a pixel inside of the limit, however far outside the numbers lie that it is made from.
Area Area_Meet (const Area *limit, int64_t left, int64_t bottom, int64_t right, int64_t top);

struct Drawing_Record {
    Window window;
    Area   clip;    // Never outside of the client area.
};

struct Drop {
    char **files;   // Owned, as are the names.
    int    count, room;
    int    failed;  // A name was lost for lack of memory.
    int    foreign; // Something else than a file was in it.
};

struct Window_Record {
    Window           next;          // In the list of all windows.
    Window_Procedure procedure;
    uint32_t         background;
    int              accept_drops;
    SDL_Window      *shown;         // Owned. None: the window is off-screen.

    int              width, height;
    uint32_t        *pixels;        // Owned: 0x00RRGGBB, rows from top to bottom, without gaps.
    cairo_surface_t *surface;       // Owned: the same pixels.
    Area             dirty;         // Drawn, and not on the screen yet.

    Drawing_Record   drawing;       // Its window is none while no drawing is open.
    int              invalid;       // A paint event follows when the queue is empty.
    int              outdated;      // The size on the screen is another one.
    int              due;           // It is this window's turn to be painted.
    int              busy;          // Events being delivered; the record lives until they are.
    int              destroying;    // Window_Destroy has begun,
    int              destroyed;     // and ended: only the record is left.

    int              x, y;          // Pointer.
    int              pointer_known; // 0: the pointer moves elsewhere, and the system knows where.
    double           wheel_rest;    // What a turn of the wheel left of a unit.
    Window_Cursor    cursor;
    Drop             drop;
};

// A picture of this size in the background colour takes the place of the old one. 1, or 0 and all stays.
int  Picture_Create (Window window, int width, int height);
void Picture_Free (Window window);
void Picture_Touch (Window window, const Area *area);   // Marks as drawn.

// Releases a window that was destroyed when neither an event nor a drawing needs it any more.
void Window_Release (Window window);

// The PNG file of the program's icon, and what gives it to a window. A window goes on without it.
extern const uint8_t PROGRAM_ICON[];
extern const size_t  PROGRAM_ICON_SIZE;
void Screen_Icon_Set (SDL_Window *window);

Window Window_On_Screen (void);     // Any that is on the screen, or none.

// Shows a window, and delivers events to it only, until done is set or the window is closed; then destroys it.
void Window_Alone (Window window, const int *done);

int Box_Show (Window owner, const char *text, const char *caption, Window_Icon icon, int question);    // Display_Box
