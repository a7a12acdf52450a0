#include "platform/system/walker/VolumeWalker.h"

#include "platform/system/BytePath.h"
#include "platform/system/walker/FolderLog.h"
#include "platform/system/walker/Packages.h"
#include "platform/system/walker/RootLocator.h"
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

// Takes those of the elements away for which the question is answered yes.
template <class Element, class Question>
std::vector<Element> taken(std::vector<Element>& from, Question const& isTaken) {
    auto const rest = std::stable_partition(from.begin(), from.end(), isTaken);
    std::vector<Element> result(std::make_move_iterator(from.begin()), std::make_move_iterator(rest));
    from.erase(from.begin(), rest);
    return result;
}

} // namespace

// One thread, the leader, has the roots located, recalls the last walk, lists the volumes, starts the workers, adds to
// them while the disk is read, tells when all have ended, and leaves what the next walk needs.
class VolumeWalker::Walk : public std::enable_shared_from_this<Walk> {
public:
    Walk(VolumeWalkRequest&& request, std::function<void()>&& onNews)
        : m_question{.roots = std::move(request.roots),
                     .packageSuffix = std::move(request.packageSuffix),
                     .names = std::move(request.names)},
          m_packages(m_question.packageSuffix, m_question.names),
          m_folderInPackages(std::move(request.folderInPackages)), m_item(std::move(request.item)),
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
    void recall(VolumeList list);
    bool isAnyLeft() const;
    std::vector<WalkRoot> firstRoots(RootLocator& locator);
    void leaveOut(std::string_view path);
    std::vector<WalkRoot> takeRoots(RootLocator& locator);
    std::vector<WalkRoot> takeLaterRoots(RootLocator& locator);
    void leaveOutBlocked(RootLocator& locator);
    VolumeList listed(std::vector<WalkRoot> const& roots);
    void add(VolumeList&& list);
    void giveWaiting();
    void giveVolumes(ThreadPace& pace);
    bool haveWorkers(unsigned count);
    FolderLog& newLog() { return m_logs.emplace_back(static_cast<unsigned>(m_logs.size())); }
    void work(FolderLog& log);
    void remember();

