#pragma once

#include "platform/applescript/runtime/Application.h"
#include <functional>
#include <memory>

namespace mac::applescript {

class ModelObject;
using ModelPointer = std::shared_ptr<ModelObject>;

// One object of an application, made when a specifier leads to it and gone when the command is done. It answers for the
// real thing, which may change or go at any time.
class ModelObject {
public:
    ModelObject() = default;
    virtual ~ModelObject() = default;
    ModelObject(ModelObject const&) = delete;
    ModelObject& operator=(ModelObject const&) = delete;

    virtual Code type() const = 0;
    // Also for the classes that its own is a kind of.
    virtual bool isOfType(Code sought) const { return sought == type() || sought == codeOf("cobj"); }
    // By which scripts are told of it.
    virtual Value specifier() const = 0;

    // Nothing for a property that it has not. A specifier stands for the object it leads to.
    virtual std::optional<Value> property(Code code);
    // A property that is an object itself; null for any other.
    virtual ModelPointer objectProperty(Code code);
    // Those that `properties` is a record of.
    virtual std::vector<Code> propertyCodes() const { return {}; }
    // False for a property that it has not, or that cannot be set.
    virtual bool setProperty(Code code, Value const& value, TextContext const& context);

    // Of the class and in their order; nothing where it has no such elements.
    virtual std::optional<std::vector<ModelPointer>> elements(Code elementType);
    // Null where there is none.
    virtual ModelPointer elementNamed(Code elementType, std::u16string const& name);
    virtual ModelPointer elementIdentified(Code elementType, Value const& identifier);

    // As text, an alias …; nothing where it cannot be.
    virtual std::optional<Value> coerced(Code wanted);
};

// What a specifier leads to: one object or value, or a list of them where it means many.
struct Meant {
    ModelPointer object{};
    Value value{};
    std::optional<std::vector<Meant>> list{};
};

// An application that is part of this engine: what scripts ask is answered by its objects.
class ModelApplication : public Application {
public:
    Value get(Value const& specifier, Code type, TextContext const& context) final;
    void set(Value const& specifier, Value const& value, TextContext const& context) final;
    bool exists(Value const& specifier, TextContext const& context) final;
    std::size_t count(Value const& specifier, Code elementClass, TextContext const& context) final;
    Value perform(Evaluator& evaluator, ApplicationCommand const& command) final;

    // As scripts of other applications name it.
    Value self() const;
    // What the value leads to; throws where there is nothing.
    Meant follow(Value const& meant, TextContext const& context);
    // The same in a row; whatever is no object throws -10010.
    std::vector<ModelPointer> objects(Value const& meant, TextContext const& context);
    // The direct parameter, or what is being told.
    static Value directOf(ApplicationCommand const& command);

protected:
    virtual ModelPointer root() = 0;
    // The object that a file stands for; null where there is none.
    virtual ModelPointer objectOfFile(FileObject const& file);
    // Nothing for a command that it does not understand.
    virtual std::optional<Value> carryOut(Evaluator& evaluator, ApplicationCommand const& command) = 0;
};

} // namespace mac::applescript
