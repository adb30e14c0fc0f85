#include <gtest/gtest.h>

#include <limits.h>

#include "tests/support/log_recorder.h"
#include "tests/view/shown.h"

static int  Layouts;
static void Count_Layout (Window window, int width, int height) {
    Layouts++;
    Shown_Layout (window, width, height);
}

static int Is_Selected (int row) { return (Rows.rows[row].kind & ROW_SELECTED) != 0; }
static int Is_Folded (int row) { return (Rows.rows[row].kind & ROW_FOLDED) != 0; }

static const int LONG_LIST = 200;

// Sequences of one item with one attribute.
static void Build_Sequences (Shown *shown, int count) {
    std::vector<Attribute *> list;
    for (int i = 0; i < count; i++)
        list.push_back (shown->Sequence (0x0009, static_cast<uint16_t> (i), {shown->Record (0x0008, 0x0100)}));
    shown->Build (shown->List (list));
}

static int Box_X (int level) {
    return Result.tree.widget.x - static_cast<int> (Result.tree_slider.value) + 12 + 18 * (level - 1) + 7;
}
static int Box_Y (const Shown &shown, int line) { return shown.Band (line) + 5; }

// Whether a point of a line is seen.
static int Is_Seen (int y) {
    const Widget &tree = Result.tree.widget;
    return y >= tree.y + VIEW_STRIP && y < tree.y + tree.h - VIEW_HEADING;
}

// --- folding ---------------------------------------------------------------

TEST (ViewMouse, ClickOnEveryBoxSeenFoldsItsOwnRow) {
    Shown shown (900, 500);
    Build_Sequences (&shown, LONG_LIST);
    Result.left = 300;
    shown.Place (300, 600);
    for (float scroll : {0.0f, 5.0f, 9.0f, 13.5f, 17.0f, 18.0f, 100.25f, 1000.0f, 2000.0f}) {
        for (float across : {0.0f, 3.0f, 10.0f}) {
            Result.vertical.value    = scroll;
            Result.tree_slider.value = across;
            int tried                = 0;
            for (int line = std::max (1, static_cast<int> (scroll) / 18); line < Rows.visible; line++) {
                const int y = Box_Y (shown, line);
                if (!Is_Seen (y)) continue;
                const int row = Rows_At (line), x = Box_X (1);
                shown.Click (x, y);
                EXPECT_FALSE (Is_Folded (row)) << scroll << " " << across << " line " << line;
                Result.vertical.value = scroll;
                shown.Click (x, y);
                EXPECT_TRUE (Is_Folded (row)) << scroll << " " << across << " line " << line;
                Result.vertical.value = scroll;
                tried++;
            }
            EXPECT_GE (tried, 14);
        }
    }
}

TEST (ViewMouse, BoxIsHitInAllItsPixels) {
    Shown shown;
    Build_Sequences (&shown, 5);
    shown.Unfold_All ();
    for (int level : {1, 2}) { // A sequence and its item.
        const int line = 3 + level;
        for (int y = shown.Band (line) + 1; y <= shown.Band (line) + 9; y++) {
            for (int x = 3; x <= 11; x++) {
                const int row = Rows_At (line), was = Is_Folded (row);
                shown.Click (12 + 18 * (level - 1) + x, y);
                EXPECT_NE (was, Is_Folded (row)) << level << " " << x << " " << y;
            }
        }
        shown.Unfold_All ();
    }
}

TEST (ViewMouse, ColumnEndsWhereTheNextBegins) {
    Shown shown;
    Build_Sequences (&shown, 5);
    Log_Recorder log (4);
    const struct { int x, pos; } places[] = {{1, 0}, {12 + 22, 0}, {12 + 23, 1}, {12 + 40, 1}, {12 + 41, 2}};
    for (const auto &place : places) {
        log.Clear ();
        shown.Click (place.x, Box_Y (shown, 1));
        EXPECT_EQ (1, log.Count (LOG_TRACE4, "In box 1 line:1 pos:" + std::to_string (place.pos))) << place.x;
    }
}

