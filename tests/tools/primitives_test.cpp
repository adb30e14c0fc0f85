#include "tools/primitives.h"

#include <limits.h>

#include <functional>

#include <gtest/gtest.h>

#include "tests/support/log_recorder.h"
#include "tests/support/off_screen.h"

static const uint32_t WHITE = 0xFFFFFF, BLACK = 0;
static const uint32_t OWN       = Drawing_Colour (100, 150, 200);
static const uint32_t HIGHLIGHT = Drawing_Colour (230, 100, 100);
static const uint32_t OUTLINE   = Drawing_Colour (64, 64, 230);

static const std::map<uint32_t, char> LETTERS = {
    {WHITE, '.'}, {BLACK, '#'}, {OWN, 'o'}, {HIGHLIGHT, 'h'}, {OUTLINE, 'b'}};

// A widget at (2, 2), 8 by 5, in a window of 14 by 10.
class Primitive : public testing::Test {
protected:
    Primitive () : screen (14, 10) {
        Device::Reports_Reset ();
        widget.name      = "panel";
        widget.x         = 2;
        widget.y         = 2;
        widget.w         = 8;
        widget.h         = 5;
        widget.colour[0] = 100;
        widget.colour[1] = 150;
        widget.colour[2] = 200;
        Widget_Init (&widget, screen.window, "Test::Init");
    }
    ~Primitive () {
        EXPECT_FALSE (Device::Is_Open ());
        Widget_Exit (&widget);
    }

    std::string Rows () const { return screen.Rows (LETTERS); }

    Off_Screen screen;
    Widget     widget = {};
};

typedef Primitive PrimitiveFill;
typedef Primitive PrimitiveFrame;

static const char NOTHING[] = "..............\n..............\n..............\n..............\n..............\n"
                              "..............\n..............\n..............\n..............\n..............\n";

// --- what all operations have in common ------------------------------------

typedef std::function<void (Widget *widget)> Operation;

static const std::vector<std::pair<const char *, Operation>> OPERATIONS = {
    {"Tools::Clear", [] (Widget *widget) { Tools::Clear (widget); }},
    {"Tools::Fill", [] (Widget *widget) { Tools::Fill (widget, 0, 2, 10, 2, 7); }},
    {"Tools::Fill_Blue", [] (Widget *widget) { Tools::Fill_Blue (widget, 2, 10, 2, 7); }},
    {"Tools::Fill_Grey", [] (Widget *widget) { Tools::Fill_Grey (widget, 2, 10, 2, 7); }},
    {"Tools::Fill_Red", [] (Widget *widget) { Tools::Fill_Red (widget, 2, 10, 2, 7); }},
    {"Tools::Fill_Yellow", [] (Widget *widget) { Tools::Fill_Yellow (widget, 2, 10, 2, 7); }},
    {"Tools::Fill_Green", [] (Widget *widget) { Tools::Fill_Green (widget, 2, 10, 2, 7); }},
    {"Tools::Fill_Select", [] (Widget *widget) { Tools::Fill_Select (widget, 0, nullptr, 0, 0, 2, 10, 2, 7); }},
    {"Tools::Cadre_Outline", [] (Widget *widget) { Tools::Cadre_Outline (widget, 2, 10, 2, 7); }},
    {"Tools::Cadre", [] (Widget *widget) { Tools::Cadre (widget, 0, 0, 2, 2, 10, 2, 7); }},
    {"Tools::Arrow", [] (Widget *widget) { Tools::Arrow (widget, 0, 0, 2, 10, 2, 7); }},
    {"Tools::Text", [] (Widget *widget) { Tools::Text (widget, nullptr, "H", 0, 2, 2, 8, 5, 0); }},
};

TEST_F (Primitive, WarnsOnceOfAWidgetNeverInitialisedAndDrawsIt) {
    for (const auto &operation : OPERATIONS) {
        Log_Recorder  log (1);
        Call_Recorder calls;
        widget.validity = 0;
        operation.second (&widget);
        EXPECT_TRUE (log.Has (LOG_TRACE1, std::string ("   type: ") + operation.first + "   name: panel\n"));
        EXPECT_EQ (1, calls.Count (Device::CALL_BEGIN)) << operation.first;
        EXPECT_EQ (1, calls.Count (Device::CALL_END)) << operation.first;
        EXPECT_GT (calls.calls.size (), 2u) << operation.first;
        operation.second (&widget);
        EXPECT_EQ (3u, log.lines.size ()) << operation.first;
    }
}

TEST_F (Primitive, StaysInTheWidgetsClip) {
    widget.clip = {20, 20, 5, 5};
    for (const auto &operation : OPERATIONS) {
        operation.second (&widget);
        EXPECT_EQ (NOTHING, Rows ()) << operation.first;
    }
    widget.clip = {};
    Tools::Fill (&widget, 0, -100, 100, -100, 100);
    EXPECT_EQ (140, screen.Count (OWN)); // The clip was taken away.
}

TEST_F (Primitive, InASessionIsRefused) {
    for (const auto &operation : OPERATIONS) {
        Log_Recorder log;
        Device::Reports_Reset ();
        Device::Begin (screen.window, nullptr, "test");
        operation.second (&widget);
        Device::End ();
        EXPECT_TRUE (log.Contains (std::string ("(caller:") + operation.first + ")")) << operation.first;
    }
    EXPECT_EQ (NOTHING, Rows ());
}

TEST_F (Primitive, WithoutAWindowDrawsNothing) {
    widget.window = nullptr;
    for (const auto &operation : OPERATIONS) operation.second (&widget);
    EXPECT_EQ (NOTHING, Rows ());
}

