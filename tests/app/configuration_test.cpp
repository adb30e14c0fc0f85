#include "app/configuration.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "app/start_up.h"
#include "attribute/NEMA_Tag_Attribute.h"
#include "platform/system.h"
#include "tables/definition_files.h"
#include "tables/modality.h"
#include "tests/support/lists.h"
#include "tests/support/log_recorder.h"
#include "tests/support/temporary.h"
#include "util/error_text.h"
#include "util/file.h"
#include "util/memory.h"
#include "util/my_error_fct.h"

static const char        INI[]     = "Tagwright.ini";
static const std::string SEPARATOR = std::string (1, System_Separator ());

static std::string Line (int kind, const std::string &text) { return std::to_string (kind) + ": " + text + "\n"; }

// The settings as they are at start, and again afterwards.
struct Configured {
    Log_Settings        before = Log;
    Temporary_Directory directory;
    Log_Recorder        log;

    explicit Configured (int trace_level = 0) : log (trace_level) {
        Program.settings            = {};
        Program.settings.mode_start = MODE_EXPLICIT;
        DICOM_Module_Dir_Set ("");
        snprintf (Log.scratch, sizeof Log.scratch, "scratch%s", SEPARATOR.c_str ());
        snprintf (Log.audit_name, sizeof Log.audit_name, "audit");
    }
    ~Configured () {
        Configuration_Free ();
        DICOM_Module_Dir_Set ("");
        DICOM_Module_Override_Set ("");
        Program.settings = {};
        Log              = before;
    }

    std::string Name () const { return directory.File (INI); }
    int         Read (const std::string &text) {
                directory.Write (INI, text);
                log.Clear ();
                return Configuration_Read (directory.path.c_str (), INI);
    }
    // Behind "Reading:" and before "Done", which frame what is reported.
    std::string Reports () const {
        std::string all = log.All (), start = Line (LOG_REPORT, "Reading: " + Name ()), end = Line (LOG_REPORT, "Done");
        if (all.find (start) != 0 || all.size () < start.size () + end.size ()) return "(no frame) " + all;
        EXPECT_EQ (end, all.substr (all.size () - end.size ()));
        return all.substr (start.size (), all.size () - start.size () - end.size ());
    }
    std::string Bad_Line (int number, const std::string &line) const {
        return Line (LOG_WARNING, "WARNING: bad line in " + Name ()) +
               Line (LOG_WARNING, "\t\t[" + std::to_string (number) + "] " + line);
    }
    std::string Skips () const {
        std::string text;
        for (int i = 0; i < Program.settings.Nb_Skip; i++) {
            const char *group = Program.settings.Skip_Group[i], *element = Program.settings.Skip_Element[i];
            text += std::string (group ? group : "(none)") + "," + (element ? element : "(none)") + " ";
        }
        return text;
    }
    std::string Tables () const {
        const char *tables = DICOM_Module_Dir_Set (nullptr);
        return tables ? tables : "(none)";
    }
    std::string Definition () const {
        std::string tags = Outline (DICOM_Module_Read (nullptr, &Program.settings, "Test"));
        DICOM_Module_Free (nullptr);
        return tags;
    }
};

// --- the file --------------------------------------------------------------

TEST (Configuration, MissingFileIsNoError) {
    Configured configured;
    EXPECT_EQ (0, Configuration_Read (configured.directory.path.c_str (), INI));
    EXPECT_EQ (0, Configuration_Exists (configured.directory.path.c_str (), INI));
    EXPECT_TRUE (configured.log.lines.empty ()) << configured.log.All ();
    configured.directory.Write (INI, std::string ());
    EXPECT_EQ (1, Configuration_Exists (configured.directory.path.c_str (), INI));
}

TEST (Configuration, NoPathIsNoFile) {
    Configured configured (1);
    configured.Read ("skip = (0008,0012)\n");
    EXPECT_EQ ("0008,0012 ", configured.Skips ());
    configured.log.Clear ();
    EXPECT_EQ (0, Configuration_Read (nullptr, INI));
    EXPECT_EQ (0, Configuration_Exists (nullptr, INI));
    EXPECT_EQ (Line (LOG_TRACE1, "in Configuration_Read(path=,name=Tagwright.ini)"), configured.log.All ());
    EXPECT_EQ ("", configured.Skips ());
}

