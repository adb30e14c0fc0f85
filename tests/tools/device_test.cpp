#include "tools/device.h"

#include <limits.h>

#include <atomic>
#include <chrono>
#include <future>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/log_recorder.h"
#include "tests/support/off_screen.h"
#include "util/memory.h"

static const uint32_t WHITE = 0xFFFFFF, BLACK = 0, RED = 0x0000FF, BLUE = 0xFF0000;

static const std::map<uint32_t, char> LETTERS = {{WHITE, '.'}, {BLACK, '#'}, {RED, 'r'}, {BLUE, 'b'}};

class DeviceSession : public testing::Test {
protected:
    DeviceSession () : screen (6, 5) {
        Device::Reports_Reset ();
        Device::Colour_Set (BLACK);
    }
    ~DeviceSession () {
        if (Device::Is_Open ()) Device::End ();
    }

    int Begin () { return Device::Begin (screen.window, nullptr, "test"); }

    // The window after the session has ended.
    std::string End () {
        Device::End ();
        return screen.Rows (LETTERS);
    }

    Off_Screen screen;
};

typedef DeviceSession DeviceShape;
typedef DeviceSession DeviceText;
typedef DeviceSession DeviceFont;

static const char NOTHING[] = "......\n......\n......\n......\n......\n";
static const char ALL[]     = "######\n######\n######\n######\n######\n";

// --- session ---------------------------------------------------------------

TEST_F (DeviceSession, HasItsWindowUntilItEnds) {
    EXPECT_FALSE (Device::Is_Open ());
    EXPECT_EQ (nullptr, Device::Current_Window ());
    EXPECT_EQ (nullptr, Device::Current_Drawing ());
    ASSERT_EQ (1, Begin ());
    EXPECT_TRUE (Device::Is_Open ());
    EXPECT_EQ (screen.window, Device::Current_Window ());
    EXPECT_NE (nullptr, Device::Current_Drawing ());
    Device::End ();
    EXPECT_FALSE (Device::Is_Open ());
    EXPECT_EQ (nullptr, Device::Current_Window ());
    EXPECT_EQ (nullptr, Device::Current_Drawing ());
}

TEST_F (DeviceSession, IsNotBegunWithoutAWindow) {
    Log_Recorder log;
    EXPECT_EQ (0, Device::Begin (nullptr, nullptr, "test"));
    EXPECT_FALSE (Device::Is_Open ());
    EXPECT_EQ ("", log.All ());
    EXPECT_EQ (1, Begin ()); // The lock was left.
}

TEST_F (DeviceSession, InsideASessionIsRefusedAndReportedOnce) {
    Log_Recorder log;
    Off_Screen   other (2, 2);
    ASSERT_EQ (1, Begin ());
    EXPECT_EQ (0, Device::Begin (other.window, nullptr, "Inner::Draw"));
    EXPECT_EQ ("7: WARNING: in Device::Begin()\n"
               "7: A drawing session is open already, no other is begun in it (caller:Inner::Draw)\n",
               log.All ());
    EXPECT_EQ (0, Begin ());
    EXPECT_EQ (2u, log.lines.size ());
    EXPECT_EQ (screen.window, Device::Current_Window ());
    Device::FillRect (0, -1, 6, 4);
    EXPECT_EQ (ALL, End ());
    EXPECT_FALSE (Device::Is_Open ()); // One End was enough.
}

TEST_F (DeviceSession, WithoutACallersNameIsReportedToo) {
    Log_Recorder log;
    Begin ();
    EXPECT_EQ (0, Device::Begin (screen.window, nullptr, nullptr));
    EXPECT_TRUE (log.Contains ("(caller:no name)"));
}

TEST_F (DeviceSession, ThatIsNotOpenIsEndedWithOneReport) {
    Log_Recorder log;
    Device::End ();
    EXPECT_EQ ("7: WARNING: in Device::End()\n7: No drawing session is open, none is ended\n", log.All ());
    Device::End ();
    EXPECT_EQ (2u, log.lines.size ());
}

