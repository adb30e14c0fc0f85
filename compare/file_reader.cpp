// A file passes through phases, each of which leaves a list for the next: the elements in stream order, the nested list
// that they form, the same without the item and delimiter records that only told where things end. Where nobody reads what
// the phases say, the first ones go together. Nothing that a file holds may end the reading in silence, and what was read
// before a fault is kept.
#include "compare/file_reader.h"

#include <string.h>

#include "attribute/NEMA_Tag_Attribute.h"
#include "attribute/NEMA_Tag_Complement.h"
#include "attribute/adopt.h"
#include "attribute/format.h"
#include "attribute/listing.h"
#include "attribute/value.h"
#include "nema/NEMA_Read_Data.h"
#include "nema/NEMA_Read_TAG.h"
#include "syntax/cleanup.h"
#include "syntax/syntax_rules.h"
#include "tables/data_dictionary.h"
#include "util/error_text.h"
#include "util/my_error_fct.h"

static const char *const MODULE = "file_reader";

static const int64_t PREAMBLE_SIZE  = 128;
static const size_t  MARK_SIZE      = 4;          // "DICM"
static const int64_t ELEMENT_LEAST  = 4;          // Fewer bytes than a tag are the end of the file.
static const int64_t FILE_SIZE_MOST = 0x7FFFFFFF; // Lengths and positions in a list are 32-bit.

static const uint16_t ELEMENT_SYNTAX = 0x0010; // (0002,0010) Transfer Syntax UID.

// The state of reading one file.
struct Reading {
    Window          window;
    SequenceCursor *cursor;       // Borrowed.
    NEMA_Source     source;       // Its file is owned here; none after a failed move has closed it.
    int64_t         size;         // Of the file.
    uint8_t         mode;         // For the next element.
    int             encapsulated; // 1 between encapsulated pixel data and the end of its fragments.
    Attribute      *list;         // Read so far in stream order,
    Insert_Path     path;         // and the way to its end.
    Format_Pass    *nesting;      // None unless records are nested as they come: then the list stays empty.
    Attribute      *waiting;      // To be nested: it waits for the one behind it.
};

struct Transfer_Syntax {
    const char *uid;
    uint8_t     mode;
};

// Any other transfer syntax is read as the one before it; the compressed ones are explicit VR little endian, as is the
// mode in which a file starts.
static const Transfer_Syntax SYNTAXES[] = {
    {"1.2.840.10008.1.2", 0},
    {"1.2.840.10008.1.2.1", MODE_EXPLICIT},
    {"1.2.840.10008.1.2.2", MODE_EXPLICIT | MODE_BIG_ENDIAN},
};

// --- reports ---------------------------------------------------------------

static void Report_Open_Failure (Window window, const char *name) {
    unsigned error = System_Last_Error ();
    Log_Message (window, LOG_TRACE1, "file:%s line:%d", MODULE, __LINE__);
    Log_Message (window, LOG_WARNING, EMPHASIS COLOUR_RED "ERROR:" COLOUR_BLACK " Unable to open file");
    Log_Message (window, LOG_WARNING, "%s", Error_Text (error));
    Log_Message (window, LOG_WARNING, "file: (%s)", name);
}

static void Report_Seek_Failure (Window window, const char *name, int64_t position) {
    unsigned error = System_Last_Error ();
    Log_Message (window, LOG_TRACE1, "file:%s line:%d", MODULE, __LINE__);
    Log_Message (window, LOG_WARNING, EMPHASIS COLOUR_RED "ERROR:" COLOUR_BLACK " while seeking pos %ld",
                 static_cast<long> (position));
    Log_Message (window, LOG_WARNING, "%s", Error_Text (error));
    Log_Message (window, LOG_WARNING, "file: (%s)", name);
}

static void Report_Too_Large (Window window, const char *name, int64_t size) {
    Log_Message (window, LOG_WARNING,
                 EMPHASIS COLOUR_RED "ERROR:" COLOUR_BLACK " file too large: " COLOUR_BLUE "%lld" COLOUR_BLACK
                                     " bytes, at most " COLOUR_BLUE "%lld" COLOUR_BLACK " can be read",
                 static_cast<long long> (size), static_cast<long long> (FILE_SIZE_MOST));
    Log_Message (window, LOG_WARNING, "file: (%s)", name);
}

