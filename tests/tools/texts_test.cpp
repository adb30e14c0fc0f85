#include "tools/texts.h"
