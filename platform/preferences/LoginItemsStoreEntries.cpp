#include "platform/desktop/HexText.h"
#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include "platform/preferences/LoginItemsStore.h"
#include "platform/system/ASCII.h"
#include "platform/system/BytePath.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <unistd.h>

namespace mac {

namespace {

constexpr std::string_view BundleFileExtension = ".app";

// The absolute path in bytes; empty if the item has none.
std::string standardisedPath(NSDictionary const& item) {
    NSString const path = as<NSString>(item.objectForKey_("Path")).stringByStandardizingPath();
    std::string bytes = path.fileSystemRepresentation().value_or("");
    return bytes.starts_with('/') && bytes.size() > 1 ? bytes : "";
}

bool isBundlePath(std::string const& path) {
    return path.size() > BundleFileExtension.size() && asciiLowercase(path).ends_with(BundleFileExtension);
}

// False if the problem means that nothing at the path can be started, rather than that it could not be looked at.
Result<bool> isProgramAfter(SystemError const& problem) {
    constexpr std::array codes{EACCES, ENOENT, ENOTDIR, ELOOP, ENAMETOOLONG};
    bool const isNone = std::ranges::any_of(codes, [&](int code) { return problem.is(code); });
    return isNone ? Result<bool>(false) : problem;
}

// Whether a file is at the path that may be executed.
Result<bool> isProgramFile(std::string const& path) {
    Result<FileStatus> const status = fileStatusAtPath(path);
    if (!status.hasValue()) return isProgramAfter(status.problem());
    if (status.value().kind != FileStatus::Kind::File) return false;
    if (::access(path.c_str(), X_OK) == 0) return true;
    return isProgramAfter(lastSystemError("access", path));
}

// The dictionary in the text of an own entry; nil if the entry has none.
NSDictionary dictionaryInNote(std::string const& note) {
    std::optional<std::string> const bytes = bytesFromHexText(note);
    if (!bytes || bytes->empty()) return nil;
    return as<NSDictionary>(NSPropertyListSerialization::propertyListFromData_mutabilityOption_format_errorDescription_(
        NSData::dataWithBytes(std::as_bytes(std::span(*bytes))), NSPropertyListImmutable, nullptr, nullptr));
}

// The dictionary as text of one line; nullopt for what is no property list.
std::optional<std::string> noteOf(NSDictionary const& item) {
    NSData const data = NSPropertyListSerialization::dataFromPropertyList_format_errorDescription_(
        item, NSPropertyListBinaryFormat_v1_0, nullptr);
    if (data == nil) return std::nullopt;
    return hexTextOf({reinterpret_cast<char const*>(data.bytes()), data.length()});
}

// The program in the bundle at the path; empty without one.
std::string programOfBundle(std::string const& path) {
    NSBundle const bundle = NSBundle::bundleWithPath_(NSString::stringWithFileSystemRepresentation_(path));
    return bundle.executablePath().fileSystemRepresentation().value_or("");
}

} // namespace

NSDictionary loginItemOf(AutostartItem const& item) {
    NSDictionary const written = item.entry.own ? dictionaryInNote(item.entry.own->note) : NSDictionary();
    if (written != nil && standardisedPath(written) == item.started) return written;
    return NSDictionary::dictionaryWithObjectsAndKeys_(
        {NSNumber::numberWithBool_(NO), "Hide", NSString::stringWithFileSystemRepresentation_(item.started), "Path"});
}

Result<bool> hasEntryForm(id const& element) {
    NSDictionary const item = as<NSDictionary>(element);
    std::string const path = standardisedPath(item);
    if (path.empty() || !noteOf(item)) return false;
    return isBundlePath(path) ? Result<bool>(true) : isProgramFile(path);
}

NewAutostartEntry newEntryFor(NSDictionary const& item, unsigned long order) {
    std::string path = standardisedPath(item);
    std::string program = isBundlePath(path) ? programOfBundle(path) : path;
    return {.program = std::move(program), .item = std::move(path), .order = order, .note = noteOf(item).value_or("")};
}

unsigned long nextLoginItemOrder() {
    unsigned long order = 1;
    for (AutostartItem const& item : autostartItems().items) {
        if (item.entry.own) order = std::max(order, item.entry.own->order + 1);
    }
    return order;
}

} // namespace mac
