// Pieces of message texts that several modules of the engine share.
#pragma once

#include "util/my_error_fct.h"

// Opens a warning: four blanks, the word emphasised in yellow.
#define WARNING_TEXT "    " EMPHASIS COLOUR_YELLOW "WARNING:" COLOUR_BLACK " "

// A tag with its numbers in blue; takes group and element.
#define TAG_TEXT "(" COLOUR_BLUE "%04x" COLOUR_BLACK "," COLOUR_BLUE "%04x" COLOUR_BLACK ")"
