#include "tests/faults/KnownBreaks.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <iostream>
#include <optional>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>

namespace mac::faults {
namespace {

// One point of so many, which takes less than a minute under the sanitizers.
constexpr unsigned Stride = 150;

// A folder in memory; in the temporary folder where this process may not mount.
class Volume {
public:
    Volume() : m_isMounted(isPrivate() && ::mount("memory", m_point.path().c_str(), "tmpfs", 0, nullptr) == 0) {}
    ~Volume() {
        if (m_isMounted) ::umount2(m_point.path().c_str(), MNT_DETACH);
    }
    Volume(Volume const&) = delete;
    Volume& operator=(Volume const&) = delete;

    bool isMounted() const { return m_isMounted; }
    std::string const& path() const { return m_point.path(); }

private:
    static bool isPrivate() {
        static bool const is =
            ::unshare(CLONE_NEWNS) == 0 && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
        return is;
    }

    test::TemporaryFolder m_point{};
    bool m_isMounted;
};

class Faults : public testing::Test {
protected:
    Volume const m_first{};
    Volume const m_second{};
    Fixture const m_fixture{m_first.path(), m_second.isMounted() ? std::optional(m_second.path()) : std::nullopt};
};

// The same part of the points in each run, so that a change is what makes it fail; FRAMEKEEPER_FAULT_SEED chooses
// another.
std::uint64_t chosenSeed() {
    constexpr std::uint64_t usual = 20261122;
    char const* const text = std::getenv("FRAMEKEEPER_FAULT_SEED");
    return text ? std::strtoull(text, nullptr, 10) : usual;
}

TEST_F(Faults, BreakNoPromise) {
    std::uint64_t const seed = chosenSeed();
    std::cout << "seed " << seed << ", one point of " << Stride
              << (m_second.isMounted() ? "" : "; left out: operations on two volumes, for want of mounts") << '\n';
    Campaign campaign(m_fixture, {.stride = Stride,
                                  .seed = seed,
                                  .volumes = {faults::Volume::Ordinary, faults::Volume::WithoutExclusiveRename}});
    for (Operation const& operation : allOperations())
        EXPECT_NO_THROW(campaign.run(operation)) << operation.name;
    Counts const& counts = campaign.counts();
    std::cout << counts.faults << " faults, " << counts.kills << " kills, " << counts.exchanges << " exchanges, "
              << counts.prefixes << " prefixes\n";
    EXPECT_GT(counts.faults, 0U);
    EXPECT_GT(counts.kills, 0U);
    EXPECT_GT(counts.exchanges, 0U);
    EXPECT_GT(counts.prefixes, 0U);
    for (Break const& found : campaign.breaks()) {
        if (rowOf(found))
            std::cout << "known: " << found.text() << '\n';
        else
            ADD_FAILURE() << found.text();
    }
}

std::vector<Promise> brokenBy(Fixture const& fixture, Operation const& operation, std::optional<Promise> until = {}) {
    Campaign campaign(fixture, {.until = until, .patienceInSeconds = 1});
    campaign.run(operation);
    std::vector<Promise> broken;
    for (Break const& found : campaign.breaks())
        broken.push_back(found.finding.promise);
    return broken;
}

// The campaign would tell nothing if it found nothing.
TEST_F(Faults, TheCampaignSeesEachBrokenPromise) {
    std::map<std::string, Promise> const expected{
        {"unlink, then copy", Promise::ItemIsWhole},
        {"say done anyway", Promise::AnswerIsTrue},
        {"copy for everybody", Promise::NoMoreReaders},
        {"leave the temporary file", Promise::NoLeftovers},
        {"retry for ever", Promise::ProcessSurvives},
        {"write through links", Promise::OthersUntouched},
        {"rename before the data is written", Promise::SurvivesPowerLoss},
    };
    std::size_t seen = 0;
    for (Operation const& operation : carelessOperations()) {
        ASSERT_TRUE(expected.contains(operation.name)) << operation.name;
        Promise const promise = expected.at(operation.name);
        std::vector<Promise> const broken = brokenBy(m_fixture, operation, promise);
        EXPECT_NE(std::ranges::find(broken, promise), broken.end()) << operation.name << ": " << nameOf(promise);
        ++seen;
    }
    EXPECT_EQ(seen, expected.size());
}

TEST_F(Faults, ACarefulOperationBreaksNoPromise) {
    Operation const careful{
        .name = "make a folder",
        .prepare = [](Fixture const&) {},
        .run = [](Fixture const& fixture) { return ::mkdir(fixture.path("w/x").c_str(), 0700) == 0; }};
    EXPECT_EQ(brokenBy(m_fixture, careful), std::vector<Promise>());
}

TEST_F(Faults, AnOperationWithoutCallsIsNoneToTest) {
    Operation const idle{.name = "idle", .prepare = [](Fixture const&) {}, .run = [](Fixture const&) { return true; }};
    EXPECT_THROW(brokenBy(m_fixture, idle), std::runtime_error);
}

} // namespace
} // namespace mac::faults
