// Entry of every test program. A test's log goes nowhere unless it installs a recorder, so that nothing is written into
// the user's scratch directory.
#include <gtest/gtest.h>

#include "util/my_error_fct.h"

static int Silent (Window, int, const char *) { return 1; }

int main (int count, char **words) {
    testing::InitGoogleTest (&count, words);
    Log_Sink_Set (Silent);
    return RUN_ALL_TESTS ();
}
