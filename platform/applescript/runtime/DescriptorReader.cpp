#include "platform/applescript/language/LanguageCodes.h"
#include "platform/applescript/language/Terminology.h"
#include "platform/applescript/runtime/Application.h"
#include "platform/applescript/runtime/DescriptorKeywords.h"
#include "platform/applescript/runtime/ObjectSpecifier.h"
#include "platform/applescript/runtime/ScriptDescriptors.h"
#include "platform/applescript/runtime/ScriptError.h"
#include "platform/applescript/runtime/ScriptPaths.h"
#include "platform/events/DescriptorCoercion.h"
#include "platform/events/DescriptorContents.h"
#include "platform/events/FlatDescriptor.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/processes/Processes.h"
#include <cmath>
#include <unordered_set>

namespace mac::applescript {

namespace {

using namespace keywords;

constexpr std::size_t MostValuesRead = std::size_t{1} << 20;
// Some hundred thousand years either way; beyond that no calendar counts.
constexpr std::int64_t LatestDate = std::int64_t{1} << 43;

ScriptError corrupt() { return plainError(errors::CorruptData); }

std::string_view charactersOf(AEDesc const& desc) {
    std::vector<std::byte> const& bytes = contentsOf(desc).bytes;
    return {reinterpret_cast<char const*>(bytes.data()), bytes.size()};
}

// A code of zero would be a name that its author made up.
Symbol symbolOf(Code code) {
    if (code == 0) throw corrupt();
    return termSymbol(code, nameOfCode(code));
}

Code codeIn(AEDesc const& desc) {
    std::optional<std::uint32_t> const code = mac::valueOf<std::uint32_t>(desc, desc.descriptorType);
    if (!code) throw corrupt();
    return *code;
}

bool isTextType(DescType type) {
    return type == typeUnicodeText || type == typeText || type == typeUTF8Text ||
           type == typeUTF16ExternalRepresentation;
}

std::u16string textIn(AEDesc const& desc) {
    std::optional<std::u16string> text = plainTextOf(desc);
    if (!text) throw corrupt();
    return *std::move(text);
}

Value numberIn(AEDesc const& desc) {
    std::optional<DescriptorNumber> const number = numberOf(desc);
    if (!number) throw corrupt();
    double const value = number->asReal();
    if (!std::isfinite(value)) throw corrupt();
    bool const isReal =
        desc.descriptorType == typeIEEE64BitFloatingPoint || desc.descriptorType == typeIEEE32BitFloatingPoint;
    return isReal ? Value::real(value) : Value::number(value);
}

Value truthIn(AEDesc const& desc) {
    std::optional<std::uint8_t> const flag = mac::valueOf<std::uint8_t>(desc, typeBoolean);
    if (!flag) throw corrupt();
    return Value::boolean(*flag != 0);
}

Value dateIn(AEDesc const& desc) {
    std::optional<std::int64_t> const seconds = mac::valueOf<std::int64_t>(desc, typeLongDateTime);
    if (!seconds || *seconds > LatestDate || *seconds < -LatestDate) throw corrupt();
    return Value::date(*seconds);
}

Value ofCode(Code code, bool isEnumerated) {
    if (code == codes::True || code == codes::False) return Value::boolean(code == codes::True);
    if (code == codes::AppleScriptSuite) return Value::appleScript();
    Term const* const term = Terminology::base().termNamed(nameOfCode(code));
    bool const isValue = term && term->isValue && term->classCode == code;
    return isEnumerated && !isValue ? Value::constant(code) : Value::type(code);
}

Value fileIn(AEDesc const& desc) {
    bool const isAlias = desc.descriptorType == AliasType;
    std::optional<std::string> const path =
        isAlias ? std::optional(std::string(charactersOf(desc))) : pathOfFileURL(charactersOf(desc));
    if (!path || path->empty() || path->find('\0') != std::string::npos) throw corrupt();
    return makeObject<FileObject>(ValueKind::File, isAlias ? FileObject::Kind::Alias : FileObject::Kind::PosixFile,
                                  unitsFromFileSystemBytes(*path));
}

Value dataIn(AEDesc const& desc) {
    if (contentsOf(desc).form == DescriptorForm::Bytes)
        return makeObject<DataObject>(ValueKind::Data, desc.descriptorType.value(), std::string(charactersOf(desc)));
    Result<std::vector<std::byte>, Failure> const flat = flattened(desc);
    if (!flat.hasValue()) throw plainError(errors::ValueTooLarge);
    std::string_view const bytes(reinterpret_cast<char const*>(flat.value().data()), flat.value().size());
    return makeObject<DataObject>(ValueKind::Data, desc.descriptorType.value(), std::string(bytes));
}

Value processIn(AEDesc const& desc) {
    std::optional<ProcessSerialNumber> const psn = mac::valueOf<ProcessSerialNumber>(desc, typeProcessSerialNumber);
    if (!psn) throw corrupt();
    ProcessSerialNumber const own{0, kCurrentProcess};
    bool isOwn = false;
    if (*psn == own || (SameProcess(&*psn, &own, &isOwn) == noErr && isOwn)) return Value::currentApplication();
    NSDictionary const information =
        ProcessInformationCopyDictionary(&*psn, kProcessDictionaryIncludeAllInformationMask);
    NSString const name = as<NSString>(information.objectForKey_(kCFBundleNameKey));
    if (name == nil) return dataIn(desc);
    return makeObject<ApplicationObject>(ValueKind::Application, std::u16string(name.codeUnits()), false);
}

class DescriptorReader {
public:
    DescriptorReader(Value const& application, ForeignDescriptors valueOfForeign)
        : m_application(application), m_valueOfForeign(valueOfForeign) {}

