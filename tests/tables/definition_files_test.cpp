#include "tables/definition_files.h"

#include <string.h>

#include <chrono>
#include <vector>

#include <gtest/gtest.h>

#include "attribute/NEMA_Tag_Attribute.h"
#include "attribute/value.h"
#include "tables/data_dictionary.h"
#include "tests/support/definition_tables.h"
#include "tests/support/lists.h"
#include "tests/support/log_recorder.h"
#include "util/error_text.h"
#include "util/memory.h"
#include "util/mutex_access.h"

static const Settings    warning_settings = {LOG_WARNING, LOG_REPORT, MODE_EXPLICIT, 0, nullptr, nullptr};
static const std::string NUL (1, '\0');

// --- lines -----------------------------------------------------------------

struct Lines_Result {
    std::vector<std::string> lines;
    std::string              last; // What the buffer held at the end.
    std::string              warnings;
};

static Lines_Result Read_Lines (const std::string &text) {
    Temporary_Directory directory;
    Log_Recorder        log;
    Lines_Result        result;
    std::vector<char>   buffer (DEFINITION_LINE_SIZE);
    File               *file = File_Open (directory.Write ("table", text).c_str ());
    for (int number = 1; DICOM_Module_Read_Line (nullptr, file, number, buffer.data (), "T", nullptr); number++)
        result.lines.push_back (buffer.data ());
    File_Close (file);
    result.last     = buffer.data ();
    result.warnings = log.Text (LOG_WARNING);
    EXPECT_EQ (log.lines.size (), static_cast<size_t> (log.Count (LOG_WARNING)));
    return result;
}

typedef std::vector<std::string> Texts;

TEST (DefinitionLine, EndsAtTheLineFeed) {
    Lines_Result read = Read_Lines ("one\r\n\ntwo\tand\r more\n");
    EXPECT_EQ ((Texts {"one", "", "two and more"}), read.lines);
    EXPECT_EQ ("", read.warnings);
    EXPECT_EQ (Texts {}, Read_Lines ("").lines);
}

TEST (DefinitionLine, WindowsApostropheBecomesAPlainOne) {
    Lines_Result read = Read_Lines ("Patient\x92s\n");
    EXPECT_EQ (Texts {"Patient's"}, read.lines);
    EXPECT_EQ ("", read.warnings);
}

TEST (DefinitionLine, SemicolonEndsTheTextEvenInQuotes) {
    EXPECT_EQ ((Texts {"tag ", "", "desc=\"a"}), Read_Lines ("tag ; comment\n; only\ndesc=\"a;b\"\n").lines);
}

TEST (DefinitionLine, CommentIsHandedOut) {
    static const struct {
        std::string text;
        const char *line;
        const char *comment;
    } cases[] = {{"a; b;c\n", "a", " b;c"}, {"a;\n", "a", ""}, {"a\n", "a", nullptr}, {"a" + NUL + "b;c\n", "a", "c"}};
    Temporary_Directory directory;
    for (const auto &one : cases) {
        char  buffer[DEFINITION_LINE_SIZE];
        char *comment = buffer + 1;
        File *file    = File_Open (directory.Write ("table", one.text).c_str ());
        EXPECT_EQ (1, DICOM_Module_Read_Line (nullptr, file, 1, buffer, "T", &comment));
        EXPECT_STREQ (one.line, buffer);
        EXPECT_STREQ (one.comment, comment);
        File_Close (file);
    }
}

TEST (DefinitionLine, CommentOfALineThatIsTooLongStaysInTheBuffer) {
    Temporary_Directory directory;
    Log_Recorder        log;
    char                buffer[DEFINITION_LINE_SIZE];
    char               *comment = buffer;
    File *file = File_Open (directory.Write ("table", std::string (DEFINITION_LINE_SIZE - 1, 'x') + ";y\n").c_str ());
    EXPECT_EQ (0, DICOM_Module_Read_Line (nullptr, file, 1, buffer, "T", &comment));
    EXPECT_EQ (nullptr, comment);
    EXPECT_EQ (DEFINITION_LINE_SIZE - 1, static_cast<int> (strlen (buffer)));
    File_Close (file);
}

TEST (DefinitionLine, NulEndsTheTextSilently) {
    Lines_Result read = Read_Lines ("ab" + NUL + "cd\nef\n");
    EXPECT_EQ ((Texts {"ab", "ef"}), read.lines);
    EXPECT_EQ ("", read.warnings);
}

TEST (DefinitionLine, BadCharactersAreReportedAndKept) {
    Lines_Result read = Read_Lines ("good\n\x80"
                                    "b\r\x7F\x01;\x0B\xFF\n");
    EXPECT_EQ ((Texts {"good", "\x80"
                               "b\x7F\x01"}),
               read.lines);
    EXPECT_EQ ("WARNING: reading file:T line:2\n\t\t Bad charact. 0x80 (pos:0)\n"
               "WARNING: reading file:T line:2\n\t\t Bad charact. 0x7f (pos:3)\n"
               "WARNING: reading file:T line:2\n\t\t Bad charact. 0x1 (pos:4)\n"
               "WARNING: reading file:T line:2\n\t\t Bad charact. 0xb (pos:6)\n"
               "WARNING: reading file:T line:2\n\t\t Bad charact. 0xff (pos:7)\n",
               read.warnings);
}

TEST (DefinitionLine, EveryByteButTheNamedOnesIsPrintableOrReported) {
    for (int byte = 0; byte < 256; byte++) {
        if (strchr ("\t\n\f\r;\x92", byte)) continue; // Also zero.
        Lines_Result read = Read_Lines (std::string (1, static_cast<char> (byte)) + "\n");
        EXPECT_EQ (byte >= 0x20 && byte <= 0x7E, read.warnings.empty ()) << byte;
        EXPECT_EQ (Texts {std::string (1, static_cast<char> (byte))}, read.lines) << byte;
    }
}

