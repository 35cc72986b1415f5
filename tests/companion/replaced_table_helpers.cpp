// A product that brings table helpers of its own: it links the shared library and defines the functions itself. The
// library must call these, from inside too; the program says so by its exit status.
#include <cstdio>

#include "spcbase/companion/table_helpers.h"
#include "spcbase/utility/text.h"

namespace TableHelpers {

CString ParseToLocale(const CString& text) { return "shown:" + text; }

CString ParseTextBuffer(int kind, const CString& text) {
  CString result;
  result.Format("stored %d:%s", kind, text.GetString());
  return result;
}

}  // namespace TableHelpers

namespace {

bool gives(const CString& text, const char* expected) {
  if (text == expected) return true;
  std::printf("\"%s\" in place of \"%s\"\n", text.GetString(), expected);
  return false;
}

}  // namespace

int main() {
  CString shown("1.5");
  CString stored("1,5");
  const bool to_user = gives(eng_to_i18n(shown), "shown:1.5");
  const bool back = gives(i18n_to_eng(stored), "stored 0:1,5");
  return to_user && back ? 0 : 1;
}
