#include "spcbase/foundation/payload.h"

#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/internal/blob_retry.h"
#include "spcbase/foundation/internal/hand_over.h"
#include "spcbase/foundation/internal/opening.h"
#include "spcbase/foundation/schema/payloads.h"

namespace {

/// The row of one object in a payload table.
template <class Recordset>
class PayloadRow {
 public:
  PayloadRow(CDatabase* database, int blob_size, int object) : rs_(database, blob_size), object_(object) {
    rs_.m_strFilter.Format("%s = %d", key().name, object);
  }

  int read(CLongBinary& data) {
    open(&open_for_read);
    if (rs_.m_bEOF != FALSE)
      copy_blob(data, nullptr, 0UL);
    else
      hand_blob_over(rs_, rs_, data);
    rs_.Close();
    return static_cast<int>(data.m_dwDataLength);
  }

  CString read_text() {
    open(&open_for_read);
    CString text = rs_.m_bEOF != FALSE ? CString() : rs_.get_blob_str(rs_);
    rs_.Close();
    return text;
  }

  template <class Data>
  void write(const Data& data, bool is_empty) {
    open(&open_for_update);
    const bool is_there = rs_.m_bEOF == FALSE;
    if (is_empty) {
      if (is_there) rs_.Delete();
    } else {
      is_there ? rs_.Edit() : rs_.AddNew();
      rs_.*(key().member) = object_;
      rs_.set_blob_data(rs_, data);
      rs_.Update();
    }
    rs_.Close();
  }

 private:
  static constexpr auto key() { return std::get<0>(Recordset::columns); }
  void open(bool (*way)(CRecordset&)) {
    if (!way(rs_)) throw_can_not_open_rs_exception();
  }

  Recordset rs_;
  int object_;
};

template <class Recordset>
int get_data(CDatabase* database, int maximum_blob_size, int object, CLongBinary& data) {
  const std::function<int(int)> read = [&](int size) {
    return PayloadRow<Recordset>(database, size, object).read(data);
  };
  return run_with_blob_retry(maximum_blob_size, read);
}

template <class Recordset, class Data>
void set_data(CDatabase* database, int maximum_blob_size, int object, const Data& data, int length) {
  const std::function<void(int)> write = [&](int size) {
    PayloadRow<Recordset>(database, size, object).write(data, length == 0);
  };
  run_with_blob_retry(maximum_blob_size, write, length);
}

}  // namespace

int get_mon_data(CDatabase* database, int maximum_blob_size, int monitor, CLongBinary& data) {
  return get_data<RSMOPB>(database, maximum_blob_size, monitor, data);
}

void set_mon_data(CDatabase* database, int maximum_blob_size, int monitor, const CLongBinary& data) {
  set_data<RSMOPB>(database, maximum_blob_size, monitor, data, static_cast<int>(data.m_dwDataLength));
}

int get_prof_data(CDatabase* database, int maximum_blob_size, int profile, CLongBinary& data) {
  return get_data<RSPOPB>(database, maximum_blob_size, profile, data);
}

void set_prof_data(CDatabase* database, int maximum_blob_size, int profile, const CLongBinary& data) {
  set_data<RSPOPB>(database, maximum_blob_size, profile, data, static_cast<int>(data.m_dwDataLength));
}

CString get_mon_extra_data(CDatabase* database, int maximum_blob_size, int monitor) {
  const std::function<CString(int)> read = [&](int size) {
    return PayloadRow<RSMEXT>(database, size, monitor).read_text();
  };
  return run_with_blob_retry(maximum_blob_size, read);
}

void set_mon_extra_data(CDatabase* database, int maximum_blob_size, int monitor, const CString& data) {
  set_data<RSMEXT>(database, maximum_blob_size, monitor, data, data.GetLength());
}
