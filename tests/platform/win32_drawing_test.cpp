#include <climits>
#include <cstring>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <windows.h>

#include "platform/drawing.h"
#include "platform/window.h"

static const uint32_t GREY  = Drawing_Colour (170, 170, 170);
static const uint32_t RED   = Drawing_Colour (255, 0, 0);
static const uint32_t BLUE  = Drawing_Colour (0, 0, 255);
static const uint32_t BLACK = Drawing_Colour (0, 0, 0);

// An off-screen window with a session on it.
class Win32Drawing : public testing::Test {
protected:
    static const int WIDTH = 60, HEIGHT = 40;
    Window           window  = nullptr;
    Drawing          drawing = nullptr;

    void SetUp () override { Open (WIDTH, HEIGHT); }
    void TearDown () override { Close (); }

    void Open (int width, int height) {
        Window_Description description = {};
        description.title              = "Drawing test";
        description.width              = width;
        description.height             = height;
        description.background         = GREY;
        description.off_screen         = 1;
        window                         = Window_Create (&description);
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

    void Wipe () {
        Drawing_Clip_All (drawing);
        Drawing_Fill (drawing, 0, 0, INT_MAX, INT_MAX, GREY);
    }

    // All pixels that are not of the background.
    std::set<std::pair<int, int>> Drawn () {
        std::set<std::pair<int, int>> drawn;
        int                           width, height;
        Window_Client_Size (window, &width, &height);
        for (int y = 0; y < height; y++)
            for (int x = 0; x < width; x++)
                if (Drawing_Pixel (drawing, x, y) != GREY) drawn.insert ({x, y});
        return drawn;
    }
};

typedef std::set<std::pair<int, int>> Pixels;

static Pixels Rectangle (int left, int bottom, int right, int top) {
    Pixels pixels;
    for (int y = bottom; y < top; y++)
        for (int x = left; x < right; x++) pixels.insert ({x, y});
    return pixels;
}

// --- shapes ----------------------------------------------------------------

TEST_F (Win32Drawing, AWindowStartsInItsBackground) {
    EXPECT_TRUE (Drawn ().empty ());
    EXPECT_EQ (Drawing_Pixel (drawing, 0, 0), GREY);
    EXPECT_EQ (Drawing_Pixel (drawing, WIDTH - 1, HEIGHT - 1), GREY);
}

TEST_F (Win32Drawing, AFillLeavesItsRightAndTopEdgesOut) {
    Drawing_Fill (drawing, 3, 5, 9, 11, RED);
    EXPECT_EQ (Drawn (), Rectangle (3, 5, 9, 11));
    EXPECT_EQ (Drawing_Pixel (drawing, 3, 5), RED);
}

TEST_F (Win32Drawing, AnEmptyOrTurnedFillDrawsNothing) {
    Drawing_Fill (drawing, 5, 5, 5, 9, RED);
    Drawing_Fill (drawing, 5, 5, 9, 5, RED);
    Drawing_Fill (drawing, 9, 9, 5, 5, RED);
    EXPECT_TRUE (Drawn ().empty ());
}

TEST_F (Win32Drawing, TheFourthByteOfAColourIsNotLookedAt) {
    Drawing_Fill (drawing, 0, 0, 1, 1, RED | 0xFF000000);
    Drawing_Line (drawing, 2, 0, 3, 0, 1, RED | 0x80000000);
    EXPECT_EQ (Drawing_Pixel (drawing, 0, 0), RED);
    EXPECT_EQ (Drawing_Pixel (drawing, 2, 0), RED);
}

TEST_F (Win32Drawing, ColoursKeepTheirChannels) {
    Drawing_Fill (drawing, 0, 0, 1, 1, Drawing_Colour (1, 2, 3));
    EXPECT_EQ (Drawing_Pixel (drawing, 0, 0), Drawing_Colour (1, 2, 3));
}

// --- lines -----------------------------------------------------------------

struct Direction {
    int    x, y; // From (20, 20).
    Pixels pixels;
};

TEST_F (Win32Drawing, ALineHasItsFirstPointAndNotItsLastInAllDirections) {
    const std::vector<Direction> directions = {
        {3, 0, {{20, 20}, {21, 20}, {22, 20}}},
        {3, 3, {{20, 20}, {21, 21}, {22, 22}}},
        {0, 3, {{20, 20}, {20, 21}, {20, 22}}},
        {-3, 3, {{20, 20}, {19, 21}, {18, 22}}},
        {-3, 0, {{20, 20}, {19, 20}, {18, 20}}},
        {-3, -3, {{20, 20}, {19, 19}, {18, 18}}},
        {0, -3, {{20, 20}, {20, 19}, {20, 18}}},
        {3, -3, {{20, 20}, {21, 19}, {22, 18}}},
        {1, 0, {{20, 20}}},
        {0, 0, {}},
        {6, 2, {{20, 20}, {21, 20}, {22, 21}, {23, 21}, {24, 21}, {25, 22}}},
        {-2, 6, {{20, 20}, {20, 21}, {19, 22}, {19, 23}, {19, 24}, {18, 25}}},
    };
    for (const Direction &direction : directions)
        for (int width = 0; width <= 1; width++) {
            Wipe ();
            Drawing_Line (drawing, 20, 20, 20 + direction.x, 20 + direction.y, width, RED);
            EXPECT_EQ (Drawn (), direction.pixels) << direction.x << ", " << direction.y << ", width " << width;
        }
}

TEST_F (Win32Drawing, AWideLineHasItsMiddleWhereANarrowOneLies) {
    Drawing_Line (drawing, 10, 20, 20, 20, 3, RED);
    EXPECT_EQ (Drawn (), Rectangle (10, 19, 20, 22));
    Wipe ();
    Drawing_Line (drawing, 20, 10, 20, 15, 5, RED);
    EXPECT_EQ (Drawn (), Rectangle (18, 10, 23, 15));
    Wipe ();
    Drawing_Line (drawing, 20, 20, 10, 20, 3, RED);
    EXPECT_EQ (Drawn (), Rectangle (11, 19, 21, 22)) << "to the left";
}

TEST_F (Win32Drawing, ALineOfEvenWidthHasOnePixelMoreBelowOrLeft) {
    Drawing_Line (drawing, 10, 20, 20, 20, 2, RED);
    EXPECT_EQ (Drawn (), Rectangle (10, 19, 20, 21));
    Wipe ();
    Drawing_Line (drawing, 20, 10, 20, 15, 4, RED);
    EXPECT_EQ (Drawn (), Rectangle (18, 10, 22, 15));
    Wipe ();
    Drawing_Line (drawing, 20, 15, 20, 10, 4, RED);
    EXPECT_EQ (Drawn (), Rectangle (18, 11, 22, 16)) << "downwards";
}

TEST_F (Win32Drawing, ALineThatIsClippedIsThePartOfTheWholeOne) {
    Drawing_Line (drawing, -37, -11, 93, 47, 1, RED);
    Pixels whole = Drawn ();
    Wipe ();
    Drawing_Clip (drawing, 13, 7, 41, 30);
    Drawing_Line (drawing, -37, -11, 93, 47, 1, RED);
    Pixels expected;
    for (const auto &pixel : whole)
        if (pixel.first >= 13 && pixel.first < 41 && pixel.second >= 7 && pixel.second < 30) expected.insert (pixel);
    EXPECT_FALSE (expected.empty ());
    EXPECT_EQ (Drawn (), expected);
}

// --- clip and extremes -----------------------------------------------------

TEST_F (Win32Drawing, NothingIsDrawnOutsideOfTheClip) {
    std::vector<uint8_t> image (60 * 40 * 4, 0);
    Drawing_Clip (drawing, 10, 12, 20, 25);
    Drawing_Fill (drawing, 0, 0, WIDTH, HEIGHT, RED);
    Drawing_Line (drawing, 0, 20, 60, 20, 50, BLUE);
    Drawing_Image (drawing, 0, 0, 60, 40, image.data (), 60);
    Drawing_Text (drawing, nullptr, 0, 5, "MMMMMMMMMMMMMMMM", 16, RED);
    EXPECT_EQ (Drawn (), Rectangle (10, 12, 20, 25));
}

TEST_F (Win32Drawing, AClipReplacesTheOneBefore) {
    Drawing_Clip (drawing, 1, 1, 3, 3);
    Drawing_Clip (drawing, 5, 5, 8, 8);
    Drawing_Fill (drawing, 0, 0, WIDTH, HEIGHT, RED);
    EXPECT_EQ (Drawn (), Rectangle (5, 5, 8, 8));
    Drawing_Clip_All (drawing);
    Drawing_Fill (drawing, 0, 0, WIDTH, HEIGHT, RED);
    EXPECT_EQ (Drawn (), Rectangle (0, 0, WIDTH, HEIGHT));
}

TEST_F (Win32Drawing, ASessionBeginsWithoutAClip) {
    Drawing_Clip (drawing, 1, 1, 3, 3);
    Drawing_End (drawing);
    drawing = Drawing_Begin (window);
    Drawing_Fill (drawing, 0, 0, WIDTH, HEIGHT, RED);
    EXPECT_EQ (Drawn (), Rectangle (0, 0, WIDTH, HEIGHT));
}

TEST_F (Win32Drawing, AnEmptyOrTurnedClipLetsNothingThrough) {
    Drawing_Clip (drawing, 10, 10, 10, 20);
    Drawing_Fill (drawing, 0, 0, WIDTH, HEIGHT, RED);
    Drawing_Clip (drawing, 20, 20, 10, 10);
    Drawing_Fill (drawing, 0, 0, WIDTH, HEIGHT, RED);
    Drawing_Text (drawing, nullptr, 0, 5, "MMMM", 4, RED);
    Drawing_Line (drawing, 0, 0, WIDTH, HEIGHT, 3, RED);
    EXPECT_TRUE (Drawn ().empty ());
}

TEST_F (Win32Drawing, ExtremeCoordinatesReachTheWindowAsFarAsTheyShould) {
    Drawing_Fill (drawing, INT_MIN, INT_MIN, INT_MAX, INT_MAX, RED);
    EXPECT_EQ (Drawn (), Rectangle (0, 0, WIDTH, HEIGHT));
    Wipe ();
    Drawing_Line (drawing, INT_MIN, 7, INT_MAX, 7, 1, RED);
    EXPECT_EQ (Drawn (), Rectangle (0, 7, WIDTH, 8));
    Wipe ();
    Drawing_Line (drawing, 7, INT_MAX, 7, INT_MIN, 1, RED);
    EXPECT_EQ (Drawn (), Rectangle (7, 0, 8, HEIGHT));
    Wipe ();
    Drawing_Line (drawing, 10, 20, 20, 20, INT_MAX, RED);
    EXPECT_EQ (Drawn (), Rectangle (10, 0, 20, HEIGHT));
    Wipe ();
    Drawing_Clip (drawing, INT_MIN, INT_MIN, INT_MAX, INT_MAX);
    Drawing_Fill (drawing, 1, 1, 2, 2, RED);
    EXPECT_EQ (Drawn (), Rectangle (1, 1, 2, 2));
}

// From corner to corner of all coordinates there are: the middle of it crosses the window at x = y.
TEST_F (Win32Drawing, AnExtremeDiagonalIsExact) {
    Drawing_Line (drawing, INT_MIN, INT_MIN, INT_MAX, INT_MAX, 1, RED);
    Pixels expected;
    for (int i = 0; i < HEIGHT; i++) expected.insert ({i, i});
    EXPECT_EQ (Drawn (), expected);
}

TEST_F (Win32Drawing, FarTextsAndImagesDrawNothing) {
    uint8_t image[4] = {};
    for (int far_away : {INT_MIN, INT_MAX, INT_MIN + 5, INT_MAX - 5, 1 << 27, -(1 << 27)}) {
        Drawing_Text (drawing, nullptr, far_away, 5, "MM", 2, RED);
        Drawing_Text (drawing, nullptr, 5, far_away, "MM", 2, RED);
        Drawing_Image (drawing, far_away, 5, 1, 1, image, 1);
        Drawing_Image (drawing, 5, far_away, 1, 1, image, 1);
        Drawing_Fill (drawing, far_away, far_away, far_away, far_away, RED);
    }
    EXPECT_TRUE (Drawn ().empty ());
}

// --- images ----------------------------------------------------------------

// Each pixel tells its row and column.
static std::vector<uint8_t> Image (int width, int height) {
    std::vector<uint8_t> pixels;
    for (int row = 0; row < height; row++)
        for (int column = 0; column < width; column++)
            pixels.insert (pixels.end (), {(uint8_t)column, (uint8_t)row, 77, (uint8_t)(row + column)});
    return pixels;
}

TEST_F (Win32Drawing, AnImageHasItsFirstRowOnTop) {
    std::vector<uint8_t> image = Image (5, 4);
    Drawing_Image (drawing, 10, 20, 5, 4, image.data (), 5);
    EXPECT_EQ (Drawn (), Rectangle (10, 20, 15, 24));
    for (int y = 0; y < 4; y++)
        for (int x = 0; x < 5; x++)
            EXPECT_EQ (Drawing_Pixel (drawing, 10 + x, 20 + y), Drawing_Colour (77, (unsigned)(3 - y), (unsigned)x));
}

TEST_F (Win32Drawing, APartOfAnImageIsReadInItsRows) {
    std::vector<uint8_t> image = Image (9, 7);
    Drawing_Image (drawing, 10, 20, 3, 2, image.data () + (2 * 9 + 4) * 4, 9);
    EXPECT_EQ (Drawn (), Rectangle (10, 20, 13, 22));
    EXPECT_EQ (Drawing_Pixel (drawing, 10, 21), Drawing_Colour (77, 2, 4));
    EXPECT_EQ (Drawing_Pixel (drawing, 12, 20), Drawing_Colour (77, 3, 6));
}

TEST_F (Win32Drawing, AnImageIsCutAtTheEdges) {
    std::vector<uint8_t> image = Image (6, 6);
    Drawing_Image (drawing, -2, -3, 6, 6, image.data (), 6);
    EXPECT_EQ (Drawn (), Rectangle (0, 0, 4, 3));
    EXPECT_EQ (Drawing_Pixel (drawing, 0, 0), Drawing_Colour (77, 2, 2));
    EXPECT_EQ (Drawing_Pixel (drawing, 3, 2), Drawing_Colour (77, 0, 5));
    Wipe ();
    Drawing_Image (drawing, WIDTH - 1, HEIGHT - 2, 6, 6, image.data (), 6);
    EXPECT_EQ (Drawn (), Rectangle (WIDTH - 1, HEIGHT - 2, WIDTH, HEIGHT));
    EXPECT_EQ (Drawing_Pixel (drawing, WIDTH - 1, HEIGHT - 2), Drawing_Colour (77, 5, 0));
}

TEST_F (Win32Drawing, AnImageWithoutPixelsDrawsNothing) {
    std::vector<uint8_t> image = Image (2, 2);
    Drawing_Image (drawing, 1, 1, 2, 2, nullptr, 2);
    Drawing_Image (drawing, 1, 1, 0, 2, image.data (), 2);
    Drawing_Image (drawing, 1, 1, 2, -1, image.data (), 2);
    EXPECT_TRUE (Drawn ().empty ());
}

// --- sessions and reading back ---------------------------------------------

TEST_F (Win32Drawing, OutsideOfTheWindowThereIsNoPixel) {
    for (auto place : {std::pair<int, int> {-1, 0}, {0, -1}, {WIDTH, 0}, {0, HEIGHT}, {INT_MAX, INT_MIN}})
        EXPECT_EQ (Drawing_Pixel (drawing, place.first, place.second), 0xFFFFFFFFu);
}

TEST_F (Win32Drawing, OneSessionAtATime) {
    EXPECT_EQ (Drawing_Begin (window), nullptr);
    Drawing_End (drawing);
    drawing = Drawing_Begin (window);
    EXPECT_NE (drawing, nullptr);
}

TEST_F (Win32Drawing, WhatIsNoWindowIsNotDrawn) {
    Drawing_End (drawing);
    EXPECT_EQ (Drawing_Begin (nullptr), nullptr);
    EXPECT_EQ (Drawing_Begin (reinterpret_cast<Window> (GetDesktopWindow ())), nullptr);
    drawing = Drawing_Begin (window);
}

TEST_F (Win32Drawing, ASessionOutlivesItsWindow) {
    Window_Destroy (window);
    Drawing_Fill (drawing, 0, 0, 9, 9, RED);
    Drawing_Line (drawing, 0, 0, 9, 9, 1, RED);
    Drawing_Text (drawing, nullptr, 0, 0, "x", 1, RED);
    EXPECT_EQ (Drawing_Text_Width (drawing, nullptr, "x", 1), 0);
    EXPECT_EQ (Drawing_Pixel (drawing, 0, 0), 0xFFFFFFFFu);
    Drawing_End (drawing);
    Open (WIDTH, HEIGHT);
}

TEST_F (Win32Drawing, WhatWasDrawnStaysWhenTheSizeChanges) {
    Drawing_Fill (drawing, 2, 3, 8, 9, RED);
    Drawing_End (drawing);
    Window_Client_Resize (window, WIDTH + 30, HEIGHT + 20);
    drawing = Drawing_Begin (window);
    EXPECT_EQ (Drawn (), Rectangle (2, 3, 8, 9));
    EXPECT_EQ (Drawing_Pixel (drawing, WIDTH + 29, HEIGHT + 19), GREY);
    Drawing_End (drawing);
    Window_Client_Resize (window, 5, 4);
    drawing = Drawing_Begin (window);
    EXPECT_EQ (Drawn (), Rectangle (2, 3, 5, 4));
}

TEST_F (Win32Drawing, AWindowThatShrinksDuringASessionIsDrawnInsideItsNewSize) {
    Window_Client_Resize (window, 5, 4);
    Drawing_Fill (drawing, 0, 0, WIDTH, HEIGHT, RED);
    EXPECT_EQ (Drawn (), Rectangle (0, 0, 5, 4));
}

TEST_F (Win32Drawing, AWindowWithoutPixelsCanBeDrawn) {
    Close ();
    Open (0, 0);
    Drawing_Fill (drawing, 0, 0, 9, 9, RED);
    EXPECT_EQ (Drawing_Pixel (drawing, 0, 0), 0xFFFFFFFFu);
    EXPECT_GT (Drawing_Text_Width (drawing, nullptr, "x", 1), 0);
}

TEST_F (Win32Drawing, NoPictureIsWritten) { EXPECT_EQ (Drawing_Picture_Write (window, "picture.png"), 0); }

// --- fonts -----------------------------------------------------------------

class Win32Fonts : public Win32Drawing {
protected:
    Drawing_Font font = nullptr;

