#include "platform/foundation/files/NSFileManager.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/files/DisplayNameSource.h"
#include "platform/foundation/files/FileAttributes.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Method.h"
#include "platform/system/BytePath.h"
#include "platform/system/FileWriting.h"
#include "platform/system/FolderContents.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
#include "platform/system/items/ItemLock.h"
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr mode_t UsualFolderMode = 0777;
constexpr mode_t UsualFileMode = 0666;

// The error of a path that is nil, empty or has no file-system representation.
SystemError noPath() { return {.code = ENOENT, .operation = "open"}; }

Result<FileDescriptor> openItem(NSString const& path, LinkAtEnd linkAtEnd) {
    std::optional<std::string> const bytes = path.fileSystemRepresentation();
    if (!bytes) return noPath();
    return openPath(*bytes, O_PATH | (linkAtEnd == LinkAtEnd::IsFollowed ? 0 : O_NOFOLLOW));
}

// The folder that an item lies or is to lie in, and its name there.
struct Place {
    FileDescriptor folder{};
    std::string name{};

    int number() const { return folder.number(); }
};

Result<Place> placeOf(NSString const& path) {
    std::string const bytes = path.fileSystemRepresentation().value_or("");
    if (bytes.empty()) return noPath();
    BytePath const item(bytes);
    std::string_view const folderPath = item.parent();
    Result<FileDescriptor> folder = openPath(folderPath.empty() ? "." : folderPath, O_PATH | O_DIRECTORY);
    if (!folder.hasValue()) return folder.problem();
    std::string_view const name = item.leaf();
    return Place{folder.takeValue(), std::string(name.empty() ? "." : name)};
}

// The permissions of a new item until the rest of its attributes is set.
mode_t modeOf(NSDictionary const& attributes, mode_t usual) {
    bool const isGiven = !(as<NSNumber>(attributes.objectForKey_(NSFilePosixPermissions)) == nil);
    return isGiven ? usual & attributes.filePosixPermissions() & PermissionBits : usual;
}

// Linked in or not, the room that knows better sets it before main.
constinit std::atomic<DisplayNameSource> s_displayNameSource{nullptr};

// What forbids every change, renaming too, has to wait until a file has its place, and so does the creation date, which
// may be kept in a file beside it.
NSDictionary withoutDateAndLocks(NSDictionary const& attributes) {
    NSMutableDictionary const rest = NSMutableDictionary::dictionaryWithDictionary_(attributes);
    rest.removeObjectForKey_(NSFileCreationDate);
    rest.removeObjectForKey_(NSFileImmutable);
    rest.removeObjectForKey_(NSFileAppendOnly);
    return rest;
}

bool allows(FileDescriptor const& item, int access) {
    return ::faccessat(AT_FDCWD, descriptorPath(item).c_str(), access, AT_EACCESS) == 0;
}

bool allowsAtPath(NSString const& path, int access) {
    Result<FileDescriptor> const item = openItem(path, LinkAtEnd::IsFollowed);
    return item.hasValue() && allows(item.value(), access);
}

// In a folder with the sticky bit only an item's owner and the folder's may
// remove it; the root and folders without their name nobody can.
bool allowsRemoval(Place const& place) {
    if (place.name == "." || place.name == "..") return false;
    struct stat folder {};
    struct stat item {};
    if (::fstat(place.number(), &folder) != 0) return false;
    if (::fstatat(place.number(), place.name.c_str(), &item, AT_SYMLINK_NOFOLLOW) != 0) return false;
    uid_t const user = ::geteuid();
    return (folder.st_mode & S_ISVTX) == 0 || user == 0 || user == item.st_uid || user == folder.st_uid;
}

} // namespace

void setDisplayNameSource(DisplayNameSource source) { s_displayNameSource.store(source); }

NSString NSTemporaryDirectory() {
    char const* const folder = std::getenv("TMPDIR");
    bool const isUsable = folder && BytePath(folder).isAbsolute();
    return NSString::stringWithFileSystemRepresentation_(BytePath(isUsable ? folder : "/tmp").bytes());
}

class NSFileManager::Body : public ObjectBody {};

