// Sliders as plain records for every number, and by what they draw in an off-screen window.
#include "tools/sliders.h"

#include <gtest/gtest.h>
#include <limits>
#include <math.h>
#include <memory>
#include <string.h>

#include "tests/support/log_recorder.h"
#include "tests/support/off_screen.h"
#include "tools/device.h"
#include "util/memory.h"

static const float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN ();
static const float ENDLESS      = std::numeric_limits<float>::infinity ();

static int drawn;

static void Count (const Device::Call *call) {
    drawn += call->kind == Device::CALL_FILL || call->kind == Device::CALL_LINE;
}

// A slider in an off-screen window, from 0 to 100.
class Sliders_Test : public testing::Test {
protected:
    Off_Screen              screen = Off_Screen (400, 400);
    Window                  window = screen.window;
    std::unique_ptr<Slider> slider = std::make_unique<Slider> ();

    ~Sliders_Test () override {
        Device::Watch (nullptr);
        Sliders::Exit (slider.get ());
        EXPECT_EQ (Memory_Live (), 0);
    }

    void SetUp () override { ASSERT_TRUE (window) << Window_Error_Text (); }

    void Place (int x, int y, int w, int h, uint32_t state = SLIDER_HORIZONTAL) {
        slider->widget.x     = static_cast<int16_t> (x);
        slider->widget.y     = static_cast<int16_t> (y);
        slider->widget.w     = static_cast<int16_t> (w);
        slider->widget.h     = static_cast<int16_t> (h);
        slider->widget.state = state;
        slider->maximum      = 100;
    }

    void Make (int x, int y, int w, int h, uint32_t state = SLIDER_HORIZONTAL) {
        Place (x, y, w, h, state);
        Sliders::Init (slider.get (), window);
    }

    // What a window procedure does with every press and every move.
    int Mouse (int mouse_state, int x, int y) {
        Device::Pointer_Set (x, y);
        if (!Sliders::Select (slider.get (), mouse_state)) return 0;
        slider->value = Sliders::Read (slider.get ());
        Sliders::Adjust (slider.get ());
        return 1;
    }

    int Press (int x, int y) { return Mouse (MOUSE_PRESSED, x, y); }
    int Hold (int x, int y) { return Mouse (MOUSE_HELD, x, y); }

    float Read_At (int x, int y) {
        Device::Pointer_Set (x, y);
        return Sliders::Read (slider.get ());
    }

    int Thumb_At (float value) {
        slider->value = value;
        return Sliders::Thumb (slider.get ());
    }

    uint32_t Pixel (int x, int y) { return screen.Pixel (x, y); }
};

using SlidersInit = Sliders_Test;

// --- init ------------------------------------------------------------------

TEST_F (SlidersInit, FillsInWhatIsNotGiven) {
    Make (10, 20, 300, 16);
    EXPECT_EQ (slider->arrow_size, 3);
    EXPECT_EQ (slider->step, 1);
    EXPECT_EQ (slider->half, 8);
    for (int i = 0; i < 3; i++) EXPECT_EQ (slider->widget.colour[i], 170);
    EXPECT_EQ (slider->widget.validity, WIDGET_INITIALISED);
    EXPECT_EQ (slider->widget.window, window);
    EXPECT_TRUE (slider->widget.region);
    EXPECT_EQ (slider->widget.right, 311);
    EXPECT_EQ (slider->widget.top, 37);
    EXPECT_EQ (slider->widget.initial_w, 300);
    EXPECT_EQ (slider->widget.initial_h, 16);
}

TEST_F (SlidersInit, KeepsWhatIsGiven) {
    slider->arrow_size       = 1;
    slider->step             = 18;
    slider->half             = 40;
    slider->value            = 30;
    slider->widget.colour[2] = 1;
    Make (0, 0, 300, 16);
    EXPECT_EQ (slider->arrow_size, 1);
    EXPECT_EQ (slider->step, 18);
    EXPECT_EQ (slider->half, 40);
    EXPECT_EQ (slider->value, 30);
    EXPECT_EQ (slider->widget.colour[0], 0);
    EXPECT_EQ (slider->widget.colour[2], 1);
}

TEST_F (SlidersInit, TakesAnArrowOfAtLeastOne) {
    slider->arrow_size = -5;
    Make (0, 0, 300, 16);
    EXPECT_EQ (slider->arrow_size, 1);
}

TEST_F (SlidersInit, TakesAStepThatIsNoNumberAsOne) {
    slider->step = NOT_A_NUMBER;
    Make (0, 0, 300, 16);
    EXPECT_EQ (slider->step, 1);
    slider->step = ENDLESS;
    Make (0, 0, 300, 16);
    EXPECT_EQ (slider->step, 1);
}

TEST_F (SlidersInit, KeepsTheThumbBetweenHalfAThicknessAndTheTrack) {
    slider->half = 3;
    Make (0, 0, 200, 16);
    EXPECT_EQ (slider->half, 8);
    slider->half = 1000;
    Make (0, 0, 200, 16);
    EXPECT_EQ (slider->half, 200 / 2 - 16);
    slider->half = 1000;
    Make (0, 0, 16, 200, SLIDER_VERTICAL);
    EXPECT_EQ (slider->half, 200 / 2 - 16);
}

TEST_F (SlidersInit, LeavesNoNegativeThumbWhereThereIsNoTrack) {
    Make (0, 0, 20, 16);
    EXPECT_EQ (slider->half, 0);
    EXPECT_EQ (slider->position_count, 0);
}

