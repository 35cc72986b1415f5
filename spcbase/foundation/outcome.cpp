#include "spcbase/foundation/outcome.h"

#include <charconv>
#include <exception>
#include <new>
#include <string_view>

#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/internal/diagnostics_table.h"
#include "spcbase/foundation/internal/raise.h"
#include "spcbase/platform/automation/bstr_t.h"
#include "spcbase/platform/automation/com_error.h"
#include "spcbase/platform/database/db_exception.h"

namespace {

struct ClassWords {
  const char* name;
  const char* advice;
};

// By the number of the class.
constexpr ClassWords words_of_classes[] = {
    {"duplicate key", "A row with this key is there already: look for a second writer, or repair the running numbers."},
    {"missing reference",
     "A row that this one belongs to is missing, or other rows still belong to it: add or remove "
     "those first."},
    {"value too long", "Shorten the text, or widen the column in the database."},
    {"deadlock", "Two connections wanted the same rows in different order and this one gave way: do the work again."},
    {"lock time-out",
     "Another connection keeps these rows locked, or the time limit is too short: find and end its "
     "transaction, then do the work again."},
    {"link lost", "See that the server runs and can be reached, then connect again."},
    {"commit in doubt",
     "The link broke during a commit: look in the database whether the work is there before "
     "anything is done again."},
    {"no such object", "A table or column is missing: compare the database with the schema (spc db check)."},
    {"syntax", "The server does not understand this statement: see that it is of a kind that is supported."},
    {"permission", "Give the login the right that is missing, or see that the database is not read-only."},
    {"storage full", "Make room on the server's disk or in its table space, then do the work again."},
    {"other", "The text tells what the server or the library refused; nothing else is known about it."},
};
static_assert(std::size(words_of_classes) == static_cast<std::size_t>(FailureClass::other) + 1);

const ClassWords& words_of(FailureClass failure_class) noexcept {
  return words_of_classes[static_cast<std::size_t>(failure_class)];
}

// One line of CDBException::m_strStateNativeOrigin.
struct Record {
  std::string_view state;
  long native = 0;
};

std::string_view between(std::string_view text, std::string_view before, char after) {
  const auto start = text.find(before);
  if (start == std::string_view::npos) return {};
  const auto rest = text.substr(start + before.size());
  return rest.substr(0, rest.find(after));
}

Record parse_record(std::string_view line) {
  Record record;
  record.state = between(line, "State:", ',');
  const auto native = between(line, "Native:", ',');
  std::from_chars(native.data(), native.data() + native.size(), record.native);
  return record;
}

bool fits(const diagnostics::Rule& rule, const Record& record, std::string_view text) {
  if (rule.state_prefix != nullptr && !record.state.starts_with(rule.state_prefix)) return false;
  if (rule.native != 0 && rule.native != record.native) return false;
  return rule.in_text == nullptr || text.find(rule.in_text) != std::string_view::npos;
}

FailureClass classify(const Record& record, std::string_view text) {
  for (const auto& rule : diagnostics::rules)
    if (fits(rule, record, text)) return rule.means;
  return FailureClass::other;
}

// A driver may say the general thing first and the precise one after it: the first record that tells something
// decides, but a doubt about a commit outweighs all others, since it forbids a second try.
void classify_records(Failure& failure, std::string_view records, std::string_view text) {
  for (bool first = true; !records.empty(); first = false) {
    const auto end = records.find('\n');
    const Record record = parse_record(records.substr(0, end));
    records.remove_prefix(end == std::string_view::npos ? records.size() : end + 1);
    const FailureClass found = classify(record, text);
    const bool tells_more = failure.failure_class == FailureClass::other && found != FailureClass::other;
    if (!first && !tells_more && found != FailureClass::commit_in_doubt) continue;
    failure.failure_class = found;
    failure.sqlstate = record.state;
    failure.native = record.native;
    if (found == FailureClass::commit_in_doubt) return;
  }
}

Failure failure_of(FailureKind kind, long code, CString text, FailureClass failure_class = FailureClass::other) {
  Failure failure;
  failure.kind = kind;
  failure.failure_class = failure_class;
  failure.code = code;
  failure.text = std::move(text);
  failure.advice = words_of(failure_class).advice;
  return failure;
}

constexpr const char* advice_for_a_cut =
    "The value is longer than the room that it is read into: allow long data more bytes (--max-size of the command), "
    "or "
    "shorten the value in the database.";
constexpr const char* advice_for_a_missing_feature =
    "The driver cannot do this: allow long data a buffer (--max-size of the command) in place of streaming, or use "
    "another driver.";

bool is_missing_feature(const Failure& failure) {
  return failure.failure_class == FailureClass::other && (failure.sqlstate == "HYC00" || failure.sqlstate == "IM001");
}

struct CodeWords {
  long code;
  const char* text;
  const char* advice;
};

// The codes of data entry travel without a text. A null stands for the system's own.
constexpr CodeWords words_of_codes[] = {
    {result_code::update_failed, "A row was not written: nothing in it was set.",
     "See that the sample's profile is complete, then do the work again."},
    {result_code::open_failed, "A recordset did not open, or data that is needed could not be read.",
     "See that the database is connected and that the profile exists."},
    {result_code::bad_value, "A value cannot be converted, or an argument is unusable.",
     "See that the profile exists, and that the grid has its columns, with values that can be converted to theirs."},
    {result_code::no_array_or_row, "There is no usable row, or the array of values could not be built.",
     "See that the sample exists and belongs to the profile, and that the grid has the profile's size."},
    {DISP_E_BADINDEX, nullptr, "See that the array has all the dimensions that are wanted."},
    {result_code::invalid_argument, nullptr,
     "See that the array is there, and that its dimensions, lower bounds and element type are those that are wanted."},
};

CString system_text(long code) { return _com_error(static_cast<HRESULT>(code)).ErrorMessage(); }

Failure describe_code(long code) {
  for (const auto& words : words_of_codes) {
    if (words.code != code) continue;
    Failure failure =
        failure_of(FailureKind::result_code, code, words.text != nullptr ? CString(words.text) : system_text(code));
    failure.advice = words.advice;
    return failure;
  }
  return failure_of(FailureKind::result_code, code, system_text(code));
}

struct MessageWords {
  UINT message;
  const char* advice;
};

// A DBException has its message alone: what to do follows from the text that the host sees.
constexpr MessageWords words_of_messages[] = {
    {msg::can_not_open_recordset, "See that the connection is open; when its link was lost, connect again."},
    {msg::no_such_connection, "List the data sources anew: this one was removed, or never was."},
    {msg::not_ole_db_connection, "Read the definition as one of the other kind."},
    {msg::blob_too_large, "Allow long data more bytes, or 0 on a driver that takes them in pieces."},
    {msg::array_exceeds_limit, "Allow the array more bytes, or hand in a smaller one."},
    {msg::xml_error, "Compare the XML with its format: an element lacks the text that it must have."},
    {msg::invalid_argument, "See that lists are there, and that arrays have one dimension."},
    {msg::duplicate_access_item, "Change the line of this id and kind that the list has."},
    {msg::invalid_schedule, "Give five fields: minute, hour, day of the month, month, day of the week."},
    {msg::invalid_repeat, "Give three or five fields: interval, unit, end."},
    {msg::no_temporary_folder, "Give a folder that exists and can be written to."},
    {msg::no_temporary_file, "Give a folder that exists, has room and can be written to."},
};

Failure describe_own_failure(const DBException& exception) {
  Failure failure = failure_of(FailureKind::library, exception.error_code, exception.what());
  for (const auto& words : words_of_messages)
    if (failure.text == load_message(words.message)) failure.advice = words.advice;
  return failure;
}

// By the number of the reason.
constexpr const char* advice_of_reasons[] = {
    "Save the object first: it has no revisions.",
    "Approve the latest revision: somebody saved one since, the manager's memory is too old, or there is none.",
    "Nothing is left to do: the revision is approved.",
    "Save the object again: the next revision goes past this one, which has no payload.",
    "Look whether the new row stands, then do the work again.",
};

Failure describe_revision_failure(const rev::RevisionException& exception) {
  Failure failure = failure_of(FailureKind::revision, exception.error_code, exception.what());
  failure.native = exception.reason;
  const auto reason = static_cast<std::size_t>(exception.reason);  // below 0 is past the end
  if (reason < std::size(advice_of_reasons)) failure.advice = advice_of_reasons[reason];
  return failure;
}

long code_of(CException* exception) noexcept {
  if (dynamic_cast<CMemoryException*>(exception) != nullptr) return E_OUTOFMEMORY;
  if (dynamic_cast<CInvalidArgException*>(exception) != nullptr) return E_INVALIDARG;
  return E_FAIL;
}

Failure describe_com_error(const _com_error& error) {
  const _bstr_t description = error.Description();
  const char* known = description;
  const std::string_view text = known != nullptr ? known : error.ErrorMessage();
  // An object that works on a database writes the diagnostics behind its text, in the form of CDBException.
  const auto records = text.find("\nState:");
  Failure failure = failure_of(FailureKind::automation, error.Error(), CString(text.substr(0, records)));
  if (records == std::string_view::npos) return failure;
  classify_records(failure, text.substr(records + 1), text);
  failure.advice = words_of(failure.failure_class).advice;
  return failure;
}

// Releases what was thrown by pointer, whatever happens while it is read.
class Release {
 public:
  explicit Release(CException* exception) noexcept : exception_(exception) {}
  ~Release() { exception_->Delete(); }
  Release(const Release&) = delete;
  Release& operator=(const Release&) = delete;

