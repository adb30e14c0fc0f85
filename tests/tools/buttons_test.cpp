// Buttons by what Select answers and by what they draw in an off-screen window.
#include "tools/buttons.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string.h>
#include <string>
#include <vector>

#include "tests/support/log_recorder.h"
#include "tests/support/off_screen.h"
#include "tools/device.h"
#include "util/memory.h"

static const uint32_t GROUND    = Drawing_Colour (255, 255, 255);
static const uint32_t FACE      = Drawing_Colour (180, 190, 200);
static const uint32_t HIGHLIGHT = Drawing_Colour (230, 100, 100);

// What reached the seam.
static int         drawn;
static std::string texts;
static int         text_x, text_y;

static void Note (const Device::Call *call) {
    drawn += call->kind >= Device::CALL_FILL;
    if (call->kind != Device::CALL_TEXT) return;
    texts += std::string (call->text, call->length) + "\n";
    text_x = call->x;
    text_y = call->y;
}

class Buttons_Test : public testing::Test {
protected:
    Off_Screen    screen = Off_Screen (300, 200);
    Window        window = screen.window;
    Button_Widget button = {};

    ~Buttons_Test () override {
        Device::Watch (nullptr);
        Buttons::Exit (&button);
        EXPECT_EQ (Memory_Live (), 0);
    }

    void SetUp () override {
        ASSERT_TRUE (window) << Window_Error_Text ();
        button.widget.x         = 20;
        button.widget.y         = 30;
        button.widget.w         = 100;
        button.widget.h         = 60;
        button.widget.colour[0] = 180;
        button.widget.colour[1] = 190;
        button.widget.colour[2] = 200;
    }

    void Make (uint32_t state = 0) {
        button.widget.state = state;
        Buttons::Init (&button, window);
        Button::Draw (&button);
    }

    int Move (int x, int y, int mouse_state = MOUSE_MOVED) {
        Device::Pointer_Set (x, y);
        return Button::Select (&button, mouse_state);
    }

    void Watch () {
        drawn  = 0;
        text_y = -1;
        texts.clear ();
        Device::Watch (Note);
    }

    uint32_t Pixel (int x, int y) { return screen.Pixel (x, y); }
};

// --- init ------------------------------------------------------------------

using ButtonsInit = Buttons_Test;

TEST_F (ButtonsInit, TakesTheBorderAsMargin) {
    Buttons::Init (&button, window);
    EXPECT_EQ (button.look.margin, 3);
    EXPECT_EQ (button.widget.validity, WIDGET_INITIALISED);
    button.look.margin = 7;
    Buttons::Init (&button, window);
    EXPECT_EQ (button.look.margin, 7);
}

TEST_F (ButtonsInit, WithoutAWindowSaysSo) {
    Log_Recorder log (1);
    button.widget.name = "tree";
    Buttons::Init (&button, nullptr);
    EXPECT_EQ (log.Text (LOG_TRACE1),
               "Tools: WARNING ! \n   you must provide a window\n   type: Buttons::Init   name: tree\n");
    EXPECT_EQ (button.widget.validity, 0);
    EXPECT_EQ (button.look.margin, 0);
}

TEST_F (ButtonsInit, MissingIsWarnedOfOnce) {
    Log_Recorder  log (1);
    Button_Widget fresh = {};
    Button::Draw (&fresh);
    Button::Draw (&fresh);
    Button::Select (&fresh, MOUSE_MOVED);
    EXPECT_EQ (log.Text (LOG_TRACE1),
               "Tools: WARNING ! \n   you must call *_Init() first\n   type: Button::Draw   name: no name\n\n");
    log.Clear ();
    fresh.widget.validity = 8;
    Buttons::Select (&fresh, MOUSE_MOVED);
    EXPECT_EQ (log.Text (LOG_TRACE1),
               "Tools: WARNING ! \n   bad data in device's structure\n   type: Buttons::Select   name: no name\n\n");
}

// --- drawing ---------------------------------------------------------------

using ButtonsDraw = Buttons_Test;

