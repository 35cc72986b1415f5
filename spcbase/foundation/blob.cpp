#include "spcbase/foundation/blob.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "spcbase/foundation/internal/hand_over.h"
#include "spcbase/foundation/internal/locked_block.h"
#include "spcbase/foundation/internal/raise.h"
#include "spcbase/platform/database/field_exchange.h"
#include "spcbase/platform/system/exceptions.h"
#include "spcbase/platform/system/internal/block_exchange.h"

namespace {

int free_block(CLongBinary& target) {
  GlobalFree(target.m_hData);
  target.m_hData = nullptr;
  target.m_dwDataLength = 0;
  return 0;
}

/// The one rule by which a holder is filled: a block that is large enough stays.
int fill(CLongBinary& target, const unsigned char* source, std::size_t count) {
  if (count == 0) return free_block(target);
  if (target.m_hData == nullptr || GlobalSize(target.m_hData) < count) {
    free_block(target);
    target.m_hData = GlobalAlloc(GMEM_MOVEABLE, count);
    if (target.m_hData == nullptr) AfxThrowMemoryException();
  }
  const LockedBlock block(target.m_hData);
  std::memcpy(block.bytes(), source, count);
  target.m_dwDataLength = static_cast<DWORD>(count);
  return static_cast<int>(count);
}

int fill(CByteArray& target, const unsigned char* source, std::size_t count) {
  target.SetSize(static_cast<INT_PTR>(count));
  if (count != 0) std::memcpy(target.GetData(), source, count);
  return static_cast<int>(count);
}

std::size_t block_size(const CLongBinary& source) { return source.m_hData == nullptr ? 0 : GlobalSize(source.m_hData); }

const unsigned char* bytes_of(const CString& text) { return reinterpret_cast<const unsigned char*>(text.GetString()); }

std::size_t length_of(const CString& text) { return text.view().size(); }

}  // namespace

int copy_blob(CLongBinary& target, unsigned char* source, unsigned long count) { return fill(target, source, count); }

int copy_blob(CLongBinary& target, const CLongBinary& source) {
  const auto count = block_size(source);
  if (count == 0) return free_block(target);
  // Kept: the length of the source's data is not looked at.
  if (&target == &source) {
    target.m_dwDataLength = static_cast<DWORD>(count);
    return static_cast<int>(count);
  }
  const LockedBlock block(source.m_hData);
  return fill(target, block.bytes(), count);
}

int hand_blob_over(CLongBinary& target, CLongBinary& source) {
  const auto count = block_size(source);
  const auto room = block_size(target);
  if (count == 0 || room > count || &target == &source) return copy_blob(target, source);
  if (room < count) {
    GlobalFree(target.m_hData);
    target.m_hData = std::exchange(source.m_hData, nullptr);
    source.m_dwDataLength = 0;
  } else if (!platform::exchange_bytes(target.m_hData, source.m_hData)) {
    return copy_blob(target, source);
  }
  target.m_dwDataLength = static_cast<DWORD>(count);
  return static_cast<int>(count);
}

void hand_blob_over(BlobRSHelper& field, CRecordset& rs, CLongBinary& target) {
  if (field.maximum_size != 0 || rs.IsFieldNull(field.field()) != FALSE) return field.get_blob_long_bin(rs, target);
  hand_blob_over(target, field.get_long_bin());
}

int copy_blob(CLongBinary& target, const CByteArray& source) {
  return fill(target, source.GetData(), static_cast<std::size_t>(source.GetSize()));
}

int copy_blob(CByteArray& target, const CByteArray& source) {
  target.Copy(source);
  return static_cast<int>(target.GetSize());
}

int copy_blob(CByteArray& target, unsigned char* source, int count) {
  if (count < 0) AfxThrowInvalidArgException();
  return fill(target, source, static_cast<std::size_t>(count));
}

int set_blob_data(CLongBinary& target, unsigned char* source, unsigned long count) {
  return copy_blob(target, source, count);
}

int set_blob_data(CLongBinary& target, const CString& source) {
  return fill(target, bytes_of(source), length_of(source));
}

