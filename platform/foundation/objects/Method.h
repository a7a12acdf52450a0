#pragma once

#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/NSValue.h"
#include "platform/foundation/objects/Object.h"
#include <array>
#include <bit>

namespace mac {

namespace detail {

template <class T>
using Plain = std::remove_cvref_t<T>;

// An argument or result of a message as the object that stands for it, and back. Data from outside never gets a class
// that it does not have: an object of another class arrives as nil.
template <class T>
Plain<T> fromObject(id const& object) {
    using Value = Plain<T>;
    if constexpr (std::is_same_v<Value, id>)
        return object;
    else if constexpr (std::is_base_of_v<id, Value>)
        return as<Value>(object);
    else if constexpr (std::is_same_v<Value, BOOL>)
        return BOOL(as<NSNumber>(object).boolValue());
    else if constexpr (std::is_same_v<Value, bool>)
        return as<NSNumber>(object).boolValue();
    else if constexpr (std::is_floating_point_v<Value>)
        return static_cast<Value>(as<NSNumber>(object).doubleValue());
    // A context, which is passed through and never looked at, travels as its number.
    else if constexpr (std::is_same_v<Value, void*>)
        return std::bit_cast<void*>(static_cast<std::uintptr_t>(as<NSNumber>(object).unsignedLongLongValue()));
    else if constexpr (std::is_same_v<Value, FourCharCode>)
        return FourCharCode(as<NSNumber>(object).unsignedIntValue());
    // Any other pointer travels in an NSValue, and so does the address of a record; what is none arrives as null and as
    // an empty record.
    else if constexpr (std::is_pointer_v<Value>)
        return as<NSValue>(object).pointerValue<std::remove_pointer_t<Value>>();
    else if constexpr (std::is_class_v<Value>) {
        Value const* const record = as<NSValue>(object).pointerValue<Value const>();
        return record ? *record : Value{};
    } else {
        static_assert(std::is_integral_v<Value> || std::is_enum_v<Value>, "a message carries objects and numbers");
        return static_cast<Value>(as<NSNumber>(object).longLongValue());
    }
}

template <class T>
id toObject(T const& value) {
    if constexpr (std::is_base_of_v<id, T>)
        return value;
    else if constexpr (std::is_same_v<T, BOOL> || std::is_same_v<T, bool>)
        return NSNumber::numberWithBool_(BOOL(static_cast<bool>(value)));
    else if constexpr (std::is_floating_point_v<T>)
        return NSNumber::numberWithDouble_(value);
    else if constexpr (std::is_unsigned_v<T>)
        return NSNumber::numberWithUnsignedLongLong_(value);
    else if constexpr (std::is_pointer_v<T>)
        return NSValue::valueWithPointer_(value);
    else
        return NSNumber::numberWithLongLong_(static_cast<long long>(value));
}

template <class Result, class Call>
id resultOf(Call&& call) {
    if constexpr (std::is_void_v<Result>) {
        call();
        return nil;
    } else {
        return toObject<Plain<Result>>(call());
    }
}

inline id argumentAt(std::span<id const> arguments, std::size_t index) {
    return index < arguments.size() ? arguments[index] : id();
}

template <auto function>
struct Invoker;

template <class T, class Result, class... Arguments, Result (T::*member)(Arguments...) const>
struct Invoker<member> {
    using Value = Plain<Result>;

    static id invoke(id const& receiver, std::span<id const> arguments) {
        return withIndexes(receiver, arguments, std::index_sequence_for<Arguments...>());
    }
    template <std::size_t... index>
    static id withIndexes(id const& receiver, [[maybe_unused]] std::span<id const> arguments,
                          std::index_sequence<index...>) {
        T const object = uncheckedCast<T>(receiver);
        return resultOf<Result>(
            [&]() -> Result { return (object.*member)(fromObject<Arguments>(argumentAt(arguments, index))...); });
    }
};

template <class Result, class T, class... Arguments, Result (*function)(T, Arguments...)>
struct Invoker<function> {
    using Value = Plain<Result>;

