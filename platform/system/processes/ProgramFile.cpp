#include "platform/system/processes/ProgramFile.h"
#include "platform/system/BytePath.h"
#include "platform/system/FileDescriptor.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace mac {

namespace {

constexpr std::string_view DeletedMark = " (deleted)";

std::string linkOf(RunningProcess const& process, std::string_view name) {
    return "/proc/" + std::to_string(process.identity.pid) + "/" + std::string(name);
}

// Whether the path leads to the item behind the link. The system appends the mark if the name that was opened is gone,
// also if the file has other names.
bool leadsToItemBehind(char const* link, char const* path) {
    struct ::stat behindLink {};
    struct ::stat behindPath {};
    if (::stat(link, &behindLink) != 0 || behindLink.st_nlink == 0 || ::lstat(path, &behindPath) != 0) return false;
    return behindLink.st_dev == behindPath.st_dev && behindLink.st_ino == behindPath.st_ino;
}

std::optional<ProgramFile> fileBehind(std::string const& link) {
    std::optional<std::string> path = pathBehind(link.c_str());
    Result<IdentifiedItem> const item = identifyAtPath(link, LinkAtEnd::IsFollowed);
    if (!path || !item.hasValue() || item.value().isFolder) return std::nullopt;
    Result<IdentifiedItem> const atPath = identifyAtPath(*path, LinkAtEnd::IsNotFollowed);
    bool const isThere = atPath.hasValue() && atPath.value().identity == item.value().identity;
    return ProgramFile{std::move(*path), item.value().identity, isThere};
}

} // namespace

std::optional<std::string> pathBehind(char const* link) {
    std::array<char, 4096> buffer;
    ssize_t const size = ::readlink(link, buffer.data(), buffer.size());
    if (size <= 0 || static_cast<std::size_t>(size) == buffer.size()) return std::nullopt;
    std::string path(buffer.data(), static_cast<std::size_t>(size));
    if (path.ends_with(DeletedMark) && !leadsToItemBehind(link, path.c_str()))
        path.resize(path.size() - DeletedMark.size());
    return path;
}

std::optional<ProgramFile> executableFileOf(RunningProcess const& process) {
    return fileBehind(linkOf(process, "exe"));
}

std::optional<ProgramFile> openFileInBundle(RunningProcess const& process,
                                            std::function<bool(ProgramFile const&)> const& accepts) {
    std::string const folderPath = linkOf(process, "fd");
    Result<FileDescriptor> const folder = openPath(folderPath, O_RDONLY | O_DIRECTORY);
    if (!folder.hasValue()) return std::nullopt;
    Result<std::vector<FolderEntry>> const entries = entriesOf(folder.value());
    if (!entries.hasValue()) return std::nullopt;
    for (FolderEntry const& entry : entries.value()) {
        std::string const link = BytePath(folderPath).joined(entry.name);
        // The path alone is read first: the items behind other links, pipes or files of a server that does not answer,
        // are not looked at.
        std::optional<std::string> const path = pathBehind(link.c_str());
        if (!path || bundleHolding(*path).empty()) continue;
        std::optional<ProgramFile> file = fileBehind(link);
        if (file && accepts(*file)) return file;
    }
    return std::nullopt;
}

std::optional<std::string> calledScript(RunningProcess const& process) {
    if (!isInterpreter(process.executable) || !bundleHolding(process.executable).empty()) return std::nullopt;
    std::vector<std::string> const words = argumentsOf(process.identity.pid).value_or(std::vector<std::string>());
    std::optional<std::string> word = scriptInCommand(process.executable, words);
    if (!word || word->empty()) return std::nullopt;
    if (word->front() == '/') return word;
    std::optional<std::string> const folder = pathBehind(linkOf(process, "cwd").c_str());
    return folder ? std::optional(BytePath(*folder).joined(*word)) : std::nullopt;
}

std::optional<std::string> resolvedFile(std::string const& path) {
    std::unique_ptr<char, decltype(&::free)> const real(::realpath(path.c_str(), nullptr), &::free);
    struct ::stat status {};
    if (!real || ::stat(real.get(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    return std::string(real.get());
}

} // namespace mac
