#include "platform/files/AppleDoubleFile.h"
#include "platform/foundation/FileWriting.h"
#include "platform/foundation/LongPath.h"
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr std::size_t LargestFile = std::size_t{256} << 20;
// What the item's reader and writer may do, nobody else does; and it is not run.
constexpr mode_t ReadAndWrite = 0666;

unsigned modeFor(OpenItem const& item) {
    struct stat status {};
    if (::fstat(item.item.number(), &status) != 0) return S_IRUSR | S_IWUSR;
    return (status.st_mode & ReadAndWrite) | S_IRUSR | S_IWUSR;
}

} // namespace

std::string AppleDoubleFile::nameFor(std::string_view itemName) { return "._" + std::string(itemName); }

AppleDoubleFile::AppleDoubleFile(OpenItem const& item) : m_item(item), m_name(nameFor(item.name)) {
    int const before = errno;
    read();
    errno = before;
}

void AppleDoubleFile::read() {
    if (m_item.name.empty()) {
        m_error = EOPNOTSUPP;
        return;
    }
    // Opening what is no file can wait for ever, or do things.
    struct stat status {};
    if (::fstatat(m_item.folder.number(), m_name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        m_error = errno == ENOENT ? 0 : errno;
        return;
    }
    m_error = EEXIST;
    if (!S_ISREG(status.st_mode)) return;
    FileDescriptor const file(
        ::openat(m_item.folder.number(), m_name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file.isOpen()) {
        m_error = errno;
        return;
    }
    Result<FileContents> const bytes = readOpenFile(file, LargestFile);
    if (!bytes.hasValue()) return;
    Result<AppleDouble> read = AppleDouble::read(bytes.value().bytes);
    if (!read.hasValue()) return;
    contents = read.takeValue();
    m_isThere = true;
    m_error = 0;
}

bool AppleDoubleFile::save() const {
    if (!isUsable()) {
        errno = m_error;
        return false;
    }
    if (contents.isEmpty())
        return !m_isThere || ::unlinkat(m_item.folder.number(), m_name.c_str(), 0) == 0 || errno == ENOENT;
    std::optional<std::vector<std::byte>> const bytes = contents.written();
    if (!bytes || bytes->size() > LargestFile) {
        errno = E2BIG;
        return false;
    }
    return replaceFileInFolder(m_item.folder.number(), m_name, *bytes, modeFor(m_item));
}

} // namespace mac
