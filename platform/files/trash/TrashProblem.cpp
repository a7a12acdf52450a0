#include "platform/files/trash/TrashProblem.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include <cerrno>

namespace mac {

namespace {

using SentenceTranslation = std::string (*)(char const* key);

std::string sentenceInEnglish(char const* key) { return key; }

std::string localizedSentence(char const* key) {
    return NSLocalizedString(NSString::stringWithUTF8String_(key), nil).UTF8String();
}

std::string sentenceText(TrashSentence const& sentence, SentenceTranslation translated) {
    constexpr std::string_view place = "%@";
    std::string text = translated(sentence.key);
    std::size_t const found = text.find(place);
    if (found == std::string::npos) return text;
    return text.replace(found, place.size(), utf8FromUnits(unitsFromFileSystemBytes(sentence.path)));
}

std::string problemText(TrashProblem const& problem, SentenceTranslation translated) {
    std::string text = translated(problem.what);
    if (text.empty()) return text;
    std::string reason = sentenceText(problem.reason, translated);
    if (reason.empty()) reason = translated(textOfSystemError(problem.error.code).c_str());
    text += ": " + reason;
    std::string const whereabouts = sentenceText(problem.whereabouts, translated);
    return whereabouts.empty() ? text : text + "; " + whereabouts;
}

} // namespace

std::string TrashProblem::text() const { return problemText(*this, sentenceInEnglish); }

std::string TrashProblem::localizedText() const { return problemText(*this, localizedSentence); }

TrashProblem wrongItemMoved(SystemError error, char const* what, std::string const& path) {
    constexpr char const* reason = localizable("Another item was moved in its stead, and is now at %@");
    return {.kind = TrashProblem::Changed, .error = std::move(error), .what = what, .reason = {reason, path}};
}

TrashProblem trashProblem(SystemError error, char const* what) {
    constexpr auto kindOf = [](int code) {
        switch (code) {
        case ENOENT:
        case ENOTDIR:
            return TrashProblem::NotThere;
        case EACCES:
        case EPERM:
            return TrashProblem::NotAllowed;
        case ItemIsLocked:
            return TrashProblem::Locked;
        case EROFS:
            return TrashProblem::ReadOnly;
        case ENOSPC:
        case EDQUOT:
            return TrashProblem::Full;
        case EXDEV:
            return TrashProblem::NoTrash;
        case EBUSY:
            return TrashProblem::Immovable;
        case EEXIST:
        case ENOTEMPTY:
            return TrashProblem::NameTaken;
        case ESTALE:
            return TrashProblem::Changed;
        default:
            return TrashProblem::Other;
        }
    };
    return {.kind = kindOf(error.code), .error = std::move(error), .what = what};
}

} // namespace mac
