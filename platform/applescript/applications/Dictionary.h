#pragma once

#include "platform/applescript/language/Terminology.h"
#include "platform/applescript/runtime/ScriptValue.h"
#include <functional>
#include <memory>
#include <optional>
#include <span>

// The dictionary of an application that is part of this engine: rows that say a term's name and code and which function
// does what it says. A row that leaves its function out does not compile, so no term is parsed that nothing answers.

namespace mac::applescript {

class Evaluator;
class ModelApplication;
class ModelObject;
struct ApplicationCommand;
struct TextContext;
using ModelPointer = std::shared_ptr<ModelObject>;

// What a property holds: an object of the application or a value, or neither if the object lacks it at the moment.
struct PropertyAnswer {
    PropertyAnswer(Value answer) : value(std::move(answer)) {}
    PropertyAnswer(std::optional<Value> answer) : value(std::move(answer)) {}
    PropertyAnswer(ModelPointer answer) : object(std::move(answer)) {}

    ModelPointer object{};
    std::optional<Value> value{};
};

// A function that its row must give: it has no default, and a null pointer does not convert to it.
template <class Function>
class RequiredFunction {
public:
    constexpr RequiredFunction(Function& function) : m_function(&function) {}
    template <class... Arguments>
    auto operator()(Arguments&&... arguments) const {
        return m_function(std::forward<Arguments>(arguments)...);
    }

private:
    Function* m_function;
};

using PropertyReader = PropertyAnswer(ModelObject& object);
// False if the property cannot be set to the value.
using PropertyWriter = bool(ModelObject& object, Value const& value, TextContext const& context);
// The elements of the class in their order; nullopt if this object has no such elements.
using ElementReader = std::optional<std::vector<ModelPointer>>(ModelObject& object, Code elementType);
// Answers the command's value; nothing is an answer too.
using CommandFunction = Value(ModelApplication& application, Evaluator& evaluator, ApplicationCommand const& command);

// Whether the record `properties` holds the property: not if it is costly, or only a name for another.
enum class InProperties : std::uint8_t { Listed, Unlisted };
using enum InProperties;

struct PropertyRow {
    // Empty if no dictionary has a term for the code, which scripts may still send.
    std::u16string_view name;
    Code code;
    // The class of its value. It may also be missing value.
    Code type;
    RequiredFunction<PropertyReader> read;
    // Null: it can be read only.
    PropertyWriter* write{nullptr};
    InProperties isIn{InProperties::Listed};
};

struct ElementRow {
    Code type;
    RequiredFunction<ElementReader> read;
};

struct ClassRow {
    // Empty for the application itself, which the language has the word for.
    std::u16string_view name;
    // Empty if there is never more than one.
    std::u16string_view plural;
    Code code;
    // The class that this one is a kind of, whose properties and elements it has too; null without one.
    ClassRow const* parent{nullptr};
    std::span<PropertyRow const> properties{};
    std::span<ElementRow const> elements{};

    bool isKindOf(Code sought) const;
    // Looks in the class and in those that it inherits from; null if none has it.
    PropertyRow const* property(Code sought) const;
    ElementRow const* element(Code sought) const;
};

struct CommandRow {
    // Without a name: a command that the language itself has the term for.
    CommandTerm term;
    RequiredFunction<CommandFunction> perform;
};

struct NameRow {
    std::u16string_view name;
    Code code;
};

struct Dictionary {
    std::span<ClassRow const* const> classes{};
    // Words that stand for classes of values and for constants.
    std::span<NameRow const> types{};
    std::span<NameRow const> constants{};
    std::span<CommandRow const> commands{};

    // Whether an object of the class, or of a kind of it, may have the property.
    bool mayHave(Code classCode, Code property) const;
    CommandRow const* command(EventCode code) const;
    Terminology terminology() const;
};

template <class>
struct AccessorOf;
template <class Answer, class Object, class... Arguments>
struct AccessorOf<Answer (*)(Object&, Arguments...)> {
    using Type = Object;
};
template <class Answer, class Object, class... Arguments>
struct AccessorOf<Answer (Object::*)(Arguments...)> {
    using Type = Object;
};
template <class Answer, class Object, class... Arguments>
struct AccessorOf<Answer (Object::*)(Arguments...) const> {
    using Type = Object const;
};

// A function or method about one class of objects as the function of a row. The row belongs to that class alone.
template <auto Function>
PropertyAnswer reading(ModelObject& object) {
    return PropertyAnswer(std::invoke(Function, static_cast<typename AccessorOf<decltype(Function)>::Type&>(object)));
}
template <auto Function>
bool writing(ModelObject& object, Value const& value, TextContext const& context) {
    using Object = typename AccessorOf<decltype(Function)>::Type;
    return std::invoke(Function, static_cast<Object&>(object), value, context);
}
template <auto Function>
std::optional<std::vector<ModelPointer>> listing(ModelObject& object, Code elementType) {
    using Object = typename AccessorOf<decltype(Function)>::Type;
    return std::invoke(Function, static_cast<Object&>(object), elementType);
}

} // namespace mac::applescript
