#include "spcbase/foundation/schema/catalogue.h"

#include "spcbase/foundation/schema.h"

namespace coltab {

namespace {

template <class... Columns>
constexpr std::array<ColumnFact, sizeof...(Columns)> facts_of(const std::tuple<Columns...>& columns) {
  return std::apply(
      [](const auto&... column) {
        return std::array<ColumnFact, sizeof...(Columns)>{
            ColumnFact{column.name, column.kind, column.width_chars, column.is_key}...};
      },
      columns);
}

template <class Recordset>
constexpr auto columns_of = facts_of(Recordset::columns);
template <class Recordset>
constexpr auto parameters_of = facts_of(Recordset::parameters);

template <class Recordset>
constexpr ClassFact fact(const char* class_name, const char* source = Recordset::source) {
  return {class_name, source, columns_of<Recordset>, parameters_of<Recordset>};
}

constexpr ClassFact classes[] = {
    fact<RSNode1>("RSNode1"),
    fact<RSNode2>("RSNode2"),
    fact<RSMonInNode1>("RSMonInNode1"),
    fact<RSProfInNode1>("RSProfInNode1"),
    fact<RSExtDB>("RSExtDB"),
    fact<RSExtDBForDelete>("RSExtDBForDelete"),
    fact<RSExtDBWithOnlyID>("RSExtDBWithOnlyID"),
    fact<RSMOPB>("RSMOPB"),
    fact<RSPOPB>("RSPOPB"),
    fact<RSMEXT>("RSMEXT"),
    fact<RSINI>("RSINI"),
    fact<RSOBJREV>("RSOBJREV"),
    fact<RSOBJREVForAdd>("RSOBJREVForAdd"),
    fact<RSOBJREVForApprove>("RSOBJREVForApprove"),
    fact<RSOBJREVWithVersion>("RSOBJREVWithVersion"),
    fact<RSOBJREV_Minimum>("RSOBJREV_Minimum"),
    fact<RSOBJDAT>("RSOBJDAT"),
    fact<RSFullRevisionInfo>("RSFullRevisionInfo"),
    fact<CRSCharInProfile>("CRSCharInProfile"),
    fact<CRSLabelInProfile>("CRSLabelInProfile"),
    fact<profile_lists::CRSCharInProfile2>("CRSCharInProfile2", profile_lists::CRSCharInProfile2::statement),
    fact<profile_lists::CRSLabelInProfile2>("CRSLabelInProfile2", profile_lists::CRSLabelInProfile2::statement),
    fact<CRSLabel>("CRSLabel"),
    fact<CRSStations>("CRSStations"),
    fact<CRSUsers>("CRSUsers"),
    fact<CRSSample>("CRSSample"),
    fact<CRSSampleRev>("CRSSampleRev"),
    fact<CRSVariable>("CRSVariable"),
    fact<CRSDefectData>("CRSDefectData"),
    fact<CRSDEFTOT>("CRSDEFTOT"),
    fact<CRSLabelData>("CRSLabelData"),
    fact<CRSValue>("CRSValue"),
    fact<CRSValueInLabel>("CRSValueInLabel"),
    fact<CRSSearchLabelValue>("CRSSearchLabelValue"),
    fact<CRSSampleApprove>("CRSSampleApprove"),
    fact<RSSQLServerSysIndex>("RSSQLServerSysIndex"),
    fact<RS_INFORMATION_SCHEMA_COLUMNS_1>("RS_INFORMATION_SCHEMA_COLUMNS_1"),
};

}  // namespace

std::span<const ClassFact> recordset_classes() { return classes; }

}  // namespace coltab
