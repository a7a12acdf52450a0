#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/bundles/BundleInformation.h"
#include "platform/foundation/files/NSFileManager.h"
#include "platform/foundation/objects/Method.h"
#include <array>
#include <climits>
#include <memory>
#include <unistd.h>

namespace mac {

class NSBundle::Body : public ObjectBody {
public:
    Body(NSString path, NSString executable) : m_path(std::move(path)), m_executable(std::move(executable)) {}

    NSString m_path;
    // The running program; nil for other bundles than the main one.
    NSString m_executable;
};

namespace {

bool isFolder(NSString const& path) {
    bool isDirectory = false;
    return NSFileManager::defaultManager().fileExistsAtPath_isDirectory_(path, &isDirectory) && isDirectory;
}

bool isFile(NSString const& path) {
    bool isDirectory = false;
    return NSFileManager::defaultManager().fileExistsAtPath_isDirectory_(path, &isDirectory) && !isDirectory;
}

// Nil when the system does not tell, as for a path that is too long for it.
NSString pathOfRunningProgram() {
    std::array<char, PATH_MAX> buffer{};
    ssize_t const length = ::readlink("/proc/self/exe", buffer.data(), buffer.size());
    if (length <= 0 || static_cast<std::size_t>(length) == buffer.size()) return nil;
    return NSString::stringWithFileSystemRepresentation_({buffer.data(), static_cast<std::size_t>(length)});
}

NSBundle makeMainBundle() {
    NSString const executable = pathOfRunningProgram();
    NSString const path = executable == nil ? NSString("/") : bundlePathOfExecutable(executable);
    return adopt<NSBundle>(path, executable);
}

} // namespace

ClassDescription NSBundle::describeClass() {
    return {
        .name = "NSBundle",
        .superclass = classOf<NSObject>(),
        .methods =
            {
                method<&NSBundle::bundlePath>("bundlePath"),
                method<&NSBundle::infoDictionary>("infoDictionary"),
                method<&NSBundle::objectForInfoDictionaryKey_>("objectForInfoDictionaryKey:"),
                method<&NSBundle::bundleIdentifier>("bundleIdentifier"),
                method<&NSBundle::executablePath>("executablePath"),
                method<&NSBundle::resourcePath>("resourcePath"),
                method<&NSBundle::pathForResource_ofType_>("pathForResource:ofType:"),
            },
        .classMethods = {method<&NSBundle::mainBundle>("mainBundle")},
    };
}

NSString bundlePathOfExecutable(NSString const& path) {
    NSString const folder = path.stringByDeletingLastPathComponent();
    NSString const contents = folder.stringByDeletingLastPathComponent();
    bool const isInBundle = folder.lastPathComponent().isEqualToString_("Linux") &&
                            contents.lastPathComponent().isEqualToString_("Contents");
    return isInBundle ? contents.stringByDeletingLastPathComponent() : folder;
}

NSBundle NSBundle::mainBundle() {
    // Never destroyed: other objects may ask for it until the program's last instruction.
    static NSBundle const& main = *std::make_unique<NSBundle>(makeMainBundle()).release();
    return main;
}

NSBundle NSBundle::bundleWithPath_(NSString const& path) {
    if (!isFolder(path)) return nil;
    return adopt<NSBundle>(uncheckedCast<NSString>(path.copy()), NSString());
}

NSString NSBundle::bundlePath() const { return *this == nil ? NSString() : bodyOf(*this)->m_path; }

NSDictionary NSBundle::infoDictionary() const {
    if (*this == nil) return nil;
    std::optional<std::string> const path = bundlePath().fileSystemRepresentation();
    return path ? informationOfBundle(*path) : NSDictionary::dictionary();
}

id NSBundle::objectForInfoDictionaryKey_(NSString const& key) const { return infoDictionary().objectForKey_(key); }

NSString NSBundle::bundleIdentifier() const {
    NSString const identifier = as<NSString>(objectForInfoDictionaryKey_("CFBundleIdentifier"));
    if (identifier.length() == 0) return nil;
    return identifier;
}

NSString NSBundle::executablePath() const {
    if (*this == nil) return nil;
    NSString const name = as<NSString>(objectForInfoDictionaryKey_("CFBundleExecutable"));
    // A name, not a path that leads elsewhere.
    bool const isName = name.length() > 0 && name.codeUnits().find(u'/') == std::u16string_view::npos;
    if (!isName) return bodyOf(*this)->m_executable;
    for (NSString const& folder : {NSString("Contents/Linux"), NSString("Contents/MacOS"), NSString("")}) {
        NSString const path =
            bundlePath().stringByAppendingPathComponent_(folder).stringByAppendingPathComponent_(name);
        if (isFile(path)) return path;
    }
    return bodyOf(*this)->m_executable;
}

NSString NSBundle::resourcePath() const {
    NSString const resources = bundlePath().stringByAppendingPathComponent_("Contents/Resources");
    return isFolder(resources) ? resources : bundlePath();
}

NSString NSBundle::pathForResource_ofType_(NSString const& name, NSString const& type) const {
    if (*this == nil || name.length() == 0) return nil;
    NSString const file = type.length() > 0 ? name.stringByAppendingPathExtension_(type) : name;
    NSString const path = resourcePath().stringByAppendingPathComponent_(file);
    if (!NSFileManager::defaultManager().fileExistsAtPath_(path)) return nil;
    return path;
}

} // namespace mac
