#include "platform/applescript/additions/Additions.h"
#include "platform/applescript/applications/FinderPlaces.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/runtime/ScriptDate.h"
#include "platform/foundation/Encodings.h"
#include "platform/system/FolderContents.h"
#include <algorithm>
#include <sys/stat.h>

namespace mac::applescript::additions {

namespace {

std::string bytesOfPath(std::u16string const& path, Value const& file) {
    std::optional<std::string> const bytes = fileSystemBytesFromUnits(path);
    if (!bytes) throw fileNotFound(file);
    return *bytes;
}

std::u16string lastComponent(std::u16string path) {
    while (path.size() > 1 && path.ends_with(u'/'))
        path.pop_back();
    return path.substr(path.rfind(u'/') + 1);
}

} // namespace

Value asFile(Value const& named, std::u16string const& path) {
    if (named.is(ValueKind::File)) return named;
    return makeObject<FileObject>(ValueKind::File, FileObject::Kind::File, path);
}

Value infoFor(Evaluator& evaluator, CommandArguments const& arguments) {
    std::u16string const path = requirePath(arguments.direct, evaluator.context());
    Value const file = asFile(resolved(arguments.direct, evaluator.context()), path);
    struct stat status {};
    if (::stat(bytesOfPath(path, file).c_str(), &status) != 0) throw fileNotFound(file);
    std::u16string const name = lastComponent(path);
    std::string const bytesName = bytesOfPath(name, file);
    std::size_t const dot = name.rfind(u'.');
    bool const hasExtension = dot != std::u16string::npos && dot > 0 && dot + 1 < name.size();
    bool const isFolder = S_ISDIR(status.st_mode);
    auto const key = [](Code code) { return termSymbol(code, nameOfCode(code)); };
    return Value::record({
        {key(codeOf("pnam")), Value::text(name)},
        {key(codeOf("ascd")), Value::date(dateOfUnixTime(status.st_ctime))},
        {key(codeOf("asmo")), Value::date(dateOfUnixTime(status.st_mtime))},
        {key(codeOf("ptsz")), Value::number(static_cast<double>(status.st_size))},
        {key(codeOf("asdr")), Value::boolean(isFolder)},
        {key(codeOf("alis")), Value::boolean(false)},
        {key(codeOf("ispk")), Value::boolean(isFolder && classOfFolderNamed(bytesName) != codeOf("cfol"))},
        {key(codeOf("pvis")), Value::boolean(!name.starts_with(u'.'))},
        {key(codeOf("hidx")), Value::boolean(false)},
        {key(codeOf("nmxt")), hasExtension ? Value::text(name.substr(dot + 1)) : Value::missing()},
        {key(codeOf("dnam")), Value::text(name)},
        {key(codeOf("aslk")), Value::boolean((status.st_mode & S_IWUSR) == 0)},
    });
}

// In the order of names; hidden items unless told otherwise.
Value listFolder(Evaluator& evaluator, CommandArguments const& arguments) {
    std::u16string const path = requirePath(arguments.direct, evaluator.context());
    Value const file = asFile(resolved(arguments.direct, evaluator.context()), path);
    Result<std::vector<std::string>> const listed = namesInFolder(bytesOfPath(path, file), LinkAtEnd::IsFollowed);
    if (!listed.hasValue()) throw fileNotFound(file);
    Value const* const flag = arguments.find(codeOf("lfiv"));
    bool const showsHidden = !flag || requireBoolean(*flag, evaluator.context());
    std::vector<std::u16string> names;
    for (std::string const& name : listed.value())
        if (showsHidden || !name.starts_with('.')) names.push_back(unitsFromFileSystemBytes(name));
    std::ranges::sort(names);
    std::vector<Value> values;
    values.reserve(names.size());
    for (std::u16string& name : names)
        values.push_back(Value::text(std::move(name)));
    return Value::list(std::move(values));
}

} // namespace mac::applescript::additions
