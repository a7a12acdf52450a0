#include "platform/foundation/AccountNames.h"
#include <cerrno>
#include <grp.h>
#include <pwd.h>
#include <vector>

namespace mac {

namespace {

// The look-up is one of the reentrant calls, which wants a larger buffer until
// it has enough; the answer is what the function makes of the record.
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
