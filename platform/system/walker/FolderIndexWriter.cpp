#include "platform/system/walker/FolderIndexFormat.h"
#include "platform/system/walker/FolderLog.h"
#include "platform/system/walker/FolderNotes.h"
#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

namespace mac {

namespace {

constexpr std::uint32_t FoldersBetweenQuestions = 1024;

// A tick of the slowest clock that a system runs with: two changes within one may get the same time.
constexpr std::int64_t ClockTick = 10'000'000;
constexpr std::int64_t Second = 1'000'000'000;

// Puts the notes of all threads in order: each folder's children together, and each folder behind the one it lies in.
// A note is named by the number of its piece among those of all logs, and in the lower bits its offset there.
class FolderIndexWriter {
public:
    FolderIndexWriter(std::deque<FolderLog> const& logs, std::int64_t walkStart,
                      std::function<bool()> const& shouldStop)
        : m_logs(logs), m_walkStart(walkStart), m_shouldStop(shouldStop) {}

    // Empty if it was stopped or becomes too large.
    std::optional<std::vector<std::byte>> write();

private:
    // In the list of children: a note, or the number of a folder with this bit set.
    static constexpr std::uint32_t IsFolder = std::uint32_t{1} << 31;

    struct Folder {
        std::uint32_t note = 0;
        std::uint32_t firstChild = 0; // in m_children
        std::uint32_t childCount = 0;
        bool hasFailed = false;
    };
    // A folder whose subfolders are being written, on the way down to the current one.
    struct Level {
        std::uint32_t folder = 0;
        std::uint32_t nextChild = 0;
        std::size_t head = 0; // where its entry begins
    };

    bool findFolders();
    void sortChildren();
    bool writeVolume(std::uint32_t folder);
    void begin(std::uint32_t folder);
    void end();
    FolderNote noteAt(std::uint32_t offset) const;
    FolderNote noteOfChild(std::uint32_t child) const;
    std::uint32_t folderOf(FolderLog::Note note) const {
        return m_firstFolders[note >> FolderLog::CountBits] + (note & FolderLog::CountMask);
    }
    FolderStamp stampToWrite(Folder const& folder, FolderStamp const& stamp) const;
    FolderEntryHead headAt(std::size_t position) const;
    void overwrite(std::size_t position, FolderEntryHead const& head);
    // Calls take(note, offset) with all notes of all logs.
    template <class Take>
    void eachNote(Take const& take) const;
    template <class T>
    void append(T const& value);
    void appendText(std::string_view text);

