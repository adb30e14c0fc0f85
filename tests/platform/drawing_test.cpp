// What is drawn on every system, pixel by pixel, in windows that are never seen.
#include "platform/drawing.h"

#include <algorithm>

#include "tests/platform/canvas.h"

using DrawingShapes = Canvas;
using DrawingTexts  = Text_Canvas;

// --- the window's picture --------------------------------------------------

TEST_F (DrawingShapes, StartInTheBackgroundColour) {
    EXPECT_TRUE (Inked ().empty ());
    EXPECT_EQ (Drawing_Pixel (drawing, 0, 0), GREY);
    EXPECT_EQ (Drawing_Pixel (drawing, WIDTH - 1, HEIGHT - 1), GREY);
}

TEST_F (DrawingShapes, PixelsOutsideOfTheClientAreaAreNone) {
    for (Place place :
         {Place (-1, 0), {0, -1}, {WIDTH, 0}, {0, HEIGHT}, {INT_MAX, INT_MAX}, {INT_MIN, INT_MIN}, {INT_MAX, INT_MIN}})
        EXPECT_EQ (Drawing_Pixel (drawing, place.first, place.second), 0xFFFFFFFF);
}

TEST_F (DrawingShapes, WindowIsDrawnByOneAtATime) {
    EXPECT_EQ (Drawing_Begin (window), nullptr);
    Drawing_End (drawing);
    EXPECT_EQ (Drawing_Begin (nullptr), nullptr);
    drawing = Drawing_Begin (window);
    EXPECT_NE (drawing, nullptr);
    EXPECT_EQ (Drawing_Begin (nullptr), nullptr);
}

TEST_F (DrawingShapes, EachDrawingBeginsWithTheWholeClientArea) {
    Drawing_Clip (drawing, 1, 1, 3, 3);
    Drawing_End (drawing);
    drawing = Drawing_Begin (window);
    Drawing_Fill (drawing, 0, 0, WIDTH, HEIGHT, RED);
    EXPECT_EQ (Inked (), Rectangle (0, 0, WIDTH, HEIGHT));
}

TEST_F (DrawingShapes, WhatIsDrawnIsKept) {
    Drawing_Fill (drawing, 3, 4, 5, 6, RED);
    Drawing_End (drawing);
    Window_Update (window);
    drawing = Drawing_Begin (window);
    EXPECT_EQ (Inked (), Rectangle (3, 4, 5, 6));
}

TEST_F (DrawingShapes, WindowThatShrinksInADrawingIsDrawnInsideItsNewSize) {
    Window_Client_Resize (window, 5, 4);
    Drawing_Fill (drawing, 0, 0, WIDTH, HEIGHT, RED);
    EXPECT_EQ (Inked (), Rectangle (0, 0, 5, 4));
    EXPECT_EQ (Drawing_Pixel (drawing, 5, 0), 0xFFFFFFFF);
}

// --- fill and clip ---------------------------------------------------------

TEST_F (DrawingShapes, FillCoversItsLeftAndBottomEdge) {
    Drawing_Fill (drawing, 3, 5, 9, 11, RED);
    EXPECT_EQ (Inked (), Rectangle (3, 5, 9, 11));
    EXPECT_EQ (Drawing_Pixel (drawing, 3, 5), RED);
}

TEST_F (DrawingShapes, FourthByteOfAColourHasNoMeaning) {
    Drawing_Fill (drawing, 0, 0, 1, 1, RED | 0xFF000000);
    Drawing_Fill (drawing, 1, 0, 2, 1, RED | 0x7F000000);
    Drawing_Line (drawing, 2, 0, 3, 0, 1, RED | 0x80000000);
    for (int x = 0; x < 3; x++) EXPECT_EQ (Drawing_Pixel (drawing, x, 0), RED);
}

TEST_F (DrawingShapes, ColoursKeepTheirChannels) {
    Drawing_Fill (drawing, 0, 0, 1, 1, Drawing_Colour (1, 2, 3));
    EXPECT_EQ (Drawing_Pixel (drawing, 0, 0), Drawing_Colour (1, 2, 3));
}

TEST_F (DrawingShapes, EmptyAndTurnedRectanglesAreNothing) {
    Drawing_Fill (drawing, 5, 5, 5, 9, RED);
    Drawing_Fill (drawing, 5, 5, 9, 5, RED);
    Drawing_Fill (drawing, 9, 5, 5, 9, RED);
    Drawing_Fill (drawing, 5, 9, 9, 5, RED);
    Drawing_Fill (drawing, 9, 9, 5, 5, RED);
    Drawing_Fill (drawing, INT_MAX, INT_MAX, INT_MIN, INT_MIN, RED);
    EXPECT_TRUE (Inked ().empty ());
}

