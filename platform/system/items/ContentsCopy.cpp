#include "platform/system/items/FileCopy.h"
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

// Bytes between two questions whether to continue.
constexpr std::size_t PieceSize = std::size_t{8} << 20U;
// Bytes that are copied through this process at a time; a file up to this size needs no more than two calls.
constexpr std::size_t BufferSize = std::size_t{128} << 10U;

SystemError cancelled() { return {.code = ECANCELED, .operation = "copy"}; }

Result<void> writeAllAt(FileDescriptor const& file, std::span<char const> bytes, off_t place) {
    while (!bytes.empty()) {
        ssize_t const count = ::pwrite(file.number(), bytes.data(), bytes.size(), place);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return lastSystemError("write");
        bytes = bytes.subspan(static_cast<std::size_t>(count));
        place += count;
    }
    return {};
}

// Copies bytes within the kernel and answers how many; 0 if the kernel cannot, or at the end of the file.
std::size_t copyPieceBySystem(FileDescriptor const& from, FileDescriptor const& to, off_t place, std::size_t size) {
    ssize_t count = -1;
    do {
        off_t source = place;
        off_t target = place;
        count = ::copy_file_range(from.number(), &source, to.number(), &target, size, 0);
    } while (count < 0 && errno == EINTR);
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

// Fails with ESTALE if the file has become shorter since: the copy is neither the old one nor the new one.
Result<void> confirmNotTruncated(FileDescriptor const& from, ItemStatus const& before) {
    Result<ItemStatus> const now = statusOf(from);
    if (!now.hasValue()) return now.problem();
    if (now.value().size < before.size) return SystemError{.code = ESTALE, .operation = "copy"};
    return {};
}

} // namespace

// Copies through this process and answers how many bytes; 0 at the end of the file.
Result<std::size_t> ContentsCopy::copyPiece(FileDescriptor const& from, FileDescriptor const& to, off_t place,
                                            std::size_t size) {
    if (m_buffer.empty()) m_buffer.resize(BufferSize);
    ssize_t count = -1;
    do {
        count = ::pread(from.number(), m_buffer.data(), std::min(size, m_buffer.size()), place);
    } while (count < 0 && errno == EINTR);
    if (count < 0) return lastSystemError("read");
    std::span<char const> const bytes = std::span(m_buffer).first(static_cast<std::size_t>(count));
    Result<void> const written = writeAllAt(to, bytes, place);
    if (!written.isDone()) return written.problem();
    return bytes.size();
}

// Copies up to `end` and answers how far it came: less if the file ends before it.
Result<off_t> ContentsCopy::copyRange(FileDescriptor const& from, FileDescriptor const& to, off_t begin, off_t end) {
    bool isBySystem = true;
    while (begin < end) {
        if (!m_shouldContinue()) return cancelled();
        std::size_t const size = std::min(static_cast<std::size_t>(end - begin), PieceSize);
        std::size_t const copied = isBySystem ? copyPieceBySystem(from, to, begin, size) : 0;
        isBySystem = copied > 0;
        begin += static_cast<off_t>(copied);
        if (isBySystem) continue;
        Result<std::size_t> const count = copyPiece(from, to, begin, size);
        if (!count.hasValue()) return count.problem();
        if (count.value() == 0) break;
        begin += static_cast<off_t>(count.value());
    }
    return begin;
}

// Copies what lies behind the size that the volume tells, and answers where the file really ends.
Result<off_t> ContentsCopy::copyRest(FileDescriptor const& from, FileDescriptor const& to, off_t begin) {
    while (true) {
        Result<std::size_t> const count = copyPiece(from, to, begin, BufferSize);
        if (!count.hasValue()) return count.problem();
        if (count.value() == 0) return begin;
        begin += static_cast<off_t>(count.value());
        if (!m_shouldContinue()) return cancelled();
    }
}

// Copies what is no hole and answers how far the file goes, as far as its size tells.
Result<off_t> ContentsCopy::copyData(FileDescriptor const& from, ItemStatus const& status, FileDescriptor const& to) {
    off_t place = 0;
    // The volume may tell too large a size.
    off_t knownEnd = static_cast<off_t>(status.size);
    while (place < knownEnd) {
        off_t const begin = ::lseek(from.number(), place, SEEK_DATA);
        bool const isEnd = begin < 0 && errno == ENXIO;
        if (isEnd) break;
        // A volume that does not know its holes fails otherwise.
        off_t const data = begin < 0 ? place : begin;
        off_t const hole = begin < 0 ? -1 : ::lseek(from.number(), data, SEEK_HOLE);
        off_t const end = hole < 0 ? knownEnd : hole;
        Result<off_t> const reached = copyRange(from, to, data, end);
        if (!reached.hasValue()) return reached.problem();
        place = reached.value();
        if (place < end) knownEnd = place;
    }
    return knownEnd;
}

Result<void> ContentsCopy::run(FileDescriptor const& from, ItemStatus const& status, FileDescriptor const& to) {
    if (m_canShareBlocks && status.size > 0) {
        if (::ioctl(to.number(), FICLONE, from.number()) == 0) return {};
        // The two volumes can never share blocks, or cannot for this file (its flags, the space).
        m_canShareBlocks = errno != EOPNOTSUPP && errno != ENOTTY && errno != EXDEV && errno != EINVAL;
    }
    bool const isSmall = status.size > 0 && status.size < BufferSize && status.allocated >= status.size;
    if (isSmall) {
        Result<std::size_t> const count = copyPiece(from, to, 0, BufferSize);
        if (!count.hasValue()) return count.problem();
        if (count.value() == status.size) return {};
        // It is changing, or the volume does not know its size.
        if (Result<void> const confirmed = confirmNotTruncated(from, status); !confirmed.isDone()) return confirmed;
    }
    Result<off_t> const known = copyData(from, status, to);
    if (!known.hasValue()) return known.problem();
    if (Result<void> const confirmed = confirmNotTruncated(from, status); !confirmed.isDone()) return confirmed;
    Result<off_t> const end = copyRest(from, to, known.value());
    if (!end.hasValue()) return end.problem();
    if (::ftruncate(to.number(), end.value()) != 0) return lastSystemError("truncate");
    return {};
}

} // namespace mac