TEST_F (DeviceSession, KeepsOtherThreadsWaiting) {
    Off_Screen        other (2, 2);
    std::atomic<bool> inside {false};
    ASSERT_EQ (1, Begin ());
    std::thread thread ([&] {
        EXPECT_FALSE (Device::Is_Open ());
        EXPECT_EQ (nullptr, Device::Current_Window ());
        EXPECT_EQ (1, Device::Begin (other.window, nullptr, "thread"));
        inside = true;
        Device::End ();
    });
    std::this_thread::sleep_for (std::chrono::milliseconds (1200)); // Longer than one wait for the lock.
    EXPECT_FALSE (inside);
    Device::End ();
    thread.join ();
    EXPECT_TRUE (inside);
}

TEST_F (DeviceSession, IsEndedByItsOwnThreadOnly) {
    Log_Recorder log;
    ASSERT_EQ (1, Begin ());
    std::thread ([] { Device::End (); }).join ();
    EXPECT_TRUE (log.Contains ("No drawing session is open"));
    EXPECT_TRUE (Device::Is_Open ());
}

TEST_F (DeviceSession, OfAThreadThatHasEndedIsEndedForIt) {
    Log_Recorder  log;
    Call_Recorder calls;
    for (int i = 0; i < 20; i++) // Often enough for a system that gives the number of a thread to the next one.
        std::thread ([&] { EXPECT_EQ (1, Begin ()); }).join ();
    EXPECT_FALSE (Device::Is_Open ());
    ASSERT_EQ (1, Begin ());
    EXPECT_EQ ("7: WARNING: in Device::Begin()\n"
               "7: A thread has ended in its drawing session, which is ended for it\n",
               log.All ());
    EXPECT_EQ (21, calls.Count (Device::CALL_BEGIN));
    EXPECT_EQ (20, calls.Count (Device::CALL_END));
    Device::FillRect (0, -1, 6, 4);
    EXPECT_EQ (ALL, End ());
    EXPECT_EQ (1, Begin ());
}

TEST_F (DeviceSession, OfAThreadAndItsWindowThatAreGoneLeavesOtherWindowsAlone) {
    Log_Recorder log;
    {
        Off_Screen gone (2, 2);
        std::thread ([&] { EXPECT_EQ (1, Device::Begin (gone.window, nullptr, "thread")); }).join ();
    }
    ASSERT_EQ (1, Begin ());
    EXPECT_EQ (screen.window, Device::Current_Window ());
    Device::FillRect (0, -1, 6, 4);
    EXPECT_EQ (ALL, End ());
}

TEST_F (DeviceSession, ExcludesManyThreads) {
    std::atomic<int>         inside {0}, overlaps {0}, sessions {0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; i++)
        threads.emplace_back ([&] {
            for (int k = 0; k < 50; k++) {
                if (!Begin ()) continue;
                overlaps += inside++ != 0;
                sessions++;
                std::this_thread::yield ();
                inside--;
                Device::End ();
            }
        });
    for (std::thread &thread : threads) thread.join ();
    EXPECT_EQ (0, overlaps);
    EXPECT_EQ (400, sessions);
}

TEST_F (DeviceSession, StartsAtTheOriginWithTheWholeWindow) {
    Begin ();
    Device::MoveTo (3, 3);
    Device::ClipTo (0, 0, 1, 1);
    Device::End ();
    Begin ();
    Device::LineTo (3, 0, 0);
    Device::FillRect (5, 3, 6, 4);
    EXPECT_EQ (".....#\n......\n......\n......\n###...\n", End ());
}

TEST_F (DeviceSession, KeepsTheColourForTheNext) {
    Begin ();
    Device::Colour_Set (RED);
    Device::End ();
    EXPECT_EQ (RED, Device::Colour_Get ());
    Begin ();
    Device::FillRect (0, 3, 1, 4);
    EXPECT_EQ ("r.....\n......\n......\n......\n......\n", End ());
}

TEST_F (DeviceSession, IsNeededToDraw) {
    static const uint8_t PIXEL[4] = {};
    Call_Recorder        calls;
    Drawing_Font_Metrics metrics = {1, 1, 1};
    Device::FillRect (0, 0, 6, 5);
    Device::MoveTo (0, 0);
    Device::LineTo (5, 0, 1);
    Device::Rectangle (0, 0, 5, 4);
    Device::ClipTo (0, 0, 1, 1);
    Device::ClipToClient ();
    Device::Draw_Image (0, 0, PIXEL, 0, 0, 1, 1, 1, 0);
    Device::Draw_Run (nullptr, 0, 0, "A", 1, BLACK);
    EXPECT_EQ (0, Device::Run_Width (nullptr, "A", 1));
    Device::Font_Measure (nullptr, &metrics);
    EXPECT_EQ (0, metrics.height);
    EXPECT_EQ (0, metrics.descent);
    EXPECT_EQ (0, metrics.average_width);
    EXPECT_TRUE (calls.calls.empty ());
    EXPECT_EQ (NOTHING, screen.Rows (LETTERS));
}