TEST (Configuration, TooLongPathIsNoFile) {
    Configured  configured;
    std::string path (2 * SYSTEM_PATH_SIZE, 'x');
    EXPECT_EQ (0, Configuration_Read (path.c_str (), INI));
    EXPECT_EQ (0, Configuration_Exists (path.c_str (), INI));
    EXPECT_TRUE (configured.log.lines.empty ());
}

TEST (Configuration, ReadingIsFramed) {
    Configured configured;
    EXPECT_EQ (1, configured.Read (""));
    ASSERT_EQ (2u, configured.log.lines.size ());
    EXPECT_EQ (LOG_REPORT, configured.log.lines[0].kind);
    EXPECT_EQ ("Reading: \x01" + configured.Name (), configured.log.lines[0].text);
    EXPECT_EQ (LOG_REPORT, configured.log.lines[1].kind);
    EXPECT_EQ ("Done", configured.log.lines[1].text);
}

TEST (Configuration, EveryStepOfALineIsTraced) {
    Configured configured (5);
    configured.Read ("# nothing\n\n  scratch:here # comment\n");
    EXPECT_EQ (Line (LOG_TRACE1, "in Configuration_Read(path=" + configured.directory.path + ",name=Tagwright.ini)") +
                   Line (LOG_REPORT, "Reading: " + configured.Name ()) +
                   Line (LOG_TRACE5, "--> line[1]   \"# nothing\n\"") + Line (LOG_TRACE5, "--> line[2]   \"\n\"") +
                   Line (LOG_TRACE5, "--> line[3]   \"  scratch:here # comment\n\"") +
                   Line (LOG_TRACE1, "--> line[3]   \"scratch:here\"") +
                   Line (LOG_TRACE1, "==> line[3]   \"scratch = here\"") +
                   Line (LOG_TRACE1, "==> line[3]  command: \"scratch\"") + Line (LOG_REPORT, "Done"),
               configured.log.All ());
}

// --- lines -----------------------------------------------------------------

TEST (Configuration, SeparatorMayBeWrittenInManyWays) {
    static const char *const lines[] = {
        "scratch = x",     "scratch=x",    "scratch: x",     "scratch :x",   "scratch:x",      "scratch\t=\tx",
        "scratch\t:\tx",   "scratch=  x",  "\t scratch = x", "scratch = x ", "scratch = x\t ", "scratch = x # y",
        "scratch = x ; y", "scratch = x;", "scratch = x y",  "scratch = x=", "scratch=\tx",
    };
    for (const char *line : lines) {
        Configured configured;
        EXPECT_EQ (1, configured.Read (std::string (line) + "\n"));
        std::string value = line == lines[15] ? "x=" : "x";
        EXPECT_EQ (value + SEPARATOR, Log.scratch) << line;
        EXPECT_EQ ("", configured.Reports ()) << line;
    }
}

static std::string Normalised (const std::string &line) {
    Configured configured (1);
    configured.Read (line);
    for (const Log_Line &entry : configured.log.lines)
        if (entry.text.find ("==> line[1]   \"") == 0) return entry.text.substr (15);
    return "(no line)";
}

TEST (Configuration, OnlyTheFirstSeparatorIsTouched) {
    EXPECT_EQ ("scratch = D:\\logs\"", Normalised ("scratch=D:\\logs"));
    EXPECT_EQ ("scratch = D:\\logs=a\"", Normalised ("scratch:D:\\logs=a"));
    EXPECT_EQ ("a = b=c\"", Normalised ("a=b=c"));
    EXPECT_EQ ("a = = c\"", Normalised ("a:= c"));
    EXPECT_EQ ("trace = 3\"", Normalised ("trace=3"));
    EXPECT_EQ ("trace = 3\"", Normalised ("trace: 3"));
    EXPECT_EQ ("trace = 3\"", Normalised ("trace\t=\t3"));
    EXPECT_EQ ("trace\t = 3\"", Normalised ("trace\t\t=3"));
    EXPECT_EQ ("trace  =  3\"", Normalised ("trace  =  3"));
    EXPECT_EQ ("trace = \"", Normalised ("trace="));
    EXPECT_EQ ("trace 3\"", Normalised ("trace 3"));
    EXPECT_EQ ("=3\"", Normalised ("=3"));
    EXPECT_EQ (": = 3\"", Normalised ("::3"));
    EXPECT_EQ ("x\"", Normalised ("x"));
    EXPECT_EQ ("a = \"", Normalised ("a:"));
}

