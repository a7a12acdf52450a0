#include "platform/system/walker/FolderStack.h"
#include "platform/system/LongPath.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace mac {

namespace {

FolderIdentity identityOf(FileDescriptor const& folder) { return factsOf(folder).valueOr(FolderFacts()).identity; }

} // namespace

FolderStack::FolderStack(std::size_t openLimit) : m_openLimit(std::max<std::size_t>(openLimit, 1)) {}

void FolderStack::begin(FolderShare&& share) {
    m_path = std::move(share.path);
    m_names = std::move(share.names);
    m_firstOpen = 0;
    m_levels.push_back({.state = std::move(share.state), .pathLength = m_path.size(), .namesEnd = m_names.size()});
}

void FolderStack::push(std::string_view name, FolderState&& state) {
    if (m_levels.size() - m_firstOpen >= m_openLimit) giveUpDescriptor(m_levels[m_firstOpen++].state);
    appendComponent(m_path, name);
    std::size_t const end = m_names.size();
    m_levels.push_back(
        {.state = std::move(state), .pathLength = m_path.size(), .firstName = end, .nextName = end, .namesEnd = end});
}

void FolderStack::pop() {
    m_levels.pop_back();
    if (m_levels.empty()) return clear();
    m_path.resize(m_levels.back().pathLength);
    m_names.resize(m_levels.back().namesEnd);
    m_firstOpen = std::min(m_firstOpen, m_levels.size() - 1);
}

void FolderStack::clear() {
    m_levels.clear();
    m_path.clear();
    m_names.clear();
    m_firstOpen = 0;
}

Result<void> FolderStack::openTop() {
    FolderState& state = top();
    if (state.folder.isOpen()) return {};
    Result<FileDescriptor> folder = openPath(m_path, O_RDONLY | O_DIRECTORY);
    if (!folder.hasValue()) return folder.problem();
    bool const isSame = identityOf(folder.value()) == state.identity;
    if (!isSame || ::lseek(folder.value().number(), state.position, SEEK_SET) < 0)
        return SystemError{.code = ESTALE, .operation = "open", .item = m_path};
    state.folder = folder.takeValue();
    return {};
}

void FolderStack::closeAllButTop() {
    while (m_firstOpen + 1 < m_levels.size())
        giveUpDescriptor(m_levels[m_firstOpen++].state);
}

void FolderStack::giveUpDescriptor(FolderState& state) {
    if (!state.folder.isOpen()) return;
    state.identity = identityOf(state.folder);
    state.position = ::lseek(state.folder.number(), 0, SEEK_CUR);
    state.folder = FileDescriptor();
}

void FolderStack::addName(std::string_view name) {
    m_names.append(name).push_back('\0');
    m_levels.back().namesEnd = m_names.size();
}

char const* FolderStack::nextName() {
    Level& level = m_levels.back();
    if (level.nextName == level.namesEnd) {
        m_names.resize(level.firstName); // more may be read into the same place
        level.nextName = level.namesEnd = level.firstName;
        return nullptr;
    }
    char const* name = m_names.data() + level.nextName;
    level.nextName += std::string_view(name).size() + 1;
    return name;
}

std::optional<FolderShare> FolderStack::split(VolumeTraits const& traits) {
    for (std::size_t i = 0; i + 1 < m_levels.size(); ++i) {
        Level& level = m_levels[i];
        if (!hasWork(level)) continue;
        FolderShare share = shareOf(level, traits, level.nextName);
        share.state = std::move(level.state);
        level.state.isRead = true;
        level.nextName = level.namesEnd;
        return share;
    }
    Level& only = m_levels.back();
    std::size_t const secondHalf = startOfSecondHalf(only);
    if (secondHalf == only.namesEnd || !only.state.folder.isOpen()) return std::nullopt;
    FolderShare share = shareOf(only, traits, secondHalf);
    share.state.folder = duplicateOf(only.state.folder).valueOr(FileDescriptor());
    share.state.identity = identityOf(only.state.folder);
    share.state.isRead = true;
    share.state.holdsMountPoints = only.state.holdsMountPoints;
    only.namesEnd = secondHalf;
    m_names.resize(secondHalf);
    return share;
}

// Where a name begins such that about half of the level's names lie behind it; namesEnd when there is but one.
std::size_t FolderStack::startOfSecondHalf(Level const& level) const {
    std::size_t const bytes = level.namesEnd - level.nextName;
    if (bytes < 2) return level.namesEnd; // a name and its zero byte are two at least
    std::size_t const afterMiddle = m_names.find('\0', level.nextName + bytes / 2 - 1) + 1;
    if (afterMiddle < level.namesEnd) return afterMiddle;
    std::size_t const lastName = m_names.rfind('\0', level.namesEnd - 2) + 1;
    return lastName > level.nextName ? lastName : level.namesEnd;
}

FolderShare FolderStack::shareOf(Level const& level, VolumeTraits const& traits, std::size_t firstName) const {
    FolderShare share;
    share.path = m_path.substr(0, level.pathLength);
    share.traits = traits;
    share.names = m_names.substr(firstName, level.namesEnd - firstName);
    return share;
}

} // namespace mac
