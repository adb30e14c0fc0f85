#include "tools/icon.h"