TEST (Configuration, DriveInAValueIsKept) {
    for (const char *line : {"scratch = D:\\logs", "scratch : D:\\logs", "scratch=D:\\logs\n"}) {
        Configured configured;
        configured.Read (line);
        EXPECT_EQ ("D:\\logs" + SEPARATOR, Log.scratch) << line;
    }
}

TEST (Configuration, LineMayEndInManyWays) {
    for (const char *text : {"audit = a\nscratch = x\n", "audit = a\r\nscratch = x\r\n", "audit = a\r\nscratch = x",
                             "audit = a\nscratch = x", "audit = a\n\n\r\nscratch = x\r",
                             "audit = a\n\rscratch = x\r\r\n", "\r\naudit = a\nscratch = x \r\n"}) {
        Configured configured;
        EXPECT_EQ (1, configured.Read (text));
        EXPECT_STREQ ("a", Log.audit_name) << text;
        EXPECT_EQ ("x" + SEPARATOR, Log.scratch) << text;
        EXPECT_EQ ("", configured.Reports ()) << text;
    }
}

// A carriage return alone is a blank like others: all of it is one line, of which the third word counts.
TEST (Configuration, CarriageReturnAloneEndsNoLine) {
    Configured configured;
    EXPECT_EQ (1, configured.Read ("audit = a\rscratch = x\rtrace = 3\r"));
    EXPECT_STREQ ("a", Log.audit_name);
    EXPECT_EQ ("scratch" + SEPARATOR, Log.scratch);
    EXPECT_EQ (0, Log.trace_level);
}

TEST (Configuration, ZeroByteEndsTheTextOfItsLine) {
    Configured configured;
    EXPECT_EQ (1, configured.Read (std::string ("audit = a\0b = c\nscratch = x\0\n\0\0\0\nbad\n", 36)));
    EXPECT_STREQ ("a", Log.audit_name);
    EXPECT_EQ ("x" + SEPARATOR, Log.scratch);
    EXPECT_EQ (configured.Bad_Line (4, "bad"), configured.Reports ());
}

// The line feed is one of the 255 characters.
TEST (Configuration, OverlongLineGoesOnInTheNextOne) {
    for (int length : {253, 254, 255, 256, 300, 510, 511}) {
        Configured  configured;
        std::string word (static_cast<size_t> (length), 'x');
        EXPECT_EQ (1, configured.Read (word + "\nend\n"));
        std::string reports;
        int         number = 0;
        for (size_t start = 0; start < word.size (); start += 255)
            reports += configured.Bad_Line (++number, word.substr (start, 255));
        if (length % 255 == 0) number++; // The line feed alone.
        EXPECT_EQ (reports + configured.Bad_Line (number + 1, "end"), configured.Reports ()) << length;
    }
}

TEST (Configuration, OverlongLineMayEndInACommand) {
    Configured configured;
    EXPECT_EQ (1, configured.Read ("#" + std::string (254, ' ') + "trace = 3\n"));
    EXPECT_EQ (3, Log.trace_level);
}

// The carriage return before a line feed doesn't count.
TEST (Configuration, LongestLineWithBothLineEnds) {
    for (const char *end : {"\n", "\r\n"}) {
        Configured  configured;
        std::string word (254, 'x');
        EXPECT_EQ (1, configured.Read (word + end + "end" + end));
        EXPECT_EQ (configured.Bad_Line (1, word) + configured.Bad_Line (2, "end"), configured.Reports ());
    }
}

TEST (Configuration, LineWithoutAWord) {
    Configured configured;
    EXPECT_EQ (1, configured.Read ("  \t \n\v\n"));
    EXPECT_EQ (Line (LOG_WARNING, "line[2]: Unable to get a command from \"\""), configured.Reports ());
    EXPECT_TRUE (configured.log.Has (LOG_WARNING, "line[2]: Unable to get a command from \"\v\""));
}

TEST (Configuration, UnknownCommandIsABadLine) {
    Configured configured;
    EXPECT_EQ (1, configured.Read ("Trace = 3\n\ntraces:3\n= 3\n"));
    EXPECT_EQ (configured.Bad_Line (1, "Trace = 3") + configured.Bad_Line (3, "traces = 3") +
                   configured.Bad_Line (4, "= 3"),
               configured.Reports ());
    EXPECT_EQ (0, Log.trace_level);
    EXPECT_TRUE (configured.log.Has (LOG_WARNING, "\xF1\x05WARNING:\x02 bad line in " + configured.Name ()));
    EXPECT_TRUE (configured.log.Has (LOG_WARNING, "\t\t\x01[1] \x02Trace = 3"));
}

