// One data element header at a time, with the repairs of what real encoders get wrong.
#pragma once

#include "nema/NEMA_Read_Data.h"

// Reads the next header. 1: the outputs are set and the source stands at the first value byte; vr is 0 after an
// implicit-VR header, length is signed and LENGTH_UNDEFINED possible. 0: end of data, a read failure, or a header that
// can't be an element. limit is the size of the file in bytes (0: checks that need it are left out).
int NEMA_Get_Data_Element (Window window, NEMA_Source *source, uint8_t mode, uint16_t *group, uint16_t *element,
                           uint16_t *vr, int32_t *length, int32_t limit);
