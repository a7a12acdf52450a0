#include "platform/desktop/autostart/Autostart.h"
#include "platform/desktop/entries/DesktopEntry.h"
#include "platform/desktop/entries/StartedItem.h"
#include "platform/desktop/session/Desktops.h"
#include "platform/system/BytePath.h"
#include "platform/system/FolderContents.h"
#include "platform/system/XDGFolders.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

namespace mac {

namespace {

// A desktop entry is smaller by far; a larger file is not read as one.
constexpr std::size_t LargestAutostartFile = std::size_t{1} << 20;
constexpr std::string_view EntryExtension = ".desktop";

// A file as it was when it was read. What the current desktop makes of it is asked anew each time, since that depends
// on more than the file.
struct KnownFile {
    FileStatus status{};
    DesktopEntry entry{};
    // Why it could not be read.
    std::optional<SystemError> problem{};
    // At the read in which it was last seen.
    unsigned long read{0};
};

// By path. Files that are gone are forgotten at the end of a read.
class KnownFiles {
public:
    void beginRead() { ++m_read; }
    void endRead() {
        std::erase_if(m_files, [&](auto const& file) { return file.second.read != m_read; });
    }

    // The file, read if it is not known in this state; with an entry without keys if it cannot be read.
    KnownFile const& fileOf(FileDescriptor const& folder, std::string const& path, FileStatus const& status) {
        KnownFile& known = m_files[path];
        bool const isKnown = known.read != 0 && known.status == status;
        if (!isKnown) read(folder, path, known);
        known.read = m_read;
        return known;
    }

private:
    // A symbolic link is opened by the path, which looks first at what it leads to.
    static Result<FileContents> contentsOf(FileDescriptor const& folder, std::string const& path) {
        std::string const name(BytePath(path).leaf());
        constexpr int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
        FileDescriptor const file(::openat(folder.number(), name.c_str(), flags));
        return file.isOpen() ? readOpenFile(file, LargestAutostartFile) : readFileAtPath(path, LargestAutostartFile);
    }

    static void read(FileDescriptor const& folder, std::string const& path, KnownFile& known) {
        Result<FileContents> const contents = contentsOf(folder, path);
        known = {};
        if (!contents.hasValue()) {
            known.problem = contents.problem();
            return;
        }
        std::vector<std::byte> const& bytes = contents.value().bytes;
        known.status = contents.value().status;
        known.entry = DesktopEntry::read({reinterpret_cast<char const*>(bytes.data()), bytes.size()});
    }

