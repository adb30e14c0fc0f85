#include "util/tokenizer.h"
