#include "platform/applescript/applications/SystemEvents.h"
#include "platform/applescript/applications/ApplicationList.h"
#include "platform/applescript/applications/Finder.h"
#include "platform/applescript/applications/FinderPlaces.h"
#include "platform/applescript/runtime/Evaluator.h"
#include "platform/desktop/LogOut.h"
#include "platform/foundation/Encodings.h"
#include "platform/system/BytePath.h"
#include "platform/system/Users.h"
#include <algorithm>
#include <pwd.h>
#include <unistd.h>

namespace mac::applescript {

namespace {

constexpr std::int32_t MayNotDoThat = -10004;

// The user who runs this program.
class CurrentUser final : public ModelObject {
public:
    Code type() const override { return codeOf("uacc"); }
    Value specifier() const override {
        return elementSpecifier(Form::Name, codeOf("uacc"), system_events::itself(), Value::text(shortName()));
    }
    std::optional<Value> property(Code code) override {
        switch (code) {
        case codeOf("pcls"):
            return Value::type(codeOf("uacc"));
        case codeOf("pnam"):
            return Value::text(shortName());
        case codeOf("anam"):
            return Value::text(fullName());
        case codeOf("home"):
            return makeObject<FileObject>(ValueKind::File, FileObject::Kind::Alias,
                                          unitsFromFileSystemBytes(homePath()));
        default:
            return {};
        }
    }

private:
    // The first part of what the user database says about the person.
    static std::u16string fullName() {
        passwd const* const record = ::getpwuid(::getuid());
        std::string_view const about = record && record->pw_gecos ? record->pw_gecos : "";
        std::string_view const name = about.substr(0, about.find(','));
        return name.empty() ? shortName() : unitsFromFileSystemBytes(name);
    }
    static std::u16string shortName() { return unitsFromFileSystemBytes(nameOfUser(::getuid()).value_or("")); }
};

class SystemEventsRoot final : public ModelObject {
public:
    Code type() const override { return codeOf("capp"); }
    Value specifier() const override { return system_events::itself(); }

    std::optional<Value> property(Code code) override {
        switch (code) {
        case codeOf("pcls"):
            return Value::type(codeOf("capp"));
        case codeOf("pnam"):
            return Value::text(u"System Events");
        case codeOf("ID  "):
            return Value::text(u"com.apple.systemevents");
        case codeOf("vers"):
            return Value::text(u"1.3");
        case codeOf("prun"):
            return Value::boolean(true);
        case codeOf("pisf"):
            return Value::boolean(false);
        default:
            return {};
        }
    }

    ModelPointer objectProperty(Code code) override {
        switch (code) {
        case codeOf("curu"):
            return std::make_shared<CurrentUser>();
        case codeOf("cusr"):
        case codeOf("home"):
            return system_events::diskItemAt(homePath());
        case codeOf("desk"):
            return system_events::diskItemAt(desktopPath());
        case codeOf("sdsk"):
            return system_events::diskItemAt("/");
        default:
            return nullptr;
        }
    }

    std::optional<std::vector<ModelPointer>> elements(Code elementType) override {
        switch (elementType) {
        case codeOf("prcs"):
        case codeOf("pcap"):
            return system_events::processes(elementType);
        case codeOf("logi"):
            return system_events::loginItems();
        case codeOf("cdis"):
            return system_events::disks();
        case codeOf("uacc"):
            return std::vector<ModelPointer>{std::make_shared<CurrentUser>()};
        case codeOf("ditm"):
        case codeOf("file"):
        case codeOf("cfol"): {
            ModelPointer const home = system_events::diskItemAt(homePath());
            return home ? home->elements(elementType) : std::nullopt;
        }
        default:
            return {};
        }
    }

    ModelPointer elementNamed(Code elementType, std::u16string const& name) override {
        switch (elementType) {
        case codeOf("ditm"):
        case codeOf("file"):
        case codeOf("cfol"):
        case codeOf("cdis"):
        case codeOf("cobj"):
            return system_events::diskItemNamed(elementType, name);
        default:
            return ModelObject::elementNamed(elementType, name);
        }
    }
};

class SystemEvents final : public ModelApplication {
public:
    std::u16string name() const override { return u"System Events"; }
    std::u16string identifier() const override { return u"com.apple.systemevents"; }
    Terminology const* terms() const override { return &systemEventsTerms(); }
    bool isRunning() const override { return true; }

protected:
    ModelPointer root() override { return std::make_shared<SystemEventsRoot>(); }

