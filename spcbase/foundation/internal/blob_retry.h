/// The retry that makes blobs work on drivers without streaming.
///
/// Part of the database foundation, for the library's own use. The operation is run in streaming mode first; when a
/// database failure ends it, it is run with a bound buffer, and with a larger one as long as the value is cut off.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>

#include "spcbase/platform/database/db_exception.h"

namespace blob_retry {

/// Where the second phase begins: the size before the one with which the first bound attempt is made, or nothing when
/// there is no second phase. `data_length` is that of a write.
inline std::optional<int> start(int maximum_size, std::optional<int> data_length) {
  if (!data_length) {
    if (maximum_size == 0) return std::nullopt;
    return std::max(maximum_size, 0);
  }
  const int begin = maximum_size == 0 ? *data_length : std::max(maximum_size, *data_length);
  if (maximum_size == 0 && begin == 0) return std::nullopt;
  return begin;
}

/// The double of a size, as far as an int goes.
inline int doubled(int size) {
  constexpr int largest = std::numeric_limits<int>::max();
  return size > largest / 2 ? largest : 2 * size;
}

inline int one_more(int size) { return size == std::numeric_limits<int>::max() ? size : size + 1; }

}  // namespace blob_retry

/// Runs a whole database operation (build a recordset with the size that it is given, work, close) until it succeeds,
/// at most 12 times. `maximum_size` 0 says that there is no second phase for a read, and for a write that it begins
/// with the data's length; a negative one that it begins with 1. `data_length` is given for writes.
/// Fails: whatever the operation throws that is not a CDBException*; a CDBException* of the second phase that is not
///        AFX_SQL_ERROR_DATA_TRUNCATED; the last one.
template <class Result>
Result run_with_blob_retry(int maximum_size, const std::function<Result(int)>& operation,
                           std::optional<int> data_length = std::nullopt) {
  constexpr int bound_attempts = 10;
  int size = 0;
  try {
    return operation(0);
  } catch (CDBException* failure) {
    const auto begin = blob_retry::start(maximum_size, data_length);
    if (!begin) throw;
    failure->Delete();
    size = blob_retry::one_more(*begin);
  }
  for (int attempt = 0; attempt < bound_attempts; ++attempt) {
    try {
      return operation(size);
    } catch (CDBException* failure) {
      if (failure->m_nRetCode != AFX_SQL_ERROR_DATA_TRUNCATED) throw;
      failure->Delete();
      size = blob_retry::doubled(size);
    }
  }
  return operation(size);
}
