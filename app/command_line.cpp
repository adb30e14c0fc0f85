#include "app/command_line.h"