TEST_F (DrawingShapes, FillsAtTheExtremesEndAtTheClientArea) {
    Drawing_Fill (drawing, INT_MIN, INT_MIN, 2, 2, RED);
    EXPECT_EQ (Inked (), Rectangle (0, 0, 2, 2));
    Blank ();
    Drawing_Fill (drawing, WIDTH - 2, HEIGHT - 2, INT_MAX, INT_MAX, RED);
    EXPECT_EQ (Inked (), Rectangle (WIDTH - 2, HEIGHT - 2, WIDTH, HEIGHT));
    Drawing_Fill (drawing, INT_MIN, INT_MIN, INT_MAX, INT_MAX, RED);
    EXPECT_EQ (Inked (), Rectangle (0, 0, WIDTH, HEIGHT));
}

TEST_F (DrawingShapes, ClipHoldsForEverything) {
    std::vector<uint8_t> image (WIDTH * HEIGHT * 4, 0);
    const Places         all  = Rectangle (10, 11, 13, 15);
    auto                 Clip = [this] {
        Blank ();
        Drawing_Clip (drawing, 10, 11, 13, 15);
    };
    Clip ();
    Drawing_Fill (drawing, 0, 0, WIDTH, HEIGHT, RED);
    EXPECT_EQ (Inked (), all);
    Clip ();
    Drawing_Image (drawing, 2, 2, 20, 20, image.data (), 20);
    EXPECT_EQ (Inked (), all);
    Clip ();
    Drawing_Image (drawing, 0, 0, WIDTH, HEIGHT, image.data (), WIDTH);
    EXPECT_EQ (Inked (), all);
    Clip ();
    Drawing_Line (drawing, 0, 12, WIDTH, 12, 1, RED);
    EXPECT_EQ (Inked (), Rectangle (10, 12, 13, 13));
    Clip ();
    Drawing_Line (drawing, 0, 20, WIDTH, 20, 50, RED);
    EXPECT_EQ (Inked (), all);
    Clip ();
    Drawing_Text (drawing, nullptr, 0, 6, "WWWWWWWWWWWWWWWW", 16, BLACK);
    Places text = Inked ();
    EXPECT_FALSE (text.empty ());
    for (Place place : text) EXPECT_TRUE (all.count (place));
}

TEST_F (DrawingShapes, EachClipReplacesTheOneBefore) {
    Drawing_Clip (drawing, 0, 0, 2, 2);
    Drawing_Clip (drawing, 1, 1, 4, 4);
    Drawing_Clip (drawing, 5, 5, 8, 8);
    Drawing_Fill (drawing, 0, 0, WIDTH, HEIGHT, RED);
    EXPECT_EQ (Inked (), Rectangle (5, 5, 8, 8));
    Drawing_Clip (drawing, 7, 7, 9, 9); // Overlaps it.
    Drawing_Fill (drawing, 0, 0, WIDTH, HEIGHT, GREY);
    Drawing_Fill (drawing, 0, 0, 8, 9, BLUE);
    EXPECT_EQ (Drawing_Pixel (drawing, 7, 8), BLUE);
    EXPECT_EQ (Drawing_Pixel (drawing, 6, 7), RED);
    Drawing_Clip_All (drawing);
    Drawing_Fill (drawing, 0, 0, WIDTH, HEIGHT, RED);
    EXPECT_EQ (Inked (), Rectangle (0, 0, WIDTH, HEIGHT));
}

TEST_F (DrawingShapes, EmptyAndTurnedClipsLetNothingThrough) {
    std::vector<uint8_t> image (400, 0);
    const int            clips[][4] = {
                   {5, 5, 5, 5}, {10, 10, 10, 20}, {10, 10, 20, 10}, {20, 20, 10, 10}, {INT_MAX, INT_MAX, INT_MIN, INT_MIN}};
    for (const int (&clip)[4] : clips) {
        Drawing_Clip (drawing, clip[0], clip[1], clip[2], clip[3]);
        Drawing_Fill (drawing, 0, 0, WIDTH, HEIGHT, RED);
        Drawing_Line (drawing, 0, 0, WIDTH, HEIGHT, 5, RED);
        Drawing_Text (drawing, nullptr, 0, 0, "WWWW", 4, RED);
        Drawing_Image (drawing, 0, 0, 10, 10, image.data (), 10);
        EXPECT_TRUE (Inked ().empty ()) << clip[0] << " " << clip[2];
    }
}

TEST_F (DrawingShapes, ClipAtTheExtremesIsTheClientArea) {
    Drawing_Clip (drawing, INT_MIN, INT_MIN, INT_MAX, INT_MAX);
    Drawing_Fill (drawing, 1, 1, 2, 2, RED);
    EXPECT_EQ (Inked (), Rectangle (1, 1, 2, 2));
}

