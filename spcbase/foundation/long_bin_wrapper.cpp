#include "spcbase/foundation/long_bin_wrapper.h"

LongBinWrapper::~LongBinWrapper() {
  GlobalFree(long_bin.m_hData);
  long_bin.m_hData = nullptr;
  long_bin.m_dwDataLength = 0;
}
