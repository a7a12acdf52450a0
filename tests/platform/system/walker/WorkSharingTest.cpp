#include "platform/system/LongPath.h"
#include "platform/system/walker/FolderStack.h"
#include "platform/system/walker/WorkExchange.h"
#include "tests/support/Failures.h"
#include "tests/support/TemporaryFolder.h"
#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace mac::test {

namespace {

using Names = std::vector<std::string>;

FolderShare shareAt(std::string const& path) {
    FolderShare share;
    share.path = path;
    share.state.folder = openPath(path, O_RDONLY | O_DIRECTORY).takeValue();
    return share;
}

FolderIdentity identityOf(FileDescriptor const& folder) { return factsOf(folder).value().identity(); }

Names namesIn(FolderShare const& share) {
    Names names;
    for (std::size_t start = 0; start < share.names.size(); start += FolderStack::placeBytes + names.back().size() + 1)
        names.emplace_back(share.names.c_str() + start + FolderStack::placeBytes);
    return names;
}

Names restOf(FolderStack& stack) {
    Names names;
    for (WaitingName waiting = stack.nextName(); waiting.name != nullptr; waiting = stack.nextName())
        names.emplace_back(waiting.name);
    return names;
}

// A stack in the top folder of a few, with the given names to visit.
void fill(FolderStack& stack, std::string const& path, Names const& names) {
    stack.begin(shareAt(path));
    for (std::string const& name : names)
        stack.addName(name);
    stack.top().isRead = true;
}

void push(FolderStack& stack, std::string const& name) {
    FolderState state;
    state.folder = openFolderIn(stack.top().folder, name.c_str()).takeValue();
    stack.push(name, std::move(state));
}

} // namespace

TEST(FolderStack, GoesThroughTheNamesOfItsTopFolder) {
    TemporaryFolder const folder;
    folder.makeFolder("a");
    FolderStack stack(8);
    fill(stack, folder.path(), {"a", "b"});
    EXPECT_STREQ(stack.nextName().name, "a");
    push(stack, "a");
    EXPECT_EQ(stack.path(), folder.path("a"));
    EXPECT_EQ(stack.nextName().name, nullptr);
    stack.addName("deeper");
    EXPECT_EQ(restOf(stack), (Names{"deeper"}));
    stack.pop();
    EXPECT_EQ(stack.path(), folder.path());
    EXPECT_EQ(restOf(stack), (Names{"b"}));
    stack.pop();
    EXPECT_TRUE(stack.isEmpty());
}

TEST(FolderStack, SplitsOffTheUppermostFolderThatHasWork) {
    TemporaryFolder const folder;
    folder.makeFolder("a/b");
    FolderStack stack(8);
    fill(stack, folder.path(), {"a"});
    restOf(stack);
    push(stack, "a");
    stack.addName("b");
    stack.addName("c");
    stack.addName("d");
    stack.top().isRead = true;
    EXPECT_STREQ(stack.nextName().name, "b");
    push(stack, "b");
    std::optional<FolderShare> const share = stack.split({.mount = 7, .linkCountTellsSubfolders = true});
    ASSERT_TRUE(share);
    EXPECT_EQ(share->path, folder.path("a"));
    EXPECT_EQ(namesIn(*share), (Names{"c", "d"}));
    EXPECT_TRUE(share->state.folder.isOpen());
    EXPECT_EQ(share->traits.mount, 7U);
    stack.pop();
    EXPECT_EQ(restOf(stack), Names());
    EXPECT_TRUE(stack.top().isRead);
}

struct Split {
    Names names;
    Names kept;
    Names given; // empty: nothing is given
};

void PrintTo(Split const& split, std::ostream* stream) { *stream << testing::PrintToString(split.names); }

class Splits : public testing::TestWithParam<Split> {};

TEST_P(Splits, HalveTheNamesOfTheOnlyFolder) {
    TemporaryFolder const folder;
    FolderStack stack(8);
    fill(stack, folder.path(), GetParam().names);
    std::optional<FolderShare> const share = stack.split({});
    EXPECT_EQ(share.has_value(), !GetParam().given.empty());
    if (share) {
        EXPECT_EQ(namesIn(*share), GetParam().given);
        EXPECT_EQ(identityOf(share->state.folder), identityOf(stack.top().folder));
        EXPECT_TRUE(share->state.isRead);
    }
    EXPECT_EQ(restOf(stack), GetParam().kept);
}

