#pragma once

#include "platform/applescript/applications/ApplicationModel.h"

namespace mac::applescript {

// Follows one specifier through the objects of an application.
class SpecifierResolution {
public:
    // `root` is the application's own object; `fileObject` answers the object of a file, or null.
    SpecifierResolution(ModelPointer root, std::function<ModelPointer(FileObject const&)> fileObject,
                        TextContext const& context)
        : m_root(std::move(root)), m_fileObject(std::move(fileObject)), m_context(context) {}

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
    bool holds(Value const& test, ModelPointer const& examined);
    std::optional<bool> truthOf(Value const& test, ModelPointer const& examined);
    Value operand(Value const& written, ModelPointer const& examined);
    Value comparand(Value const& written, ModelPointer const& examined);

    ModelPointer m_root;
    std::function<ModelPointer(FileObject const&)> m_fileObject;
    TextContext const& m_context;
    ModelPointer m_examined{};
};

} // namespace mac::applescript
