#include "platform/foundation/AccountNames.h"
#include "platform/foundation/AccountRecord.h"
#include <grp.h>
#include <pwd.h>

namespace mac {

namespace {

NSString text(char const* bytes) { return NSString::stringWithFileSystemRepresentation_(bytes ? bytes : ""); }

} // namespace

NSString nameOfUser(unsigned number) {
    return answerOf<passwd>([&](auto... arguments) { return ::getpwuid_r(number, arguments...); },
                            [](passwd const& record) { return text(record.pw_name); });
}

NSString nameOfGroup(unsigned number) {
    return answerOf<group>([&](auto... arguments) { return ::getgrgid_r(number, arguments...); },
                           [](group const& record) { return text(record.gr_name); });
}

std::optional<unsigned> numberOfUser(NSString const& name) {
    std::optional<std::string> const bytes = name.fileSystemRepresentation();
    if (!bytes) return std::nullopt;
    return answerOf<passwd>([&](auto... arguments) { return ::getpwnam_r(bytes->c_str(), arguments...); },
                            [](passwd const& record) { return std::optional<unsigned>(record.pw_uid); });
}

std::optional<unsigned> numberOfGroup(NSString const& name) {
    std::optional<std::string> const bytes = name.fileSystemRepresentation();
    if (!bytes) return std::nullopt;
    return answerOf<group>([&](auto... arguments) { return ::getgrnam_r(bytes->c_str(), arguments...); },
                           [](group const& record) { return std::optional<unsigned>(record.gr_gid); });
}

} // namespace mac
