// The real program in a process of its own, used as a user does: by mouse, keys and dropped files, and seen by the pixels
// of its window. Nothing here waits for a while: it waits for a fact, for LIMIT at most.
#pragma once

#include <stdint.h>

#include <string>
#include <vector>

#include <windows.h>

#include "tests/support/temporary.h"

static const int PROGRAM_LIMIT = 20000; // Milliseconds.

// Tries until the fact holds.
template <class Fact> bool Comes_True (Fact fact, int limit = PROGRAM_LIMIT) {
    ULONGLONG end = GetTickCount64 () + (ULONGLONG)limit;
    while (!fact ()) {
        if (GetTickCount64 () > end) return false;
        Sleep (10);
    }
    return true;
}

// What a window showed. Places count from the bottom left, as those of the program do; colours are the program's, too.
struct Shot {
    int                   width = 0, height = 0;
    std::vector<uint32_t> pixels; // As the system has them, from the lowest row on.

    bool     operator== (const Shot &other) const;
    uint32_t At (int x, int y) const; // 0xFFFFFFFF outside.
    // How many pixels of the part from (x, y) on have this colour.
    int Count (uint32_t colour, int x, int y, int w, int h) const;
    // The same of any other colour.
    int Count_Others (uint32_t colour, int x, int y, int w, int h) const;
};

// Of the client area, as it is on the screen.
Shot Shot_Take (HWND window);

class Shown_Program {
public:
    // The directory is the user's APPDATA, and what the program writes to its console goes to "console.txt" there. Without
    // a configuration of the user's own, one is written that names Program_Scratch. window stays none on failure.
    Shown_Program (const Temporary_Directory &directory, const std::string &arguments);
    ~Shown_Program (); // Ends it by force when it hasn't ended.
    Shown_Program (const Shown_Program &)            = delete;
    Shown_Program &operator= (const Shown_Program &) = delete;

    Shot        Look () const { return Shot_Take (window); }
    std::string Console () const; // All that was written so far.
    std::string Audit () const;   // The audit file.
    bool        Answers () const; // 1 when it takes messages.

    // Waits for the end. The exit code, or -1 when it doesn't end.
    long long Wait () const;
    long long Close () const; // By the button in its frame.

    // Drops files.
    void Post (const std::vector<std::string> &names);
    // Drops files and waits for the end of the comparison; tracing must be on. What the console got.
    std::string Drop (const std::vector<std::string> &names);
    // The same pair in the same order, whatever was dropped before.
    std::string Compare (const std::string &a, const std::string &b);

    void Key (char digit) const;

    // By the real pointer. Places count from the bottom left of the client area.
    void Point (int x, int y) const;
    void Rest (int x, int y) const; // Until the pointer stays there.
    void Press () const;
    void Release () const;
    void Click (int x, int y) const;
    void Wheel (int x, int y, int delta) const;
    // The button is held, and the pointer trembles beside its way, until the fact holds: the program asks for the button
    // when it hears of a movement, and the system may answer as it was a moment ago. A press that went elsewhere, because
    // the pointer jumped back, is made once more.
    template <class Fact> bool Drag (int x1, int y1, int x2, int y2, Fact fact) const {
        const int across = y1 == y2;
        for (int tries = 0; tries < 3; tries++) {
            Rest (x1, y1);
            Press ();
            bool held = Comes_True (
                [&] {
                    Point (x2 + !across, y2 + across);
                    Point (x2, y2);
                    return Comes_True (fact, 200);
                },
                PROGRAM_LIMIT / 3);
            Release ();
            if (held) return true;
        }
        return false;
    }

    HWND   window  = nullptr;
    HANDLE process = nullptr;
    int    dropped = 0; // Files that the program took.

private:
    bool Start (const std::string &arguments);
    void Find_Window ();

    const Temporary_Directory &directory;
    DWORD                      identifier = 0;
};
