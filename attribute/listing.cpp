// The "Stool" listing. A line is columns of fixed width under one heading, with display codes between them that files
// and console drop. Values are shown as far as a line is of use to a reader: every VR has its form and a number of
// bytes.
#include "attribute/listing.h"

#include <stdio.h>
#include <string.h>

#include "nema/NEMA_Read_Data.h"
#include "tables/data_dictionary.h"
#include "tables/uid_names.h"
#include "util/my_error_fct.h"

static const int  TEXT_LENGTH        = 250; // Bytes of a text that are shown.
static const int  UNKNOWN_LENGTH     = 32;  // Characters of a value without VR that are shown.
static const int  UNKNOWN_HEX_LENGTH = 4;   // Up to here such a value may be shown in hexadecimal.
static const int  DESCRIPTION_WIDTH  = 40;
static const char CUT_MARK[]         = " ...";

// --- value text ------------------------------------------------------------

struct Listing_Text {
    char  *text; // LISTING_TEXT_SIZE bytes, terminated.
    size_t used;
};

static void Append_Bytes (Listing_Text *out, const char *piece, size_t size) {
    size_t room = LISTING_TEXT_SIZE - 1 - out->used;
    if (size > room) size = room;
    memcpy (out->text + out->used, piece, size);
    out->used += size;
    out->text[out->used] = 0;
}

static void Append (Listing_Text *out, const char *piece) { Append_Bytes (out, piece, strlen (piece)); }

// One value, as text. A 64-bit number in full has up to 317 characters.
static const size_t PIECE_SIZE = 352;
typedef void (*Piece_Text) (uint8_t mode, const uint8_t *bytes, char *piece);

static void Byte_Text (uint8_t, const uint8_t *bytes, char *piece) { snprintf (piece, PIECE_SIZE, "%02x", bytes[0]); }

static void Word_Text (uint8_t mode, const uint8_t *bytes, char *piece) {
    snprintf (piece, PIECE_SIZE, "%04x", Swap_Short (mode, bytes));
}

static void Tag_Text (uint8_t mode, const uint8_t *bytes, char *piece) {
    snprintf (piece, PIECE_SIZE, "(%04x,%04x)", Swap_Short (mode, bytes), Swap_Short (mode, bytes + 2));
}

static void Signed_Text (uint8_t mode, const uint8_t *bytes, char *piece) {
    snprintf (piece, PIECE_SIZE, "%d", static_cast<int16_t> (Swap_Short (mode, bytes)));
}

static void Unsigned_Text (uint8_t mode, const uint8_t *bytes, char *piece) {
    snprintf (piece, PIECE_SIZE, "%d", Swap_Short (mode, bytes));
}

static void Long_Text (uint8_t mode, const uint8_t *bytes, char *piece) {
    snprintf (piece, PIECE_SIZE, "%d", static_cast<int32_t> (Swap_Long (mode, bytes)));
}

static void Float_Text (uint8_t mode, const uint8_t *bytes, char *piece) {
    snprintf (piece, PIECE_SIZE, "%.3f", static_cast<double> (Swap_Float (mode, bytes)));
}

static void Double_Text (uint8_t mode, const uint8_t *bytes, char *piece) {
    snprintf (piece, PIECE_SIZE, "%.3f", Swap_Double (mode, bytes));
}

struct Value_Form {
    uint16_t    vr;
    int         shown; // Bytes of the value that are looked at.
    int         size;  // Bytes of one value.
    const char *separator;
    Piece_Text  piece;
};

// clang-format off
static const Value_Form value_forms[] = {
    {VR_OW, 64,  2, " ",   Word_Text    },
    {VR_FL, 64,  4, " / ", Float_Text   },
    {VR_FD, 128, 8, " / ", Double_Text  },
    {VR_OB, 32,  1, " ",   Byte_Text    },
    {VR_AT, 64,  4, " / ", Tag_Text     },
    {VR_SS, 32,  2, " / ", Signed_Text  },
    {VR_US, 32,  2, " / ", Unsigned_Text},
    {VR_SL, 64,  4, " / ", Long_Text    },
    {VR_UL, 64,  4, " / ", Long_Text    },
    {0,     16,  1, " ",   Byte_Text    }   // Any other.
};
// clang-format on