TEST (DefinitionLine, HoldsNoMoreThan2047Bytes) {
    static const char TOO_LONG[] = "WARNING: reading file:T line:1\n\t\t Line too long (>2048)\n";
    std::string       most (2047, 'x');
    EXPECT_EQ ((Texts {most, "y"}), Read_Lines (most + "\ny\n").lines);
    EXPECT_EQ ((Texts {most, "y"}), Read_Lines (most + "\r\r\r\ny\n").lines) << "carriage returns are not stored";

    for (const std::string &text :
         {most + "x\ny\n", most + "xx\ny\n", most + "x", std::string (9000, ' '), ";" + most + "\n"}) {
        Lines_Result read = Read_Lines (text);
        EXPECT_EQ (Texts {}, read.lines);
        EXPECT_EQ (TOO_LONG, read.warnings);
        EXPECT_GE (2047u, read.last.size ());
    }
}

TEST (DefinitionLine, FormFeedEndsTheFileSilently) {
    for (const char *text : {"one\nignored\fmore\nnever\n", "one\n;comment\f\nnever\n"}) {
        Lines_Result read = Read_Lines (text);
        EXPECT_EQ (Texts {"one"}, read.lines);
        EXPECT_EQ ("", read.warnings);
    }
}

TEST (DefinitionLine, LastLineWithoutLineFeedIsIgnoredWithAWarning) {
    Lines_Result read = Read_Lines ("one\ntwo");
    EXPECT_EQ (Texts {"one"}, read.lines);
    EXPECT_EQ ("two", read.last);
    EXPECT_EQ ("WARNING: reading file:T line:2\n\t\t Last line has no line feed, ignored\n", read.warnings);
    EXPECT_NE ("", Read_Lines ("one\n;c").warnings);
}

TEST (DefinitionLine, ReadErrorEndsTheFileWithTheSystemsText) {
    Temporary_Directory directory;
    Log_Recorder        log;
    char                buffer[DEFINITION_LINE_SIZE];
    File               *file = File_Open (directory.Write ("table", "one\ntwo\n").c_str ());
    File_Fail_At (FILE_READ, 3, 5);
    EXPECT_EQ (0, DICOM_Module_Read_Line (nullptr, file, 7, buffer, "T", nullptr));
    File_Fail_At (FILE_READ, 0, 0);
    EXPECT_STREQ ("on", buffer);
    EXPECT_EQ ("WARNING: reading file:T line:7\n\t\t " + Clean (Error_Text (5)) + "\n", log.Text (LOG_WARNING));
    File_Close (file);
}

// --- attribute lines -------------------------------------------------------

// A table read into a flat list.
struct Table_Read {
    Test_List   list;
    std::string warnings;
    int         result = 0;

    explicit Table_Read (const std::string &text) : list (&warning_settings) {
        Temporary_Directory directory;
        Log_Recorder        log;
        File               *file = File_Open (directory.Write ("table", text).c_str ());
        result                   = DICOM_Module_Read_File (nullptr, &warning_settings, file, "T", &list.first);
        warnings                 = log.Text (LOG_WARNING);
        EXPECT_EQ (log.lines.size (), static_cast<size_t> (log.Count (LOG_WARNING)));
        File_Close (file);
    }
};

static std::string Code_Text (uint16_t code) { return {Code_First (code, '-'), Code_Second (code, '-')}; }

// "flags type VR 'value' description" of one record.
static std::string Definition_Fields (const Attribute *record) {
    char flags[8];
    snprintf (flags, sizeof flags, "%04X ", record->flags);
    return flags + Code_Text (record->type) + " " + Code_Text (record->vr) + " '" +
           (record->data ? Value (record) : "") + "' " + (record->description ? record->description : "-");
}

// What one line gives: the first record's fields, or "none".
static std::string Line (const std::string &line, const std::string &detail = "") {
    Table_Read read (line + "\n");
    EXPECT_EQ (1, read.result);
    EXPECT_EQ (detail.empty () ? "" : "WARNING: reading Attribute file:T line:1\n\t\t" + detail + "\n", read.warnings)
        << line;
    return read.list.first ? Definition_Fields (read.list.first) : "none";
}

// The flat list with items as "[" and "]", the end of a sequence as "." and each other tag by its element.
static std::string Structure (const Attribute *list) {
    std::string text;
    for (const Attribute *record = list; record; record = record->next) {
        char element[8];
        snprintf (element, sizeof element, "%04X ", record->element);
        if (record->group != GROUP_DELIMITER) text += element;
        else text += record->element == ELEMENT_ITEM ? "[ " : record->element == ELEMENT_ITEM_END ? "] " : ". ";
    }
    return text;
}

TEST (DefinitionFile, LineBecomesARecord) {
    Table_Read read ("; head\n\n  (0010,0010) type=2 desc=\"Patient's Name\" \"Doe^John\"  ; comment\n(0011,1234)\n");
    const Attribute *name = read.list.first, *unknown = name->next;
    EXPECT_EQ ("0004 2  PN 'Doe^John' Patient's Name", Definition_Fields (name));
    EXPECT_EQ (0x0010, name->group);
    EXPECT_EQ (0x0010, name->element);
    EXPECT_EQ (MODE_EXPLICIT, name->mode);
    EXPECT_EQ (0, name->vr_file);
    EXPECT_EQ (8, name->length);
    EXPECT_EQ (8u, name->pos_tag);
    EXPECT_EQ (0u, name->pos_data);
    EXPECT_EQ (Dictionary_Lookup (nullptr, 0x0010, 0x0010), name->definition);

    EXPECT_EQ ("0004 3  -- '' -", Definition_Fields (unknown));
    EXPECT_EQ (0, unknown->length);
    EXPECT_EQ (73u, unknown->pos_tag);
    EXPECT_EQ (nullptr, unknown->definition);
    EXPECT_EQ (nullptr, unknown->next);
    EXPECT_EQ ("", read.warnings);
}

