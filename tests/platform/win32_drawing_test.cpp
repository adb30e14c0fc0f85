#include <climits>
#include <cstring>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <windows.h>

#include "platform/drawing.h"
#include "platform/window.h"

static const uint32_t GREY  = Drawing_Colour (170, 170, 170);
static const uint32_t RED   = Drawing_Colour (255, 0, 0);
static const uint32_t BLUE  = Drawing_Colour (0, 0, 255);
static const uint32_t BLACK = Drawing_Colour (0, 0, 0);

// An off-screen window with a session on it.
class Win32Drawing : public testing::Test {
protected:
    static const int WIDTH = 60, HEIGHT = 40;
    Window           window  = nullptr;
    Drawing          drawing = nullptr;

    void SetUp () override { Open (WIDTH, HEIGHT); }
    void TearDown () override { Close (); }

    void Open (int width, int height) {
        Window_Description description = {};
        description.title              = "Drawing test";
        description.width              = width;
        description.height             = height;
        description.background         = GREY;
        description.off_screen         = 1;
        window                         = Window_Create (&description);
        ASSERT_NE (window, nullptr) << Window_Error_Text ();
        drawing = Drawing_Begin (window);
        ASSERT_NE (drawing, nullptr);
    }

    void Close () {
        Drawing_End (drawing);
        Window_Destroy (window);
        drawing = nullptr;
        window  = nullptr;
    }

    void Wipe () {
        Drawing_Clip_All (drawing);
        Drawing_Fill (drawing, 0, 0, INT_MAX, INT_MAX, GREY);
    }

    // All pixels that are not of the background.
    std::set<std::pair<int, int>> Drawn () {
        std::set<std::pair<int, int>> drawn;
        int                           width, height;
        Window_Client_Size (window, &width, &height);
        for (int y = 0; y < height; y++)
            for (int x = 0; x < width; x++)
                if (Drawing_Pixel (drawing, x, y) != GREY) drawn.insert ({x, y});
        return drawn;
    }
};

typedef std::set<std::pair<int, int>> Pixels;

static Pixels Rectangle (int left, int bottom, int right, int top) {
    Pixels pixels;
    for (int y = bottom; y < top; y++)
        for (int x = left; x < right; x++) pixels.insert ({x, y});
    return pixels;
}

// --- shapes ----------------------------------------------------------------

TEST_F (Win32Drawing, AWindowStartsInItsBackground) {
    EXPECT_TRUE (Drawn ().empty ());
    EXPECT_EQ (Drawing_Pixel (drawing, 0, 0), GREY);
    EXPECT_EQ (Drawing_Pixel (drawing, WIDTH - 1, HEIGHT - 1), GREY);
}

TEST_F (Win32Drawing, AFillLeavesItsRightAndTopEdgesOut) {
    Drawing_Fill (drawing, 3, 5, 9, 11, RED);
    EXPECT_EQ (Drawn (), Rectangle (3, 5, 9, 11));
    EXPECT_EQ (Drawing_Pixel (drawing, 3, 5), RED);
}