TEST_F (ButtonsDraw, FrameIsRaisedAndFilled) {
    Make ();
    EXPECT_EQ (Pixel (20, 30), 0u);
    EXPECT_EQ (Pixel (120, 90), 0u);
    EXPECT_EQ (Pixel (21, 60), Drawing_Colour (255, 255, 255)); // 180 + 80 and more is 255.
    EXPECT_EQ (Pixel (119, 60), Drawing_Colour (100, 110, 120));
    EXPECT_EQ (Pixel (60, 31), Drawing_Colour (100, 110, 120));
    EXPECT_EQ (Pixel (23, 60), Drawing_Colour (208, 218, 228)); // The innermost of three rings: 28.
    for (int x = 24; x <= 116; x += 92)
        for (int y = 34; y <= 86; y += 52) EXPECT_EQ (Pixel (x, y), FACE);
    EXPECT_EQ (Pixel (19, 60), GROUND);
    EXPECT_EQ (Pixel (121, 60), GROUND);
    EXPECT_EQ (Pixel (60, 29), GROUND);
    EXPECT_EQ (Pixel (60, 91), GROUND);
}

TEST_F (ButtonsDraw, NothingWithoutSize) {
    Buttons::Init (&button, window);
    Watch ();
    for (int side : {0, -1, -32768}) {
        button.widget.w = static_cast<int16_t> (side);
        Button::Draw (&button);
        button.widget.w = 100;
        button.widget.h = static_cast<int16_t> (side);
        Button::Draw (&button);
        button.widget.h = 60;
    }
    EXPECT_EQ (drawn, 0);
}

TEST_F (ButtonsDraw, LabelIsAtTheTopUnlessAskedOtherwise) {
    button.look.label = "Label";
    int at[5], n = 0;
    Buttons::Init (&button, window);
    for (uint32_t state : {0u, WIDGET_ALIGN_TOP + 0u, WIDGET_LABEL_FREE + 0u, WIDGET_ALIGN_BOTTOM + 0u,
                           WIDGET_LABEL_FREE | WIDGET_ALIGN_BOTTOM}) {
        button.widget.state = state;
        Watch ();
        Button::Draw (&button);
        EXPECT_EQ (texts, "Label\n");
        at[n++] = text_y;
    }
    EXPECT_EQ (at[0], at[1]);
    EXPECT_GT (at[0], at[2]);
    EXPECT_GT (at[2], at[3]);
    EXPECT_EQ (at[3], at[4]);
}

// --- select ----------------------------------------------------------------

using ButtonsSelect = Buttons_Test;

TEST_F (ButtonsSelect, HighlightsInsideByMarginAndOne) {
    Make ();
    EXPECT_EQ (Move (70, 60), 1);
    EXPECT_EQ (button.look.hover, HOVER_HIGHLIGHTED);
    for (int x : {24, 70, 116}) EXPECT_EQ (Pixel (x, 60), HIGHLIGHT) << x;
    for (int y : {34, 86}) EXPECT_EQ (Pixel (70, y), HIGHLIGHT) << y;
    EXPECT_NE (Pixel (23, 60), HIGHLIGHT);
    EXPECT_NE (Pixel (117, 60), HIGHLIGHT);
    EXPECT_NE (Pixel (70, 33), HIGHLIGHT);
    EXPECT_NE (Pixel (70, 87), HIGHLIGHT);
}

TEST_F (ButtonsSelect, DrawsOnceInsideAndOnceOutside) {
    button.look.label = "Label";
    Make ();
    Watch ();
    EXPECT_EQ (Move (70, 60), 1);
    EXPECT_GT (drawn, 0);
    EXPECT_EQ (texts, "Label\n");
    Watch ();
    EXPECT_EQ (Move (71, 61), 1);
    EXPECT_EQ (Move (20, 30, MOUSE_PRESSED), 1);
    EXPECT_EQ (Move (120, 90, MOUSE_HELD), 1);
    EXPECT_EQ (drawn, 0);
    EXPECT_EQ (Move (121, 90), 0);
    EXPECT_GT (drawn, 0);
    EXPECT_EQ (texts, "Label\n");
    EXPECT_EQ (button.look.hover, HOVER_NORMAL);
    Watch ();
    EXPECT_EQ (Move (70, 91), 0);
    EXPECT_EQ (Move (19, 60), 0);
    EXPECT_EQ (drawn, 0);
}

