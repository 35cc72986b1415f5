/// Paths: names of folders and objects in one text, and the way from them to ids and back.
///
/// Part of the object tree. Folders are the nodes of `CSNODE`; the root has id 0 and no row. A path parts its names by
/// slashes or by backslashes; a separator that belongs to a name stands doubled in it. "enterprise:/" may stand in
/// front, and a revision word behind the last name:
///
///     "enterprise:/plant/line 4/bore|approved"
///     "\plant\a\\b\bore|7"
///
///     CString folder, name;
///     int revision = 0;
///     if (analyse_path(path, folder, name, false, false, true, &revision))
///       int profile = get_prof_id_from_path(&db, folder + "/" + name);
///
/// The revision words, in any case of letters: "latest" (and none) is 0, the request for the latest revision;
/// "latestapproved" and "approved" are -100, the request for the latest approved one, which only the caller can answer;
/// digits are that revision.
///
/// The functions on texts never fail: they answer false, 0 or an empty text.
/// Null: a null text counts as empty.
#pragma once

#include <vector>

#include "spcbase/platform/database/database.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/text/cstring.h"

/// The revision that a path asks for with "approved".
inline constexpr int latest_approved_revision = -100;

/// Which separator a text uses: the first character if it is one, else the one that stands single more often, of equals
/// the one that comes first; `default_char`, cut to a char, when neither does.
SPCBASE_API char determine_sep_char(const CString& text, int default_char);

/// Cuts the revision word off a name, behind its last "|".
/// Kept: a word that is none stays in the name with its "|", and the revision is 0.
SPCBASE_API void extract_revision(const char* text, CString& name, int& revision);

/// Parts a path into folder and name at its last single separator. The folder of a name in the root is the separator.
/// `undouble_folder` and `undouble_name` make each doubled separator of that part a single one; `with_revision` cuts
/// the revision word off the name into `*revision`, which may be null. Returns false for an empty text and one without
/// a single separator; the arguments are untouched then.
SPCBASE_API bool analyse_path(const char* path, CString& folder, CString& name, bool undouble_folder,
                              bool undouble_name, bool with_revision, int* revision);

/// Replaces `names` by the names of a path, doubled separators made single. Empty names do not exist. Returns their
/// number.
/// Kept: a tab in a name becomes a separator.
SPCBASE_API int split_path(const char* path, std::vector<CString>& names);

/// Parts a name at its last "."; the extension comes without it. Returns whether a name is left.
SPCBASE_API bool split_name_and_ext(const CString& text, CString& name, CString& extension);

/// Appends the paths of a list, which are parted by ":". Empty ones do not exist. Returns how many were appended.
SPCBASE_API int extract_paths(const char* text, std::vector<CString>& paths);

/// The path of a folder, "/a/b" or with `forward_slashes` false "\a\b"; that of the root is the separator alone.
/// Separators within names are doubled, and what `fix_spc_name` takes out of a name is left out. Hidden folders are
/// named too.
/// Returns an empty text when a folder on the way has no row, when the way leads in a circle, or when the recordset
/// does not open.
/// Fails: CDBException* for a database error.
SPCBASE_API CString get_node_path(CDatabase* database, int node, bool forward_slashes);

/// The id of the monitor, or of the profile, at a path of at least one folder and its own name; 0 when there is none.
/// Each name is looked for as it stands, by the database's own comparison; only when that finds nothing, without regard
/// to case, to white space at the ends and to what `fix_spc_name` takes out. Hidden folders take no part.
/// Kept:  a revision word counts as part of the name; `analyse_path` takes it off.
/// Fails: `DBException` "Can not open recordset." when the objects of the folder cannot be opened; CDBException* for a
///        database error.
SPCBASE_API int get_mon_id_from_path(CDatabase* database, const char* path);
SPCBASE_API int get_prof_id_from_path(CDatabase* database, const char* path);
