// The program starts here on Linux.
#include "platform/system.h"

int main (int count, char **words) {
    int               arguments_count = count > 0 ? count - 1 : 0;
    Program_Arguments arguments       = {nullptr, arguments_count, words + (count > 0)};
    return System_Exit_Status (Program_Run (&arguments));
}
