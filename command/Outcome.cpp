#include "command/Outcome.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include <array>
#include <cstddef>

namespace framekeeper {

namespace {

struct StatusRow {
    Status status;
    int exitStatus;
    char const* name;
};

// In the order of the enumerators.
constexpr std::array Statuses{
    StatusRow{Status::Done, 0, localizable("done")},
    StatusRow{Status::NotShown, 4, localizable("not-shown")},
    StatusRow{Status::NoSuchCopy, 3, localizable("no-such-copy")},
    StatusRow{Status::Failed, 1, localizable("failed")},
    StatusRow{Status::NotConfirmed, 5, localizable("not-confirmed")},
    StatusRow{Status::NotWritten, 6, localizable("not-written")},
    StatusRow{Status::Interrupted, 130, localizable("interrupted")},
};

consteval bool isInOrder() {
    for (std::size_t row = 0; row < Statuses.size(); ++row)
        if (Statuses.at(row).status != static_cast<Status>(row)) return false;
    return true;
}
static_assert(isInOrder() && Statuses.size() == static_cast<std::size_t>(Status::Interrupted) + 1);

StatusRow const& rowOf(Status status) { return Statuses.at(static_cast<std::size_t>(status)); }

} // namespace

int exitStatusOf(Status status) { return rowOf(status).exitStatus; }

char const* nameOf(Status status) { return rowOf(status).name; }

} // namespace framekeeper
