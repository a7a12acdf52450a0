#include "platform/files/Forks.h"
#include "platform/files/references/CatalogInformation.h"
#include "platform/files/references/FileStatuses.h"
#include "platform/files/references/ItemReferences.h"
#include "platform/system/LongPath.h"
#include "platform/system/OpenItems.h"
#include "platform/system/items/AttributesOnItem.h"
#include "platform/system/items/ItemAttributes.h"
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <future>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace mac {

namespace {

constexpr std::u16string_view ResourceForkName = u"RESOURCE_FORK";
// Bytes read at a time for small requests.
constexpr std::size_t BufferSize = std::size_t{128} << 10;

// Bytes compared at a time. Two buffers of this size, one for each fork, stay in the cache of a processor's core;
// smaller ones take more calls.
constexpr std::size_t ComparedSize = std::size_t{256} << 10;

// An open fork: a file, or bytes that were read when it was opened.
class Fork {
public:
    explicit Fork(FileDescriptor file) : m_file(std::move(file)) {}
    explicit Fork(std::vector<std::byte> bytes) : m_buffer(std::move(bytes)) {}

    Result<std::int64_t> size() const;
    // Reads up to the end; returns the count.
    Result<std::size_t> read(std::int64_t place, std::span<std::byte> bytes);
    // Reads up to the end, past the buffer of read(); returns the count. Any thread.
    Result<std::size_t> readOnce(std::int64_t place, std::span<std::byte> bytes) const {
        return m_file.isOpen() ? readFile(place, bytes) : copyBuffered(place, bytes);
    }

    std::int64_t mark{0};

private:
    std::size_t copyBuffered(std::int64_t place, std::span<std::byte> bytes) const;
    Result<std::size_t> readFile(std::int64_t place, std::span<std::byte> bytes) const;

    FileDescriptor m_file{};
    // The bytes from a place in the fork on.
    std::vector<std::byte> m_buffer{};
    std::int64_t m_bufferPlace{0};
};

Result<std::int64_t> Fork::size() const {
    if (!m_file.isOpen()) return static_cast<std::int64_t>(m_buffer.size());
    Result<FileStatus> const status = fileStatusOf(m_file);
    if (!status.hasValue()) return status.problem();
    return static_cast<std::int64_t>(status.value().size);
}

std::size_t Fork::copyBuffered(std::int64_t place, std::span<std::byte> bytes) const {
    std::int64_t const offset = place - m_bufferPlace;
    if (offset < 0 || offset >= std::ssize(m_buffer)) return 0;
    auto const buffered = std::span(m_buffer).subspan(static_cast<std::size_t>(offset));
    std::size_t const count = std::min(buffered.size(), bytes.size());
    std::memcpy(bytes.data(), buffered.data(), count);
    return count;
}

Result<std::size_t> Fork::readFile(std::int64_t place, std::span<std::byte> bytes) const {
    std::size_t total = 0;
    while (total < bytes.size()) {
        ssize_t const count = ::pread(m_file.number(), bytes.data() + total, bytes.size() - total,
                                      place + static_cast<std::int64_t>(total));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return lastSystemError("read");
        if (count == 0) break;
        total += static_cast<std::size_t>(count);
    }
    return total;
}

Result<std::size_t> Fork::read(std::int64_t place, std::span<std::byte> bytes) {
    std::size_t total = copyBuffered(place, bytes);
    if (!m_file.isOpen() || total == bytes.size()) return total;
    place += static_cast<std::int64_t>(total);
    std::span<std::byte> const rest = bytes.subspan(total);
    if (rest.size() >= BufferSize) {
        Result<std::size_t> const count = readFile(place, rest);
        return count.hasValue() ? total + count.value() : count;
    }
    m_buffer.resize(BufferSize);
    Result<std::size_t> const count = readFile(place, m_buffer);
    m_buffer.resize(count.hasValue() ? count.value() : 0);
    m_bufferPlace = place;
    if (!count.hasValue()) return count;
    return total + copyBuffered(place, rest);
}

struct ForkTable {
    std::mutex lock{};
    std::map<std::int16_t, std::shared_ptr<Fork>> forks{};
};

// Never destroyed, since forks may be used until the program's last instruction.
ForkTable& forkTable() {
    static ForkTable& shared = *std::make_unique<ForkTable>().release();
    return shared;
}

std::shared_ptr<Fork> forkOf(std::int16_t number) {
    std::scoped_lock const lock(forkTable().lock);
    auto const found = forkTable().forks.find(number);
    return found == forkTable().forks.end() ? nullptr : found->second;
}

// The lowest number that is free; -1 if none is.
std::int16_t numberFor(std::shared_ptr<Fork> fork) {
    std::scoped_lock const lock(forkTable().lock);
    std::int16_t number = 1;
    for (auto const& [taken, other] : forkTable().forks) {
        if (taken != number) break;
        if (number == std::numeric_limits<std::int16_t>::max()) return -1;
        ++number;
    }
    forkTable().forks.emplace(number, std::move(fork));
    return number;
}

using OpenedFork = Result<std::shared_ptr<Fork>>;

OpenedFork openDataFork(OpenItem const& item) {
    struct stat status {};
    if (::fstat(item.item.number(), &status) != 0) return lastSystemError("stat", item.name);
    if (S_ISLNK(status.st_mode)) {
        Result<std::string> const text = linkText(item.item);
        if (!text.hasValue()) return text.problem();
        std::span<std::byte const> const bytes = std::as_bytes(std::span(text.value()));
        return std::make_shared<Fork>(std::vector<std::byte>(bytes.begin(), bytes.end()));
    }
    // Opening another kind of item may block or have side effects.
    if (!S_ISREG(status.st_mode)) return SystemError{.code = ENODATA, .operation = "open", .item = item.name};
    FileDescriptor file(::open(descriptorPath(item.item).c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file.isOpen()) return lastSystemError("open", item.name);
    ::posix_fadvise(file.number(), 0, 0, POSIX_FADV_SEQUENTIAL);
    return std::make_shared<Fork>(std::move(file));
}

OpenedFork openResourceFork(OpenItem const& item) {
    Result<FileStatus> const status = fileStatusOf(item.item);
    if (!status.hasValue()) return status.problem();
    if (status.value().kind != FileStatus::Kind::File)
        return SystemError{.code = ENODATA, .operation = "open", .item = item.name};
    Result<std::vector<std::byte>> bytes = readAttribute(item, AttributeName(XATTR_RESOURCEFORK_NAME));
    if (!bytes.hasValue()) return bytes.problem();
    return std::make_shared<Fork>(bytes.takeValue());
}

OSErr statusOfFork(SystemError const& error) {
    if (error.is(ENODATA) || error.is(EOPNOTSUPP)) return errFSForkNotFound;
    if (error.is(EMFILE) || error.is(ENFILE)) return tmfoErr;
    return statusOf(error, FileOperation::UsingCatalog);
}

// Where reading begins, in bytes from the fork's start; negative if that lies before the fork.
Result<std::int64_t> placeToRead(Fork const& fork, std::uint16_t mode, std::int64_t offset) {
    if (mode == fsAtMark) return fork.mark;
    if (mode == fsFromStart) return offset;
    Result<std::int64_t> const base = mode == fsFromMark ? Result(fork.mark) : fork.size();
    if (!base.hasValue()) return base;
    // No fork reaches so far.
    if (offset > std::numeric_limits<std::int64_t>::max() - base.value()) return std::int64_t{-1};
    return base.value() + offset;
}

// The part of a comparison that one thread does.
struct ComparedForks {
    Fork const& one;
    Fork const& other;
    // The first difference ends the work of all threads.
    std::atomic<bool> isDifferent{false};

    bool isSameBlock(std::int64_t place, std::size_t size, std::span<std::byte> room, bool& isLast) const {
        Result<std::size_t> const count = one.readOnce(place, room.first(size));
        if (!count.hasValue()) return false;
        Result<std::size_t> const otherCount = other.readOnce(place, room.subspan(size, size));
        if (!otherCount.hasValue() || otherCount.value() != count.value()) return false;
        isLast = count.value() < size;
        return std::memcmp(room.data(), room.data() + size, count.value()) == 0;
    }

    void compare(std::int64_t begin, std::int64_t end) {
        auto const room = std::make_unique_for_overwrite<std::byte[]>(2 * ComparedSize);
        bool isLast = false;
        for (std::int64_t place = begin; place < end && !isLast && !isDifferent;) {
            std::size_t const size = static_cast<std::size_t>(std::min<std::int64_t>(ComparedSize, end - place));
            if (!isSameBlock(place, size, {room.get(), 2 * ComparedSize}, isLast)) isDifferent = true;
            place += static_cast<std::int64_t>(size);
        }
    }
};

} // namespace

OSErr FSGetDataForkName(HFSUniStr255* dataForkName) {
    if (!dataForkName) return paramErr;
    dataForkName->length = 0;
    return noErr;
}

OSErr FSGetResourceForkName(HFSUniStr255* resourceForkName) {
    if (!resourceForkName) return paramErr;
    resourceForkName->length = static_cast<std::uint16_t>(ResourceForkName.size());
    std::ranges::copy(ResourceForkName, resourceForkName->unicode.begin());
    return noErr;
}

OSErr FSOpenFork(FSRef const* ref, std::uint32_t forkNameLength, unichar const* forkName, std::int8_t permissions,
                 std::int16_t* forkRefNum) {
    if (forkRefNum) *forkRefNum = -1;
    if (!ref || !forkRefNum || (!forkName && forkNameLength > 0)) return paramErr;
    if (permissions != fsCurPerm && permissions != fsRdPerm) return errFSOperationNotSupported;
    bool const isResourceFork = std::u16string_view(forkName, forkNameLength) == ResourceForkName;
    if (!isResourceFork && forkNameLength > 0) return errFSBadForkName;
    Result<OpenItem> const item = openItemOfReference(*ref);
    if (!item.hasValue()) return statusOf(item.problem(), FileOperation::Finding);
    OpenedFork fork = isResourceFork ? openResourceFork(item.value()) : openDataFork(item.value());
    if (!fork.hasValue()) return statusOfFork(fork.problem());
    *forkRefNum = numberFor(fork.takeValue());
    return *forkRefNum < 0 ? tmfoErr : noErr;
}

OSErr FSGetForkSize(std::int16_t forkRefNum, std::int64_t* forkSize) {
    std::shared_ptr<Fork> const fork = forkOf(forkRefNum);
    if (!fork) return rfNumErr;
    if (!forkSize) return paramErr;
    Result<std::int64_t> const size = fork->size();
    if (!size.hasValue()) return statusOfFork(size.problem());
    *forkSize = size.value();
    return noErr;
}

OSErr FSReadFork(std::int16_t forkRefNum, std::uint16_t positionMode, std::int64_t positionOffset,
                 std::uint32_t requestCount, void* buffer, std::uint32_t* actualCount) {
    if (actualCount) *actualCount = 0;
    std::shared_ptr<Fork> const fork = forkOf(forkRefNum);
    if (!fork) return rfNumErr;
    if (!buffer && requestCount > 0) return paramErr;
    if (positionMode > fsFromMark) return errFSBadPosMode;
    Result<std::int64_t> const place = placeToRead(*fork, positionMode, positionOffset);
    if (!place.hasValue()) return statusOfFork(place.problem());
    if (place.value() < 0) return posErr;
    Result<std::size_t> const count =
        fork->read(place.value(), std::span(static_cast<std::byte*>(buffer), requestCount));
    if (!count.hasValue()) return statusOfFork(count.problem());
    fork->mark = place.value() + static_cast<std::int64_t>(count.value());
    if (actualCount) *actualCount = static_cast<std::uint32_t>(count.value());
    return count.value() < requestCount ? eofErr : noErr;
}

OSErr FSCloseFork(std::int16_t forkRefNum) {
    std::scoped_lock const lock(forkTable().lock);
    return forkTable().forks.erase(forkRefNum) > 0 ? noErr : rfNumErr;
}

bool haveEqualBytes(std::int16_t forkRefNum, std::int16_t otherForkRefNum) {
    // Starting a thread takes as long as comparing a small part of that.
    constexpr std::int64_t smallestForTwo = std::int64_t{16} << 20;
    constexpr std::int64_t end = std::numeric_limits<std::int64_t>::max();
    std::shared_ptr<Fork> const one = forkOf(forkRefNum);
    std::shared_ptr<Fork> const other = forkOf(otherForkRefNum);
    if (!one || !other) return false;
    ComparedForks forks{*one, *other};
    std::int64_t const size = one->size().valueOr(0);
    std::int64_t const middle = size / 2 - size / 2 % static_cast<std::int64_t>(ComparedSize);
    if (size < smallestForTwo || std::thread::hardware_concurrency() < 2) {
        forks.compare(0, end);
        return !forks.isDifferent;
    }
    std::future<void> secondHalf;
    try {
        secondHalf = std::async(std::launch::async, [&] { forks.compare(middle, end); });
    } catch (std::system_error const&) {
        // The system allows no more threads.
    }
    forks.compare(0, secondHalf.valid() ? middle : end);
    if (secondHalf.valid()) secondHalf.get();
    return !forks.isDifferent;
}

} // namespace mac
