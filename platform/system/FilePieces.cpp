#include "platform/system/FilePieces.h"
#include "platform/system/LongPath.h"
#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace mac {

namespace {

Result<void> confirmFile(FileStatus const& status, std::string_view path) {
    if (status.kind == FileStatus::Kind::File) return {};
    int const code = status.kind == FileStatus::Kind::Folder ? EISDIR : EINVAL;
    return SystemError{.code = code, .operation = "read", .item = std::string(path)};
}

// Fills the room as far as there are bytes; returns the count.
Result<std::size_t> fill(FileDescriptor const& file, std::span<std::byte> room, std::string_view path) {
    std::size_t total = 0;
    while (total < room.size()) {
        ssize_t const count = ::read(file.number(), room.data() + total, room.size() - total);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return lastSystemError("read", path);
        if (count == 0) break;
        total += static_cast<std::size_t>(count);
    }
    return total;
}

} // namespace

Result<void> readFileInPieces(std::string_view path, std::function<void(std::span<std::byte const>)> const& take) {
    Result<FileStatus> const expected = fileStatusAtPath(path);
    if (!expected.hasValue()) return expected.problem();
    if (Result<void> const isFile = confirmFile(expected.value(), path); !isFile.isDone()) return isFile;
    // Another item may have taken the place meanwhile.
    Result<FileDescriptor> const file = openPath(path, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    if (!file.hasValue()) return file.problem();
    Result<FileStatus> const opened = fileStatusOf(file.value());
    if (!opened.hasValue()) return opened.problem();
    if (Result<void> const isFile = confirmFile(opened.value(), path); !isFile.isDone()) return isFile;
    ::posix_fadvise(file.value().number(), 0, 0, POSIX_FADV_SEQUENTIAL);
    auto const room = std::make_unique_for_overwrite<std::byte[]>(FilePieceSize);
    for (;;) {
        Result<std::size_t> const count = fill(file.value(), {room.get(), FilePieceSize}, path);
        if (!count.hasValue()) return count.problem();
        take({room.get(), count.value()});
        if (count.value() < FilePieceSize) return {};
    }
}

} // namespace mac
