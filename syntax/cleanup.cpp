// The correcting pass. Most values are right or differ only by their padding: those cost no memory, since taking bytes off
// the end changes only the length, and a padding byte that was taken off is still there to be counted again. Whatever
// changes bytes makes the value the attribute's own first.
#include "syntax/cleanup.h"

#include <stdio.h>
#include <string.h>

#include "attribute/NEMA_Tag_Attribute.h"
#include "attribute/messages.h"
#include "attribute/value.h"
#include "syntax/syntax_check.h"
#include "util/text.h"

static const char *const MODULE = "cleanup";

// --- changing a value ------------------------------------------------------

// Makes the bytes writable. 1, or 0 when memory ran out.
static int Own (Syntax_Run *run, Attribute *attribute) {
    if (!Value_Unshare (run->window, HERE ("tag->data", attribute->length, 1), attribute)) return 0;
    run->room = attribute->length;
    return 1;
}

// Replaces the value. 1, or 0 when memory ran out.
static int Replace (Syntax_Run *run, Attribute *attribute, const char *text, int32_t length) {
    if (!Value_New (run->window, HERE ("tag->data", length, 1), attribute, length)) return 0;
    memcpy (attribute->data, text, static_cast<size_t> (length));
    attribute->length = length;
    run->room         = length;
    return 1;
}

// Fills an odd length up. The pad that was there when the file was read is taken back without touching the bytes.
static int Fill_Even (Syntax_Run *run, Attribute *attribute) {
    int     pad    = run->rule->even;
    int32_t length = attribute->length;
    if (pad == SYNTAX_NONE || length % 2 == 0) return 1;
    if (length >= run->room || attribute->data[length] != pad) {
        if (!Value_Resize (run->window, HERE ("tag->data", length + 1, 1), attribute, length + 1)) return 0;
        attribute->data[length] = static_cast<uint8_t> (pad);
        run->room               = length + 1;
    }
    attribute->length = length + 1;
    return 1;
}

// --- building blocks -------------------------------------------------------

int DICOM_Tag_Cleanup_Padding (Syntax_Run *run, Attribute *attribute, int leading, int trailing) {
    if (!Syntax_Strip_End (run, attribute, trailing)) return 1;
    int32_t count = Syntax_Leading (attribute, leading);
    if (!count) return 1;
    if (!Own (run, attribute)) return CLEANUP_MEMORY;
    attribute->length -= count;
    memmove (attribute->data, attribute->data + count, static_cast<size_t> (attribute->length));
    return 1;
}

// Moves the bytes of the set to the front. The one that follows a first byte which is removed isn't looked at.
static void Remove_Outside (Attribute *attribute, const char *set) {
    int32_t kept = 0;
    for (int32_t i = 0; i < attribute->length; i++) {
        uint8_t byte    = attribute->data[i];
        int     allowed = byte && strchr (set, byte);
        if (!allowed && i == 0 && attribute->length > 1) byte = attribute->data[++i];
        else if (!allowed) continue;
        attribute->data[kept++] = byte;
    }
    attribute->length = kept;
}

int DICOM_Tag_Cleanup_Char_Set (Syntax_Run *run, Attribute *attribute, const char *set) {
    int32_t count = Syntax_Outside_Set (attribute, set);
    if (!count) return 1;
    Syntax_Set_Note (run, attribute, count, set);
    if (!Own (run, attribute)) return CLEANUP_MEMORY;
    Remove_Outside (attribute, set);
    attribute->flags |= SYNTAX_ERROR;
    return 1;
}

static int Is_Blank (char byte) { return byte == ' ' || byte == '\t'; }

// 1 when a value of the text must be cut or trimmed.
static int Needs_Change (const char *text, int32_t length, int32_t max) {
    int32_t start = 0;
    for (int32_t i = 0; i <= length; i++) {
        if (i < length && text[i] != '\\') continue;
        if (i - start > max) return 1;
        if (i > start && (Is_Blank (text[start]) || Is_Blank (text[i - 1]))) return 1;
        start = i + 1;
    }
    return 0;
}

static int32_t Count_Pieces (const char *text, int32_t length) {
    int32_t pieces = 1;
    for (int32_t i = 0; i < length; i++) pieces += text[i] == '\\';
    return pieces;
}

