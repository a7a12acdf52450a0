#include "platform/system/walker/FolderLog.h"
#include "platform/system/walker/FolderIndexFormat.h"
#include "platform/system/walker/FolderNotes.h"
#include <time.h>

namespace mac {

namespace {

template <class T>
std::string_view bytesOf(T const& value) {
    return {reinterpret_cast<char const*>(&value), sizeof value};
}

// An encrypted folder lists other names while its key is missing.
FolderStamp stampToKeep(FolderFacts const& facts) { return facts.isEncrypted ? FolderStamp() : facts.stamp; }

} // namespace

FolderLog::Note FolderLog::nextNote() {
    if (m_folderCount == CountMask) m_isFull = true;
    if (m_isFull) return NoNote;
    return m_number << CountBits | m_folderCount++;
}

bool FolderLog::append(Note parent, std::uint8_t kind, std::string_view name) {
    bool const isVolume = kind == static_cast<std::uint8_t>(FolderNote::Kind::Volume);
    std::size_t const most = isVolume ? FolderNote::MostPathBytes : FolderNote::MostNameBytes;
    if (name.size() > most || m_bytes.size() > MostIndexBytes) m_isFull = true;
    if (m_isFull) return false;
    FolderNote::Head const head{.parent = parent,
                                .nameBytes = static_cast<std::uint16_t>(name.size()),
                                .kind = static_cast<FolderNote::Kind>(kind)};
    m_bytes += bytesOf(head);
    m_bytes += name;
    return true;
}

FolderLog::Note FolderLog::addVolume(std::string_view path, VolumeIdentity const& identity, FolderFacts const& facts) {
    if (!append(NoNote, static_cast<std::uint8_t>(FolderNote::Kind::Volume), path)) return NoNote;
    m_bytes += bytesOf(stampToKeep(facts));
    m_bytes += bytesOf(identity);
    return nextNote();
}

FolderLog::Note FolderLog::addFolder(Note parent, std::string_view name, FolderFacts const& facts) {
    if (parent == NoNote || !append(parent, static_cast<std::uint8_t>(FolderNote::Kind::Folder), name)) return NoNote;
    m_bytes += bytesOf(stampToKeep(facts));
    return nextNote();
}

void FolderLog::addName(Note parent, std::string_view name) {
    if (parent != NoNote) append(parent, static_cast<std::uint8_t>(FolderNote::Kind::Name), name);
}

void FolderLog::addPackage(Note parent, std::string_view name) {
    if (parent != NoNote) append(parent, static_cast<std::uint8_t>(FolderNote::Kind::Package), name);
}

void FolderLog::addFailure(Note folder) {
    if (folder != NoNote) append(folder, static_cast<std::uint8_t>(FolderNote::Kind::Failure), {});
}

std::int64_t folderClock() {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME_COARSE, &now);
    return now.tv_sec * 1'000'000'000 + now.tv_nsec;
}

} // namespace mac
