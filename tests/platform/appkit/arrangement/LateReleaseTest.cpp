#include "platform/appkit/arrangement/LateRelease.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/objects/Weak.h"
#include "tests/platform/appkit/interface/LoadedWindow.h"
#include <QEventLoop>
#include <gtest/gtest.h>

namespace mac::test {
namespace {

constexpr int Many = 20'000;
constexpr int Few = 20;

std::vector<id> objects(int count) {
    std::vector<id> made;
    made.reserve(static_cast<std::size_t>(count));
    for (int index = 0; index < count; ++index)
        made.push_back(NSMutableArray::array());
    return made;
}

TEST(LateRelease, LetsGoOfManyObjectsWhileTheEventLoopHasNothingElseToDo) {
    needApplication();
    LateRelease release;
    std::vector<id> made = objects(Many);
    WeakReference const first(made.front());
    QEventLoop loop;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &loop, [&] {
        if (release.isEmpty()) loop.quit();
    });
    QTimer::singleShot(0, &loop, [&] {
        release.add(std::move(made));
        EXPECT_FALSE(first.isCleared());
        watch.start();
    });
    loop.exec();
    EXPECT_TRUE(first.isCleared());
}

TEST(LateRelease, LetsGoOfTheRestWhenItGoesItself) {
    needApplication();
    WeakReference first;
    QEventLoop loop;
    QTimer::singleShot(0, &loop, [&] {
        LateRelease release;
        std::vector<id> made = objects(Many);
        first = made.front();
        release.add(std::move(made));
        loop.quit();
    });
    loop.exec();
    EXPECT_TRUE(first.isCleared());
}

TEST(LateRelease, LetsGoOfFewObjectsAtOnce) {
    needApplication();
    LateRelease release;
    std::vector<id> made = objects(Few);
    WeakReference const first(made.front());
    QEventLoop loop;
    QTimer::singleShot(0, &loop, [&] {
        release.add(std::move(made));
        EXPECT_TRUE(first.isCleared());
        loop.quit();
    });
    loop.exec();
}

TEST(LateRelease, LetsGoOfAllAtOnceWhileNoEventLoopRuns) {
    LateRelease release;
    std::vector<id> made = objects(Many);
    WeakReference const first(made.front());
    release.add(std::move(made));
    EXPECT_TRUE(first.isCleared());
    EXPECT_TRUE(release.isEmpty());
}

} // namespace
} // namespace mac::test
