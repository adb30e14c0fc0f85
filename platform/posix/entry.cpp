// The program starts here on Linux.
#include <fcntl.h>
#include <signal.h>
#include <string.h>
#include <unistd.h>

#include "platform/system.h"

// Called by this name, which file managers use, it shows the files in the window.
static int Is_In_Window (const char *command) {
    const char *last = strrchr (command, '/');
    return !strcmp (last ? last + 1 : command, "tagwright-open");
}

// Where the caller has closed a standard stream the next file opened gets its number, and with it what is meant for the
// console. A directory that is open for reading takes the place: it can't be written, just like what is closed.
static void Standard_Streams_Fill (void) {
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; descriptor++)
        if (fcntl (descriptor, F_GETFD) < 0 && open ("/", O_RDONLY) < 0) return;
}

// A log that reaches the limit of a file's size (ulimit -f) loses its lines; by default it would end the program.
int main (int count, char **words) {
    signal (SIGXFSZ, SIG_IGN);
    Standard_Streams_Fill ();
    int               arguments_count = count > 0 ? count - 1 : 0;
    Program_Arguments arguments       = {nullptr, arguments_count, words + (count > 0)};
    arguments.in_window               = count > 0 && Is_In_Window (words[0]);
    return System_Exit_Status (Program_Run (&arguments));
}
