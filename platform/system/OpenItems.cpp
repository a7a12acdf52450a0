#include "platform/system/OpenItems.h"
#include <algorithm>
#include <cerrno>
#include <climits>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace mac {

namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

std::optional<std::string> textOfLink(int folder, char const* name) {
    for (std::size_t size = PATH_MAX;; size *= 2) {
        std::string text(size, '\0');
        ssize_t const length = ::readlinkat(folder, name, text.data(), text.size());
        if (length < 0) return std::nullopt;
        // A buffer that is full may hold a part of it.
        if (static_cast<std::size_t>(length) == size) continue;
        text.resize(static_cast<std::size_t>(length));
        return text;
    }
}

} // namespace

std::string descriptorPath(FileDescriptor const& item) { return "/proc/self/fd/" + std::to_string(item.number()); }

std::optional<std::string> systemsPath(FileDescriptor const& item) {
    std::optional<std::string> path = textOfLink(AT_FDCWD, descriptorPath(item).c_str());
    if (!path || path->starts_with('/')) return path;
    errno = ENOENT;
    return std::nullopt;
}

std::optional<std::string> linkText(FileDescriptor const& link) { return textOfLink(link.number(), ""); }

std::optional<std::string> linkTextIn(FileDescriptor const& folder, std::string const& name) {
    return textOfLink(folder.number(), name.c_str());
}

FileDescriptor openBelow(FileDescriptor const& folder, std::string_view relativePath) {
    constexpr int flags = O_PATH | O_NOFOLLOW | O_CLOEXEC;
    FileDescriptor item(::openat(folder.number(), ".", flags));
    while (item.isOpen() && !relativePath.empty()) {
        std::size_t const length = std::min(relativePath.find('/'), relativePath.size());
        std::string const name(relativePath.substr(0, length));
        relativePath.remove_prefix(std::min(length + 1, relativePath.size()));
        if (!name.empty()) item = FileDescriptor(::openat(item.number(), name.c_str(), flags));
    }
    return item;
}

FileDescriptor readableFolder(FileDescriptor const& folder) {
    return FileDescriptor(::openat(folder.number(), ".", O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC));
}

bool flushFolder(FileDescriptor const& folder) {
    FileDescriptor const readable = readableFolder(folder);
    if (!readable.isOpen() || ::fsync(readable.number()) == 0) return true;
    return errno == EINVAL || errno == EROFS || errno == EOPNOTSUPP || errno == ENOSYS;
}

bool writeAll(FileDescriptor const& file, std::span<std::byte const> bytes) {
    while (!bytes.empty()) {
        ssize_t const count = ::write(file.number(), bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return true;
}

std::optional<std::vector<FolderEntry>> entriesOf(FileDescriptor folder) {
    std::unique_ptr<DIR, CloseFolder> const entries(::fdopendir(folder.number()));
    if (!entries) return std::nullopt;
    // What lists the folder closes it.
    folder.release();
    std::vector<FolderEntry> result;
    errno = 0;
    while (dirent const* const entry = ::readdir(entries.get())) {
        std::string name = entry->d_name;
        if (name != "." && name != "..") result.push_back({std::move(name), entry->d_ino});
    }
    return errno == 0 ? std::optional(std::move(result)) : std::nullopt;
}

SplitPath splitPath(std::string_view path) {
    std::size_t const slash = path.rfind('/');
    std::size_t const start = slash == std::string_view::npos ? 0 : slash + 1;
    return {std::string(path.substr(0, start)), std::string(path.substr(start))};
}

} // namespace mac
