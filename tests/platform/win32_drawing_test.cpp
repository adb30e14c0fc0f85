// What drawing does on Windows only: sessions and sizes, which face a font has, and the handles they take.
#include <windows.h>

#include "platform/drawing.h"
#include "tests/platform/canvas.h"

using Win32Drawing = Canvas;
using Win32Fonts   = Text_Canvas;

// --- sessions and reading back ---------------------------------------------

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
    EXPECT_EQ (Inked (), Rectangle (2, 3, 8, 9));
    EXPECT_EQ (Drawing_Pixel (drawing, WIDTH + 29, HEIGHT + 19), GREY);
    Drawing_End (drawing);
    Window_Client_Resize (window, 5, 4);
    drawing = Drawing_Begin (window);
    EXPECT_EQ (Inked (), Rectangle (2, 3, 5, 4));
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

TEST_F (Win32Fonts, AnyHeightMakesAFont) {
    for (int height : {INT_MIN, -1, 0, 1, 1000000, INT_MAX}) {
        Drawing_Font made = Drawing_Font_Create ("Arial", height, 0, 0);
        ASSERT_NE (made, nullptr) << height;
        EXPECT_GT (Measure (made).height, 0) << height;
        Drawing_Font_Free (made);
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
        Drawing_Text (drawing, i % 2 ? arial.font : nullptr, 5, 5, "text", 4, BLACK);
        Width ("text");
    }
    EXPECT_EQ (Free_Handles (), before);
}

TEST_F (Win32Fonts, FontsAreReleasedAlsoAfterTheyWereDrawnWith) {
    size_t before = Free_Handles ();
    for (int i = 0; i < 500; i++) {
        Drawing_Font made = Drawing_Font_Create ("Courier", 10 + i % 9, i % 2, 0);
        Drawing_Text (drawing, made, 5, 5, "text", 4, BLACK);
        Measure (made);
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