TEST (DefinitionFile, AppendsToWhatIsThere) {
    Temporary_Directory directory;
    Test_List           list;
    list.Add (0x0040, 0x0001);
    File *file = File_Open (directory.Write ("table", "(0010,0010)\n(0010,0020)\n").c_str ());
    EXPECT_EQ (1, DICOM_Module_Read_File (nullptr, nullptr, file, "T", &list.first));
    File_Close (file);
    EXPECT_EQ ("(0040,0001) (0010,0010) (0010,0020)", Outline (list.first));
}

TEST (DefinitionFile, TagHasOneToFourHexadecimalDigits) {
    static const char *const good[] = {"(0010,0010)", "(10,10)",       "( 0010, 0010)",
                                       "(0010,0010",  "(0010,0010 x)", "(0010,00101)"};
    for (const char *line : good) EXPECT_EQ ("0004 3  PN '' -", Line (line)) << line;
    EXPECT_EQ ("(7FE0,ABCD)", Outline (Table_Read ("(7fe0,AbCd)\n").list.first));

    static const char *const bad[] = {"0010,0010", "(0010 0010)", "(00100,0010)", "(,0010)",
                                      "(0010,)",   "(0010,zz)",   "(-010,0010)",  "()",
                                      "(",         "x",           "[0010,0010]"};
    for (const char *line : bad)
        EXPECT_EQ ("none", Line (line, std::string (" Syntax error: expecting \"(xxxx,yyyy) ...\" instead of \"") +
                                           line + "\""));
}

TEST (DefinitionFile, SyntaxErrorLosesOnlyItsLine) {
    Table_Read read ("(0010,0010)\n>  wrong\t \n(0010,0020)\n");
    EXPECT_EQ (1, read.result);
    EXPECT_EQ ("(0010,0010) (0010,0020)", Outline (read.list.first));
    EXPECT_EQ ("WARNING: reading Attribute file:T line:2\n"
               "\t\t Syntax error: expecting \"(xxxx,yyyy) ...\" instead of \"wrong\"\n",
               read.warnings);
}

TEST (DefinitionFile, Types) {
    EXPECT_EQ ("0004 1C PN '' -", Line ("(0010,0010) type=1C"));
    EXPECT_EQ ("0004 1  PN '' -", Line ("(0010,0010) type=1"));
    EXPECT_EQ ("0004 3  PN '' -", Line ("(0010,0010) type= desc=x", " Syntax error\"type=xx\" (=type=)"));
    EXPECT_EQ ("0004 3  PN '' -", Line ("(0010,0010) type=123 desc=x", " Syntax error\"type=xx\" (=type=123)"));
}

TEST (DefinitionFile, VRs) {
    EXPECT_EQ ("0004 3  OB '' -", Line ("(0010,0010) VR=OB"));
    EXPECT_EQ ("0004 3  OB '' -", Line ("(0010,0010) VR=OB\\OW"));
    EXPECT_EQ ("0004 3  PN '' -", Line ("(0010,0010) VR=OBX type=1", " Syntax error\"VR=xx\" (=VR=OBX)"));
    EXPECT_EQ ("0004 3  PN '' -", Line ("(0010,0010) VR=O", " Syntax error\"VR=xx\" (=VR=O)"));
    EXPECT_EQ ("0004 3  PN '' -", Line ("(0010,0010) VR=", " Syntax error\"VR=xx\" (=VR=)"));
}

TEST (DefinitionFile, UnknownTokenEndsTheLine) {
    EXPECT_EQ ("0004 1  PN '' -", Line ("(0010,0010) type=1 VM=1 desc=x", " Syntax error (=VM=1)"));
    EXPECT_EQ ("0004 3  PN '' -", Line ("(0010,0010) TYPE=1", " Syntax error (=TYPE=1)"));
    EXPECT_EQ ("0004 3  PN '' -", Line ("(0010,0010) vr=OB", " Syntax error (=vr=OB)"));
    EXPECT_EQ ("0004 3  PN '' -", Line ("(0010,0010) Desc=x", " Syntax error (=Desc=x)"));
    EXPECT_EQ ("0004 1  PN '' -", Line ("(0010,0010) VN=1-n type=1")) << "VN= is ignored";
}

TEST (DefinitionFile, TokensKeepQuotesAndBracketsTogether) {
    EXPECT_EQ ("0004 3  PN '' a b", Line ("(0010,0010) desc=\"a b\""));
    EXPECT_EQ ("0004 3  PN '' ab", Line ("(0010,0010) desc=ab"));
    EXPECT_EQ ("0004 3  PN '' -", Line ("(0010,0010) desc=")) << "an empty one is none";
    EXPECT_EQ ("0004 3  PN '' [a [b c] d]", Line ("(0010,0010)\tdesc=[a [b c] d] type=3"));
    EXPECT_EQ ("0004 3  PN '' [never type=1", Line ("(0010,0010) desc=[never type=1"));
    EXPECT_EQ ("0004 3  PN '' ] x", Line ("(0010,0010) desc=\"] x\""));
    EXPECT_EQ ("0004 1  PN '' ]", Line ("(0010,0010) desc=] type=1"));
    EXPECT_EQ ("0004 1  PN '' [", Line ("(0010,0010) desc=\"[\" type=1")) << "a quoted bracket is text";
    EXPECT_EQ ("0004 3  PN '' open type=1", Line ("(0010,0010) desc=\"open type=1"));
    EXPECT_EQ ("0004 1  PN 'value ' -", Line ("(0010,0010)\"value\" type=1"));
    EXPECT_EQ ("0004 3  PN '2 ' -", Line ("(0010,0010) \"1\" \"2\"")) << "the last one counts";
}

TEST (DefinitionFile, LongTokenKeepsItsQuotes) {
    std::string fits (1022, 'x'), longer (1023, 'x');
    EXPECT_EQ ("0004 3  PN '" + fits + "' -", Line ("(0010,0010) \"" + fits + "\""));
    EXPECT_EQ ("0004 3  PN '\"" + longer + "\" ' -", Line ("(0010,0010) \"" + longer + "\""));
    EXPECT_EQ ("0004 3  PN '' " + fits, Line ("(0010,0010) desc=\"" + fits + "\""));
}

