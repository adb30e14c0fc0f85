// The checking pass. The working copy is what the blocks strip; its bytes are never changed, so a value that is a view of
// its file is looked at where it is, and so is a binary one, of which only the length counts.
#include "syntax/syntax_check.h"

#include <string.h>

#include "attribute/NEMA_Tag_Attribute.h"
#include "attribute/messages.h"
#include "attribute/value.h"

static const char *const MODULE = "syntax_check";

// --- byte order ------------------------------------------------------------

static int Swab_Unit (uint16_t vr) {
    switch (vr) {
    case VR_FD: return 8;
    case VR_SL:
    case VR_UL:
    case VR_FL:
    case VR_OF: return 4;
    case VR_SS:
    case VR_US:
    case VR_OW: return 2;
    default: return 0;
    }
}

static void Reverse (uint8_t *bytes, int unit) {
    for (int i = 0; i < unit / 2; i++) {
        uint8_t byte        = bytes[i];
        bytes[i]            = bytes[unit - 1 - i];
        bytes[unit - 1 - i] = byte;
    }
}

int DICOM_Attribute_Syntax_Swab (Window window, Attribute *attribute) {
    Log_Message (window, LOG_TRACE5, "in DICOM_Attribute_Syntax_Swab(%04x,%04x)", attribute->group, attribute->element);
    if (!attribute->data || !(attribute->mode & MODE_BIG_ENDIAN)) return 1;

    int unit = Swab_Unit (Attribute_VR (attribute));
    // Longer numbers are left alone when one is cut; of words the last odd byte is.
    if (unit && attribute->length >= unit && (unit == 2 || attribute->length % unit == 0)) {
        if (!Value_Unshare (window, HERE ("tag->data", attribute->length, 1), attribute)) return 0;
        for (int32_t i = 0; i <= attribute->length - unit; i += unit) Reverse (attribute->data + i, unit);
    }
    attribute->mode = static_cast<uint8_t> (attribute->mode & ~MODE_BIG_ENDIAN);
    return 1;
}

// --- building blocks -------------------------------------------------------

int DICOM_Tag_Syntax_Padding (const Syntax_Run *run, Attribute *attribute, int leading, int trailing) {
    if (!Syntax_Strip_End (run, attribute, trailing)) return 1;
    int32_t count = Syntax_Leading (attribute, leading);
    attribute->data += count;
    attribute->length -= count;
    return 1;
}

int DICOM_Tag_Syntax_Char_Set (const Syntax_Run *run, Attribute *attribute, const char *set) {
    int32_t count = Syntax_Outside_Set (attribute, set);
    if (count) Syntax_Set_Note (run, attribute, count, set);
    return count == 0;
}

int32_t DICOM_Tag_Syntax_Text_Multiple (const Syntax_Run *run, Attribute *attribute, int32_t max) {
    Log_Message (run->window, LOG_TRACE5, "in DICOM_Tag_Syntax_Text_Multiple(%04x,%04x)", attribute->group,
                 attribute->element);
    const char *text   = Syntax_Text (attribute);
    const char *end    = text + Syntax_Text_Length (attribute);
    int32_t     pieces = 0;
    if (text == end) return 1;
    if (!(attribute->group & 1) && end[-1] == '\\') Syntax_Note (run, attribute, "last char is (=\\)!");

    for (;;) {
        const void *backslash = memchr (text, '\\', static_cast<size_t> (end - text));
        const char *stop      = backslash ? static_cast<const char *> (backslash) : end;
        int32_t     length    = static_cast<int32_t> (stop - text);
        if (length > max) Syntax_Too_Long (run, attribute, text, length, max);
        pieces++;
        if (!backslash) return pieces;
        text = stop + 1;
    }
}

int32_t DICOM_Tag_Syntax_Text_Single (const Syntax_Run *run, Attribute *attribute, int32_t max) {
    int32_t length = Syntax_Text_Length (attribute);
    if (length > max)
        Syntax_Warn (run, attribute, "String too long! (" SYNTAX_NUMBER "/vs/" SYNTAX_NUMBER " max) ", length, max);
    return 1;
}

