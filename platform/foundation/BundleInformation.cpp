#include "platform/foundation/BundleInformation.h"
#include "platform/foundation/Log.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSNumber.h"
#include "platform/foundation/NSPropertyListSerialization.h"
#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <list>
#include <memory>
#include <optional>
#include <unordered_map>

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

// A scan asks for the versions of all copies again and again; there may be 100,000. An entry without its dictionary has
// less than a thousand bytes.
constexpr std::size_t kMostSummaries = std::size_t{1} << 18;
// In code units. Longer values are read anew each time.
constexpr std::size_t kLongestInSummary = 128;

// A file that changed so shortly before it was read may change again without another time of change: clocks of file
// systems tick every two seconds at worst.
constexpr std::int64_t kNanosecondsToSettle = 2'000'000'000;

// Which file it is and in what state, or the error that its status gave.
struct FileState {
    std::size_t place{kPlaces.size()};
    // An errno value; 0 if the status is known.
    int error{0};
    FileStatus status{};

    bool isFound() const { return place < kPlaces.size(); }
    bool operator==(FileState const&) const = default;
};

std::string pathOfPlace(std::string_view bundlePath, std::size_t place) {
    return BytePath(bundlePath).joined(kPlaces[place]);
}

FileState findFile(std::string_view bundlePath) {
    FileState state;
    for (state.place = 0; state.isFound(); ++state.place) {
        Result<FileStatus> const status = fileStatusAtPath(pathOfPlace(bundlePath, state.place));
        if (status.hasValue()) {
            state.status = status.value();
            return state;
        }
        if (!status.problem().is(ENOENT) && !status.problem().is(ENOTDIR)) {
            state.error = status.problem().code;
            return state;
        }
    }
    return state;
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

Result<NSDictionary, ReadingProblem> readInformation(std::string const& path, FileState& state) {
    if (state.error != 0) return problemOf(state.error);
    Result<FileContents> const contents = readFileAtPath(path, kLargestFile);
    if (!contents.hasValue()) return problemOf(contents.problem().code);
    // The file may have changed since its status was read.
    state.status = contents.value().status;
    NSString reason;
    id const list = NSPropertyListSerialization::propertyListFromData_mutabilityOption_format_errorDescription_(
        NSData::dataWithBytes(contents.value().bytes), NSPropertyListImmutable, nullptr, &reason);
    if (list == nil) return ReadingProblem{reason.UTF8String()};
    NSDictionary const dictionary = as<NSDictionary>(list);
    if (dictionary == nil) return ReadingProblem{"It holds no dictionary"};
    return dictionary;
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

// The summary to keep; nullopt if a value is too large, or of a class that tells no version.
std::optional<BundleSummary> keptSummaryOf(NSDictionary const& information) {
    BundleSummary const summary = summaryOf(information);
    bool const fits =
        fitsSummary(summary.identifier) && fitsSummary(summary.version) && fitsSummary(summary.shortVersion);
    return fits ? std::optional(summary) : std::nullopt;
}

std::int64_t now() { return std::chrono::nanoseconds(std::chrono::system_clock::now().time_since_epoch()).count(); }

// What was read of the bundles asked for last, and the state of the files it was read from. Whole dictionaries are
// given up much sooner than summaries.
class InformationCache {
public:
    NSDictionary informationOf(std::string_view bundlePath) {
        FileState state = findFile(bundlePath);
        Entry* const known = find(bundlePath);
        if (!state.isFound()) return forgetMissing(known);
        if (known && known->isCurrent(state) && known->information != nil) {
            m_whole.splice(m_whole.begin(), m_whole, known->place);
            return known->information;
        }
        return readAnew(bundlePath, state, Keep::Whole);
    }

    BundleSummary summaryOfFileAt(std::string_view bundlePath, FileState state) {
        Entry* const known = find(bundlePath);
        if (known && known->isCurrent(state) && known->summary) return *known->summary;
        return summaryOf(readAnew(bundlePath, state, Keep::Summary));
    }

private:
    struct Entry;
    using Place = std::list<Entry>::iterator;

    struct Entry {
        std::string bundlePath;
        FileState state;
        // False while the file may change again without a new time of change, and for an error that may pass.
        bool isSettled{false};
        // Nothing if the values are too large.
        std::optional<BundleSummary> summary{};
        // Nil if only the summary is remembered.
        NSDictionary information{};
        // In the list of entries with information.
        std::list<Place>::iterator place{};

        bool isCurrent(FileState const& now) const { return isSettled && state == now; }
        // What cannot be used takes no room.
        std::size_t size() const { return information.count() > 0 ? state.status.size : 0; }
    };

    enum class Keep { Summary, Whole };

    NSDictionary readAnew(std::string_view bundlePath, FileState state, Keep keep) {
        Entry* const known = find(bundlePath);
        bool const isTold = known && known->state == state;
        std::int64_t const start = now();
        std::string const path = pathOfPlace(bundlePath, state.place);
        Result<NSDictionary, ReadingProblem> const read = readInformation(path, state);
        if (!read.hasValue() && !isTold)
            NSLog("The information file %@ cannot be used: %@", NSString::stringWithFileSystemRepresentation_(path),
                  joinedLines(read.problem().reason));
        if (known) forget(m_entries.begin());
        NSDictionary const information = read.hasValue() ? read.value() : NSDictionary::dictionary();
        bool const isLasting = read.hasValue() || read.problem().isLasting;
        remember({.bundlePath = std::string(bundlePath),
                  .state = state,
                  .isSettled = isLasting && start - state.status.modified > kNanosecondsToSettle,
                  .summary = keptSummaryOf(information)});
        if (keep == Keep::Whole) rememberWhole(m_entries.begin(), information);
        return information;
    }

    NSDictionary forgetMissing(Entry const* known) {
        if (known) forget(m_entries.begin());
        return NSDictionary::dictionary();
    }

    // Makes it the one asked for last.
    Entry* find(std::string_view bundlePath) {
        auto const found = m_places.find(bundlePath);
        if (found == m_places.end()) return nullptr;
        m_entries.splice(m_entries.begin(), m_entries, found->second);
        return &m_entries.front();
    }

    void remember(Entry entry) {
        m_entries.push_front(std::move(entry));
        m_places.emplace(m_entries.front().bundlePath, m_entries.begin());
        while (m_entries.size() > kMostSummaries)
            forget(std::prev(m_entries.end()));
    }

    void rememberWhole(Place entry, NSDictionary const& information) {
        entry->information = information;
        m_whole.push_front(entry);
        entry->place = m_whole.begin();
        m_size += entry->size();
        while (m_whole.size() > kMostRemembered || m_size > kMostRememberedBytes)
            forgetWhole(*m_whole.back());
    }

    void forgetWhole(Entry& entry) {
        if (entry.information == nil) return;
        m_size -= entry.size();
        m_whole.erase(entry.place);
        entry.information = nil;
    }

    void forget(Place place) {
        forgetWhole(*place);
        m_places.erase(place->bundlePath);
        m_entries.erase(place);
    }

    // The one asked for last comes first.
    std::list<Entry> m_entries;
    // Those with information, likewise.
    std::list<Place> m_whole;
    // The keys are the entries' own texts.
    std::unordered_map<std::string_view, Place> m_places;
    std::size_t m_size{0};
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
    FileState const state = findFile(*bytes);
    // A file that was found lies in a folder at the path.
    if (!state.isFound() || state.error != 0) {
        Result<FileStatus> const status = fileStatusAtPath(*bytes);
        bool const isFolder = status.hasValue() && status.value().kind == FileStatus::Kind::Folder;
        if (!state.isFound() || !isFolder) return {.exists = status.hasValue()};
    }
    return {.exists = true, .summary = sharedInformation().summaryOfFileAt(*bytes, state)};
}

} // namespace mac
