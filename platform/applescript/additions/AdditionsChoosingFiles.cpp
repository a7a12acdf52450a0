#include "platform/applescript/additions/AdditionParameters.h"
#include "platform/applescript/additions/Additions.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ScriptPaths.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/launchservices/DiskItem.h"
#include "platform/launchservices/TypeIdentifiers.h"
#include <algorithm>

// Files and folders that the person at the screen chooses.

namespace mac::applescript::additions {

namespace {

// A type as a script names it: a type identifier, an extension, or a file type of four characters.
bool isOfNamedType(NSString const& identifier, std::u16string const& named) {
    NSString const name = NSString::stringWithCodeUnits(named);
    if (named.find(u'.') != std::u16string::npos) return UTTypeConformsTo(identifier, name);
    constexpr std::size_t lengthOfFileType = 4;
    NSString const byExtension = UTTypeCreatePreferredIdentifierForTag(kUTTagClassFilenameExtension, name, nil);
    if (UTTypeConformsTo(identifier, byExtension)) return true;
    if (named.size() != lengthOfFileType) return false;
    return UTTypeConformsTo(identifier, UTTypeCreatePreferredIdentifierForTag(kUTTagClassOSType, name, nil));
}

bool isOfNamedTypes(std::string const& path, std::vector<std::u16string> const& types) {
    Result<DiskItem> const item = diskItemAtPath(path);
    if (!item.hasValue()) return false;
    NSString const identifier = NSString::stringWithUTF8String_(contentTypeOf(item.value()));
    return std::ranges::any_of(types, [&](std::u16string const& named) { return isOfNamedType(identifier, named); });
}

FileRequest requestOf(CommandArguments const& arguments, TextContext const& context) {
    FileRequest request;
    std::u16string const title = textAt(arguments, codes::TitleParameter, context);
    std::u16string const prompt = textAt(arguments, codes::PromptParameter, context);
    request.title = title.empty() || prompt.empty() ? title + prompt : title + u": " + prompt;
    if (Value const* const place = arguments.find(parameters::DefaultLocation)) {
        std::u16string const path = requirePath(*place, context);
        std::optional<std::string> const bytes = fileSystemBytesFromUnits(path);
        if (!bytes || !isFolderAt(path)) throw fileNotFound(*place);
        request.folder = *bytes;
    }
    request.allowsSeveral = flagAt(arguments, codes::SeveralParameter, context);
    request.showsHidden = flagAt(arguments, codes::InvisiblesParameter, context);
    return request;
}

// What the person chooses, or -128.
std::vector<std::u16string> chosenPaths(FileRequest const& request) {
    std::optional<std::vector<std::string>> const chosen = requireInterface().chooseFiles(request);
    if (!chosen || chosen->empty()) throw plainError(errors::UserCanceled);
    std::vector<std::u16string> paths;
    for (std::string const& path : *chosen)
        paths.push_back(unitsFromFileSystemBytes(path));
    return paths;
}

Value aliasOf(std::u16string const& path) {
    Value alias = makeObject<FileObject>(ValueKind::File, FileObject::Kind::Alias, path);
    // Linux: a name that is no UTF-8 cannot be chosen in the dialog.
    if (!existsAt(path)) throw fileNotFound(alias);
    return alias;
}

// An alias of what was chosen, or a list of them if several could be.
Value chosenItems(FileRequest const& request) {
    std::vector<Value> aliases;
    for (std::u16string const& path : chosenPaths(request))
        aliases.push_back(aliasOf(path));
    return request.allowsSeveral ? Value::list(std::move(aliases)) : aliases.front();
}

} // namespace

Value chooseFile(Evaluator& evaluator, CommandArguments const& arguments) {
    TextContext const& context = evaluator.context();
    FileRequest request = requestOf(arguments, context);
    if (request.title.empty()) request.title = u"Choose a File";
    if (Value const* const named = arguments.find(parameters::OfType)) {
        request.accepts = [types = textsIn(*named, context)](std::string const& path) {
            return isOfNamedTypes(path, types);
        };
    }
    return chosenItems(request);
}

Value chooseFolder(Evaluator& evaluator, CommandArguments const& arguments) {
    FileRequest request = requestOf(arguments, evaluator.context());
    request.kind = FileRequest::Kind::Folder;
    if (request.title.empty()) request.title = u"Choose a Folder";
    return chosenItems(request);
}

Value chooseFileName(Evaluator& evaluator, CommandArguments const& arguments) {
    FileRequest request = requestOf(arguments, evaluator.context());
    request.kind = FileRequest::Kind::NewFile;
    request.allowsSeveral = false;
    if (request.title.empty()) request.title = u"Specify new file name and location";
    request.name = arguments.find(parameters::DefaultName)
                       ? textAt(arguments, parameters::DefaultName, evaluator.context())
                       : std::u16string(u"untitled");
    return makeObject<FileObject>(ValueKind::File, FileObject::Kind::File, chosenPaths(request).front());
}

} // namespace mac::applescript::additions
