// A test that needs a process of its own (exit statuses, consoles, mutexes left behind) starts this very program again
// with the name of a role in the environment; the role runs before main and ends the process.
#pragma once

#include <string>

struct Child_Result {
    bool          started;
    unsigned long status; // Exit status, all 32 bits.
    std::string   output; // What it wrote to standard output, when that was a pipe.
};

// How the role "console" ends.
static const unsigned long CONSOLE_SHOWS = 0, CONSOLE_REFUSED = 1, CONSOLE_UNREADABLE = 2, CONSOLE_DIFFERENT = 3;

static const int CHILD_LOG_LINES = 100;     // What the role "log" writes into audit.dat of the directory.

enum Child_Output { CHILD_PIPE, CHILD_FILE, CHILD_NONE };

// Runs the role with an argument and waits for its end. CHILD_FILE writes to the file name; CHILD_NONE gives it no
// standard output and no console.
Child_Result Child_Run (const std::string &role, const std::string &argument, Child_Output output,
                        const std::string &file = "");
