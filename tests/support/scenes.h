// Scenes: small labelled pictures of everything that the toolkit draws, in every state. The golden pictures are compared
// with them, and the gallery shows them. A scene draws the same on every system but for the shapes of letters.
#pragma once

#include <stdint.h>

#include "platform/window.h"
#include "tools/widget.h"

// Draws on a window of this client size, which shows SCENE_BACKGROUND.
struct Scene {
    const char *name;           // Of its golden picture: tests/golden/sdl/tools_NAME.png.
    int         width, height;
    void      (*draw) (Window window);
};

extern const Scene  SCENES[];
extern const int    SCENE_COUNT;

static const uint32_t SCENE_BACKGROUND = 0xD0D0D0;

// An off-screen window in which the scene has been drawn; Window_Destroy releases it.
Window Scene_Window (const Scene *scene);

// --- for scenes ------------------------------------------------------------

// A small caption; (x, y) is its bottom-left pixel.
void Scene_Label (Window window, int x, int y, const char *text);

// A widget that was initialised, and ends with its scope.
class Scene_Widget {
public:
    Scene_Widget (Window window, int x, int y, int w, int h, int red = 190, int green = 190, int blue = 190,
                  uint32_t state = 0);
    ~Scene_Widget ();
    Scene_Widget (const Scene_Widget &) = delete;
    Scene_Widget &operator= (const Scene_Widget &) = delete;

    Widget widget = {};
};

// --- scenes of other sources -----------------------------------------------

void Scene_Sliders_Across (Window window);      // tests/support/scenes_widgets.cpp
void Scene_Sliders_Upright (Window window);
void Scene_Slider_Sizes (Window window);
void Scene_Boxes (Window window);
void Scene_Buttons (Window window);
void Scene_Separators (Window window);

void Scene_Texts_Help (Window window);          // tests/support/scenes_texts.cpp
void Scene_Texts_Codes (Window window);
void Scene_Texts_Scrolled (Window window);
void Scene_Texts_Slider (Window window);
void Scene_Texts_Typed (Window window);
void Scene_Texts_Narrow (Window window);
