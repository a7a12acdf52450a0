#include "platform/applescript/language/LanguageCodes.h"
#include "platform/applescript/runtime/DescriptorKeywords.h"
#include "platform/applescript/runtime/ObjectSpecifier.h"
#include "platform/applescript/runtime/ScriptDate.h"
#include "platform/applescript/runtime/ScriptDescriptors.h"
#include "platform/applescript/runtime/ScriptError.h"
#include "platform/applescript/runtime/ScriptObject.h"
#include "platform/applescript/runtime/ScriptPaths.h"
#include "platform/events/DescriptorCoercion.h"
#include "platform/events/DescriptorContents.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/processes/Processes.h"
#include <algorithm>

namespace mac::applescript {

namespace {

using namespace keywords;

constexpr std::size_t MostValuesWritten = std::size_t{1} << 20;

constexpr auto NotOfRecords = std::to_array<Code>(
    {codes::Null,         codes::True,       codes::False,           codes::BooleanType,   codeOf("shor"),
     codes::IntegerType,  codeOf("magn"),    codeOf("comp"),         codeOf("ucom"),       codeOf("sing"),
     codes::RealType,     codes::StringType, codes::UnicodeTextType, codeOf("utf8"),       codeOf("ut16"),
     codes::ConstantType, codeOf("type"),    codeOf("keyw"),         codes::PropertyForm,  codes::DateType,
     codes::ListType,     codes::RecordType, codeOf("aevt"),         codes::ReferenceType, codes::InsertionLocation,
     codes::RangeForm,    codeOf("cmpd"),    codes::LogicalTest,     codes::FileURLType,   codes::AliasType,
     codeOf("psn "),      codeOf("sign"),    codeOf("bund"),         codeOf("kpid"),       codeOf("aprl"),
     codes::ScriptType,   codeOf("exmn"),    codeOf("ccnt"),         codeOf("abso")});

AEDesc codeDesc(DescType type, Code code) { return makeDescOf(type, code); }

AEDesc bytesDesc(DescType type, std::string_view bytes) { return makeDesc(type, std::as_bytes(std::span(bytes))); }

// Months and weekdays are enumerated values to applications.
bool isPartOfDate(Code code) {
    return std::ranges::find(Months, code) != Months.end() || std::ranges::find(Weekdays, code) != Weekdays.end();
}

AEDesc descOfType(Code code) {
    if (code == codes::Null) return {};
    return codeDesc(isPartOfDate(code) ? typeEnumerated : typeType, code);
}

AEDesc descOfApplication(ApplicationObject const& application) {
    if (application.byIdentifier) return bytesDesc(typeApplicationBundleID, utf8FromUnits(application.name));
    return bytesDesc(ApplicationURL, applicationURL(application.name));
}

class DescriptorWriter {
public:
    explicit DescriptorWriter(Value const& application) : m_application(application) {}

    // `root` is what a reference without a container hangs on.
    AEDesc desc(Value const& value, DescType root) {
        requireStackRoom();
        if (++m_count > MostValuesWritten) throw plainError(errors::ValueTooLarge);
        if (m_depth >= kDescriptorMaximumDepth) throw plainError(errors::StackOverflow);
        ++m_depth;
        AEDesc made = descOfKind(value, root);
        --m_depth;
        return made;
    }

private:
    AEDesc descOfKind(Value const& value, DescType root) {
        switch (value.kind()) {
        case ValueKind::Nothing:
            return {};
        case ValueKind::Boolean:
            return {.descriptorType = value.asBoolean() ? typeTrue : typeFalse};
        case ValueKind::Integer:
            return makeDescOf(typeSInt32, value.asInteger());
        case ValueKind::Real:
            return makeDescOf(typeIEEE64BitFloatingPoint, value.asReal());
        case ValueKind::Type:
            return descOfType(value.asCode());
        case ValueKind::Constant:
            return codeDesc(typeEnumerated, value.asCode());
        case ValueKind::AppleScript:
            return codeDesc(typeType, codes::AppleScriptSuite);
        case ValueKind::CurrentApplication:
            return makeDescOf(typeProcessSerialNumber, ProcessSerialNumber{0, kCurrentProcess});
        default:
            return descOfObject(value, root);
        }
    }

    AEDesc descOfObject(Value const& value, DescType root) {
        switch (value.kind()) {
        case ValueKind::Text:
            return makeText(value.units());
        case ValueKind::List:
            return descOfList(value.items());
        case ValueKind::Record:
            return descOfRecord(value.fields());
        case ValueKind::Date:
            return makeDescOf(typeLongDateTime, value.seconds());
        case ValueKind::File:
            return descOfFile(value);
        case ValueKind::Application:
            return descOfApplication(value.application());
        case ValueKind::Data:
            return bytesDesc(DescType(value.data().type), value.data().bytes);
        case ValueKind::Specifier:
            return descOfSpecifier(value.specifier(), root);
        case ValueKind::Test:
            return descOfTest(value.test());
        case ValueKind::Handler:
            return bytesDesc(DescType("hand"), utf8FromUnits(value.handler().definition->name->spelling));
        default:
            return descOfScript(value.script());
        }
    }