// --- shapes ----------------------------------------------------------------

TEST_F (DeviceShape, FillReachesFromTheLeftAndTheUpperLine) {
    Begin ();
    Device::FillRect (1, 1, 4, 3);
    EXPECT_EQ ("......\n.###..\n.###..\n......\n......\n", End ());
}

TEST_F (DeviceShape, FillOfNothingDrawsNothing) {
    Call_Recorder calls;
    Begin ();
    Device::FillRect (3, 1, 3, 4);
    Device::FillRect (1, 2, 4, 2);
    Device::FillRect (4, 1, 1, 3);
    Device::FillRect (1, 3, 4, 1);
    Device::FillRect (INT_MAX, INT_MAX, INT_MIN, INT_MIN);
    EXPECT_EQ (NOTHING, End ());
    EXPECT_EQ (0, calls.Count (Device::CALL_FILL));
}

TEST_F (DeviceShape, FillTakesAnyCoordinates) {
    Begin ();
    Device::FillRect (INT_MIN, INT_MIN, INT_MAX, INT_MAX);
    EXPECT_EQ (ALL, End ());
}

TEST_F (DeviceShape, ClipHasTheRuleOfTheFill) {
    Begin ();
    Device::ClipTo (1, 1, 3, 2);
    Device::FillRect (-1, -1, 6, 5);
    EXPECT_EQ ("......\n.###..\n.###..\n......\n......\n", End ());
}

TEST_F (DeviceShape, ClipReplacesTheLastOne) {
    Begin ();
    Device::ClipTo (0, 0, 1, 1);
    Device::ClipTo (4, 2, 2, 2);
    Device::FillRect (-1, -1, 6, 5);
    Device::ClipToClient ();
    Device::FillRect (0, -1, 1, 0);
    EXPECT_EQ ("....##\n....##\n......\n......\n#.....\n", End ());
}

TEST_F (DeviceShape, EmptyClipLetsNothingThrough) {
    Begin ();
    const int sizes[][2] = {{0, 3}, {3, 0}, {-2, 3}, {3, -2}, {INT_MIN, INT_MIN}};
    for (auto &size : sizes) {
        Device::ClipTo (3, 3, size[0], size[1]);
        Device::FillRect (-1, -1, 6, 5);
        Device::MoveTo (0, 3);
        Device::LineTo (6, 3, 0);
    }
    EXPECT_EQ (NOTHING, End ());
}

TEST_F (DeviceShape, ClipTakesAnyCoordinates) {
    Begin ();
    Device::ClipTo (INT_MIN, INT_MIN, INT_MAX, INT_MAX);
    Device::ClipTo (INT_MAX, INT_MAX, INT_MAX, INT_MAX);
    Device::FillRect (-1, -1, 6, 5);
    Device::ClipTo (-100000000, -100000000, INT_MAX, INT_MAX);
    Device::FillRect (0, 3, 1, 4);
    EXPECT_EQ ("#.....\n......\n......\n......\n......\n", End ());
}

TEST_F (DeviceShape, LineLeavesItsEndOutAndGoesOnFromThere) {
    Begin ();
    Device::MoveTo (1, 1);
    Device::LineTo (4, 1, 0);
    Device::Colour_Set (RED);
    Device::LineTo (4, 4, 1);
    EXPECT_EQ ("......\n....r.\n....r.\n.###r.\n......\n", End ());
}

TEST_F (DeviceShape, LineIsAsWideAsAsked) {
    Begin ();
    Device::MoveTo (0, 2);
    Device::LineTo (6, 2, 3);
    EXPECT_EQ ("......\n######\n######\n######\n......\n", End ());
}