static const Value_Form *Form_Of (uint16_t vr) {
    const Value_Form *form = value_forms;
    while (form->vr && form->vr != vr) form++;
    return form;
}

// Whole values only: one that the length cuts, or that doesn't fit into the text any more, is not shown.
static void Values_Text (const Attribute *attribute, const Value_Form *form, Listing_Text *out) {
    int length = attribute->length;
    int cut    = length > form->shown;
    if (cut) length = form->shown;

    for (int at = 0; at <= length - form->size; at += form->size) {
        char        piece[PIECE_SIZE];
        const char *separator = at ? form->separator : "";
        form->piece (attribute->mode, attribute->data + at, piece);
        if (out->used + strlen (separator) + strlen (piece) + sizeof CUT_MARK > LISTING_TEXT_SIZE) {
            cut = 1;
            break;
        }
        Append (out, separator);
        Append (out, piece);
    }
    if (cut) Append (out, CUT_MARK);
}

static void Characters_Text (const Attribute *attribute, int count, Listing_Text *out) {
    const char *text = reinterpret_cast<const char *> (attribute->data);
    Append_Bytes (out, text, strnlen (text, count));
}

static void UID_Text (const Attribute *attribute, int count, Listing_Text *out) {
    Characters_Text (attribute, count, out);
    if (attribute->length >= TEXT_LENGTH) {
        Append (out, "...");
        return;
    }
    const char *name = UID_Name (out->text);
    if (!name) return;
    out->used = 0;
    Append (out, "= ");
    Append (out, name);
}

static int Is_Printable (const uint8_t *bytes, int count) {
    for (int i = 0; i < count; i++)
        if (bytes[i] < 0x20 || bytes[i] > 0x7E) return 0;
    return 1;
}

// A value that nobody can say the type of: shown as text when it looks like one, short ones else byte by byte.
static void Unknown_Text (const Attribute *attribute, int count, Listing_Text *out) {
    static const Value_Form hex = {0, UNKNOWN_HEX_LENGTH, 1, " ", Byte_Text};

    Append (out, "(VR=UN Unknown) ");
    if (Is_Printable (attribute->data, count)) {
        Characters_Text (attribute, count < UNKNOWN_LENGTH ? count : UNKNOWN_LENGTH, out);
        if (attribute->length > UNKNOWN_LENGTH) Append (out, CUT_MARK);
    } else if (attribute->length <= UNKNOWN_HEX_LENGTH) {
        Values_Text (attribute, &hex, out);
    }
}

const char *DICOM_Attribute_Data_Text (Window, Attribute *attribute, char *buffer) {
    static char shared[LISTING_TEXT_SIZE];

    Listing_Text out   = {buffer ? buffer : shared, 0};
    uint16_t     vr    = Attribute_VR (attribute);
    int          count = attribute->length < TEXT_LENGTH ? attribute->length : TEXT_LENGTH;
    out.text[0]        = 0;

    if (vr == VR_SQ && attribute->data) {
        Append (&out, "---- Sequence in ----------------");
        return out.text;
    }
    if (attribute->length < (attribute->data ? 0 : 1)) {
        if (vr != VR_SQ) return nullptr;
        Append (&out, "(sequence)");
        return out.text;
    }
    if (!attribute->data) {
        snprintf (out.text, LISTING_TEXT_SIZE, "(data from file at offset=%d)",
                  static_cast<int32_t> (attribute->pos_data));
        return out.text;
    }
    // clang-format off
    switch (vr) {
    case VR_AE: case VR_AS: case VR_CS: case VR_DA: case VR_DS: case VR_DT: case VR_IS: case VR_LO: case VR_LT:
    case VR_PN: case VR_SH: case VR_ST: case VR_UT:
        Characters_Text (attribute, count, &out);
        if (attribute->length > TEXT_LENGTH) Append (&out, "...");
        break;
    case VR_UI: UID_Text (attribute, count, &out); break;
    case VR_UN: Unknown_Text (attribute, count, &out); break;
    default:    Values_Text (attribute, Form_Of (vr), &out); break;
    }
    // clang-format on
    return out.text;
}

// --- line ------------------------------------------------------------------

