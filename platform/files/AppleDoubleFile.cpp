#include "platform/files/AppleDoubleFile.h"
#include "platform/files/ItemIdentity.h"
#include "platform/foundation/FileWriting.h"
#include "platform/foundation/OpenItems.h"
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
// Ten seconds altogether; who changes such a file needs milliseconds.
constexpr timespec BetweenTries{0, 5'000'000};
constexpr unsigned MostTries = 2'000;

std::mutex& threadLock() {
    static std::mutex lock;
    return lock;
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
    // Opening what is no file can wait for ever, or do things.
    std::optional<FileStatus> const found = fileStatusInFolder(m_item.folder, m_name);
    if (!found) {
        m_error = errno == ENOENT ? 0 : errno;
        return;
    }
    m_error = EEXIST;
    if (found->kind != FileStatus::Kind::File) return;
    FileDescriptor const file(
        ::openat(m_item.folder.number(), m_name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file.isOpen()) {
        m_error = errno;
        return;
    }
    errno = 0;
    Result<FileContents> const bytes = readOpenFile(file, LargestFile);
    if (!bytes.hasValue()) {
        if (errno != 0) m_error = errno;
        return;
    }
    Result<AppleDouble> read = AppleDouble::read(bytes.value().bytes);
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
