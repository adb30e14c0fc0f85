// Files of many private creators.
#pragma once

#include <functional>
#include <string>

#include "tests/support/stream.h"

static const int LONG_TABLE = 200; // Attributes of Long_Table.

std::string Unknown_Creator (int number);   // Of 64 characters, without a table by any beginning of it.
std::string Known_Creator (int number);     // Served by the table of LONG.
std::string Long_Table (void);

// So many creators, each with an attribute (gggg,bb01).
Stream Creators (int count, const std::function<std::string (int)> &creator);