int DICOM_Tag_Syntax_Valid_Int (const Syntax_Run *run, Attribute *attribute) {
    Log_Message (run->window, LOG_TRACE5, "in DICOM_Tag_Syntax_Valid_Int(%04x,%04x)", attribute->group,
                 attribute->element);
    return Syntax_Integers_Fit (run, attribute);
}

int DICOM_Tag_Syntax_VM (const Syntax_Run *run, Attribute *attribute, int32_t count) {
    return Syntax_Multiplicity (run, attribute, count);
}

// --- forms -----------------------------------------------------------------

// Each returns the number of values, 0 after a finding that leaves nothing to count.

static int32_t Check_Multiple (const Syntax_Run *run, Attribute *attribute) {
    DICOM_Tag_Syntax_Padding (run, attribute, run->rule->leading, run->rule->trailing);
    if (run->rule->set) DICOM_Tag_Syntax_Char_Set (run, attribute, run->rule->set);
    return DICOM_Tag_Syntax_Text_Multiple (run, attribute, run->rule->maximum);
}

static int32_t Check_Single (const Syntax_Run *run, Attribute *attribute) {
    DICOM_Tag_Syntax_Padding (run, attribute, run->rule->leading, run->rule->trailing);
    return DICOM_Tag_Syntax_Text_Single (run, attribute, run->rule->maximum);
}

static int32_t Check_Title (const Syntax_Run *run, Attribute *attribute) {
    Syntax_Title_Note (run, attribute);
    return DICOM_Tag_Syntax_Text_Multiple (run, attribute, run->rule->maximum);
}

static int32_t Check_Age (const Syntax_Run *run, Attribute *attribute) {
    DICOM_Tag_Syntax_Char_Set (run, attribute, run->rule->set);
    if (attribute->length == run->rule->maximum) return 1;
    Syntax_Length_Warning (run, attribute);
    return 0;
}

static int32_t Check_Date (const Syntax_Run *run, Attribute *attribute) {
    char        suggestion[SYNTAX_DATE_SIZE];
    Syntax_Date form = Syntax_Date_Form (attribute, suggestion);
    if (form == DATE_UNKNOWN) Syntax_Length_Warning (run, attribute);
    DICOM_Tag_Syntax_Char_Set (run, attribute, run->rule->set);
    if (form == DATE_Y2K)
        Syntax_Warn (run, attribute,
                     "Y2K bug! " SYNTAX_BYTES " = " COLOUR_BLUE "%7.7s" COLOUR_BLACK "? (last digit of day is lost!)",
                     Syntax_Text_Length (attribute), Syntax_Text (attribute), suggestion);
    if (form == DATE_OLD)
        Syntax_Note (run, attribute, "Old syntax! " SYNTAX_BYTES " should be changed to " SYNTAX_TEXT,
                     Syntax_Text_Length (attribute), Syntax_Text (attribute), suggestion);
    return form == DATE_CURRENT;
}

static int32_t Check_Integer (const Syntax_Run *run, Attribute *attribute) {
    if (memchr (attribute->data, '.', static_cast<size_t> (attribute->length))) {
        Syntax_Warn (run, attribute, "Invalid data! Expecting VR=IS but got VR=DS");
        return 0;
    }
    DICOM_Tag_Syntax_Padding (run, attribute, run->rule->leading, run->rule->trailing);
    DICOM_Tag_Syntax_Char_Set (run, attribute, run->rule->set);
    if (!DICOM_Tag_Syntax_Valid_Int (run, attribute)) return 0;
    return DICOM_Tag_Syntax_Text_Multiple (run, attribute, run->rule->maximum);
}

