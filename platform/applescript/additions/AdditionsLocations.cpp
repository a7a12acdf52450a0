#include "platform/applescript/additions/Additions.h"
#include "platform/applescript/applications/Finder.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/desktop/entries/DefaultApplications.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/urls/NSURL.h"
#include "platform/system/ASCII.h"
#include <algorithm>

// What a URL leads to, opened with the application that the desktop uses for it.

namespace mac::applescript::additions {

namespace {

// The lower-case scheme of an absolute URL; empty for other text, for which no application could be looked up.
std::string schemeOf(std::string const& url) {
    std::size_t const colon = url.find(':');
    std::string const scheme = colon == std::string::npos ? "" : asciiLowercase(url.substr(0, colon));
    bool const isScheme = !scheme.empty() && scheme.front() >= 'a' && scheme.front() <= 'z' &&
                          std::ranges::all_of(scheme, [](char character) {
                              return (character >= 'a' && character <= 'z') || (character >= '0' && character <= '9') ||
                                     character == '+' || character == '-' || character == '.';
                          });
    return isScheme ? scheme : std::string();
}

// The bytes of the path; nullopt for a file of another computer, which is not the one of that path here.
std::optional<std::string> pathOfURL(NSURL const& url) {
    NSString const host = url.host();
    bool const isHere = host == nil || host.length() == 0 || asciiLowercase(host.UTF8String()) == "localhost";
    return isHere ? url.path().fileSystemRepresentation() : std::nullopt;
}

} // namespace

// Answers nothing. A file's URL opens the file as a double click does.
Value openLocation(Evaluator& evaluator, CommandArguments const& arguments) {
    if (arguments.direct.isNothing()) throw missingParameter(u"direct", u"open location");
    std::string const url = utf8FromUnits(requireText(arguments.direct, evaluator.context()));
    std::string const scheme = schemeOf(url);
    if (scheme.empty()) throw plainError(errors::Parameter);
    if (scheme == "file") {
        std::optional<std::string> const bytes = pathOfURL(NSURL::URLWithString_(NSString::stringWithUTF8String_(url)));
        if (!bytes) throw fileNotFound(arguments.direct);
        finder::openPath(*bytes, arguments.direct);
        return {};
    }
    std::optional<DesktopApplication> const application = defaultApplicationFor({"x-scheme-handler/" + scheme});
    if (!application) throw plainError(finder::ApplicationNotFound);
    finder::requireDone(startApplicationAt(*application, url), arguments.direct);
    return {};
}

} // namespace mac::applescript::additions
