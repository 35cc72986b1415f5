// Plan: over random input, whose seeds are fixed
//   vector to array to vector gives the vector back, for every type that goes both ways; for the others, array to
//   vector gives the elements so it does whatever the lower bound is bytes to array to bytes, to a holder and to a
//   stream
#include <algorithm>
#include <memory>
#include <random>

#include "tests/utility/array_cases.h"

namespace {

using namespace array_cases;

class ArrayRoundTrip : public testing::TestWithParam<unsigned> {
 protected:
  std::size_t size() { return random_() % 3 == 0 ? random_() % 4 : random_() % 300; }
  LONG lower_bound() { return static_cast<LONG>(random_() % 0x7FFFFF00U) - 0x3FFFFFFF; }

  template <class T>
  std::vector<T> numbers() {
    std::vector<T> made(size());
    for (T& value : made)
      value = static_cast<T>(random_());
    return made;
  }
  /// Valid text of one to four bytes a character, zeros among them.
  CString text() {
    static const char* const characters[] = {"a", "Z", " ", "ä", "€", "\xF0\x9F\x93\x8F"};
    CString made;
    for (std::size_t i = random_() % 40; i != 0; --i) {
      const auto chosen = random_() % 7;
      if (chosen == 6)
        made += '\0';
      else
        made += characters[chosen];
    }
    return made;
  }

  /// The same array with another lower bound.
  COleSafeArray moved(const COleSafeArray& array) {
    COleSafeArray copy(array);
    copy.parray->rgsabound[0].lLbound = lower_bound();
    return copy;
  }

  template <class T>
  void expect_back(const COleSafeArray& array, const std::vector<T>& source) {
    std::vector<T> back(3);
    EXPECT_EQ(to_vector(back, array.parray), static_cast<int>(source.size()));
    EXPECT_EQ(back, source);
    EXPECT_EQ(to_vector(back, moved(array).parray), static_cast<int>(source.size()));
    EXPECT_EQ(back, source);
  }

  std::mt19937 random_{GetParam()};
};

TEST_P(ArrayRoundTrip, integers_come_back_under_each_of_the_four_types) {
  for (const VARTYPE type : {VT_I4, VT_UI4, VT_INT, VT_UINT}) {
    COleSafeArray array;
    const auto ints = numbers<int>();
    to_safe_array(array, ints, type);
    expect_back(array, ints);
    const std::vector<long> longs(ints.begin(), ints.end());
    to_safe_array(array, longs, type);
    expect_back(array, longs);
  }
}

TEST_P(ArrayRoundTrip, texts_come_back) {
  std::vector<CString> texts(size());
  for (CString& each : texts)
    each = text();
  COleSafeArray array;
  to_safe_array(array, texts);
  expect_back(array, texts);
  std::vector<_bstr_t> strings;
  EXPECT_EQ(to_vector(strings, array.parray), static_cast<int>(texts.size()));
  EXPECT_TRUE(std::equal(strings.begin(), strings.end(), texts.begin(), texts.end(),
                         [](_bstr_t& wide, const CString& narrow) { return to_cstring(wide.GetBSTR()) == narrow; }));
}

TEST_P(ArrayRoundTrip, variants_come_back) {
  std::vector<_variant_t> values(size());
  for (_variant_t& value : values) {
    if (random_() % 2 == 0)
      value = _variant_t(text().GetString());
    else
      value = _variant_t(static_cast<double>(random_()));
  }
  COleSafeArray array;
  to_variant_safe_array(array, values);
  expect_back(array, values);
  const auto ints = numbers<int>();
  to_variant_safe_array(array, ints);
  expect_back(array, std::vector<_variant_t>(ints.begin(), ints.end()));
}

TEST_P(ArrayRoundTrip, objects_come_back_with_every_reference) {
  std::vector<counted_object> objects(size());
  {
    std::vector<_com_ptr_t<IDispatch>> pointers;
    for (counted_object& object : objects)
      pointers.emplace_back(random_() % 4 == 0 ? nullptr : &object);
    COleSafeArray array;
    to_dispatch_safe_array(array, pointers);
    expect_back(array, pointers);
    expect_back(array, std::vector<_com_ptr_t<IUnknown>>(pointers.begin(), pointers.end()));
    to_variant_safe_array(array, pointers);
    expect_back(array, std::vector<_variant_t>(pointers.begin(), pointers.end()));
  }
  for (const counted_object& object : objects)
    EXPECT_EQ(object.references, 1U);
}

TEST_P(ArrayRoundTrip, elements_that_only_hosts_pack_come_out_as_they_stand) {
  const auto shorts = numbers<short>();
  expect_back(array_of(VT_I2, shorts), shorts);
  const auto doubles = numbers<double>();
  expect_back(array_of(VT_R8, doubles), doubles);
  const std::vector<bool> truths(shorts.begin(), shorts.end());
  expect_back(array_of(VT_BOOL, shorts), truths);
}

TEST_P(ArrayRoundTrip, bytes_come_back_as_vector_and_buffer_and_holder_and_stream) {
  auto bytes = numbers<unsigned char>();
  const int count = static_cast<int>(bytes.size());
  COleSafeArray array;
  to_safe_array(array, bytes.data(), count);
  expect_back(array, bytes);

  unsigned char* buffer = nullptr;
  int buffer_count = -1;
  to_byte_array(&buffer, buffer_count, moved(array).parray);
  const std::unique_ptr<unsigned char[]> owned(buffer);
  EXPECT_EQ(std::vector<unsigned char>(buffer, buffer + buffer_count), bytes);

  CLongBinary holder;
  to_long_bin(holder, moved(array).parray, static_cast<unsigned int>(count));
  COleSafeArray again;
  to_safe_array(again, holder);
  expect_back(again, bytes);

  ATL::CComPtr<IStream> stream;
  stream.Attach(create_mem_stream(bytes.data(), count));
  ASSERT_EQ(stream->Seek({0}, STREAM_SEEK_SET, nullptr), S_OK);
  std::vector<unsigned char> read(bytes.size() + 1);
  ULONG got = 0;
  ASSERT_EQ(stream->Read(read.data(), static_cast<ULONG>(read.size()), &got), S_OK);
  read.resize(got);
  EXPECT_EQ(read, bytes);
}

INSTANTIATE_TEST_SUITE_P(Seeds, ArrayRoundTrip, testing::Range(1U, 21U));

}  // namespace