TEST (ViewMouse, DeepBoxesAreHitInTheirColumn) {
    Shown shown;
    shown.Build (shown.Sequence (0x0008, 0x1140, {shown.Sequence (0x0040, 0xA170, {shown.Record (0x0008, 0x0100)})}));
    shown.Unfold_All ();
    for (int level = 4; level >= 1; level--) {
        EXPECT_FALSE (Is_Folded (level));
        shown.Click (Box_X (level), Box_Y (shown, level));
        EXPECT_TRUE (Is_Folded (level)) << level;
        EXPECT_EQ (level + 1, Rows.visible);
    }
}

// The box of another level, and the text, select.
TEST (ViewMouse, ClickBesideTheBoxSelects) {
    Shown shown;
    Build_Sequences (&shown, 5);
    shown.Click (Box_X (2), Box_Y (shown, 3));
    EXPECT_TRUE (Is_Folded (Rows_At (3)));
    EXPECT_TRUE (Is_Selected (Rows_At (3)));
    shown.Click (60, Box_Y (shown, 2));
    EXPECT_TRUE (Is_Folded (Rows_At (2)));
    EXPECT_TRUE (Is_Selected (Rows_At (2)));
    EXPECT_FALSE (Is_Selected (Rows_At (3)));
}

TEST (ViewMouse, FoldingRecomputesTheRange) {
    Shown shown (900, 400);
    Build_Sequences (&shown, 20);
    const float before = Result.vertical.maximum;
    Watched     watched;
    shown.Click (Box_X (1), Box_Y (shown, 2));
    EXPECT_EQ (before + 2 * 18, Result.vertical.maximum);
    EXPECT_EQ (1, watched.Count ("(0008,0100)")); // Repainted.
}

// Folding near the end leaves less to scroll.
TEST (ViewMouse, FoldingAtTheEndKeepsTheValueInRange) {
    Shown shown (900, 400);
    shown.Build (shown.Sequence (0x0008, 0x1140, {[&] {
                                     std::vector<Attribute *> list;
                                     for (int i = 0; i < 100; i++) list.push_back (shown.Record (0x0009, 1));
                                     return shown.List (list);
                                 }()}));
    shown.Unfold_All ();
    Result.vertical.value = 36;
    shown.Click (Box_X (2), Box_Y (shown, 2));
    EXPECT_EQ (3, Rows.visible);
    EXPECT_EQ (0, Result.vertical.value);
    EXPECT_EQ (SLIDER_VERTICAL_DISABLED, Result.vertical.widget.state);
}

TEST (ViewMouse, ClickIsTraced) {
    Shown shown;
    Build_Sequences (&shown, 5);
    Log_Recorder log (4);
    shown.Click (Box_X (1), Box_Y (shown, 2));
    EXPECT_EQ (1, log.Count (LOG_TRACE4, "In box 1 line:2 pos:0"));
    shown.Click (Box_X (4), Box_Y (shown, 1));
    EXPECT_EQ (1, log.Count (LOG_TRACE4, "In box 1 line:1 pos:3"));
}

// The pixels at which one line ends and the next begins.
TEST (ViewMouse, LineUnderThePointer) {
    Shown shown;
    shown.Many (10);
    Log_Recorder log (4);
    const int    b = shown.Band (3);
    const struct {
        int y, line;
    } places[] = {{b + 10, 2}, {b + 9, 3}, {b, 3}, {b - 8, 3}, {b - 9, 4}, {b - 26, 4}, {b - 27, 5}};
    for (const auto &place : places) {
        log.Clear ();
        shown.Click (200, place.y);
        EXPECT_EQ (1, log.Count (LOG_TRACE4, "In box 1 line:" + std::to_string (place.line) + " ")) << place.y - b;
    }
}

// --- selecting -------------------------------------------------------------

