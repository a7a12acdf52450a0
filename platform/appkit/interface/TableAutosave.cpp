#include "platform/appkit/interface/TableViewBody.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/running/EventLoop.h"
#include "platform/preferences/NSUserDefaults.h"

// The widths of columns that last: a dictionary in the user's defaults, of pixels by the columns' identifiers.

namespace mac {

namespace {

// Wider than any screen.
constexpr int WidestColumn = 20'000;

} // namespace

void NSTableView::Body::setAutosaveName(NSString const& name) {
    m_autosaveName = name;
    m_widths->whenChosen({});
    if (name == nil) return;
    guarded([&] { readWidths(); });
    m_widths->whenChosen([this] { guarded([&] { writeWidths(); }); });
}

NSString NSTableView::Body::widthsKey() const {
    return NSString::stringWithFormat_("NSTableView Columns %@", m_autosaveName);
}

void NSTableView::Body::readWidths() {
    NSDictionary const kept = NSUserDefaults::standardUserDefaults().dictionaryForKey_(widthsKey());
    QMap<int, int> widths;
    for (int section = 0; section < m_model.columnCount(); ++section) {
        NSString const identifier = m_model.columns()[static_cast<std::size_t>(section)].identifier;
        NSNumber const width = as<NSNumber>(kept.objectForKey_(identifier));
        if (width != nil && width.doubleValue() >= 1 && width.doubleValue() <= WidestColumn)
            widths.insert(section, width.intValue());
    }
    m_widths->choose(widths);
}

void NSTableView::Body::writeWidths() {
    NSMutableDictionary const kept = NSMutableDictionary::dictionary();
    for (auto const& [section, width] : m_widths->chosenWidths().asKeyValueRange())
        kept.setObject_forKey_(NSNumber::numberWithInt_(width),
                               m_model.columns()[static_cast<std::size_t>(section)].identifier);
    NSUserDefaults::standardUserDefaults().setObject_forKey_(kept.count() > 0 ? kept : NSMutableDictionary(),
                                                             widthsKey());
}

void NSTableView::Body::resetColumnWidths() {
    m_widths->reset();
    if (m_autosaveName != nil) guarded([&] { writeWidths(); });
}

} // namespace mac
