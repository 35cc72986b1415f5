#include "tools/spc/revisions.h"

#include "tools/spc/moments.h"
#include "tools/spc/table.h"
#include "tools/spc/terminal.h"
#include "tools/spc/utf8.h"

namespace spc {
namespace {

std::string text_of(const CString& text) { return std::string(text.view()); }

std::string time_text(const COleDateTime& moment) {
  return moment.GetStatus() == COleDateTime::valid ? moment_text(moment.m_dt) : std::string();
}

std::string person(const CString& name, int id) { return text_of(name) + " (" + std::to_string(id) + ")"; }

void write_approval(JsonWriter& json, const rev::RevisionApprovalInfo& approval) {
  json.begin_object();
  json.key("time").value(time_text(approval.atime));
  json.key("user").value(text_of(approval.auser));
  json.key("user_id").value(approval.auserid);
  json.key("level").value(approval.alevel);
  json.key("type").value(approval.atype);
  json.key("reason").value(text_of(approval.areason));
  json.end_object();
}

}  // namespace

std::string described(const VersionedObject& object) {
  return "object " + std::to_string(object.id) + " of type " + std::to_string(object.type);
}

std::string version_text(const rev::RevisionBaseInfo& revision) {
  return std::to_string(revision.majorver) + "." + std::to_string(revision.minorver);
}

void print_history(std::ostream& out, const std::vector<rev::RevisionBaseInfo>& revisions, const std::string& indent) {
  Table table(indent);
  table.add_column("revision", Align::right);
  table.add_column("version", Align::right);
  for (const char* heading : {"saved", "by", "reason", "approved", "by"})
    table.add_column(heading);
  table.add_column("level", Align::right);
  table.add_column("reason");
  for (const auto& revision : revisions) {
    std::vector<std::string> cells = {std::to_string(revision.revision), version_text(revision),
                                      time_text(revision.ctime), text_of(revision.cuser), text_of(revision.creason)};
    if (const auto& approval = revision.approval)
      cells.insert(cells.end(), {time_text(approval->atime), text_of(approval->auser), std::to_string(approval->alevel),
                                 text_of(approval->areason)});
    table.add_row(std::move(cells));
  }
  table.print(out);
}

void print_revision(std::ostream& out, const VersionedObject& object, const rev::RevisionInfo& revision) {
  out << "Revision " << revision.revision << " of " << described(object) << '\n'
      << "  version   " << version_text(revision) << '\n'
      << "  saved     " << time_text(revision.ctime) << " by " << on_one_line(person(revision.cuser, revision.cuserid))
      << '\n'
      << "  reason    " << on_one_line(revision.creason.view()) << '\n'
      << "  payload   "
      << (revision.data.is_null() ? "missing: the revision is broken"
                                  : counted(revision.data.long_bin.m_dwDataLength, "byte"))
      << '\n';
  const auto& approval = revision.approval;
  if (!approval) {
    out << "  approved  no\n";
    return;
  }
  out << "  approved  " << time_text(approval->atime) << " by "
      << on_one_line(person(approval->auser, approval->auserid)) << ", level " << approval->alevel << ", type "
      << approval->atype << '\n'
      << "            " << on_one_line(approval->areason.view()) << '\n';
}

void write_revision(JsonWriter& json, const rev::RevisionBaseInfo& revision) {
  json.key("revision").value(revision.revision);
  json.key("version").value(version_text(revision));
  json.key("row").value(revision.revid);
  json.key("flag").value(revision.flag);
  json.key("time").value(time_text(revision.ctime));
  json.key("user").value(text_of(revision.cuser));
  json.key("user_id").value(revision.cuserid);
  json.key("reason").value(text_of(revision.creason));
  json.key("approval");
  if (revision.approval)
    write_approval(json, *revision.approval);
  else
    json.null();
}

void write_history(JsonWriter& json, const std::vector<rev::RevisionBaseInfo>& revisions) {
  json.begin_array();
  for (const auto& revision : revisions) {
    json.begin_object();
    write_revision(json, revision);
    json.end_object();
  }
  json.end_array();
}

}  // namespace spc
