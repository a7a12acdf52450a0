#pragma once

#include "platform/system/walker/RememberedFolders.h"

#include <deque>
#include <functional>
#include <string>

namespace mac {

// What one thread of a walk notes of the folders it goes through, for the index of the next walk (RememberedFolders.h):
// appended in the order of the walk, put in order once all threads have ended.
//
// A folder whose stamp was taken before its list was read, and that has the same stamp later, has the same list: unless
// it changed so soon after the stamp that the clock did not tell the two apart. So stamps younger than the start of the
// walk are kept as such that equal no other, and so are those of whole seconds, which only file systems with such
// clocks keep (ext3, or images that were made with dates of whole seconds and may be exchanged for another).
class FolderLog {
public:
    // Names a folder's note across the logs of all threads. NoNote for a folder that is not noted: what is added below
    // it is not noted either.
    using Note = std::uint32_t;
    static constexpr Note NoNote = ~Note{0};
    // A note is the number of its log and, in the lower bits, the folder's number in it.
    static constexpr unsigned CountBits = 26;
    static constexpr Note CountMask = (Note{1} << CountBits) - 1;
    static constexpr unsigned MostLogs = 64;

    // REQUIRES: number < MostLogs, another one for each thread.
    explicit FolderLog(unsigned number) : m_number(number) {}

    Note addVolume(std::string_view path, VolumeIdentity const& identity, FolderFacts const& facts);
    // A subfolder whose list is going to be read, or is known to be unchanged.
    Note addFolder(Note parent, std::string_view name, FolderFacts const& facts);
    // A subfolder that is not entered.
    void addName(Note parent, std::string_view name);
    void addPackage(Note parent, std::string_view name);
    // Not everything in the folder could be read. It may be another thread's.
    void addFailure(Note folder);

    // For indexOf. Pieces, so that nothing is moved or held twice while a log grows.
    static constexpr unsigned PieceBits = 17;
    static constexpr std::size_t PieceBytes = std::size_t{1} << PieceBits;
    unsigned number() const { return m_number; }
    std::uint32_t folderCount() const { return m_folderCount; }
    bool isFull() const { return m_isFull; }
    std::deque<std::string> const& pieces() const { return m_pieces; }

private:
    Note nextNote();
    std::string* append(Note parent, std::uint8_t kind, std::string_view name);

    unsigned const m_number;
    std::uint32_t m_folderCount = 0;
    bool m_isFull = false;            // notes are missing
    std::deque<std::string> m_pieces; // of PieceBytes at most, each with whole notes
};

// The clock that gives folders their times, in nanoseconds since 1970.
std::int64_t folderClock();

// The index of what all threads of a walk noted, which began at that time of folderClock(). nullopt if it becomes too
// large, or once `shouldStop` says so.
std::optional<RememberedFolders> indexOf(std::deque<FolderLog> const& logs, std::int64_t walkStart,
                                         std::function<bool()> const& shouldStop);

} // namespace mac
