#pragma once

#include "tests/faults/Operations.h"
#include <set>

namespace mac::faults {

// How the operation's process ended.
enum class Ending {
    SaidDone,
    SaidFailed,
    // Killed as the plan says.
    Killed,
    // By a signal, an exception or a sanitizer.
    Crashed,
    // It took longer than any fault explains.
    Hung,
};

// What is kept whatever happens; the names of the broken ones are printed.
enum class Promise {
    // Each item is whole in one place: contents, attributes, owner and permissions.
    ItemIsWhole,
    // Success was said and all is done, or failure was said and nothing has changed.
    AnswerIsTrue,
    // No user may read more than before.
    NoMoreReaders,
    // Temporary names go; after the end of the process, at the latest when the same folder is written again.
    NoLeftovers,
    // The process neither crashes nor hangs.
    ProcessSurvives,
    // What does not belong to the operation is untouched.
    OthersUntouched,
    // Written data is on the disk before its name is, and the name before success is said.
    SurvivesPowerLoss,
};
char const* nameOf(Promise promise);

enum class Undoing {
    IsPossible,
    // The call fails again, or the call that failed was the removal of what should go: names may stay until the next
    // operation, and each path is as before or as after.
    IsImpossible,
};

// What the system itself refused, or cannot do, and what the promises allow for that.
struct Circumstances {
    Undoing undoing{Undoing::IsPossible};
    // An owner or an access list was refused: an item may belong to the user who runs this and lack its list, if nobody
    // gets any permission by that.
    bool refusesAccess{false};
    // The volume refused an attribute's value: it counts where the library reads it.
    bool refusesValue{false};
    // Names cannot be exchanged in one step: once undoing is impossible, and after the end of the process, an item that
    // is replaced in place (Operation::replaced) may be whole under a temporary name beside its own, and stay there.
    bool replacesInSteps{false};
};

// What is on the disk before the operation, and what after it without a fault.
struct Expectation {
    Snapshot before{};
    Snapshot after{};
};

struct Finding {
    Promise promise{};
    std::string text{};

    auto operator<=>(Finding const&) const = default;
};

// A name that our programs give to files until they are complete, and to the sidecars of such files.
bool isTemporaryName(std::string_view path);

// Compares what is found with what was promised.
class Judgement {
public:
    // The operation must outlive the object.
    Judgement(Operation const& operation, Expectation const& expectation, Snapshot const& found,
              Circumstances const& circumstances = {});

    // The promises that are broken after a fault.
    std::set<Finding> afterFault(Ending ending, bool isReached) const;
    // The promises that are broken after another process has exchanged a name with a link.
    std::set<Finding> afterExchange(Ending ending, std::string const& exchanged) const;
    // The promises that are broken after a killed operation and another one in the same folder.
    std::set<Finding> afterNextWrite() const;

private:
    bool isAsIn(Snapshot const& expected) const;
    void checkReaders(std::set<Finding>& findings) const;
    void checkItems(std::set<Finding>& findings) const;
    void checkPaths(std::set<Finding>& findings) const;
    void checkSuccess(std::set<Finding>& findings, bool isReached) const;
    void checkFailure(std::set<Finding>& findings) const;
    void checkCanary(std::set<Finding>& findings, bool isOnTheWay) const;
    bool isEqual(SeenItem const& found, SeenItem const& expected) const;
    bool isSame(SeenItem const& found, SeenItem const& expected) const;
    bool isReplacedAt(std::string const& temporary) const;
    bool isReplacedAside() const;
    bool isWholeAt(std::string const& place, Snapshot const& expected) const;
    bool isWritten(std::string const& secret) const;
    bool hasLeft(std::string const& path) const;
    bool isMadeToStay(std::string const& path) const;
    bool isRecordWithoutItem(std::string const& path) const;

    Operation const& m_operation;
    Expectation m_expectation;
    Snapshot m_found;
    Circumstances m_circumstances;
};

} // namespace mac::faults
