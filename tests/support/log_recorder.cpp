#include "tests/support/log_recorder.h"

static Log_Recorder *current;

static int Record (Window, int kind, const char *text) {
    current->lines.push_back ({kind, text});
    return kind == LOG_QUESTION ? current->answer : 1;
}

static int Silent (Window, int, const char *) { return 1; }

std::string Clean (const std::string &text) {
    std::string clean;
    for (char c : text)
        if ((c >= 0x20 && c <= 0x7E) || c == '\t' || c == '\n') clean += c;
    return clean;
}

Log_Recorder::Log_Recorder (int trace_level) {
    level_before    = Log.trace_level;
    Log.trace_level = static_cast<int8_t> (trace_level);
    current         = this;
    Log_Sink_Set (Record);
}

Log_Recorder::~Log_Recorder () {
    Log.trace_level = level_before;
    current         = nullptr;
    Log_Sink_Set (Silent);
}

std::string Log_Recorder::Text (int kind) const {
    std::string all;
    for (const Log_Line &line : lines)
        if (line.kind == kind) all += Clean (line.text) + "\n";
    return all;
}

std::string Log_Recorder::All () const {
    std::string all;
    for (const Log_Line &line : lines) all += std::to_string (line.kind) + ": " + Clean (line.text) + "\n";
    return all;
}

int Log_Recorder::Count (int kind, const std::string &part) const {
    int count = 0;
    for (const Log_Line &line : lines)
        if (line.kind == kind && Clean (line.text).find (part) != std::string::npos) count++;
    return count;
}

bool Log_Recorder::Has (int kind, const std::string &text) const {
    for (const Log_Line &line : lines)
        if (line.kind == kind && line.text == text) return true;
    return false;
}

bool Log_Recorder::Contains (const std::string &part) const {
    for (const Log_Line &line : lines)
        if (Clean (line.text).find (part) != std::string::npos) return true;
    return false;
}

void Log_Recorder::Clear () { lines.clear (); }