TEST (Configuration, TextOfALineIsNoFormat) {
    Configured configured (5);
    EXPECT_EQ (1, configured.Read ("%s%n%n = %s%n\naudit = %s%n.dat\nskip = (%s,%n)\n"));
    EXPECT_STREQ ("%s%n.dat", Log.audit_name);
    EXPECT_EQ ("%s,%n ", configured.Skips ());
}

// --- trace -----------------------------------------------------------------

static int Level_After (int before, const std::string &line) {
    Configured configured;
    Log.trace_level = static_cast<int8_t> (before);
    configured.Read (line + "\n");
    EXPECT_EQ (before > 0 || Log.trace_level > 0 ? LOG_WARNING : 0, Program.settings.kind_warning) << before << line;
    EXPECT_EQ (before > 0 || Log.trace_level > 0 ? LOG_REPORT : 0, Program.settings.kind_note) << before << line;
    EXPECT_FALSE (configured.log.Contains ("bad line"));
    return Log.trace_level;
}

TEST (Configuration, TraceRaisesTheLevel) {
    EXPECT_EQ (3, Level_After (0, "trace = 3"));
    EXPECT_EQ (3, Level_After (0, "trace: 3"));
    EXPECT_EQ (3, Level_After (2, "trace=3"));
    EXPECT_EQ (4, Level_After (4, "trace = 0"));
    EXPECT_EQ (4, Level_After (4, "trace = 3"));
    EXPECT_EQ (0, Level_After (0, "trace = 0"));
    EXPECT_EQ (0, Level_After (0, "trace = -3"));
    EXPECT_EQ (-2, Level_After (-3, "trace = -2"));
    EXPECT_EQ (-2, Level_After (-2, "trace = -3"));
    EXPECT_EQ (0, Level_After (-2, "trace = 0"));
    EXPECT_EQ (1, Level_After (-2, "trace = +1"));
}

TEST (Configuration, TraceSaturates) {
    for (const char *number : {"128", "300", "2147483648", "99999999999999999999"})
        EXPECT_EQ (127, Level_After (0, std::string ("trace = ") + number));
    for (const char *number : {"-129", "-2147483649", "-99999999999999999999"})
        EXPECT_EQ (-128, Level_After (-128, std::string ("trace = ") + number));
}

TEST (Configuration, TraceWithoutANumberReadsZero) {
    EXPECT_EQ (2, Level_After (2, "trace ="));
    EXPECT_EQ (2, Level_After (2, "trace"));
    EXPECT_EQ (0, Level_After (-1, "trace ="));
    EXPECT_EQ (0, Level_After (0, "trace = x"));
    EXPECT_EQ (3, Level_After (0, "trace = 3x"));
    EXPECT_EQ (0, Level_After (0, "trace = = 3"));
}

// A level from the command line alone leaves them silent.
TEST (Configuration, OnlyATraceLineSwitchesTheKindsOn) {
    Configured configured (4);
    configured.Read ("audit = a\n");
    EXPECT_EQ (0, Program.settings.kind_warning);
    EXPECT_EQ (0, Program.settings.kind_note);
    configured.Read ("trace = 0\n");
    EXPECT_EQ (LOG_WARNING, Program.settings.kind_warning);
    EXPECT_EQ (LOG_REPORT, Program.settings.kind_note);
}

// --- scratch, audit, tables ------------------------------------------------

TEST (Configuration, ScratchEndsWithASeparator) {
    Configured configured;
    configured.Read ("scratch = logs\n");
    EXPECT_EQ ("logs" + SEPARATOR, Log.scratch);
    configured.Read ("scratch = logs" + SEPARATOR + "\n");
    EXPECT_EQ ("logs" + SEPARATOR, Log.scratch);
    configured.Read ("scratch = " + SEPARATOR + "\n");
    EXPECT_EQ (SEPARATOR, Log.scratch);
    EXPECT_EQ ("", configured.Reports ());
}

TEST (Configuration, NamesWithoutAValueAreBadLines) {
    Configured configured;
    EXPECT_EQ (1, configured.Read ("scratch =\nscratch\naudit =\naudit : # comment\n"));
    EXPECT_EQ ("scratch" + SEPARATOR, Log.scratch);
    EXPECT_STREQ ("audit", Log.audit_name);
    EXPECT_EQ (configured.Bad_Line (1, "scratch = ") + configured.Bad_Line (2, "scratch") +
                   configured.Bad_Line (3, "audit = ") + configured.Bad_Line (4, "audit = "),
               configured.Reports ());
}

