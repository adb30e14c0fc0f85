// Copying is also how a new record is filled, so this is the busiest source of a reading: a value is shared, never copied,
// unless bytes are appended to it.
#include "attribute/NEMA_Tag_Copy.h"

#include <string.h>

#include "attribute/NEMA_Tag_Attribute.h"
#include "attribute/messages.h"
#include "attribute/value.h"

static const char *const MODULE = "NEMA_Tag_Copy";

// --- appending a value -----------------------------------------------------

enum Append_Form { APPEND_SILENTLY_REFUSED, APPEND_REFUSED, APPEND_BACKSLASH, APPEND_LINE, APPEND_BYTES };

struct Append_Rule {
    uint16_t    vr;
    Append_Form form;
};

// clang-format off
static const Append_Rule append_rules[] = {
    {VR_AE, APPEND_BACKSLASH}, {VR_AS, APPEND_BACKSLASH}, {VR_CS, APPEND_BACKSLASH}, {VR_DS, APPEND_BACKSLASH},
    {VR_IS, APPEND_BACKSLASH}, {VR_LO, APPEND_BACKSLASH}, {VR_PN, APPEND_BACKSLASH}, {VR_SH, APPEND_BACKSLASH},
    {VR_LT, APPEND_LINE},      {VR_ST, APPEND_LINE},      {VR_UT, APPEND_LINE},
    {VR_AT, APPEND_BYTES},     {VR_FD, APPEND_BYTES},     {VR_FL, APPEND_BYTES},     {VR_OB, APPEND_BYTES},
    {VR_OF, APPEND_BYTES},     {VR_OW, APPEND_BYTES},     {VR_OX, APPEND_BYTES},     {VR_SL, APPEND_BYTES},
    {VR_SS, APPEND_BYTES},     {VR_UL, APPEND_BYTES},     {VR_UN, APPEND_BYTES},     {VR_US, APPEND_BYTES},
    {VR_DA, APPEND_REFUSED},   {VR_DT, APPEND_REFUSED},   {VR_SQ, APPEND_REFUSED},   {VR_TM, APPEND_REFUSED},
    {VR_UI, APPEND_REFUSED},
};
// clang-format on

static Append_Form Append_Form_Of (uint16_t vr) {
    for (const Append_Rule &rule : append_rules)
        if (rule.vr == vr) return rule.form;
    return APPEND_SILENTLY_REFUSED;
}

static int Append_Refused (Window window, const SequenceCursor *cursor, const Attribute *source) {
    Log_Message (window, Sequence_Kind_Warning (cursor),
                 EMPHASIS COLOUR_YELLOW "WARNING:" COLOUR_BLACK " Unable to append to tag (%04x,%04x)", source->group,
                 source->element);
    return 1;
}

// Writes the separator, source's bytes and the closing blank behind the old value. Bytes that nobody has are zero.
static void Append_Write (Attribute *target, int32_t old_length, const Attribute *source, Append_Form form) {
    uint8_t *end = target->data + old_length;
    memset (end, 0, static_cast<size_t> (target->length - old_length));
    if (!source->data) return;
    if (form != APPEND_BYTES) *end++ = form == APPEND_BACKSLASH ? '\\' : '\n';
    memcpy (end, source->data, static_cast<size_t> (source->length));
    if (form != APPEND_BYTES) end[source->length] = ' ';
}

// 1 also when the VR refuses; 0 when memory ran out.
static int Append_Value (Window window, const SequenceCursor *cursor, Attribute *target, const Attribute *source) {
    Append_Form form = Append_Form_Of (Attribute_VR (source));
    if (form == APPEND_SILENTLY_REFUSED) return 1;
    if (form == APPEND_REFUSED) return Append_Refused (window, cursor, source);

    int64_t sum = static_cast<int64_t> (target->length) + source->length + (form == APPEND_BYTES ? 0 : 2);
    if (source->length < 0 || target->length < 0 || sum > INT32_MAX) return Append_Refused (window, cursor, source);

    int32_t old_length = target->length;
    int32_t new_length = static_cast<int32_t> (sum);
    int     had_data   = target->data != nullptr;
    if (!Value_Resize (window, HERE ("target->data", new_length, 1), target, new_length)) return 0;
    if (!had_data) memset (target->data, 0, static_cast<size_t> (old_length));
    target->length = new_length;
    Append_Write (target, old_length, source, form);
    return 1;
}

// --- one record ------------------------------------------------------------

static int Copy_Value (Window window, const SequenceCursor *cursor, Attribute *target, const Attribute *source) {
    if (!source->length) return 1;
    if (target->length && (source->flags & APPEND)) return Append_Value (window, cursor, target, source);

    // Without bytes in source the old ones must go too: they would not be as many as the new length says.
    target->length = source->length;
    Value_Share (target, source);
    return 1;
}

