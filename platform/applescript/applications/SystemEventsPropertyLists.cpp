#include "platform/applescript/applications/SystemEvents.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Application.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/FileErrors.h"
#include "platform/files/references/HFSPaths.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/system/FileWriting.h"
#include <array>
#include <variant>

// Property lists in files. Nothing of them is kept: each question reads the file, each change replaces it.

namespace mac::applescript::system_events {

namespace {

// A dictionary's key or an array's index.
using Step = std::variant<std::u16string, NSUInteger>;
using Steps = std::vector<Step>;

NSString stringOf(std::u16string const& units) { return NSString::stringWithCodeUnits(units); }

struct ReadPropertyList {
    id root{};
    NSPropertyListFormat format{NSPropertyListXMLFormat_v1_0};
};

// The list in the file; throws for a file that is missing or holds none.
ReadPropertyList readPropertyList(std::string const& path) {
    std::u16string const units = unitsFromFileSystemBytes(path);
    NSData const data = NSData::dataWithContentsOfFile_(stringOf(units));
    if (data == nil) throw fileNotFound(makeObject<FileObject>(ValueKind::File, FileObject::Kind::File, units));
    ReadPropertyList read;
    read.root = NSPropertyListSerialization::propertyListFromData_mutabilityOption_format_errorDescription_(
        data, NSPropertyListImmutable, &read.format, nullptr);
    if (read.root == nil) throw plainError(errors::CorruptData);
    // The old-style format is read only.
    if (read.format == NSPropertyListOpenStepFormat) read.format = NSPropertyListXMLFormat_v1_0;
    return read;
}

// Nil if the step leads nowhere.
id childOf(id const& parent, Step const& step) {
    if (std::u16string const* const key = std::get_if<std::u16string>(&step))
        return as<NSDictionary>(parent).objectForKey_(stringOf(*key));
    NSArray const array = as<NSArray>(parent);
    NSUInteger const index = std::get<NSUInteger>(step);
    return index < array.count() ? array.objectAtIndex_(index) : nil;
}

// The container with the object that the steps lead to replaced; a key that is missing is added. Nil if a step leads
// nowhere.
id replacedAt(id const& container, std::span<Step const> steps, id const& object) {
    if (steps.empty()) return object;
    id const old = childOf(container, steps.front());
    id const changed = replacedAt(old, steps.subspan(1), object);
    if (changed == nil) return nil;
    if (std::u16string const* const key = std::get_if<std::u16string>(&steps.front())) {
        if (as<NSDictionary>(container) == nil) return nil;
        NSMutableDictionary const copy = NSMutableDictionary::dictionaryWithDictionary_(as<NSDictionary>(container));
        copy.setObject_forKey_(changed, stringOf(*key));
        return copy;
    }
    if (old == nil) return nil;
    NSMutableArray const copy = NSMutableArray::arrayWithArray_(as<NSArray>(container));
    copy.replaceObjectAtIndex_withObject_(std::get<NSUInteger>(steps.front()), changed);
    return copy;
}

void writePropertyList(std::string const& path, id const& root, NSPropertyListFormat format, Value const& object) {
    NSData const data =
        NSPropertyListSerialization::dataFromPropertyList_format_errorDescription_(root, format, nullptr);
    if (data == nil) throw plainError(errors::CorruptData);
    Result<void> const written = replaceFileAtPath(path, data.span());
    if (!written.isDone()) throw fileError(written.problem(), object);
}

Code kindOf(id const& object) {
    if (as<NSDictionary>(object) != nil) return codes::RecordType;
    if (as<NSArray>(object) != nil) return codes::ListType;
    Value const value = valueOfPropertyList(object);
    if (value.is(ValueKind::Text)) return codes::StringType;
    return value.isNumber() ? codes::NumberType : classOfValue(value);
}

class PropertyListItem final : public ModelObject {
public:
    PropertyListItem(std::string path, Steps steps, Value specifier)
        : m_path(std::move(path)), m_steps(std::move(steps)), m_specifier(std::move(specifier)) {}

    ClassRow const& row() const override;
    Value specifier() const override { return m_specifier; }

    Value name() const {
        bool const hasName = !m_steps.empty() && std::holds_alternative<std::u16string>(m_steps.back());
        return hasName ? Value::text(std::get<std::u16string>(m_steps.back())) : Value::missing();
    }
    Value value() const { return valueOfPropertyList(object()); }
    Value kind() const { return Value::type(kindOf(object())); }

    bool setValue(Value const& value, TextContext const& context) {
        Value const given = resolvedValue(value, context);
        ReadPropertyList const read = readPropertyList(m_path);
        id const changed = replacedAt(read.root, m_steps, propertyListOfValue(given));
        if (changed == nil) throw cannotGet(m_specifier);
        writePropertyList(m_path, changed, read.format, m_specifier);
        return true;
    }

