#pragma once

#include "platform/files/CatalogInformation.h"
#include "platform/system/items/OpenItem.h"

namespace mac {

// What stands behind FSGetCatalogInfo and FSSetCatalogInfo; any thread. False when a field cannot be read or written;
// errno says why. Fields that are not asked for stay as they are.

bool readCatalogFields(OpenItem const& item, FSCatalogInfoBitmap whichInfo, FSCatalogInfo& information);
bool writeCatalogFields(OpenItem const& item, FSCatalogInfoBitmap whichInfo, FSCatalogInfo const& information);

// Leads to the item through its folder, which is held open; for attributes, with a link not followed.
std::string attributePath(OpenItem const& item);

} // namespace mac
