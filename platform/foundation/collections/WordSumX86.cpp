#include "platform/foundation/collections/WordSum.h"
#include <array>
#include <immintrin.h>
#include <vector>

namespace mac {

namespace {

// The multiplication that adds pairs of words takes them as signed: each goes in 0x8000 too low, which is put right at
// the end. Lanes of 32 bits wrap as the sum does. Four sums, so that no addition waits for the one before.
constexpr std::uint32_t TooLow = 0x8000;

[[gnu::target("avx2")]] std::uint32_t sumWithAVX2(std::span<std::byte const> bytes) {
    __m256i const bias = _mm256_set1_epi16(-0x8000);
    __m256i const ones = _mm256_set1_epi16(1);
    __m256i sums[4]{};
    constexpr std::size_t step = sizeof sums;
    std::size_t const end = bytes.size() - bytes.size() % step;
    for (std::size_t offset = 0; offset < end; offset += step) {
        auto const* const words = reinterpret_cast<__m256i const*>(bytes.data() + offset);
        for (std::size_t index = 0; index < 4; ++index) {
            __m256i const signedWords = _mm256_xor_si256(_mm256_loadu_si256(words + index), bias);
            sums[index] = _mm256_add_epi32(sums[index], _mm256_madd_epi16(signedWords, ones));
        }
    }
    __m256i const sum = _mm256_add_epi32(_mm256_add_epi32(sums[0], sums[1]), _mm256_add_epi32(sums[2], sums[3]));
    std::array<std::uint32_t, 8> lanes{};
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(lanes.data()), sum);
    std::uint32_t total = static_cast<std::uint32_t>(end / 2) * TooLow;
    for (std::uint32_t const lane : lanes)
        total += lane;
    return total + sumOfWordsPlainly(bytes.subspan(end));
}

std::uint32_t sumWithSSE2(std::span<std::byte const> bytes) {
    __m128i const bias = _mm_set1_epi16(-0x8000);
    __m128i const ones = _mm_set1_epi16(1);
    __m128i sums[4]{};
    constexpr std::size_t step = sizeof sums;
    std::size_t const end = bytes.size() - bytes.size() % step;
    for (std::size_t offset = 0; offset < end; offset += step) {
        auto const* const words = reinterpret_cast<__m128i const*>(bytes.data() + offset);
        for (std::size_t index = 0; index < 4; ++index) {
            __m128i const signedWords = _mm_xor_si128(_mm_loadu_si128(words + index), bias);
            sums[index] = _mm_add_epi32(sums[index], _mm_madd_epi16(signedWords, ones));
        }
    }
    __m128i const sum = _mm_add_epi32(_mm_add_epi32(sums[0], sums[1]), _mm_add_epi32(sums[2], sums[3]));
    std::array<std::uint32_t, 4> lanes{};
    _mm_storeu_si128(reinterpret_cast<__m128i*>(lanes.data()), sum);
    std::uint32_t total = static_cast<std::uint32_t>(end / 2) * TooLow;
    for (std::uint32_t const lane : lanes)
        total += lane;
    return total + sumOfWordsPlainly(bytes.subspan(end));
}

std::vector<WordSummation> availableSummations() {
    std::vector<WordSummation> summations;
    if (__builtin_cpu_supports("avx2")) summations.push_back(sumWithAVX2);
    // Every processor of this architecture has it.
    summations.push_back(sumWithSSE2);
    summations.push_back(sumOfWordsPlainly);
    return summations;
}

} // namespace

std::span<WordSummation const> wordSummations() {
    static std::vector<WordSummation> const summations = availableSummations();
    return summations;
}

} // namespace mac