TEST (DefinitionFile, Marks) {
    static const struct {
        const char *mark;
        const char *flags;
    } cases[] = {{"!", "1004"},  {"=", "2004"},    {"-", "0204"},           {"+", "8004"},
                 {"!=", "3004"}, {"!=-+", "B204"}, {" ! = \t- + ", "B204"}, {"=+", "A004"}};
    for (const auto &one : cases)
        EXPECT_EQ (std::string (one.flags) + " 3  PN '' -", Line (std::string (one.mark) + "(0010,0010)")) << one.mark;
    for (const char *line : {"=!(0010,0010)", "!!(0010,0010)", "+-(0010,0010)"})
        EXPECT_EQ ("none", Line (line, std::string (" Syntax error: expecting \"(xxxx,yyyy) ...\" instead of \"") +
                                           (line + 1) + "\""));
    EXPECT_EQ ("none",
               Line (">!(0010,0010)", " Syntax error: expecting \"(xxxx,yyyy) ...\" instead of \"!(0010,0010)\""));
}

TEST (DefinitionFile, ValueThatTheVRCannotHoldIsReported) {
    EXPECT_EQ ("0004 3  OB '' x", Line ("(0010,0010) VR=OB \"a b\" desc=x", " Problem with value (=a b)"));
    EXPECT_EQ ("0004 3  -- '' -", Line ("(0011,1010) \"1\"", " Problem with value (=1)"));
    EXPECT_EQ ("0004 3  OB '' -", Line ("(0010,0010) VR=OB \"\""));
}

TEST (DefinitionFile, ReaderFailureKeepsWhatWasRead) {
    Table_Read read ("(0010,1002)\n>(0010,0020)\n" + std::string (3000, 'x') + "\n(0010,0010)\n");
    EXPECT_EQ (1, read.result);
    EXPECT_EQ ("1002 [ 0020 ] . ", Structure (read.list.first));
    EXPECT_EQ ("WARNING: reading file:T line:3\n\t\t Line too long (>2048)\n", read.warnings);
    EXPECT_EQ ("0010 ", Structure (Table_Read ("(0010,0010)\n\f(0010,0020)\n").list.first));
}

TEST (DefinitionFile, LinesAreTraced) {
    Temporary_Directory directory;
    Test_List           list;
    Log_Recorder        log (5);
    File               *file = File_Open (directory.Write ("table", " x ; c\n\n").c_str ());
    DICOM_Module_Read_File (nullptr, nullptr, file, "T", &list.first);
    File_Close (file);
    EXPECT_EQ ("T[1] ->  x \nT[2] -> \n", log.Text (LOG_TRACE5));
}

// --- nesting ---------------------------------------------------------------

TEST (DefinitionNesting, DepthOpensAndClosesItems) {
    static const struct {
        const char *text;
        const char *structure;
    } cases[] = {
        {"(0010,1002)\n>(0010,0020)\n>(0010,0022)\n(0010,2160)\n", "1002 [ 0020 0022 ] . 2160 "},
        {"(0010,1002)\n>(0010,0020)\n", "1002 [ 0020 ] . "},
        {"(0010,1002)\n(0010,2160)\n", "1002 . 2160 "},
        {"(0010,1002)\n", "1002 . "},
        {"(0010,1002)\n>(0010,0024)\n>>(0040,0036)\n>>>(0010,0020)\n(0010,2160)\n",
         "1002 [ 0024 [ 0036 [ 0020 ] . ] . ] . 2160 "},
        {"(0010,1002)\n>(0010,0024)\n>>(0040,0031)\n>(0010,0022)\n", "1002 [ 0024 [ 0031 ] . 0022 ] . "},
        {"(0010,1002)\n>(0010,0024)\n>(0010,0022)\n", "1002 [ 0024 . 0022 ] . "},
        {"(0010,1002)\n>(0010,0020)\n(0008,1140)\n>(0008,1150)\n", "1002 [ 0020 ] . 1140 [ 1150 ] . "},
        // A second item, written out.
        {"(0010,1002)\n>(0010,0020)\n>(FFFE,E00D)\n>(FFFE,E000)\n>(0010,0022)\n(0010,2160)\n",
         "1002 [ 0020 ] [ 0022 ] . 2160 "},
        // All delimiters written out; the end of the sequence at the sequence's own depth.
        {"(0010,1002)\n>(FFFE,E000)\n>(0010,0020)\n>(FFFE,E00D)\n(FFFE,E0DD)\n(0010,2160)\n", "1002 [ 0020 ] . 2160 "},
        {"(0010,1002)\n>(0010,0020)\n(FFFE,E0DD)\n(0010,2160)\n", "1002 [ 0020 ] . 2160 "},
        {"(0010,1002)\n(FFFE,E0DD)\n(0010,2160)\n", "1002 . 2160 "},
        // An empty item.
        {"(0010,1002)\n>(FFFE,E000)\n>(FFFE,E00D)\n(0010,2160)\n", "1002 [ ] . 2160 "},
        {"(0010,1002)\n>(FFFE,E000)\n(0010,2160)\n", "1002 [ ] . 2160 "},
        // A jump raises the level by one for each line.
        {"(0010,1002)\n>>(0010,0020)\n(0010,2160)\n", "1002 [ 0020 ] . 2160 "},
        {">>>(0010,0020)\n>>>(0010,0022)\n", "[ 0020 [ 0022 ] ] "},
        {"> > (0010,0020)\n", "[ 0020 ] "},
        // Ends of what was never opened leave what follows in order.
        {"(FFFE,E00D)\n(FFFE,E0DD)\n(0010,1002)\n>(0010,0020)\n(0010,2160)\n", "] . 1002 [ 0020 ] . 2160 "},
    };
    for (const auto &one : cases) {
        Table_Read read (one.text);
        EXPECT_EQ (one.structure, Structure (read.list.first)) << one.text;
        EXPECT_EQ ("", read.warnings);
    }
}

