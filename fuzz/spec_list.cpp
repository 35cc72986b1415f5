// Specification lists from any XML text.
// Holds: the two lists stay parallel; they are what one specification after the other gives, searched for from the
// front; merging the same list again changes nothing; after a failure they hold what came before it.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "spcbase/utility/internal/xml_elements.h"

namespace {

using Texts = std::vector<CString>;

void expect(bool holds) {
  if (!holds) std::abort();
}

/// Merges a list. Returns whether it was read to its end.
template <class Merge>
bool read(Merge merge) {
  try {
    merge();
    return true;
  } catch (const DBException& e) {
    expect(e.what() == "XML error.");
    return false;
  }
}

void merge_plainly(const IXMLDOMElementPtr& list, Texts& names, Texts& values) {
  walk_child_elements(list, [&](const CString& child_name, const IXMLDOMElementPtr& child) {
    if (child_name != "specification") return;
    CString name, value;
    get_spec_from_xml(child, name, value);
    const auto known = std::find(names.begin(), names.end(), name);
    if (known == names.end()) {
      names.push_back(name);
      values.push_back(value);
    } else {
      values[static_cast<std::size_t>(known - names.begin())] = value;
    }
  });
}

void check(const IXMLDOMElementPtr& list) {
  const Texts old_names = {"a", "b", "a"}, old_values = {"1", "2", "3"};
  Texts names = old_names, values = old_values, plain_names = old_names, plain_values = old_values;
  const bool is_whole = read([&] { get_spec_list_from_xml(list, names, values); });
  expect(is_whole == read([&] { merge_plainly(list, plain_names, plain_values); }));
  expect(names == plain_names && values == plain_values);
  read([&] { get_spec_list_from_xml(list, names, values); });
  expect(names == plain_names && values == plain_values);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    check(load_xml_text(CString(reinterpret_cast<const char*>(data), static_cast<int>(size)))->GetdocumentElement());
  } catch (const DBException&) {
    // No XML, so no list either.
  }
  return 0;
}
