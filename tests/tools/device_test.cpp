#include "tools/device.h"