    std::optional<std::vector<ModelPointer>> items(Code /*elementType*/) {
        id const own = object();
        std::vector<ModelPointer> all;
        if (NSDictionary const dictionary = as<NSDictionary>(own); dictionary != nil) {
            for (id const& key : dictionary.allKeys())
                all.push_back(child(Step(std::u16string(as<NSString>(key).codeUnits()))));
            return all;
        }
        NSUInteger const count = as<NSArray>(own).count();
        for (NSUInteger index = 0; index < count; ++index)
            all.push_back(child(Step(index)));
        return all;
    }

    // Keys are compared letter by letter, as property lists do.
    ModelPointer elementNamed(Code elementType, std::u16string const& name) override {
        if (elementType != codes::PropertyListItem || childOf(object(), Step(name)) == nil) return nullptr;
        return child(Step(name));
    }

    // Adds the value under the key, or to an array; answers the new item.
    ModelPointer add(std::u16string const& key, Value const& value) {
        ReadPropertyList const read = readPropertyList(m_path);
        id const own = object();
        Steps steps = m_steps;
        id changed;
        if (NSArray const array = as<NSArray>(own); array != nil) {
            steps.emplace_back(array.count());
            changed = replacedAt(read.root, m_steps, array.arrayByAddingObject_(propertyListOfValue(value)));
        } else {
            if (as<NSDictionary>(own) == nil) throw plainError(errors::CannotPutThere);
            if (key.empty()) throw missingParameter(u"name", u"make");
            steps.emplace_back(key);
            changed = replacedAt(read.root, steps, propertyListOfValue(value));
        }
        writePropertyList(m_path, changed, read.format, m_specifier);
        return child(steps.back());
    }

private:
    static Value resolvedValue(Value const& value, TextContext const& context) {
        return isInApplication(value) ? getInApplication(value, 0, context) : value;
    }

    id object() const {
        id found = readPropertyList(m_path).root;
        for (Step const& step : m_steps)
            found = childOf(found, step);
        if (found == nil) throw cannotGet(m_specifier);
        return found;
    }

    ModelPointer child(Step const& step) const {
        Steps steps = m_steps;
        steps.push_back(step);
        std::u16string const* const key = std::get_if<std::u16string>(&step);
        Value const specifier =
            key ? elementSpecifier(Form::Name, codes::PropertyListItem, m_specifier, Value::text(*key))
                : elementSpecifier(Form::Index, codes::PropertyListItem, m_specifier,
                                   Value::number(static_cast<double>(std::get<NSUInteger>(step) + 1)));
        return std::make_shared<PropertyListItem>(m_path, std::move(steps), specifier);
    }

    std::string m_path;
    Steps m_steps;
    Value m_specifier;
};

class PropertyListFile final : public ModelObject {
public:
    explicit PropertyListFile(std::shared_ptr<FinderItem> item) : m_item(std::move(item)) {}

