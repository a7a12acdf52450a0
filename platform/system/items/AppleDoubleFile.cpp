#include "platform/system/items/AppleDoubleFile.h"
#include "platform/system/FileWriting.h"
#include "platform/system/OpenItems.h"
#include "platform/system/items/AttributeNames.h"
#include "platform/system/items/ItemIdentity.h"
#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <mutex>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr std::size_t LargestFile = std::size_t{256} << 20;
// Before the resource fork, which may be large, there is room for what most items carry.
constexpr std::size_t BeginningSize = std::size_t{64} << 10;
// Ten seconds altogether; who changes such a file needs milliseconds.
constexpr timespec BetweenTries{0, 5'000'000};
constexpr unsigned MostTries = 2'000;

std::mutex& threadLock() {
    static std::mutex lock;
    return lock;
}

// The file of that name; errno is 0 where there is nothing, EEXIST where it is no file.
FileDescriptor openFile(FileDescriptor const& folder, std::string const& name) {
    // Opening what is no file can wait for ever, or do things.
    std::optional<FileStatus> const found = fileStatusInFolder(folder, name);
    if (!found && errno == ENOENT) errno = 0;
    if (found && found->kind != FileStatus::Kind::File) errno = EEXIST;
    if (!found || found->kind != FileStatus::Kind::File) return {};
    return FileDescriptor(
        ::openat(folder.number(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
}

// Of a large file; nothing where only the whole tells.
std::optional<AppleDouble> beginningBeside(OpenItem const& item) {
    if (item.name.empty()) return std::nullopt;
    FileDescriptor const file = openFile(item.folder, AppleDoubleFile::nameFor(item.name));
    std::optional<FileStatus> const status = file.isOpen() ? fileStatusOf(file) : std::nullopt;
    if (!status || status->size <= BeginningSize || status->size > LargestFile) return std::nullopt;
    std::vector<std::byte> beginning(BeginningSize);
    if (::pread(file.number(), beginning.data(), beginning.size(), 0) != std::ssize(beginning)) return std::nullopt;
    Result<AppleDouble, Failure> read = AppleDouble::readBeginning(beginning, status->size);
    return read.hasValue() ? std::optional(read.takeValue()) : std::nullopt;
}

std::optional<std::vector<std::byte>> valueIn(AppleDouble const& contents, std::string_view name) {
    std::optional<std::span<std::byte const>> const value = contents.valueOf(name);
    if (value) return std::vector<std::byte>(value->begin(), value->end());
    errno = ENODATA;
    return std::nullopt;
}

} // namespace

std::string AppleDoubleFile::nameFor(std::string_view itemName) { return std::string(namePrefix).append(itemName); }

AppleDoubleFile::AppleDoubleFile(OpenItem const& item) : m_item(item), m_name(nameFor(item.name)) {
    int const before = errno;
    read();
    errno = before;
}

int AppleDoubleFile::readingError() const {
    // The root has nothing beside it, and neither has an item whose name leaves no room for the prefix.
    bool const holdsNothing = m_error == EEXIST || m_error == EOPNOTSUPP || m_error == ENAMETOOLONG;
    return holdsNothing ? 0 : m_error;
}

void AppleDoubleFile::read() {
    if (m_item.name.empty()) {
        m_error = EOPNOTSUPP;
        return;
    }
    FileDescriptor const file = openFile(m_item.folder, m_name);
    m_error = file.isOpen() ? EEXIST : errno;
    if (!file.isOpen()) return;
    errno = 0;
    Result<FileContents, Failure> const bytes = readOpenFile(file, LargestFile);
    if (!bytes.hasValue()) {
        if (errno != 0) m_error = errno;
        return;
    }
    Result<AppleDouble, Failure> read = AppleDouble::read(bytes.value().bytes);
    if (!read.hasValue()) return;
    contents = read.takeValue();
    m_state = bytes.value().status;
    m_error = 0;
}

bool AppleDoubleFile::remove() const {
    if (!m_state) return true;
    std::optional<FileStatus> const found = fileStatusInFolder(m_item.folder, m_name);
    if (!found && errno == ENOENT) return true;
    if (found && found != m_state) errno = EAGAIN;
    return found == m_state && ::unlinkat(m_item.folder.number(), m_name.c_str(), 0) == 0;
}

bool AppleDoubleFile::save() const {
    if (!isUsable()) {
        errno = m_error;
        return false;
    }
    if (!isItemInFolder(m_item.folder, m_item.name, m_item.item)) {
        errno = ESTALE;
        return false;
    }
    if (contents.isEmpty()) return remove();
    std::optional<std::vector<std::byte>> const bytes = contents.written();
    if (!bytes || bytes->size() > LargestFile) {
        errno = E2BIG;
        return false;
    }
    if (replaceFileInFolder(m_item.folder, m_name, *bytes,
                            {.newFileIsLike = &m_item.item, .hasToBe = true, .state = m_state}))
        return true;
    if (errno == EEXIST) errno = EAGAIN;
    return false;
}

std::optional<std::vector<std::byte>> valueBeside(OpenItem const& item, std::string_view name) {
    std::optional<AppleDouble> const beginning = name == XATTR_RESOURCEFORK_NAME ? std::nullopt : beginningBeside(item);
    std::optional<std::span<std::byte const>> const found = beginning ? beginning->valueOf(name) : std::nullopt;
    // One that is empty there may lie behind it.
    bool const isKnown = beginning && (!found || !found->empty());
    if (isKnown) return valueIn(*beginning, name);
    AppleDoubleFile const whole(item);
    if (whole.readingError() == 0) return valueIn(whole.contents, name);
    errno = whole.readingError();
    return std::nullopt;
}

AppleDoubleLock::AppleDoubleLock(OpenItem const& item) : m_isHeld(true) {
    if (item.folder.isOpen()) m_folder = readableFolder(item.folder);
    for (unsigned tries = 0; m_folder.isOpen() && tries < MostTries; ++tries) {
        if (::flock(m_folder.number(), LOCK_EX | LOCK_NB) == 0) return;
        if (errno != EWOULDBLOCK && errno != EINTR) {
            m_folder = FileDescriptor();
            break;
        }
        ::nanosleep(&BetweenTries, nullptr);
    }
    if (m_folder.isOpen()) {
        m_isHeld = false;
        errno = EBUSY;
        return;
    }
    threadLock().lock();
    m_isThreadLocked = true;
}

AppleDoubleLock::~AppleDoubleLock() {
    if (m_isThreadLocked) threadLock().unlock();
}

} // namespace mac