TEST (ViewMouse, TextPanesSelectTheirLine) {
    Shown shown;
    Build_Sequences (&shown, 5);
    const Widget &value = Result.value.widget, &description = Result.description.widget;
    shown.Click (value.x + 100, Box_Y (shown, 3));
    EXPECT_TRUE (Is_Selected (Rows_At (3)));
    EXPECT_TRUE (Is_Folded (Rows_At (3)));
    Watched watched;
    shown.Click (description.x + 20, Box_Y (shown, 1));
    EXPECT_TRUE (Is_Selected (1));
    EXPECT_FALSE (Is_Selected (Rows_At (3)));
    EXPECT_TRUE (Is_Folded (1)); // Its box lies in the tree pane only.
    EXPECT_GT (watched.calls.size (), 0u);
}

// A selected row that is folded away comes back as it was; another one may be selected meanwhile.
TEST (ViewMouse, SelectionSurvivesFolding) {
    Shown shown;
    Build_Sequences (&shown, 3);
    shown.Click (Box_X (1), Box_Y (shown, 1));
    shown.Click (200, Box_Y (shown, 3));
    ASSERT_TRUE (Is_Selected (3));
    shown.Click (Box_X (1), Box_Y (shown, 1));
    ASSERT_EQ (-1, Rows.rows[3].line);
    EXPECT_TRUE (Is_Selected (3));
    EXPECT_EQ (3, Rows.selected);
    Watched watched;
    shown.Click (Box_X (1), Box_Y (shown, 1));
    ASSERT_NE (nullptr, watched.Text ("(0008,0100)"));
    EXPECT_EQ (View::Font (View::FONT_BOLD), watched.Text ("(0008,0100)")->font);

    shown.Click (Box_X (1), Box_Y (shown, 1));
    shown.Click (200, Box_Y (shown, 2));
    EXPECT_FALSE (Is_Selected (3));
    EXPECT_TRUE (Is_Selected (Rows_At (2)));
    watched.calls.clear ();
    shown.Click (Box_X (1), Box_Y (shown, 1));
    ASSERT_NE (nullptr, watched.Text ("(0008,0100)"));
    EXPECT_EQ (View::Font (View::FONT_REGULAR), watched.Text ("(0008,0100)")->font);
}

TEST (ViewMouse, RootTurnsBoldAtOnce) {
    Shown shown;
    shown.Many (3);
    Watched watched;
    shown.Click (100, Box_Y (shown, 0));
    EXPECT_TRUE (Is_Selected (0));
    ASSERT_NE (nullptr, watched.Text ("a.dcm /vs/ b.dcm"));
    EXPECT_EQ (View::Font (View::FONT_BOLD), watched.Text ("a.dcm /vs/ b.dcm")->font);
}

TEST (ViewMouse, MarkRowIsNotSelected) {
    Shown shown;
    shown.Many (3);
    Rows.rows[2].kind = ROW_MARK;
    Watched watched;
    shown.Click (100, Box_Y (shown, 2));
    EXPECT_FALSE (Is_Selected (2));
    EXPECT_TRUE (watched.calls.empty ());
}

TEST (ViewMouse, HeadingStripsAndEmptySpaceDoNothing) {
    Shown shown (900, 500);
    shown.Many (3);
    const Widget &tree = Result.tree.widget, &value = Result.value.widget;
    Watched       watched;
    for (int x : {tree.x + 100, value.x + 30}) {
        for (int y = tree.y + tree.h - VIEW_HEADING; y < tree.y + tree.h; y++) shown.Click (x, y); // Heading,
        for (int y = shown.Band (4) - 8; y < shown.Band (4) + 10; y++) shown.Click (x, y); // below the last line,
        shown.Click (x, tree.y + 26);                                                      // a slider's strip.
    }
    for (int row = 0; row < Rows.count; row++) EXPECT_FALSE (Is_Selected (row)) << row;
    EXPECT_EQ (0, watched.Count ("(0009,0000)"));
}