TEST_F (DeviceShape, LineTakesAnyCoordinatesAndWidth) {
    Begin ();
    Device::MoveTo (INT_MIN, 3);
    Device::LineTo (INT_MAX, 3, INT_MIN);
    EXPECT_EQ ("......\n######\n......\n......\n......\n", End ());
    Begin ();
    Device::MoveTo (-1, 2);
    Device::LineTo (7, 2, INT_MAX);
    EXPECT_EQ (ALL, End ());
}

TEST_F (DeviceShape, RectangleHasFourLinesWithTheirCorners) {
    Begin ();
    Device::Rectangle (1, 0, 4, 3);
    EXPECT_EQ ("......\n.####.\n.#..#.\n.#..#.\n.####.\n", End ());
}

TEST_F (DeviceShape, RectangleMayBeALine) {
    Begin ();
    Device::Rectangle (1, 1, 1, 3);
    Device::Rectangle (3, 2, 5, 2);
    EXPECT_EQ ("......\n.#....\n.#.###\n.#....\n......\n", End ());
}

// --- images ----------------------------------------------------------------

// Three by two pixels: red, black, blue; blue, red, black; alpha 255, 128, 0.
static const uint8_t IMAGE[] = {0, 0, 255, 255, 0, 0, 0, 128, 255, 0, 0, 0, 255, 0, 0, 255, 0, 0, 255, 128, 0, 0, 0, 0};

class DeviceImage : public DeviceSession {
protected:
    std::string Draw (int x, int y, int source_x, int source_y, int w, int h, int row_pixels = 3) {
        Begin ();
        Device::Draw_Image (x, y, IMAGE, source_x, source_y, w, h, row_pixels, 0);
        return End ();
    }
};

TEST_F (DeviceImage, IsCopiedWithItsTopRowHighest) {
    EXPECT_EQ ("......\n......\n.r#b..\n.br#..\n......\n", Draw (1, 1, 0, 0, 3, 2));
}

TEST_F (DeviceImage, IsCopiedInPart) {
    EXPECT_EQ ("......\n......\n......\n......\nr#....\n", Draw (0, 0, 1, 1, 2, 1));
}

TEST_F (DeviceImage, EndsWhereItsRowsEnd) {
    EXPECT_EQ ("......\n......\n......\n.b....\n.#....\n", Draw (1, 0, 2, 0, 3, 2));
}

TEST_F (DeviceImage, StartsInItsPlaceWhenTheSourceStartsBefore) {
    EXPECT_EQ ("......\n......\n......\n..r#..\n..br..\n", Draw (1, 0, -1, -2, 3, 4));
}

TEST_F (DeviceImage, IsCutByTheWindow) {
    EXPECT_EQ (".....b\n......\n......\n......\n......\n", Draw (5, 4, 0, 0, 3, 2));
}

TEST_F (DeviceImage, OfImpossibleSizesIsNotDrawn) {
    Call_Recorder calls;
    for (int source_x : {INT_MIN, -3, 3, INT_MAX}) EXPECT_EQ (NOTHING, Draw (0, 0, source_x, 0, 3, 2));
    for (int source_y : {INT_MIN, -2, 65536, INT_MAX}) EXPECT_EQ (NOTHING, Draw (0, 0, 0, source_y, 3, 2));
    for (int size : {INT_MIN, -1, 0, 65536, INT_MAX}) {
        EXPECT_EQ (NOTHING, Draw (0, 0, 0, 0, size, 2));
        EXPECT_EQ (NOTHING, Draw (0, 0, 0, 0, 3, size));
        EXPECT_EQ (NOTHING, Draw (0, 0, 0, 0, 3, 2, size));
    }
    EXPECT_EQ (NOTHING, Draw (0, 0, -2, 0, 3, 2, -1)); // Columns before the start of rows that have none.
    Begin ();
    Device::Draw_Image (0, 0, nullptr, 0, 0, 3, 2, 3, 0);
    EXPECT_EQ (NOTHING, End ());
    EXPECT_EQ (0, calls.Count (Device::CALL_IMAGE));
}

TEST_F (DeviceImage, MayBeAnywhere) {
    for (int place : {INT_MIN, -65536, -3, 6, 65536, INT_MAX}) {
        EXPECT_EQ (NOTHING, Draw (place, 0, 0, 0, 3, 2));
        EXPECT_EQ (NOTHING, Draw (0, place, 0, 0, 3, 2));
    }
}

