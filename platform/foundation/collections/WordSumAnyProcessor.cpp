#include "platform/foundation/collections/WordSum.h"

namespace mac {

std::span<WordSummation const> wordSummations() {
    static constexpr WordSummation summations[]{sumOfWordsPlainly};
    return summations;
}

} // namespace mac
