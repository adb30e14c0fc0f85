// What buttons have for themselves; what they share with boxes is in panels_test.cpp.
#include "tools/buttons.h"

#include <algorithm>
#include <vector>

#include "tests/tools/panels.h"

class Buttons_Test : public Panel_Test {
protected:
    Buttons_Test () : Panel_Test (Panel_Of (&button)) {}

    Button_Widget button = {};
};

// --- where boxes are otherwise ---------------------------------------------

using ButtonsLook = Buttons_Test;

TEST_F (ButtonsLook, FixedButtonIsStillRaised) {
    Make (WIDGET_FIXED);
    EXPECT_EQ (Pixel (119, 60), SHADE);
    EXPECT_EQ (Pixel (70, 60), FACE);
}

TEST_F (ButtonsLook, WideInsetIsForBoxesOnly) {
    Make (WIDGET_INSET_WIDE);
    Move (70, 60);
    EXPECT_EQ (Pixel (24, 60), HIGHLIGHT);
}

// --- arrows ----------------------------------------------------------------

using ButtonsArrows = Buttons_Test;

TEST_F (ButtonsArrows, StandAboveOneAnotherOrSideBySide) {
    button.arrow_size = 20;
    Make (WIDGET_ARROWS);
    EXPECT_EQ (Pixel (70, 34 + 10), 0u); // Inside the frame of 4, in a square of 20.
    EXPECT_EQ (Pixel (70, 86 - 10), 0u);
    EXPECT_EQ (Pixel (34, 60), FACE);
    EXPECT_EQ (Pixel (106, 60), FACE);
    Make (WIDGET_ARROWS | WIDGET_ARROWS_ACROSS);
    EXPECT_EQ (Pixel (34, 60), 0u);
    EXPECT_EQ (Pixel (106, 60), 0u);
    EXPECT_EQ (Pixel (70, 44), FACE);
    EXPECT_EQ (Pixel (70, 76), FACE);
}

// How wide the black head is there.
static int Blacks (const std::vector<uint32_t> &pixels) {
    return static_cast<int> (std::count (pixels.begin (), pixels.end (), 0u));
}

TEST_F (ButtonsArrows, PointOutwards) {
    button.arrow_size = 20;
    Make (WIDGET_ARROWS);
    std::vector<int> rows;
    for (int y : {34 + 8, 34 + 12, 86 - 12, 86 - 8}) {
        std::vector<uint32_t> row;
        for (int x = 40; x < 100; x++) row.push_back (Pixel (x, y));
        rows.push_back (Blacks (row));
    }
    EXPECT_LT (rows[0], rows[1]);
    EXPECT_GT (rows[2], rows[3]);
    Make (WIDGET_ARROWS | WIDGET_ARROWS_ACROSS);
    std::vector<int> columns;
    for (int x : {24 + 8, 24 + 12, 116 - 12, 116 - 8}) {
        std::vector<uint32_t> column;
        for (int y = 40; y < 80; y++) column.push_back (Pixel (x, y));
        columns.push_back (Blacks (column));
    }
    EXPECT_LT (columns[0], columns[1]);
    EXPECT_GT (columns[2], columns[3]);
}

TEST_F (ButtonsArrows, StayWhenTheLookChanges) {
    button.arrow_size = 20;
    Make (WIDGET_ARROWS);
    Move (70, 60);
    EXPECT_EQ (Pixel (70, 60), HIGHLIGHT);
    EXPECT_EQ (Pixel (70, 44), 0u);
    Move (0, 0);
    EXPECT_EQ (Pixel (70, 60), FACE);
    EXPECT_EQ (Pixel (70, 44), 0u);
}

TEST_F (ButtonsArrows, ShareTheLengthWhenItIsShort) {
    button.arrow_size = 1000;
    Make (WIDGET_ARROWS);
    EXPECT_EQ (Pixel (70, 47), 0u); // Squares of 26: half of 60 less the frame.
    EXPECT_EQ (Pixel (70, 73), 0u);
    EXPECT_EQ (Pixel (70, 60), FACE);
}

TEST_F (ButtonsArrows, OfSizeZeroFillTheShortSide) {
    button.widget.h = 28;
    Make (WIDGET_ARROWS | WIDGET_ARROWS_ACROSS);
    EXPECT_EQ (Pixel (24 + 10, 44), 0u);
    EXPECT_EQ (Pixel (116 - 10, 44), 0u);
}

TEST_F (ButtonsArrows, LeaveTheMiddleToTheLabel) {
    button.look.label = "Label";
    button.arrow_size = 20;
    Buttons::Init (&button, window);
    for (uint32_t alignment : {WIDGET_ALIGN_LEFT, WIDGET_ALIGN_RIGHT}) {
        button.widget.state = alignment;
        Watch ();
        Button::Draw (&button);
        const int plain     = text_x;
        button.widget.state = alignment | WIDGET_ARROWS | WIDGET_ARROWS_ACROSS;
        Watch ();
        Button::Draw (&button);
        EXPECT_EQ (text_x, alignment == WIDGET_ALIGN_LEFT ? plain + 20 : plain - 20);
    }
}

