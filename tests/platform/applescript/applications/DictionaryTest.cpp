#include "platform/applescript/applications/Dictionary.h"
#include "platform/applescript/applications/ApplicationModel.h"
#include "platform/applescript/applications/Program.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ScriptEngine.h"
#include "platform/foundation/text/Encodings.h"
#include "tests/platform/applescript/ScriptHome.h"
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <set>

namespace mac::applescript::test {

namespace {

std::vector<ModelApplication*> modelApplications() {
    std::vector<ModelApplication*> all;
    for (Application* const application :
         {&finderApplication(), &systemEventsApplication(), &systemPreferencesApplication()})
        all.push_back(static_cast<ModelApplication*>(application));
    return all;
}

std::string shown(std::u16string_view name) { return utf8FromUnits(std::u16string(name)); }

// One name has one code within an application, and one code one name.
TEST(Dictionaries, NameEachCodeOnce) {
    int seen = 0;
    for (ModelApplication const* const application : modelApplications()) {
        std::map<std::u16string_view, Code> codes;
        for (ClassRow const* const row : application->dictionary().classes) {
            std::set<Code> own;
            for (PropertyRow const& property : row->properties) {
                ++seen;
                EXPECT_TRUE(own.insert(property.code).second) << shown(row->name) << ": " << shown(property.name);
                if (property.name.empty()) continue;
                Code const known = codes.try_emplace(property.name, property.code).first->second;
                EXPECT_EQ(known, property.code) << shown(property.name);
            }
        }
    }
    EXPECT_GT(seen, 50);
}

// Objects of the classes, by the script that leads to one.
std::map<std::string, std::u16string> const& samples() {
    static std::map<std::string, std::u16string> const all{
        {"Finder", u"application \"Finder\""},
        {"Finder trash-object", u"trash of application \"Finder\""},
        {"Finder item", u"item 1 of home of application \"Finder\""},
        {"Finder container", u"home of application \"Finder\""},
        {"Finder folder", u"home of application \"Finder\""},
        {"Finder disk", u"startup disk of application \"Finder\""},
        {"Finder file", u"file \"f1.txt\" of folder \"Documents\" of home of application \"Finder\""},
        {"Finder document file", u"file \"f1.txt\" of folder \"Documents\" of home of application \"Finder\""},
        {"Finder application file", u"file \"Mirror.app\" of desktop of application \"Finder\""},
        {"Finder alias file", u"file \"link\" of home of application \"Finder\""},
        {"Finder package", u"file \"Mirror.app\" of desktop of application \"Finder\""},
        {"Finder process", u"process 1 of application \"Finder\""},
        {"Finder application process", u"process 1 of application \"Finder\""},
        {"System Events", u"application \"System Events\""},
        {"System Events user", u"current user of application \"System Events\""},
        {"System Events login item", u"login item 1 of application \"System Events\""},
        {"System Events item", u"startup disk of application \"System Events\""},
        {"System Events disk item", u"home folder of application \"System Events\""},
        {"System Events file", u"disk item \"Documents/f1.txt\" of application \"System Events\""},
        {"System Events folder", u"home folder of application \"System Events\""},
        {"System Events disk", u"startup disk of application \"System Events\""},
        {"System Events process", u"process 1 of application \"System Events\""},
        {"System Events application process", u"process 1 of application \"System Events\""},
        {"System Events property list file", u"property list file \"a.plist\" of application \"System Events\""},
        {"System Events property list item",
         u"property list item \"k\" of property list file \"a.plist\" of application \"System Events\""},
        {"System Preferences", u"application \"System Preferences\""},
        {"System Preferences pane", u"pane 1 of application \"System Preferences\""},
    };
    return all;
}

Value sampleOf(std::u16string const& application, std::u16string const& reference) {
    ScriptError error;
    std::u16string const source =
        u"using terms from application \"" + application + u"\"\na reference to " + reference + u"\nend";
    std::optional<CompiledScript> script = CompiledScript::compile(source, error);
    EXPECT_TRUE(script) << utf8FromUnits(error.message);
    static std::vector<CompiledScript> kept;
    kept.push_back(*std::move(script));
    return kept.back().run({}).value;
}

bool hasType(Value const& value, Code type) {
    if (value.isMissing() || type == codes::AnyType) return true;
    if (value.is(ValueKind::Specifier)) return type != codes::TextType && type != codes::NumberType;
    if (value.is(ValueKind::Type)) return type == codes::ClassType;
    return isOfClass(value, type);
}

// Every property answers on an object of its class: a value of the row's class, or that this object lacks it.
TEST(Dictionaries, AnswerWhatTheirRowsSay) {
    ScriptHome const home;
    std::filesystem::create_symlink(home.path("Documents/f1.txt"), home.path("link"));
    home.folder().makeFile("a.plist",
                           "<?xml version=\"1.0\"?><plist><dict><key>k</key><string>v</string></dict></plist>");
    ScriptError error;
    CompiledScript::compile(u"tell application \"System Events\" to make login item with properties {path:\"/b.app\"}",
                            error)
        ->run({});
    int answered = 0;
    for (ModelApplication* const application : modelApplications()) {
        for (ClassRow const* const row : application->dictionary().classes) {
            std::string const name = shown(application->name()) + (row->name.empty() ? "" : " " + shown(row->name));
            if (row->properties.empty() && row->elements.empty()) continue;
            auto const sample = samples().find(name);
            ASSERT_NE(sample, samples().end()) << name << " has no sample";
            Value const object = sampleOf(application->name(), sample->second);
            for (PropertyRow const& property : row->properties) {
                Value const part = propertySpecifier(termSymbol(property.code, property.name), object);
                try {
                    Value const value = application->get(part, 0, engineState().text);
                    EXPECT_TRUE(hasType(value, property.type)) << name << ": " << shown(property.name);
                    ++answered;
                } catch (ScriptError const& thrown) {
                    bool const lacks =
                        thrown.number == errors::CannotGet || thrown.number == errors::PrivilegeViolation;
                    EXPECT_TRUE(lacks) << name << ": " << shown(property.name) << ": " << thrown.number;
                }
            }
        }
    }
    EXPECT_GT(answered, 100);
}

} // namespace

} // namespace mac::applescript::test
