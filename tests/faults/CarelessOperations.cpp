#include "platform/system/TemporaryName.h"
#include "tests/faults/Operations.h"
#include <array>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::faults {

namespace {

constexpr mode_t Everybody = 0644;

void makeFile(Fixture const& fixture) { fixture.makeFile("w/x", std::string(3000, 'x')); }

void makeFileAndOld(Fixture const& fixture) {
    makeFile(fixture);
    fixture.makeFile("o/x", "old");
}

// Copies "w/x"; answers whether no call failed.
bool copyTo(Fixture const& fixture, std::string const& path, mode_t mode) {
    int const from = ::open(fixture.path("w/x").c_str(), O_RDONLY | O_CLOEXEC);
    int const to = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, mode);
    std::array<char, 8192> bytes{};
    ssize_t const size = from < 0 ? -1 : ::read(from, bytes.data(), bytes.size());
    bool const isWritten = to >= 0 && size >= 0 && ::write(to, bytes.data(), static_cast<std::size_t>(size)) == size;
    ::close(from);
    ::close(to);
    return isWritten;
}

bool unlinkThenCopy(Fixture const& fixture) {
    return ::unlink(fixture.path("o/x").c_str()) == 0 && copyTo(fixture, fixture.path("o/x"), 0600);
}

bool sayDoneAnyway(Fixture const& fixture) {
    static_cast<void>(::rename(fixture.path("w/x").c_str(), fixture.path("o/x").c_str()));
    return true;
}

bool copyForEverybody(Fixture const& fixture) {
    std::string const path = fixture.path("o/x");
    bool const isCopied = copyTo(fixture, path, Everybody) && ::chmod(path.c_str(), 0600) == 0;
    if (!isCopied) ::unlink(path.c_str());
    return isCopied;
}

bool leaveTemporary(Fixture const& fixture) {
    std::string const temporary = fixture.path("o/") + temporaryName().valueOr("");
    return copyTo(fixture, temporary, 0600) && ::rename(temporary.c_str(), fixture.path("o/x").c_str()) == 0;
}

bool retryForEver(Fixture const& fixture) {
    while (::rename(fixture.path("w/x").c_str(), fixture.path("o/x").c_str()) != 0) {}
    return true;
}

// Looks whether the item is a file, then opens it by its path again.
bool writeThroughLinks(Fixture const& fixture) {
    struct stat status {};
    std::string const path = fixture.path("w/x");
    if (::lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
    int const file = ::open(path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
    bool const isWritten = file >= 0 && ::write(file, "new", 3) == 3;
    ::close(file);
    return isWritten;
}

} // namespace

std::vector<Operation> carelessOperations() {
    Item const kept{"w/x", "w/x"};
    Item const moved{"w/x", "o/x"};
    return {
        {.name = "unlink, then copy",
         .prepare = makeFileAndOld,
         .run = unlinkThenCopy,
         .items = {kept, {"o/x", "o/x"}}},
        {.name = "say done anyway", .prepare = makeFile, .run = sayDoneAnyway, .items = {moved}},
        {.name = "copy for everybody", .prepare = makeFile, .run = copyForEverybody, .items = {kept}},
        {.name = "leave the temporary file", .prepare = makeFile, .run = leaveTemporary, .items = {kept}},
        {.name = "retry for ever", .prepare = makeFile, .run = retryForEver, .items = {moved}},
        {.name = "write through links", .prepare = makeFile, .run = writeThroughLinks, .exchanged = {"w/x"}},
        {.name = "rename before the data is written", .prepare = makeFile, .run = leaveTemporary, .items = {kept}},
    };
}

} // namespace mac::faults