TEST (DefinitionNesting, ManyLevelsEnd) {
    std::string line (2000, '>');
    Table_Read  read (line + "(0010,0010)\n" + line + "(0010,0020)\n(0010,0030)\n");
    EXPECT_EQ ("[ 0010 [ 0020 ] ] 0030 ", Structure (read.list.first));
}

TEST (DefinitionNesting, DelimiterRecords) {
    Table_Read       read ("(0010,1002)\n>(0010,0020)\n");
    const Attribute *sequence = read.list.first, *item = sequence->next;
    EXPECT_EQ (LENGTH_UNDEFINED, sequence->length);
    for (const Attribute *one : std::vector<const Attribute *> {item, item->next->next, item->next->next->next}) {
        EXPECT_EQ (GROUP_DELIMITER, one->group);
        EXPECT_EQ (VR_ITEM, one->vr);
        EXPECT_EQ (ORIGIN_MODULE, one->flags);
        EXPECT_EQ (LENGTH_UNDEFINED, one->length);
        EXPECT_EQ (0, one->type);
        EXPECT_EQ (0, one->mode);
    }
}

TEST (DefinitionNesting, ExplicitDelimiterLinesAreLinesLikeOthers) {
    Table_Read       read ("(0010,1002)\n>(FFFE,E000) VR=SQ\n>(FFFE,E00D)\n(FFFE,E0DD)\n");
    const Attribute *item = read.list.first->next, *end = item->next, *sequence_end = end->next;
    EXPECT_EQ (LENGTH_UNDEFINED, item->length);
    EXPECT_EQ (0, end->length);
    EXPECT_EQ (0, sequence_end->length);
    uint32_t position = 12;
    for (const Attribute *one : {item, end, sequence_end}) {
        EXPECT_EQ ("0004 3  -- '' -", Definition_Fields (one));
        EXPECT_EQ (MODE_EXPLICIT, one->mode);
        EXPECT_EQ (position, one->pos_tag);
        position += one == item ? 19 : 13;
    }
    EXPECT_EQ (nullptr, sequence_end->next);
}

// --- include files ---------------------------------------------------------

struct Include_Read : Definition_Tables {
    Test_List   list {&warning_settings};
    std::string warnings;
    std::string trace;
    int         result = 0;

    std::string Read (const std::string &text, int level = 0) {
        Log_Recorder log (level);
        File        *file = File_Open (directory.Write ("table", text).c_str ());
        result            = DICOM_Module_Read_File (nullptr, &warning_settings, file, "T", &list.first);
        warnings          = log.Text (LOG_WARNING);
        trace             = log.Text (LOG_TRACE3);
        File_Close (file);
        return Structure (list.first);
    }
};

TEST (DefinitionInclude, MacroIsInsertedInPlace) {
    Include_Read tables;
    tables.Include ("Code", "(0008,0100) type=1 desc=x \"A\"\n(0008,0102)\n");
    EXPECT_EQ ("0010 0100 0102 0020 ", tables.Read ("(0010,0010)\ninclude Code\n(0010,0020)\n"));
    EXPECT_EQ ("0004 1  SH 'A ' x", Definition_Fields (tables.list.first->next));
    EXPECT_EQ ("", tables.warnings);
}

TEST (DefinitionInclude, SpellingsOfTheDirective) {
    static const char *const lines[] = {"include Foo Bar",
                                        "Include Foo Bar",
                                        "include\tFoo Bar  ; c",
                                        "xncludeFoo Bar",
                                        "include \"Foo Bar\"",
                                        "include \221Foo Bar\"",
                                        "!=-+include Foo Bar",
                                        "include Foo_Bar"};
    for (const char *line : lines) {
        Include_Read tables;
        tables.Include ("Foo_Bar", "(0010,0020)\n");
        EXPECT_EQ ("0020 ", tables.Read (std::string (line) + "\n")) << line;
        EXPECT_EQ (ORIGIN_MODULE, tables.list.first->flags) << "marks have no effect";
    }
    Include_Read tables;
    tables.Include ("Foo", "(0010,0020)\n");
    EXPECT_EQ ("", tables.Read ("includ Foo\n"));
    EXPECT_EQ ("", tables.Read (">!include Foo\n")) << "marks come before the depth";
}

TEST (DefinitionInclude, OpensAndClosesAsALineOfItsDepth) {
    Include_Read tables;
    tables.Include ("Code", "(0008,0100)\n");
    EXPECT_EQ ("1002 [ 0100 ] . 0100 2160 ", tables.Read ("(0010,1002)\n>include Code\ninclude Code\n(0010,2160)\n"));
}

TEST (DefinitionInclude, SequencesOfAMacroStayItsOwn) {
    Include_Read tables;
    tables.Include ("Seq", "(0008,1140)\n>(0008,1150)\n");
    EXPECT_EQ ("1002 [ 1140 [ 1150 ] . 0020 ] . 2160 ",
               tables.Read ("(0010,1002)\n>include Seq\n>(0010,0020)\n(0010,2160)\n"));
}

TEST (DefinitionInclude, IsReadOnceAndTraced) {
    Include_Read tables;
    tables.Include ("A_B", "(0008,0100)\n");
    tables.Read ("include A B\n", 3);
    EXPECT_EQ ("DICOM_Module_Include_Get(A B)\n-> insert new macro(",
               tables.trace.substr (0, tables.trace.find ('(', 40) + 1));
    EXPECT_NE (std::string::npos, tables.trace.find (") in list "));
    tables.Include ("A_B", "(0008,0102)\n");
    EXPECT_EQ ("0100 0100 ", tables.Read ("include A_B\n", 3));
    EXPECT_EQ ("DICOM_Module_Include_Get(A_B)\n-> macro already in memory\n-> insert new macro(",
               tables.trace.substr (0, tables.trace.find ("macro(") + 6));
    DICOM_Module_Include_Free (nullptr);
    EXPECT_EQ ("0100 0100 0102 ", tables.Read ("include A_B\n"));
}

