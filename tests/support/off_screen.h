// A window that is never seen, its pixels, and what reached the seam.
#pragma once

#include <stdint.h>

#include <map>
#include <string>
#include <vector>

#include "tools/device.h"

// An off-screen window of this client size, destroyed at the end.
class Off_Screen {
public:
    explicit Off_Screen (int width, int height, uint32_t background = 0xFFFFFF, Window_Procedure procedure = nullptr);
    ~Off_Screen ();
    Off_Screen (const Off_Screen &) = delete;
    Off_Screen &operator= (const Off_Screen &) = delete;

    uint32_t Pixel (int x, int y) const;    // Not inside a session.

    // The pixels as letters, a line for each row from top to bottom; "?" for a colour that has none.
    std::string Rows (const std::map<uint32_t, char> &letters) const;

    // How many pixels of the part from (x, y) on have this colour.
    int Count (uint32_t colour) const;
    int Count (uint32_t colour, int x, int y, int w, int h) const;

    Window window;
    int    width, height;
};

// Collects the calls of Device::Watch while it lives.
class Call_Recorder {
public:
    struct Call {
        Device::Call_Kind kind;
        int               x, y, w, h;
        uint32_t          colour;
        Drawing_Font      font;
        std::string       text;
    };

    Call_Recorder ();
    ~Call_Recorder ();
    Call_Recorder (const Call_Recorder &) = delete;
    Call_Recorder &operator= (const Call_Recorder &) = delete;

    int               Count (Device::Call_Kind kind) const;
    std::vector<Call> Of (Device::Call_Kind kind) const;

    std::vector<Call> calls;
};
