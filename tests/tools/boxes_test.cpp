// Boxes by what Select answers and by what they draw in an off-screen window.
#include "tools/boxes.h"

#include <gtest/gtest.h>
#include <string.h>
#include <string>

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
static int         text_y;
static uint32_t    text_colour;

static void Note (const Device::Call *call) {
    drawn += call->kind >= Device::CALL_FILL;
    if (call->kind != Device::CALL_TEXT) return;
    texts += std::string (call->text, call->length) + "\n";
    text_y      = call->y;
    text_colour = call->colour;
}

class Boxes_Test : public testing::Test {
protected:
    Off_Screen screen = Off_Screen (300, 200);
    Window     window = screen.window;
    Box_Widget box    = {};

    ~Boxes_Test () override {
        Device::Watch (nullptr);
        Boxs::Exit (&box);
        EXPECT_EQ (Memory_Live (), 0);
    }

    void SetUp () override {
        ASSERT_TRUE (window) << Window_Error_Text ();
        box.widget.x         = 20;
        box.widget.y         = 30;
        box.widget.w         = 100;
        box.widget.h         = 60;
        box.widget.colour[0] = 180;
        box.widget.colour[1] = 190;
        box.widget.colour[2] = 200;
    }

    void Make (uint32_t state = 0) {
        box.widget.state = state;
        Boxs::Init (&box, window);
        Box::Draw (&box);
    }

    int Move (int x, int y, int mouse_state = MOUSE_MOVED) {
        Device::Pointer_Set (x, y);
        return Box::Select (&box, mouse_state);
    }

    void Watch () {
        drawn       = 0;
        text_y      = -1;
        text_colour = 0;
        texts.clear ();
        Device::Watch (Note);
    }

    uint32_t Pixel (int x, int y) { return screen.Pixel (x, y); }
};

// --- init ------------------------------------------------------------------

using BoxesInit = Boxes_Test;

TEST_F (BoxesInit, TakesTheBorderAsMargin) {
    Boxs::Init (&box, window);
    EXPECT_EQ (box.look.margin, 3);
    EXPECT_EQ (box.widget.validity, WIDGET_INITIALISED);
    box.look.margin = 7;
    Boxs::Init (&box, window);
    EXPECT_EQ (box.look.margin, 7);
}

TEST_F (BoxesInit, WithoutAWindowSaysSo) {
    Log_Recorder log (1);
    box.widget.name = "tree";
    Boxs::Init (&box, nullptr);
    EXPECT_EQ (log.Text (LOG_TRACE1),
               "Tools: WARNING ! \n   you must provide a window\n   type: Boxs::Init   name: tree\n");
    EXPECT_EQ (box.widget.validity, 0);
    EXPECT_EQ (box.look.margin, 0);
}

TEST_F (BoxesInit, WithoutMemoryStaysUninitialised) {
    Log_Recorder log;
    Memory_Fail_At (1);
    Boxs::Init (&box, window);
    EXPECT_EQ (Memory_Failed (), 1);
    Memory_Fail_At (0);
    EXPECT_TRUE (log.Contains ("memory error in"));
    EXPECT_EQ (box.widget.validity, 0);
}

TEST_F (BoxesInit, MissingIsWarnedOfOnce) {
    Log_Recorder log (1);
    Box_Widget   fresh = {};
    Box::Draw (&fresh);
    Box::Draw (&fresh);
    Box::Select (&fresh, MOUSE_MOVED);
    EXPECT_EQ (log.Text (LOG_TRACE1),
               "Tools: WARNING ! \n   you must call *_Init() first\n   type: Box::Draw   name: no name\n\n");
    log.Clear ();
    fresh.widget.validity = 8;
    Boxs::Select (&fresh, MOUSE_MOVED);
    EXPECT_EQ (log.Text (LOG_TRACE1),
               "Tools: WARNING ! \n   bad data in device's structure\n   type: Boxs::Select   name: no name\n\n");
}

// --- drawing ---------------------------------------------------------------

using BoxesDraw = Boxes_Test;

