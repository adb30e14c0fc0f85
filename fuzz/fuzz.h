// What is fuzzed: each target takes any bytes and leads them through one part of the program as a file or as words. The
// fuzzer (libfuzzer.cpp) and the tests that replay faults (tests/faults) both call them. A target returns, whatever the
// bytes are, leaves nothing allocated and writes nothing but into a directory of its own.
#pragma once

#include <stddef.h>
#include <stdint.h>

// The first byte of File, Comparison, Definition and Configuration is chosen freely, the rest is what is read:
//   bits 0 to 2  trace level, so that listings are fuzzed too; 6 and 7 are none
//   bit 3        1: a comparison without merged list and rows, as in batch mode
//   bit 4        1: warnings and notes are written
//   bits 5, 6    vendor repairs: none, MODE_GE, none, MODE_GE_ROGAN
//   bit 7        1: files start implicit VR
void Fuzz_File          (const uint8_t *bytes, size_t size);    // A file through all phases.
void Fuzz_Comparison    (const uint8_t *bytes, size_t size);    // The halves of the bytes, two files.
void Fuzz_Definition    (const uint8_t *bytes, size_t size);    // Tables, with a form feed between one and the next.
void Fuzz_Configuration (const uint8_t *bytes, size_t size);    // A configuration file, and its skipped tags.
void Fuzz_Images        (const uint8_t *bytes, size_t size);    // TARGA and IGB, as image and as icon.
void Fuzz_Command_Line  (const uint8_t *bytes, size_t size);    // As one text, and as words with zero bytes between.

struct Fuzz_Target {
    const char *name;                                   // Also of its folder in tests/faults/.
    void      (*run) (const uint8_t *bytes, size_t size);
};

static const int FUZZ_TARGETS = 6;
extern const Fuzz_Target Fuzz_Targets[FUZZ_TARGETS];

// Runs a target. 1, or 0 when every run leaves more memory allocated than the one before it.
int  Fuzz_Is_Clean (const Fuzz_Target *target, const uint8_t *bytes, size_t size);
void Fuzz_Run      (const Fuzz_Target *target, const uint8_t *bytes, size_t size);  // The same, but 0 ends the process.
