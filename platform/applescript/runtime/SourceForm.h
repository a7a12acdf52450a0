#pragma once

#include "platform/applescript/runtime/ScriptValue.h"

namespace mac::applescript {

// A value as a script would write it: text between quotes, {1, 2}, {name:"x"}, item 1 of {1, 2}.
std::u16string sourceForm(Value const& value);
// A value as a person reads it: text as it is, items after commas.
std::u16string humanForm(Value const& value);
// The path as HFS text: volume and folders after colons; folders end with one.
std::u16string filePathText(Value const& file);

// While an object of this class exists, references into the application are written without the application's name.
class WithinApplication {
public:
    explicit WithinApplication(Value const& application);
    ~WithinApplication();
    WithinApplication(WithinApplication const&) = delete;
    WithinApplication& operator=(WithinApplication const&) = delete;

private:
    Value m_application;
    Value const* m_outer;
};

} // namespace mac::applescript
