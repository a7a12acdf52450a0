#include "platform/files/aliases/AliasRecord.h"
#include "platform/files/volumes/VolumeIdentity.h"
#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
#include "platform/system/Users.h"
#include "platform/system/items/ItemIdentity.h"
#include "platform/system/walker/FolderFacts.h"
#include "platform/system/walker/VolumeWalker.h"
#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <fcntl.h>
#include <mutex>

namespace mac {

namespace {

// How often the search looks at the clock.
constexpr std::chrono::milliseconds BetweenLooks{20};

// How long the threads of a search that has its answer are waited for: one that reads where a disk does not answer is
// left behind.
constexpr std::chrono::milliseconds StopPatience{10};

SystemError notFound(AliasRecord const& record) { return {.code = ENOENT, .operation = "find", .item = record.path}; }

Result<FoundAlias> answer(AliasRecord const& record, OpenItem const& item) {
    Result<AliasRecord> now = aliasRecordOf(item);
    if (!now.hasValue()) return now.problem();
    FoundAlias found{.path = now.value().path};
    // Where the home folder is does not change the item.
    now.value().pathBelowHome = now.value().path == record.path ? record.pathBelowHome : now.value().pathBelowHome;
    if (!(now.value() == record)) found.renewed = now.takeValue();
    return found;
}

// An item of the record's kind at the path.
Result<FoundAlias> answerAtPath(AliasRecord const& record, std::string const& path) {
    Result<OpenItem> const item = openItemAtPath(path, LinkAtEnd::IsNotFollowed);
    if (!item.hasValue()) return item.problem();
    Result<AliasRecord::Kind> const kind = aliasKindOf(item.value().item);
    if (!kind.hasValue()) return kind.problem();
    if (kind.value() != record.kind) return notFound(record);
    return answer(record, item.value());
}

// Whether the item of the name in the folder is the record's own. Without birth times another item may have the inode
// number by now, unless it has the name, too.
bool isItself(AliasRecord const& record, FileDescriptor const& folder, std::string const& name) {
    Result<IdentifiedItem> const found = identify(folder, name);
    if (!found.hasValue()) return false;
    ItemIdentity const& identity = found.value().identity;
    if (identity.inode != record.inode || identity.birth != record.birth) return false;
    if (record.birth == 0 && BytePath(record.path).leaf() != name) return false;
    FileDescriptor const item(::openat(folder.number(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    Result<AliasRecord::Kind> const kind = aliasKindOf(item);
    return kind.hasValue() && kind.value() == record.kind;
}

Result<FoundAlias> answerInFolder(AliasRecord const& record, std::string const& folderPath) {
    Result<FileDescriptor> const folder = openPath(folderPath, O_RDONLY | O_DIRECTORY | O_NONBLOCK);
    if (!folder.hasValue()) return folder.problem();
    Result<std::vector<FolderEntry>> const entries = entriesOf(folder.value());
    if (!entries.hasValue()) return entries.problem();
    bool const areItemNumbers = listsItemNumbers(folder.value());
    for (FolderEntry const& entry : entries.value()) {
        bool const mayBe = entry.inode == record.inode || !areItemNumbers;
        if (mayBe && isItself(record, folder.value(), entry.name))
            return answerAtPath(record, BytePath(folderPath).joined(entry.name));
    }
    return notFound(record);
}

// A walk of one volume in threads of its own, which ends at the first find. The threads may outlast it.
class VolumeSearch {
public:
    VolumeSearch(AliasRecord const& record, std::string const& top)
        : m_walker({.roots = {top},
                    .packageSuffix = "",
                    .names = {},
                    .item = SoughtItem{.inode = record.inode,
                                       .isFolder = record.kind == AliasRecord::Kind::Folder,
                                       .accepts =
                                           [record](FileDescriptor const& folder, std::string const& name) {
                                               return isItself(record, folder, name);
                                           }}},
                   [this] { tell(); }) {}
    ~VolumeSearch() { m_walker.stopWithin(StopPatience); }
    VolumeSearch(VolumeSearch const&) = delete;
    VolumeSearch& operator=(VolumeSearch const&) = delete;

    // The path; ETIMEDOUT once `shouldContinue` answers false.
    Result<std::string> run(std::function<bool()> const& shouldContinue);

private:
    SystemError nothingFound() const;
    void tell() {
        std::scoped_lock const lock(m_lock);
        m_hasNews = true;
        m_news.notify_all();
    }
    void waitForNews() {
        std::unique_lock lock(m_lock);
        m_news.wait_for(lock, BetweenLooks, [this] { return m_hasNews; });
        m_hasNews = false;
    }

    std::mutex m_lock{};
    std::condition_variable m_news{};
    bool m_hasNews{false};
    VolumeWalker m_walker;
};

// What was left out because it did not answer may hold the item.
SystemError VolumeSearch::nothingFound() const {
    std::vector<SystemError> const unreadable = m_walker.unreadable();
    bool const isComplete =
        std::ranges::none_of(unreadable, [](SystemError const& failure) { return failure.is(ETIMEDOUT); });
    return {.code = isComplete ? ENOENT : ETIMEDOUT, .operation = "search"};
}

Result<std::string> VolumeSearch::run(std::function<bool()> const& shouldContinue) {
    if (!shouldContinue()) return SystemError{.code = ETIMEDOUT, .operation = "search"};
    if (!m_walker.start()) return SystemError{.code = EAGAIN, .operation = "search"};
    for (;;) {
        bool const isFinished = m_walker.progress().isFinished;
        std::vector<std::string> found = m_walker.takeFound();
        if (!found.empty()) return std::move(found.front());
        if (isFinished) return nothingFound();
        if (!shouldContinue()) return SystemError{.code = ETIMEDOUT, .operation = "search"};
        waitForNews();
    }
}

// Finds one alias.
class AliasSearch {
public:
    AliasSearch(AliasRecord const& record, AliasSearchLimits const& limits)
        : m_record(record), m_limits(limits), m_end(limits.now() + limits.most) {}

    Result<FoundAlias> run() const;

private:
    bool hasTimeLeft() const { return m_limits.now() < m_end; }
    Result<FoundAlias> below(std::string const& home) const;
    std::vector<MountedVolume> volumes() const;
    Result<FoundAlias> onVolume(MountedVolume const& volume) const;
    Result<FoundAlias> anywhereOn(MountedVolume const& volume) const;

    AliasRecord const& m_record;
    AliasSearchLimits const& m_limits;
    std::chrono::steady_clock::time_point const m_end;
};

Result<FoundAlias> AliasSearch::below(std::string const& home) const {
    if (!m_record.pathBelowHome) return notFound(m_record);
    return answerAtPath(m_record, BytePath(home).joined(*m_record.pathBelowHome));
}

// The volumes that the record's item may lie on, each shown by one mount or by several. A server that is gone is not
// asked.
std::vector<MountedVolume> AliasSearch::volumes() const {
    std::vector<MountedVolume> result;
    if (m_record.volume.empty()) return result;
    for (MountedVolume& volume : mountedVolumes()) {
        bool const isWhereItWas = BytePath(m_record.path).isAtOrBelow(volume.mountPoint) && !volume.isStartup();
        bool const isAsked = volume.isLocal || isWhereItWas;
        if (isAsked && identityOfVolume(volume) == m_record.volume) result.push_back(std::move(volume));
    }
    return result;
}

// The item at the same place of the volume, or renamed in the same folder.
Result<FoundAlias> AliasSearch::onVolume(MountedVolume const& volume) const {
    std::optional<std::string> const path = pathFromVolume(volume, m_record.pathOnVolume);
    if (!path) return notFound(m_record);
    Result<FoundAlias> found = answerAtPath(m_record, *path);
    return found.hasValue() ? found : answerInFolder(m_record, std::string(BytePath(*path).parent()));
}

Result<FoundAlias> AliasSearch::anywhereOn(MountedVolume const& volume) const {
    Result<std::string> const path = VolumeSearch(m_record, volume.mountPoint).run([this] { return hasTimeLeft(); });
    if (!path.hasValue()) return path.problem();
    return answerAtPath(m_record, path.value());
}

Result<FoundAlias> AliasSearch::run() const {
    Result<FoundAlias> found = answerAtPath(m_record, m_record.path);
    if (!found.hasValue()) found = below(ownHomeFolder());
    if (found.hasValue()) return found;
    std::vector<MountedVolume> const possible = volumes();
    for (MountedVolume const& volume : possible) {
        if (!found.hasValue()) found = onVolume(volume);
    }
    for (MountedVolume const& volume : possible) {
        if (!found.hasValue()) found = anywhereOn(volume);
    }
    return found;
}

} // namespace

Result<FoundAlias> findAlias(AliasRecord const& record, AliasSearchLimits const& limits) {
    return AliasSearch(record, limits).run();
}

} // namespace mac
