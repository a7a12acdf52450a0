#include "tests/faults/Campaign.h"
#include "tests/faults/PowerLoss.h"
#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <iostream>
#include <linux/magic.h>
#include <new>
#include <sched.h>
#include <stdexcept>
#include <string_view>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/vfs.h>
#include <sys/wait.h>
#include <unistd.h>

namespace mac::faults {

namespace {

constexpr std::array Errors{EACCES, EIO, ENOSPC, EROFS, EINTR, EDQUOT, ENOMEM, EMFILE, EXDEV};
constexpr std::array<std::string_view, 8> Transfers{"read",   "pread",           "pread64",  "write",
                                                    "pwrite", "copy_file_range", "sendfile", "pwrite64"};
// Ends a process that waits instead of working, which the limit on processor time does not.
constexpr unsigned LongestWaitInSeconds = 120;
// How often a process that is to race looks whether the race has begun: much shorter than an operation, and the
// processor is left to what is made ready meanwhile.
constexpr timespec BetweenLooks{.tv_sec = 0, .tv_nsec = 30'000};
constexpr int SaidFailed = 1;

// What the running process exchanges.
std::string exchangedPath;
std::string linkPath;

void exchange() {
    constexpr unsigned renameExchange = 2;
    (void)::syscall(SYS_renameat2, AT_FDCWD, exchangedPath.c_str(), AT_FDCWD, linkPath.c_str(), renameExchange);
}

// What the system refused so that the product's rule for that counts, not its rule for failures.
void addRefusals(Circumstances& circumstances, FaultPoint const& point, std::string_view call) {
    if (point.action != Action::Fail) return;
    constexpr std::array<std::string_view, 3> ownership{"fchown", "fchownat", "setxattr"};
    bool const isOfAccess = std::ranges::find(ownership, call) != ownership.end();
    circumstances.refusesAccess = isOfAccess && point.error == EACCES;
    circumstances.refusesValue = call == "setxattr" && point.error == ENOSPC;
}

Undoing undoingAfter(FaultPoint const& point, std::string_view call) {
    if (point.action != Action::Fail) return Undoing::IsPossible;
    bool const isRemoval = call.starts_with("unlink") && point.error != EINTR;
    return isRemoval || point.lasting == Lasting::ForGood ? Undoing::IsImpossible : Undoing::IsPossible;
}

} // namespace

struct Campaign::Shared {
    CallRecord record;
    PowerLossRecord powerLoss;
    // The racing process exchanges names while this is set, and says so.
    std::atomic<bool> isRacing;
    std::atomic<bool> isExchanging;
};

std::string Break::text() const {
    static constexpr std::array<char const*, 5> actions{"", "fails", "transfers less", "kills", "meets an exchange"};
    std::string text = operation + ": " + nameOf(finding.promise) + ": call " +
                       (point.at == ~0U ? "any" : std::to_string(point.at)) + " (" + call + ") " +
                       actions[static_cast<std::size_t>(point.action)];
    if (point.action == Action::Fail) text += std::string(" with ") + ::strerrorname_np(point.error);
    if (point.action == Action::Fail && point.lasting == Lasting::ForGood) text += " for good";
    if (!point.exchanged.empty()) text += " of " + point.exchanged;
    if (point.volume == Volume::WithoutExclusiveRename) text += " (no exclusive rename)";
    return text + ": " + finding.text + " [" + std::to_string(points) + " points]";
}

Campaign::Campaign(Fixture const& fixture, CampaignOptions options)
    : m_fixture(fixture), m_options(std::move(options)), m_canExchangeNames(fixture.canExchangeNames()),
      m_random(m_options.seed) {
    void* const memory = ::mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) throw std::bad_alloc();
    m_shared = new (memory) Shared;
}

Campaign::~Campaign() { ::munmap(m_shared, sizeof(Shared)); }

void Campaign::run(Operation const& operation) {
    if (operation.needs == Needs::TwoVolumes && !m_fixture.hasSecondVolume()) return;
    if (operation.needs == Needs::Attributes && !m_fixture.canKeepAttributes()) return;
    bool const exchangesNames = operation.needs == Needs::ExchangedNames;
    if (exchangesNames && !m_canExchangeNames) return;
    for (Volume const volume : m_options.volumes)
        if (!exchangesNames || volume == Volume::Ordinary) runOn(operation, volume);
}

void Campaign::runOn(Operation const& operation, Volume volume) {
    m_isPrepared = false;
    prepare(operation);
    if (operation.warmUp) operation.warmUp(m_fixture);
    m_expectation.before = m_fixture.snapshot();
    Plan const untouched{.volume = volume, .at = ~0U};
    Ending const ending = runApart([&] { return operation.run(m_fixture); }, untouched);
    m_expectation.after = m_fixture.snapshot();
    m_isPrepared = false;
    if (ending != Ending::SaidDone) throw std::runtime_error(operation.name + " fails without a fault");
    if (m_shared->record.count == 0) throw std::runtime_error(operation.name + " makes no calls");
    m_counts.calls += m_shared->record.count;
    for (FaultPoint const& point : pointsOf(operation, volume))
        if (isChosen() && !isEnough(operation)) take(operation, point);
    if (m_options.hasPowerLoss && operation.flushing == Flushing::BeforeNaming)
        losePower(operation, {.volume = volume, .at = ~0U});
    for (std::string const& name : operation.exchanged)
        if (m_options.races > 0) race(operation, {.volume = volume, .at = ~0U, .exchanged = name});
}

bool Campaign::isEnough(Operation const& operation) const {
    return m_options.until && std::ranges::any_of(m_breaks, [&](Break const& found) {
               return found.operation == operation.name && found.finding.promise == *m_options.until;
           });
}

void Campaign::losePower(Operation const& operation, FaultPoint const& point) {
    m_isPrepared = false;
    prepare(operation);
    m_shared->powerLoss = {};
    std::function<bool()> const recorded = [&] {
        recordPowerLoss(m_fixture, m_expectation.before, m_shared->powerLoss);
        return operation.run(m_fixture);
    };
    runApart(recorded, {.volume = point.volume, .at = point.at, .passed = tellPowerLoss});
    m_isPrepared = false;
    m_counts.prefixes += m_shared->powerLoss.prefixes;
    std::string_view const text = m_shared->powerLoss.finding.data();
    if (!text.empty()) report(operation, point, "no call", {Promise::SurvivesPowerLoss, std::string(text)});
}

// Runs the operation again and again beside a process that exchanges the name all the time.
void Campaign::race(Operation const& operation, FaultPoint const& point) {
    setExchange(point);
    m_shared->isRacing = false;
    pid_t const racer = ::fork();
    if (racer < 0) throw std::runtime_error("no process can be made");
    if (racer == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        for (;;) {
            // Before it asks whether it may, so that whoever has forbidden it and sees false knows that it is idle.
            m_shared->isExchanging = true;
            bool const mayExchange = m_shared->isRacing;
            if (mayExchange) exchange();
            m_shared->isExchanging = false;
            if (!mayExchange) ::nanosleep(&BetweenLooks, nullptr);
        }
    }
    for (unsigned round = 0; round < m_options.races; ++round) {
        prepare(operation);
        m_shared->isRacing = true;
        Ending const ending = runApart([&] { return operation.run(m_fixture); }, {.volume = point.volume, .at = ~0U});
        m_shared->isRacing = false;
        while (m_shared->isExchanging)
            ::sched_yield();
        Snapshot const found = m_fixture.snapshot();
        m_isPrepared = found == m_expectation.before;
        ++m_counts.races;
        for (Finding const& finding : Judgement(operation, m_expectation, found).afterExchange(ending, point.exchanged))
            report(operation, point, "no call", finding);
    }
    ::kill(racer, SIGKILL);
    ::waitpid(racer, nullptr, 0);
}

// Says what exchange() exchanges.
void Campaign::setExchange(FaultPoint const& point) {
    Snapshot::const_iterator const item = m_expectation.before.find(point.exchanged);
    bool const isFolder = item != m_expectation.before.end() && item->second.isFolder;
    exchangedPath = m_fixture.path(point.exchanged);
    linkPath = m_fixture.path(isFolder ? "canary.link" : "canary.file");
}

std::vector<FaultPoint> Campaign::pointsOf(Operation const& operation, Volume volume) const {
    std::vector<FaultPoint> points;
    std::uint32_t const count = std::min<std::uint32_t>(m_shared->record.count, CallRecord::Most);
    for (std::uint32_t at = 0; at < count; ++at) {
        FaultPoint const here{.volume = volume, .at = at};
        if (!m_options.call.empty() && m_options.call != m_shared->record.names[at]) continue;
        auto const add = [&](Action action, FaultPoint point) {
            point.action = action;
            points.push_back(std::move(point));
        };
        if (m_options.hasFaults) {
            for (int const error : Errors)
                for (Lasting const lasting : {Lasting::Once, Lasting::ForGood})
                    add(Action::Fail, {.lasting = lasting, .volume = volume, .at = at, .error = error});
            if (std::ranges::find(Transfers, m_shared->record.names[at]) != Transfers.end())
                add(Action::TransferLess, here);
        }
        if (m_options.hasKills) add(Action::Kill, here);
        if (!m_options.hasExchanges) continue;
        for (std::vector<std::string> const* const names : {&operation.exchanged, &operation.exchangedWays})
            for (std::string const& name : *names)
                add(Action::Disturb, {.volume = volume, .at = at, .exchanged = name});
    }
    return points;
}

// A linear congruential generator: the same points for the same seed, whatever the library.
bool Campaign::isChosen() {
    m_random = m_random * 6364136223846793005U + 1442695040888963407U;
    return (m_random >> 33U) % m_options.stride == m_options.part;
}

void Campaign::prepare(Operation const& operation) {
    if (m_isPrepared) return;
    m_fixture.reset();
    operation.prepare(m_fixture);
    m_isPrepared = true;
}

Ending Campaign::runApart(std::function<bool()> const& action, Plan const& plan) {
    pid_t const child = ::fork();
    if (child < 0) throw std::runtime_error("no process can be made");
    if (child == 0) {
        rlimit const patience{m_options.patienceInSeconds, m_options.patienceInSeconds + 1};
        ::setrlimit(RLIMIT_CPU, &patience);
        ::alarm(LongestWaitInSeconds);
        bool isDone = false;
        try {
            arm(plan, m_shared->record);
            isDone = action();
            disarm();
        } catch (std::exception const& error) {
            disarm();
            std::cerr << "An exception left the operation: " << error.what() << '\n';
            ::abort();
        }
        ::_exit(isDone ? 0 : SaidFailed);
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {}
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return Ending::SaidDone;
    if (WIFEXITED(status) && WEXITSTATUS(status) == SaidFailed) return Ending::SaidFailed;
    int const signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    if (signal == SIGALRM || signal == SIGXCPU) return Ending::Hung;
    bool const isMeant = plan.action == Action::Kill && signal == SIGKILL;
    return isMeant ? Ending::Killed : Ending::Crashed;
}

Campaign::Trial Campaign::tryOut(Operation const& operation, FaultPoint const& point) {
    Plan plan{.action = point.action,
              .lasting = point.lasting,
              .volume = point.volume,
              .at = point.at,
              .error = point.error,
              .disturb = exchange};
    setExchange(point);
    Trial trial{.ending = runApart([&] { return operation.run(m_fixture); }, plan)};
    trial.found = m_fixture.snapshot();
    return trial;
}

void Campaign::take(Operation const& operation, FaultPoint const& point) {
    prepare(operation);
    Trial const trial = tryOut(operation, point);
    m_isPrepared = trial.found == m_expectation.before;
    if (point.action == Action::Kill)
        ++m_counts.kills;
    else if (point.action == Action::Disturb)
        ++m_counts.exchanges;
    else
        ++m_counts.faults;
    judge(operation, point, trial);
}

void Campaign::judge(Operation const& operation, FaultPoint const& point, Trial const& trial) {
    bool const isExchange = point.action == Action::Disturb;
    std::string const call = callAt(point);
    Circumstances const circumstances = circumstancesOf(point, call);
    Judgement const judgement(operation, m_expectation, trial.found, circumstances);
    bool const isReached =
        !isExchange && trial.ending == Ending::SaidDone && operation.isReached && operation.isReached(m_fixture);
    if (!isExchange && trial.ending == Ending::SaidFailed && trial.found == m_expectation.after)
        ++m_counts.deniedSuccesses;
    for (Finding const& finding : isExchange ? judgement.afterExchange(trial.ending, point.exchanged)
                                             : judgement.afterFault(trial.ending, isReached))
        report(operation, point, call, finding);
    if (point.action != Action::Kill && circumstances.undoing == Undoing::IsPossible) return;
    bool const hasLeftover = std::ranges::any_of(trial.found, [](auto const& i) { return isTemporaryName(i.first); });
    if (hasLeftover) writeAgain(operation, point, call);
}

Circumstances Campaign::circumstancesOf(FaultPoint const& point, std::string const& call) const {
    Circumstances circumstances{.undoing = undoingAfter(point, call),
                                .replacesInSteps =
                                    point.volume == Volume::WithoutExclusiveRename || !m_canExchangeNames};
    addRefusals(circumstances, point, call);
    return circumstances;
}

// The same operation once more, which may refuse what is there by now, and a copy to each folder with a temporary name.
void Campaign::writeAgain(Operation const& operation, FaultPoint const& point, std::string const& call) {
    Snapshot const left = m_fixture.snapshot();
    std::function<bool()> const again = [&] {
        static_cast<void>(operation.run(m_fixture));
        for (auto const& [path, item] : left) {
            std::size_t const end = path.rfind('/');
            if (isTemporaryName(path) && end != std::string::npos) copyIntoFolder(m_fixture, path.substr(0, end));
        }
        return true;
    };
    runApart(again, {.volume = point.volume, .at = ~0U});
    Snapshot const found = m_fixture.snapshot();
    m_isPrepared = false;
    for (Finding const& finding :
         Judgement(operation, m_expectation, found, circumstancesOf(point, call)).afterNextWrite())
        report(operation, point, call, finding);
}

bool Campaign::isOnFUSE() const {
    struct statfs status {};
    return ::statfs(m_fixture.path("").c_str(), &status) == 0 && status.f_type == FUSE_SUPER_MAGIC;
}

std::string Campaign::callAt(FaultPoint const& point) const {
    bool const isKnown = point.at < std::min<std::uint32_t>(m_shared->record.count, CallRecord::Most);
    return isKnown ? m_shared->record.names[point.at] : "no call";
}

void Campaign::report(Operation const& operation, FaultPoint const& point, std::string const& call,
                      Finding const& finding) {
    auto const known = std::ranges::find_if(m_breaks, [&](Break const& one) {
        return one.operation == operation.name && one.point.action == point.action &&
               one.point.volume == point.volume && one.call == call && one.finding.promise == finding.promise;
    });
    if (known != m_breaks.end()) {
        ++known->points;
        return;
    }
    m_breaks.push_back(
        {.operation = operation.name, .point = point, .call = call, .finding = finding, .isOnFUSE = isOnFUSE()});
}

} // namespace mac::faults
