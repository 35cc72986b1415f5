// Plan: the recorded rows of single variants.
//   variant-change-byref, variant-clear, variant-copy: values by reference and values owned
//   variant-type: which types a variant may have
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <regex>

#include "array_text.h"
#include "spcbase/platform/automation/bstr_t.h"
#include "spcbase/platform/automation/holders.h"

namespace {

using vectors::answer;
using vectors::describe;
using vectors::hex;

constexpr const char* file_name = "safearray.tsv";

std::string type_text(const VARIANT& value) { return vectors::text("vt=0x%04X", value.vt); }

// Everything that the rows point at.
class references {
 public:
  references() : array_(SafeArrayCreateVector(VT_UI1, 0, 2)), array_pointer_(array_.get()) {
    inner_.vt = VT_I4;
    inner_.lVal = 5;
  }
  ~references() { SysFreeString(text_); }
  references(const references&) = delete;
  references& operator=(const references&) = delete;

  VARIANT named(const std::string& name) {
    const std::map<std::string, std::pair<int, void*>> known = {
        {"I4", {VT_I4, &long_}},
        {"I2", {VT_I2, &short_}},
        {"R8", {VT_R8, &double_}},
        {"UI1", {VT_UI1, &byte_}},
        {"BOOL", {VT_BOOL, &truth_}},
        {"BSTR", {VT_BSTR, &text_}},
        {"VARIANT (I4)", {VT_VARIANT, &inner_}},
        {"ARRAY UI1", {VT_ARRAY | VT_UI1, &array_pointer_}},
        {"I4 null", {VT_I4, nullptr}},
        {"VARIANT null", {VT_VARIANT, nullptr}},
        {"EMPTY", {VT_EMPTY, &long_}},
    };
    VARIANT value{};
    value.vt = static_cast<VARTYPE>(VT_BYREF | known.at(name).first);
    value.byref = known.at(name).second;
    return value;
  }