TEST_F (SlidersInit, TakesTheValueIntoTheRange) {
    slider->value = 200;
    Make (0, 0, 300, 16);
    EXPECT_EQ (slider->value, 100);
    slider->value = -1;
    Make (0, 0, 300, 16);
    EXPECT_EQ (slider->value, 0);
    slider->value = NOT_A_NUMBER;
    Make (0, 0, 300, 16);
    EXPECT_EQ (slider->value, 0);
    slider->value = ENDLESS;
    Make (0, 0, 300, 16);
    EXPECT_EQ (slider->value, 100);
}

TEST_F (SlidersInit, WithoutAWindowSaysSo) {
    Log_Recorder log (1);
    Place (0, 0, 300, 16);
    slider->widget.name = "tree";
    Sliders::Init (slider.get (), nullptr);
    EXPECT_EQ (log.Text (LOG_TRACE1),
               "Tools: WARNING ! \n   you must provide a window\n   type: Sliders::Init   name: tree\n");
    EXPECT_EQ (slider->widget.validity, 0);
    EXPECT_EQ (slider->arrow_size, 0);
}

TEST_F (SlidersInit, WithoutAWindowKeepsTheStoredOne) {
    Log_Recorder log (1);
    Make (0, 0, 300, 16);
    Sliders::Init (slider.get (), nullptr);
    EXPECT_EQ (slider->widget.window, window);
    EXPECT_TRUE (log.lines.empty ());
}

TEST_F (SlidersInit, NeedsAWidthAndAHeight) {
    Log_Recorder log (1);
    for (int side : {0, -1, -32768}) {
        Make (0, 0, side, 16);
        Make (0, 0, 300, side);
    }
    EXPECT_EQ (slider->widget.validity, 0);
    EXPECT_FALSE (slider->widget.region);
    EXPECT_TRUE (log.lines.empty ());
}

TEST_F (SlidersInit, WithoutMemoryStaysUninitialised) {
    Log_Recorder log;
    Place (0, 0, 300, 16);
    Memory_Fail_At (1);
    Sliders::Init (slider.get (), window);
    EXPECT_EQ (Memory_Failed (), 1);
    Memory_Fail_At (0);
    EXPECT_TRUE (log.Contains ("memory error in"));
    EXPECT_EQ (slider->widget.validity, 0);
    Sliders::Init (slider.get (), window);
    EXPECT_EQ (slider->widget.validity, WIDGET_INITIALISED);
}

TEST_F (SlidersInit, AgainKeepsADrag) {
    Make (0, 0, 300, 16);
    ASSERT_TRUE (Press (Sliders::Thumb (slider.get ()) + 5, 8));
    Sliders::Init (slider.get (), window);
    EXPECT_TRUE (Hold (150, 8));
    EXPECT_GT (slider->value, 0);
}

// --- positions -------------------------------------------------------------

using SlidersTable = Sliders_Test;

TEST_F (SlidersTable, HasAnEntryForEachPixelOfTheTrack) {
    Make (0, 0, 300, 16);
    EXPECT_EQ (Sliders::Track (slider.get ()), 300 - 2 * 16 - 3 - 16);
    ASSERT_EQ (slider->position_count, 249);
    EXPECT_EQ (slider->positions[0], 0);
    EXPECT_FLOAT_EQ (slider->positions[124], 50);
    EXPECT_FLOAT_EQ (slider->positions[1], 100.0f / 248);
    EXPECT_EQ (slider->positions[248], 100);
}

TEST_F (SlidersTable, CountsAnArrowOfSizeZeroAsTheBorder) {
    Place (0, 0, 300, 16);
    slider->half = 8;
    EXPECT_EQ (Sliders::Track (slider.get ()), 300 - 2 * 16 - 3 - 16);
    slider->arrow_size = 10;
    EXPECT_EQ (Sliders::Track (slider.get ()), 300 - 2 * 16 - 10 - 16);
}

TEST_F (SlidersTable, IsMissingWhereTheTrackIsOnePixelOrShorter) {
    Make (0, 0, 52, 16);
    EXPECT_EQ (Sliders::Track (slider.get ()), 1);
    EXPECT_EQ (slider->position_count, 0);
    slider->value = 42;
    EXPECT_EQ (Read_At (26, 8), 42);
    Make (0, 0, 17, 16);
    EXPECT_EQ (slider->position_count, 0);
    EXPECT_EQ (Read_At (8, 8), 42);
}

TEST_F (SlidersTable, OfTwoPixelsHasBothEnds) {
    Make (0, 0, 53, 16);
    ASSERT_EQ (slider->position_count, 2);
    EXPECT_EQ (slider->positions[0], 0);
    EXPECT_EQ (slider->positions[1], 100);
}

TEST_F (SlidersTable, EndsAt4096Entries) {
    Make (0, 0, 5000 + 32 + 3 + 16, 16);
    EXPECT_EQ (Sliders::Track (slider.get ()), 5000);
    ASSERT_EQ (slider->position_count, 4096);
    EXPECT_EQ (slider->positions[0], 0);
    EXPECT_EQ (slider->positions[4095], 100);
    Make (0, 0, 32767, 16);
    EXPECT_EQ (slider->position_count, 4096);
}

