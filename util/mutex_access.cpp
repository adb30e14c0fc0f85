// The protected region. A thread that gave up waiting goes on without the region; when it leaves, the release of a mutex
// that it does not own does nothing.
#include "util/mutex_access.h"

#include "util/error_text.h"
#include "util/my_error_fct.h"

static System_Mutex     *region;
static int               patience; // Milliseconds.
static Mutex_Access_Wait region_wait;

void Mutex_Access_Start (void) {
    if (!region) return;
    switch (region_wait (region, patience)) {
    case SYSTEM_WAIT_ENTERED: break;
    case SYSTEM_WAIT_TIMEOUT:
        Log_Message (nullptr, LOG_ERRLOG, "Critical Region Deadlock in Mutex_Access_Start!");
        Log_Message (nullptr, LOG_WARNING, "+**********Critical Section access deadlock ****** ");
        break;
    case SYSTEM_WAIT_FAILED:
        Log_Message (nullptr, LOG_WARNING, "Failed in WaitForSingleObject \"%s\" (%s)", "Protected Region",
                     Error_Text (0));
        break;
    }
}

void Mutex_Access_Stop (void) {
    if (region) System_Mutex_Release (region);
}

void Mutex_Access_Install (System_Mutex *mutex, int milliseconds, Mutex_Access_Wait wait) {
    region      = mutex;
    patience    = milliseconds;
    region_wait = wait;
}
