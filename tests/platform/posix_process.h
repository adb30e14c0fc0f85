// Processes and files of kinds that only Linux has, for tests that may not ask for the system themselves.
#pragma once

#include <functional>
#include <string>

// The exit status of what runs in a process of its own; -1 when it is killed, also for taking more than a minute.
int In_Child (const std::function<int ()> &what);

// Bytes by which the memory of a process of its own grew at most while it did this. -1 when it failed.
long long Peak_In_Child (const std::function<void ()> &what);

// 1 in a process that may read what its user may read and no more, 0 when it can't be made one. For a child only.
int Rights_Drop ();

void Rights_Set (const std::string &path, int rights); // As chmod takes them.
int  Fifo_Make (const std::string &path);

// A writer of a FIFO that has written the text and keeps it open, as long as it lives.
struct Fifo_Writer {
    Fifo_Writer (const std::string &path, const std::string &text);
    ~Fifo_Writer ();
    int descriptor;
};

// The name of a terminal that waits for input, as long as it lives; empty when there is none.
struct Terminal {
    Terminal ();
    ~Terminal ();
    std::string name;
    int         master;
};
