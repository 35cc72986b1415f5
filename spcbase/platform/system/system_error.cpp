#include "spcbase/platform/system/system_error.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace {

thread_local DWORD last_error = 0;

struct SystemText {
  std::uint32_t code;
  const char* text;
};

// Error numbers, then result codes, with their documented English texts; sorted by number for the search.
constexpr SystemText system_texts[] = {
    {0, "The operation completed successfully."},
    {1, "Incorrect function."},
    {2, "The system cannot find the file specified."},
    {3, "The system cannot find the path specified."},
    {4, "The system cannot open the file."},
    {5, "Access is denied."},
    {6, "The handle is invalid."},
    {7, "The storage control blocks were destroyed."},
    {8, "Not enough memory resources are available to process this command."},
    {9, "The storage control block address is invalid."},
    {10, "The environment is incorrect."},
    {11, "An attempt was made to load a program with an incorrect format."},
    {12, "The access code is invalid."},
    {13, "The data is invalid."},
    {14, "Not enough storage is available to complete this operation."},
    {15, "The system cannot find the drive specified."},
    {16, "The directory cannot be removed."},
    {17, "The system cannot move the file to a different disk drive."},
    {18, "There are no more files."},
    {19, "The media is write protected."},
    {20, "The system cannot find the device specified."},
    {21, "The device is not ready."},
    {22, "The device does not recognize the command."},
    {23, "Data error (cyclic redundancy check)."},
    {24, "The program issued a command but the command length is incorrect."},
    {25, "The drive cannot locate a specific area or track on the disk."},
    {26, "The specified disk or diskette cannot be accessed."},
    {27, "The drive cannot find the sector requested."},
    {28, "The printer is out of paper."},
    {29, "The system cannot write to the specified device."},
    {30, "The system cannot read from the specified device."},
    {31, "A device attached to the system is not functioning."},
    {32, "The process cannot access the file because it is being used by another process."},
    {33, "The process cannot access the file because another process has locked a portion of the file."},
    {36, "Too many files opened for sharing."},
    {38, "Reached the end of the file."},
    {39, "The disk is full."},
    {50, "The request is not supported."},
    {53, "The network path was not found."},
    {54, "The network is busy."},
    {55, "The specified network resource or device is no longer available."},
    {64, "The specified network name is no longer available."},
    {65, "Network access is denied."},
    {67, "The network name cannot be found."},
    {80, "The file exists."},
    {82, "The directory or file cannot be created."},
    {83, "Fail on INT 24."},
    {84, "Storage to process this request is not available."},
    {85, "The local device name is already in use."},
    {86, "The specified network password is not correct."},
    {87, "The parameter is incorrect."},
    {108, "The disk is in use or locked by another process."},
    {109, "The pipe has been ended."},
    {110, "The system cannot open the device or file specified."},
    {111, "The file name is too long."},
    {112, "There is not enough space on the disk."},
    {120, "This function is not supported on this system."},
    {121, "The semaphore timeout period has expired."},
    {122, "The data area passed to a system call is too small."},
    {123, "The filename, directory name, or volume label syntax is incorrect."},
    {124, "The system call level is not correct."},
    {126, "The specified module could not be found."},
    {127, "The specified procedure could not be found."},
    {128, "There are no child processes to wait for."},
    {131, "An attempt was made to move the file pointer before the beginning of the file."},
    {132, "The file pointer cannot be set on the specified device or file."},
    {144, "The directory is not a subdirectory of the root directory."},
    {145, "The directory is not empty."},
    {148, "The path specified cannot be used at this time."},
    {157, "The segment is already discarded and cannot be locked."},
    {158, "The segment is already unlocked."},
    {160, "One or more arguments are not correct."},
    {161, "The specified path is invalid."},
    {164, "No more threads can be created in the system."},
    {167, "Unable to lock a region of a file."},
    {170, "The requested resource is in use."},
    {173, "A lock request was not outstanding for the supplied cancel region."},
    {183, "Cannot create a file when that file already exists."},
    {186, "The flag passed is not correct."},
    {187, "The specified system semaphore name was not found."},
    {206, "The filename or extension is too long."},
    {230, "The pipe state is invalid."},
    {231, "All pipe instances are busy."},
    {232, "The pipe is being closed."},
    {233, "No process is on the other end of the pipe."},
    {234, "More data is available."},
    {240, "The session was canceled."},
    {258, "The wait operation timed out."},
    {259, "No more data is available."},
    {266, "The copy functions cannot be used."},
    {267, "The directory name is invalid."},
    {288, "Attempt to release mutex not owned by caller."},
    {298, "Too many posts were made to a semaphore."},
    {299, "Only part of a ReadProcessMemory or WriteProcessMemory request was completed."},
    {487, "Attempt to access invalid address."},
    {534, "Arithmetic result exceeded 32 bits."},
    {995, "The I/O operation has been aborted because of either a thread exit or an application request."},
    {996, "Overlapped I/O event is not in a signaled state."},
    {997, "Overlapped I/O operation is in progress."},
    {998, "Invalid access to memory location."},
    {999, "Error performing inpage operation."},
    {1001, "Recursion too deep; the stack overflowed."},
    {1004, "Invalid flags."},
    {1005, "The volume does not contain a recognized file system."},
    {1006, "The volume for a file has been externally altered so that the opened file is no longer valid."},
    {1008, "An attempt was made to reference a token that does not exist."},
    {1009, "The configuration registry database is corrupt."},
    {1010, "The configuration registry key is invalid."},
    {1011, "The configuration registry key could not be opened."},
    {1053, "The service did not respond to the start or control request in a timely fashion."},
    {1060, "The specified service does not exist as an installed service."},
    {1062, "The service has not been started."},
    {1063, "The service process could not connect to the service controller."},
    {1072, "The specified service has been marked for deletion."},
    {1073, "The specified service already exists."},
    {1113, "No mapping for the Unicode character exists in the target multi-byte code page."},
    {1114, "A dynamic link library (DLL) initialization routine failed."},
    {1117, "The request could not be performed because of an I/O device error."},
    {1130, "Not enough server memory resources are available to process this command."},
    {1131, "A potential deadlock condition has been detected."},
    {1142, "An attempt was made to create more links on a file than the file system supports."},
    {1150, "The specified program requires a newer version of Windows."},
    {1155, "No application is associated with the specified file for this operation."},
    {1157, "One of the library files needed to run this application cannot be found."},
    {1168, "Element not found."},
    {1169, "There was no match for the specified key in the index."},
    {1200, "The specified device name is invalid."},
    {1203,
     "The network path was either typed incorrectly, does not exist, or the network provider is not currently "
     "available. Please try retyping the path or contact your network administrator."},
    {1222, "The network is not present or not started."},
    {1223, "The operation was canceled by the user."},
    {1225, "The remote computer refused the network connection."},
    {1229, "An operation was attempted on a nonexistent network connection."},
    {1231, "The network location cannot be reached. For information about network troubleshooting, see Windows Help."},
    {1235, "The request was aborted."},
    {1236, "The network connection was aborted by the local system."},
    {1300, "Not all privileges or groups referenced are assigned to the caller."},
    {1314, "A required privilege is not held by the client."},
    {1326, "The user name or password is incorrect."},
    {1385, "Logon failure: the user has not been granted the requested logon type at this computer."},
    {1392, "The file or directory is corrupted and unreadable."},
    {1400, "Invalid window handle."},
    {1450, "Insufficient system resources exist to complete the requested service."},
    {1453, "Insufficient quota to complete the requested service."},
    {1455, "The paging file is too small for this operation to complete."},
    {1460, "This operation returned because the timeout period expired."},
    {1722, "The RPC server is unavailable."},
    {1723, "The RPC server is too busy to complete this operation."},
    {1726, "The remote procedure call failed."},
    {1784, "The supplied user buffer is not valid for the requested operation."},
    {1812, "The specified image file did not contain a resource section."},
    {1813, "The specified resource type cannot be found in the image file."},
    {1814, "The specified resource name cannot be found in the image file."},
    {1815, "The specified resource language ID cannot be found in the image file."},
    {0x80004001U, "Not implemented"},
    {0x80004002U, "No such interface supported"},
    {0x80004003U, "Invalid pointer"},
    {0x80004004U, "Operation aborted"},
    {0x80004005U, "Unspecified error"},
    {0x8000FFFFU, "Catastrophic failure"},
    {0x80020001U, "Unknown interface."},
    {0x80020003U, "Member not found."},
    {0x80020004U, "Parameter not found."},
    {0x80020005U, "Type mismatch."},
    {0x80020006U, "Unknown name."},
    {0x80020007U, "No named arguments."},
    {0x80020008U, "Bad variable type."},
    {0x80020009U, "Exception occurred."},
    {0x8002000AU, "Out of present range."},
    {0x8002000BU, "Invalid index."},
    {0x8002000CU, "Unknown language."},
    {0x8002000DU, "Memory is locked."},
    {0x8002000EU, "Invalid number of parameters."},
    {0x8002000FU, "Parameter not optional."},
    {0x80040110U, "Class does not support aggregation (or class object is remote)"},
    {0x80040154U, "Class not registered"},
    {0x80090001U, "Bad UID."},
    {0x80090002U, "Bad Hash."},
    {0x80090003U, "Bad Key."},
    {0x80090004U, "Bad Length."},
    {0x80090005U, "Bad Data."},
    {0x80090006U, "Invalid Signature."},
    {0x80090007U, "Bad Version of provider."},
    {0x80090008U, "Invalid algorithm specified."},
    {0x80090009U, "Invalid flags specified."},
    {0x8009000AU, "Invalid type specified."},
    {0x8009000BU, "Key not valid for use in specified state."},
    {0x8009000CU, "Hash not valid for use in specified state."},
    {0x8009000DU, "Key does not exist."},
    {0x8009000EU, "Insufficient memory available for the operation."},
    {0x8009000FU, "Object already exists."},
    {0x80090010U, "Access denied."},
    {0x80090014U, "Invalid provider type specified."},
    {0x80090016U, "Keyset does not exist"},
    {0x80090017U, "Provider type not defined."},
    {0x80090019U, "The keyset is not defined."},
    {0x8009001BU, "Provider type does not match registered value."},
    {0x8009001DU, "Provider DLL failed to initialize correctly."},
    {0x8009001EU, "Provider DLL could not be found."},
    {0x8009001FU, "The Keyset parameter is invalid."},
    {0x80090020U, "An internal error occurred."},
    {0x80090029U, "The requested operation is not supported."},
};