static void Report_Tell_Failure (const Reading *reading) {
    unsigned error = System_Last_Error ();
    Log_Message (reading->window, LOG_TRACE1, "file:%s line:%d", MODULE, __LINE__);
    Log_Message (reading->window, LOG_TRACE1, "using lseek()");
    Log_Message (reading->window, LOG_TRACE1, "%s", Error_Text (error));
    Log_Message (reading->window, LOG_TRACE1, "file: (%s)", reading->source.name);
}

static void Report_Early_Stop (const Reading *reading, uint32_t position) {
    Log_Message (reading->window, LOG_WARNING,
                 EMPHASIS COLOUR_YELLOW "WARNING:" COLOUR_BLACK " reading stopped at byte " COLOUR_BLUE
                                        "%ld" COLOUR_BLACK " of " COLOUR_BLUE "%ld" COLOUR_BLACK,
                 static_cast<long> (position), static_cast<long> (reading->size));
    Log_Message (reading->window, LOG_WARNING, "file: (%s)", reading->source.name);
}

// --- one element -----------------------------------------------------------

enum Step { STEP_DONE, STEP_END, STEP_FAILED };

// Where the source stands; a failure is only traced, since reading itself needs no position.
static int64_t Position (const Reading *reading) {
    int64_t position = NEMA_Tell (&reading->source);
    if (position < 0) Report_Tell_Failure (reading);
    return position;
}

// The mode in which a value is stored: file meta information is little endian in every transfer syntax, and item tags
// are read without VR and without exchanged units.
static uint8_t Value_Mode (uint8_t mode, const Element_Header *header) {
    if (header->group == GROUP_META) return (mode & MODE_VENDOR) | (header->vr_file ? MODE_EXPLICIT : 0);
    if (header->group == GROUP_DELIMITER) return mode & (0xC0 | MODE_BIG_ENDIAN);
    return mode;
}

static Step Read_Header (Reading *reading, Element_Header *header) {
    int64_t start   = Position (reading);
    header->pos_tag = start < 0 ? 0 : static_cast<uint32_t> (start);
    if (start + ELEMENT_LEAST > reading->size) {
        Log_Message (reading->window, LOG_TRACE3, "--> ****** end of file ******");
        return STEP_END;
    }

    header->flags = ORIGIN_DICOM;
    if (!NEMA_Get_Data_Element (reading->window, &reading->source, reading->mode, &header->group, &header->element,
                                &header->vr_file, &header->length, static_cast<int32_t> (reading->size)))
        return STEP_FAILED;
    header->mode = Value_Mode (reading->mode, header);
    Log_Message (reading->window, LOG_TRACE2, "(%04x,%04x) VR:%c%c length:%d pos:%d of %d", header->group,
                 header->element, Code_First (header->vr_file, '0'), Code_Second (header->vr_file, '0'), header->length,
                 static_cast<int> (start), static_cast<int> (reading->size));
    return STEP_DONE;
}

// The header against what is left of the file. An element of zeros is the padding of a stream, not an attribute.
static Step Check_Header (Reading *reading, Element_Header *header) {
    int64_t start    = Position (reading);
    int64_t left     = reading->size - start;
    bool    zero     = header->group == 0 && header->element == 0;
    header->pos_data = start < 0 ? 0 : static_cast<uint32_t> (start);

    if (!zero && header->length == 0 && left < 0) {
        Log_Message (reading->window, LOG_TRACE3, "--> ****** end of file ******");
        return STEP_END;
    }
    if (zero && !header->vr_file && header->length == 0) {
        Log_Message (reading->window, LOG_TRACE3, "--> ****** NULL element ******");
        return STEP_END;
    }
    if (header->length > 0 && header->length > left) {
        Log_Message (reading->window, Sequence_Kind_Warning (reading->cursor),
                     EMPHASIS COLOUR_YELLOW "    WARNING:" EMPHASIS_END COLOUR_BLACK " (" COLOUR_BLUE
                                            "%04x" COLOUR_BLACK "," COLOUR_BLUE "%04x" COLOUR_BLACK
                                            ") Invalid tag length (size=" COLOUR_BLUE "%d" COLOUR_BLACK ")!",
                     header->group, header->element, header->length);
        header->flags |= SYNTAX_ERROR;
        header->length = left > 0 ? static_cast<int32_t> (left) : 0;
    }
    return STEP_DONE;
}