TEST_F (SlidersTable, OfARangeThatIsNoneHoldsOneValue) {
    const float ranges[][2] = {{5, 5},       {5, 4},        {5, NOT_A_NUMBER},   {NOT_A_NUMBER, 5},
                               {5, ENDLESS}, {-ENDLESS, 5}, {-ENDLESS, ENDLESS}, {5, -ENDLESS}};
    for (const float *range : ranges) {
        Place (0, 0, 300, 16);
        slider->minimum = range[0];
        slider->maximum = range[1];
        slider->value   = 77;
        Sliders::Init (slider.get (), window);
        const float only = isfinite (range[0]) ? range[0] : 0;
        EXPECT_EQ (slider->value, only);
        EXPECT_EQ (slider->positions[0], only);
        EXPECT_EQ (slider->positions[slider->position_count - 1], only);
        EXPECT_EQ (Sliders::Thumb (slider.get ()), 16);
        EXPECT_EQ (Sliders::Scroll (slider.get (), 3), only);
        EXPECT_TRUE (Press (200, 8));
        EXPECT_EQ (slider->value, only);
        Sliders::Deselect (slider.get ());
        Sliders::Draw (slider.get ());
    }
}

TEST_F (SlidersTable, CoversTheWidestRange) {
    Place (0, 0, 300, 16);
    slider->minimum = -std::numeric_limits<float>::max ();
    slider->maximum = std::numeric_limits<float>::max ();
    Sliders::Init (slider.get (), window);
    EXPECT_EQ (slider->positions[0], slider->minimum);
    EXPECT_EQ (slider->positions[248], slider->maximum);
    EXPECT_EQ (Thumb_At (slider->maximum), 16 + 246);
    EXPECT_EQ (Thumb_At (0), 16 + 123);
}

// --- thumb -----------------------------------------------------------------

using SlidersThumb = Sliders_Test;

TEST_F (SlidersThumb, StandsAtTheShareOfTheFreeTrack) {
    Make (0, 0, 300, 16);
    const int travel = 300 - 2 * 8 - 2 * 3 - 2 * 16;
    EXPECT_EQ (Thumb_At (0), 16);
    EXPECT_EQ (Thumb_At (100), 16 + travel);
    EXPECT_EQ (Thumb_At (50), 16 + travel / 2);
    EXPECT_EQ (Thumb_At (25), 16 + 62);    // 61.5 rounded.
    EXPECT_EQ (Thumb_At (24.7f), 16 + 61); // 60.8 rounded.
}

TEST_F (SlidersThumb, CountsFromTheMinimum) {
    Place (0, 0, 300, 16);
    slider->minimum = -50;
    slider->maximum = 50;
    Sliders::Init (slider.get (), window);
    EXPECT_EQ (Thumb_At (0), 16 + 123);
}

TEST_F (SlidersThumb, StaysOnTheTrackForAnyValue) {
    Make (0, 0, 300, 16);
    EXPECT_EQ (Thumb_At (1000), 16 + 246);
    EXPECT_EQ (Thumb_At (-1000), 16);
    EXPECT_EQ (Thumb_At (NOT_A_NUMBER), 16);
}

TEST_F (SlidersThumb, ReversedCountsFromTheOtherEnd) {
    Make (0, 0, 300, 16, SLIDER_HORIZONTAL | WIDGET_REVERSED);
    EXPECT_EQ (Thumb_At (0), 16 + 246);
    EXPECT_EQ (Thumb_At (100), 16);
}

TEST_F (SlidersThumb, OfAListThatCountsDownwardsIsAtTheTopForItsFirstLine) {
    Make (0, 0, 16, 300, SLIDER_VERTICAL);
    EXPECT_EQ (Thumb_At (0), 16 + 246);
    EXPECT_EQ (Thumb_At (100), 16);
}

TEST_F (SlidersThumb, NotReversedIsAtTheBottomForTheMinimum) {
    Make (0, 0, 16, 300, SLIDER_HORIZONTAL | WIDGET_VERTICAL);
    EXPECT_EQ (Thumb_At (0), 16);
    EXPECT_EQ (Thumb_At (100), 16 + 246);
}

TEST_F (SlidersThumb, WithoutTravelStandsBesideTheArrow) {
    Make (0, 0, 40, 16);
    EXPECT_EQ (Thumb_At (0), 16);
    EXPECT_EQ (Thumb_At (100), 16);
}

TEST_F (SlidersThumb, OfARecordWithAbsurdNumbersStaysInBounds) {
    Make (0, 0, 300, 16);
    slider->half = std::numeric_limits<int32_t>::max ();
    EXPECT_EQ (Thumb_At (100), 16);
    slider->half = std::numeric_limits<int32_t>::min ();
    EXPECT_EQ (Thumb_At (100), 16 + 262);
    Sliders::Draw (slider.get ());
}

// --- proportion ------------------------------------------------------------

using SlidersProportion = Sliders_Test;

TEST_F (SlidersProportion, IsThePartOfTheTrack) {
    Make (0, 0, 300, 16);
    Sliders::Proportion (slider.get (), 30, 100);
    EXPECT_EQ (slider->half, 39); // 0.3 * 265 / 2
    EXPECT_EQ (slider->position_count, 265 - 2 * 39);
    EXPECT_EQ (slider->positions[slider->position_count - 1], 100);
}

TEST_F (SlidersProportion, OfAllIsHalfTheTrack) {
    Make (0, 0, 300, 16);
    for (int visible : {100, 101, 2147483647}) {
        Sliders::Proportion (slider.get (), visible, 100);
        EXPECT_EQ (slider->half, 265 / 2);
        EXPECT_EQ (slider->position_count, 0);
    }
    Sliders::Proportion (slider.get (), 0, 0);
    EXPECT_EQ (slider->half, 265 / 2);
}

