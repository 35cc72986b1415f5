// What is wrong in what is stored as text: settings, and definitions of data sources.
#include "spcbase/datasource/definition.h"
#include "tools/spc/doctor/check.h"
#include "tools/spc/doctor/examination.h"
#include "tools/spc/problem.h"
#include "tools/spc/source_definition.h"

namespace spc::doctor {
namespace {

template <SettingFault fault>
void look_at_settings(Examination& examination) {
  Subjects keys{"KYWORD", {}, false};
  for (const SettingView& setting : examination.settings()) {
    if (setting.fault != fault) continue;
    if (keys.detail.empty()) keys.detail = setting.damage;
    add(keys, setting.key, examination.limit());
  }
  examination.found("CSINI", std::move(keys));
}

/// A driver that cannot stream reads through a buffer that begins with so many bytes, and grows.
constexpr int first_buffer_bytes = 65536;

/// Tries every live definition of a known kind; `judge` gives what is wrong with one, or an empty text.
template <class Judge>
void look_at_definitions(Examination& examination, Judge judge) {
  const std::string what = "cannot read the data sources";
  Subjects sources{"EXDBID", {}};
  for (const SourceRow& row : read_source_rows(examination.link(), 0, what)) {
    const bool known = row.kind == OLEDBInfo::kind || row.kind == ADONETDBInfo::kind;
    if (row.removed || !known) continue;
    const std::string fault = judge([&] { return read_definition(examination.link(), row, first_buffer_bytes, what); });
    if (fault.empty()) continue;
    if (sources.detail.empty()) sources.detail = fault;
    add(sources, std::to_string(row.id), examination.limit());
  }
  examination.found("CSEXDB", std::move(sources));
}

void look_for_unreadable_definitions(Examination& examination) {
  look_at_definitions(examination, [](const auto& read) -> std::string {
    try {
      static_cast<void>(read());
      return {};
    } catch (const Problem& problem) {
      return problem.why;
    }
  });
}

void look_for_later_versions(Examination& examination) {
  look_at_definitions(examination, [](const auto& read) -> std::string {
    try {
      const int version = version_of(read());
      if (version <= OLEDBInfo::present_version) return {};
      return "it has version " + std::to_string(version);
    } catch (const Problem&) {
      // Told of by the check before this one.
      return {};
    }
  });
}

}  // namespace

std::vector<Check> stored_checks() {
  return {
      {"setting-bad-digit",
       Severity::error,
       "The setting's stored text has a character that is none of 0 to 9 and A to F; it counts as 0, without a word.",
       "Let the program that wrote the setting save it again, or restore its rows from a backup.",
       {},
       look_at_settings<SettingFault::bad_digit>,
       "CSINI"},
      {"setting-piece-missing",
       Severity::error,
       "A piece of the setting's value is missing: what stands behind it moves up, without a word.",
       "Let the program that wrote the setting save it again, or restore its rows from a backup.",
       {},
       look_at_settings<SettingFault::missing_piece>,
       "CSINI"},
      {"setting-piece-doubled",
       Severity::error,
       "Two pieces of the setting's value have one number, or two keys differ in blanks alone; their order is chance.",
       "Delete the rows that are left over; blanks around KYWORD do not count.",
       {},
       look_at_settings<SettingFault::doubled_piece>,
       "CSINI"},
      {"setting-half-byte",
       Severity::error,
       "The setting's stored text ends in the middle of a byte, which is dropped.",
       "Let the program that wrote the setting save it again, or restore its rows from a backup.",
       {},
       look_at_settings<SettingFault::half_byte>,
       "CSINI"},
      {"definition-unreadable",
       Severity::error,
       "The definition of a data source cannot be read, or its connection string not be deciphered under its id.",
       "Restore its row from a backup, or remove it (spc source remove) and add it anew; spc source show tells more.",
       {},
       look_for_unreadable_definitions,
       "CSEXDB"},
      {"definition-of-later-version",
       Severity::warning,
       "The definition of a data source is of a later version than this program knows: saving it here would lose some.",
       "Change it with the program that wrote it, or with a newer spc.",
       {},
       look_for_later_versions,
       "CSEXDB"},
      {"definition-kind-unknown",
       Severity::error,
       "The data source is neither of the kind OLE DB nor ADO.NET, so no list has it.",
       "Set FLG1 to 0 for OLE DB, to 1 for ADO.NET.",
       {{"CSEXDB", "EXDBID", "[VFLG] IS NULL AND ([FLG1] IS NULL OR [FLG1] NOT IN (0, 1))"}}},
      {"definition-name-doubled",
       Severity::warning,
       "Two live data sources have the same name, so neither can be named by it.",
       "Rename one of them: spc source edit ID --name NAME.",
       {{"CSEXDB", "FIRSTID", "",
         "(SELECT MIN([EXDBID]) AS FIRSTID FROM [CSEXDB] WHERE [VFLG] IS NULL GROUP BY [NAME] HAVING COUNT(*) > 1) "
         "D"}}},
      {"definition-without-time",
       Severity::warning,
       "The data source's MTIME is null: programs that hold it cannot see whether it was changed.",
       "Save it again: spc source rewrite does so for all of them.",
       {{"CSEXDB", "EXDBID", "[VFLG] IS NULL AND [MTIME] IS NULL"}}},
  };
}

}  // namespace spc::doctor
