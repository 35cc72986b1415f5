#include "tools/spc/demo_database.h"

#include <cstdlib>
#include <filesystem>

#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/schema.h"
#include "spcbase/platform/database/connect_text.h"
#include "tools/spc/problem.h"
#include "tools/spc/schema_work.h"

namespace spc {
namespace {

namespace fs = std::filesystem;

constexpr long demo_samples = 140;
constexpr const char* mark_filter = "[QUAL]='SPC' AND [SECT]='DEMO' AND [KYWORD]='PLANT'";
const std::string cannot_run = "cannot run the demo";

std::string make_temporary_folder() {
  std::string name = (fs::temp_directory_path() / "spc-demo-XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr)
    throw Problem{cannot_run, "no folder can be made in " + fs::temp_directory_path().string(),
                  "Make room there, or name another folder by TMPDIR."};
  return name;
}

bool is_marked(Link& link) {
  RSINI mark(&link.db(), false);
  mark.m_strFilter = mark_filter;
  return mark.Open(CRecordset::forwardOnly, nullptr, CRecordset::readOnly) && !mark.m_bEOF;
}

long sample_count(Link& link) {
  RSCount count(&link.db(), "CSSAMP", nullptr);
  if (!count.Open(CRecordset::forwardOnly, nullptr, CRecordset::readOnly)) throw_can_not_open_rs_exception();
  return count.m_bEOF ? 0 : count.result;
}

}  // namespace

DemoDatabase::DemoDatabase(const DemoRequest& request, bool dry_run) {
  if (!request.place.dsn.empty() || !request.place.connect.empty()) {
    connect_text_ = connect_text_of(request.place, true);
    next_ = request.place.dsn.empty()
                ? "--connect '" + spcdb::mask_password_in_connect_text(request.place.connect) + "'"
                : "--dsn " + request.place.dsn;
    return;
  }
  std::string file = request.keep;
  if (file.empty() && dry_run) {
    connect_text_ = "sqlite::memory:";
    return;
  }
  if (file.empty()) {
    folder_ = doing(cannot_run, make_temporary_folder);
    file = (fs::path(folder_) / "plant.db").string();
  } else {
    if (fs::exists(file))
      throw Problem{cannot_run, "the file " + file + " is there already", "Name a file that does not exist yet."};
    next_ = "--connect '" + sqlite_connect_text(file) + "'";
    file_ = file;
  }
  connect_text_ = sqlite_connect_text(file) + ";Create=1";
}

DemoDatabase::~DemoDatabase() {
  std::error_code ignored;
  if (!folder_.empty()) fs::remove_all(folder_, ignored);
  if (!given_up_ || file_.empty()) return;
  for (const char* beside : {"", "-journal", "-wal", "-shm"})
    fs::remove(file_ + beside, ignored);
}

std::string DemoDatabase::give_up(Link& link) {
  given_up_ = true;
  if (!folder_.empty()) return "the demo's database was temporary and is gone";
  if (!file_.empty()) return file_ + " was not finished and is removed";
  drop_schema(link);
  return "the demo was not finished, and its database is empty again";
}

std::string DemoDatabase::farewell() const {
  if (next_.empty()) return "The database was temporary and is gone; spc demo --keep FILE keeps one to look around in.";
  return "Look around: spc sample list " + next_;
}

void make_room_for_demo(Link& link) {
  const SchemaState state = inspect_schema(link);
  if (state.present.empty()) return;
  const bool holds_mark = std::find(state.present.begin(), state.present.end(), "CSINI") != state.present.end();
  const bool ours = holds_mark && doing(cannot_run, [&] { return is_marked(link); });
  if (!ours)
    throw Problem{cannot_run, "the database is in use: it holds " + state.present.front() + " and more of the schema",
                  "The demo wants an empty database, or one that it has filled before."};
  if (doing(cannot_run, [&] { return sample_count(link); }) > demo_samples)
    throw Problem{cannot_run, "the database of an earlier demo holds samples that are not the demo's",
                  "Name an empty database."};
  if (link.only_plans_schema()) link.before_schema_change(renewal_statements(link));
  drop_schema(link);
}

void mark_as_demo(Link& link) {
  doing(cannot_run, [&] {
    RSINI mark(&link.db(), false);
    if (!mark.Open(CRecordset::snapshot, nullptr, CRecordset::appendOnly)) throw_can_not_open_rs_exception();
    mark.AddNew();
    mark.qual = "SPC";
    mark.sect = "DEMO";
    mark.kyword = "PLANT";
    mark.seqno = 1;
    mark.optval = "1";
    mark.Update();
  });
}

}  // namespace spc
