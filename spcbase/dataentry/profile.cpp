#include "spcbase/dataentry/profile.h"

#include <algorithm>

#include "spcbase/companion/internal/engine_calls.h"
#include "spcbase/dataentry/internal/grid_shape.h"
#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/internal/opening.h"
#include "spcbase/foundation/schema/data_entry.h"
#include "spcbase/platform/database/db_exception.h"

namespace oldde {
namespace {

/// What one walk over the elements finds.
struct Facts {
  CString all_chars;
  CString variable_chars;
  CString defect_chars;
  CString total_chars;
  CString label_ids;
  long size = 0;
  bool has_dynamic_size = false;

  bool usable() const {
    const bool labels_only = !label_ids.IsEmpty() && all_chars.IsEmpty();
    return size != 0 || labels_only || has_dynamic_size;
  }
};

void append_id(CString& list, long id) { list.AppendFormat(list.IsEmpty() ? "%ld" : ",%ld", id); }

bool is_total_characteristic(const CProfileInfo& element) { return is_attribute(element) && element.is_total; }

void add_size(const SPCLib::IQsmSPCPtr& engine, const CProfileInfo& element, Facts& facts) {
  // A total is one number for the whole sample, whatever the engine thinks of its size.
  const long size = is_total_characteristic(element) ? 1 : SPCLib::subgroup_size(engine, element.id);
  if (size == 0)
    facts.has_dynamic_size = true;
  else
    facts.size = std::max(facts.size, size);
}

void add_characteristic(const CProfileInfo& element, Facts& facts) {
  append_id(facts.all_chars, element.id);
  if (is_variable(element))
    append_id(facts.variable_chars, element.id);
  else if (is_total_characteristic(element))
    append_id(facts.total_chars, element.id);
  else if (is_attribute(element))
    append_id(facts.defect_chars, element.id);
}

Facts gather(const SPCLib::IQsmSPCPtr& engine, const CProfileInfoColl& elements) {
  Facts facts;
  for (const CProfileInfo& element : elements) {
    if (element.kind == kind_label) {
      append_id(facts.label_ids, element.id);
      continue;
    }
    add_size(engine, element, facts);
    add_characteristic(element, facts);
  }
  return facts;
}

/// Adds the name in the first row as an auto label. A database that refuses leaves the sample without it.
template <class Names>
void add_named_label(CProfileCache& cache, CDatabase& db, long label, const char* filter_format, int id) {
  try {
    Names names(&db);
    names.m_strFilter.Format(filter_format, static_cast<long>(id));
    if (!open_read_only(names) || names.m_bEOF) return;
    cache.AddAutoLabel(label, names.name.Trim());
  } catch (CDBException* e) {
    e->Delete();
  }
}

}  // namespace

long CProfileCache::load_from_db(const SPCLib::IQsmSPCPtr& engine, CDatabase& db, int station, int user, int profile) {
  // Kept: the auto labels of the earlier station and user stay.
  if (profile == profile_id && !has_dynamic_size) return 0;
  ClearProfileArray();
  if (!GetCharsAndLabelsArray(engine, db, profile, *this)) return result_code::open_failed;
  return build_extra_info(engine, db, station, user, profile);
}

long CProfileCache::build_extra_info(const SPCLib::IQsmSPCPtr& engine, CDatabase& db, int station, int user,
                                     int profile) {
  if (empty()) return result_code::bad_value;
  Facts facts = gather(engine, *this);
  if (!facts.usable()) return result_code::bad_value;
  profile_id = profile;
  all_chars = std::move(facts.all_chars);
  variable_chars = std::move(facts.variable_chars);
  defect_chars = std::move(facts.defect_chars);
  total_chars = std::move(facts.total_chars);
  label_ids = std::move(facts.label_ids);
  max_subgroup_size = static_cast<int>(facts.size);
  has_dynamic_size = facts.has_dynamic_size;

  if (const int label = GetLabelIDFromName(&db, "STATION"); label != 0)
    add_named_label<CRSStations>(*this, db, label, "STNID=%ld", station);
  if (const int label = GetLabelIDFromName(&db, "OPERATOR"); label != 0)
    add_named_label<CRSUsers>(*this, db, label, "USERID=%ld", user);
  return 0;
}

void CProfileCache::ClearProfileArray() {
  clear();
  profile_id = 0;
  for (CString* list : {&all_chars, &variable_chars, &defect_chars, &total_chars, &label_ids})
    list->Empty();
  max_subgroup_size = 0;
  has_dynamic_size = false;
  auto_labels.clear();
}

void CProfileCache::AddAutoLabel(long label, const CString& value) {
  if (value.IsEmpty()) return;
  const int id = static_cast<int>(label);
  const auto known =
      std::find_if(auto_labels.begin(), auto_labels.end(), [id](const auto& entry) { return entry.first == id; });
  if (known != auto_labels.end())
    known->second = value;
  else
    auto_labels.emplace_back(id, value);
}

long CProfileCache::SaveAutoLabels(long sample, const SPCLib::IQsmSPCPtr& engine) {
  if (sample == 0) return result_code::bad_value;
  for (const auto& [label, value] : auto_labels)
    SPCLib::set_label_value(engine, sample, label, value);
  return 0;
}

}  // namespace oldde
