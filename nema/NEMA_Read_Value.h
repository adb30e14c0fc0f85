// Raw value bytes to arrays of texts, integers and floating-point numbers. Each decoder keeps a ring of 128 results: an
// array stays valid until the same decoder has been called 128 more times, and callers never release it.
#pragma once

#include <stdint.h>

#include "attribute/attribute.h"
#include "nema/NEMA_Read_Data.h"
#include "platform/window.h"

static const int     VALUE_RING_SLOTS  = 128;
static const int32_t VALUE_LOAD_LENGTH = 1025;  // Values from this length on are loaded when they are asked for.

// vr overrides the attribute's when it is not 0. attribute->vm is the number of values found. None on failure.
char    **V_Str   (Window window, Attribute *attribute, uint16_t vr);
int32_t  *V_Int   (Window window, Attribute *attribute, uint16_t vr);
float    *V_Float (Window window, Attribute *attribute, uint16_t vr);

// Where values that were not read with the file are loaded from: the file's name, or memory. Borrowed until the next
// call; kind 0 forgets it.
void NEMA_Source_Register (int kind, const char *name, const uint8_t *base, uint32_t size);

// Releases the rings (at the end of a test; the program keeps them until it ends).
void NEMA_Value_Rings_Free (void);