struct Origin_Label {
    uint16_t    mask;  // The bits of flags that decide,
    uint16_t    value; // and how they stand.
    const char *label;
    const char *colour;
};

// The first that fits is shown.
// clang-format off
static const Origin_Label origin_labels[] = {
    {APPEND,      APPEND,        "(Append)",  COLOUR_YELLOW},
    {FORCED,      FORCED,        "(Forced)",  COLOUR_YELLOW},
    {DEFAULT,     DEFAULT,       "(Default)", COLOUR_YELLOW},
    {INVALID,     INVALID,       "(Invalid)", COLOUR_RED   },
    {DELETED,     DELETED,       "(Deleted)", COLOUR_RED   },
    {PRIVATE,     PRIVATE,       "(Private)", COLOUR_YELLOW},
    {RETIRED,     RETIRED,       "(Retired)", COLOUR_YELLOW},
    {ORIGIN_MASK, ORIGIN_DICOM,  "(DICOM)",   COLOUR_BLUE  },
    {ORIGIN_MASK, ORIGIN_KEST,   "(Kest)",    COLOUR_BLUE  },
    {ORIGIN_MASK, ORIGIN_MODULE, "(Module)",  COLOUR_BLUE  },
    {0,           0,             "",          COLOUR_BLACK }
};
// clang-format on

static const Origin_Label *Origin_Of (uint16_t flags) {
    const Origin_Label *origin = origin_labels;
    while ((flags & origin->mask) != origin->value) origin++;
    return origin;
}

// clang-format off
static const char *Type_Colour (uint16_t type) {
    switch (type) {
    case Code ('1', ' '): case Code ('1', 'C'): return COLOUR_RED;
    case Code ('2', ' '): case Code ('2', 'C'): return COLOUR_YELLOW;
    case Code ('3', ' '):                       return COLOUR_GREEN;
    default:                                    return COLOUR_BLACK;
    }
}
// clang-format on

static char Prefix_Of (uint16_t flags) {
    return flags & DEFAULT ? '=' : flags & FORCED ? '!' : flags & CONVERTER ? 'o' : flags & APPEND ? '+' : ' ';
}

// The first 40 bytes; what the window would take for a display code becomes a blank, so that the columns stay.
static void Description_Text (const Attribute *attribute, char *text) {
    const char *source = "Unknown tag";
    if (attribute->description) source = attribute->description;
    else if (attribute->definition) source = attribute->definition->name;

    snprintf (text, DESCRIPTION_WIDTH + 1, "%s", source);
    for (; *text; text++) {
        unsigned char c = static_cast<unsigned char> (*text);
        if (c < 10 || c > 239) *text = ' ';
    }
}

// 1 when the trace level keeps everything of this kind, and the cursor's own traces, from being written. Building the
// texts, and walking a long list for them, is then left out.
static int Is_Silent (int kind) {
    if (kind < LOG_TRACE1 || kind > LOG_TRACE9) return 0;
    return Log.trace_level < (kind < LOG_TRACE5 ? kind : LOG_TRACE5) - LOG_TRACE1 + 1;
}

void DICOM_Attribute_List_Line (Window window, SequenceCursor *cursor, Attribute *attribute, int kind) {
    if (Is_Silent (kind)) return;

    const char         *tag_colour = attribute->flags & SYNTAX_ERROR ? COLOUR_RED : COLOUR_BLUE;
    const Origin_Label *origin     = Origin_Of (attribute->flags);
    uint16_t            vr         = Attribute_VR (attribute);
    const char         *vr_start   = attribute->vr_file ? COLOUR_BLUE : COLOUR_GREEN;
    const char         *vr_end     = COLOUR_BLACK;
    char                value[LISTING_TEXT_SIZE];
    const char         *value_text = "---- Sequence in ---------------";
    char                description[DESCRIPTION_WIDTH + 1];

    if (attribute->flags & VR_UNKNOWN) {
        vr_start = EMPHASIS   COLOUR_RED;
        vr_end   = EMPHASIS_END COLOUR_BLACK;
    }
    if (vr != VR_SQ) value_text = DICOM_Attribute_Data_Text (window, attribute, value);
    if (!value_text) value_text = "(no data)";
    Description_Text (attribute, description);

    // clang-format off
    Log_Message (window, kind,
                 "%*s(%s%04x" COLOUR_BLACK ",%s%04x" COLOUR_BLACK ") " EMPHASIS "%s%-10s" EMPHASIS_END " %s%c%-40s"
                 COLOUR_BLACK " (%s%c%c%s,%c%c,%-4d) %s",
                 4 * DICOM_Attribute_Sequence_Depth (window, cursor), "",
                 tag_colour, attribute->group, tag_colour, attribute->element,
                 origin->colour, origin->label,
                 Type_Colour (attribute->type), Prefix_Of (attribute->flags), description,
                 vr_start, Code_First (vr, '-'), Code_Second (vr, '-'), vr_end,
                 Code_First (attribute->type, '-'), Code_Second (attribute->type, '-'), attribute->length, value_text);
    // clang-format on
}

