#include "platform/desktop/session/AnsweringItems.h"
#include "platform/desktop/session/Patience.h"
#include "platform/foundation/running/Log.h"
#include "platform/foundation/running/NSRunLoop.h"
#include <algorithm>
#include <condition_variable>
#include <fcntl.h>
#include <map>
#include <mutex>
#include <set>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <utility>

namespace mac {

namespace {

// A thread that has no answer for so long, or sooner if there are many items, gets another one beside it, which goes on
// with the next item.
constexpr std::chrono::milliseconds Hesitation{100};
// How long it waits for an item beside others that have just missed their glance, and for one to be read at a glance
// once the thread's patience is over. An item on a volume of the computer's own answers sooner.
constexpr std::chrono::milliseconds Moment{10};

} // namespace

// Only the main thread touches it.
struct AnsweringItems::Known {
    struct Item {
        bool isSilent{false};
        // Something was made without the item's answer.
        bool isAwaited{false};
        std::function<void()> answeredLate{};
    };

    void hasAnswered(std::string const& path) {
        auto const found = items.find(path);
        if (found == items.end() || !found->second.isSilent) return;
        found->second.isSilent = false;
        if (!std::exchange(found->second.isAwaited, false)) return;
        std::function<void()> const answeredLate = found->second.answeredLate;
        if (answeredLate) answeredLate();
    }

    Question question;
    // Those that were asked for, by path.
    std::map<std::string, Item> items;
    // An item has missed its glance in this turn of the run loop. Many items of one volume may be drawn in a turn.
    bool hasMissedGlance{false};
};

namespace {

// Items that are asked for together.
class Round : public std::enable_shared_from_this<Round> {
public:
    // The last function is called in any thread, with a path that answered after the round was given up.
    Round(std::vector<std::string> paths, AnsweringItems::Question question,
          std::function<void(std::string const&)> answeredLate)
        : m_paths(std::move(paths)), m_hasAnswered(m_paths.size(), false), m_question(std::move(question)),
          m_answeredLate(std::move(answeredLate)) {}

    // Answers which items have not answered within the time. The threads go on with them.
    std::vector<std::string> silentAfter(std::chrono::milliseconds longest) {
        auto const end = std::chrono::steady_clock::now() + longest;
        // Each item is asked within half of the time, even if none before it answers.
        auto const share = longest / static_cast<std::chrono::milliseconds::rep>(2 * m_paths.size() + 1);
        auto const hesitation = std::clamp(share, std::chrono::milliseconds(1), Hesitation);
        std::unique_lock lock(m_mutex);
        while (m_answered < m_paths.size() && std::chrono::steady_clock::now() < end) {
            if (m_begun < m_paths.size()) startThread();
            // Without threads the items are read unasked.
            if (m_threads == 0) return {};
            auto const pause = std::min(end, std::chrono::steady_clock::now() + hesitation);
            m_changed.wait_until(lock, pause, [this] { return m_answered == m_paths.size(); });
        }
        m_isGivenUp = true;
        std::vector<std::string> silent;
        for (std::size_t index = 0; index < m_paths.size(); ++index) {
            if (!m_hasAnswered[index]) silent.push_back(m_paths[index]);
        }
        return silent;
    }

private:
    void startThread() {
        try {
            std::thread([round = shared_from_this()] { round->run(); }).detach();
            ++m_threads;
        } catch (std::system_error const& error) {
            NSLog("No thread could be started: %s", error.what());
        }
    }

    void run() {
        std::unique_lock lock(m_mutex);
        while (m_begun < m_paths.size()) {
            std::size_t const index = m_begun++;
            lock.unlock();
            m_question(m_paths[index]);
            lock.lock();
            m_hasAnswered[index] = true;
            ++m_answered;
            m_changed.notify_one();
            if (m_isGivenUp) m_answeredLate(m_paths[index]);
        }
    }

    std::vector<std::string> const m_paths;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<bool> m_hasAnswered;
    std::size_t m_threads{0};
    std::size_t m_begun{0};
    std::size_t m_answered{0};
    bool m_isGivenUp{false};
    AnsweringItems::Question const m_question;
    std::function<void(std::string const&)> const m_answeredLate;
};

// The server is asked even if the kernel remembers what it last said.
void askForStatus(std::string const& path) {
    struct statx status {};
    ::statx(AT_FDCWD, path.c_str(), AT_STATX_FORCE_SYNC, STATX_TYPE, &status);
}

NSString shownPath(std::string const& path) { return NSString::stringWithFileSystemRepresentation_(path); }

} // namespace

AnsweringItems::AnsweringItems(Question question) : m_known(std::make_shared<Known>()) {
    m_known->question = question ? std::move(question) : Question(askForStatus);
}

AnsweringItems::~AnsweringItems() = default;

std::shared_ptr<AnsweringItems> const& AnsweringItems::shared() {
    // Never destroyed: threads may be left behind when the program ends.
    static std::shared_ptr<AnsweringItems> const& items =
        *std::make_unique<std::shared_ptr<AnsweringItems>>(std::make_shared<AnsweringItems>()).release();
    return items;
}

void AnsweringItems::ask(std::vector<std::string> const& paths, std::function<void()> const& answeredLate) {
    if (m_known->items.size() > MostAnswered) forgetAllBut(paths);
    askFor(paths, std::max(Patience::left(), Hesitation));
    if (!answeredLate) return;
    for (std::string const& path : paths) {
        Known::Item& item = m_known->items[path];
        item.answeredLate = answeredLate;
        item.isAwaited = item.isSilent;
    }
}

void AnsweringItems::forgetAllBut(std::vector<std::string> const& paths) {
    std::set<std::string_view> const kept(paths.begin(), paths.end());
    std::erase_if(m_known->items,
                  [&](auto const& entry) { return !entry.second.isSilent && !kept.contains(entry.first); });
}

void AnsweringItems::askFor(std::vector<std::string> const& paths, std::chrono::milliseconds longest) {
    std::vector<std::string> asked;
    std::set<std::string> seen;
    for (std::string const& path : paths) {
        if (seen.insert(path).second && !m_known->items[path].isSilent) asked.push_back(path);
    }
    if (asked.empty()) return;
    auto const late = [known = std::weak_ptr(m_known)](std::string const& path) {
        performOnMainRunLoop([known, path] {
            if (std::shared_ptr<Known> const alive = known.lock()) alive->hasAnswered(path);
        });
    };
    auto const round = std::make_shared<Round>(std::move(asked), m_known->question, late);
    for (std::string const& path : round->silentAfter(longest)) {
        m_known->items[path].isSilent = true;
        NSLog("No answer yet from “%@”.", shownPath(path));
    }
}

bool AnsweringItems::isSilent(std::string const& path) const {
    auto const found = m_known->items.find(path);
    return found != m_known->items.end() && found->second.isSilent;
}

bool AnsweringItems::mayRead(std::string const& path) {
    auto const found = m_known->items.find(path);
    if (found == m_known->items.end()) return true;
    if (found->second.isSilent) return false;
    std::chrono::milliseconds const glance = m_known->hasMissedGlance ? Moment : Glance;
    askFor({path}, std::max(std::min(Patience::left(), glance), Moment));
    if (!found->second.isSilent) return true;
    if (!std::exchange(m_known->hasMissedGlance, true)) {
        performOnMainRunLoop([known = std::weak_ptr(m_known)] {
            if (std::shared_ptr<Known> const alive = known.lock()) alive->hasMissedGlance = false;
        });
    }
    return false;
}

} // namespace mac
