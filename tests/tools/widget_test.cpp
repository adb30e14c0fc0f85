#include "tools/widget.h"

#include <gtest/gtest.h>

#include "tests/support/log_recorder.h"
#include "tests/support/off_screen.h"
#include "util/memory.h"

static uint32_t Packed (int16_t red, int16_t green, int16_t blue, int16_t alpha) {
    const int16_t colour[4] = {red, green, blue, alpha};
    return Widget_Colour (colour);
}

TEST (WidgetColour, PacksRedIntoTheLowByte) { EXPECT_EQ (0x04030201u, Packed (1, 2, 3, 4)); }

TEST (WidgetColour, IsBoundedOnBothSides) {
    EXPECT_EQ (0x00FF00FFu, Packed (300, -5, 256, 0));
    EXPECT_EQ (0xFF01FF00u, Packed (0, 255, 1, 32767));
    EXPECT_EQ (0u, Packed (-32768, -1, -256, -255));
}

// --- check -----------------------------------------------------------------

static const char *Warning (const char *reason) {
    static std::string text;
    text = std::string ("11: Tools: WARNING ! \n11: ") + reason + "\n11:    type: Tools::Clear   name: panel\n\n";
    return text.c_str ();
}

TEST (WidgetCheck, WarnsOnceOfAWidgetNeverInitialised) {
    Log_Recorder log (1);
    Widget       widget = {};
    widget.name         = "panel";
    Widget_Check (&widget, "Tools::Clear");
    EXPECT_EQ (Warning ("   you must call *_Init() first"), log.All ());
    EXPECT_EQ (WIDGET_WARNED, widget.validity);
    Widget_Check (&widget, "Tools::Clear");
    EXPECT_EQ (3u, log.lines.size ());
}

TEST (WidgetCheck, WarnsOnceOfBadData) {
    for (int validity : {4, 0x80, 0xFFFC}) {
        Log_Recorder log (1);
        Widget       widget = {};
        widget.name         = "panel";
        widget.validity     = static_cast<uint16_t> (validity);
        Widget_Check (&widget, "Tools::Clear");
        EXPECT_EQ (Warning ("   bad data in device's structure"), log.All ());
        EXPECT_EQ (WIDGET_WARNED, widget.validity);
    }
}

TEST (WidgetCheck, HasAWordForWidgetsWithoutAName) {
    Log_Recorder log (1);
    Widget       widget = {};
    Widget_Check (&widget, "Box::Draw");
    EXPECT_TRUE (log.Has (LOG_TRACE1, "   type: Box::Draw   name: no name\n"));
}

TEST (WidgetCheck, IsSilentWhenAllIsWell) {
    for (int validity : {1, 2, 3, 5, 6}) {
        Log_Recorder log (1);
        Widget       widget = {};
        widget.validity     = static_cast<uint16_t> (validity);
        Widget_Check (&widget, "Tools::Clear");
        EXPECT_EQ ("", log.All ());
        EXPECT_EQ (validity, widget.validity);
    }
}

// --- init ------------------------------------------------------------------

class WidgetInit : public testing::Test {
protected:
    WidgetInit () : screen (20, 10) {
        widget.name = "panel";
        widget.x    = 2;
        widget.y    = 3;
        widget.w    = 10;
        widget.h    = 5;
    }
    ~WidgetInit () { Widget_Exit (&widget); }

    Off_Screen screen;
    Widget     widget = {};
};

TEST_F (WidgetInit, TakesTheRectangleOver) {
    Log_Recorder log (1);
    ASSERT_EQ (1, Widget_Init (&widget, screen.window, "Boxs::Init"));
    EXPECT_EQ (screen.window, widget.window);
    EXPECT_EQ (WIDGET_INITIALISED, widget.validity);
    ASSERT_NE (nullptr, widget.region);
    EXPECT_EQ (2, widget.region->x);
    EXPECT_EQ (3, widget.region->y);
    EXPECT_EQ (10, widget.region->w);
    EXPECT_EQ (5, widget.region->h);
    EXPECT_EQ (2, widget.left);
    EXPECT_EQ (3, widget.bottom);
    EXPECT_EQ (13, widget.right);
    EXPECT_EQ (9, widget.top);
    EXPECT_EQ (10, widget.initial_w);
    EXPECT_EQ (5, widget.initial_h);
    EXPECT_EQ ("", log.All ());
}

TEST_F (WidgetInit, HoldsTheLargestRectangle) {
    widget.x = widget.w = 32767;
    widget.y = widget.h = -32768;
    ASSERT_EQ (1, Widget_Init (&widget, screen.window, "Boxs::Init"));
    EXPECT_EQ (65535, widget.right);
    EXPECT_EQ (-65535, widget.top);
}

TEST_F (WidgetInit, NeedsAWindowOnce) {
    Log_Recorder log (1);
    EXPECT_EQ (0, Widget_Init (&widget, nullptr, "Sliders::Init"));
    EXPECT_EQ ("11: Tools: WARNING ! \n11:    you must provide a window\n11:    type: Sliders::Init   name: panel\n",
               log.All ());
    EXPECT_EQ (0, widget.validity);
    EXPECT_EQ (nullptr, widget.region);
    log.Clear ();
    EXPECT_EQ (1, Widget_Init (&widget, screen.window, "Sliders::Init"));
    EXPECT_EQ (1, Widget_Init (&widget, nullptr, "Sliders::Init"));
    EXPECT_EQ (screen.window, widget.window);
    EXPECT_EQ ("", log.All ());
}

