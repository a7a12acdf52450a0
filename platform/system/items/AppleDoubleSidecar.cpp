#include "platform/system/items/AppleDoubleSidecar.h"
#include "platform/system/FileWriting.h"
#include "platform/system/OpenItems.h"
#include "platform/system/items/AttributesOnItem.h"
#include "platform/system/items/ItemDates.h"
#include "platform/system/items/ItemIdentity.h"
#include <array>
#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr std::size_t LargestFile = std::size_t{256} << 20;
// The first holds the table of attributes of most sidecars, the second of all that have it in front of other parts.
constexpr std::array<std::size_t, 2> BeginningSizes{std::size_t{64} << 10, std::size_t{1} << 20};
// Ten seconds altogether; a change of a sidecar takes milliseconds.
constexpr timespec BetweenTries{0, 5'000'000};
constexpr unsigned MostTries = 2'000;

std::mutex& threadLock() {
    static std::mutex lock;
    return lock;
}

// What has a sidecar's name: a file, open for reading, nothing, or an item that is no file.
struct FoundFile {
    FileDescriptor file{};
    AppleDoubleSidecar::State state{AppleDoubleSidecar::State::Absent};
    SystemError problem{};
};

FoundFile openFile(OpenItem const& item, std::string const& name) {
    using enum AppleDoubleSidecar::State;
    if (item.name.empty()) return {.state = Impossible};
    // Opening an item that is no file may block or have side effects.
    Result<FileStatus> const found = fileStatusInFolder(item.folder, name);
    if (!found.hasValue() && found.problem().is(ENOENT)) return {.state = Absent};
    if (!found.hasValue() && found.problem().is(ENAMETOOLONG)) return {.state = Impossible};
    if (!found.hasValue()) return {.state = Unreadable, .problem = found.problem()};
    if (found.value().kind != FileStatus::Kind::File) return {.state = Foreign};
    FileDescriptor file(
        ::openat(item.folder.number(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file.isOpen()) {
        SystemError error = lastSystemError("open", name);
        // Another process has removed it meanwhile.
        if (error.is(ENOENT)) return {.state = Absent};
        return {.state = Unreadable, .problem = std::move(error)};
    }
    return {.file = std::move(file), .state = Read};
}

// The beginning of a large sidecar; nullopt if only the whole file tells.
std::optional<AppleDouble> beginningBeside(FoundFile const& found) {
    if (!found.file.isOpen()) return std::nullopt;
    Result<FileStatus> const status = fileStatusOf(found.file);
    if (!status.hasValue() || status.value().size > LargestFile) return std::nullopt;
    for (std::size_t const size : BeginningSizes) {
        if (status.value().size <= size) return std::nullopt;
        std::vector<std::byte> beginning(size);
        if (::pread(found.file.number(), beginning.data(), size, 0) != std::ssize(beginning)) return std::nullopt;
        Result<AppleDouble, Failure> read = AppleDouble::readBeginning(beginning, status.value().size);
        if (read.hasValue()) return read.takeValue();
    }
    return std::nullopt;
}

Result<std::vector<std::byte>> valueIn(AppleDouble const& contents, std::string_view name) {
    std::optional<std::span<std::byte const>> const value = contents.valueOf(name);
    if (value) return std::vector<std::byte>(value->begin(), value->end());
    return SystemError{.code = ENODATA, .operation = "getxattr", .item = std::string(name)};
}

} // namespace

std::string AppleDoubleSidecar::nameFor(std::string_view itemName) { return std::string(namePrefix).append(itemName); }

AppleDoubleSidecar::AppleDoubleSidecar(OpenItem const& item) : m_item(item), m_name(nameFor(item.name)) {
    FoundFile const found = openFile(item, m_name);
    m_state = found.state;
    m_problem = found.problem;
    if (!found.file.isOpen()) return;
    Result<FileStatus> const status = fileStatusOf(found.file);
    Result<FileContents> const bytes = readOpenFile(found.file, LargestFile);
    if (!bytes.hasValue()) {
        // The kind decides, since some file systems refuse to read with the codes for another kind. EFBIG: the file is
        // too large for a sidecar.
        bool const isOfAnotherKind = status.hasValue() && status.value().kind != FileStatus::Kind::File;
        m_state = isOfAnotherKind || bytes.problem().is(EFBIG) ? State::Foreign : State::Unreadable;
        m_problem = bytes.problem();
        return;
    }
    Result<AppleDouble, Failure> read = AppleDouble::read(bytes.value().bytes);
    if (!read.hasValue()) {
        m_state = State::Foreign;
        return;
    }
    contents = read.takeValue();
    m_status = bytes.value().status;
}

Result<void> AppleDoubleSidecar::reading() const {
    if (m_state == State::Unreadable) return m_problem;
    return {};
}

Result<void> AppleDoubleSidecar::remove() const {
    if (!m_status) return {};
    Result<FileStatus> const found = fileStatusInFolder(m_item.folder, m_name);
    if (!found.hasValue() && found.problem().is(ENOENT)) return {};
    if (!found.hasValue()) return found.problem();
    if (!(found.value() == *m_status)) return SystemError{.code = EAGAIN, .operation = "unlink", .item = m_name};
    if (::unlinkat(m_item.folder.number(), m_name.c_str(), 0) != 0) return lastSystemError("unlink", m_name);
    return {};
}

std::optional<timespec> AppleDoubleSidecar::modified() const {
    if (!m_status) return std::nullopt;
    constexpr std::int64_t inSecond = 1'000'000'000;
    std::int64_t const nanoseconds = (m_status->modified % inSecond + inSecond) % inSecond;
    return timespec{(m_status->modified - nanoseconds) / inSecond, nanoseconds};
}

Result<void> AppleDoubleSidecar::save(std::optional<timespec> modified) const {
    if (m_state == State::Unreadable) return m_problem;
    if (!isWritable()) return SystemError{.code = EEXIST, .operation = "rename", .item = m_name};
    if (Result<void> const there = confirmItemInFolder(m_item.folder, m_item.name, m_item.item); !there.isDone())
        return SystemError{.code = ESTALE, .operation = "rename", .item = m_item.name};
    if (contents.isEmpty()) return remove();
    std::optional<std::vector<std::byte>> const bytes = contents.written();
    if (!bytes || bytes->size() > LargestFile) return SystemError{.code = E2BIG, .operation = "write", .item = m_name};
    FileReplacement how{.newFileIsLike = &m_item.item, .hasToBe = true, .state = m_status};
    if (modified)
        how.beforeFlushing = [&](FileDescriptor const& file) { return setDates(file, {.modified = modified}, m_name); };
    Result<void> const replaced = replaceFileInFolder(m_item.folder, m_name, *bytes, how);
    if (replaced.isDone() || !replaced.problem().is(EEXIST)) return replaced;
    return SystemError{.code = EAGAIN, .operation = "rename", .item = m_name};
}

Result<std::vector<std::byte>> valueInSidecar(OpenItem const& item, std::string_view name) {
    FoundFile const sidecar = openFile(item, AppleDoubleSidecar::nameFor(item.name));
    if (sidecar.state == AppleDoubleSidecar::State::Unreadable) return sidecar.problem;
    if (!sidecar.file.isOpen()) return valueIn({}, name);
    std::optional<AppleDouble> const beginning =
        name == XATTR_RESOURCEFORK_NAME ? std::nullopt : beginningBeside(sidecar);
    std::optional<std::span<std::byte const>> const found = beginning ? beginning->valueOf(name) : std::nullopt;
    // An empty value there may lie behind the beginning.
    bool const isKnown = beginning && (!found || !found->empty());
    if (isKnown) return valueIn(*beginning, name);
    AppleDoubleSidecar const whole(item);
    if (Result<void> const reading = whole.reading(); !reading.isDone()) return reading.problem();
    return valueIn(whole.contents, name);
}

Result<std::vector<std::string>> namesInSidecar(OpenItem const& item) {
    FoundFile const sidecar = openFile(item, AppleDoubleSidecar::nameFor(item.name));
    if (sidecar.state == AppleDoubleSidecar::State::Unreadable) return sidecar.problem;
    if (!sidecar.file.isOpen()) return std::vector<std::string>();
    if (std::optional<AppleDouble> const beginning = beginningBeside(sidecar)) return beginning->names();
    AppleDoubleSidecar const whole(item);
    if (Result<void> const reading = whole.reading(); !reading.isDone()) return reading.problem();
    return whole.contents.names();
}

Result<AppleDoubleLock> AppleDoubleLock::take(OpenItem const& item) {
    AppleDoubleLock lock;
    if (item.folder.isOpen()) lock.m_folder = readableFolder(item.folder).valueOr(FileDescriptor());
    for (unsigned tries = 0; lock.m_folder.isOpen() && tries < MostTries; ++tries) {
        if (::flock(lock.m_folder.number(), LOCK_EX | LOCK_NB) == 0) return lock;
        if (errno != EWOULDBLOCK && errno != EINTR) {
            lock.m_folder = FileDescriptor();
            break;
        }
        ::nanosleep(&BetweenTries, nullptr);
    }
    if (lock.m_folder.isOpen()) return SystemError{.code = EBUSY, .operation = "flock", .item = item.name};
    lock.m_threads = std::unique_lock(threadLock());
    return lock;
}

} // namespace mac
