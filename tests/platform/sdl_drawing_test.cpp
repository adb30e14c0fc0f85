// What is drawn on Linux, pixel by pixel, in windows that are never seen.
#include "platform/drawing.h"

#include <limits.h>
#include <stdlib.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/pictures.h"
#include "tests/support/temporary.h"

static const uint32_t GREY  = Drawing_Colour (200, 201, 202);
static const uint32_t RED   = Drawing_Colour (255, 0, 0);
static const uint32_t BLUE  = Drawing_Colour (1, 2, 250);
static const uint32_t BLACK = Drawing_Colour (0, 0, 0);

typedef std::pair<int, int> Place;
typedef std::set<Place>     Places;

static Window Make (int width, int height) {
    Window_Description description = {"", 0, 0, width, height, GREY, nullptr, 0, 1};
    return Window_Create (&description);
}

class SdlDrawing : public testing::Test {
public:
    static const int WIDTH = 60, HEIGHT = 40;

    void SetUp () override {
        window = Make (WIDTH, HEIGHT);
        ASSERT_NE (window, nullptr) << Window_Error_Text ();
        drawing = Drawing_Begin (window);
        ASSERT_NE (drawing, nullptr);
    }

    void TearDown () override {
        Drawing_End (drawing);
        Window_Destroy (window);
    }

    void Blank () {
        Drawing_Clip_All (drawing);
        Drawing_Fill (drawing, 0, 0, WIDTH, HEIGHT, GREY);
    }

