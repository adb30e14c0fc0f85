#include "compare/attribute_comparison.h"