TEST (ViewMouse, SlidersMarginDoesNothing) {
    Shown shown (900, 500);
    shown.Many (100);
    const Widget &tree = Result.tree.widget;
    for (int x = tree.x + tree.w - 5; x <= tree.x + tree.w; x++) shown.Click (x, shown.Band (3) + 5);
    for (int x = tree.x + tree.w - 28; x < tree.x + tree.w - 22; x++) shown.Click (x, shown.Band (3) + 5);
    for (int row = 0; row < Rows.count; row++) EXPECT_FALSE (Is_Selected (row)) << row;
    shown.Click (tree.x + tree.w - 29, shown.Band (3) + 5);
    EXPECT_TRUE (Is_Selected (3));
}

TEST (ViewMouse, LineUnderTheHeadingIsNotHit) {
    Shown shown (900, 500);
    shown.Many (100);
    Result.vertical.value = 18 * 10;
    const Widget &tree    = Result.tree.widget;
    shown.Click (100, tree.y + tree.h - 5);
    for (int row = 0; row < Rows.count; row++) EXPECT_FALSE (Is_Selected (row)) << row;
}

// Between the heading and the first line seen there may be a strip of the line above it.
TEST (ViewMouse, LineAboveTheFirstOneSeenIsNotHit) {
    Shown shown (900, 500);
    Build_Sequences (&shown, 100);
    Result.vertical.value = 18 * 10;
    const Widget &tree    = Result.tree.widget;
    const int     top = tree.y + tree.h - VIEW_HEADING, line = shown.Band (10) + 9;
    ASSERT_GT (top, line + 5);
    for (int x : {Box_X (1), tree.x + 100, Result.value.widget.x + 30, Result.description.widget.x + 20})
        for (int y = top - 1; y > line; y--) shown.Click (x, y);
    EXPECT_EQ (101, Rows.visible);
    for (int row = 0; row < Rows.count; row++) EXPECT_FALSE (Is_Selected (row)) << row;
    shown.Click (tree.x + 100, line);
    EXPECT_TRUE (Is_Selected (Rows_At (10)));
}

TEST (ViewMouse, NothingHappensWithoutRows) {
    Shown        shown;
    Log_Recorder log (4);
    const int    left = Result.left;
    Watched      watched;
    shown.Click (100, shown.Band (0));
    shown.Press (Result.left_separator.widget.x + 4, 100);
    shown.Move (400, 100);
    shown.Release (400, 100);
    EXPECT_EQ (left, Result.left);
    EXPECT_EQ (0, log.Count (LOG_TRACE4));
}

// --- the text list ---------------------------------------------------------

TEST (ViewMouse, TextListScrollsEvenWithoutRows) {
    Shown shown;
    for (int i = 0; i < 100; i++) Text::Write (&Result.text, "line");
    const int     before = Result.text.line_top;
    const Widget &slider = Result.text.slider.widget;
    shown.Click (slider.x + slider.w / 2, slider.y + slider.h - 3);
    EXPECT_LT (Result.text.line_top, before);
    EXPECT_EQ (0, Result.text.slider.pressed); // Let go.
    EXPECT_EQ (0, Result.text.slider.drag);
}

TEST (ViewMouse, PointerOverTheTextListMakesItActive) {
    Shown         shown;
    const Widget &text = Result.text.widget;
    shown.Move (text.x + 50, text.y + 50);
    EXPECT_TRUE (Result.text.active);
    shown.Move (text.x + 50, 50);
    EXPECT_FALSE (Result.text.active);
}

TEST (ViewMouse, TextListKeepsItsPress) {
    Shown shown;
    shown.Many (3);
    Log_Recorder log (4);
    shown.Click (100, Result.text.widget.y + 20);
    EXPECT_EQ (0, log.Count (LOG_TRACE4));
}

// --- sliders ---------------------------------------------------------------

