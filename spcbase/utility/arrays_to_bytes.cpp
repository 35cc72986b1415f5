#include <cstring>
#include <limits>
#include <memory>

#include "spcbase/foundation/internal/locked_block.h"
#include "spcbase/foundation/internal/raise.h"
#include "spcbase/platform/automation/holders.h"
#include "spcbase/platform/system/exceptions.h"
#include "spcbase/utility/arrays.h"
#include "spcbase/utility/internal/array_counts.h"

namespace {

void check_long(HRESULT result) {
  if (FAILED(result)) raise_result(result);
}

void release_block(CLongBinary& target) {
  if (target.m_hData == nullptr) return;
  GlobalFree(target.m_hData);
  target.m_hData = nullptr;
  target.m_dwDataLength = 0;
}

void give_block(CLongBinary& target, DWORD count_bytes) {
  target.m_hData = GlobalAlloc(GMEM_MOVEABLE, count_bytes);
  if (target.m_hData == nullptr) AfxThrowMemoryException();
  target.m_dwDataLength = count_bytes;
}

}  // namespace

void to_byte_array(unsigned char** target, int& count_bytes, SAFEARRAY* source) {
  if (SafeArrayGetDim(source) != 1) throw_invalid_argument();
  std::int64_t bounds_count = 0;
  _com_util::CheckError(array_counts::from_bounds(source, bounds_count));
  if (bounds_count < 0) _com_issue_error(E_INVALIDARG);
  count_bytes = array_counts::as_int(bounds_count);
  *target = nullptr;
  if (count_bytes == 0) return;

  safe_array_access access(source);
  _com_util::CheckError(access.result());
  const BYTE* bytes = nullptr;
  _com_util::CheckError(array_counts::elements_of(source, access.as<const void>(), bytes));
  const auto count = static_cast<std::size_t>(count_bytes);
  auto copied = std::make_unique_for_overwrite<unsigned char[]>(count);
  std::memcpy(copied.get(), bytes, count);
  _com_util::CheckError(access.end());
  *target = copied.release();
}

void to_long_bin(CLongBinary& target, SAFEARRAY* source, unsigned int limit_bytes) {
  release_block(target);
  std::int64_t count = 0;
  check_long(array_counts::from_bounds(source, count));
  if (limit_bytes != 0 && limit_bytes < count) throw_db_exception_by_id(msg::array_exceeds_limit);
  if (count < 0 || count > std::numeric_limits<DWORD>::max()) raise_invalid_argument_code();
  give_block(target, static_cast<DWORD>(count));
  // A block of size 0 has no address that could be locked.
  if (count == 0) return;

  safe_array_access access(source);
  check_long(access.result());
  const BYTE* bytes = nullptr;
  check_long(array_counts::elements_of(source, access.as<const void>(), bytes));
  {
    const LockedBlock block(target.m_hData);
    std::memcpy(block.bytes(), bytes, static_cast<std::size_t>(count));
  }
  check_long(access.end());
}

IStream* create_mem_stream(unsigned char* source, int count_bytes) {
  if (count_bytes < 0) _com_issue_error(E_INVALIDARG);
  const auto count = static_cast<ULONG>(count_bytes);
  ATL::CComPtr<IStream> stream;
  _com_util::CheckError(CreateStreamOnHGlobal(nullptr, TRUE, &stream));
  _com_util::CheckError(stream->SetSize({count}));
  if (count != 0) {
    _com_util::CheckError(stream->Seek({0}, STREAM_SEEK_SET, nullptr));
    _com_util::CheckError(stream->Write(source, count, nullptr));
  }
  // Kept: no rewind; the position is the end of the data.
  return stream.Detach();
}