    AEDesc descOfList(ValueList const& items) {
        AEDesc list = makeContainer(typeAEList, DescriptorForm::List);
        for (Value const& item : items)
            append(list, desc(item, typeNull));
        return list;
    }

    AEDesc descOfRecord(std::vector<std::pair<Symbol, Value>> const& fields) {
        AEDesc record = makeContainer(typeAERecord, DescriptorForm::Record);
        AEDesc named = makeContainer(typeAEList, DescriptorForm::List);
        DescType type = typeAERecord;
        for (auto const& [key, field] : fields) {
            bool const isClass = key->code == codes::Class && field.is(ValueKind::Type) && namesRecord(field.asCode());
            if (isClass) {
                type = DescType(field.asCode());
            } else if (key->code != 0) {
                put(record, AEKeyword(key->code), desc(field, typeNull));
            } else {
                append(named, makeText(key->spelling));
                append(named, desc(field, typeNull));
            }
        }
        if (!contentsOf(named).entries.empty()) put(record, UserFields, std::move(named));
        record.descriptorType = type;
        return record;
    }

    static AEDesc descOfFile(Value const& file) {
        std::optional<std::string> const path = fileSystemBytesFromUnits(file.file().path);
        if (!path) throw cannotMake(file, codes::FileURLType);
        if (file.file().kind == FileObject::Kind::Alias) return bytesDesc(AliasType, *path);
        return bytesDesc(typeFileURL, fileURL(*path));
    }

    // A script cannot leave the process; what is told of it is its name.
    static AEDesc descOfScript(ScriptObject const& script) {
        Symbol const name = script.definition().name;
        return bytesDesc(ScriptType, name ? utf8FromUnits(name->spelling) : std::string());
    }

    AEDesc rootDesc(Value const& container, DescType root) {
        if (container.isNothing()) return {.descriptorType = root};
        bool const isTarget = container.is(ValueKind::Application) && m_application.is(ValueKind::Application) &&
                              container.application().byIdentifier == m_application.application().byIdentifier &&
                              foldedName(container.application().name) == foldedName(m_application.application().name);
        return isTarget ? AEDesc() : desc(container, root);
    }

    AEDesc descOfSpecifier(SpecifierObject const& specifier, DescType root) {
        switch (specifier.form) {
        case Form::Property:
            return descOfProperty(specifier, root);
        case Form::Index:
            return element(specifier, root, FormIndex, desc(specifier.from, root));
        case Form::Name:
            return element(specifier, root, FormName, desc(specifier.from, root));
        case Form::Identifier:
            return element(specifier, root, FormIdentifier, desc(specifier.from, root));
        case Form::Every:
            return element(specifier, root, FormIndex, codeDesc(AbsoluteOrdinal, OrdinalAll));
        case Form::Some:
            return element(specifier, root, FormIndex, codeDesc(AbsoluteOrdinal, OrdinalAny));
        case Form::Middle:
            return element(specifier, root, FormIndex, codeDesc(AbsoluteOrdinal, OrdinalMiddle));
        case Form::Last:
            return element(specifier, root, FormIndex, codeDesc(AbsoluteOrdinal, OrdinalLast));
        case Form::Range:
            return element(specifier, root, FormRange, descOfRange(specifier));
        case Form::Filter:
            return descOfFilter(specifier, root);
        case Form::Beginning:
            return insertion(specifier, root, Beginning);
        case Form::End:
            return insertion(specifier, root, End);
        case Form::Before:
            return insertion(specifier, root, keywords::Before);
        default:
            return insertion(specifier, root, keywords::After);
        }
    }

    AEDesc descOfProperty(SpecifierObject const& specifier, DescType root) {
        Code const code = specifier.property->code;
        // The examined object itself.
        if (code == codes::It && specifier.container.isNothing()) return {.descriptorType = root};
        AEDesc record = makeContainer(typeObjectSpecifier, DescriptorForm::Record);
        put(record, Want, codeDesc(typeType, FormProperty));
        put(record, KeyForm, codeDesc(typeEnumerated, code != 0 ? FormProperty : FormUserProperty));
        put(record, KeyData, code != 0 ? codeDesc(typeType, code) : makeText(specifier.property->spelling));
        put(record, From, rootDesc(specifier.container, root));
        return record;
    }

