#include "platform/system/walker/FolderStack.h"
#include "platform/system/LongPath.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace mac {

namespace {

FolderIdentity identityOf(FileDescriptor const& folder) { return factsOf(folder).valueOr(FolderFacts()).identity(); }

// A place has 32 bits: seven in each byte, whose highest bit is set, so that none is zero.
constexpr unsigned BitsInByte = 7;

void appendPlace(std::string& names, RememberedFolders::Place place) {
    for (std::size_t i = 0; i < FolderStack::placeBytes; ++i) {
        names.push_back(static_cast<char>(0x80U | (place & 0x7FU)));
        place >>= BitsInByte;
    }
}

RememberedFolders::Place placeAt(char const* bytes) {
    RememberedFolders::Place place = 0;
    for (std::size_t i = FolderStack::placeBytes; i-- > 0;)
        place = place << BitsInByte | (static_cast<unsigned char>(bytes[i]) & 0x7FU);
    return place;
}

// Shorter than the system's limit by more than a name.
constexpr std::size_t MostWayBytes = 2048;

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
    FileDescriptor const* const above = nearestOpen();
    Result<FileDescriptor> folder =
        above ? openFolderIn(*above, m_way.c_str()) : openPath(m_path, O_RDONLY | O_DIRECTORY);
    if (!folder.hasValue()) return folder.problem();
    bool const isSame = identityOf(folder.value()) == state.identity;
    if (!isSame || ::lseek(folder.value().number(), state.position, SEEK_SET) < 0)
        return SystemError{.code = ESTALE, .operation = "open", .item = m_path};
    state.folder = folder.takeValue();
    return {};
}

FileDescriptor const* FolderStack::nearestOpen() {
    std::size_t level = m_levels.size() - 1;
    while (level > 0) {
        Level const& above = m_levels[--level];
        std::size_t const bytes = m_path.size() - above.pathLength;
        if (bytes > MostWayBytes) return nullptr;
        if (!above.state.folder.isOpen()) continue;
        m_way.assign(m_path, above.pathLength, bytes);
        m_way.erase(0, m_way.starts_with('/') ? 1 : 0);
        return &above.state.folder;
    }
    return nullptr;
}

Result<FolderStack::WayToName> FolderStack::wayTo(char const* name) {
    if (!top().folder.isOpen()) {
        if (FileDescriptor const* const above = nearestOpen()) {
            appendComponent(m_way, name);
            return WayToName{*above, m_way.c_str()};
        }
        if (Result<void> const opened = openTop(); !opened.isDone()) return opened.problem();
    }
    return WayToName{top().folder, name};
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

void FolderStack::addName(std::string_view name, RememberedFolders::Place remembered) {
    appendPlace(m_names, remembered);
    m_names.append(name).push_back('\0');
    m_levels.back().namesEnd = m_names.size();
}

WaitingName FolderStack::nextName() {
    Level& level = m_levels.back();
    if (level.nextName == level.namesEnd) {
        m_names.resize(level.firstName); // more may be read into the same place
        level.nextName = level.namesEnd = level.firstName;
        return {};
    }
    char const* const entry = m_names.data() + level.nextName;
    WaitingName const waiting{.name = entry + placeBytes, .remembered = placeAt(entry)};
    level.nextName += placeBytes + std::string_view(waiting.name).size() + 1;
    return waiting;
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
    share.state.note = only.state.note;
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
