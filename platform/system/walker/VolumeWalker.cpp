#include "platform/system/walker/VolumeWalker.h"

#include "platform/system/walker/FolderLog.h"
#include "platform/system/walker/Packages.h"
#include "platform/system/walker/VolumeList.h"
#include "platform/system/walker/VolumeVisit.h"
#include "platform/system/walker/WalkBudget.h"
#include "platform/system/walker/WalkFindings.h"
#include "platform/system/walker/WalkMemory.h"
#include "platform/system/walker/WalkWorker.h"
#include "platform/system/walker/WorkExchange.h"

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <deque>
#include <future>
#include <iterator>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace mac {

namespace {

// Threads started meanwhile take no signals: whoever handles one expects it in a thread of its own, and it would break
// off what the walk is reading. Errors of the thread itself still end the program where they happen.
class SignalsForOtherThreads {
public:
    SignalsForOtherThreads() {
        sigset_t all;
        ::sigfillset(&all);
        for (int const own : {SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGPROF, SIGSEGV, SIGTRAP})
            ::sigdelset(&all, own);
        ::pthread_sigmask(SIG_BLOCK, &all, &m_before);
    }
    ~SignalsForOtherThreads() { ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalsForOtherThreads(SignalsForOtherThreads const&) = delete;
    SignalsForOtherThreads& operator=(SignalsForOtherThreads const&) = delete;

private:
    sigset_t m_before;
};

} // namespace

// One thread, the leader, recalls the last walk, lists the volumes, starts the workers, adds to them while the disk is
// read, tells when all have ended, and leaves what the next walk needs.
class VolumeWalker::Walk : public std::enable_shared_from_this<Walk> {
public:
    Walk(VolumeWalkRequest&& request, std::function<void()>&& onNews)
        : m_question{.roots = std::move(request.roots),
                     .packageSuffix = std::move(request.packageSuffix),
                     .names = std::move(request.names)},
          m_packages(m_question.packageSuffix, m_question.names), m_item(std::move(request.item)),
          m_usesLinkCounts(request.usesLinkCounts && (!m_item || m_item->isFolder)),
          m_memory(m_item ? nullptr : std::move(request.memory)), m_tellsRemembered(request.tellsRemembered),
          m_patience(request.patience),
          m_findings(std::move(onNews), m_memory ? WalkFindings::Keeping::Always : WalkFindings::Keeping::UntilTaken) {}

    bool start();
    void stop();
    void stopWithin(std::chrono::milliseconds patience);
    bool waitUntilRemembered(std::chrono::milliseconds patience);
    WalkFindings& findings() { return m_findings; }

private:
    void lead();
    void search();
    void close();
    bool waitUntilEnded(std::chrono::milliseconds patience);
    std::shared_ptr<RememberedWalk const> lastWalk();
    void recall(VolumeList const& list);
    bool awaitVisit(Volume const& volume);
    std::optional<VolumeList> listed();
    void giveVolumes(unsigned workers);
    void give(Volume&& volume);
    bool haveWorkers(unsigned count);
    FolderLog& newLog() { return m_logs.emplace_back(static_cast<unsigned>(m_logs.size())); }
    void work(FolderLog& log);
    void remember();

