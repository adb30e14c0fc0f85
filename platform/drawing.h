// What the program draws with: lines, filled rectangles, texts and images in a window. Whatever is drawn is kept with the
// window until it is drawn over, so a window may be drawn at any time and read back.
//
// Pixels are counted from the bottom-left one of the client area, (0, 0), with y growing upwards. A rectangle (left,
// bottom, right, top) covers the pixels left <= x < right, bottom <= y < top. A colour is packed as red in the low byte,
// then green, blue, and a fourth byte that no back end looks at. Nothing is drawn outside of the clip, whatever the
// coordinates are.
#pragma once

#include <stdint.h>

#include "platform/window.h"

struct Drawing_Record;                  // Only a back end knows what is in them.
typedef struct Drawing_Record *Drawing;
struct Drawing_Font_Record;
typedef struct Drawing_Font_Record *Drawing_Font;   // None: the system's own font.

constexpr uint32_t Drawing_Colour (unsigned red, unsigned green, unsigned blue) {
    return (red & 255) | (green & 255) << 8 | (blue & 255) << 16;
}

// --- device context --------------------------------------------------------

Drawing Drawing_Begin (Window window);      // None when the window can't be drawn. One at a time in the whole program:
                                            // a back end may refuse a second one, also of another window.
void    Drawing_End (Drawing drawing);
int     Drawing_Pixels_Per_Inch (Drawing drawing);

// --- clip ------------------------------------------------------------------

// Each replaces the clip set before; Drawing_Begin starts with the whole client area.
void Drawing_Clip (Drawing drawing, int left, int bottom, int right, int top);
void Drawing_Clip_All (Drawing drawing);

// --- shapes ----------------------------------------------------------------

void Drawing_Fill (Drawing drawing, int left, int bottom, int right, int top, uint32_t colour);

// A straight line from the first point up to the second, which is left out. Width 0 and 1 are one pixel; a wider line has
// the same pixels on both sides of its middle, one more below or left of it when its width is even. No smoothing.
void Drawing_Line (Drawing drawing, int x1, int y1, int x2, int y2, int width, uint32_t colour);

// Copies an image of width x height pixels with its bottom-left pixel at (x, y). A pixel is blue, green, red and a byte
// that is ignored; rows go from top to bottom, row_pixels apart.
void Drawing_Image (Drawing drawing, int x, int y, int width, int height, const uint8_t *pixels, int row_pixels);

// --- text ------------------------------------------------------------------

// A font with this character height in pixels (cell height less the room above accents). Released by Drawing_Font_Free.
// None when the system can't make it.
Drawing_Font Drawing_Font_Create (const char *face, int height, int bold, int italic);
void         Drawing_Font_Free (Drawing_Font font);         // Accepts none.

struct Drawing_Font_Metrics {
    int height;             // Of a line: from the lowest to the highest pixel of the font's characters.
    int descent;            // The part of it below the base line.
    int average_width;      // Of a character.
};
void Drawing_Font_Measure (Drawing drawing, Drawing_Font font, Drawing_Font_Metrics *metrics);

// Texts are bytes: each valid UTF-8 sequence is its character (platform/utf8.h); each other byte is one of Windows-1252 on
// Linux, of the ANSI code page on Windows, or U+FFFD where that has none. Controls are blanks: tabs and line ends are not
// interpreted. Nothing is drawn behind the characters.
int  Drawing_Text_Width (Drawing drawing, Drawing_Font font, const char *text, int length);
void Drawing_Text (Drawing drawing, Drawing_Font font, int x, int y, const char *text, int length, uint32_t colour);
                            // (x, y) is the bottom-left pixel of the run's cell.

// --- reading back ----------------------------------------------------------

uint32_t Drawing_Pixel (Drawing drawing, int x, int y);     // Fourth byte 0. Outside of the client area 0xFFFFFFFF.

// Writes what the window shows as a PNG file. 1 or 0. On Windows always 0: there a picture is taken from the screen.
int Drawing_Picture_Write (Window window, const char *path);