TEST (ViewMouse, ThumbOfTheVerticalSliderScrollsAllPanes) {
    Shown shown (900, 500);
    shown.Many (LONG_LIST);
    const Widget &slider = Result.vertical.widget;
    const int     x      = slider.x + slider.w / 2;
    shown.Press (x, slider.y + slider.h - 30); // The thumb is at the top.
    ASSERT_TRUE (Result.vertical.drag);
    Watched watched;
    shown.Move (x, slider.y + slider.h - 60);
    const float moved = Result.vertical.value;
    EXPECT_GT (moved, 18);
    EXPECT_EQ (0, watched.Count ("a.dcm /vs/ b.dcm")); // Scrolled away.
    EXPECT_GE (watched.Count ("Description"), 1);
    shown.Move (x, slider.y - 1000);
    EXPECT_EQ (Result.vertical.maximum, Result.vertical.value);
    shown.Release (x, slider.y - 1000);
    EXPECT_FALSE (Result.vertical.drag);
    shown.Move (x, slider.y + slider.h);
    EXPECT_EQ (Result.vertical.maximum, Result.vertical.value);
}

TEST (ViewMouse, MoveWithoutButtonLetsTheThumbGo) {
    Shown shown (900, 500);
    shown.Many (LONG_LIST);
    const Widget &slider = Result.vertical.widget;
    shown.Press (slider.x + 8, slider.y + slider.h - 30);
    ASSERT_TRUE (Result.vertical.drag);
    View::OnMouseMove (shown.window, 0);
    EXPECT_FALSE (Result.vertical.drag);
    shown.Release (0, 0);
}

TEST (ViewMouse, HorizontalSlidersScrollTheirPane) {
    Shown shown (900, 500);
    shown.Place (300, 500);
    shown.Many (3);
    for (Slider *slider : {&Result.tree_slider, &Result.description_slider, &Result.value_slider}) {
        const Widget &w = slider->widget;
        Watched       watched;
        shown.Click (w.x + w.w - 4, w.y + 8); // The arrow at its end.
        EXPECT_EQ (VIEW_PITCH, slider->value);
        EXPECT_EQ (0, slider->pressed);
        EXPECT_GT (watched.Count (Device::CALL_TEXT), 0);
    }
}

TEST (ViewMouse, HiddenSliderTakesNoPress) {
    Shown shown (900, 500);
    shown.Many (LONG_LIST);
    Result.vertical.widget.state |= WIDGET_HIDDEN;
    const Widget &w = Result.vertical.widget;
    shown.Click (w.x + 8, w.y + 4);
    EXPECT_EQ (0, Result.vertical.value);
}

// --- cursors ---------------------------------------------------------------

TEST (ViewMouse, CursorOverSeparators) {
    Shown     shown;
    const int H = Result.tree.widget.h;
    shown.Move (Result.left + 4, 100);
    EXPECT_EQ (WINDOW_CURSOR_WEST_EAST, Window_Cursor_Get (shown.window));
    shown.Move (Result.right + 4, 100);
    EXPECT_EQ (WINDOW_CURSOR_WEST_EAST, Window_Cursor_Get (shown.window));
    shown.Move (100, H + 4);
    EXPECT_EQ (WINDOW_CURSOR_NORTH_SOUTH, Window_Cursor_Get (shown.window));
    shown.Move (Result.left + 4, H + 2);
    EXPECT_EQ (WINDOW_CURSOR_ALL, Window_Cursor_Get (shown.window));
    shown.Move (100, 100);
    EXPECT_EQ (WINDOW_CURSOR_ARROW, Window_Cursor_Get (shown.window));
}

TEST (ViewMouse, RestoreCursorOnlyUndoesTheView) {
    Shown shown;
    Window_Cursor_Set (shown.window, WINDOW_CURSOR_WAIT);
    View::RestoreCursor ();
    EXPECT_EQ (WINDOW_CURSOR_WAIT, Window_Cursor_Get (shown.window));
    Window_Cursor_Set (shown.window, WINDOW_CURSOR_ARROW);
    shown.Move (Result.left + 4, 100);
    View::RestoreCursor ();
    EXPECT_EQ (WINDOW_CURSOR_ARROW, Window_Cursor_Get (shown.window));
}

// --- separators ------------------------------------------------------------

