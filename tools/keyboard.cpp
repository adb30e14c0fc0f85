#include "tools/keyboard.h"
