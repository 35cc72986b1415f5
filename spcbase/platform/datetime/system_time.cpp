#include "spcbase/platform/datetime/system_time.h"
