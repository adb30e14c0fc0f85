// Catches what Log_Message reports while it lives, so that a test compares wording, kind and order.
#pragma once

#include <string>
#include <vector>

#include "util/my_error_fct.h"

struct Log_Line {
    int         kind;
    std::string text;       // With its display codes.
};

class Log_Recorder {
public:
    explicit Log_Recorder (int trace_level = 0);    // Sets the trace level and restores it, and the sink, at the end.
    ~Log_Recorder ();

    std::vector<Log_Line> lines;
    int                   answer = 0;               // Given to questions.

    std::string Text (int kind) const;              // All texts of a kind, each followed by a line feed, codes removed.
    std::string All () const;                       // All lines as "kind: text\n", codes removed.
    int         Count (int kind, const std::string &part = "") const;   // Lines of a kind that contain part.
    bool        Has (int kind, const std::string &text) const;          // A line that is exactly this, codes kept.
    bool        Contains (const std::string &part) const;               // Any line with part in its cleaned text.
    void        Clear ();

private:
    int8_t level_before;
};

// The text without its display codes.
std::string Clean (const std::string &text);
