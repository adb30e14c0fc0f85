#include "platform/system.h"
