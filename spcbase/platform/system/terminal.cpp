#include "spcbase/platform/system/terminal.h"

#include <unistd.h>

bool platform::is_terminal(int file) noexcept { return ::isatty(file) == 1; }
