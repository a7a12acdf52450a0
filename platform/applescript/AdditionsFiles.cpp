#include "platform/applescript/Additions.h"
#include "platform/applescript/Coercion.h"
#include "platform/applescript/ElementAccess.h"
#include "platform/applescript/ScriptDate.h"
#include "platform/applescript/applications/FinderPlaces.h"
#include "platform/foundation/Encodings.h"
#include <algorithm>
#include <dirent.h>
#include <memory>
#include <sys/stat.h>

namespace mac::applescript::additions {

namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

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

Value fileValue(Value const& written, std::u16string const& path) {
    if (written.is(ValueKind::File)) return written;
    return makeObject<FileObject>(ValueKind::File, FileObject::Kind::File, path);
}

} // namespace

Value infoFor(Evaluator& evaluator, CommandArguments const& arguments) {
    std::u16string const path = requirePath(arguments.direct, evaluator.context());
    Value const file = fileValue(resolved(arguments.direct, evaluator.context()), path);
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
    Value const file = fileValue(resolved(arguments.direct, evaluator.context()), path);
    std::unique_ptr<DIR, CloseFolder> const folder(::opendir(bytesOfPath(path, file).c_str()));
    if (!folder) throw fileNotFound(file);
    Value const* const flag = arguments.find(codeOf("lfiv"));
    bool const showsHidden = !flag || requireBoolean(*flag, evaluator.context());
    std::vector<std::u16string> names;
    while (dirent const* const entry = ::readdir(folder.get())) {
        std::string_view const name = entry->d_name;
        bool const isShown = name != "." && name != ".." && (showsHidden || !name.starts_with('.'));
        if (isShown) names.push_back(unitsFromFileSystemBytes(name));
    }
    std::ranges::sort(names);
    std::vector<Value> values;
    values.reserve(names.size());
    for (std::u16string& name : names)
        values.push_back(Value::text(std::move(name)));
    return Value::list(std::move(values));
}

} // namespace mac::applescript::additions
