#include "platform/preferences/PreferenceFile.h"
#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include "platform/system/BytePath.h"
#include "platform/system/FileWriting.h"
#include "platform/system/OpenItems.h"
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>

namespace mac {

namespace {

constexpr std::size_t LargestPreferenceFile = std::size_t{16} << 20;
constexpr mode_t OwnerAlone = 0600;
// A change takes milliseconds, so that a lock held for longer is not waited for.
constexpr std::chrono::milliseconds LongestWait{2000};
constexpr std::chrono::milliseconds BetweenTrials{5};
// How often another program may change the file in between.
constexpr int MostTrials = 8;

// Opens the folder's lock file and locks it until the descriptor is closed.
Result<FileDescriptor> lockFolder(std::string const& folder) {
    std::string const path = BytePath(folder).joined(".lock");
    FileDescriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, OwnerAlone));
    if (!file.isOpen()) return lastSystemError("open", path);
    if (Result<void> const permitted = permitOwner(file, OwnerAlone); !permitted.isDone()) return permitted.problem();
    std::chrono::steady_clock::time_point const end = std::chrono::steady_clock::now() + LongestWait;
    while (::flock(file.number(), LOCK_EX | LOCK_NB) != 0) {
        SystemError const error = lastSystemError("flock", path);
        if (!error.is(EWOULDBLOCK) && !error.is(EINTR)) return error;
        if (std::chrono::steady_clock::now() >= end)
            return SystemError{.code = EBUSY, .operation = "flock", .item = path};
        std::this_thread::sleep_for(BetweenTrials);
    }
    return file;
}

NSData binaryOf(NSDictionary const& values) {
    return NSPropertyListSerialization::dataFromPropertyList_format_errorDescription_(
        values, NSPropertyListBinaryFormat_v1_0, nullptr);
}

NSDictionary dictionaryOf(NSData const& data) {
    return as<NSDictionary>(NSPropertyListSerialization::propertyListFromData_mutabilityOption_format_errorDescription_(
        data, NSPropertyListImmutable, nullptr, nullptr));
}

// XML, or where it cannot carry a value (control characters, names that are not UTF-8, fractions of a second) or is
// larger than what is read again, the binary form, so that no other program's value changes; nil for what is no
// property list.
NSData dataOf(NSDictionary const& values) {
    NSData const text = NSPropertyListSerialization::dataFromPropertyList_format_errorDescription_(
        values, NSPropertyListXMLFormat_v1_0, nullptr);
    NSData const binary = binaryOf(values);
    bool const isUsable = text != nil && text.length() <= LargestPreferenceFile;
    bool const isSame = isUsable && binaryOf(dictionaryOf(text)).isEqualToData_(binary);
    return isSame ? text : binary;
}

} // namespace

Result<PreferenceFile::Contents> PreferenceFile::contents() const {
    Result<FileContents> const file = readFileAtPath(m_path, LargestPreferenceFile);
    if (!file.hasValue() && file.problem().is(ENOENT)) return Contents{.values = NSDictionary::dictionary()};
    if (!file.hasValue()) return file.problem();
    NSDictionary const values = dictionaryOf(NSData::dataWithBytes(file.value().bytes));
    if (values == nil) return SystemError{.code = EBADMSG, .operation = "read", .item = m_path};
    return Contents{.values = values, .state = file.value().status};
}

Result<NSDictionary> PreferenceFile::read() const {
    Result<Contents> const found = contents();
    return found.hasValue() ? Result<NSDictionary>(found.value().values) : found.problem();
}

Result<void> PreferenceFile::write(NSDictionary const& values, std::optional<FileStatus> const& state) const {
    NSData const data = dataOf(values);
    if (data == nil) return SystemError{.code = EINVAL, .operation = "write", .item = m_path};
    if (data.length() > LargestPreferenceFile) return SystemError{.code = EFBIG, .operation = "write", .item = m_path};
    return replaceFileAtPath(m_path, data.span(), {.newFileMode = OwnerAlone, .hasToBe = true, .state = state});
}

Result<void> PreferenceFile::change(std::function<NSDictionary(NSDictionary const& values)> const& changed) const {
    std::string const folder(BytePath(m_path).parent());
    Result<void> const made = makeFolderAtPath(folder);
    if (!made.isDone()) return made;
    Result<FileDescriptor> const lock = lockFolder(folder);
    if (!lock.hasValue()) return lock.problem();
    for (int trial = 1;; ++trial) {
        Result<Contents> const found = contents();
        if (!found.hasValue()) return found.problem();
        NSDictionary const values = changed(found.value().values);
        if (values == nil) return SystemError{.code = ECANCELED, .operation = "change", .item = m_path};
        // Numbers are equal whatever their type, which other programs may ask for.
        if (binaryOf(found.value().values).isEqualToData_(binaryOf(values))) return {};
        Result<void> const written = write(values, found.value().state);
        bool const isOutdated = !written.isDone() && (written.problem().is(EAGAIN) || written.problem().is(EEXIST));
        if (!isOutdated || trial == MostTrials) return written;
    }
}

} // namespace mac
