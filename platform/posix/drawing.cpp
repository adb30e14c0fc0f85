// Drawing on Linux: every call is passed on to the module of platform/posix/display.h. A drawing belongs to a window, so the
// module is loaded when there is one; a font may be asked for before.
#include "platform/drawing.h"

#include "platform/posix/display.h"

Drawing Drawing_Begin (Window window) { return window ? Display_Get ()->Drawing_Begin (window) : nullptr; }

void Drawing_End (Drawing drawing) {
    if (drawing) Display_Get ()->Drawing_End (drawing);
}

int Drawing_Pixels_Per_Inch (Drawing drawing) { return Display_Get ()->Drawing_Pixels_Per_Inch (drawing); }

// --- clip ------------------------------------------------------------------

void Drawing_Clip (Drawing drawing, int left, int bottom, int right, int top) {
    Display_Get ()->Drawing_Clip (drawing, left, bottom, right, top);
}

void Drawing_Clip_All (Drawing drawing) { Display_Get ()->Drawing_Clip_All (drawing); }

// --- shapes ----------------------------------------------------------------

void Drawing_Fill (Drawing drawing, int left, int bottom, int right, int top, uint32_t colour) {
    Display_Get ()->Drawing_Fill (drawing, left, bottom, right, top, colour);
}

void Drawing_Line (Drawing drawing, int x1, int y1, int x2, int y2, int width, uint32_t colour) {
    Display_Get ()->Drawing_Line (drawing, x1, y1, x2, y2, width, colour);
}

void Drawing_Image (Drawing drawing, int x, int y, int width, int height, const uint8_t *pixels, int row_pixels) {
    Display_Get ()->Drawing_Image (drawing, x, y, width, height, pixels, row_pixels);
}

// --- text ------------------------------------------------------------------

Drawing_Font Drawing_Font_Create (const char *face, int height, int bold, int italic) {
    const Display *display = Display_Load ();
    return display ? display->Drawing_Font_Create (face, height, bold, italic) : nullptr;
}

void Drawing_Font_Free (Drawing_Font font) {
    if (font) Display_Get ()->Drawing_Font_Free (font);
}

void Drawing_Font_Measure (Drawing drawing, Drawing_Font font, Drawing_Font_Metrics *metrics) {
    Display_Get ()->Drawing_Font_Measure (drawing, font, metrics);
}

int Drawing_Text_Width (Drawing drawing, Drawing_Font font, const char *text, int length) {
    return Display_Get ()->Drawing_Text_Width (drawing, font, text, length);
}

void Drawing_Text (Drawing drawing, Drawing_Font font, int x, int y, const char *text, int length, uint32_t colour) {
    Display_Get ()->Drawing_Text (drawing, font, x, y, text, length, colour);
}

// --- reading back ----------------------------------------------------------

uint32_t Drawing_Pixel (Drawing drawing, int x, int y) { return Display_Get ()->Drawing_Pixel (drawing, x, y); }

int Drawing_Picture_Write (Window window, const char *path) {
    return window && path ? Display_Get ()->Drawing_Picture_Write (window, path) : 0;
}
