// The trace level from the keyboard: a digit of the main window switches tracing on and off.
#pragma once

#include "platform/window.h"

static const int TRACE_KEY_IDENTIFIER = 9;      // Only says who the program is.
static const int TRACE_KEY_HIGHEST    = 5;      // 6, 7 and 8 are this level, too.

// digit 0..9. The level that tracing starts from 0 with opens the console and writes the banners.
void Trace_Level_Key (Window window, int digit);
