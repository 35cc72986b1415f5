#include "spcbase/tree/access.h"

#include <algorithm>
#include <memory>

#include "spcbase/foundation/internal/raise.h"

namespace {

void replace(ACLDef*& list, const ACLDef* source) {
  auto copy = source ? std::make_unique<ACLDef>(*source) : nullptr;
  delete list;
  list = copy.release();
}

}  // namespace

const ACLItem* ACLDef::find(int id, bool kind) const {
  const auto found =
      std::find_if(items.begin(), items.end(), [&](const ACLItem& item) { return item.id == id && item.kind == kind; });
  return found == items.end() ? nullptr : &*found;
}

void ACLDef::add(int id, bool kind, bool right) {
  if (find(id, kind)) throw_db_exception_by_id(msg::duplicate_access_item);
  items.push_back({id, kind, right});
}

ACLMngr::~ACLMngr() {
  delete current;
  delete saved;
}

void ACLMngr::copy_object(const ACLMngr& other) {
  if (this == &other) return;
  replace(current, other.current);
  replace(saved, other.saved);
}

void ACLMngr::read_list(void* /*context*/) {}
void ACLMngr::write_list(void* /*context*/) {}

void ACLMngr::log(void* context) {
  if (!current || !saved) throw_invalid_argument();
  const int object = get_object_id();
  CString object_name;
  get_object_name(object_name);
  CString name;
  for (const ACLItem& was : saved->items) {
    const ACLItem* is = current->find(was.id, was.kind);
    if (!is)
      log_item_removed(context, object, object_name, was.id, was.kind, get_item_name(name, was.id, was.kind));
    else if (is->right != was.right)
      log_item_changed(context, object, object_name, is->id, is->kind, get_item_name(name, is->id, is->kind),
                       is->right);
  }
  for (const ACLItem& is : current->items)
    if (!saved->find(is.id, is.kind))
      log_item_added(context, object, object_name, is.id, is.kind, get_item_name(name, is.id, is.kind), is.right);
}