TEST_F (Primitive, TakesAnyCoordinates) {
    const int extremes[] = {INT_MIN, -32768, 0, 32767, INT_MAX};
    for (int low : extremes)
        for (int high : extremes) {
            Tools::Fill (&widget, 0, low, high, low, high);
            Tools::Fill_Select (&widget, 1, nullptr, 0, low, low, high, high, low);
            Tools::Cadre_Outline (&widget, low, high, low, high);
            Tools::Cadre (&widget, 0, 0, 2, low, high, low, high);
            for (int direction = 0; direction < 4; direction++)
                Tools::Arrow (&widget, direction, 0, low, high, low, high);
            Tools::Text (&widget, nullptr, "H\tH", 0, low, high, high, low, high);
            Tools::Text (&widget, nullptr, "HH", WIDGET_VERTICAL | WIDGET_ALIGN_LEFT, low, high, high, low, high);
            Device::Begin (screen.window, nullptr, "test");
            EXPECT_NE (0, Tools::DrawText (nullptr, low, high, "a\tb", BLACK));
            Device::End ();
        }
    Tools::Fill (&widget, 0, INT_MIN, INT_MAX, INT_MIN, INT_MAX);
    EXPECT_EQ (140, screen.Count (OWN));
}

// --- fills -----------------------------------------------------------------

TEST_F (PrimitiveFill, ClearCoversTheFrameAndNothingElse) {
    Tools::Cadre (&widget, 0, 0, 0, 2, 10, 2, 7);
    Tools::Clear (&widget);
    EXPECT_EQ ("..............\n..............\n..ooooooooo...\n..ooooooooo...\n..ooooooooo...\n"
               "..ooooooooo...\n..ooooooooo...\n..ooooooooo...\n..............\n..............\n",
               Rows ());
}

TEST_F (PrimitiveFill, ClearHidesInactiveWidgetsToo) {
    widget.state = WIDGET_INACTIVE;
    Tools::Clear (&widget);
    EXPECT_EQ (54, screen.Count (OWN));
}

TEST_F (PrimitiveFill, ClearOfNoWidthDrawsNothingAndWarnsOnce) {
    Log_Recorder  log (1);
    Call_Recorder calls;
    widget.validity = 0;
    for (int16_t side : {int16_t (0), int16_t (-1), int16_t (-32768)}) {
        widget.w = side;
        widget.h = 5;
        Tools::Clear (&widget);
        widget.w = 8;
        widget.h = side;
        Tools::Clear (&widget);
    }
    EXPECT_EQ (3u, log.lines.size ());
    EXPECT_TRUE (calls.calls.empty ());
    EXPECT_EQ (NOTHING, Rows ());
}

TEST_F (PrimitiveFill, ClearBoundsTheColour) {
    widget.colour[0] = 300;
    widget.colour[1] = -5;
    Tools::Clear (&widget);
    EXPECT_EQ (Drawing_Colour (255, 0, 200), screen.Pixel (5, 5));
}

TEST_F (PrimitiveFill, LeavesTheRightAndTheLowerLineOut) {
    Tools::Fill (&widget, 0, 2, 10, 2, 7);
    EXPECT_EQ ("..............\n..............\n..oooooooo....\n..oooooooo....\n..oooooooo....\n"
               "..oooooooo....\n..oooooooo....\n..............\n..............\n..............\n",
               Rows ());
}

TEST_F (PrimitiveFill, IsSkippedWhenInactiveOrToldSo) {
    Call_Recorder calls;
    Tools::Fill (&widget, FILL_NONE, 2, 10, 2, 7);
    Tools::Fill_Select (&widget, 1, nullptr, FILL_NONE, 0, 2, 10, 2, 7);
    widget.state = WIDGET_INACTIVE;
    Tools::Fill (&widget, 0, 2, 10, 2, 7);
    Tools::Fill_Blue (&widget, 2, 10, 2, 7);
    Tools::Fill_Grey (&widget, 2, 10, 2, 7);
    Tools::Fill_Red (&widget, 2, 10, 2, 7);
    Tools::Fill_Yellow (&widget, 2, 10, 2, 7);
    Tools::Fill_Green (&widget, 2, 10, 2, 7);
    EXPECT_TRUE (calls.calls.empty ());
    EXPECT_EQ (NOTHING, Rows ());
}

TEST_F (PrimitiveFill, HasItsFixedColours) {
    const std::vector<std::pair<void (*) (Widget *, int, int, int, int), uint32_t>> fills = {
        {Tools::Fill_Blue, Drawing_Colour (0, 0, 255)},
        {Tools::Fill_Grey, Drawing_Colour (170, 170, 170)},
        {Tools::Fill_Red, Drawing_Colour (255, 0, 0)},
        {Tools::Fill_Yellow, Drawing_Colour (255, 255, 0)},
        {Tools::Fill_Green, Drawing_Colour (0, 255, 0)}};
    for (const auto &fill : fills) {
        fill.first (&widget, 3, 6, 4, 6);
        EXPECT_EQ (6, screen.Count (fill.second));
        EXPECT_EQ (6, screen.Count (fill.second, 3, 5, 3, 2));
    }
}

TEST_F (PrimitiveFill, SelectedIsHighlightedWithinItsInset) {
    Tools::Fill_Select (&widget, 1, nullptr, 0, 1, 2, 10, 2, 7);
    EXPECT_EQ ("..............\n..............\n..............\n...hhhhhh.....\n...hhhhhh.....\n"
               "...hhhhhh.....\n..............\n..............\n..............\n..............\n",
               Rows ());
    Tools::Fill_Select (&widget, 0, nullptr, 0, 2, 2, 10, 2, 7);
    EXPECT_EQ (14, screen.Count (HIGHLIGHT));
    EXPECT_EQ (4, screen.Count (OWN));
    EXPECT_EQ (4, screen.Count (OWN, 4, 5, 4, 1));
}

TEST_F (PrimitiveFill, SelectedIsDrawnWhenInactive) {
    widget.state = WIDGET_INACTIVE;
    Tools::Fill_Select (&widget, 1, nullptr, 0, 0, 2, 10, 2, 7);
    EXPECT_EQ (40, screen.Count (HIGHLIGHT));
}

