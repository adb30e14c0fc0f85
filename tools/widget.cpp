#include "tools/widget.h"
