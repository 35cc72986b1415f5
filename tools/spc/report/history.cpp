#include "tools/spc/report/history.h"

#include <algorithm>

#include "spcbase/revision/manager.h"
#include "tools/spc/moments.h"
#include "tools/spc/problem.h"

namespace spc::report_page {
namespace {

std::string time_text(const COleDateTime& moment) {
  return moment.GetStatus() == COleDateTime::valid ? moment_text(moment.m_dt) : std::string("at an unknown time");
}

/// The number of a revision in a ring; one that is approved has a second ring and a tick.
void draw_mark(Markup& page, const rev::RevisionBaseInfo& revision) {
  const bool approved = revision.approval != nullptr;
  page.open("svg", {{"class", approved ? "mark approved" : "mark"},
                    {"viewBox", "0 0 44 44"},
                    {"role", "img"},
                    {"aria-label",
                     "Revision " + std::to_string(revision.revision) + (approved ? ", approved" : ", not approved")}});
  page.empty("circle", {{"class", "ring"}, {"cx", 20}, {"cy", 22}, {"r", 15}});
  if (approved) page.empty("circle", {{"class", "ring outer"}, {"cx", 20}, {"cy", 22}, {"r", 18.5}});
  page.element("text", {{"x", 20}, {"y", 27}, {"text-anchor", "middle"}}, std::to_string(revision.revision));
  if (approved) {
    page.empty("circle", {{"class", "badge"}, {"cx", 34}, {"cy", 9}, {"r", 8}});
    page.empty("path", {{"class", "tick-mark"}, {"d", "M30 9L33 12.5L38 5.5"}});
  }
  page.close();
}

void write_line(Markup& page, const char* style, const char* word, const std::string& when, const CString& who,
                const CString& reason, const std::string& more) {
  page.open("p", {{"class", style}});
  page.element("strong", {}, word).text(" by ").name(who.view());
  page.text(more + ", ").element("span", {{"class", "when"}}, when).close();
  if (!reason.IsEmpty()) page.open("p", {{"class", "reason"}}).name(reason.view()).close();
}

void write_revision(Markup& page, const rev::RevisionBaseInfo& revision) {
  page.open("li");
  draw_mark(page, revision);
  page.open("div");
  page.element("h3", {}, "Version " + version_text(revision));
  write_line(page, "saved", "Saved", time_text(revision.ctime), revision.cuser, revision.creason, "");
  if (const auto& approval = revision.approval)
    write_line(page, "approval", "Approved", time_text(approval->atime), approval->auser, approval->areason,
               ", level " + std::to_string(approval->alevel));
  page.close().close();
}

}  // namespace

History read_history(Link& link, const ReportedObject& object) {
  return doing("cannot read the history of " + described(object.object), [&] {
    History history{object, {}};
    // Nothing is kept, so that all that is shown comes from the database.
    const rev::RevisionManager manager(object.object.type, -1);
    manager.get_all_revision(&link.db(), object.object.id, history.revisions);
    std::ranges::reverse(history.revisions);
    return history;
  });
}

void write_history(Markup& page, const History& history) {
  page.open("p")
      .text("How ")
      .name(history.of.name)
      .text(" came to be, the first revision first. A second ring and a tick ");
  page.text("mark what is approved.").close();
  if (history.revisions.empty()) {
    page.element("p", {{"class", "quiet"}}, "There is no revision.");
    return;
  }
  page.open("ol", {{"class", "timeline"}});
  for (const auto& revision : history.revisions)
    write_revision(page, revision);
  page.close();
}

}  // namespace spc::report_page