// --- lines -----------------------------------------------------------------

struct Direction {
    int    x, y;
    Places pixels; // All from where the line begins.
};

class DrawingLines : public Canvas {
protected:
    // Looks at lines to all these points, from two places and of both widths that are one pixel.
    void Hold (const std::vector<Direction> &directions) {
        for (Place start : {Place (20, 20), {6, 9}})
            for (const Direction &to : directions) {
                Places expected;
                for (Place place : to.pixels)
                    expected.insert ({start.first + place.first, start.second + place.second});
                for (int width : {-3, 0, 1})
                    EXPECT_EQ (Line (start.first, start.second, start.first + to.x, start.second + to.y, width),
                               expected)
                        << to.x << ", " << to.y << ", width " << width;
            }
    }
};

TEST_F (DrawingLines, LeaveTheirSecondPointOut) {
    Hold ({{4, 0, {{0, 0}, {1, 0}, {2, 0}, {3, 0}}},
           {3, 3, {{0, 0}, {1, 1}, {2, 2}}},
           {0, 3, {{0, 0}, {0, 1}, {0, 2}}},
           {-3, 3, {{0, 0}, {-1, 1}, {-2, 2}}},
           {-4, 0, {{0, 0}, {-1, 0}, {-2, 0}, {-3, 0}}},
           {-3, -3, {{0, 0}, {-1, -1}, {-2, -2}}},
           {0, -3, {{0, 0}, {0, -1}, {0, -2}}},
           {3, -3, {{0, 0}, {1, -1}, {2, -2}}},
           {1, 0, {{0, 0}}},
           {0, 0, {}}});
}

TEST_F (DrawingLines, StayAtTheNearestPixels) {
    Hold ({{6, 2, {{0, 0}, {1, 0}, {2, 1}, {3, 1}, {4, 1}, {5, 2}}},
           {2, 6, {{0, 0}, {0, 1}, {1, 2}, {1, 3}, {1, 4}, {2, 5}}},
           {-2, 6, {{0, 0}, {0, 1}, {-1, 2}, {-1, 3}, {-1, 4}, {-2, 5}}},
           {-6, -2, {{0, 0}, {-1, 0}, {-2, -1}, {-3, -1}, {-4, -1}, {-5, -2}}}});
}

TEST_F (DrawingLines, OfWidthZeroAreOnePixelWide) {
    EXPECT_EQ (Line (5, 7, 9, 7, 0), Rectangle (5, 7, 9, 8));
    EXPECT_EQ (Line (5, 7, 9, 7, -3), Rectangle (5, 7, 9, 8));
    EXPECT_EQ (Line (5, 7, 9, 7, INT_MIN), Rectangle (5, 7, 9, 8));
}

TEST_F (DrawingLines, WideOnesLieAroundTheirMiddle) {
    EXPECT_EQ (Line (10, 20, 20, 20, 3), Rectangle (10, 19, 20, 22));
    EXPECT_EQ (Line (20, 20, 10, 20, 3), Rectangle (11, 19, 21, 22)) << "to the left";
    EXPECT_EQ (Line (15, 7, 15, 12, 3), Rectangle (14, 7, 17, 12));
    EXPECT_EQ (Line (20, 10, 20, 15, 5), Rectangle (18, 10, 23, 15));
}

TEST_F (DrawingLines, OfEvenWidthHaveOnePixelMoreBelowOrLeft) {
    EXPECT_EQ (Line (10, 20, 20, 20, 2), Rectangle (10, 19, 20, 21));
    EXPECT_EQ (Line (5, 7, 9, 7, 4), Rectangle (5, 5, 9, 9));
    EXPECT_EQ (Line (9, 7, 5, 7, 4), Rectangle (6, 5, 10, 9)) << "to the left";
    EXPECT_EQ (Line (15, 7, 15, 12, 2), Rectangle (14, 7, 16, 12));
    EXPECT_EQ (Line (20, 10, 20, 15, 4), Rectangle (18, 10, 22, 15));
    EXPECT_EQ (Line (20, 15, 20, 10, 4), Rectangle (18, 11, 22, 16)) << "downwards";
}

TEST_F (DrawingLines, OfAnyWidthEndAtTheClientArea) {
    EXPECT_EQ (Line (15, 7, 15, 12, INT_MAX), Rectangle (0, 7, WIDTH, 12));
    EXPECT_EQ (Line (10, 20, 20, 20, INT_MAX), Rectangle (10, 0, 20, HEIGHT));
}

