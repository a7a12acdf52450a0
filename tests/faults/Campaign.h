#pragma once

#include "tests/faults/FaultPlan.h"
#include "tests/faults/Promises.h"
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace mac::faults {

// One fault: which operation meets what, and when.
struct FaultPoint {
    Action action{Action::None};
    Lasting lasting{Lasting::Once};
    Volume volume{Volume::Ordinary};
    std::uint32_t at{0};
    int error{0};
    // For Action::Disturb: the name that is exchanged.
    std::string exchanged{};
    // For Action::Kill: a fault before, whose handling is cut short; 0 if there is none.
    std::uint32_t failingAt{0};
};

// What one operation was found to break.
struct Break {
    std::string operation{};
    FaultPoint point{};
    // The name of the call.
    std::string call{};
    Finding finding{};
    bool isOnFUSE{false};
    // How many points broke the same promise at the same call in the same way.
    std::uint64_t points{1};

    std::string text() const;
};

struct Counts {
    std::uint64_t calls{0};
    std::uint64_t faults{0};
    std::uint64_t kills{0};
    std::uint64_t exchanges{0};
    // Prefixes of the order of writes, renames and flushes, at whose end the power may fail.
    std::uint64_t prefixes{0};
    // Runs beside a process that exchanges names all the time.
    std::uint64_t races{0};
    // Faults after which failure was said although all was done.
    std::uint64_t deniedSuccesses{0};
};

struct CampaignOptions {
    // Each point is taken with a probability of one in `stride`; the seed decides.
    unsigned stride{1};
    // Which of the `stride` parts that this makes of all points; with one seed, no two parts have a point in common.
    unsigned part{0};
    std::uint64_t seed{0};
    bool hasFaults{true};
    bool hasKills{true};
    bool hasExchanges{true};
    bool hasPowerLoss{true};
    // Faults and kills at calls of this name only; at all if empty.
    std::string call{};
    // An operation's other points are left out once it has broken this promise.
    std::optional<Promise> until{};
    // How often each operation that has names to exchange is run beside a racing process.
    unsigned races{0};
    // Processor time after which an operation on a few small files counts as hung.
    unsigned patienceInSeconds{10};
    std::vector<Volume> volumes{Volume::Ordinary};
};

// Runs operations on one volume, each once for each fault point in a process of its own.
class Campaign {
public:
    // The fixture must outlive the object.
    Campaign(Fixture const& fixture, CampaignOptions options);
    ~Campaign();
    Campaign(Campaign const&) = delete;
    Campaign& operator=(Campaign const&) = delete;

    // Throws std::runtime_error if the operation fails without a fault, or makes no calls.
    void run(Operation const& operation);

    Counts const& counts() const { return m_counts; }
    std::vector<Break> const& breaks() const { return m_breaks; }

private:
    struct Shared;
    struct Trial {
        Ending ending{};
        Snapshot found{};
    };

    void runOn(Operation const& operation, Volume volume);
    std::vector<FaultPoint> pointsOf(Operation const& operation, Volume volume) const;
    bool isChosen();
    void race(Operation const& operation, FaultPoint const& point);
    void losePower(Operation const& operation, FaultPoint const& point);
    void take(Operation const& operation, FaultPoint const& point);
    void judge(Operation const& operation, FaultPoint const& point, Trial const& trial);
    void writeAgain(Operation const& operation, FaultPoint const& point, std::string const& call);
    std::string callAt(FaultPoint const& point) const;
    Circumstances circumstancesOf(FaultPoint const& point, std::string const& call) const;
    void report(Operation const& operation, FaultPoint const& point, std::string const& call, Finding const& finding);
    void prepare(Operation const& operation);
    Ending runApart(std::function<bool()> const& action, Plan const& plan);
    bool isEnough(Operation const& operation) const;
    bool isOnFUSE() const;
    void setExchange(FaultPoint const& point);
    Trial tryOut(Operation const& operation, FaultPoint const& point);

    Fixture const& m_fixture;
    CampaignOptions m_options;
    bool m_canExchangeNames;
    Shared* m_shared;
    Expectation m_expectation{};
    // The folders hold what prepare() made.
    bool m_isPrepared{false};
    std::uint64_t m_random;
    Counts m_counts{};
    std::vector<Break> m_breaks{};
};

} // namespace mac::faults
