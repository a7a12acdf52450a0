#include "app/IconSwap.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/files/NSFileManager.h"
#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include "platform/system/FileWriting.h"
#include "platform/system/OpenItems.h"
#include "platform/system/items/ItemDates.h"
#include "platform/system/items/OpenItem.h"

namespace framekeeper {

namespace {

constexpr char FirstIcon[] = "mirrorframe1";
constexpr char SecondIcon[] = "mirrorframe2";
constexpr char CouldNotRead[] = "Could not read plist.";
// As the program "touch" would have ended.
constexpr char TouchFailed[] = "touch result: 1.";

// Information files have a few thousand bytes.
constexpr std::size_t LargestFile = std::size_t{4} << 20;

NSString otherIcon(id const& name) {
    if (name.isEqual_(SecondIcon)) return FirstIcon;
    return name.isEqual_(FirstIcon) ? NSString(SecondIcon) : NSString();
}

// Writes in the folder "Contents" of the bundle, and only over the very file that was read.
bool writeInformation(OpenItem const& bundle, NSData const& data, FileStatus const& state) {
    Result<FileDescriptor> const contents = openBelow(bundle.item, "Contents");
    if (!contents.hasValue()) return false;
    return replaceFileInFolder(contents.value(), "Info.plist", data.span(), {.hasToBe = true, .state = state}).isDone();
}

} // namespace

IconSwap swapIcon(NSString const& path, NSString const& presentName) {
    Result<OpenItem> const bundle = openItemAtPath(path.fileSystemRepresentation().value_or(""), LinkAtEnd::IsFollowed);
    return bundle.hasValue() ? swapIcon(bundle.value(), presentName) : IconSwap{.failure = CouldNotRead};
}

IconSwap swapIcon(OpenItem const& bundle, NSString const& presentName) {
    std::string const file = bundle.systemPath() + "/Contents/Info.plist";
    Result<FileContents> const contents = readFileAtPath(file, LargestFile);
    if (!contents.hasValue()) return {.failure = CouldNotRead};

    NSPropertyListFormat format{};
    NSString error;
    id const list = NSPropertyListSerialization::propertyListFromData_mutabilityOption_format_errorDescription_(
        NSData::dataWithBytes(contents.value().bytes), NSPropertyListMutableContainersAndLeaves, &format, &error);
    if (error != nil) return {.failure = error};
    NSMutableDictionary const information = as<NSMutableDictionary>(list);
    NSString const formerName = as<NSString>(information.objectForKey_("CFBundleIconFile"));
    NSString const newName = otherIcon(formerName);
    bool const isExpected = presentName == nil || presentName.isEqual_(formerName);
    if (newName == nil || !isExpected) return {.failure = "Not supported with this version of Mirror Frame."};

    information.setObject_forKey_(newName, "CFBundleIconFile");
    NSData const data =
        NSPropertyListSerialization::dataFromPropertyList_format_errorDescription_(information, format, {});
    if (data == nil) return {.failure = "Could not create plist data."};
    bool const mayWrite =
        NSFileManager::defaultManager().isWritableFileAtPath_(NSString::stringWithFileSystemRepresentation_(file));
    if (!mayWrite || !writeInformation(bundle, data, contents.value().status))
        return {.failure = "Could not write plist."};

    NSString const failure = setDatesToNow(bundle.item).isDone() ? NSString() : NSString(TouchFailed);
    return {.formerName = formerName, .newName = newName, .failure = failure};
}

} // namespace framekeeper
