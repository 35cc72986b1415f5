// Plan
// - GetCurrentProcessId: the number under which the system knows this process
#include "spcbase/platform/system/process.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

TEST(GetCurrentProcessId, is_the_number_that_the_system_knows_the_process_by) {
  EXPECT_EQ(std::to_string(GetCurrentProcessId()), std::filesystem::read_symlink("/proc/self").string());
}

}  // namespace
