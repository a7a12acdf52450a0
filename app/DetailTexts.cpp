#include "app/DetailFacts.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/text/Localization.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include "platform/foundation/text/PathSlashes.h"
#include <algorithm>

namespace framekeeper {

namespace {

NSString orDash(NSString const& text) { return text == nil || text.length() == 0 ? NSString("–") : text; }

NSString versionText(NSDictionary const& record) { return orDash(as<NSString>(record.objectForKey_("versionString"))); }

// A folder that a script has moved is known by a path with a slash at its end; people read it without.
NSString pathText(NSDictionary const& record) {
    NSString const path = as<NSString>(record.objectForKey_("path"));
    return path.substringToIndex_(static_cast<NSUInteger>(withoutTrailingSlashes(path.codeUnits()).size()));
}

NSString sizeText(DetailFacts const& facts) {
    if (!facts.size) return NSLocalizedString("Adding up…", "While the size of a copy is found out");
    if (!facts.size->hasValue()) return "–";
    TreeSize const& size = facts.size->value();
    NSString const items = localizedCount(static_cast<NSUInteger>(size.items), "%n item", "%n items",
                                          "Files and folders of a copy, behind its size");
    NSString const text = NSString::stringWithFormat_("%@ (%@)", localizedSize(size.allocated), items);
    if (size.unreadable == 0) return text;
    NSString const unreadable = localizedCount(static_cast<NSUInteger>(size.unreadable), "%n item could not be read",
                                               "%n items could not be read", "Behind the size of a copy");
    return NSString::stringWithFormat_("%@, %@", text, unreadable);
}

NSString dateText(DetailFacts const& facts, NSDate DiskFacts::*date) {
    return orDash(facts.disk ? localizedDate(*facts.disk.*date) : NSString());
}

NSString volumeText(DetailFacts const& facts) {
    if (!facts.disk) return "–";
    NSString const name = facts.disk->volumeName;
    return orDash(name == nil || name.length() == 0 ? facts.disk->volumePath : name);
}

NSString processText(SessionFacts const& session) {
    if (!session.process) return NSLocalizedString("Not running", "Details of a copy");
    return NSString::stringWithFormat_(NSLocalizedString("Process %d", "Details of a copy: a process by its number"),
                                       *session.process);
}

bool isSet(NSDictionary const& record, NSString const& key) {
    return as<NSNumber>(record.objectForKey_(key)).boolValue();
}

// The text where the login items, or the places, could not be read whole, so that the copy may be among them.
NSString notKnown(NSString const& problem) {
    return NSString::stringWithFormat_(NSLocalizedString("Not known: %@", "Details of a copy: a list, and why"),
                                       problem);
}

NSString loginItemText(DetailFacts const& facts) {
    bool const starts = isSet(facts.record, "isAutolaunched");
    if (!starts && facts.loginItemsProblem != nil) return notKnown(facts.loginItemsProblem);
    if (!starts) return NSLocalizedString("Does not start at login", nil);
    NSString const file = facts.session.loginItemFile;
    return file == nil ? NSLocalizedString("Starts at login", nil) : file.lastPathComponent();
}

NSString placeText(DetailFacts const& facts) {
    if (isSet(facts.record, "isInToolbar")) return NSLocalizedString("In the places", nil);
    return facts.placesProblem == nil ? NSLocalizedString("Not in the places", nil) : notKnown(facts.placesProblem);
}

// The most paths that are listed; the text is made anew with each copy that was compared.
constexpr std::size_t MostEqualPaths = 20;

NSString withLine(NSString const& text, NSString const& line) {
    return text.length() == 0 ? line : text.stringByAppendingString_("\n").stringByAppendingString_(line);
}

NSString equalPaths(std::vector<NSString> const& paths) {
    NSString text = "";
    std::size_t const shown = std::min(paths.size(), MostEqualPaths);
    for (std::size_t index = 0; index < shown; ++index)
        text = withLine(text, paths[index]);
    if (shown == paths.size()) return text;
    return withLine(text, localizedCount(static_cast<NSUInteger>(paths.size() - shown), "and %n more", "and %n more",
                                         "Copies that are the same, below the first ones"));
}

NSString comparedText(Comparison const& comparison) {
    if (comparison.unreadable == 0 && comparison.equal.empty())
        return NSLocalizedString("No other copy is the same", "Compared byte for byte");
    if (comparison.unreadable == 0) return equalPaths(comparison.equal);
    bool const isAnyRead = comparison.unreadable < comparison.compared;
    NSString text = equalPaths(comparison.equal);
    if (comparison.equal.empty() && isAnyRead)
        text = NSLocalizedString("No other copy that could be read is the same", "Compared byte for byte");
    return withLine(text, localizedCount(comparison.unreadable, "%n copy could not be read",
                                         "%n copies could not be read", "Behind the copies that are the same"));
}

NSString equalCopiesText(Comparison const& comparison) {
    switch (comparison.stage) {
    case Comparison::Stage::NotAsked:
        return NSLocalizedString("Not compared yet", "Copies that are the same byte for byte");
    case Comparison::Stage::UnderWay:
        return NSString::stringWithFormat_(
            NSLocalizedString("Compared %lu of %lu", "Other copies, while they are compared"), comparison.compared,
            comparison.others);
    case Comparison::Stage::Stopped:
        return NSString::stringWithFormat_(
            NSLocalizedString("Stopped after %lu of %lu", "Other copies that were compared"), comparison.compared,
            comparison.others);
    case Comparison::Stage::Done:
        break;
    }
    return comparedText(comparison);
}

NSNumber truth(bool value) { return NSNumber::numberWithBool_(BOOL(value)); }

} // namespace

NSDictionary detailValues(DetailFacts const& facts) {
    NSMutableDictionary const values = NSMutableDictionary::dictionary();
    values.setObject_forKey_(truth(facts.record != nil), "hasCopy");
    if (facts.record == nil) return values;
    bool const exists = isSet(facts.record, "exists");
    bool const isComparing = facts.comparison.stage == Comparison::Stage::UnderWay;
    values.setObject_forKey_(orDash(pathText(facts.record)), "path");
    values.setObject_forKey_(versionText(facts.record), "version");
    values.setObject_forKey_(sizeText(facts), "size");
    values.setObject_forKey_(dateText(facts, &DiskFacts::created), "created");
    values.setObject_forKey_(dateText(facts, &DiskFacts::modified), "modified");
    values.setObject_forKey_(volumeText(facts), "volume");
    values.setObject_forKey_(processText(facts.session), "process");
    values.setObject_forKey_(loginItemText(facts), "loginItem");
    values.setObject_forKey_(placeText(facts), "place");
    values.setObject_forKey_(equalCopiesText(facts.comparison), "equalCopies");
    values.setObject_forKey_(truth(facts.disk && facts.disk->volumePath != nil), "hasVolume");
    values.setObject_forKey_(truth(facts.session.program != nil), "hasProcess");
    values.setObject_forKey_(truth(facts.session.loginItemFile != nil), "hasLoginItem");
    values.setObject_forKey_(truth(facts.session.placeFile != nil), "hasPlace");
    values.setObject_forKey_(truth(exists && !isComparing), "canCompare");
    values.setObject_forKey_(truth(isComparing), "isComparing");
    return values;
}

} // namespace framekeeper