static int Copy_Description (Window window, Attribute *target, const Attribute *source) {
    if (!source->description) return 1;
    char *description = nullptr;
    if (source->description[0]) {
        description = Memory_Strdup (window, HERE ("target->description", 0, 0), source->description);
        if (!description) return 0;
    }
    Memory_Free (target->description);
    target->description = description;
    return 1;
}

static int Copy_Scalars (Window window, const SequenceCursor *cursor, Attribute *target, const Attribute *source) {
    target->level   = static_cast<uint8_t> (cursor->depth);
    target->group   = source->group;
    target->element = source->element;
    target->flags   = static_cast<uint16_t> (target->flags | source->flags);
    if (source->mode) target->mode = source->mode;
    if (source->type) target->type = source->type;
    if (source->vr_file) target->vr_file = source->vr_file;
    if (source->flags & VR_UNKNOWN) target->vr = VR_UN;
    else if (source->vr) target->vr = source->vr;
    if (source->pos_tag) target->pos_tag = source->pos_tag;
    if (source->pos_data) target->pos_data = source->pos_data;
    if (source->diff_a) target->diff_a = source->diff_a;
    if (source->diff_b) target->diff_b = source->diff_b;
    if (!Copy_Value (window, cursor, target, source)) return 0;
    if (!Copy_Description (window, target, source)) return 0;
    if (source->definition) target->definition = source->definition;
    return 1;
}

// --- items -----------------------------------------------------------------

// The cursor stands in the sequence. Items go into the list at place; the first empty slot of source ends the copy.
static int Copy_Item_Lists (Window window, SequenceCursor *cursor, Attribute **place, const Attribute *source) {
    if (source->flags & FORCED) return 1;
    for (int32_t i = 0; i < source->nb_item && source->item[i]; i++) {
        DICOM_Attribute_Item_Start (window, cursor, LOG_TRACE5);
        int copied = DICOM_Attribute_Copy (window, cursor, place, source->item[i]);
        DICOM_Attribute_Item_Stop (window, cursor, LOG_TRACE5);
        if (!copied) return 0;
    }
    return 1;
}

static int Copy_Items (Window window, SequenceCursor *cursor, Attribute **place, Attribute *target,
                       const Attribute *source) {
    int     append = source->flags & APPEND;
    int32_t before = append ? target->nb_item : 0; // Items of target that the copied ones follow.
    int64_t wanted = static_cast<int64_t> (before) + source->nb_item;
    int32_t count  = static_cast<int32_t> (wanted < INT32_MAX ? wanted : INT32_MAX);
    if (!Attribute_Grow_Items (window, HERE ("target->item", count, 8), target, count)) return 0;

    DICOM_Attribute_Sequence_Start (window, cursor, source->group, source->element, source->flags, LOG_TRACE5);
    for (int32_t i = 0; i < before; i++) DICOM_Attribute_Item_Start (window, cursor, LOG_TRACE5);
    int copied = Copy_Item_Lists (window, cursor, place, source);
    for (int32_t i = 0; i < before; i++) DICOM_Attribute_Item_Stop (window, cursor, LOG_TRACE5);
    DICOM_Attribute_Sequence_Stop (window, cursor, LOG_TRACE5);
    return copied;
}

int DICOM_Attribute_Copy_Tag (Window window, SequenceCursor *cursor, Attribute **place, Attribute *target,
                              const Attribute *source) {
    Attribute_Copy_Begin (window, cursor, source);

    int keeps = (target->flags & FORCED) || (target->flags && target->length && !(source->flags & APPEND));
    if (!keeps && !Copy_Scalars (window, cursor, target, source)) return 0;
    return source->item ? Copy_Items (window, cursor, place, target, source) : 1;
}

int DICOM_Attribute_Copy (Window window, SequenceCursor *cursor, Attribute **place, const Attribute *chain) {
    Log_Message (window, LOG_TRACE5, "in DICOM_Attribute_Copy()");
    for (const Attribute *source = chain; source; source = source->next) {
        Log_Message (window, LOG_TRACE4, "DICOM_Attribute_Copy (%04x,%04x)", source->group, source->element);
        Attribute *target = DICOM_Attribute_Find_Or_Insert (window, cursor, place, source->group, source->element);
        if (!target || !DICOM_Attribute_Copy_Tag (window, cursor, place, target, source)) {
            Log_Message (window, Sequence_Kind_Warning (cursor),
                         EMPHASIS COLOUR_YELLOW "Warning:" COLOUR_BLACK " Failed in DICOM_Attribute_Copy(%04x,%04x)",
                         source->group, source->element);
            return 0;
        }
    }
    return 1;
}
