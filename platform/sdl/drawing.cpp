// Shapes, straight into the pixels that a window keeps: the program asks for whole pixels without smoothing, so there is
// nothing that a drawing library could add. Texts are in text.cpp.
#include "platform/drawing.h"

#include <stdlib.h>
#include <string.h>

#include "platform/sdl/private.h"

static const int SIZE_LIMIT = 32000; // Of a picture's side; the library that draws texts takes a little more.

// --- areas -----------------------------------------------------------------

static int Between (int64_t value, int low, int high) {
    if (value < low) return low;
    return value > high ? high : (int)value;
}

Area Area_Meet (const Area *limit, int64_t left, int64_t bottom, int64_t right, int64_t top) {
    return {Between (left, limit->left, limit->right), Between (bottom, limit->bottom, limit->top),
            Between (right, limit->left, limit->right), Between (top, limit->bottom, limit->top)};
}

static Area Client (Window window) { return {0, 0, window->width, window->height}; }

// --- the picture of a window -----------------------------------------------

static uint32_t Pixel_Of (uint32_t colour) { return (colour & 0xFF) << 16 | (colour & 0xFF00) | (colour >> 16 & 0xFF); }

static uint32_t *Pixel_At (Window window, int x, int y) {
    return window->pixels + (int64_t)(window->height - 1 - y) * window->width + x;
}

int Picture_Create (Window window, int width, int height) {
    if (width < 1 || height < 1 || width > SIZE_LIMIT || height > SIZE_LIMIT) return 0;
    size_t    count  = (size_t)width * (size_t)height;
    uint32_t *pixels = static_cast<uint32_t *> (malloc (count * sizeof *pixels));
    if (!pixels) return 0;
    for (size_t i = 0; i < count; i++) pixels[i] = Pixel_Of (window->background);

    cairo_surface_t *surface = cairo_image_surface_create_for_data (reinterpret_cast<unsigned char *> (pixels),
                                                                    CAIRO_FORMAT_RGB24, width, height, width * 4);
    if (cairo_surface_status (surface) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy (surface);
        free (pixels);
        return 0;
    }
    Picture_Free (window);
    window->pixels       = pixels;
    window->surface      = surface;
    window->width        = width;
    window->height       = height;
    window->dirty        = Client (window);
    window->drawing.clip = Client (window);
    return 1;
}

void Picture_Free (Window window) {
    if (window->surface) cairo_surface_destroy (window->surface);
    free (window->pixels);
    window->surface = nullptr;
    window->pixels  = nullptr;
}

void Picture_Touch (Window window, const Area *area) {
    Area *dirty = &window->dirty;
    if (Area_Is_Empty (area)) return;
    if (Area_Is_Empty (dirty)) {
        *dirty = *area;
        return;
    }
    if (area->left < dirty->left) dirty->left = area->left;
    if (area->bottom < dirty->bottom) dirty->bottom = area->bottom;
    if (area->right > dirty->right) dirty->right = area->right;
    if (area->top > dirty->top) dirty->top = area->top;
}

// --- device context --------------------------------------------------------

Drawing Drawing_Begin (Window window) {
    if (!window || window->destroyed || window->drawing.window) return nullptr;
    window->drawing = {window, Client (window)};
    return &window->drawing;
}

void Drawing_End (Drawing drawing) {
    if (!drawing || !drawing->window) return;
    Window window   = drawing->window;
    drawing->window = nullptr;
    Window_Release (window);
}

// One unit is one pixel on every screen, so the measure of fonts is the same as well.
int Drawing_Pixels_Per_Inch (Drawing) { return 96; }

void Drawing_Clip (Drawing drawing, int left, int bottom, int right, int top) {
    Area client   = Client (drawing->window);
    drawing->clip = Area_Meet (&client, left, bottom, right, top);
}

void Drawing_Clip_All (Drawing drawing) { drawing->clip = Client (drawing->window); }

// --- fill ------------------------------------------------------------------

static void Fill (Drawing drawing, int64_t left, int64_t bottom, int64_t right, int64_t top, uint32_t pixel) {
    Area area = Area_Meet (&drawing->clip, left, bottom, right, top);
    if (Area_Is_Empty (&area)) return;
    for (int y = area.bottom; y < area.top; y++) {
        uint32_t *row = Pixel_At (drawing->window, area.left, y);
        for (int i = 0; i < area.right - area.left; i++) row[i] = pixel;
    }
    Picture_Touch (drawing->window, &area);
}

