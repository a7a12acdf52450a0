#include "platform/system/walker/WalkWorker.h"
#include "platform/system/LongPath.h"
#include "platform/system/walker/VolumeList.h"
#include "platform/system/walker/VolumeVisit.h"
#include <cerrno>
#include <fcntl.h>
#include <utility>

namespace mac {

namespace {

// Enough names at a time: a folder with more subfolders is read on when these were visited.
constexpr std::size_t nameBytesAtOnce = 65'536;

// With fewer folders below it, an unchanged folder is not opened: what lies below is reached from a folder above.
constexpr std::uint32_t foldersWorthOpening = 32;

} // namespace

WalkWorker::WalkWorker(Shared const& shared, std::size_t openLimit)
    : m_exchange(shared.exchange), m_findings(shared.findings), m_packages(shared.packages),
      m_folderInPackages(shared.folderInPackages), m_item(shared.item), m_last(shared.last), m_log(shared.log),
      m_wasLeft(shared.wasLeft), m_stack(openLimit) {}

void WalkWorker::run() {
    while (std::optional<FolderShare> share = m_exchange.receive()) {
        VolumeVisit const visit({.path = share->path, .mount = share->traits.mount}, m_wasLeft);
        if (share->isVolumeRoot && !openVolume(*share)) continue;
        m_volume = share->traits;
        if (m_item && !m_item->isFolder) m_reader.seek(m_item->inode, m_volume.listsItemNumbers);
        m_stack.begin(std::move(*share));
        while (!m_stack.isEmpty() && !m_exchange.isOver())
            step();
        m_stack.clear();
    }
}

bool WalkWorker::openVolume(FolderShare& share) {
    Result<FileDescriptor> folder = openPath(share.path, O_RDONLY | O_DIRECTORY);
    if (!folder.hasValue()) {
        m_findings.addUnreadable(share.path, folder.problem());
        return false;
    }
    share.state.folder = folder.takeValue();
    Result<FolderFacts> const looked = factsOf(share.state.folder);
    FolderFacts const facts = looked.hasValue() ? looked.value() : FolderFacts();
    std::uint64_t const mount = facts.mount;
    if (mount != 0 && mount != share.traits.mount) return false; // unmounted since it was listed
    share.traits.mount = mount;
    share.traits.linkCountTellsSubfolders =
        share.traits.linkCountTellsSubfolders && linkCountTellsSubfolders(share.state.folder);
    share.traits.listsItemNumbers = m_item && listsItemNumbers(share.state.folder);
    share.state.holdsMountPoints = share.traits.mountPoints->isParentOfOne(share.path);
    m_findings.countFolder();
    // A stamp that could not be read equals that of a list which is not to be relied on.
    if (m_log && looked.hasValue()) recallVolume(share, facts);
    return true;
}

void WalkWorker::recallVolume(FolderShare& share, FolderFacts const& facts) {
    Result<VolumeIdentity> const identity = volumeIdentityOf(share.state.folder);
    if (!identity.hasValue() || !timesTellChanges(identity.value())) return;
    share.state.note = m_log->addVolume(share.path, identity.value(), facts);
    if (m_last == nullptr) return;
    RememberedFolders::Place const place = m_last->volume(share.path, identity.value());
    if (place == RememberedFolders::None) return;
    share.state.remembered = m_last->children(place);
    share.state.isUnchanged = m_last->stamp(place) == facts.stamp;
}

void WalkWorker::step() {
    if (m_exchange.isHungry()) {
        if (std::optional<FolderShare> share = m_stack.split(m_volume)) m_exchange.give(std::move(*share));
    }
    if (WaitingName const waiting = m_stack.nextName(); waiting.name != nullptr) return visit(waiting);
    if (m_stack.top().isRead) return m_stack.pop();
    readNames();
}

void WalkWorker::readNames() {
    if (m_stack.top().isUnchanged) return recallNames();
    if (Result<void> const opened = m_stack.openTop(); !opened.isDone()) return abandonTop(opened.problem());
    FolderState& state = m_stack.top();
    bool const isBegin = state.subfoldersSeen == 0 && !state.known;
    if (isBegin) m_findings.countListRead();
    if (isBegin && state.remembered.next != state.remembered.end)
        state.known = std::make_unique<RememberedNames>(*m_last, state.remembered);
    while (!state.isRead && m_stack.nameBytesWaiting() < nameBytesAtOnce && !m_exchange.isOver())
        readInto(state);
}

// Takes the names that the folder held when it was read, and still holds.
void WalkWorker::recallNames() {
    FolderState& state = m_stack.top();
    while (m_stack.nameBytesWaiting() < nameBytesAtOnce) {
        std::optional<RememberedFolders::Child> const child = m_last->next(state.remembered);
        state.isRead = !child;
        if (!child) return;
        if (child->kind == RememberedFolders::Kind::Package)
            addPackage(child->name);
        else
            m_stack.addName(child->name, child->place);
    }
}

void WalkWorker::addPackage(std::string_view name) {
    m_findings.addPackage(pathOf(name));
    if (m_log) m_log->addPackage(m_stack.top().note, name);
    if (!m_folderInPackages.empty()) tellIfUnreadable(name);
}

void WalkWorker::tellIfUnreadable(std::string_view package) {
    std::string const inside = BytePath(package).joined(m_folderInPackages);
    Result<FolderStack::WayToName> const way = m_stack.wayTo(inside.c_str());
    if (!way.hasValue()) return;
    Result<void> const may = maySearch(way.value().folder, way.value().path);
    if (!may.isDone()) subfolderFailed(inside.c_str(), may.problem());
}

// Reads once into the buffer and takes the subfolders from there.
void WalkWorker::readInto(FolderState& state) {
    Result<FolderReader::Fill> const fill = m_reader.fill(state.folder);
    if (!fill.hasValue()) {
        topFailed(fill.problem());
        state.isRead = true;
        return;
    }
    while (std::optional<std::string_view> const name = m_reader.nextSubfolder(state.folder)) {
        ++state.subfoldersSeen;
        if (!m_packages.isPackage(*name))
            m_stack.addName(*name, state.known ? state.known->place(*name) : RememberedFolders::None);
        else if (m_packages.isWanted(*name))
            addPackage(*name);
    }
    if (m_reader.hasSought()) {
        for (std::string const& name : m_reader.takeSought())
            take(state.folder, name);
    }
    state.isRead = fill.value() == FolderReader::Fill::End || sawAllSubfolders(state);
}

// Adds an item that has the sought inode number to the findings if it is accepted.
void WalkWorker::take(FileDescriptor const& folder, std::string const& name) {
    if (m_item->accepts(folder, name)) m_findings.addPackage(pathOf(name));
}

// A folder made since the count was taken may have been seen in place of one that comes later in the listing. So
// unless the listing was short enough to come whole, the count is taken again.
bool WalkWorker::sawAllSubfolders(FolderState const& state) const {
    if (!state.subfolders || state.subfoldersSeen < *state.subfolders) return false;
    if (m_reader.hadRoomLeft()) return true;
    std::uint32_t const linkCount = factsOf(state.folder).valueOr(FolderFacts()).stamp.linkCount;
    return subfoldersByLinkCount(linkCount) == state.subfoldersSeen;
}

void WalkWorker::visit(WaitingName const& waiting) {
    Result<FolderStack::WayToName> const way = m_stack.wayTo(waiting.name);
    if (!way.hasValue()) return abandonTop(way.problem());
    FolderLog::Note const parent = m_stack.top().note;
    if (!enter(way.value(), waiting) && m_log) m_log->addName(parent, waiting.name);
}

// Begins to go through a subfolder; false if it is not to be gone through.
bool WalkWorker::enter(FolderStack::WayToName const& way, WaitingName const& waiting) {
    char const* const name = waiting.name;
    FolderLog::Note const parent = m_stack.top().note;
    if (m_stack.top().holdsMountPoints && m_volume.mountPoints->contains(pathOf(name))) return false;
    Result<FolderFacts> const looked = factsInside(way.folder, way.path);
    if (!looked.hasValue()) {
        subfolderFailed(name, looked.problem());
        return false;
    }
    FolderFacts const& facts = looked.value();
    if (!facts.isFolder || facts.mount != m_volume.mount) return false;
    m_findings.countFolder();
    if (m_item && m_item->isFolder && facts.stamp.inode == m_item->inode) take(way.folder, name);
    FolderState child;
    if (m_volume.linkCountTellsSubfolders) child.subfolders = subfoldersByLinkCount(facts.stamp.linkCount);
    if (child.subfolders == 0U) return false;
    child.identity = facts.identity();
    if (waiting.remembered != RememberedFolders::None) {
        child.remembered = m_last->children(waiting.remembered);
        child.isUnchanged = m_last->stamp(waiting.remembered) == facts.stamp;
    }
    if (!child.isUnchanged || m_last->foldersBelow(waiting.remembered) >= foldersWorthOpening) {
        Result<FileDescriptor> folder = open(way, name);
        if (!folder.hasValue()) {
            subfolderFailed(name, folder.problem());
            return false;
        }
        child.folder = folder.takeValue();
    }
    if (m_log) child.note = m_log->addFolder(parent, name, facts);
    m_stack.push(name, std::move(child));
    m_stack.top().holdsMountPoints = m_volume.mountPoints->isParentOfOne(m_stack.path());
    return true;
}

// Opens a subfolder of the top folder.
Result<FileDescriptor> WalkWorker::open(FolderStack::WayToName const& way, char const* name) {
    Result<FileDescriptor> folder = openFolderIn(way.folder, way.path);
    if (folder.hasValue() || (!folder.problem().is(EMFILE) && !folder.problem().is(ENFILE))) return folder;
    m_stack.closeAllButTop();
    Result<FolderStack::WayToName> const again = m_stack.wayTo(name);
    if (!again.hasValue()) return again.problem();
    return openFolderIn(again.value().folder, again.value().path);
}

std::string WalkWorker::pathOf(std::string_view name) const {
    std::string path;
    path.reserve(m_stack.path().size() + 1 + name.size());
    path += m_stack.path();
    appendComponent(path, name);
    return path;
}

void WalkWorker::subfolderFailed(char const* name, SystemError const& error) {
    if (!meansVanished(error)) m_findings.addUnreadable(pathOf(name), error);
}

void WalkWorker::topFailed(SystemError const& error) {
    if (m_log) m_log->addFailure(m_stack.top().note);
    if (!meansVanished(error)) m_findings.addUnreadable(m_stack.path(), error);
}

void WalkWorker::abandonTop(SystemError const& error) {
    topFailed(error);
    m_stack.pop();
}

} // namespace mac
