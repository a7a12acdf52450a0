#include "platform/applescript/additions/AdditionKeys.h"
#include "platform/applescript/additions/Additions.h"
#include "platform/applescript/applications/FinderItem.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/text/PathSlashes.h"
#include "platform/launchservices/BundleFiles.h"
#include "platform/launchservices/DiskItem.h"
#include "platform/system/FolderContents.h"
#include <algorithm>
#include <cstdlib>
#include <memory>

namespace mac::applescript::additions {

namespace {

std::string bytesOfPath(std::u16string const& path, Value const& file) {
    std::optional<std::string> const bytes = fileSystemBytesFromUnits(path);
    if (!bytes) throw fileNotFound(file);
    return *bytes;
}

std::u16string lastComponent(std::u16string_view path) {
    std::u16string_view const plain = withoutTrailingSlashes(path);
    return std::u16string(plain.substr(plain.rfind(u'/') + 1));
}

// The item that the path leads to, through a symbolic link at its end too; nullptr if it leads to no item.
std::shared_ptr<FinderItem> itemBehindLinks(std::string const& path) {
    std::unique_ptr<char, decltype(&std::free)> const real(::realpath(path.c_str(), nullptr), &std::free);
    return real ? FinderItem::atPath(real.get()) : nullptr;
}

Value typeIdentifier(FinderItem const& item) {
    Result<DiskItem> const found = diskItemAtPath(item.path());
    return found.hasValue() ? Value::text(unitsFromFileSystemBytes(contentTypeOf(found.value()))) : Value::missing();
}

Value textIn(NSDictionary const& information, char const* key) {
    NSString const found = as<NSString>(information.objectForKey_(NSString::stringWithUTF8String_(key)));
    return found == nil ? Value::missing() : Value::text(std::u16string(found.codeUnits()));
}

} // namespace

Value asFile(Value const& named, std::u16string const& path) {
    if (named.is(ValueKind::File)) return named;
    return makeObject<FileObject>(ValueKind::File, FileObject::Kind::File, path);
}

// What the Finder says of the item, under the keys of this command's record. `without size` leaves the size of a
// folder out, which takes a look at all that is in it.
Value infoFor(Evaluator& evaluator, CommandArguments const& arguments) {
    std::u16string const path = requirePath(arguments.direct, evaluator.context());
    Value const file = asFile(resolved(arguments.direct, evaluator.context()), path);
    std::shared_ptr<FinderItem> const item = itemBehindLinks(bytesOfPath(path, file));
    if (!item) throw fileNotFound(file);
    Value const* const sizeFlag = arguments.find(codes::Size);
    bool const hasSize = !sizeFlag || requireBoolean(*sizeFlag, evaluator.context());
    std::u16string const name = lastComponent(path);
    std::size_t const dot = name.rfind(u'.');
    bool const hasExtension = dot != std::u16string::npos && dot > 0 && dot + 1 < name.size();
    bool const isPackage = item->isOfType(codes::Package) || item->isOfType(codes::ApplicationFile);
    auto const ofItem = [&](Code code) { return item->property(code).value_or(Value::missing()); };
    std::vector<std::pair<Symbol, Value>> fields{
        {keyOf(codes::Name), Value::text(name)},
        {keyOf(codes::CreationDate), ofItem(codes::CreationDate)},
        {keyOf(codes::ModificationDate), ofItem(codes::ModificationDate)},
    };
    if (hasSize) fields.emplace_back(keyOf(codes::Size), ofItem(codes::Size));
    fields.insert(fields.end(), {
                                    {keyOf(codes::IsFolder), Value::boolean(item->isFolder())},
                                    {keyOf(codes::AliasType), Value::boolean(false)},
                                    {keyOf(keys::PackageFolder), Value::boolean(item->isFolder() && isPackage)},
                                    {keyOf(codes::Visible), Value::boolean(!name.starts_with(u'.'))},
                                    {keyOf(codes::ExtensionHidden), ofItem(codes::ExtensionHidden)},
                                    {keyOf(codes::NameExtension),
                                     hasExtension ? Value::text(name.substr(dot + 1)) : Value::missing()},
                                    {keyOf(codes::DisplayedName), ofItem(codes::DisplayedName)},
                                    {keyOf(codes::Kind), ofItem(codes::Kind)},
                                    {keyOf(codes::Locked), ofItem(codes::Locked)},
                                    {keyOf(keys::TypeIdentifier), typeIdentifier(*item)},
                                    {keyOf(codes::FileType), ofItem(codes::FileType)},
                                    {keyOf(keys::FileCreator), ofItem(codes::Creator)},
                                });
    if (!isPackage) return Value::record(std::move(fields));
    NSDictionary const information = bundleInformation(item->path());
    fields.emplace_back(keyOf(codes::BundleIdentifier), textIn(information, "CFBundleIdentifier"));
    fields.emplace_back(keyOf(codes::ShortName), textIn(information, "CFBundleName"));
    fields.emplace_back(keyOf(keys::ShortVersion), textIn(information, "CFBundleShortVersionString"));
    fields.emplace_back(keyOf(keys::LongVersion), textIn(information, "CFBundleGetInfoString"));
    return Value::record(std::move(fields));
}

// In the order of names; hidden items unless told otherwise.
Value listFolder(Evaluator& evaluator, CommandArguments const& arguments) {
    std::u16string const path = requirePath(arguments.direct, evaluator.context());
    Value const file = asFile(resolved(arguments.direct, evaluator.context()), path);
    Result<std::vector<std::string>> const listed = namesInFolder(bytesOfPath(path, file), LinkAtEnd::IsFollowed);
    if (!listed.hasValue()) throw fileNotFound(file);
    Value const* const flag = arguments.find(codes::InvisiblesParameter);
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
