#include "spcbase/platform/database/long_binary.h"

CLongBinary::~CLongBinary() { GlobalFree(m_hData); }
