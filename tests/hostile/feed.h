// Hostile files are fed to all that reads files: alone, compared with themselves and with a good file, as in batch mode and
// with definition. What must hold for every file stands here; a test adds what its file must give.
#pragma once

#include <string>
#include <vector>

#include "attribute/settings.h"
#include "tests/support/definition_tables.h"
#include "tests/support/stream.h"

// Test files are written in each of them.
static const Stream_Syntax HOSTILE_SYNTAXES[] = {EXPLICIT_LITTLE, IMPLICIT_LITTLE, EXPLICIT_BIG};

// A small file with everything: meta group, private block, sequences and items of defined and undefined length inside one
// another, encapsulated pixel data, padding.
Stream Everything (Stream_Syntax syntax);

static const int GOOD_ATTRIBUTES = 16; // At all depths of it.

// What a run said and gave.
struct Run_Result {
    int         count;
    std::string warnings; // Without display codes, a line each.
};

struct Feed {
    Definition_Tables tables; // Small ones, with a definition for the SOP class of Everything.
    Settings          settings = {};
    std::string       good; // The name of a file without fault.

    Feed ();
    ~Feed ();
    Feed (const Feed &)            = delete;
    Feed &operator= (const Feed &) = delete;

    std::string Write (const std::vector<unsigned char> &bytes); // Under the same name each time.

    // A file of this size that begins with the stream; the rest are zeros that take no room.
    std::string Sparse (const std::string &name, const Stream &stream, uintmax_t size);

    // The elements of these bytes are what expected.h says, and so is every warning about them.
    void Elements (const std::vector<unsigned char> &bytes);

    // A list of everything in the file, at least this many attributes, and all comparisons: the file equals itself, both
    // orders and both modes find the same, and alone every attribute counts. Every count is told. The count against the
    // good file.
    int Comparisons (const std::string &name, int attributes);

    // What can't be opened is said with a reason, and everything of the other side is absent.
    void Refused (const std::string &name, const std::string &reason);
    // The same of a name that nothing has: then batch mode compares nothing.
    void Missing (const std::string &name);

    void All (const std::vector<unsigned char> &bytes); // Both.

    Run_Result Run (const std::string &a, const std::string &b, int batch);

    std::string Outline (const std::string &name);    // Of the nested list, as tests/support/lists.h shows it.
    std::string Structural (const std::string &name); // Warnings about tags and sequences, a line each, none at the end.
};

// Attributes at all depths of the list that the file gives.
int Attributes_Read (const Settings *settings, const std::string &name);