    std::deque<FolderLog> const& m_logs;
    std::int64_t const m_walkStart;
    std::function<bool()> const& m_shouldStop;
    std::vector<std::string const*> m_pieces;  // of all logs
    std::vector<std::uint32_t> m_firstFolders; // by the log's number
    std::vector<Folder> m_folders;
    std::vector<std::uint32_t> m_volumes; // folders
    std::vector<std::uint32_t> m_children;
    std::vector<Level> m_levels;
    std::vector<std::byte> m_bytes;
};

template <class Take>
void FolderIndexWriter::eachNote(Take const& take) const {
    for (std::size_t piece = 0; piece < m_pieces.size(); ++piece) {
        std::size_t position = 0;
        while (position < m_pieces[piece]->size()) {
            auto const offset = static_cast<std::uint32_t>(piece << FolderLog::PieceBits | position);
            take(FolderNote::read(*m_pieces[piece], position), offset);
        }
    }
}

FolderNote FolderIndexWriter::noteAt(std::uint32_t offset) const {
    std::size_t position = offset & (FolderLog::PieceBytes - 1);
    return FolderNote::read(*m_pieces[offset >> FolderLog::PieceBits], position);
}

FolderNote FolderIndexWriter::noteOfChild(std::uint32_t child) const {
    return noteAt((child & IsFolder) != 0 ? m_folders[child & ~IsFolder].note : child);
}

bool FolderIndexWriter::findFolders() {
    std::uint32_t folders = 0;
    m_firstFolders.resize(FolderLog::MostLogs);
    for (FolderLog const& log : m_logs) {
        if (log.isFull()) return false;
        m_firstFolders[log.number()] = folders;
        folders += log.folderCount();
        for (std::string const& piece : log.pieces())
            m_pieces.push_back(&piece);
    }
    if (m_pieces.size() > MostIndexBytes / FolderLog::PieceBytes) return false;
    m_folders.reserve(folders);
    eachNote([this](FolderNote const& note, std::uint32_t offset) {
        if (!note.hasEntry()) return;
        if (note.head.kind == FolderNote::Kind::Volume)
            m_volumes.push_back(static_cast<std::uint32_t>(m_folders.size()));
        m_folders.push_back({.note = offset});
    });
    return true;
}

void FolderIndexWriter::sortChildren() {
    eachNote([this](FolderNote const& note, std::uint32_t) {
        if (note.head.kind == FolderNote::Kind::Failure) m_folders[folderOf(note.head.parent)].hasFailed = true;
        if (note.isChild()) ++m_folders[folderOf(note.head.parent)].childCount;
    });
    std::uint32_t children = 0;
    for (Folder& folder : m_folders) {
        folder.firstChild = children;
        children += std::exchange(folder.childCount, 0);
    }
    m_children.resize(children);
    std::uint32_t nextFolder = 0;
    eachNote([&](FolderNote const& note, std::uint32_t offset) {
        std::uint32_t const child = note.hasEntry() ? nextFolder++ | IsFolder : offset;
        if (!note.isChild()) return;
        Folder& parent = m_folders[folderOf(note.head.parent)];
        m_children[parent.firstChild + parent.childCount++] = child;
    });
}

std::optional<std::vector<std::byte>> FolderIndexWriter::write() {
    if (!findFolders()) return std::nullopt;
    sortChildren();
    for (std::uint32_t const volume : m_volumes) {
        if (!writeVolume(volume)) return std::nullopt;
    }
    return std::move(m_bytes);
}

bool FolderIndexWriter::writeVolume(std::uint32_t folder) {
    FolderNote const note = noteAt(m_folders[folder].note);
    append(VolumeEntry{.device = note.volume.device,
                       .type = note.volume.type,
                       .fileSystem = note.volume.fileSystem,
                       .pathBytes = note.head.nameBytes});
    appendText(note.name);
    begin(folder);
    std::uint32_t begun = 0;
    while (!m_levels.empty()) {
        Level& level = m_levels.back();
        Folder const& current = m_folders[level.folder];
        if (level.nextChild == current.childCount) {
            end();
            continue;
        }
        std::uint32_t const child = m_children[current.firstChild + level.nextChild++];
        if ((child & IsFolder) == 0) continue;
        begin(child & ~IsFolder);
        if (m_bytes.size() > MostIndexBytes) return false;
        if (++begun % FoldersBetweenQuestions == 0 && m_shouldStop()) return false;
    }
    return true;
}

// Appends the folder's head and the names of its children.
void FolderIndexWriter::begin(std::uint32_t folder) {
    Folder const& current = m_folders[folder];
    FolderStamp const stamp = stampToWrite(current, noteAt(current.note).stamp);
    FolderEntryHead head{
        .inode = stamp.inode, .modified = stamp.modified, .changed = stamp.changed, .linkCount = stamp.linkCount};
    std::size_t const position = m_bytes.size();
    m_levels.push_back({.folder = folder, .head = position});
    append(head);
    for (std::uint32_t i = 0; i < current.childCount; ++i) {
        FolderNote const child = noteOfChild(m_children[current.firstChild + i]);
        m_bytes.push_back(static_cast<std::byte>(child.head.kind));
        m_bytes.push_back(static_cast<std::byte>(child.head.nameBytes));
        appendText(child.name);
        if (child.head.kind != FolderNote::Kind::Package) ++head.foldersBelow;
    }
    head.childBytes = static_cast<std::uint32_t>(m_bytes.size() - position - sizeof head);
    overwrite(position, head);
}

// Writes into the folder's head what is known now that all below it is written.
void FolderIndexWriter::end() {
    std::size_t const position = m_levels.back().head;
    FolderEntryHead head = headAt(position);
    head.extent = static_cast<std::uint32_t>(m_bytes.size() - position);
    overwrite(position, head);
    m_levels.pop_back();
    if (m_levels.empty()) return;
    FolderEntryHead above = headAt(m_levels.back().head);
    above.foldersBelow += head.foldersBelow;
    overwrite(m_levels.back().head, above);
}

FolderEntryHead FolderIndexWriter::headAt(std::size_t position) const {
    FolderEntryHead head;
    std::memcpy(&head, m_bytes.data() + position, sizeof head);
    return head;
}

void FolderIndexWriter::overwrite(std::size_t position, FolderEntryHead const& head) {
    std::memcpy(m_bytes.data() + position, &head, sizeof head);
}

// A stamp that equals none if the folder's list is not to be relied on (see FolderLog).
FolderStamp FolderIndexWriter::stampToWrite(Folder const& folder, FolderStamp const& stamp) const {
    bool const isOld = std::max(stamp.modified, stamp.changed) < m_walkStart - ClockTick;
    bool const isFine = stamp.changed % Second != 0;
    return isOld && isFine && !folder.hasFailed ? stamp : FolderStamp();
}

template <class T>
void FolderIndexWriter::append(T const& value) {
    auto const* const bytes = reinterpret_cast<std::byte const*>(&value);
    m_bytes.insert(m_bytes.end(), bytes, bytes + sizeof value);
}

void FolderIndexWriter::appendText(std::string_view text) {
    auto const* const bytes = reinterpret_cast<std::byte const*>(text.data());
    m_bytes.insert(m_bytes.end(), bytes, bytes + text.size());
}

} // namespace

std::optional<RememberedFolders> indexOf(std::deque<FolderLog> const& logs, std::int64_t walkStart,
                                         std::function<bool()> const& shouldStop) {
    std::optional<std::vector<std::byte>> bytes = FolderIndexWriter(logs, walkStart, shouldStop).write();
    if (!bytes) return std::nullopt;
    bytes->shrink_to_fit();
    return RememberedFolders::parse(std::move(*bytes));
}

} // namespace mac
