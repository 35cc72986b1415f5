// Plan
// - each throwing operation throws its own class by pointer, and all are caught as CException*
// - AtlThrow: out of memory is the memory exception, every other code the not-supported one
// - GetErrorMessage: the text; cut and terminated in a small buffer; no text gives FALSE and an empty buffer; help
// context
// - Delete releases once, and leaves an object alone that was made so
#include "spcbase/platform/system/exceptions.h"

#include <gtest/gtest.h>

#include <string>

namespace {

/// Counts the ends of its objects.
class CountedException : public CException {
 public:
  explicit CountedException(int& ends, BOOL auto_delete = TRUE) : CException(auto_delete), ends_(ends) {}
  ~CountedException() override { ++ends_; }

 private:
  int& ends_;
};

/// What an operation throws as this class, told by its text; the exception is released.
template <typename Exception, typename Operation>
std::string text_thrown_as(Operation operation) {
  try {
    operation();
  } catch (Exception* e) {
    char buffer[128];
    const BOOL good = e->GetErrorMessage(buffer, sizeof buffer);
    e->Delete();
    return good ? buffer : "no text";
  }
  return "nothing thrown";
}

TEST(AfxThrow, every_operation_throws_its_own_class_by_pointer) {
  EXPECT_EQ(text_thrown_as<CMemoryException>(AfxThrowMemoryException), "Out of memory.");
  EXPECT_EQ(text_thrown_as<CNotSupportedException>(AfxThrowNotSupportedException),
            "An unsupported operation was attempted.");
  EXPECT_EQ(text_thrown_as<CInvalidArgException>(AfxThrowInvalidArgException), "Encountered an improper argument.");
}

TEST(AfxThrow, every_exception_is_caught_as_the_base) {
  EXPECT_EQ(text_thrown_as<CException>(AfxThrowMemoryException), "Out of memory.");
  EXPECT_EQ(text_thrown_as<CException>(AfxThrowInvalidArgException), "Encountered an improper argument.");
}

TEST(AtlThrow, out_of_memory_is_the_memory_exception) {
  EXPECT_EQ(text_thrown_as<CMemoryException>([] { AtlThrow(E_OUTOFMEMORY); }), "Out of memory.");
}

TEST(AtlThrow, every_other_code_is_the_not_supported_exception) {
  for (const HRESULT hr : {E_FAIL, E_INVALIDARG, E_POINTER, S_OK}) {
    EXPECT_EQ(text_thrown_as<CNotSupportedException>([hr] { AtlThrow(hr); }),
              "An unsupported operation was attempted.");
  }
}

TEST(CException, without_a_text_gives_false_and_an_empty_buffer) {
  const CException plain(FALSE);
  char buffer[8] = "before";
  UINT help = 5;
  EXPECT_EQ(plain.GetErrorMessage(buffer, sizeof buffer, &help), FALSE);
  EXPECT_STREQ(buffer, "");
  EXPECT_EQ(help, 0U);
}

TEST(CException, a_long_text_is_cut_and_terminated) {
  const CMemoryException e(FALSE);
  char buffer[8] = {'x', 'x', 'x', 'x', 'x', 'x', 'x', 'x'};
  EXPECT_EQ(e.GetErrorMessage(buffer, 4), TRUE);
  EXPECT_STREQ(buffer, "Out");
  EXPECT_EQ(buffer[4], 'x');
}

TEST(CException, no_buffer_gives_false) {
  const CMemoryException e(FALSE);
  char untouched = 'x';
  EXPECT_EQ(e.GetErrorMessage(nullptr, 10), FALSE);
  EXPECT_EQ(e.GetErrorMessage(&untouched, 0), FALSE);
  EXPECT_EQ(untouched, 'x');
}

TEST(CException, delete_ends_the_object) {
  int ends = 0;
  CException* e = new CountedException(ends);
  e->Delete();
  EXPECT_EQ(ends, 1);
}

TEST(CException, delete_leaves_an_object_alone_that_is_not_on_the_heap) {
  int ends = 0;
  {
    CountedException e(ends, FALSE);
    e.Delete();
    EXPECT_EQ(ends, 0);
  }
  EXPECT_EQ(ends, 1);
}

}  // namespace
