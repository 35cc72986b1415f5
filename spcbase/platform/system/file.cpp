#include "spcbase/platform/system/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <new>

#include "spcbase/platform/system/native_path.h"
#include "spcbase/platform/system/system_error.h"

namespace {

// A handle is the descriptor plus one, so that null is never a handle of a file.
HANDLE to_handle(int descriptor) { return reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(descriptor) + 1); }
int to_descriptor(HANDLE handle) {
  const auto number = reinterpret_cast<std::intptr_t>(handle);
  return number > 0 && number <= INT_MAX ? static_cast<int>(number - 1) : -1;
}

HANDLE refuse(DWORD error) {
  SetLastError(error);
  return INVALID_HANDLE_VALUE;
}

/// The system's flags for the wanted access and disposition, -1 for ones that mean nothing.
int flags_of(DWORD access, DWORD disposition) {
  const bool reads = (access & GENERIC_READ) != 0;
  const bool writes = (access & GENERIC_WRITE) != 0;
  const int flags = O_CLOEXEC | O_NOCTTY | (reads && writes ? O_RDWR : writes ? O_WRONLY : O_RDONLY);
  switch (disposition) {
    case CREATE_NEW:
      return flags | O_CREAT | O_EXCL;
    case CREATE_ALWAYS:
      return flags | O_CREAT | O_TRUNC;
    case OPEN_EXISTING:
      return flags;
    case OPEN_ALWAYS:
      return flags | O_CREAT;
    case TRUNCATE_EXISTING:
      return writes ? flags | O_TRUNC : -1;
    default:
      return -1;
  }
}

bool is_folder(int descriptor) {
  struct stat facts {};
  return ::fstat(descriptor, &facts) == 0 && S_ISDIR(facts.st_mode);
}

/// Repeats a call of the system that a signal has interrupted.
template <typename Call>
auto uninterrupted(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR)
    result = call();
  return result;
}

struct Sentence {
  const char* before;  ///< what stands in front of the file's name
  const char* after;
};

// In the order of the causes.
constexpr Sentence sentences[] = {
    {"No error occurred.", nullptr},
    {"An unknown error occurred while accessing ", "."},
    {"", " was not found."},
    {"", " contains an incorrect path."},
    {"Could not open ", " because there are too many open files."},
    {"Access to ", " was denied."},
    {"An incorrect file handle was associated with ", "."},
    {"Could not remove ", " because it is the current directory."},
    {"Could not create ", " because the directory is full."},
    {"Seek failed on ", "."},
    {"Encountered a hardware I/O error while accessing ", "."},
    {"Encountered a sharing violation while accessing ", "."},
    {"Encountered a locking violation while accessing ", "."},
    {"Disk full while accessing ", "."},
    {"Attempted to access ", " past its end."},
};

}  // namespace

HANDLE CreateFileA(const char* name, DWORD access, DWORD share, void* /*security*/, DWORD disposition,
                   DWORD /*attributes*/, HANDLE /*template_file*/) noexcept {
  const platform::NativePath path(name);
  if (!path.is_usable()) return refuse(path.error());
  const int flags = flags_of(access, disposition);
  if (flags < 0) return refuse(ERROR_INVALID_PARAMETER);
  const mode_t mode = disposition == CREATE_NEW && share == 0 ? 0600 : 0666;
  const int descriptor = uninterrupted([&] { return ::open(path.get(), flags, mode); });
  if (descriptor < 0) return refuse(platform::platform_error(errno, path));
  if (is_folder(descriptor)) {
    ::close(descriptor);
    return refuse(ERROR_ACCESS_DENIED);
  }
  return to_handle(descriptor);
}

BOOL CloseHandle(HANDLE handle) noexcept {
  // An interrupted close has released the descriptor here; a second one could hit somebody else's.
  if (::close(to_descriptor(handle)) == 0 || errno == EINTR) return TRUE;
  SetLastError(platform::platform_error(errno));
  return FALSE;
}

BOOL DeleteFileA(const char* name) noexcept {
  const platform::NativePath path(name);
  if (path.is_usable() && ::unlink(path.get()) == 0) return TRUE;
  SetLastError(path.is_usable() ? platform::platform_error(errno, path) : path.error());
  return FALSE;
}

CFileException::CFileException(int cause, LONG os_error, const char* file_name)
    : m_cause(cause), m_lOsError(os_error), m_strFileName(file_name ? file_name : "") {}

CFileException::~CFileException() = default;

