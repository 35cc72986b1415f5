// A host that stores numbers as neutral texts, keeps a setting as hexadecimal text and reads a command line.
#include <cstdio>
#include <memory>

#include "spcbase/utility/text.h"

namespace {

// Neutral whatever the user's locale is, so that every reader gets the same number.
void print_stored_number() {
  const CString stored = double_to_eng(74.25);
  std::printf("stored %s, read %.2f\n", stored.GetString(), eng_to_double(stored));
}

void print_input(const char* typed) {
  double value = 0;
  if (IsNumericString(typed, value)) {
    std::printf("%s is a number: %s\n", typed, double_to_eng(value).GetString());
  } else {
    std::printf("%s is no number\n", typed);
  }
}

// The caller owns the bytes.
void print_setting() {
  const BYTE key[] = {0x01, 0xAB};
  const CString text = byte_to_hex_text(key, sizeof key);
  const std::unique_ptr<BYTE[]> bytes(hex_text_to_byte(text, text.GetLength()));
  std::printf("%s is %02X %02X\n", text.GetString(), bytes[0], bytes[1]);
}

void print_words(CString text) {
  for (CString word = GetFirstWord(text); !word.IsEmpty(); word = GetFirstWord(text)) {
    std::printf("word: %s\n", word.GetString());
    RemoveFirstWord(text);
  }
}

void print_parameters(const char* line) {
  CString parameter;
  for (line = GetNextParm(line, parameter); !parameter.IsEmpty(); line = GetNextParm(line, parameter))
    std::printf("parameter: %s\n", parameter.GetString());
}

}  // namespace

int main() {
  print_stored_number();
  print_input("1,234.5");
  print_input("74 mm");
  print_setting();
  print_words("\u3000Prüfstand 7\tSchicht A");
  print_parameters("/n \"order 17.txt\" /q");
  std::printf("%s\n", fix_spc_name("Bohrung\t\u00D8 8", false).GetString());
}
