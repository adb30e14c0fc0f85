#include "nema/NEMA_Read_Value.h"
