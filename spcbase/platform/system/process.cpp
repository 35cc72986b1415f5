#include "spcbase/platform/system/process.h"

#include <unistd.h>

DWORD GetCurrentProcessId() noexcept { return static_cast<DWORD>(::getpid()); }
