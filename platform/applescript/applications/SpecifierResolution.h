#pragma once

#include "platform/applescript/applications/ApplicationModel.h"

namespace mac::applescript {

// The application whose objects are meant.
struct ResolvedApplication {
    // The application's own object.
    ModelPointer root;
    // The object of a file, or null.
    std::function<ModelPointer(FileObject const&)> fileObject;
    Dictionary const& dictionary;
};

// Follows one specifier through the objects of an application.
class SpecifierResolution {
public:
    SpecifierResolution(ResolvedApplication application, TextContext const& context)
        : m_root(std::move(application.root)), m_fileObject(std::move(application.fileObject)),
          m_dictionary(application.dictionary), m_context(context) {}

    Meant follow(Value const& meant);
    // The values of what is meant, lists in lists as it is.
    Value valueOf(Meant const& meant);

private:
    Meant origin(Value const& meant);
    // The part of every one of the containers.
    Meant partOf(Meant const& container, Value const& part);
    Meant propertyOf(Meant const& container, Value const& part);
    Meant elementOf(Meant const& container, Value const& part);
    Meant elementByPlace(ModelObject& container, Value const& part);
    Meant filtered(Meant const& container, Value const& filter);
    Meant chosen(std::vector<ModelPointer> const& all, Value const& part, Value const& complaint);
    std::size_t placeOfEnd(std::vector<ModelPointer> const& all, Value const& end, Value const& complaint);
    // The objects of the class in a list of specifiers.
    std::vector<ModelPointer> elementsIn(Value const& list, Code elementType);
    // Whether objects of the class may have the properties that the condition is about.
    bool isAnswerable(Value const& test, Code elementType) const;
    bool isProperty(Value const& operand, Code elementType) const;
    bool isPropertyOfApplication(Value const& operand) const;
    bool holds(Value const& test, ModelPointer const& examined);
    std::optional<bool> truthOf(Value const& test, ModelPointer const& examined);
    Value operand(Value const& written, ModelPointer const& examined);
    Value comparand(Value const& written, ModelPointer const& examined);

    ModelPointer m_root;
    std::function<ModelPointer(FileObject const&)> m_fileObject;
    Dictionary const& m_dictionary;
    TextContext const& m_context;
    ModelPointer m_examined{};
};

} // namespace mac::applescript