TEST_F (SlidersProportion, IsNeverShorterThanTheThickness) {
    Make (0, 0, 300, 16);
    for (int visible : {1, 0, -5}) {
        Sliders::Proportion (slider.get (), visible, 1000000);
        EXPECT_EQ (slider->half, 8);
    }
}

TEST_F (SlidersProportion, IsLeftAloneWithoutATrack) {
    Make (0, 0, 36, 16); // 36 - 32 - 3 is 1.
    const int half = slider->half;
    Sliders::Proportion (slider.get (), 1, 2);
    EXPECT_EQ (slider->half, half);
    EXPECT_EQ (slider->total, 0);
    Make (0, 0, 37, 16);
    Sliders::Proportion (slider.get (), 1, 2);
    EXPECT_EQ (slider->half, 8);
}

// --- reading ---------------------------------------------------------------

using SlidersRead = Sliders_Test;

TEST_F (SlidersRead, TakesTheEntryUnderTheMouse) {
    Make (50, 20, 300, 16);
    const int first = 50 + 3 + 8; // Start, arrow and half a thumb.
    EXPECT_EQ (Read_At (first + 100, 28), slider->positions[100]);
    EXPECT_EQ (Read_At (first + 6, 28), slider->positions[6]);
    EXPECT_EQ (Read_At (first + 248, 28), slider->positions[248]);
    EXPECT_EQ (Read_At (50 + 300 - 16, 28), slider->positions[248]); // Clamped to the last entry.
}

TEST_F (SlidersRead, OfAVerticalSliderGoesUpwards) {
    Make (20, 50, 16, 300, SLIDER_HORIZONTAL | WIDGET_VERTICAL);
    EXPECT_EQ (Read_At (28, 50 + 3 + 8 + 100), slider->positions[100]);
}

TEST_F (SlidersRead, OfAReversedSliderGoesBackwards) {
    Make (50, 20, 300, 16, SLIDER_HORIZONTAL | WIDGET_REVERSED);
    EXPECT_EQ (Read_At (50 + 3 + 8 + 100, 28), slider->positions[148]);
    Make (20, 50, 16, 300, SLIDER_VERTICAL);
    EXPECT_EQ (Read_At (28, 50 + 3 + 8 + 100), slider->positions[148]);
}

TEST_F (SlidersRead, OutsideOfTheTrackGivesTheValue) {
    Make (50, 20, 300, 16);
    slider->value         = 42;
    const int points[][2] = {{49, 28}, {55, 28}, {65, 28}, {335, 28}, {351, 28}, {200, 19}, {200, 37}, {-30000, 28}};
    for (const int *point : points) EXPECT_EQ (Read_At (point[0], point[1]), 42) << point[0] << " " << point[1];
    EXPECT_EQ (Read_At (std::numeric_limits<int>::min (), std::numeric_limits<int>::max ()), 42);
}

TEST_F (SlidersRead, IsZeroWithoutSizeOrMouse) {
    Make (50, 20, 300, 16);
    slider->value        = 42;
    slider->widget.state = SLIDER_HORIZONTAL | WIDGET_MOUSE_IGNORED;
    EXPECT_EQ (Read_At (200, 28), 0);
    slider->widget.state = SLIDER_HORIZONTAL;
    slider->widget.w     = 0;
    EXPECT_EQ (Read_At (200, 28), 0);
    slider->widget.w = 300;
    slider->widget.h = -1;
    EXPECT_EQ (Read_At (200, 28), 0);
}

// --- scrolling -------------------------------------------------------------

using SlidersScroll = Sliders_Test;

TEST_F (SlidersScroll, MovesByStepsAndStopsAtTheEnds) {
    slider->step = 18;
    Make (0, 0, 300, 16);
    EXPECT_EQ (Sliders::Scroll (slider.get (), 2), 36);
    EXPECT_EQ (slider->value, 36);
    EXPECT_EQ (Sliders::Scroll (slider.get (), -1), 18);
    EXPECT_EQ (Sliders::Scroll (slider.get (), 0), 18);
    EXPECT_EQ (Sliders::Scroll (slider.get (), 6), 100);
    EXPECT_EQ (Sliders::Scroll (slider.get (), 1), 100);
    EXPECT_EQ (Sliders::Scroll (slider.get (), -100), 0);
    EXPECT_EQ (Sliders::Scroll (slider.get (), std::numeric_limits<int>::max ()), 100);
    EXPECT_EQ (Sliders::Scroll (slider.get (), std::numeric_limits<int>::min ()), 0);
}

TEST_F (SlidersScroll, ReversedMovesTowardsTheMinimum) {
    for (uint32_t state : {SLIDER_VERTICAL, SLIDER_HORIZONTAL | WIDGET_REVERSED}) {
        slider->value = 50;
        Make (0, 0, state & WIDGET_VERTICAL ? 16 : 300, state & WIDGET_VERTICAL ? 300 : 16, state);
        EXPECT_EQ (Sliders::Scroll (slider.get (), 3), 47);
        EXPECT_EQ (Sliders::Scroll (slider.get (), -5), 52);
        EXPECT_EQ (Sliders::Scroll (slider.get (), 1000), 0);
    }
}

TEST_F (SlidersScroll, LeavesASliderThatIgnoresTheMouse) {
    slider->value = 50;
    Make (0, 0, 300, 16, SLIDER_HORIZONTAL_DISABLED);
    EXPECT_EQ (Sliders::Scroll (slider.get (), 3), 50);
    EXPECT_EQ (Sliders::Wheel (slider.get (), 3), 50);
    EXPECT_EQ (slider->value, 50);
}

