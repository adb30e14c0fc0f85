#include "view/result_view.h"

#include <gtest/gtest.h>

#include <math.h>

#include "tests/support/log_recorder.h"
#include "tests/view/shown.h"
#include "util/memory.h"

static const uint32_t PANE = Drawing_Colour (VIEW_PANE_COLOUR[0], VIEW_PANE_COLOUR[1], VIEW_PANE_COLOUR[2]);

// --- colours ---------------------------------------------------------------

static double Linear (uint32_t channel) {
    double share = (channel & 255) / 255.0;
    return share <= 0.03928 ? share / 12.92 : pow ((share + 0.055) / 1.055, 2.4);
}

static double Contrast (uint32_t a, uint32_t b) {
    double light[2];
    for (int i = 0; i < 2; i++) {
        uint32_t c = i ? b : a;
        light[i]   = 0.2126 * Linear (c) + 0.7152 * Linear (c >> 8) + 0.0722 * Linear (c >> 16) + 0.05;
    }
    return light[0] > light[1] ? light[0] / light[1] : light[1] / light[0];
}

// No background does better for the worst of the four than the root of green's and yellow's distance, 1.801.
TEST (ResultView, PaneColourIsTheBestForAllTexts) {
    EXPECT_NEAR (4.44, Contrast (VIEW_BLUE, PANE), 0.01);
    EXPECT_NEAR (1.80, Contrast (VIEW_GREEN, PANE), 0.01);
    EXPECT_NEAR (10.86, Contrast (VIEW_BLACK, PANE), 0.01);
    EXPECT_NEAR (1.80, Contrast (VIEW_YELLOW, PANE), 0.01);
    for (uint32_t grey = 0; grey < 256; grey++) {
        uint32_t colour = Drawing_Colour (grey, grey, grey), texts[] = {VIEW_BLUE, VIEW_GREEN, VIEW_BLACK, VIEW_YELLOW};
        double   worst = 21;
        for (uint32_t text : texts) worst = std::min (worst, Contrast (text, colour));
        EXPECT_LT (worst, 1.802) << grey;
    }
}

// --- sessions --------------------------------------------------------------

TEST (ResultView, EachPaneIsOneSession) {
    Shown shown;
    shown.Many (3);
    Watched watched;
    View::Redraw_All ();
    int open = 0, sessions = 0;
    for (const Drawn &call : watched.calls) {
        if (call.kind == Device::CALL_BEGIN) {
            EXPECT_EQ (0, open++);
            sessions++;
        } else if (call.kind == Device::CALL_END) {
            EXPECT_EQ (1, open--);
        }
    }
    EXPECT_EQ (3, sessions);
    EXPECT_EQ (0, open);
}

TEST (ResultView, StepsOfAPaneInTheirOrder) {
    Shown shown;
    View::Redraw_All (); // Makes the fonts.
    Watched watched;
    View::Redraw_All ();
    const Widget             &tree = Result.tree.widget;
    const std::vector<Drawn> &c    = watched.calls;
    size_t                    i    = 0;
    while (i < c.size () && c[i].kind != Device::CALL_CLIP) i++;
    ASSERT_GT (c.size (), i + 11);
    EXPECT_EQ (Device::CALL_BEGIN, c[0].kind);
    EXPECT_EQ (tree.x + 1, c[i].x);
    EXPECT_EQ (tree.y + 28, c[i].y + 1);
    EXPECT_EQ (tree.x + tree.w - 28, c[i].x + c[i].w);
    EXPECT_EQ (tree.y + tree.h, c[i].y + c[i].h + 1);
    EXPECT_EQ (Device::CALL_FILL, c[i + 1].kind);
    EXPECT_EQ (PANE, c[i + 1].colour & 0xFFFFFF);
    for (size_t k = i + 2; k < i + 9; k++) EXPECT_EQ (Device::CALL_TEXT, c[k].kind) << k; // Blanks, then the heading.
    EXPECT_EQ (Device::CALL_CLIP, c[i + 9].kind);
    EXPECT_EQ (tree.y + tree.h - 18, c[i + 9].y + c[i + 9].h + 1);
    EXPECT_EQ (Device::CALL_CLIP_ALL, c[i + 10].kind);
    EXPECT_EQ (Device::CALL_END, c[i + 11].kind);
}

TEST (ResultView, ValuePaneIsDrawnBeforeTheDescriptions) {
    Shown   shown;
    Watched watched;
    View::Redraw_All ();
    EXPECT_EQ ((std::vector<std::string> {"Type   (----tag----)", "VR", "size", "diff", "(A) no file", " /vs/ ",
                                          "(B) no file", "Description"}),
               watched.Texts ());
}

