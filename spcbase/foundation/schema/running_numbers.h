/// The running numbers: which counter holds the highest id of which table.
///
/// Part of the database foundation: the schema, as data.
#pragma once

#include <array>

/// One running number: the highest id in use of `table` stands in the one row of `counter`, in its column `MAXNO`; 0
/// when the table has no rows.
struct running_number {
  const char* table;      ///< whose ids are counted
  const char* id_column;  ///< the id in that table
  const char* counter;    ///< the table of the counter
};

/// All of them, in the order in which they are repaired.
inline constexpr std::array<running_number, 27> running_numbers{{
    {"CSCHRT", "CHRTID", "CSCHRN"},     {"CSDASH", "DASHID", "CSDASHRN"},  {"CSGROUP", "GROUPID", "CSGPRN"},
    {"CSICON", "ICONID", "CSICONRN"},   {"CSLABEL", "LABELID", "CSLBRN"},  {"CSMON", "MONID", "CSMNRN"},
    {"CSNODE", "NODEID", "CSNDRN"},     {"CSOPT", "OPTID", "CSOPRN"},      {"CSPROF", "PROFID", "CSPFRN"},
    {"CSSAMP", "SAMPID", "CSSPRN"},     {"CSSTN", "STNID", "CSSTRN"},      {"CSTS", "TSID", "CSTSRN"},
    {"CSUSER", "USERID", "CSUSRN"},     {"CSVALUE", "VALUEID", "CSVLRN"},  {"CSENT", "ENT_ID", "CSENTRN"},
    {"CSHDFS", "HDFSID", "CSHDFSRN"},   {"CSSBDA", "SBDAID", "CSSBDARN"},  {"CSTIC", "TICID", "CSTICRN"},
    {"CSALARM", "ALARMID", "CSALRMRN"}, {"CSCOLOR", "COLORID", "CSCLRRN"}, {"CSDOC", "DOCID", "CSDOCRN"},
    {"CSEXDB", "EXDBID", "CSEXDBRN"},   {"CSPSQ", "PSQID", "CSPSQRN"},     {"CSDESESS", "DESESSID", "CSDESSRN"},
    {"CSBATCH", "BATCHID", "CSBTCHRN"}, {"CSAUSR", "SESID", "CSSERN"},     {"CSLOG", "LOGID", "CSLOGRN"},
}};