TEST_F (ButtonsArrows, OfAnInactiveButtonArePale) {
    button.arrow_size = 20;
    Make (WIDGET_ARROWS | WIDGET_INACTIVE);
    EXPECT_EQ (Pixel (70, 42), Drawing_Colour (216, 216, 216));
}

TEST_F (ButtonsArrows, EndForEverySize) {
    for (int w : {1, 2, 3, 8, 9, 32767})
        for (int h : {1, 2, 3, 8, 9, 32767})
            for (int size : {-5, 0, 1, 32767}) {
                button.widget.w   = static_cast<int16_t> (w);
                button.widget.h   = static_cast<int16_t> (h);
                button.arrow_size = static_cast<int16_t> (size);
                Make (WIDGET_ARROWS | WIDGET_ARROWS_ACROSS);
                Make (WIDGET_ARROWS);
                EXPECT_EQ (Pixel (20, 30), 0u);
            }
}

// --- separators ------------------------------------------------------------

class ButtonsSeparator : public Buttons_Test {
protected:
    int Dark_Dots (int x, int y, int across) {
        int count = 0;
        for (int i = -40; i <= 40; i++) count += Pixel (across ? x + i : x, across ? y : y + i) == DOT;
        return count;
    }
    void Place (int x, int y, int w, int h) {
        button.widget.x = static_cast<int16_t> (x);
        button.widget.y = static_cast<int16_t> (y);
        button.widget.w = static_cast<int16_t> (w);
        button.widget.h = static_cast<int16_t> (h);
    }
    static constexpr uint32_t DOT = Drawing_Colour (90, 90, 90);
};

TEST_F (ButtonsSeparator, IsASlimRaisedBarWithAGrip) {
    Place (-4, 100, 308, 8);
    Make ();
    const uint32_t column[] = {0, SHADE, FACE, FACE, FACE, FACE, FACE, WHITE, 0};
    for (int x : {0, 50, 299})
        for (int i = 0; i < 9; i++) EXPECT_EQ (Pixel (x, 100 + i), column[i]) << x << " " << i;
    EXPECT_EQ (Dark_Dots (150, 103, 1), 10); // Five dots, two pixels wide.
    EXPECT_EQ (Pixel (150, 104), WHITE);
    EXPECT_EQ (Pixel (150, 99), WHITE);
    EXPECT_EQ (Pixel (150, 109), WHITE);
}

TEST_F (ButtonsSeparator, UprightHasAnUprightGrip) {
    Place (100, -4, 8, 204);
    Make ();
    EXPECT_EQ (Pixel (100, 0), 0u);
    EXPECT_EQ (Pixel (101, 0), WHITE);
    EXPECT_EQ (Pixel (107, 0), SHADE);
    EXPECT_EQ (Pixel (108, 0), 0u);
    EXPECT_EQ (Dark_Dots (105, 98, 0), 10);
}

TEST_F (ButtonsSeparator, KeepsItsGripWhenTheLookChanges) {
    button.look.margin = 1;
    Place (-4, 100, 308, 8);
    Make ();
    Move (10, 104);
    EXPECT_EQ (Pixel (50, 104), HIGHLIGHT);
    EXPECT_EQ (Pixel (50, 102), HIGHLIGHT);
    EXPECT_EQ (Dark_Dots (150, 103, 1), 10);
    Move (10, 120);
    EXPECT_EQ (Pixel (50, 104), FACE);
    EXPECT_EQ (Dark_Dots (150, 103, 1), 10);
}

TEST_F (ButtonsSeparator, HasNoGripWhereSomethingElseIs) {
    static const uint8_t pixel[] = {1, 2, 3, 4};
    const Tools::Picture picture = {pixel, 1, 1};
    Place (-4, 100, 308, 8);
    button.look.label = "Label";
    Make ();
    EXPECT_EQ (Dark_Dots (150, 103, 1), 0);
    button.look.label = "";
    Make (WIDGET_INACTIVE);
    EXPECT_EQ (Dark_Dots (150, 103, 1), 0);
    Make (WIDGET_ARROWS);
    EXPECT_EQ (Dark_Dots (150, 103, 1), 0);
    button.look.image = &picture;
    Make ();
    EXPECT_EQ (Dark_Dots (150, 103, 1), 0);
    button.look.image           = nullptr;
    button.look.image_highlight = &picture;
    Make ();
    EXPECT_EQ (Dark_Dots (150, 103, 1), 0);
    button.look.image_highlight = nullptr;
    Make ();
    EXPECT_EQ (Dark_Dots (150, 103, 1), 10);
    Place (20, 100, 40, 8); // Not long.
    Make ();
    EXPECT_EQ (Dark_Dots (40, 103, 1), 0);
    Place (20, 100, 100, 5); // Too thin.
    Make ();
    EXPECT_EQ (Dark_Dots (70, 101, 1), 0);
}
