#include "spcbase/companion/internal/source_facts.h"

#include <algorithm>
#include <array>

namespace source_facts {
namespace {

/// ODBC's numbers for what names are made of.
enum Fact : WORD { quote_char = 29, catalog_name_separator = 41, schema_usage = 91, catalog_usage = 92 };
constexpr WORD catalog_name = 10003;

/// The separator where the source does not name another.
constexpr char usual_separator[] = ".";

/// The numbers whose answers are texts. All others are answered with numbers.
constexpr std::array<WORD, 39> text_facts{
    2,  6,  7,  10, 11, 13, 14, 16, 17, 18, 19, 20,  21,  25,  27,  29,    36,    37,    38,    39,
    40, 41, 42, 45, 47, 73, 77, 87, 89, 90, 94, 103, 111, 113, 171, 10000, 10002, 10003, 10004,
};

bool is_text(WORD type) { return std::binary_search(text_facts.begin(), text_facts.end(), type); }

}  // namespace

HRESULT of_connection(CDatabase& database, WORD type, CString& fact) {
  fact.Empty();
  if (!database.IsOpen()) return E_UNEXPECTED;
  DWORD number = 0;
  const RETCODE answer = is_text(type) ? database.information_text(type, fact) : database.GetInfo(type, number);
  if (answer != 0 && answer != 1) {
    fact.Empty();
    return S_FALSE;
  }
  if (!is_text(type)) fact.Format("%u", number);
  return S_OK;
}

HRESULT catalog_separator(const Ask& ask, CString& separator) {
  separator.Empty();
  CString answer;
  // Some sources own up to catalogs by one answer only, and name a separator whether there are catalogs or not.
  HRESULT result = ask(catalog_name, answer);
  if (FAILED(result)) return result;
  if (answer != "Y") {
    result = ask(catalog_usage, answer);
    if (FAILED(result)) return result;
    if (answer.IsEmpty() || answer == "0") return S_OK;
  }
  result = ask(catalog_name_separator, answer);
  if (FAILED(result)) return result;
  separator = answer.IsEmpty() ? CString(usual_separator) : answer;
  return S_OK;
}

HRESULT schema_separator(const Ask& ask, CString& separator) {
  separator.Empty();
  CString answer;
  const HRESULT result = ask(schema_usage, answer);
  if (FAILED(result)) return result;
  if (!answer.IsEmpty() && answer != "0") separator = usual_separator;
  return S_OK;
}

HRESULT identifier_quote(const Ask& ask, CString& quote) {
  quote.Empty();
  CString answer;
  const HRESULT result = ask(quote_char, answer);
  if (FAILED(result)) return result;
  if (result == S_FALSE) return E_FAIL;
  // A blank says that names cannot be quoted.
  if (answer != " ") quote = answer;
  return S_OK;
}

}  // namespace source_facts