TEST (ResultView, NothingWithoutVerticalSlider) {
    Shown shown;
    shown.Many (3);
    Result.vertical.widget.state |= WIDGET_HIDDEN;
    Watched watched;
    View::Redraw_All ();
    EXPECT_TRUE (watched.calls.empty ());
}

TEST (ResultView, PaneOfAHiddenSliderIsLeftOut) {
    Shown shown;
    View::Redraw_All (); // Makes the fonts.
    Result.description_slider.widget.state |= WIDGET_HIDDEN;
    Watched watched;
    View::Redraw_All ();
    EXPECT_EQ (2, watched.Count (Device::CALL_BEGIN));
    EXPECT_EQ (0, watched.Count ("Description"));
    Result.tree_slider.widget.state |= WIDGET_HIDDEN;
    Result.value_slider.widget.state |= WIDGET_HIDDEN;
    watched.calls.clear ();
    View::Redraw_All ();
    EXPECT_TRUE (watched.calls.empty ());
}

TEST (ResultView, RepaintLeavesSlidersAndNeighboursAlone) {
    Shown shown (700, 400);
    shown.Place (300, 500);
    shown.Many (100);
    auto samples = [&] {
        std::vector<uint32_t> pixels;
        for (const Slider *slider :
             {&Result.vertical, &Result.tree_slider, &Result.description_slider, &Result.value_slider})
            for (int x = slider->widget.x; x <= slider->widget.x + slider->widget.w; x += 4)
                for (int y = slider->widget.y; y <= slider->widget.y + slider->widget.h; y += 4)
                    pixels.push_back (shown.Pixel (x, y));
        for (const Button_Widget *separator :
             {&Result.strip_separator, &Result.left_separator, &Result.right_separator})
            for (int x = std::max<int> (0, separator->widget.x);
                 x <= std::min (699, separator->widget.x + separator->widget.w); x++)
                for (int y = std::max<int> (0, separator->widget.y); y <= separator->widget.y + separator->widget.h;
                     y++)
                    pixels.push_back (shown.Pixel (x, y));
        return pixels;
    };
    std::vector<uint32_t> before = samples ();
    shown.Scroll (18 * 50);
    shown.Scroll (7);
    EXPECT_EQ (before, samples ());
}

// --- visible lines ---------------------------------------------------------

// The lines whose tags are drawn.
static std::pair<int, int> Lines_Drawn (const Watched &watched) {
    int first = -1, last = -1;
    for (const std::string &text : watched.Texts ()) {
        unsigned element;
        if (sscanf (text.c_str (), "(0009,%04X)", &element) != 1) continue;
        if (first < 0) first = static_cast<int> (element) + 1;
        last = static_cast<int> (element) + 1;
    }
    return {first, last};
}

TEST (ResultView, LinesFollowTheVerticalSlider) {
    Shown shown (1400, 500);
    shown.Many (1000);
    const int h = Result.tree.widget.h;
    for (float s : {0.0f, 17.0f, 18.0f, 35.9f, 36.0f, 1000.5f, 5000.0f, 17000.0f}) {
        Watched watched;
        shown.Scroll (s);
        const int first = static_cast<int> (s / 18),
                  end   = std::min (Rows.visible, 1 + static_cast<int> ((static_cast<float> (h) + s) / 18));
        EXPECT_EQ (std::make_pair (std::max (1, first), end - 1), Lines_Drawn (watched)) << s;
        char tag[16];
        snprintf (tag, sizeof tag, "(0009,%04X)", static_cast<unsigned> (end - 2));
        ASSERT_NE (nullptr, watched.Text (tag));
        EXPECT_EQ (shown.Band (end - 1) - 4, watched.Text (tag)->y) << s;
    }
}

TEST (ResultView, NegativeValueCountsAsTheStart) {
    Shown shown;
    shown.Many (10);
    Watched watched;
    shown.Scroll (-100);
    EXPECT_EQ (1, watched.Count ("(0009,0000)"));
}

TEST (ResultView, NoLineWithoutRows) {
    Shown   shown;
    Watched watched;
    View::Redraw_All ();
    EXPECT_EQ (8u, watched.Texts ().size ()); // Headings.
    EXPECT_EQ (0, watched.Count (Device::CALL_LINE));
    EXPECT_EQ (0, watched.Count (Device::CALL_IMAGE));
    EXPECT_EQ (SLIDER_VERTICAL_DISABLED, Result.vertical.widget.state);
    EXPECT_EQ (0, Result.vertical.value);
}

