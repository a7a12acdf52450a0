#include "platform/foundation/bundles/BundleInformation.h"
#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include "platform/foundation/running/Log.h"
#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>

namespace mac {

namespace {

// In the order in which they are looked for; the first that is there counts, readable or not.
constexpr std::array<std::string_view, 4> kPlaces{"Contents/Info.plist", "Info.plist", "Resources/Info.plist",
                                                  "Support Files/Info.plist"};

// Information files have a few thousand bytes; the largest have less than a million.
constexpr std::size_t kLargestFile = std::size_t{4} << 20;

// What whole dictionaries are remembered for at most: files, and bytes of files.
constexpr std::size_t kMostRemembered = 4096;
constexpr std::size_t kMostRememberedBytes = std::size_t{16} << 20;

// A scan asks for the versions of all copies again and again; there may be 100,000. At least so many of the files read
// last are known, and at most twice as many, at some 130 bytes each.
constexpr std::size_t kMostKnown = std::size_t{1} << 18;
// In code units. Longer values are read anew each time.
constexpr std::size_t kLongestInSummary = 128;

// A file that changed so shortly before it was read may change again without another time of change: clocks of file
// systems tick every two seconds at worst.
constexpr std::int64_t kNanosecondsToSettle = 2'000'000'000;

// Which file it is and in what state, or the error that its status gave.
struct FileState {
    std::size_t place{0};
    // An errno value; 0 if the status is known.
    int error{0};
    FileStatus status{};

