// An off-screen window with a drawing session on it, and what has been drawn there.
#pragma once

#include <limits.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "platform/drawing.h"

typedef std::pair<int, int> Place;
typedef std::set<Place>     Places;

inline Places Rectangle (int left, int bottom, int right, int top) {
    Places places;
    for (int y = bottom; y < top; y++)
        for (int x = left; x < right; x++) places.insert ({x, y});
    return places;
}

class Canvas : public testing::Test {
protected:
    static constexpr uint32_t GREY  = Drawing_Colour (200, 201, 202);   // The background.
    static constexpr uint32_t RED   = Drawing_Colour (255, 0, 0);
    static constexpr uint32_t BLUE  = Drawing_Colour (1, 2, 250);
    static constexpr uint32_t BLACK = Drawing_Colour (0, 0, 0);
    static constexpr int      WIDTH = 60, HEIGHT = 40;

    void SetUp () override { Open (WIDTH, HEIGHT); }
    void TearDown () override { Close (); }

    static Window Make (int width, int height) {
        Window_Description description = {"Drawing test", 0, 0, width, height, GREY, nullptr, 0, 1};
        return Window_Create (&description);
    }

    void Open (int width, int height) {
        window = Make (width, height);
        ASSERT_NE (window, nullptr) << Window_Error_Text ();
        drawing = Drawing_Begin (window);
        ASSERT_NE (drawing, nullptr);
    }

    void Close () {
        Drawing_End (drawing);
        Window_Destroy (window);
        drawing = nullptr;
        window  = nullptr;
    }

    void Blank () {
        Drawing_Clip_All (drawing);
        Drawing_Fill (drawing, 0, 0, INT_MAX, INT_MAX, GREY);
    }

    // The colours of all pixels.
    std::vector<uint32_t> Pixels () const {
        std::vector<uint32_t> pixels;
        int                   width, height;
        Window_Client_Size (window, &width, &height);
        for (int y = 0; y < height; y++)
            for (int x = 0; x < width; x++) pixels.push_back (Drawing_Pixel (drawing, x, y));
        return pixels;
    }

    // All that doesn't have the background's colour.
    Places Inked () const {
        Places places;
        int    width, height;
        Window_Client_Size (window, &width, &height);
        for (int y = 0; y < height; y++)
            for (int x = 0; x < width; x++)
                if (Drawing_Pixel (drawing, x, y) != GREY) places.insert ({x, y});
        return places;
    }

    Places Line (int x1, int y1, int x2, int y2, int width = 1) {
        Blank ();
        Drawing_Line (drawing, x1, y1, x2, y2, width, RED);
        return Inked ();
    }

    Window  window  = nullptr;
    Drawing drawing = nullptr;
};

struct Font {
    Font (const char *face, int height, int bold = 0, int italic = 0)
        : font (Drawing_Font_Create (face, height, bold, italic)) {}
    ~Font () { Drawing_Font_Free (font); }
    Font (const Font &) = delete;
    Font &operator= (const Font &) = delete;
    operator Drawing_Font () const { return font; }

    Drawing_Font font;
};

class Text_Canvas : public Canvas {
protected:
    static constexpr int WIDTH = 300, HEIGHT = 60;

    void SetUp () override { Open (WIDTH, HEIGHT); }

    int Width (Drawing_Font of, const std::string &text) {
        return Drawing_Text_Width (drawing, of, text.data (), static_cast<int> (text.size ()));
    }
    int Width (const std::string &text) { return Width (arial, text); }

    void Draw (Drawing_Font of, int x, int y, const std::string &text, uint32_t colour = BLACK) {
        Drawing_Text (drawing, of, x, y, text.data (), static_cast<int> (text.size ()), colour);
    }

    // All colours, after a text has been drawn on a clean window.
    std::vector<uint32_t> Picture (Drawing_Font of, const std::string &text, int x = 20, int y = 20) {
        Blank ();
        Draw (of, x, y, text);
        return Pixels ();
    }

    Drawing_Font_Metrics Measure (Drawing_Font of) {
        Drawing_Font_Metrics metrics = {-1, -1, -1};
        Drawing_Font_Measure (drawing, of, &metrics);
        return metrics;
    }

    Font arial = Font ("Arial", 16);
};
