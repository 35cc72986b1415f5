/// The date-time of the database interface.
///
/// Part of the platform layer. Where the ODBC headers are in use theirs serves: include <sql.h> before this header
/// (system/types.h tells how).
#pragma once

#ifndef __SQLTYPES_H
/// A date and time by fields. `fraction` counts billionths of a second.
struct tagTIMESTAMP_STRUCT {
  /// The fields as they are on a calendar; `fraction` counts billionths of a second.
  short year;
  unsigned short month;
  unsigned short day;
  unsigned short hour;
  unsigned short minute;
  unsigned short second;
  unsigned int fraction;
};
/// The documented name.
using TIMESTAMP_STRUCT = tagTIMESTAMP_STRUCT;
#endif
