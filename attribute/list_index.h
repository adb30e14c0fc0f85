// Short cuts through a long list, kept on its first record beside last and seek. Two kinds, each built only when searches
// have walked farther than building it costs, and both giving what the walk from the list's start would give:
//
// - landmarks: one every dozen records, with the highest tag up to there, so that a walk that goes on while tags are
//   not greater can begin near its end; for lists in ascending order, and for ordered placement;
// - a table of the first record of each tag, for a list that isn't in ascending order.
//
// Whoever changes a list says so here; nothing else knows what an index is made of.
#pragma once

#include "attribute/attribute.h"
#include "platform/window.h"

enum List_Short_Cut { LIST_LANDMARKS, LIST_TABLE };

// A search has walked so many steps of the list for want of this short cut, which is built when it is due. Without memory
// searches go on walking, after the memory message.
void List_Index_Walked (Window window, Attribute *first, List_Short_Cut kind, int32_t steps);

void List_Index_Free (Attribute *first);    // Records were taken out or put into another order, or the list goes.

// --- searching -------------------------------------------------------------

// 1 and the first record with this tag, or none; 0 when there is no table.
int List_Index_Find (const Attribute *first, uint16_t group, uint16_t element, Attribute **found);

// The last landmark up to which all records but the first are smaller than the tag (or_equal: not greater), or -1. In an
// ascending list it is the first record with its own tag.
int32_t List_Index_Landmark (const Attribute *first, uint16_t group, uint16_t element, int or_equal);
Attribute *List_Index_Record (const Attribute *first, int32_t landmark);

// The walk from this landmark was long: a record on the way, the first with its tag, that becomes the next landmark.
void List_Index_Add (Window window, Attribute *first, int32_t landmark, Attribute *record);

// --- changes ---------------------------------------------------------------

void List_Index_Appended (Attribute *first, Attribute *record);  // Behind the final record.
void List_Index_Placed (Attribute *first, Attribute *record);  // By ordered placement, not in front.
void List_Index_Moved (Attribute *former, Attribute *first);  // first was put in front of former.
