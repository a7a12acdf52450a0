#include "platform/system/walker/WalkWorker.h"

#include "platform/system/walker/LeafRule.h"

#include <cerrno>
#include <utility>

namespace mac {

namespace {

// Enough names at a time: a folder with more subfolders is read on when these were visited.
constexpr std::size_t nameBytesAtOnce = 65'536;

} // namespace

WalkWorker::WalkWorker(WorkExchange& exchange, WalkFindings& findings, PackageRule const& packages,
                       MountPointSet const& mountPoints, std::size_t openLimit)
    : m_exchange(exchange), m_findings(findings), m_packages(packages), m_mountPoints(mountPoints), m_stack(openLimit) {
}

void WalkWorker::run() {
    while (std::optional<FolderShare> share = m_exchange.receive()) {
        if (share->isVolumeRoot && !openVolume(*share)) continue;
        m_volume = share->traits;
        m_stack.begin(std::move(*share));
        while (!m_stack.isEmpty() && !m_exchange.isOver())
            step();
        m_stack.clear();
    }
}

bool WalkWorker::openVolume(FolderShare& share) {
    share.state.folder = OpenFolder::atPath(share.path);
    if (!share.state.folder.isOpen()) {
        m_findings.addUnreadable(share.path, errno);
        return false;
    }
    std::uint64_t const mount = factsOf(share.state.folder).mount;
    if (mount != 0 && mount != share.traits.mount) return false; // unmounted since it was listed
    share.traits.mount = mount;
    share.traits.linkCountTellsSubfolders = linkCountTellsSubfolders(share.state.folder);
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
    if (!m_stack.openTop()) return abandonTop(errno);
    FolderState& state = m_stack.top();
    while (!state.isRead && m_stack.nameBytesWaiting() < nameBytesAtOnce && !m_exchange.isOver()) {
        FolderReader::Fill const fill = m_reader.fill(state.folder);
        if (fill == FolderReader::Fill::Failed) failed(m_stack.path(), errno);
        while (std::optional<std::string_view> const name = m_reader.nextSubfolder(state.folder)) {
            ++state.subfoldersSeen;
            if (!m_packages.isPackage(*name))
                m_stack.addName(*name);
            else if (m_packages.isWanted(*name))
                m_findings.addPackage(pathOf(*name));
        }
        state.isRead = fill != FolderReader::Fill::Some || sawAllSubfolders(state);
    }
}

// A folder made since the count was taken may have been seen in place of one that comes later in the listing. So
// unless the listing was short enough to come whole, the count is taken again.
bool WalkWorker::sawAllSubfolders(FolderState const& state) const {
    if (!state.subfolders || state.subfoldersSeen < *state.subfolders) return false;
    return m_reader.hadRoomLeft() || subfoldersByLinkCount(factsOf(state.folder).linkCount) == state.subfoldersSeen;
}

void WalkWorker::visit(char const* name) {
    if (!m_stack.openTop()) return abandonTop(errno);
    FolderState const& parent = m_stack.top();
    if (parent.holdsMountPoints && m_mountPoints.contains(pathOf(name))) return;
    FolderFacts const facts = factsInside(parent.folder, name);
    if (facts.error != 0) return failed(pathOf(name), facts.error);
    if (!facts.isFolder || facts.mount != m_volume.mount) return;
    m_findings.countFolder();
    FolderState child;
    if (m_volume.linkCountTellsSubfolders) child.subfolders = subfoldersByLinkCount(facts.linkCount);
    if (child.subfolders == 0U) return;
    child.folder = open(parent.folder, name);
    if (!child.folder.isOpen()) return failed(pathOf(name), errno);
    m_stack.push(name, std::move(child));
    m_stack.top().holdsMountPoints = m_mountPoints.isParentOfOne(m_stack.path());
}

OpenFolder WalkWorker::open(OpenFolder const& parent, char const* name) {
    OpenFolder folder = OpenFolder::inside(parent, name);
    if (folder.isOpen() || (errno != EMFILE && errno != ENFILE)) return folder;
    m_stack.closeAllButTop();
    return OpenFolder::inside(parent, name);
}

std::string WalkWorker::pathOf(std::string_view name) const {
    std::string path;
    path.reserve(m_stack.path().size() + 1 + name.size());
    path += m_stack.path();
    appendComponent(path, name);
    return path;
}

void WalkWorker::failed(std::string_view path, int error) {
    if (!meansVanished(error)) m_findings.addUnreadable(path, error);
}

void WalkWorker::abandonTop(int error) {
    failed(m_stack.path(), error);
    m_stack.pop();
}

} // namespace mac
