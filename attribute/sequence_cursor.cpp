// The cursor has ten depths and no more: a stream that nests deeper is warned about and goes on at the last depth.
#include "attribute/sequence_cursor.h"

#include <string.h>

#include "attribute/messages.h"

int Sequence_Kind_Warning (const SequenceCursor *cursor) {
    return cursor->settings ? cursor->settings->kind_warning : 0;
}

int Sequence_Kind_Note (const SequenceCursor *cursor) { return cursor->settings ? cursor->settings->kind_note : 0; }

static void Trace_Item_Number (Window window, const SequenceCursor *cursor) {
    Log_Message (window, LOG_TRACE5, "-> Item_Number[%d] = %d", cursor->depth, cursor->Item_Number[cursor->depth]);
}

// One ruler of a listing; format takes the indent of four blanks a depth and a number.
static void Ruler (Window window, int kind, const char *format, int depth, int number) {
    char indent[4 * SEQUENCE_DEPTHS + 1];
    if (!Log_Is_Read (kind)) return;
    memset (indent, ' ', sizeof indent);
    indent[4 * (depth > 0 ? depth : 0)] = '\0';
    Log_Message (window, kind, format, indent, number);
}

void DICOM_Attribute_Sequence_Reset (Window window, SequenceCursor *cursor) {
    const Settings *settings = cursor->settings;
    *cursor                  = {};
    cursor->settings         = settings;
    Log_Message (window, LOG_TRACE5, "in DICOM_Attribute_Sequence_Reset()");
    Trace_Item_Number (window, cursor);
}

int32_t DICOM_Attribute_Sequence_Start (Window window, SequenceCursor *cursor, uint16_t group, uint16_t element,
                                        uint16_t flags, int kind) {
    Ruler (window, kind, "%s------------------------ ---- Sequence in ----(depth=%d)-----", cursor->depth,
           cursor->depth);
    DICOM_Attribute_Sequence_Set (window, cursor, cursor->depth, group, element, flags);
    cursor->depth++;
    if (cursor->depth >= SEQUENCE_DEPTHS) {
        Log_Message (window, Sequence_Kind_Warning (cursor), WARNING_TEXT "To many \"sequences\" in DICOM stream");
        cursor->depth = SEQUENCE_DEPTHS - 1;
    }
    cursor->Item_Number[cursor->depth] = 0;
    Trace_Item_Number (window, cursor);
    return cursor->depth;
}

int32_t DICOM_Attribute_Sequence_Stop (Window window, SequenceCursor *cursor, int kind) {
    Ruler (window, kind, "%s------------------------ ---- Sequence out --------------", cursor->depth - 1, 0);
    if (cursor->depth == 0) {
        Log_Message (window, Sequence_Kind_Warning (cursor),
                     WARNING_TEXT "To many \"out of sequences\" in DICOM stream " TAG_TEXT, cursor->group[0],
                     cursor->element[0]);
        return 0;
    }
    cursor->Item_Number[cursor->depth] = 0;
    cursor->depth--;
    return cursor->depth;
}

void DICOM_Attribute_Item_Start (Window window, SequenceCursor *cursor, int kind) {
    cursor->Item_Number[cursor->depth]++;
    int number = cursor->Item_Number[cursor->depth];
    Log_Message (window, LOG_TRACE5, "-> root->Item_Number[%d] = %d", cursor->depth, number);
    Ruler (window, kind, "%s------------------------ ---- Item[%d] in ---------------", cursor->depth, number);
}

void DICOM_Attribute_Item_Stop (Window window, SequenceCursor *cursor, int kind) {
    Ruler (window, kind, "%s------------------------ ---- Item[%d] out --------------", cursor->depth,
           cursor->Item_Number[cursor->depth]);
    Trace_Item_Number (window, cursor);
}

int32_t DICOM_Attribute_Sequence_End (Window window, const SequenceCursor *cursor, int32_t depth) {
    Log_Message (window, LOG_TRACE5, "in DICOM_Attribute_Sequence_End(depth:%d)", depth);
    return depth >= 0 && depth < SEQUENCE_DEPTHS ? cursor->Item_Number[depth] - 1 : -1;
}

int32_t DICOM_Attribute_Sequence_Depth (Window, const SequenceCursor *cursor) { return cursor->depth; }

void DICOM_Attribute_Sequence_Get (Window, const SequenceCursor *cursor, int32_t depth, uint16_t *group,
                                   uint16_t *element, uint16_t *flags) {
    int known = depth >= 0 && depth < SEQUENCE_DEPTHS;
    *group    = known ? cursor->group[depth] : 0;
    *element  = known ? cursor->element[depth] : 0;
    if (flags) *flags = known ? cursor->flags[depth] : 0;
}