static uint32_t Blended (const Off_Screen &screen, uint8_t blue, uint8_t green, uint8_t red, uint8_t alpha,
                         uint32_t background) {
    const uint8_t pixel[4] = {blue, green, red, alpha};
    Device::Begin (screen.window, nullptr, "test");
    Device::Draw_Image (0, 0, pixel, 0, 0, 1, 1, 1, background);
    Device::End ();
    return screen.Pixel (0, 0);
}

TEST_F (DeviceImage, IsBlendedByItsAlpha) {
    const uint32_t background = Drawing_Colour (100, 50, 25);
    EXPECT_EQ (Drawing_Colour (149, 74, 37), Blended (screen, 50, 100, 200, 128, background));
    EXPECT_EQ (Drawing_Colour (199, 99, 49), Blended (screen, 50, 100, 200, 255, background));
    EXPECT_EQ (Drawing_Colour (99, 49, 24), Blended (screen, 50, 100, 200, 0, background));
    EXPECT_EQ (Drawing_Colour (254, 254, 254), Blended (screen, 255, 255, 255, 77, WHITE));
}

TEST_F (DeviceImage, IsCopiedOnBackgroundZeroAndBlendedOnOpaqueBlack) {
    EXPECT_EQ (Drawing_Colour (200, 100, 50), Blended (screen, 50, 100, 200, 128, 0));
    EXPECT_EQ (Drawing_Colour (100, 50, 25), Blended (screen, 50, 100, 200, 128, 0xFF000000));
}

TEST_F (DeviceImage, BlendsThePartThatIsDrawn) {
    Begin ();
    Device::Draw_Image (0, 0, IMAGE, 1, 0, 3, 2, 3, WHITE);
    Device::End ();
    EXPECT_EQ (Drawing_Colour (126, 126, 126), screen.Pixel (0, 1));
    EXPECT_EQ (Drawing_Colour (254, 254, 254), screen.Pixel (1, 1));
    EXPECT_EQ (Drawing_Colour (254, 126, 126), screen.Pixel (0, 0));
    EXPECT_EQ (WHITE, screen.Pixel (2, 1));
}

TEST_F (DeviceImage, WithoutMemoryIsReportedAndNotDrawn) {
    Log_Recorder  log (1);
    Call_Recorder calls;
    const long    live = Memory_Live ();
    Begin ();
    Memory_Fail_At (1);
    Device::Draw_Image (0, 0, IMAGE, 0, 0, 3, 2, 3, BLUE);
    EXPECT_EQ (1, Memory_Failed ());
    Memory_Fail_At (0);
    EXPECT_EQ ("11: draw_image() failed in new\n", log.All ());
    EXPECT_EQ (0, calls.Count (Device::CALL_IMAGE));
    EXPECT_EQ (NOTHING, End ());
    EXPECT_EQ (live, Memory_Live ());
    Draw (0, 0, 0, 0, 3, 2);
    EXPECT_EQ (RED, screen.Pixel (0, 1));
}

TEST_F (DeviceImage, BlendedLeavesNoMemoryBehind) {
    const long live = Memory_Live ();
    Blended (screen, 1, 2, 3, 4, WHITE);
    EXPECT_EQ (live, Memory_Live ());
}

// --- texts -----------------------------------------------------------------

TEST_F (DeviceText, IsMeasuredInASession) {
    Begin ();
    Drawing_Font_Metrics metrics;
    Device::Font_Measure (nullptr, &metrics);
    EXPECT_GT (metrics.height, 0);
    EXPECT_GT (metrics.average_width, 0);
    EXPECT_GT (Device::Run_Width (nullptr, "HH", 2), Device::Run_Width (nullptr, "HH", 1));
    EXPECT_EQ (0, Device::Run_Width (nullptr, "HH", 0));
    EXPECT_EQ (0, Device::Run_Width (nullptr, "HH", -1));
    EXPECT_EQ (0, Device::Run_Width (nullptr, nullptr, 1));
}