// --- scroll ranges ---------------------------------------------------------

TEST (ResultView, RangesOfWideContents) {
    Shown shown (700, 500);
    shown.Place (300, 500);
    shown.Many (100);
    const struct {
        const Slider *slider;
        int           content;
    } sliders[] = {{&Result.tree_slider, 500}, {&Result.description_slider, 300}, {&Result.value_slider, 1100}};
    for (const auto &entry : sliders) {
        EXPECT_EQ (SLIDER_HORIZONTAL, entry.slider->widget.state);
        EXPECT_EQ (0, entry.slider->minimum);
        EXPECT_EQ (static_cast<float> (12 + entry.content - entry.slider->widget.w), entry.slider->maximum);
    }
    EXPECT_EQ (SLIDER_VERTICAL, Result.vertical.widget.state);
    EXPECT_EQ (static_cast<float> (12 + 102 * 18 - Result.vertical.widget.h), Result.vertical.maximum);
}

// With all of it seen there is nothing to scroll.
TEST (ResultView, SliderAsLongAsItsContentIsDisabled) {
    Shown shown (1800, 900);
    shown.Many (3);
    for (int extra : {-1, 0, 1}) {
        Result.tree_slider.widget.w = static_cast<int16_t> (500 + extra);
        Result.tree_slider.value    = 40;
        Result.vertical.widget.h    = static_cast<int16_t> (5 * 18 + extra);
        Result.vertical.value       = 1;
        View::SetScrollRanges (&Result.tree, &Result.description, &Result.value, &Result.vertical, &Result.tree_slider,
                               &Result.description_slider, &Result.value_slider);
        EXPECT_EQ (extra < 0 ? SLIDER_HORIZONTAL : SLIDER_HORIZONTAL_DISABLED, Result.tree_slider.widget.state);
        EXPECT_EQ (extra < 0 ? 13 : 0, Result.tree_slider.value); // The end of its range.
        EXPECT_EQ (extra < 0 ? SLIDER_VERTICAL : SLIDER_VERTICAL_DISABLED, Result.vertical.widget.state);
        EXPECT_EQ (extra < 0 ? 1 : 0, Result.vertical.value);
    }
}

TEST (ResultView, ThumbShowsTheProportion) {
    Shown shown (700, 500);
    shown.Place (400, 600);
    const int narrow = Result.tree_slider.half;
    shown.Place (460, 660);
    EXPECT_GT (Result.tree_slider.half, narrow);
    shown.Many (40);
    const int few = Result.vertical.half;
    shown.Many (400);
    EXPECT_LT (Result.vertical.half, few);
}

TEST (ResultView, HiddenSliderKeepsItsRange) {
    Shown shown;
    Result.value_slider.widget.state = WIDGET_HIDDEN;
    Result.value_slider.maximum      = 77;
    Result.value_slider.value        = 66;
    View::ResetView (shown.window);
    EXPECT_EQ (WIDGET_HIDDEN, Result.value_slider.widget.state);
    EXPECT_EQ (77, Result.value_slider.maximum);
    EXPECT_EQ (66, Result.value_slider.value);
}

TEST (ResultView, StripOfASliderHasThePaneColour) {
    Shown shown (700, 500);
    shown.Place (300, 500);
    const Widget &value = Result.value.widget;
    for (int y = value.y + 1; y < value.y + WIDGET_MARGIN; y++) EXPECT_EQ (PANE, shown.Pixel (value.x + 40, y)) << y;
    for (int y = value.y + 24; y < value.y + 28; y++) EXPECT_EQ (PANE, shown.Pixel (value.x + 40, y)) << y;
    const Widget &tree = Result.tree.widget;
    for (int x = 1; x <= 5; x++) EXPECT_EQ (PANE, shown.Pixel (tree.x + tree.w - x, tree.y + 100)) << x;
    EXPECT_EQ (PANE, shown.Pixel (tree.x + tree.w - 26, tree.y + 100));
}

TEST (ResultView, FarEndOfAVeryLongListIsReached) {
    Shown shown (1400, 500);
    shown.Many (60000);
    Result.vertical.value = Result.vertical.maximum;
    Watched watched;
    View::Redraw_All ();
    const Drawn *last = watched.Text ("(0009,EA5F)");
    ASSERT_NE (nullptr, last);
    EXPECT_GT (last->y, Result.tree.widget.y + VIEW_STRIP); // Above the slider.
    EXPECT_LT (last->y, Result.tree.widget.y + VIEW_STRIP + 2 * VIEW_PITCH);
}

