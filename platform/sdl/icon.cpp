// The icon of the program's windows, as panels and window lists show it: Icons/tagwright_128.png, which is built into the
// module (platform/CMakeLists.txt), since a window has it wherever the program stands.
#include "platform/sdl/private.h"

#include <string.h>

struct Unread {
    const uint8_t *bytes;
    size_t         length;
};

static cairo_status_t Read (void *context, unsigned char *bytes, unsigned length) {
    Unread *unread = static_cast<Unread *> (context);
    if (length > unread->length) return CAIRO_STATUS_READ_ERROR;
    memcpy (bytes, unread->bytes, length);
    unread->bytes += length;
    unread->length -= length;
    return CAIRO_STATUS_SUCCESS;
}

// Cairo's pixels have their opacity multiplied in, those of an icon have not.
static uint32_t Straight (uint32_t pixel) {
    uint32_t opacity = pixel >> 24;
    if (!opacity) return 0;
    uint32_t straight = opacity << 24;
    for (int shift = 0; shift < 24; shift += 8)
        straight |= ((pixel >> shift & 255) * 255 + opacity / 2) / opacity << shift;
    return straight;
}

static void Set (SDL_Window *window, cairo_surface_t *picture) {
    int            width  = cairo_image_surface_get_width (picture);
    int            height = cairo_image_surface_get_height (picture);
    int            stride = cairo_image_surface_get_stride (picture);
    unsigned char *rows   = cairo_image_surface_get_data (picture);
    SDL_Surface   *icon   = SDL_CreateRGBSurfaceWithFormat (0, width, height, 32, SDL_PIXELFORMAT_ARGB8888);
    if (!icon) return;
    for (int y = 0; y < height; y++)
        for (int x = 0; x < width; x++) {
            uint32_t pixel;
            memcpy (&pixel, rows + (ptrdiff_t)y * stride + x * 4, sizeof pixel);
            pixel = Straight (pixel);
            memcpy (static_cast<char *> (icon->pixels) + (ptrdiff_t)y * icon->pitch + x * 4, &pixel, sizeof pixel);
        }
    SDL_SetWindowIcon (window, icon);
    SDL_FreeSurface (icon);
}

void Screen_Icon_Set (SDL_Window *window) {
    Unread           unread  = {PROGRAM_ICON, PROGRAM_ICON_SIZE};
    cairo_surface_t *picture = cairo_image_surface_create_from_png_stream (Read, &unread);
    if (!cairo_surface_status (picture)) Set (window, picture);
    cairo_surface_destroy (picture);
}