TEST_F (DeviceText, IsDrawnInItsColour) {
    Off_Screen    wide (120, 60);
    Drawing_Font  font = Y_Create_Font (wide.window, "Arial", "bold", nullptr, 30); // Its stems are wider than a pixel.
    Call_Recorder calls;
    Device::Colour_Set (BLUE);
    Device::Begin (wide.window, nullptr, "test");
    Device::Draw_Run (font, 4, 4, "HHHH", 4, RED);
    Device::Draw_Run (nullptr, 4, 4, "HHHH", 0, BLACK);
    Device::Draw_Run (nullptr, 4, 4, nullptr, 4, BLACK);
    Device::Draw_Run (font, INT_MAX, INT_MIN, "HHHH", 4, RED);
    Device::End ();
    Drawing_Font_Free (font);
    EXPECT_GT (wide.Count (RED), 0);
    EXPECT_EQ (0, wide.Count (BLUE));
    EXPECT_EQ (2, calls.Count (Device::CALL_TEXT));
    EXPECT_EQ (BLUE, Device::Colour_Get ());
}

// --- what reached the seam -------------------------------------------------

TEST_F (DeviceSession, TellsWhatItDoes) {
    Drawing_Font font = Y_Create_Font (screen.window, nullptr, nullptr, nullptr, 10);
    {
        Call_Recorder calls;
        Begin ();
        Device::Colour_Set (RED);
        Device::ClipTo (1, 2, 3, 4);
        Device::ClipToClient ();
        Device::FillRect (0, 1, 2, 3);
        Device::MoveTo (1, 2);
        Device::LineTo (5, 4, 1);
        Device::Draw_Image (1, 2, IMAGE, -1, 0, 3, 2, 3, WHITE);
        Device::Draw_Run (font, 2, 3, "text", 2, BLUE);
        Device::End ();
        const int expected[][5] = {
            {Device::CALL_BEGIN, 0, 0, 0, 0}, {Device::CALL_CLIP, 1, 2, 3, 4}, {Device::CALL_CLIP_ALL, 0, 0, 0, 0},
            {Device::CALL_FILL, 0, 1, 2, 3},  {Device::CALL_LINE, 1, 2, 5, 4}, {Device::CALL_IMAGE, 2, 2, 2, 2},
            {Device::CALL_TEXT, 2, 3, 0, 0},  {Device::CALL_END, 0, 0, 0, 0},
        };
        ASSERT_EQ (8u, calls.calls.size ());
        for (size_t i = 0; i < 8; i++) {
            const Call_Recorder::Call &call = calls.calls[i];
            EXPECT_EQ (std::vector<int> (expected[i], expected[i] + 5),
                       (std::vector<int> {call.kind, call.x, call.y, call.w, call.h}));
        }
        EXPECT_EQ (RED, calls.calls[3].colour);
        EXPECT_EQ (RED, calls.calls[4].colour);
        EXPECT_EQ (WHITE, calls.calls[5].colour);
        EXPECT_EQ (BLUE, calls.calls[6].colour);
        EXPECT_EQ (font, calls.calls[6].font);
        EXPECT_EQ ("te", calls.calls[6].text);
    }
    Begin ();
    EXPECT_NO_FATAL_FAILURE (Device::FillRect (0, 0, 1, 1)); // Nobody listens any more.
    Device::End ();
    Drawing_Font_Free (font);
}

// --- pointer and keys ------------------------------------------------------

TEST (DevicePointer, IsKept) {
    int x = 0, y = 0;
    Device::Pointer_Set (-7, 12);
    Device::Pointer_Get (&x, &y);
    EXPECT_EQ (-7, x);
    EXPECT_EQ (12, y);
}

static void Send (Window window, Window_Event_Kind kind, int button, int modifiers) {
    Window_Event event = {};
    event.kind         = kind;
    event.button       = button;
    event.modifiers    = modifiers;
    Window_Send (window, &event);
}

TEST_F (DeviceSession, KnowsTheButtonsByTheirNumbers) {
    for (int button : {1, 2, 4}) {
        Send (screen.window, WINDOW_BUTTON_DOWN, button, 0);
        for (int asked = -1; asked <= 8; asked++) EXPECT_EQ (asked == button, Device::ButtonDown (asked)) << asked;
        Send (screen.window, WINDOW_BUTTON_UP, button, 0);
        EXPECT_EQ (0, Device::ButtonDown (button));
    }
}

