#include "util/my_error_fct.h"