INSTANTIATE_TEST_SUITE_P(FolderStack, Splits,
                         testing::Values(Split{{}, {}, {}}, Split{{"a"}, {"a"}, {}}, Split{{"a", "b"}, {"a"}, {"b"}},
                                         Split{{"a", "b", "c", "d"}, {"a", "b"}, {"c", "d"}},
                                         Split{{"long name", "b"}, {"long name"}, {"b"}},
                                         Split{{"a", "long name"}, {"a"}, {"long name"}}));

TEST(FolderStack, GivesUpDescriptorsBeyondItsLimitAndOpensThemAgain) {
    TemporaryFolder const folder;
    folder.makeFolder("a/b/c");
    FolderStack stack(2);
    fill(stack, folder.path(), {});
    stack.top().isRead = false;
    FolderIdentity const root = identityOf(stack.top().folder);
    for (char const* name : {"a", "b", "c"})
        push(stack, name);
    for (int i = 0; i < 3; ++i)
        stack.pop();
    EXPECT_FALSE(stack.top().folder.isOpen());
    ASSERT_TRUE(stack.openTop().isDone());
    EXPECT_EQ(identityOf(stack.top().folder), root);
}

TEST(FolderStack, DoesNotTakeAnotherFolderForTheOneItGaveUp) {
    TemporaryFolder const folder;
    folder.makeFolder("a/b/c");
    FolderStack stack(1);
    fill(stack, folder.path(), {});
    push(stack, "a");
    push(stack, "b");
    ASSERT_EQ(::rename(folder.path("a").c_str(), folder.path("kept").c_str()), 0);
    folder.makeFolder("a");
    stack.pop();
    EXPECT_EQ(codeOf(stack.openTop()), ESTALE);
    ASSERT_EQ(::rmdir(folder.path("a").c_str()), 0);
    EXPECT_EQ(codeOf(stack.openTop()), ENOENT);
}

TEST(WorkExchange, IsOverWhenAllWaitAndNothingIsLeft) {
    WorkExchange exchange;
    ASSERT_TRUE(exchange.enroll());
    exchange.give(shareAt("/"));
    EXPECT_EQ(exchange.receive()->path, "/");
    EXPECT_FALSE(exchange.isOver());
    EXPECT_EQ(exchange.receive(), std::nullopt);
    EXPECT_TRUE(exchange.isOver());
    EXPECT_FALSE(exchange.enroll());
}

TEST(WorkExchange, HandsEachShareToOneThread) {
    WorkExchange exchange;
    ASSERT_TRUE(exchange.enroll());
    ASSERT_TRUE(exchange.enroll());
    std::atomic<int> received = 0;
    auto const receiveAll = [&exchange, &received] {
        while (exchange.receive())
            ++received;
    };
    std::thread other(receiveAll);
    while (!exchange.isHungry())
        std::this_thread::yield();
    for (int i = 0; i < 100; ++i)
        exchange.give(shareAt("/"));
    receiveAll();
    other.join();
    EXPECT_EQ(received, 100);
}

TEST(WorkExchange, EndsWhenTheLastThatDoesNotWaitWithdraws) {
    WorkExchange exchange;
    ASSERT_TRUE(exchange.enroll());
    ASSERT_TRUE(exchange.enroll());
    std::thread other([&exchange] { EXPECT_EQ(exchange.receive(), std::nullopt); });
    while (!exchange.isHungry())
        std::this_thread::yield();
    exchange.withdraw();
    other.join();
    EXPECT_TRUE(exchange.isOver());
}

TEST(WorkExchange, EndsForAllWhenItIsClosed) {
    WorkExchange exchange;
    ASSERT_TRUE(exchange.enroll());
    exchange.give(shareAt("/"));
    exchange.close();
    EXPECT_EQ(exchange.receive(), std::nullopt);
    EXPECT_TRUE(exchange.waitUntilOver(std::chrono::milliseconds(0)));
}

} // namespace mac::test