// Items and delimiters are structure: the dictionary isn't asked about them.
static void Look_Up (const Reading *reading, Element_Header *header) {
    if (header->group == GROUP_DELIMITER) return;

    header->definition = Dictionary_Lookup (reading->window, header->group, header->element);
    if (header->definition) {
        header->vr = header->definition->vr[0];
    } else if (header->element != 0) {
        if (header->group != GROUP_PIXEL)
            Log_Message (reading->window, Sequence_Kind_Note (reading->cursor),
                         COLOUR_BLACK "    (" COLOUR_BLUE "%04x" COLOUR_BLACK "," COLOUR_BLUE "%04x" COLOUR_BLACK
                                      ") Unknown tag",
                         header->group, header->element);
        header->flags |= DELETED;
    }
}

static bool Is_Item (const Element_Header *header) {
    return header->group == GROUP_DELIMITER && header->element == ELEMENT_ITEM;
}

// Tells fragments of encapsulated pixel data from items of a sequence: every element but an item decides anew.
static void Mark_Content (Reading *reading, Element_Header *header) {
    uint16_t vr = Element_VR (header);
    if (!Is_Item (header)) reading->encapsulated = (vr == VR_OB || vr == VR_OW) && header->length == LENGTH_UNDEFINED;
    else header->vr = reading->encapsulated ? VR_FRAGMENT : VR_ITEM;
}

// The content of a sequence and of its items follows as elements; a fragment has a value like any other element.
static bool Has_Value (const Reading *reading, const Element_Header *header) {
    if (header->length <= 0 || Element_VR (header) == VR_SQ) return false;
    return !Is_Item (header) || reading->encapsulated;
}

// The transfer syntax counts from the next element on. Its value ends at the first zero byte.
static void Apply_Syntax (Reading *reading, Attribute *attribute) {
    if (attribute->group != GROUP_META || attribute->element != ELEMENT_SYNTAX) return;

    attribute->flags |= CONVERTER;
    const char *value  = reinterpret_cast<const char *> (attribute->data);
    size_t      length = value ? strnlen (value, static_cast<size_t> (attribute->length)) : 0;
    for (const Transfer_Syntax &syntax : SYNTAXES)
        if (strlen (syntax.uid) == length && !memcmp (syntax.uid, value, length))
            reading->mode = (reading->mode & MODE_VENDOR) | syntax.mode;
}

// Makes the record of the element whose header was read, with its value. None on failure. A value that stands in the
// source's buffer, as nearly all short ones do, is taken from there at once.
static Attribute *Record (Reading *reading, const Element_Header *header) {
    Window         window = reading->window;
    NEMA_Source   *source = &reading->source;
    bool           has    = Has_Value (reading, header);
    int32_t        room   = has && header->length <= VALUE_ROOM_MOST ? header->length : 0;
    const uint8_t *bytes =
        room && !(header->mode & MODE_SWAB) ? NEMA_View (source, static_cast<size_t> (room)) : nullptr;
    Attribute *record = Attribute_New (window, header, room, bytes);
    if (!record || !has) return record;
    if (bytes) {
        NEMA_Advance (source, room);
        return record;
    }
    if (NEMA_Read_Buffer (window, source, record->mode, record->length, record)) return record;
    Value_Record_Free (record);
    return nullptr;
}

// Nests the record that has waited for the one behind it. Without memory the rest is read for what there is to say of it.
static void Nest_Waiting (Reading *reading, Attribute *behind) {
    Attribute *record = reading->waiting;
    reading->waiting  = behind;
    if (!record) return;
    record->next = behind;
    if (!DICOM_Attribute_Format_Next (reading->nesting, record)) Value_Record_Free (record);
}

// The cursor stands at the top, whose place is known.
static void Append_To_List (Reading *reading, Attribute *record) {
    Window      window = reading->window;
    Attribute **place  = DICOM_Attribute_Adopt_Place (window, reading->cursor, &reading->path, record);
    DICOM_Attribute_Adopt_At (window, reading->cursor, place, record);
}

