// What boxes and buttons have in common: what Select answers and what they draw in an off-screen window.
#include "tests/support/log_recorder.h"
#include "tests/tools/panels.h"

class Panels : public Panel_Test, public testing::WithParamInterface<const char *> {
protected:
    Panels () : Panel_Test (GetParam () == std::string ("Box") ? Panel_Of (&box) : Panel_Of (&button)) {}

    Box_Widget    box    = {};
    Button_Widget button = {};
};

static std::string Kind (const testing::TestParamInfo<const char *> &kind) { return kind.param; }

// --- init ------------------------------------------------------------------

using PanelsInit = Panels;

INSTANTIATE_TEST_SUITE_P (Kinds, PanelsInit, testing::Values ("Box", "Button"), Kind);

TEST_P (PanelsInit, TakesTheBorderAsMargin) {
    panel.init (window);
    EXPECT_EQ (panel.look->margin, 3);
    EXPECT_EQ (panel.widget->validity, WIDGET_INITIALISED);
    panel.look->margin = 7;
    panel.init (window);
    EXPECT_EQ (panel.look->margin, 7);
}

TEST_P (PanelsInit, WithoutAWindowSaysSo) {
    Log_Recorder log (1);
    panel.widget->name = "tree";
    panel.init (nullptr);
    EXPECT_EQ (log.Text (LOG_TRACE1),
               "Tools: WARNING ! \n   you must provide a window\n   type: " + panel.module + "::Init   name: tree\n");
    EXPECT_EQ (panel.widget->validity, 0);
    EXPECT_EQ (panel.look->margin, 0);
}

TEST_P (PanelsInit, WithoutMemoryStaysUninitialised) {
    Log_Recorder log;
    Memory_Fail_At (1);
    panel.init (window);
    EXPECT_EQ (Memory_Failed (), 1);
    Memory_Fail_At (0);
    EXPECT_TRUE (log.Contains ("memory error in"));
    EXPECT_EQ (panel.widget->validity, 0);
}

TEST_P (PanelsInit, MissingIsWarnedOfOnce) {
    Log_Recorder log (1);
    panel.draw ();
    panel.draw ();
    panel.select (MOUSE_MOVED);
    EXPECT_EQ (log.Text (LOG_TRACE1), "Tools: WARNING ! \n   you must call *_Init() first\n   type: " + panel.name +
                                          "::Draw   name: no name\n\n");
    log.Clear ();
    panel.widget->validity = 8;
    panel.select (MOUSE_MOVED);
    EXPECT_EQ (log.Text (LOG_TRACE1), "Tools: WARNING ! \n   bad data in device's structure\n   type: " + panel.module +
                                          "::Select   name: no name\n\n");
}

// --- drawing ---------------------------------------------------------------

using PanelsDraw = Panels;

INSTANTIATE_TEST_SUITE_P (Kinds, PanelsDraw, testing::Values ("Box", "Button"), Kind);

TEST_P (PanelsDraw, FrameIsRaisedAndFilled) {
    Make ();
    EXPECT_EQ (Pixel (20, 30), 0u);
    EXPECT_EQ (Pixel (120, 90), 0u);
    EXPECT_EQ (Pixel (21, 60), WHITE); // 180 + 80 and more is 255.
    EXPECT_EQ (Pixel (119, 60), SHADE);
    EXPECT_EQ (Pixel (60, 31), SHADE);
    EXPECT_EQ (Pixel (23, 60), Drawing_Colour (208, 218, 228)); // The innermost of three rings: 28.
    for (int x = 24; x <= 116; x += 92)
        for (int y = 34; y <= 86; y += 52) EXPECT_EQ (Pixel (x, y), FACE);
    EXPECT_EQ (Pixel (19, 60), WHITE);
    EXPECT_EQ (Pixel (121, 60), WHITE);
    EXPECT_EQ (Pixel (60, 29), WHITE);
    EXPECT_EQ (Pixel (60, 91), WHITE);
}