void Drawing_Fill (Drawing drawing, int left, int bottom, int right, int top, uint32_t colour) {
    Fill (drawing, left, bottom, right, top, Pixel_Of (colour));
}

// --- line ------------------------------------------------------------------

// A line has one step for each pixel of its longer axis. Each step's place on the other axis is computed on its own, so
// that the steps outside of the clip can be left out, however many they are.
struct Line {
    int64_t  start, steps; // On the longer axis.
    int      direction;
    int64_t  across; // Where it starts on the other axis.
    uint64_t rise;   // How far it gets there.
    int      rise_direction;
};

static int Direction (int64_t distance) { return distance < 0 ? -1 : 1; }

static Line Line_Between (int64_t start, int64_t end, int64_t across, int64_t across_end) {
    return {start,
            llabs (end - start),
            Direction (end - start),
            across,
            (uint64_t)llabs (across_end - across),
            Direction (across_end - across)};
}

static int64_t Line_Across (const Line *line, int64_t step) {
    uint64_t product = (uint64_t)step * line->rise; // Both are below 2^32.
    uint64_t length  = (uint64_t)line->steps;
    int64_t  moved   = (int64_t)(product / length + (2 * (product % length) >= length ? 1 : 0));
    return line->across + line->rise_direction * moved;
}

// The steps that lie in low <= place < high: from first up to the one given back.
static int64_t Line_Steps (const Line *line, int low, int high, int64_t *first) {
    int64_t from = line->direction > 0 ? low - line->start : line->start - (high - 1);
    int64_t to   = line->direction > 0 ? high - line->start : line->start - low + 1;
    *first       = from > 0 ? from : 0;
    return to < line->steps ? to : line->steps;
}

void Drawing_Line (Drawing drawing, int x1, int y1, int x2, int y2, int width, uint32_t colour) {
    int64_t     thick = width > 1 ? width : 1;
    uint32_t    pixel = Pixel_Of (colour);
    int         flat  = llabs ((int64_t)x2 - x1) >= llabs ((int64_t)y2 - y1);
    Line        line  = flat ? Line_Between (x1, x2, y1, y2) : Line_Between (y1, y2, x1, x2);
    const Area *clip  = &drawing->clip;
    int64_t     step;
    int64_t     end = Line_Steps (&line, flat ? clip->left : clip->bottom, flat ? clip->right : clip->top, &step);

    for (; step < end; step++) {
        int64_t along = line.start + line.direction * step;
        int64_t low   = Line_Across (&line, step) - thick / 2;
        if (flat) Fill (drawing, along, low, along + 1, low + thick, pixel);
        else Fill (drawing, low, along, low + thick, along + 1, pixel);
    }
}

// --- image -----------------------------------------------------------------

void Drawing_Image (Drawing drawing, int x, int y, int width, int height, const uint8_t *pixels, int row_pixels) {
    int64_t top  = (int64_t)y + height;
    Area    area = Area_Meet (&drawing->clip, x, y, (int64_t)x + width, top);
    if (!pixels || width < 1 || height < 1 || Area_Is_Empty (&area)) return;
    for (int place = area.bottom; place < area.top; place++) {
        const uint8_t *from = pixels + ((top - 1 - place) * row_pixels + area.left - x) * 4;
        uint32_t      *to   = Pixel_At (drawing->window, area.left, place);
        for (int i = 0; i < area.right - area.left; i++, from += 4)
            to[i] = (uint32_t)from[2] << 16 | (uint32_t)from[1] << 8 | from[0];
    }
    Picture_Touch (drawing->window, &area);
}

// --- reading back ----------------------------------------------------------

uint32_t Drawing_Pixel (Drawing drawing, int x, int y) {
    Window window = drawing->window;
    if (x < 0 || y < 0 || x >= window->width || y >= window->height) return 0xFFFFFFFF;
    return Pixel_Of (*Pixel_At (window, x, y) & 0xFFFFFF);
}

int Drawing_Picture_Write (Window window, const char *path) {
    if (!window || !window->surface) return 0;
    cairo_surface_mark_dirty (window->surface);
    return cairo_surface_write_to_png (window->surface, path) == CAIRO_STATUS_SUCCESS;
}