int set_blob_data(CByteArray& target, unsigned char* source, unsigned long count) {
  return fill(target, source, count);
}

int set_blob_data(CByteArray& target, const CString& source) {
  return fill(target, bytes_of(source), length_of(source));
}

CString get_blob_data(const CLongBinary& source) {
  if (source.m_hData == nullptr || source.m_dwDataLength == 0) return {};
  const LockedBlock block(source.m_hData);
  const auto length = std::min<std::size_t>(source.m_dwDataLength, GlobalSize(source.m_hData));
  return CString(std::string_view(reinterpret_cast<const char*>(block.bytes()), length));
}

CString get_blob_data(const CByteArray& source) {
  if (source.GetSize() == 0) return {};
  return CString(
      std::string_view(reinterpret_cast<const char*>(source.GetData()), static_cast<std::size_t>(source.GetSize())));
}

BlobRSHelper::BlobRSHelper(int max_size) : maximum_size(max_size) {
  if (max_size == 0)
    holder_ = new CLongBinary;
  else
    holder_ = new CByteArray;
}

BlobRSHelper::~BlobRSHelper() { delete holder_; }

CByteArray& BlobRSHelper::get_byte_array() const { return static_cast<CByteArray&>(*holder_); }
CLongBinary& BlobRSHelper::get_long_bin() const { return static_cast<CLongBinary&>(*holder_); }

const void* BlobRSHelper::field() const {
  return maximum_size == 0 ? static_cast<const void*>(&get_long_bin()) : static_cast<const void*>(&get_byte_array());
}

void BlobRSHelper::require_room(std::size_t count) const {
  if (maximum_size < 0 || count > static_cast<std::size_t>(maximum_size)) throw_db_exception_by_id(msg::blob_too_large);
}

bool BlobRSHelper::is_null_or_empty(CRecordset& rs) const {
  if (rs.IsFieldNull(field()) != FALSE) return true;
  return maximum_size == 0 ? get_long_bin().m_dwDataLength == 0 : get_byte_array().GetSize() == 0;
}

CString BlobRSHelper::get_blob_str(CRecordset& rs) const {
  if (rs.IsFieldNull(field()) != FALSE) return {};
  return maximum_size == 0 ? get_blob_data(get_long_bin()) : get_blob_data(get_byte_array());
}

void BlobRSHelper::get_blob_long_bin(CRecordset& rs, CLongBinary& target) const {
  if (rs.IsFieldNull(field()) != FALSE) {
    free_block(target);
  } else if (maximum_size == 0) {
    copy_blob(target, get_long_bin());
  } else {
    copy_blob(target, get_byte_array());
  }
}

void BlobRSHelper::set_blob_data(CRecordset& rs, const CString& data) {
  if (maximum_size != 0) {
    require_room(length_of(data));
    ::set_blob_data(get_byte_array(), data);
    return;
  }
  const int count = ::set_blob_data(get_long_bin(), data);
  rs.SetFieldDirty(field(), TRUE);
  rs.SetFieldNull(field(), count == 0 ? TRUE : FALSE);
}

void BlobRSHelper::set_blob_data(CRecordset& rs, const CLongBinary& data) {
  if (maximum_size != 0) {
    if (data.m_hData != nullptr) require_room(data.m_dwDataLength);
    const auto count = block_size(data);
    if (count == 0) {
      get_byte_array().SetSize(0);
      return;
    }
    const LockedBlock block(data.m_hData);
    fill(get_byte_array(), block.bytes(), count);
    return;
  }
  const int count = copy_blob(get_long_bin(), data);
  if (count != 0) rs.SetFieldDirty(field(), TRUE);
  rs.SetFieldNull(field(), count == 0 ? TRUE : FALSE);
}

void BlobRSHelper::DoFieldExchange(CFieldExchange* exchange, const char* column) {
  if (exchange == nullptr || exchange->m_prs == nullptr || column == nullptr) AfxThrowInvalidArgException();
  if (maximum_size == 0)
    RFX_LongBinary(exchange, column, get_long_bin());
  else
    spcdb::exchange_bytes(exchange, column, get_byte_array(), maximum_size);
}