ClassDescription NSFileManager::describeClass() {
    return {
        .name = "NSFileManager",
        .superclass = classOf<NSObject>(),
        .methods =
            {
                method<&NSFileManager::fileExistsAtPath_>("fileExistsAtPath:"),
                method<&NSFileManager::isReadableFileAtPath_>("isReadableFileAtPath:"),
                method<&NSFileManager::isWritableFileAtPath_>("isWritableFileAtPath:"),
                method<&NSFileManager::isExecutableFileAtPath_>("isExecutableFileAtPath:"),
                method<&NSFileManager::isDeletableFileAtPath_>("isDeletableFileAtPath:"),
                method<&NSFileManager::fileAttributesAtPath_traverseLink_>("fileAttributesAtPath:traverseLink:"),
                method<&NSFileManager::changeFileAttributes_atPath_>("changeFileAttributes:atPath:"),
                method<&NSFileManager::fileSystemAttributesAtPath_>("fileSystemAttributesAtPath:"),
                method<&NSFileManager::displayNameAtPath_>("displayNameAtPath:"),
                method<&NSFileManager::directoryContentsAtPath_>("directoryContentsAtPath:"),
                method<&NSFileManager::enumeratorAtPath_>("enumeratorAtPath:"),
                method<&NSFileManager::contentsAtPath_>("contentsAtPath:"),
                method<&NSFileManager::contentsEqualAtPath_andPath_>("contentsEqualAtPath:andPath:"),
                method<&NSFileManager::createDirectoryAtPath_attributes_>("createDirectoryAtPath:attributes:"),
                method<&NSFileManager::createFileAtPath_contents_attributes_>("createFileAtPath:contents:attributes:"),
                method<&NSFileManager::removeFileAtPath_handler_>("removeFileAtPath:handler:"),
                method<&NSFileManager::movePath_toPath_handler_>("movePath:toPath:handler:"),
                method<&NSFileManager::copyPath_toPath_handler_>("copyPath:toPath:handler:"),
                method<&NSFileManager::pathContentOfSymbolicLinkAtPath_>("pathContentOfSymbolicLinkAtPath:"),
                method<&NSFileManager::createSymbolicLinkAtPath_pathContent_>("createSymbolicLinkAtPath:pathContent:"),
            },
        .classMethods = {method<&NSFileManager::defaultManager>("defaultManager")},
    };
}

NSFileManager NSFileManager::defaultManager() {
    // Never destroyed: other objects may ask for it until the program's last
    // instruction.
    static NSFileManager const& shared = *std::make_unique<NSFileManager>(adopt<NSFileManager>()).release();
    return shared;
}

bool NSFileManager::fileExistsAtPath_(NSString const& path) const {
    return fileExistsAtPath_isDirectory_(path, nullptr);
}

bool NSFileManager::fileExistsAtPath_isDirectory_(NSString const& path, bool* isDirectory) const {
    if (isDirectory) *isDirectory = false;
    if (*this == nil) return false;
    std::optional<std::string> const bytes = path.fileSystemRepresentation();
    if (!bytes) return false;
    Result<FileStatus> const status = fileStatusAtPath(*bytes);
    if (!status.hasValue()) return false;
    if (isDirectory) *isDirectory = status.value().kind == FileStatus::Kind::Folder;
    return true;
}

bool NSFileManager::isReadableFileAtPath_(NSString const& path) const {
    return *this != nil && allowsAtPath(path, R_OK);
}

bool NSFileManager::isWritableFileAtPath_(NSString const& path) const {
    return *this != nil && allowsAtPath(path, W_OK);
}

bool NSFileManager::isExecutableFileAtPath_(NSString const& path) const {
    return *this != nil && allowsAtPath(path, X_OK);
}

bool NSFileManager::isDeletableFileAtPath_(NSString const& path) const {
    if (*this == nil) return false;
    Result<Place> const place = placeOf(path);
    return place.hasValue() && allows(place.value().folder, W_OK | X_OK) && allowsRemoval(place.value());
}

NSDictionary NSFileManager::fileAttributesAtPath_traverseLink_(NSString const& path, BOOL traverseLink) const {
    if (*this == nil) return nil;
    Result<FileDescriptor> const item = openItem(path, traverseLink ? LinkAtEnd::IsFollowed : LinkAtEnd::IsNotFollowed);
    return item.hasValue() ? fileAttributesOf(item.value()) : NSDictionary(nil);
}

bool NSFileManager::changeFileAttributes_atPath_(NSDictionary const& attributes, NSString const& path) const {
    if (*this == nil) return false;
    Result<FileDescriptor> const item = openItem(path, LinkAtEnd::IsFollowed);
    return item.hasValue() && changeFileAttributes(item.value(), attributes);
}

NSDictionary NSFileManager::fileSystemAttributesAtPath_(NSString const& path) const {
    if (*this == nil) return nil;
    Result<FileDescriptor> const item = openItem(path, LinkAtEnd::IsFollowed);
    return item.hasValue() ? volumeAttributesOf(item.value()) : NSDictionary(nil);
}

