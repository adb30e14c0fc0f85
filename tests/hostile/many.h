// Files of many small things.
#pragma once

#include "tests/support/stream.h"

// The sanitizers take several times as long, and what grows evenly shows it with less.
#if defined(__SANITIZE_ADDRESS__)
static const int MILLION = 100000;
static const int MANY    = 12000;
#else
static const int MILLION = 1000000;
static const int MANY    = 50000; // Enough where a file is read dozens of times.
#endif

static const int DEEP    = 10000;
static const int DEEPEST = MILLION / 10;

static const uint32_t MOST = 0x7FFFFFFF; // Bytes of the largest file that is read.

enum Order { ASCENDING, DESCENDING, ALL_EQUAL };

Stream Nested_Sequences (int depth, bool defined_length);  // Each with one item, and text in the last one.
Stream Empty_Items (int count, bool defined_length);        // In one sequence of the same kind of length.
Stream Elements_In (Order order, int count);                // Private ones of 8 bytes, without value.

// The start of a file of this size: a sequence, its item and the value in it all end with the file.
Stream Filled_To (uint32_t size);
