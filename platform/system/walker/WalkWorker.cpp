#include "platform/system/walker/WalkWorker.h"
#include "platform/system/LongPath.h"
#include <cerrno>
#include <fcntl.h>
#include <utility>

namespace mac {

namespace {

// Enough names at a time: a folder with more subfolders is read on when these were visited.
constexpr std::size_t nameBytesAtOnce = 65'536;

} // namespace

WalkWorker::WalkWorker(Shared const& shared, std::size_t openLimit)
    : m_exchange(shared.exchange), m_findings(shared.findings), m_packages(shared.packages), m_item(shared.item),
      m_mountPoints(shared.mountPoints), m_stack(openLimit) {}

void WalkWorker::run() {
    while (std::optional<FolderShare> share = m_exchange.receive()) {
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
    std::uint64_t const mount = factsOf(share.state.folder).valueOr(FolderFacts()).mount;
    if (mount != 0 && mount != share.traits.mount) return false; // unmounted since it was listed
    share.traits.mount = mount;
    share.traits.linkCountTellsSubfolders =
        share.traits.linkCountTellsSubfolders && linkCountTellsSubfolders(share.state.folder);
    share.traits.listsItemNumbers = m_item && listsItemNumbers(share.state.folder);
    share.state.holdsMountPoints = m_mountPoints.isParentOfOne(share.path);
    m_findings.countFolder();
    return true;
}

void WalkWorker::step() {
    if (m_exchange.isHungry()) {
        if (std::optional<FolderShare> share = m_stack.split(m_volume)) m_exchange.give(std::move(*share));
    }
    if (char const* name = m_stack.nextName()) return visit(name);
    if (m_stack.top().isRead) return m_stack.pop();
    readNames();
}

void WalkWorker::readNames() {
    if (Result<void> const opened = m_stack.openTop(); !opened.isDone()) return abandonTop(opened.problem());
    FolderState& state = m_stack.top();
    while (!state.isRead && m_stack.nameBytesWaiting() < nameBytesAtOnce && !m_exchange.isOver())
        readInto(state);
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
            m_stack.addName(*name);
        else if (m_packages.isWanted(*name))
            m_findings.addPackage(pathOf(*name));
    }
    if (m_reader.hasSought()) {
        for (std::string const& name : m_reader.takeSought())
            take(state.folder, name);
    }
    state.isRead = fill.value() == FolderReader::Fill::End || sawAllSubfolders(state);
}

// The item that has the sought number.
void WalkWorker::take(FileDescriptor const& folder, std::string const& name) {
    if (m_item->accepts(folder, name)) m_findings.addPackage(pathOf(name));
}

// A folder made since the count was taken may have been seen in place of one that comes later in the listing. So
// unless the listing was short enough to come whole, the count is taken again.
bool WalkWorker::sawAllSubfolders(FolderState const& state) const {
    if (!state.subfolders || state.subfoldersSeen < *state.subfolders) return false;
    if (m_reader.hadRoomLeft()) return true;
    std::uint32_t const linkCount = factsOf(state.folder).valueOr(FolderFacts()).linkCount;
    return subfoldersByLinkCount(linkCount) == state.subfoldersSeen;
}

void WalkWorker::visit(char const* name) {
    if (Result<void> const opened = m_stack.openTop(); !opened.isDone()) return abandonTop(opened.problem());
    FolderState const& parent = m_stack.top();
    if (parent.holdsMountPoints && m_mountPoints.contains(pathOf(name))) return;
    Result<FolderFacts> const looked = factsInside(parent.folder, name);
    if (!looked.hasValue()) return subfolderFailed(name, looked.problem());
    FolderFacts const& facts = looked.value();
    if (!facts.isFolder || facts.mount != m_volume.mount) return;
    m_findings.countFolder();
    if (m_item && m_item->isFolder && facts.identity.inode == m_item->inode) take(parent.folder, name);
    FolderState child;
    if (m_volume.linkCountTellsSubfolders) child.subfolders = subfoldersByLinkCount(facts.linkCount);
    if (child.subfolders == 0U) return;
    Result<FileDescriptor> folder = open(parent.folder, name);
    if (!folder.hasValue()) return subfolderFailed(name, folder.problem());
    child.folder = folder.takeValue();
    m_stack.push(name, std::move(child));
    m_stack.top().holdsMountPoints = m_mountPoints.isParentOfOne(m_stack.path());
}

Result<FileDescriptor> WalkWorker::open(FileDescriptor const& parent, char const* name) {
    Result<FileDescriptor> folder = openFolderIn(parent, name);
    if (folder.hasValue() || (!folder.problem().is(EMFILE) && !folder.problem().is(ENFILE))) return folder;
    m_stack.closeAllButTop();
    return openFolderIn(parent, name);
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
    if (!meansVanished(error)) m_findings.addUnreadable(m_stack.path(), error);
}

void WalkWorker::abandonTop(SystemError const& error) {
    topFailed(error);
    m_stack.pop();
}

} // namespace mac
