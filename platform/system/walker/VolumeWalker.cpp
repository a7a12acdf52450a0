#include "platform/system/walker/VolumeWalker.h"

#include "platform/system/walker/DescriptorBudget.h"
#include "platform/system/walker/PackageRule.h"
#include "platform/system/walker/ThreadPace.h"
#include "platform/system/walker/VolumeList.h"
#include "platform/system/walker/WalkFindings.h"
#include "platform/system/walker/WalkWorker.h"
#include "platform/system/walker/WorkExchange.h"

#include <csignal>
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

// One thread, the leader, lists the volumes, starts the workers, adds to them while the disk is read, and tells when
// all have ended.
class VolumeWalker::Walk {
public:
    Walk(VolumeWalkRequest&& request, std::function<void()>&& onNews)
        : m_roots(std::move(request.roots)), m_packages(std::move(request.packageSuffix), std::move(request.names)),
          m_item(std::move(request.item)), m_usesLinkCounts(request.usesLinkCounts && (!m_item || m_item->isFolder)),
          m_findings(std::move(onNews)) {}

    bool start();
    void stop();
    WalkFindings& findings() { return m_findings; }

private:
    void lead();
    void giveVolumes();
    bool haveWorkers(unsigned count);
    void work();

    std::vector<std::string> const m_roots;
    PackageRule const m_packages;
    std::optional<SoughtItem> const m_item;
    bool const m_usesLinkCounts;
    DescriptorBudget const m_budget = DescriptorBudget::current();
    WalkFindings m_findings;
    WorkExchange m_exchange;
    MountPointSet m_mountPoints;
    std::vector<std::thread> m_workers;
    std::thread m_leader;
    std::atomic<bool> m_wasStopped = false;
};

bool VolumeWalker::Walk::start() {
    if (m_leader.joinable() || m_wasStopped) return false;
    SignalsForOtherThreads const signals;
    try {
        m_leader = std::thread([this] { lead(); });
    } catch (std::system_error const&) {
        return false;
    }
    return true;
}

void VolumeWalker::Walk::stop() {
    m_wasStopped = true;
    m_exchange.close();
    if (m_leader.joinable()) m_leader.join();
}

void VolumeWalker::Walk::lead() {
    giveVolumes();
    ThreadPace pace(std::thread::hardware_concurrency(), m_budget.threads, blocksReadByProcess());
    while (haveWorkers(pace.threads()) && pace.canGrow() && !m_exchange.waitUntilOver(ThreadPace::interval))
        pace.look(blocksReadByProcess());
    if (m_workers.empty()) work();
    for (std::thread& worker : m_workers)
        worker.join();
    if (!m_wasStopped) m_findings.finish();
}

void VolumeWalker::Walk::giveVolumes() {
    VolumeList list = listVolumes(m_roots, m_packages, m_item ? MountsBelow::LeftOut : MountsBelow::Searched);
    m_mountPoints = std::move(list.mountPoints);
    for (SystemError const& failure : list.failures)
        m_findings.addUnreadable(failure.item, failure);
    for (std::string& package : list.packages)
        m_findings.addPackage(std::move(package));
    for (Volume& volume : list.volumes) {
        FolderShare share;
        share.path = std::move(volume.path);
        share.isVolumeRoot = true;
        share.traits.mount = volume.mount;
        share.traits.linkCountTellsSubfolders = m_usesLinkCounts;
        m_exchange.give(std::move(share));
    }
}

// False when there are fewer and there will be no more.
bool VolumeWalker::Walk::haveWorkers(unsigned count) {
    while (m_workers.size() < count) {
        if (!m_exchange.enroll()) return false;
        try {
            m_workers.emplace_back([this] { work(); });
        } catch (std::system_error const&) {
            if (!m_workers.empty()) m_exchange.withdraw(); // else the leader works in its place
            return false;
        }
    }
    return true;
}

void VolumeWalker::Walk::work() {
    WalkWorker({m_exchange, m_findings, m_packages, m_item, m_mountPoints}, m_budget.foldersPerThread).run();
}

VolumeWalker::VolumeWalker(VolumeWalkRequest request, std::function<void()> onNews)
    : m_walk(std::make_unique<Walk>(std::move(request), std::move(onNews))) {}

VolumeWalker::~VolumeWalker() { stop(); }

bool VolumeWalker::start() { return m_walk->start(); }

void VolumeWalker::stop() { m_walk->stop(); }

std::vector<std::string> VolumeWalker::takeFound() { return m_walk->findings().take(); }

VolumeWalkProgress VolumeWalker::progress() const { return m_walk->findings().progress(); }

} // namespace mac