TEST_F (DrawingLines, FromFarAwayPassWhereTheyShould) {
    EXPECT_EQ (Line (INT_MIN, 5, INT_MAX, 5), Rectangle (0, 5, WIDTH, 6));
    EXPECT_EQ (Line (3, INT_MAX, 3, INT_MIN), Rectangle (3, 0, 4, HEIGHT));
    EXPECT_EQ (Line (INT_MIN, INT_MIN, INT_MIN, INT_MAX), Places ());
    EXPECT_EQ (Line (INT_MIN, INT_MAX, INT_MAX, INT_MAX - 1), Places ());
}

// From corner to corner of all coordinates there are: the middle of it crosses the window at x = y.
TEST_F (DrawingLines, ExtremeDiagonalsAreExact) {
    Places diagonal;
    for (int i = 0; i < HEIGHT; i++) diagonal.insert ({i, i});
    EXPECT_EQ (Line (INT_MIN, INT_MIN, INT_MAX, INT_MAX), diagonal);
    EXPECT_EQ (Line (INT_MAX, INT_MAX, INT_MIN, INT_MIN), diagonal);
    EXPECT_EQ (Line (-1000000000, -1000000000, 1000000000, 1000000000), diagonal);
}

TEST_F (DrawingLines, ClippedOnesHaveThePixelsOfTheWhole) {
    const Places inside = Rectangle (20, 5, 33, 35);
    for (int width : {1, 2}) {
        Places clipped;
        for (Place place : Line (-37, -11, 93, 51, width))
            if (inside.count (place)) clipped.insert (place);
        EXPECT_FALSE (clipped.empty ());
        Blank ();
        Drawing_Clip (drawing, 20, 5, 33, 35);
        Drawing_Line (drawing, -37, -11, 93, 51, width, RED);
        EXPECT_EQ (Inked (), clipped);
    }
}

// --- images ----------------------------------------------------------------

class DrawingImages : public Canvas {
protected:
    // Each pixel tells its row and column, and has a fourth byte.
    static std::vector<uint8_t> Image (int width, int height) {
        std::vector<uint8_t> pixels;
        for (uint8_t row = 0; row < height; row++)
            for (uint8_t column = 0; column < width; column++)
                pixels.insert (pixels.end (), {column, row, 77, static_cast<uint8_t> (99 + row + column)});
        return pixels;
    }

    static uint32_t Colour (int row, int column) {
        return Drawing_Colour (77, static_cast<unsigned> (row), static_cast<unsigned> (column));
    }
};

TEST_F (DrawingImages, RowsGoFromTopToBottom) {
    std::vector<uint8_t> image = Image (5, 4);
    Drawing_Image (drawing, 10, 20, 5, 4, image.data (), 5);
    EXPECT_EQ (Inked (), Rectangle (10, 20, 15, 24));
    for (int y = 0; y < 4; y++)
        for (int x = 0; x < 5; x++) EXPECT_EQ (Drawing_Pixel (drawing, 10 + x, 20 + y), Colour (3 - y, x));
}

TEST_F (DrawingImages, PartOfAWiderOneIsReadInItsRows) {
    std::vector<uint8_t> image = Image (9, 7);
    Drawing_Image (drawing, 10, 20, 3, 2, image.data () + (2 * 9 + 4) * 4, 9);
    EXPECT_EQ (Inked (), Rectangle (10, 20, 13, 22));
    EXPECT_EQ (Drawing_Pixel (drawing, 10, 21), Colour (2, 4));
    EXPECT_EQ (Drawing_Pixel (drawing, 12, 20), Colour (3, 6));
}

TEST_F (DrawingImages, PixelsMayBeUnaligned) {
    std::vector<uint8_t> image = Image (2, 1);
    image.insert (image.begin (), 0);
    Drawing_Image (drawing, 0, 0, 2, 1, image.data () + 1, 2);
    EXPECT_EQ (Drawing_Pixel (drawing, 1, 0), Colour (0, 1));
}

TEST_F (DrawingImages, OverTheEdgesShowTheirOtherPart) {
    std::vector<uint8_t> image = Image (6, 6);
    Drawing_Image (drawing, -2, -3, 6, 6, image.data (), 6);
    EXPECT_EQ (Inked (), Rectangle (0, 0, 4, 3));
    EXPECT_EQ (Drawing_Pixel (drawing, 0, 0), Colour (2, 2));
    EXPECT_EQ (Drawing_Pixel (drawing, 0, 2), Colour (0, 2));
    EXPECT_EQ (Drawing_Pixel (drawing, 3, 2), Colour (0, 5));
    Blank ();
    Drawing_Image (drawing, WIDTH - 1, HEIGHT - 2, 6, 6, image.data (), 6);
    EXPECT_EQ (Inked (), Rectangle (WIDTH - 1, HEIGHT - 2, WIDTH, HEIGHT));
    EXPECT_EQ (Drawing_Pixel (drawing, WIDTH - 1, HEIGHT - 2), Colour (5, 0));
}

