// Icons: small images read from the installation's icon folder on first use and kept for the life of the program.
#pragma once

#include <stdint.h>

#include "tools/widget.h"

static const int ICON_LIMIT = 255;

struct Icon {
    char     *name;             // Owned.
    uint16_t  width, height;
    uint8_t  *pixels;           // Owned: blue, green, red, alpha, rows from top to bottom. None: it could not be read.
    uint8_t  *pixels_rgba;      // Owned: the same as red, green, blue, alpha.
};

// Where the folder lies: below the installation's directory, which ends in a separator. Copied; empty is
// "c:\Program Files\Kestrelbay\", and so is one that no path of the system can be as long as. Set once at start-up, before
// the first icon is read; later changes have no effect.
void Icon_Install_Path_Set (const char *path);

// The icon by the name of its file. The first use reads the file; a failed one is not tried again. None when it could not
// be read or ICON_LIMIT icons are known. A session that is open (and widget is given) is ended and begun anew on the
// widget's window, clipped to the widget. The cache owns the icon.
const Icon *Icon_Read (const Widget *widget, const char *name);

// What Icon_Read reads a file with: fills the size and both copies of the pixels. 1, or 0 after the messages, and then
// there are no pixels.
int Icon_Read_RGB (Icon *icon, const char *name);       // An image of 4 bytes a pixel, the fourth of them transparency.
int Icon_Read_TGA (Icon *icon, const char *name);       // A TARGA file of 24 bits; blue alone is its transparency.

// Inside a session: draws the icon with its bottom-left corner at (x, y) when it meets the widget's rectangle, blended on
// the widget's colour. label is for the trace.
void Icon_Draw_Image (const Widget *widget, int x, int y, const char *label, const char *name);

// For tests: forgets all icons and the folder, and what was reported once. The installation's path stays.
void Icon_Free_All (void);
