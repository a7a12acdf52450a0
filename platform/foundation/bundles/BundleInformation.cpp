#include "platform/foundation/bundles/BundleInformation.h"
#include "platform/foundation/bundles/BundleReadAhead.h"
#include "platform/foundation/bundles/BundleReading.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/running/Log.h"
#include <array>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>

namespace mac {

namespace {

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

// A parser's complaints in one line.
std::string joinedLines(std::string text) {
    std::erase(text, '\t');
    while (text.ends_with('\n'))
        text.pop_back();
    for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', end))
        text.replace(end, 1, end > 0 && text[end - 1] == ':' ? " " : "; ");
    return text;
}

// Whether the value is kept beside its dictionary.
bool fitsSummary(id const& value) {
    NSString const text = as<NSString>(value);
    return value == nil || (text != nil && text.length() <= kLongestInSummary) || as<NSNumber>(value) != nil;
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
std::optional<BundleSummary> keptSummaryOf(BundleSummary const& summary, RecentTexts& texts) {
    bool const fits =
        fitsSummary(summary.identifier) && fitsSummary(summary.version) && fitsSummary(summary.shortVersion);
    if (!fits) return std::nullopt;
    return BundleSummary{texts.shared(summary.identifier), texts.shared(summary.version),
                         texts.shared(summary.shortVersion)};
}

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
        ReadInformation const read = readAnew(bundlePath, *state);
        NSDictionary const information = read.value.hasValue() ? read.value.value() : NSDictionary::dictionary();
        m_whole.remember(hash, information, read.state.status.size);
        return information;
    }

    bool knows(std::string_view bundlePath) { return m_known.find(hashOfPath(bundlePath)) != nullptr; }

    BundleLook lookAt(std::string const& bundlePath) {
        KnownFile const* const known = m_known.find(hashOfPath(bundlePath));
        // The information file of a bundle that is not remembered is opened without asking for its status first, which
        // saves one system call.
        std::optional<ReadSummary> const read = known ? std::nullopt : readLikelySummary(bundlePath);
        if (read) return lookBy(bundlePath, *read);
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
        return lookByFileAt(bundlePath, *file);
    }

    // Remembers what was read of the bundle's file. A file that cannot be used is logged, unless that was told already.
    BundleLook lookBy(std::string_view bundlePath, ReadSummary const& read, bool isTold = false) {
        FileState const& state = read.state;
        bool const isUsable = read.value.hasValue();
        if (!isUsable && !isTold)
            NSLog("The information file %@ cannot be used: %@", toldPathOfPlace(bundlePath, state.place),
                  joinedLines(read.value.problem().reason));
        BundleSummary const summary = isUsable ? read.value.value() : BundleSummary();
        bool const isLasting = isUsable || read.value.problem().isLasting;
        std::uint64_t const hash = hashOfPath(bundlePath);
        m_whole.forget(hash);
        m_known.remember(hash, {.state = state,
                                .isSettled = isLasting && state.status.modified < read.start - kNanosecondsToSettle,
                                .summary = keptSummaryOf(summary, m_texts)});
        return {.exists = true, .summary = summary};
    }

private:
    BundleLook lookByFileAt(std::string_view bundlePath, FileState const& state) {
        KnownFile const* const known = m_known.find(hashOfPath(bundlePath));
        if (known && known->isCurrent(state) && known->summary) return {.exists = true, .summary = *known->summary};
        return lookBy(bundlePath, summaryOf(readInformation(bundlePath, state)), known && known->state == state);
    }

    ReadInformation readAnew(std::string_view bundlePath, FileState const& state) {
        KnownFile const* const known = m_known.find(hashOfPath(bundlePath));
        bool const isTold = known && known->state == state;
        ReadInformation read = readInformation(bundlePath, state);
        lookBy(bundlePath, summaryOf(read), isTold);
        return read;
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

std::vector<BundleLook> lookAtBundles(std::span<NSString const> paths) {
    InformationCache& information = sharedInformation();
    std::vector<std::string> bundles;
    std::vector<std::size_t> unknown;
    bundles.reserve(paths.size());
    for (NSString const& path : paths) {
        bundles.push_back(path.fileSystemRepresentation().value_or(""));
        bool const isNew = !bundles.back().empty() && !information.knows(bundles.back());
        if (isNew) unknown.push_back(bundles.size() - 1);
    }
    BundleReadAhead ahead(bundles, unknown);
    std::vector<BundleLook> looks;
    looks.reserve(bundles.size());
    for (std::string const& bundle : bundles) {
        std::optional<ReadSummary> const read = ahead.take(looks.size());
        if (read)
            looks.push_back(information.lookBy(bundle, *read));
        else
            looks.push_back(bundle.empty() ? BundleLook() : information.lookAt(bundle));
    }
    return looks;
}

} // namespace mac
