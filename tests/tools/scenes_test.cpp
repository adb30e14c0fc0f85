// The scenes on every system, pixel by pixel, texts and images excepted: each is drawn a second time into a table, from what
// reached the seam, by the rules of tools/device.h. So colours and places are the same wherever the pictures are.
#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/scenes.h"
#include "tools/device.h"

static const uint32_t UNKNOWN = 0xFFFFFFFF; // Where a text or an image may be.

// What a window shows as far as shapes decide it.
struct Table {
    int                   width, height;
    std::vector<uint32_t> pixels;                   // Rows from bottom to top.
    int                   left, bottom, right, top; // Clip.
};

static Table table;

static void Clip (int left, int bottom, int right, int top) {
    table.left   = std::max (left, 0);
    table.bottom = std::max (bottom, 0);
    table.right  = std::min (right, table.width);
    table.top    = std::min (top, table.height);
}

static void Put (int left, int bottom, int right, int top, uint32_t colour) {
    for (int y = std::max (bottom, table.bottom); y < std::min (top, table.top); y++)
        for (int x = std::max (left, table.left); x < std::min (right, table.right); x++)
            table.pixels[static_cast<size_t> (y) * table.width + x] = colour;
}

// Of one pixel's width, along an axis: the toolkit has no others. Its end is left out.
static void Put_Line (const Device::Call *line, uint32_t colour) {
    EXPECT_TRUE (line->x == line->w || line->y == line->h);
    if (line->y == line->h)
        Put (line->x < line->w ? line->x : line->w + 1, line->y, line->x < line->w ? line->w : line->x + 1, line->y + 1,
             colour);
    else
        Put (line->x, line->y < line->h ? line->y : line->h + 1, line->x + 1, line->y < line->h ? line->h : line->y + 1,
             colour);
}

// The cell of a run, and what leans out of it.
static void Put_Text (const Device::Call *text) {
    Drawing_Font_Metrics metrics;
    Device::Font_Measure (text->font, &metrics);
    const int out = metrics.height / 4 + 2;
    Put (text->x - out, text->y - 2, text->x + Device::Run_Width (text->font, text->text, text->length) + out,
         text->y + metrics.height + 2, UNKNOWN);
}

static void Repeat (const Device::Call *call) {
    const uint32_t colour = call->colour & 0xFFFFFF;
    switch (call->kind) {
    case Device::CALL_BEGIN:
    case Device::CALL_CLIP_ALL: Clip (0, 0, table.width, table.height); break;
    case Device::CALL_CLIP: Clip (call->x, call->y + 1, call->x + call->w, call->y + call->h + 1); break;
    case Device::CALL_FILL: Put (call->x, call->y + 1, call->w, call->h + 1, colour); break;
    case Device::CALL_LINE: Put_Line (call, colour); break;
    case Device::CALL_IMAGE: Put (call->x, call->y, call->x + call->w, call->y + call->h, UNKNOWN); break;
    case Device::CALL_TEXT: Put_Text (call); break;
    case Device::CALL_END: break;
    }
}

class ToolsScenes : public testing::TestWithParam<int> {};

TEST_P (ToolsScenes, ShapesHaveTheSamePixelsOnEverySystem) {
    const Scene &scene = SCENES[GetParam ()];
    const size_t count = static_cast<size_t> (scene.width) * static_cast<size_t> (scene.height);
    table              = {scene.width, scene.height, std::vector<uint32_t> (count, SCENE_BACKGROUND), 0, 0, 0, 0};
    Device::Watch (Repeat);
    Window window = Scene_Window (&scene);
    Device::Watch (nullptr);

    Drawing drawing = Drawing_Begin (window);
    ASSERT_NE (nullptr, drawing);
    size_t known = 0, shapes = 0, wrong = 0;
    for (int y = 0; y < scene.height; y++)
        for (int x = 0; x < scene.width; x++) {
            const uint32_t expected = table.pixels[static_cast<size_t> (y) * scene.width + x];
            if (expected == UNKNOWN) continue;
            known++;
            shapes += expected != SCENE_BACKGROUND;
            if (Drawing_Pixel (drawing, x, y) != expected && wrong++ < 5)
                ADD_FAILURE () << x << ", " << y << " is " << std::hex << Drawing_Pixel (drawing, x, y) << ", not "
                               << expected;
        }
    EXPECT_EQ (0u, wrong);
    EXPECT_GT (known, count / 4);
    EXPECT_GT (shapes, 0u);
    Drawing_End (drawing);
    Window_Destroy (window);
}

static std::string Scene_Name (const testing::TestParamInfo<int> &info) { return SCENES[info.param].name; }

INSTANTIATE_TEST_SUITE_P (Scenes, ToolsScenes, testing::Range (0, SCENE_COUNT), Scene_Name);