TEST_F (PrimitiveFill, SelectedWithAnInsetThatLeavesNothingDrawsNothing) {
    for (int inset : {3, 4, 5, 1000, INT_MAX}) Tools::Fill_Select (&widget, 1, nullptr, 0, inset, 2, 10, 2, 7);
    EXPECT_EQ (NOTHING, Rows ());
}

// --- pictures --------------------------------------------------------------

// Three by two pixels: black, own colour, outline; highlight, black, black. All are transparent, which doesn't count.
static const uint8_t PIXELS[] = {0,   0,   0,   0, 200, 150, 100, 0, 230, 64, 64, 0,
                                 100, 100, 230, 0, 0,   0,   0,   0, 0,   0,  0,  0};

TEST_F (PrimitiveFill, PictureLiesInTheUpperLeftCorner) {
    const Tools::Picture picture = {PIXELS, 3, 2};
    Tools::Fill_Select (&widget, 1, &picture, 0, 1, 2, 10, 2, 7);
    EXPECT_EQ ("..............\n..............\n..............\n...#ob........\n...h##........\n"
               "..............\n..............\n..............\n..............\n..............\n",
               Rows ());
}

TEST_F (PrimitiveFill, PictureIsCutToTheRectangle) {
    const Tools::Picture picture = {PIXELS, 3, 2};
    Tools::Fill_Select (&widget, 0, &picture, 0, 1, 2, 6, 2, 5);
    EXPECT_EQ ("..............\n..............\n..............\n..............\n..............\n"
               "...#o.........\n..............\n..............\n..............\n..............\n",
               Rows ());
}

TEST_F (PrimitiveFill, PictureIsLeftOutWhereNothingIsLeft) {
    const Tools::Picture picture = {PIXELS, 3, 2}, empty = {nullptr, 0, 0};
    for (int inset : {3, 4, 5, INT_MAX}) Tools::Fill_Select (&widget, 0, &picture, 0, inset, 2, 10, 2, 7);
    Tools::Fill_Select (&widget, 0, &picture, FILL_NONE, 0, 2, 10, 2, 7);
    Tools::Fill_Select (&widget, 0, &empty, 0, 0, 2, 10, 2, 7);
    EXPECT_EQ (NOTHING, Rows ());
}

// --- frames ----------------------------------------------------------------

TEST_F (PrimitiveFrame, OutlineIsOneUnitInside) {
    Tools::Cadre_Outline (&widget, 2, 10, 2, 7);
    EXPECT_EQ ("..............\n..............\n..............\n...bbbbbbb....\n...b.....b....\n"
               "...b.....b....\n...bbbbbbb....\n..............\n..............\n..............\n",
               Rows ());
}

TEST_F (PrimitiveFrame, OutlineNeedsRoom) {
    Call_Recorder calls;
    Tools::Cadre_Outline (&widget, 2, 3, 2, 7);
    Tools::Cadre_Outline (&widget, 2, 10, 2, 3);
    Tools::Cadre_Outline (&widget, 10, 2, 7, 2);
    EXPECT_TRUE (calls.calls.empty ());
}

TEST_F (PrimitiveFrame, OfNoDepthIsABlackOutline) {
    for (int depth : {0, -1, INT_MIN}) Tools::Cadre (&widget, 0, 0, depth, 2, 10, 2, 7);
    EXPECT_EQ ("..............\n..............\n..#########...\n..#.......#...\n..#.......#...\n"
               "..#.......#...\n..#.......#...\n..#########...\n..............\n..............\n",
               Rows ());
}

TEST_F (PrimitiveFrame, WithoutAnOutlineAndDepthIsNothing) {
    Tools::Cadre (&widget, WIDGET_NO_OUTLINE, 0, 0, 2, 10, 2, 7);
    EXPECT_EQ (NOTHING, Rows ());
}

// The colours of a grey frame on its way from outside to inside, at each of the four sides.
struct Sides {
    std::vector<int> left, right, bottom, top;
};

static int Grey_At (const Off_Screen &screen, int x, int y) {
    const uint32_t colour = screen.Pixel (x, y), grey = colour & 255;
    return colour == Drawing_Colour (grey, grey, grey) ? static_cast<int> (grey) : -1;
}

static Sides Frame (uint32_t state, int direction, int depth, int16_t grey, int count) {
    Off_Screen screen (60, 60);
    Widget     widget = {};
    Sides      sides;
    for (int i = 0; i < 3; i++) widget.colour[i] = grey;
    Widget_Init (&widget, screen.window, "Test::Init");
    Tools::Cadre (&widget, state, direction, depth, 5, 54, 5, 54);
    for (int i = 0; i < count; i++) {
        sides.left.push_back (Grey_At (screen, 5 + i, 30));
        sides.right.push_back (Grey_At (screen, 54 - i, 30));
        sides.bottom.push_back (Grey_At (screen, 30, 5 + i));
        sides.top.push_back (Grey_At (screen, 30, 54 - i));
    }
    EXPECT_EQ (255, Grey_At (screen, 4, 30));
    EXPECT_EQ (255, Grey_At (screen, 30, 55));
    Widget_Exit (&widget);
    return sides;
}

static void Expect_Sides (const Sides &sides, const std::vector<int> &upper_left, const std::vector<int> &lower_right) {
    EXPECT_EQ (upper_left, sides.left);
    EXPECT_EQ (upper_left, sides.top);
    EXPECT_EQ (lower_right, sides.right);
    EXPECT_EQ (lower_right, sides.bottom);
}

TEST_F (PrimitiveFrame, OfDepthThreeHasStepsThatFall) {
    Expect_Sides (Frame (0, Tools::CADRE_RAISED, 3, 100, 5), {0, 180, 154, 128, 255}, {0, 20, 46, 72, 255});
}

