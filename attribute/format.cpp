#include "attribute/format.h"
