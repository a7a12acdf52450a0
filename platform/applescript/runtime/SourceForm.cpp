#include "platform/applescript/runtime/SourceForm.h"
#include "platform/applescript/language/Units.h"
#include "platform/applescript/runtime/ObjectSpecifier.h"
#include "platform/applescript/runtime/ScalarText.h"
#include "platform/applescript/runtime/ScriptDate.h"
#include "platform/applescript/runtime/ScriptError.h"
#include "platform/applescript/runtime/ScriptObject.h"
#include "platform/applescript/runtime/ScriptPaths.h"
#include <array>
#include <cstring>

namespace mac::applescript {

namespace {

// A circle of lists has no end; a form that grows beyond this is cut off with the overflow error.
constexpr std::size_t DeepestForm = 500;
constexpr auto HexDigits = std::u16string_view(u"0123456789ABCDEF");

struct ComparisonText {
    Operation operation;
    std::u16string_view text;
};
constexpr auto ComparisonTexts = std::to_array<ComparisonText>({
    {Operation::Equal, u" = "},
    {Operation::NotEqual, u" ≠ "},
    {Operation::Less, u" < "},
    {Operation::Greater, u" > "},
    {Operation::AtMost, u" ≤ "},
    {Operation::AtLeast, u" ≥ "},
    {Operation::Contains, u" contains "},
    {Operation::DoesNotContain, u" does not contain "},
    {Operation::IsIn, u" is in "},
    {Operation::IsNotIn, u" is not in "},
    {Operation::StartsWith, u" starts with "},
    {Operation::EndsWith, u" ends with "},
    {Operation::And, u" and "},
    {Operation::Or, u" or "},
});

std::u16string decimalText(std::int32_t number) {
    std::string const digits = std::to_string(number);
    return std::u16string(digits.begin(), digits.end());
}

std::u16string inQuotes(std::u16string_view text) {
    std::u16string form = u"\"";
    for (char16_t const unit : text) {
        if (unit == u'"' || unit == u'\\') form += u'\\';
        form += unit;
    }
    return form + u"\"";
}

// The innermost application whose own words are being written.
Value const* writtenWithin = nullptr;

bool isWrittenWithin(Value const& value) {
    if (!writtenWithin || !value.is(ValueKind::Application)) return false;
    ApplicationObject const& one = value.application();
    ApplicationObject const& other = writtenWithin->application();
    return one.byIdentifier == other.byIdentifier && foldedName(one.name) == foldedName(other.name);
}

class SourceWriter {
public:
    explicit SourceWriter(bool isSource) : m_isSource(isSource) {}

    void write(Value const& value) {
        requireStackRoom();
        if (++m_depth > DeepestForm) throw plainError(errors::StackOverflow);
        switch (value.kind()) {
        case ValueKind::Nothing:
            break;
        case ValueKind::Boolean:
            m_form += value.asBoolean() ? u"true" : u"false";
            break;
        case ValueKind::Integer:
            m_form += decimalText(value.asInteger());
            break;
        case ValueKind::Real:
            m_form += realText(value.asReal());
            break;
        case ValueKind::Type:
            m_form += nameOfCode(value.asCode());
            break;
        case ValueKind::Constant:
            writeConstant(value.asCode());
            break;
        case ValueKind::AppleScript:
            m_form += u"«script AppleScript»";
            break;
        case ValueKind::CurrentApplication:
            m_form += u"current application";
            break;
        default:
            writeObject(value);
        }
        --m_depth;
    }

    std::u16string take() { return std::move(m_form); }

private:
    void writeConstant(Code code) {
        std::u16string_view name = Terminology::base().nameOf(code);
        for (Terminology const* const terms : applicationTerminologies())
            if (name.empty()) name = terms->nameOf(code);
        m_form += name.empty() ? u"«constant ****" + charactersOfCode(code) + u"»" : std::u16string(name);
    }

    void writeObject(Value const& value) {
        switch (value.kind()) {
        case ValueKind::Text:
            writeQuoted(value.units());
            break;
        case ValueKind::List:
            writeList(value.items());
            break;
        case ValueKind::Record:
            writeRecord(value.fields());
            break;
        case ValueKind::Date:
            m_form += u"date ";
            writeQuoted(fullDateText(value.seconds()));
            break;
        case ValueKind::File:
            writeFile(value);
            break;
        case ValueKind::Application:
            m_form += value.application().byIdentifier ? u"application id " : u"application ";
            writeQuoted(value.application().name);
            break;
        case ValueKind::Data:
            writeData(value.data());
            break;
        case ValueKind::Specifier:
            writeSpecifier(value.specifier());
            break;
        case ValueKind::Test:
            writeTest(value.test());
            break;
        case ValueKind::Handler:
            m_form += u"«handler " + value.handler().definition->name->spelling + u"»";
            break;
        default:
            writeScript(value.script());
        }
    }

    // People read no quotes.
    void writeQuoted(std::u16string_view text) { m_form += m_isSource ? inQuotes(text) : std::u16string(text); }

    void open(std::u16string_view bracket) {
        if (m_isSource) m_form += bracket;
    }