    std::unordered_map<std::string, KnownFile> m_files{};
    unsigned long m_read{0};
};

KnownFiles& knownFiles() {
    static KnownFiles files;
    return files;
}

struct FolderRead {
    std::vector<AutostartItem> items{};
    std::optional<SystemError> problem{};
};

enum class FolderOwner { User, System };

// Whether the problem means that there is no entry, rather than that it could not be looked at. What the user may not
// read of the system's starts nothing for that user.
bool isOfNoEntry(SystemError const& problem, FolderOwner owner) {
    if (problem.is(EACCES)) return owner == FolderOwner::System;
    constexpr std::array codes{ENOENT, ENOTDIR, ELOOP, ENAMETOOLONG, EISDIR, EINVAL, EFBIG};
    return std::ranges::any_of(codes, [&](int code) { return problem.is(code); });
}

// The regular file of an entry's name, or behind the symbolic link of that name.
struct EntryFile {
    // The status of the name itself, which may be a link.
    FileStatus status{};
    KnownFile const& file;
};

// nullopt for an item that is no file.
Result<std::optional<EntryFile>> entryFile(FileDescriptor const& folder, std::string const& path) {
    Result<FileStatus> const status = fileStatusInFolder(folder, std::string(BytePath(path).leaf()));
    if (!status.hasValue()) return status.problem();
    if (status.value().kind == FileStatus::Kind::Folder) return std::optional<EntryFile>();
    // What is behind a symbolic link decides.
    bool const isFile = status.value().kind == FileStatus::Kind::File;
    Result<FileStatus> const behind = isFile ? status : fileStatusAtPath(path);
    if (!behind.hasValue()) return behind.problem();
    if (behind.value().kind != FileStatus::Kind::File) return std::optional<EntryFile>();
    KnownFile const& file = knownFiles().fileOf(folder, path, behind.value());
    if (file.problem) return *file.problem;
    return std::optional(EntryFile{status.value(), file});
}

// The problem with the whole path of the item, of which system calls in a folder know the name alone.
SystemError onItem(SystemError problem, std::string const& path) {
    problem.item = path;
    return problem;
}

// The entries in the folder, also those that start nothing.
FolderRead itemsInFolder(std::string const& path, FolderOwner owner, AutostartRules const& rules) {
    Result<FileDescriptor> const folder = openPath(path, O_RDONLY | O_DIRECTORY);
    if (!folder.hasValue() && folder.problem().is(ENOENT)) return {};
    if (!folder.hasValue()) return {.problem = onItem(folder.problem(), path)};
    Result<std::vector<std::string>> const names = namesInOpenFolder(folder.value());
    if (!names.hasValue()) return {.problem = onItem(names.problem(), path)};
    FolderRead read;
    for (std::string const& name : names.value()) {
        if (!name.ends_with(EntryExtension)) continue;
        std::string const file = BytePath(path).joined(name);
        Result<std::optional<EntryFile>> const found = entryFile(folder.value(), file);
        bool const isUnread = !found.hasValue() && !isOfNoEntry(found.problem(), owner);
        if (isUnread && !read.problem) read.problem = onItem(found.problem(), file);
        if (!found.hasValue() || !found.value()) continue;
        AutostartItem item{.fileName = name, .folder = path, .status = found.value()->status};
        item.entry = AutostartEntry::of(found.value()->file.entry, rules);
        if (item.entry.standing != AutostartEntry::Standing::NoEntry) read.items.push_back(std::move(item));
    }
    return read;
}

// What a folder of the system has under the name; without an entry if there is none, or none that this user may read.
Result<AutostartEntry> systemsEntry(std::string const& path, std::string const& fileName, AutostartRules const& rules) {
    Result<FileDescriptor> const folder = openPath(path, O_PATH | O_DIRECTORY);
    Result<std::optional<EntryFile>> const found = folder.hasValue()
                                                       ? entryFile(folder.value(), BytePath(path).joined(fileName))
                                                       : Result<std::optional<EntryFile>>(folder.problem());
    if (found.hasValue())
        return found.value() ? AutostartEntry::of(found.value()->file.entry, rules) : AutostartEntry();
    return isOfNoEntry(found.problem(), FolderOwner::System) ? Result<AutostartEntry>(AutostartEntry())
                                                             : found.problem();
}

// Own entries last, in their order.
bool comesBefore(AutostartItem const& one, AutostartItem const& other) {
    auto const place = [](AutostartItem const& item) {
        return std::tuple(item.entry.own.has_value(), item.entry.own ? item.entry.own->order : 0,
                          std::string_view(item.fileName));
    };
    return place(one) < place(other);
}

} // namespace

std::vector<std::string> autostartFolders() {
    std::vector<std::string> folders = configFolders();
    std::string_view const dataFolder = currentAutostartRules().dataFolder;
    if (!dataFolder.empty()) {
        std::vector<std::string> between = dataFolders();
        for (std::string& folder : between)
            appendComponent(folder, dataFolder);
        folders.insert(folders.begin() + 1, between.begin(), between.end());
    }
    for (std::string& folder : folders)
        appendComponent(folder, "autostart");
    return folders;
}

AutostartItems autostartItems() {
    AutostartItems found;
    std::unordered_set<std::string> seen;
    ResolvedFolders programFolders;
    AutostartRules const& rules = currentAutostartRules();
    std::vector<std::string> const folders = autostartFolders();
    knownFiles().beginRead();
    for (std::string const& folder : folders) {
        bool const isOfUser = folder == folders.front();
        FolderRead read = itemsInFolder(folder, isOfUser ? FolderOwner::User : FolderOwner::System, rules);
        if (!found.problem) found.problem = read.problem;
        for (AutostartItem& item : read.items) {
            bool const isFirst = seen.insert(item.fileName).second;
            if (!isFirst || item.entry.standing != AutostartEntry::Standing::Starts) continue;
            item.isOfUser = isOfUser;
            item.started = itemStartedBy(item.entry.command, programFolders);
            if (!item.started.empty()) found.items.push_back(std::move(item));
        }
    }
    knownFiles().endRead();
    std::ranges::sort(found.items, comesBefore);
    return found;
}

Result<bool> isStartedBySystem(std::string const& fileName) {
    AutostartRules const& rules = currentAutostartRules();
    std::vector<std::string> const folders = autostartFolders();
    for (std::size_t index = 1; index < folders.size(); ++index) {
        Result<AutostartEntry> const entry = systemsEntry(folders[index], fileName, rules);
        if (!entry.hasValue()) return entry.problem();
        if (entry.value().standing == AutostartEntry::Standing::NoEntry) continue;
        return entry.value().standing == AutostartEntry::Standing::Starts;
    }
    return false;
}

Result<bool> isAutostartNameTaken(std::string const& fileName) {
    std::vector<std::string> const folders = autostartFolders();
    for (std::string const& folder : folders) {
        FolderOwner const owner = folder == folders.front() ? FolderOwner::User : FolderOwner::System;
        Result<FileStatus> const status = fileStatusAtPath(BytePath(folder).joined(fileName));
        if (status.hasValue()) return true;
        if (!isOfNoEntry(status.problem(), owner)) return status.problem();
    }
    return false;
}

} // namespace mac
