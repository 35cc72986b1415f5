#include "spcbase/platform/text/unicode.h"
