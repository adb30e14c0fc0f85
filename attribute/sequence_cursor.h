// Where in the tree of sequences and items a walk stands: the stack of open sequences and the number of the current item
// in each. Every store operation consults one.
#pragma once

#include <stdint.h>

#include "attribute/settings.h"
#include "platform/window.h"

static const int SEQUENCE_DEPTHS = 10;      // Depths 0..9.

struct SequenceCursor {
    int32_t  depth;                         // Open sequences.
    int32_t  Item_Number[SEQUENCE_DEPTHS];  // [k]: items started in the sequence opened at depth k - 1.
    uint16_t group[SEQUENCE_DEPTHS];        // Tag and flags of the sequence opened at each depth, or at the current
    uint16_t element[SEQUENCE_DEPTHS];      // depth of the record most recently placed there.
    uint16_t flags[SEQUENCE_DEPTHS];
    const Settings *settings;               // Borrowed; none means silent. A reset keeps it.
};

// kind is that of the rulers written into a listing, 0 for none.
void    DICOM_Attribute_Sequence_Reset (Window window, SequenceCursor *cursor);
int32_t DICOM_Attribute_Sequence_Start (Window window, SequenceCursor *cursor, uint16_t group, uint16_t element,
                                        uint16_t flags, int kind);                          // The new depth, 9 at most.
int32_t DICOM_Attribute_Sequence_Stop  (Window window, SequenceCursor *cursor, int kind);   // The new depth.
void    DICOM_Attribute_Item_Start     (Window window, SequenceCursor *cursor, int kind);
void    DICOM_Attribute_Item_Stop      (Window window, SequenceCursor *cursor, int kind);   // Leaves the cursor as it is.

int32_t DICOM_Attribute_Sequence_End   (Window window, const SequenceCursor *cursor, int32_t depth);    // Current item index
                                                                            // at that depth, -1 before the first item.
int32_t DICOM_Attribute_Sequence_Depth (Window window, const SequenceCursor *cursor);
void    DICOM_Attribute_Sequence_Get   (Window window, const SequenceCursor *cursor, int32_t depth, uint16_t *group,
                                        uint16_t *element, uint16_t *flags);                // flags may be none.
inline void DICOM_Attribute_Sequence_Set (Window, SequenceCursor *cursor, int32_t depth, uint16_t group, uint16_t element,
                                          uint16_t flags) {
    if (depth < 0 || depth >= SEQUENCE_DEPTHS) return;
    cursor->group[depth]   = group;
    cursor->element[depth] = element;
    cursor->flags[depth]   = flags;
}

// The kinds of messages that the cursor's settings give.
int Sequence_Kind_Warning (const SequenceCursor *cursor);
int Sequence_Kind_Note    (const SequenceCursor *cursor);