    Value value(AEDesc const& desc) {
        requireStackRoom();
        if (++m_count > MostValuesRead) throw plainError(errors::ValueTooLarge);
        DescType const type = desc.descriptorType;
        DescriptorForm const form = contentsOf(desc).form;
        if (form == DescriptorForm::List) return listIn(desc);
        if (form == DescriptorForm::Record) return containerIn(desc);
        if (form == DescriptorForm::Event) return dataIn(desc);
        if (Value foreign = m_valueOfForeign ? m_valueOfForeign(desc) : Value(); !foreign.isNothing()) return foreign;
        if (isTextType(type)) return Value::text(textIn(desc));
        if (type == typeTrue || type == typeFalse) return Value::boolean(type == typeTrue);
        if (type == typeBoolean) return truthIn(desc);
        if (isNumberType(type)) return numberIn(desc);
        if (type == typeEnumerated || type == AbsoluteOrdinal) return ofCode(codeIn(desc), true);
        if (type == typeType || type == typeProperty || type == typeKeyword) return ofCode(codeIn(desc), false);
        if (type == typeLongDateTime) return dateIn(desc);
        if (type == AliasType || type == typeFileURL) return fileIn(desc);
        if (type == typeProcessSerialNumber) return processIn(desc);
        return bytesIn(desc);
    }

private:
    // A null within something stands for itself.
    Value item(AEDesc const& desc) {
        Value read = value(desc);
        return read.isNothing() ? Value::type(codes::Null) : read;
    }

    static Value bytesIn(AEDesc const& desc) {
        DescType const type = desc.descriptorType;
        bool const isEmpty = contentsOf(desc).bytes.empty();
        if (type == typeNull && isEmpty) return {};
        if (type == typeAEList && isEmpty) return Value::list();
        if (type == typeAERecord && isEmpty) return Value::record();
        bool const isContainer = type == typeNull || type == typeAEList || type == typeAERecord ||
                                 type == typeObjectSpecifier || type == InsertionLocation;
        if (isContainer) throw corrupt();
        if (type == typeApplicationBundleID)
            return makeObject<ApplicationObject>(ValueKind::Application,
                                                 unitsFromUTF8(charactersOf(desc)).value_or(std::u16string()), true);
        if (type != ApplicationURL) return dataIn(desc);
        std::optional<std::u16string> const name = nameOfApplicationURL(charactersOf(desc));
        if (!name) return dataIn(desc);
        return makeObject<ApplicationObject>(ValueKind::Application, *name, false);
    }

    Value listIn(AEDesc const& desc) {
        std::vector<Value> items;
        for (DescriptorEntry const& entry : contentsOf(desc).entries)
            items.push_back(item(entry.desc));
        return Value::list(std::move(items));
    }