static int32_t Check_Old_Time (const Syntax_Run *run, Attribute *attribute) {
    if (attribute->length > SYNTAX_OLD_TIME_MAXIMUM) {
        Syntax_Too_Long (run, attribute, Syntax_Text (attribute), attribute->length, run->rule->maximum);
        return 0;
    }
    char *new_time = static_cast<char *> (Memory_Malloc (run->window, HERE ("new_time", attribute->length + 1, 1),
                                                         static_cast<size_t> (attribute->length) + 1));
    if (!new_time) return 0;
    Syntax_Old_Time (attribute, new_time);
    Syntax_Note (run, attribute, "Old syntax! " SYNTAX_BYTES " should be changed to " SYNTAX_TEXT,
                 Syntax_Text_Length (attribute), Syntax_Text (attribute), new_time);
    Memory_Free (new_time);
    return 0;
}

static int32_t Check_Time (const Syntax_Run *run, Attribute *attribute) {
    return Syntax_Time_Is_Old (attribute) ? Check_Old_Time (run, attribute) : Check_Multiple (run, attribute);
}

static int32_t Check_Binary (const Syntax_Run *run, Attribute *attribute) {
    if (attribute->length % run->rule->unit) {
        Syntax_Length_Warning (run, attribute);
        return 0;
    }
    return run->rule->counted ? attribute->length / run->rule->unit : 1;
}

static int32_t Check_Form (const Syntax_Run *run, Attribute *attribute) {
    switch (run->rule->form) {
    case SYNTAX_MULTIPLE: return Check_Multiple (run, attribute);
    case SYNTAX_SINGLE: return Check_Single (run, attribute);
    case SYNTAX_TITLE: return Check_Title (run, attribute);
    case SYNTAX_AGE: return Check_Age (run, attribute);
    case SYNTAX_DATE: return Check_Date (run, attribute);
    case SYNTAX_INTEGER: return Check_Integer (run, attribute);
    case SYNTAX_TIME: return Check_Time (run, attribute);
    case SYNTAX_BINARY: return Check_Binary (run, attribute);
    }
    return 0;
}

// --- one attribute ---------------------------------------------------------

// A copy whose ends can be moved. 1, or 0 after the memory message.
static int Working_Copy (Window window, const Syntax_Rule *rule, const Attribute *attribute, Attribute *copy) {
    *copy       = *attribute;
    copy->data  = nullptr;
    copy->block = nullptr;
    if (copy->length < 0) copy->length = 0;
    if (rule->form == SYNTAX_BINARY || Value_Is_Mapped (attribute)) {
        Value_Share (copy, attribute);
        return 1;
    }
    size_t length = static_cast<size_t> (copy->length);
    if (length == INT32_MAX || !Value_New (window, HERE ("mom_tag.data", length + 1, 1), copy, copy->length + 1))
        return 0;
    memcpy (copy->data, attribute->data, length);
    copy->data[length] = 0;
    return 1;
}

int DICOM_Attribute_Syntax_Tag (Window window, const Settings *settings, const Attribute *attribute) {
    Log_Message (window, LOG_TRACE5, "in DICOM_Attribute_Syntax_Tag(%04x,%04x)", attribute->group, attribute->element);
    if (!attribute->data) return 1;

    Syntax_Run run = {window, settings, Syntax_Rule_Of (Attribute_VR (attribute)), 0};
    if (!run.rule) return 0;
    Attribute copy;
    if (!Working_Copy (window, run.rule, attribute, &copy)) return 0;
    int32_t count  = Check_Form (&run, &copy);
    int     result = count > 0 ? DICOM_Tag_Syntax_VM (&run, &copy, count) : 0;
    Value_Release (&copy);
    return result;
}

// --- the walk --------------------------------------------------------------

static void Check_Attribute (Window window, SequenceCursor *cursor, Attribute *attribute) {
    if (!Syntax_Glance (window, cursor->settings, attribute))
        DICOM_Attribute_Syntax_Tag (window, cursor->settings, attribute);
}

int DICOM_Attribute_Syntax_Walk (Window window, SequenceCursor *cursor, Attribute *list) {
    Attribute_Walk (window, cursor, list, LOG_TRACE5, Check_Attribute);
    return 1;
}
