#include "platform/system/Users.h"
#include "platform/system/BytePath.h"
#include <cerrno>
#include <cstdlib>
#include <grp.h>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace mac {

namespace {

// Answers what `answer` makes of the record that is looked up, or an empty value if there is none. `lookUp` is one of
// the reentrant calls: it gets the record, a buffer, its size and where to point at what was found, and reports ERANGE
// until the buffer is large enough.
template <class Record, class LookUp, class Answer>
auto answerOf(LookUp const& lookUp, Answer const& answer) -> decltype(answer(Record())) {
    constexpr std::size_t largestBuffer = 1U << 22;
    for (std::size_t size = 1024; size <= largestBuffer; size *= 2) {
        std::vector<char> buffer(size);
        Record record{};
        Record* found = nullptr;
        int const status = lookUp(&record, buffer.data(), buffer.size(), &found);
        if (status == ERANGE || status == EINTR) continue;
        if (!found) break;
        return answer(*found);
    }
    return {};
}

struct UserRecord {
    std::string name;
    std::string home;
};

std::string text(char const* bytes) { return bytes ? bytes : ""; }

std::optional<UserRecord> copied(passwd const& record) {
    return UserRecord{.name = text(record.pw_name), .home = text(record.pw_dir)};
}

std::optional<UserRecord> ownRecord() {
    return answerOf<passwd>([](auto... arguments) { return ::getpwuid_r(::geteuid(), arguments...); }, &copied);
}

// Without slashes at its end; nullopt for a path that is not absolute.
std::optional<std::string> absolutePath(BytePath path) {
    return path.isAbsolute() ? std::optional(std::string(path.bytes())) : std::nullopt;
}

} // namespace

std::optional<std::string> nameOfUser(unsigned number) {
    return answerOf<passwd>([&](auto... arguments) { return ::getpwuid_r(number, arguments...); },
                            [](passwd const& record) { return std::optional(text(record.pw_name)); });
}

std::optional<std::string> nameOfGroup(unsigned number) {
    return answerOf<group>([&](auto... arguments) { return ::getgrgid_r(number, arguments...); },
                           [](group const& record) { return std::optional(text(record.gr_name)); });
}

std::optional<unsigned> numberOfUser(std::string const& name) {
    return answerOf<passwd>([&](auto... arguments) { return ::getpwnam_r(name.c_str(), arguments...); },
                            [](passwd const& record) { return std::optional<unsigned>(record.pw_uid); });
}

std::optional<unsigned> numberOfGroup(std::string const& name) {
    return answerOf<group>([&](auto... arguments) { return ::getgrnam_r(name.c_str(), arguments...); },
                           [](group const& record) { return std::optional<unsigned>(record.gr_gid); });
}

std::optional<std::string> homeFolderOfUser(std::string const& name) {
    std::optional<UserRecord> const record =
        answerOf<passwd>([&](auto... arguments) { return ::getpwnam_r(name.c_str(), arguments...); }, &copied);
    return record ? absolutePath(record->home) : std::nullopt;
}

std::string ownHomeFolder() {
    char const* const variable = std::getenv("HOME");
    std::optional<std::string> home = variable ? absolutePath(variable) : std::nullopt;
    if (home) return *home;
    std::optional<UserRecord> const record = ownRecord();
    return record ? absolutePath(record->home).value_or("/") : "/";
}

std::string ownUserName() {
    std::optional<UserRecord> const record = ownRecord();
    return record && !record->name.empty() ? record->name : std::to_string(::geteuid());
}

} // namespace mac
