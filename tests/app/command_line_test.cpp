#include "app/command_line.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/log_recorder.h"
#include "util/memory.h"

static const char *const USAGE = "\n"
                                 " ----- ----- Tagwright (version: 2.1 rev-2) ----- ----- \n"
                                 "\n"
                                 "\n"
                                 " --- usage: ---\n"
                                 " Tagwright [-v] [-t *] [-x * *][-y * *] [input_1 input_2]\n"
                                 "\n"
                                 "\t[-t *]     trace level (0 to 5)\n"
                                 "\t[-v]       verbose (trace level = 5)\n"
                                 "\n"
                                 "\t[-x * *]   X position & dimentinon of window\n"
                                 "\t[-y * *]   Y position & dimentinon of window\n"
                                 "\n"
                                 "\t[input_1 input_2]   2 files to compare (if not present\n"
                                 "\t                    the program can be use as a drag&drop)\n"
                                 "\n";

// A command line that was read, with what it wrote.
struct Reading {
    Command_Line line   = {};
    int          result = 0;
    std::string  output, errors;

    explicit Reading (const std::vector<const char *> &words) {
        Read ({nullptr, static_cast<int> (words.size ()), words.data ()});
    }
    explicit Reading (const char *text) { Read ({text, 0, nullptr}); }
    ~Reading () { Command_Line_Free (&line); }

    void Read (const Program_Arguments &arguments) {
        testing::internal::CaptureStdout ();
        testing::internal::CaptureStderr ();
        result = Command_Line_Read (&arguments, &line);
        fflush (stdout);
        output = testing::internal::GetCapturedStdout ();
        errors = testing::internal::GetCapturedStderr ();
    }
    std::vector<std::string> Names () const {
        std::vector<std::string> names;
        for (int i = 0; i < line.count; i++) names.push_back (line.input_file[i]);
        return names;
    }
};

typedef std::vector<std::string> Names;

TEST (CommandLine, NoWords) {
    Reading words ({}), text ("");
    for (Reading *reading : {&words, &text}) {
        EXPECT_EQ (1, reading->result);
        EXPECT_EQ (0, reading->line.count);
        EXPECT_EQ (nullptr, reading->line.input_file);
        EXPECT_EQ (0, reading->line.trace_level);
        EXPECT_EQ ("", reading->output + reading->errors);
    }
}

TEST (CommandLine, NamesAreCopiedInTheirOrder) {
    Reading reading ({"a.dcm", "with blanks.dcm", "", "\"quoted\""});
    EXPECT_EQ (1, reading.result);
    EXPECT_EQ ((Names {"a.dcm", "with blanks.dcm", "", "\"quoted\""}), reading.Names ());
    EXPECT_EQ (nullptr, reading.line.input_file[4]);
}

TEST (CommandLine, TextIsCutAtBlanksOutsideQuotes) {
    Reading reading (" a.dcm\t\"C:\\with blanks\\b.dcm\"\n  -t 3 c.dcm  ");
    EXPECT_EQ (1, reading.result);
    EXPECT_EQ ((Names {"a.dcm", "C:\\with blanks\\b.dcm", "c.dcm"}), reading.Names ());
    EXPECT_EQ (3, reading.line.trace_level);
}

TEST (CommandLine, ManyNames) {
    std::string text;
    for (int i = 0; i < 1000; i++) text += std::to_string (i) + " ";
    Reading reading (text.c_str ());
    ASSERT_EQ (1000, reading.line.count);
    EXPECT_STREQ ("999", reading.line.input_file[999]);
    EXPECT_EQ (nullptr, reading.line.input_file[1000]);
}

TEST (CommandLine, TraceLevel) {
    EXPECT_EQ (3, Reading ({"-t", "3"}).line.trace_level);
    EXPECT_EQ (4, Reading ({"-T", "4"}).line.trace_level);
    EXPECT_EQ (-2, Reading ({"-t", "-2"}).line.trace_level);
    EXPECT_EQ (0, Reading ({"-t", "many"}).line.trace_level);
    EXPECT_EQ (0, Reading ({"-v", "-t"}).line.trace_level);
    EXPECT_EQ (2147483647, Reading ({"-t", "99999999999"}).line.trace_level);
    EXPECT_EQ (5, Reading (std::vector<const char *> {"-v"}).line.trace_level);
    EXPECT_EQ (5, Reading (std::vector<const char *> {"-V"}).line.trace_level);
    EXPECT_EQ (1, Reading ({"-v", "-t", "1"}).line.trace_level);
}

// The second character decides, whatever follows it.
TEST (CommandLine, OptionsAreChosenByOneCharacter) {
    Reading reading ({"-trace", "2", "-verbose"});
    EXPECT_EQ (1, reading.result);
    EXPECT_EQ (5, reading.line.trace_level);
    EXPECT_EQ (0, reading.line.count);
}

TEST (CommandLine, WindowPlace) {
    Reading reading ({"-x", "10", "640", "a", "-Y", "20", "480", "b"});
    EXPECT_EQ (1, reading.result);
    EXPECT_EQ (1, reading.line.has_x);
    EXPECT_EQ (10, reading.line.x);
    EXPECT_EQ (640, reading.line.width);
    EXPECT_EQ (1, reading.line.has_y);
    EXPECT_EQ (20, reading.line.y);
    EXPECT_EQ (480, reading.line.height);
    EXPECT_EQ ((Names {"a", "b"}), reading.Names ());

    Reading cut ({"-X", "10"});
    EXPECT_EQ (1, cut.line.has_x);
    EXPECT_EQ (10, cut.line.x);
    EXPECT_EQ (0, cut.line.width);
    EXPECT_EQ (0, cut.line.has_y);
    EXPECT_EQ (0, Reading (std::vector<const char *> {"-y"}).line.height);
}

TEST (CommandLine, UnknownOptionShowsTheUsage) {
    for (const char *option : {"-q", "-", "--help", "-3"}) {
        Reading reading ({"a.dcm", option, "b.dcm"});
        EXPECT_EQ (-1, reading.result);
        EXPECT_EQ (std::string ("unknown argument (") + option + ")\n", reading.errors);
        EXPECT_EQ (USAGE, reading.output);
    }
}

TEST (CommandLine, MemoryFailuresAreTold) {
    struct Case {
        long        n;
        const char *message;
    };
    for (const Case &test : {Case {1, "memory error in strdup (var=words->text)"},
                             Case {2, "memory error in realloc (var=input_file, dim=2x8)"},
                             Case {3, "memory error in strdup (var=input_file[count])"},
                             Case {4, "memory error in realloc (var=input_file, dim=3x8)"}}) {
        Log_Recorder log;
        long         live = Memory_Live ();
        {
            Memory_Fail_At (test.n);
            Reading reading ("a b");
            Memory_Fail_At (0);
            EXPECT_EQ (0, reading.result);
            EXPECT_EQ (1, log.Count (LOG_ERROR, test.message)) << log.All ();
            EXPECT_EQ (1, log.Count (LOG_ERROR, " of command_line \n"));
        }
        EXPECT_EQ (live, Memory_Live ());
    }
}

TEST (CommandLine, FreeAcceptsAnEmptyOne) {
    Command_Line line = {};
    Command_Line_Free (&line);
    EXPECT_EQ (nullptr, line.input_file);
}
