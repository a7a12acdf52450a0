#include "benchmarks/ChecksumPlainLoop.h"
#include <cstring>

std::uint32_t sumWordByWord(std::span<std::byte const> bytes) {
    std::uint32_t sum = 0;
    std::byte const* next = bytes.data();
    for (std::size_t remaining = bytes.size(); remaining > 1; remaining -= 2) {
        std::uint16_t word = 0;
        std::memcpy(&word, next, sizeof word);
        sum += word;
        next += sizeof word;
    }
    return sum;
}
