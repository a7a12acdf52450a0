#pragma once

#include "platform/applescript/language/Codes.h"
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace mac::applescript {

struct TextObject;
struct ListObject;
struct RecordObject;
struct DateObject;
struct FileObject;
struct ApplicationObject;
struct DataObject;
struct SpecifierObject;
struct TestObject;
struct HandlerObject;
class ScriptObject;
class ValueList;

enum class ValueKind : std::uint8_t {
    // No value at all, as a statement may leave; `missing value` is a Type.
    Nothing,
    Boolean,
    Integer,
    Real,
    // A class, a month, a weekday, missing value: a code.
    Type,
    Constant,
    AppleScript,
    CurrentApplication,
    // From here on an object on the heap.
    Text,
    List,
    Record,
    Date,
    File,
    Application,
    Data,
    Specifier,
    Test,
    Script,
    Handler,
};

// What lies behind a value on the heap. The values own it together and are counted without atomics: a value stays on
// the main thread. Objects that are taken down wait in line, so that no nesting is too deep to be taken down.
class HeapObject {
public:
    HeapObject() = default;
    virtual ~HeapObject() = default;
    HeapObject(HeapObject const&) = delete;
    HeapObject& operator=(HeapObject const&) = delete;

    void retain() { ++m_count; }
    void release() {
        if (--m_count == 0) dispose();
    }

    // How many values hold it.
    std::uint32_t count() const { return m_count; }

private:
    void dispose();

    std::uint32_t m_count{0};
};

// A value of the language: 16 bytes; passed by value. Lists, records, dates and scripts are shared, not copied.
class Value {
public:
    constexpr Value() = default;
    Value(Value const& other) : m_kind(other.m_kind), m_content(other.m_content) {
        if (isObject()) m_content.object->retain();
    }
    Value(Value&& other) noexcept
        : m_kind(std::exchange(other.m_kind, ValueKind::Nothing)), m_content(other.m_content) {}
    Value& operator=(Value const& other) {
        Value copy(other);
        swap(copy);
        return *this;
    }
    Value& operator=(Value&& other) noexcept {
        swap(other);
        return *this;
    }
    ~Value() {
        if (isObject()) m_content.object->release();
    }

    static Value boolean(bool flag);
    static Value integer(std::int32_t number);
    static Value real(double number);
    // An integer where the number is a whole one in the range of integers, else a real.
    static Value number(double number);
    static Value type(Code code);
    static Value constant(Code code);
    static Value missing() { return type(codes::MissingValue); }
    static Value appleScript() { return Value(ValueKind::AppleScript); }
    static Value currentApplication() { return Value(ValueKind::CurrentApplication); }
    static Value text(std::u16string units);
    static Value list(std::vector<Value> items = {});
    static Value listOf(ValueList items);
    static Value record(std::vector<std::pair<Symbol, Value>> fields = {});
    // Seconds since 1 January 1904, local time.
    static Value date(std::int64_t seconds);
    // Takes a reference of its own.
    static Value object(ValueKind kind, HeapObject& object);

    ValueKind kind() const { return m_kind; }
    bool is(ValueKind kind) const { return m_kind == kind; }
    bool isNothing() const { return m_kind == ValueKind::Nothing; }
    bool isNumber() const { return m_kind == ValueKind::Integer || m_kind == ValueKind::Real; }
    bool isMissing() const { return m_kind == ValueKind::Type && m_content.code == codes::MissingValue; }
    bool isObject() const { return m_kind >= ValueKind::Text; }

    bool asBoolean() const { return m_content.boolean; }
    std::int32_t asInteger() const { return m_content.integer; }
    double asReal() const { return m_content.real; }
    // Either kind of number.
    double asNumber() const { return m_kind == ValueKind::Integer ? m_content.integer : m_content.real; }
    Code asCode() const { return m_content.code; }
    HeapObject* object() const { return isObject() ? m_content.object : nullptr; }
    // Each only for a value of that kind.
    TextObject& textObject() const;
    std::u16string const& units() const;
    ValueList& items() const;
    std::vector<std::pair<Symbol, Value>>& fields() const;
    std::int64_t& seconds() const;
    FileObject& file() const;
    ApplicationObject& application() const;
    DataObject& data() const;
    SpecifierObject& specifier() const;
    TestObject& test() const;
    ScriptObject& script() const;
    HandlerObject& handler() const;

    void swap(Value& other) noexcept {
        std::swap(m_kind, other.m_kind);
        std::swap(m_content, other.m_content);
    }

private:
    explicit constexpr Value(ValueKind kind) : m_kind(kind) {}

    union Content {
        bool boolean;
        std::int32_t integer;
        double real;
        Code code;
        HeapObject* object;
    };

    ValueKind m_kind{ValueKind::Nothing};
    Content m_content{.real = 0};
};

static_assert(sizeof(Value) == 16);

inline Value Value::boolean(bool flag) {
    Value value(ValueKind::Boolean);
    value.m_content.boolean = flag;
    return value;
}

inline Value Value::integer(std::int32_t number) {
    Value value(ValueKind::Integer);
    value.m_content.integer = number;
    return value;
}

inline Value Value::real(double number) {
    Value value(ValueKind::Real);
    value.m_content.real = number;
    return value;
}

} // namespace mac::applescript
