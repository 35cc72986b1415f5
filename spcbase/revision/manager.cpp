#include "spcbase/revision/manager.h"

#include <algorithm>

#include "spcbase/revision/internal/rows.h"

namespace rev {

int LatestRevisionCacheHelper::find(int object_id) {
  if (!entries) return no_revision;
  const auto found = entries->find(object_id);
  if (found == entries->end()) return no_revision;
  if (!is_expired(minutes, found->second.stored_at)) return found->second.revision;
  entries->erase(found);
  return no_revision;
}

void LatestRevisionCacheHelper::set_latest(int object_id, int revision) {
  if (!entries) entries = std::make_shared<std::map<int, Data>>();
  (*entries)[object_id] = {revision, present_utc()};
}

void LatestRevisionCacheHelper::drop_latest(int object_id) {
  if (entries) entries->erase(object_id);
}

std::shared_ptr<RevisionInfo> RevisionManager::cache_find(int object_id, int revision) {
  if (!revisions_) revisions_ = std::make_shared<std::map<int, Records>>();
  const auto object = revisions_->find(object_id);
  if (object == revisions_->end()) return nullptr;
  Records& records = object->second;
  const auto found = std::ranges::find(records, revision, [](const auto& record) { return record->revision; });
  if (found == records.end()) return nullptr;
  if (!is_expired(cache_minutes_, (*found)->cached_at)) return *found;
  records.erase(found);
  return nullptr;
}

void RevisionManager::cache_add(int object_id, std::shared_ptr<RevisionInfo> record) {
  if (!revisions_) revisions_ = std::make_shared<std::map<int, Records>>();
  (*revisions_)[object_id].push_back(std::move(record));
}

void RevisionManager::cache_drop(int object_id, int revision) {
  if (!revisions_) return;
  const auto object = revisions_->find(object_id);
  if (object == revisions_->end()) return;
  Records& records = object->second;
  const auto found = std::ranges::find(records, revision, [](const auto& record) { return record->revision; });
  if (found != records.end()) records.erase(found);
}

int RevisionManager::add_new_revision(CDatabase* database, int maximum_blob_size, int object_id,
                                      const CLongBinary& payload, int user_id, const char* user, const char* reason,
                                      bool major) {
  const Creation creation{payload, user_id, user, reason};
  constexpr int attempts = 5;
  RevisionNumber number{};
  COleDateTime created;
  for (int attempt = 1;; ++attempt) {
    number = next_revision(database, object_id, objtype_, major);
    try {
      created = write_new_revision(database, maximum_blob_size, object_id, objtype_, number, creation);
      break;
    } catch (CDBException* refused) {
      if (attempt == attempts) throw;
      refused->Delete();
    }
  }
  if (caching()) {
    // Kept: id, version and flag of the cached record stay 0.
    auto record = std::make_shared<RevisionInfo>();
    record->revision = number.revision;
    copy_blob(record->data.long_bin, payload);
    record->ctime = created;
    record->cuserid = user_id;
    record->cuser = user;
    record->creason = reason;
    cache_add(object_id, std::move(record));
    latest_.set_latest(object_id, number.revision);
  }
  return number.revision;
}

}  // namespace rev