// The longest values that a line can hold.
TEST (Configuration, LongestNamesAreNotCut) {
    Configured  configured;
    std::string directory (247, 'x'), file (249, 'y');
    EXPECT_EQ (1, configured.Read ("scratch=" + directory + "\r\naudit=" + file));
    EXPECT_EQ (directory + SEPARATOR, Log.scratch);
    EXPECT_EQ (file, Log.audit_name);
    EXPECT_EQ (1, configured.Read ("scratch a " + std::string (245, 'z')));
    EXPECT_EQ (std::string (245, 'z') + SEPARATOR, Log.scratch);
    EXPECT_EQ ("", configured.Reports ());
}

TEST (Configuration, AuditIsTakenAsItIs) {
    Configured configured;
    configured.Read ("audit = Tagwright_%s.dat\n");
    EXPECT_STREQ ("Tagwright_%s.dat", Log.audit_name);
    configured.Read ("audit = logs/audit\n");
    EXPECT_STREQ ("logs/audit", Log.audit_name);
    EXPECT_EQ ("", configured.Reports ());
}

TEST (Configuration, TablesEndWithASeparator) {
    Configured configured;
    EXPECT_EQ (1, configured.Read ("tables = first\ntables = my/tables\n"));
    EXPECT_EQ ("my/tables" + SEPARATOR, configured.Tables ());
    configured.Read ("tables =\ntables\n");
    EXPECT_EQ ("my/tables" + SEPARATOR, configured.Tables ());
    configured.Read ("tables = " + std::string (245, 'x'));
    EXPECT_EQ (std::string (245, 'x') + SEPARATOR, configured.Tables ());
    EXPECT_EQ ("", configured.Reports ());
}

TEST (Configuration, OverrideNamesAFileOfAttributes) {
    Configured          configured;
    Temporary_Directory tables;
    std::string         ours   = tables.Write ("ours.txt", std::string ("!(0010,0010) type=1\n"));
    std::string         theirs = tables.Write ("theirs.txt", std::string ("!(0010,0020) type=1\n"));
    tables.Write ("DICOM_Module_Test.txt", std::string ("Common\n"));
    tables.Write ("DICOM_Attributes_Common.txt", std::string ("(0008,0016) type=1\n"));
    configured.Read ("tables = " + tables.path + "\noverride = " + ours + "\n");
    EXPECT_EQ ("", configured.Reports ());
    EXPECT_EQ ("(0008,0016) (0010,0010)", configured.Definition ());
    configured.Read ("# nothing\n");
    EXPECT_EQ ("(0008,0016) (0010,0010)", configured.Definition ());
    configured.Read ("override = " + theirs + "\n");
    EXPECT_EQ ("(0008,0016) (0010,0020)", configured.Definition ());
    configured.Read ("override =\n");
    EXPECT_EQ ("", configured.Reports ());
    EXPECT_EQ ("(0008,0016)", configured.Definition ());
}

// --- skip ------------------------------------------------------------------

TEST (Configuration, SkippedTagsAreAddedAndReported) {
    Configured configured;
    EXPECT_EQ (1, configured.Read ("skip = (0008,0012)\nskip:(0009,*)\nskip=????,0000\n"));
    EXPECT_EQ ("0008,0012 0009,* ????,0000 ", configured.Skips ());
    EXPECT_EQ (Line (LOG_REPORT, "    Adding: (0008,0012) to skipped tags list") +
                   Line (LOG_REPORT, "    Adding: (0009,*) to skipped tags list") +
                   Line (LOG_REPORT, "    Adding: (????,0000) to skipped tags list"),
               configured.Reports ());
    EXPECT_TRUE (configured.log.Has (LOG_REPORT, "    Adding: (\x01"
                                                 "0008\x02,\x01"
                                                 "0012\x02) to skipped tags list"));
}

TEST (Configuration, SkippedTagIsMadeOfTwoWords) {
    Configured configured;
    configured.Read ("skip = ((0008)),,(0012)),0013\nskip = 0008-0012\nskip = (0008,-)\n");
    EXPECT_EQ ("0008,0012 0008-0012,(none) 0008,- ", configured.Skips ());
}

