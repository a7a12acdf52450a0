#include "tests/faults/Promises.h"
#include "platform/system/TemporaryName.h"
#include <algorithm>
#include <unistd.h>

namespace mac::faults {

namespace {

// The longest text of a finding, in bytes.
constexpr std::size_t LongestText = 300;
constexpr unsigned ForGroup = 0070;
constexpr unsigned ForOthersToWrite = 0022;
constexpr unsigned ForGroupAndOthers = 0077;
constexpr std::string_view Canary = "canary";
// The canary's item that has the name of the items which operations work on.
constexpr std::string_view CanaryItem = "canary/x";

SeenItem const* itemAt(Snapshot const& snapshot, std::string const& path) {
    Snapshot::const_iterator const found = snapshot.find(path);
    return found == snapshot.end() ? nullptr : &found->second;
}

bool isAtOrBelow(std::string_view path, std::string_view place) {
    return path.starts_with(place) && (path.size() == place.size() || path[place.size()] == '/');
}

void checkEnding(std::set<Finding>& findings, Ending ending) {
    if (ending == Ending::Crashed) findings.insert({Promise::ProcessSurvives, "crashed"});
    if (ending == Ending::Hung) findings.insert({Promise::ProcessSurvives, "hung"});
}

// The items that hold secrets, by these.
std::map<std::string, SeenItem const*> holdersOfSecrets(Snapshot const& snapshot) {
    std::map<std::string, SeenItem const*> holders;
    for (auto const& [path, item] : snapshot)
        for (std::string const& secret : item.secrets)
            holders.emplace(secret, &item);
    return holders;
}

// Differences between two states, for people.
std::string difference(Snapshot const& expected, Snapshot const& found) {
    std::string text;
    for (auto const& [path, item] : expected)
        if (!found.contains(path))
            text += " -" + path;
        else if (!(found.at(path) == item))
            text += " !" + path;
    for (auto const& [path, item] : found)
        if (!expected.contains(path)) text += " +" + (isTemporaryName(path) ? "(temporary)" : path);
    return text;
}

} // namespace

char const* nameOf(Promise promise) {
    switch (promise) {
    case Promise::ItemIsWhole:
        return "the item is whole in one place";
    case Promise::AnswerIsTrue:
        return "the answer is true";
    case Promise::NoMoreReaders:
        return "no more readers";
    case Promise::NoLeftovers:
        return "no leftovers";
    case Promise::ProcessSurvives:
        return "no crash, no hang";
    case Promise::OthersUntouched:
        return "what belongs to others is untouched";
    case Promise::SurvivesPowerLoss:
        return "old or new after a power loss";
    }
    return "";
}

bool isTemporaryName(std::string_view path) { return parseTemporaryName(path.substr(path.rfind('/') + 1)).has_value(); }

// The folders of a trash and of settings may have been made, and stay, as do files that processes lock.
bool Judgement::isMadeToStay(std::string const& path) const {
    SeenItem const* const item = itemAt(m_found, path);
    if (!item || !m_expectation.after.contains(path) || (item->mode & ForOthersToWrite) != 0) return false;
    bool const isTrash = path.find("/Trash") != std::string::npos || path.find(".Trash-") != std::string::npos;
    bool const isOfSettings = path.starts_with("config/");
    return item->isFolder ? isTrash || isOfSettings : isOfSettings && path.ends_with("/.lock");
}

// The record of an item that never came to the trash: no program shows it.
bool Judgement::isRecordWithoutItem(std::string const& path) const {
    constexpr std::string_view end = ".trashinfo";
    std::size_t const folder = path.rfind("/info/");
    if (folder == std::string::npos || !path.ends_with(end)) return false;
    std::string item = path.substr(0, folder) + "/files/" + path.substr(folder + 6);
    item.resize(item.size() - end.size());
    return !m_found.contains(item);
}

Judgement::Judgement(Operation const& operation, Expectation const& expectation, Snapshot const& found,
                     Circumstances const& circumstances)
    : m_operation(operation), m_expectation(expectation), m_found(found), m_circumstances(circumstances) {
    if (!circumstances.refusesValue) return;
    m_expectation = {.before = asLibraryReads(expectation.before), .after = asLibraryReads(expectation.after)};
    m_found = asLibraryReads(found);
}

bool Judgement::isEqual(SeenItem const& found, SeenItem const& expected) const {
    if (found == expected) return true;
    if (!m_circumstances.refusesAccess) return false;
    // All but access is as it should be, and access is no wider.
    SeenItem same = found;
    same.mode = expected.mode;
    same.accessList = expected.accessList;
    if (found.owner == ::geteuid()) same.owner = expected.owner;
    if (found.group == ::getegid()) same.group = expected.group;
    bool const keepsList = found.accessList.empty() || found.accessList == expected.accessList;
    return same == expected && keepsList && (found.mode & ~expected.mode) == 0;
}

// Whether what has the temporary name is the replaced item, whole.
bool Judgement::isReplacedAt(std::string const& temporary) const {
    std::string const& place = m_operation.replaced;
    if (!m_expectation.before.contains(place)) return false;
    std::size_t const folder = place.rfind('/') + 1;
    bool const isBeside =
        temporary.starts_with(place.substr(0, folder)) && temporary.find('/', folder) == temporary.npos;
    if (!isBeside || !isTemporaryName(temporary)) return false;
    return std::ranges::all_of(m_expectation.before, [&](auto const& entry) {
        if (!isAtOrBelow(entry.first, place)) return true;
        SeenItem const* const found = itemAt(m_found, temporary + entry.first.substr(place.size()));
        return found && *found == entry.second;
    });
}

bool Judgement::isReplacedAside() const {
    if (m_operation.replaced.empty() || !m_circumstances.replacesInSteps) return false;
    return std::ranges::any_of(m_found, [this](auto const& item) { return isReplacedAt(item.first); });
}

bool Judgement::isAsIn(Snapshot const& expected) const {
    for (auto const& [path, item] : m_found)
        if (!expected.contains(path) && !isMadeToStay(path)) return false;
    return std::ranges::all_of(expected, [&](auto const& entry) {
        SeenItem const* const found = itemAt(m_found, entry.first);
        return found && isEqual(*found, entry.second);
    });
}

void Judgement::checkReaders(std::set<Finding>& findings) const {
    std::map<std::string, SeenItem const*> const owners = holdersOfSecrets(m_expectation.before);
    for (auto const& [path, item] : m_found) {
        for (std::string const& secret : item.secrets) {
            auto const owner = owners.find(secret);
            if (owner == owners.end()) continue;
            unsigned const added = item.mode & ~owner->second->mode & ForGroupAndOthers;
            // The group's permissions are the most that an access list grants.
            bool const isShared =
                (item.mode & ForGroup) != 0 && !item.accessList.empty() && item.accessList != owner->second->accessList;
            // Links have all permissions, and contents that only lead elsewhere.
            if (item.mode == 0777 || (added == 0 && !isShared)) continue;
            findings.insert({Promise::NoMoreReaders, isTemporaryName(path) ? "a temporary file" : path});
        }
    }
}

// Whether the items are equal; where some of several fields may have been set, only their kind and secrets count.
bool Judgement::isSame(SeenItem const& found, SeenItem const& expected) const {
    bool const isWhole =
        m_operation.failure != Failure::LeavesSomeFields && m_operation.failure != Failure::LeavesSomeFieldsIfCut;
    if (isWhole) return isEqual(found, expected);
    return found.secrets == expected.secrets && found.isFolder == expected.isFolder;
}

bool Judgement::isWholeAt(std::string const& place, Snapshot const& expected) const {
    if (place.empty()) return true;
    bool isThere = false;
    for (auto const& [path, item] : expected) {
        if (!isAtOrBelow(path, place)) continue;
        isThere = true;
        SeenItem const* const found = itemAt(m_found, path);
        if (!found || !isSame(*found, item)) return false;
    }
    return isThere;
}

void Judgement::checkItems(std::set<Finding>& findings) const {
    for (Item const& item : m_operation.items) {
        // What a sidecar holds counts as its item's then, which is looked at itself.
        bool const isBesideItem = item.before.find("/._") != std::string::npos;
        if (m_circumstances.refusesValue && isBesideItem) continue;
        if (isWholeAt(item.before, m_expectation.before) || isWholeAt(item.after, m_expectation.after)) continue;
        findings.insert({Promise::ItemIsWhole, item.before + difference(m_expectation.before, m_found)});
    }
}

// Whether the path belongs to an item that is whole at its new place; another is to take its old one.
bool Judgement::hasLeft(std::string const& path) const {
    return std::ranges::any_of(m_operation.items, [&](Item const& item) {
        return isAtOrBelow(path, item.before) && !item.after.empty() && isWholeAt(item.after, m_expectation.after);
    });
}

// Each path is as before or as after.
void Judgement::checkPaths(std::set<Finding>& findings) const {
    std::string wrong;
    bool const isAside = isReplacedAside();
    std::set<std::string> paths;
    for (Snapshot const* const snapshot : {&m_expectation.before, &m_expectation.after, &m_found})
        for (auto const& [path, item] : *snapshot)
            paths.insert(path);
    for (std::string const& path : paths) {
        SeenItem const* const found = itemAt(m_found, path);
        SeenItem const* const before = itemAt(m_expectation.before, path);
        SeenItem const* const after = itemAt(m_expectation.after, path);
        auto const isAs = [this, found](SeenItem const* expected) {
            return found && expected ? isSame(*found, *expected) : found == expected;
        };
        if (isAs(before) || isAs(after) || isMadeToStay(path) || isRecordWithoutItem(path)) continue;
        if (!found && hasLeft(path)) continue;
        if (!found && isAtOrBelow(path, m_operation.replaced) && isAside) continue;
        bool const isBelowTemporary = [&path] {
            for (std::size_t at = path.find('/'); at != std::string::npos; at = path.find('/', at + 1))
                if (isTemporaryName(path.substr(0, at))) return true;
            return isTemporaryName(path);
        }();
        if (!isBelowTemporary && wrong.size() < LongestText) wrong += " " + path;
    }
    if (!wrong.empty()) findings.insert({Promise::ItemIsWhole, "neither old nor new:" + wrong});
}

void Judgement::checkSuccess(std::set<Finding>& findings, bool isReached) const {
    if (isAsIn(m_expectation.after)) return;
    bool const hasTemporary = std::ranges::any_of(m_found, [](auto const& i) { return isTemporaryName(i.first); });
    if (m_circumstances.undoing == Undoing::IsImpossible && hasTemporary) return checkPaths(findings);
    if (hasTemporary) findings.insert({Promise::NoLeftovers, "temporary names stay after a success"});
    if (!isReached)
        findings.insert({Promise::AnswerIsTrue, "success was said:" + difference(m_expectation.after, m_found)});
}

void Judgement::checkFailure(std::set<Finding>& findings) const {
    if (isAsIn(m_expectation.after) || isAsIn(m_expectation.before)) return;
    if (m_circumstances.undoing == Undoing::IsImpossible) return checkPaths(findings);
    bool const hasTemporary = std::ranges::any_of(m_found, [](auto const& i) { return isTemporaryName(i.first); });
    if (hasTemporary) findings.insert({Promise::NoLeftovers, "temporary names stay after a failure"});
    bool const isPartial =
        m_operation.failure == Failure::LeavesSomeDone || m_operation.failure == Failure::LeavesSomeFields;
    if (isPartial) return checkPaths(findings);
    if (!hasTemporary)
        findings.insert({Promise::AnswerIsTrue, "failure was said:" + difference(m_expectation.before, m_found)});
}

std::set<Finding> Judgement::afterFault(Ending ending, bool isReached) const {
    std::set<Finding> findings;
    checkEnding(findings, ending);
    checkReaders(findings);
    if (!isReached) checkItems(findings);
    if (ending == Ending::SaidDone)
        checkSuccess(findings, isReached);
    else if (ending == Ending::SaidFailed)
        checkFailure(findings);
    else
        checkPaths(findings);
    return findings;
}

void Judgement::checkCanary(std::set<Finding>& findings, bool isOnTheWay) const {
    for (auto const& [path, item] : m_expectation.before) {
        if (!isAtOrBelow(path, Canary) || (isOnTheWay && path == CanaryItem)) continue;
        SeenItem const* const found = itemAt(m_found, path);
        if (!found || !(*found == item)) findings.insert({Promise::OthersUntouched, path});
    }
    for (auto const& [path, item] : m_found)
        if (!isOnTheWay && isAtOrBelow(path, Canary) && !m_expectation.before.contains(path))
            findings.insert({Promise::OthersUntouched, "+" + (isTemporaryName(path) ? "(temporary)" : path)});
}

// Whether the canary's item was what a path led to and was written there, as the operation was asked to.
bool Judgement::isWritten(std::string const& secret) const {
    SeenItem const* const canary = itemAt(m_expectation.before, std::string(CanaryItem));
    bool const isItem = canary && std::ranges::find(canary->secrets, secret) != canary->secrets.end();
    return isItem && m_found.contains(std::string(CanaryItem));
}

std::set<Finding> Judgement::afterExchange(Ending ending, std::string const& exchanged) const {
    std::set<Finding> findings;
    checkEnding(findings, ending);
    bool const isOnTheWay = std::ranges::find(m_operation.exchangedWays, exchanged) != m_operation.exchangedWays.end();
    checkCanary(findings, isOnTheWay);
    std::map<std::string, SeenItem const*> const now = holdersOfSecrets(m_found);
    std::map<std::string, SeenItem const*> const kept = holdersOfSecrets(m_expectation.after);
    for (auto const& [secret, item] : holdersOfSecrets(m_expectation.before))
        if (kept.contains(secret) && !now.contains(secret) && !(isOnTheWay && isWritten(secret)))
            findings.insert({Promise::ItemIsWhole, "lost: " + secret});
    checkReaders(findings);
    return findings;
}

std::set<Finding> Judgement::afterNextWrite() const {
    for (auto const& [path, item] : m_found)
        if (isTemporaryName(path) && !(m_circumstances.replacesInSteps && isReplacedAt(path)))
            return {{Promise::NoLeftovers, "temporary names stay after a kill and a second write"}};
    return {};
}

} // namespace mac::faults