    WalkQuestion const m_question;
    PackageRule const m_packages;
    std::optional<SoughtItem> const m_item;
    bool const m_usesLinkCounts;
    std::shared_ptr<WalkMemory> const m_memory;
    bool const m_tellsRemembered;
    std::chrono::milliseconds const m_patience;
    std::int64_t m_started = 0;
    std::chrono::steady_clock::time_point m_deadline; // of the patience
    std::shared_ptr<RememberedWalk const> m_last;
    bool m_isMemorySilent = false; // it is not waited for once more
    std::deque<FolderLog> m_logs;  // one for each worker
    DescriptorBudget const m_budget = DescriptorBudget::current();
    WalkFindings m_findings;
    WorkExchange m_exchange;
    MountPointSet m_mountPoints;
    std::vector<std::thread> m_workers;
    std::thread m_leader;
    std::atomic<bool> m_wasStopped = false;
    std::atomic<bool> m_wasLeft = false; // its threads were not waited for
    std::mutex m_endMutex;               // guards m_hasEnded
    std::condition_variable m_ended;
    bool m_hasEnded = false; // the leader has nothing left to do
};

bool VolumeWalker::Walk::start() {
    if (m_leader.joinable() || m_wasStopped) return false;
    SignalsForOtherThreads const signals;
    try {
        m_leader = std::thread([self = shared_from_this()] { self->lead(); });
    } catch (std::system_error const&) {
        return false;
    }
    return true;
}

void VolumeWalker::Walk::close() {
    m_wasStopped = true;
    m_exchange.close();
}

void VolumeWalker::Walk::stop() {
    close();
    if (m_leader.joinable()) m_leader.join();
}

void VolumeWalker::Walk::stopWithin(std::chrono::milliseconds patience) {
    close();
    m_findings.silence();
    if (!m_leader.joinable()) return;
    if (waitUntilEnded(patience)) return m_leader.join();
    m_wasLeft = true;
    m_leader.detach();
}

bool VolumeWalker::Walk::waitUntilEnded(std::chrono::milliseconds patience) {
    std::unique_lock lock(m_endMutex);
    return m_ended.wait_for(lock, patience, [this] { return m_hasEnded; });
}

bool VolumeWalker::Walk::waitUntilRemembered(std::chrono::milliseconds patience) {
    return !m_leader.joinable() || waitUntilEnded(patience);
}

void VolumeWalker::Walk::lead() {
    search();
    std::lock_guard const lock(m_endMutex);
    m_hasEnded = true;
    m_ended.notify_all();
}

void VolumeWalker::Walk::search() {
    if (m_memory) m_started = m_memory->now();
    m_deadline = std::chrono::steady_clock::now() + m_patience;
    ThreadPace pace(std::thread::hardware_concurrency(), m_budget.threads, blocksReadByProcess());
    // A member like the workers until it has given all volumes: without it the first of them would be all.
    bool const isMember = m_exchange.enroll();
    giveVolumes(pace.threads());
    if (isMember) m_exchange.withdraw();
    while (haveWorkers(pace.threads()) && pace.canGrow() && !m_exchange.waitUntilOver(ThreadPace::interval))
        pace.look(blocksReadByProcess());
    if (m_workers.empty() && m_exchange.enroll()) work(newLog());
    for (std::thread& worker : m_workers)
        worker.join();
    if (m_wasStopped) return;
    m_findings.finish();
    if (m_memory) remember();
}

// What the memory has; nothing if it does not answer, since the walk is more than what it begins with.
std::shared_ptr<RememberedWalk const> VolumeWalker::Walk::lastWalk() {
    if (!m_memory) return nullptr;
    std::packaged_task<std::shared_ptr<RememberedWalk const>()> recall(
        [memory = m_memory, question = m_question] { return memory->recall(question); });
    std::future<std::shared_ptr<RememberedWalk const>> recalled = recall.get_future();
    try {
        std::thread(std::move(recall)).detach();
    } catch (std::system_error const&) {
        return nullptr;
    }
    m_isMemorySilent = recalled.wait_until(m_deadline) != std::future_status::ready;
    return m_isMemorySilent ? nullptr : recalled.get();
}

void VolumeWalker::Walk::recall(VolumeList const& list) {
    m_last = lastWalk();
    if (!m_last || !m_tellsRemembered) return m_findings.addRemembered({});
    auto const shouldStop = [this] { return m_wasStopped.load(); };
    m_findings.addRemembered(packagesStillThere(m_last->packages, list, m_packages, shouldStop, m_wasLeft));
}

void VolumeWalker::Walk::remember() {
    bool const isSame = m_last && m_findings.progress().listsRead == 0;
    if (isSame || m_isMemorySilent) return;
    auto const shouldStop = [this] { return m_wasStopped.load(); };
    std::optional<RememberedFolders> folders = indexOf(m_logs, m_started, shouldStop);
    if (!folders || shouldStop()) return;
    m_logs.clear();
    m_last.reset();
    // What cannot be kept is found anew the next time.
    (void)m_memory->keep({.question = m_question,
                          .start = m_started,
                          .packages = m_findings.takePackagesOfWalk(),
                          .folders = std::make_shared<RememberedFolders const>(std::move(*folders))},
                         shouldStop);
}

// Waits until the volume may be visited; false if it is left out, which is told unless the walk was stopped.
bool VolumeWalker::Walk::awaitVisit(Volume const& volume) {
    bool may = mayBeVisited(volume);
    while (!may && !m_wasStopped && std::chrono::steady_clock::now() < m_deadline) {
        m_exchange.waitUntilOver(ThreadPace::interval);
        may = mayBeVisited(volume);
    }
    if (!may && !m_wasStopped)
        m_findings.addUnreadable(volume.path, {.code = ETIMEDOUT, .operation = "open", .item = ""});
    return may;
}

// nullopt if there is nothing to walk, which is not the same as a list for no roots.
std::optional<VolumeList> VolumeWalker::Walk::listed() {
    std::vector<std::string> roots;
    std::deque<VolumeVisit> visits;
    for (std::string const& root : m_question.roots) {
        if (!awaitVisit({.path = root})) continue;
        roots.push_back(root);
        visits.emplace_back(Volume{.path = root}, m_wasLeft);
    }
    if (roots.empty() && !m_question.roots.empty()) return std::nullopt;
    return listVolumes(roots, m_packages, m_item ? MountsBelow::LeftOut : MountsBelow::Searched);
}

// The workers are started here if the last volumes have to be waited for, which they need not.
void VolumeWalker::Walk::giveVolumes(unsigned workers) {
    std::optional<VolumeList> list = listed();
    if (!list) return m_findings.addRemembered({});
    // What earlier walks wait for comes last, and nothing that is remembered is looked for there.
    auto const silent = std::stable_partition(list->volumes.begin(), list->volumes.end(), mayBeVisited);
    std::vector<Volume> awaited(std::make_move_iterator(silent), std::make_move_iterator(list->volumes.end()));
    list->volumes.erase(silent, list->volumes.end());
    recall(*list);
    m_mountPoints = std::move(list->mountPoints);
    for (SystemError const& failure : list->failures)
        m_findings.addUnreadable(failure.item, failure);
    for (std::string& package : list->packages)
        m_findings.addPackage(std::move(package));
    for (Volume& volume : list->volumes)
        give(std::move(volume));
    if (!awaited.empty()) (void)haveWorkers(workers);
    for (Volume& volume : awaited) {
        if (awaitVisit(volume)) give(std::move(volume));
    }
}

void VolumeWalker::Walk::give(Volume&& volume) {
    FolderShare share;
    share.path = std::move(volume.path);
    share.isVolumeRoot = true;
    share.traits.mount = volume.mount;
    share.traits.linkCountTellsSubfolders = m_usesLinkCounts;
    m_exchange.give(std::move(share));
}

// False when there are fewer and there will be no more.
bool VolumeWalker::Walk::haveWorkers(unsigned count) {
    while (m_workers.size() < count) {
        if (!m_exchange.enroll()) return false;
        try {
            m_workers.emplace_back([this, &log = newLog()] { work(log); });
        } catch (std::system_error const&) {
            m_exchange.withdraw();
            return false;
        }
    }
    return true;
}

void VolumeWalker::Walk::work(FolderLog& log) {
    RememberedFolders const* const last = m_last ? m_last->folders.get() : nullptr;
    WalkWorker({.exchange = m_exchange,
                .findings = m_findings,
                .packages = m_packages,
                .item = m_item,
                .mountPoints = m_mountPoints,
                .last = last,
                .log = m_memory ? &log : nullptr,
                .wasLeft = m_wasLeft},
               m_budget.foldersPerThread)
        .run();
}

VolumeWalker::VolumeWalker(VolumeWalkRequest request, std::function<void()> onNews)
    : m_walk(std::make_shared<Walk>(std::move(request), std::move(onNews))) {}

VolumeWalker::~VolumeWalker() { stop(); }

bool VolumeWalker::start() { return m_walk->start(); }

void VolumeWalker::stop() { m_walk->stop(); }

void VolumeWalker::stopWithin(std::chrono::milliseconds patience) { m_walk->stopWithin(patience); }

bool VolumeWalker::waitUntilRecalled(std::chrono::milliseconds patience) const {
    return m_walk->findings().waitUntilRecalled(patience);
}

bool VolumeWalker::waitUntilRemembered(std::chrono::milliseconds patience) const {
    return m_walk->waitUntilRemembered(patience);
}

std::vector<SystemError> VolumeWalker::unreadable() const { return m_walk->findings().unreadable(); }

std::vector<std::string> VolumeWalker::vanished() const { return m_walk->findings().vanished(); }

std::vector<std::string> VolumeWalker::takeFound() { return m_walk->findings().take(); }

std::vector<std::string> VolumeWalker::takeRemembered(std::size_t most) {
    return m_walk->findings().takeRemembered(most);
}

VolumeWalkProgress VolumeWalker::progress() const { return m_walk->findings().progress(); }

} // namespace mac
