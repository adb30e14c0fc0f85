// What boxes have for themselves; what they share with buttons is in panels_test.cpp.
#include "tools/boxes.h"

#include "tests/tools/panels.h"

class Boxes : public Panel_Test {
protected:
    Boxes () : Panel_Test (Panel_Of (&box)) {}

    Box_Widget box = {};
};

TEST_F (Boxes, FixedIsSunkenAndFilledAllTheSame) {
    Make (WIDGET_FIXED);
    EXPECT_EQ (Pixel (21, 60), SHADE);
    EXPECT_EQ (Pixel (119, 60), WHITE);
    EXPECT_EQ (Pixel (70, 60), FACE);
}

TEST_F (Boxes, WideInsetIsFixed) {
    box.look.margin = 9;
    Make (WIDGET_INSET_WIDE);
    Move (70, 60);
    EXPECT_EQ (Pixel (25, 60), HIGHLIGHT);
    EXPECT_EQ (Pixel (115, 60), HIGHLIGHT);
    EXPECT_NE (Pixel (24, 60), HIGHLIGHT);
    EXPECT_NE (Pixel (116, 60), HIGHLIGHT);
}