    static id invoke(id const& receiver, std::span<id const> arguments) {
        return withIndexes(receiver, arguments, std::index_sequence_for<Arguments...>());
    }
    template <std::size_t... index>
    static id withIndexes(id const& receiver, [[maybe_unused]] std::span<id const> arguments,
                          std::index_sequence<index...>) {
        return resultOf<Result>([&]() -> Result {
            return function(uncheckedCast<Plain<T>>(receiver), fromObject<Arguments>(argumentAt(arguments, index))...);
        });
    }
};

template <class Result, Result (*function)()>
struct Invoker<function> {
    using Value = Plain<Result>;

    static id invoke(id const&, std::span<id const>) {
        return resultOf<Result>([] { return function(); });
    }
};

template <auto function>
struct ClassInvoker;

// A class method's function has no receiver.
template <class Result, class... Arguments, Result (*function)(Arguments...)>
struct ClassInvoker<function> {
    using Value = Plain<Result>;

    static id invoke(id const&, std::span<id const> arguments) {
        return withIndexes(arguments, std::index_sequence_for<Arguments...>());
    }
    template <std::size_t... index>
    static id withIndexes([[maybe_unused]] std::span<id const> arguments, std::index_sequence<index...>) {
        return resultOf<Result>(
            [&]() -> Result { return function(fromObject<Arguments>(argumentAt(arguments, index))...); });
    }
};

template <auto getter>
id getProperty(id const& object) {
    return Invoker<getter>::invoke(object, {});
}

// The number that a key's setter gets: what the object answers when it is asked for one, as strings do too. An object
// that cannot be asked raises NSInvalidArgumentException.
template <class Value>
id scalarOf(id const& object) {
    if (object.isKindOfClass_(classOf<NSNumber>())) return object;
    if constexpr (std::is_same_v<Value, BOOL> || std::is_same_v<Value, bool>)
        return object.performSelector_("boolValue");
    else if constexpr (std::is_floating_point_v<Value>)
        return object.performSelector_("doubleValue");
    else if constexpr (std::is_signed_v<Value> && sizeof(Value) <= sizeof(int))
        return object.performSelector_("intValue");
    else
        return object.performSelector_("longLongValue");
}

template <auto getter, auto setter>
void setProperty(id const& object, id const& value) {
    using Value = typename Invoker<getter>::Value;
    std::array<id, 1> arguments{value};
    if constexpr (!std::is_base_of_v<id, Value>) arguments[0] = scalarOf<Value>(value);
    Invoker<setter>::invoke(object, arguments);
}

}

// A row of the method table: method<&AppController::scanAction_>("scanAction:"), or a category's free function,
// receiver first.
template <auto function>
constexpr Method method(std::string_view selector) {
    using Invoker = detail::Invoker<function>;
    return {selector, &Invoker::invoke, !std::is_void_v<typename Invoker::Value>};
}

// A row of the table of class methods: classMethod<&pxUUID>("pxUUID").
template <auto function>
constexpr Method classMethod(std::string_view selector) {
    using Invoker = detail::ClassInvoker<function>;
    return {selector, &Invoker::invoke, !std::is_void_v<typename Invoker::Value>};
}

// Makes the classes known by name. Without it a class is known from its first use on.
template <class... Classes>
void registerClasses() {
    [[maybe_unused]] Class const* const registered[]{&classOf<Classes>()...};
}

// Adds a category to the class T.
template <class T>
void addCategory(std::initializer_list<Method> methods, std::initializer_list<Method> classMethods = {}) {
    classOf<T>().addMethods(methods);
    classOf<T>().addClassMethods(classMethods);
}

// A row of the key table: property<&AppController::paths, &AppController::setPaths_>("paths").
template <auto getter, auto setter>
constexpr Property property(std::string_view key) {
    return {key, &detail::getProperty<getter>, &detail::setProperty<getter, setter>,
            !std::is_base_of_v<id, typename detail::Invoker<getter>::Value>};
}

template <auto getter>
constexpr Property readOnlyProperty(std::string_view key) {
    return {key, &detail::getProperty<getter>, nullptr, false};
}

}
