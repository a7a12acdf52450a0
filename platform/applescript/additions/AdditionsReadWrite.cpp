#include "platform/applescript/additions/AdditionKeys.h"
#include "platform/applescript/additions/AdditionParameters.h"
#include "platform/applescript/additions/Additions.h"
#include "platform/applescript/additions/StoredForms.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/runtime/FileErrors.h"
#include "platform/applescript/runtime/SourceForm.h"
#include "platform/applescript/runtime/TextElements.h"
#include "platform/foundation/text/Encodings.h"
#include <algorithm>
#include <bit>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::applescript::additions {

namespace {

constexpr mode_t NewFileMode = 0666;
using File = OpenFiles::File;

std::int32_t lastErrorNumber(char const* operation, std::int32_t otherwise) {
    return fileErrorNumber(lastSystemError(operation), FileCommand::ReadOrWrite).value_or(otherwise);
}

// False for folders, and for pipes and devices, which cannot be read at a position.
bool isFile(int descriptor) {
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

File openAt(Value const& named, std::u16string const& path, int flags) {
    std::optional<std::string> const bytes = fileSystemBytesFromUnits(path);
    if (!bytes) throw fileNotFound(asFile(named, path));
    // Opening a pipe without writer would block.
    int const descriptor = ::open(bytes->c_str(), flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, NewFileMode);
    if (descriptor < 0) {
        std::int32_t const number = lastErrorNumber("open", errors::FileNotFound);
        throw number == errors::FileNotFound ? fileNotFound(asFile(named, path)) : plainError(number);
    }
    if (!isFile(descriptor)) {
        ::close(descriptor);
        throw plainError(errors::FilePermission);
    }
    return {.descriptor = descriptor, .path = path, .maySave = (flags & O_ACCMODE) != O_RDONLY};
}

// The error about a file that the script named by its path.
ScriptError aboutFile(std::int32_t number, Value const& named, std::u16string const& path, std::u16string_view end) {
    return {.number = number, .message = u"File " + humanForm(asFile(named, path)) + std::u16string(end)};
}

// A file that is open already, or one opened for this command alone.
class FileInUse {
public:
    FileInUse(Evaluator& evaluator, Value const& designator, int flags) {
        Value const named = resolved(designator, evaluator.context());
        if (named.isNumber()) {
            m_file = evaluator.state().files.withNumber(requireInteger(named, evaluator.context()));
            if (!m_file) throw plainError(errors::FileNotOpen);
            return;
        }
        std::u16string const path = requirePath(named, evaluator.context());
        m_file = evaluator.state().files.withPath(path);
        if (m_file) return;
        m_own = openAt(named, path, flags);
        m_file = &m_own;
    }
    ~FileInUse() {
        if (m_own.descriptor >= 0) ::close(m_own.descriptor);
    }
    FileInUse(FileInUse const&) = delete;
    FileInUse& operator=(FileInUse const&) = delete;

    File* operator->() const { return m_file; }
    File& operator*() const { return *m_file; }

private:
    File m_own;
    File* m_file{nullptr};
};

std::int64_t endOf(File const& file) {
    struct stat status {};
    if (::fstat(file.descriptor, &status) != 0) throw plainError(errors::Parameter);
    return status.st_size;
}

std::string bytesBetween(File const& file, std::int64_t start, std::int64_t end, std::size_t most) {
    std::int64_t const count = std::max<std::int64_t>(end - start, 0);
    if (count > static_cast<std::int64_t>(most)) throw plainError(errors::ValueTooLarge);
    std::string bytes(static_cast<std::size_t>(count), '\0');
    std::size_t read = 0;
    while (read < bytes.size()) {
        ssize_t const got =
            ::pread(file.descriptor, bytes.data() + read, bytes.size() - read, start + static_cast<std::int64_t>(read));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) throw plainError(lastErrorNumber("read", errors::InputOutput));
        if (got == 0) break;
        read += static_cast<std::size_t>(got);
    }
    bytes.resize(read);
    return bytes;
}

bool isWide(Code type) { return type == codes::UnicodeTextType || type == constants::UTF16Text; }

// Read in the order of the file's byte order mark, else in this computer's. The text begins with a mark at the
// beginning alone.
NSStringEncoding wideEncodingAt(std::int64_t place, File const& file) {
    if (place == 0) return NSUnicodeStringEncoding;
    std::string const mark = bytesBetween(file, 0, 2, 2);
    if (mark == "\xFE\xFF") return NSUTF16BigEndianStringEncoding;
    bool const isLittle = mark == "\xFF\xFE" || std::endian::native == std::endian::little;
    return isLittle ? NSUTF16LittleEndianStringEncoding : NSUTF16BigEndianStringEncoding;
}

std::u16string textOf(std::string const& bytes, Code type, NSStringEncoding wideEncoding) {
    if (isWide(type)) {
        std::optional<std::u16string> const wide = unitsFromBytes(bytes, wideEncoding);
        if (!wide) throw plainError(errors::Parameter);
        return *wide;
    }
    return textOfBytes(bytes);
}

Value splitText(std::u16string const& text, Value const& delimiters, TextContext const& context) {
    TextContext splitting;
    splitting.considered = context.considered | Considerations::Case;
    setTextItemDelimiters(delimiters, splitting);
    std::vector<Value> items;
    for (SourceRange const range : textElements(text, codeOf("citm"), splitting))
        items.push_back(Value::text(text.substr(range.start, range.end - range.start)));
    return Value::list(std::move(items));
}

// The first character of the text, as the bytes hold it.
std::string markIn(std::string const& bytes, std::u16string const& text, Code type, NSStringEncoding wideEncoding) {
    bool const isPair = text.size() > 1 && (text[0] & 0xFC00) == 0xD800 && (text[1] & 0xFC00) == 0xDC00;
    std::u16string const first = text.substr(0, isPair ? 2 : 1);
    if (isWide(type)) return bytesFromUnits(first, wideEncoding).value_or(std::string());
    if (unitsFromUTF8(bytes)) return utf8FromUnits(first);
    return bytesFromUnits(first, NSMacOSRomanStringEncoding).value_or(std::string());
}

// A wide encoding is compared by whole units.
std::size_t placeOfMark(std::string const& bytes, std::string const& mark, Code type) {
    if (mark.empty()) return std::string::npos;
    std::size_t found = bytes.find(mark);
    while (isWide(type) && found != std::string::npos && found % 2 != 0)
        found = bytes.find(mark, found + 1);
    return found;
}

// Four bytes also hold whole numbers that are reals in the language.
std::string storedBytesOf(Value const& value, Code type, TextContext const& context) {
    if (std::optional<Value> const converted = coerced(value, type, context)) return storedBytes(*converted, type);
    std::optional<Value> const number =
        type == codes::IntegerType ? coerced(value, codes::NumberType, context) : std::nullopt;
    if (!number) throw cannotMake(value, type);
    return storedBytes(*number, type);
}

// The value from `start` on: no more of the file is read than it takes.
StoredValue storedValueAt(File const& file, std::int64_t start, std::int64_t end, Code type, std::size_t most) {
    constexpr std::int64_t before{BytesBeforeStored};
    std::string const beginning = bytesBetween(file, start, std::min(end, start + before), most);
    std::int64_t const announced = start + static_cast<std::int64_t>(storedSize(beginning, type));
    if (announced <= start + before) return storedValueIn(beginning, type);
    return storedValueIn(bytesBetween(file, start, std::min(end, announced), most), type);
}

std::string bytesOfValue(Value const& value, Value const* type, NSStringEncoding wideEncoding,
                         TextContext const& context) {
    if (value.is(ValueKind::Data)) return value.data().bytes;
    bool const isStored = type && type->is(ValueKind::Type) && isStoredClass(type->asCode());
    if (isStored) return storedBytesOf(value, type->asCode(), context);
    std::u16string const text = requireText(value, context);
    if (!type || !type->is(ValueKind::Type) || !isWide(type->asCode())) return utf8FromUnits(text);
    return bytesFromUnits(text, wideEncoding).value_or(std::string());
}

void writeAll(File const& file, std::string_view bytes, std::int64_t place) {
    while (!bytes.empty()) {
        ssize_t const count = ::pwrite(file.descriptor, bytes.data(), bytes.size(), place);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throw plainError(lastErrorNumber("write", errors::NotOpenForWriting));
        if (count == 0) throw plainError(errors::NotOpenForWriting);
        bytes.remove_prefix(static_cast<std::size_t>(count));
        place += count;
    }
}

} // namespace

