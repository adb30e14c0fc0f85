// The small DICOM files of examples/, made byte by byte, and what a comparison of each pair of them gives.
#pragma once

#include <string>
#include <vector>

struct Example {
    std::string                name;
    std::vector<unsigned char> bytes;
};

struct Example_Pair {
    const char *a;
    const char *b;
    int         differences;
};

// All files, in the order of their description.
std::vector<Example> Examples_Make ();

// Pairs of different files. A file compared with itself has no differences.
std::vector<Example_Pair> Example_Pairs ();
