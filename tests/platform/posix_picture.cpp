#include "tests/support/pictures.h"

#include <cairo.h>
#include <stdlib.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/drawing.h"
#include "tests/support/temporary.h"

// Before any window is made, since fonts are looked for once.
static const int fonts_fixed = setenv ("FONTCONFIG_FILE", TAGWRIGHT_SOURCE_DIR "/tests/support/fonts.conf", 0);

struct Picture {
    int                   width, height;
    std::vector<uint32_t> pixels; // 0x00RRGGBB. None: it could not be read.
};

static Picture Picture_Read (const std::string &path) {
    Picture          picture = {};
    cairo_surface_t *surface = cairo_image_surface_create_from_png (path.c_str ());
    if (cairo_surface_status (surface) == CAIRO_STATUS_SUCCESS) {
        picture.width             = cairo_image_surface_get_width (surface);
        picture.height            = cairo_image_surface_get_height (surface);
        const unsigned char *rows = cairo_image_surface_get_data (surface);
        picture.pixels.resize (static_cast<size_t> (picture.width) * picture.height);
        for (int y = 0; y < picture.height; y++)
            std::memcpy (&picture.pixels[static_cast<size_t> (y) * picture.width],
                         rows + static_cast<size_t> (y) * cairo_image_surface_get_stride (surface),
                         static_cast<size_t> (picture.width) * 4);
        for (uint32_t &pixel : picture.pixels) pixel &= 0xFFFFFF;
    }
    cairo_surface_destroy (surface);
    return picture;
}

static void Picture_Write (const Picture &picture, const std::string &path) {
    std::vector<uint32_t> pixels = picture.pixels;
    cairo_surface_t      *surface =
        cairo_image_surface_create_for_data (reinterpret_cast<unsigned char *> (pixels.data ()), CAIRO_FORMAT_RGB24,
                                             picture.width, picture.height, picture.width * 4);
    cairo_surface_write_to_png (surface, path.c_str ());
    cairo_surface_destroy (surface);
}

static bool Is_Close (uint32_t a, uint32_t b) {
    for (int shift = 0; shift < 24; shift += 8)
        if (std::abs (static_cast<int> (a >> shift & 255) - static_cast<int> (b >> shift & 255)) > PICTURE_TOLERANCE)
            return false;
    return true;
}

// What is there, pale, with the pixels in red that should be different ones.
static Picture Difference (const Picture &actual, const Picture &golden, int *count) {
    Picture result = actual;
    *count         = 0;
    for (size_t i = 0; i < actual.pixels.size (); i++) {
        bool close       = Is_Close (actual.pixels[i], golden.pixels[i]);
        result.pixels[i] = close ? 0xC0C0C0 + (actual.pixels[i] >> 2 & 0x3F3F3F) : 0xFF0000;
        if (!close) ++*count;
    }
    return result;
}

static bool Is_Update () {
    const char *update = std::getenv ("TAGWRIGHT_GOLDEN_UPDATE");
    return update && std::string (update) == "1";
}

static ::testing::AssertionResult Update (const Picture &actual, const std::string &path) {
    Picture golden = Picture_Read (path);
    if (golden.width == actual.width && golden.pixels == actual.pixels) return ::testing::AssertionSuccess ();
    std::error_code ignored; // What can't be made can't be written either.
    std::filesystem::create_directories (std::filesystem::path (path).parent_path (), ignored);
    Picture_Write (actual, path);
    if (Picture_Read (path).pixels == actual.pixels) return ::testing::AssertionSuccess ();
    return ::testing::AssertionFailure () << path << " can't be written";
}

static ::testing::AssertionResult Failure (const Picture &actual, const std::string &name, const std::string &what) {
    std::string folder = TAGWRIGHT_PICTURES;
    std::string file   = folder + "/" + name + ".actual.png";
    std::filesystem::create_directories (folder);
    Picture_Write (actual, file);
    return ::testing::AssertionFailure () << "picture " << name << " " << what << "; what was drawn is " << file;
}

::testing::AssertionResult Picture_Matches_In (const char *folder, Window window, const char *name) {
    Temporary_Directory directory;
    std::string         drawn = directory.File ("picture.png");
    if (!Drawing_Picture_Write (window, drawn.c_str ()))
        return ::testing::AssertionFailure () << "the window has no picture";
    Picture     actual = Picture_Read (drawn);
    std::string path   = std::string (folder) + "/" + name + ".png";
    if (Is_Update ()) return Update (actual, path);

    Picture golden = Picture_Read (path);
    if (golden.pixels.empty ())
        return Failure (actual, name,
                        "has no golden file " + path + "; look at it, and make it by scripts/golden-update.sh");
    if (golden.width != actual.width || golden.height != actual.height)
        return Failure (actual, name,
                        "is " + std::to_string (actual.width) + " x " + std::to_string (actual.height) +
                            " pixels, not " + std::to_string (golden.width) + " x " + std::to_string (golden.height));

    int     count;
    Picture difference = Difference (actual, golden, &count);
    if (count <= PICTURE_PIXELS_ALLOWED) return ::testing::AssertionSuccess ();
    std::string file = std::string (TAGWRIGHT_PICTURES) + "/" + name + ".difference.png";
    std::filesystem::create_directories (TAGWRIGHT_PICTURES);
    Picture_Write (difference, file);
    return Failure (actual, name, "differs in " + std::to_string (count) + " pixels, which are red in " + file);
}

::testing::AssertionResult Picture_Matches (Window window, const char *name) {
    return Picture_Matches_In (TAGWRIGHT_SOURCE_DIR "/tests/golden/sdl", window, name);
}
