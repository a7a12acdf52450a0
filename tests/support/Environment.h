#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace mac::test {

// An environment variable set for the object's life, and as it was afterwards.
class EnvironmentVariable {
public:
    EnvironmentVariable(char const* name, std::string const& value) : m_name(name) {
        if (char const* const before = std::getenv(name)) m_before = before;
        ::setenv(name, value.c_str(), 1);
    }
    ~EnvironmentVariable() {
        if (m_before)
            ::setenv(m_name, m_before->c_str(), 1);
        else
            ::unsetenv(m_name);
    }
    EnvironmentVariable(EnvironmentVariable const&) = delete;
    EnvironmentVariable& operator=(EnvironmentVariable const&) = delete;

private:
    char const* m_name;
    std::optional<std::string> m_before;
};

} // namespace mac::test