TEST_F (PrimitiveFrame, SunkenHasLightAndShadeSwapped) {
    Expect_Sides (Frame (0, Tools::CADRE_SUNKEN, 3, 100, 5), {0, 20, 46, 72, 255}, {0, 180, 154, 128, 255});
    Expect_Sides (Frame (0, -1, 1, 100, 3), {0, 20, 255}, {0, 180, 255});
}

TEST_F (PrimitiveFrame, WithoutAnOutlineStartsAtTheRectangle) {
    Expect_Sides (Frame (WIDGET_NO_OUTLINE, Tools::CADRE_RAISED, 2, 100, 3), {180, 140, 255}, {20, 60, 255});
}

TEST_F (PrimitiveFrame, StaysWithinBlackAndWhite) {
    Expect_Sides (Frame (0, Tools::CADRE_RAISED, 1, 20, 2), {0, 100}, {0, 0});
    Expect_Sides (Frame (0, Tools::CADRE_RAISED, 1, 200, 2), {0, 255}, {0, 120});
    Expect_Sides (Frame (0, Tools::CADRE_RAISED, 1, 300, 2), {0, 255}, {0, 220});
    Expect_Sides (Frame (0, Tools::CADRE_RAISED, 1, -60, 2), {0, 20}, {0, 0});
    Expect_Sides (Frame (0, Tools::CADRE_RAISED, 1, 32767, 2), {0, 255}, {0, 255});
}

TEST_F (PrimitiveFrame, OfManyRingsIsFlat) {
    const std::vector<int> flat (24, 100);
    Expect_Sides (Frame (WIDGET_NO_OUTLINE, Tools::CADRE_RAISED, 81, 100, 24), flat, flat);
    Expect_Sides (Frame (WIDGET_NO_OUTLINE, Tools::CADRE_RAISED, INT_MAX, 100, 24), flat, flat);
    Expect_Sides (Frame (WIDGET_NO_OUTLINE, Tools::CADRE_RAISED, 80, 100, 3), {180, 179, 178}, {20, 21, 22});
}

TEST_F (PrimitiveFrame, GivesTheSharedCornersToTheLowerRight) {
    widget.colour[0] = widget.colour[1] = widget.colour[2] = 100;
    Tools::Cadre (&widget, WIDGET_NO_OUTLINE, Tools::CADRE_RAISED, 1, 2, 10, 2, 7);
    EXPECT_EQ ("..............\n..............\n..LLLLLLLLD...\n..L.......D...\n..L.......D...\n"
               "..L.......D...\n..L.......D...\n..DDDDDDDDD...\n..............\n..............\n",
               screen.Rows ({{WHITE, '.'}, {Drawing_Colour (180, 180, 180), 'L'}, {Drawing_Colour (20, 20, 20), 'D'}}));
}

TEST_F (PrimitiveFrame, KeepsTheAlphaOfItsColour) {
    Call_Recorder calls;
    widget.colour[0] = widget.colour[1] = widget.colour[2] = 100;
    widget.colour[3]                                       = 128;
    Tools::Cadre (&widget, WIDGET_NO_OUTLINE, Tools::CADRE_RAISED, 1, 2, 10, 2, 7);
    auto lines = calls.Of (Device::CALL_LINE);
    ASSERT_EQ (4u, lines.size ());
    EXPECT_EQ (0x80B4B4B4u, lines[0].colour);
    EXPECT_EQ (0x80141414u, lines[3].colour);
}

TEST_F (PrimitiveFrame, ShadesEachComponentByItself) {
    Call_Recorder calls;
    Tools::Cadre (&widget, WIDGET_NO_OUTLINE, Tools::CADRE_RAISED, 1, 2, 10, 2, 7);
    auto lines = calls.Of (Device::CALL_LINE);
    ASSERT_EQ (4u, lines.size ());
    EXPECT_EQ (Drawing_Colour (180, 230, 255), lines[0].colour);
    EXPECT_EQ (Drawing_Colour (20, 70, 120), lines[3].colour);
}

TEST_F (PrimitiveFrame, EndsWhereTheRingsMeet) {
    Tools::Cadre (&widget, 0, Tools::CADRE_RAISED, 80, 2, 10, 2, 7);
    EXPECT_EQ (54, 140 - screen.Count (WHITE));
    Call_Recorder calls;
    Tools::Cadre (&widget, 0, Tools::CADRE_RAISED, INT_MAX, 2, 10, 2, 7);
    EXPECT_EQ (4 + 2 * 4, calls.Count (Device::CALL_LINE));
    Tools::Cadre (&widget, 0, Tools::CADRE_RAISED, 1, 10, 2, 7, 2);
    EXPECT_EQ (1, calls.Count (Device::CALL_BEGIN));
}

// --- arrows ----------------------------------------------------------------

static const uint32_t DARK = Drawing_Colour (110, 110, 110), LIGHT = Drawing_Colour (216, 216, 216);

static const std::map<uint32_t, char> ARROW_LETTERS = {{WHITE, '.'}, {BLACK, '#'}, {DARK, 'd'}, {LIGHT, 'l'}};

static std::string Arrow_Rows (int size, int direction, int pressed, uint32_t state, int around = 0) {
    Off_Screen screen (size + 1 + 2 * around, size + 1 + 2 * around);
    Widget     widget = {};
    widget.state      = state;
    Widget_Init (&widget, screen.window, "Test::Init");
    Tools::Arrow (&widget, direction, pressed, around, size + around, around, size + around);
    Widget_Exit (&widget);
    return screen.Rows (ARROW_LETTERS);
}

