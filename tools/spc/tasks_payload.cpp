#include "tools/spc/bytes.h"
#include "tools/spc/json.h"
#include "tools/spc/payload_kinds.h"
#include "tools/spc/problem.h"
#include "tools/spc/tasks.h"

namespace spc {
namespace {

/// "the payload of monitor 3", "the extra payload of monitor 3".
std::string described(const PayloadKind& kind, int id) {
  const bool extra = std::string(kind.name) != kind.object;
  return std::string(extra ? "the extra payload of " : "the payload of ") + kind.object + " " + std::to_string(id);
}

/// On the command's link, and why it is absent when it is.
std::string read_payload(Link& link, const PayloadKind& kind, const PayloadRequest& request, const std::string& what) {
  std::string bytes = doing(what, [&] { return kind.read(link.db(), request.max_size, request.id); });
  if (!bytes.empty()) return bytes;
  const std::string object = std::string(kind.object) + " " + std::to_string(request.id);
  if (!doing(what, [&] { return object_exists(link.db(), kind, request.id); }))
    throw Problem{
        what, "there is no " + object,
        "See that the number is right: it is " + std::string(kind.id_column) + " of the table " + kind.table + "."};
  throw Problem{what, object + " has none", "spc payload put stores one."};
}

/// In a transaction, so that a payload is there as it was or as it is to be.
void write_payload(Link& link, const PayloadKind& kind, const PayloadRequest& request, const std::string& bytes) {
  AutoODBCTransaction transaction(link.db(), true);
  kind.write(link.db(), request.max_size, request.id, bytes);
  transaction.commit();
}

void tell(const Terminal& terminal, const PayloadKind& kind, const PayloadRequest& request, const std::string& did,
          std::size_t bytes) {
  if (!terminal.json) {
    terminal.out << did << " " << described(kind, request.id) << ": " << counted(bytes, "byte") << '\n';
    return;
  }
  JsonWriter json(terminal.out);
  json.begin_object();
  json.key("kind").value(kind.name);
  json.key("id").value(request.id);
  json.key("bytes").value(bytes);
  json.end_object();
}

}  // namespace

int get_payload(const Place& place, const PayloadRequest& request, const Terminal& terminal) {
  const PayloadKind& kind = find_payload_kind(request.kind);
  Link link(connect_text_of(place, false), trace_of(terminal));
  const std::string bytes = read_payload(link, kind, request, "cannot get " + described(kind, request.id));
  if (!request.file.empty()) {
    write_new_file(request.file, bytes);
    tell(terminal, kind, request, "Wrote", bytes.size());
  } else if (terminal.json) {
    JsonWriter json(terminal.out);
    json.begin_object();
    json.key("kind").value(kind.name);
    json.key("id").value(request.id);
    write_bytes(json, bytes);
    json.end_object();
  } else {
    terminal.out << bytes;
  }
  return exit_done;
}

int put_payload(const Place& place, const PayloadRequest& request, const Terminal& terminal) {
  const PayloadKind& kind = find_payload_kind(request.kind);
  const std::string bytes = read_payload_file(request.file);
  Link link(connect_text_of(place, false), terminal);
  const std::string what = "cannot put " + described(kind, request.id);
  // The table of payloads knows no objects: it would keep a payload that belongs to nothing.
  if (!doing(what, [&] { return object_exists(link.db(), kind, request.id); }))
    throw Problem{
        what, "there is no " + std::string(kind.object) + " " + std::to_string(request.id),
        "See that the number is right: it is " + std::string(kind.id_column) + " of the table " + kind.table + "."};
  doing(what, [&] { write_payload(link, kind, request, bytes); });
  tell(terminal, kind, request, "Stored", bytes.size());
  return exit_done;
}

int delete_payload(const Place& place, const PayloadRequest& request, const Terminal& terminal) {
  const PayloadKind& kind = find_payload_kind(request.kind);
  Link link(connect_text_of(place, false), terminal);
  const std::string what = "cannot delete " + described(kind, request.id);
  const std::size_t bytes = read_payload(link, kind, request, what).size();
  doing(what, [&] { write_payload(link, kind, request, {}); });
  tell(terminal, kind, request, "Deleted", bytes);
  return exit_done;
}

}  // namespace spc
