#include "util/bytes.h"
