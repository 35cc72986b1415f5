#include "spcbase/datasource/definition.h"

#include <memory>

namespace {

template <class Info>
void reset_common(Info& info, bool with_flag2) {
  if (with_flag2) info.flag2 = 0;
  info.quote_catalog = true;
  info.quote_schema = true;
  info.quote_table = true;
  info.quote_column = true;
  info.version = 0;
}

template <class Info>
void copy_common(Info& to, const Info& from) {
  to.id = from.id;
  to.name = from.name;
  to.connection_string = from.connection_string;
  to.description = from.description;
  to.type = from.type;
  to.flag2 = from.flag2;
  to.modified_time = from.modified_time;
  to.quote_catalog = from.quote_catalog;
  to.quote_schema = from.quote_schema;
  to.quote_table = from.quote_table;
  to.quote_column = from.quote_column;
  to.version = from.version;
  to.catalog_separator = from.catalog_separator;
  to.schema_separator = from.schema_separator;
  to.table_separator = from.table_separator;
  to.quote_prefix = from.quote_prefix;
  to.quote_suffix = from.quote_suffix;
  // The syntax may be changed through either definition, so each needs its own.
  to.syntax_info = from.syntax_info ? std::make_shared<UserDefinedSyntaxInfo>(*from.syntax_info) : nullptr;
}

}  // namespace

DataSourceInfoBase::~DataSourceInfoBase() = default;

OLEDBInfo::OLEDBInfo() = default;
OLEDBInfo::OLEDBInfo(const OLEDBInfo& other) : OLEDBInfo() { copy_object(other); }
OLEDBInfo& OLEDBInfo::operator=(const OLEDBInfo& other) {
  copy_object(other);
  return *this;
}
OLEDBInfo::~OLEDBInfo() = default;

void OLEDBInfo::copy_object(const OLEDBInfo& other) {
  if (this == &other) return;
  copy_common(*this, other);
  option = other.option;
  internal_option = other.internal_option;
}

void OLEDBInfo::init(bool with_flag2) {
  reset_common(*this, with_flag2);
  option = 1;
  internal_option = 0;
}

ADONETDBInfo::ADONETDBInfo() = default;
ADONETDBInfo::ADONETDBInfo(const ADONETDBInfo& other) : ADONETDBInfo() { copy_object(other); }
ADONETDBInfo& ADONETDBInfo::operator=(const ADONETDBInfo& other) {
  copy_object(other);
  return *this;
}
ADONETDBInfo::~ADONETDBInfo() = default;

void ADONETDBInfo::copy_object(const ADONETDBInfo& other) {
  if (this == &other) return;
  copy_common(*this, other);
  provider = other.provider;
  default_command_timeout = other.default_command_timeout;
}

void ADONETDBInfo::init(bool with_flag2) {
  reset_common(*this, with_flag2);
  provider.Empty();
  default_command_timeout = -1;
}
