#include "spcbase/platform/datetime/ctime.h"
