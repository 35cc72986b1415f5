#include "tools/spc/warnings.h"

#include "tools/spc/utf8.h"

namespace spc {

void print_warnings(std::ostream& err, const Warnings& warnings) {
  for (const auto& warning : warnings)
    err << "spc: warning: " << warning.field << ' ' << quoted(warning.text) << ": " << warning.taken << "; it may be "
        << warning.wanted << ", as in \"" << warning.example << "\"\n";
}

void write_warnings(JsonWriter& json, const Warnings& warnings) {
  json.key("warnings").begin_array();
  for (const auto& warning : warnings) {
    json.begin_object();
    json.key("field").value(warning.field);
    json.key("text").value(warning.text);
    json.key("taken").value(warning.taken);
    json.key("wanted").value(warning.wanted);
    json.key("example").value(warning.example);
    json.end_object();
  }
  json.end_array();
}

}  // namespace spc
