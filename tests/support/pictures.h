// Pictures of windows, compared with golden ones: files of tests/golden/sdl/ that somebody has looked at and found right.
// Only on Linux, where a window's picture is the same on every machine: a test program that compares pictures sees no
// fonts but the Liberation ones.
#pragma once

#include <gtest/gtest.h>

#include "platform/window.h"

// What may differ, so that another version of the font library does no harm: every channel of a pixel by the tolerance, and
// a few pixels by anything.
static const int PICTURE_TOLERANCE      = 6;
static const int PICTURE_PIXELS_ALLOWED = 8;

// Compares what the window shows with NAME.png. A failure says where it has put the picture and one of the differences, and
// a missing file how to make it. With TAGWRIGHT_GOLDEN_UPDATE=1 in the environment (scripts/golden-update.sh) the file is
// written instead.
::testing::AssertionResult Picture_Matches (Window window, const char *name);

// The same, with the golden pictures in a folder of one's choice.
::testing::AssertionResult Picture_Matches_In (const char *folder, Window window, const char *name);
