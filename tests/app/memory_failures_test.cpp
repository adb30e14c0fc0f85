// The program while memory runs out, at every place where it asks for some: a drop of two files, what the window does with
// their result, and its start with and without files.
#include <gtest/gtest.h>

#include <string.h>

#include <filesystem>
#include <memory>

#include "app/main_window.h"
#include "app/start_up.h"
#include "compare/comparison_run.h"
#include "nema/NEMA_Read_Value.h"
#include "platform/drawing.h"
#include "tables/data_dictionary.h"
#include "tables/definition_files.h"
#include "tables/modality.h"
#include "tests/app/whole_window.h"
#include "tests/support/environment.h"
#include "tests/support/log_recorder.h"
#include "tests/support/memory_failures.h"
#include "tests/support/program.h"
#include "tests/support/stream.h"
#include "tools/device.h"
#include "tools/icon.h"
#include "util/memory.h"
#include "view/result_view.h"

// --- boxes -----------------------------------------------------------------

static std::vector<std::string> boxes;

static int Box_Heard (Window, const char *text, const char *, Window_Icon) {
    boxes.push_back (text);
    return 0;
}

static std::vector<std::string> Boxes_Take () {
    std::vector<std::string> taken;
    taken.swap (boxes);
    return taken;
}

// --- other words -----------------------------------------------------------

// What tells of a failure that no box tells of, since it happens while a window is drawn: the error log has icons, the
// trace an image that can't be blended with its background.
static const char *const OTHER_WORDS[] = {"Icon_Read_TGA(", "draw_image()"};

static long                  noted; // Failures that they told of.
static std::set<std::string> noted_words;

// For both copies of an icon's pixels memory is asked for before either is looked at.
static long Failures_Of (const char *words) {
    long untold = Memory_Failed () - static_cast<long> (boxes.size ()) - noted;
    return words == OTHER_WORDS[0] && untold == 2 ? 2 : 1;
}

// Everything goes on to the program's sink, as it would without a trace.
static int Note_Other_Words (Window window, int kind, const char *text) {
    for (const char *words : OTHER_WORDS) {
        if (strncmp (text, words, strlen (words)) || !strstr (text, " failed in new")) continue;
        noted += Failures_Of (words);
        noted_words.insert (words);
    }
    int8_t level    = Log.trace_level;
    Log.trace_level = 0;
    int result      = Log_Program_Sink (window, kind, text);
    Log.trace_level = level;
    return result;
}

static void Trace_Drawing (const Device::Call *call) {
    if (call->kind == Device::CALL_BEGIN) Log.trace_level = 1;
    if (call->kind == Device::CALL_END) Log.trace_level = 0;
}

static void Other_Words_Begin () {
    Log_Sink_Set (Note_Other_Words);
    Device::Watch (Trace_Drawing);
}

static void Other_Words_End () {
    Device::Watch (nullptr);
    Log_Sink_Set (Log_Program_Sink);
}

static long Noted_Take () {
    long taken = noted;
    noted      = 0;
    return taken;
}

// --- files -----------------------------------------------------------------

static Stream File_Of (const char *name, int items) {
    Stream stream = Stream_Begin_File (EXPLICIT_LITTLE);
    Stream_Add_Text (&stream, 0x0008, 0x0016, "UI", "1.2.840.10008.5.1.4.1.1.2");
    Stream_Open_Sequence (&stream, 0x0008, 0x1140, false);
    for (int i = 0; i < items; i++) {
        Stream_Open_Item (&stream, true);
        Stream_Add_Text (&stream, 0x0008, 0x1150, "UI", "1.2.3");
        Stream_Close_Item (&stream);
    }
    Stream_Close_Sequence (&stream);
    Stream_Add_Text (&stream, 0x0010, 0x0010, "PN", name);
    return stream;
}

// A folder with two files and the tables of their modality.
struct Files {
    Temporary_Directory folder;

    Files () {
        folder.Write ("a.dcm", File_Of ("Doe^John", 1).bytes);
        folder.Write ("b.dcm", File_Of ("Doe^Jane", 2).bytes);
        folder.Write ("DICOM_Module_CT_Image.txt", std::string ("Patient\n"));
        folder.Write ("DICOM_Attributes_Patient.txt",
                      std::string ("(0010,0010) type=2 desc=\"Who it is\"\n(0008,1140) type=1C VR=SQ\n"));
    }
};

// --- the window ------------------------------------------------------------

// What a window shows as one number.
static std::string Picture (Window window) {
    uint64_t sum = 0;
    int      width, height;
    Window_Client_Size (window, &width, &height);
    Drawing drawing = Drawing_Begin (window);
    for (int y = 0; y < height; y++)
        for (int x = 0; x < width; x++) sum = sum * 1099511628211u + Drawing_Pixel (drawing, x, y);
    Drawing_End (drawing);
    return std::to_string (width) + "x" + std::to_string (height) + " " + std::to_string (sum) + "\n";
}