TEST (Configuration, SkippedTagWithAMissingHalfMatchesNothing) {
    Configured configured;
    EXPECT_EQ (1, configured.Read ("skip = (0008)\nskip = (0008, 0012)\nskip = (,0012)\nskip =\nskip\nskip = (,)\n"));
    EXPECT_EQ ("0008,(none) 0008,(none) 0012,(none) (none),(none) (none),(none) (none),(none) ", configured.Skips ());
    EXPECT_EQ (Line (LOG_REPORT, "    Adding: (0008,) to skipped tags list") +
                   Line (LOG_REPORT, "    Adding: (0008,) to skipped tags list") +
                   Line (LOG_REPORT, "    Adding: (0012,) to skipped tags list") +
                   Line (LOG_REPORT, "    Adding: (,) to skipped tags list") +
                   Line (LOG_REPORT, "    Adding: (,) to skipped tags list") +
                   Line (LOG_REPORT, "    Adding: (,) to skipped tags list"),
               configured.Reports ());
    const Settings &settings = Program.settings;
    for (int i = 0; i < settings.Nb_Skip; i++)
        EXPECT_EQ (0, DICOM_Attribute_Tag_Match (settings.Skip_Group[i], settings.Skip_Element[i], 0x0008, 0x0012));
}

TEST (Configuration, ManySkippedTags) {
    Configured  configured;
    std::string text, all;
    for (int i = 0; i < 1000; i++) {
        char tag[16];
        snprintf (tag, sizeof tag, "0008,%04X", i);
        text += "skip = (" + std::string (tag) + ")\n";
        all += std::string (tag) + " ";
    }
    EXPECT_EQ (1, configured.Read (text));
    EXPECT_EQ (all, configured.Skips ());
}

TEST (Configuration, EachFileReplacesTheSkippedTags) {
    long live = Memory_Live ();
    {
        Configured configured;
        configured.Read ("skip = (0008,0012)\nskip = (0008,0013)\naudit = first\nscratch = first\n");
        configured.Read ("skip = (0010,0010)\naudit = second\n");
        EXPECT_EQ ("0010,0010 ", configured.Skips ());
        EXPECT_STREQ ("second", Log.audit_name);
        EXPECT_EQ ("first" + SEPARATOR, Log.scratch);
        configured.Read ("audit = third\n");
        EXPECT_EQ ("", configured.Skips ());
        EXPECT_EQ (0, Program.settings.Nb_Skip);
        EXPECT_EQ (live, Memory_Live ());
        configured.Read ("skip = (0010,0010)\n");
    }
    EXPECT_EQ (live, Memory_Live ());
}

// --- what is no file, and too large ones -----------------------------------

TEST (Configuration, DirectoryInItsPlaceIsNotRead) {
    Configured configured;
    std::filesystem::create_directory (configured.Name ());
    EXPECT_EQ (0, Configuration_Read (configured.directory.path.c_str (), INI));
    EXPECT_EQ (1, Configuration_Exists (configured.directory.path.c_str (), INI));
    EXPECT_TRUE (configured.log.lines.empty ());
}

TEST (Configuration, DeviceInItsPlaceIsNotRead) {
    Configured configured;
    bool       windows = System_Separator () == '\\';
    EXPECT_EQ (0, Configuration_Read (windows ? "\\\\.\\" : "/dev/", windows ? "NUL" : "zero"));
    EXPECT_TRUE (configured.log.lines.empty ());
}

// Nobody writes into it, so opening it as a file would wait for ever.
TEST (Configuration, PipeInItsPlaceIsNotRead) {
    Configured configured;
    if (System_Separator () == '/') {
        ASSERT_EQ (0, std::system (("mkfifo '" + configured.Name () + "'").c_str ()));
    }
    EXPECT_EQ (0, Configuration_Read (configured.directory.path.c_str (), INI));
    EXPECT_TRUE (configured.log.lines.empty ());
}

// The line is read in pieces; memory doesn't grow with it.
TEST (Configuration, HugeLine) {
    Configured        configured;
    const std::string name = configured.Name ();
    std::ofstream (name, std::ios::binary) << "scratch = x\n#";
    std::filesystem::resize_file (name, 64 << 20); // Zero bytes.
    std::ofstream (name, std::ios::binary | std::ios::app) << "\naudit = behind\n";
    long live = Memory_Live ();
    EXPECT_EQ (1, Configuration_Read (configured.directory.path.c_str (), INI));
    EXPECT_EQ (live, Memory_Live ());
    EXPECT_EQ ("x" + SEPARATOR, Log.scratch);
    EXPECT_STREQ ("behind", Log.audit_name);
    EXPECT_EQ ("", configured.Reports ());
}

// Changes the file once it is open, at every message.
static std::string changed_name;
static int         changed_opened;

