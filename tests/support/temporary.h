// Files and directories that live as long as a test.
#pragma once

#include <string>
#include <vector>

class Temporary_Directory {
public:
    Temporary_Directory ();
    ~Temporary_Directory ();        // Removes it with all that is in it.

    std::string path;               // Ends with the system's separator.

    std::string File (const std::string &name) const;                                       // path + name
    std::string Write (const std::string &name, const std::vector<unsigned char> &bytes) const;     // The full name.
    std::string Write (const std::string &name, const std::string &text) const;
};

// The whole file; empty when it can't be read.
std::string Read_Whole (const std::string &name);
