// What both tests of value rules look at: findings, and the VRs whose length must be a multiple of a unit.
#pragma once

#include <string>

#include "tests/support/log_recorder.h"

// What the warning and note kinds received, a line each, without the prefix of tag and VR: "W: ..." or "N: ...".
inline std::string Findings (const Log_Recorder &log) {
    std::string text;
    for (const Log_Line &line : log.lines) {
        if (line.kind != LOG_WARNING && line.kind != LOG_REPORT) continue;
        std::string clean = Clean (line.text);
        text += (line.kind == LOG_WARNING ? "W: " : "N: ") + clean.substr (clean.find (" VR=") + 7) + "\n";
    }
    return text;
}

struct Binary_Rule {
    const char *vr;
    size_t      unit;
    const char *expecting;
};

inline const Binary_Rule BINARY_RULES[] = {
    {"AT", 4, "multiple 2*\"Unigned Short\""},
    {"FD", 8, "\"Floation Point Double\""},
    {"FL", 4, "\"Floation Point\""},
    {"OF", 4, "\"Other Float\""},
    {"OW", 2, "\"Other Word\""},
    {"SL", 4, "\"Signed Long\""},
    {"SS", 2, "\"Signed Short\""},
    {"UL", 4, "\"Signed Long\""},
    {"US", 2, "\"Unsigned Short\""},
};

// The finding about a value of that many bytes; none when they are whole units.
inline std::string Length_Finding (const Binary_Rule &rule, size_t length) {
    if (length % rule.unit == 0) return "";
    return std::string ("W: Invalid data! Expecting ") + rule.expecting + " but got " + std::to_string (length) +
           " bytes\n";
}