static int Grow (Window, int, const char *text) {
    changed_opened |= !strncmp (text, "Reading:", 8);
    if (changed_opened) std::ofstream (changed_name, std::ios::binary | std::ios::app) << "trace = 1\n";
    return 1;
}

static int Shrink (Window, int, const char *text) {
    if (!strncmp (text, "Reading:", 8)) std::filesystem::resize_file (changed_name, 14);
    return 1;
}

TEST (Configuration, FileThatGrowsMeanwhileIsReadToItsFormerEnd) {
    Configured configured (1);
    changed_opened = 0;
    changed_name   = configured.directory.Write (INI, std::string ("audit = a\nscratch = x\nbad\n"));
    Log_Sink_Set (Grow);
    EXPECT_EQ (1, Configuration_Read (configured.directory.path.c_str (), INI));
    EXPECT_STREQ ("a", Log.audit_name);
    EXPECT_EQ ("x" + SEPARATOR, Log.scratch);
    EXPECT_EQ (0, Program.settings.kind_note); // No trace line was seen.
}

TEST (Configuration, FileThatShrinksMeanwhileIsReadToItsEnd) {
    Configured configured;
    changed_name = configured.directory.Write (INI, std::string ("audit = a\nscratch = x\n"));
    Log_Sink_Set (Shrink);
    EXPECT_EQ (1, Configuration_Read (configured.directory.path.c_str (), INI));
    EXPECT_STREQ ("a", Log.audit_name);
    EXPECT_EQ ("scratch" + SEPARATOR, Log.scratch);
}

TEST (Configuration, AnyBytesAreRead) {
    static const char *const words[] = {"trace", "scratch", "audit", "skip", "tables", "=", ":",  "override",
                                        " ",     "\t",      "\n",    "\r",   "\r\n",   "#", ";",  "(",
                                        ")",     ",",       "0008",  "*",    "?",      "-", "9",  "\xFF",
                                        "\x01",  "\v",      "\"",    "%s",   "D:\\x",  "/", "\\", "x"};
    std::mt19937             random (5);
    for (int run = 0; run < 300; run++) {
        Configured  configured (run % 2 ? 5 : 0);
        std::string text;
        for (size_t i = random () % 200; i > 0; i--) {
            if (random () % 8 == 0) text += static_cast<char> (random () % 256);
            else if (random () % 50 == 0) text += std::string (random () % 600, words[random () % 31][0]);
            else text += words[random () % 31];
        }
        ASSERT_EQ (1, configured.Read (text)) << text;
        ASSERT_LE (strnlen (Log.scratch, sizeof Log.scratch), sizeof Log.scratch - 1);
        ASSERT_TRUE (System_Is_Separator (Log.scratch[strlen (Log.scratch) - 1]));
        ASSERT_LE (strnlen (Log.audit_name, sizeof Log.audit_name), sizeof Log.audit_name - 1);
    }
}

// --- failures --------------------------------------------------------------

TEST (Configuration, FailingReadIsReported) {
    Configured configured (1);
    configured.directory.Write (INI, std::string ("audit = a\nscratch = x\n"));
    File_Fail_At (FILE_READ, 21, 5);
    EXPECT_EQ (0, Configuration_Read (configured.directory.path.c_str (), INI));
    File_Fail_At (FILE_READ, 0, 0);
    EXPECT_STREQ ("a", Log.audit_name);
    EXPECT_EQ ("scratch" + SEPARATOR, Log.scratch); // A line that was read in part isn't taken.
    EXPECT_EQ ("Error reading file " + configured.Name () + "\n" + Error_Text (5) + "\n",
               configured.log.Text (LOG_WARNING));
    EXPECT_EQ (1, configured.log.Count (LOG_TRACE1, "File:configuration Line:"));
    EXPECT_FALSE (configured.log.Has (LOG_REPORT, "Done"));
}

TEST (Configuration, FileThatCannotBeOpenedIsPassedOver) {
    Configured configured;
    configured.directory.Write (INI, std::string ("audit = a\n"));
    File_Fail_At (FILE_OPEN, 1, 5);
    EXPECT_EQ (0, Configuration_Read (configured.directory.path.c_str (), INI));
    File_Fail_At (FILE_OPEN, 0, 0);
    EXPECT_TRUE (configured.log.lines.empty ());
}