// Adds the element whose header was read.
static Step Append (Reading *reading, const Element_Header *header) {
    Attribute *record = Record (reading, header);
    if (!record) return STEP_FAILED;
    if (!reading->nesting) Append_To_List (reading, record);
    Apply_Syntax (reading, record);
    if (reading->nesting) Nest_Waiting (reading, record);
    return STEP_DONE;
}

// header, which the caller has cleared, gets what is known of the element without its value.
static Step Read_Element (Reading *reading, Element_Header *header) {
    Step step = Read_Header (reading, header);
    if (step == STEP_DONE) step = Check_Header (reading, header);
    if (step != STEP_DONE) return step;
    Look_Up (reading, header);
    Mark_Content (reading, header);
    return Append (reading, header);
}

// --- the file --------------------------------------------------------------

static int Seek (Reading *reading, int64_t position) {
    if (NEMA_Seek (&reading->source, position)) return 1;
    Report_Seek_Failure (reading->window, reading->source.name, position);
    return 0;
}

// Moves to the first element: behind preamble and mark, or to the start of a bare stream. 1, or 0 after a report.
static int Find_First_Element (Reading *reading) {
    char mark[MARK_SIZE];
    if (!Seek (reading, PREAMBLE_SIZE)) return 0;
    if (!NEMA_Read_Bytes (reading->window, &reading->source, reading->mode, MARK_SIZE, mark)) return 0;
    if (!memcmp (mark, "DICM", MARK_SIZE)) return Seek (reading, PREAMBLE_SIZE + static_cast<int64_t> (MARK_SIZE));

    Log_Message (reading->window, LOG_WARNING,
                 EMPHASIS COLOUR_YELLOW "WARNING:" EMPHASIS_END COLOUR_BLACK "  file: " COLOUR_BLACK "%s",
                 reading->source.name);
    Log_Message (reading->window, LOG_WARNING,
                 EMPHASIS_END COLOUR_BLACK
                 "\t\t\tis not a valid part-10 DICOM file.  We will attempt to read anyway...");
    return Seek (reading, 0);
}

static void Read_Stream (Reading *reading) {
    Window window = reading->window;
    Log_Message (window, LOG_THREAD, COLOUR_BLACK "\t Reading DICOM tags...");
    Log_Section (window, LOG_TRACE1, "-----                       Reading DICOM File                           ----- ");
    DICOM_Attribute_Sequence_Reset (window, reading->cursor);
    Log_Message (window, LOG_TRACE1, "---------- Reading DICOM tags -------------");

    Element_Header header;
    Step           step = STEP_DONE;
    while (step == STEP_DONE) {
        header = {};
        step   = Read_Element (reading, &header);
    }
    if (reading->nesting) Nest_Waiting (reading, nullptr);
    if (step == STEP_FAILED) Report_Early_Stop (reading, header.pos_tag);
}

// The elements, unless they are nested as they come, or none after a report.
static Attribute *Read_Elements (Window window, SequenceCursor *cursor, const char *name, Format_Pass *nesting) {
    if (!name || !*name) return nullptr;

    File *file = File_Open (name);
    if (!file) {
        Report_Open_Failure (window, name);
        return nullptr;
    }
    if (file->size > FILE_SIZE_MOST) {
        Report_Too_Large (window, name, file->size);
        File_Close (file);
        return nullptr;
    }

    Reading reading         = {};
    reading.window          = window;
    reading.cursor          = cursor;
    reading.nesting         = nesting;
    reading.source.kind     = NEMA_FILE;
    reading.source.name     = name;
    reading.source.file     = file;
    reading.source.settings = cursor->settings;
    reading.size            = file->size;
    reading.path.place[0]   = &reading.list;
    reading.mode            = MODE_EXPLICIT;
    if (cursor->settings) reading.mode = cursor->settings->mode_start;
    if (Find_First_Element (&reading)) Read_Stream (&reading);
    File_Close (reading.source.file);
    return reading.list;
}

Attribute *File_Read_Elements (Window window, SequenceCursor *cursor, const char *name) {
    return Read_Elements (window, cursor, name, nullptr);
}

// --- phases ----------------------------------------------------------------

void List_Delete (Window window, SequenceCursor *cursor, Attribute **list) {
    DICOM_Attribute_Sequence_Reset (window, cursor);
    DICOM_Attribute_Delete (window, cursor, list, TAG_ANY, TAG_ANY);
}