TEST (DefinitionInclude, MissingFileIsReportedEachTime) {
    static const char WARNING[] = "WARNING: reading Attribute file:T line:%\n"
                                  "\t\t Unable to open included file:\"DICOM_Include_No_File.txt\"\n";
    std::string       expected;
    for (const char *line : {"2", "3"}) expected += std::string (WARNING).replace (strcspn (WARNING, "%"), 1, line);
    Include_Read tables;
    EXPECT_EQ ("0010 0020 ", tables.Read ("(0010,0010)\ninclude No File\ninclude No_File\n(0010,0020)\n"));
    EXPECT_EQ (expected, tables.warnings);
    EXPECT_EQ (1, tables.result);
}

TEST (DefinitionInclude, WithoutADirectoryThereIsNoFile) {
    Include_Read tables;
    tables.Include ("A", "(0010,0020)\n");
    DICOM_Module_Dir_Set ("");
    EXPECT_EQ ("", tables.Read ("include A\n"));
    EXPECT_NE (std::string::npos, tables.warnings.find ("Unable to open included file:\"DICOM_Include_A.txt\""));
}

TEST (DefinitionInclude, DirectoryInPlaceOfAFileIsNoFile) {
    Include_Read tables;
    DICOM_Module_Dir_Set ((tables.directory.path + "no such directory/").c_str ());
    EXPECT_EQ ("", tables.Read ("include A\n"));
    DICOM_Module_Dir_Set (std::string (5000, 'd').c_str ());
    EXPECT_EQ ("", tables.Read ("include A\n"));
    EXPECT_NE (std::string::npos, tables.warnings.find ("Unable to open included file:"));
}

TEST (DefinitionInclude, FaultsNameTheIncludedFileAndItsLine) {
    Include_Read tables;
    tables.Include ("A", "(0010,0020)\nwrong\ninclude B\n");
    tables.Read ("(0010,0010)\n\ninclude A\nwrong too\n");
    EXPECT_EQ ("WARNING: reading Attribute file:DICOM_Include_A.txt line:2\n"
               "\t\t Syntax error: expecting \"(xxxx,yyyy) ...\" instead of \"wrong\"\n"
               "WARNING: reading Attribute file:DICOM_Include_A.txt line:3\n"
               "\t\t Unable to open included file:\"DICOM_Include_B.txt\"\n"
               "WARNING: reading Attribute file:T line:4\n"
               "\t\t Syntax error: expecting \"(xxxx,yyyy) ...\" instead of \"wrong too\"\n",
               tables.warnings);
}

TEST (DefinitionInclude, EmptyMacroCountsAsNone) {
    Include_Read tables;
    tables.Include ("A", "; nothing\n");
    EXPECT_EQ ("0010 ", tables.Read ("include A\n(0010,0010)\n", 3));
    EXPECT_EQ ("DICOM_Module_Include_Get(A)\n", tables.trace);
    EXPECT_EQ (nullptr, DICOM_Module_Include_Get (nullptr, nullptr, "A", "T", 1));
}

TEST (DefinitionInclude, IncludingItselfInsertsNothing) {
    Include_Read tables;
    tables.Include ("A", "(0010,0010)\ninclude A\n(0010,0020)\n");
    tables.Include ("B", "(0008,0016)\ninclude C\n");
    tables.Include ("C", "(0008,0018)\ninclude B\n(0008,0020)\n");
    EXPECT_EQ ("0010 0020 ", tables.Read ("include A\n"));
    EXPECT_EQ ("0010 0020 0016 0018 0020 0018 0020 ", tables.Read ("include B\ninclude C\n"));
    EXPECT_EQ ("", tables.warnings);
}

TEST (DefinitionInclude, ReaderFailureOfAnIncludedFileEndsOnlyThatFile) {
    Include_Read tables;
    tables.Include ("A", "(0010,1002)\n>(0010,0020)\n\f");
    EXPECT_EQ ("1002 [ 0020 ] . 0010 ", tables.Read ("include A\n(0010,0010)\n"));
}

TEST (DefinitionInclude, FileThatCannotBeReadOnEndsThere) {
    for (File_Operation operation : {FILE_OPEN, FILE_SEEK}) {
        Include_Read tables;
        tables.Include ("A", "(0010,1002)\n>include B\n>(0010,0020)\n");
        tables.Include ("B", "(0010,0022)\n");
        // The table itself, A and B are opened; then A again, which is sought.
        File_Fail_At (operation, operation == FILE_OPEN ? 4 : 1, 5);
        std::string structure = tables.Read ("include A\n(0010,0010)\n");
        EXPECT_EQ ("1002 [ 0022 ] . 0010 ", structure);
        EXPECT_EQ ("WARNING: reading file:DICOM_Include_A.txt line:2\n\t\t " + Clean (Error_Text (5)) + "\n",
                   tables.warnings);
        File_Fail_At (operation, 0, 0);
    }
}

TEST (DefinitionInclude, GetGivesTheCachedList) {
    Include_Read tables;
    tables.Include ("Foo_Bar", "(0010,0020)\ninclude B\n");
    tables.Include ("B", "(0010,0022)\n");
    Log_Recorder log;
    Attribute   *macro = DICOM_Module_Include_Get (nullptr, nullptr, "Foo Bar", "T", 3);
    EXPECT_EQ ("(0010,0020) (0010,0022)", Outline (macro));
    EXPECT_EQ (macro, DICOM_Module_Include_Get (nullptr, nullptr, "Foo_Bar", "T", 3));
    EXPECT_EQ (nullptr, DICOM_Module_Include_Get (nullptr, nullptr, "None", "T", 3));
    EXPECT_EQ (nullptr, DICOM_Module_Include_Get (nullptr, nullptr, std::string (5000, 'n').c_str (), "T", 3));
    EXPECT_EQ (2, log.Count (LOG_WARNING, "WARNING: reading Attribute file:T line:3"));
}