// The reading ends there; what was set before stays, and nothing is lost or left half done.
TEST (Configuration, EveryMemoryFailureIsNamedAndLeaksNothing) {
    static const char *const named[] = {
        "malloc (var=file, dim=1x",
        "realloc (var=Skip_Group, dim=1x8)",
        "realloc (var=Skip_Element, dim=1x8)",
        "strdup (var=Skip_Group[Nb_Skip])",
        "strdup (var=Skip_Element[Nb_Skip])",
        "strdup (var=DICOM_Module_Dir)",
        "realloc (var=Skip_Group, dim=2x8)",
        "realloc (var=Skip_Element, dim=2x8)",
        "strdup (var=Skip_Group[Nb_Skip])",
        "realloc (var=Skip_Group, dim=3x8)",
        "realloc (var=Skip_Element, dim=3x8)",
        "strdup (var=Skip_Group[Nb_Skip])",
        "strdup (var=Skip_Element[Nb_Skip])",
        "strdup (var=DICOM_Module_Dir)",
    };
    static const int skips[] = {0, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2, 3};
    long             live    = Memory_Live ();
    for (size_t n = 1; n <= 15; n++) {
        {
            Configured configured;
            configured.directory.Write (INI, std::string ("audit = a\nskip = (0008,0012)\ntables = first\nskip = 0009\n"
                                                          "skip = (0010,*)\ntables = second\n"));
            Memory_Fail_At (static_cast<long> (n));
            EXPECT_EQ (n == 15, Configuration_Read (configured.directory.path.c_str (), INI)) << n;
            EXPECT_EQ (n < 15, Memory_Failed ());
            Memory_Fail_At (0);
            EXPECT_EQ (n < 15, configured.log.Count (LOG_ERROR)) << configured.log.All ();
            if (n < 15) {
                EXPECT_TRUE (configured.log.Contains (named[n - 1])) << n << configured.log.All ();
                bool tables = configured.log.Contains ("DICOM_Module_Dir");
                EXPECT_EQ (n > 1 && !tables, configured.log.Contains (" of configuration \nmemory error in "));
                EXPECT_FALSE (configured.log.Has (LOG_REPORT, "Done"));
                EXPECT_EQ (skips[n - 1], Program.settings.Nb_Skip) << n;
                EXPECT_EQ (n > 6 ? "first" + SEPARATOR : "(none)", configured.Tables ());
            }
            EXPECT_STREQ (n > 1 ? "a" : "audit", Log.audit_name);
            EXPECT_EQ (1, configured.Read ("skip = (0011,0011)\n")); // The settings stay usable.
            EXPECT_EQ ("0011,0011 ", configured.Skips ());
        }
        EXPECT_EQ (live, Memory_Live ()) << n;
    }
}

// --- the file that is installed --------------------------------------------

static const std::string installed = std::string (TAGWRIGHT_SOURCE_DIR) + "/install/";

TEST (InstalledConfiguration, LeavesTheDefaults) {
    Configured configured;
    std::filesystem::copy_file (installed + INI, configured.Name ());
    EXPECT_EQ (1, Configuration_Read (configured.directory.path.c_str (), INI));
    EXPECT_EQ ("", configured.Reports ());
    EXPECT_EQ (0, Log.trace_level);
    EXPECT_EQ ("scratch" + SEPARATOR, Log.scratch);
    EXPECT_STREQ ("audit", Log.audit_name);
    EXPECT_EQ ("(none)", configured.Tables ());
    EXPECT_EQ (0, Program.settings.Nb_Skip);
}

// Without the "#" in front, every example is a good line; and no command lacks one.
TEST (InstalledConfiguration, ExamplesAreGoodLines) {
    Configured         configured;
    std::istringstream lines (Read_Whole (installed + INI));
    std::string        line, text;
    while (std::getline (lines, line)) {
        EXPECT_GT (CONFIGURATION_LINE_LENGTH, static_cast<int> (line.size ()));
        if (line.size () > 1 && line[0] == '#' && line[1] != ' ') text += line.substr (1) + "\n";
    }
    EXPECT_EQ (1, configured.Read (text));
    EXPECT_EQ (0, configured.log.Count (LOG_WARNING)) << configured.log.All ();
    EXPECT_EQ (3, Log.trace_level);
    EXPECT_EQ ("/var/tmp/tagwright" + std::string (SEPARATOR), Log.scratch);
    EXPECT_STREQ ("differences.txt", Log.audit_name);
    EXPECT_EQ ("D:\\tables" + SEPARATOR, configured.Tables ());
    EXPECT_EQ ("0008,0012 0008,001? 0009,* *,0000 ", configured.Skips ());
}
