#include "app/IconSwap.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/files/NSFileManager.h"
#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include "platform/foundation/running/NSTask.h"
#include "platform/system/FileWriting.h"
#include "platform/system/OpenItems.h"
#include "platform/system/items/OpenItem.h"

namespace framekeeper {

namespace {

constexpr char FirstIcon[] = "mirrorframe1";
constexpr char SecondIcon[] = "mirrorframe2";

// Information files have a few thousand bytes.
constexpr std::size_t LargestFile = std::size_t{4} << 20;

NSString otherIcon(id const& name) {
    if (name.isEqual_(SecondIcon)) return FirstIcon;
    return name.isEqual_(FirstIcon) ? NSString(SecondIcon) : NSString();
}

// Writes in the folder "Contents" of the bundle, and only over the very file that was read.
bool writeInformation(std::string const& bundle, NSData const& data, FileStatus const& state) {
    Result<OpenItem> const item = openItemAtPath(bundle, LinkAtEnd::IsFollowed);
    if (!item.hasValue()) return false;
    Result<FileDescriptor> const contents = openBelow(item.value().item, "Contents");
    if (!contents.hasValue()) return false;
    return replaceFileInFolder(contents.value(), "Info.plist", data.span(), {.hasToBe = true, .state = state}).isDone();
}

NSInteger touch(NSString const& path) {
    NSTask const task =
        NSTask::launchedTaskWithLaunchPath_arguments_("/usr/bin/touch", NSArray::arrayWithObject_(path));
    task.waitUntilExit();
    return task.terminationStatus();
}

} // namespace

IconSwap swapIcon(NSString const& path, NSString const& presentName) {
    NSString const file =
        path.stringByAppendingPathComponent_("Contents").stringByAppendingPathComponent_("Info.plist");
    std::string const bundle = path.fileSystemRepresentation().value_or("");
    Result<FileContents> const contents = readFileAtPath(file.fileSystemRepresentation().value_or(""), LargestFile);
    if (!contents.hasValue()) return {.failure = "Could not read plist."};

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
    bool const mayWrite = NSFileManager::defaultManager().isWritableFileAtPath_(file);
    if (!mayWrite || !writeInformation(bundle, data, contents.value().status))
        return {.failure = "Could not write plist."};

    NSInteger const status = touch(path);
    NSString const failure = status == 0 ? NSString() : NSString::stringWithFormat_("touch result: %d.", status);
    return {.formerName = formerName, .newName = newName, .failure = failure};
}

} // namespace framekeeper