// --- list ------------------------------------------------------------------

// clang-format off
static const char *const legend[] = {
    "Stool syntax: group & element color:" COLOUR_RED " red" COLOUR_BLACK " =syntax error,"
    COLOUR_BLUE " blue" COLOUR_BLACK " =normal",
    "Stool syntax: possible origin: " COLOUR_BLUE "DICOM, " COLOUR_BLUE "Kest, " COLOUR_BLUE "Module, "
    COLOUR_YELLOW "Private, " COLOUR_YELLOW "Retired, " COLOUR_RED "Deleted, " COLOUR_YELLOW "Default, "
    COLOUR_YELLOW "Forced",
    "Stool syntax: description prefix:" EMPHASIS COLOUR_BLACK "!" EMPHASIS_END " forced, "
    EMPHASIS COLOUR_BLACK "=" EMPHASIS_END " default, " EMPHASIS COLOUR_BLACK "+" EMPHASIS_END " append, "
    EMPHASIS COLOUR_BLACK "o" EMPHASIS_END " used by converter",
    "Stool syntax: description color:" COLOUR_RED " red" COLOUR_BLACK " type=1,1C,"
    COLOUR_YELLOW " yellow" COLOUR_BLACK " type=2,2C," COLOUR_GREEN " green" COLOUR_BLACK " type=3,"
    COLOUR_BLACK " black" COLOUR_BLACK " type unknown",
    "Stool syntax: VR color:" COLOUR_RED " red" COLOUR_BLACK " VR=UN," COLOUR_BLUE " blue" COLOUR_BLACK
    " Explicit VR," COLOUR_GREEN " green" COLOUR_BLACK " Implicit VR",
    EMPHASIS COLOUR_BLACK "(grp, elem) Origin            description                        (VR,Tp,size) data"
    EMPHASIS_END
};
// clang-format on

// The items of a sequence. One that lies deeper than a cursor can stand is announced, which warns, but not entered.
static void List_Items (Window window, SequenceCursor *cursor, const Attribute *sequence, int kind) {
    int32_t depth = DICOM_Attribute_Sequence_Depth (window, cursor);
    int32_t item  = cursor->Item_Number[depth];
    int32_t below =
        DICOM_Attribute_Sequence_Start (window, cursor, sequence->group, sequence->element, sequence->flags, kind);
    if (below == depth) {
        cursor->Item_Number[depth] = item;
        return;
    }
    for (int32_t i = 0; i < sequence->nb_item && sequence->item[i]; i++) {
        DICOM_Attribute_Item_Start (window, cursor, kind);
        DICOM_Attribute_List (window, cursor, sequence->item[i], kind);
        DICOM_Attribute_Item_Stop (window, cursor, kind);
    }
    DICOM_Attribute_Sequence_Stop (window, cursor, kind);
}

void DICOM_Attribute_List (Window window, SequenceCursor *cursor, Attribute *first, int kind) {
    if (Is_Silent (kind)) return;

    if (!DICOM_Attribute_Sequence_Depth (window, cursor))
        for (const char *text : legend) Log_Message (window, kind, "%s", text);
    for (Attribute *attribute = first; attribute; attribute = attribute->next) {
        DICOM_Attribute_List_Line (window, cursor, attribute, kind);
        if (attribute->item && attribute->nb_item > 0) List_Items (window, cursor, attribute, kind);
    }
}
