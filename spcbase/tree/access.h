/// Access control lists: who may use an object, and what changed from one list to the next. The conditions that cut a
/// list of objects down to what one user may see come along (foundation/access_predicate.h).
///
/// Part of the object tree. Storing a list is for the module that owns the object; it derives from `ACLMngr`.
///
///     ACLDef list;
///     list.add(5, is_user, may_write);
#pragma once

#include <vector>

#include "spcbase/foundation/access_predicate.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/text/cstring.h"

/// One line of a list.
struct ACLItem {
  int id;      ///< of a user or a group
  bool kind;   ///< which of the two the id is; the library does not care which value is which
  bool right;  ///< what the line gives; no part of the key
};

/// A list, in the order of adding.
class SPCBASE_API ACLDef {
 public:
  /// The lines.
  std::vector<ACLItem> items;
  bool option = false;  ///< a value of the host's; the library only copies it

  /// Appends a line.
  /// Fails: `DBException` "Duplicate access control item." when id and kind stand in the list already, with whatever
  ///        right; the list stays as it was.
  void add(int id, bool kind, bool right);
  /// The line of an id and kind, null when there is none.
  const ACLItem* find(int id, bool kind) const;
};

/// Two states of one object's list, and the report of what differs between them. A module derives from it and supplies
/// the names and the log.
class SPCBASE_API ACLMngr {
 public:
  ACLMngr() = default;
  ACLMngr(const ACLMngr& other) { copy_object(other); }
  ACLMngr& operator=(const ACLMngr& other) {
    copy_object(other);
    return *this;
  }
  /// Deletes both lists.
  virtual ~ACLMngr();

  ACLDef* current = nullptr;  ///< the list as it is to be; owned
  ACLDef* saved = nullptr;    ///< the list as it was; owned

  /// Reports what differs, for the audit log: first what is gone or changed, in the order of `saved`, then what is new,
  /// in the order of `current`. `context` is passed on as it is.
  /// Fails: `DBException` "Invalid argument." unless both lists are there. What an operation throws passes, and the
  ///        rest is not reported.
  void log(void* context);

 protected:
  /// Copies both lists, each null where the other's is; what was held goes.
  void copy_object(const ACLMngr& other);

 private:
  /// The id of the object that the list guards, and its name for the log.
  virtual int get_object_id() = 0;
  virtual void get_object_name(CString& name) = 0;
  /// The name of a user or group, as the result and in `name`.
  virtual CString get_item_name(CString& name, int id, bool kind) = 0;
  /// For the modules: reads the saved list, and writes the current one. The library calls neither.
  virtual void read_list(void* context);
  virtual void write_list(void* context);
  /// A line that stands in `current` alone, in `saved` alone, or in both with different rights.
  virtual void log_item_added(void* context, int object_id, const CString& object_name, int id, bool kind,
                              const CString& item_name, bool right) = 0;
  virtual void log_item_removed(void* context, int object_id, const CString& object_name, int id, bool kind,
                                const CString& item_name) = 0;
  virtual void log_item_changed(void* context, int object_id, const CString& object_name, int id, bool kind,
                                const CString& item_name, bool right) = 0;
};