BOOL CFileException::GetErrorMessage(char* buffer, UINT size, UINT* help_context) const {
  const bool is_known = m_cause >= none && m_cause <= endOfFile;
  const Sentence& sentence = sentences[is_known ? m_cause : genericException];
  std::string text = sentence.before;
  if (sentence.after) text += (m_strFileName.empty() ? "an unnamed file" : m_strFileName) + sentence.after;
  return write_message(text.c_str(), buffer, size, help_context);
}

int CFileException::OsErrorToException(LONG os_error) noexcept {
  switch (static_cast<DWORD>(os_error)) {
    case ERROR_SUCCESS:
      return none;
    case ERROR_FILE_NOT_FOUND:
      return fileNotFound;
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_FILENAME_EXCED_RANGE:
      return badPath;
    case ERROR_TOO_MANY_OPEN_FILES:
      return tooManyOpenFiles;
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
      return accessDenied;
    case ERROR_INVALID_HANDLE:
      return invalidFile;
    case ERROR_SHARING_VIOLATION:
      return sharingViolation;
    case ERROR_HANDLE_DISK_FULL:
    case ERROR_DISK_FULL:
      return diskFull;
    case ERROR_IO_DEVICE:
      return hardIO;
    default:
      return genericException;
  }
}

void CFileException::ThrowOsError(LONG os_error, const char* file_name) {
  AfxThrowFileException(OsErrorToException(os_error), os_error, file_name);
}

void AfxThrowFileException(int cause, LONG os_error, const char* file_name) {
  throw new CFileException(cause, os_error, file_name);
}

const HANDLE CFile::hFileNull = INVALID_HANDLE_VALUE;

CFile::CFile() noexcept : m_hFile(hFileNull) {}

CFile::CFile(const char* file_name, UINT open_flags) : m_hFile(hFileNull) {
  CFileException error(CFileException::none);
  if (!CFile::Open(file_name, open_flags, &error)) CFileException::ThrowOsError(error.m_lOsError, file_name);
}

CFile::~CFile() { CFile::Abort(); }

BOOL CFile::Open(const char* file_name, UINT open_flags, CFileException* error) {
  CFile::Abort();
  name_ = file_name ? file_name : "";
  const UINT mode = open_flags & (modeWrite | modeReadWrite);
  const DWORD access = (mode != modeWrite ? GENERIC_READ : 0) | (mode != modeRead ? GENERIC_WRITE : 0);
  const UINT sharing = open_flags & 0x70;
  const DWORD share = (sharing == shareDenyWrite || sharing == shareDenyNone ? FILE_SHARE_READ : 0) |
                      (sharing == shareDenyRead || sharing == shareDenyNone ? FILE_SHARE_WRITE : 0);
  const bool makes = (open_flags & modeCreate) != 0;
  const DWORD disposition = !makes ? OPEN_EXISTING : (open_flags & modeNoTruncate) != 0 ? OPEN_ALWAYS : CREATE_ALWAYS;
  m_hFile = CreateFileA(file_name, access, share, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (m_hFile != hFileNull) return TRUE;
  if (error) {
    error->m_lOsError = static_cast<LONG>(GetLastError());
    error->m_cause = CFileException::OsErrorToException(error->m_lOsError);
    error->m_strFileName = name_;
  }
  return FALSE;
}

void CFile::fail(int system_error) const {
  CFileException::ThrowOsError(static_cast<LONG>(platform::platform_error(system_error)), name_.c_str());
}

UINT CFile::Read(void* buffer, UINT count) {
  UINT done = 0;
  while (done < count) {
    const ssize_t piece =
        uninterrupted([&] { return ::read(to_descriptor(m_hFile), static_cast<char*>(buffer) + done, count - done); });
    if (piece < 0) fail(errno);
    if (piece == 0) break;
    done += static_cast<UINT>(piece);
  }
  return done;
}

void CFile::Write(const void* buffer, UINT count) {
  UINT done = 0;
  while (done < count) {
    const ssize_t piece = uninterrupted(
        [&] { return ::write(to_descriptor(m_hFile), static_cast<const char*>(buffer) + done, count - done); });
    if (piece < 0) fail(errno);
    if (piece == 0) fail(ENOSPC);
    done += static_cast<UINT>(piece);
  }
}

ULONGLONG CFile::GetLength() const {
  struct stat facts {};
  if (::fstat(to_descriptor(m_hFile), &facts) != 0) fail(errno);
  return static_cast<ULONGLONG>(facts.st_size);
}

void CFile::Close() {
  const HANDLE handle = m_hFile;
  m_hFile = hFileNull;
  if (handle != hFileNull && !CloseHandle(handle)) {
    CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), name_.c_str());
  }
}

void CFile::Abort() noexcept {
  if (m_hFile != hFileNull) CloseHandle(m_hFile);
  m_hFile = hFileNull;
}