TEST_F (SlidersScroll, BringsAValueThatIsNoneBack) {
    Make (0, 0, 300, 16);
    slider->value = NOT_A_NUMBER;
    EXPECT_EQ (Sliders::Scroll (slider.get (), 1), 1);
    slider->value = 1000;
    EXPECT_EQ (Sliders::Scroll (slider.get (), -1), 99);
    slider->step = NOT_A_NUMBER;
    EXPECT_EQ (Sliders::Scroll (slider.get (), -1), 98);
}

// --- what the user sees, in every direction --------------------------------

// Which end of the window each value lies at, and where the arrows lead.
class SlidersDirection : public Sliders_Test, public testing::WithParamInterface<uint32_t> {
protected:
    int vertical = (GetParam () & WIDGET_VERTICAL) != 0;
    int reversed = (GetParam () & WIDGET_REVERSED) != 0;

    void SetUp () override {
        Sliders_Test::SetUp ();
        slider->value = 50;
        Make (40, 30, vertical ? 16 : 300, vertical ? 300 : 16, GetParam ());
        Sliders::Draw (slider.get ());
    }

    int         Press_At (int offset) { return vertical ? Press (48, 30 + offset) : Press (40 + offset, 38); }
    int         Hold_At (int offset) { return vertical ? Hold (48, 30 + offset) : Hold (40 + offset, 38); }
    Slider_Part Part (int offset) {
        return vertical ? Sliders::Part_At (slider.get (), 48, 30 + offset)
                        : Sliders::Part_At (slider.get (), 40 + offset, 38);
    }
    uint32_t Colour_At (int offset) { return vertical ? Pixel (51, 30 + offset) : Pixel (40 + offset, 41); }
    float    Upwards (float by) { return reversed ? -by : by; } // What moves the thumb up or right by this much.
};

INSTANTIATE_TEST_SUITE_P (All, SlidersDirection,
                          testing::Values (WIDGET_SLIDER, WIDGET_SLIDER | WIDGET_REVERSED,
                                           WIDGET_SLIDER | WIDGET_VERTICAL, SLIDER_VERTICAL));

TEST_P (SlidersDirection, ArrowsGoWhereTheyPoint) {
    EXPECT_TRUE (Press_At (300));
    EXPECT_EQ (slider->value, 50 + Upwards (1));
    Sliders::Deselect (slider.get ());
    EXPECT_TRUE (Press_At (0));
    EXPECT_EQ (slider->value, 50);
    EXPECT_EQ (slider->pressed, reversed ? SLIDER_MORE : SLIDER_LESS);
}

TEST_P (SlidersDirection, PartsLieInOrder) {
    const Slider_Part parts[] = {SLIDER_LESS, SLIDER_PAGE_LESS, SLIDER_THUMB, SLIDER_PAGE_MORE, SLIDER_MORE};
    const int         thumb   = Sliders::Thumb (slider.get ());
    const int         last    = thumb + 2 * 8 + 2 * 3;
    const int         from[]  = {0, 16, thumb, last + 1, 300 - 16 + 1};
    const int         to[]    = {15, thumb - 1, last, 300 - 16, 300};
    for (int i = 0; i < 5; i++) {
        EXPECT_EQ (Part (from[i]), parts[reversed ? 4 - i : i]) << i;
        EXPECT_EQ (Part (to[i]), parts[reversed ? 4 - i : i]) << i;
    }
    EXPECT_EQ (Part (-1), SLIDER_NOTHING);
    EXPECT_EQ (Part (301), SLIDER_NOTHING);
}

TEST_P (SlidersDirection, ScrollAndArrowAgree) { EXPECT_EQ (Sliders::Scroll (slider.get (), 1), 50 + Upwards (1)); }

TEST_P (SlidersDirection, WheelTowardsTheUserGoesDownOrRight) {
    const int before = Sliders::Thumb (slider.get ());
    slider->step     = 10;
    Sliders::Wheel (slider.get (), -1);
    EXPECT_EQ (Sliders::Thumb (slider.get ()) < before, vertical);
    EXPECT_NE (Sliders::Thumb (slider.get ()), before);
    Sliders::Wheel (slider.get (), 2);
    EXPECT_EQ (Sliders::Thumb (slider.get ()) > before, vertical);
    EXPECT_EQ (slider->value, 50 + (vertical ? Upwards (10) : -Upwards (10)));
}

TEST_P (SlidersDirection, DragToEitherEndReachesIt) {
    for (int end : {-1, 1}) {
        ASSERT_TRUE (Press_At (Sliders::Thumb (slider.get ()) + 11));
        EXPECT_TRUE (Hold_At (150 + end * 140));
        EXPECT_EQ (slider->value, (end > 0) == !reversed ? 100 : 0);
        EXPECT_EQ (Sliders::Thumb (slider.get ()), end > 0 ? 300 - 16 - 22 : 16);
        EXPECT_TRUE (Hold_At (150 + end * 20000));
        EXPECT_EQ (slider->value, (end > 0) == !reversed ? 100 : 0);
        Sliders::Deselect (slider.get ());
    }
}