NSString NSFileManager::displayNameAtPath_(NSString const& path) const {
    if (*this == nil) return nil;
    DisplayNameSource const source = s_displayNameSource.load();
    NSString const name = source && path != nil ? source(path) : NSString(nil);
    return name == nil ? path.lastPathComponent() : name;
}

NSArray NSFileManager::directoryContentsAtPath_(NSString const& path) const {
    std::optional<std::string> const bytes = *this == nil ? std::nullopt : path.fileSystemRepresentation();
    if (!bytes) return nil;
    Result<std::vector<std::string>> const names = namesInFolder(*bytes, LinkAtEnd::IsFollowed);
    if (!names.hasValue()) return nil;
    std::vector<id> contents;
    contents.reserve(names.value().size());
    for (std::string const& name : names.value())
        contents.push_back(NSString::stringWithFileSystemRepresentation_(name));
    return NSArray::arrayWithVector(std::move(contents));
}

NSDirectoryEnumerator NSFileManager::enumeratorAtPath_(NSString const& path) const {
    if (*this == nil) return nil;
    Result<FileDescriptor> folder = openItem(path, LinkAtEnd::IsFollowed);
    return folder.hasValue() ? directoryEnumerator(folder.takeValue()) : NSDirectoryEnumerator(nil);
}

NSData NSFileManager::contentsAtPath_(NSString const& path) const {
    return *this == nil ? NSData(nil) : NSData::dataWithContentsOfFile_(path);
}

bool NSFileManager::contentsEqualAtPath_andPath_(NSString const& path, NSString const& otherPath) const {
    std::optional<std::string> const bytes = path.fileSystemRepresentation();
    std::optional<std::string> const otherBytes = otherPath.fileSystemRepresentation();
    return *this != nil && bytes && otherBytes && haveEqualContents(*bytes, *otherBytes);
}

bool NSFileManager::createDirectoryAtPath_attributes_(NSString const& path, NSDictionary const& attributes) const {
    if (*this == nil) return false;
    Result<Place> const found = placeOf(path);
    if (!found.hasValue()) return false;
    Place const& place = found.value();
    if (::mkdirat(place.number(), place.name.c_str(), modeOf(attributes, UsualFolderMode)) != 0) return false;
    FileDescriptor const folder(
        ::openat(place.number(), place.name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    return attributes.count() == 0 || (folder.isOpen() && changeFileAttributes(folder, attributes));
}

bool NSFileManager::createFileAtPath_contents_attributes_(NSString const& path, NSData const& contents,
                                                          NSDictionary const& attributes) const {
    std::optional<std::string> const bytes = *this == nil ? std::nullopt : path.fileSystemRepresentation();
    if (!bytes) return false;
    Result<OpenItem> const old = openItemAtPath(*bytes, LinkAtEnd::IsFollowed);
    if (old.hasValue() && lockOf(old.value()) == ItemLock::Locked) return false;
    FileReplacement how{.newFileMode = modeOf(attributes, UsualFileMode)};
    bool hasAttributes = true;
    if (attributes.count() > 0) {
        // Once the file is written, and before it has the name.
        how.beforeFlushing = [&](FileDescriptor const& file) {
            hasAttributes = changeFileAttributes(file, withoutDateAndLocks(attributes));
            return Result<void>();
        };
        how.afterRenaming = [&](FileDescriptor const& file) {
            hasAttributes = changeCreationDateAndLocks(file, attributes) && hasAttributes;
            return Result<void>();
        };
    }
    return replaceFileAtPath(*bytes, contents.span(), how).isDone() && hasAttributes;
}

NSString NSFileManager::pathContentOfSymbolicLinkAtPath_(NSString const& path) const {
    if (*this == nil) return nil;
    Result<Place> const place = placeOf(path);
    if (!place.hasValue()) return nil;
    Result<std::string> const text = linkTextIn(place.value().folder, place.value().name);
    return text.hasValue() ? NSString::stringWithFileSystemRepresentation_(text.value()) : NSString(nil);
}

bool NSFileManager::createSymbolicLinkAtPath_pathContent_(NSString const& path, NSString const& content) const {
    std::optional<std::string> const text = content.fileSystemRepresentation();
    if (*this == nil || !text) return false;
    Result<Place> const place = placeOf(path);
    return place.hasValue() && ::symlinkat(text->c_str(), place.value().number(), place.value().name.c_str()) == 0;
}

} // namespace mac