TEST_F (DrawingImages, AtTheExtremesAreNotRead) {
    uint8_t pixel[4] = {};
    Drawing_Image (drawing, INT_MAX, INT_MAX, 1, 1, pixel, 1);
    Drawing_Image (drawing, INT_MIN, INT_MIN, 1, 1, pixel, 1);
    Drawing_Image (drawing, INT_MAX, 0, INT_MAX, INT_MAX, pixel, INT_MAX);
    Drawing_Image (drawing, 9, 9, -5, -5, pixel, 1);
    Drawing_Image (drawing, 0, 0, INT_MIN, INT_MIN, pixel, 1);
    EXPECT_TRUE (Inked ().empty ());
}

TEST_F (DrawingImages, WithoutPixelsAreNothing) {
    std::vector<uint8_t> image = Image (2, 2);
    Drawing_Image (drawing, 1, 1, 2, 2, nullptr, 2);
    Drawing_Image (drawing, 1, 1, 0, 2, image.data (), 2);
    Drawing_Image (drawing, 1, 1, 2, 0, image.data (), 2);
    Drawing_Image (drawing, 1, 1, 2, -1, image.data (), 2);
    EXPECT_TRUE (Inked ().empty ());
}

TEST_F (DrawingImages, TextsAndFillsFarAwayAreNotSeen) {
    uint8_t pixel[4] = {};
    for (int far_away : {INT_MIN, INT_MAX, INT_MIN + 5, INT_MAX - 5, 1 << 27, -(1 << 27)}) {
        Drawing_Text (drawing, nullptr, far_away, 5, "MM", 2, RED);
        Drawing_Text (drawing, nullptr, 5, far_away, "MM", 2, RED);
        Drawing_Image (drawing, far_away, 5, 1, 1, pixel, 1);
        Drawing_Image (drawing, 5, far_away, 1, 1, pixel, 1);
        Drawing_Fill (drawing, far_away, far_away, far_away, far_away, RED);
    }
    EXPECT_TRUE (Inked ().empty ());
}

// --- fonts -----------------------------------------------------------------

TEST_F (DrawingTexts, StrangeFacesAreReplaced) {
    for (std::string face : {std::string (), std::string ("No such face at all"), std::string ("\xE9\x81\xFF"),
                             std::string (",,,"), std::string ("Arial,"), std::string (5000, 'x')}) {
        Font font (face.c_str (), 13);
        ASSERT_NE (font.font, nullptr) << face;
        EXPECT_GT (Width (font, "text"), 0) << face;
    }
    Drawing_Font_Free (nullptr);
}

TEST_F (DrawingTexts, HeightIsThatOfTheCharacters) {
    Drawing_Font_Metrics metrics = Measure (arial);
    EXPECT_GE (metrics.height, 16) << "with the room above accents";
    EXPECT_LE (metrics.height, 22);
    EXPECT_GT (metrics.descent, 1);
    EXPECT_LT (metrics.descent, metrics.height / 2);
    EXPECT_GT (metrics.average_width, 4);
    EXPECT_LT (metrics.average_width, 14);
}

TEST_F (DrawingTexts, GrowWithTheirFont) {
    Font large ("Arial", 32);
    EXPECT_NEAR (Width (large, "Difference"), 2 * Width ("Difference"), 10);
    EXPECT_NEAR (Measure (large).height, 2 * Measure (arial).height, 3);
}

TEST_F (DrawingTexts, BoldIsWider) {
    Font bold ("Arial", 16, 1);
    for (const char *text : {"Difference list", "Patient's Name"}) EXPECT_GT (Width (bold, text), Width (text));
    EXPECT_NE (Picture (bold, "Patient"), Picture (arial, "Patient"));
}

TEST_F (DrawingTexts, ItalicIsAnotherPicture) {
    Font italic ("Arial", 16, 0, 1);
    for (const char *text : {"HHH", "Patient"}) EXPECT_NE (Picture (italic, text), Picture (arial, text));
}

TEST_F (DrawingTexts, CourierHasOnePitch) {
    for (int height : {13, 16}) {
        Font courier ("Courier", height);
        int  pitch = Width (courier, "i");
        EXPECT_GT (pitch, 0);
        for (int c = ' '; c < 0x7F; c++) EXPECT_EQ (Width (courier, std::string (1, static_cast<char> (c))), pitch);
        EXPECT_EQ (Measure (courier).average_width, pitch);
        EXPECT_EQ (Width (courier, "\xC3\xA9\xE2\x82\xAC"), 2 * pitch);
        EXPECT_EQ (Width (courier, "iiii"), Width (courier, "MMMM"));
    }
    EXPECT_NE (Width ("iiii"), Width ("MMMM"));
}