// --- everything ------------------------------------------------------------

TEST (ResultView, ResetDrawsSeparatorsNormal) {
    Shown shown;
    Result.left_separator.look.hover = HOVER_HIGHLIGHTED;
    View::ResetView (shown.window);
    EXPECT_EQ (HOVER_NORMAL, Result.left_separator.look.hover);
}

TEST (ResultView, FontsAreMadeOnce) {
    Shown        shown;
    Drawing_Font fonts[View::FONT_COUNT];
    View::Redraw_All ();
    for (int i = 0; i < View::FONT_COUNT; i++) fonts[i] = View::Font (static_cast<View::View_Font> (i));
    View::Redraw_All ();
    for (int i = 0; i < View::FONT_COUNT; i++) {
        EXPECT_NE (nullptr, fonts[i]);
        EXPECT_EQ (fonts[i], View::Font (static_cast<View::View_Font> (i)));
        for (int j = 0; j < i; j++) EXPECT_NE (fonts[i], fonts[j]);
    }
    View::Exit ();
    for (int i = 0; i < View::FONT_COUNT; i++) EXPECT_EQ (nullptr, View::Font (static_cast<View::View_Font> (i)));
}

static int          fonts_asked;
static Drawing_Font No_Font (const char *, int, int, int) {
    fonts_asked++;
    return nullptr;
}

// The system's font stands in, and the missing ones aren't asked for at every repaint.
TEST (ResultView, WithoutFontsTheSystemsIsUsed) {
    Shown        shown;
    Log_Recorder log;
    View::Exit ();
    Shown_Layout (shown.window, 1400, 600);
    fonts_asked = 0;
    Device::Font_Maker_Set (No_Font);
    Watched watched;
    View::Redraw_All ();
    shown.Many (2);
    const int asked = fonts_asked;
    watched.calls.clear ();
    View::Redraw_All ();
    Device::Font_Maker_Set (nullptr);
    EXPECT_EQ (asked, fonts_asked);
    ASSERT_EQ (1, watched.Count ("(0009,0000)"));
    EXPECT_EQ (nullptr, watched.Text ("(0009,0000)")->font);
    EXPECT_EQ (shown.Band (1) - 4, watched.Text ("(0009,0000)")->y);
    const int vr = shown.Width (nullptr, "LO");
    EXPECT_GT (vr, 0);
    EXPECT_EQ (12 + 290 - vr, watched.Text ("LO")->x);
    EXPECT_EQ (1, watched.Count ("Description"));
    Device::Reports_Reset ();
}

TEST (ResultView, ExitReleasesAllMemory) {
    const long before = Memory_Live ();
    {
        Shown shown;
        shown.Many (50);
        Text::Write (&Result.text, "line");
    }
    EXPECT_EQ (before, Memory_Live ());
}

TEST (ResultView, WithoutMemoryNothingIsLost) {
    Shown shown;
    shown.Many (5);
    View::ResetView (shown.window);
    const long before = Memory_Live ();
    int        failed = 1, n = 0;
    while (failed) {
        Log_Recorder log (1);
        Memory_Fail_At (++n);
        View::ResetView (shown.window);
        failed = Memory_Failed ();
        Memory_Fail_At (0);
        EXPECT_TRUE (!failed || log.Contains ("memory error") || log.Contains ("failed in new")) << n;
        View::ResetView (shown.window);
        EXPECT_EQ (before, Memory_Live ()) << n;
    }
    EXPECT_GT (n, 1);
    Watched watched;
    View::Redraw_All ();
    EXPECT_EQ (1, watched.Count ("(0009,0004)"));
}

TEST (ResultView, ScrollValuesOutsideOfAllLinesAreHarmless) {
    Shown shown;
    shown.Many (5);
    View::Redraw_All (); // Makes the fonts.
    for (float value : {NAN, -INFINITY, INFINITY, 1e30f, -1e30f}) {
        Watched watched;
        Result.tree_slider.value = value;
        shown.Scroll (value);
        EXPECT_EQ (0, watched.Count ("(0009,0004)")) << value;
        EXPECT_EQ (3, watched.Count (Device::CALL_END)) << value;
    }
}

TEST (ResultView, WithoutWindowNothingIsDrawn) {
    Rows_Build (nullptr, nullptr);
    Rows_Layout ();
    Watched watched;
    View::Redraw_All ();
    EXPECT_TRUE (watched.calls.empty ());
    Rows_Free ();
    View::Exit ();
}
