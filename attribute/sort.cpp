#include "attribute/sort.h"