TEST (DefinitionInclude, GetWithoutMemoryGivesNone) {
    Include_Read tables;
    tables.Include ("A", "(0010,0020) desc=one\ninclude B\n");
    tables.Include ("B", "(0010,0022)\n");
    DICOM_Module_Include_Get (nullptr, nullptr, "A", "T", 1); // What is made once and kept is made.
    DICOM_Module_Include_Free (nullptr);
    long live = Memory_Live ();
    for (long n = 1;; n++) {
        Log_Recorder log;
        Memory_Fail_At (n);
        Attribute *macro  = DICOM_Module_Include_Get (nullptr, nullptr, "A", "T", 1);
        int        failed = Memory_Failed ();
        Memory_Fail_At (0);
        bool       missing = log.Count (LOG_WARNING) > 0; // A file that isn't opened is only warned about.
        EXPECT_EQ (failed, log.Count (LOG_ERROR)) << n;
        if (!failed) {
            EXPECT_EQ ("(0010,0020) (0010,0022)", Outline (macro));
        } else if (!missing) {
            EXPECT_EQ (nullptr, macro) << n;
        }
        DICOM_Module_Include_Free (nullptr);
        EXPECT_EQ (live, Memory_Live ()) << n;
        ASSERT_LT (n, 100);
        if (!failed) break;
    }
}

// More than a process may have open files, and more than a call stack would take. The last one has the only attribute.
TEST (DefinitionInclude, ThousandsOfFilesDeep) {
    static const int DEPTH = 2500;
    Include_Read     tables;
    for (int i = 0; i < DEPTH; i++) tables.Include (std::to_string (i), "include " + std::to_string (i + 1) + "\n");
    tables.Include (std::to_string (DEPTH), "(0010,0020)\n");
    EXPECT_EQ ("0020 ", tables.Read ("include 0\n"));
    EXPECT_EQ ("", tables.warnings);
}

// Names of one and the same file, different for every number: a 1 is written as a superfluous step of the path.
static std::string Alias (int number) {
    std::string name = "/";
    for (int bit = 0; bit < 14; bit++) name += number >> bit & 1 ? "./" : "/";
    return "include A" + name + "x\n";
}

TEST (DefinitionInclude, TenThousandFilesAndNoMore) {
    static const char WARNING[] = "WARNING: To many include in DICOM tables! (max=10240)\n";
    Include_Read      tables;
    System_Directory_Make (tables.directory.File ("DICOM_Include_A").c_str ());
    tables.directory.Write (std::string ("DICOM_Include_A") + System_Separator () + "x.txt",
                            std::string ("(0010,0020)\n"));
    std::string table;
    for (int i = 1; i < DEFINITION_INCLUDES; i++) table += Alias (i);
    std::string all = tables.Read (table);
    EXPECT_EQ (5u * (DEFINITION_INCLUDES - 1), all.size ()) << "each gives its attribute";
    EXPECT_EQ ("", tables.warnings);

    EXPECT_EQ (all, tables.Read (Alias (DEFINITION_INCLUDES))) << "entered, but not read";
    EXPECT_EQ (WARNING, tables.warnings);
    EXPECT_EQ (all, tables.Read (Alias (DEFINITION_INCLUDES))) << "nothing is said when it is asked for again";
    EXPECT_EQ ("", tables.warnings);
    EXPECT_EQ (all + "0020 ", tables.Read (Alias (DEFINITION_INCLUDES + 1) + Alias (1)));
    EXPECT_EQ (WARNING, tables.warnings);
    DICOM_Module_Include_Free (nullptr);
    EXPECT_EQ (all + "0020 0020 ", tables.Read (Alias (DEFINITION_INCLUDES + 1)));
}

TEST (DefinitionInclude, MultiplyingIncludesEndWithAWarning) {
    Include_Read tables;
    std::string  ten;
    for (int i = 0; i < 9; i++)
        tables.Include (std::to_string (i + 1), (ten = "", [&] {
                            for (int k = 0; k < 10; k++) ten += "include " + std::to_string (i) + "\n";
                            return ten;
                        }()));
    tables.Include ("0", "(0010,0020)\n");
    tables.Read ("include 9\n(0010,0010)\n");
    EXPECT_EQ (1, tables.result);
    EXPECT_EQ (0u, tables.warnings.find ("WARNING: reading Attribute file:DICOM_Include_"));
    EXPECT_NE (std::string::npos, tables.warnings.find ("\n\t\t Too many attributes in DICOM tables! (max=250000)\n"));
    EXPECT_EQ (tables.warnings.size (), tables.warnings.find ("(max=250000)\n") + 13) << "one warning";
}

// --- values ----------------------------------------------------------------

static std::string Bytes (const char *vr, const std::string &text) {
    Attribute attribute = Record (0x0010, 0x0010, "", "old value");
    attribute.mode      = MODE_EXPLICIT;
    attribute.vr        = *vr ? Code (vr[0], vr[1]) : static_cast<uint16_t> (0);
    int         set     = DICOM_Module_Value_Set (nullptr, &attribute, text.c_str ());
    std::string value   = set ? Value (&attribute) : "refused";
    EXPECT_TRUE (attribute.data || attribute.length == 0);
    Value_Release (&attribute);
    return value;
}

TEST (DefinitionValue, TextsArePadded) {
    for (const char *vr : {"AE", "AS", "CS", "DA", "DS", "DT", "IS", "LO", "LT", "PN", "SH", "ST", "TM", "UT"}) {
        EXPECT_EQ ("abc ", Bytes (vr, "abc")) << vr;
        EXPECT_EQ ("ab", Bytes (vr, "ab")) << vr;
    }
    EXPECT_EQ ("1.2" + NUL, Bytes ("UI", "1.2"));
    EXPECT_EQ ("1.23", Bytes ("UI", "1.23"));
}