    bool operator==(FileState const&) const = default;
};

std::string pathOfPlace(std::string_view bundlePath, std::size_t place) {
    return BytePath(bundlePath).joined(kPlaces[place]);
}

// As the log tells it: by the bundle's own path where it is looked at through a descriptor.
NSString toldPathOfPlace(std::string_view bundlePath, std::size_t place) {
    std::string const given(bundlePath);
    std::string const bundle = isDescriptorPath(given) ? resolvedPath(given) : given;
    return NSString::stringWithFileSystemRepresentation_(pathOfPlace(bundle, place));
}

// The information file at that place of the bundle; nullopt if it does not exist.
std::optional<FileState> fileAtPlace(std::string_view bundlePath, std::size_t place) {
    Result<FileStatus> const status = fileStatusAtPath(pathOfPlace(bundlePath, place));
    if (status.hasValue()) return FileState{.place = place, .status = status.value()};
    if (status.problem().is(ENOENT) || status.problem().is(ENOTDIR)) return std::nullopt;
    return FileState{.place = place, .error = status.problem().code};
}

std::optional<FileState> findFile(std::string_view bundlePath, std::size_t firstPlace = 0) {
    std::optional<FileState> found;
    for (std::size_t place = firstPlace; place < kPlaces.size() && !found; ++place)
        found = fileAtPlace(bundlePath, place);
    return found;
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

// Why there is no dictionary, and whether that stays so while the file has the same status.
struct ReadingProblem {
    std::string reason;
    bool isLasting{true};
};

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

Result<NSDictionary, ReadingProblem> readInformation(std::string const& path, FileState& state) {
    if (state.error != 0) return problemOf(state.error);
    Result<FileContents> const contents = readFileAtPath(path, kLargestFile);
    if (!contents.hasValue()) return problemOf(contents.problem().code);
    // The file may have changed since its status was read.
    state.status = contents.value().status;
    return dictionaryIn(contents.value());
}

// A parser's complaints in one line.
std::string joinedLines(std::string text) {
    std::erase(text, '\t');
    while (text.ends_with('\n'))
        text.pop_back();
    for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', end))
        text.replace(end, 1, end > 0 && text[end - 1] == ':' ? " " : "; ");
    return text;
}

struct BundleSummaryKeys {
    NSString identifier = "CFBundleIdentifier";
    NSString version = "CFBundleVersion";
    NSString shortVersion = "CFBundleShortVersionString";
};

BundleSummaryKeys const& summaryKeys() {
    // Never destroyed, like the cache that uses them.
    static BundleSummaryKeys const& keys = *std::make_unique<BundleSummaryKeys>().release();
    return keys;
}

// Whether the value is kept beside its dictionary.
bool fitsSummary(id const& value) {
    NSString const text = as<NSString>(value);
    return value == nil || (text != nil && text.length() <= kLongestInSummary) || as<NSNumber>(value) != nil;
}

BundleSummary summaryOf(NSDictionary const& information) {
    BundleSummaryKeys const& keys = summaryKeys();
    return {information.objectForKey_(keys.identifier), information.objectForKey_(keys.version),
            information.objectForKey_(keys.shortVersion)};
}

// Most of many copies are of a few versions. One object for each text takes less memory, and is at hand when the
// summaries are compared.
class RecentTexts {
public:
    // An equal text that was given before, else the value.
    id shared(id const& value) {
        NSString const text = as<NSString>(value);
        if (text == nil) return value;
        NSString& recent = m_texts[text.hash() % m_texts.size()];
        if (!recent.isEqual_(text)) recent = text;
        return recent;
    }

private:
    std::array<NSString, 61> m_texts;
};

// The summary to keep; nullopt if a value is too large, or of a class that tells no version.
std::optional<BundleSummary> keptSummaryOf(NSDictionary const& information, RecentTexts& texts) {
    BundleSummary const summary = summaryOf(information);
    bool const fits =
        fitsSummary(summary.identifier) && fitsSummary(summary.version) && fitsSummary(summary.shortVersion);
    if (!fits) return std::nullopt;
    return BundleSummary{texts.shared(summary.identifier), texts.shared(summary.version),
                         texts.shared(summary.shortVersion)};
}

std::int64_t now() { return std::chrono::nanoseconds(std::chrono::system_clock::now().time_since_epoch()).count(); }

// What was read of a file: the state it was in, and the summary.
struct KnownFile {
    FileState state{};
    // False while the file may change again without a new time of change, and for an error that may pass.
    bool isSettled{false};
    // The values that records are made of; nullopt if they are too large to be kept.
    std::optional<BundleSummary> summary{};

    bool isCurrent(FileState const& now) const { return isSettled && state == now; }
};

// The files of the bundles asked for last, by a hash of the bundle's path. The path itself is not kept: two files are
// told apart by their states. A look-up thus touches little memory, which is what it costs with 100,000 bundles.
class KnownFiles {
public:
    // Null if nothing is known. Valid until the next call.
    KnownFile const* find(std::uint64_t pathHash) {
        auto const recent = m_recent.find(pathHash);
        if (recent != m_recent.end()) return &recent->second;
        auto earlier = m_earlier.extract(pathHash);
        if (earlier.empty()) return nullptr;
        makeRoom();
        return &m_recent.insert(std::move(earlier)).position->second;
    }

    void remember(std::uint64_t pathHash, KnownFile file) {
        makeRoom();
        m_earlier.erase(pathHash);
        m_recent.insert_or_assign(pathHash, std::move(file));
    }

    void forget(std::uint64_t pathHash) {
        m_recent.erase(pathHash);
        m_earlier.erase(pathHash);
    }

private:
    using Files = std::unordered_map<std::uint64_t, KnownFile>;

    // Forgets those that were not asked for since as many others were.
    void makeRoom() {
        if (m_recent.size() == kMostKnown) m_earlier = std::exchange(m_recent, {});
    }

    Files m_recent;
    Files m_earlier;
};

// Whole dictionaries, which are given up much sooner than what is known of their files.
class WholeInformation {
public:
    // The dictionary, which becomes the one asked for last; nil if there is none.
    NSDictionary find(std::uint64_t pathHash) {
        auto const found = m_places.find(pathHash);
        if (found == m_places.end()) return nil;
        m_entries.splice(m_entries.begin(), m_entries, found->second);
        return found->second->information;
    }

    void remember(std::uint64_t pathHash, NSDictionary const& information, std::uint64_t fileSize) {
        // What cannot be used takes no room.
        m_entries.push_front({pathHash, information, information.count() > 0 ? fileSize : 0});
        m_places[pathHash] = m_entries.begin();
        m_size += m_entries.front().size;
        while (m_entries.size() > kMostRemembered || m_size > kMostRememberedBytes)
            forget(m_entries.back().pathHash);
    }

    void forget(std::uint64_t pathHash) {
        auto const found = m_places.find(pathHash);
        if (found == m_places.end()) return;
        m_size -= found->second->size;
        m_entries.erase(found->second);
        m_places.erase(found);
    }

private:
    struct Entry {
        std::uint64_t pathHash;
        NSDictionary information;
        // In bytes of the file.
        std::uint64_t size;
    };

    // The one asked for last comes first.
    std::list<Entry> m_entries;
    std::unordered_map<std::uint64_t, std::list<Entry>::iterator> m_places;
    std::uint64_t m_size{0};
};

std::uint64_t hashOfPath(std::string_view path) { return std::hash<std::string_view>()(path); }

class InformationCache {
public:
    NSDictionary informationOf(std::string_view bundlePath) {
        std::optional<FileState> state = findFile(bundlePath);
        std::uint64_t const hash = hashOfPath(bundlePath);
        if (!state) {
            m_known.forget(hash);
            m_whole.forget(hash);
            return NSDictionary::dictionary();
        }
        KnownFile const* const known = m_known.find(hash);
        NSDictionary const whole = known && known->isCurrent(*state) ? m_whole.find(hash) : NSDictionary();
        if (whole != nil) return whole;
        NSDictionary const information = readAnew(bundlePath, *state);
        m_whole.remember(hash, information, state->status.size);
        return information;
    }

    BundleLook lookAt(std::string const& bundlePath) {
        KnownFile const* const known = m_known.find(hashOfPath(bundlePath));
        std::optional<BundleSummary> const read = known ? std::nullopt : summaryOfNewBundle(bundlePath);
        if (read) return {.exists = true, .summary = *read};
        std::optional<FileState> file = fileAtPlace(bundlePath, 0);
        bool const isUsable = file && file->error == 0;
        if (isUsable && known && known->isCurrent(*file) && known->summary)
            return {.exists = true, .summary = *known->summary};
        if (!isUsable) {
            Result<FileStatus> const status = fileStatusAtPath(bundlePath);
            bool const isFolder = status.hasValue() && status.value().kind == FileStatus::Kind::Folder;
            if (!isFolder) return {.exists = status.hasValue()};
            if (!file) file = findFile(bundlePath, 1);
            if (!file) return {.exists = true};
        }
        // A file that was found lies in a folder at the path.
        return {.exists = true, .summary = summaryOfFileAt(bundlePath, *file)};
    }

private:
    // Reads the file in Contents of a bundle of which nothing is known, so that its status is asked for once less.
    // nullopt if no such file can be read.
    std::optional<BundleSummary> summaryOfNewBundle(std::string_view bundlePath) {
        std::int64_t const start = now();
        Result<FileContents> const contents = readLikelyFile(pathOfPlace(bundlePath, 0));
        if (!contents.hasValue()) return std::nullopt;
        return summaryOf(
            remember(bundlePath, {.status = contents.value().status}, start, dictionaryIn(contents.value())));
    }

    BundleSummary summaryOfFileAt(std::string_view bundlePath, FileState state) {
        KnownFile const* const known = m_known.find(hashOfPath(bundlePath));
        if (known && known->isCurrent(state) && known->summary) return *known->summary;
        return summaryOf(readAnew(bundlePath, state));
    }

    // The state becomes the one that the file was read in.
    NSDictionary readAnew(std::string_view bundlePath, FileState& state) {
        KnownFile const* const known = m_known.find(hashOfPath(bundlePath));
        bool const isTold = known && known->state == state;
        std::int64_t const start = now();
        Result<NSDictionary, ReadingProblem> const read = readInformation(pathOfPlace(bundlePath, state.place), state);
        return remember(bundlePath, state, start, read, isTold);
    }

    // What was read of the file, at that time; an empty dictionary if it cannot be used, which is logged.
    NSDictionary remember(std::string_view bundlePath, FileState const& state, std::int64_t start,
                          Result<NSDictionary, ReadingProblem> const& read, bool isTold = false) {
        if (!read.hasValue() && !isTold)
            NSLog("The information file %@ cannot be used: %@", toldPathOfPlace(bundlePath, state.place),
                  joinedLines(read.problem().reason));
        std::uint64_t const hash = hashOfPath(bundlePath);
        m_whole.forget(hash);
        NSDictionary const information = read.hasValue() ? read.value() : NSDictionary::dictionary();
        bool const isLasting = read.hasValue() || read.problem().isLasting;
        m_known.remember(hash, {.state = state,
                                .isSettled = isLasting && state.status.modified < start - kNanosecondsToSettle,
                                .summary = keptSummaryOf(information, m_texts)});
        return information;
    }

    KnownFiles m_known;
    RecentTexts m_texts;
    WholeInformation m_whole;
};

InformationCache& sharedInformation() {
    // Never destroyed: other objects may ask until the program's last instruction.
    static InformationCache& cache = *std::make_unique<InformationCache>().release();
    return cache;
}

} // namespace

NSDictionary informationOfBundle(std::string_view bundlePath) { return sharedInformation().informationOf(bundlePath); }

BundleLook lookAtBundle(NSString const& path) {
    std::optional<std::string> const bytes = path.fileSystemRepresentation();
    if (!bytes || bytes->empty()) return {};
    return sharedInformation().lookAt(*bytes);
}

} // namespace mac
