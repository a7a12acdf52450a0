#include "command/Actions.h"
#include "platform/foundation/objects/KeyValueObserving.h"
#include "platform/foundation/running/Beep.h"
#include "platform/system/StandardStreams.h"
#include "platform/system/items/ItemLock.h"
#include "tests/command/CommandRun.h"
#include <csignal>
#include <filesystem>
#include <functional>
#include <sys/wait.h>
#include <utility>

namespace framekeeper::test {
namespace {

// Calls a function at each change it is told of.
struct ChangeCaller : Handle<ChangeCaller, NSObject> {
    class Body;
    using Handle::Handle;
    static ClassDescription describeClass() { return {.name = "ChangeCaller", .superclass = classOf<NSObject>()}; }
};

class ChangeCaller::Body : public ObjectBody {
public:
    void observeValueForKeyPath(NSString const&, id const&, NSDictionary const&, void*) override { function(); }
    std::function<void()> function{};
};

class CommandActions : public CommandTest {
protected:
    // The one outcome, while the function is called at each change of the controller's key.
    static Outcome outcomeOf(CommandLine const& line, NSString const& key, std::function<void()> const& function) {
        Copies const copies;
        return outcomeOf(line, copies, key, function);
    }
    static Outcome outcomeOf(CommandLine const& line, Copies const& copies, NSString const& key,
                             std::function<void()> const& function) {
        ChangeCaller const caller = adopt<ChangeCaller>();
        bodyOf(caller)->function = function;
        copies.controller().addObserver_forKeyPath_options_context_(caller, key, 0, nullptr);
        std::vector<Outcome> const outcomes = act(line, targetsOf(line), copies);
        copies.controller().removeObserver_forKeyPath_(caller, key);
        EXPECT_EQ(outcomes.size(), 1U);
        return outcomes.empty() ? Outcome{} : outcomes.front();
    }
};

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
    CommandLine const line{.verb = Verb::Trash, .paths = {home("none"), copy}};
    std::vector<Outcome> const outcomes = act(line, targetsOf(line), Copies());
    ASSERT_EQ(outcomes.size(), 2U);
    EXPECT_EQ(outcomes[0].status, Status::NoSuchCopy);
    EXPECT_EQ(outcomes[1].status, Status::Done);
    EXPECT_EQ(text(outcomes[1].path), copy);
    EXPECT_TRUE(isThere(text(outcomes[1].newPath)));
}

TEST_F(CommandActions, AreDoneAlsoIfTheListCannotBeReadAfterwards) {
    std::string const copy = copyAt("a");
    for (ListEdit const edit : {ListEdit::Add, ListEdit::Remove}) {
        int readings = 0;
        // The first reading is the one before the change.
        auto const beepLater = [&readings] {
            if (++readings > 1) NSBeep();
        };
        CommandLine const line{.verb = Verb::Login, .edit = edit, .paths = {copy}};
        EXPECT_EQ(outcomeOf(line, "isAutolaunchedPaths", beepLater).status, Status::NotShown);
        EXPECT_EQ(readings, 2);
    }
    EXPECT_EQ(run({"login", "-0"}).output, "");
}

TEST_F(CommandActions, FailIfTheRecordOfThePathIsGone) {
    std::string const copy = copyAt("a");
    for (Verb const verb : {Verb::Trash, Verb::SwapIcon, Verb::Reveal}) {
        Copies const copies;
        bool isEmptying = false;
        auto const emptyTheList = [&] {
            if (std::exchange(isEmptying, true)) return;
            copies.controller().setPaths_(NSMutableSet::set());
        };
        EXPECT_EQ(outcomeOf({.verb = verb, .paths = {copy}}, copies, "paths", emptyTheList).status, Status::Failed);
    }
    EXPECT_TRUE(isThere(copy));
}

// Another copy takes the path between the look at it and the action.
TEST_F(CommandActions, LeaveACopyAloneThatTookTheOnesPlace) {
    for (Verb const verb : {Verb::Trash, Verb::SwapIcon, Verb::Delete}) {
        std::string const copy = copyAt("a");
        CommandLine const line{.verb = verb, .paths = {copy}};
        std::vector<Target> const targets = targetsOf(line);
        std::filesystem::rename(home("a"), home("elsewhere"));
        ASSERT_EQ(copyAt("a"), copy);
        std::string const before = bytesOfFile(copy + "/Contents/Info.plist");
        std::vector<Outcome> const outcomes = act(line, targets, Copies());
        ASSERT_EQ(outcomes.size(), 1U);
        EXPECT_EQ(outcomes[0].status, Status::Failed);
        EXPECT_EQ(text(outcomes[0].reason), "another copy has taken its place");
        EXPECT_EQ(bytesOfFile(copy + "/Contents/Info.plist"), before);
        EXPECT_TRUE(isThere(home("elsewhere/Mirror Frame.app")));
        std::filesystem::remove_all(home("elsewhere"));
        std::filesystem::remove_all(home("a"));
    }
}

TEST_F(CommandActions, LeaveAnotherCopyInTheTrashThatTookTheOnesPlace) {
    std::string const copy = copyAt("a");
    CommandLine const trash{.verb = Verb::Trash, .paths = {copy}};
    std::vector<Outcome> const trashed = act(trash, targetsOf(trash), Copies());
    ASSERT_EQ(trashed.size(), 1U);
    std::string const inTrash = text(trashed[0].newPath);
    CommandLine const line{.verb = Verb::Restore, .paths = {inTrash}};
    std::vector<Target> const targets = targetsOf(line);
    std::filesystem::rename(inTrash, home("elsewhere"));
    std::filesystem::rename(copyAt("b"), inTrash);
    std::vector<Outcome> const outcomes = act(line, targets, Copies());
    ASSERT_EQ(outcomes.size(), 1U);
    EXPECT_EQ(outcomes[0].status, Status::Failed);
    EXPECT_EQ(text(outcomes[0].path), inTrash);
    EXPECT_TRUE(isThere(inTrash));
    EXPECT_FALSE(isThere(copy));
}

TEST_F(CommandActions, TellWhyTheyFailedAlsoIfANameIsNoText) {
    std::string const copy = copyAt("a");
    std::string const locked = m_desktop.folder.makeFile("home/a/Mirror Frame.app/\xff", "x");
    auto const item = mac::openItemAtPath(locked, mac::LinkAtEnd::IsNotFollowed);
    ASSERT_TRUE(item.hasValue() && mac::setLock(item.value(), mac::ItemLock::Locked).isDone());
    CommandLine const line{.verb = Verb::Delete, .paths = {copy}};
    std::vector<Outcome> const outcomes = act(line, targetsOf(line), Copies());
    ASSERT_TRUE(mac::setLock(item.value(), mac::ItemLock::Unlocked).isDone());
    ASSERT_EQ(outcomes.size(), 1U);
    EXPECT_EQ(outcomes[0].status, Status::Failed);
    EXPECT_TRUE(isThere(locked));
    ASSERT_TRUE(outcomes[0].reason != nil);
    EXPECT_NE(outcomes[0].reason.fileSystemRepresentation().value_or("").find('\xff'), std::string::npos)
        << text(outcomes[0].reason);
}

// In a process of its own, whose signals may be changed.
TEST_F(CommandActions, LeaveThePathsBehindAnInterruptionAlone) {
    std::string const first = copyAt("a");
    std::string const second = copyAt("b");
    pid_t const child = ::fork();
    if (child == 0) {
        holdInterruptions();
        ::raise(SIGINT);
        CommandLine const line{.verb = Verb::Trash, .paths = {first, second}};
        std::vector<Outcome> const outcomes = act(line, targetsOf(line), Copies());
        bool const areLeft = outcomes.size() == 2 && outcomes[0].status == Status::Interrupted &&
                             outcomes[1].status == Status::Interrupted;
        ::_exit(areLeft ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(isThere(first) && isThere(second));
}

// What the trash holds is on its way out; at the next login it may be gone.
TEST_F(CommandActions, DoNotStartACopyInTheTrashAtLogin) {
    std::string const copy = copyAt("a");
    ASSERT_EQ(run({"login", "add", copy}).status, 0);
    std::string const other = copyAt("b");
    std::string trashed = run({"trash", other}).output;
    trashed.erase(trashed.find_last_not_of('\n') + 1);
    CommandRun const done = run({"login", "add", trashed});
    EXPECT_EQ(done.status, 1);
    EXPECT_NE(done.errors.find("it is in the trash"), std::string::npos) << done.errors;
    EXPECT_EQ(run({"login", "-0"}).output, copy + '\0');
}

} // namespace
} // namespace framekeeper::test