    ClassRow const& row() const override;
    Value specifier() const override { return elementSpecifier(Form::Name, codes::PropertyListFile, itself(), path()); }
    Value name() const { return m_item->property(codes::Name).value_or(Value::missing()); }
    Value path() const { return Value::text(hfsPathFromPOSIXPath(unitsFromFileSystemBytes(m_item->path()), false)); }
    Value posixPath() const { return Value::text(unitsFromFileSystemBytes(m_item->path())); }
    ModelPointer contents() const {
        return std::make_shared<PropertyListItem>(
            m_item->path(), Steps(), propertySpecifier(termSymbol(codes::Contents, u"contents"), specifier()));
    }
    // Reads the property from the whole list, since a script's `contents of` is lost on the way here.
    template <Code Property>
    Value ofContents() const {
        return contents()->property(Property).value_or(Value::missing());
    }
    bool setValue(Value const& value, TextContext const& context) const {
        return contents()->setProperty(codes::Value, value, context);
    }
    std::optional<std::vector<ModelPointer>> items(Code elementType) const { return contents()->elements(elementType); }
    ModelPointer elementNamed(Code elementType, std::u16string const& name) override {
        return contents()->elementNamed(elementType, name);
    }

private:
    std::shared_ptr<FinderItem> m_item;
};

constexpr auto PropertyListItemProperties = std::to_array<PropertyRow>({
    {u"name", codes::Name, codes::TextType, reading<&PropertyListItem::name>},
    {u"kind", codes::Kind, codes::ClassType, reading<&PropertyListItem::kind>},
    {u"value", codes::Value, codes::AnyType, reading<&PropertyListItem::value>, writing<&PropertyListItem::setValue>},
});
constexpr auto PropertyListItemElements =
    std::to_array<ElementRow>({{codes::PropertyListItem, listing<&PropertyListItem::items>}});
constexpr ClassRow ItemRow{.name = u"property list item",
                           .plural = u"property list items",
                           .code = codes::PropertyListItem,
                           .properties = PropertyListItemProperties,
                           .elements = PropertyListItemElements};

constexpr auto FileProperties = std::to_array<PropertyRow>({
    {u"name", codes::Name, codes::TextType, reading<&PropertyListFile::name>},
    {u"path", codes::Path, codes::TextType, reading<&PropertyListFile::path>},
    {u"", codes::POSIXPath, codes::TextType, reading<&PropertyListFile::posixPath>, nullptr, InProperties::Unlisted},
    {u"POSIX path", codes::SystemPOSIXPath, codes::TextType, reading<&PropertyListFile::posixPath>},
    {u"kind", codes::Kind, codes::ClassType, reading<&PropertyListFile::ofContents<codes::Kind>>, nullptr,
     InProperties::Unlisted},
    {u"value", codes::Value, codes::AnyType, reading<&PropertyListFile::ofContents<codes::Value>>,
     writing<&PropertyListFile::setValue>, InProperties::Unlisted},
    {u"contents", codes::Contents, codes::PropertyListItem, reading<&PropertyListFile::contents>, nullptr,
     InProperties::Unlisted},
});
constexpr auto FileElements = std::to_array<ElementRow>({{codes::PropertyListItem, listing<&PropertyListFile::items>}});
constexpr ClassRow PropertyListFileRow{.name = u"property list file",
                                       .plural = u"property list files",
                                       .code = codes::PropertyListFile,
                                       .properties = FileProperties,
                                       .elements = FileElements};

constexpr auto PropertyListKinds = std::to_array<ClassRow const*>({&PropertyListFileRow, &ItemRow});

ClassRow const& PropertyListItem::row() const { return ItemRow; }
ClassRow const& PropertyListFile::row() const { return PropertyListFileRow; }

// What is given under the code in `with properties`; nothing without it.
Value givenProperty(ApplicationCommand const& command, Code code, std::u16string_view name) {
    Value const* const properties = command.find(codes::PropertiesParameter);
    if (!properties) return {};
    if (!properties->is(ValueKind::Record)) throw cannotMake(*properties, codes::RecordType);
    for (auto const& [key, value] : properties->fields())
        if (key->code == code || foldedName(key->spelling) == name) return value;
    return {};
}

// An empty value of the kind that is given instead of a value.
Value emptyValue(Value const& kind) {
    if (!kind.is(ValueKind::Type)) return {};
    switch (kind.asCode()) {
    case codes::RecordType:
        return Value::record();
    case codes::ListType:
        return Value::list();
    case codes::StringType:
    case codes::TextType:
        return Value::text(u"");
    case codes::BooleanType:
        return Value::boolean(false);
    case codes::NumberType:
        return Value::integer(0);
    default:
        return {};
    }
}

} // namespace

std::span<ClassRow const* const> propertyListKinds() { return PropertyListKinds; }

ModelPointer propertyListFileNamed(std::u16string const& name) {
    std::optional<std::string> const path = pathNamed(name);
    std::shared_ptr<FinderItem> const item = path ? FinderItem::atPath(*path) : nullptr;
    return item && !item->isFolder() ? std::make_shared<PropertyListFile>(item) : nullptr;
}

Value makePropertyListItem(ModelApplication& application, ApplicationCommand const& command,
                           TextContext const& context) {
    std::vector<ModelPointer> places = application.objects(ModelApplication::placeOf(command), context);
    bool const isOne = places.size() == 1;
    if (isOne && &places.front()->row() == &PropertyListFileRow)
        places.front() = static_cast<PropertyListFile const&>(*places.front()).contents();
    if (!isOne || &places.front()->row() != &ItemRow) throw plainError(errors::CannotPutThere);
    Value const name = givenProperty(command, codes::Name, u"name");
    Value value = givenProperty(command, codes::Value, u"value");
    if (value.isNothing()) value = emptyValue(givenProperty(command, codes::Kind, u"kind"));
    if (value.isNothing()) throw missingParameter(u"value", command.term.name);
    std::u16string const key = name.isNothing() ? std::u16string() : requireText(name, context);
    return static_cast<PropertyListItem&>(*places.front()).add(key, value)->specifier();
}

Value makePropertyListFile(ApplicationCommand const& command, TextContext const& context) {
    Value const name = givenProperty(command, codes::Name, u"name");
    if (name.isNothing()) throw missingParameter(u"name", command.term.name);
    std::optional<std::string> const path = pathNamed(requireText(name, context));
    if (!path) throw badFileName(name);
    Value const contents = givenProperty(command, codes::Contents, u"contents");
    NSData const data = NSPropertyListSerialization::dataFromPropertyList_format_errorDescription_(
        contents.isNothing() ? id(NSDictionary::dictionary()) : propertyListOfValue(contents),
        NSPropertyListXMLFormat_v1_0, nullptr);
    if (data == nil) throw plainError(errors::CorruptData);
    // An existing file is left alone.
    Result<void> const written = replaceFileAtPath(*path, data.span(), {.hasToBe = true});
    if (!written.isDone()) throw fileError(written.problem(), name);
    ModelPointer const made = propertyListFileNamed(requireText(name, context));
    if (!made) throw cannotGet(name);
    return made->specifier();
}

} // namespace mac::applescript::system_events