TEST_F (DeviceSession, KnowsTheModifiersByTheirKeys) {
    const std::map<int, int> keys = {{16, WINDOW_SHIFT},    {160, WINDOW_SHIFT},  {161, WINDOW_SHIFT},
                                     {64, WINDOW_SHIFT},    {17, WINDOW_CONTROL}, {162, WINDOW_CONTROL},
                                     {163, WINDOW_CONTROL}, {32, WINDOW_CONTROL}, {18, WINDOW_ALT},
                                     {164, WINDOW_ALT},     {165, WINDOW_ALT}};
    for (int modifier :
         {0, static_cast<int> (WINDOW_SHIFT), static_cast<int> (WINDOW_CONTROL), static_cast<int> (WINDOW_ALT)}) {
        Send (screen.window, WINDOW_MOUSE_MOVE, 0, modifier);
        for (int key = -1; key <= 256; key++) {
            auto found = keys.find (key);
            EXPECT_EQ (modifier && found != keys.end () && found->second == modifier, Device::ModifierDown (key))
                << key;
        }
    }
    Send (screen.window, WINDOW_MOUSE_MOVE, 0, 0);
}

// --- regions ---------------------------------------------------------------

TEST (DeviceRegion, HoldsARectangle) {
    const long      live   = Memory_Live ();
    Device::Region *region = Device::Region_Create (nullptr, 1, 2, 3, 4);
    ASSERT_NE (nullptr, region);
    EXPECT_EQ (1, region->x);
    EXPECT_EQ (2, region->y);
    EXPECT_EQ (3, region->w);
    EXPECT_EQ (4, region->h);
    Device::Region_Free (region);
    Device::Region_Free (nullptr);
    EXPECT_EQ (live, Memory_Live ());
}

TEST (DeviceRegion, WithoutMemoryIsNone) {
    Log_Recorder log;
    Memory_Fail_At (1);
    EXPECT_EQ (nullptr, Device::Region_Create (nullptr, 1, 2, 3, 4));
    Memory_Fail_At (0);
    EXPECT_TRUE (log.Contains ("memory error in malloc (var=region, dim=1x16)"));
    EXPECT_TRUE (log.Contains (" of device "));
}

// --- fonts -----------------------------------------------------------------

struct Asked_Font {
    std::string face;
    int         height, bold, italic, count;
};

static Asked_Font asked;

static Drawing_Font No_Font (const char *face, int height, int bold, int italic) {
    asked = {face, height, bold, italic, asked.count + 1};
    return nullptr;
}

class DeviceFontRequest : public DeviceSession {
protected:
    DeviceFontRequest () {
        asked = {};
        Device::Font_Maker_Set (No_Font);
    }
    ~DeviceFontRequest () { Device::Font_Maker_Set (nullptr); }

    const Asked_Font &Ask (const char *face, const char *weight, const char *style, int size) {
        EXPECT_EQ (nullptr, Y_Create_Font (screen.window, face, weight, style, size));
        return asked;
    }

    int Pixels_Per_Inch () {
        Begin ();
        int result = Drawing_Pixels_Per_Inch (Device::Current_Drawing ());
        Device::End ();
        return result;
    }
};

TEST (DeviceFontHeight, FollowsPointsAndPixels) {
    EXPECT_EQ (13, Device::Font_Height (10, 96));
    EXPECT_EQ (16, Device::Font_Height (12, 96));
    EXPECT_EQ (16, Device::Font_Height (0, 96));
    EXPECT_EQ (16, Device::Font_Height (INT_MIN, 96));
    EXPECT_EQ (1, Device::Font_Height (1, 96));
    EXPECT_EQ (16, Device::Font_Height (10, 120));
    EXPECT_EQ (20, Device::Font_Height (10, 144));
    EXPECT_EQ (26, Device::Font_Height (10, 191));
    EXPECT_EQ (13, Device::Font_Height (10, 192));
    EXPECT_EQ (10, Device::Font_Height (10, 72));
    EXPECT_EQ (0, Device::Font_Height (10, 0));
    EXPECT_EQ (2666, Device::Font_Height (INT_MAX, 96));
    EXPECT_EQ (2670, Device::Font_Height (INT_MAX, INT_MAX));
}

