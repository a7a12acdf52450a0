#include "platform/desktop/session/AnsweringItems.h"
#include "platform/desktop/session/Patience.h"
#include "tests/support/RunUntil.h"
#include <atomic>
#include <condition_variable>
#include <gtest/gtest.h>
#include <mutex>
#include <set>

namespace mac::test {
namespace {

constexpr std::chrono::milliseconds ShortPatience{300};

// A file server, of which some items do not answer until it goes on.
class StoppedServer {
public:
    explicit StoppedServer(std::set<std::string> silent) : m_silent(std::move(silent)) {}

    void answer(std::string const& path) {
        ++m_asked;
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return m_hasGoneOn || !m_silent.contains(path); });
    }
    void goOn() {
        std::scoped_lock const lock(m_mutex);
        m_hasGoneOn = true;
        m_changed.notify_all();
    }
    int asked() const { return m_asked; }

private:
    std::mutex m_mutex{};
    std::condition_variable m_changed{};
    std::set<std::string> m_silent;
    bool m_hasGoneOn{false};
    std::atomic<int> m_asked{0};
};

class AnsweringItemsTest : public testing::Test {
protected:
    // Threads that are left behind keep the server.
    std::shared_ptr<StoppedServer> const m_server =
        std::make_shared<StoppedServer>(std::set<std::string>{"/silent/1", "/silent/2"});
    AnsweringItems m_items{[server = m_server](std::string const& path) { server->answer(path); }};
};

TEST_F(AnsweringItemsTest, MayBeReadUnlessTheyWereAskedInVain) {
    Patience const patience(ShortPatience);
    m_items.ask({"/silent/1", "/a", "/silent/2", "/b", "/b"});
    EXPECT_FALSE(m_items.isSilent("/a"));
    EXPECT_FALSE(m_items.isSilent("/b")) << "others are asked beside a silent one";
    EXPECT_TRUE(m_items.mayRead("/b"));
    EXPECT_TRUE(m_items.mayRead("/never asked for"));
    EXPECT_TRUE(m_items.isSilent("/silent/1"));
    EXPECT_FALSE(m_items.mayRead("/silent/2"));
    m_server->goOn();
    EXPECT_TRUE(runUntil([this] { return !m_items.isSilent("/silent/1") && !m_items.isSilent("/silent/2"); }));
}

TEST_F(AnsweringItemsTest, AreNeitherAskedNorWaitedForAgainWhileTheyAreSilent) {
    Patience const patience(ShortPatience);
    m_items.ask({"/silent/1"});
    EXPECT_EQ(Patience::left(), std::chrono::milliseconds::zero()) << "the patience is for all that is waited for";
    m_items.ask({"/silent/1"});
    EXPECT_FALSE(m_items.mayRead("/silent/1"));
    EXPECT_EQ(m_server->asked(), 1);
    m_server->goOn();
    EXPECT_TRUE(runUntil([this] { return !m_items.isSilent("/silent/1"); }));
    EXPECT_EQ(m_server->asked(), 1);
}

TEST_F(AnsweringItemsTest, TellOnceThatTheyHaveAnsweredAfterAll) {
    int told = 0;
    {
        Patience const patience(ShortPatience);
        m_items.ask({"/silent/1", "/a"}, [&told] { ++told; });
    }
    EXPECT_EQ(told, 0);
    m_server->goOn();
    EXPECT_TRUE(runUntil([&told] { return told > 0; }));
    EXPECT_TRUE(m_items.mayRead("/silent/1"));
    EXPECT_EQ(told, 1);
}

TEST_F(AnsweringItemsTest, AreAskedAgainBeforeTheyAreReadOnceTheyHaveAnswered) {
    m_items.ask({"/a"});
    EXPECT_TRUE(m_items.mayRead("/a"));
    EXPECT_EQ(m_server->asked(), 2);
}

TEST(AnsweringItemsOfTheSystem, AnswerWhetherTheyExistOrNot) {
    AnsweringItems items;
    items.ask({"/", "/missing", ""});
    for (char const* const path : {"/", "/missing", ""})
        EXPECT_TRUE(items.mayRead(path)) << path;
}

} // namespace
} // namespace mac::test
