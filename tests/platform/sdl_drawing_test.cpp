// What drawing does on Linux only, in windows that are never seen.
#include "platform/drawing.h"

#include <chrono>
#include <cstring>

#include "tests/platform/canvas.h"
#include "tests/support/pictures.h"
#include "tests/support/temporary.h"

using SdlDrawing = Canvas;
using SdlText    = Text_Canvas;

// --- the window's picture --------------------------------------------------

TEST_F (SdlDrawing, PixelsPerInchAreTheUsualOnes) { EXPECT_EQ (Drawing_Pixels_Per_Inch (drawing), 96); }

TEST_F (SdlDrawing, TwoWindowsMayBeDrawnAtOnce) {
    Window  other  = Make (10, 10);
    Drawing second = Drawing_Begin (other);
    EXPECT_NE (second, nullptr);
    Drawing_End (second);
    Window_Destroy (other);
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

// --- fonts -----------------------------------------------------------------

TEST_F (SdlText, ImpossibleHeightsMakeNoFont) {
    EXPECT_EQ (Drawing_Font_Create ("Arial", 0, 0, 0), nullptr);
    EXPECT_EQ (Drawing_Font_Create ("Arial", -12, 0, 0), nullptr);
    EXPECT_EQ (Drawing_Font_Create ("Arial", INT_MIN, 0, 0), nullptr);
    EXPECT_EQ (Drawing_Font_Create ("Arial", INT_MAX, 0, 0), nullptr);
    Drawing_Font_Free (nullptr);
}

TEST_F (SdlText, FontWithoutAFaceIsTheSystems) {
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

// The library that looks fonts up is told here that no other name means the same.
TEST_F (SdlText, WithoutAFontIsDrawnLikeArial) {
    Font regular ("Arial", 13);
    EXPECT_EQ (Measure (nullptr).height, Measure (regular).height);
    EXPECT_EQ (Width (nullptr, "Wimlij"), Width (regular, "Wimlij"));
    EXPECT_EQ (Picture (nullptr, "Wimlij"), Picture (regular, "Wimlij"));
    Font other ("Sans", 13);
    EXPECT_NE (Width (nullptr, "Wimlij"), Width (other, "Wimlij"));
}

TEST_F (SdlText, ShapedAndPlainRunsGiveTheSamePicture) {
    Font        regular ("Arial", 13);
    std::string text  = "AV fi";
    int         width = Width (regular, text);
    Draw (regular, 2, 3, text);
    std::vector<uint32_t> plain, shaped;
    for (int y = 0; y < HEIGHT; y++)
        for (int x = 0; x < 2 + width; x++) plain.push_back (Drawing_Pixel (drawing, x, y));
    Blank ();
    Draw (regular, 2, 3, text + " \xE2\x80\xA6"); // An ellipsis makes it a run of another kind.
    for (int y = 0; y < HEIGHT; y++)
        for (int x = 0; x < 2 + width; x++) shaped.push_back (Drawing_Pixel (drawing, x, y));
    EXPECT_EQ (plain, shaped);
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
