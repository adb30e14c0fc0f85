// What libFuzzer calls. FUZZ_TARGET is the index of the target that this program runs.
#include "fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput (const uint8_t *bytes, size_t size);

extern "C" int LLVMFuzzerTestOneInput (const uint8_t *bytes, size_t size) {
    Fuzz_Run (&Fuzz_Targets[FUZZ_TARGET], bytes, size);
    return 0;
}