static std::vector<std::string> Row_Names () {
    std::vector<std::string> names;
    for (int i = 0; i < Rows.count; i++) names.push_back (Rows.rows[i].name ? Rows.rows[i].name : "-");
    return names;
}

static std::string Shown_Rows () {
    std::string text;
    for (int i = 0; i < Rows.count; i++) {
        const Row *row = &Rows.rows[i];
        text +=
            std::to_string (row->line) + " " + std::to_string (row->kind) + " " + (row->name ? row->name : "-") + "\n";
    }
    return text;
}

static const int WIDTH  = 320;
static const int HEIGHT = 240;

// A window whose caches are empty when a run begins. Its text list grows.
struct Failing_Window {
    Files        files;
    Whole_Window shown = Whole_Window (WIDTH, HEIGHT, files.folder.path);

    Failing_Window () {
        DICOM_Module_Dir_Set (files.folder.path.c_str ());
        Window_Box_Hook_Set (Box_Heard);
        Other_Words_Begin ();
    }
    ~Failing_Window () {
        Forget ();
        Other_Words_End ();
    }

    static void Forget () {
        Comparison_Free (nullptr);
        NEMA_Value_Rings_Free ();
        DICOM_Module_Private_Free (nullptr);
        Dictionary_Reset (nullptr, 0);
        Icon_Free_All ();
    }
    void Paint () {
        Window_Event event = {};
        event.kind         = WINDOW_PAINT;
        Window_Send (shown.window, &event);
    }
    void Size (int width, int height) {
        Window_Event event = {};
        event.kind         = WINDOW_SIZE;
        event.width        = width;
        event.height       = height;
        Window_Send (shown.window, &event);
    }

    Memory_Trial Trial (const std::function<std::string ()> &run, const std::function<void ()> &end) {
        Memory_Trial trial;
        trial.run     = run;
        trial.end     = end;
        trial.reports = Boxes_Take;
        trial.noted   = Noted_Take;
        trial.live    = [] { return Memory_Live () - Result.text.line_count; };
        return trial;
    }
};

TEST (MemoryFailures, DropOfTwoFiles) {
    Failing_Window window;
    Memory_Trial   trial = window.Trial (
        [&window] {
            window.shown.Drop ({"a.dcm", "b.dcm"});
            window.Paint ();
            return Shown_Rows ();
        },
        Failing_Window::Forget);
    for (Memory_Loss loss : {LOSS_OF_ONE, LOSS_OF_TWO, LOSS_OF_ALL}) {
        std::set<std::string> told = Every_Memory_Failure (trial, loss);
        for (const char *variable : {"texts: text->lines[].text", "NEMA_Tag_Attribute: insert", "file: file",
                                     "difference_list: line_rows", "comparison_run: List->name"})
            EXPECT_TRUE (loss == LOSS_OF_ALL || told.count (variable)) << variable;
    }
}

// Everything that a window does with a result: it draws, folds, selects, scrolls, is made larger and smaller. Without
// memory a picture may lack something and a click may meet nothing, but the result stays.
TEST (MemoryFailures, WorkWithTheResult) {
    Failing_Window window;
    Memory_Trial   trial = window.Trial (
        [&window] {
            Whole_Window &shown = window.shown;
            Icon_Free_All (); // One that could not be read is not tried again.
            window.Paint ();
            EXPECT_TRUE (shown.Fold (0x0008, 0x1140));
            EXPECT_TRUE (shown.Select (0x0008, 0x1140));
            std::string result = Shown_Rows ();
            window.Size (200, 150);
            shown.Scroll (2);
            window.Size (WIDTH, HEIGHT);
            shown.Scroll (-9);
            EXPECT_TRUE (shown.Fold (0x0008, 0x1140));
            EXPECT_TRUE (shown.Select (0x0008, 0x0016));
            window.Paint ();
            return result + Shown_Rows () + Picture (shown.window);
        },
        Icon_Free_All);
    window.shown.Drop ({"a.dcm", "b.dcm"});
    window.shown.Separators (110, 190, 40);
    EXPECT_TRUE (window.shown.Select (0x0008, 0x0016));
    const std::vector<std::string> names = Row_Names ();
    EXPECT_EQ (9u, names.size ());
    trial.check = [&names] (const std::string &, const std::vector<std::string> &) { EXPECT_EQ (names, Row_Names ()); };
    for (Memory_Loss loss : {LOSS_OF_ONE, LOSS_OF_TWO, LOSS_OF_ALL}) {
        noted_words.clear ();
        std::set<std::string> told = Every_Memory_Failure (trial, loss);
        for (const char *variable : {"device: region", "file: file"}) EXPECT_TRUE (told.count (variable)) << variable;
        for (const char *words : OTHER_WORDS) EXPECT_TRUE (noted_words.count (words)) << words;
    }
}

