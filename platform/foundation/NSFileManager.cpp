#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/DisplayNameSource.h"
#include "platform/foundation/FileAttributes.h"
#include "platform/foundation/Method.h"
#include "platform/foundation/NSData.h"
#include "platform/foundation/NSNumber.h"
#include "platform/system/FileWriting.h"
#include "platform/system/FolderContents.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
#include <atomic>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr mode_t UsualFolderMode = 0777;
constexpr mode_t UsualFileMode = 0666;

FileDescriptor openItem(NSString const& path, BOOL followsLinks) {
    std::optional<std::string> const bytes = path.fileSystemRepresentation();
    return bytes ? openPath(*bytes, O_PATH | (followsLinks ? 0 : O_NOFOLLOW)) : FileDescriptor();
}

// The folder that an item lies or is to lie in, and its name there.
struct Place {
    FileDescriptor folder{};
    std::string name{};

    bool isOpen() const { return folder.isOpen(); }
    int number() const { return folder.number(); }
};

Place placeOf(NSString const& path) {
    std::string bytes = path.fileSystemRepresentation().value_or("");
    while (bytes.size() > 1 && bytes.ends_with('/'))
        bytes.pop_back();
    if (bytes.empty()) return {};
    SplitPath parts = splitPath(bytes);
    Place place{openPath(parts.folder.empty() ? "." : parts.folder, O_PATH | O_DIRECTORY), std::move(parts.name)};
    if (place.name.empty()) place.name = ".";
    return place;
}

// What the permissions of something new are until the rest of its attributes is
// set.
mode_t modeOf(NSDictionary const& attributes, mode_t usual) {
    bool const isGiven = !(as<NSNumber>(attributes.objectForKey_(NSFilePosixPermissions)) == nil);
    return isGiven ? usual & attributes.filePosixPermissions() & PermissionBits : usual;
}

// Linked in or not, the room that knows better sets it before main.
constinit std::atomic<DisplayNameSource> s_displayNameSource{nullptr};

// What forbids every change, renaming too, has to wait until a file has its place.
NSDictionary withoutLocks(NSDictionary const& attributes) {
    NSMutableDictionary const rest = NSMutableDictionary::dictionaryWithDictionary_(attributes);
    rest.removeObjectForKey_(NSFileImmutable);
    rest.removeObjectForKey_(NSFileAppendOnly);
    return rest;
}

bool allows(FileDescriptor const& item, int access) {
    return item.isOpen() && ::faccessat(AT_FDCWD, descriptorPath(item).c_str(), access, AT_EACCESS) == 0;
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
    std::optional<FileStatus> const status = bytes ? fileStatusAtPath(*bytes) : std::nullopt;
    if (!status) return false;
    if (isDirectory) *isDirectory = status->kind == FileStatus::Kind::Folder;
    return true;
}

bool NSFileManager::isReadableFileAtPath_(NSString const& path) const {
    return *this != nil && allows(openItem(path, YES), R_OK);
}

bool NSFileManager::isWritableFileAtPath_(NSString const& path) const {
    return *this != nil && allows(openItem(path, YES), W_OK);
}

bool NSFileManager::isExecutableFileAtPath_(NSString const& path) const {
    return *this != nil && allows(openItem(path, YES), X_OK);
}

bool NSFileManager::isDeletableFileAtPath_(NSString const& path) const {
    Place const place = *this == nil ? Place() : placeOf(path);
    return place.isOpen() && allows(place.folder, W_OK | X_OK) && allowsRemoval(place);
}

NSDictionary NSFileManager::fileAttributesAtPath_traverseLink_(NSString const& path, BOOL traverseLink) const {
    FileDescriptor const item = *this == nil ? FileDescriptor() : openItem(path, traverseLink);
    return item.isOpen() ? fileAttributesOf(item) : NSDictionary(nil);
}

bool NSFileManager::changeFileAttributes_atPath_(NSDictionary const& attributes, NSString const& path) const {
    FileDescriptor const item = *this == nil ? FileDescriptor() : openItem(path, YES);
    return item.isOpen() && changeFileAttributes(item, attributes);
}

NSDictionary NSFileManager::fileSystemAttributesAtPath_(NSString const& path) const {
    FileDescriptor const item = *this == nil ? FileDescriptor() : openItem(path, YES);
    return item.isOpen() ? volumeAttributesOf(item) : NSDictionary(nil);
}

NSString NSFileManager::displayNameAtPath_(NSString const& path) const {
    if (*this == nil) return nil;
    DisplayNameSource const source = s_displayNameSource.load();
    NSString const name = source && path != nil ? source(path) : NSString(nil);
    return name == nil ? path.lastPathComponent() : name;
}

NSArray NSFileManager::directoryContentsAtPath_(NSString const& path) const {
    std::optional<std::string> const bytes = *this == nil ? std::nullopt : path.fileSystemRepresentation();
    std::optional<std::vector<std::string>> const names =
        bytes ? namesInFolder(*bytes, LinkAtEnd::IsFollowed) : std::nullopt;
    if (!names) return nil;
    std::vector<id> contents;
    contents.reserve(names->size());
    for (std::string const& name : *names)
        contents.push_back(NSString::stringWithFileSystemRepresentation_(name));
    return NSArray::arrayWithVector(std::move(contents));
}

NSDirectoryEnumerator NSFileManager::enumeratorAtPath_(NSString const& path) const {
    return *this == nil ? NSDirectoryEnumerator(nil) : directoryEnumerator(openItem(path, YES));
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
    Place const place = *this == nil ? Place() : placeOf(path);
    if (!place.isOpen()) return false;
    if (::mkdirat(place.number(), place.name.c_str(), modeOf(attributes, UsualFolderMode)) != 0) return false;
    FileDescriptor const folder(
        ::openat(place.number(), place.name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    return attributes.count() == 0 || (folder.isOpen() && changeFileAttributes(folder, attributes));
}

bool NSFileManager::createFileAtPath_contents_attributes_(NSString const& path, NSData const& contents,
                                                          NSDictionary const& attributes) const {
    std::optional<std::string> const bytes = *this == nil ? std::nullopt : path.fileSystemRepresentation();
    if (!bytes) return false;
    FileReplacement how{.newFileMode = modeOf(attributes, UsualFileMode)};
    bool hasAttributes = true;
    if (attributes.count() > 0) {
        // On the file that was written, and before anybody finds it.
        how.beforeRenaming = [&](FileDescriptor const& file) {
            hasAttributes = changeFileAttributes(file, withoutLocks(attributes));
            return true;
        };
        how.afterRenaming = [&](FileDescriptor const& file) {
            hasAttributes = changeLocks(file, attributes) && hasAttributes;
            return true;
        };
    }
    return replaceFileAtPath(*bytes, contents.span(), how) && hasAttributes;
}

NSString NSFileManager::pathContentOfSymbolicLinkAtPath_(NSString const& path) const {
    Place const place = *this == nil ? Place() : placeOf(path);
    std::optional<std::string> const text = place.isOpen() ? linkTextIn(place.folder, place.name) : std::nullopt;
    return text ? NSString::stringWithFileSystemRepresentation_(*text) : NSString(nil);
}

bool NSFileManager::createSymbolicLinkAtPath_pathContent_(NSString const& path, NSString const& content) const {
    Place const place = *this == nil ? Place() : placeOf(path);
    std::optional<std::string> const text = content.fileSystemRepresentation();
    return place.isOpen() && text && ::symlinkat(text->c_str(), place.number(), place.name.c_str()) == 0;
}

} // namespace mac
