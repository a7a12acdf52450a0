#include "benchmarks/ChecksumPlainLoop.h"
#include "benchmarks/Timing.h"
#include "coreutils/Strings.h"
#include <array>
#include <cstdio>
#include <cstring>
#include <vector>

// The checksum of 1 GiB in memory, against its steps word by word and against merely reading the bytes.

using namespace mac;
using namespace benchmarks;

namespace {

constexpr NSUInteger Size = NSUInteger{1} << 30;
constexpr int Rounds = 7;

// Every byte is looked at, and as little done with it as can be.
std::uint64_t readAll(std::span<std::byte const> bytes) {
    std::array<std::uint64_t, 16> words{};
    for (std::size_t offset = 0; offset + sizeof words <= bytes.size(); offset += sizeof words) {
        std::array<std::uint64_t, 16> next{};
        std::memcpy(next.data(), bytes.data() + offset, sizeof next);
        for (std::size_t index = 0; index < words.size(); ++index)
            words[index] |= next[index];
    }
    std::uint64_t all = 0;
    for (std::uint64_t const word : words)
        all |= word;
    return all;
}

} // namespace

int main() {
    NSMutableData const data = NSMutableData::data();
    data.setLength_(Size);
    std::byte* const bytes = data.mutableBytes();
    for (std::size_t index = 0; index < Size; ++index)
        bytes[index] = static_cast<std::byte>(index * 0x9E3779B97F4A7C15 >> 56);

    volatile std::uint64_t sink = 0;
    std::vector<double> checksums;
    std::vector<double> loops;
    std::vector<double> reads;
    for (int round = 0; round < Rounds; ++round) {
        checksums.push_back(secondsOf([&] { sink = static_cast<std::uint64_t>(pxChecksum(data)); }));
        loops.push_back(secondsOf([&] { sink = sumWordByWord(data.span()); }));
        reads.push_back(secondsOf([&] { sink = readAll(data.span()); }));
    }
    double const gigabytes = static_cast<double>(Size) / 1e9;
    std::printf("1 GiB in memory, medians of %d:\n", Rounds);
    std::printf("  checksum     %6.2f GB/s\n", gigabytes / median(checksums));
    std::printf("  word by word %6.2f GB/s\n", gigabytes / median(loops));
    std::printf("  reading      %6.2f GB/s\n", gigabytes / median(reads));
    std::printf("checksum to word by word: %.2f times as fast (goal: 4)\n", median(loops) / median(checksums));
    std::printf("checksum to reading: %.0f %% of its speed (goal: 85 %%)\n", 100 * median(reads) / median(checksums));
    return 0;
}
