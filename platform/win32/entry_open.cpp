// The program that Windows starts for a file that the user opens with Tagwright: it shows it in the window. Names come as
// words here, since those of other people's files have blanks.
#include <stdlib.h>

#include <windows.h>

#include "platform/system.h"

extern "C" {
int _dowildcard = 0; // A name with a bracket is a name, not a pattern.
}

int WINAPI WinMain (HINSTANCE, HINSTANCE, LPSTR, int) {
    Program_Arguments arguments = {nullptr, __argc - 1, __argv + 1};
    arguments.in_window         = 1;
    return System_Exit_Status (Program_Run (&arguments));
}