    // All that doesn't have the background's colour.
    Places Inked () const {
        Places places;
        for (int y = 0; y < HEIGHT; y++)
            for (int x = 0; x < WIDTH; x++)
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

static Places Rectangle (int left, int bottom, int right, int top) {
    Places places;
    for (int y = bottom; y < top; y++)
        for (int x = left; x < right; x++) places.insert ({x, y});
    return places;
}

// --- the window's picture --------------------------------------------------

TEST_F (SdlDrawing, StartsInTheBackgroundColour) {
    EXPECT_TRUE (Inked ().empty ());
    EXPECT_EQ (Drawing_Pixel (drawing, 0, 0), GREY);
    EXPECT_EQ (Drawing_Pixels_Per_Inch (drawing), 96);
}

TEST_F (SdlDrawing, PixelsOutsideOfTheClientAreaAreNone) {
    for (Place place : {Place (-1, 0), {0, -1}, {WIDTH, 0}, {0, HEIGHT}, {INT_MAX, INT_MAX}, {INT_MIN, INT_MIN}})
        EXPECT_EQ (Drawing_Pixel (drawing, place.first, place.second), 0xFFFFFFFF);
}

TEST_F (SdlDrawing, WindowIsDrawnByOneAtATime) {
    EXPECT_EQ (Drawing_Begin (window), nullptr);
    Window  other  = Make (10, 10);
    Drawing second = Drawing_Begin (other);
    EXPECT_NE (second, nullptr);
    Drawing_End (second);
    Window_Destroy (other);
    Drawing_End (drawing);
    drawing = Drawing_Begin (window);
    EXPECT_NE (drawing, nullptr);
    EXPECT_EQ (Drawing_Begin (nullptr), nullptr);
}

TEST_F (SdlDrawing, EachDrawingBeginsWithTheWholeClientArea) {
    Drawing_Clip (drawing, 0, 0, 1, 1);
    Drawing_End (drawing);
    drawing = Drawing_Begin (window);
    Drawing_Fill (drawing, 0, 0, WIDTH, HEIGHT, RED);
    EXPECT_EQ (Inked ().size (), static_cast<size_t> (WIDTH * HEIGHT));
}

TEST_F (SdlDrawing, WhatIsDrawnIsKept) {
    Drawing_Fill (drawing, 3, 4, 5, 6, RED);
    Drawing_End (drawing);
    Window_Update (window);
    drawing = Drawing_Begin (window);
    EXPECT_EQ (Inked (), Rectangle (3, 4, 5, 6));
}

TEST_F (SdlDrawing, ResizeBeginsWithTheBackground) {
    Drawing_Fill (drawing, 0, 0, WIDTH, HEIGHT, RED);
    Window_Client_Resize (window, WIDTH + 1, HEIGHT + 2); // In the midst of a drawing.
    EXPECT_EQ (Drawing_Pixel (drawing, WIDTH, HEIGHT + 1), GREY);
    EXPECT_TRUE (Inked ().empty ());
    Drawing_Fill (drawing, 0, 0, 1000, 1000, RED);
    EXPECT_EQ (Drawing_Pixel (drawing, WIDTH, HEIGHT + 1), RED);
    Window_Client_Resize (window, 1, 1);
    Drawing_Fill (drawing, 0, 0, 1000, 1000, BLUE);
    EXPECT_EQ (Drawing_Pixel (drawing, 0, 0), BLUE);
    EXPECT_EQ (Drawing_Pixel (drawing, 1, 0), 0xFFFFFFFF);
    Window_Client_Resize (window, WIDTH, HEIGHT);
}

TEST_F (SdlDrawing, WindowDestroyedInADrawingMayStillBeDrawn) {
    Window  other  = Make (10, 10);
    Drawing second = Drawing_Begin (other);
    Window_Destroy (other);
    Drawing_Fill (second, 0, 0, 10, 10, RED);
    EXPECT_EQ (Drawing_Pixel (second, 9, 9), RED);
    Drawing_End (second);
}

// --- fill and clip ---------------------------------------------------------

TEST_F (SdlDrawing, FillCoversItsLeftAndBottomEdge) {
    Drawing_Fill (drawing, 3, 4, 10, 6, RED);
    EXPECT_EQ (Inked (), Rectangle (3, 4, 10, 6));
    EXPECT_EQ (Drawing_Pixel (drawing, 3, 4), RED);
}

TEST_F (SdlDrawing, FourthByteOfAColourHasNoMeaning) {
    Drawing_Fill (drawing, 0, 0, 1, 1, RED | 0x7F000000);
    EXPECT_EQ (Drawing_Pixel (drawing, 0, 0), RED);
}

TEST_F (SdlDrawing, EmptyAndTurnedRectanglesAreNothing) {
    Drawing_Fill (drawing, 5, 5, 5, 9, RED);
    Drawing_Fill (drawing, 5, 5, 9, 5, RED);
    Drawing_Fill (drawing, 9, 5, 5, 9, RED);
    Drawing_Fill (drawing, 5, 9, 9, 5, RED);
    Drawing_Fill (drawing, INT_MAX, INT_MAX, INT_MIN, INT_MIN, RED);
    EXPECT_TRUE (Inked ().empty ());
}

TEST_F (SdlDrawing, FillsAtTheExtremesEndAtTheClientArea) {
    Drawing_Fill (drawing, INT_MIN, INT_MIN, 2, 2, RED);
    EXPECT_EQ (Inked (), Rectangle (0, 0, 2, 2));
    Blank ();
    Drawing_Fill (drawing, WIDTH - 2, HEIGHT - 2, INT_MAX, INT_MAX, RED);
    EXPECT_EQ (Inked (), Rectangle (WIDTH - 2, HEIGHT - 2, WIDTH, HEIGHT));
    Drawing_Fill (drawing, INT_MIN, INT_MIN, INT_MAX, INT_MAX, RED);
    EXPECT_EQ (Inked ().size (), static_cast<size_t> (WIDTH * HEIGHT));
}

TEST_F (SdlDrawing, ClipHoldsForEverything) {
    std::vector<uint8_t> image (20 * 20 * 4, 0);
    Drawing_Clip (drawing, 10, 11, 13, 15);
    Places all = Rectangle (10, 11, 13, 15);
    Drawing_Fill (drawing, 0, 0, WIDTH, HEIGHT, RED);
    EXPECT_EQ (Inked (), all);
    Blank ();
    Drawing_Clip (drawing, 10, 11, 13, 15);
    Drawing_Image (drawing, 2, 2, 20, 20, image.data (), 20);
    EXPECT_EQ (Inked (), all);
    Blank ();
    Drawing_Clip (drawing, 10, 11, 13, 15);
    Drawing_Line (drawing, 0, 12, WIDTH, 12, 1, RED);
    EXPECT_EQ (Inked (), Rectangle (10, 12, 13, 13));
    Blank ();
    Drawing_Clip (drawing, 10, 11, 13, 15);
    Drawing_Text (drawing, nullptr, 0, 6, "WWWWWWWW", 8, BLACK);
    Places text = Inked ();
    EXPECT_FALSE (text.empty ());
    for (Place place : text) EXPECT_TRUE (all.count (place));
}

TEST_F (SdlDrawing, EachClipReplacesTheOneBefore) {
    Drawing_Clip (drawing, 0, 0, 2, 2);
    Drawing_Clip (drawing, 1, 1, 4, 4);
    Drawing_Fill (drawing, 0, 0, WIDTH, HEIGHT, RED);
    EXPECT_EQ (Inked (), Rectangle (1, 1, 4, 4));
    Drawing_Clip_All (drawing);
    Drawing_Fill (drawing, 0, 0, WIDTH, HEIGHT, RED);
    EXPECT_EQ (Inked ().size (), static_cast<size_t> (WIDTH * HEIGHT));
}

TEST_F (SdlDrawing, EmptyClipLetsNothingThrough) {
    std::vector<uint8_t> image (400, 0);
    for (auto clip : {Rectangle (0, 0, 1, 1), Places ()}) {
        if (clip.empty ()) Drawing_Clip (drawing, 5, 5, 5, 5);
        else Drawing_Clip (drawing, INT_MAX, INT_MAX, INT_MIN, INT_MIN);
        Drawing_Fill (drawing, 0, 0, WIDTH, HEIGHT, RED);
        Drawing_Line (drawing, 0, 0, WIDTH, HEIGHT, 5, RED);
        Drawing_Text (drawing, nullptr, 0, 0, "WWWW", 4, RED);
        Drawing_Image (drawing, 0, 0, 10, 10, image.data (), 10);
        EXPECT_TRUE (Inked ().empty ());
    }
}

// --- lines -----------------------------------------------------------------

TEST_F (SdlDrawing, LinesLeaveTheirSecondPointOut) {
    EXPECT_EQ (Line (5, 7, 9, 7), (Places {{5, 7}, {6, 7}, {7, 7}, {8, 7}}));
    EXPECT_EQ (Line (9, 7, 5, 7), (Places {{9, 7}, {8, 7}, {7, 7}, {6, 7}}));
    EXPECT_EQ (Line (5, 7, 5, 10), (Places {{5, 7}, {5, 8}, {5, 9}}));
    EXPECT_EQ (Line (5, 10, 5, 7), (Places {{5, 10}, {5, 9}, {5, 8}}));
    EXPECT_EQ (Line (5, 7, 8, 10), (Places {{5, 7}, {6, 8}, {7, 9}}));
    EXPECT_EQ (Line (5, 7, 2, 10), (Places {{5, 7}, {4, 8}, {3, 9}}));
    EXPECT_EQ (Line (5, 7, 8, 4), (Places {{5, 7}, {6, 6}, {7, 5}}));
    EXPECT_EQ (Line (5, 7, 2, 4), (Places {{5, 7}, {4, 6}, {3, 5}}));
    EXPECT_EQ (Line (5, 7, 5, 7), Places ());
}

TEST_F (SdlDrawing, FlatAndSteepLinesStayAtTheNearestPixels) {
    EXPECT_EQ (Line (0, 0, 6, 2), (Places {{0, 0}, {1, 0}, {2, 1}, {3, 1}, {4, 1}, {5, 2}}));
    EXPECT_EQ (Line (0, 0, 2, 6), (Places {{0, 0}, {0, 1}, {1, 2}, {1, 3}, {1, 4}, {2, 5}}));
    EXPECT_EQ (Line (10, 10, 4, 8), (Places {{10, 10}, {9, 10}, {8, 9}, {7, 9}, {6, 9}, {5, 8}}));
}

TEST_F (SdlDrawing, WidthZeroIsOnePixel) {
    EXPECT_EQ (Line (5, 7, 9, 7, 0), Rectangle (5, 7, 9, 8));
    EXPECT_EQ (Line (5, 7, 9, 7, -3), Rectangle (5, 7, 9, 8));
}

TEST_F (SdlDrawing, WideLinesLieAroundTheirMiddle) {
    EXPECT_EQ (Line (5, 7, 9, 7, 3), Rectangle (5, 6, 9, 9));
    EXPECT_EQ (Line (5, 7, 9, 7, 2), Rectangle (5, 6, 9, 8));
    EXPECT_EQ (Line (5, 7, 9, 7, 4), Rectangle (5, 5, 9, 9));
    EXPECT_EQ (Line (9, 7, 5, 7, 4), Rectangle (6, 5, 10, 9));
    EXPECT_EQ (Line (15, 7, 15, 12, 3), Rectangle (14, 7, 17, 12));
    EXPECT_EQ (Line (15, 7, 15, 12, 2), Rectangle (14, 7, 16, 12));
    EXPECT_EQ (Line (15, 7, 15, 12, INT_MAX), Rectangle (0, 7, WIDTH, 12));
}

TEST_F (SdlDrawing, LinesFromFarAwayPassWhereTheyShould) {
    EXPECT_EQ (Line (INT_MIN, 5, INT_MAX, 5), Rectangle (0, 5, WIDTH, 6));
    EXPECT_EQ (Line (3, INT_MAX, 3, INT_MIN), Rectangle (3, 0, 4, HEIGHT));
    Places diagonal;
    for (int i = 0; i < HEIGHT; i++) diagonal.insert ({i, i});
    EXPECT_EQ (Line (INT_MIN, INT_MIN, INT_MAX, INT_MAX), diagonal);
    EXPECT_EQ (Line (INT_MAX, INT_MAX, INT_MIN, INT_MIN), diagonal);
    EXPECT_EQ (Line (-1000000000, -1000000000, 1000000000, 1000000000), diagonal);
    EXPECT_EQ (Line (INT_MIN, INT_MIN, INT_MIN, INT_MAX), Places ());
    EXPECT_EQ (Line (INT_MIN, INT_MAX, INT_MAX, INT_MAX - 1), Places ());
}

TEST_F (SdlDrawing, ClippedLineHasThePixelsOfTheWholeOne) {
    Places whole = Line (-20, -7, 75, 51, 2), clipped;
    Blank ();
    Drawing_Clip (drawing, 20, 5, 33, 35);
    Drawing_Line (drawing, -20, -7, 75, 51, 2, RED);
    for (Place place : whole)
        if (Rectangle (20, 5, 33, 35).count (place)) clipped.insert (place);
    EXPECT_FALSE (clipped.empty ());
    EXPECT_EQ (Inked (), clipped);
}

// --- images ----------------------------------------------------------------

// Pixel number i has the colour i, 0, 7.
static std::vector<uint8_t> Numbered (int count) {
    std::vector<uint8_t> pixels;
    for (int i = 0; i < count; i++) pixels.insert (pixels.end (), {7, 0, static_cast<uint8_t> (i), 99});
    return pixels;
}

TEST_F (SdlDrawing, ImageRowsGoFromTopToBottom) {
    std::vector<uint8_t> pixels = Numbered (6);
    Drawing_Image (drawing, 4, 5, 3, 2, pixels.data (), 3);
    EXPECT_EQ (Inked (), Rectangle (4, 5, 7, 7));
    EXPECT_EQ (Drawing_Pixel (drawing, 4, 6), Drawing_Colour (0, 0, 7));
    EXPECT_EQ (Drawing_Pixel (drawing, 6, 6), Drawing_Colour (2, 0, 7));
    EXPECT_EQ (Drawing_Pixel (drawing, 4, 5), Drawing_Colour (3, 0, 7));
    EXPECT_EQ (Drawing_Pixel (drawing, 6, 5), Drawing_Colour (5, 0, 7));
}

TEST_F (SdlDrawing, PartOfAWiderImage) {
    std::vector<uint8_t> pixels = Numbered (20);
    Drawing_Image (drawing, 0, 0, 2, 2, pixels.data () + 4 * 7, 5);
    EXPECT_EQ (Inked (), Rectangle (0, 0, 2, 2));
    EXPECT_EQ (Drawing_Pixel (drawing, 0, 1), Drawing_Colour (7, 0, 7));
    EXPECT_EQ (Drawing_Pixel (drawing, 1, 0), Drawing_Colour (13, 0, 7));
}

TEST_F (SdlDrawing, UnalignedPixels) {
    std::vector<uint8_t> pixels = Numbered (2);
    pixels.insert (pixels.begin (), 0);
    Drawing_Image (drawing, 0, 0, 2, 1, pixels.data () + 1, 2);
    EXPECT_EQ (Drawing_Pixel (drawing, 1, 0), Drawing_Colour (1, 0, 7));
}

TEST_F (SdlDrawing, ImageOverTheEdgesShowsItsOtherPart) {
    std::vector<uint8_t> pixels = Numbered (16);
    Drawing_Image (drawing, -1, -2, 4, 4, pixels.data (), 4);
    EXPECT_EQ (Inked (), Rectangle (0, 0, 3, 2));
    EXPECT_EQ (Drawing_Pixel (drawing, 0, 1), Drawing_Colour (1, 0, 7));
    EXPECT_EQ (Drawing_Pixel (drawing, 2, 0), Drawing_Colour (7, 0, 7));
    Blank ();
    Drawing_Image (drawing, WIDTH - 1, HEIGHT - 1, 4, 4, pixels.data (), 4);
    EXPECT_EQ (Inked (), Rectangle (WIDTH - 1, HEIGHT - 1, WIDTH, HEIGHT));
    EXPECT_EQ (Drawing_Pixel (drawing, WIDTH - 1, HEIGHT - 1), Drawing_Colour (12, 0, 7));
}

TEST_F (SdlDrawing, ImagesAtTheExtremesAreNotRead) {
    uint8_t pixel[4] = {};
    Drawing_Image (drawing, INT_MAX, INT_MAX, 1, 1, pixel, 1);
    Drawing_Image (drawing, INT_MIN, INT_MIN, 1, 1, pixel, 1);
    Drawing_Image (drawing, INT_MAX, 0, INT_MAX, INT_MAX, pixel, INT_MAX);
    Drawing_Image (drawing, 0, 0, 0, 1, pixel, 1);
    Drawing_Image (drawing, 0, 0, 1, 0, pixel, 1);
    Drawing_Image (drawing, 9, 9, -5, -5, pixel, 1);
    Drawing_Image (drawing, 0, 0, INT_MIN, INT_MIN, pixel, 1);
    Drawing_Image (drawing, 0, 0, 1, 1, nullptr, 1);
    EXPECT_TRUE (Inked ().empty ());
}

// --- fonts -----------------------------------------------------------------

struct Font {
    Font (const char *face, int height, int bold = 0, int italic = 0)
        : font (Drawing_Font_Create (face, height, bold, italic)) {}
    ~Font () { Drawing_Font_Free (font); }
                 operator Drawing_Font () const { return font; }
    Drawing_Font font;
};

class SdlText : public SdlDrawing {
public:
    int Width (Drawing_Font font, const std::string &text) {
        return Drawing_Text_Width (drawing, font, text.data (), static_cast<int> (text.size ()));
    }

    void Draw (Drawing_Font font, int x, int y, const std::string &text) {
        Drawing_Text (drawing, font, x, y, text.data (), static_cast<int> (text.size ()), BLACK);
    }

    std::vector<uint32_t> Picture (Drawing_Font font, const std::string &text) {
        Blank ();
        Draw (font, 2, 3, text);
        std::vector<uint32_t> pixels;
        for (int y = 0; y < HEIGHT; y++)
            for (int x = 0; x < WIDTH; x++) pixels.push_back (Drawing_Pixel (drawing, x, y));
        return pixels;
    }

    Drawing_Font_Metrics Measure (Drawing_Font font) {
        Drawing_Font_Metrics metrics = {-1, -1, -1};
        Drawing_Font_Measure (drawing, font, &metrics);
        return metrics;
    }
};

TEST_F (SdlText, ImpossibleHeightsMakeNoFont) {
    EXPECT_EQ (Drawing_Font_Create ("Arial", 0, 0, 0), nullptr);
    EXPECT_EQ (Drawing_Font_Create ("Arial", -12, 0, 0), nullptr);
    EXPECT_EQ (Drawing_Font_Create ("Arial", INT_MIN, 0, 0), nullptr);
    EXPECT_EQ (Drawing_Font_Create ("Arial", INT_MAX, 0, 0), nullptr);
    Drawing_Font_Free (nullptr);
}

TEST_F (SdlText, StrangeFacesAreReplaced) {
    for (const char *face : {"", "No such face at all", "\xE9\x81\xFF", ",,,", "Arial,"}) {
        Font font (face, 13);
        ASSERT_NE (font.font, nullptr) << face;
        EXPECT_GT (Width (font, "text"), 0) << face;
    }
    Font none (nullptr, 13);
    EXPECT_EQ (Width (none, "text of the system"), Width (nullptr, "text of the system"));
}

TEST_F (SdlText, MetricsGrowWithTheHeight) {
    int before = 0;
    for (int height : {1, 2, 5, 8, 13, 16, 40, 300, 2000}) {
        Font                 font ("Arial", height);
        Drawing_Font_Metrics metrics = Measure (font);
        EXPECT_GE (metrics.height, height);
        EXPECT_LE (metrics.height, height + height / 3 + 2);
        EXPECT_GT (metrics.height, metrics.descent);
        EXPECT_GT (metrics.descent, 0);
        EXPECT_GT (metrics.average_width, height / 3);
        EXPECT_LE (metrics.average_width, height);
        EXPECT_GT (metrics.height, before);
        before = metrics.height;
    }
    Drawing_Font_Metrics system = Measure (nullptr);
    EXPECT_GE (system.height, 13);
    EXPECT_LE (system.height, 18);
}

TEST_F (SdlText, BoldIsWiderAndItalicAnotherPicture) {
    Font plain ("Arial", 13), bold ("Arial", 13, 1), italic ("Arial", 13, 0, 1);
    EXPECT_GT (Width (bold, "Patient's Name"), Width (plain, "Patient's Name"));
    EXPECT_NE (Picture (bold, "Patient"), Picture (plain, "Patient"));
    EXPECT_NE (Picture (italic, "Patient"), Picture (plain, "Patient"));
}

TEST_F (SdlText, CourierHasOnePitch) {
    Font courier ("Courier", 13);
    int  pitch = Width (courier, "i");
    EXPECT_GT (pitch, 0);
    for (int c = ' '; c < 0x7F; c++) EXPECT_EQ (Width (courier, std::string (1, static_cast<char> (c))), pitch);
    EXPECT_EQ (Measure (courier).average_width, pitch);
    EXPECT_EQ (Width (courier, "\xC3\xA9\xE2\x82\xAC"), 2 * pitch);
}

// --- widths ----------------------------------------------------------------

TEST_F (SdlText, WidthsAddUp) {
    Font        arial ("Arial", 13);
    std::string text = "AVATAR To fi ffl VA (0010,0010) Ty.";
    int         sum  = 0;
    for (char c : text) {
        int width = Width (arial, std::string (1, c));
        EXPECT_GT (width, 0);
        sum += width;
    }
    EXPECT_EQ (Width (arial, text), sum);
    EXPECT_EQ (Width (arial, text + text), 2 * sum);
    EXPECT_EQ (Width (arial, text + "\xE2\x82\xAC"), sum + Width (arial, "\xE2\x82\xAC"));
}

TEST_F (SdlText, NothingIsAsWideAsNothing) {
    EXPECT_EQ (Drawing_Text_Width (drawing, nullptr, nullptr, 5), 0);
    EXPECT_EQ (Drawing_Text_Width (drawing, nullptr, "text", 0), 0);
    EXPECT_EQ (Drawing_Text_Width (drawing, nullptr, "text", -1), 0);
    EXPECT_EQ (Drawing_Text_Width (drawing, nullptr, "text", INT_MIN), 0);
    Drawing_Text (drawing, nullptr, 0, 0, nullptr, 5, BLACK);
    Drawing_Text (drawing, nullptr, 0, 0, "text", 0, BLACK);
    Drawing_Text (drawing, nullptr, 0, 0, "text", -1, BLACK);
    EXPECT_TRUE (Inked ().empty ());
}

TEST_F (SdlText, TextEndsWhereItsLengthSays) {
    EXPECT_EQ (Drawing_Text_Width (drawing, nullptr, "textual", 4), Width (nullptr, "text"));
}

// --- what is drawn ---------------------------------------------------------

// A pixel beside it is what a font's designer may ask for: strokes that join, such as a row of "_", overlap.
TEST_F (SdlText, InkStaysInsideOfTheCell) {
    for (const char *face : {"Arial", "Courier"})
        for (int bold : {0, 1})
            for (int height : {9, 13, 20}) {
                Font font (face, height, bold);
                for (const char *text : {"H", "(mp)", "\xC3\x85g", "WM", "|_", "\xE2\x82\xAC"}) {
                    Blank ();
                    Draw (font, 5, 7, text);
                    Places box   = Rectangle (4, 7, 6 + Width (font, text), 7 + Measure (font).height);
                    Places inked = Inked ();
                    EXPECT_FALSE (inked.empty ()) << text;
                    for (Place place : inked)
                        EXPECT_TRUE (box.count (place))
                            << face << " " << height << " " << text << " at " << place.first << ", " << place.second;
                }
            }
}

TEST_F (SdlText, CellStandsOnItsBottom) {
    Font font ("Arial", 20);
    Blank ();
    Draw (font, 0, 0, "_H");
    Places inked = Inked ();
    int    base = Measure (font).descent, lowest = HEIGHT, highest = 0;
    for (Place place : inked) {
        lowest  = std::min (lowest, place.second);
        highest = std::max (highest, place.second);
    }
    EXPECT_LT (lowest, base);       // The line below.
    EXPECT_GT (highest, base + 10); // The capital above.
}

TEST_F (SdlText, BackgroundShowsBetweenTheCharacters) {
    Drawing_Fill (drawing, 0, 0, WIDTH, HEIGHT, BLUE);
    Draw (nullptr, 0, 0, "a b");
    int blue = 0;
    for (int x = 0; x < WIDTH; x++) blue += Drawing_Pixel (drawing, x, 5) == BLUE;
    EXPECT_GT (blue, WIDTH / 2);
}

TEST_F (SdlText, ColourOfTheStrokes) {
    Font font ("Arial", 30, 1);
    Drawing_Text (drawing, font, 0, 0, "I", 1, Drawing_Colour (10, 20, 230));
    int full = 0;
    for (Place place : Inked ())
        full += Drawing_Pixel (drawing, place.first, place.second) == Drawing_Colour (10, 20, 230);
    EXPECT_GT (full, 20);
}

TEST_F (SdlText, Windows1252DrawsLikeUtf8) {
    struct Pair {
        const char *raw, *utf8;
    };
    static const Pair PAIRS[] = {{"\xE9", "\xC3\xA9"},     {"M\xFCller", "M\xC3\xBCller"},
                                 {"\x80", "\xE2\x82\xAC"}, {"\x8A\x9C", "\xC5\xA0\xC5\x93"},
                                 {"\x81", "\xEF\xBF\xBD"}, {"\x9D", "\xEF\xBF\xBD"},
                                 {"\xA0x", "\xC2\xA0x"},   {"\xFF", "\xC3\xBF"}};
    for (const Pair &pair : PAIRS) {
        EXPECT_EQ (Width (nullptr, pair.raw), Width (nullptr, pair.utf8)) << pair.utf8;
        EXPECT_GT (Width (nullptr, pair.raw), 0);
        EXPECT_EQ (Picture (nullptr, pair.raw), Picture (nullptr, pair.utf8)) << pair.utf8;
    }
}

// Each would be UTF-8 if its bytes were fewer, more or others.
TEST_F (SdlText, InvalidUtf8IsTakenAsSingleBytes) {
    struct Pair {
        const char *raw, *utf8;
    };
    static const Pair PAIRS[] = {{"\xC3", "\xC3\x83"},
                                 {"\xC3Z", "\xC3\x83Z"},
                                 {"\xE2\x82", "\xC3\xA2\xE2\x80\x9A"},
                                 {"\xC0\xAF", "\xC3\x80\xC2\xAF"},
                                 {"\xE0\x82\xA9", "\xC3\xA0\xE2\x80\x9A\xC2\xA9"},
                                 {"\xED\xA0\xA0", "\xC3\xAD\xC2\xA0\xC2\xA0"},
                                 {"\xF0\x82\x82\xAC", "\xC3\xB0\xE2\x80\x9A\xE2\x80\x9A\xC2\xAC"},
                                 {"\xF4\xA0\xA0\xA0", "\xC3\xB4\xC2\xA0\xC2\xA0\xC2\xA0"},
                                 {"\xF5\xA0\xA0\xA0", "\xC3\xB5\xC2\xA0\xC2\xA0\xC2\xA0"}};
    for (const Pair &pair : PAIRS) {
        EXPECT_EQ (Width (nullptr, pair.raw), Width (nullptr, pair.utf8)) << pair.utf8;
        EXPECT_EQ (Picture (nullptr, pair.raw), Picture (nullptr, pair.utf8)) << pair.utf8;
    }
}

TEST_F (SdlText, EachSequenceIsTakenForItself) {
    EXPECT_EQ (Picture (nullptr, "\xC3\xA9 \xE9"), Picture (nullptr, "\xE9 \xC3\xA9"));
    EXPECT_EQ (Picture (nullptr, "\xE9\xE2\x82\xAC"), Picture (nullptr, "\xC3\xA9\xE2\x82\xAC"));
    EXPECT_EQ (Width (nullptr, "caf\xC3\xA9 \xE9t\xE9"),
               Width (nullptr, "caf\xC3\xA9 ") + Width (nullptr, "\xE9t\xE9"));
}

// The library that looks fonts up is told here that no other name means the same.
TEST_F (SdlText, WithoutAFontIsDrawnLikeArial) {
    Font arial ("Arial", 13);
    EXPECT_EQ (Measure (nullptr).height, Measure (arial).height);
    EXPECT_EQ (Width (nullptr, "Wimlij"), Width (arial, "Wimlij"));
    EXPECT_EQ (Picture (nullptr, "Wimlij"), Picture (arial, "Wimlij"));
    Font other ("Sans", 13);
    EXPECT_NE (Width (nullptr, "Wimlij"), Width (other, "Wimlij"));
}

TEST_F (SdlText, ShapedAndPlainRunsGiveTheSamePicture) {
    Font        arial ("Arial", 13);
    std::string text  = "AV fi";
    int         width = Width (arial, text);
    Draw (arial, 2, 3, text);
    std::vector<uint32_t> plain, shaped;
    for (int y = 0; y < HEIGHT; y++)
        for (int x = 0; x < 2 + width; x++) plain.push_back (Drawing_Pixel (drawing, x, y));
    Blank ();
    Draw (arial, 2, 3, text + " \xE2\x80\xA6"); // An ellipsis makes it a run of another kind.
    for (int y = 0; y < HEIGHT; y++)
        for (int x = 0; x < 2 + width; x++) shaped.push_back (Drawing_Pixel (drawing, x, y));
    EXPECT_EQ (plain, shaped);
}

TEST_F (SdlText, ControlsAreBlanks) {
    std::string controls;
    for (int c = 0; c < 0x20; c++) controls += static_cast<char> (c);
    controls += '\x7F';
    for (const char *text : {"\xC2\x80", "\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9", "\xE2\x80\xAE", "\xE2\x81\xA6"})
        EXPECT_EQ (Width (nullptr, text), Width (nullptr, " "));
    EXPECT_EQ (Width (nullptr, controls), 33 * Width (nullptr, " "));
    Draw (nullptr, 0, 0, controls);
    EXPECT_TRUE (Inked ().empty ());
    EXPECT_EQ (Picture (nullptr, std::string ("a\nb\tc\0d", 7)), Picture (nullptr, "a b c d"));
    EXPECT_EQ (Picture (nullptr, std::string ("a\n\xC3\xA9\0d", 6)), Picture (nullptr, "a \xC3\xA9 d"));
}

TEST_F (SdlText, TextsBesideTheClientAreaAreNotSeen) {
    std::string text = "text with \xE2\x82\xAC";
    for (int x : {INT_MIN, -100000, 100000, INT_MAX}) Draw (nullptr, x, 5, text), Draw (nullptr, x, 5, "plain");
    for (int y : {INT_MIN, -100, HEIGHT, INT_MAX}) Draw (nullptr, 5, y, text), Draw (nullptr, 5, y, "plain");
    EXPECT_TRUE (Inked ().empty ());
}

TEST_F (SdlText, TextOverTheLeftEdgeShowsItsEnd) {
    Font font ("Courier", 13);
    for (std::string text : {"iiiiiiiiiiiiiiiiiiiiW", "\xE2\x80\xA6iiiiiiiiiiiiiiiiiiiW"}) {
        Blank ();
        Draw (font, 5 - 20 * Width (font, "W"), 3, text);
        std::vector<uint32_t> scrolled, alone;
        for (int x = 5; x < WIDTH; x++)
            for (int y = 0; y < HEIGHT; y++) scrolled.push_back (Drawing_Pixel (drawing, x, y));
        Blank ();
        Draw (font, 5, 3, "W");
        for (int x = 5; x < WIDTH; x++)
            for (int y = 0; y < HEIGHT; y++) alone.push_back (Drawing_Pixel (drawing, x, y));
        EXPECT_EQ (scrolled, alone);
    }
}

TEST_F (SdlText, LongRuns) {
    std::string plain (100000, 'x'), shaped = "\xE2\x82\xAC" + std::string (20000, 'x');
    EXPECT_EQ (Width (nullptr, plain), 100000 * Width (nullptr, "x"));
    EXPECT_EQ (Width (nullptr, shaped), Width (nullptr, "\xE2\x82\xAC") + 20000 * Width (nullptr, "x"));
    Draw (nullptr, -50000, 0, shaped);
    EXPECT_FALSE (Inked ().empty ());
    Blank ();
    Draw (nullptr, -50000, 0, plain);
    EXPECT_FALSE (Inked ().empty ());
}

TEST_F (SdlText, RandomBytesDoNoHarm) {
    unsigned seed = 1;
    for (int i = 0; i < 300; i++) {
        std::string text;
        for (int j = 0; j < 40; j++) text += static_cast<char> ((seed = seed * 1103515245 + 12345) >> 16);
        EXPECT_GT (Width (nullptr, text), 0);
        Draw (nullptr, 0, 0, text);
    }
}

// A screen of three panes with 200 rows of 200 characters. The bound is far above what it takes (about 15 ms at once), so
// that only a shaping of every run would pass it.
TEST_F (SdlText, PlainRunsAreQuick) {
    Font        font ("Arial", 13);
    std::string text;
    for (int i = 0; i < 200; i++) text += static_cast<char> ('!' + i % 90);
    Draw (font, 0, 0, text);
    auto start = std::chrono::steady_clock::now ();
    for (int i = 0; i < 600; i++) Draw (font, 0, 0, text);
    EXPECT_LT (std::chrono::steady_clock::now () - start, std::chrono::milliseconds (300));
}

// --- reading back ----------------------------------------------------------

TEST_F (SdlDrawing, PictureIsAPngFile) {
    Temporary_Directory directory;
    std::string         path = directory.File ("picture.png");
    EXPECT_EQ (Drawing_Picture_Write (window, path.c_str ()), 1);
    EXPECT_EQ (Read_Whole (path).substr (0, 8), "\x89PNG\r\n\x1A\n");
    EXPECT_EQ (Drawing_Picture_Write (window, directory.File ("none/picture.png").c_str ()), 0);
    EXPECT_EQ (Drawing_Picture_Write (nullptr, path.c_str ()), 0);
    EXPECT_EQ (Drawing_Picture_Write (window, nullptr), 0);
}

TEST_F (SdlText, FontsLookAsTheyDid) {
    Window  page  = Make (370, 170);
    Drawing sheet = Drawing_Begin (page);
    struct Sample {
        const char *face;
        int         height, bold, italic;
    };
    static const Sample SAMPLES[] = {{"Arial", 11, 0, 0}, {"Arial", 13, 0, 0},   {"Arial", 13, 1, 0},
                                     {"Arial", 13, 0, 1}, {"Courier", 13, 0, 0}, {"Courier", 13, 1, 0},
                                     {nullptr, 13, 0, 0}, {"Arial", 20, 1, 0}};
    const char         *text      = "(0010,0010) PN Doe^J\xC3\xA9r\xC3\xB4me \xE2\x80\xA6 {gjpq}";
    int                 y         = 163;
    for (const Sample &sample : SAMPLES) {
        Font                 font (sample.face, sample.height, sample.bold, sample.italic);
        Drawing_Font_Metrics metrics = Measure (font);
        y -= metrics.height;
        Drawing_Text (sheet, font, 5, y, text, static_cast<int> (strlen (text)), BLACK);
        y -= 3;
    }
    Drawing_End (sheet);
    EXPECT_TRUE (Picture_Matches (page, "platform_fonts"));
    Window_Destroy (page);
}