TEST (PrimitiveArrow, IsAHeadWithARim) {
    EXPECT_EQ ("...........\n...........\n...........\n.....l.....\n....l#d....\n...l###d...\n..l#####d..\n"
               "..ddddddd..\n...........\n...........\n...........\n",
               Arrow_Rows (10, Tools::ARROW_UP, 0, 0));
    EXPECT_EQ ("...........\n...........\n...........\n..lllllll..\n..l#####d..\n...l###d...\n....l#d....\n"
               ".....d.....\n...........\n...........\n...........\n",
               Arrow_Rows (10, Tools::ARROW_DOWN, 0, 0));
    EXPECT_EQ ("...........\n...........\n......ld...\n.....l#d...\n....l##d...\n...l###d...\n....d##d...\n"
               ".....d#d...\n......dd...\n...........\n...........\n",
               Arrow_Rows (10, Tools::ARROW_LEFT, 0, 0));
    EXPECT_EQ ("...........\n...........\n...ll......\n...l#l.....\n...l##l....\n...l###d...\n...l##d....\n"
               "...l#d.....\n...ld......\n...........\n...........\n",
               Arrow_Rows (10, Tools::ARROW_RIGHT, 0, 0));
}

static std::string Replaced (std::string text, const std::string &from, const std::string &to) {
    for (char &c : text) {
        size_t i = from.find (c);
        if (i != std::string::npos) c = to[i];
    }
    return text;
}

static std::string Black_Only (const std::string &rows) { return Replaced (rows, "dl", ".."); }

TEST (PrimitiveArrow, IsSunkenWhenPressed) {
    for (int direction = 0; direction < 4; direction++)
        EXPECT_EQ (Replaced (Arrow_Rows (16, direction, 0, 0), "ld", "dl"), Arrow_Rows (16, direction, 1, 0));
}

TEST (PrimitiveArrow, IsPaleWhenInactive) {
    for (int direction = 0; direction < 4; direction++)
        EXPECT_EQ (Replaced (Black_Only (Arrow_Rows (16, direction, 0, 0)), "#", "l"),
                   Arrow_Rows (16, direction, 0, WIDGET_INACTIVE));
}

// Rows as a square of letters: what stands at column x of row y, counted from the top left.
static char At (const std::string &rows, int side, int x, int y) {
    return rows[static_cast<size_t> (y * (side + 1) + x)];
}

static std::string Turned (const std::string &rows, int side, const std::function<char (int x, int y)> &source) {
    std::string result;
    for (int y = 0; y < side; y++) {
        for (int x = 0; x < side; x++) result += source (x, y);
        result += '\n';
    }
    EXPECT_EQ (rows.size (), result.size ());
    return result;
}

TEST (PrimitiveArrow, IsTheSameInAllDirectionsAndSymmetrical) {
    for (int size = 2; size <= 40; size++) {
        const int         side   = size + 1;
        const std::string up     = Black_Only (Arrow_Rows (size, Tools::ARROW_UP, 0, 0));
        auto              down   = Turned (up, side, [&] (int x, int y) { return At (up, side, x, side - 1 - y); });
        auto              left   = Turned (up, side, [&] (int x, int y) { return At (up, side, y, x); });
        auto              right  = Turned (up, side, [&] (int x, int y) { return At (up, side, y, side - 1 - x); });
        auto              mirror = Turned (up, side, [&] (int x, int y) { return At (up, side, side - 1 - x, y); });
        EXPECT_EQ (down, Black_Only (Arrow_Rows (size, Tools::ARROW_DOWN, 0, 0))) << size;
        EXPECT_EQ (left, Black_Only (Arrow_Rows (size, Tools::ARROW_LEFT, 0, 0))) << size;
        EXPECT_EQ (right, Black_Only (Arrow_Rows (size, Tools::ARROW_RIGHT, 0, 0))) << size;
        EXPECT_EQ (mirror, up) << size;
    }
}

TEST (PrimitiveArrow, StaysInsideOfItsRectangle) {
    for (int size = 0; size <= 30; size++)
        for (int direction = 0; direction < 4; direction++) {
            const std::string rows = Arrow_Rows (size, direction, 0, 0, 3);
            const int         side = size + 7;
            EXPECT_NE (std::string::npos, rows.find ('#')) << size;
            for (int y = 0; y < side; y++)
                for (int x = 0; x < side; x++)
                    if (x < 3 || y < 3 || x > size + 3 || y > size + 3) {
                        EXPECT_EQ ('.', At (rows, side, x, y)) << size << " " << direction << "\n" << rows;
                    }
        }
}

TEST (PrimitiveArrow, OfARectangleFollowsItsShortSide) {
    Off_Screen screen (60, 40);
    Widget     widget = {};
    Widget_Init (&widget, screen.window, "Test::Init");
    Tools::Arrow (&widget, Tools::ARROW_LEFT, 0, 10, 50, 12, 22);
    Widget_Exit (&widget);
    EXPECT_EQ (9, screen.Count (BLACK));
    EXPECT_EQ (9, screen.Count (BLACK, 29, 15, 3, 5));
    EXPECT_EQ (BLACK, screen.Pixel (29, 17)); // Its tip.
}

// --- texts -----------------------------------------------------------------

// Texts in the system's font, since widths and heights are whatever the back end says.
class PrimitiveText : public testing::Test {
protected:
    PrimitiveText () : screen (400, 300) {
        Device::Reports_Reset ();
        Widget_Init (&widget, screen.window, "Test::Init");
        Device::Begin (screen.window, nullptr, "test");
        Device::Font_Measure (nullptr, &metrics);
        Device::End ();
    }
    ~PrimitiveText () { Widget_Exit (&widget); }

    int Width (const std::string &text) const {
        Device::Begin (screen.window, nullptr, "test");
        int width = Device::Run_Width (nullptr, text.c_str (), static_cast<int> (text.size ()));
        Device::End ();
        return width;
    }

    // What is drawn of a text at (20, 30), 300 by 200.
    std::vector<Call_Recorder::Call> Draw (const std::string &text, uint32_t flags, int margin = 4) {
        Call_Recorder calls;
        Tools::Text (&widget, nullptr, text.c_str (), flags, 20, 30, 300, 200, margin);
        return calls.Of (Device::CALL_TEXT);
    }

