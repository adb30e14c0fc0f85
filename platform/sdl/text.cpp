// Fonts and texts. Pango shapes and draws; what it made of a character is kept with the font as a mask, since most of what
// the program draws are the same few characters: a run of them costs a blend for each and no shaping. So that both ways
// give the same picture, neighbours have no influence on one another (no kerning, no ligatures) and every advance is a
// whole number of pixels. Smoothing is the same on every machine, whatever its settings are.
#include <limits.h>
#include <pango/pangocairo.h>
#include <stdlib.h>
#include <string.h>

#include "platform/drawing.h"
#include "platform/sdl/private.h"
#include "platform/utf8.h"

static const char *const SYSTEM_FACE   = "Arial"; // As the program's own fonts: what others name differs by machine.
static const int         SYSTEM_HEIGHT = 13;
static const int         HEIGHT_LIMIT  = 2000;

// Characters below this one stand for themselves whatever is beside them: Latin letters, digits and signs.
static const uint32_t PLAIN_LIMIT = 0x250;

// What a text covers where it is drawn: coverage, in rows from top to bottom.
struct Mask {
    int      left, bottom; // Of its pixels, from the start of the base line, y growing upwards.
    int      width, height;
    uint8_t *coverage; // Owned; none when nothing is covered.
};

struct Glyph {
    int  made;
    int  advance;
    Mask mask;
};

struct Drawing_Font_Record {
    PangoContext *context;
    PangoLayout  *layout;
    int           ascent, descent;
    int           average_width; // 0: not measured yet.
    Glyph         glyphs[PLAIN_LIMIT];
};

// --- texts as characters ---------------------------------------------------

