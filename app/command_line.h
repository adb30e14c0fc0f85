// The words of the command line.
#pragma once

#include <stdio.h>

#include "platform/system.h"

struct Command_Line {
    int    trace_level;
    int    has_x, x, width;     // -x
    int    has_y, y, height;    // -y
    int    count;               // Input names,
    char **input_file;          // owned, with a none behind the last.
};

// Exit code of a command line that can't be understood.
static const int COMMAND_LINE_BAD = 2;

// Reads all words. 1; 0 after a memory message; -1 after an unknown option, which was written to standard error and
// followed by the usage text. Command_Line_Free in all cases.
int  Command_Line_Read (const Program_Arguments *arguments, Command_Line *line);
void Command_Line_Free (Command_Line *line);

void Command_Line_Usage (FILE *output);
