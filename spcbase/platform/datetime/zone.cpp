#include "spcbase/platform/datetime/zone.h"
