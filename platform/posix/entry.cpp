// The program starts here on Linux.
#include <signal.h>
#include <string.h>

#include "platform/system.h"

// Called by this name, which file managers use, it shows the files in the window.
static int Is_In_Window (const char *command) {
    const char *last = strrchr (command, '/');
    return !strcmp (last ? last + 1 : command, "tagwright-open");
}

// A log that reaches the limit of a file's size (ulimit -f) loses its lines; by default it would end the program.
int main (int count, char **words) {
    signal (SIGXFSZ, SIG_IGN);
    int               arguments_count = count > 0 ? count - 1 : 0;
    Program_Arguments arguments       = {nullptr, arguments_count, words + (count > 0)};
    arguments.in_window               = count > 0 && Is_In_Window (words[0]);
    return System_Exit_Status (Program_Run (&arguments));
}
