/// Arrays and failures for the tests of the conversions.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "spcbase/foundation/outcome.h"
#include "spcbase/platform/automation/holders.h"
#include "spcbase/utility/arrays.h"
#include "tests/platform/automation/array_text.h"

namespace array_cases {

using vectors::counted_object;
using vectors::describe;

/// An array of one dimension that begins at `lower` and holds these elements as bits.
template <class Element>
COleSafeArray array_of(VARTYPE type, const std::vector<Element>& elements, LONG lower = 0) {
  COleSafeArray array;
  array.CreateOneDim(type, static_cast<DWORD>(elements.size()), elements.data(), lower);
  return array;
}

inline COleSafeArray two_dimensions(VARTYPE type) {
  COleSafeArray array;
  const DWORD counts[] = {1, 2};
  array.Create(type, 2, counts);
  return array;
}

/// The elements of an array, which begins at 0, as what they are.
template <class Element>
std::vector<Element> elements_of(const COleSafeArray& array) {
  const safe_array_access access(array.parray);
  const Element* const first = access.as<const Element>();
  return {first, first + array.parray->rgsabound[0].cElements};
}

/// What a call throws, as text: "0x........" for a `_com_error`, "long 0x........" for a code, "DBException: ..." with
/// its message, "memory" for every lack of it; empty when it throws nothing.
template <class Call>
std::string thrown_by(Call call) {
  const auto done = guarded(call);
  if (done) return {};
  const Failure& failure = done.failure();
  const std::string code = vectors::hex(static_cast<HRESULT>(failure.code));
  if (code == "0x8007000E") return "memory";
  switch (failure.kind) {
    case FailureKind::automation:
      return code;
    case FailureKind::result_code:
      return "long " + code;
    case FailureKind::library:
      return std::string("DBException: ") + failure.text.GetString() + ' ' + code;
    default:
      return "another kind";
  }
}

inline const std::string invalid_argument_code = "0x80070057";
inline const std::string invalid_argument = "DBException: Invalid argument. 0x80004005";

/// A target that holds something, to see whether it was touched.
inline COleSafeArray held_numbers() { return array_of<LONG>(VT_I4, {7, 8}); }

inline void expect_held_numbers(const COleSafeArray& array) {
  ASSERT_EQ(array.vt, VT_ARRAY | VT_I4);
  EXPECT_EQ(elements_of<LONG>(array), (std::vector<LONG>{7, 8}));
}

}  // namespace array_cases
