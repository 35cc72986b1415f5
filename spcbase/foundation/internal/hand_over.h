/// Handing a blob over without copying it, by a holder that will not be asked for it again.
///
/// Part of the database foundation, for the library's own use. What the target shows afterwards is what `copy_blob`
/// would leave: a block that is large enough stays, by its handle and its size, and else it is of the source's size.
#pragma once

#include "spcbase/foundation/blob.h"

/// As `copy_blob(target, source)`. The source owns a block or none then, but its bytes are gone.
int hand_blob_over(CLongBinary& target, CLongBinary& source);

/// As `field.get_blob_long_bin(rs, target)`, for a row whose blob was asked for the last time.
void hand_blob_over(BlobRSHelper& field, CRecordset& rs, CLongBinary& target);