    Call_Recorder::Call Draw_One (const std::string &text, uint32_t flags, int margin = 4) {
        auto calls = Draw (text, flags, margin);
        EXPECT_EQ (1u, calls.size ());
        return calls.empty () ? Call_Recorder::Call {} : calls[0];
    }

    // What DrawText draws at (10, 20).
    std::vector<Call_Recorder::Call> Draw_Line (const std::string &text, int *end = nullptr) {
        Call_Recorder calls;
        Device::Begin (screen.window, nullptr, "test");
        int x = Tools::DrawText (nullptr, 10, 20, text.c_str (), WHITE);
        Device::End ();
        if (end) *end = x;
        return calls.Of (Device::CALL_TEXT);
    }

    int Text_Width (const std::string &text) {
        Device::Begin (screen.window, nullptr, "test");
        int width = Tools::TextWidth (nullptr, text.c_str ());
        Device::End ();
        return width;
    }

    Off_Screen           screen;
    Widget               widget  = {};
    Drawing_Font_Metrics metrics = {};
};

TEST_F (PrimitiveText, OfNothingIsNotDrawn) {
    Call_Recorder calls;
    Tools::Text (&widget, nullptr, nullptr, 0, 0, 0, 100, 100, 2);
    Tools::Text (&widget, nullptr, "", 0, 0, 0, 100, 100, 2);
    Tools::Text (&widget, nullptr, "&", WIDGET_VERTICAL, 0, 0, 100, 100, 2);
    EXPECT_TRUE (calls.calls.empty ());
}

TEST_F (PrimitiveText, IsAlignedAcross) {
    const int width = Width ("Text");
    EXPECT_EQ (20 + 8, Draw_One ("Text", WIDGET_ALIGN_LEFT).x);
    EXPECT_EQ (20 + 8, Draw_One ("Text", WIDGET_ALIGN_LEFT | WIDGET_ALIGN_RIGHT).x);
    EXPECT_EQ (320 - 8 - width, Draw_One ("Text", WIDGET_ALIGN_RIGHT).x);
    EXPECT_EQ (28 + (284 - width) / 2, Draw_One ("Text", 0).x);
}

TEST_F (PrimitiveText, IsAlignedUpAndDown) {
    const int bottom = 30 + 1 + 4, top = 230 - 4; // The row at bottom is left out.
    EXPECT_EQ (bottom + 1, Draw_One ("Text", WIDGET_ALIGN_BOTTOM).y);
    EXPECT_EQ (bottom + 1, Draw_One ("Text", WIDGET_ALIGN_BOTTOM | WIDGET_ALIGN_TOP).y);
    EXPECT_EQ (top, Draw_One ("Text", WIDGET_ALIGN_TOP).y + metrics.height - 1);
    EXPECT_EQ (bottom + 1 + (top - bottom - metrics.height) / 2, Draw_One ("Text", 0).y);
}

TEST_F (PrimitiveText, HasAMarginOfAtLeastTwo) {
    for (int margin : {INT_MIN, -1, 0, 1, 2}) {
        EXPECT_EQ (20 + 6, Draw_One ("Text", WIDGET_ALIGN_LEFT, margin).x);
        EXPECT_EQ (30 + 4, Draw_One ("Text", WIDGET_ALIGN_BOTTOM, margin).y);
    }
    EXPECT_EQ (20 + 6, Draw_One ("Text", WIDGET_ALIGN_LEFT, 3).x);
    EXPECT_EQ (20 + 14, Draw_One ("Text", WIDGET_ALIGN_LEFT, 7).x);
    EXPECT_EQ (30 + 9, Draw_One ("Text", WIDGET_ALIGN_BOTTOM, 7).y);
}

TEST_F (PrimitiveText, HasItsColourByFlags) {
    EXPECT_EQ (BLACK, Draw_One ("Text", 0).colour);
    EXPECT_EQ (WHITE, Draw_One ("Text", WIDGET_TEXT_WHITE).colour);
    EXPECT_EQ (OUTLINE, Draw_One ("Text", WIDGET_TEXT_BLUE).colour);
    EXPECT_EQ (OUTLINE, Draw_One ("Text", WIDGET_TEXT_BLUE | WIDGET_TEXT_WHITE).colour);
}

TEST_F (PrimitiveText, HasTheFontThatIsGiven) {
    Drawing_Font  font = Y_Create_Font (screen.window, "Arial", "bold", nullptr, 20);
    Call_Recorder calls;
    Tools::Text (&widget, font, "Text", 0, 0, 0, 100, 100, 2);
    EXPECT_EQ (font, calls.Of (Device::CALL_TEXT).at (0).font);
    Drawing_Font_Free (font);
    EXPECT_EQ (nullptr, Draw_One ("Text", 0).font);
}

TEST_F (PrimitiveText, IsCutAtTheEndsOfItsLine) {
    const std::string text (200, 'H');
    for (uint32_t flags : {0u, uint32_t (WIDGET_ALIGN_LEFT), uint32_t (WIDGET_ALIGN_RIGHT)}) Draw (text, flags);
    EXPECT_LT (screen.Count (WHITE, 28, 100, 284, 60), 284 * 60);
    EXPECT_EQ (screen.Count (WHITE), 400 * 300 - 284 * 200 + screen.Count (WHITE, 28, 31, 284, 200));
}

TEST_F (PrimitiveText, TooWideShowsItsBeginningUnlessAlignedRight) {
    const std::string text (200, 'H');
    const int         width = Width (text);
    EXPECT_EQ (28, Draw_One (text, WIDGET_ALIGN_LEFT).x);
    EXPECT_EQ (312 - width, Draw_One (text, WIDGET_ALIGN_RIGHT).x);
    EXPECT_EQ (28, Draw_One (text, 0).x);
}

