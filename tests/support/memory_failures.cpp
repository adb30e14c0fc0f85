#include "tests/support/memory_failures.h"

#include <string.h>

#include <filesystem>
#include <fstream>
#include <map>

#include "util/memory.h"

// --- the message -----------------------------------------------------------

// Lines of the program's sources, by module.
using Sources = std::map<std::string, std::vector<std::string>>;

static const Sources &Program_Sources () {
    static Sources sources;
    if (!sources.empty ()) return sources;
    const std::filesystem::path root = TAGWRIGHT_SOURCE_DIR;
    for (const char *folder :
         {"app", "attribute", "compare", "nema", "syntax", "tables", "tools", "util", "view", "platform"})
        for (const auto &entry : std::filesystem::directory_iterator (root / folder)) {
            if (entry.path ().extension () != ".cpp") continue;
            std::ifstream             stream (entry.path ());
            std::vector<std::string> &lines = sources[entry.path ().stem ().string ()];
            for (std::string line; std::getline (stream, line);) lines.push_back (line);
        }
    return sources;
}

struct Report {
    std::string line, module, call, variable, count, size;
};

// Takes text from the beginning up to the first end, and the end. Returns false without an end.
static bool Take (std::string *text, const char *end, std::string *part) {
    size_t place = text->find (end);
    if (place == std::string::npos) return false;
    *part = text->substr (0, place);
    text->erase (0, place + strlen (end));
    return true;
}

static bool Take (std::string *text, const char *part) {
    if (text->compare (0, strlen (part), part) != 0) return false;
    text->erase (0, strlen (part));
    return true;
}

// The dimensions belong to all messages but strdup's. A number that is shorter is as wide as four digits.
static bool Read (std::string text, Report *report) {
    if (!Take (&text, "line ") || !Take (&text, " of ", &report->line) || report->line.size () < 4) return false;
    report->line.erase (report->line.find_last_not_of (' ') + 1);
    if (!Take (&text, " \n", &report->module) || !Take (&text, "memory error in ")) return false;
    if (!Take (&text, " (var=", &report->call)) return false;
    if (report->call == "strdup") return Take (&text, ")", &report->variable) && text.empty ();
    if (report->call != "malloc" && report->call != "calloc" && report->call != "realloc") return false;
    return Take (&text, ", dim=", &report->variable) && Take (&text, "x", &report->count) &&
           Take (&text, ")", &report->size) && text.empty ();
}

static bool Is_Number (const std::string &text) {
    return !text.empty () && text.find_first_not_of ("0123456789") == std::string::npos;
}

::testing::AssertionResult Names_Its_Place (const std::string &text) {
    Report report;
    if (!Read (text, &report) || !Is_Number (report.line))
        return ::testing::AssertionFailure () << "no memory message: " << text;

    auto source = Program_Sources ().find (report.module);
    if (source == Program_Sources ().end ()) return ::testing::AssertionFailure () << "no such source: " << text;
    size_t number = std::stoul (report.line);
    if (number < 1 || number > source->second.size ())
        return ::testing::AssertionFailure () << "no such line: " << text;

    const std::string &line = source->second[number - 1];
    size_t             here = line.find ("HERE (\"" + report.variable + "\", ");
    if (here == std::string::npos) return ::testing::AssertionFailure () << text << "\nhas the line\n" << line;
    if (report.call == "strdup") return ::testing::AssertionSuccess ();

    std::string rest = line.substr (here), count, size;
    if (!Take (&rest, "\", ", &count) || !Take (&rest, ", ", &count) || !Take (&rest, ")", &size))
        return ::testing::AssertionFailure () << text << "\nhas no dimensions in\n" << line;
    bool same = (!Is_Number (count) || count == report.count) && (!Is_Number (size) || size == report.size);
    if (!same || !Is_Number (report.count) || !Is_Number (report.size) || report.count == "0" || report.size == "0")
        return ::testing::AssertionFailure () << text << "\nhas other dimensions in\n" << line;
    return ::testing::AssertionSuccess ();
}

std::string Memory_Variable (const std::string &text) {
    Report report;
    return Read (text, &report) ? report.module + ": " + report.variable : text;
}

// --- trials ----------------------------------------------------------------

static const long MOST = 20000; // Allocations of a run.

static void Start_Failing (Memory_Loss loss, long n) {
    static const long COUNTS[] = {1, 2, 0};
    Memory_Fail_From (n, COUNTS[loss]);
}

// One run in which memory runs out, looked at in every way. How many allocations failed.
static long Fail_Once (const Memory_Trial &trial, Memory_Loss loss, long n, std::set<std::string> *told) {
    Start_Failing (loss, n);
    std::string result = trial.run ();
    long        failed = Memory_Failed ();
    Memory_Fail_At (0);
    std::vector<std::string> reports = trial.reports ();
    for (const std::string &report : reports) {
        EXPECT_TRUE (Names_Its_Place (report)) << n;
        told->insert (Memory_Variable (report));
    }
    EXPECT_EQ (failed, static_cast<long> (reports.size ()) + (trial.noted ? trial.noted () : 0)) << n;
    if (failed && trial.check) trial.check (result, reports);
    return failed;
}

std::set<std::string> Every_Memory_Failure (const Memory_Trial &trial, Memory_Loss loss) {
    std::set<std::string> told;
    trial.end ();
    const std::string whole = trial.run ();
    trial.end ();
    EXPECT_TRUE (trial.reports ().empty ());
    auto       count = [&trial] { return trial.live ? trial.live () : Memory_Live (); };
    const long live  = count ();

    for (long n = 1, failed = 1; failed; n++) {
        SCOPED_TRACE ("failure " + std::to_string (loss) + " at " + std::to_string (n));
        failed = Fail_Once (trial, loss, n, &told);
        EXPECT_EQ (whole, trial.run ());
        EXPECT_TRUE (trial.reports ().empty ());
        trial.end ();
        EXPECT_EQ (live, count ());
        if (failed && n >= MOST) ADD_FAILURE () << "it asks for memory more often than can be tried";
        if (::testing::Test::HasFailure ()) break;
    }
    return told;
}
