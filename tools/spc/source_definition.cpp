#include "tools/spc/source_definition.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

#include "spcbase/foundation/failure.h"
#include "spcbase/platform/automation/bstr_t.h"
#include "spcbase/utility/text.h"
#include "tools/spc/problem.h"
#include "tools/spc/utf8.h"
#include "tools/spc/words.h"

namespace spc {
namespace {

constexpr const char* other_kind_text = "Not OLE DB database connection.";

int next_id(Link& link) {
  LONG number = 0;
  const HRESULT result = link.engine()->GetNextRunningNumber(_bstr_t(u"CSEXDBRN"), &number);
  if (result >= 0) return number;
  CString description;
  CString source;
  get_err_info_data(description, source, nullptr);
  throw DBException(description, result);
}

template <class Kind>
Definition retrieved(Link& link, int id, int max_size) {
  const std::unique_ptr<Kind> definition(Kind::retrieve(&link.db(), max_size, id));
  return *definition;
}

[[noreturn]] void refuse_option(const std::string& what, const char* option, int kind) {
  throw Problem{what, std::string(option) + " is not for data sources of the kind " + kind_name(kind),
                "Leave it out; the kind of a data source never changes.", exit_misuse};
}

void set(CString& target, const std::optional<std::string>& value) {
  if (value) target = value->c_str();
}

template <class Kind>
void apply_quote(const std::string& list, Kind& definition, const std::string& what) {
  const std::array<std::pair<const char*, bool*>, 4> flags = {{{"catalog", &definition.quote_catalog},
                                                               {"schema", &definition.quote_schema},
                                                               {"table", &definition.quote_table},
                                                               {"column", &definition.quote_column}}};
  for (const auto& [word, flag] : flags)
    *flag = false;
  if (list == "none") return;
  for (const auto& word : words_of(list, ", ")) {
    const auto found = std::ranges::find_if(flags, [&](const auto& known) { return word == known.first; });
    if (found == flags.end())
      throw Problem{what, "--quote does not know " + word,
                    "It takes catalog, schema, table and column, parted by commas, or none.", exit_misuse};
    *found->second = true;
  }
}

void apply_own(const SourceFields& fields, OLEDBInfo& definition, const std::string& what) {
  if (fields.provider) refuse_option(what, "--provider", OLEDBInfo::kind);
  if (fields.timeout) refuse_option(what, "--timeout", OLEDBInfo::kind);
  if (fields.option) definition.option = *fields.option;
}

void apply_own(const SourceFields& fields, ADONETDBInfo& definition, const std::string& what) {
  if (fields.option) refuse_option(what, "--option", ADONETDBInfo::kind);
  set(definition.provider, fields.provider);
  if (fields.timeout) definition.default_command_timeout = *fields.timeout;
}

void apply_syntax(const SourceFields& fields, std::shared_ptr<UserDefinedSyntaxInfo>& syntax) {
  if (fields.default_syntax) syntax = nullptr;
  if (!fields.date_literal && !fields.time_literal && !fields.timestamp_literal && !fields.concatenation) return;
  if (!syntax) syntax = get_default_user_defined_syntax_info();
  set(syntax->date_literal, fields.date_literal);
  set(syntax->time_literal, fields.time_literal);
  set(syntax->timestamp_literal, fields.timestamp_literal);
  set(syntax->concatenation, fields.concatenation);
}

}  // namespace

Definition definition_of_kind(int kind) {
  if (kind == ADONETDBInfo::kind) return ADONETDBInfo();
  return OLEDBInfo();
}

std::string described(const Definition& definition) {
  const auto& base = base_of(definition);
  const int kind = std::holds_alternative<ADONETDBInfo>(definition) ? ADONETDBInfo::kind : OLEDBInfo::kind;
  return "data source " + std::to_string(base.id) + " " + text_of(base.name) + " (" + kind_name(kind) + ")";
}

Problem definition_problem(const std::string& what, const Failure& failure, int id) {
  Problem problem = problem_of(what, failure);
  const std::string told = problem.why;
  constexpr const char* advice =
      "Restore its row of CSEXDB from a backup, or remove the data source (spc source remove) and add it anew.";
  if (failure.kind == FailureKind::standard) {
    problem.why = "its connection string cannot be deciphered under the id " + std::to_string(id) + " (" + told + ")";
    problem.advice = advice;
  } else if (failure.kind == FailureKind::automation) {
    problem.why = "its XML has no version (" + told + ")";
    problem.advice = advice;
  } else if (failure.text == other_kind_text) {
    problem.why = "its XML is a definition of the other kind (" + told + ")";
    problem.advice = advice;
  } else if (failure.kind == FailureKind::library) {
    problem.why = "its XML cannot be read: " + told;
    problem.advice = advice;
  }
  return problem;
}

void require_known_version(int version, const std::string& what) {
  if (version <= OLEDBInfo::present_version) return;
  throw Problem{what,
                "the definition has version " + std::to_string(version) + ", and this program knows those up to " +
                    std::to_string(OLEDBInfo::present_version),
                "Saving it here would lose what is new in it: use the program that wrote it, or a newer spc."};
}

void require_readable(const Definition& definition) {
  if (find_invalid_utf8(base_of(definition).connection_string.view()))
    throw std::runtime_error("What comes out is no text.");
}

void require_free_name(const std::vector<SourceRow>& rows, const Definition& definition, const std::string& what) {
  const auto& base = base_of(definition);
  const std::string name = text_of(fix_spc_name(base.name, false));
  const auto taken = std::ranges::find_if(
      rows, [&](const SourceRow& row) { return !row.removed && row.id != base.id && row.name == name; });
  if (taken == rows.end()) return;
  throw Problem{what, described(*taken) + " has this name already",
                "Names tell data sources apart for people: give this one another."};
}

Definition read_definition(Link& link, const SourceRow& row, int max_size, const std::string& what) {
  if (row.kind != OLEDBInfo::kind && row.kind != ADONETDBInfo::kind)
    throw Problem{what, "its row says that it is of the kind " + std::to_string(row.kind),
                  "FLG1 of CSEXDB is 0 for OLE DB and 1 for ADO.NET."};
  auto outcome = guarded([&] {
    Definition definition = row.kind == ADONETDBInfo::kind ? retrieved<ADONETDBInfo>(link, row.id, max_size)
                                                           : retrieved<OLEDBInfo>(link, row.id, max_size);
    require_readable(definition);
    return definition;
  });
  if (outcome) return std::move(outcome).value();
  throw definition_problem(what, outcome.failure(), row.id);
}

void store_new(Link& link, Definition& definition, int max_size, const std::string& what) {
  require_known_version(version_of(definition), what);
  doing(what, [&] {
    AutoODBCTransaction transaction(link.db(), true);
    base_of(definition).id = next_id(link);
    COleDateTime written;
    std::visit([&](auto& held) { held.create(&link.db(), max_size, held, written); }, definition);
    transaction.commit();
  });
}

void store(Link& link, Definition& definition, int max_size, const std::string& what) {
  require_known_version(version_of(definition), what);
  doing(what, [&] {
    AutoODBCTransaction transaction(link.db(), true);
    std::visit([&](auto& held) { held.save(&link.db(), max_size); }, definition);
    transaction.commit();
  });
}

void apply(const SourceFields& fields, Definition& definition, const std::string& what) {
  if (fields.name && trimmed(*fields.name).empty())
    throw Problem{what, "the name is empty", "A data source is found by its name: give one.", exit_misuse};
  std::visit(
      [&](auto& held) {
        set(held.name, fields.name);
        set(held.description, fields.description);
        set(held.type, fields.type);
        if (fields.flag) held.flag2 = *fields.flag;
        if (fields.quote) apply_quote(*fields.quote, held, what);
        apply_own(fields, held, what);
        apply_syntax(fields, held.syntax_info);
      },
      definition);
}

}  // namespace spc
