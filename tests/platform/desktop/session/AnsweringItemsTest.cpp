#include "platform/desktop/session/AnsweringItems.h"
#include "platform/desktop/session/Patience.h"
#include "tests/support/RunUntil.h"
#include <atomic>
#include <condition_variable>
#include <gtest/gtest.h>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace mac::test {
namespace {

// Enough for the items that do answer, also on a busy computer; the others are waited for that long.
constexpr std::chrono::milliseconds AmplePatience{2'000};

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
    void stop() {
        std::scoped_lock const lock(m_mutex);
        m_hasGoneOn = false;
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

    // An item that answers may miss its glance on a busy computer, but not always.
    bool comesToBeRead(std::string const& path) {
        return runUntil([this, &path] { return m_items.mayRead(path); });
    }
};

std::vector<std::string> pathsOfRows(int count) {
    std::vector<std::string> paths;
    paths.reserve(static_cast<std::size_t>(count));
    for (int row = 0; row < count; ++row)
        paths.push_back("/row/" + std::to_string(row));
    return paths;
}

// A server of which all those items do not answer.
std::shared_ptr<StoppedServer> serverOf(std::vector<std::string> const& silent) {
    return std::make_shared<StoppedServer>(std::set<std::string>(silent.begin(), silent.end()));
}

TEST_F(AnsweringItemsTest, MayBeReadUnlessTheyWereAskedInVain) {
    {
        Patience const patience(AmplePatience);
        m_items.ask({"/silent/1", "/a", "/silent/2", "/b", "/b"});
    }
    EXPECT_TRUE(runUntil([this] { return !m_items.isSilent("/a"); }));
    EXPECT_TRUE(runUntil([this] { return !m_items.isSilent("/b"); })) << "others are asked beside a silent one";
    EXPECT_TRUE(comesToBeRead("/b"));
    EXPECT_TRUE(m_items.mayRead("/never asked for"));
    EXPECT_TRUE(m_items.isSilent("/silent/1"));
    EXPECT_FALSE(m_items.mayRead("/silent/2"));
    m_server->goOn();
    EXPECT_TRUE(runUntil([this] { return !m_items.isSilent("/silent/1") && !m_items.isSilent("/silent/2"); }));
}

TEST_F(AnsweringItemsTest, AreNeitherAskedNorWaitedForAgainWhileTheyAreSilent) {
    Patience const patience(AmplePatience);
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
        Patience const patience(AmplePatience);
        m_items.ask({"/silent/1", "/a"}, [&told] { ++told; });
    }
    EXPECT_EQ(told, 0);
    m_server->goOn();
    EXPECT_TRUE(runUntil([&told] { return told > 0; }));
    EXPECT_TRUE(comesToBeRead("/silent/1"));
    EXPECT_EQ(told, 1);
}

TEST_F(AnsweringItemsTest, AreAskedAgainBeforeTheyAreReadOnceTheyHaveAnswered) {
    m_items.ask({"/a"});
    EXPECT_TRUE(comesToBeRead("/a"));
    EXPECT_GE(m_server->asked(), 2);
}

TEST_F(AnsweringItemsTest, AreForgottenWhenManyOthersCameButNotWhileTheyAreSilent) {
    {
        Patience const patience(AmplePatience);
        m_items.ask({"/silent/1", "/a"});
    }
    std::vector<std::string> const others = pathsOfRows(AnsweringItems::MostAnswered);
    Patience const patience(std::chrono::minutes(5));
    m_items.ask(others);
    m_items.ask(others);
    int const asked = m_server->asked();
    EXPECT_TRUE(m_items.mayRead("/a"));
    EXPECT_EQ(m_server->asked(), asked);
    EXPECT_TRUE(comesToBeRead(others.front())) << "the last list is known";
    EXPECT_GT(m_server->asked(), asked);
    EXPECT_TRUE(m_items.isSilent("/silent/1"));
    m_server->goOn();
    EXPECT_TRUE(runUntil([this] { return !m_items.isSilent("/silent/1"); }));
}

TEST_F(AnsweringItemsTest, TellOnlyThoseWhoDidWithoutTheAnswer) {
    int told = 0;
    auto const tell = [&told] { ++told; };
    m_server->goOn();
    m_items.ask({"/silent/1"}, tell);
    m_server->stop();
    EXPECT_FALSE(m_items.mayRead("/silent/1"));
    m_server->goOn();
    EXPECT_TRUE(runUntil([this] { return !m_items.isSilent("/silent/1"); }));
    EXPECT_EQ(told, 0) << "a missed glance alone changes nothing";
    m_server->stop();
    EXPECT_FALSE(m_items.mayRead("/silent/1"));
    m_items.ask({"/silent/1"}, tell);
    m_server->goOn();
    EXPECT_TRUE(runUntil([&told] { return told > 0; }));
    EXPECT_EQ(told, 1);
}

TEST(AnsweringItems, AreAllAskedHoweverManyDoNotAnswer) {
    std::vector<std::string> paths = pathsOfRows(30);
    std::vector<std::string> const silent = paths;
    paths.emplace_back("/answers");
    // On a busy computer the last may be asked too late, but not always.
    bool isLastAsked = false;
    for (int round = 0; round < 10 && !isLastAsked; ++round) {
        std::shared_ptr<StoppedServer> const server = serverOf(silent);
        AnsweringItems items{[server](std::string const& path) { server->answer(path); }};
        {
            Patience const patience(AmplePatience);
            items.ask(paths);
        }
        EXPECT_TRUE(items.isSilent("/row/29"));
        isLastAsked = !items.isSilent("/answers");
        server->goOn();
    }
    EXPECT_TRUE(isLastAsked);
}

TEST(AnsweringItems, OfOneVolumeAreNotWaitedForOneAfterAnother) {
    std::vector<std::string> const paths = pathsOfRows(25);
    // On a busy computer the glances may take long for other reasons, but not always.
    bool isShort = false;
    for (int round = 0; round < 10 && !isShort; ++round) {
        std::shared_ptr<StoppedServer> const server = serverOf(paths);
        AnsweringItems items{[server](std::string const& path) { server->answer(path); }};
        server->goOn();
        items.ask(paths);
        server->stop();
        Patience const patience(AnsweringItems::Glance * 25);
        for (std::string const& path : paths)
            EXPECT_FALSE(items.mayRead(path));
        isShort = Patience::left() > std::chrono::milliseconds::zero();
        server->goOn();
    }
    EXPECT_TRUE(isShort) << "a glance is part of a patience, and short";
}

TEST(AnsweringItemsOfTheSystem, AnswerWhetherTheyExistOrNot) {
    AnsweringItems items;
    items.ask({"/", "/missing", ""});
    for (char const* const path : {"/", "/missing", ""})
        EXPECT_TRUE(runUntil([&] { return items.mayRead(path); })) << path;
}

} // namespace
} // namespace mac::test
