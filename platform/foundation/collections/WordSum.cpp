#include "platform/foundation/collections/WordSum.h"
#include <cstring>

namespace mac {

std::uint32_t sumOfWords(std::span<std::byte const> bytes) {
    static WordSummation const fastest = wordSummations().front();
    return fastest(bytes);
}

int checksumOfWordSum(std::uint32_t sum) {
    auto const carry = [](std::uint32_t value) {
        return static_cast<std::uint32_t>(static_cast<std::int32_t>(value) >> 16);
    };
    std::uint32_t folded = carry(sum) + (sum & 0xFFFF);
    folded += carry(folded);
    return static_cast<int>(~folded & 0xFFFF);
}

std::uint32_t sumOfWordsPlainly(std::span<std::byte const> bytes) {
    std::uint32_t sum = 0;
    while (!bytes.empty()) {
        std::size_t const count = bytes.size() > 1 ? 2 : 1;
        std::uint16_t word = 0;
        std::memcpy(&word, bytes.data(), count);
        sum += word;
        bytes = bytes.subspan(count);
    }
    return sum;
}

} // namespace mac
