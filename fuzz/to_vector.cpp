// Arrays whose descriptors say whatever the input says, through every conversion that reads one. What must hold: the
// count is what the bounds make it; only the failures that the checks raise; no memory for elements that are not there;
// no access left behind.
//
// Input: element type, dimensions, what is tampered with, lower bound (4 bytes), claimed elements (4 bytes), elements.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <type_traits>

#include "spcbase/foundation/failure.h"
#include "spcbase/utility/arrays.h"

namespace {

constexpr VARTYPE types[] = {VT_I2,      VT_I4,      VT_R8,  VT_BSTR, VT_DISPATCH, VT_BOOL,
                             VT_VARIANT, VT_UNKNOWN, VT_UI1, VT_UI4,  VT_INT,      VT_UINT};
constexpr DWORD most_elements = 64;
constexpr unsigned no_data = 1;
constexpr unsigned too_many_locks = 2;
constexpr unsigned small_elements = 4;
constexpr unsigned marked_dispatch = 8;

void require(bool holds) {
  if (!holds) std::abort();
}

class Object final : public IDispatch {
 public:
  HRESULT QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
  ULONG AddRef() override { return ++references; }
  ULONG Release() override { return --references; }
  ULONG references = 1;
};

class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

  unsigned byte() {
    if (size_ == 0) return 0;
    --size_;
    return *data_++;
  }
  std::uint32_t word() {
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i)
      value = value << 8 | byte();
    return value;
  }
  std::size_t left() const { return size_; }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
};

void fill_variant(VARIANT& value, Input& input, Object& object) {
  switch (input.byte() % 4) {
    case 0:
      value.vt = VT_I4;
      value.lVal = static_cast<LONG>(input.byte());
      return;
    case 1:
      value.vt = VT_BSTR;
      value.bstrVal = SysAllocStringLen(nullptr, input.byte());
      return;
    case 2:
      value.vt = VT_DISPATCH;
      value.pdispVal = &object;
      object.AddRef();
      return;
    default:
      value.vt = VT_VOID;  // no variant can have it: the copy fails
  }
}

void fill(SAFEARRAY* array, VARTYPE type, DWORD count, Input& input, Object& object) {
  auto* const bytes = static_cast<unsigned char*>(array->pvData);
  for (DWORD i = 0; i < count; ++i) {
    unsigned char* const element = bytes + std::size_t{i} * array->cbElements;
    if (type == VT_BSTR) {
      BSTR text = SysAllocStringByteLen(nullptr, input.byte());
      for (UINT k = 0; k < SysStringLen(text); ++k)
        text[k] = static_cast<char16_t>(input.byte() << 8 | input.byte());
      std::memcpy(element, &text, sizeof text);
    } else if (type == VT_VARIANT) {
      fill_variant(*reinterpret_cast<VARIANT*>(element), input, object);
    } else if (type == VT_DISPATCH || type == VT_UNKNOWN) {
      IDispatch* const dispatch = input.byte() % 2 == 0 ? nullptr : &object;
      IUnknown* const unknown = dispatch;
      if (dispatch != nullptr) dispatch->AddRef();
      std::memcpy(element,
                  type == VT_DISPATCH ? static_cast<const void*>(&dispatch) : static_cast<const void*>(&unknown),
                  sizeof(void*));
    } else {
      for (ULONG k = 0; k < array->cbElements; ++k)
        element[k] = static_cast<unsigned char>(input.byte());
    }
  }
}

/// The array and what its descriptor says while it is read.
struct Subject {
  SAFEARRAY* array = nullptr;
  std::int64_t count = 0;
  bool one_dimension = false;
};

