// Runs an operation with memory running out at every place where it asks for some.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

// Success when the text is the message of a memory failure whose every part is true: the module is a source, its line has
// HERE with the variable as written there, and the dimensions are those of the source, where it has them as numbers.
::testing::AssertionResult Names_Its_Place (const std::string &report);

std::string Memory_Variable (const std::string &report);    // "module: variable"

// How memory runs out: for one allocation, for two in a row, or for good.
enum Memory_Loss { LOSS_OF_ONE, LOSS_OF_TWO, LOSS_OF_ALL };

struct Memory_Trial {
    // The operation, from a start at which nothing is cached. What it did as a text, without what it said about memory.
    std::function<std::string ()> run;
    // Releases what it left, as the program does at its end.
    std::function<void ()> end;
    // The texts of the error boxes since the last call.
    std::function<std::vector<std::string> ()> reports;
    // How many failures were told in other words since the last call. None: the boxes tell of each.
    std::function<long ()> noted;
    // Blocks that are alive, without those that a run may leave behind. None: Memory_Live.
    std::function<long ()> live;
    // What a run that failed has to show, or none.
    std::function<void (const std::string &result, const std::vector<std::string> &reports)> check;
};

// For each n until none fails: a run with the n-th allocation failing, one without failure that does the same as ever,
// and a look at what is still alive. The variables that were told, as Memory_Variable has them.
std::set<std::string> Every_Memory_Failure (const Memory_Trial &trial, Memory_Loss loss);
