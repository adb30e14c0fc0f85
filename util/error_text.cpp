#include "util/error_text.h"
