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

// Appends a note but for the stamp and the identity; answers the piece to append those to, nullptr if the log is full.
std::string* FolderLog::append(Note parent, std::uint8_t kind, std::string_view name) {
    bool const isVolume = kind == static_cast<std::uint8_t>(FolderNote::Kind::Volume);
    std::size_t const most = isVolume ? FolderNote::MostPathBytes : FolderNote::MostNameBytes;
    if (name.size() > most || m_pieces.size() > MostIndexBytes / PieceBytes) m_isFull = true;
    if (m_isFull) return nullptr;
    FolderNote::Head const head{.parent = parent,
                                .nameBytes = static_cast<std::uint16_t>(name.size()),
                                .kind = static_cast<FolderNote::Kind>(kind)};
    std::size_t const bytes = sizeof head + name.size() + sizeof(FolderStamp) + sizeof(VolumeIdentity);
    if (m_pieces.empty() || m_pieces.back().size() + bytes > PieceBytes) m_pieces.emplace_back().reserve(PieceBytes);
    std::string& piece = m_pieces.back();
    piece += bytesOf(head);
    piece += name;
    return &piece;
}

FolderLog::Note FolderLog::addVolume(std::string_view path, VolumeIdentity const& identity, FolderFacts const& facts) {
    std::string* const piece = append(NoNote, static_cast<std::uint8_t>(FolderNote::Kind::Volume), path);
    if (piece == nullptr) return NoNote;
    *piece += bytesOf(stampToKeep(facts));
    *piece += bytesOf(identity);
    return nextNote();
}

FolderLog::Note FolderLog::addFolder(Note parent, std::string_view name, FolderFacts const& facts) {
    if (parent == NoNote) return NoNote;
    std::string* const piece = append(parent, static_cast<std::uint8_t>(FolderNote::Kind::Folder), name);
    if (piece == nullptr) return NoNote;
    *piece += bytesOf(stampToKeep(facts));
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