Value openForAccess(Evaluator& evaluator, CommandArguments const& arguments) {
    std::u16string const path = requirePath(arguments.direct, evaluator.context());
    if (evaluator.state().files.withPath(path))
        throw aboutFile(errors::FileAlreadyOpen, resolved(arguments.direct, evaluator.context()), path,
                        u" is already open.");
    Value const* const permission = arguments.find(parameters::WritePermission);
    bool const maySave = permission && requireBoolean(*permission, evaluator.context());
    // A file that is not there is made either way.
    File file =
        maySave ? openAt(arguments.direct, path, O_RDWR | O_CREAT) : openAt(arguments.direct, path, O_RDONLY | O_CREAT);
    file.maySave = maySave;
    return Value::integer(evaluator.state().files.add(std::move(file)));
}

Value closeAccess(Evaluator& evaluator, CommandArguments const& arguments) {
    Value const named = resolved(arguments.direct, evaluator.context());
    OpenFiles& files = evaluator.state().files;
    std::u16string const path = named.isNumber() ? std::u16string() : requirePath(named, evaluator.context());
    File const* const file =
        named.isNumber() ? files.withNumber(requireInteger(named, evaluator.context())) : files.withPath(path);
    if (!file && named.isNumber()) throw plainError(errors::FileNotOpen);
    if (!file) throw aboutFile(errors::FileNotOpen, named, path, u" wasn’t open.");
    files.close(*file);
    return {};
}

