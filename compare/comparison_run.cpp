#include "compare/comparison_run.h"