/// Runs a conversion and holds its failure to those that a check raises; gives whether there was none.
template <class Convert>
bool done(const Subject& subject, Convert convert) {
  const ULONG locks = subject.array->cLocks;
  bool good = false;
  try {
    convert();
    good = true;
  } catch (const _com_error& error) {
    require(error.Error() == E_INVALIDARG || error.Error() == E_UNEXPECTED || error.Error() == DISP_E_BADVARTYPE);
  } catch (const DBException& failure) {
    require(failure.error_code == result_code::failed);
    require(!subject.one_dimension || failure.message == "The array exceeds limit.");
  } catch (long code) {
    require(code == result_code::invalid_argument || code == result_code::unexpected);
  }
  require(subject.array->cLocks == locks);
  return good;
}

template <class T>
void read(const Subject& subject) {
  std::vector<T> target(1);
  std::int64_t count = 0;
  if (!done(subject, [&] { count = to_vector(target, subject.array); })) return;
  require(subject.one_dimension);
  require(count == subject.count);
  require(target.size() == static_cast<std::size_t>(count < 0 ? 0 : count));
}

void read_bytes(const Subject& subject, unsigned int limit) {
  unsigned char* bytes = nullptr;
  int count = 0;
  if (done(subject, [&] { to_byte_array(&bytes, count, subject.array); })) {
    require(subject.one_dimension && count == subject.count && (count == 0) == (bytes == nullptr));
  }
  const std::unique_ptr<unsigned char[]> owned(bytes);
  CLongBinary holder;
  if (done(subject, [&] { to_long_bin(holder, subject.array, limit); })) {
    require(holder.m_dwDataLength == subject.count && holder.m_dwDataLength <= limit);
  }
}

void read_all(const Subject& subject, unsigned int limit) {
  read<CString>(subject);
  read<_bstr_t>(subject);
  read<long>(subject);
  read<int>(subject);
  read<short>(subject);
  read<bool>(subject);
  read<double>(subject);
  read<_variant_t>(subject);
  read<unsigned char>(subject);
  read<_com_ptr_t<IDispatch>>(subject);
  read<_com_ptr_t<IUnknown>>(subject);
  read_bytes(subject, limit);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  const VARTYPE type = types[input.byte() % std::size(types)];
  const bool one_dimension = input.byte() % 8 != 0;
  const unsigned tampered = input.byte();
  const SAFEARRAYBOUND claimed{input.word(), static_cast<LONG>(input.word())};
  const auto real = static_cast<DWORD>(input.left() < most_elements ? input.left() : most_elements);

  Object object;
  {
    COleSafeArray owner;
    const DWORD counts[] = {1, real};
    owner.Create(type, one_dimension ? 1 : 2, one_dimension ? counts + 1 : counts);
    SAFEARRAY* const array = owner.parray;
    fill(array, type, real, input, object);

    const SAFEARRAY kept = *array;
    SAFEARRAYBOUND& first = array->rgsabound[one_dimension ? 0 : 1];
    const SAFEARRAYBOUND kept_bound = first;
    first = claimed;
    const bool too_few = claimed.cElements > (one_dimension ? real : 1);
    if (too_few || (tampered & no_data) != 0) array->pvData = nullptr;
    if ((tampered & too_many_locks) != 0) array->cLocks = 0xFFFFFFFFU;
    if ((tampered & small_elements) != 0) array->cbElements = 1;
    // Elements as large as a pointer would be taken for pointers, as the mark says.
    const bool may_be_marked = kept.cbElements < sizeof(void*) || type == VT_UNKNOWN;
    if ((tampered & marked_dispatch) != 0 && may_be_marked)
      array->fFeatures = static_cast<USHORT>(array->fFeatures | FADF_DISPATCH);

    Subject subject{array, 0, one_dimension};
    LONG lower = 0;
    LONG upper = 0;
    require(SUCCEEDED(SafeArrayGetLBound(array, 1, &lower)) && SUCCEEDED(SafeArrayGetUBound(array, 1, &upper)));
    subject.count = std::int64_t{upper} - lower + 1;
    read_all(subject, 1 + (tampered >> 4));

    first = kept_bound;
    array->pvData = kept.pvData;
    array->cLocks = kept.cLocks;
    array->cbElements = kept.cbElements;
    array->fFeatures = kept.fFeatures;
  }
  require(object.references == 1);
  return 0;
}
