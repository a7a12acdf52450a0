#include "platform/applescript/applications/SystemEvents.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/Evaluator.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/preferences/CFPreferences.h"
#include "platform/preferences/LoginItemsStore.h"
#include <array>

// The programs that start at log-in.

namespace mac::applescript::system_events {

namespace {

constexpr char LoginItemsDomain[] = "loginwindow";
constexpr char LoginItemsKey[] = "AutoLaunchedApplicationDictionary";

bool synchronizeLoginItems() {
    return CFPreferencesSynchronize(LoginItemsDomain, kCFPreferencesCurrentUser, kCFPreferencesAnyHost);
}

// The login items as last read.
NSArray knownLoginItems() {
    NSArray const items = as<NSArray>(
        CFPreferencesCopyValue(LoginItemsKey, LoginItemsDomain, kCFPreferencesCurrentUser, kCFPreferencesAnyHost));
    return items == nil ? NSArray::array() : items;
}

void writeLoginItemList(NSArray const& items) {
    CFPreferencesSetValue(LoginItemsKey, items, LoginItemsDomain, kCFPreferencesCurrentUser, kCFPreferencesAnyHost);
    if (!synchronizeLoginItems()) throw plainError(errors::InputOutput);
}

NSUInteger indexOf(NSArray const& items, NSDictionary const& item) {
    NSUInteger const index = items.indexOfObjectIdenticalTo_(item);
    return index == NSNotFound ? items.indexOfObject_(item) : index;
}

NSDictionary loginItem(NSString const& path, bool isHidden) {
    return NSDictionary::dictionaryWithObjectsAndKeys_(
        {NSNumber::numberWithBool_(isHidden ? YES : NO), "Hide", path.stringByAbbreviatingWithTildeInPath(), "Path"});
}

class LoginItem final : public ModelObject {
public:
    explicit LoginItem(NSDictionary item) : m_item(std::move(item)) {}

    ClassRow const& row() const override { return LoginItemRow; }
    Value specifier() const override { return elementSpecifier(Form::Name, codes::LoginItem, itself(), name()); }

    Value name() const {
        NSString const last = path().lastPathComponent();
        return Value::text(std::u16string((isApplication() ? last.stringByDeletingPathExtension() : last).codeUnits()));
    }
    Value pathText() const { return Value::text(std::u16string(path().codeUnits())); }
    Value kind() const { return Value::text(isApplication() ? u"Application" : u"UNKNOWN"); }
    Value isHidden() const { return Value::boolean(as<NSNumber>(m_item.objectForKey_("Hide")).boolValue()); }

    // Linux: of another program's entry nothing is changed.
    bool setHidden(Value const& value, TextContext const& context) {
        NSNumber const isHidden = NSNumber::numberWithBool_(requireBoolean(value, context) ? YES : NO);
        if (isHidden.isEqual_(m_item.objectForKey_("Hide"))) return true;
        NSArray const items = knownLoginItems();
        NSUInteger const index = indexOf(items, m_item);
        if (index == NSNotFound || !isOwnLoginItem(items.objectAtIndex_(index))) return false;
        NSMutableDictionary const changed = NSMutableDictionary::dictionaryWithDictionary_(m_item);
        changed.setObject_forKey_(isHidden, "Hide");
        NSMutableArray const list = NSMutableArray::arrayWithArray_(items);
        list.replaceObjectAtIndex_withObject_(index, NSDictionary::dictionaryWithDictionary_(changed));
        writeLoginItemList(list);
        return true;
    }

    NSDictionary const& dictionary() const { return m_item; }

private:
    NSString path() const {
        NSString const written = as<NSString>(m_item.objectForKey_("Path"));
        return written == nil ? NSString::string() : written.stringByStandardizingPath();
    }
    bool isApplication() const { return path().pathExtension().lowercaseString().isEqualToString_("app"); }

    NSDictionary m_item;
};

constexpr auto LoginItemProperties = std::to_array<PropertyRow>({
    {u"name", codes::Name, codes::TextType, reading<&LoginItem::name>},
    {u"path", codes::Path, codes::TextType, reading<&LoginItem::pathText>},
    {u"kind", codes::Kind, codes::TextType, reading<&LoginItem::kind>},
    {u"hidden", codes::Hidden, codes::BooleanType, reading<&LoginItem::isHidden>, writing<&LoginItem::setHidden>},
});

} // namespace

constinit ClassRow const LoginItemRow{
    .name = u"login item", .plural = u"login items", .code = codes::LoginItem, .properties = LoginItemProperties};

std::vector<ModelPointer> loginItems() {
    // What could be read is answered also if not everything could.
    (void)synchronizeLoginItems();
    std::vector<ModelPointer> all;
    for (id const& item : knownLoginItems()) {
        NSDictionary const dictionary = as<NSDictionary>(item);
        if (dictionary != nil) all.push_back(std::make_shared<LoginItem>(dictionary));
    }
    return all;
}

bool isLoginItem(ModelObject const& object) { return object.type() == codes::LoginItem; }

void removeLoginItems(std::vector<ModelPointer> const& objects) {
    NSMutableArray const items = NSMutableArray::arrayWithArray_(knownLoginItems());
    for (ModelPointer const& object : objects) {
        NSUInteger const index = indexOf(items, static_cast<LoginItem const&>(*object).dictionary());
        if (index != NSNotFound) items.removeObjectAtIndex_(index);
    }
    writeLoginItemList(items);
}

Value makeLoginItem(ApplicationCommand const& command, TextContext const& context) {
    Value const* const properties = command.find(codes::PropertiesParameter);
    if (properties && !properties->is(ValueKind::Record)) throw cannotMake(*properties, codes::RecordType);
    NSString path = nil;
    bool isHidden = false;
    for (auto const& [key, value] : properties ? properties->fields() : std::vector<std::pair<Symbol, Value>>()) {
        if (key->code == codes::Path) path = NSString::stringWithCodeUnits(requireText(value, context));
        if (key->code == codes::Hidden) isHidden = requireBoolean(value, context);
    }
    if (!path.hasPrefix_("/") && !path.hasPrefix_("~")) throw missingParameter(u"path", command.term.name);
    (void)synchronizeLoginItems();
    NSDictionary const item = loginItem(path, isHidden);
    writeLoginItemList(knownLoginItems().arrayByAddingObject_(item));
    return LoginItem(item).specifier();
}

} // namespace mac::applescript::system_events