// Copies one value, cut and trimmed, to the end of result. Returns the new end.
static char *Add_Piece (Syntax_Run *run, Attribute *attribute, char *result, const char *piece, int32_t length,
                        int32_t max) {
    if (length > max) {
        Syntax_Too_Long (run, attribute, piece, length, max);
        attribute->flags |= SYNTAX_ERROR;
        length = max;
    }
    while (length && Is_Blank (*piece)) {
        piece++;
        length--;
    }
    while (length && Is_Blank (piece[length - 1])) length--;
    memcpy (result, piece, static_cast<size_t> (length));
    return result + length;
}

// Takes blanks off the last value without touching the bytes; one that is too long is left to be cut first.
static void Trim_End (Attribute *attribute, int32_t max) {
    const char *text  = Syntax_Text (attribute);
    int32_t     start = attribute->length;
    while (start && text[start - 1] != '\\') start--;
    if (attribute->length - start > max) return;
    while (attribute->length > start && Is_Blank (text[attribute->length - 1])) attribute->length--;
}

// Writes the values anew. 1, or 0 when memory ran out.
static int Join_Pieces (Syntax_Run *run, Attribute *attribute, const char *text, int32_t length, int32_t max) {
    char *new_data = static_cast<char *> (
        Memory_Malloc (run->window, HERE ("new_data", length + 1, 1), static_cast<size_t> (length) + 1));
    if (!new_data) return 0;
    char   *end   = new_data;
    int32_t start = 0;
    for (int32_t i = 0; i <= length; i++) {
        if (i < length && text[i] != '\\') continue;
        end = Add_Piece (run, attribute, end, text + start, i - start, max);
        if (i < length) *end++ = '\\';
        start = i + 1;
    }
    int replaced = Replace (run, attribute, new_data, static_cast<int32_t> (end - new_data));
    Memory_Free (new_data);
    return replaced;
}

int32_t DICOM_Tag_Cleanup_Text_Multiple (Syntax_Run *run, Attribute *attribute, int32_t max) {
    Log_Message (run->window, LOG_TRACE5, "in DICOM_Tag_Cleanup_Text_Multiple(%04x,%04x)", attribute->group,
                 attribute->element);
    attribute->length = Syntax_Text_Length (attribute);
    if (attribute->length == 0) return 1;

    if (!(attribute->group & 1) && attribute->data[attribute->length - 1] == '\\') {
        Syntax_Note (run, attribute, "Removed last char (=\\) from string!");
        attribute->length--;
        attribute->flags |= SYNTAX_ERROR;
    }
    Trim_End (attribute, max);
    const char *text   = Syntax_Text (attribute);
    int32_t     length = attribute->length;
    int32_t     pieces = Count_Pieces (text, length);
    if (Needs_Change (text, length, max) && !Join_Pieces (run, attribute, text, length, max)) return CLEANUP_MEMORY;
    return pieces;
}

int32_t DICOM_Tag_Cleanup_Text_Single (Syntax_Run *run, Attribute *attribute, int32_t max) {
    static const int32_t SHOWN_WHOLE = 64; // Of a longer text only its ends are shown.

    int32_t     length = Syntax_Text_Length (attribute);
    const char *text   = Syntax_Text (attribute);
    if (length <= max) return 1;
    if (max > SHOWN_WHOLE)
        Syntax_Warn (run, attribute,
                     "String too long! (" SYNTAX_NUMBER "/vs/" SYNTAX_NUMBER " max) Truncated to \"" COLOUR_BLUE
                     "%20.20s ... %20.20s" COLOUR_BLACK "\"(" SYNTAX_BYTES ") ",
                     length, max, text, text + max - 20, length - max, text + max);
    else
        Syntax_Warn (run, attribute,
                     "String too long! (" SYNTAX_NUMBER "/vs/" SYNTAX_NUMBER " max) Truncated to \"" SYNTAX_BYTES
                     "\"(" SYNTAX_BYTES ") ",
                     length, max, max, text, length - max, text + max);
    attribute->length = max;
    return 1;
}

int DICOM_Tag_Cleanup_Valid_Int (Syntax_Run *run, Attribute *attribute) {
    Log_Message (run->window, LOG_TRACE5, "in DICOM_Tag_Cleanup_Valid_Int(%04x,%04x)", attribute->group,
                 attribute->element);
    return Syntax_Integers_Fit (run, attribute);
}

int DICOM_Tag_Cleanup_VM (Syntax_Run *run, Attribute *attribute, int32_t count) {
    return Syntax_Multiplicity (run, attribute, count);
}