TEST_F (DrawingTexts, WithoutAFontTheSystemsOneIsUsed) {
    EXPECT_GT (Measure (nullptr).height, 9);
    EXPECT_LT (Measure (nullptr).height, 30);
    EXPECT_GT (Width (nullptr, "text"), 4);
    Draw (nullptr, 20, 20, "text");
    EXPECT_FALSE (Inked ().empty ());
}

// --- widths ----------------------------------------------------------------

TEST_F (DrawingTexts, WidthsAddUp) {
    std::string text = "AVATAR To fi ffl VA (0010,0010) Ty.";
    int         sum  = 0;
    for (char c : text) {
        int width = Width (std::string (1, c));
        EXPECT_GT (width, 0);
        sum += width;
    }
    EXPECT_EQ (Width (text), sum);
    EXPECT_EQ (Width (text + text), 2 * sum);
    EXPECT_EQ (Width (text + "\xE2\x82\xAC"), sum + Width ("\xE2\x82\xAC"));
    EXPECT_EQ (Width ("DICOM file"), Width ("DICOM") + Width (" ") + Width ("file"));
    EXPECT_EQ (Width ("AVAVAV"), 3 * Width ("A") + 3 * Width ("V")) << "no pairs are moved together";
}

TEST_F (DrawingTexts, NothingIsAsWideAsNothing) {
    for (Drawing_Font font : {Drawing_Font (nullptr), arial.font}) {
        EXPECT_EQ (Drawing_Text_Width (drawing, font, nullptr, 0), 0);
        EXPECT_EQ (Drawing_Text_Width (drawing, font, nullptr, 5), 0);
        for (int length : {0, -1, INT_MIN}) EXPECT_EQ (Drawing_Text_Width (drawing, font, "text", length), 0);
        Drawing_Text (drawing, font, 0, 0, nullptr, 5, BLACK);
        Drawing_Text (drawing, font, 0, 0, "text", 0, BLACK);
        Drawing_Text (drawing, font, 0, 0, "text", -1, BLACK);
    }
    EXPECT_TRUE (Inked ().empty ());
}

TEST_F (DrawingTexts, EndWhereTheirLengthSays) {
    for (Drawing_Font font : {Drawing_Font (nullptr), arial.font})
        EXPECT_EQ (Drawing_Text_Width (drawing, font, "textual", 4), Width (font, "text"));
    EXPECT_EQ (Drawing_Text_Width (drawing, arial, "xyz", 1), Width ("x"));
}

TEST_F (DrawingTexts, OnlyTheirLengthIsDrawn) {
    Drawing_Text (drawing, arial, 20, 20, "MMMMMM", 2, BLACK);
    EXPECT_FALSE (Inked ().empty ());
    for (Place place : Inked ()) EXPECT_LT (place.first, 20 + Width ("MM"));
}

// --- what is drawn ---------------------------------------------------------

