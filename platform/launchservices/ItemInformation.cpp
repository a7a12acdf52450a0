#include "platform/launchservices/ItemInformation.h"
#include "platform/files/references/FSRef.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/launchservices/BundleFiles.h"
#include "platform/launchservices/DiskItem.h"
#include "platform/launchservices/DisplayNames.h"

namespace mac {

namespace {

constexpr OSType ApplicationType{"APPL"};

LSItemInfoFlags basicFlags(DiskItem const& item) {
    LSItemInfoFlags flags = 0;
    switch (item.kind) {
    case DiskItem::Kind::Folder:
        flags |= kLSItemInfoIsContainer;
        break;
    case DiskItem::Kind::Link:
        flags |= kLSItemInfoIsSymlink | kLSItemInfoIsAliasFile;
        break;
    case DiskItem::Kind::File:
    case DiskItem::Kind::Other:
        flags |= kLSItemInfoIsPlainFile;
        break;
    }
    bool const isAliasFile = item.kind == DiskItem::Kind::File && (item.finder.finderFlags() & kIsAlias) != 0;
    if (isAliasFile) flags |= kLSItemInfoIsAliasFile;
    if (item.isVolume) flags |= kLSItemInfoIsVolume;
    if (item.isPackage()) flags |= kLSItemInfoIsPackage;
    bool const isApplicationFile = item.kind == DiskItem::Kind::File && item.finder.fileType() == ApplicationType;
    if (item.isApplicationBundle() || isApplicationFile) flags |= kLSItemInfoIsApplication;
    if (item.isInvisible()) flags |= kLSItemInfoIsInvisible;
    return flags;
}

LSItemInfoFlags applicationFlags(DiskItem const& item) {
    if (!item.isApplicationBundle()) return 0;
    id const scriptable = bundleInformation(item.path).objectForKey_("NSAppleScriptEnabled");
    // Written as a truth value or as text.
    bool const isScriptable = as<NSNumber>(scriptable).boolValue() || as<NSString>(scriptable).boolValue();
    return kLSItemInfoIsNativeApp | (isScriptable ? kLSItemInfoAppIsScriptable : 0);
}

LSItemInfoFlags extensionFlags(DiskItem const& item) { return hidesExtension(item) ? kLSItemInfoExtensionIsHidden : 0; }

// Zero for what is no code.
OSType codeOf(id const& text) { return codeOfText(as<NSString>(text).codeUnits()).value_or(OSType()); }

void addTypeAndCreator(DiskItem const& item, LSItemInfoRecord& record) {
    if (item.kind == DiskItem::Kind::File) {
        record.filetype = item.finder.fileType();
        record.creator = item.finder.fileCreator();
    }
    if (!item.isPackage()) return;
    NSDictionary const information = bundleInformation(item.path);
    record.filetype = codeOf(information.objectForKey_("CFBundlePackageType"));
    record.creator = codeOf(information.objectForKey_("CFBundleSignature"));
}

LSItemInfoRecord recordOf(DiskItem const& item, LSRequestedInfo which) {
    LSItemInfoRecord record;
    bool const wantsAllFlags = (which & kLSRequestAllFlags) != 0;
    if (wantsAllFlags || (which & kLSRequestBasicFlagsOnly) != 0) record.flags |= basicFlags(item);
    if (wantsAllFlags || (which & kLSRequestAppTypeFlags) != 0) record.flags |= applicationFlags(item);
    if (wantsAllFlags || (which & kLSRequestExtensionFlagsOnly) != 0) record.flags |= extensionFlags(item);
    if ((which & kLSRequestTypeCreator) != 0) addTypeAndCreator(item, record);
    if ((which & kLSRequestExtension) != 0 && !item.extension().empty())
        record.extension = NSString::stringWithFileSystemRepresentation_(item.extension());
    return record;
}

} // namespace

OSStatus LSCopyItemInfoForRef(FSRef const* itemRef, LSRequestedInfo whichInfo, LSItemInfoRecord* itemInfo) {
    if (!itemRef || !itemInfo) return paramErr;
    Result<DiskItem> const item = diskItemOf(*itemRef);
    if (!item.hasValue()) return fnfErr;
    *itemInfo = recordOf(item.value(), whichInfo);
    return noErr;
}

OSStatus LSCopyItemInfoForURL(CFURLRef const& url, LSRequestedInfo whichInfo, LSItemInfoRecord* itemInfo) {
    if (!itemInfo || !url.isFileURL()) return paramErr;
    Result<DiskItem> const item = diskItemOf(url);
    if (!item.hasValue()) return fnfErr;
    *itemInfo = recordOf(item.value(), whichInfo);
    return noErr;
}

} // namespace mac
