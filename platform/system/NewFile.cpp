#include "platform/system/NewFile.h"
#include "platform/system/ExclusiveRename.h"
#include "platform/system/OpenItems.h"
#include "platform/system/TemporaryName.h"
#include "platform/system/items/ItemAccess.h"
#include "platform/system/items/Leftovers.h"
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace mac {

namespace {

// Attributes that are not copied: the security module labels the new file itself, and capabilities of the old contents
// must not pass to the new ones.
constexpr std::string_view SecurityNames = "security.";

constexpr std::string_view UserNames = "user.";

// Asks for the size, then for the bytes, and again if they have grown meanwhile.
template <class Question>
Result<std::vector<char>> answerOf(char const* operation, std::string const& item, Question const& question) {
    for (;;) {
        ssize_t const size = question(nullptr, 0);
        if (size < 0) return lastSystemError(operation, item);
        std::vector<char> bytes(static_cast<std::size_t>(size));
        if (bytes.empty()) return bytes;
        ssize_t const count = question(bytes.data(), bytes.size());
        if (count < 0 && errno == ERANGE) continue;
        if (count < 0) return lastSystemError(operation, item);
        bytes.resize(static_cast<std::size_t>(count));
        return bytes;
    }
}

// Done also if the attribute is gone, or is one of the system's that may not be read or written.
Result<void> copyAttribute(std::string const& oldPath, FileDescriptor const& file, std::string const& name) {
    bool const isUsers = name.starts_with(UserNames);
    auto const maySkip = [&](SystemError const& error) {
        return !isUsers && (isForbidden(error) || isUnsupported(error));
    };
    Result<std::vector<char>> const value = answerOf("getxattr", name, [&](char* bytes, std::size_t size) {
        return ::getxattr(oldPath.c_str(), name.c_str(), bytes, size);
    });
    if (!value.hasValue()) {
        SystemError const& error = value.problem();
        return error.is(ENODATA) || maySkip(error) ? Result<void>() : error;
    }
    if (::fsetxattr(file.number(), name.c_str(), value.value().data(), value.value().size(), 0) == 0) return {};
    SystemError error = lastSystemError("setxattr", name);
    return maySkip(error) ? Result<void>() : error;
}

} // namespace

Result<NewFile> NewFile::make(FileDescriptor const& folder, unsigned mode) {
    Result<std::string> name = temporaryName();
    if (!name.hasValue()) return name.problem();
    removeLeftovers(folder);
    FileDescriptor file(
        ::openat(folder.number(), name.value().c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
    if (!file.isOpen()) return lastSystemError("open", name.takeValue());
    NewFile made(folder, name.takeValue(), std::move(file));
    // A file that its own user cannot read is of use to nobody.
    if (Result<void> const permitted = permitOwner(made.m_file, mode & S_IRWXU); !permitted.isDone())
        return permitted.problem();
    return made;
}

NewFile::NewFile(FileDescriptor const& folder, std::string name, FileDescriptor file)
    : m_folder(&folder), m_name(std::move(name)), m_file(std::move(file)) {}

NewFile::~NewFile() {
    if (m_file.isOpen() && !m_hasFinalName) ::unlinkat(m_folder->number(), m_name.c_str(), 0);
}

Result<void> NewFile::write(std::span<std::byte const> bytes) const { return writeAll(m_file, bytes); }

Result<void> NewFile::copyAttributesOf(FileDescriptor const& old) const {
    std::string const path = descriptorPath(old);
    Result<std::vector<char>> const list = answerOf(
        "listxattr", path, [&](char* names, std::size_t size) { return ::listxattr(path.c_str(), names, size); });
    if (!list.hasValue()) return isUnsupported(list.problem()) ? Result<void>() : list.problem();
    std::string_view names(list.value().data(), list.value().size());
    while (!names.empty()) {
        std::string const name(names.substr(0, names.find('\0')));
        names.remove_prefix(std::min(name.size() + 1, names.size()));
        if (name.starts_with(SecurityNames) || name == AccessListAttribute) continue;
        Result<void> const copied = copyAttribute(path, m_file, name);
        if (!copied.isDone()) return copied;
    }
    return {};
}

Result<void> NewFile::takeAfter(FileDescriptor const& item, unsigned permissionMask) const {
    Result<ItemAccess> access = accessOf(item);
    if (!access.hasValue()) return access.problem();
    access.value().permissions &= permissionMask;
    return giveAccess(m_file, access.value(), InheritedList::MayBeThere);
}

Result<void> NewFile::flush() const {
    if (::fsync(m_file.number()) != 0) return lastSystemError("fsync", m_name);
    return confirmWritten(m_file, m_name);
}

Result<void> NewFile::giveName(std::string const& name, Place place) {
    Result<void> const named = takeName(name, place);
    if (!named.isDone()) return named;
    m_hasFinalName = true;
    leaveFolder(*m_folder);
    return flushFolder(*m_folder);
}

Result<void> NewFile::giveNameUnflushed(std::string const& name) {
    Result<void> const named = takeName(name, Place::IsTaken);
    if (!named.isDone()) return named;
    m_hasFinalName = true;
    leaveFolder(*m_folder);
    return {};
}

Result<void> NewFile::takeName(std::string const& name, Place place) const {
    if (place == Place::MustBeFree) return nameNewFile(*m_folder, m_name, name);
    int const folder = m_folder->number();
    if (::renameat(folder, m_name.c_str(), folder, name.c_str()) != 0) return lastSystemError("rename", name);
    return {};
}

} // namespace mac
