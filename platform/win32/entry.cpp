// The program starts here on Windows, as a program with windows and without a console of its own.
#include <windows.h>

#include "platform/system.h"

int WINAPI WinMain (HINSTANCE, HINSTANCE, LPSTR text, int) {
    Program_Arguments arguments = {text, 0, nullptr};
    return System_Exit_Status (Program_Run (&arguments));
}
