#include "spcbase/foundation/failure.h"

#include <cstring>
#include <string>

#include "spcbase/foundation/internal/raise.h"
#include "spcbase/platform/automation/bstr_t.h"
#include "spcbase/platform/system/memory.h"
#include "spcbase/platform/system/system_error.h"

DBException::DBException(const char* text, long code) : message(text), error_code(code) {}

// An object that is copied onto itself has nothing to copy from.
DBException::DBException(const DBException& other) {
  if (this == &other) return;
  message = other.message;
  error_code = other.error_code;
}

DBException& DBException::operator=(const DBException& other) {
  if (this == &other) return *this;
  message = other.message;
  error_code = other.error_code;
  return *this;
}

CString DBException::what() const { return message; }

DBException::~DBException() = default;

namespace rev {

RevisionException::RevisionException(int objtype, int objid, int revision_number, int why)
    : DBException("", result_code::failed),
      object_type(objtype),
      object_id(objid),
      revision(revision_number),
      reason(why) {}

CString RevisionException::what() const {
  switch (reason) {
    case 0:
      return load_message(msg::no_revisions);
    case 1:
      return load_message(msg::not_latest_revision);
    case 2:
      return load_message(msg::already_approved);
    case 3:
    case 4:  // Kept: hosts compare texts, and this reason never had one of its own.
      return load_message(msg::broken_revision);
    default:
      return message;
  }
}

RevisionException::~RevisionException() = default;

}  // namespace rev

void throw_can_not_open_rs_exception() { throw_db_exception_by_id(msg::can_not_open_recordset); }

void throw_global_lock_error_exception() {
  const DWORD error = GetLastError();
  const CString reason = get_system_error_text(error);
  CString text;
  text.Format("GlobalLock() failed with error code %d: %s", static_cast<int>(error), reason.GetString());
  constexpr DWORD win32_facility = 0x80070000U;
  const bool is_plain_number = static_cast<std::int32_t>(error) > 0;
  throw DBException(text, make_hresult(is_plain_number ? (error & 0xffffU) | win32_facility : error));
}

void throw_xml_exception() { throw_db_exception_by_id(msg::xml_error); }

CString get_exception_error_message(CException* exception) {
  CString text;
  for (UINT size = 128;; size *= 2) {
    std::string buffer(size, '\0');
    exception->GetErrorMessage(buffer.data(), size, nullptr);
    text = buffer.c_str();
    // A text that fills the buffer may go on behind it.
    if (text.GetLength() != static_cast<int>(size - 1)) break;
  }
  return text.IsEmpty() ? load_message(msg::unknown_error) : text;
}

namespace {

// Reads one text of an error object; a failed read leaves the target alone.
template <class Read>
void read_text(CString& target, Read read) {
  BSTR text = nullptr;
  if (FAILED(read(&text))) return;
  const _bstr_t holder(text, false);
  target = to_cstring(text);
}

// The programmatic id of a class, released with its holder.
class ProgId {
 public:
  explicit ProgId(REFCLSID class_id) noexcept { ProgIDFromCLSID(class_id, &text_); }
  ~ProgId() { CoTaskMemFree(text_); }
  ProgId(const ProgId&) = delete;
  ProgId& operator=(const ProgId&) = delete;

  LPOLESTR get() const noexcept { return text_; }

 private:
  LPOLESTR text_ = nullptr;
};

}  // namespace

bool get_err_info_data(CString& description, CString& source, _GUID* guid) {
  ATL::CComPtr<IErrorInfo> info;
  GetErrorInfo(0, &info);
  if (!info) return false;
  read_text(description, [&](BSTR* text) { return info->GetDescription(text); });
  read_text(source, [&](BSTR* text) { return info->GetSource(text); });
  if (guid != nullptr) info->GetGUID(guid);
  return true;
}

std::pair<long, ATL::CComPtr<IErrorInfo>> create_err_object(const _GUID* class_id, const _GUID* interface_id,
                                                            const char* description) {
  ATL::CComPtr<ICreateErrorInfo> creator;
  const HRESULT result = CreateErrorInfo(&creator);
  if (FAILED(result)) return {result, nullptr};
  if (interface_id != nullptr) creator->SetGUID(*interface_id);
  if (class_id != nullptr) {
    const ProgId source(*class_id);
    if (source.get() != nullptr) creator->SetSource(source.get());
  }
  if (description != nullptr) creator->SetDescription(_bstr_t(description));
  ATL::CComPtr<IErrorInfo> info;
  creator.QueryInterface(&info);
  if (info) SetErrorInfo(0, info);
  return {result, info};
}