TEST (DefinitionValue, NumbersAreLittleEndian) {
    EXPECT_EQ (std::string ("\x0C\0", 2), Bytes ("US", "12"));
    EXPECT_EQ ("\xFF\xFF", Bytes ("SS", "-1"));
    EXPECT_EQ ("\xFE\xFF\xFF\xFF", Bytes ("SL", "-2"));
    EXPECT_EQ ("\xFF\xFF\xFF\xFF", Bytes ("UL", "4294967295"));
    EXPECT_EQ (std::string ("\x10\0\x20\0", 4), Bytes ("AT", "16\\32"));
    EXPECT_EQ (std::string ("\0\0\xC0\x3F", 4), Bytes ("FL", "1.5"));
    EXPECT_EQ (std::string ("\0\0\0\0\0\0\xF8\xBF", 8), Bytes ("FD", "-1.5"));
}

TEST (DefinitionValue, NumbersAreCutToTheirWidth) {
    EXPECT_EQ ("\x03\x02", Bytes ("US", "66051")) << "0x10203 without its first digit, not saturated";
    EXPECT_EQ ("\xFF\xFF", Bytes ("US", "99999999999999999999"));
}

TEST (DefinitionValue, RealNumbersOutOfRangeSaturate) {
    EXPECT_EQ ("\xFF\xFF\x7F\x7F", Bytes ("FL", "1e99"));
    EXPECT_EQ ("\xFF\xFF\x7F\xFF", Bytes ("FL", "-1e99"));
    EXPECT_EQ ("\xFF\xFF\xFF\xFF\xFF\xFF\xEF\x7F", Bytes ("FD", "1e999"));
}

TEST (DefinitionValue, FirstNumberEndsAtABackslashTheOthersAtBlanks) {
    EXPECT_EQ (std::string ("\1\0\2\0\3\0", 6), Bytes ("US", "1\\2 3"));
    EXPECT_EQ (std::string ("\1\0\2\0", 4), Bytes ("US", "1\\2\\3"));
    EXPECT_EQ (std::string ("\1\0", 2), Bytes ("US", "1 2 3"));
    EXPECT_EQ (std::string ("\1\0\2\0\3\0", 6), Bytes ("US", "1\\ \t2\n 3 \t"));
    EXPECT_EQ (std::string ("\1\0", 2), Bytes ("US", "1\\ "));
    EXPECT_EQ (std::string ("\0\0\2\0", 4), Bytes ("US", "\\2"));
    EXPECT_EQ (std::string ("\0\0\0\0", 4), Bytes ("US", "x\\y"));
    EXPECT_EQ (std::string ("\5\0", 2), Bytes ("US", "+5x7"));
}

TEST (DefinitionValue, EmptyTextLeavesNoValue) {
    for (const char *vr : {"PN", "US", "OB", ""}) EXPECT_EQ ("(none)", Bytes (vr, "")) << vr;
}

TEST (DefinitionValue, OtherVRsHaveNoTextForm) {
    for (const char *vr : {"OB", "OW", "SQ", "UN", "RT", "UC", "Ib", ""}) EXPECT_EQ ("refused", Bytes (vr, "1")) << vr;
}

static std::string Numbers (int count) {
    std::string text = "1\\1";
    for (int i = 2; i < count; i++) text += " 1";
    return text;
}

TEST (DefinitionValue, HoldsNoMoreThan1048BytesOfNumbers) {
    EXPECT_EQ (1048u, Bytes ("US", Numbers (524)).size ());
    EXPECT_EQ ("refused", Bytes ("US", Numbers (525)));
    EXPECT_EQ (1048u, Bytes ("UL", Numbers (262)).size ());
    EXPECT_EQ ("refused", Bytes ("FL", Numbers (263)));
    EXPECT_EQ (1048u, Bytes ("FD", Numbers (131)).size ());
    EXPECT_EQ ("refused", Bytes ("FD", Numbers (132)));
    EXPECT_EQ ("refused", Bytes ("SS", Numbers (100000)));
    std::string text = Numbers (600);
    EXPECT_EQ ("0004 3  US '' -",
               Line ("(0010,0010) VR=US \"" + text + "\"", " Problem with value (=\"" + text + "\")"))
        << "longer than what is unquoted, so the quotes are part of it";
}

TEST (DefinitionValue, FailureOfMemoryLeavesNoValue) {
    for (const char *vr : {"PN", "US"}) {
        Log_Recorder log;
        Attribute    attribute = {};
        attribute.vr           = Code (vr[0], vr[1]);
        long live              = Memory_Live ();
        Memory_Fail_At (1);
        EXPECT_EQ (0, DICOM_Module_Value_Set (nullptr, &attribute, "12"));
        EXPECT_EQ (1, log.Count (LOG_ERROR, "of definition_value \nmemory error in malloc (var=tag->data, dim=2x1)"));
        EXPECT_EQ (nullptr, attribute.data);
        EXPECT_EQ (0, attribute.length);
        EXPECT_EQ (live, Memory_Live ());
    }
    Memory_Fail_At (0);
}

// --- directory -------------------------------------------------------------

TEST (DefinitionDirectory, IsReplacedClearedAndKept) {
    EXPECT_EQ (nullptr, DICOM_Module_Dir_Set (""));
    EXPECT_STREQ ("one/", DICOM_Module_Dir_Set ("one/"));
    EXPECT_STREQ ("one/", DICOM_Module_Dir_Set (nullptr));
    EXPECT_STREQ ("two/", DICOM_Module_Dir_Set ("two/"));

    Log_Recorder log;
    Memory_Fail_At (1);
    EXPECT_EQ (nullptr, DICOM_Module_Dir_Set ("three/"));
    Memory_Fail_At (0);
    EXPECT_EQ (1, log.Count (LOG_ERROR, "of definition_files \nmemory error in strdup (var=DICOM_Module_Dir)"));
    EXPECT_STREQ ("two/", DICOM_Module_Dir_Set (nullptr)) << "the old one stays";
    EXPECT_STREQ ("two/", DICOM_Module_Dir_Set (DICOM_Module_Dir_Set (nullptr))) << "its own text is a path like any";
    EXPECT_EQ (nullptr, DICOM_Module_Dir_Set (""));
    EXPECT_EQ (nullptr, DICOM_Module_Dir_Set (nullptr));
}
