// Writing every stored definition in the present form.
#include "spcbase/datasource/stored.h"
#include "spcbase/platform/system/exceptions.h"

namespace {

/// False when either reading or saving failed.
template <class Definition>
bool rewrite(CDatabase* database, int maximum_blob_size, int id) {
  try {
    const std::shared_ptr<Definition> definition(Definition::retrieve(database, maximum_blob_size, id));
    definition->save(database, maximum_blob_size);
    return true;
  } catch (CException* failure) {
    failure->Delete();
  } catch (...) {
    // One definition that fails must not keep the others back, whatever it fails with.
  }
  return false;
}

template <class Definition>
void rewrite_all(CDatabase* database, int maximum_blob_size, int (*append_ids)(CDatabase*, std::vector<int>&),
                 int& found, int& saved) {
  found = 0;
  saved = 0;
  std::vector<int> ids;
  found = append_ids(database, ids);
  for (const int id : ids)
    if (rewrite<Definition>(database, maximum_blob_size, id)) ++saved;
}

}  // namespace

void read_and_save_all_ole_db(CDatabase* database, int maximum_blob_size, int& found, int& saved) {
  rewrite_all<OLEDBInfo>(database, maximum_blob_size, &get_all_ole_db_id, found, saved);
}

void read_and_save_all_adonet_db(CDatabase* database, int maximum_blob_size, int& found, int& saved) {
  rewrite_all<ADONETDBInfo>(database, maximum_blob_size, &get_all_adonet_db_id, found, saved);
}
