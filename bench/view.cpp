// Draws a result of 200,000 rows in a window that is never seen: view_bench FOLDER prints the milliseconds of a repaint at
// the list's start, middle and end, and of folding and unfolding half of it by a click. FOLDER holds Icons/ and ends with
// its separator.
#include <stdio.h>

#include <algorithm>
#include <chrono>

#include "compare/attribute_comparison.h"
#include "tests/view/shown.h"
#include "tools/icon.h"
#include "util/my_error_fct.h"

static const int HALF = 100000, SEQUENCES = 1000,
                 MEMBERS = 98; // 2 + HALF + SEQUENCES * (2 + MEMBERS) rows and the root.

static int Silent (Window, int, const char *) { return 1; }

// The middle one of all times: a busy machine doesn't change it much.
template <typename Work> static double Median (Work work) {
    static const int    RUNS = 20; // Even, so that folding ends as it began.
    std::vector<double> times;
    for (int i = 0; i < RUNS; i++) {
        auto start = std::chrono::steady_clock::now ();
        work ();
        std::chrono::duration<double, std::milli> spent = std::chrono::steady_clock::now () - start;
        times.push_back (spent.count ());
    }
    std::sort (times.begin (), times.end ());
    return times[RUNS / 2];
}

static Attribute *Member (Shown *shown, int number) {
    static const uint16_t codes[] = {DIFFERENCE_NONE, DIFFERENCE_SKIPPED, DIFFERENCE_BYTES, DIFFERENCE_ONLY_A};
    char                  value[64];
    snprintf (value, sizeof value, "%26d /vs/ %d", number, number / 2);
    Attribute *record = shown->Record (static_cast<uint16_t> (0x0010 + (number >> 16)), static_cast<uint16_t> (number),
                                       codes[number % 4], "IS", number % 12);
    record->diff_a    = number % 7;
    record->data      = reinterpret_cast<uint8_t *> (shown->Text (value));
    record->description = shown->Text ("Number of " + std::to_string (number));
    return record;
}

static Attribute *Sequence (Shown *shown, int first, int count) {
    std::vector<Attribute *> members;
    for (int i = 0; i < count; i++) members.push_back (Member (shown, first + i));
    return shown->Sequence (0x0008, 0x1140, {shown->List (members)});
}

static void Repaint_At (const char *place, float value) {
    Result.vertical.value = value;
    printf ("repaint, %s:  %.1f ms\n", place, Median (View::Redraw_All));
}

int main (int count, char **words) {
    if (count != 2) {
        fputs ("usage: view_bench FOLDER/\n", stderr);
        return 2;
    }
    Log_Sink_Set (Silent);
    Shown shown (1600, 1000);
    if (!shown.window) {
        fprintf (stderr, "%s\n", Window_Error_Text ());
        return 1;
    }
    Icon_Free_All ();
    Icon_Install_Path_Set (words[1]);

    std::vector<Attribute *> list = {Sequence (&shown, 0, HALF)};
    for (int i = 0; i < SEQUENCES; i++) list.push_back (Sequence (&shown, HALF + i * MEMBERS, MEMBERS));
    shown.Build (shown.List (list));
    shown.Unfold_All ();
    printf ("%d lines\n", Rows.visible);

    Repaint_At ("start", 0);
    Repaint_At ("middle", Result.vertical.maximum / 2);
    Repaint_At ("end", Result.vertical.maximum);

    Result.vertical.value = 0;
    const int box_x = Result.tree.widget.x + 12 + 7, box_y = shown.Band (1) + 5;
    const int lines = Rows.visible;
    printf ("fold or unfold:  %.1f ms\n", Median ([&] { shown.Click (box_x, box_y); }));
    shown.Click (box_x, box_y);
    return Rows.visible == lines; // Else the clicks have missed.
}
