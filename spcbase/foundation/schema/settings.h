/// The system settings.
///
/// Part of the database foundation: the schema's recordsets.
#pragma once

#include "spcbase/foundation/schema/column_table.h"

/// A piece of a setting: a long value spreads over several rows of one key, in the order of `seqno`.
class RSINI : public TableRecordset<RSINI, RSWithHint> {
 public:
  /// With `hint` the select carries a hint to keep its result at hand. It is written for every dialect, since it is a
  /// comment for all but Oracle.
  RSINI(CDatabase* database, bool hint) : TableRecordset(database, hint) {}

  void DoFieldExchange(CFieldExchange* exchange) override {
    const bool writes_select = exchange->m_nOperation == CFieldExchange::Name && exchange->m_pstr != nullptr &&
                               exchange->m_pstr->Left(6).CompareNoCase("select") == 0;
    if (use_hint && writes_select) *exchange->m_pstr += " /*+ result_cache */ ";
    TableRecordset::DoFieldExchange(exchange);
  }

  CString qual;
  CString sect;
  CString kyword;
  long seqno = 0;
  CString optval;

  static constexpr const char* source = "[CSINI]";
  static constexpr auto columns =
      coltab::table(coltab::key("[QUAL]", &RSINI::qual, 255), coltab::key("[SECT]", &RSINI::sect, 255),
                    coltab::key("[KYWORD]", &RSINI::kyword, 255), coltab::key("[SEQNO]", &RSINI::seqno),
                    coltab::field("[OPTVAL]", &RSINI::optval, 255));
};