TEST_F (WidgetInit, WithoutAWindowHasAWordForTheName) {
    Log_Recorder log (1);
    widget.name = nullptr;
    Widget_Init (&widget, nullptr, "Texts::Init");
    EXPECT_TRUE (log.Has (LOG_TRACE1, "   type: Texts::Init   name: no name"));
}

TEST_F (WidgetInit, ReplacesTheLastRegion) {
    const long live = Memory_Live ();
    Widget_Init (&widget, screen.window, "Boxs::Init");
    widget.w = 4;
    Widget_Init (&widget, screen.window, "Boxs::Init");
    EXPECT_EQ (live + 1, Memory_Live ());
    EXPECT_EQ (4, widget.region->w);
    EXPECT_EQ (7, widget.right);
    Widget_Exit (&widget);
    EXPECT_EQ (live, Memory_Live ());
    EXPECT_EQ (nullptr, widget.region);
    EXPECT_EQ (0, widget.validity);
}

TEST_F (WidgetInit, WithoutMemoryChangesNothing) {
    Log_Recorder log;
    const long   live = Memory_Live ();
    Memory_Fail_At (1);
    EXPECT_EQ (0, Widget_Init (&widget, screen.window, "Boxs::Init"));
    Memory_Fail_At (0);
    EXPECT_TRUE (log.Contains ("memory error in malloc (var=region, dim=1x16)"));
    EXPECT_EQ (0, widget.validity);
    EXPECT_EQ (nullptr, widget.window);
    EXPECT_EQ (live, Memory_Live ());
    ASSERT_EQ (1, Widget_Init (&widget, screen.window, "Boxs::Init"));
    widget.w = 4;
    Off_Screen other (2, 2);
    Memory_Fail_At (1);
    EXPECT_EQ (0, Widget_Init (&widget, other.window, "Boxs::Init"));
    Memory_Fail_At (0);
    EXPECT_EQ (screen.window, widget.window);
    EXPECT_EQ (13, widget.right);
    EXPECT_EQ (10, widget.region->w);
}

// --- place -----------------------------------------------------------------

TEST_F (WidgetInit, ContainsItsFrameAndNoMore) {
    Widget_Init (&widget, screen.window, "Boxs::Init");
    EXPECT_TRUE (Widget_Contains (&widget, 2, 3));
    EXPECT_TRUE (Widget_Contains (&widget, 12, 8));
    EXPECT_FALSE (Widget_Contains (&widget, 1, 3));
    EXPECT_FALSE (Widget_Contains (&widget, 13, 8));
    EXPECT_FALSE (Widget_Contains (&widget, 2, 2));
    EXPECT_FALSE (Widget_Contains (&widget, 12, 9));
}

TEST_F (WidgetInit, ContainsNothingWithoutASide) {
    widget.w = 0;
    Widget_Init (&widget, screen.window, "Boxs::Init");
    EXPECT_FALSE (Widget_Contains (&widget, 2, 3));
    widget.w = 10;
    widget.h = 0;
    Widget_Init (&widget, screen.window, "Boxs::Init");
    EXPECT_FALSE (Widget_Contains (&widget, 2, 3));
}

TEST_F (WidgetInit, KnowsWhetherItsSizeHasChanged) {
    widget.w = -3;
    Widget_Init (&widget, screen.window, "Boxs::Init");
    EXPECT_FALSE (Widget_Resized (&widget));
    widget.x = 9;
    EXPECT_FALSE (Widget_Resized (&widget));
    widget.w = 10;
    EXPECT_TRUE (Widget_Resized (&widget));
    widget.w = -3;
    widget.h = 6;
    EXPECT_TRUE (Widget_Resized (&widget));
}

// --- session ---------------------------------------------------------------

TEST_F (WidgetInit, DrawsInItsClip) {
    Call_Recorder calls;
    widget.clip = {1, 2, 3, 4};
    Widget_Init (&widget, screen.window, "Boxs::Init");
    ASSERT_EQ (1, Widget_Begin (&widget, "test"));
    EXPECT_EQ (screen.window, Device::Current_Window ());
    Device::Colour_Set (0);
    Device::FillRect (-1, -1, 20, 10);
    Widget_End (&widget);
    EXPECT_FALSE (Device::Is_Open ());
    EXPECT_EQ (12, screen.Count (0));
    EXPECT_EQ (12, screen.Count (0, 1, 3, 3, 4));
    EXPECT_EQ (1, calls.Count (Device::CALL_CLIP));
    EXPECT_EQ (1, calls.Count (Device::CALL_CLIP_ALL));
}

TEST_F (WidgetInit, DrawsEverywhereWithoutAClip) {
    Call_Recorder calls;
    widget.clip = {1, 2, 0, 4};
    Widget_Init (&widget, screen.window, "Boxs::Init");
    ASSERT_EQ (1, Widget_Begin (&widget, "test"));
    Device::Colour_Set (0);
    Device::FillRect (0, -1, 20, 9);
    Widget_End (&widget);
    EXPECT_EQ (200, screen.Count (0));
    EXPECT_EQ (0, calls.Count (Device::CALL_CLIP));
}

TEST_F (WidgetInit, HasNoSessionWithoutAWindow) {
    EXPECT_EQ (0, Widget_Begin (&widget, "test"));
    EXPECT_FALSE (Device::Is_Open ());
}