// A pixel beside it is what a font's designer may ask for: strokes that join, such as a row of "_", overlap.
TEST_F (DrawingTexts, InkStaysInsideOfTheCell) {
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

TEST_F (DrawingTexts, InkOfLettersStaysInsideOfTheMeasuredBox) {
    std::string text = "Hxgp|Mq";
    for (Drawing_Font font : {Drawing_Font (nullptr), arial.font}) {
        Blank ();
        Draw (font, 20, 15, text);
        Places box   = Rectangle (20, 15, 20 + Width (font, text), 15 + Measure (font).height);
        Places inked = Inked ();
        EXPECT_GT (inked.size (), 50u);
        for (Place place : inked) EXPECT_TRUE (box.count (place)) << place.first << ", " << place.second;
    }
}

static void Reach (const Places &inked, int *lowest, int *highest) {
    *lowest  = INT_MAX;
    *highest = INT_MIN;
    for (Place place : inked) {
        *lowest  = std::min (*lowest, place.second);
        *highest = std::max (*highest, place.second);
    }
}

TEST_F (DrawingTexts, LettersStandOnTheBaseLine) {
    int base = 20 + Measure (arial).descent, lowest, highest;
    Draw (arial, 20, 20, "HHH");
    Reach (Inked (), &lowest, &highest);
    EXPECT_EQ (lowest, base);
    EXPECT_GE (highest, base + 9);
    EXPECT_LE (highest, base + 13);
}

TEST_F (DrawingTexts, CellStandsOnItsBottom) {
    Font font ("Arial", 20);
    int  base = Measure (font).descent, lowest, highest;
    Draw (font, 0, 0, "_H");
    Reach (Inked (), &lowest, &highest);
    EXPECT_LT (lowest, base);       // The line below.
    EXPECT_GT (highest, base + 10); // The capital above.
}

TEST_F (DrawingTexts, BackgroundShowsBetweenTheCharacters) {
    Drawing_Fill (drawing, 0, 0, WIDTH, HEIGHT, BLUE);
    Draw (nullptr, 0, 0, "a b");
    int blue = 0;
    for (int x = 0; x < 60; x++) blue += Drawing_Pixel (drawing, x, 5) == BLUE;
    EXPECT_GT (blue, 30);
    EXPECT_NE (Pixels (), std::vector<uint32_t> (WIDTH * HEIGHT, BLUE));
}

TEST_F (DrawingTexts, ColourOfTheStrokesIsTheirOwn) {
    Font           font ("Arial", 30, 1);
    const uint32_t colour = Drawing_Colour (10, 20, 230);
    Draw (font, 0, 0, "I", colour);
    int full = 0;
    for (Place place : Inked ()) full += Drawing_Pixel (drawing, place.first, place.second) == colour;
    EXPECT_GT (full, 20);
}

TEST_F (DrawingTexts, EdgesOfTheStrokesAreBetweenTheColours) {
    Draw (arial, 20, 20, "|||", RED);
    int red = 0;
    for (Place place : Inked ()) {
        uint32_t colour = Drawing_Pixel (drawing, place.first, place.second);
        EXPECT_GE (colour & 0xFF, GREY & 0xFF);
        EXPECT_LE (colour >> 8 & 0xFF, GREY >> 8 & 0xFF);
        EXPECT_EQ (colour >> 24, 0u);
        red += (colour & 0xFF) > (colour >> 8 & 0xFF);
    }
    EXPECT_GT (red, 5);
}

TEST_F (DrawingTexts, MayBeMixedWithOtherDrawing) {
    for (int i = 0; i < 100; i++) {
        Drawing_Fill (drawing, 0, 0, WIDTH, HEIGHT, GREY);
        Draw (arial, 20, 20, "MMMM");
        Drawing_Fill (drawing, 0, 0, WIDTH, HEIGHT, BLUE);
        for (int x = 0; x < WIDTH; x++) ASSERT_EQ (Drawing_Pixel (drawing, x, 27), BLUE);
    }
}

// --- their bytes -----------------------------------------------------------

class DrawingBytes : public Text_Canvas {
protected:
    struct Pair {
        const char *raw, *utf8;
    };

    void Hold (const std::vector<Pair> &pairs) {
        for (Drawing_Font font : {Drawing_Font (nullptr), arial.font})
            for (const Pair &pair : pairs) {
                EXPECT_GT (Width (font, pair.raw), 0);
                EXPECT_EQ (Width (font, pair.raw), Width (font, pair.utf8)) << pair.utf8;
                EXPECT_EQ (Picture (font, pair.raw), Picture (font, pair.utf8)) << pair.utf8;
            }
    }
};

TEST_F (DrawingBytes, OfWindows1252AreTheirCharacters) {
    Hold ({{"\xE9", "\xC3\xA9"},
           {"caf\xE9", "caf\xC3\xA9"},
           {"M\xFCller", "M\xC3\xBCller"},
           {"\x80", "\xE2\x82\xAC"},
           {"\x8A\x9C", "\xC5\xA0\xC5\x93"},
           {"\xA0x", "\xC2\xA0x"},
           {"\xB5", "\xC2\xB5"},
           {"\xFF", "\xC3\xBF"}});
    EXPECT_NE (Picture (arial, "caf\xE9"), Picture (arial, "cafe"));
}

TEST_F (DrawingBytes, WithoutACharacterAreSeen) {
    Hold ({{"\x81", "\xEF\xBF\xBD"}, {"\x8D", "\xEF\xBF\xBD"}, {"\x9D", "\xEF\xBF\xBD"}});
    EXPECT_NE (Picture (arial, "\x81"), Picture (arial, " "));
}

// Each would be UTF-8 if its bytes were fewer, more or others.
TEST_F (DrawingBytes, OfInvalidUtf8AreTakenSingly) {
    Hold ({{"\xC3", "\xC3\x83"}, // Cut.
           {"\xC3Z", "\xC3\x83Z"},
           {"\xE2\x82", "\xC3\xA2\xE2\x80\x9A"},
           {"\xC0\xAF", "\xC3\x80\xC2\xAF"}, // Too long for its character.
           {"\xE0\x82\xA9", "\xC3\xA0\xE2\x80\x9A\xC2\xA9"},
           {"\xED\xA0\xA0", "\xC3\xAD\xC2\xA0\xC2\xA0"}, // Half of a pair.
           {"\xF0\x82\x82\xAC", "\xC3\xB0\xE2\x80\x9A\xE2\x80\x9A\xC2\xAC"},
           {"\xF4\xA0\xA0\xA0", "\xC3\xB4\xC2\xA0\xC2\xA0\xC2\xA0"},
           {"\xF5\xA0\xA0\xA0", "\xC3\xB5\xC2\xA0\xC2\xA0\xC2\xA0"}});
}

TEST_F (DrawingBytes, AreTakenForThemselves) {
    Hold ({{"\xC3\xA9 \xE9", "\xE9 \xC3\xA9"}, {"\xE9\xE2\x82\xAC", "\xC3\xA9\xE2\x82\xAC"}});
    for (Drawing_Font font : {Drawing_Font (nullptr), arial.font})
        EXPECT_EQ (Width (font, "caf\xC3\xA9 \xE9t\xE9"), Width (font, "caf\xC3\xA9 ") + Width (font, "\xE9t\xE9"));
}

TEST_F (DrawingBytes, OfCharactersBeyondTheFirstPlaneAreHarmless) {
    EXPECT_GT (Width ("\xF0\x9F\x98\x80"), 0);
    Draw (arial, 20, 20, "\xF0\x9F\x98\x80 \xF4\x8F\xBF\xBF");
    EXPECT_FALSE (Inked ().empty ());
}

TEST_F (DrawingBytes, OfControlsAreBlanks) {
    std::string controls;
    for (int c = 0; c < 0x20; c++) controls += static_cast<char> (c);
    controls += '\x7F';
    for (const char *text : {"\xC2\x80", "\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9", "\xE2\x80\xAE", "\xE2\x81\xA6"}) {
        EXPECT_EQ (Width (nullptr, text), Width (nullptr, " "));
        controls += text;
    }
    EXPECT_EQ (Width (nullptr, controls), 39 * Width (nullptr, " "));
    Draw (nullptr, 0, 0, controls);
    EXPECT_TRUE (Inked ().empty ());
    EXPECT_EQ (Picture (arial, "a" + controls + "b"), Picture (arial, "a" + std::string (39, ' ') + "b"));
    EXPECT_EQ (Picture (nullptr, std::string ("a\nb\tc\0d", 7)), Picture (nullptr, "a b c d"));
    EXPECT_EQ (Picture (nullptr, std::string ("a\n\xC3\xA9\0d", 6)), Picture (nullptr, "a \xC3\xA9 d"));
}

TEST_F (DrawingBytes, AtRandomDoNoHarm) {
    unsigned seed = 1;
    for (int i = 0; i < 300; i++) {
        std::string text;
        for (int j = 0; j < 40; j++) text += static_cast<char> ((seed = seed * 1103515245 + 12345) >> 16);
        EXPECT_GT (Width (nullptr, text), 0);
        Draw (nullptr, 0, 0, text);
    }
}

// --- over the edges --------------------------------------------------------

TEST_F (DrawingTexts, BesideTheClientAreaAreNotSeen) {
    for (std::string text : {"text with \xE2\x82\xAC", "plain"}) {
        for (int x : {INT_MIN, -100000, 100000, INT_MAX}) Draw (nullptr, x, 5, text);
        for (int y : {INT_MIN, -100, HEIGHT, INT_MAX}) Draw (nullptr, 5, y, text);
    }
    EXPECT_TRUE (Inked ().empty ());
}

TEST_F (DrawingTexts, OverTheLeftEdgeShowTheirEnd) {
    Font                  font ("Courier", 13);
    std::vector<uint32_t> alone = Picture (font, "W", 15);
    for (std::string text : {"iiiiiiiiiiiiiiiiiiiiW", "\xE2\x80\xA6iiiiiiiiiiiiiiiiiiiW"}) {
        Drawing_Clip_All (drawing);
        Picture (font, text, 15 - 20 * Width (font, "W"));
        Drawing_Fill (drawing, 0, 0, 15, HEIGHT, GREY); // The letters before.
        EXPECT_EQ (Pixels (), alone);
    }
}

TEST_F (DrawingTexts, LongOnesAreAsWideAsAllTheirCharacters) {
    std::string plain (100000, 'x'), shaped = "\xE2\x82\xAC" + std::string (20000, 'x');
    EXPECT_EQ (Width (nullptr, plain), 100000 * Width (nullptr, "x"));
    EXPECT_EQ (Width (nullptr, shaped), Width (nullptr, "\xE2\x82\xAC") + 20000 * Width (nullptr, "x"));
    for (const std::string &text : {plain, shaped}) {
        Blank ();
        Draw (nullptr, -50000, 0, text);
        EXPECT_FALSE (Inked ().empty ());
    }
}

TEST_F (DrawingTexts, LongOnesAreDrawnAsFarAsTheyAreSeen) {
    std::string text (100000, 'i');
    EXPECT_EQ (Width (text), 100000 * Width ("i"));
    EXPECT_EQ (Picture (arial, text, 0), Picture (arial, std::string (200, 'i'), 0));
    EXPECT_EQ (Picture (arial, text, -1000 * Width ("i")), Picture (arial, std::string (200, 'i'), 0));
}
