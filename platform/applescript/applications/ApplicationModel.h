#pragma once

#include "platform/applescript/applications/Dictionary.h"
#include "platform/applescript/runtime/Application.h"

namespace mac::applescript {

// An object of an application, made when a specifier is resolved and destroyed when the command is done. It answers for
// the real thing, which may change or go at any time.
class ModelObject {
public:
    ModelObject() = default;
    virtual ~ModelObject() = default;
    ModelObject(ModelObject const&) = delete;
    ModelObject& operator=(ModelObject const&) = delete;

    // Its class, with the functions that read and set its properties and list its elements.
    virtual ClassRow const& row() const = 0;
    // By which scripts are told of it.
    virtual Value specifier() const = 0;

    Code type() const { return row().code; }
    // Also for the classes that its own is a kind of.
    virtual bool isOfType(Code sought) const { return row().isKindOf(sought); }

    // The property's object or value; neither of them if the object lacks the property.
    PropertyAnswer answer(Code code);
    // The value of the property, for an object its specifier; nullopt if the object has no such property.
    std::optional<Value> property(Code code);
    // The record of the properties that are listed in it.
    Value properties();
    // False for a property that it lacks, or that cannot be set.
    bool setProperty(Code code, Value const& value, TextContext const& context);
    // The elements of the class in their order; nullopt if it has no such elements.
    std::optional<std::vector<ModelPointer>> elements(Code elementType);
    // Null where there is none.
    virtual ModelPointer elementNamed(Code elementType, std::u16string const& name);
    virtual ModelPointer elementIdentified(Code elementType, Value const& identifier);

    // The object coerced to the class (text, alias …); nullopt if it cannot be coerced.
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
    // Answers one dictionary as long as the program runs.
    virtual Dictionary const& dictionary() const = 0;
    Terminology const* terms() const final;
    Value get(Value const& specifier, Code type, TextContext const& context) final;
    void set(Value const& specifier, Value const& value, TextContext const& context) final;
    bool exists(Value const& specifier, TextContext const& context) final;
    std::size_t count(Value const& specifier, Code elementClass, TextContext const& context) final;
    Value perform(Evaluator& evaluator, ApplicationCommand const& command) final;

    // The object as scripts of other applications name it.
    Value self() const;
    // What the value leads to; throws where there is nothing.
    Meant follow(Value const& meant, TextContext const& context);
    // The objects that a list of specifiers names; throws -10010 for an element that is not an object.
    std::vector<ModelPointer> objects(Value const& meant, TextContext const& context);
    // The direct parameter, or what is being told.
    static Value directOf(ApplicationCommand const& command);
    // The container that a new object is put into: X of `at end of folders of X`, else what is being told.
    static Value placeOf(ApplicationCommand const& command);
    // The container that something is moved or copied into: X of `to end of folders of X`, else the destination itself.
    static Value containerMeantBy(Value const& destination);

protected:
    virtual ModelPointer root() = 0;
    // The object that a file stands for; null if the application has none for it.
    virtual ModelPointer objectOfFile(FileObject const& file);

private:
    mutable std::optional<Terminology> m_terms{};
};

} // namespace mac::applescript