TEST_F (ButtonsSelect, InactiveAndFixedAnswerWithoutDrawing) {
    for (uint32_t state : {WIDGET_INACTIVE + 0u, WIDGET_FIXED + 0u}) {
        Make (state);
        Watch ();
        EXPECT_EQ (Move (70, 60), 1);
        EXPECT_EQ (Move (0, 0), 0);
        EXPECT_EQ (drawn, 0);
        EXPECT_NE (button.look.hover, HOVER_HIGHLIGHTED);
    }
}

TEST_F (ButtonsSelect, ReleaseAndIgnoredMouseChangeNothing) {
    Make ();
    Watch ();
    EXPECT_EQ (Move (70, 60, MOUSE_RELEASED), 0);
    EXPECT_EQ (Move (70, 60, 0x34), 0); // Only the low four bits count.
    button.widget.state = WIDGET_MOUSE_IGNORED;
    EXPECT_EQ (Move (70, 60), 0);
    EXPECT_EQ (drawn, 0);
    EXPECT_EQ (button.look.hover, HOVER_NORMAL);
}

TEST_F (ButtonsSelect, NothingWithoutSize) {
    button.widget.w = 0;
    Make ();
    Watch ();
    EXPECT_EQ (Move (20, 60), 0);
    EXPECT_EQ (drawn, 0);
}

TEST_F (ButtonsSelect, HighlightedButtonIsDrawnHighlighted) {
    Make ();
    Move (70, 60);
    Buttons::Init (&button, window);
    Button::Draw (&button);
    EXPECT_EQ (Pixel (70, 60), HIGHLIGHT);
    EXPECT_EQ (Move (0, 0), 0);
    EXPECT_EQ (Pixel (70, 60), FACE);
}

TEST_F (ButtonsSelect, PicturesShowTheLook) {
    static const uint8_t blue[] = {255, 0, 0, 255}, green[] = {0, 255, 0, 255};
    const Tools::Picture normal = {blue, 1, 1}, highlight = {green, 1, 1};
    button.look.image           = &normal;
    button.look.image_highlight = &highlight;
    Make ();
    EXPECT_EQ (Pixel (24, 86), Drawing_Colour (0, 0, 255));
    Move (70, 60);
    EXPECT_EQ (Pixel (24, 86), Drawing_Colour (0, 255, 0));
    Move (0, 0);
    EXPECT_EQ (Pixel (24, 86), Drawing_Colour (0, 0, 255));
}

TEST_F (ButtonsSelect, FixedButtonIsStillRaised) {
    Make (WIDGET_FIXED);
    EXPECT_EQ (Pixel (119, 60), Drawing_Colour (100, 110, 120));
    EXPECT_EQ (Pixel (70, 60), FACE);
}

TEST_F (ButtonsSelect, WideInsetIsForBoxesOnly) {
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
    const uint32_t column[] = {0,    Drawing_Colour (100, 110, 120), FACE, FACE, FACE, FACE,
                               FACE, Drawing_Colour (255, 255, 255), 0};
    for (int x : {0, 50, 299})
        for (int i = 0; i < 9; i++) EXPECT_EQ (Pixel (x, 100 + i), column[i]) << x << " " << i;
    EXPECT_EQ (Dark_Dots (150, 103, 1), 10); // Five dots, two pixels wide.
    EXPECT_EQ (Pixel (150, 104), Drawing_Colour (255, 255, 255));
    EXPECT_EQ (Pixel (150, 99), GROUND);
    EXPECT_EQ (Pixel (150, 109), GROUND);
}

TEST_F (ButtonsSeparator, UprightHasAnUprightGrip) {
    Place (100, -4, 8, 204);
    Make ();
    EXPECT_EQ (Pixel (100, 0), 0u);
    EXPECT_EQ (Pixel (101, 0), Drawing_Colour (255, 255, 255));
    EXPECT_EQ (Pixel (107, 0), Drawing_Colour (100, 110, 120));
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
