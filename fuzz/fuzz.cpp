#include "fuzz/fuzz.h"

#include "fuzz/scratch.h"
#include "nema/NEMA_Read_Value.h"
#include "tables/data_dictionary.h"
#include "util/memory.h"

const Fuzz_Target Fuzz_Targets[FUZZ_TARGETS] = {
    {"file", Fuzz_File},
    {"comparison", Fuzz_Comparison},
    {"definition", Fuzz_Definition},
    {"configuration", Fuzz_Configuration},
    {"images", Fuzz_Images},
    {"command_line", Fuzz_Command_Line},
};

// What the program keeps until its end (the dictionary, arrays of a cache) is allocated once, by a first run perhaps; what
// a second run adds again is a leak, though a static variable may still point to it.
int Fuzz_Is_Clean (const Fuzz_Target *target, const uint8_t *bytes, size_t size) {
    static const int RUNS = 2;

    Dictionary_Build (nullptr);
    for (int run = 0; run < RUNS; run++) {
        long before = Memory_Live ();
        target->run (bytes, size);
        NEMA_Value_Rings_Free ();
        if (Memory_Live () <= before) return 1;
    }
    return 0;
}

void Fuzz_Run (const Fuzz_Target *target, const uint8_t *bytes, size_t size) {
    if (!Fuzz_Is_Clean (target, bytes, size)) Fuzz_Fail ("%s: memory stays allocated", target->name);
}
