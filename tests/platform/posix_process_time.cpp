#include <sys/resource.h>

#include "tests/platform/process_time.h"

double Process_User_Seconds () {
    struct rusage usage = {};
    getrusage (RUSAGE_SELF, &usage);
    return static_cast<double> (usage.ru_utime.tv_sec) + static_cast<double> (usage.ru_utime.tv_usec) / 1e6;
}