    Value containerIn(AEDesc const& desc) {
        DescType const type = desc.descriptorType;
        if (type == typeObjectSpecifier) return specifierIn(desc);
        if (type == InsertionLocation) return insertionIn(desc);
        if (type == ComparisonTest || type == LogicalTest) return testIn(desc);
        return recordIn(desc);
    }

    // The first of two fields of one name counts.
    Value recordIn(AEDesc const& desc) {
        std::vector<std::pair<Symbol, Value>> fields;
        std::unordered_set<Code> known;
        Code const type = desc.descriptorType.value();
        if (namesRecord(type) && known.insert(codes::Class).second)
            fields.emplace_back(symbolOf(codes::Class), Value::type(type));
        for (DescriptorEntry const& entry : contentsOf(desc).entries) {
            if (!known.insert(entry.keyword.value()).second) continue;
            if (entry.keyword == UserFields)
                addUserFields(entry.desc, fields);
            else
                fields.emplace_back(symbolOf(entry.keyword.value()), item(entry.desc));
        }
        return Value::record(std::move(fields));
    }

    void addUserFields(AEDesc const& list, std::vector<std::pair<Symbol, Value>>& fields) {
        DescriptorContents const& contents = contentsOf(list);
        if (contents.form != DescriptorForm::List || contents.entries.size() % 2 != 0) throw corrupt();
        for (std::size_t index = 0; index < contents.entries.size(); index += 2)
            fields.emplace_back(identifierSymbol(textIn(contents.entries[index].desc)),
                                item(contents.entries[index + 1].desc));
    }

    static AEDesc const& entry(AEDesc const& record, AEKeyword keyword) {
        AEDesc const* const found = findEntry(contentsOf(record).entries, keyword);
        if (!found) throw corrupt();
        return *found;
    }

    // What a reference hangs on: an application at the root, nothing where that is left to whoever gets it.
    Value container(AEDesc const& desc) {
        DescType const type = desc.descriptorType;
        if (type == typeNull) return m_application;
        if (type == ObjectBeingExamined || type == CurrentContainer) return {};
        Value read = value(desc);
        // A part of a file in an application's own events is a part of that application's item.
        bool const isOfItem = m_valueOfForeign && read.is(ValueKind::File);
        return isOfItem ? fileInApplication(read, m_application) : read;
    }

    Value specifierIn(AEDesc const& desc) {
        Code const want = codeIn(entry(desc, Want));
        Code const form = codeIn(entry(desc, KeyForm));
        AEDesc const& keyData = entry(desc, KeyData);
        Value const from = container(entry(desc, From));
        switch (form) {
        case FormProperty:
            return propertySpecifier(symbolOf(codeIn(keyData)), from);
        case FormUserProperty:
            return propertySpecifier(identifierSymbol(textIn(keyData)), from);
        case FormName:
            return elementSpecifier(Form::Name, want, from, item(keyData));
        case FormIdentifier:
            return elementSpecifier(Form::Identifier, want, from, item(keyData));
        case FormIndex:
            return byIndex(want, from, keyData);
        case FormRange:
            return elementSpecifier(Form::Range, want, from, endOfRange(want, entry(keyData, RangeStart)),
                                    endOfRange(want, entry(keyData, RangeStop)));
        case FormTest:
            return filtered(want, from, value(keyData));
        case FormRelative:
            if (codeIn(keyData) == Previous) return elementSpecifier(Form::Before, want, from);
            if (codeIn(keyData) == Next) return elementSpecifier(Form::After, want, from);
            throw corrupt();
        default:
            throw corrupt();
        }
    }

    Value byIndex(Code want, Value const& from, AEDesc const& keyData) {
        if (keyData.descriptorType != AbsoluteOrdinal) return elementSpecifier(Form::Index, want, from, item(keyData));
        switch (codeIn(keyData)) {
        case OrdinalFirst:
            return elementSpecifier(Form::Index, want, from, Value::integer(1));
        case OrdinalMiddle:
            return elementSpecifier(Form::Middle, want, from);
        case OrdinalLast:
            return elementSpecifier(Form::Last, want, from);
        case OrdinalAny:
            return elementSpecifier(Form::Some, want, from);
        case OrdinalAll:
            return elementSpecifier(Form::Every, want, from);
        default:
            throw corrupt();
        }
    }

