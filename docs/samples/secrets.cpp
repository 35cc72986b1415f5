// A host that keeps a password out of sight in its own settings, and reads it again.
#include <cstdio>

#include "spcbase/utility/encoders.h"

namespace {

// The key of a record ties the stored text to it: moved to another record, it reads as something else.
CString key_of(int record) {
  CString key;
  key.Format("%d", record * 37);
  return key;
}

CString hide(const CString& password, int record) { return encode_str(password, key_of(record)); }

CString show(const CString& stored, int record) { return decode_str(stored, key_of(record)); }

void print_stored(const CString& password) {
  const CString stored = hide(password, 7);
  std::printf("stored: %s\n", stored.GetString());
  std::printf("read:   %s\n", show(stored, 7).GetString());
}

// A text that was spoilt on its way is no failure: it reads as an empty one.
void print_spoilt(CString stored) {
  stored.SetAt(0, '?');
  std::printf("spoilt: \"%s\"\n", show(stored, 7).GetString());
}

void print_digits(const char* bytes, int count) {
  const CString digits = ConvertToASCII(bytes, count);
  char back[3];
  ConvertFromASCII(digits, digits.GetLength(), back);
  std::printf("%s is %.3s\n", digits.GetString(), back);
}

}  // namespace

int main() {
  print_stored("Pass word 1");
  print_spoilt(hide("Pass word 1", 7));
  print_digits("SPC", 3);
  return 0;
}
