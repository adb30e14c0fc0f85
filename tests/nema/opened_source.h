// Bytes as a source of the reader: the same test reads them from a file and from memory.
#pragma once

#include <string>
#include <vector>

#include "nema/NEMA_Read_Data.h"
#include "tests/support/stream.h"
#include "tests/support/temporary.h"

typedef std::vector<unsigned char> Bytes;

// "08 00 43 53" to bytes; blanks are free.
Bytes Hex (const std::string &text);

Bytes operator+ (const Bytes &a, const Bytes &b);
Bytes From_Text (const std::string &text);

class Opened_Source {
public:
    Opened_Source (int kind, const Bytes &bytes); // Reports at LOG_WARNING.
    ~Opened_Source ();
    Opened_Source (const Opened_Source &)            = delete;
    Opened_Source &operator= (const Opened_Source &) = delete;

    NEMA_Source source   = {};
    Settings    settings = {};

    std::string Name () const; // What messages call it.
    int64_t     Position () const;

private:
    Temporary_Directory directory;
    std::string         path;
    Bytes               bytes; // In a block of its own size, so that the sanitizers see each byte too many.
};

// What Error_Text says about this code.
std::string Error_Text_Of (unsigned error);