static void Trace_List (Window window, SequenceCursor *cursor, Attribute *list, const char *title) {
    if (Log.trace_level < 2) return;
    Log_Section (window, LOG_TRACE2, title);
    DICOM_Attribute_Sequence_Reset (window, cursor);
    DICOM_Attribute_List (window, cursor, list, LOG_TRACE2);
}

// The records of the elements become those of the nested list, unless a trace tells of the copies and of their release.
static Attribute *Nest (Window window, const SequenceCursor *cursor, Attribute **elements) {
    Attribute *list;
    if (Log_Is_Read (LOG_TRACE5)) list = DICOM_Attribute_Format (window, cursor->settings, *elements);
    else list = DICOM_Attribute_Format_Own (window, cursor->settings, elements);
    if (!list) Log_Message (window, LOG_TRACE1, "Failed in DICOM_Attribute_Format()");
    return list;
}

// Every value is checked against its VR's rules as it was read, and then corrected.
static void Clean (Window window, SequenceCursor *cursor, Attribute *list) {
    DICOM_Attribute_Sequence_Reset (window, cursor);
    DICOM_Attribute_Check_And_Clean (window, cursor, list);
}

static void Complete (Window window, SequenceCursor *cursor, Attribute *list, unsigned left) {
    DICOM_Attribute_Sequence_Reset (window, cursor);
    if (left & FORMAT_LEFT_DESCRIPTIONS) DICOM_Attribute_Complement (window, cursor, list);
    else DICOM_Attribute_Complement_Top (window, cursor, list);
}

static void Drop_Structure (Window window, SequenceCursor *cursor, Attribute **list) {
    DICOM_Attribute_Sequence_Reset (window, cursor);
    DICOM_Attribute_Delete (window, cursor, list, GROUP_DELIMITER, TAG_ANY);
}

// Phase by phase, with what each has to say and to show.
static Attribute *Read_In_Phases (Window window, SequenceCursor *cursor, const char *name) {
    DICOM_Attribute_Sequence_Reset (window, cursor);
    Attribute *elements = File_Read_Elements (window, cursor, name);
    Trace_List (window, cursor, elements,
                "-----                       Stool original DICOM File                     -----");
    DICOM_Attribute_Sequence_Reset (window, cursor);

    Log_Section (window, LOG_TRACE2, "-----                        Cleanup DICOM Tags                           -----");
    Attribute *list = Nest (window, cursor, &elements);
    if (list) Clean (window, cursor, list);
    List_Delete (window, cursor, &elements);
    if (!list) return nullptr;
    Trace_List (window, cursor, list,
                "-----                       Stool After Cleanup                          ----- ");

    Log_Section (window, LOG_TRACE2, "-----           Complementing the info                                    -----");
    Complete (window, cursor, list, FORMAT_LEFT_ALL);
    Drop_Structure (window, cursor, &list);
    Trace_List (window, cursor, list,
                "-----                       Stool After Complement                        -----");
    return list;
}

// The same at once: each element is nested while the next one is read, and what is left to do is done.
static Attribute *Read_At_Once (Window window, SequenceCursor *cursor, const char *name) {
    Format_Pass nesting;
    unsigned    left;
    DICOM_Attribute_Sequence_Reset (window, cursor);
    DICOM_Attribute_Format_Start (&nesting, window, cursor->settings, Syntax_Is_Right);
    Read_Elements (window, cursor, name, &nesting);
    Attribute *list = DICOM_Attribute_Format_End (&nesting, &left);
    if (!list) return nullptr;
    if (left & FORMAT_LEFT_VALUES) Clean (window, cursor, list);
    Complete (window, cursor, list, left);
    if (left & FORMAT_LEFT_STRUCTURE) Drop_Structure (window, cursor, &list);
    return list;
}

// 1 when nobody reads what the phases behind the reading say, so that nothing tells in which order they went.
static bool Is_Silent (const SequenceCursor *cursor) {
    return !Log_Is_Read (LOG_TRACE1) && !Sequence_Kind_Warning (cursor) && !Sequence_Kind_Note (cursor);
}

Attribute *File_Read_List (Window window, SequenceCursor *cursor, const char *name) {
    return Is_Silent (cursor) ? Read_At_Once (window, cursor, name) : Read_In_Phases (window, cursor, name);
}