    void SetUp () override {
        Open (300, 60);
        font = Drawing_Font_Create ("Arial", 16, 0, 0);
        ASSERT_NE (font, nullptr);
    }
    void TearDown () override {
        Drawing_Font_Free (font);
        Close ();
    }
    int Width (const std::string &text) { return Width (font, text); }
    int Width (Drawing_Font of, const std::string &text) {
        return Drawing_Text_Width (drawing, of, text.data (), (int)text.size ());
    }
    Drawing_Font_Metrics Metrics (Drawing_Font of) {
        Drawing_Font_Metrics metrics;
        Drawing_Font_Measure (drawing, of, &metrics);
        return metrics;
    }
    // All colours, after a text has been drawn on a clean window.
    std::vector<uint32_t> Picture (Drawing_Font of, const std::string &text, int x = 20, int y = 20) {
        std::vector<uint32_t> picture;
        Wipe ();
        Drawing_Text (drawing, of, x, y, text.data (), (int)text.size (), BLACK);
        for (int row = 0; row < 60; row++)
            for (int column = 0; column < 300; column++) picture.push_back (Drawing_Pixel (drawing, column, row));
        return picture;
    }
};

TEST_F (Win32Fonts, InkLiesInsideTheMeasuredBox) {
    for (Drawing_Font of : {font, Drawing_Font (nullptr)}) {
        Wipe ();
        std::string text = "Hxgp|Mq";
        Drawing_Text (drawing, of, 20, 15, text.data (), (int)text.size (), BLACK);
        Pixels box = Rectangle (20, 15, 20 + Width (of, text), 15 + Metrics (of).height);
        Pixels ink = Drawn ();
        EXPECT_GT (ink.size (), 50u);
        for (const auto &pixel : ink) EXPECT_TRUE (box.count (pixel)) << pixel.first << ", " << pixel.second;
    }
}

TEST_F (Win32Fonts, LettersStandOnTheBaseLine) {
    Picture (font, "HHH");
    int lowest = INT_MAX, highest = 0;
    for (const auto &pixel : Drawn ()) {
        lowest  = pixel.second < lowest ? pixel.second : lowest;
        highest = pixel.second > highest ? pixel.second : highest;
    }
    EXPECT_EQ (lowest, 20 + Metrics (font).descent);
    EXPECT_GE (highest, 20 + Metrics (font).descent + 9);
    EXPECT_LE (highest, 20 + Metrics (font).descent + 13);
}

TEST_F (Win32Fonts, TheColourOfATextIsItsOwn) {
    std::string text = "|||";
    Drawing_Text (drawing, font, 20, 20, text.data (), 3, RED);
    int red = 0;
    for (const auto &pixel : Drawn ()) {
        uint32_t colour = Drawing_Pixel (drawing, pixel.first, pixel.second);
        EXPECT_GE (colour & 0xFF, 170u);
        EXPECT_LE (colour >> 8 & 0xFF, 170u);
        EXPECT_EQ (colour >> 24, 0u);
        red += colour == RED;
    }
    EXPECT_GT (red, 5);
}

TEST_F (Win32Fonts, TheHeightIsThatOfTheCharacters) {
    Drawing_Font_Metrics metrics = Metrics (font);
    EXPECT_GE (metrics.height, 16) << "with the room above accents";
    EXPECT_LE (metrics.height, 22);
    EXPECT_GT (metrics.descent, 1);
    EXPECT_LT (metrics.descent, metrics.height / 2);
    EXPECT_GT (metrics.average_width, 4);
    EXPECT_LT (metrics.average_width, 14);
}

TEST_F (Win32Fonts, WidthsAdd) {
    EXPECT_EQ (Width ("DICOM file"), Width ("DICOM") + Width (" ") + Width ("file"));
    EXPECT_EQ (Width ("AVAVAV"), 3 * Width ("A") + 3 * Width ("V")) << "no pairs are moved together";
    EXPECT_EQ (Width (""), 0);
    EXPECT_EQ (Drawing_Text_Width (drawing, font, nullptr, 0), 0);
    EXPECT_EQ (Drawing_Text_Width (drawing, font, "x", -1), 0);
    EXPECT_EQ (Drawing_Text_Width (drawing, font, "xyz", 1), Width ("x"));
}

TEST_F (Win32Fonts, OnlyTheLengthOfATextIsDrawn) {
    Wipe ();
    Drawing_Text (drawing, font, 20, 20, "MMMMMM", 2, BLACK);
    for (const auto &pixel : Drawn ()) EXPECT_LT (pixel.first, 20 + Width ("MM"));
}

TEST_F (Win32Fonts, BoldIsWiderThanRegular) {
    Drawing_Font bold = Drawing_Font_Create ("Arial", 16, 1, 0);
    EXPECT_GT (Width (bold, "Difference list"), Width ("Difference list"));
    Drawing_Font_Free (bold);
}

TEST_F (Win32Fonts, ItalicIsDrawnOtherwise) {
    Drawing_Font italic = Drawing_Font_Create ("Arial", 16, 0, 1);
    EXPECT_NE (Picture (italic, "HHH"), Picture (font, "HHH"));
    Drawing_Font_Free (italic);
}

TEST_F (Win32Fonts, CourierHasOnePitch) {
    Drawing_Font courier = Drawing_Font_Create ("Courier", 16, 0, 0);
    EXPECT_EQ (Width (courier, "iiii"), Width (courier, "MMMM"));
    EXPECT_NE (Width ("iiii"), Width ("MMMM"));
    EXPECT_EQ (Width (courier, "ii"), 2 * Metrics (courier).average_width);
    Drawing_Font_Free (courier);
}

// What the tests draw with is what is installed with them.
TEST_F (Win32Fonts, TheFacesAreThoseAskedForOrLikeThem) {
    const std::vector<std::pair<std::string, std::set<std::string>>> faces = {
        {"Arial", {"Arial", "Liberation Sans"}}, {"Courier", {"Courier New", "Liberation Mono"}}};
    for (const auto &face : faces) {
        Drawing_Font made     = Drawing_Font_Create (face.first.c_str (), 16, 0, 0);
        HDC          context  = CreateCompatibleDC (nullptr);
        HGDIOBJ      previous = SelectObject (context, reinterpret_cast<HFONT> (made));
        char         name[LF_FACESIZE];
        GetTextFaceA (context, sizeof name, name);
        EXPECT_TRUE (face.second.count (name)) << name;
        SelectObject (context, previous);
        DeleteDC (context);
        Drawing_Font_Free (made);
    }
}

TEST_F (Win32Fonts, WithoutAFontTheSystemsOneIsUsed) {
    EXPECT_GT (Metrics (nullptr).height, 9);
    EXPECT_LT (Metrics (nullptr).height, 30);
    EXPECT_GT (Width (nullptr, "text"), 4);
    Picture (nullptr, "text");
    EXPECT_FALSE (Drawn ().empty ());
}

TEST_F (Win32Fonts, AnyHeightMakesAFont) {
    for (int height : {INT_MIN, -1, 0, 1, 1000000, INT_MAX}) {
        Drawing_Font made = Drawing_Font_Create ("Arial", height, 0, 0);
        ASSERT_NE (made, nullptr) << height;
        EXPECT_GT (Metrics (made).height, 0) << height;
        Drawing_Font_Free (made);
    }
    Drawing_Font long_name = Drawing_Font_Create (std::string (5000, 'x').c_str (), 12, 0, 0);
    EXPECT_NE (long_name, nullptr);
    Drawing_Font_Free (long_name);
    Drawing_Font_Free (nullptr);
}

TEST_F (Win32Fonts, AFontOfAnotherSizeIsLargerOrSmaller) {
    Drawing_Font large = Drawing_Font_Create ("Arial", 32, 0, 0);
    EXPECT_NEAR (Width (large, "Difference"), 2 * Width ("Difference"), 10);
    EXPECT_NEAR (Metrics (large).height, 2 * Metrics (font).height, 3);
    Drawing_Font_Free (large);
}

// --- texts -----------------------------------------------------------------

TEST_F (Win32Fonts, OneCharacterInTwoCodesIsOnePicture) {
    EXPECT_EQ (Width ("caf\xC3\xA9"), Width ("caf\xE9"));
    EXPECT_EQ (Picture (font, "caf\xC3\xA9"), Picture (font, "caf\xE9"));
    EXPECT_NE (Picture (font, "caf\xE9"), Picture (font, "cafe"));
    EXPECT_EQ (Picture (font, "\xC3\xA9 \xE9"), Picture (font, "\xE9 \xC3\xA9")) << "each byte for itself";
}

TEST_F (Win32Fonts, CharactersOfTheCodePageAreThoseOfWindows) {
    EXPECT_EQ (Picture (font, "\x80"), Picture (font, "\xE2\x82\xAC")) << "euro";
    EXPECT_EQ (Picture (font, "\xB5"), Picture (font, "\xC2\xB5")) << "micro";
}

// Each would be UTF-8 if its bytes were fewer, more or others.
TEST_F (Win32Fonts, InvalidUTF8IsTakenAsSingleBytes) {
    EXPECT_EQ (Picture (font, "\xC3"), Picture (font, "\xC3\x83")) << "cut";
    EXPECT_EQ (Picture (font, "\xC3Z"), Picture (font, "\xC3\x83Z"));
    EXPECT_EQ (Picture (font, "\xC0\xAF"), Picture (font, "\xC3\x80\xC2\xAF")) << "too long for its character";
    EXPECT_EQ (Picture (font, "\xE0\x82\xA9"), Picture (font, "\xC3\xA0\xE2\x80\x9A\xC2\xA9"));
    EXPECT_EQ (Picture (font, "\xED\xA0\xA0"), Picture (font, "\xC3\xAD\xC2\xA0\xC2\xA0")) << "half of a pair";
    EXPECT_EQ (Picture (font, "\xF5\xA0\xA0\xA0"), Picture (font, "\xC3\xB5\xC2\xA0\xC2\xA0\xC2\xA0"));
    EXPECT_EQ (Picture (font, "\xE2\x82"), Picture (font, "\xC3\xA2\xE2\x80\x9A"));
    EXPECT_EQ (Picture (font, "\xF0\x82\x82\xAC"), Picture (font, "\xC3\xB0\xE2\x80\x9A\xE2\x80\x9A\xC2\xAC"));
    EXPECT_EQ (Picture (font, "\xF4\xA0\xA0\xA0"), Picture (font, "\xC3\xB4\xC2\xA0\xC2\xA0\xC2\xA0"));
}

TEST_F (Win32Fonts, EachSequenceIsTakenForItself) {
    EXPECT_EQ (Picture (font, "\xC3\xA9 \xE9"), Picture (font, "\xE9 \xC3\xA9"));
    EXPECT_EQ (Picture (font, "\xE9\xE2\x82\xAC"), Picture (font, "\xC3\xA9\xE2\x82\xAC"));
    EXPECT_EQ (Width ("caf\xC3\xA9 \xE9t\xE9"), Width ("caf\xC3\xA9 ") + Width ("\xE9t\xE9"));
}

TEST_F (Win32Fonts, BytesWithoutACharacterAreSeen) {
    for (const char *text : {"\x81", "\x8D", "\x9D"})
        EXPECT_EQ (Picture (font, text), Picture (font, "\xEF\xBF\xBD")) << text;
    EXPECT_NE (Picture (font, "\x81"), Picture (font, " "));
}

TEST_F (Win32Fonts, ControlCharactersAreBlanks) {
    std::string text = "a";
    for (int c = 0; c < 32; c++) text += (char)c;
    text += "\x7F\xC2\x85\xE2\x80\xAE";
    EXPECT_EQ (Picture (font, text + "b"), Picture (font, "a" + std::string (35, ' ') + "b"));
}

TEST_F (Win32Fonts, CharactersBeyondTheFirstPlaneAreHarmless) {
    EXPECT_GT (Width ("\xF0\x9F\x98\x80"), 0);
    Picture (font, "\xF0\x9F\x98\x80 \xF4\x8F\xBF\xBF");
}

TEST_F (Win32Fonts, ALongTextIsDrawnAsFarAsItIsSeen) {
    std::string text (100000, 'i');
    EXPECT_EQ (Width (text), 100000 * Width ("i"));
    EXPECT_EQ (Picture (font, text, 0), Picture (font, std::string (200, 'i'), 0));
    EXPECT_EQ (Picture (font, text, -1000 * Width ("i")), Picture (font, std::string (200, 'i'), 0));
}

TEST_F (Win32Fonts, TextMayBeMixedWithOtherDrawing) {
    for (int i = 0; i < 100; i++) {
        Drawing_Fill (drawing, 0, 0, 300, 60, GREY);
        Drawing_Text (drawing, font, 20, 20, "MMMM", 4, BLACK);
        Drawing_Fill (drawing, 0, 0, 300, 60, BLUE);
        for (int x = 0; x < 300; x++) ASSERT_EQ (Drawing_Pixel (drawing, x, 27), BLUE);
    }
}

// --- handles ---------------------------------------------------------------

// How many GDI objects the process can still make. Wine doesn't tell how many there are.
static size_t Free_Handles () {
    std::vector<HBRUSH> brushes;
    while (HBRUSH brush = CreateSolidBrush (0)) brushes.push_back (brush);
    for (HBRUSH brush : brushes) DeleteObject (brush);
    return brushes.size ();
}

TEST_F (Win32Fonts, TenThousandSessionsLeaveNoHandles) {
    Width (nullptr, "The system's font is made once.");
    size_t before = Free_Handles ();
    ASSERT_GT (before, 1000u);
    for (int i = 0; i < 10000; i++) {
        Drawing_End (drawing);
        drawing = Drawing_Begin (window);
        Drawing_Clip (drawing, 1, 1, 200, 50);
        Drawing_Fill (drawing, 0, 0, 20, 20, RED);
        Drawing_Line (drawing, 0, 0, 20, 20, 2, BLUE);
        Drawing_Text (drawing, i % 2 ? font : nullptr, 5, 5, "text", 4, BLACK);
        Width ("text");
    }
    EXPECT_EQ (Free_Handles (), before);
}

TEST_F (Win32Fonts, FontsAreReleasedAlsoAfterTheyWereDrawnWith) {
    size_t before = Free_Handles ();
    for (int i = 0; i < 500; i++) {
        Drawing_Font made = Drawing_Font_Create ("Courier", 10 + i % 9, i % 2, 0);
        Drawing_Text (drawing, made, 5, 5, "text", 4, BLACK);
        Metrics (made);
        Drawing_Font_Free (made);
    }
    EXPECT_EQ (Free_Handles (), before);
}

TEST_F (Win32Drawing, WindowsAndTheirSizesLeaveNoHandles) {
    Close ();
    size_t before = Free_Handles ();
    for (int i = 0; i < 100; i++) {
        Open (20 + i, 30);
        Drawing_End (drawing);
        Window_Client_Resize (window, 90, 10 + i);
        drawing = Drawing_Begin (window);
        Close ();
    }
    EXPECT_EQ (Free_Handles (), before);
    Open (WIDTH, HEIGHT);
}
