#include "util/text.h"
