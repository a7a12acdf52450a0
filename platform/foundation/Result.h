#pragma once

#include <optional>
#include <string>
#include <utility>

namespace mac {

// Why something failed, as UTF-8 text for people.
struct Failure {
    std::string reason;
};

// A value, or why there is none. For the insides of the platform; its interfaces report errors in their own forms.
template <class T>
class Result {
public:
    Result(T value) : m_value(std::move(value)) {}
    Result(Failure failure) : m_reason(std::move(failure.reason)) {}

    bool hasValue() const { return m_value.has_value(); }
    // Only when there is one.
    T const& value() const { return *m_value; }
    T takeValue() { return std::move(*m_value); }
    // Empty when there is a value.
    std::string const& reason() const { return m_reason; }

private:
    std::optional<T> m_value;
    std::string m_reason;
};

} // namespace mac
