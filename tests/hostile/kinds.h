// Makers of hostile files, for tests of what is read from them and of the window that they are dropped on.
#pragma once

#include <string>
#include <vector>

#include "tests/hostile/expected.h"
#include "tests/support/stream.h"

struct Hostile_File {
    std::string                name; // What is wrong with it.
    std::vector<unsigned char> bytes;
};

struct Hostile_Kind {
    const char *name;
    std::vector<Hostile_File> (*make) (Stream_Syntax syntax);
};

// All kinds of which there are many files.
extern const std::vector<Hostile_Kind> HOSTILE_KINDS;

static const uint16_t DELIMITERS[] = {0xE000, 0xE00D, 0xE0DD};
static const uint32_t LENGTHS[]    = {0, 0xFFFFFFFF, 8};

// One of the three tags, with a text behind it that its length counts.
std::vector<unsigned char> Delimiter (Stream_Syntax syntax, uint16_t element, uint32_t length);

std::vector<Hostile_File> Lying_Lengths (Stream_Syntax syntax);         // Every length field, nine values each.
std::vector<Hostile_File> Delimiters_Before (Stream_Syntax syntax);     // Before every element.
std::vector<Hostile_File> Delimiters_Over (Stream_Syntax syntax);       // Over every byte behind the preamble.
std::vector<Hostile_File> Delimiters_First (Stream_Syntax syntax);      // With a meta group, and without.
Stream                    Meta_Sequence (Stream_Syntax syntax, bool defined_length);

static const char IMPLICIT_UID[] = "1.2.840.10008.1.2";
static const char LITTLE_UID[]   = "1.2.840.10008.1.2.1";
static const char BIG_UID[]      = "1.2.840.10008.1.2.2";
static const char JPEG_UID[]     = "1.2.840.10008.1.2.4.50";

void Add_Syntax (Stream *stream, const char *uid);

// Two transfer syntaxes, and data that is written as the second says.
Stream Two_Syntaxes (const char *first, const char *second, Stream_Syntax syntax);