    WalkQuestion const m_question;
    PackageRule const m_packages;
    std::string const m_folderInPackages;
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
    std::vector<std::string> m_rootsLeft;    // by the last take
    std::vector<WalkRoot> m_foundPackages;   // roots that wait until no folder is left
    std::vector<WalkRoot> m_listed;          // the roots whose volumes are known
    std::deque<MountPointSet> m_mountPoints; // one for each time that roots were listed
    std::vector<FolderShare> m_waiting;      // volumes that are not given yet
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
    giveVolumes(pace);
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

// Remembered packages are not looked for on volumes on which earlier walks still wait: such a volume may not answer.
void VolumeWalker::Walk::recall(VolumeList list) {
    m_last = lastWalk();
    if (!m_last || !m_tellsRemembered) return m_findings.addRemembered({});
    auto const shouldStop = [this] { return m_wasStopped.load(); };
    std::erase_if(list.volumes, [](Volume const& volume) { return !mayBeVisited(volume); });
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

void VolumeWalker::Walk::leaveOut(std::string_view path) {
    m_findings.addUnreadable(path, {.code = ETIMEDOUT, .operation = "open", .item = ""});
}

bool VolumeWalker::Walk::isAnyLeft() const {
    return !m_wasStopped && !(m_rootsLeft.empty() && m_foundPackages.empty() && m_waiting.empty());
}

// The roots with which the walk begins.
std::vector<WalkRoot> VolumeWalker::Walk::firstRoots(RootLocator& locator) {
    if (!m_question.roots.empty()) return takeRoots(locator);
    Result<WalkRoot> top = locateRoot("/");
    if (top.hasValue()) return {top.takeValue()};
    m_findings.addUnreadable(top.problem().item, top.problem());
    return {};
}

// Takes the roots that were found: a package once no folder is left, since a folder may hold it.
std::vector<WalkRoot> VolumeWalker::Walk::takeRoots(RootLocator& locator) {
    auto const isPackage = [this](std::string const& root) { return m_packages.isPackage(BytePath(root).leaf()); };
    RootLocator::Taken taken = locator.take();
    std::vector<WalkRoot> found;
    for (Result<WalkRoot>& root : taken.found) {
        if (!root.hasValue())
            m_findings.addUnreadable(root.problem().item, root.problem());
        else
            (isPackage(root.value().path) ? m_foundPackages : found).push_back(root.takeValue());
    }
    m_rootsLeft = std::move(taken.left);
    if (std::ranges::all_of(m_rootsLeft, isPackage))
        std::ranges::move(std::exchange(m_foundPackages, {}), std::back_inserter(found));
    return found;
}

// Waits a moment, and takes the roots that were found meanwhile.
std::vector<WalkRoot> VolumeWalker::Walk::takeLaterRoots(RootLocator& locator) {
    if (std::chrono::steady_clock::now() >= m_deadline) leaveOutBlocked(locator);
    m_exchange.waitUntilOver(ThreadPace::interval);
    return takeRoots(locator);
}

void VolumeWalker::Walk::leaveOutBlocked(RootLocator& locator) {
    for (std::string const& root : locator.takeBlocked())
        leaveOut(root);
    for (FolderShare const& share : std::exchange(m_waiting, {}))
        leaveOut(share.path);
}

// What the roots hold that is not in the walk yet.
VolumeList VolumeWalker::Walk::listed(std::vector<WalkRoot> const& roots) {
    MountsBelow const mountsBelow = m_item ? MountsBelow::LeftOut : MountsBelow::Searched;
    // No roots are all volumes.
    VolumeList list = listVolumes(roots, m_question.roots.empty(), m_packages, mountsBelow, m_listed);
    std::ranges::copy(list.roots, std::back_inserter(m_listed));
    return list;
}

// Its volumes wait until they are given.
void VolumeWalker::Walk::add(VolumeList&& list) {
    MountPointSet const& mountPoints = m_mountPoints.emplace_back(std::move(list.mountPoints));
    if (list.failure) m_findings.addUnreadable(list.failure->item, *list.failure);
    for (std::string& package : list.packages)
        m_findings.addPackage(std::move(package));
    for (Volume& volume : list.volumes) {
        FolderShare& share = m_waiting.emplace_back();
        share.path = std::move(volume.path);
        share.isVolumeRoot = true;
        share.traits = {
            .mount = volume.mount, .linkCountTellsSubfolders = m_usesLinkCounts, .mountPoints = &mountPoints};
    }
}

// Gives the volumes that may be visited now.
void VolumeWalker::Walk::giveWaiting() {
    auto const mayBe = [](FolderShare const& share) {
        return mayBeVisited({.path = share.path, .mount = share.traits.mount});
    };
    for (FolderShare& share : taken(m_waiting, mayBe))
        m_exchange.give(std::move(share));
}

// A root that does not answer, and what earlier walks wait for, comes when it can be visited, and holds up nothing but
// roots that are packages. The workers are started here if there is such, which they need not be.
void VolumeWalker::Walk::giveVolumes(ThreadPace& pace) {
    RootLocator locator(m_question.roots, {.wasStopped = m_wasStopped, .wasLeft = m_wasLeft});
    std::vector<WalkRoot> found = firstRoots(locator);
    while (found.empty() && isAnyLeft())
        found = takeLaterRoots(locator);
    VolumeList list = found.empty() ? VolumeList() : listed(found);
    recall(list);
    add(std::move(list));
    giveWaiting();
    while (isAnyLeft()) {
        (void)haveWorkers(pace.threads());
        if (found = takeLaterRoots(locator); !found.empty()) add(listed(found));
        giveWaiting();
        pace.look(blocksReadByProcess());
    }
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
                .folderInPackages = m_folderInPackages,
                .item = m_item,
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
