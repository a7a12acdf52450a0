#pragma once

#include "platform/system/SystemError.h"
#include <optional>
#include <string>
#include <utility>

namespace mac {

// Why something failed, as UTF-8 text for people: the problem of readers and writers, which no system call refused.
struct Failure {
    std::string reason;
};

// A value, or the problem that prevented it. What can fail inside the platform answers this; each interface with a form
// of its own for errors (nil, NO, a status, a script's error) translates the problem once.
template <class T, class Problem = SystemError>
class [[nodiscard]] Result {
public:
    Result(T value) : m_value(std::move(value)) {}
    Result(Problem problem) : m_problem(std::move(problem)) {}

    bool hasValue() const { return m_value.has_value(); }
    // REQUIRES: hasValue().
    T const& value() const { return *m_value; }
    T& value() { return *m_value; }
    T takeValue() { return std::move(*m_value); }
    T valueOr(T fallback) && { return m_value ? std::move(*m_value) : std::move(fallback); }
    // REQUIRES: !hasValue().
    Problem const& problem() const { return m_problem; }

private:
    std::optional<T> m_value{};
    Problem m_problem{};
};

// Success, or the problem that prevented it.
template <class Problem>
class [[nodiscard]] Result<void, Problem> {
public:
    Result() = default;
    Result(Problem problem) : m_problem(std::move(problem)) {}

    bool isDone() const { return !m_problem.has_value(); }
    // REQUIRES: !isDone().
    Problem const& problem() const { return *m_problem; }

private:
    std::optional<Problem> m_problem{};
};

} // namespace mac