TEST_P (PanelsDraw, InactiveIsFlatterAndFilledAllTheSame) {
    Make (WIDGET_INACTIVE);
    EXPECT_EQ (Pixel (119, 60), SHADE);
    EXPECT_EQ (Pixel (118, 60), FACE);
    EXPECT_EQ (Pixel (70, 60), FACE);
}

TEST_P (PanelsDraw, MarginIsTheFramesDepth) {
    panel.look->margin = 1;
    Make ();
    EXPECT_EQ (Pixel (22, 60), FACE);
}

TEST_P (PanelsDraw, SmallOnesHaveThinFrames) {
    panel.widget->h = 8;
    Make ();
    EXPECT_EQ (Pixel (40, 30), 0u); // Beside a button's grip.
    EXPECT_EQ (Pixel (40, 31), SHADE);
    for (int y = 32; y <= 36; y++) EXPECT_EQ (Pixel (40, y), FACE);
    EXPECT_EQ (Pixel (40, 38), 0u);
    for (int side : {1, 2, 3, 4, 5}) {
        panel.widget->w = panel.widget->h = static_cast<int16_t> (side);
        Make ();
        EXPECT_EQ (Pixel (20, 30), 0u);
        EXPECT_EQ (Pixel (20 + side, 30 + side), 0u);
    }
}

TEST_P (PanelsDraw, NothingWithoutSize) {
    panel.init (window);
    Watch ();
    for (int side : {0, -1, -32768}) {
        panel.widget->w = static_cast<int16_t> (side);
        panel.draw ();
        panel.widget->w = 100;
        panel.widget->h = static_cast<int16_t> (side);
        panel.draw ();
        panel.widget->h = 60;
    }
    EXPECT_EQ (drawn, 0);
}

TEST_P (PanelsDraw, LabelIsAtTheTopUnlessAskedOtherwise) {
    panel.look->label = "Label";
    int at[5], n = 0;
    panel.init (window);
    for (uint32_t state : {0u, WIDGET_ALIGN_TOP + 0u, WIDGET_LABEL_FREE + 0u, WIDGET_ALIGN_BOTTOM + 0u,
                           WIDGET_LABEL_FREE | WIDGET_ALIGN_BOTTOM}) {
        panel.widget->state = state;
        Watch ();
        panel.draw ();
        EXPECT_EQ (texts, "Label\n");
        at[n++] = text_y;
    }
    EXPECT_EQ (at[0], at[1]);
    EXPECT_GT (at[0], at[2]);
    EXPECT_GT (at[2], at[3]);
    EXPECT_EQ (at[3], at[4]);
}

TEST_P (PanelsDraw, LabelOfAnInactiveOneIsPale) {
    panel.look->label = "Label";
    panel.init (window);
    panel.widget->state = WIDGET_INACTIVE | WIDGET_TEXT_BLUE;
    Watch ();
    panel.draw ();
    EXPECT_EQ (text_colour, WHITE);
    panel.widget->state = WIDGET_TEXT_BLUE;
    Watch ();
    panel.draw ();
    EXPECT_EQ (text_colour, Drawing_Colour (64, 64, 230));
}

// --- select ----------------------------------------------------------------

using PanelsSelect = Panels;

INSTANTIATE_TEST_SUITE_P (Kinds, PanelsSelect, testing::Values ("Box", "Button"), Kind);

TEST_P (PanelsSelect, HighlightsInsideByMarginAndOne) {
    Make ();
    EXPECT_EQ (Move (70, 60), 1);
    EXPECT_EQ (panel.look->hover, HOVER_HIGHLIGHTED);
    for (int x : {24, 70, 116}) EXPECT_EQ (Pixel (x, 60), HIGHLIGHT) << x;
    for (int y : {34, 86}) EXPECT_EQ (Pixel (70, y), HIGHLIGHT) << y;
    EXPECT_NE (Pixel (23, 60), HIGHLIGHT);
    EXPECT_NE (Pixel (117, 60), HIGHLIGHT);
    EXPECT_NE (Pixel (70, 33), HIGHLIGHT);
    EXPECT_NE (Pixel (70, 87), HIGHLIGHT);
}

