#include "platform/desktop/Autostart.h"
#include "platform/desktop/DesktopEntry.h"
#include "platform/desktop/Desktops.h"
#include "platform/desktop/StartedItem.h"
#include "platform/system/BytePath.h"
#include "platform/system/FolderContents.h"
#include "platform/system/XDGFolders.h"
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

namespace mac {

namespace {

// A desktop entry is smaller by far; a larger file is none.
constexpr std::size_t LargestAutostartFile = std::size_t{1} << 20;
constexpr std::string_view EntryExtension = ".desktop";

// A file as it was when it was read. What the current desktop makes of it is asked anew each time, since that depends
// on more than the file.
struct KnownFile {
    FileStatus status{};
    DesktopEntry entry{};
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

    // The file's entry, read if it is not known in this state; one without keys if it cannot be read.
    DesktopEntry const& entryOf(FileDescriptor const& folder, std::string const& path, FileStatus const& status) {
        KnownFile& known = m_files[path];
        bool const isKnown = known.read != 0 && known.status == status;
        if (!isKnown) read(folder, path, known);
        known.read = m_read;
        return known.entry;
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
        if (!contents.hasValue()) return;
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
    bool isComplete{true};
};

// The entries in the folder, also those that start nothing.
FolderRead itemsInFolder(std::string const& path, AutostartRules const& rules) {
    Result<FileDescriptor> const folder = openPath(path, O_RDONLY | O_DIRECTORY);
    if (!folder.hasValue()) return {.isComplete = folder.problem().is(ENOENT)};
    Result<std::vector<std::string>> const names = namesInOpenFolder(folder.value());
    if (!names.hasValue()) return {.isComplete = false};
    FolderRead read;
    for (std::string const& name : names.value()) {
        if (!name.ends_with(EntryExtension)) continue;
        Result<FileStatus> const status = fileStatusInFolder(folder.value(), name);
        if (!status.hasValue() || status.value().kind == FileStatus::Kind::Folder) continue;
        std::string const file = BytePath(path).joined(name);
        // What is behind a symbolic link decides.
        bool const isFile = status.value().kind == FileStatus::Kind::File;
        Result<FileStatus> const behind = isFile ? status : fileStatusAtPath(file);
        if (!behind.hasValue() || behind.value().kind != FileStatus::Kind::File) continue;
        AutostartItem item{.fileName = name, .folder = path, .status = status.value()};
        item.entry = AutostartEntry::of(knownFiles().entryOf(folder.value(), file, behind.value()), rules);
        if (item.entry.standing != AutostartEntry::Standing::NoEntry) read.items.push_back(std::move(item));
    }
    return read;
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
        FolderRead read = itemsInFolder(folder, rules);
        found.isComplete = found.isComplete && read.isComplete;
        for (AutostartItem& item : read.items) {
            bool const isFirst = seen.insert(item.fileName).second;
            if (!isFirst || item.entry.standing != AutostartEntry::Standing::Starts) continue;
            item.isOfUser = folder == folders.front();
            item.started = itemStartedBy(item.entry.command, programFolders);
            if (!item.started.empty()) found.items.push_back(std::move(item));
        }
    }
    knownFiles().endRead();
    std::ranges::sort(found.items, comesBefore);
    return found;
}

bool isStartedBySystem(std::string const& fileName) {
    AutostartRules const& rules = currentAutostartRules();
    std::vector<std::string> const folders = autostartFolders();
    for (std::size_t index = 1; index < folders.size(); ++index) {
        DesktopEntry const file = DesktopEntry::readFile(BytePath(folders[index]).joined(fileName));
        AutostartEntry const entry = AutostartEntry::of(file, rules);
        if (entry.standing == AutostartEntry::Standing::NoEntry) continue;
        return entry.standing == AutostartEntry::Standing::Starts;
    }
    return false;
}

bool isAutostartNameTaken(std::string const& fileName) {
    return std::ranges::any_of(autostartFolders(), [&](std::string const& folder) {
        return fileStatusAtPath(BytePath(folder).joined(fileName)).hasValue();
    });
}

} // namespace mac