// --- decimal texts to integers ---------------------------------------------

static const int32_t INTEGER_LENGTH = 12; // Of one value, PS3.5 6.2.
static const size_t  INTEGER_SIZE   = 24; // Any 64-bit integer with its zero.

static int64_t Truncate (double number) {
    if (number >= 9223372036854775807.0) return INT64_MAX;
    if (number <= -9223372036854775808.0) return INT64_MIN;
    return number == number ? static_cast<int64_t> (number) : 0;
}

// Writes the integer of the terminated piece to result. Returns the new end.
static char *Add_Integer (Syntax_Run *run, Attribute *attribute, char *result, const char *piece) {
    char integer[INTEGER_SIZE];
    int  length =
        snprintf (integer, sizeof integer, "%-lld", static_cast<long long> (Truncate (Text_To_Double (piece))));
    if (length > INTEGER_LENGTH) {
        length          = INTEGER_LENGTH;
        integer[length] = 0;
        Syntax_Warn (run, attribute, "Value truncated to 12 bytes length (=" SYNTAX_TEXT ")", integer);
    }
    memcpy (result, integer, static_cast<size_t> (length));
    return result + length;
}

// Replaces the value by the integers of the terminated text float_str, which is cut into its pieces.
static int Integers_From (Syntax_Run *run, Attribute *attribute, char *float_str, int32_t length) {
    size_t size    = static_cast<size_t> (Count_Pieces (float_str, length)) * (INTEGER_LENGTH + 1);
    char  *int_str = static_cast<char *> (Memory_Malloc (run->window, HERE ("int_str", size, 1), size));
    if (!int_str) return CLEANUP_MEMORY;

    char *end   = int_str;
    char *piece = float_str;
    for (int32_t i = 0; i <= length; i++) {
        if (i < length && float_str[i] != '\\') continue;
        float_str[i] = 0;
        end          = Add_Integer (run, attribute, end, piece);
        if (i < length) *end++ = '\\';
        piece = float_str + i + 1;
    }
    int32_t new_length = static_cast<int32_t> (end - int_str);
    Syntax_Warn (run, attribute, "Invalid data! Converted from \"" SYNTAX_BYTES "\" to \"" SYNTAX_BYTES "\"", length,
                 Syntax_Text (attribute), new_length, int_str);
    int replaced = Replace (run, attribute, int_str, new_length);
    Memory_Free (int_str);
    return replaced ? 1 : CLEANUP_MEMORY;
}

int DICOM_Tag_Cleanup_Int (Syntax_Run *run, Attribute *attribute) {
    int32_t length = Syntax_Text_Length (attribute);
    if (Count_Pieces (Syntax_Text (attribute), length) > INT32_MAX / (INTEGER_LENGTH + 1)) {
        Syntax_Warn (run, attribute, "Invalid data! Expecting VR=IS but got VR=DS");
        return 0; // The integers, a digit for each empty piece too, could be more bytes than a value holds.
    }
    size_t size      = static_cast<size_t> (length) + 1;
    char  *float_str = static_cast<char *> (Memory_Malloc (run->window, HERE ("float_str", size, 1), size));
    if (!float_str) return CLEANUP_MEMORY;
    memcpy (float_str, Syntax_Text (attribute), size - 1);
    float_str[length] = 0;
    int result        = Integers_From (run, attribute, float_str, length);
    Memory_Free (float_str);
    return result;
}

// --- forms -----------------------------------------------------------------

// Each returns the number of values, 0 when the value is to be discarded, CLEANUP_MEMORY when it is to stay as it is.

// What stands in front of the values: padding and characters.
static int Clean_Characters (Syntax_Run *run, Attribute *attribute) {
    const Syntax_Rule *rule = run->rule;
    if (DICOM_Tag_Cleanup_Padding (run, attribute, rule->leading, rule->trailing) == CLEANUP_MEMORY) return 0;
    return !rule->set || DICOM_Tag_Cleanup_Char_Set (run, attribute, rule->set) != CLEANUP_MEMORY;
}

static int32_t Clean_Pieces (Syntax_Run *run, Attribute *attribute) {
    int32_t count = DICOM_Tag_Cleanup_Text_Multiple (run, attribute, run->rule->maximum);
    return count == CLEANUP_MEMORY || !Fill_Even (run, attribute) ? CLEANUP_MEMORY : count;
}