    Value endOfRange(Code want, AEDesc const& desc) {
        Value const end = item(desc);
        if (!end.is(ValueKind::Specifier)) return end;
        SpecifierObject const& specifier = end.specifier();
        bool const isPlace = (specifier.form == Form::Index || specifier.form == Form::Name) &&
                             specifier.want == want && specifier.container.isNothing();
        return isPlace ? specifier.from : end;
    }

    static Value filtered(Code want, Value const& from, Value const& test) {
        if (!test.is(ValueKind::Test)) throw corrupt();
        bool const isOfMany = from.is(ValueKind::Specifier) && from.specifier().want == want &&
                              (from.specifier().form == Form::Every || from.specifier().form == Form::Range);
        Value const base = isOfMany ? from : elementSpecifier(Form::Every, want, from);
        return elementSpecifier(Form::Filter, want, base.specifier().container, base, test);
    }

    Value insertionIn(AEDesc const& desc) {
        Value const object = container(entry(desc, InsertionObject));
        switch (codeIn(entry(desc, InsertionPlace))) {
        case Beginning:
            return elementSpecifier(Form::Beginning, codes::InsertionLocation, object);
        case End:
            return elementSpecifier(Form::End, codes::InsertionLocation, object);
        case keywords::Before:
            return elementSpecifier(Form::Before, codes::InsertionLocation, object);
        case keywords::After:
            return elementSpecifier(Form::After, codes::InsertionLocation, object);
        default:
            throw corrupt();
        }
    }

    static Value test(Operation operation, Value first, Value second = {}) {
        Value const made = makeObject<TestObject>(ValueKind::Test);
        made.test().operation = operation;
        made.test().left = std::move(first);
        made.test().right = std::move(second);
        return made;
    }

    Value operand(AEDesc const& desc) {
        if (desc.descriptorType == ObjectBeingExamined) return propertySpecifier(termSymbol(codes::It, u"it"), {});
        return item(desc);
    }

    Value testIn(AEDesc const& desc) {
        if (desc.descriptorType == LogicalTest) return logicalTestIn(desc);
        Code const code = codeIn(entry(desc, Comparison));
        Value const subject = operand(entry(desc, FirstOperand));
        Value const other = operand(entry(desc, SecondOperand));
        bool const isReversed = code == codes::ContainsRelation && !subject.is(ValueKind::Specifier);
        if (isReversed) return test(Operation::IsIn, other, subject);
        for (ComparisonRow const& row : Comparisons)
            if (row.code == code) return test(row.operation, subject, other);
        throw corrupt();
    }

    Value logicalTestIn(AEDesc const& desc) {
        Code const code = codeIn(entry(desc, LogicalOperator));
        AEDesc const& list = entry(desc, LogicalTerms);
        std::vector<DescriptorEntry> const& terms = contentsOf(list).entries;
        if (terms.empty() || (code == LogicalNot && terms.size() != 1)) throw corrupt();
        Value whole = term(terms.front().desc);
        if (code == LogicalNot) return negated(whole);
        if (code != LogicalAnd && code != LogicalOr) throw corrupt();
        Operation const operation = code == LogicalAnd ? Operation::And : Operation::Or;
        for (std::size_t index = 1; index < terms.size(); ++index)
            whole = test(operation, whole, term(terms[index].desc));
        return whole;
    }

    Value term(AEDesc const& desc) {
        Value read = value(desc);
        if (!read.is(ValueKind::Test)) throw corrupt();
        return read;
    }

    // `not (a = b)` is what a descriptor has for `a ≠ b`.
    static Value negated(Value const& inner) {
        TestObject const& positive = inner.test();
        if (positive.operation == Operation::IsIn) return test(Operation::IsNotIn, positive.left, positive.right);
        for (ComparisonRow const& row : Comparisons) {
            bool const hasName = row.operation == positive.operation && row.negation != row.operation;
            if (hasName) return test(row.negation, positive.left, positive.right);
        }
        return test(Operation::Not, inner);
    }

    Value const& m_application;
    ForeignDescriptors m_valueOfForeign;
    std::size_t m_count{0};
};

} // namespace

Value valueOfDescriptor(AEDesc const& desc, Value const& application, ForeignDescriptors valueOfForeign) {
    return DescriptorReader(application, valueOfForeign).value(desc);
}

} // namespace mac::applescript
