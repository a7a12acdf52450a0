#include "platform/launchservices/Applications.h"
#include "platform/desktop/entries/DefaultApplications.h"
#include "platform/files/references/FSRef.h"
#include "platform/files/references/ItemReferences.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/launchservices/BundleFiles.h"
#include "platform/launchservices/DiskItem.h"
#include "platform/launchservices/TypeTree.h"
#include "platform/system/ASCII.h"
#include "platform/system/BytePath.h"
#include "platform/system/FolderContents.h"
#include <algorithm>
#include <functional>
#include <memory>
#include <mutex>

namespace mac {

namespace {

constexpr std::size_t MostRegistered = 4096;

struct Registered {
    std::mutex lock;
    // The one registered last first.
    std::vector<std::string> paths;
};

// Never destroyed: applications may be asked for until the program's last instruction.
Registered& registered() {
    static Registered& shared = *std::make_unique<Registered>().release();
    return shared;
}

void remember(std::string const& path) {
    std::scoped_lock const lock(registered().lock);
    std::vector<std::string>& paths = registered().paths;
    std::erase(paths, path);
    paths.insert(paths.begin(), path);
    if (paths.size() > MostRegistered) paths.pop_back();
}

bool isApplication(std::string const& path) {
    Result<DiskItem> const item = diskItemAtPath(path);
    return item.hasValue() && item.value().isApplicationBundle();
}

// The remembered bundles that are still in place; the others are forgotten.
std::vector<std::string> registeredPaths() {
    std::scoped_lock const lock(registered().lock);
    std::erase_if(registered().paths, std::not_fn(isApplication));
    return registered().paths;
}

// The folders in which applications are put, and one folder deeper.
void addApplicationsIn(std::string const& folder, bool looksDeeper, std::vector<std::string>& paths) {
    for (std::string const& name : namesInFolder(folder, LinkAtEnd::IsFollowed).valueOr({})) {
        std::string const path = BytePath(folder).joined(name);
        Result<DiskItem> const found = diskItemAtPath(path);
        if (!found.hasValue() || found.value().kind != DiskItem::Kind::Folder) continue;
        DiskItem const& item = found.value();
        if (item.isApplicationBundle())
            paths.push_back(path);
        else if (looksDeeper && !item.isPackage() && !item.isInvisible())
            addApplicationsIn(path, false, paths);
    }
}

std::vector<std::string> installedPaths() {
    std::vector<std::string> paths;
    std::string const home = NSHomeDirectory().fileSystemRepresentation().value_or("/");
    for (std::string const& folder : {home + "/Applications", std::string("/Applications"), std::string("/opt")})
        addApplicationsIn(folder, true, paths);
    return paths;
}

std::string lowercaseOf(NSString const& text) {
    return asciiLowercase(text.fileSystemRepresentation().value_or(text.UTF8String()));
}

// An application on the way, whose information file is read when it is first asked for.
class Candidate {
public:
    explicit Candidate(std::string path) : m_path(std::move(path)) {}

    std::string const& path() const { return m_path; }
    // The types that it declares are known from then on.
    NSDictionary const& information() {
        if (!m_information) {
            m_information = bundleInformation(m_path);
            registerTypesIn(*m_information);
        }
        return *m_information;
    }

private:
    std::string m_path;
    std::optional<NSDictionary> m_information{};
};

bool hasIdentifier(Candidate& application, std::string const& identifier) {
    id const found = application.information().objectForKey_("CFBundleIdentifier");
    return lowercaseOf(as<NSString>(found)) == identifier;
}

bool hasName(Candidate const& application, std::string const& name) {
    std::string const file = asciiLowercase(BytePath(application.path()).leaf());
    return file == name || file == name + ".app";
}

bool hasCreator(Candidate& application, OSType creator) {
    id const signature = application.information().objectForKey_("CFBundleSignature");
    return codeOfText(as<NSString>(signature).codeUnits()) == creator;
}

using Question = std::function<bool(Candidate& application)>;

// What was asked for, the weightiest first.
std::vector<Question> questions(OSType creator, NSString const& bundleID, NSString const& name) {
    std::vector<Question> result;
    if (bundleID.length() > 0)
        result.emplace_back(
            [text = lowercaseOf(bundleID)](Candidate& application) { return hasIdentifier(application, text); });
    if (name.length() > 0)
        result.emplace_back([text = lowercaseOf(name)](Candidate& application) { return hasName(application, text); });
    if (creator != kLSUnknownCreator)
        result.emplace_back([creator](Candidate& application) { return hasCreator(application, creator); });
    return result;
}

std::optional<std::string> findApplication(OSType creator, NSString const& bundleID, NSString const& name) {
    std::vector<Candidate> applications;
    for (std::string& path : registeredPaths())
        applications.emplace_back(std::move(path));
    for (std::string& path : installedPaths())
        applications.emplace_back(std::move(path));
    for (Question const& question : questions(creator, bundleID, name)) {
        auto const found = std::ranges::find_if(applications, question);
        if (found != applications.end()) return found->path();
    }
    return desktopEntryOfRole(lowercaseOf(bundleID));
}

OSStatus registerItem(Result<DiskItem> const& found) {
    if (!found.hasValue()) return fnfErr;
    DiskItem const& item = found.value();
    if (!item.isApplicationBundle()) return kLSDataErr;
    NSDictionary const information = bundleInformation(item.path);
    if (information == nil) return kLSDataErr;
    remember(item.path);
    registerTypesIn(information);
    return noErr;
}

} // namespace

OSStatus LSFindApplicationForInfo(OSType inCreator, CFStringRef const& inBundleID, CFStringRef const& inName,
                                  FSRef* outAppRef, CFURLRef* outAppURL) {
    if (inCreator == kLSUnknownCreator && inBundleID.length() == 0 && inName.length() == 0) return paramErr;
    std::optional<std::string> const path = findApplication(inCreator, inBundleID, inName);
    if (!path) return kLSApplicationNotFoundErr;
    std::optional<PassingReferences> passing;
    if (!outAppRef) passing.emplace();
    Result<FSRef> const ref = referenceToPath(*path, LinkAtEnd::IsFollowed);
    if (!ref.hasValue()) return kLSApplicationNotFoundErr;
    if (outAppRef) *outAppRef = ref.value();
    if (outAppURL) *outAppURL = NSURL::fileURLWithPath_(NSString::stringWithFileSystemRepresentation_(*path));
    return noErr;
}

OSStatus LSRegisterURL(CFURLRef const& inURL, BOOL /*inUpdate*/) {
    return inURL.isFileURL() ? registerItem(diskItemOf(inURL)) : paramErr;
}

OSStatus LSRegisterFSRef(FSRef const* inRef, BOOL /*inUpdate*/) {
    return inRef ? registerItem(diskItemOf(*inRef)) : paramErr;
}

} // namespace mac