TEST_P (PanelsSelect, DrawsOnceInsideAndOnceOutside) {
    panel.look->label = "Label";
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
    EXPECT_EQ (panel.look->hover, HOVER_NORMAL);
    Watch ();
    EXPECT_EQ (Move (70, 91), 0);
    EXPECT_EQ (Move (19, 60), 0);
    EXPECT_EQ (drawn, 0);
}

TEST_P (PanelsSelect, LeavingRestoresTheLook) {
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

TEST_P (PanelsSelect, BeforeADrawMakesTheNormalLookOnce) {
    panel.init (window);
    Watch ();
    EXPECT_EQ (Move (0, 0), 0);
    EXPECT_GT (drawn, 0);
    Watch ();
    EXPECT_EQ (Move (0, 0), 0);
    EXPECT_EQ (drawn, 0);
}

TEST_P (PanelsSelect, InactiveAndFixedAnswerWithoutDrawing) {
    for (uint32_t state : {WIDGET_INACTIVE + 0u, WIDGET_FIXED + 0u}) {
        Make (state);
        Watch ();
        EXPECT_EQ (Move (70, 60), 1);
        EXPECT_EQ (Move (0, 0), 0);
        EXPECT_EQ (drawn, 0);
        EXPECT_NE (panel.look->hover, HOVER_HIGHLIGHTED);
    }
}

TEST_P (PanelsSelect, ReleaseAndIgnoredMouseChangeNothing) {
    Make ();
    Watch ();
    EXPECT_EQ (Move (70, 60, MOUSE_RELEASED), 0);
    EXPECT_EQ (Move (70, 60, 0x34), 0); // Only the low four bits count.
    panel.widget->state = WIDGET_MOUSE_IGNORED;
    EXPECT_EQ (Move (70, 60), 0);
    EXPECT_EQ (drawn, 0);
    EXPECT_EQ (panel.look->hover, HOVER_NORMAL);
}

TEST_P (PanelsSelect, NothingWithoutSize) {
    panel.widget->w = 0;
    Make ();
    Watch ();
    EXPECT_EQ (Move (20, 60), 0);
    EXPECT_EQ (drawn, 0);
}

TEST_P (PanelsSelect, HighlightedIsDrawnHighlighted) {
    Make ();
    Move (70, 60);
    panel.init (window);
    panel.draw ();
    EXPECT_EQ (Pixel (70, 60), HIGHLIGHT);
    EXPECT_EQ (Move (0, 0), 0);
    EXPECT_EQ (Pixel (70, 60), FACE);
}

TEST_P (PanelsSelect, PicturesShowTheLook) {
    static const uint8_t blue[] = {255, 0, 0, 255}, green[] = {0, 255, 0, 255};
    const Tools::Picture normal = {blue, 1, 1}, highlight = {green, 1, 1};
    panel.look->image           = &normal;
    panel.look->image_highlight = &highlight;
    Make ();
    EXPECT_EQ (Pixel (24, 86), Drawing_Colour (0, 0, 255));
    Move (70, 60);
    EXPECT_EQ (Pixel (24, 86), Drawing_Colour (0, 255, 0));
    Move (0, 0);
    EXPECT_EQ (Pixel (24, 86), Drawing_Colour (0, 0, 255));
}

TEST_P (PanelsSelect, FixedShowsItsPicture) {
    static const uint8_t blue[] = {255, 0, 0, 255};
    const Tools::Picture normal = {blue, 1, 1};
    panel.look->image           = &normal;
    Make (WIDGET_FIXED);
    EXPECT_EQ (Pixel (24, 86), Drawing_Colour (0, 0, 255));
}