    ModelPointer objectOfFile(FileObject const& file) override {
        std::optional<std::string> const path = fileSystemBytesFromUnits(file.path);
        return path ? system_events::diskItemAt(*path) : nullptr;
    }

    std::optional<Value> carryOut(Evaluator& evaluator, ApplicationCommand const& command) override {
        switch (command.term.code) {
        case eventOf("coredelo"):
            return remove(evaluator, command);
        case eventOf("coremove"):
            return move(evaluator, command);
        case eventOf("corecrel"):
            return make(evaluator, command);
        case eventOf("miscactv"):
        case eventOf("ascrnoop"):
        case eventOf("aevtoapp"):
        case eventOf("aevtrapp"):
        case eventOf("aevtquit"):
            // It is always there, without a window.
            return Value();
        case eventOf("fndrlogo"):
            return logOut();
        case eventOf("fndrrest"):
        case eventOf("fndrshut"):
        case eventOf("fndrslep"):
            // Linux: only the log-out has the desktop ask.
            throw plainError(MayNotDoThat);
        default:
            return {};
        }
    }

private:
    // The user is asked, and may still cancel.
    static Value logOut() {
        DesktopOutcome const asked = askToLogOut();
        if (asked.isDone()) return {};
        DesktopProblem const& problem = asked.problem();
        bool const isLate = problem.kind == DesktopProblem::Kind::NoAnswer;
        throw ScriptError{.number = isLate ? errors::TimedOut : MayNotDoThat,
                          .message = unitsFromFileSystemBytes(problem.text + ".")};
    }

    // Linux: other things are the Finder's to make.
    static Value make(Evaluator& evaluator, ApplicationCommand const& command) {
        Value const* const named = command.find(codeOf("kocl"));
        Value const type = named ? *named : command.direct;
        if (!type.is(ValueKind::Type)) throw missingParameter(u"new", command.term.name);
        if (type.asCode() == codeOf("logi")) return system_events::makeLoginItem(command, evaluator.context());
        throw ScriptError{.number = -2710, .message = u"Can’t make class " + nameOfCode(type.asCode()) + u"."};
    }

    // Linux: to the trash, from where it can be put back.
    Value remove(Evaluator& evaluator, ApplicationCommand const& command) {
        std::vector<ModelPointer> const all = objects(directOf(command), evaluator.context());
        bool const areLoginItems = !all.empty() && std::ranges::all_of(all, [](ModelPointer const& object) {
            return system_events::isLoginItem(*object);
        });
        if (areLoginItems) {
            system_events::removeLoginItems(all);
            return {};
        }
        for (ModelPointer const& object : all) {
            std::shared_ptr<FinderItem> const item = system_events::itemOf(*object);
            if (!item) throw plainError(-10010);
            finder::movedToTrash(*item);
        }
        return {};
    }

    Value move(Evaluator& evaluator, ApplicationCommand const& command) {
        Value const* const to = command.find(codeOf("insh"));
        if (!to) throw missingParameter(u"to", command.term.name);
        TextContext const& context = evaluator.context();
        std::vector<ModelPointer> const places = objects(*to, context);
        std::shared_ptr<FinderItem> const folder =
            places.size() == 1 ? system_events::itemOf(*places.front()) : nullptr;
        if (!folder || !folder->isFolder()) throw plainError(-10024);
        Value const meant = directOf(command);
        std::vector<Value> answers;
        for (ModelPointer const& object : objects(meant, context)) {
            std::shared_ptr<FinderItem> const item = system_events::itemOf(*object);
            if (!item) throw plainError(-10010);
            finder::moveInto(evaluator, *item, *folder, NameClash::IsRefused);
            ModelPointer const moved =
                system_events::diskItemAt(BytePath(folder->path()).joined(BytePath(item->path()).leaf()));
            answers.push_back(moved ? moved->specifier() : Value::missing());
        }
        return finder::answerOf(meant, std::move(answers));
    }
};

} // namespace

namespace system_events {

Value itself() { return makeObject<ApplicationObject>(ValueKind::Application, u"System Events", false); }

} // namespace system_events

Application& systemEventsApplication() {
    static SystemEvents application;
    return application;
}

} // namespace mac::applescript
