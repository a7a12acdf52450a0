#include "platform/foundation/running/BackgroundWork.h"
#include "platform/foundation/running/Log.h"
#include "tests/support/RunUntil.h"
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

namespace mac::test {
namespace {

TEST(BackgroundWork, TellsItsEndBehindItsResults) {
    std::vector<std::string> told;
    BackgroundWork const work(
        [&told](std::stop_token const&, BackgroundWork::Tell const& tell) {
            tell([&told] { told.emplace_back("result"); });
        },
        [&told] { told.emplace_back("end"); });
    EXPECT_TRUE(runUntil([&] { return told.size() == 2; }));
    EXPECT_EQ(told, (std::vector<std::string>{"result", "end"}));
}

TEST(BackgroundWork, TellsItsEndByAnException) {
    LogListener const quiet([](NSString const&) {});
    bool hasEnded = false;
    BackgroundWork const work(
        [](std::stop_token const&, BackgroundWork::Tell const&) { throw std::runtime_error("no more"); },
        [&hasEnded] { hasEnded = true; });
    EXPECT_TRUE(runUntil([&] { return hasEnded; }));
}

TEST(BackgroundWork, TellsNothingOnceItIsStopped) {
    bool isTold = false;
    auto const begun = std::make_shared<std::mutex>();
    begun->lock();
    auto work = std::make_unique<BackgroundWork>(
        [begun, &isTold](std::stop_token const&, BackgroundWork::Tell const& tell) {
            std::lock_guard const waiting(*begun);
            tell([&isTold] { isTold = true; });
        },
        [&isTold] { isTold = true; });
    work.reset();
    begun->unlock();
    // Works that begin later and end tell the main run loop behind what the stopped one could have told.
    bool hasOtherEnded = false;
    BackgroundWork const other(
        [begun](std::stop_token const&, BackgroundWork::Tell const&) { std::lock_guard const waiting(*begun); },
        [&hasOtherEnded] { hasOtherEnded = true; });
    EXPECT_TRUE(runUntil([&] { return hasOtherEnded; }));
    EXPECT_FALSE(isTold);
}

} // namespace
} // namespace mac::test
