#include "platform/foundation/WordSum.h"
#include <cstring>

namespace mac {

std::uint32_t sumOfWords(std::span<std::byte const> bytes) {
    static WordSummation const fastest = wordSummations().front();
    return fastest(bytes);
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
