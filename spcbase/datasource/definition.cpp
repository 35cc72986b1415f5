#include "spcbase/datasource/definition.h"

DataSourceInfoBase::~DataSourceInfoBase() = default;

OLEDBInfo::OLEDBInfo() { modified_time.m_dt = 0; }
OLEDBInfo::~OLEDBInfo() = default;

ADONETDBInfo::ADONETDBInfo() { modified_time.m_dt = 0; }
ADONETDBInfo::~ADONETDBInfo() = default;
