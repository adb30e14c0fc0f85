#include "tests/platform/posix_process.h"

#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

static const unsigned PATIENCE = 60; // Seconds.

// Whether what the child did went on to its end; its status.
static int Wait (pid_t child) {
    int status = -1;
    waitpid (child, &status, 0);
    return WIFEXITED (status) ? WEXITSTATUS (status) : -1;
}

int In_Child (const std::function<int ()> &what) {
    fflush (stdout);
    pid_t child = fork ();
    if (!child) {
        alarm (PATIENCE);
        _exit (what ());
    }
    return Wait (child);
}

// Kilobytes, as /proc tells them: the peak that getrusage knows may be the parent's.
static long Status_Value (const char *name) {
    long  value = 0;
    char  line[200];
    FILE *file = fopen ("/proc/self/status", "r");
    if (!file) return 0;
    std::string format = std::string (name) + ": %ld";
    while (fgets (line, sizeof line, file))
        if (sscanf (line, format.c_str (), &value) == 1) break;
    fclose (file);
    return value;
}

long long Peak_In_Child (const std::function<void ()> &what) {
    int  ends[2];
    long kilobytes = -1;
    if (pipe (ends)) return -1;
    int status = In_Child ([&] {
        long before = Status_Value ("VmRSS");
        what ();
        long grown = Status_Value ("VmHWM") - before;
        return write (ends[1], &grown, sizeof grown) == sizeof grown ? 0 : 1;
    });
    close (ends[1]);
    if (status || read (ends[0], &kilobytes, sizeof kilobytes) != sizeof kilobytes) kilobytes = -1;
    close (ends[0]);
    return kilobytes < 0 ? -1 : kilobytes * 1024LL;
}

int Rights_Drop () { return !(!geteuid () && setresuid (54321, 54321, 54321)); }

void Rights_Set (const std::string &path, int rights) { chmod (path.c_str (), static_cast<mode_t> (rights)); }

int Fifo_Make (const std::string &path) { return !mkfifo (path.c_str (), 0600); }

Fifo_Writer::Fifo_Writer (const std::string &path, const std::string &text)
    : descriptor (open (path.c_str (), O_RDWR | O_NONBLOCK)) {
    if (descriptor >= 0 && write (descriptor, text.data (), text.size ()) < 0) perror ("fifo");
}

Fifo_Writer::~Fifo_Writer () { close (descriptor); }

Terminal::Terminal () : master (posix_openpt (O_RDWR | O_NOCTTY)) {
    const char *slave = master >= 0 && !grantpt (master) && !unlockpt (master) ? ptsname (master) : nullptr;
    if (slave) name = slave;
}

Terminal::~Terminal () { close (master); }
