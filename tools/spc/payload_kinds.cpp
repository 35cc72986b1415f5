#include "tools/spc/payload_kinds.h"

#include <array>

#include "spcbase/foundation/blob.h"
#include "spcbase/foundation/payload.h"
#include "spcbase/foundation/recordset.h"
#include "tools/spc/problem.h"

namespace spc {
namespace {

template <auto get_data>
std::string read_binary(CDatabase& db, int max_size, int id) {
  CLongBinary data;
  get_data(&db, max_size, id, data);
  return std::string(get_blob_data(data).view());
}

template <auto set_data>
void write_binary(CDatabase& db, int max_size, int id, const std::string& bytes) {
  CLongBinary data;
  set_blob_data(data, CString(bytes));
  set_data(&db, max_size, id, data);
}

std::string read_extra(CDatabase& db, int max_size, int id) {
  return std::string(get_mon_extra_data(&db, max_size, id).view());
}

void write_extra(CDatabase& db, int max_size, int id, const std::string& bytes) {
  set_mon_extra_data(&db, max_size, id, CString(bytes));
}

constexpr std::array kinds = {
    PayloadKind{"monitor", "monitor", "CSMON", "MONID", read_binary<get_mon_data>, write_binary<set_mon_data>},
    PayloadKind{"profile", "profile", "CSPROF", "PROFID", read_binary<get_prof_data>, write_binary<set_prof_data>},
    PayloadKind{"monitor-extra", "monitor", "CSMON", "MONID", read_extra, write_extra},
};

}  // namespace

const PayloadKind& find_payload_kind(const std::string& name) {
  std::string known;
  for (const auto& kind : kinds) {
    if (name == kind.name) return kind;
    known += (known.empty() ? "" : ", ") + std::string(kind.name);
  }
  throw Problem{"cannot find payloads of the kind " + name, "there is no such kind", "The kinds are " + known + ".",
                exit_misuse};
}

bool object_exists(CDatabase& db, const PayloadKind& kind, int id) {
  RSCount count(&db, kind.table, nullptr);
  CString filter;
  filter.Format("[%s] = %d", kind.id_column, id);
  requery_rs_for_read(count, filter, true);
  return !count.IsEOF() && count.result > 0;
}

}  // namespace spc