TEST_F (DeviceFontRequest, WithNothingMakesNone) {
    Log_Recorder log;
    Ask (nullptr, nullptr, nullptr, 0);
    EXPECT_EQ (0, asked.count);
    EXPECT_EQ ("", log.All ());
}

TEST_F (DeviceFontRequest, WithAnyOfFourMakesOne) {
    Ask ("Courier", nullptr, nullptr, 0);
    Ask (nullptr, "medium", nullptr, 0);
    Ask (nullptr, nullptr, "r", 0);
    Ask (nullptr, nullptr, nullptr, 1);
    EXPECT_EQ (4, asked.count);
}

TEST_F (DeviceFontRequest, NamesFaceAndHeight) {
    EXPECT_EQ ("Courier", Ask ("Courier", nullptr, nullptr, 10).face);
    EXPECT_EQ (Device::Font_Height (10, Pixels_Per_Inch ()), asked.height);
    EXPECT_EQ ("Arial", Ask (nullptr, nullptr, nullptr, 10).face);
    EXPECT_EQ ("Arial", Ask ("", nullptr, nullptr, 10).face);
    Ask ("Courier", nullptr, nullptr, 0);
    EXPECT_EQ (Device::Font_Height (12, Pixels_Per_Inch ()), asked.height);
}

TEST_F (DeviceFontRequest, IsBoldByTheExactWord) {
    EXPECT_EQ (1, Ask (nullptr, "bold", nullptr, 10).bold);
    for (const char *weight : {"Bold", "bolder", "medium", "", " bold"})
        EXPECT_EQ (0, Ask (nullptr, weight, nullptr, 10).bold);
    EXPECT_EQ (0, Ask (nullptr, nullptr, "bold", 10).bold);
}

TEST_F (DeviceFontRequest, IsItalicByItsLetter) {
    EXPECT_EQ (1, Ask (nullptr, nullptr, "i", 10).italic);
    EXPECT_EQ (1, Ask (nullptr, nullptr, "o", 10).italic);
    for (const char *style : {"r", "I", "oblique", ""}) EXPECT_EQ (0, Ask (nullptr, nullptr, style, 10).italic);
}

TEST_F (DeviceFontRequest, ThatFailsIsReportedOnce) {
    Log_Recorder log;
    Ask ("Courier", "bold", nullptr, 10);
    EXPECT_EQ ("7: WARNING: in Y_Create_Font()\n7: Unable to allocate font:(name:Courier height:" +
                   std::to_string (asked.height) + " weight:700 )\n",
               log.All ());
    Ask ("Arial", nullptr, nullptr, 12);
    EXPECT_EQ (2u, log.lines.size ());
}

TEST_F (DeviceFontRequest, ThatFailsNamesTheDefaults) {
    Log_Recorder log;
    Ask (nullptr, "medium", nullptr, 0);
    EXPECT_TRUE (log.Contains ("(name:Arial height:" + std::to_string (asked.height) + " weight:0 )"));
}

TEST_F (DeviceFontRequest, MayComeInsideASession) {
    Log_Recorder log;
    Begin ();
    Y_Create_Font (screen.window, "Courier", nullptr, nullptr, 10);
    EXPECT_EQ (1, asked.count);
    EXPECT_FALSE (log.Contains ("Device::Begin"));
    EXPECT_TRUE (Device::Is_Open ());
}

TEST_F (DeviceFontRequest, WithoutAWindowIsForAPlainScreen) {
    Y_Create_Font (nullptr, "Courier", nullptr, nullptr, 10);
    EXPECT_EQ (13, asked.height);
}

TEST_F (DeviceFont, IsMadeByTheBackEnd) {
    Drawing_Font_Metrics small, large;
    Drawing_Font         fonts[] = {Y_Create_Font (screen.window, "Arial", nullptr, nullptr, 10),
                                    Y_Create_Font (screen.window, "Courier", "bold", "i", 20)};
    ASSERT_NE (nullptr, fonts[0]);
    ASSERT_NE (nullptr, fonts[1]);
    Begin ();
    Device::Font_Measure (fonts[0], &small);
    Device::Font_Measure (fonts[1], &large);
    Device::End ();
    EXPECT_GE (small.height, 13);
    EXPECT_GT (large.height, small.height);
    for (Drawing_Font font : fonts) Drawing_Font_Free (font);
}
