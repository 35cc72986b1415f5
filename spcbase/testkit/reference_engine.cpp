#include "spcbase/testkit/reference_engine.h"

#include <algorithm>
#include <string_view>

#include "schema/description.h"
#include "spcbase/foundation/connection.h"
#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/outcome.h"
#include "spcbase/foundation/schema/data_entry.h"
#include "spcbase/platform/automation/counted.h"

namespace reference_engine {
namespace {

/// A transaction for one number: by the guard of the library where the connection knows it, else by hand. One that is
/// open already is left to who opened it.
class NumberTransaction {
 public:
  explicit NumberTransaction(CDatabase& db) : db_(db), mine_(db.BeginTrans() != FALSE) {}
  NumberTransaction(const NumberTransaction&) = delete;
  NumberTransaction& operator=(const NumberTransaction&) = delete;
  ~NumberTransaction() {
    if (mine_) undo();
  }
  void commit() {
    if (mine_) db_.CommitTrans();
    mine_ = false;
  }

 private:
  void undo() noexcept {
    try {
      db_.Rollback();
    } catch (CDBException* e) {
      // The failure that led here is the one to tell of.
      e->Delete();
    }
  }

  CDatabase& db_;
  bool mine_;
};

class RunningNumberRow : public CRecordset {
 public:
  RunningNumberRow(CDatabase& db, const CString& table) : CRecordset(&db), table_(table) {
    m_nFields = 1;
    m_nDefaultType = snapshot;
  }
  CString GetDefaultSQL() override { return table_; }
  void DoFieldExchange(CFieldExchange* exchange) override {
    exchange->SetFieldType(CFieldExchange::outputColumn);
    RFX_Long(exchange, "[MAXNO]", maxno);
  }

  long maxno = 0;

 private:
  CString table_;
};

class CharacteristicFacts : public TableRecordset<CharacteristicFacts> {
 public:
  using TableRecordset::TableRecordset;

  long chrtid = 0;
  long cflg1 = 0;
  long cflg2 = 0;
  long cflg3 = 0;
  long sgsize = 0;

