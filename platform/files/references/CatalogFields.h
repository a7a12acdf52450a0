#pragma once

#include "platform/files/references/CatalogInformation.h"
#include "platform/system/items/OpenItem.h"

namespace mac {

// The implementation of FSGetCatalogInfo and FSSetCatalogInfo on an open item. Fields that are not asked for stay as
// they are; on failure some of the others may have been read or written. Any thread.

Result<void> readCatalogFields(OpenItem const& item, FSCatalogInfoBitmap whichInfo, FSCatalogInfo& information);
Result<void> writeCatalogFields(OpenItem const& item, FSCatalogInfoBitmap whichInfo, FSCatalogInfo const& information);

} // namespace mac