TEST_P (SlidersDirection, PixelsShowWhereTheThumbIs) {
    const uint32_t face = Drawing_Colour (170, 170, 170), track = Drawing_Colour (146, 146, 146);
    for (float value : {0.0f, 30.0f, 100.0f}) {
        const int from = Thumb_At (value), to = from + 22;
        Sliders::Adjust (slider.get ());
        EXPECT_EQ (Colour_At (from), 0u);
        EXPECT_EQ (Colour_At (to), 0u);
        EXPECT_EQ (Colour_At (from + 3), face);
        EXPECT_EQ (Colour_At (to - 3), face);
        EXPECT_EQ (Colour_At (from > 17 ? from - 1 : 280), track);
        EXPECT_EQ (Colour_At (to < 300 - 17 ? to + 1 : 20), track);
        EXPECT_EQ (Colour_At (from > 150 ? 20 : 280), track);
    }
}

TEST_P (SlidersDirection, TrackGoesOnePage) {
    slider->value = 50;
    Sliders::Proportion (slider.get (), 20, 120); // A range of 100 and 20 more that are seen at its end.
    EXPECT_TRUE (Press_At (282));
    EXPECT_FLOAT_EQ (slider->value, 50 + Upwards (20));
    EXPECT_FALSE (Hold_At (282));
    EXPECT_FLOAT_EQ (slider->value, 50 + Upwards (20));
    Sliders::Deselect (slider.get ());
    EXPECT_TRUE (Press_At (18));
    EXPECT_FLOAT_EQ (slider->value, 50);
}

// --- dragging --------------------------------------------------------------

using SlidersDrag = Sliders_Test;

TEST_F (SlidersDrag, WithoutMovingLeavesTheValueWhereverTheThumbIsTaken) {
    Make (0, 0, 300, 16);
    for (float value : {0.0f, 0.3f, 33.333f, 50.0f, 99.9f, 100.0f}) {
        const int thumb = Thumb_At (value);
        for (int at = thumb; at <= thumb + 22; at++) {
            EXPECT_TRUE (Press (at, 8));
            EXPECT_EQ (slider->drag, 1);
            EXPECT_EQ (slider->value, value);
            EXPECT_TRUE (Hold (at, 8));
            EXPECT_EQ (slider->value, value);
            Sliders::Deselect (slider.get ());
        }
    }
}

TEST_F (SlidersDrag, FollowsThePointerByTheGrip) {
    const int sizes[][2] = {{300, 3}, {300, 1}, {5051, 3}, {20000, 1}, {300, 40}};
    for (const int *size : sizes) {
        slider->arrow_size = static_cast<int16_t> (size[1]);
        slider->value      = 0;
        Make (0, 0, size[0], 16);
        Sliders::Proportion (slider.get (), 10, 100);
        const int thumb = Sliders::Thumb (slider.get ());
        ASSERT_TRUE (Press (thumb + 5, 8));
        const int travel = size[0] - 32 - 2 * size[1] - 2 * slider->half;
        for (int by = 0; by <= travel; by++) {
            ASSERT_TRUE (Hold (thumb + 5 + by, 200));
            ASSERT_NEAR (Sliders::Thumb (slider.get ()), thumb + by, 2) << size[0];
        }
        EXPECT_EQ (slider->value, 100);
        Sliders::Deselect (slider.get ());
    }
}

TEST_F (SlidersDrag, FromNearAnEndReachesIt) {
    Make (0, 0, 300, 16);
    slider->value = 0.1f;
    ASSERT_TRUE (Press (20, 8));
    EXPECT_TRUE (Hold (19, 8));
    EXPECT_EQ (slider->value, 0);
}

TEST_F (SlidersDrag, EndsWithDeselect) {
    Make (0, 0, 300, 16);
    ASSERT_TRUE (Press (20, 8));
    Sliders::Deselect (slider.get ());
    EXPECT_EQ (slider->drag, 0);
    EXPECT_EQ (slider->pressed, SLIDER_NOTHING);
    EXPECT_FALSE (Hold (100, 8));
    EXPECT_EQ (slider->value, 0);
}

TEST_F (SlidersDrag, EndsWhenNoButtonIsHeld) {
    Make (0, 0, 300, 16);
    for (int state : {MOUSE_RELEASED + 0, MOUSE_MOVED + 0, 0x14}) {
        ASSERT_TRUE (Press (20, 8));
        EXPECT_FALSE (Mouse (state, 100, 8));
        EXPECT_EQ (slider->drag, 0);
        EXPECT_FALSE (Hold (100, 8));
    }
}

TEST_F (SlidersDrag, EndsWhenTheSliderIsDisabledOrHidden) {
    Make (0, 0, 300, 16);
    for (uint32_t state : {SLIDER_HORIZONTAL_DISABLED, SLIDER_HORIZONTAL | WIDGET_HIDDEN}) {
        ASSERT_TRUE (Press (20, 8));
        slider->widget.state = state;
        EXPECT_FALSE (Hold (100, 8));
        slider->widget.state = SLIDER_HORIZONTAL;
        EXPECT_FALSE (Hold (100, 8));
    }
}

TEST_F (SlidersDrag, OfAThumbThatFillsTheTrackLeavesTheValue) {
    slider->value = 30;
    Make (0, 0, 300, 16);
    Sliders::Proportion (slider.get (), 100, 100);
    ASSERT_TRUE (Press (150, 8));
    EXPECT_TRUE (Hold (250, 8));
    EXPECT_EQ (slider->value, 30);
}

// --- pressing --------------------------------------------------------------

using SlidersPress = Sliders_Test;

