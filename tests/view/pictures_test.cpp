// What the view looks like, compared with pictures that somebody has looked at.
#include "tests/support/pictures.h"

#include "tests/view/shown.h"

static const int NO_STRIP = 8; // The text list is none of the view's.

TEST (ViewPictures, NoFile) {
    Shown shown (1500, 250);
    shown.Place (500, 700, NO_STRIP);
    EXPECT_TRUE (Picture_Matches (shown.window, "view_no_file"));
}

TEST (ViewPictures, Folded) {
    Shown shown (1400, 370);
    shown.Place (620, 900, NO_STRIP);
    Example_Build (&shown);
    EXPECT_TRUE (Picture_Matches (shown.window, "view_folded"));
}

TEST (ViewPictures, UnfoldedAndSelected) {
    Shown shown (1400, 490);
    shown.Place (620, 900, NO_STRIP);
    Example_Build (&shown);
    shown.Unfold_All ();
    Rows.rows[16].kind = ROW_MARK;
    Rows_Select (9);
    View::Redraw_All ();
    EXPECT_TRUE (Picture_Matches (shown.window, "view_unfolded"));
}

TEST (ViewPictures, Scrolled) {
    Shown shown (1000, 270);
    shown.Place (420, 620, NO_STRIP);
    Example_Build (&shown);
    shown.Unfold_All ();
    Rows_Select (4);
    Result.vertical.value           = 63;
    Result.tree_slider.value        = 40;
    Result.description_slider.value = 20;
    Result.value_slider.value       = 250;
    View::ResetView (shown.window);
    EXPECT_TRUE (Picture_Matches (shown.window, "view_scrolled"));
}

TEST (ViewPictures, NarrowWithOnePaneHidden) {
    Shown shown (640, 250);
    shown.Place (300, 318, NO_STRIP);
    Example_Build (&shown);
    EXPECT_TRUE (Picture_Matches (shown.window, "view_narrow"));
}

TEST (ViewPictures, Wide) {
    Shown shown (2000, 550);
    shown.Place (540, 860, NO_STRIP);
    Example_Build (&shown);
    shown.Unfold_All ();
    EXPECT_TRUE (Picture_Matches (shown.window, "view_wide"));
}
