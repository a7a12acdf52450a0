#include "platform/system/TemporaryName.h"
#include "platform/system/FileDescriptor.h"
#include "platform/system/processes/ProcessStatus.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

constexpr std::string_view SidecarPrefix = "._";
constexpr std::string_view HexadecimalDigits = "0123456789abcdef";
constexpr std::size_t RandomDigits = 32;
constexpr std::size_t MarkDigits = 16;
constexpr std::size_t HalfMarkDigits = MarkDigits / 2;
constexpr char BetweenMarks = '+';

// The beginning of a file of the system's; empty if it cannot be read.
std::string beginningOf(std::string const& path) {
    FileDescriptor const file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    std::array<char, 1024> bytes{};
    ssize_t const size = file.isOpen() ? ::read(file.number(), bytes.data(), bytes.size()) : -1;
    return size > 0 ? std::string(bytes.data(), static_cast<std::size_t>(size)) : std::string();
}

// The hexadecimal digits of an ID in a file of the system's; empty if there are not as many as in such an ID.
std::string idIn(std::string const& path) {
    constexpr std::size_t digits = 32;
    std::string text = beginningOf(path);
    std::erase_if(text, [](char character) { return HexadecimalDigits.find(character) == std::string_view::npos; });
    return text.size() == digits ? text : std::string();
}

std::string hexadecimal(std::uint64_t number) {
    std::string text(MarkDigits, '0');
    for (std::size_t index = MarkDigits; number != 0; number >>= 4U)
        text[--index] = HexadecimalDigits[number & 0xFU];
    return text;
}

// The 64-bit FNV-1a hash of the ID of the installed system; empty if it has none.
std::string machineHash() {
    constexpr std::uint64_t offset = 0xCBF2'9CE4'8422'2325;
    constexpr std::uint64_t prime = 0x0000'0100'0000'01B3;
    std::string const id = idIn("/etc/machine-id");
    if (id.empty()) return id;
    std::uint64_t hash = offset;
    for (char const digit : id)
        hash = (hash ^ static_cast<unsigned char>(digit)) * prime;
    return hexadecimal(hash);
}

// 0 if the system does not tell.
std::uint64_t ownNamespace(std::string const& kind) {
    struct stat status {};
    return ::stat(("/proc/self/ns/" + kind).c_str(), &status) == 0 ? status.st_ino : 0;
}

// Whether /proc shows the processes of this process's own namespace under the IDs that they have here.
bool showsOwnProcesses() {
    std::array<char, 32> text{};
    ssize_t const size = ::readlink("/proc/self", text.data(), text.size());
    return size > 0 && std::string_view(text.data(), static_cast<std::size_t>(size)) == std::to_string(::getpid());
}

std::optional<std::uint64_t> startOf(std::string const& process) {
    return startTimeIn(beginningOf("/proc/" + process + "/stat"));
}

// It has ended, but its parent has not waited for it. False if it may not be looked at, and if its first thread alone
// has ended.
bool isOnlyWaitedFor(std::string const& process) {
    constexpr nlink_t linksWithOneThread = 3;
    struct stat threads {};
    bool const isShown = !beginningOf("/proc/" + process + "/stat").empty();
    return isShown && ::stat(("/proc/" + process + "/task").c_str(), &threads) == 0 &&
           threads.st_nlink <= linksWithOneThread;
}

template <class Number>
bool parse(std::string_view text, Number& number, int base = 10) {
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    return error == std::errc() && end == text.data() + text.size();
}

// The text up to the next dash, which goes with it.
std::string_view takePart(std::string_view& text) {
    std::size_t const length = std::min(text.find('-'), text.size());
    std::string_view const part = text.substr(0, length);
    text.remove_prefix(std::min(length + 1, text.size()));
    return part;
}

bool isHexadecimal(std::string_view text) {
    return text.find_first_not_of(HexadecimalDigits) == std::string_view::npos;
}

// The mark of so many hexadecimal digits.
std::optional<std::uint64_t> markIn(std::string_view text, std::size_t digits) {
    std::uint64_t mark = 0;
    bool const isMark = text.size() == digits && isHexadecimal(text) && parse(text, mark, 16);
    return isMark ? std::optional(mark) : std::nullopt;
}

Result<std::string> randomDigits() {
    std::array<unsigned char, RandomDigits / 2> random{};
    if (::getrandom(random.data(), random.size(), 0) != static_cast<ssize_t>(random.size()))
        return lastSystemError("getrandom");
    std::string digits;
    for (unsigned char const byte : random) {
        digits.push_back(HexadecimalDigits[byte >> 4U]);
        digits.push_back(HexadecimalDigits[byte & 0xFU]);
    }
    return digits;
}

} // namespace