static int32_t Clean_Multiple (Syntax_Run *run, Attribute *attribute) {
    return Clean_Characters (run, attribute) ? Clean_Pieces (run, attribute) : CLEANUP_MEMORY;
}

static int32_t Clean_Single (Syntax_Run *run, Attribute *attribute) {
    if (!Clean_Characters (run, attribute)) return CLEANUP_MEMORY;
    return DICOM_Tag_Cleanup_Text_Single (run, attribute, run->rule->maximum);
}

static int32_t Clean_Title (Syntax_Run *run, Attribute *attribute) {
    Syntax_Title_Note (run, attribute);
    return Clean_Pieces (run, attribute);
}

// Right-aligned into four bytes: "5Y" is five years, of a longer value the end counts.
static int32_t Clean_Age (Syntax_Run *run, Attribute *attribute) {
    static const int32_t AGE_LENGTH = 4;

    if (!Clean_Characters (run, attribute)) return CLEANUP_MEMORY;
    int32_t length = attribute->length;
    if (length == AGE_LENGTH) return 1;
    if (length < 2) {
        Syntax_Length_Warning (run, attribute);
        return 1;
    }
    char age[AGE_LENGTH];
    memset (age, '0', sizeof age);
    int32_t kept = length < AGE_LENGTH ? length : AGE_LENGTH;
    memcpy (age + AGE_LENGTH - kept, attribute->data + length - kept, static_cast<size_t> (kept));
    return Replace (run, attribute, age, AGE_LENGTH) ? 1 : CLEANUP_MEMORY;
}

static int32_t Clean_Old_Date (Syntax_Run *run, Attribute *attribute, const char *suggestion) {
    static const int32_t DATE_LENGTH = 8;

    Syntax_Note (run, attribute, "Old syntax! " SYNTAX_BYTES " changed to " SYNTAX_TEXT, Syntax_Text_Length (attribute),
                 Syntax_Text (attribute), suggestion);
    return Replace (run, attribute, suggestion, DATE_LENGTH) ? 1 : CLEANUP_MEMORY;
}

static int32_t Clean_Date (Syntax_Run *run, Attribute *attribute) {
    char suggestion[SYNTAX_DATE_SIZE];
    if (Syntax_Date_Form (attribute, suggestion) == DATE_UNKNOWN) Syntax_Length_Warning (run, attribute);
    if (!Clean_Characters (run, attribute)) return CLEANUP_MEMORY;

    switch (Syntax_Date_Form (attribute, suggestion)) {
    case DATE_CURRENT: return 1;
    case DATE_OLD: return Clean_Old_Date (run, attribute, suggestion);
    case DATE_Y2K:
        Syntax_Warn (run, attribute,
                     "Y2K bug! " SYNTAX_BYTES " = " COLOUR_BLUE "%7.7s" COLOUR_BLACK
                     "? (Rejected since last digit of day is lost!)",
                     Syntax_Text_Length (attribute), Syntax_Text (attribute), suggestion);
        return 0;
    case DATE_UNKNOWN: return 0;
    }
    return 0;
}

static int32_t Clean_Integer (Syntax_Run *run, Attribute *attribute) {
    if (memchr (attribute->data, '.', static_cast<size_t> (attribute->length))) {
        int converted = DICOM_Tag_Cleanup_Int (run, attribute);
        if (converted != 1) return converted;
    }
    if (!Clean_Characters (run, attribute)) return CLEANUP_MEMORY;
    return DICOM_Tag_Cleanup_Valid_Int (run, attribute) ? Clean_Pieces (run, attribute) : 0;
}

static int32_t Clean_Old_Time (Syntax_Run *run, Attribute *attribute) {
    if (attribute->length > SYNTAX_OLD_TIME_MAXIMUM) {
        Syntax_Too_Long (run, attribute, Syntax_Text (attribute), attribute->length, run->rule->maximum);
        return 0;
    }
    char *new_time = static_cast<char *> (Memory_Malloc (run->window, HERE ("new_time", attribute->length + 1, 1),
                                                         static_cast<size_t> (attribute->length) + 1));
    if (!new_time) return CLEANUP_MEMORY;
    Syntax_Old_Time (attribute, new_time);
    Syntax_Note (run, attribute, "Old syntax! " SYNTAX_BYTES " changed to " SYNTAX_TEXT, Syntax_Text_Length (attribute),
                 Syntax_Text (attribute), new_time);
    int32_t dropped  = attribute->length > 5 ? 2 : 1;
    int     replaced = Replace (run, attribute, new_time, attribute->length - dropped);
    Memory_Free (new_time);
    return replaced ? 1 : CLEANUP_MEMORY;
}

