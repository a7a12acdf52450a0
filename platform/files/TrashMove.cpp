#include "platform/files/TrashMove.h"
#include "platform/files/TrashInformation.h"
#include "platform/files/TrashSteps.h"
#include "platform/system/BigEndian.h"
#include "platform/system/ExclusiveRename.h"
#include "platform/system/OpenItems.h"
#include "platform/system/items/AppleDoubleFile.h"
#include "platform/system/items/AppleDoubleForm.h"
#include "platform/system/items/FolderPlace.h"
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

bool isAppleDouble(FileDescriptor const& item) {
    struct stat status {};
    // To open what is no file can wait for ever, or do things.
    if (::fstat(item.number(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
    FileDescriptor const file(::open(descriptorPath(item).c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    std::array<std::byte, appledouble::HeaderSize> head{};
    if (!file.isOpen() || ::pread(file.number(), head.data(), head.size(), 0) != std::ssize(head)) return false;
    return bigEndian32(head, 0) == appledouble::Magic && bigEndian32(head, 4) == appledouble::Version;
}

} // namespace

Moved moveItem(FileDescriptor const& item, FileDescriptor const& fromFolder, std::string const& from,
               FileDescriptor const& toFolder, std::string const& to) {
    if (!isItemInFolder(fromFolder, from, item)) return Moved::No;
    tellTrashStep(TrashStep::Checked);
    if (!renameWithoutReplacing(fromFolder.number(), from, toFolder.number(), to)) return Moved::No;
    tellTrashStep(TrashStep::Renamed);
    if (isItemInFolder(toFolder, to, item)) return Moved::Yes;
    bool const isBack = renameWithoutReplacing(toFolder.number(), to, fromFolder.number(), from);
    errno = ESTALE;
    return isBack ? Moved::No : Moved::ButAnother;
}

TrashReservation::TrashReservation(TrashFolder const& trash, std::string const& name)
    : m_trash(trash), m_name(name + std::string(TrashInformation::nameEnd)) {}

TrashReservation::~TrashReservation() {
    if (!m_file.isOpen() || m_isKept) return;
    int const reason = errno;
    if (isItemInFolder(m_trash.information, m_name, m_file))
        ::unlinkat(m_trash.information.number(), m_name.c_str(), 0);
    errno = reason;
}

bool TrashReservation::make(std::string const& writtenPath, std::string const& date) {
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    m_file = FileDescriptor(::openat(m_trash.information.number(), m_name.c_str(), flags, mode_t{S_IRUSR | S_IWUSR}));
    if (!m_file.isOpen()) return false;
    std::string const text = TrashInformation{writtenPath, date}.text();
    if (!writeAll(m_file, std::as_bytes(std::span(text))) || ::fsync(m_file.number()) != 0) return false;
    // Some file systems cannot flush folders.
    ::fsync(m_trash.information.number());
    return true;
}

Companion companionOf(FileDescriptor const& folder, std::string const& itemName) {
    if (itemName.starts_with(AppleDoubleFile::namePrefix)) return {};
    Companion companion{.name = AppleDoubleFile::nameFor(itemName)};
    companion.file = FileDescriptor(::openat(folder.number(), companion.name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (!companion.file.isOpen() || !isAppleDouble(companion.file)) return {};
    return companion;
}

} // namespace mac
