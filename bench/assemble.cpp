// Assembles the definition of every modality once, as the first thing after the start: assemble FOLDER prints the
// milliseconds of each, the slowest first line. FOLDER holds the tables and ends with its separator.
#include <stdio.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "tables/definition_files.h"
#include "tables/modality.h"
#include "util/my_error_fct.h"

static int Silent (Window, int, const char *) { return 1; }

int main (int count, char **words) {
    static const std::string prefix = "DICOM_Module_", ending = ".txt";
    if (count != 2) {
        fputs ("usage: assemble FOLDER/\n", stderr);
        return 2;
    }
    Log_Sink_Set (Silent);
    DICOM_Module_Dir_Set (words[1]);

    std::vector<std::pair<double, std::string>> times;
    for (const auto &entry : std::filesystem::directory_iterator (words[1])) {
        std::string name = entry.path ().filename ().string ();
        if (name.compare (0, prefix.size (), prefix)) continue;
        name       = name.substr (prefix.size (), name.size () - prefix.size () - ending.size ());
        auto start = std::chrono::steady_clock::now ();
        if (!DICOM_Module_Read (nullptr, nullptr, name.c_str ())) name += " (none)";
        std::chrono::duration<double, std::milli> spent = std::chrono::steady_clock::now () - start;
        times.push_back ({spent.count (), name});
        DICOM_Module_Free (nullptr);
    }
    std::sort (times.rbegin (), times.rend ());
    for (const auto &[milliseconds, name] : times) printf ("%.1f ms  %s\n", milliseconds, name.c_str ());
    return times.empty ();
}