    AEDesc element(SpecifierObject const& specifier, DescType root, Code form, AEDesc keyData) {
        AEDesc record = makeContainer(typeObjectSpecifier, DescriptorForm::Record);
        put(record, Want, codeDesc(typeType, specifier.want));
        put(record, KeyForm, codeDesc(typeEnumerated, form));
        put(record, KeyData, std::move(keyData));
        put(record, From, rootDesc(specifier.container, root));
        return record;
    }

    AEDesc insertion(SpecifierObject const& specifier, DescType root, Code place) {
        AEDesc record = makeContainer(InsertionLocation, DescriptorForm::Record);
        put(record, InsertionObject, rootDesc(specifier.container, root));
        put(record, InsertionPlace, codeDesc(typeEnumerated, place));
        return record;
    }

    // A place by number is an element of the container of the range.
    AEDesc endOfRange(SpecifierObject const& range, Value const& end) {
        if (end.is(ValueKind::Specifier)) return desc(end, CurrentContainer);
        Form const form = end.is(ValueKind::Text) ? Form::Name : Form::Index;
        return desc(elementSpecifier(form, range.want, Value(), end), CurrentContainer);
    }

    AEDesc descOfRange(SpecifierObject const& specifier) {
        AEDesc record = makeContainer(keywords::Range, DescriptorForm::Record);
        put(record, RangeStart, endOfRange(specifier, specifier.from));
        put(record, RangeStop, endOfRange(specifier, specifier.to));
        return record;
    }

    // What is filtered is the container of those that pass.
    AEDesc descOfFilter(SpecifierObject const& specifier, DescType root) {
        Value const& filtered = specifier.from;
        AEDesc record = makeContainer(typeObjectSpecifier, DescriptorForm::Record);
        Code const want = filtered.is(ValueKind::Specifier) ? filtered.specifier().want : codes::Item;
        put(record, Want, codeDesc(typeType, want));
        put(record, KeyForm, codeDesc(typeEnumerated, FormTest));
        put(record, KeyData, desc(specifier.to, ObjectBeingExamined));
        put(record, From, desc(filtered, root));
        return record;
    }

    AEDesc descOfTest(TestObject const& test) {
        switch (test.operation) {
        case Operation::And:
            return logical(LogicalAnd, {operand(test.left), operand(test.right)});
        case Operation::Or:
            return logical(LogicalOr, {operand(test.left), operand(test.right)});
        case Operation::Not:
            return logical(LogicalNot, {operand(test.left)});
        case Operation::IsIn:
            return comparison(codes::ContainsRelation, test.right, test.left);
        case Operation::IsNotIn:
            return logical(LogicalNot, {comparison(codes::ContainsRelation, test.right, test.left)});
        default:
            break;
        }
        for (ComparisonRow const& row : Comparisons) {
            if (row.operation == test.operation) return comparison(row.code, test.left, test.right);
            if (row.negation == test.operation)
                return logical(LogicalNot, {comparison(row.code, test.left, test.right)});
        }
        throw plainError(errors::CannotCoerce);
    }

    AEDesc operand(Value const& value) { return desc(value, ObjectBeingExamined); }

    AEDesc comparison(Code code, Value const& left, Value const& right) {
        AEDesc record = makeContainer(ComparisonTest, DescriptorForm::Record);
        put(record, FirstOperand, operand(left));
        put(record, Comparison, codeDesc(typeEnumerated, code));
        put(record, SecondOperand, operand(right));
        return record;
    }

    static AEDesc logical(Code code, std::initializer_list<AEDesc> terms) {
        AEDesc list = makeContainer(typeAEList, DescriptorForm::List);
        for (AEDesc const& term : terms)
            append(list, term);
        AEDesc record = makeContainer(LogicalTest, DescriptorForm::Record);
        put(record, LogicalOperator, codeDesc(typeEnumerated, code));
        put(record, LogicalTerms, std::move(list));
        return record;
    }

    static void put(AEDesc& record, AEKeyword keyword, AEDesc value) {
        if (!putEntry(record, keyword, std::move(value))) throw plainError(errors::StackOverflow);
    }

    static void append(AEDesc& list, AEDesc value) {
        if (!putItem(list, 0, std::move(value))) throw plainError(errors::StackOverflow);
    }

    Value const& m_application;
    std::size_t m_count{0};
    std::size_t m_depth{0};
};

} // namespace

bool keywords::namesRecord(Code type) { return std::ranges::find(NotOfRecords, type) == NotOfRecords.end(); }

AEDesc descriptorOfValue(Value const& value, Value const& application) {
    return DescriptorWriter(application).desc(value, typeNull);
}

} // namespace mac::applescript