// Places count from 1; negative ones from the end.
Value read(Evaluator& evaluator, CommandArguments const& arguments) {
    TextContext const& context = evaluator.context();
    FileInUse const file(evaluator, arguments.direct, O_RDONLY);
    std::int64_t const size = endOf(*file);
    auto const place = [&](Value const& index) {
        if (index.is(ValueKind::Constant)) return size;
        std::int64_t const number = requireInteger(index, context);
        return number < 0 ? size + number + 1 : number;
    };
    Value const* const from = arguments.find(parameters::FromByte);
    Value const* const to = arguments.find(parameters::ToByte);
    Value const* const count = arguments.find(parameters::ForCount);
    std::int64_t const start = from ? std::max<std::int64_t>(place(*from) - 1, 0) : file->place;
    std::int64_t end = to ? place(*to) : count ? start + requireInteger(*count, context) : size;
    end = std::min(end, size);
    if (start >= size && (size > 0 || from)) throw plainError(errors::EndOfFile);
    Value const* const type = arguments.find(parameters::AsInFile);
    Code const code = type && type->is(ValueKind::Type) ? type->asCode() : codes::TextType;
    Value const* const delimiters = arguments.find(parameters::UsingDelimiters);
    Value const* const before = arguments.find(parameters::Before);
    Value const* const until = arguments.find(parameters::Until);
    if (isStoredClass(code) && !delimiters && !before && !until) {
        StoredValue const stored = storedValueAt(*file, start, end, code, context.mostUnits);
        file->place = start + static_cast<std::int64_t>(stored.size);
        return stored.value;
    }
    std::string bytes = bytesBetween(*file, start, end, context.mostUnits);
    NSStringEncoding const wideEncoding = wideEncodingAt(start, *file);
    if (before || until) {
        std::u16string const text = requireText(before ? *before : *until, context);
        // A byte order mark is not part of the text.
        NSStringEncoding const encoding = wideEncodingAt(1, *file);
        std::string const mark = markIn(bytes, text, code, encoding);
        std::size_t const found = placeOfMark(bytes, mark, code);
        if (found != std::string::npos) bytes.resize(before ? found : found + mark.size());
    }
    file->place = start + static_cast<std::int64_t>(bytes.size());
    if (code == codes::RawDataType) return makeObject<DataObject>(ValueKind::Data, codes::RawDataType, bytes);
    std::u16string const text = textOf(bytes, code, wideEncoding);
    if (delimiters) return splitText(text, *delimiters, context);
    bool const isText = code == codes::TextType || code == codes::StringType || code == codes::UnicodeTextType ||
                        code == codeOf("utf8") || code == constants::UTF16Text;
    return isText ? Value::text(text) : requireType(Value::text(text), code, context);
}

Value write(Evaluator& evaluator, CommandArguments const& arguments) {
    TextContext const& context = evaluator.context();
    Value const* const target = arguments.find(parameters::ToFile);
    if (!target) throw missingParameter(u"to", u"write");
    FileInUse const file(evaluator, *target, O_RDWR | O_CREAT);
    if (!file->maySave) throw plainError(errors::NotOpenForWriting);
    std::int64_t place = file->place;
    if (Value const* const start = arguments.find(parameters::StartingAt)) {
        std::int64_t const end = endOf(*file);
        if (start->is(ValueKind::Constant)) {
            place = end;
        } else {
            std::int64_t const number = requireInteger(*start, context);
            place = number < 0 ? end + number + 1 : std::max<std::int64_t>(number - 1, 0);
        }
    }
    std::string bytes = bytesOfValue(resolved(arguments.direct, context), arguments.find(parameters::AsInFile),
                                     wideEncodingAt(place, *file), context);
    if (Value const* const count = arguments.find(parameters::ForBytes))
        bytes.resize(std::min(bytes.size(), static_cast<std::size_t>(std::max(requireInteger(*count, context), 0))));
    writeAll(*file, bytes, place);
    file->place = place + static_cast<std::int64_t>(bytes.size());
    return {};
}

Value getEnd(Evaluator& evaluator, CommandArguments const& arguments) {
    FileInUse const file(evaluator, arguments.direct, O_RDONLY);
    return Value::number(static_cast<double>(endOf(*file)));
}

Value setEnd(Evaluator& evaluator, CommandArguments const& arguments) {
    Value const* const size = arguments.find(parameters::ToEnd);
    if (!size) throw missingParameter(u"to", u"set eof");
    FileInUse const file(evaluator, arguments.direct, O_RDWR | O_CREAT);
    if (!file->maySave) throw plainError(errors::NotOpenForWriting);
    std::int32_t const end = requireInteger(*size, evaluator.context());
    if (end < 0 || ::ftruncate(file->descriptor, end) != 0) throw plainError(errors::Parameter);
    file->place = std::min<std::int64_t>(file->place, end);
    return {};
}

} // namespace mac::applescript::additions
