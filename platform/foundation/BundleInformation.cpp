#include "platform/foundation/BundleInformation.h"
#include "platform/foundation/Log.h"
#include "platform/foundation/NSPropertyListSerialization.h"
#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <list>
#include <memory>
#include <unordered_map>

namespace mac {

namespace {

// In the order in which they are looked for; the first that is there counts, readable or not.
constexpr std::array<std::string_view, 4> kPlaces{"Contents/Info.plist", "Info.plist", "Resources/Info.plist",
                                                  "Support Files/Info.plist"};

// Information files have a few thousand bytes; the largest have less than a million.
constexpr std::size_t kLargestFile = std::size_t{4} << 20;

// A scan asks for some hundred bundles again and again. Both bounds hold: files, and bytes of files.
constexpr std::size_t kMostRemembered = 4096;
constexpr std::size_t kMostRememberedBytes = std::size_t{16} << 20;

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
Failure failureOf(int code) {
    if (code == EFBIG) return {"It is too large"};
    if (code == EISDIR) return {"It is a folder"};
    if (code == EINVAL) return {"It is no regular file"};
    return {textOfSystemError(code)};
}

Result<NSDictionary, Failure> readInformation(std::string const& path, FileState& state) {
    if (state.error != 0) return failureOf(state.error);
    Result<FileContents> const contents = readFileAtPath(path, kLargestFile);
    if (!contents.hasValue()) return failureOf(contents.problem().code);
    // The file may have changed since its status was read.
    state.status = contents.value().status;
    NSString reason;
    id const list = NSPropertyListSerialization::propertyListFromData_mutabilityOption_format_errorDescription_(
        NSData::dataWithBytes(contents.value().bytes), NSPropertyListImmutable, nullptr, &reason);
    if (list == nil) return Failure{reason.UTF8String()};
    NSDictionary const dictionary = as<NSDictionary>(list);
    if (dictionary == nil) return Failure{"It holds no dictionary"};
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

std::int64_t now() { return std::chrono::nanoseconds(std::chrono::system_clock::now().time_since_epoch()).count(); }

class InformationCache {
public:
    NSDictionary informationOf(std::string_view bundlePath) {
        FileState state = findFile(bundlePath);
        Entry* const known = find(bundlePath);
        if (!state.isFound()) {
            if (known) forget(m_entries.begin());
            return NSDictionary::dictionary();
        }
        if (known && known->isSettled && known->state == state) return known->information;

        std::int64_t const start = now();
        std::string const path = pathOfPlace(bundlePath, state.place);
        Result<NSDictionary, Failure> const information = readInformation(path, state);
        bool const isTold = known && known->state == state;
        if (!information.hasValue() && !isTold)
            NSLog("The information file %@ cannot be used: %@", NSString::stringWithFileSystemRepresentation_(path),
                  joinedLines(information.problem().reason));
        if (known) forget(m_entries.begin());
        NSDictionary const result = information.hasValue() ? information.value() : NSDictionary::dictionary();
        remember({std::string(bundlePath), state, start - state.status.modified > kNanosecondsToSettle, result});
        return result;
    }

private:
    struct Entry {
        std::string bundlePath;
        FileState state;
        bool isSettled;
        NSDictionary information;

        // What cannot be used takes no room.
        std::size_t size() const { return bundlePath.size() + (information.count() > 0 ? state.status.size : 0); }
    };
    using Place = std::list<Entry>::iterator;

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
        m_size += m_entries.front().size();
        while (m_entries.size() > kMostRemembered || m_size > kMostRememberedBytes)
            forget(std::prev(m_entries.end()));
    }

    void forget(Place place) {
        m_size -= place->size();
        m_places.erase(place->bundlePath);
        m_entries.erase(place);
    }

    // The one asked for last comes first.
    std::list<Entry> m_entries;
    // The keys are the entries' own texts.
    std::unordered_map<std::string_view, Place> m_places;
    std::size_t m_size{0};
};

} // namespace

NSDictionary informationOfBundle(std::string_view bundlePath) {
    // Never destroyed: other objects may ask until the program's last instruction.
    static InformationCache& cache = *std::make_unique<InformationCache>().release();
    return cache.informationOf(bundlePath);
}

} // namespace mac