 private:
  LONG long_ = 5;
  SHORT short_ = 6;
  double double_ = 1.5;
  BYTE byte_ = 3;
  VARIANT_BOOL truth_ = VARIANT_TRUE;
  BSTR text_ = SysAllocString(u"text");
  VARIANT inner_{};
  safe_array_holder array_;
  SAFEARRAY* array_pointer_;
};

answer change_reference(const std::smatch& part) {
  references all;
  const VARIANT source = all.named(part[1]);
  scoped_variant target;
  const HRESULT result = VariantChangeType(target.get(), &source, 0, VT_BSTR);
  if (FAILED(result)) return {hex(result), ""};
  EXPECT_EQ(target->vt, VT_BSTR);
  return {hex(result), static_cast<const char*>(_bstr_t(target->bstrVal, true))};
}

answer clear_reference(const std::smatch& part) {
  references all;
  VARIANT source = all.named(part[1]);
  const HRESULT result = VariantClear(&source);
  return {hex(result), type_text(source)};
}

answer copy_reference(const std::smatch& part) {
  references all;
  const VARIANT source = all.named(part[1]);
  scoped_variant target;
  const HRESULT result = VariantCopy(target.get(), &source);
  return {hex(result), type_text(*target) + (target->byref == source.byref ? " same pointer" : " other pointer")};
}

answer copy_referenced(const std::smatch& part) {
  references all;
  const VARIANT source = all.named(part[1]);
  scoped_variant target;
  const HRESULT result = VariantCopyInd(target.get(), &source);
  return {hex(result), SUCCEEDED(result) ? type_text(*target) : ""};
}

answer copy_text(const std::smatch&) {
  scoped_variant source;
  scoped_variant target;
  source->vt = VT_BSTR;
  source->bstrVal = SysAllocString(u"abc");
  const HRESULT result = VariantCopy(target.get(), source.get());
  const bool own = target->bstrVal != source->bstrVal && std::u16string_view(target->bstrVal) == u"abc";
  return {hex(result), own ? "own copy" : "shared"};
}

answer copy_onto_itself(const std::smatch&) {
  scoped_variant value;
  value->vt = VT_BSTR;
  value->bstrVal = SysAllocString(u"abc");
  const HRESULT result = VariantCopy(value.get(), value.get());
  return {hex(result), static_cast<const char*>(_bstr_t(value->bstrVal, true))};
}

answer copy_null_text(const std::smatch&) {
  scoped_variant source;
  scoped_variant target;
  source->vt = VT_BSTR;
  const HRESULT result = VariantCopy(target.get(), source.get());
  EXPECT_EQ(target->vt, VT_BSTR);
  return {hex(result), vectors::text("length %u", SysStringLen(target->bstrVal))};
}

answer copy_array(const std::smatch&) {
  SAFEARRAYBOUND two{2, 0};
  scoped_variant source;
  scoped_variant target;
  source->vt = VT_ARRAY | VT_UI1;
  source->parray = SafeArrayCreate(VT_UI1, 1, &two);
  const HRESULT result = VariantCopy(target.get(), source.get());
  return {hex(result), (target->parray != source->parray ? "own copy " : "shared ") + describe(target->parray)};
}

answer copy_null_array(const std::smatch&) {
  scoped_variant source;
  scoped_variant target;
  source->vt = VT_ARRAY | VT_UI1;
  const HRESULT result = VariantCopy(target.get(), source.get());
  return {hex(result), type_text(*target) + (target->parray == nullptr ? " null" : " array")};
}

VARIANT zeroed(const std::string& type) {
  VARIANT value{};
  value.vt = static_cast<VARTYPE>(std::stoul(type, nullptr, 16));
  return value;
}

answer clear_zeroed(const std::smatch& part) {
  VARIANT value = zeroed(part[1]);
  const HRESULT result = VariantClear(&value);
  return {hex(result), type_text(value)};
}

answer copy_zeroed(const std::smatch& part) {
  const VARIANT value = zeroed(part[1]);
  scoped_variant target;
  return {hex(VariantCopy(target.get(), &value)), ""};
}

struct pattern {
  const char* form;
  answer (*play)(const std::smatch&);
};

constexpr pattern patterns[] = {
    {R"(VariantChangeType to BSTR of BYREF (.*))", change_reference},
    {R"(VariantClear of BYREF (.*))", clear_reference},
    {R"(VariantCopy of BYREF (.*))", copy_reference},
    {R"(VariantCopyInd of BYREF (.*))", copy_referenced},
    {R"(VariantCopy of BSTR)", copy_text},
    {R"(VariantCopy onto itself)", copy_onto_itself},
    {R"(VariantCopy of a null BSTR)", copy_null_text},
    {R"(VariantCopy of an array)", copy_array},
    {R"(VariantCopy of a null array)", copy_null_array},
    {R"(VariantClear of a zeroed variant of type (\w+))", clear_zeroed},
    {R"(VariantCopy of a zeroed variant of type (\w+))", copy_zeroed},
};

answer play(const std::string& step) {
  for (const pattern& each : patterns) {
    std::smatch part;
    if (std::regex_match(step, part, std::regex(each.form))) return each.play(part);
  }
  return {"no pattern for this row", step};
}

void check(const std::vector<std::string>& classes) {
  for (const vectors::row& row : vectors::read(file_name, classes)) {
    SCOPED_TRACE(vectors::text("line %d: ", row.line) + row[1]);
    const answer told = play(row[1]);
    EXPECT_EQ(told.result, row[2]);
    EXPECT_EQ(told.output, row[3]);
  }
}

TEST(VariantRows, values_by_reference_and_owned_values_are_as_recorded) {
  check({"variant-change-byref", "variant-clear", "variant-copy"});
}

TEST(VariantRows, valid_types_are_as_recorded) { check({"variant-type"}); }

}  // namespace
