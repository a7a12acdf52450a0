#include "command/Actions.h"
#include "platform/system/StandardStreams.h"
#include "tests/command/CommandRun.h"
#include <csignal>
#include <sys/wait.h>

namespace framekeeper::test {
namespace {

class CommandActions : public CommandTest {};

TEST(CommandActionTable, KnowsWhichVerbsChangeSomething) {
    EXPECT_TRUE(isAction({.verb = Verb::Trash}));
    EXPECT_TRUE(isAction({.verb = Verb::Login, .edit = ListEdit::Add}));
    EXPECT_TRUE(isAction({.verb = Verb::Places, .edit = ListEdit::Remove}));
    EXPECT_FALSE(isAction({.verb = Verb::List}));
    EXPECT_FALSE(isAction({.verb = Verb::Info}));
    EXPECT_FALSE(isAction({.verb = Verb::Login}));
    EXPECT_FALSE(isAction({.verb = Verb::Places}));
}

TEST_F(CommandActions, AnswerOneOutcomeForEachPathInOrder) {
    std::string const copy = copyAt("a");
    std::vector<Outcome> const outcomes = act({.verb = Verb::Trash, .paths = {home("none"), copy}}, Copies());
    ASSERT_EQ(outcomes.size(), 2U);
    EXPECT_EQ(outcomes[0].status, Status::NoSuchCopy);
    EXPECT_EQ(outcomes[1].status, Status::Done);
    EXPECT_EQ(text(outcomes[1].path), copy);
    EXPECT_TRUE(isThere(text(outcomes[1].newPath)));
}

// In a process of its own, whose signals may be changed.
TEST_F(CommandActions, LeaveThePathsBehindAnInterruptionAlone) {
    std::string const first = copyAt("a");
    std::string const second = copyAt("b");
    pid_t const child = ::fork();
    if (child == 0) {
        holdInterruptions();
        ::raise(SIGINT);
        std::vector<Outcome> const outcomes = act({.verb = Verb::Trash, .paths = {first, second}}, Copies());
        bool const areLeft = outcomes.size() == 2 && outcomes[0].status == Status::Interrupted &&
                             outcomes[1].status == Status::Interrupted;
        ::_exit(areLeft ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(isThere(first) && isThere(second));
}

} // namespace
} // namespace framekeeper::test