// --- start-up --------------------------------------------------------------

static int No_Loop (Window window) {
    Other_Words_Begin ();
    Window_Event event = {};
    event.kind         = WINDOW_PAINT;
    Window_Send (window, &event);
    Icon_Read (nullptr, "icon_type_0.tga");
    Other_Words_End ();
    return 7;
}

// The program's entry again and again, for a user with a configuration file and no tables yet.
struct Failing_Start {
    Files                     files;
    Temporary_Directory       user, scratch;
    std::string               appdata  = getenv ("APPDATA") ? getenv ("APPDATA") : "";
    Log_Settings              settings = Log;
    std::vector<const char *> words;
    int                       window = 0; // 1: no files are named.
    int                       result = 0;

    Failing_Start () {
        Environment_Set ("APPDATA", user.path);
        Main_Window_Loop_Set (No_Loop);
        Window_Box_Hook_Set (Box_Heard);
    }
    ~Failing_Start () {
        End ();
        Main_Window_Loop_Set (nullptr);
        Window_Box_Hook_Set (nullptr);
        Environment_Set ("APPDATA", appdata);
        Log = settings;
        Log_Recorder silent; // Its end leaves the sink that writes nothing.
    }

    std::string Run () {
        std::filesystem::remove_all (user.File ("Kestrelbay"));
        std::filesystem::create_directory (user.File ("Kestrelbay"));
        user.Write (std::string ("Kestrelbay") + System_Separator () + "Tagwright.ini",
                    "skip = (0008,1150)\nskip = (0010,*)\naudit = audit.dat\ntables = " + files.folder.path + "\n");
        std::filesystem::remove (scratch.File ("audit.dat"));
        Log_Settings_Reset ();
        Log_Sink_Set (nullptr);
        Log.scratch[scratch.path.copy (Log.scratch, sizeof Log.scratch - 1)] = 0;

        Program_Arguments arguments = {nullptr, static_cast<int> (words.size ()), words.data ()};
        testing::internal::CaptureStdout ();
        testing::internal::CaptureStderr ();
        result = Program_Run (&arguments);
        fflush (stdout);
        std::string output = testing::internal::GetCapturedStdout (), errors = testing::internal::GetCapturedStderr ();
        Log_Files_End ();
        return std::to_string (result) + "\n" + output + errors + Read_Whole (scratch.File ("audit.dat"));
    }
    void End () {
        NEMA_Value_Rings_Free ();
        Dictionary_Reset (nullptr, 0);
    }

    std::set<std::string> Fail (Memory_Loss loss) {
        Memory_Trial trial;
        trial.run     = [this] { return Run (); };
        trial.end     = [this] { End (); };
        trial.reports = Boxes_Take;
        trial.noted   = Noted_Take;
        trial.check   = [this] (const std::string &, const std::vector<std::string> &reports) {
            std::string variable = reports.empty () ? "" : Memory_Variable (reports[0]);
            if (variable.find ("start_up: ") && variable.find ("command_line: ")) return;
            EXPECT_EQ (0, result);
            EXPECT_EQ ("", Read_Whole (scratch.File ("audit.dat"))) << variable;
        };
        return Every_Memory_Failure (trial, loss);
    }
};

TEST (MemoryFailures, StartWithFiles) {
    Failing_Start start;
    std::string   a = start.files.folder.File ("a.dcm"), b = start.files.folder.File ("b.dcm");
    start.words = {a.c_str (), b.c_str ()};
    for (Memory_Loss loss : {LOSS_OF_ONE, LOSS_OF_TWO, LOSS_OF_ALL}) {
        std::set<std::string> told = start.Fail (loss);
        for (const char *variable :
             {"command_line: input_file", "command_line: input_file[count]", "start_up: Inst_Path",
              "start_up: Application_Path", "definition_files: DICOM_Module_Dir", "configuration: Skip_Group",
              "configuration: Skip_Element", "configuration: Skip_Group[Nb_Skip]",
              "configuration: Skip_Element[Nb_Skip]", "data_dictionary: entries"})
            EXPECT_TRUE (loss == LOSS_OF_ALL || told.count (variable)) << variable;
    }
}

TEST (MemoryFailures, StartWithTheWindow) {
    Failing_Start start;
    start.words  = {"-x", "0", "320", "-y", "0", "240"};
    start.window = 1;
    for (Memory_Loss loss : {LOSS_OF_ONE, LOSS_OF_TWO, LOSS_OF_ALL}) {
        std::set<std::string> told = start.Fail (loss);
        for (const char *variable : {"start_up: Inst_Path", "configuration: Skip_Group", "device: region",
                                     "texts: text->lines", "texts: text->lines[].text"})
            EXPECT_TRUE (loss == LOSS_OF_ALL || told.count (variable)) << variable;
    }
}
