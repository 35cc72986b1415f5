// A host that takes paths apart, cleans a name that somebody typed, and hands a text over in a temporary file.
#include <cstdio>

#include "spcbase/foundation/outcome.h"
#include "spcbase/platform/system/file.h"
#include "spcbase/utility/files.h"

namespace {

void print_parts(const char* path) {
  CString folder(path);
  RemoveFileNameAndExt(folder);
  CString name(path);
  PathToFileName(name);
  std::printf("%s | %s | %s\n", folder.GetString(), name.GetString(), GetExtFromFileOrPath(path).GetString());
}

void print_clean_name(const char* typed) {
  CString name(typed);
  if (!IsValidFileName(name)) MakeValidFileName(name);
  std::printf("%s\n", name.GetString());
}

// The file is there when the call returns, so nobody else can take its name. Who asked for it takes it away.
void hand_over(const CString& text) {
  const CString file = get_temp_file(nullptr, "run");
  TextToFile(text, file);

  CString back("read: ");
  FileToText(back, file);
  std::printf("%s\n", back.GetString());
  DeleteFileA(file);
}

void print_failure() {
  CString text;
  const auto done = guarded([&] { FileToText(text, "/no such folder/run.csv"); });
  if (!done) std::printf("%s\n", done.failure().text.GetString());
}

}  // namespace

int main() {
  print_parts("/data/line 4/run.csv");
  print_parts("C:\\data\\run.tar.gz");
  print_parts("C:\\run.csv");
  print_clean_name("width > 4: A/B");
  hand_over("7.1;7.2;6.9");
  print_failure();
  return 0;
}
