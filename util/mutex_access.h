// The protected region: one process-wide exclusion for shared support state. No mutex is made by the program, so entering
// and leaving return at once; once one is installed, a region held for too long is entered all the same, with a report,
// since unprotected access is better than a program that hangs.
#pragma once

#include "platform/system.h"
#include "platform/window.h"

static const int MUTEX_ACCESS_WAIT = 10000;     // Milliseconds.

void Mutex_Access_Start (void);
void Mutex_Access_Stop (void);

typedef System_Wait (*Mutex_Access_Wait) (System_Mutex *mutex, int milliseconds);

// Takes the mutex into use (borrowed; none removes it) with a waiting time in milliseconds. A test may wait in its own way.
void Mutex_Access_Install (System_Mutex *mutex, int milliseconds, Mutex_Access_Wait wait = System_Mutex_Wait);
