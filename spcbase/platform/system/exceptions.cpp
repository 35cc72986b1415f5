#include "spcbase/platform/system/exceptions.h"
