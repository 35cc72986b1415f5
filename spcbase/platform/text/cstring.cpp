#include "spcbase/platform/text/cstring.h"
