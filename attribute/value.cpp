#include "attribute/value.h"