    void writeList(ValueList const& items) {
        open(u"{");
        bool isFirst = true;
        for (Value const& item : items) {
            if (!std::exchange(isFirst, false)) m_form += u", ";
            write(item);
        }
        open(u"}");
    }

    void writeRecord(std::vector<std::pair<Symbol, Value>> const& fields) {
        open(u"{");
        bool isFirst = true;
        for (auto const& [key, value] : fields) {
            if (!std::exchange(isFirst, false)) m_form += u", ";
            writeName(key);
            m_form += u":";
            write(value);
        }
        open(u"}");
    }

    void writeName(Symbol name) {
        bool const hasBars = name->code == 0 && needsBars(name->spelling);
        if (!hasBars) {
            m_form += name->spelling;
            return;
        }
        m_form += u'|';
        for (char16_t const unit : name->spelling) {
            if (unit == u'|' || unit == u'\\') m_form += u'\\';
            m_form += unit;
        }
        m_form += u'|';
    }

    void writeFile(Value const& value) {
        m_form += value.file().kind == FileObject::Kind::Alias ? u"alias " : u"file ";
        writeQuoted(filePathText(value));
    }

    void writeData(DataObject const& data) {
        // A value with a unit: miles 5.0.
        if (Unit const* const unit = unitOf(data.type); unit && data.bytes.size() == sizeof(double)) {
            double number = 0;
            std::memcpy(&number, data.bytes.data(), sizeof number);
            m_form += std::u16string(unit->name) + u' ' + realText(number);
            return;
        }
        m_form += u"«data " + charactersOfCode(data.type);
        for (char const byte : data.bytes) {
            m_form += HexDigits[static_cast<unsigned char>(byte) >> 4U];
            m_form += HexDigits[static_cast<unsigned char>(byte) & 15U];
        }
        m_form += u"»";
    }

    void writeScript(ScriptObject const& script) {
        m_form += u"«script";
        if (script.definition().name) m_form += u" " + script.definition().name->spelling;
        m_form += u"»";
    }

    void writeSpecifier(SpecifierObject const& specifier) {
        writeHead(specifier);
        bool const isWhole = specifier.form == Form::Filter || specifier.container.isNothing();
        if (isWhole || isWrittenWithin(specifier.container)) return;
        m_form += specifier.form == Form::Before || specifier.form == Form::After ? u" " : u" of ";
        write(specifier.container);
    }

    // items before a range.
    void writeElements(Code want) {
        std::u16string_view const plural = pluralOfCode(want);
        m_form += plural.empty() ? nameOfCode(want) : std::u16string(plural);
    }

    void writeHead(SpecifierObject const& specifier) {
        std::u16string const name = specifier.want != 0 ? nameOfCode(specifier.want) : std::u16string();
        switch (specifier.form) {
        case Form::Property:
            writeName(specifier.property);
            break;
        case Form::Index:
        case Form::Name:
            m_form += name + u" ";
            write(specifier.from);
            break;
        case Form::Identifier:
            m_form += name + u" id ";
            write(specifier.from);
            break;
        case Form::Range:
            writeRange(specifier);
            break;
        case Form::Every:
            m_form += u"every " + name;
            break;
        case Form::Some:
            m_form += u"some " + name;
            break;
        case Form::Middle:
            m_form += u"middle " + name;
            break;
        case Form::Last:
            m_form += u"last " + name;
            break;
        case Form::Filter:
            write(specifier.from);
            m_form += u" whose ";
            write(specifier.to);
            break;
        case Form::Beginning:
            m_form += u"beginning";
            break;
        case Form::End:
            m_form += u"end";
            break;
        case Form::Before:
            m_form += u"before";
            break;
        case Form::After:
            m_form += u"after";
            break;
        }
    }

    void writeRange(SpecifierObject const& specifier) {
        writeElements(specifier.want);
        bool const isByElement = specifier.from.is(ValueKind::Specifier);
        m_form += isByElement ? u" from " : u" ";
        write(specifier.from);
        m_form += isByElement ? u" to " : u" thru ";
        write(specifier.to);
    }

    void writeTest(TestObject const& test) {
        if (test.operation == Operation::Not) {
            m_form += u"not ";
            write(test.left);
            return;
        }
        write(test.left);
        for (ComparisonText const& comparison : ComparisonTexts)
            if (comparison.operation == test.operation) m_form += comparison.text;
        write(test.right);
    }

    bool m_isSource;
    std::size_t m_depth{0};
    std::u16string m_form;
};

} // namespace

WithinApplication::WithinApplication(Value const& application)
    : m_application(application), m_outer(std::exchange(writtenWithin, &m_application)) {}

WithinApplication::~WithinApplication() { writtenWithin = m_outer; }

std::u16string sourceForm(Value const& value) {
    SourceWriter writer(true);
    writer.write(value);
    return writer.take();
}

std::u16string humanForm(Value const& value) {
    SourceWriter writer(false);
    writer.write(value);
    return writer.take();
}

std::u16string filePathText(Value const& file) {
    std::u16string path = hfsPathOf(file.file().path);
    bool const isFolder = file.file().kind == FileObject::Kind::Alias && isFolderAt(file.file().path);
    if (isFolder && !path.ends_with(u':')) path += u':';
    return path;
}

} // namespace mac::applescript
