// What the warning and note kinds received, a line each, without the prefix of tag and VR: "W: ..." or "N: ...".
#pragma once

#include <string>

#include "tests/support/log_recorder.h"

inline std::string Findings (const Log_Recorder &log) {
    std::string text;
    for (const Log_Line &line : log.lines) {
        if (line.kind != LOG_WARNING && line.kind != LOG_REPORT) continue;
        std::string clean = Clean (line.text);
        text += (line.kind == LOG_WARNING ? "W: " : "N: ") + clean.substr (clean.find (" VR=") + 7) + "\n";
    }
    return text;
}