 private:
  CException* exception_;
};

}  // namespace

const char* describe(FailureClass failure_class) noexcept { return words_of(failure_class).name; }

Failure describe_failure(const CDBException& exception) {
  Failure failure = failure_of(FailureKind::database, exception.m_nRetCode, exception.m_strError);
  classify_records(failure, exception.m_strStateNativeOrigin.view(), exception.m_strError.view());
  const bool cut_on_reading = exception.m_nRetCode == AFX_SQL_ERROR_DATA_TRUNCATED;
  if (cut_on_reading && failure.failure_class == FailureClass::other)
    failure.failure_class = FailureClass::value_too_long;
  // Most drivers tell a link that breaks during a commit like any other: whether the work stands is not known then.
  if (failure.failure_class == FailureClass::link_lost && exception.m_strStatement == "COMMIT")
    failure.failure_class = FailureClass::commit_in_doubt;
  if (failure.text.IsEmpty()) failure.text = load_message(msg::unknown_error);
  failure.advice = cut_on_reading                ? advice_for_a_cut
                   : is_missing_feature(failure) ? advice_for_a_missing_feature
                                                 : words_of(failure.failure_class).advice;
  return failure;
}

Failure describe_current_failure() {
  try {
    throw;
  } catch (const rev::RevisionException& e) {
    return describe_revision_failure(e);
  } catch (const DBException& e) {
    return describe_own_failure(e);
  } catch (long code) {
    return describe_code(code);
  } catch (CDBException* e) {
    const Release release(e);
    return describe_failure(*e);
  } catch (CException* e) {
    const Release release(e);
    return failure_of(FailureKind::platform, code_of(e), get_exception_error_message(e));
  } catch (const _com_error& e) {
    return describe_com_error(e);
  } catch (const std::bad_alloc& e) {
    return failure_of(FailureKind::standard, E_OUTOFMEMORY, e.what());
  } catch (const std::exception& e) {
    return failure_of(FailureKind::standard, E_FAIL, e.what());
  }
}