TEST_F (PrimitiveText, StaysInTheWidgetsClipToo) {
    widget.clip = {100, 100, 50, 60};
    Draw (std::string (200, 'H'), 0);
    EXPECT_LT (screen.Count (WHITE, 100, 101, 50, 60), 50 * 60);
    EXPECT_EQ (screen.Count (WHITE), 400 * 300 - 50 * 60 + screen.Count (WHITE, 100, 101, 50, 60));
    Call_Recorder calls;
    widget.clip = {0, 0, 400, 300};
    Tools::Text (&widget, nullptr, "Text", 0, 20, 30, 300, 200, 4);
    EXPECT_EQ (28, calls.Of (Device::CALL_CLIP).back ().x);
    EXPECT_EQ (284, calls.Of (Device::CALL_CLIP).back ().w);
    EXPECT_EQ (200, calls.Of (Device::CALL_CLIP).back ().h);
}

TEST_F (PrimitiveText, LosesItsMnemonics) {
    EXPECT_EQ ("Open  Close", Draw_One ("&Open && &Close&", 0).text);
    EXPECT_EQ (std::string (127, 'x'), Draw_One (std::string (127, 'x') + "&", 0).text);
}

TEST_F (PrimitiveText, OfMoreThanALabelKeepsThem) {
    const std::string text = std::string (128, 'x') + "&";
    EXPECT_EQ (text, Draw_One (text, 0).text);
}

TEST_F (PrimitiveText, CountsCharactersOfAnyLength) {
    std::string text;
    for (int i = 0; i < 127; i++) text += "\xF0\x9F\x99\x82";
    EXPECT_EQ (text, Draw_One (text + "&", 0).text);
    EXPECT_EQ (text + "xx&", Draw_One (text + "xx&", 0).text);
    EXPECT_EQ (std::string (127, '\xFC'), Draw_One (std::string (127, '\xFC') + "&", 0).text);
    EXPECT_EQ (std::string (128, '\xFC') + "&", Draw_One (std::string (128, '\xFC') + "&", 0).text);
}

TEST_F (PrimitiveText, ExpandsTabs) {
    auto      calls = Draw ("a\tbc\t\td", WIDGET_ALIGN_LEFT);
    const int stop  = 4 * metrics.average_width;
    ASSERT_EQ (3u, calls.size ());
    ASSERT_LT (Width ("bc"), stop);
    EXPECT_EQ (28, calls[0].x);
    EXPECT_EQ (28 + stop, calls[1].x);
    EXPECT_EQ (28 + 3 * stop, calls[2].x);
    calls = Draw ("a\tb", WIDGET_ALIGN_RIGHT);
    ASSERT_EQ (2u, calls.size ());
    EXPECT_EQ (312 - stop - Width ("b"), calls[0].x);
}

TEST_F (PrimitiveText, OfMegabytesIsDrawnInOneLine) {
    EXPECT_EQ (32767u, Draw_One (std::string (1 << 20, 'x'), 0).text.size ());
}

// --- texts that read downwards ---------------------------------------------

TEST_F (PrimitiveText, VerticalHasOneCharacterALine) {
    auto calls = Draw ("A&bc", WIDGET_VERTICAL);
    ASSERT_EQ (3u, calls.size ());
    const char *const texts[] = {"A", "b", "c"};
    for (size_t i = 0; i < 3; i++) {
        EXPECT_EQ (texts[i], calls[i].text);
        EXPECT_EQ (20 + (300 - Width (texts[i])) / 2, calls[i].x);
    }
    EXPECT_EQ (calls[0].y - metrics.height, calls[1].y);
    EXPECT_EQ (calls[1].y - metrics.height, calls[2].y);
}

TEST_F (PrimitiveText, VerticalIsAlignedUpAndDown) {
    const int needed = 2 * metrics.height;
    EXPECT_EQ (30 + 4 + 1, Draw ("Ab", WIDGET_VERTICAL | WIDGET_ALIGN_BOTTOM).at (1).y);
    EXPECT_EQ (30 + 4 + 1, Draw ("Ab", WIDGET_VERTICAL | WIDGET_ALIGN_BOTTOM | WIDGET_ALIGN_TOP).at (1).y);
    EXPECT_EQ (230 - 4, Draw ("Ab", WIDGET_VERTICAL | WIDGET_ALIGN_TOP).at (0).y + metrics.height - 1);
    EXPECT_EQ (34 + (192 - needed) / 2 + 1, Draw ("Ab", WIDGET_VERTICAL).at (1).y);
}

TEST_F (PrimitiveText, VerticalTooHighShowsItsBeginningUnlessAlignedDown) {
    const std::string text (100, 'x');
    EXPECT_EQ (226, Draw (text, WIDGET_VERTICAL).at (0).y + metrics.height - 1);
    EXPECT_EQ (226, Draw (text, WIDGET_VERTICAL | WIDGET_ALIGN_TOP).at (0).y + metrics.height - 1);
    EXPECT_EQ (35, Draw (text, WIDGET_VERTICAL | WIDGET_ALIGN_BOTTOM).at (99).y);
}

TEST_F (PrimitiveText, VerticalIsCentredInItsColumn) {
    const int column = 3 * metrics.average_width, width = Width ("A");
    EXPECT_EQ (28 + (column - width) / 2, Draw ("A", WIDGET_VERTICAL | WIDGET_ALIGN_LEFT).at (0).x);
    EXPECT_EQ (28 + (column - width) / 2,
               Draw ("A", WIDGET_VERTICAL | WIDGET_ALIGN_LEFT | WIDGET_ALIGN_RIGHT).at (0).x);
    EXPECT_EQ (312 - column + (column - width) / 2, Draw ("A", WIDGET_VERTICAL | WIDGET_ALIGN_RIGHT).at (0).x);
}

TEST_F (PrimitiveText, VerticalEndsAfterTheLengthOfALabel) {
    EXPECT_EQ (128u, Draw (std::string (128, 'x'), WIDGET_VERTICAL).size ());
    EXPECT_EQ (128u, Draw (std::string (1000, 'x'), WIDGET_VERTICAL).size ());
}