constexpr bool by_code(const SystemText& a, const SystemText& b) { return a.code < b.code; }
static_assert(std::is_sorted(std::begin(system_texts), std::end(system_texts), by_code));

const char* find_text(std::uint32_t code) {
  const auto* found =
      std::lower_bound(std::begin(system_texts), std::end(system_texts), SystemText{code, nullptr}, by_code);
  return found != std::end(system_texts) && found->code == code ? found->text : nullptr;
}

/// A result code of the Win32 facility stands for the error number in its low half.
const char* find_system_text(std::uint32_t code) {
  constexpr std::uint32_t win32_facility = 0x80070000U;
  if (const char* text = find_text(code)) return text;
  return (code & 0xFFFF0000U) == win32_facility ? find_text(code & 0xFFFFU) : nullptr;
}

DWORD fail(DWORD error) {
  SetLastError(error);
  return 0;
}

}  // namespace

DWORD GetLastError() noexcept { return last_error; }

void SetLastError(DWORD error) noexcept { last_error = error; }

DWORD FormatMessageA(DWORD flags, const void*, DWORD id, DWORD, char* buffer, DWORD size, void*) noexcept {
  constexpr char line_end[] = "\r\n";
  if (!buffer) return fail(ERROR_INVALID_PARAMETER);
  const bool allocate = (flags & FORMAT_MESSAGE_ALLOCATE_BUFFER) != 0;
  if (allocate) {
    char* nothing = nullptr;
    std::memcpy(buffer, &nothing, sizeof nothing);
  }
  if ((flags & FORMAT_MESSAGE_FROM_SYSTEM) == 0) return fail(ERROR_INVALID_PARAMETER);
  const char* text = find_system_text(id);
  if (!text) return fail(ERROR_MR_MID_NOT_FOUND);
  const std::size_t text_length = std::strlen(text);
  const std::size_t needed = text_length + sizeof line_end;
  char* target = buffer;
  if (allocate) {
    target = static_cast<char*>(LocalAlloc(0, std::max<std::size_t>(needed, size)));
    if (!target) return 0;
    std::memcpy(buffer, &target, sizeof target);
  } else if (size < needed) {
    return fail(ERROR_INSUFFICIENT_BUFFER);
  }
  std::memcpy(target, text, text_length);
  std::memcpy(target + text_length, line_end, sizeof line_end);
  return static_cast<DWORD>(needed - 1);
}

void* LocalAlloc(UINT flags, std::size_t size_bytes) noexcept {
  constexpr UINT zero_init = 0x0040;
  const std::size_t size = size_bytes ? size_bytes : 1;
  void* block = (flags & zero_init) != 0 ? std::calloc(size, 1) : std::malloc(size);
  if (!block) SetLastError(ERROR_NOT_ENOUGH_MEMORY);
  return block;
}

void* LocalFree(void* block) noexcept {
  std::free(block);
  return nullptr;
}
