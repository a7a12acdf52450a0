#pragma once

#include "platform/foundation/UTCDateTime.h"
#include "platform/system/items/OpenItem.h"

namespace mac {

// The creation date that was set: no file system has a place for it, so it is kept in an attribute, which travels with
// the item, and the file manager tells it, too. For implementations; any thread.

// Nothing where none is kept.
std::optional<UTCDateTime> keptCreationDate(OpenItem const& item);
// False when it cannot be kept; errno says why.
bool keepCreationDate(OpenItem const& item, UTCDateTime const& date);
// Has the file manager answer the dates that were set. For registerFiles.
void useCreationDatesInFileManager();

// Its 8 bytes, the most significant first.
inline constexpr char CreateDateAttribute[] = "com.apple.FSCatalogInfo.createDate";

} // namespace mac
