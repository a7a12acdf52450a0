#include "platform/foundation/bundles/BundleReading.h"
#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include "platform/system/BytePath.h"
#include "platform/system/OpenItems.h"
#include <array>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <memory>

namespace mac {

namespace {

constexpr std::array<std::string_view, 4> kPlaces{"Contents/Info.plist", "Info.plist", "Resources/Info.plist",
                                                  "Support Files/Info.plist"};

// Information files have a few thousand bytes; the largest have less than a million.
constexpr std::size_t kLargestFile = std::size_t{4} << 20;

std::string pathOfPlace(std::string_view bundlePath, std::size_t place) {
    return BytePath(bundlePath).joined(kPlaces[place]);
}

// Reads a file at once, in place of looking first what is at the path, where nearly always a regular file lies. A
// symbolic link fails with ELOOP; a pipe or a device, which few may put there, is opened without waiting for it.
Result<FileContents> readLikelyFile(std::string const& path) {
    Result<FileDescriptor> const file = openPath(path, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
    if (!file.hasValue()) return file.problem();
    return readOpenFile(file.value(), kLargestFile);
}

// Why the file cannot be read, as the log tells it.
std::string reasonOf(int code) {
    if (code == EFBIG) return "It is too large";
    if (code == EISDIR) return "It is a folder";
    if (code == EINVAL) return "It is no regular file";
    return textOfSystemError(code);
}

// Whether the error lies in the file itself, so that it stays until the file's status changes.
bool isErrorOfFile(int code) { return code == EFBIG || code == EISDIR || code == EINVAL; }

ReadingProblem problemOf(int code) { return {.reason = reasonOf(code), .isLasting = isErrorOfFile(code)}; }

Result<NSDictionary, ReadingProblem> dictionaryIn(FileContents const& contents) {
    NSString reason;
    id const list = NSPropertyListSerialization::propertyListFromData_mutabilityOption_format_errorDescription_(
        NSData::dataWithBytes(contents.bytes), NSPropertyListImmutable, nullptr, &reason);
    if (list == nil) return ReadingProblem{reason.UTF8String()};
    NSDictionary const dictionary = as<NSDictionary>(list);
    if (dictionary == nil) return ReadingProblem{"It holds no dictionary"};
    return dictionary;
}

struct BundleSummaryKeys {
    NSString identifier = "CFBundleIdentifier";
    NSString version = "CFBundleVersion";
    NSString shortVersion = "CFBundleShortVersionString";
};

BundleSummaryKeys const& summaryKeys() {
    // Never destroyed: other objects may ask until the program's last instruction.
    static BundleSummaryKeys const& keys = *std::make_unique<BundleSummaryKeys>().release();
    return keys;
}

BundleSummary summaryOf(NSDictionary const& information) {
    BundleSummaryKeys const& keys = summaryKeys();
    return {information.objectForKey_(keys.identifier), information.objectForKey_(keys.version),
            information.objectForKey_(keys.shortVersion)};
}

std::int64_t now() { return std::chrono::nanoseconds(std::chrono::system_clock::now().time_since_epoch()).count(); }

} // namespace

NSString toldPathOfPlace(std::string_view bundlePath, std::size_t place) {
    std::string const given(bundlePath);
    std::string const bundle = isDescriptorPath(given) ? resolvedPath(given) : given;
    return NSString::stringWithFileSystemRepresentation_(pathOfPlace(bundle, place));
}

std::optional<FileState> fileAtPlace(std::string_view bundlePath, std::size_t place) {
    Result<FileStatus> const status = fileStatusAtPath(pathOfPlace(bundlePath, place));
    if (status.hasValue()) return FileState{.place = place, .status = status.value()};
    if (status.problem().is(ENOENT) || status.problem().is(ENOTDIR)) return std::nullopt;
    return FileState{.place = place, .error = status.problem().code};
}

std::optional<FileState> findFile(std::string_view bundlePath, std::size_t firstPlace) {
    std::optional<FileState> found;
    for (std::size_t place = firstPlace; place < kPlaces.size() && !found; ++place)
        found = fileAtPlace(bundlePath, place);
    return found;
}

ReadInformation readInformation(std::string_view bundlePath, FileState const& state) {
    std::int64_t const start = now();
    if (state.error != 0) return {state, start, problemOf(state.error)};
    Result<FileContents> const contents = readFileAtPath(pathOfPlace(bundlePath, state.place), kLargestFile);
    if (!contents.hasValue()) return {state, start, problemOf(contents.problem().code)};
    // The file may have changed since its status was read.
    return {{.place = state.place, .status = contents.value().status}, start, dictionaryIn(contents.value())};
}

ReadSummary summaryOf(ReadInformation const& information) {
    if (!information.value.hasValue()) return {information.state, information.start, information.value.problem()};
    return {information.state, information.start, summaryOf(information.value.value())};
}

std::optional<ReadSummary> readLikelySummary(std::string_view bundlePath) {
    std::int64_t const start = now();
    Result<FileContents> const contents = readLikelyFile(pathOfPlace(bundlePath, 0));
    if (!contents.hasValue()) return std::nullopt;
    return summaryOf(ReadInformation{{.status = contents.value().status}, start, dictionaryIn(contents.value())});
}

} // namespace mac
