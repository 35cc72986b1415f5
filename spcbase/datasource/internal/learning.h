/// How a definition learns from a syntax object.
///
/// Data sources only.
#pragma once

#include "spcbase/companion/adonet_support.h"
#include "spcbase/datasource/definition.h"

/// Names the connection to a syntax object and takes what it answers into the definition, one after the other; the
/// version becomes 0.
/// Fails: `_com_error` with the code of the refusal, E_POINTER without an object. What was learnt before stays.
void learn_names(const _com_ptr_t<ADONETSupport::_DbSyntaxInfo>& syntax, ADONETSupport::_DbConnection* connection,
                 ADONETDBInfo& definition);
