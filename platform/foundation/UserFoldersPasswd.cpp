#include "platform/foundation/NSString.h"
#include "platform/foundation/UserFolders.h"
#include <cerrno>
#include <cstdlib>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace mac {

namespace {

struct UserRecord {
    std::string name;
    std::string home;
};

// The look-up is one of the reentrant calls, which wants a larger buffer until it has enough.
template <class LookUp>
std::optional<UserRecord> userRecord(LookUp const& lookUp) {
    constexpr std::size_t largestBuffer = 1U << 20;
    for (std::size_t size = 1024; size <= largestBuffer; size *= 2) {
        std::vector<char> buffer(size);
        passwd entry{};
        passwd* found = nullptr;
        int const status = lookUp(&entry, buffer.data(), buffer.size(), &found);
        if (status == ERANGE || status == EINTR) continue;
        if (!found) return std::nullopt;
        return UserRecord{found->pw_name ? found->pw_name : "", found->pw_dir ? found->pw_dir : ""};
    }
    return std::nullopt;
}

std::optional<UserRecord> ownRecord() {
    return userRecord([](passwd* entry, char* buffer, std::size_t size, passwd** found) {
        return ::getpwuid_r(::geteuid(), entry, buffer, size, found);
    });
}

bool isAbsolute(std::string_view path) { return path.starts_with('/'); }

std::string withoutTrailingSlashes(std::string path) {
    while (path.size() > 1 && path.ends_with('/'))
        path.pop_back();
    return path;
}

std::string ownHome() {
    char const* const variable = std::getenv("HOME");
    if (variable && isAbsolute(variable)) return variable;
    std::optional<UserRecord> const record = ownRecord();
    return record && isAbsolute(record->home) ? record->home : "/";
}

} // namespace

std::optional<std::string> homeFolderOfUser(std::string const& name) {
    std::optional<UserRecord> const record =
        userRecord([&](passwd* entry, char* buffer, std::size_t size, passwd** found) {
            return ::getpwnam_r(name.c_str(), entry, buffer, size, found);
        });
    if (!record || !isAbsolute(record->home)) return std::nullopt;
    return withoutTrailingSlashes(record->home);
}

NSString NSHomeDirectory() { return NSString::stringWithFileSystemRepresentation_(withoutTrailingSlashes(ownHome())); }

NSString NSUserName() {
    std::optional<UserRecord> const record = ownRecord();
    if (record && !record->name.empty()) return NSString::stringWithFileSystemRepresentation_(record->name);
    return NSString::stringWithUTF8String_(std::to_string(::geteuid()));
}

} // namespace mac
