// What boxes and buttons are tested with alike: a panel of 100 x 60 at (20, 30) in an off-screen window.
#pragma once

#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/off_screen.h"
#include "tools/buttons.h"
#include "tools/device.h"
#include "util/memory.h"

// A box or a button by what both can do.
struct Panel {
    std::string                  module, name;      // As messages name its functions.
    Widget                      *widget;
    Box_Look                    *look;
    std::function<void (Window)> init;
    std::function<void ()>       exit, draw;
    std::function<int (int)>     select;
};

inline Panel Panel_Of (Box_Widget *box) {
    return {"Boxs",
            "Box",
            &box->widget,
            &box->look,
            [box] (Window window) { Boxs::Init (box, window); },
            [box] { Boxs::Exit (box); },
            [box] { Box::Draw (box); },
            [box] (int mouse_state) { return Box::Select (box, mouse_state); }};
}

inline Panel Panel_Of (Button_Widget *button) {
    return {"Buttons",
            "Button",
            &button->widget,
            &button->look,
            [button] (Window window) { Buttons::Init (button, window); },
            [button] { Buttons::Exit (button); },
            [button] { Button::Draw (button); },
            [button] (int mouse_state) { return Button::Select (button, mouse_state); }};
}

class Panel_Test : public testing::Test {
protected:
    static constexpr uint32_t WHITE     = Drawing_Colour (255, 255, 255);
    static constexpr uint32_t FACE      = Drawing_Colour (180, 190, 200);
    static constexpr uint32_t SHADE     = Drawing_Colour (100, 110, 120);
    static constexpr uint32_t HIGHLIGHT = Drawing_Colour (230, 100, 100);

    // The record that the panel stands for is the derived class's.
    explicit Panel_Test (const Panel &of) : panel (of) {}

    void SetUp () override {
        ASSERT_TRUE (window) << Window_Error_Text ();
        panel.widget->x         = 20;
        panel.widget->y         = 30;
        panel.widget->w         = 100;
        panel.widget->h         = 60;
        panel.widget->colour[0] = 180;
        panel.widget->colour[1] = 190;
        panel.widget->colour[2] = 200;
    }

    void TearDown () override {
        Device::Watch (nullptr);
        panel.exit ();
        EXPECT_EQ (Memory_Live (), 0);
    }

    void Make (uint32_t state = 0) {
        panel.widget->state = state;
        panel.init (window);
        panel.draw ();
    }

    int Move (int x, int y, int mouse_state = MOUSE_MOVED) {
        Device::Pointer_Set (x, y);
        return panel.select (mouse_state);
    }

    // From now on drawn, texts and the rest tell what reaches the seam.
    static void Watch () {
        drawn  = 0;
        text_x = text_y = -1;
        text_colour     = 0;
        texts.clear ();
        Device::Watch (Note);
    }

    uint32_t Pixel (int x, int y) { return screen.Pixel (x, y); }

    Off_Screen screen = Off_Screen (300, 200);
    Window     window = screen.window;
    Panel      panel;

    static inline int         drawn, text_x, text_y;
    static inline uint32_t    text_colour;
    static inline std::string texts;

private:
    static void Note (const Device::Call *call) {
        drawn += call->kind >= Device::CALL_FILL;
        if (call->kind != Device::CALL_TEXT) return;
        texts += std::string (call->text, call->length) + "\n";
        text_x      = call->x;
        text_y      = call->y;
        text_colour = call->colour;
    }
};
