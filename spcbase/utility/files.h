/// Paths as texts, names of files, whole-file reading and writing, and temporary names.
///
/// Part of the utilities. `\` and `/` both separate, in a text as in a call that touches a file; a separator that these
/// functions add is the system's own, `/`.
///
///     CString name("/data/line 4/run.csv");
///     RemoveFileNameAndExt(name);                         // "/data/line 4"
///     CString file = get_temp_file(name, "run");          // "/data/line 4/run-2f1c...-P4711.tmp", made and empty
///     TextToFile("1;2;3", file);
///
/// Paths are UTF-8. Case matters, and a path may be as long as the system lets it be. A path ends at its first zero
/// byte. Functions on texts alone look at no file and never fail.
#pragma once

#include "spcbase/platform/system/export.h"
#include "spcbase/platform/text/cstring.h"

// Parts of a path.

/// Cuts a path before its extension. What follows the last point is none when a separator or a space is in it.
/// Returns true; false is kept for a text whose buffer cannot be had.
SPCBASE_API bool RemoveExt(CString& path);

/// Leaves the folder of a path.
/// A path that ends in a separator loses that one and nothing else; a path without a folder stays as it is.
/// Kept:    the separator before the name stays when its index is 2 or less. So the root of a drive keeps it
///          ("C:\a.txt" gives "C:\", "/a.txt" gives "/"), and so does a short folder ("ab/c" gives "ab/").
/// Returns true.
SPCBASE_API bool RemoveFileNameAndExt(CString& path);

/// Leaves the name of a path. A path that ends in a separator becomes empty. Returns true.
SPCBASE_API bool PathToFileName(CString& path);

/// The extension without its point; empty when there is none.
SPCBASE_API CString GetExtFromFileOrPath(const CString& path);

// Names. The characters that no name of a file may have are \ / : * ? " < > |

/// Whether a text has none of the forbidden characters.
/// Null:    null and an empty text have none.
SPCBASE_API bool IsValidFileName(const char* name);

/// Whether a file is there, or could be made: a separator stands before its name, what is before that is a folder that
/// is there (or the root), and the name has no forbidden character. What is a folder is none.
/// Null:    false.
SPCBASE_API bool is_valid_full_normal_file(const char* path);

/// Puts an underscore in the place of each forbidden character.
/// In a full path, one that begins with a separator and has 2 characters or that begins with a letter, a colon and a
/// separator, only the last name is cleaned; one that ends in a separator stays as it is. Any other text is one name,
/// whose separators are replaced too.
SPCBASE_API void MakeValidFileName(CString& name);

/// Turns the path of something that is there into its short form. Names have only one form here, so every text stays.
SPCBASE_API void MakeShortPath(CString& path);

// Whole files.

/// Whether a file begins as rich text does, "{\rtf" in either case. False for a file that cannot be read.
SPCBASE_API bool IsRTFFile(const CString& path);

/// Adds all bytes of a file to a text, zeros too. What was in the text stays in front of them.
/// Fails:   `CFileException*` when the file cannot be opened or read; `CMemoryException*`, before memory is asked for,
///          when the text would be longer than 2 GB. The text is then as it was.
SPCBASE_API void FileToText(CString& text, const CString& path);

/// Makes a file, or empties the one there is, and writes the bytes of a text, with no zero after them.
/// Fails:   `CFileException*` when the file cannot be opened, and when there is no room; what fitted stays in it then.
SPCBASE_API void TextToFile(const CString& text, const CString& path);

// Temporary files.

/// The system's folder for temporary files, with a separator at its end. The environment is not asked for it.
/// Fails:   `DBException` "Cannot find temporary folder." with 0x80004005.
SPCBASE_API CString get_temp_path();

/// Makes an empty file whose name nobody else has, readable by its owner alone: prefix, new identifier and number of
/// the process, "spc-0d8a6f3e-...-P4711.tmp". It is never one that was there before. An empty folder is the
/// current one.
/// Null:    `folder` stands for `get_temp_path`, `prefix` for "spc".
/// Owns:    the caller takes the file away.
/// Kept:    a name of 260 bytes or more is not told: the file is made all the same, and the result is empty.
/// Fails:   `DBException` "Cannot create temporary file." with 0x80004005; see `get_temp_path` too.
SPCBASE_API CString get_temp_file(const char* folder, const char* prefix);

/// Builds a name that nobody else has, folder, prefix and a new identifier, "/tmp/spc0d8a6f3e-....TMP".
/// Kept:    no file is made, whatever the name says; and an empty folder gives a name in the root.
/// Null:    counts as an empty text.
/// Returns empty when no identifier could be made.
SPCBASE_API CString create_uuid_tmp_file(const char* folder, const char* prefix);

/// The folder for the user's own files: "Temp" in the folder for the data of programs, where that is there, else that
/// folder, which is made when it is missing. A user who can have none gets `get_temp_path`.
/// Fails:   as `get_temp_path`.
SPCBASE_API CString get_user_data_path();
