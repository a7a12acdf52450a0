#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace mac {

// Adds 16-bit words in the order of the machine; the sum wraps at 32 bits. A byte that is left over counts as a word
// whose other byte is 0. For implementations; any thread, data of any alignment.
using WordSummation = std::uint32_t (*)(std::span<std::byte const> bytes);

std::uint32_t sumOfWords(std::span<std::byte const> bytes);
// The 16 bits that the checksum of RFC 1071 makes of such a sum. The sum counts as a signed number, which shows in more
// than 128 KiB of data.
int checksumOfWordSum(std::uint32_t sum);

// Word by word, on any processor.
std::uint32_t sumOfWordsPlainly(std::span<std::byte const> bytes);
// The implementations that this processor has instructions for, at least one, the fastest first. All give the same
// sums.
std::span<WordSummation const> wordSummations();

} // namespace mac