TemporaryOwner TemporaryOwner::current() {
    static std::mutex lock;
    // Never destroyed: files are also written at the program's exit.
    static TemporaryOwner& known = *std::make_unique<TemporaryOwner>().release();
    std::scoped_lock const guard(lock);
    // A process that was forked is another one.
    if (known.pid == ::getpid()) return known;
    // Half of the random ID tells starts apart, and leaves names short enough for file systems that encrypt them.
    known = {.machine = machineHash(),
             .boot = idIn("/proc/sys/kernel/random/boot_id").substr(0, MarkDigits),
             .pidNamespace = ownNamespace("pid"),
             .timeNamespace = ownNamespace("time"),
             .pid = ::getpid(),
             .startTime = startOf("self").value_or(0)};
    return known;
}

OwnerState stateOf(TemporaryOwner const& owner, VolumeSharing sharing) {
    TemporaryOwner const current = TemporaryOwner::current();
    bool const isComplete = !owner.boot.empty() && owner.pidNamespace != 0 && owner.pid > 0 && owner.startTime != 0;
    if (!isComplete || current.boot.empty() || current.pidNamespace == 0) return OwnerState::Unknown;
    if (owner.boot != current.boot) {
        bool const wasHere = !owner.machine.empty() && owner.machine == current.machine;
        return wasHere && sharing == VolumeSharing::ThisComputerOnly ? OwnerState::HasEnded : OwnerState::Unknown;
    }
    if (owner.pidNamespace != current.pidNamespace) return OwnerState::Unknown;
    if (owner == current) return OwnerState::Runs;
    if (::kill(owner.pid, 0) != 0 && errno == ESRCH) return OwnerState::HasEnded;
    // The system counts a start by the clock of the process that asks.
    if (!showsOwnProcesses() || owner.timeNamespace != current.timeNamespace) return OwnerState::Unknown;
    std::string const process = std::to_string(owner.pid);
    std::optional<std::uint64_t> const start = startOf(process);
    if (start) return *start == owner.startTime ? OwnerState::Runs : OwnerState::HasEnded;
    return isOnlyWaitedFor(process) ? OwnerState::HasEnded : OwnerState::Unknown;
}

Result<std::string> temporaryName() {
    Result<std::string> const random = randomDigits();
    if (!random.hasValue()) return random;
    TemporaryOwner const owner = TemporaryOwner::current();
    std::string name(temporaryNamePrefix);
    name.append(owner.machine).append("-").append(owner.boot).append("-");
    name.append(std::to_string(owner.pidNamespace)).append("-").append(std::to_string(owner.timeNamespace)).append("-");
    name.append(std::to_string(owner.pid)).append("-").append(std::to_string(owner.startTime)).append("-");
    return name.append(random.value());
}

Result<std::string> asideName(std::uint64_t mark) {
    Result<std::string> name = temporaryName();
    if (!name.hasValue()) return name;
    return name.takeValue().append("-").append(hexadecimal(mark));
}

Result<std::string> asideNameForEither(std::uint64_t oneMark, std::uint64_t otherMark) {
    Result<std::string> name = temporaryName();
    if (!name.hasValue()) return name;
    // Half of each: file systems that encrypt names leave no room for more.
    std::string const one = hexadecimal(oneMark).substr(HalfMarkDigits);
    std::string const other = hexadecimal(otherMark).substr(HalfMarkDigits);
    return name.takeValue().append("-").append(one).append(1, BetweenMarks).append(other);
}

bool ParsedTemporaryName::accepts(std::uint64_t itemMark) const {
    if (!mark) return true;
    if (!otherMark) return itemMark == *mark;
    std::uint64_t const half = itemMark & 0xFFFF'FFFFU;
    return half == *mark || half == *otherMark;
}

std::optional<ParsedTemporaryName> parseTemporaryName(std::string_view name) {
    if (name.starts_with(SidecarPrefix)) name.remove_prefix(SidecarPrefix.size());
    if (!name.starts_with(temporaryNamePrefix) || name.ends_with('-')) return std::nullopt;
    name.remove_prefix(temporaryNamePrefix.size());
    ParsedTemporaryName parsed;
    parsed.owner.machine = takePart(name);
    parsed.owner.boot = takePart(name);
    bool const isWhole = isHexadecimal(parsed.owner.machine) && isHexadecimal(parsed.owner.boot) &&
                         parse(takePart(name), parsed.owner.pidNamespace) &&
                         parse(takePart(name), parsed.owner.timeNamespace) && parse(takePart(name), parsed.owner.pid) &&
                         parse(takePart(name), parsed.owner.startTime);
    if (!isWhole) return std::nullopt;
    std::string_view const random = takePart(name);
    if (random.size() != RandomDigits || !isHexadecimal(random)) return std::nullopt;
    if (name.empty()) return parsed;
    std::size_t const between = std::min(name.find(BetweenMarks), name.size());
    std::string_view const other = name.substr(std::min(between + 1, name.size()));
    std::size_t const digits = between == name.size() ? MarkDigits : HalfMarkDigits;
    parsed.mark = markIn(name.substr(0, between), digits);
    if (between < name.size()) parsed.otherMark = markIn(other, digits);
    bool const isMarked = parsed.mark && (between == name.size() || parsed.otherMark);
    return isMarked ? std::optional(parsed) : std::nullopt;
}

} // namespace mac
