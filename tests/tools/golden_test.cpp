// The scenes against the golden pictures, which somebody has looked at.
#include <string>

#include <gtest/gtest.h>

#include "tests/support/pictures.h"
#include "tests/support/scenes.h"

class ToolsGolden : public testing::TestWithParam<int> {};

TEST_P (ToolsGolden, SceneIsDrawnAsBefore) {
    const Scene      &scene  = SCENES[GetParam ()];
    Window            window = Scene_Window (&scene);
    const std::string name   = std::string ("tools_") + scene.name;
    EXPECT_TRUE (Picture_Matches (window, name.c_str ()));
    Window_Destroy (window);
}

static std::string Scene_Name (const testing::TestParamInfo<int> &info) { return SCENES[info.param].name; }

INSTANTIATE_TEST_SUITE_P (Scenes, ToolsGolden, testing::Range (0, SCENE_COUNT), Scene_Name);
