#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <utility>

#include "spcbase/foundation/failure.h"
#include "spcbase/utility/xml.h"
#include "tools/spc/bytes.h"
#include "tools/spc/interruption.h"
#include "tools/spc/problem.h"
#include "tools/spc/source_definition.h"
#include "tools/spc/source_request.h"
#include "tools/spc/source_rows.h"
#include "tools/spc/words.h"

namespace spc {
namespace {

constexpr const char* root_name = "external_database";

/// What a file tells before its definition is read.
struct Head {
  std::string root;
  std::string version;
  std::optional<int> id;
  std::optional<int> kind;
  std::string connection;    ///< of the element "connection_string"
  std::string connection_2;  ///< of "connection_string_2", which is always deciphered
};

Head read_head(const std::string& xml) {
  const auto root = load_xml(_bstr_t(xml.c_str()))->GetdocumentElement();
  Head head;
  head.root = static_cast<const char*>(root->GetnodeName());
  const _variant_t version = root->getAttribute("version");
  if (version.vt == VT_BSTR) head.version = static_cast<const char*>(_bstr_t(version));
  const auto children = root->GetchildNodes();
  while (const auto child = children->nextNode()) {
    if (child->GetnodeType() != NODE_ELEMENT) break;
    const std::string name = static_cast<const char*>(child->GetnodeName());
    if (name != "id" && name != "flag1" && !name.starts_with("connection_string")) continue;
    const _bstr_t value = get_elem_value(child);
    const std::string text = value.length() == 0 ? "" : static_cast<const char*>(value);
    if (name == "id") head.id = std::atoi(text.c_str());
    if (name == "flag1") head.kind = std::atoi(text.c_str());
    if (name == "connection_string") head.connection = text;
    if (name == "connection_string_2") head.connection_2 = text;
  }
  return head;
}

Head read_head_of(const std::string& xml, const std::string& what) {
  auto outcome = guarded([&] { return read_head(xml); });
  if (outcome) return std::move(outcome).value();
  Problem problem = problem_of(what, outcome.failure());
  problem.advice = "Name a file that spc source export has written.";
  throw problem;
}

/// Whether a text is made of what enciphered texts are made of, and of nothing else.
bool looks_enciphered(const std::string& text) {
  return std::ranges::all_of(text, [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || std::isspace(static_cast<unsigned char>(c)) != 0 ||
           c == '+' || c == '/' || c == '=';
  });
}

void check_version(const Head& head, const std::string& what) {
  const int version = plain_number(head.version);
  if (version < 0)
    throw Problem{
        what, head.version.empty() ? "its root has no attribute version" : "its version is no number: " + head.version,
        "Export the definition again with spc source export."};
  if (version > OLEDBInfo::present_version)
    throw Problem{what,
                  "its version is " + head.version + ", and this program knows those up to " +
                      std::to_string(OLEDBInfo::present_version),
                  "Import it with a newer spc, or export it with the version that this one has."};
}

int kind_of_file(const Head& head, const SourceRequest& request, const std::string& what) {
  if (head.kind && *head.kind != OLEDBInfo::kind && *head.kind != ADONETDBInfo::kind)
    throw Problem{what, "its flag1 says that it is of the kind " + std::to_string(*head.kind),
                  "flag1 is 0 for OLE DB and 1 for ADO.NET."};
  if (request.kind.empty() && !head.kind)
    throw Problem{what, "it does not say of which kind it is", "Say --kind oledb or --kind adonet."};
  if (request.kind.empty()) return *head.kind;
  const int wanted = kind_of_word(request.kind);
  if (head.kind && *head.kind != wanted)
    throw Problem{what, "it is a definition of the other kind: " + kind_name(*head.kind),
                  "Leave --kind out, or name another file."};
  return wanted;
}

/// Whether what is to be deciphered is a text for people: one whose password was hidden.
bool is_hidden(const Head& head, int kind) {
  constexpr int last_without_cipher = 3;
  const bool deciphers_first = kind == ADONETDBInfo::kind || plain_number(head.version) > last_without_cipher;
  return !looks_enciphered(head.connection_2) || (deciphers_first && !looks_enciphered(head.connection));
}

Definition read_file_definition(const std::string& xml, const SourceRequest& request, const std::string& what) {
  const Head head = read_head_of(xml, what);
  if (head.root != root_name)
    throw Problem{what, "it is no definition of a data source: its root is " + head.root + ", not " + root_name,
                  "spc source export writes such files."};
  check_version(head, what);
  const int kind = kind_of_file(head, request, what);
  Definition definition = definition_of_kind(kind);
  if (request.file_id) base_of(definition).id = *request.file_id;
  if (is_hidden(head, kind))
    throw Problem{what, "its connection string is not enciphered, since it was exported with its password hidden",
                  "Export it again without --hide-password, or add the data source anew with spc source add."};
  const auto outcome = guarded([&] {
    std::visit([&](auto& held) { held.set_xml(CString(xml)); }, definition);
    require_readable(definition);
  });
  if (outcome) return definition;
  Problem problem = definition_problem(what, outcome.failure(), base_of(definition).id);
  problem.advice =
      head.id || request.file_id
          ? "Export it again; a connection string can be read under the id that it was written under alone."
          : "Say with --file-id under which id it was written: the file does not tell.";
  throw problem;
}

std::string xml_of(const Definition& definition, bool hide_password) {
  return text_of(std::visit([&](const auto& held) { return held.get_xml(true, hide_password); }, definition));
}

}  // namespace

int export_source(const Place& place, const SourceRequest& request, const Terminal& terminal) {
  const std::string what = "cannot export the data source " + request.which;
  Link link(connect_text_of(place, false), trace_of(terminal));
  const auto rows = read_source_rows(link, request.as_user, what);
  const SourceRow& row = find_source(rows, request.which, what);
  const Definition definition = read_definition(link, row, request.max_size, what);
  const std::string xml = doing(what, [&] { return xml_of(definition, request.hide_password); });
  write_private_file(request.file, xml);
  const std::string password = request.hide_password ? "hidden" : "enciphered";
  if (terminal.json) {
    JsonWriter json(terminal.out);
    json.begin_object();
    write_source_row(json, row);
    json.key("file").value(request.file);
    json.key("bytes").value(xml.size());
    json.key("password").value(password);
    json.end_object();
  } else {
    terminal.out << "Exported " << described(definition) << " to " << request.file << ": "
                 << counted(xml.size(), "byte")
                 << (request.hide_password ? ", the password hidden\n"
                                           : ", the connection string enciphered under its id\n");
  }
  return exit_done;
}

int import_source(const Place& place, const SourceRequest& request, const Terminal& terminal) {
  const std::string what = "cannot import " + request.file;
  Definition definition = read_file_definition(read_file(request.file), request, what);
  // Under this id it was enciphered; the row gets one of its own.
  const int old_id = std::exchange(base_of(definition).id, 0);
  apply(request.fields, definition, what);
  if (base_of(definition).name.IsEmpty()) throw Problem{what, "it has no name", "Give it one with --name."};
  Link link(connect_text_of(place, false), terminal);
  require_free_name(read_source_rows(link, 0, what), definition, what);
  store_new(link, definition, request.max_size, what);
  const Undisturbed saved(link.db());
  if (terminal.json) {
    const auto rows = read_source_rows(link, 0, what);
    JsonWriter json(terminal.out);
    json.begin_object();
    write_definition(json, definition, find_source(rows, std::to_string(base_of(definition).id), what));
    json.key("file").value(request.file);
    json.key("file_id").value(old_id);
    json.end_object();
  } else {
    terminal.out << "Imported " << request.file << " as " << described(definition);
    if (old_id != 0) terminal.out << "; the id that it had, " << old_id << ", is not kept";
    terminal.out << '\n';
  }
  return exit_done;
}

}  // namespace spc
