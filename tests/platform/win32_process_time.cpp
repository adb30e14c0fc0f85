#include <windows.h>

#include "tests/platform/process_time.h"

double Process_User_Seconds () {
    FILETIME       created, ended, kernel, user = {};
    ULARGE_INTEGER ticks;
    GetProcessTimes (GetCurrentProcess (), &created, &ended, &kernel, &user);
    ticks.LowPart  = user.dwLowDateTime;
    ticks.HighPart = user.dwHighDateTime;
    return static_cast<double> (ticks.QuadPart) / 1e7; // Of 100 ns.
}
