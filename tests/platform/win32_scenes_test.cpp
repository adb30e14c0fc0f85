// What the toolkit draws, in a window on the screen: the same pixels as on Linux, where golden pictures hold them, but for
// the shapes of letters.
#include "tests/support/scenes.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/platform/win32_program.h"
#include "tools/device.h"

#include <objidl.h>

// It wants two functions of the standard library that the system's headers have as macros elsewhere.
#include <algorithm>
namespace Gdiplus {
using std::max;
using std::min;
} // namespace Gdiplus
#include <gdiplus.h>

// --- golden pictures -------------------------------------------------------

// Decodes pictures as long as it lives.
class Decoder {
public:
    Decoder () {
        Gdiplus::GdiplusStartupInput input;
        Gdiplus::GdiplusStartup (&token, &input, nullptr);
    }
    ~Decoder () { Gdiplus::GdiplusShutdown (token); }

private:
    ULONG_PTR token = 0;
};

// As the screen's own pixels are. Empty when it can't be read.
static Shot Golden (const std::string &scene) {
    Decoder         decoder;
    std::string     path = std::string (TAGWRIGHT_SOURCE_DIR) + "/tests/golden/sdl/tools_" + scene + ".png";
    Gdiplus::Bitmap bitmap (std::wstring (path.begin (), path.end ()).c_str ());
    Shot            shot;
    shot.width  = (int)bitmap.GetWidth ();
    shot.height = (int)bitmap.GetHeight ();
    for (int y = shot.height - 1; y >= 0; y--)
        for (int x = 0; x < shot.width; x++) {
            Gdiplus::Color colour;
            bitmap.GetPixel (x, y, &colour);
            shot.pixels.push_back (colour.GetValue () & 0xFFFFFF);
        }
    return shot;
}

// --- texts -----------------------------------------------------------------

static std::vector<RECT> texts; // Where letters may stand, bottom and top exchanged.

// A run may be wider on the other system, and begin elsewhere then, and lines may be higher.
static void Remember_Text (const Device::Call *call) {
    if (call->kind != Device::CALL_TEXT) return;
    int width = Device::Run_Width (call->font, call->text, call->length);
    int room  = width / 8 + 5;
    texts.push_back (RECT {call->x - room, call->y - 14, call->x + width + room, call->y + 30});
}

static bool Is_Text (int x, int y) {
    for (const RECT &text : texts)
        if (x >= text.left && x < text.right && y >= text.top && y < text.bottom) return true;
    return false;
}

// --- scenes ----------------------------------------------------------------

// One window for all: showing one takes seconds where nothing manages windows.
class Win32Scenes : public testing::TestWithParam<int> {
protected:
    static void SetUpTestSuite () {
        Window_Description description = {};
        description.title              = "Scenes";
        description.x = description.y = 10;
        description.width             = 820;
        description.height            = 400;
        description.background        = SCENE_BACKGROUND;
        window                        = Window_Create (&description);
        Window_Show (window);
    }
    static void TearDownTestSuite () { Window_Destroy (window); }
    static void Deliver_Waiting () {
        MSG message;
        while (PeekMessageW (&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW (&message);
    }
    static HWND Handle () { return reinterpret_cast<HWND> (window); }

    static Window window;
};

Window Win32Scenes::window;

static void Draw (Window window, const Scene &scene) {
    Window_Client_Resize (window, scene.width, scene.height);
    Drawing drawing = Drawing_Begin (window);
    Drawing_Fill (drawing, 0, 0, scene.width, scene.height, SCENE_BACKGROUND);
    Drawing_End (drawing);
    texts.clear ();
    Device::Watch (Remember_Text);
    scene.draw (window);
    Device::Watch (nullptr);
    Window_Update (window);
}

// How many pixels differ, and where the first does.
static int Differences (const Shot &seen, const Shot &golden, std::string *first) {
    int count = 0;
    for (int y = golden.height - 1; y >= 0; y--)
        for (int x = 0; x < golden.width; x++) {
            if (seen.At (x, y) == golden.At (x, y) || Is_Text (x, y)) continue;
            char text[80];
            snprintf (text, sizeof text, "(%d, %d) is %06X, not %06X", x, y, seen.At (x, y), golden.At (x, y));
            if (!count++) *first = text;
        }
    return count;
}

TEST_P (Win32Scenes, AScreenShowsWhatTheGoldenPictureHas) {
    const Scene &scene  = SCENES[GetParam ()];
    Shot         golden = Golden (scene.name), seen;
    std::string  first;
    ASSERT_EQ (golden.width, scene.width) << "can't be read";
    ASSERT_EQ (golden.height, scene.height);
    Draw (window, scene);
    Deliver_Waiting ();
    EXPECT_TRUE (Comes_True (
        [&] {
            Deliver_Waiting ();
            seen = Shot_Take (Handle ());
            return Differences (seen, golden, &first) == 0;
        },
        2000))
        << Differences (seen, golden, &first) << " pixels: " << first;
}

static std::string Scene_Name (const testing::TestParamInfo<int> &info) { return SCENES[info.param].name; }

INSTANTIATE_TEST_SUITE_P (Scenes, Win32Scenes, testing::Range (0, SCENE_COUNT), Scene_Name);
