#include "platform/desktop/session/Patience.h"
#include <algorithm>
#include <optional>

namespace mac {

namespace {

using Clock = std::chrono::steady_clock;

thread_local std::optional<Clock::time_point> s_end;

} // namespace

Patience::Patience(std::chrono::milliseconds longest) : m_isOutermost(!s_end) {
    if (m_isOutermost) s_end = Clock::now() + longest;
}

Patience::~Patience() {
    if (m_isOutermost) s_end.reset();
}

std::chrono::milliseconds Patience::left() {
    if (!s_end) return Longest;
    auto const left = std::chrono::ceil<std::chrono::milliseconds>(*s_end - Clock::now());
    return std::max(left, std::chrono::milliseconds::zero());
}

void Patience::end() {
    if (s_end) s_end = Clock::now();
}

} // namespace mac