  static constexpr const char* source = "[CSCHRT]";
  static constexpr auto columns = coltab::table(
      coltab::key("[CHRTID]", &CharacteristicFacts::chrtid), coltab::field("[CFLG1]", &CharacteristicFacts::cflg1),
      coltab::field("[CFLG2]", &CharacteristicFacts::cflg2), coltab::field("[CFLG3]", &CharacteristicFacts::cflg3),
      coltab::field("[SGSIZE]", &CharacteristicFacts::sgsize));
};

bool is_running_number(std::string_view table) {
  const auto& numbers = schema::running_numbers();
  return std::any_of(numbers.begin(), numbers.end(), [&](const auto& number) { return number.counter == table; });
}

[[noreturn]] void refuse(HRESULT code, const char* format, const char* what) {
  CString text;
  text.Format(format, what);
  throw DBException(text, code);
}

void open_for_reading(CRecordset& rows) {
  if (!rows.Open(CRecordset::forwardOnly, nullptr, CRecordset::readOnly | CRecordset::executeDirect))
    throw_can_not_open_rs_exception();
}

LONG raise_and_read(CDatabase& db, const CString& table) {
  CString statement;
  statement.Format("UPDATE %s SET MAXNO = MAXNO + 1", table.GetString());
  db.ExecuteSQL(statement);
  RunningNumberRow row(db, table);
  open_for_reading(row);
  if (row.m_bEOF) refuse(E_FAIL, "The running-number table %s has no row.", table);
  const long number = row.maxno;
  row.Close();
  return static_cast<LONG>(number);
}

LONG next_number(CDatabase& db, BSTR name) {
  const CString table = to_cstring(name);
  if (!is_running_number(table.view())) refuse(E_INVALIDARG, "There is no running-number table \"%s\".", table);
  LONG number = 0;
  if (auto* known = dynamic_cast<CDatabaseEx*>(&db); known != nullptr) {
    AutoODBCTransaction transaction(*known, true);
    number = raise_and_read(db, table);
    transaction.commit();
  } else {
    NumberTransaction transaction(db);
    number = raise_and_read(db, table);
    transaction.commit();
  }
  return number;
}

/// "COLUMN=7", or "COLUMN IS NULL" for 0.
CString condition(const char* column, LONG value) {
  CString text;
  if (value == 0)
    text.Format("%s IS NULL", column);
  else
    text.Format("%s=%d", column, value);
  return text;
}

void store_label(CDatabase& db, LONG sample, LONG characteristic, LONG label, LONG piece, const CString& value) {
  CRSLabelData rows(&db);
  rows.m_strFilter.Format("SAMPID=%d AND %s AND LABELID=%d AND %s", sample,
                          condition("CHRTID", characteristic).GetString(), label,
                          condition("PIECENO", piece).GetString());
  if (!rows.Open()) throw_can_not_open_rs_exception();
  if (rows.m_bEOF) {
    rows.AddNew();
    rows.sampid = sample;
    rows.chrtid = characteristic;
    if (characteristic == 0) rows.SetFieldNull(&rows.chrtid);
    rows.labelid = label;
    rows.pieceno = piece;
    if (piece == 0) rows.SetFieldNull(&rows.pieceno);
  } else {
    if (rows.labvalue == value) return;
    rows.Edit();
  }
  rows.labvalue = value;
  rows.Update();
}

/// Opens the row of a characteristic; false when there is none.
bool find_characteristic(CharacteristicFacts& facts, LONG id) {
  facts.m_strFilter.Format("[CHRTID] = %d", id);
  open_for_reading(facts);
  return !facts.m_bEOF;
}

/// Makes the failure the thread's error object and gives the code to return.
HRESULT publish(const Failure& failure) {
  CString text = failure.text;
  // In this form `guarded` of the host finds the diagnostics again, and knows a deadlock from a lost link.
  if (!failure.sqlstate.IsEmpty())
    text.AppendFormat("\nState:%s,Native:%ld", failure.sqlstate.GetString(), failure.native);
  static_cast<void>(create_err_object(nullptr, &interface_id<SPCLib::IQsmSPC>::value, text));
  const bool has_code = failure.kind != FailureKind::database && failure.code < 0;
  return has_code ? static_cast<HRESULT>(failure.code) : E_FAIL;
}

/// Runs the body of a method: no exception leaves an interface.
template <class Work>
HRESULT answer(Work&& work) noexcept {
  try {
    const auto outcome = guarded(work);
    return outcome ? S_OK : publish(outcome.failure());
  } catch (...) {
    return E_UNEXPECTED;
  }
}

class Engine final : public counted<SPCLib::IQsmSPC> {
 public:
  explicit Engine(CDatabase& db) : db_(db) {}

  HRESULT QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    const bool known = iid == IID_IUnknown || iid == interface_id<SPCLib::IQsmSPC>::value;
    *object = known ? static_cast<SPCLib::IQsmSPC*>(this) : nullptr;
    if (!known) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }

  HRESULT GetNextRunningNumber(BSTR table, LONG* number) override {
    if (number == nullptr) return E_POINTER;
    *number = 0;
    return answer([&] { *number = next_number(db_, table); });
  }

  HRESULT SetLabelValue(LONG sample, LONG characteristic, LONG label, LONG piece, BSTR value) override {
    return answer([&] { store_label(db_, sample, characteristic, label, piece, to_cstring(value)); });
  }

  HRESULT GetCharacteristicFlags(LONG id, LONG* first, LONG* total, LONG* third) override {
    if (first == nullptr || total == nullptr || third == nullptr) return E_POINTER;
    *first = *total = *third = 0;
    return answer([&] {
      CharacteristicFacts facts(&db_);
      if (!find_characteristic(facts, id)) return;
      *first = static_cast<LONG>(facts.cflg1);
      *total = static_cast<LONG>(facts.cflg2);
      *third = static_cast<LONG>(facts.cflg3);
    });
  }

  HRESULT GetSubgroupSize(LONG characteristic, LONG* size) override {
    if (size == nullptr) return E_POINTER;
    *size = 0;
    return answer([&] {
      CharacteristicFacts facts(&db_);
      if (!find_characteristic(facts, characteristic)) {
        CString id;
        id.Format("%d", characteristic);
        refuse(E_INVALIDARG, "There is no characteristic %s.", id);
      }
      *size = static_cast<LONG>(facts.sgsize);
    });
  }

 private:
  CDatabase& db_;
};

}  // namespace

SPCLib::IQsmSPCPtr make(CDatabase& db) { return SPCLib::IQsmSPCPtr(new Engine(db), false); }

}  // namespace reference_engine
