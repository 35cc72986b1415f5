/// A translated message table: what a German host installs.
///
/// It has the names of periods and units and the sentence about a schedule; failures stay English. Its list separator
/// is another than the English one.
#pragma once

#include <map>

#include "spcbase/foundation/internal/message_table.h"
#include "spcbase/foundation/messages.h"

namespace test_support {

inline std::map<UINT, CString> german_messages() {
  return {
      {msg::every_day, "jeden Tag"},
      {msg::every_n_days, "alle %d Tage"},
      {msg::sun, "So"},
      {msg::mon, "Mo"},
      {msg::tue, "Di"},
      {msg::wed, "Mi"},
      {msg::thu, "Do"},
      {msg::fri, "Fr"},
      {msg::sat, "Sa"},
      {msg::every_weekday_of_every_week, "jeden %s jeder Woche"},
      {msg::list_separator, "; "},
      {msg::jan, "Jan"},
      {msg::feb, "Feb"},
      {msg::mar, "März"},
      {msg::apr, "Apr"},
      {msg::may, "Mai"},
      {msg::june, "Juni"},
      {msg::jul, "Juli"},
      {msg::aug, "Aug"},
      {msg::sep, "Sept"},
      {msg::oct, "Okt"},
      {msg::nov, "Nov"},
      {msg::dec, "Dez"},
      {msg::on_day_of_months, "am %d. von %s"},
      {msg::every_month, "jedem Monat"},
      {msg::customed, "angepasst \"%s\""},
      {msg::seconds, "Sekunde(n)"},
      {msg::minutes, "Minute(n)"},
      {msg::hours, "Stunde(n)"},
      {msg::every_n_units, "Alle %d %s"},
      {msg::at, "Um"},
      {msg::from_time, "ab %s"},
      {msg::until_time, " bis %s"},
      {msg::for_hours_and_minutes, " für %d Stunde(n) und %d Minute(n)"},
      {msg::starting, "beginnend am %s"},
      {msg::and_ending, " und endend am %s"},
      {msg::days, "Tag(e)"},
      {msg::year, "Jahr(e)"},
      {msg::unit_day, "Tag"},
      {msg::unit_week, "Woche"},
      {msg::unit_month, "Monat"},
      {msg::unit_quarter, "Quartal"},
      {msg::unit_hour, "Stunde"},
      {msg::unit_minute, "Minute"},
      {msg::unit_second, "Sekunde"},
      {msg::all_data, "Alle Daten"},
      {msg::no_initial_data, "Keine Anfangsdaten"},
      {msg::between, "zwischen %s und %s"},
      {msg::today, "Heute"},
      {msg::this_week, "Diese Woche"},
      {msg::this_month, "Dieser Monat"},
      {msg::this_quarter, "Dieses Quartal"},
      {msg::yesterday, "Gestern"},
      {msg::last_week, "Letzte Woche"},
      {msg::last_month, "Letzter Monat"},
      {msg::last_quarter, "Letztes Quartal"},
      {msg::day, "Tag(e)"},
      {msg::week, "Woche(n)"},
      {msg::month, "Monat(e)"},
      {msg::quarter, "Quartal(e)"},
      {msg::second, "Sekunde(n)"},
      {msg::minute, "Minute(n)"},
      {msg::hour, "Stunde(n)"},
      {msg::last_n_units, "letzte %d %s"},
      {msg::this_year, "Dieses Jahr"},
      {msg::last_year, "Letztes Jahr"},
      {msg::unit_year, "Jahr"},
  };
}

/// Installs a table for a scope. One at a time, since the table is the whole process's.
class InstalledMessages {
 public:
  [[nodiscard]] explicit InstalledMessages(const std::map<UINT, CString>& texts) { install_messages(texts); }
  ~InstalledMessages() { install_messages({}); }
  InstalledMessages(const InstalledMessages&) = delete;
  InstalledMessages& operator=(const InstalledMessages&) = delete;
};

}  // namespace test_support