TEST_F (SlidersPress, OfAnArrowStepsOnce) {
    slider->step = 18;
    Make (0, 0, 300, 16);
    EXPECT_TRUE (Press (295, 8));
    EXPECT_EQ (slider->value, 18);
    EXPECT_EQ (Sliders::Read (slider.get ()), 18);
    EXPECT_FALSE (Hold (295, 8));
    EXPECT_FALSE (Hold (150, 8));
    EXPECT_EQ (slider->value, 18);
    EXPECT_EQ (slider->drag, 0);
    EXPECT_TRUE (Press (295, 8)); // Without a release that was seen.
    EXPECT_EQ (slider->value, 36);
}

TEST_F (SlidersPress, StopsAtTheEnds) {
    slider->step  = 18;
    slider->value = 95;
    Make (0, 0, 300, 16);
    Press (295, 8);
    EXPECT_EQ (slider->value, 100);
    Press (50, 8);
    Press (5, 8);
    slider->value = 3;
    Press (5, 8);
    EXPECT_EQ (slider->value, 0);
    slider->value = 97;
    Press (20, 8);
    EXPECT_LT (slider->value, 97);
    slider->value = 3;
    Press (270, 8);
    EXPECT_GT (slider->value, 3);
}

TEST_F (SlidersPress, OfTheTrackWithoutAProportionGoesTheThumbsLength) {
    Make (0, 0, 300, 16);
    Press (270, 8);
    EXPECT_FLOAT_EQ (slider->value, 100.0f * 16 / 249);
    Press (270, 8);
    EXPECT_FLOAT_EQ (slider->value, 200.0f * 16 / 249);
}

TEST_F (SlidersPress, WorksOnArrowsWithoutATrack) {
    Make (0, 0, 20, 16);
    EXPECT_TRUE (Press (19, 8));
    EXPECT_EQ (slider->value, 1);
    EXPECT_TRUE (Press (1, 8));
    EXPECT_EQ (slider->value, 0);
}

TEST_F (SlidersPress, OfATrackTooShortForAThumbIsTakenAndDoesNothing) {
    Make (0, 0, 36, 16);
    slider->value = 42;
    EXPECT_EQ (Sliders::Part_At (slider.get (), 18, 8), SLIDER_NOTHING);
    EXPECT_TRUE (Press (18, 8));
    EXPECT_EQ (slider->value, 42);
    EXPECT_FALSE (Hold (30, 8));
}

TEST_F (SlidersPress, IsNotTakenOutside) {
    Make (50, 20, 300, 16);
    const int points[][2] = {{49, 28}, {351, 28}, {200, 19}, {200, 37}};
    for (const int *point : points) EXPECT_FALSE (Press (point[0], point[1]));
    const int corners[][2] = {{50, 20}, {350, 36}};
    for (const int *point : corners) EXPECT_TRUE (Press (point[0], point[1]));
}

TEST_F (SlidersPress, IsNotTakenByASliderThatCannotAct) {
    Make (50, 20, 300, 16);
    for (uint32_t state : {WIDGET_INACTIVE + 0u, WIDGET_MOUSE_IGNORED + 0u, WIDGET_HIDDEN + 0u, SLIDER_DISABLED}) {
        slider->widget.state = SLIDER_HORIZONTAL | state;
        EXPECT_FALSE (Press (340, 28));
    }
    slider->widget.state = SLIDER_HORIZONTAL;
    slider->widget.w     = 0;
    EXPECT_FALSE (Press (50, 28));
}

// --- drawing ---------------------------------------------------------------

using SlidersDraw = Sliders_Test;

TEST_F (SlidersDraw, ShowsNothingOfAHiddenOrEmptySlider) {
    Make (0, 0, 300, 16, SLIDER_HORIZONTAL | WIDGET_HIDDEN);
    drawn = 0;
    Device::Watch (Count);
    Sliders::Draw (slider.get ());
    Sliders::Adjust (slider.get ());
    EXPECT_EQ (Sliders::Scroll (slider.get (), 3), 3);
    slider->widget.state = SLIDER_HORIZONTAL;
    slider->widget.h     = 0;
    Sliders::Draw (slider.get ());
    Sliders::Adjust (slider.get ());
    EXPECT_EQ (drawn, 0);
    slider->widget.h = 16;
    Sliders::Draw (slider.get ());
    EXPECT_GT (drawn, 0);
}

TEST_F (SlidersDraw, StaysInsideItsRectangle) {
    for (uint32_t state : {SLIDER_HORIZONTAL, SLIDER_HORIZONTAL_DISABLED}) {
        Make (50, 20, 300, 16, state);
        Sliders::Draw (slider.get ());
        for (int x = 40; x < 360; x++) {
            EXPECT_EQ (Pixel (x, 19), 0xFFFFFFu);
            EXPECT_EQ (Pixel (x, 37), 0xFFFFFFu);
        }
        for (int y = 20; y <= 36; y++) {
            EXPECT_EQ (Pixel (49, y), 0xFFFFFFu);
            EXPECT_EQ (Pixel (351, y), 0xFFFFFFu);
            EXPECT_NE (Pixel (50, y), 0xFFFFFFu);
            EXPECT_NE (Pixel (350, y), 0xFFFFFFu);
        }
    }
}

