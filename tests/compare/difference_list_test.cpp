#include "compare/difference_list.h"
