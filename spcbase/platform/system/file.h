/// Files: the handle calls, CFile, and the exception that it throws by pointer.
///
/// Part of the platform layer. Every name may be parted by `/` or `\`.
///
///     CFile file(name, CFile::modeRead | CFile::shareDenyWrite);
///     const UINT count = file.Read(buffer, sizeof buffer);
///
/// Differs: what a name is parted by aside, names follow this system: case matters, nothing but `/` and a zero is
/// forbidden, and a `\` cannot be part of a name. Sharing is not enforced against others. Files are binary, and no
/// handle passes to a program that is started. A folder cannot be opened: error 5, as on the original. An existing file
/// that is opened or replaced leaves no mark in the last error. Only the operations that are used here stand here.
#pragma once

#include <string>

#include "spcbase/platform/system/exceptions.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/system/object.h"
#include "spcbase/platform/system/types.h"

/// An open file.
using HANDLE = void*;

/// What `CreateFileA` gives when it fails; no other call gives or takes it.
inline const HANDLE INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(-1));

/// What is to be done with the file, and what others may do meanwhile.
inline constexpr DWORD GENERIC_READ = 0x80000000;
inline constexpr DWORD GENERIC_WRITE = 0x40000000;
inline constexpr DWORD FILE_SHARE_READ = 0x00000001;
inline constexpr DWORD FILE_SHARE_WRITE = 0x00000002;
inline constexpr DWORD CREATE_NEW = 1;         ///< makes the file; fails with error 80 when there is one
inline constexpr DWORD CREATE_ALWAYS = 2;      ///< makes the file, or empties the one there is
inline constexpr DWORD OPEN_EXISTING = 3;      ///< opens the file; fails with error 2 when there is none
inline constexpr DWORD OPEN_ALWAYS = 4;        ///< opens the file, or makes it
inline constexpr DWORD TRUNCATE_EXISTING = 5;  ///< opens and empties the file; asks for GENERIC_WRITE
/// Attributes; they are not looked at.
inline constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x00000010;
inline constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x00000080;

/// Opens or makes a file.
/// A new file (CREATE_NEW) that is shared with nobody (`share` 0) can be read and written by its owner alone; what else
/// is made has the access that the process gives to new files.
/// Null:   `security` and `template_file` are not looked at, nor are the attributes.
/// Owns:   the caller closes the handle with `CloseHandle`.
/// Returns the handle, or INVALID_HANDLE_VALUE with the last error: 2 no such file, 3 no such folder, 4 too many open
/// files, 5 no access or a folder, 19 a read-only place, 80 it exists, 87 unusable arguments, 112 no room, 206 a name
/// too long.
SPCBASE_API HANDLE CreateFileA(const char* name, DWORD access, DWORD share, void* security, DWORD disposition,
                               DWORD attributes, HANDLE template_file) noexcept;

/// Closes a handle. FALSE with last error 6 for what is none.
SPCBASE_API BOOL CloseHandle(HANDLE handle) noexcept;

/// Takes a file away. FALSE with the last error as for `CreateFileA`; a folder is error 5.
SPCBASE_API BOOL DeleteFileA(const char* name) noexcept;

/// What went wrong with a file. Thrown by pointer and released with `Delete`.
class SPCBASE_API CFileException : public CException {
 public:
  /// The causes, with the numbers that hosts know.
  enum : int {
    none = 0,
    genericException = 1,
    fileNotFound = 2,
    badPath = 3,
    tooManyOpenFiles = 4,
    accessDenied = 5,
    invalidFile = 6,
    removeCurrentDir = 7,
    directoryFull = 8,
    badSeek = 9,
    hardIO = 10,
    sharingViolation = 11,
    lockViolation = 12,
    diskFull = 13,
    endOfFile = 14
  };

  /// `os_error` is the system's error number, -1 for none; `file_name` may be null.
  explicit CFileException(int cause = none, LONG os_error = -1, const char* file_name = nullptr);
  ~CFileException() override;

  /// A sentence with the file's name ("Access to a.txt was denied."); as all texts of exceptions it is cut to the
  /// buffer.
  BOOL GetErrorMessage(char* buffer, UINT size, UINT* help_context = nullptr) const override;

  /// The cause that goes with a system error number; `genericException` for one that has none of its own.
  static int OsErrorToException(LONG os_error) noexcept;
  /// Throws the exception for a system error number.
  [[noreturn]] static void ThrowOsError(LONG os_error, const char* file_name = nullptr);

  int m_cause;      ///< what went wrong, one of the causes above
  LONG m_lOsError;  ///< the system error number, -1 when there is none
  /// The name as it was given to the call.
  /// Differs: not a CString, which stands a layer above.
  std::string m_strFileName;
};

/// Throws a new `CFileException*`.
[[noreturn]] SPCBASE_API void AfxThrowFileException(int cause, LONG os_error = -1, const char* file_name = nullptr);

/// An open file. It is closed when the object goes.
/// Fails:  every call that fails throws a `CFileException*`, but for `Open`, which tells by its result.
/// Threads: a file belongs to one thread at a time.
class SPCBASE_API CFile : public CObject {
 public:
  /// How a file is opened: one of the modes, with what else is wanted joined by a bitwise or.
  enum OpenFlags : UINT {
    modeRead = 0x0000,
    modeWrite = 0x0001,
    modeReadWrite = 0x0002,
    shareCompat = 0x0000,
    shareExclusive = 0x0010,
    shareDenyWrite = 0x0020,
    shareDenyRead = 0x0030,
    shareDenyNone = 0x0040,
    modeNoInherit = 0x0080,
    modeCreate = 0x1000,      ///< makes the file, or empties the one there is
    modeNoTruncate = 0x2000,  ///< with modeCreate: leaves the one there is as it is
    typeText = 0x4000,
    typeBinary = 0x8000
  };

  /// What `m_hFile` is while no file is open.
  static const HANDLE hFileNull;

  CFile() noexcept;
  /// Opens a file.
  /// Fails: `CFileException*`.
  CFile(const char* file_name, UINT open_flags);
  ~CFile() override;

  /// Opens a file; one that is open is closed first. FALSE when it cannot be, with the reason in `error` when that is
  /// given.
  virtual BOOL Open(const char* file_name, UINT open_flags, CFileException* error = nullptr);

  /// Reads from where the last call ended. Returns the bytes read: fewer than `count` only at the end of the file.
  virtual UINT Read(void* buffer, UINT count);
  /// Writes all of the bytes; no room for them is the cause `diskFull`, with what fitted written.
  virtual void Write(const void* buffer, UINT count);
  /// The size of the file in bytes as the system tells it: 0 for what has none, such as a device.
  virtual ULONGLONG GetLength() const;
  /// Closes the file. A failure that the system tells only now, such as a late write, is thrown, and the file is closed
  /// nevertheless. Nothing happens when no file is open.
  virtual void Close();
  /// Closes the file and passes over every failure.
  virtual void Abort() noexcept;

  /// The file; `INVALID_HANDLE_VALUE` when none is open.
  HANDLE m_hFile;

 private:
  [[noreturn]] void fail(int system_error) const;

  std::string name_;
};
