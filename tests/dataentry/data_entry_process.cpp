#include "tests/dataentry/data_entry_process.h"

namespace test_support {

DataEntryProcess::DataEntryProcess(const std::vector<std::string>& arguments)
    : HelperProcess(SPCBASE_DATA_ENTRY_PROCESS, arguments) {}

std::string run_data_entry_process(const std::vector<std::string>& arguments) {
  return DataEntryProcess(arguments).finish();
}

}  // namespace test_support