static int32_t Clean_Time (Syntax_Run *run, Attribute *attribute) {
    return Syntax_Time_Is_Old (attribute) ? Clean_Old_Time (run, attribute) : Clean_Multiple (run, attribute);
}

static int32_t Clean_Binary (Syntax_Run *run, Attribute *attribute) {
    if (attribute->length % run->rule->unit) {
        Syntax_Length_Warning (run, attribute);
        attribute->flags |= INVALID;
        return 0;
    }
    return run->rule->counted ? attribute->length / run->rule->unit : 1;
}

static int32_t Clean_Form (Syntax_Run *run, Attribute *attribute) {
    switch (run->rule->form) {
    case SYNTAX_MULTIPLE: return Clean_Multiple (run, attribute);
    case SYNTAX_SINGLE: return Clean_Single (run, attribute);
    case SYNTAX_TITLE: return Clean_Title (run, attribute);
    case SYNTAX_AGE: return Clean_Age (run, attribute);
    case SYNTAX_DATE: return Clean_Date (run, attribute);
    case SYNTAX_INTEGER: return Clean_Integer (run, attribute);
    case SYNTAX_TIME: return Clean_Time (run, attribute);
    case SYNTAX_BINARY: return Clean_Binary (run, attribute);
    }
    return CLEANUP_MEMORY;
}

// --- one attribute ---------------------------------------------------------

int DICOM_Attribute_Cleanup_Swab (Window window, Attribute *attribute) {
    Log_Message (window, LOG_TRACE5, "in DICOM_Attribute_Cleanup_Swab(%04x,%04x)", attribute->group,
                 attribute->element);
    return DICOM_Attribute_Syntax_Swab (window, attribute);
}

int DICOM_Attribute_Cleanup_Tag (Window window, const Settings *settings, Attribute *attribute) {
    Log_Message (window, LOG_TRACE5, "in DICOM_Attribute_Cleanup_Tag(%04x,%04x)", attribute->group, attribute->element);
    if (!attribute->data) return 1;
    if (attribute->length < 0) attribute->length = 0;

    Syntax_Run run = {window, settings, Syntax_Rule_Of (Attribute_VR (attribute)), attribute->length};
    if (!run.rule) return 0;
    int32_t count = Clean_Form (&run, attribute);
    if (count > 0) return DICOM_Tag_Cleanup_VM (&run, attribute, count);
    if (count == 0) {
        Value_Release (attribute);
        attribute->length = 0;
    }
    return 0;
}

// --- the walk --------------------------------------------------------------

static void Clean_Attribute (Window window, SequenceCursor *cursor, Attribute *attribute) {
    if ((attribute->mode & MODE_BIG_ENDIAN) || Log_Is_Read (LOG_TRACE5))
        DICOM_Attribute_Cleanup_Swab (window, attribute);
    if (!Syntax_Glance (window, cursor->settings, attribute))
        DICOM_Attribute_Cleanup_Tag (window, cursor->settings, attribute);
}

int DICOM_Attribute_Cleanup_Walk (Window window, SequenceCursor *cursor, Attribute *list) {
    Attribute_Walk (window, cursor, list, LOG_TRACE5, Clean_Attribute);
    return 1;
}

static void Check_Unless_Right (Window window, SequenceCursor *cursor, Attribute *attribute) {
    if (attribute->right || Syntax_Glance (window, cursor->settings, attribute)) return;
    DICOM_Attribute_Syntax_Tag (window, cursor->settings, attribute);
}

// The mark goes with its use: what changes the value later need not know of it.
static void Clean_Unless_Right (Window window, SequenceCursor *cursor, Attribute *attribute) {
    if (!attribute->right) Clean_Attribute (window, cursor, attribute);
    attribute->right = 0;
}

int DICOM_Attribute_Check_And_Clean (Window window, SequenceCursor *cursor, Attribute *list) {
    Attribute_Walk (window, cursor, list, LOG_TRACE5, Check_Unless_Right);
    Attribute_Walk (window, cursor, list, LOG_TRACE5, Clean_Unless_Right);
    return 1;
}
