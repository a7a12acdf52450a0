#include "platform/system/walker/FolderReader.h"

#include <dirent.h>

#include <algorithm>
#include <cstring>

namespace mac {

namespace {

constexpr std::size_t bufferSize = 65'536;
constexpr std::size_t nameOffset = offsetof(dirent64, d_name);

// The length of an entry pads its name with at most eight zero bytes, so only those are searched for the end.
std::string_view nameOf(dirent64 const& entry) {
    std::size_t const room = entry.d_reclen - nameOffset;
    std::size_t const certain = room > sizeof(std::uint64_t) ? room - sizeof(std::uint64_t) : 0;
    return {entry.d_name, certain + ::strnlen(entry.d_name + certain, room - certain)};
}

bool isFolder(FileDescriptor const& parent, char const* name) {
    Result<FolderFacts> const facts = factsInside(parent, name);
    return facts.hasValue() && facts.value().isFolder;
}

} // namespace

FolderReader::FolderReader() : m_buffer(std::make_unique_for_overwrite<char[]>(bufferSize)) {}

Result<FolderReader::Fill> FolderReader::fill(FileDescriptor const& folder) {
    m_position = 0;
    m_filled = 0;
    ssize_t const count = ::getdents64(folder.number(), m_buffer.get(), bufferSize);
    if (count < 0) return lastSystemError("getdents");
    m_filled = static_cast<std::size_t>(count);
    return count == 0 ? Fill::End : Fill::Some;
}

std::optional<std::string_view> FolderReader::nextSubfolder(FileDescriptor const& folder) {
    while (m_position < m_filled) {
        auto const& entry = *reinterpret_cast<dirent64 const*>(m_buffer.get() + m_position);
        m_position += entry.d_reclen;
        if (entry.d_type != DT_DIR && m_soughtInode) collect(folder, entry.d_name, entry.d_ino);
        if (entry.d_type != DT_DIR && entry.d_type != DT_UNKNOWN) continue;
        std::string_view const name = nameOf(entry);
        if (name == "." || name == "..") continue;
        if (entry.d_type == DT_DIR || isFolder(folder, entry.d_name)) return name;
    }
    return std::nullopt;
}

void FolderReader::seek(std::uint64_t inode, bool listsItemNumbers) {
    m_soughtInode = inode;
    m_listsItemNumbers = listsItemNumbers;
}

void FolderReader::collect(FileDescriptor const& folder, char const* name, std::uint64_t listedNumber) {
    if (!m_listsItemNumbers) listedNumber = factsInside(folder, name).valueOr(FolderFacts()).stamp.inode;
    if (listedNumber == *m_soughtInode) m_sought.emplace_back(name);
}

bool FolderReader::hadRoomLeft() const { return bufferSize - m_filled > sizeof(dirent64); }

} // namespace mac
