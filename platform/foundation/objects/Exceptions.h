#pragma once

#include <exception>
#include <string>

namespace mac {

// What the framework raises when it is used wrongly: never for files, data or services that fail. The name is the
// exception's type; the reason is UTF-8 text for the log.
class NSException : public std::exception {
public:
    NSException(char const* name, std::string reason) : m_name(name), m_reason(std::move(reason)) {}
    char const* name() const { return m_name; }
    std::string const& reason() const { return m_reason; }
    char const* what() const noexcept override { return m_reason.c_str(); }

private:
    char const* m_name;
    std::string m_reason;
};

// An index or range outside its collection.
class NSRangeException : public NSException {
public:
    explicit NSRangeException(std::string reason) : NSException("NSRangeException", std::move(reason)) {}
};

// A nil where an object must stand, a message that an object does not understand, a format that cannot be parsed.
class NSInvalidArgumentException : public NSException {
public:
    explicit NSInvalidArgumentException(std::string reason)
        : NSException("NSInvalidArgumentException", std::move(reason)) {}
};

// A key that the object's class does not know. Its name in reports is the one that the framework's constant holds.
class NSUndefinedKeyException : public NSException {
public:
    explicit NSUndefinedKeyException(std::string reason) : NSException("NSUnknownKeyException", std::move(reason)) {}
};

// Anything else, such as a collection changed while it is enumerated.
class NSGenericException : public NSException {
public:
    explicit NSGenericException(std::string reason) : NSException("NSGenericException", std::move(reason)) {}
};

} // namespace mac
