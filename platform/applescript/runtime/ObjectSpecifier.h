#pragma once

#include "platform/applescript/language/Operation.h"
#include "platform/applescript/runtime/HeapObjects.h"

namespace mac::applescript {

// Which object is meant, without asking for it: one property, element or range in a container. References of scripts,
// what an application is sent, and what errors name are all this one structure.
struct SpecifierObject final : ContainerObject {
    Form form{Form::Property};
    // The class of elements.
    Code want{0};
    // The name of a property.
    Symbol property{nullptr};
    // Empty: the current target.
    Value container{};
    // The index, name, identifier or test; a range reaches from one to the other. A filter's are what is filtered,
    // whose container it shares, and the test.
    Value from{};
    Value to{};

protected:
    void visit(void (*visitor)(Value const& held)) const override {
        visitor(container);
        visitor(from);
        visitor(to);
    }
    void clear() override { container = from = to = Value(); }
};

// A condition on the object being examined, which is a specifier without container.
struct TestObject final : ContainerObject {
    Operation operation{Operation::Equal};
    Value left{};
    Value right{};

protected:
    void visit(void (*visitor)(Value const& held)) const override {
        visitor(left);
        visitor(right);
    }
    void clear() override { left = right = Value(); }
};

inline SpecifierObject& Value::specifier() const { return static_cast<SpecifierObject&>(*m_content.object); }
inline TestObject& Value::test() const { return static_cast<TestObject&>(*m_content.object); }

Value propertySpecifier(Symbol property, Value container);
Value elementSpecifier(Form form, Code want, Value container, Value from = {}, Value to = {});

// The outermost container: a value, an application, or nothing.
Value const& rootOf(Value const& specifier);

} // namespace mac::applescript
