#include "benchmarks/Timing.h"
#include "pathutils/AliasesAndContents.h"
#include "platform/foundation/text/NSString.h"
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/resource.h>
#include <unistd.h>

// Comparing two equal files of 1 GiB, against cmp; their checksum, against merely reading one. Usage: file_contents
// FOLDER

using namespace mac;
using namespace benchmarks;

namespace {

constexpr std::size_t Size = std::size_t{1} << 30;
constexpr std::size_t PieceSize = std::size_t{128} << 10;
constexpr int Rounds = 9;

void makeFile(std::string const& path) {
    int const file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (file < 0) std::exit(1);
    auto const piece = std::make_unique<char[]>(PieceSize);
    for (std::size_t place = 0; place < Size; place += PieceSize) {
        for (std::size_t index = 0; index < PieceSize; ++index)
            piece[index] = static_cast<char>((place + index) * 0x9E3779B97F4A7C15 >> 56);
        if (::write(file, piece.get(), PieceSize) != static_cast<ssize_t>(PieceSize)) std::exit(1);
    }
    ::close(file);
}

void readAll(std::string const& path) {
    int const file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    auto const piece = std::make_unique<char[]>(PieceSize);
    while (::read(file, piece.get(), PieceSize) > 0) {}
    ::close(file);
}

// Processor time of this program (RUSAGE_SELF) or of the children that it has waited for (RUSAGE_CHILDREN).
double processorSeconds(int who) {
    rusage usage{};
    ::getrusage(who, &usage);
    auto const seconds = [](timeval const& time) {
        return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// The time that a function takes, by the clock and of the processor.
struct Cost {
    double seconds{0};
    double processorSeconds{0};
};

template <class Function>
Cost costOf(int who, Function const& function) {
    double const before = processorSeconds(who);
    double const seconds = secondsOf(function);
    return {seconds, processorSeconds(who) - before};
}

class Ratios {
public:
    void add(Cost const& longer, Cost const& shorter) {
        m_seconds.push_back(longer.seconds / shorter.seconds);
        m_processorSeconds.push_back(longer.processorSeconds / shorter.processorSeconds);
    }
    double onTheClock() const { return median(m_seconds); }
    double ofTheProcessor() const { return median(m_processorSeconds); }

private:
    std::vector<double> m_seconds{};
    std::vector<double> m_processorSeconds{};
};

} // namespace

int main(int count, char** arguments) {
    if (count != 2) return 2;
    std::string const one = std::string(arguments[1]) + "/file-contents-one";
    std::string const other = std::string(arguments[1]) + "/file-contents-other";
    makeFile(one);
    makeFile(other);
    NSString const path = NSString::stringWithFileSystemRepresentation_(one);
    NSString const otherPath = NSString::stringWithFileSystemRepresentation_(other);
    // cmp counts lines unless its output goes nowhere.
    std::vector<std::string> const cmp{"sh", "-c", R"(cmp "$0" "$1" | cat)", one, other};
    std::vector<std::string> const quietCmp{"cmp", one, other};
    Ratios comparisons;
    Ratios quietComparisons;
    Ratios checksums;
    int volatile sink = 0;
    for (int round = 0; round < Rounds; ++round) {
        Cost const ours = costOf(RUSAGE_SELF, [&] {
            if (!pxPathHasEqualContentsWithPath_(path, otherPath)) std::exit(1);
        });
        comparisons.add(costOf(RUSAGE_CHILDREN, [&] { runProgram(cmp); }), ours);
        quietComparisons.add(costOf(RUSAGE_CHILDREN, [&] { runProgram(quietCmp); }), ours);
        Cost const reading = costOf(RUSAGE_SELF, [&] { readAll(one); });
        checksums.add(costOf(RUSAGE_SELF, [&] { sink = pxChecksumOfPath(path); }), reading);
    }
    ::unlink(one.c_str());
    ::unlink(other.c_str());
    std::printf("two equal files of 1 GiB: %.2f times as fast as cmp, by the processor's time %.2f (goal: 1.5)\n",
                comparisons.onTheClock(), comparisons.ofTheProcessor());
    std::printf("the same beside cmp that need not count lines: %.2f and %.2f times\n", quietComparisons.onTheClock(),
                quietComparisons.ofTheProcessor());
    std::printf("checksum of 1 GiB: %.2f times reading it, by the processor's time %.2f (goal: 1.18)\n",
                checksums.onTheClock(), checksums.ofTheProcessor());
    return 0;
}