// Its pane may be narrower than the slider is thick.
TEST_F (SlidersDraw, ShorterThanThickStaysInsideToo) {
    for (int length : {2, 6, 15}) {
        for (uint32_t state : {SLIDER_HORIZONTAL, SLIDER_HORIZONTAL_DISABLED}) {
            Make (50, 20, length, 16, state);
            EXPECT_EQ (slider->position_count, 0);
            Sliders::Draw (slider.get ());
            EXPECT_NE (Pixel (50 + length, 28), 0xFFFFFFu);
            EXPECT_EQ (Pixel (50 + length + 1, 28), 0xFFFFFFu);
        }
        EXPECT_EQ (Sliders::Part_At (slider.get (), 50, 28), SLIDER_LESS);
        EXPECT_EQ (Sliders::Part_At (slider.get (), 50 + length, 28), SLIDER_MORE);
    }
}

TEST_F (SlidersDraw, ThinOnesHaveNoArrowHeads) {
    for (int thickness : {5, 6}) {
        Make (50, 20, 300, thickness, SLIDER_HORIZONTAL_DISABLED);
        Sliders::Draw (slider.get ());
        EXPECT_EQ (screen.Count (Drawing_Colour (216, 216, 216)) > 0, thickness == 6);
    }
}

TEST_F (SlidersDraw, DisabledIsPaleAndHasNoThumb) {
    slider->value = 50;
    Make (50, 20, 300, 16, SLIDER_HORIZONTAL_DISABLED);
    Sliders::Draw (slider.get ());
    for (int x = 67; x < 334; x++) EXPECT_EQ (Pixel (x, 28), Drawing_Colour (170, 170, 170)) << x;
    EXPECT_EQ (Pixel (50, 28), Drawing_Colour (130, 130, 130));
    EXPECT_EQ (Pixel (58, 28), Drawing_Colour (216, 216, 216)); // Arrow.
    EXPECT_EQ (Pixel (342, 28), Drawing_Colour (216, 216, 216));
}

TEST_F (SlidersDraw, ShowsWhatIsPressed) {
    Make (50, 20, 300, 16);
    Sliders::Draw (slider.get ());
    EXPECT_EQ (Pixel (51, 35), Drawing_Colour (250, 250, 250)); // Raised: light at the top left.
    Device::Pointer_Set (52, 28);
    Sliders::Select (slider.get (), MOUSE_PRESSED);
    EXPECT_EQ (Pixel (51, 34), Drawing_Colour (90, 90, 90));
    EXPECT_EQ (Pixel (335, 34), Drawing_Colour (250, 250, 250)); // The other one is not.
    Sliders::Deselect (slider.get ());
    EXPECT_EQ (Pixel (51, 34), Drawing_Colour (250, 250, 250));
    Press (300, 28);
    EXPECT_EQ (Pixel (300, 28), Drawing_Colour (126, 126, 126));
    Sliders::Deselect (slider.get ());
    EXPECT_EQ (Pixel (300, 28), Drawing_Colour (146, 146, 146));
}

TEST_F (SlidersDraw, DeselectOfASliderThatIsNotPressedDrawsNothing) {
    Make (50, 20, 300, 16);
    drawn = 0;
    Device::Watch (Count);
    Sliders::Deselect (slider.get ());
    EXPECT_FALSE (Mouse (MOUSE_MOVED, 100, 28));
    EXPECT_EQ (drawn, 0);
}

TEST_F (SlidersDraw, KeepsToItsClip) {
    Make (50, 20, 300, 16);
    slider->widget.clip = {50, 20, 100, 100};
    Sliders::Draw (slider.get ());
    EXPECT_NE (Pixel (60, 28), 0xFFFFFFu);
    EXPECT_EQ (Pixel (340, 28), 0xFFFFFFu);
}

TEST_F (SlidersDraw, EndsForEveryShape) {
    for (int w : {1, 2, 3, 15, 16, 17, 31, 33, 40, 41, 32767})
        for (int h : {1, 2, 15, 16, 40, 32767})
            for (uint32_t state : {SLIDER_HORIZONTAL, SLIDER_VERTICAL, SLIDER_HORIZONTAL_DISABLED}) {
                Make (0, 0, w, h, state);
                Sliders::Proportion (slider.get (), 1, 3);
                Sliders::Draw (slider.get ());
                Press (w / 2, h / 2);
                EXPECT_GE (slider->value, 0);
                EXPECT_LE (slider->value, 100);
            }
}

// --- warnings --------------------------------------------------------------

TEST_F (Sliders_Test, EveryOperationWarnsOfAMissingInitOnce) {
    typedef void (*Operation) (Slider *);
    const struct {
        const char *name;
        Operation   call;
    } operations[] = {
        {"Sliders::Draw", Sliders::Draw},
        {"Sliders::Adjust", Sliders::Adjust},
        {"Sliders::Deselect", Sliders::Deselect},
        {"Sliders::Proportion", [] (Slider *s) { Sliders::Proportion (s, 1, 2); }},
        {"Sliders::Select", [] (Slider *s) { Sliders::Select (s, MOUSE_PRESSED); }},
        {"Sliders::Read", [] (Slider *s) { Sliders::Read (s); }},
        {"Sliders::Scroll", [] (Slider *s) { Sliders::Scroll (s, 1); }},
        {"Sliders::Wheel", [] (Slider *s) { Sliders::Wheel (s, 1); }},
    };
    for (const auto &operation : operations) {
        Log_Recorder log (1);
        auto         fresh = std::make_unique<Slider> ();
        operation.call (fresh.get ());
        operation.call (fresh.get ());
        EXPECT_EQ (log.Text (LOG_TRACE1),
                   std::string ("Tools: WARNING ! \n   you must call *_Init() first\n   type: ") + operation.name +
                       "   name: no name\n\n");
    }
}
