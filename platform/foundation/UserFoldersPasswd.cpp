#include "platform/foundation/AccountRecord.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/UserFolders.h"
#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

namespace mac {

namespace {

struct UserRecord {
    std::string name;
    std::string home;
};

std::optional<UserRecord> copied(passwd const& record) {
    return UserRecord{record.pw_name ? record.pw_name : "", record.pw_dir ? record.pw_dir : ""};
}

std::optional<UserRecord> ownRecord() {
    return answerOf<passwd>([](auto... arguments) { return ::getpwuid_r(::geteuid(), arguments...); }, &copied);
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
        answerOf<passwd>([&](auto... arguments) { return ::getpwnam_r(name.c_str(), arguments...); }, &copied);
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
