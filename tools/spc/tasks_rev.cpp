#include <chrono>
#include <thread>

#include "spcbase/foundation/blob.h"
#include "spcbase/foundation/failure.h"
#include "spcbase/revision/manager.h"
#include "tools/spc/bytes.h"
#include "tools/spc/interruption.h"
#include "tools/spc/json.h"
#include "tools/spc/problem.h"
#include "tools/spc/revisions.h"
#include "tools/spc/tasks.h"

namespace spc {
namespace {

using Record = std::shared_ptr<rev::RevisionInfo>;

constexpr int most_attempts = 5;
constexpr std::chrono::milliseconds pause_before_retry{20};

VersionedObject object_of(const RevisionRequest& request) { return {request.type, request.id}; }

/// Nothing is kept: the command wants what stands in the database.
rev::RevisionManager manager_for(const RevisionRequest& request) { return rev::RevisionManager(request.type, -1); }

Record read_record(Link& link, const RevisionRequest& request, int revision, const std::string& what) {
  auto record = doing(
      what, [&] { return manager_for(request).get_revision_info(&link.db(), request.max_size, request.id, revision); });
  if (record) return record;
  const std::string object = described(object_of(request));
  throw Problem{what, object + " has " + (revision == 0 ? "no revisions" : "no revision " + std::to_string(revision)),
                revision == 0 ? "See that type and number are right; spc rev add saves a first revision."
                              : "spc rev list shows the revisions that there are."};
}

/// The revision is there whole or not at all.
int add_once(Link& link, const RevisionRequest& request, const CLongBinary& payload) {
  AutoODBCTransaction transaction(link.db(), true);
  const int revision =
      manager_for(request).add_new_revision(&link.db(), request.max_size, request.id, payload, request.user_id,
                                            request.user.c_str(), request.reason.c_str(), request.major);
  transaction.commit();
  return revision;
}

/// A transaction sees the revisions as they were when it began, so one that lost the number to another writer is begun
/// anew.
int add(Link& link, const RevisionRequest& request, const CLongBinary& payload, const std::string& what) {
  for (int attempt = 1;; ++attempt) {
    const auto outcome = guarded([&] { return add_once(link, request, payload); });
    if (outcome) return outcome.value();
    const Failure& failure = outcome.failure();
    const bool lost_a_race = failure.may_retry() || failure.failure_class == FailureClass::duplicate_key;
    if (!lost_a_race || attempt == most_attempts) throw problem_of(what, failure);
    std::this_thread::sleep_for(pause_before_retry * attempt);
  }
}

const char* advice_for_reason(int reason) {
  switch (reason) {
    case 1:
      return "Only the latest revision can be approved: spc rev list shows which that is.";
    case 2:
      return "An approval is for good: to approve another state, save it first (spc rev add).";
    case 3:
      return "Its payload is missing: save the object once more (spc rev add), and approve that revision.";
    case 4:
      return "The server did not number the new row of CSOBJREV: compare the database with the schema (spc db check).";
    default:
      return "spc rev add saves a first revision.";
  }
}

int approve(Link& link, const RevisionRequest& request, const std::string& what) {
  std::optional<int> reason;
  const auto outcome = guarded([&] {
    try {
      AutoODBCTransaction transaction(link.db(), true);
      const auto approved = manager_for(request).approve(&link.db(), request.max_size, request.id, request.revision,
                                                         request.level, request.approval_type, request.user_id,
                                                         request.user.c_str(), request.reason.c_str(), request.major);
      transaction.commit();
      return approved;
    } catch (const rev::RevisionException& e) {
      reason = e.reason;
      throw;
    }
  });
  if (outcome) {
    const auto& [approved, number] = outcome.value();
    if (approved) return number;
    throw Problem{what, "the revision has gone meanwhile", "spc rev list shows the revisions that there are."};
  }
  Problem problem = problem_of(what, outcome.failure());
  if (reason) problem.advice = advice_for_reason(*reason);
  if (outcome.failure().failure_class == FailureClass::duplicate_key)
    problem.advice = "Someone else saved or approved the object at the same time: look at it (spc rev list) first.";
  throw problem;
}

void write_head(JsonWriter& json, const RevisionRequest& request) {
  json.key("type").value(request.type);
  json.key("id").value(request.id);
}

/// For machines the whole revision, for people a line.
void tell(const Terminal& terminal, const RevisionRequest& request, const rev::RevisionInfo& record,
          const std::string& did) {
  if (!terminal.json) {
    terminal.out << did << " revision " << record.revision << " of " << described(object_of(request)) << ": version "
                 << version_text(record) << ", " << counted(record.data.long_bin.m_dwDataLength, "byte") << '\n';
    return;
  }
  JsonWriter json(terminal.out);
  json.begin_object();
  write_head(json, request);
  write_revision(json, record);
  json.key("bytes");
  if (record.data.is_null())
    json.null();
  else
    json.value(static_cast<std::size_t>(record.data.long_bin.m_dwDataLength));
  json.end_object();
}

void write_payload(const Terminal& terminal, const RevisionRequest& request, const rev::RevisionInfo& record,
                   const std::string& bytes) {
  JsonWriter json(terminal.out);
  json.begin_object();
  write_head(json, request);
  write_revision(json, record);
  write_bytes(json, bytes);
  json.end_object();
}

}  // namespace

int add_revision(const Place& place, const RevisionRequest& request, const Terminal& terminal) {
  const std::string bytes = read_payload_file(request.file);
  const std::string what = "cannot save a revision of " + described(object_of(request));
  Link link(connect_text_of(place, false), terminal);
  CLongBinary payload;
  doing(what, [&] { set_blob_data(payload, CString(bytes)); });
  const int revision = add(link, request, payload, what);
  const Undisturbed saved(link.db());
  tell(terminal, request, *read_record(link, request, revision, what), "Saved");
  return exit_done;
}

int list_revisions(const Place& place, const RevisionRequest& request, const Terminal& terminal) {
  const std::string what = "cannot list the revisions of " + described(object_of(request));
  Link link(connect_text_of(place, false), trace_of(terminal));
  std::vector<rev::RevisionBaseInfo> revisions;
  doing(what, [&] { manager_for(request).get_all_revision(&link.db(), request.id, revisions); });
  if (terminal.json) {
    JsonWriter json(terminal.out);
    write_history(json, revisions);
  } else if (revisions.empty()) {
    terminal.out << "There are no revisions of " << described(object_of(request)) << ".\n";
  } else {
    print_history(terminal.out, revisions, {});
  }
  return exit_done;
}

int show_revision(const Place& place, const RevisionRequest& request, const Terminal& terminal) {
  Link link(connect_text_of(place, false), trace_of(terminal));
  const Record record = read_record(link, request, request.revision, "cannot show the revision");
  if (terminal.json)
    tell(terminal, request, *record, {});
  else
    print_revision(terminal.out, object_of(request), *record);
  return exit_done;
}

int get_revision(const Place& place, const RevisionRequest& request, const Terminal& terminal) {
  const std::string what = "cannot get the payload";
  Link link(connect_text_of(place, false), trace_of(terminal));
  const Record record = read_record(link, request, request.revision, what);
  if (record->data.is_null())
    throw Problem{what, "revision " + std::to_string(record->revision) + " is broken: it has no payload",
                  "Another revision may have one: spc rev list shows them."};
  const std::string bytes(doing(what, [&] { return get_blob_data(record->data.long_bin); }).view());
  if (!request.file.empty()) {
    write_new_file(request.file, bytes);
    tell(terminal, request, *record, "Wrote");
  } else if (terminal.json) {
    write_payload(terminal, request, *record, bytes);
  } else {
    terminal.out << bytes;
  }
  return exit_done;
}

int approve_revision(const Place& place, const RevisionRequest& request, const Terminal& terminal) {
  const std::string what =
      "cannot approve revision " + std::to_string(request.revision) + " of " + described(object_of(request));
  Link link(connect_text_of(place, false), terminal);
  const int approved = approve(link, request, what);
  const Undisturbed saved(link.db());
  tell(terminal, request, *read_record(link, request, approved, what), "Approved");
  return exit_done;
}

}  // namespace spc
