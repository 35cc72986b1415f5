#include "spcbase/platform/datetime/clock.h"