TEST_F (BoxesDraw, FrameIsRaisedAndFilled) {
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

TEST_F (BoxesDraw, FixedIsSunkenAndFilledAllTheSame) {
    Make (WIDGET_FIXED);
    EXPECT_EQ (Pixel (21, 60), Drawing_Colour (100, 110, 120));
    EXPECT_EQ (Pixel (119, 60), Drawing_Colour (255, 255, 255));
    EXPECT_EQ (Pixel (70, 60), FACE);
}

TEST_F (BoxesDraw, InactiveIsFlatterAndFilledAllTheSame) {
    Make (WIDGET_INACTIVE);
    EXPECT_EQ (Pixel (119, 60), Drawing_Colour (100, 110, 120));
    EXPECT_EQ (Pixel (118, 60), FACE);
    EXPECT_EQ (Pixel (70, 60), FACE);
}

TEST_F (BoxesDraw, MarginIsTheFramesDepth) {
    box.look.margin = 1;
    Make ();
    EXPECT_EQ (Pixel (22, 60), FACE);
}

TEST_F (BoxesDraw, SmallBoxesHaveThinFrames) {
    box.widget.h = 8;
    Make ();
    EXPECT_EQ (Pixel (70, 30), 0u);
    EXPECT_EQ (Pixel (70, 31), Drawing_Colour (100, 110, 120));
    for (int y = 32; y <= 36; y++) EXPECT_EQ (Pixel (70, y), FACE);
    EXPECT_EQ (Pixel (70, 38), 0u);
    for (int side : {1, 2, 3, 4, 5}) {
        box.widget.w = box.widget.h = static_cast<int16_t> (side);
        Make ();
        EXPECT_EQ (Pixel (20, 30), 0u);
        EXPECT_EQ (Pixel (20 + side, 30 + side), 0u);
    }
}

TEST_F (BoxesDraw, NothingWithoutSize) {
    Boxs::Init (&box, window);
    Watch ();
    for (int side : {0, -1, -32768}) {
        box.widget.w = static_cast<int16_t> (side);
        Box::Draw (&box);
        box.widget.w = 100;
        box.widget.h = static_cast<int16_t> (side);
        Box::Draw (&box);
        box.widget.h = 60;
    }
    EXPECT_EQ (drawn, 0);
}

TEST_F (BoxesDraw, LabelIsAtTheTopUnlessAskedOtherwise) {
    box.look.label = "Label";
    int at[5], n = 0;
    Boxs::Init (&box, window);
    for (uint32_t state : {0u, WIDGET_ALIGN_TOP + 0u, WIDGET_LABEL_FREE + 0u, WIDGET_ALIGN_BOTTOM + 0u,
                           WIDGET_LABEL_FREE | WIDGET_ALIGN_BOTTOM}) {
        box.widget.state = state;
        Watch ();
        Box::Draw (&box);
        EXPECT_EQ (texts, "Label\n");
        at[n++] = text_y;
    }
    EXPECT_EQ (at[0], at[1]);
    EXPECT_GT (at[0], at[2]);
    EXPECT_GT (at[2], at[3]);
    EXPECT_EQ (at[3], at[4]);
}

TEST_F (BoxesDraw, LabelOfAnInactiveBoxIsPale) {
    box.look.label = "Label";
    Boxs::Init (&box, window);
    box.widget.state = WIDGET_INACTIVE | WIDGET_TEXT_BLUE;
    Watch ();
    Box::Draw (&box);
    EXPECT_EQ (text_colour, Drawing_Colour (255, 255, 255));
    box.widget.state = WIDGET_TEXT_BLUE;
    Watch ();
    Box::Draw (&box);
    EXPECT_EQ (text_colour, Drawing_Colour (64, 64, 230));
}

// --- select ----------------------------------------------------------------

using BoxesSelect = Boxes_Test;

TEST_F (BoxesSelect, HighlightsInsideByMarginAndOne) {
    Make ();
    EXPECT_EQ (Move (70, 60), 1);
    EXPECT_EQ (box.look.hover, HOVER_HIGHLIGHTED);
    for (int x : {24, 70, 116}) EXPECT_EQ (Pixel (x, 60), HIGHLIGHT) << x;
    for (int y : {34, 86}) EXPECT_EQ (Pixel (70, y), HIGHLIGHT) << y;
    EXPECT_NE (Pixel (23, 60), HIGHLIGHT);
    EXPECT_NE (Pixel (117, 60), HIGHLIGHT);
    EXPECT_NE (Pixel (70, 33), HIGHLIGHT);
    EXPECT_NE (Pixel (70, 87), HIGHLIGHT);
}

TEST_F (BoxesSelect, WideInsetIsFixed) {
    box.look.margin = 9;
    Make (WIDGET_INSET_WIDE);
    Move (70, 60);
    EXPECT_EQ (Pixel (25, 60), HIGHLIGHT);
    EXPECT_EQ (Pixel (115, 60), HIGHLIGHT);
    EXPECT_NE (Pixel (24, 60), HIGHLIGHT);
    EXPECT_NE (Pixel (116, 60), HIGHLIGHT);
}

TEST_F (BoxesSelect, DrawsOnceInsideAndOnceOutside) {
    box.look.label = "Label";
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
    EXPECT_EQ (box.look.hover, HOVER_NORMAL);
    Watch ();
    EXPECT_EQ (Move (70, 91), 0);
    EXPECT_EQ (Move (19, 60), 0);
    EXPECT_EQ (drawn, 0);
}

TEST_F (BoxesSelect, LeavingRestoresTheLook) {
    for (uint32_t state : {0u, WIDGET_INSET_WIDE + 0u}) {
        Make (state);
        std::string before, after;
        for (int x = 15; x < 130; x++) before += std::to_string (Pixel (x, 60)) + " ";
        Move (70, 60);
        Move (0, 0);
        for (int x = 15; x < 130; x++) after += std::to_string (Pixel (x, 60)) + " ";
        EXPECT_EQ (before, after);
    }
}

TEST_F (BoxesSelect, BeforeADrawMakesTheNormalLookOnce) {
    Boxs::Init (&box, window);
    Watch ();
    EXPECT_EQ (Move (0, 0), 0);
    EXPECT_GT (drawn, 0);
    Watch ();
    EXPECT_EQ (Move (0, 0), 0);
    EXPECT_EQ (drawn, 0);
}

TEST_F (BoxesSelect, InactiveAndFixedAnswerWithoutDrawing) {
    for (uint32_t state : {WIDGET_INACTIVE + 0u, WIDGET_FIXED + 0u}) {
        Make (state);
        Watch ();
        EXPECT_EQ (Move (70, 60), 1);
        EXPECT_EQ (Move (0, 0), 0);
        EXPECT_EQ (drawn, 0);
        EXPECT_NE (box.look.hover, HOVER_HIGHLIGHTED);
    }
}

TEST_F (BoxesSelect, ReleaseAndIgnoredMouseChangeNothing) {
    Make ();
    Watch ();
    EXPECT_EQ (Move (70, 60, MOUSE_RELEASED), 0);
    EXPECT_EQ (Move (70, 60, 0x34), 0); // Only the low four bits count.
    box.widget.state = WIDGET_MOUSE_IGNORED;
    EXPECT_EQ (Move (70, 60), 0);
    EXPECT_EQ (drawn, 0);
    EXPECT_EQ (box.look.hover, HOVER_NORMAL);
}

TEST_F (BoxesSelect, NothingWithoutSize) {
    box.widget.w = 0;
    Make ();
    Watch ();
    EXPECT_EQ (Move (20, 60), 0);
    EXPECT_EQ (drawn, 0);
}

TEST_F (BoxesSelect, HighlightedBoxIsDrawnHighlighted) {
    Make ();
    Move (70, 60);
    Boxs::Init (&box, window);
    Box::Draw (&box);
    EXPECT_EQ (Pixel (70, 60), HIGHLIGHT);
    EXPECT_EQ (Move (0, 0), 0);
    EXPECT_EQ (Pixel (70, 60), FACE);
}

TEST_F (BoxesSelect, PicturesShowTheLook) {
    static const uint8_t blue[] = {255, 0, 0, 255}, green[] = {0, 255, 0, 255};
    const Tools::Picture normal = {blue, 1, 1}, highlight = {green, 1, 1};
    box.look.image           = &normal;
    box.look.image_highlight = &highlight;
    Make ();
    EXPECT_EQ (Pixel (24, 86), Drawing_Colour (0, 0, 255));
    Move (70, 60);
    EXPECT_EQ (Pixel (24, 86), Drawing_Colour (0, 255, 0));
    Move (0, 0);
    EXPECT_EQ (Pixel (24, 86), Drawing_Colour (0, 0, 255));
}

TEST_F (BoxesSelect, FixedBoxShowsItsPicture) {
    static const uint8_t blue[] = {255, 0, 0, 255};
    const Tools::Picture normal = {blue, 1, 1};
    box.look.image              = &normal;
    Make (WIDGET_FIXED);
    EXPECT_EQ (Pixel (24, 86), Drawing_Colour (0, 0, 255));
}
