// A program that the tests start, to see what only a whole process shows:
//   install-path               writes the install path that it finds
//   guard PREVIOUS FAULT FILE  maps FILE with a handler of the kind PREVIOUS (default, ignore, plain, full) already there,
//                              then meets a FAULT: ours (inside the mapping), foreign (in a mapping of another) or sent
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "platform/system.h"

static void Say (const char *text) {
    if (write (1, text, strlen (text)) < 0) _exit (3);
}

static void Plain (int) {
    Say ("plain");
    _exit (0);
}

static void Full (int, siginfo_t *information, void *) {
    Say (information->si_addr || information->si_code <= 0 ? "full" : "nowhere");
    _exit (0);
}

static void Previous (const std::string &kind) {
    struct sigaction action = {};
    if (kind == "default") action.sa_handler = SIG_DFL;
    if (kind == "ignore") action.sa_handler = SIG_IGN;
    if (kind == "plain") action.sa_handler = Plain;
    if (kind == "full") {
        action.sa_sigaction = Full;
        action.sa_flags     = SA_SIGINFO;
    }
    sigaction (SIGBUS, &action, nullptr);
}

static int Touch (const volatile unsigned char *byte) { return *byte; }

static int Guard (const std::string &fault, const char *name) {
    System_Mapping mapping = {};
    System_File   *file    = System_File_Open (name);
    if (!file || !System_File_Map (file, 0, (size_t)System_File_Size (file), &mapping)) return 3;
    int   descriptor = open (name, O_RDONLY);
    void *foreign    = mmap (nullptr, mapping.size, PROT_READ, MAP_PRIVATE, descriptor, 0);
    if (truncate (name, 0) || foreign == MAP_FAILED) return 3;

    int byte = 0;
    if (fault == "ours") byte = Touch (mapping.bytes);
    if (fault == "foreign") byte = Touch (static_cast<unsigned char *> (foreign));
    if (fault == "sent") raise (SIGBUS);
    printf ("went on with %d", byte);
    return 0;
}

int main (int count, char **words) {
    if (count == 2 && !strcmp (words[1], "install-path")) {
        char path[SYSTEM_PATH_SIZE];
        if (!System_Install_Path (path, sizeof path)) return 1;
        fputs (path, stdout);
        return 0;
    }
    if (count != 5 || strcmp (words[1], "guard")) return 2;
    Previous (words[2]);
    return Guard (words[3], words[4]);
}
