// Plan: the recorded rows of the array calls, each class in a test of its own.
//   create-*, bounds, element, null: rows that stand alone
//   lock, redim, descriptor, ownership: sequences, played in order
//   every class of the file is played by some test here, in variant_rows_test or in stream_rows_test
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <regex>
#include <set>

#include "array_text.h"
#include "spcbase/platform/automation/holders.h"

namespace {

using vectors::answer;
using vectors::describe;
using vectors::hex;

constexpr const char* file_name = "safearray.tsv";

answer made(SAFEARRAY* array) { return {hex(array != nullptr ? S_OK : E_FAIL), describe(array)}; }

answer create_vector(const std::smatch& part) {
  const safe_array_holder array(
      SafeArrayCreateVector(vectors::type_of(part[1]), std::stoi(part[2]), static_cast<ULONG>(std::stoul(part[3]))));
  return made(array.get());
}

answer create_two(const std::smatch& part) {
  SAFEARRAYBOUND bounds[] = {{2, 5}, {3, -1}};
  const safe_array_holder array(SafeArrayCreate(vectors::type_of(part[1]), 2, bounds));
  return made(array.get());
}

answer create_none(const std::smatch& part) {
  SAFEARRAYBOUND bound{1, 0};
  const safe_array_holder array(SafeArrayCreate(vectors::type_of(part[1]), 0, &bound));
  return made(array.get());
}

answer create_empty(const std::smatch& part) {
  SAFEARRAYBOUND bound{0, 0};
  const safe_array_holder array(SafeArrayCreate(vectors::type_of(part[1]), 1, &bound));
  answer told = made(array.get());
  if (!array) return told;
  void* data = nullptr;
  const HRESULT access = SafeArrayAccessData(array.get(), &data);
  told.output += " access=" + hex(access) + (data != nullptr ? " pointer=set" : " pointer=null");
  told.output += vectors::text(" locks=%u", array.get()->cLocks);
  told.output += " unaccess=" + hex(SafeArrayUnaccessData(array.get()));
  return told;
}

safe_array_holder two_to_four(const std::string& type) {
  safe_array_holder array(SafeArrayCreateVector(vectors::type_of(type), 2, 3));
  BSTR const letter = SysAllocString(u"q");
  LONG number = 42;
  for (LONG i = 2; i <= 4; ++i) {
    const void* const value = type == "BSTR" ? static_cast<const void*>(letter) : &number;
    EXPECT_EQ(SafeArrayPutElement(array.get(), &i, value), S_OK);
  }
  SysFreeString(letter);
  return array;
}

answer bound_of(const std::smatch& part) {
  const safe_array_holder array = two_to_four(part[3]);
  const auto call = part[1] == "L" ? SafeArrayGetLBound : SafeArrayGetUBound;
  LONG bound = 0;
  const HRESULT result = call(array.get(), static_cast<UINT>(std::stoul(part[2])), &bound);
  return {hex(result), SUCCEEDED(result) ? std::to_string(bound) : ""};
}

answer pointer_of(const std::smatch& part) {
  const safe_array_holder array = two_to_four(part[2]);
  const LONG index = std::stoi(part[1]);
  void* element = nullptr;
  const HRESULT result = SafeArrayPtrOfIndex(array.get(), &index, &element);
  return {hex(result), element != nullptr ? "pointer" : "null"};
}

answer put(const std::smatch& part) {
  const safe_array_holder array = two_to_four(part[2]);
  const LONG index = std::stoi(part[1]);
  BSTR const letter = SysAllocString(u"q");
  LONG number = 7;
  const void* const value = part[2] == "BSTR" ? static_cast<const void*>(letter) : &number;
  const HRESULT result = SafeArrayPutElement(array.get(), &index, value);
  SysFreeString(letter);
  return {hex(result), ""};
}

answer get(const std::smatch& part) {
  const safe_array_holder array = two_to_four(part[2]);
  const LONG index = std::stoi(part[1]);
  scoped_variant value;
  const HRESULT result = SafeArrayGetElement(array.get(), &index, &value->llVal);
  if (FAILED(result)) return {hex(result), ""};
  if (part[2] != "BSTR") return {hex(result), std::to_string(value->lVal)};
  value->vt = VT_BSTR;
  return {hex(result), value->bstrVal == std::u16string_view(u"q") ? "q" : "another text"};
}

answer get_of_empty(const std::smatch&) {
  const safe_array_holder array(SafeArrayCreateVector(VT_I4, 0, 0));
  const LONG index = 0;
  LONG value = 0;
  return {hex(SafeArrayGetElement(array.get(), &index, &value)), ""};
}

answer bound_of_empty(const std::smatch&) {
  const safe_array_holder array(SafeArrayCreateVector(VT_I4, 5, 0));
  LONG lower = 0;
  LONG upper = 0;
  EXPECT_EQ(SafeArrayGetLBound(array.get(), 1, &lower), S_OK);
  const HRESULT result = SafeArrayGetUBound(array.get(), 1, &upper);
  return {hex(result), vectors::text("%d..%d", lower, upper)};
}

struct pattern {
  const char* form;
  answer (*play)(const std::smatch&);
};

constexpr pattern patterns[] = {
    {R"(SafeArrayCreateVector\((\w+), (-?\d+), (\d+)\))", create_vector},
    {R"(SafeArrayCreate\((\w+), 2 dimensions: 2 from 5, 3 from -1\))", create_two},
    {R"(SafeArrayCreate\((\w+), 0 dimensions\))", create_none},
    {R"(SafeArrayCreate\((\w+), 1 dimension of 0 elements\))", create_empty},
    {R"(SafeArrayGet(L|U)Bound dimension (\d+), (\w+) array with bounds 2\.\.4)", bound_of},
    {R"(SafeArrayPtrOfIndex index (-?\d+), (\w+) array with bounds 2\.\.4)", pointer_of},
    {R"(SafeArrayPutElement index (-?\d+), (\w+) array with bounds 2\.\.4)", put},
    {R"(SafeArrayGetElement index (-?\d+), (\w+) array with bounds 2\.\.4)", get},
    {R"(SafeArrayGetElement index 0 of an empty array)", get_of_empty},
    {R"(SafeArrayGetUBound of an empty array from 5)", bound_of_empty},
};

answer play_alone(const std::string& step) {
  for (const pattern& each : patterns) {
    std::smatch part;
    if (std::regex_match(step, part, std::regex(each.form))) return each.play(part);
  }
  return {"no pattern for this row", step};
}

// Whether the data pointer of an empty array is null is open.
std::string without_pointer(const std::string& told) {
  return std::regex_replace(told, std::regex(" (no-)?data| pointer=\\w+"), "");
}

void play(const vectors::steps& known, const std::string& row_class) { vectors::play(file_name, known, row_class); }

TEST(SafeArrayRows, creating_bounds_and_elements_are_as_recorded) {
  const auto rows =
      vectors::read(file_name, {"create-two-dims", "create-empty", "create-vector", "create-bad", "bounds", "element"});
  for (const vectors::row& row : rows) {
    SCOPED_TRACE(vectors::text("line %d: ", row.line) + row[1]);
    const answer told = play_alone(row[1]);
    EXPECT_EQ(told.result, row[2]);
    const bool open = row[4] == "pointer-not-fixed";
    EXPECT_EQ(open ? without_pointer(told.output) : told.output, open ? without_pointer(row[3]) : row[3]);
  }
}

TEST(SafeArrayRows, null_arguments_are_refused_as_recorded) {
  const safe_array_holder array(SafeArrayCreateVector(VT_I4, 0, 1));
  SAFEARRAY* const a = array.get();
  LONG index = 0;
  LONG value = 0;
  SAFEARRAY* copy = nullptr;
  play({{"SafeArrayGetVartype(null result)",
         [&] {
           return answer{hex(SafeArrayGetVartype(a, nullptr)), ""};
         }},
        {"SafeArrayGetElemsize(null)",
         [] {
           return answer{"", std::to_string(SafeArrayGetElemsize(nullptr))};
         }},
        {"SafeArrayGetLBound(null result)",
         [&] {
           return answer{hex(SafeArrayGetLBound(a, 1, nullptr)), ""};
         }},
        {"SafeArrayGetUBound(null array)",
         [&] {
           return answer{hex(SafeArrayGetUBound(nullptr, 1, &value)), ""};
         }},
        {"SafeArrayGetUBound(null result)",
         [&] {
           return answer{hex(SafeArrayGetUBound(a, 1, nullptr)), ""};
         }},
        {"SafeArrayAccessData(null result)",
         [&] {
           const HRESULT result = SafeArrayAccessData(a, nullptr);
           return answer{hex(result), describe(a)};
         }},
        {"SafeArrayUnlock(null)",
         [] {
           return answer{hex(SafeArrayUnlock(nullptr)), ""};
         }},
        {"SafeArrayDestroy(null)",
         [] {
           return answer{hex(SafeArrayDestroy(nullptr)), ""};
         }},
        {"SafeArrayDestroyData(null)",
         [] {
           return answer{hex(SafeArrayDestroyData(nullptr)), ""};
         }},
        {"SafeArrayPutElement(null array)",
         [&] {
           return answer{hex(SafeArrayPutElement(nullptr, &index, &value)), ""};
         }},
        {"SafeArrayPutElement(null index)",
         [&] {
           return answer{hex(SafeArrayPutElement(a, nullptr, &value)), ""};
         }},
        {"SafeArrayCopy(null array)",
         [&] {
           return answer{hex(SafeArrayCopy(nullptr, &copy)), ""};
         }}},
       "null");
  EXPECT_EQ(copy, nullptr);
}

TEST(SafeArrayRows, locks_are_counted_as_recorded) {
  SAFEARRAYBOUND bound{2, 0};
  const safe_array_holder array(SafeArrayCreate(VT_I4, 1, &bound));
  SAFEARRAY* const a = array.get();
  const auto with_locks = [](SAFEARRAY* of, HRESULT result) {
    return answer{hex(result), vectors::text("locks=%u", of->cLocks)};
  };
  const auto access = [&] {
    void* data = nullptr;
    const HRESULT result = SafeArrayAccessData(a, &data);
    return with_locks(a, result);
  };
  const auto unaccess = [&] {
    const HRESULT result = SafeArrayUnaccessData(a);
    return with_locks(a, result);
  };
  play({{"first SafeArrayAccessData", access},
        {"second SafeArrayAccessData", access},
        {"SafeArrayDestroy while accessed",
         [&] {
           return answer{hex(SafeArrayDestroy(a)), ""};
         }},
        {"SafeArrayDestroyData while accessed",
         [&] {
           return answer{hex(SafeArrayDestroyData(a)), ""};
         }},
        {"SafeArrayRedim while accessed",
         [&] {
           SAFEARRAYBOUND larger{3, 0};
           return answer{hex(SafeArrayRedim(a, &larger)), ""};
         }},
        {"SafeArrayPutElement while accessed",
         [&] {
           const LONG index = 0;
           const LONG value = 1;
           return answer{hex(SafeArrayPutElement(a, &index, &value)), ""};
         }},
        {"SafeArrayCopy while accessed",
         [&] {
           safe_array_holder copy;
           const HRESULT result = SafeArrayCopy(a, copy.receive());
           return answer{hex(result), describe(copy.get())};
         }},
        {"VariantCopy of a variant holding the accessed array",
         [&] {
           VARIANT holding{};
           holding.vt = VT_ARRAY | VT_I4;
           holding.parray = a;
           scoped_variant copy;
           const HRESULT result = VariantCopy(copy.get(), &holding);
           return answer{hex(result), describe(copy->parray)};
         }},
        {"first SafeArrayUnaccessData", unaccess},
        {"second SafeArrayUnaccessData", unaccess},
        {"third SafeArrayUnaccessData", unaccess},
        {"SafeArrayUnlock of a fresh array",
         [&] {
           const safe_array_holder fresh(SafeArrayCreateVector(VT_I4, 0, 1));
           const HRESULT result = SafeArrayUnlock(fresh.get());
           return with_locks(fresh.get(), result);
         }},
        {"VariantClear of an array that is not accessed",
         [&] {
           VARIANT holding{};
           holding.vt = VT_ARRAY | VT_I4;
           holding.parray = SafeArrayCreateVector(VT_I4, 0, 1);
           const HRESULT result = VariantClear(&holding);
           return answer{hex(result), vectors::text("vt=0x%04X", holding.vt)};
         }}},
       "lock");
}

TEST(SafeArrayRows, redim_keeps_what_fits_as_recorded) {
  SAFEARRAYBOUND three{3, 0};
  const safe_array_holder vector(SafeArrayCreateVector(VT_I4, 0, 3));
  const safe_array_holder array(SafeArrayCreate(VT_I4, 1, &three));
  const LONG index = 2;
  const LONG answer_to_all = 42;
  ASSERT_EQ(SafeArrayPutElement(array.get(), &index, &answer_to_all), S_OK);
  const auto redim = [](SAFEARRAY* of, ULONG count) {
    SAFEARRAYBOUND bound{count, 0};
    const HRESULT result = SafeArrayRedim(of, &bound);
    return answer{hex(result), describe(of)};
  };
  play({{"SafeArrayRedim of a vector to 5", [&] { return redim(vector.get(), 5); }},
        {"SafeArrayRedim of an array to 5",
         [&] {
           answer told = redim(array.get(), 5);
           for (const LONG i : {2, 4}) {
             LONG value = -1;
             EXPECT_EQ(SafeArrayGetElement(array.get(), &i, &value), S_OK);
             told.output += vectors::text(" element%d=%d", i, value);
           }
           return told;
         }},
        {"SafeArrayRedim of an array to 0", [&] { return redim(array.get(), 0); }}},
       "redim");
}

TEST(SafeArrayRows, descriptors_are_as_recorded) {
  safe_array_holder array;
  safe_array_holder typed;
  play({{"SafeArrayAllocDescriptor(1)",
         [&] {
           const HRESULT result = SafeArrayAllocDescriptor(1, array.receive());
           return answer{hex(result), describe(array.get())};
         }},
        {"SafeArrayAllocData with no elements",
         [&] {
           array.get()->cbElements = 4;
           const HRESULT result = SafeArrayAllocData(array.get());
           return answer{hex(result), describe(array.get())};
         }},
        {"SafeArrayAllocDescriptor(0)",
         [] {
           safe_array_holder none;
           return answer{hex(SafeArrayAllocDescriptor(0, none.receive())), ""};
         }},
        {"SafeArrayAllocDescriptorEx(UI1, 1)",
         [&] {
           const HRESULT result = SafeArrayAllocDescriptorEx(VT_UI1, 1, typed.receive());
           return answer{hex(result), describe(typed.get())};
         }},
        {"SafeArrayAccessData of an array without data",
         [&] {
           const safe_array_access access(typed.get());
           return answer{hex(access.result()), access.as<void>() == nullptr ? "null" : "pointer"};
         }}},
       "descriptor");
}

TEST(SafeArrayRows, elements_are_owned_as_recorded) {
  vectors::counted_object object;
  SAFEARRAYBOUND two{2, 0};
  safe_array_holder objects(SafeArrayCreate(VT_DISPATCH, 1, &two));
  safe_array_holder variants(SafeArrayCreate(VT_VARIANT, 1, &two));
  const safe_array_holder texts(SafeArrayCreate(VT_BSTR, 1, &two));
  safe_array_holder copy;
  const LONG first = 0;
  LONG second = 1;
  BSTR const given = SysAllocString(u"text");
  const auto references = [&](HRESULT result) { return answer{hex(result), std::to_string(object.references)}; };
  const auto stored = [&](LONG index) {
    void* element = nullptr;
    EXPECT_EQ(SafeArrayPtrOfIndex(texts.get(), &index, &element), S_OK);
    return *static_cast<BSTR*>(element);
  };
  play({{"SafeArrayPutElement of an interface pointer: references after",
         [&] {
           const HRESULT result = SafeArrayPutElement(objects.get(), &first, static_cast<IDispatch*>(&object));
           return references(result);
         }},
        {"SafeArrayGetElement of an interface pointer: references after",
         [&] {
           IDispatch* got = nullptr;
           const HRESULT result = SafeArrayGetElement(objects.get(), &first, static_cast<void*>(&got));
           EXPECT_EQ(got, &object);
           answer told = references(result);
           if (got != nullptr) got->Release();
           return told;
         }},
        {"SafeArrayCopy of an interface array: references after",
         [&] {
           const HRESULT result = SafeArrayCopy(objects.get(), copy.receive());
           answer told = references(result);
           told.output += ' ' + describe(copy.get());
           return told;
         }},
        {"SafeArrayDestroy of the copy: references after",
         [&] {
           const HRESULT result = SafeArrayDestroy(copy.release());
           return references(result);
         }},
        {"putting a null over it: references after",
         [&] {
           const HRESULT result = SafeArrayPutElement(objects.get(), &first, nullptr);
           return references(result);
         }},
        {"SafeArrayDestroy of the array: references after",
         [&] {
           const HRESULT result = SafeArrayDestroy(objects.release());
           return references(result);
         }},
        {"SafeArrayPutElement of a variant holding an interface: references after",
         [&] {
           VARIANT holding{};
           holding.vt = VT_DISPATCH;
           holding.pdispVal = &object;
           const HRESULT result = SafeArrayPutElement(variants.get(), &first, &holding);
           return references(result);
         }},
        {"then SafeArrayDestroy: references after",
         [&] {
           const HRESULT result = SafeArrayDestroy(variants.release());
           return references(result);
         }},
        {"SafeArrayPutElement of a text: same pointer kept",
         [&] {
           const HRESULT result = SafeArrayPutElement(texts.get(), &first, given);
           return answer{hex(result), stored(0) == given ? "yes" : "no (copied)"};
         }},
        {"element that was never put: BSTR pointer",
         [&] {
           return answer{hex(S_OK), stored(1) == nullptr ? "null" : "pointer"};
         }},
        {"SafeArrayGetElement of a text: same pointer",
         [&] {
           BSTR got = nullptr;
           const HRESULT result = SafeArrayGetElement(texts.get(), &first, static_cast<void*>(&got));
           answer told{hex(result), got == stored(0) ? "yes" : "no (copied)"};
           SysFreeString(got);
           return told;
         }},
        {"SafeArrayGetElement of a null text",
         [&] {
           BSTR got = given;
           const HRESULT result = SafeArrayGetElement(texts.get(), &second, static_cast<void*>(&got));
           return answer{hex(result), got == nullptr ? "null" : "pointer"};
         }}},
       "ownership");
  SysFreeString(given);
}

TEST(SafeArrayRows, every_class_of_the_file_has_its_test) {
  const std::set<std::string> known = {
      "create-two-dims", "create-empty", "create-vector", "create-bad",
      "bounds",          "element",      "null",          "lock",
      "redim",           "descriptor",   "ownership",     "variant-change-byref",
      "variant-clear",   "variant-copy", "variant-type",  "stream",
      "global",          "bstr",
  };
  for (const vectors::row& row : vectors::read(file_name)) {
    if (row[4] != "suspect") {
      EXPECT_TRUE(known.contains(row[0])) << row[0];
    }
  }
}

}  // namespace