// Drags from the middle of a separator to a place; the button stays down.
static void Drag (Shown *shown, const Button_Widget *separator, int x, int y) {
    const Widget &w = separator->widget;
    shown->Press (w.x < 0 ? 100 : w.x + 4, w.x < 0 ? w.y + 4 : 100);
    shown->Move (x, y);
}

TEST (ViewMouse, LeftSeparatorFollowsWithinItsEdges) {
    struct {
        int x, left, right;
    } const drags[] = {{300, 296, 700},  {12, 8, 700},      {11, 8, 700},    {-50, 8, 700},  {696, 692, 710},
                       {1000, 962, 980}, {32000, 962, 980}, {32001, 8, 700}, {99999, 8, 700}};
    for (const auto &drag : drags) {
        Shown shown (1000, 500);
        shown.Place (400, 700);
        shown.Many (3);
        Drag (&shown, &Result.left_separator, drag.x, 100);
        EXPECT_EQ (drag.left, Result.left) << drag.x;
        EXPECT_EQ (drag.right, Result.right) << drag.x;
        EXPECT_EQ (drag.left, Result.left_separator.widget.x) << drag.x;
        shown.Release (drag.x, 100);
    }
}

TEST (ViewMouse, RightSeparatorFollowsWithinItsEdges) {
    struct {
        int x, left, right;
    } const drags[] = {{800, 400, 796}, {32, 10, 28},     {31, 10, 28},      {-5, 10, 28},   {420, 398, 416},
                       {986, 400, 982}, {2000, 400, 982}, {32000, 400, 982}, {32001, 10, 28}};
    for (const auto &drag : drags) {
        Shown shown (1000, 500);
        shown.Place (400, 700);
        shown.Many (3);
        Drag (&shown, &Result.right_separator, drag.x, 100);
        EXPECT_EQ (drag.left, Result.left) << drag.x;
        EXPECT_EQ (drag.right, Result.right) << drag.x;
        shown.Release (drag.x, 100);
    }
}

TEST (ViewMouse, HorizontalSeparatorFollowsWithinItsEdges) {
    struct {
        int y, separator;
    } const drags[] = {{250, 245},    {13, 8},    {12, 8},    {-100, 8}, {-32000, 8},
                       {-32001, 492}, {497, 492}, {498, 492}, {900, 492}};
    for (const auto &drag : drags) {
        Shown shown (1000, 500);
        shown.Many (3);
        Drag (&shown, &Result.strip_separator, 100, drag.y);
        EXPECT_EQ (500 - drag.separator, Result.strip_height) << drag.y;
        EXPECT_EQ (drag.separator, Result.strip_separator.widget.y) << drag.y;
        shown.Release (100, drag.y);
    }
}

// A window in which both edges can't be kept; nothing is 0, which would bring the start values back.
TEST (ViewMouse, SeparatorsInATinyWindow) {
    Shown shown (40, 14);
    Result.strip_height = 4;
    Result.left         = 10;
    Result.right        = 30;
    Shown_Layout (shown.window, 40, 14);
    shown.Many (3);
    for (int place : {-100, 0, 10, 100, 40000}) {
        Drag (&shown, &Result.left_separator, place, place);
        shown.Release (0, 0);
        Drag (&shown, &Result.strip_separator, place, place);
        shown.Release (0, 0);
        EXPECT_GT (Result.strip_height, 0);
        EXPECT_GE (Result.left, 8);
        EXPECT_GE (Result.right, Result.left + 18);
    }
}

TEST (ViewMouse, CrossingMovesBoth) {
    Shown shown (1000, 500);
    shown.Place (400, 700);
    shown.Many (3);
    shown.Press (404, Result.strip_separator.widget.y + 2);
    shown.Move (304, 205);
    EXPECT_EQ (300, Result.left);
    EXPECT_EQ (300, Result.strip_height);
    EXPECT_EQ (WINDOW_CURSOR_ALL, Window_Cursor_Get (shown.window));
    shown.Release (304, 205);
}