static const uint16_t WINDOWS_1252[32] = {0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                          0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD,
                                          0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                          0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

static uint32_t Character_1252 (unsigned char byte) {
    return byte >= 0x80 && byte < 0xA0 ? WINDOWS_1252[byte - 0x80] : byte;
}

// Texts are mostly UTF-8, but values of old files may be in a single-byte code. Each sequence is judged for itself, so
// that the parts of a text have the same characters as the whole. The bytes taken.
static int Take_Character (const char *at, const char *end, uint32_t *character) {
    int length = UTF8_Character (at, end, character);
    if (!length) *character = Character_1252 ((unsigned char)*at);
    if (UTF8_Is_Control (*character)) *character = ' ';
    return length ? length : 1;
}

// A text as a row of characters.
struct Run {
    uint32_t *characters; // Owned, unless they are in place.
    int       count;
    int       plain;      // All of them are below PLAIN_LIMIT.
    uint32_t  place[256]; // For the usual short text.
};

static int Run_Begin (Run *run, const char *text, int length) {
    *run            = {};
    run->characters = run->place;
    if (!text || length < 1) return 0;
    if (length > (int)(sizeof run->place / sizeof run->place[0])) {
        run->characters = static_cast<uint32_t *> (malloc ((size_t)length * sizeof (uint32_t)));
        if (!run->characters) return 0;
    }
    const char *end = text + length;
    run->plain      = 1;
    for (const char *at = text; at < end;) {
        uint32_t character;
        at += Take_Character (at, end, &character);
        if (character >= PLAIN_LIMIT) run->plain = 0;
        run->characters[run->count++] = character;
    }
    return 1;
}

static void Run_End (Run *run) {
    if (run->characters != run->place) free (run->characters);
}

// --- fonts -----------------------------------------------------------------

static PangoFontMap *Font_Map (void) {
    static PangoFontMap *map; // Lives until the program ends.
    if (!map) map = pango_cairo_font_map_new ();
    return map;
}

static void Smoothing_Set (PangoContext *context) {
    cairo_font_options_t *options = cairo_font_options_create ();
    cairo_font_options_set_antialias (options, CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style (options, CAIRO_HINT_STYLE_SLIGHT);
    cairo_font_options_set_hint_metrics (options, CAIRO_HINT_METRICS_ON);
    pango_cairo_context_set_font_options (context, options);
    cairo_font_options_destroy (options);
}

static void Layout_Create (Drawing_Font font) {
    font->layout         = pango_layout_new (font->context);
    PangoAttrList *looks = pango_attr_list_new ();
    pango_attr_list_insert (looks, pango_attr_font_features_new ("kern=0, liga=0, clig=0, calt=0"));
    pango_layout_set_attributes (font->layout, looks);
    pango_attr_list_unref (looks);
    pango_layout_set_single_paragraph_mode (font->layout, TRUE);
    pango_layout_set_auto_dir (font->layout, FALSE);
}

// The least whole pixels that hold the font's characters. 0 when the system has no font at all.
static int Cell_Measure (Drawing_Font font) {
    PangoFontDescription *description =
        pango_font_description_copy (pango_context_get_font_description (font->context));
    PangoFont *loaded = pango_context_load_font (font->context, description);
    pango_font_description_free (description);
    if (!loaded) return 0;
    PangoFontMetrics *metrics = pango_font_get_metrics (loaded, pango_language_from_string ("en"));
    font->ascent              = PANGO_PIXELS_CEIL (pango_font_metrics_get_ascent (metrics));
    font->descent             = PANGO_PIXELS_CEIL (pango_font_metrics_get_descent (metrics));
    pango_font_metrics_unref (metrics);
    g_object_unref (loaded);
    return 1;
}

static char *Face_Text (const char *face) {
    return g_utf8_validate (face, -1, nullptr)
               ? g_strdup (face)
               : g_convert (face, -1, "UTF-8", "WINDOWS-1252", nullptr, nullptr, nullptr);
}

static PangoFontDescription *Description_Create (const char *face, int height, int bold, int italic) {
    PangoFontDescription *description = pango_font_description_new ();
    char                 *family      = Face_Text (face);
    if (family) pango_font_description_set_family (description, family);
    g_free (family);
    pango_font_description_set_absolute_size (description, (double)height * PANGO_SCALE);
    pango_font_description_set_weight (description, bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
    pango_font_description_set_style (description, italic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
    return description;
}

Drawing_Font Drawing_Font_Create (const char *face, int height, int bold, int italic) {
    if (height < 1 || height > HEIGHT_LIMIT) return nullptr;
    Drawing_Font font = static_cast<Drawing_Font> (calloc (1, sizeof *font));
    if (!font) return nullptr;
    PangoFontDescription *description = Description_Create (face && face[0] ? face : SYSTEM_FACE, height, bold, italic);

    font->context = pango_font_map_create_context (Font_Map ());
    Smoothing_Set (font->context);
    pango_context_set_language (font->context, pango_language_from_string ("en"));
    pango_context_set_font_description (font->context, description);
    pango_font_description_free (description);
    Layout_Create (font);
    if (Cell_Measure (font)) return font;
    Drawing_Font_Free (font);
    return nullptr;
}

void Drawing_Font_Free (Drawing_Font font) {
    if (!font) return;
    for (Glyph &glyph : font->glyphs) free (glyph.mask.coverage);
    g_object_unref (font->layout);
    g_object_unref (font->context);
    free (font);
}

// The font of texts that name none, made on its first use and kept. None when the system has no fonts.
static Drawing_Font System_Font (void) {
    static Drawing_Font font;
    if (!font) font = Drawing_Font_Create (SYSTEM_FACE, SYSTEM_HEIGHT, 0, 0);
    return font;
}

// --- masks -----------------------------------------------------------------

static void Layout_Text_Set (Drawing_Font font, const uint32_t *characters, int count) {
    char  place[1024];
    char *text   = count <= (int)sizeof place / 4 ? place : static_cast<char *> (malloc ((size_t)count * 4));
    int   length = 0;
    if (text)
        for (int i = 0; i < count; i++) length += g_unichar_to_utf8 (characters[i], text + length);
    pango_layout_set_text (font->layout, text ? text : "", length);
    if (text != place) free (text);
}

static int Row_Is_Empty (const uint8_t *row, int width) {
    for (int x = 0; x < width; x++)
        if (row[x]) return 0;
    return 1;
}

static int Column_Is_Empty (const uint8_t *rows, int stride, int height, int x) {
    for (int y = 0; y < height; y++)
        if (rows[y * stride + x]) return 0;
    return 1;
}

// Keeps what is covered of a picture whose bottom-left pixel is at (left, bottom).
static Mask Mask_Of (const uint8_t *rows, int stride, int left, int bottom, int width, int height) {
    while (height && Row_Is_Empty (rows, width)) rows += stride, height--;
    while (height && Row_Is_Empty (rows + (height - 1) * stride, width)) height--, bottom++;
    while (height && Column_Is_Empty (rows, stride, height, 0)) rows++, left++, width--;
    while (height && Column_Is_Empty (rows, stride, height, width - 1)) width--;

    Mask mask = {left, bottom, width, height, nullptr};
    if (height) mask.coverage = static_cast<uint8_t *> (malloc ((size_t)width * height));
    for (int y = 0; mask.coverage && y < height; y++)
        memcpy (mask.coverage + (size_t)y * width, rows + y * stride, (size_t)width);
    return mask;
}

// Draws what the layout holds into a mask, as far as it lies inside of the area, which is given from the start of the base
// line. On lack of memory nothing is covered.
static Mask Mask_Create (Drawing_Font font, const Area *area) {
    PangoLayoutLine *line = pango_layout_get_line_readonly (font->layout, 0);
    PangoRectangle   ink;
    pango_layout_line_get_pixel_extents (line, &ink, nullptr);
    // One more on each side: what is smoothed may reach beyond what is measured.
    Area drawn = Area_Meet (area, (int64_t)ink.x - 1, -(int64_t)ink.y - ink.height - 1, (int64_t)ink.x + ink.width + 1,
                            -(int64_t)ink.y + 1);
    if (!ink.width || Area_Is_Empty (&drawn)) return {};

    int              width = drawn.right - drawn.left, height = drawn.top - drawn.bottom;
    cairo_surface_t *surface = cairo_image_surface_create (CAIRO_FORMAT_A8, width, height);
    cairo_t         *cairo   = cairo_create (surface);
    cairo_move_to (cairo, -drawn.left, drawn.top);
    pango_cairo_show_layout_line (cairo, line);
    cairo_destroy (cairo);
    cairo_surface_flush (surface);

    const uint8_t *rows   = cairo_image_surface_get_data (surface);
    int            stride = cairo_image_surface_get_stride (surface);
    Mask           mask   = {};
    if (rows) mask = Mask_Of (rows, stride, drawn.left, drawn.bottom, width, height);
    cairo_surface_destroy (surface);
    return mask;
}

// Two channels, 16 bits apart, divided by 255 and rounded.
static uint32_t Divide_255 (uint32_t channels) {
    channels += 0x800080;
    return (channels + (channels >> 8 & 0xFF00FF)) >> 8 & 0xFF00FF;
}

static uint32_t Blend (uint32_t below, uint32_t pixel, uint32_t coverage) {
    uint32_t rest     = 255 - coverage;
    uint32_t red_blue = (pixel & 0xFF00FF) * coverage + (below & 0xFF00FF) * rest;
    uint32_t green    = (pixel >> 8 & 0xFF) * coverage + (below >> 8 & 0xFF) * rest;
    return Divide_255 (red_blue) | Divide_255 (green) << 8;
}

// Puts a mask whose base line starts at (x, base) into the window, inside of the area.
static void Mask_Draw (Window window, const Mask *mask, int64_t x, int64_t base, const Area *area, uint32_t pixel) {
    if (!mask->coverage) return;
    int64_t left = x + mask->left, bottom = base + mask->bottom, top = bottom + mask->height;
    Area    drawn = Area_Meet (area, left, bottom, left + mask->width, top);
    if (Area_Is_Empty (&drawn)) return;
    for (int y = drawn.bottom; y < drawn.top; y++) {
        const uint8_t *coverage = mask->coverage + (top - 1 - y) * mask->width + (drawn.left - left);
        uint32_t      *row      = window->pixels + (int64_t)(window->height - 1 - y) * window->width + drawn.left;
        for (int i = 0; i < drawn.right - drawn.left; i++)
            if (coverage[i]) row[i] = Blend (row[i], pixel, coverage[i]);
    }
    Picture_Touch (window, &drawn);
}

// --- characters ------------------------------------------------------------

static int Layout_Width (Drawing_Font font) {
    PangoRectangle extent;
    pango_layout_line_get_pixel_extents (pango_layout_get_line_readonly (font->layout, 0), nullptr, &extent);
    return extent.width;
}

static const Glyph *Glyph_Get (Drawing_Font font, uint32_t character) {
    Glyph *glyph = &font->glyphs[character];
    if (glyph->made) return glyph;
    static const Area ANYWHERE = {-2 * HEIGHT_LIMIT, -2 * HEIGHT_LIMIT, 2 * HEIGHT_LIMIT, 2 * HEIGHT_LIMIT};
    Layout_Text_Set (font, &character, 1);
    glyph->advance = Layout_Width (font);
    glyph->mask    = Mask_Create (font, &ANYWHERE);
    glyph->made    = 1;
    return glyph;
}

static int Run_Width (Drawing_Font font, const Run *run) {
    if (!run->plain) {
        Layout_Text_Set (font, run->characters, run->count);
        return Layout_Width (font);
    }
    int64_t width = 0;
    for (int i = 0; i < run->count; i++) width += Glyph_Get (font, run->characters[i])->advance;
    return width < INT_MAX ? (int)width : INT_MAX;
}

static int Average_Width (Drawing_Font font) {
    int sum = 0;
    for (uint32_t letter = 0; letter < 26; letter++)
        sum += Glyph_Get (font, 'A' + letter)->advance + Glyph_Get (font, 'a' + letter)->advance;
    return (sum + 26) / 52;
}

// --- the interface ---------------------------------------------------------

void Drawing_Font_Measure (Drawing, Drawing_Font font, Drawing_Font_Metrics *metrics) {
    *metrics = {};
    if (!font) font = System_Font ();
    if (!font) return;
    if (!font->average_width) font->average_width = Average_Width (font);
    *metrics = {font->ascent + font->descent, font->descent, font->average_width};
}

int Drawing_Text_Width (Drawing, Drawing_Font font, const char *text, int length) {
    Run run;
    int width = 0;
    if (!font) font = System_Font ();
    if (font && Run_Begin (&run, text, length)) {
        width = Run_Width (font, &run);
        Run_End (&run);
    }
    return width;
}

static void Run_Draw_Plain (Window window, Drawing_Font font, const Run *run, int64_t x, int64_t base, const Area *area,
                            uint32_t pixel) {
    for (int i = 0; i < run->count && x < (int64_t)area->right + HEIGHT_LIMIT; i++) {
        const Glyph *glyph = Glyph_Get (font, run->characters[i]);
        Mask_Draw (window, &glyph->mask, x, base, area, pixel);
        x += glyph->advance;
    }
}

static void Run_Draw_Shaped (Window window, Drawing_Font font, const Run *run, int64_t x, int64_t base,
                             const Area *area, uint32_t pixel) {
    static const Area EVERYWHERE = {INT_MIN, INT_MIN, INT_MAX, INT_MAX};
    Layout_Text_Set (font, run->characters, run->count);
    Area seen = Area_Meet (&EVERYWHERE, area->left - x, area->bottom - base, area->right - x, area->top - base);
    Mask mask = Mask_Create (font, &seen);
    Mask_Draw (window, &mask, x, base, area, pixel);
    free (mask.coverage);
}

// Nothing is drawn above or below the cell, so that a sign from another font, which may be higher, leaves the lines beside
// this one alone.
void Drawing_Text (Drawing drawing, Drawing_Font font, int x, int y, const char *text, int length, uint32_t colour) {
    if (!font) font = System_Font ();
    if (!font) return;
    uint32_t pixel = (colour & 0xFF) << 16 | (colour & 0xFF00) | (colour >> 16 & 0xFF);
    int64_t  top   = (int64_t)y + font->ascent + font->descent;
    Area     area  = Area_Meet (&drawing->clip, drawing->clip.left, y, drawing->clip.right, top);
    Run      run;
    if (Area_Is_Empty (&area) || x >= area.right + HEIGHT_LIMIT || !Run_Begin (&run, text, length)) return;
    if (run.plain) Run_Draw_Plain (drawing->window, font, &run, x, (int64_t)y + font->descent, &area, pixel);
    else Run_Draw_Shaped (drawing->window, font, &run, x, (int64_t)y + font->descent, &area, pixel);
    Run_End (&run);
}
