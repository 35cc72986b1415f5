// Reading a revision with its payload, and the list of all.
#include <algorithm>

#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/internal/blob_retry.h"
#include "spcbase/foundation/internal/hand_over.h"
#include "spcbase/foundation/internal/opening.h"
#include "spcbase/revision/internal/rows.h"
#include "spcbase/revision/manager.h"

namespace rev {
namespace {

std::shared_ptr<RevisionInfo> read_once(CDatabase* database, int buffer_size, const RevisionKey& key) {
  RSFullRevisionInfo rows(database, buffer_size);
  rows.m_strFilter = key.revision == 0 ? filter_for_highest(key.object_type, key.object_id) : filter_for(key);
  if (!open_for_read(rows)) throw_can_not_open_rs_exception();
  if (rows.IsEOF()) return nullptr;
  auto record = std::make_shared<RevisionInfo>();
  take_row(rows, LocalMomentReader(), *record);
  hand_blob_over(rows, rows, record->data.long_bin);
  rows.Close();
  return record;
}

}  // namespace

std::shared_ptr<RevisionInfo> read_revision(CDatabase* database, int maximum_blob_size, const RevisionKey& key) {
  return run_with_blob_retry<std::shared_ptr<RevisionInfo>>(
      maximum_blob_size, [&](int buffer_size) { return read_once(database, buffer_size, key); });
}

std::shared_ptr<RevisionInfo> RevisionManager::get_revision_info(CDatabase* database, int maximum_blob_size,
                                                                 int object_id, int revision) {
  std::shared_ptr<RevisionInfo> record;
  if (caching()) {
    const int wanted = revision == 0 ? latest_.find(object_id) : revision;
    if (wanted != no_revision) record = cache_find(object_id, wanted);
  }
  if (!record) record = read_revision(database, maximum_blob_size, {objtype_, object_id, revision});
  if (!record) return nullptr;
  if (caching()) {
    // Kept: this also runs on a hit, which puts the same record in once more and makes the number young again.
    cache_add(object_id, record);
    if (revision == 0) latest_.set_latest(object_id, record->revision);
  }
  return record;
}

int RevisionManager::get_all_revision(CDatabase* database, int object_id,
                                      std::vector<RevisionBaseInfo>& revisions) const {
  if (caching()) latest_.drop_latest(object_id);
  RSOBJREV rows(database);
  rows.m_strFilter.Format("OBJID = %d AND OBJTYPE = %d", object_id, objtype_);
  if (!open_for_read(rows)) throw_can_not_open_rs_exception();
  const LocalMomentReader moments;
  int highest = 0;
  for (; !rows.IsEOF(); rows.MoveNext()) {
    take_row(rows, moments, revisions.emplace_back());
    highest = std::max(highest, revisions.back().revision);
  }
  rows.Close();
  std::ranges::sort(revisions, std::ranges::greater(), &RevisionBaseInfo::revision);
  if (caching() && highest > 0) latest_.set_latest(object_id, highest);
  return 0;
}

}  // namespace rev