TEST (ViewMouse, DragLaysOutAndEndsWithTheButton) {
    Shown shown (1000, 500);
    shown.Place (400, 700);
    shown.Many (3);
    View::Layout_Set (Count_Layout);
    Layouts = 0;
    shown.Press (404, 100);
    EXPECT_EQ (0, Layouts);
    shown.Move (350, 100);
    shown.Move (340, 100);
    EXPECT_EQ (2, Layouts);
    EXPECT_EQ (336, Result.left);
    EXPECT_EQ (WINDOW_CURSOR_WEST_EAST, Window_Cursor_Get (shown.window));
    shown.Release (340, 100);
    shown.Move (500, 100);
    EXPECT_EQ (2, Layouts);
    EXPECT_EQ (336, Result.left);
    EXPECT_EQ (WINDOW_CURSOR_ARROW, Window_Cursor_Get (shown.window));
}

// A press of which no release came before belongs to the drag.
TEST (ViewMouse, PressDuringADragIsPartOfIt) {
    Shown shown (1000, 500);
    shown.Place (400, 700);
    shown.Many (3);
    shown.Press (404, 100);
    shown.Move (350, 100);
    shown.Press (100, Box_Y (shown, 1));
    EXPECT_FALSE (Is_Selected (1));
    shown.Move (300, 100);
    EXPECT_EQ (296, Result.left);
    shown.Release (300, 100);
}

// Also numbers that no sum may be made of.
TEST (ViewMouse, AnyPointerIsTaken) {
    static const int ENDS[] = {INT_MIN, INT_MIN + 1, -32769, 32768, INT_MAX};
    Shown            shown (1000, 500);
    shown.Place (400, 700);
    shown.Many (3);
    for (int x : ENDS) {
        for (int y : ENDS) {
            shown.Click (x, y); // Nothing is there.
            shown.Press (Result.left_separator.widget.x + 4, Result.strip_separator.widget.y + 2);
            shown.Move (x, y);
            shown.Release (x, y);
            EXPECT_TRUE (Result.left == 8 || Result.left == 962) << x;
            EXPECT_TRUE (Result.strip_height == 8 || Result.strip_height == 492) << y;
            EXPECT_GE (Result.right, Result.left + 18) << x;
            EXPECT_LE (Result.right, 980) << x;
            shown.Place (400, 700);
        }
    }
    for (int row = 0; row < Rows.count; row++) EXPECT_FALSE (Is_Selected (row)) << row;
}

// A release that another window got.
TEST (ViewMouse, MoveWithoutButtonEndsTheDrag) {
    Shown shown (1000, 500);
    shown.Place (400, 700);
    shown.Many (3);
    shown.Press (404, 100);
    Device::Pointer_Set (300, 100);
    View::OnMouseMove (shown.window, 0);
    EXPECT_EQ (400, Result.left);
    View::OnMouseMove (shown.window, 1);
    EXPECT_EQ (400, Result.left);
    shown.Release (300, 100);
}

TEST (ViewMouse, SeparatorTakesThePressFromThePaneBehind) {
    Shown shown;
    shown.Many (3);
    Log_Recorder log (4);
    shown.Click (Result.left_separator.widget.x, shown.Band (1) + 4);
    EXPECT_EQ (0, log.Count (LOG_TRACE4));
    EXPECT_FALSE (Is_Selected (1));
}

// After a drag nothing of the old places is left.
TEST (ViewMouse, DraggedPictureIsThatOfAFreshLayout) {
    Shown shown (1000, 500);
    shown.Place (400, 700);
    shown.Many (30);
    shown.Press (404, 100);
    shown.Move (304, 100);
    shown.Release (304, 100);
    std::vector<uint32_t> dragged = shown.Picture ();
    shown.Place (300, 700);
    std::vector<uint32_t> fresh = shown.Picture ();
    int                   other = 0;
    for (size_t i = 0; i < fresh.size (); i++) other += fresh[i] != dragged[i];
    EXPECT_EQ (0, other);
}
