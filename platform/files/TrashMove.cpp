#include "platform/files/TrashMove.h"
#include "platform/files/TrashInformation.h"
#include "platform/system/OpenItems.h"
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

RenameSteps renameStepsOf(TrashSteps const& steps) {
    if (!steps) return {};
    return [steps](RenameStep step) { steps(step == RenameStep::Checked ? TrashStep::Checked : TrashStep::Renamed); };
}

TrashReservation::TrashReservation(TrashPlace const& trash, std::string const& name)
    : m_trash(trash), m_name(TrashInformation::nameFor(name)) {}

TrashReservation::~TrashReservation() {
    if (!m_file.isOpen() || m_isKept) return;
    if (confirmItemInFolder(m_trash.information, m_name, m_file).isDone())
        ::unlinkat(m_trash.information.number(), m_name.c_str(), 0);
}

Result<void> TrashReservation::make(std::string const& writtenPath, std::string const& date) {
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    m_file = FileDescriptor(::openat(m_trash.information.number(), m_name.c_str(), flags, mode_t{S_IRUSR | S_IWUSR}));
    if (!m_file.isOpen()) return lastSystemError("open", m_name);
    std::string const text = TrashInformation{writtenPath, date}.text();
    Result<void> const written = writeAll(m_file, std::as_bytes(std::span(text)));
    if (!written.isDone()) return written;
    if (::fsync(m_file.number()) != 0) return lastSystemError("fsync", m_name);
    // Some file systems cannot flush folders.
    ::fsync(m_trash.information.number());
    return {};
}

} // namespace mac