TEST_F (PrimitiveText, VerticalNeverDividesACharacter) {
    const std::vector<std::string> characters = {"\xC3\xA9",
                                                 "\xE2\x82\xAC",
                                                 "\xF0\x9F\x99\x82",
                                                 "x", // é, euro sign, a face
                                                 "\xE9",
                                                 "\x80",
                                                 "\xC3",
                                                 "x",
                                                 "\xE2",
                                                 "\x82",
                                                 "x",
                                                 "\xF0",
                                                 "\x9F",
                                                 "\x99",
                                                 "x", // cut short
                                                 "\xC0",
                                                 "\xAF",
                                                 "\xE0",
                                                 "\x80",
                                                 "\xAF",
                                                 "\xF0",
                                                 "\x80",
                                                 "\x80",
                                                 "\xAF", // longer than need be
                                                 "\xED",
                                                 "\xA0",
                                                 "\x80",
                                                 "\xF4",
                                                 "\x90",
                                                 "\x80",
                                                 "\x80",
                                                 "\xF5",
                                                 "\x80",
                                                 "\x80",
                                                 "\x80",
                                                 "\xFF", // no code points
                                                 "\xED\x9F\xBF",
                                                 "\xEE\x80\x80",
                                                 "\xF4\x8F\xBF\xBF",
                                                 "\xE2",
                                                 "\x82"};
    std::string                    text;
    for (const std::string &character : characters) text += character;
    auto calls = Draw (text, WIDGET_VERTICAL);
    ASSERT_EQ (characters.size (), calls.size ());
    for (size_t i = 0; i < calls.size (); i++) EXPECT_EQ (characters[i], calls[i].text);
}

TEST_F (PrimitiveText, VerticalStaysInItsRectangle) {
    Draw (std::string (128, 'W'), WIDGET_VERTICAL);
    EXPECT_EQ (screen.Count (WHITE), 400 * 300 - 300 * 200 + screen.Count (WHITE, 20, 31, 300, 200));
    EXPECT_LT (screen.Count (WHITE), 400 * 300);
}

// --- text in a session -----------------------------------------------------

TEST_F (PrimitiveText, LineIsDrawnWithItsTabStops) {
    int       end   = 0;
    auto      calls = Draw_Line ("\ta\tHHHHHHHH\tb", &end);
    const int stop = 4 * metrics.average_width, long_run = Width ("HHHHHHHH");
    ASSERT_EQ (3u, calls.size ());
    EXPECT_EQ (10 + stop, calls[0].x);
    EXPECT_EQ (10 + 2 * stop, calls[1].x);
    EXPECT_EQ (10 + ((2 * stop + long_run) / stop + 1) * stop, calls[2].x);
    EXPECT_EQ (calls[2].x + Width ("b"), end);
    for (const Call_Recorder::Call &call : calls) {
        EXPECT_EQ (20, call.y);
        EXPECT_EQ (WHITE, call.colour);
    }
}

TEST_F (PrimitiveText, LineThatEndsAtATabStopGoesToTheNext) {
    int end = 0;
    Draw_Line ("\t\t", &end);
    EXPECT_EQ (10 + 8 * metrics.average_width, end);
}

TEST_F (PrimitiveText, LineEndsAfter255Bytes) {
    EXPECT_EQ (std::string (255, 'x'), Draw_Line (std::string (255, 'x')).at (0).text);
    EXPECT_EQ (std::string (255, 'x'), Draw_Line (std::string (300, 'x')).at (0).text);
    const std::string text (254, 'x');
    EXPECT_EQ (text, Draw_Line (text + "\xC3\xA9").at (0).text);
    EXPECT_EQ (text + "\xE9", Draw_Line (text + "\xE9"
                                                "x")
                                  .at (0)
                                  .text);
    EXPECT_EQ (text.substr (1) + "\xC3\xA9", Draw_Line (text.substr (1) + "\xC3\xA9"
                                                                          "x")
                                                 .at (0)
                                                 .text);
}

TEST_F (PrimitiveText, LineOfNothingEndsWhereItStarts) {
    int end = 0;
    EXPECT_TRUE (Draw_Line ("", &end).empty ());
    EXPECT_EQ (10, end);
    Device::Begin (screen.window, nullptr, "test");
    EXPECT_EQ (7, Tools::DrawText (nullptr, 7, 0, nullptr, BLACK));
    EXPECT_EQ (0, Tools::TextWidth (nullptr, nullptr));
    Device::End ();
}

TEST_F (PrimitiveText, LineNeedsASession) {
    Call_Recorder calls;
    EXPECT_EQ (7, Tools::DrawText (nullptr, 7, 0, "text", BLACK));
    EXPECT_EQ (0, Tools::TextWidth (nullptr, "text"));
    EXPECT_TRUE (calls.calls.empty ());
}

TEST_F (PrimitiveText, WidthCountsThreeCharactersForATab) {
    EXPECT_EQ (Width ("text"), Text_Width ("text"));
    EXPECT_EQ (Width ("a\tb\t") + 6 * metrics.average_width, Text_Width ("a\tb\t"));
    EXPECT_EQ (0, Text_Width (""));
    EXPECT_EQ (Width (std::string (300, 'x')), Text_Width (std::string (300, 'x')));
}

// --- library ---------------------------------------------------------------

TEST (PrimitiveBanner, NamesTheLibrary) {
    EXPECT_STREQ ("Kestrelbay_Tools (Static) 21.7 (rev-1)", Tools::Banner (nullptr));
    EXPECT_STREQ ("Kestrelbay_Tools (Static) 21.7 (rev-1)", Tools::Banner ("21.7"));
}

TEST (PrimitiveBanner, IsNoneForAnotherVersion) {
    for (const char *check : {"21.8", "21.70", "21.", "", "121.7"}) EXPECT_EQ (nullptr, Tools::Banner (check)) << check;
}
