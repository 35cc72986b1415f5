#include "tools/spc/opening.h"

#include "tools/spc/connection_text.h"

namespace spc {
namespace {

bool holds(const CString& text, std::string_view part) { return text.view().find(part) != std::string_view::npos; }

std::string_view advice_for_file(const Failure& failure) {
  if (holds(failure.text, "does not exist"))
    return "spc db create makes it with all tables; spc demo --keep FILE makes one with data to look at.";
  if (holds(failure.text, "is not an SQLite database")) return "Name a file that spc db create or spc demo has made.";
  if (failure.failure_class == FailureClass::other) return "Write sqlite:FILE; a name with ; in it stands in {braces}.";
  return "See that the file and its folder are there, and that you may read and write them.";
}

/// What the driver manager says before any driver has a say.
bool knows_no_driver(const Failure& failure) {
  return failure.sqlstate == "IM002" || failure.sqlstate == "IM003" || holds(failure.text, "Can't open lib");
}

}  // namespace

std::string_view advice_for_opening(std::string_view connect_text, const Failure& failure) {
  if (names_sqlite_file(connect_text)) return advice_for_file(failure);
  if (connect_text.find('=') == std::string_view::npos)
    return "An SQLite file is named sqlite:FILE, a server Driver={...};SERVER=...;DB=...;UID=...;PWD=...";
  if (knows_no_driver(failure))
    return "odbcinst -q -d lists the installed drivers for Driver={...}, odbcinst -q -s the data sources for DSN=...";
  if (failure.sqlstate == "28000")
    return "See that user and password are right, and that this user may log in from this machine.";
  if (failure.failure_class == FailureClass::other)
    return "See that the names of server and database in the connect text are right.";
  return failure.advice.view();
}

}  // namespace spc
