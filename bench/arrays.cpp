// Arrays of 1,000,000 integers or bytes beside a plain copy of the same bytes, and of 100,000 texts beside their
// conversion alone. Both sides allocate what they make anew each time and give the previous one back.
#include <cstdlib>
#include <cstring>
#include <memory>

#include "bench/jobs.h"
#include "spcbase/utility/arrays.h"

namespace bench {
namespace {

constexpr std::size_t element_count = 1000000;
constexpr std::size_t text_count = 100000;

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};
using Memory = std::unique_ptr<void, Free>;

Memory allocate(std::size_t size) {
  Memory memory(std::malloc(size));
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

/// A number that depends on each byte and its place.
double digest(const void* data, std::size_t size) {
  double sum = 0;
  const auto* const bytes = static_cast<const unsigned char*>(data);
  for (std::size_t i = 0; i < size; ++i)
    sum += static_cast<double>(bytes[i]) * static_cast<double>(i % 1009 + 1);
  return sum;
}

template <class Element>
std::vector<Element> elements() {
  std::vector<Element> made(element_count);
  for (std::size_t i = 0; i < made.size(); ++i)
    made[i] = static_cast<Element>(i * 2654435761U);
  return made;
}

void convert(COleSafeArray& target, std::vector<int>& source) { to_safe_array(target, source, VT_I4); }
void convert(COleSafeArray& target, std::vector<unsigned char>& source) {
  to_safe_array(target, source.data(), static_cast<int>(source.size()));
}

template <class Element>
class ToArray : public WorkAlone {
 public:
  void run() override { convert(array_, source_); }
  double result() override { return digest(array_.parray->pvData, source_.size() * sizeof(Element)); }

 private:
  std::vector<Element> source_ = elements<Element>();
  COleSafeArray array_;
};

template <class Element>
class ToVector : public WorkAlone {
 public:
  ToVector() {
    auto source = elements<Element>();
    convert(array_, source);
  }
  void run() override {
    std::vector<Element>().swap(made_);
    to_vector(made_, array_.parray);
  }
  double result() override { return digest(made_.data(), made_.size() * sizeof(Element)); }

 private:
  COleSafeArray array_;
  std::vector<Element> made_;
};

/// The counterpart of both: a block, and one copy into it.
template <class Element>
class PlainCopy : public WorkAlone {
 public:
  void run() override {
    made_.reset();
    made_ = allocate(size());
    std::memcpy(made_.get(), source_.data(), size());
  }
  double result() override { return digest(made_.get(), size()); }

 private:
  std::size_t size() const { return source_.size() * sizeof(Element); }

  std::vector<Element> source_ = elements<Element>();
  Memory made_;
};

/// Texts as a plant has them; every fourth has characters beyond ASCII.
std::vector<CString> texts() {
  std::vector<CString> made(text_count);
  for (std::size_t i = 0; i < made.size(); ++i)
    made[i].Format(i % 4 == 0 ? "Prüfplatz %zu, Außendurchmesser in µm" : "Station %zu, inner diameter, left side", i);
  return made;
}

template <class Text>
double digest_of(const std::vector<Text>& made) {
  double sum = 0;
  for (std::size_t i = 0; i < made.size(); ++i)
    sum += digest(made[i].data(), made[i].size()) * static_cast<double>(i % 101 + 1);
  return sum;
}

/// A text in memory of its own, as the plain side has it.
struct PlainText {
  Memory memory;
  std::size_t size_bytes = 0;

  const void* data() const { return memory.get(); }
  std::size_t size() const { return size_bytes; }
};

/// Well-formed UTF-8 as UTF-16 with a zero at the end.
PlainText widen(std::string_view text) {
  PlainText made{allocate((text.size() + 1) * sizeof(char16_t)), 0};
  auto* const first = static_cast<char16_t*>(made.memory.get());
  char16_t* out = first;
  for (std::size_t i = 0; i < text.size();) {
    const auto byte = [&](std::size_t k) { return static_cast<unsigned>(static_cast<unsigned char>(text[i + k])); };
    const unsigned lead = byte(0);
    if (lead < 0x80) {
      *out++ = static_cast<char16_t>(lead);
      i += 1;
    } else if (lead < 0xE0) {
      *out++ = static_cast<char16_t>((lead & 0x1FU) << 6 | (byte(1) & 0x3FU));
      i += 2;
    } else if (lead < 0xF0) {
      *out++ = static_cast<char16_t>((lead & 0xFU) << 12 | (byte(1) & 0x3FU) << 6 | (byte(2) & 0x3FU));
      i += 3;
    } else {
      const unsigned point = (lead & 7U) << 18 | (byte(1) & 0x3FU) << 12 | (byte(2) & 0x3FU) << 6 | (byte(3) & 0x3FU);
      *out++ = static_cast<char16_t>(0xD7C0U + (point >> 10));
      *out++ = static_cast<char16_t>(0xDC00U | (point & 0x3FFU));
      i += 4;
    }
  }
  *out = 0;
  made.size_bytes = static_cast<std::size_t>(out - first) * sizeof(char16_t);
  return made;
}

/// Well-formed UTF-16 as UTF-8 with a zero at the end.
PlainText narrow(std::u16string_view text) {
  PlainText made{allocate(text.size() * 3 + 1), 0};
  auto* const first = static_cast<unsigned char*>(made.memory.get());
  unsigned char* out = first;
  const auto put = [&out](unsigned bits) { *out++ = static_cast<unsigned char>(bits); };
  for (std::size_t i = 0; i < text.size(); ++i) {
    unsigned point = text[i];
    if (point < 0x80) {
      put(point);
      continue;
    }
    if (point < 0x800) {
      put(0xC0U | point >> 6);
    } else {
      if (point >= 0xD800 && point < 0xDC00) {
        point = 0x10000U + ((point & 0x3FFU) << 10) + (text[++i] & 0x3FFU);
        put(0xF0U | point >> 18);
        put(0x80U | (point >> 12 & 0x3FU));
      } else {
        put(0xE0U | point >> 12);
      }
      put(0x80U | (point >> 6 & 0x3FU));
    }
    put(0x80U | (point & 0x3FU));
  }
  *out = 0;
  made.size_bytes = static_cast<std::size_t>(out - first);
  return made;
}

class TextsToArray : public WorkAlone {
 public:
  void run() override { to_safe_array(array_, source_); }
  double result() override {
    std::vector<std::string_view> made;
    const auto* const elements = static_cast<const BSTR*>(array_.parray->pvData);
    for (std::size_t i = 0; i < source_.size(); ++i)
      made.emplace_back(reinterpret_cast<const char*>(elements[i]), SysStringByteLen(elements[i]));
    return digest_of(made);
  }

 private:
  std::vector<CString> source_ = texts();
  COleSafeArray array_;
};

class TextsToVector : public WorkAlone {
 public:
  TextsToVector() { to_safe_array(array_, texts()); }
  void run() override {
    std::vector<CString>().swap(made_);
    to_vector(made_, array_.parray);
  }
  double result() override {
    std::vector<std::string_view> made;
    for (const CString& text : made_)
      made.push_back(text.view());
    return digest_of(made);
  }

 private:
  COleSafeArray array_;
  std::vector<CString> made_;
};

class PlainWiden : public WorkAlone {
 public:
  void run() override {
    std::vector<PlainText>().swap(made_);
    made_.reserve(source_.size());
    for (const CString& text : source_)
      made_.push_back(widen(text.view()));
  }
  double result() override { return digest_of(made_); }

 private:
  std::vector<CString> source_ = texts();
  std::vector<PlainText> made_;
};

class PlainNarrow : public WorkAlone {
 public:
  PlainNarrow() {
    for (const CString& text : texts())
      source_.push_back(widen(text.view()));
  }
  void run() override {
    std::vector<PlainText>().swap(made_);
    made_.reserve(source_.size());
    for (const PlainText& text : source_)
      made_.push_back(narrow({static_cast<const char16_t*>(text.data()), text.size() / sizeof(char16_t)}));
  }
  double result() override { return digest_of(made_); }

 private:
  std::vector<PlainText> source_;
  std::vector<PlainText> made_;
};

template <class Ours, class Plain>
Job job(const char* name, double limit) {
  Job made;
  made.name = name;
  made.pair_alone = [] { return Pair{std::make_unique<Ours>(), std::make_unique<Plain>()}; };
  made.alone_limit = limit;
  return made;
}

}  // namespace

Job integers_to_array() { return job<ToArray<int>, PlainCopy<int>>("1,000,000 integers to array", 1.2); }
Job integers_to_vector() { return job<ToVector<int>, PlainCopy<int>>("1,000,000 integers to vector", 1.2); }
Job bytes_to_array() { return job<ToArray<unsigned char>, PlainCopy<unsigned char>>("1,000,000 bytes to array", 1.2); }
Job bytes_to_vector() {
  return job<ToVector<unsigned char>, PlainCopy<unsigned char>>("1,000,000 bytes to vector", 1.2);
}
Job texts_to_array() { return job<TextsToArray, PlainWiden>("100,000 texts to array", 1.5); }
Job texts_to_vector() { return job<TextsToVector, PlainNarrow>("100,000 texts to vector", 1.5); }

}  // namespace bench
