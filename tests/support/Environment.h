#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace mac::test {

// An environment variable set for the object's life, or not there with std::nullopt, and as it was afterwards.
class EnvironmentVariable {
public:
    EnvironmentVariable(char const* name, std::optional<std::string> const& value) : m_name(name) {
        if (char const* const before = std::getenv(name)) m_before = before;
        set(value);
    }
    ~EnvironmentVariable() { set(m_before); }
    EnvironmentVariable(EnvironmentVariable const&) = delete;
    EnvironmentVariable& operator=(EnvironmentVariable const&) = delete;

private:
    void set(std::optional<std::string> const& value) const {
        if (value)
            ::setenv(m_name, value->c_str(), 1);
        else
            ::unsetenv(m_name);
    }

    char const* m_name;
    std::optional<std::string> m_before;
};

} // namespace mac::test
