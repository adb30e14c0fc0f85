#include "tools/boxes.h"
