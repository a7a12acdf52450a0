#include "platform/applescript/runtime/ScriptPaths.h"
#include "platform/applescript/runtime/DescriptorKeywords.h"
#include "platform/applescript/runtime/HeapObjects.h"
#include "platform/applescript/runtime/ScriptDescriptors.h"
#include "platform/applescript/runtime/ScriptError.h"
#include "platform/applescript/runtime/SourceForm.h"
#include "platform/events/DescriptorCoercion.h"
#include "platform/files/references/HFSPaths.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/system/PercentEscapes.h"
#include <cstdlib>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace mac::applescript {

namespace {

// Each colon past the first leads one folder up: "Disk:a:b::c" is "Disk:a:c". No path leads above its volume.
std::u16string withoutSteppingUp(std::u16string_view hfsPath) {
    std::vector<std::u16string_view> names;
    std::size_t start = 0;
    for (std::size_t end = hfsPath.find(u':'); end != std::u16string_view::npos; end = hfsPath.find(u':', start)) {
        std::u16string_view const name = hfsPath.substr(start, end - start);
        start = end + 1;
        if (!name.empty() || names.empty())
            names.push_back(name);
        else if (names.size() > 1)
            names.pop_back();
    }
    std::u16string path;
    for (std::u16string_view const name : names)
        path.append(name) += u':';
    return path.append(hfsPath.substr(start));
}

bool statusOf(std::u16string_view posixPath, struct stat& status) {
    std::optional<std::string> const bytes = fileSystemBytesFromUnits(posixPath);
    return bytes && ::stat(bytes->c_str(), &status) == 0;
}

} // namespace

std::u16string hfsPathOf(std::u16string_view posixPath) { return hfsPathFromPOSIXPath(posixPath, false); }

std::u16string posixPathOf(std::u16string_view hfsPath) {
    bool const stepsUp = !hfsPath.starts_with(u'/') && hfsPath.find(u"::") != std::u16string_view::npos;
    return stepsUp ? posixPathFromHFSPath(withoutSteppingUp(hfsPath)) : posixPathFromHFSPath(hfsPath);
}

bool existsAt(std::u16string_view posixPath) {
    struct stat status {};
    return statusOf(posixPath, status);
}

bool isFolderAt(std::u16string_view posixPath) {
    struct stat status {};
    return statusOf(posixPath, status) && S_ISDIR(status.st_mode);
}

namespace {

constexpr std::string_view FileScheme = "file://";
constexpr std::string_view ThisComputer = "localhost";
constexpr std::string_view ApplicationScheme = "eppc:///";

struct Free {
    void operator()(char* text) const { std::free(text); }
};

std::string absolute(std::string_view path) {
    if (path.starts_with('/')) return std::string(path);
    std::unique_ptr<char, Free> const folder(::get_current_dir_name());
    return std::string(folder ? folder.get() : "") + "/" + std::string(path);
}

// No path holds a byte of zero.
std::optional<std::string> unescaped(std::string_view text) {
    std::optional<std::string> bytes = percentUnescaped(text);
    return bytes && bytes->find('\0') == std::string::npos ? bytes : std::nullopt;
}

} // namespace

std::string fileURL(std::string_view path) {
    return std::string(FileScheme) + std::string(ThisComputer) + percentEscaped(absolute(path));
}

std::optional<std::string> pathOfFileURL(std::string_view url) {
    if (!url.starts_with(FileScheme)) return {};
    url.remove_prefix(FileScheme.size());
    if (url.starts_with(ThisComputer)) url.remove_prefix(ThisComputer.size());
    if (!url.starts_with('/')) return {};
    return unescaped(url);
}

std::string applicationURL(std::u16string_view name) {
    return std::string(ApplicationScheme) + percentEscaped(utf8FromUnits(name));
}

std::optional<std::u16string> nameOfApplicationURL(std::string_view url) {
    if (!url.starts_with(ApplicationScheme)) return {};
    std::optional<std::string> const name = unescaped(url.substr(ApplicationScheme.size()));
    return name ? unitsFromUTF8(*name) : std::nullopt;
}

namespace {

using keywords::AliasType;

// Lists and records may be of any type, those of files among them.
Value fileOfDescriptor(AEDesc const& desc) {
    Value file = valueOfDescriptor(desc);
    if (!file.is(ValueKind::File)) throw plainError(errors::CannotCoerce);
    return file;
}

OSErr asText(AEDesc const& desc, DescType toType, AEDesc& result) {
    try {
        AEDesc const text = makeText(filePathText(fileOfDescriptor(desc)));
        return AECoerceDesc(&text, toType, &result);
    } catch (ScriptError const&) {
        return errAECoercionFail;
    }
}

OSErr asFile(AEDesc const& desc, DescType toType, AEDesc& result) {
    try {
        FileObject::Kind const kind = toType == AliasType ? FileObject::Kind::Alias : FileObject::Kind::PosixFile;
        Value const file = fileOfDescriptor(desc);
        result = descriptorOfValue(makeObject<FileObject>(ValueKind::File, kind, file.file().path));
        return noErr;
    } catch (ScriptError const&) {
        return errAECoercionFail;
    }
}

} // namespace

void installFileCoercions() {
    for (DescType const textType : {typeUnicodeText, typeText, typeUTF8Text}) {
        AEInstallCoercionHandler(AliasType, textType, asText);
        AEInstallCoercionHandler(typeFileURL, textType, asText);
    }
    AEInstallCoercionHandler(AliasType, typeFileURL, asFile);
    AEInstallCoercionHandler(typeFileURL, AliasType, asFile);
}

} // namespace mac::applescript
