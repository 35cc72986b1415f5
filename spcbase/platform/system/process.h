/// The running process.
///
/// Part of the platform layer.
#pragma once

#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/types.h"

/// The number of the calling process.
SPCBASE_API DWORD GetCurrentProcessId() noexcept;
