#include "fuzz/Trials.h"
#include "platform/system/TemporaryName.h"

namespace mac::fuzz {

std::string complaintAboutTemporaryName(std::string_view bytes) {
    std::optional<ParsedTemporaryName> const parsed = parseTemporaryName(bytes);
    if (!parsed) return "";
    std::string_view const name = bytes.starts_with("._") ? bytes.substr(2) : bytes;
    if (!name.starts_with(temporaryNamePrefix)) return "another name is taken for an unfinished file's";
    // A sidecar's name tells the same.
    std::optional<ParsedTemporaryName> const sidecar = parseTemporaryName("._" + std::string(name));
    if (!sidecar || !(sidecar->owner == parsed->owner) || sidecar->mark != parsed->mark ||
        sidecar->otherMark != parsed->otherMark)
        return "a sidecar has another owner";
    if (parsed->mark && !parsed->accepts(*parsed->mark)) return "a marked item does not go";
    if (parsed->otherMark && !parsed->accepts(*parsed->otherMark)) return "the other marked item does not go";
    OwnerState const state = stateOf(parsed->owner, VolumeSharing::ThisComputerOnly);
    if (parsed->owner.pid <= 0 && state != OwnerState::Unknown) return "an owner that is no process has a state";
    bool const isOwn = parsed->owner == TemporaryOwner::current();
    return !isOwn || state == OwnerState::Runs ? "" : "this process is said to have ended";
}

} // namespace mac::fuzz
