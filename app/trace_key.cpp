// What would surprise: switching tracing off leaves the console open, and switching it on again starts a new trace file.
#include "app/trace_key.h"

#include <algorithm>

#include "platform/system.h"
#include "tools/primitives.h"
#include "util/my_error_fct.h"

static void Banners_Write (Window window) {
    Log_Banner ();
    Log_Message (window, LOG_TRACE1, "---- Kestrelbay Libraries: ----");
    Log_Message (window, LOG_TRACE1, "%s", Library_Banner (nullptr));
    Log_Message (window, LOG_TRACE1, "%s", Tools::Banner (nullptr));
    Log_Message (window, LOG_TRACE1, "");
}

void Trace_Level_Key (Window window, int digit) {
    if (digit < 0 || digit > TRACE_KEY_IDENTIFIER) return;
    if (digit == TRACE_KEY_IDENTIFIER) {
        Log_Message (window, LOG_REPORT, "%s", Log.program_identifier);
        return;
    }
    int8_t level = static_cast<int8_t> (std::min (digit, TRACE_KEY_HIGHEST));
    Log_Message (window, LOG_REPORT, "Trace level: %d", level);
    if (level && !Log.trace_level && System_Console_Open ()) {
        Log.trace_level = level;
        Banners_Write (window);
    }
    Log.trace_level = level;
}
