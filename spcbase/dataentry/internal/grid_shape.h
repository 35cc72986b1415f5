/// The size of a sample's grid and the date of a sample: what reading and writing share.
///
/// Part of data entry; not for hosts.
#pragma once

#include "spcbase/dataentry/profile.h"
#include "spcbase/platform/database/database.h"

namespace oldde {

/// `kind` of a profile's element.
inline constexpr int kind_characteristic = 0;
inline constexpr int kind_label = 1;

/// What a characteristic is, by its type; the case of the type matters.
bool is_variable(const CProfileInfo& element);
bool is_attribute(const CProfileInfo& element);
/// What a label is, by its type, and how its values are kept, by its detail; their case does not matter.
bool is_sample_label(const CProfileInfo& element);
bool is_piece_label(const CProfileInfo& element);
bool is_datetime_label(const CProfileInfo& element);
bool is_dynamic_label(const CProfileInfo& element);

/// How many columns of the grid an element takes: 1 or 2.
long columns_of(const CProfileInfo& element);

/// Columns and rows of a grid.
struct GridShape {
  long columns = 0;
  long rows = 0;
};

/// The size of the grid that reads the sample.
/// Fails: DBException "Can not open recordset." when the connection is not open.
GridShape shape_of(CDatabase& db, const CProfileCache& cache, long sample);

/// The local time of a sample as a day number, to the second.
/// Fails: 0x80041508 when the connection is not open, 0x8004150d when the sample is not one of the profile.
double sample_date(CDatabase& db, long sample, long profile);

}  // namespace oldde
