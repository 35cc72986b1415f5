// A program against the installed library: what a path, a secret and a range say.
#include <cstdio>

#include "spcbase/spcbase.h"

int main() {
  CString folder, name;
  int revision = 0;
  if (!analyse_path("enterprise:/plant/line 4/bore|approved", folder, name, true, true, true, &revision)) return 1;
  std::printf("%s in %s, revision %d\n", name.GetString(), folder.GetString(), revision);
  if (name != "bore" || folder != "plant/line 4" || revision != latest_approved_revision) return 1;

  const CString hidden = encode_str("Pass word 1", "3337");
  if (decode_str(hidden, "3337") != "Pass word 1") return 1;

  OLEDBInfo source;
  source.id = 7;
  source.connection_string = "DSN=warehouse;UID=spc;PWD=secret";
  OLEDBInfo read;
  read.id = 7;
  read.set_xml(source.get_xml(false, false));
  std::printf("%s\n", source.get_xml(false, true).GetString());
  return read.connection_string == source.connection_string ? 0 : 1;
}
