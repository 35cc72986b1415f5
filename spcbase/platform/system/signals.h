/// How a program learns that it is to stop, and how it limits its own time.
///
/// Part of the platform layer. For programs alone: what is set here holds for the whole process, so no library code
/// calls it.
#pragma once

#include "spcbase/platform/system/export.h"

namespace platform {

/// From now on Ctrl-C (SIGINT) and a wish to end (SIGTERM) are noted once; the second one ends the process as if
/// nobody had asked to note anything. A signal that the process was told to ignore stays ignored. Who is still at work
/// a second after the first, since a server keeps it waiting, says so on standard error.
SPCBASE_API void note_stop_signals() noexcept;

/// The signal that was noted, SIGINT or SIGTERM; 0 when there was none.
SPCBASE_API int noted_stop_signal() noexcept;

/// Ends the process with status 0 and without another word after so many seconds, unless it has ended by then.
SPCBASE_API void end_quietly_after(unsigned seconds) noexcept;

}  // namespace platform
