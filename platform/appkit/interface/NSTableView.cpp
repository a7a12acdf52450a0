#include "platform/Registration.h"
#include "platform/appkit/arrangement/ArrayControllerBody.h"
#include "platform/appkit/interface/NSWindow.h"
#include "platform/appkit/interface/TableViewBody.h"
#include "platform/foundation/objects/Method.h"

namespace mac {

ClassDescription NSTableView::describeClass() {
    using Self = NSTableView;
    return {
        .name = "NSTableView",
        .superclass = classOf<NSControl>(),
        .methods =
            {
                method<&Self::sortDescriptors>("sortDescriptors"),
                method<&Self::setSortDescriptors_>("setSortDescriptors:"),
                method<&Self::copy_>("copy:"),
                method<&Self::selectAll_>("selectAll:"),
                method<&Self::resetColumnWidths_>("resetColumnWidths:"),
                method<&Self::autosaveName>("autosaveName"),
                method<&Self::setAutosaveName_>("setAutosaveName:"),
                method<&Self::numberOfRows>("numberOfRows"),
                method<&Self::numberOfSelectedRows>("numberOfSelectedRows"),
                method<&Self::selectedRow>("selectedRow"),
            },
        .properties = {property<&Self::sortDescriptors, &Self::setSortDescriptors_>("sortDescriptors")},
    };
}

NSArray NSTableView::sortDescriptors() const {
    return *this == nil ? NSArray() : bodyOf(*this)->controller().sortDescriptors();
}

void NSTableView::setSortDescriptors_(NSArray const& descriptors) const {
    if (*this != nil) bodyOf(*this)->setSortDescriptors(descriptors);
}

void NSTableView::copy_(id const&) const {
    if (*this != nil) bodyOf(*this)->copySelection();
}

void NSTableView::selectAll_(id const&) const {
    if (*this != nil) bodyOf(*this)->selectAll();
}

void NSTableView::resetColumnWidths_(id const&) const {
    if (*this != nil) bodyOf(*this)->resetColumnWidths();
}

NSString NSTableView::autosaveName() const { return *this == nil ? NSString() : bodyOf(*this)->autosaveName(); }

void NSTableView::setAutosaveName_(NSString const& name) const {
    if (*this != nil) bodyOf(*this)->setAutosaveName(name);
}

NSInteger NSTableView::numberOfRows() const {
    return *this == nil ? 0 : static_cast<NSInteger>(bodyOf(*this)->controller().arrangedObjects().count());
}

NSInteger NSTableView::numberOfSelectedRows() const {
    return *this == nil ? 0 : static_cast<NSInteger>(bodyOf(bodyOf(*this)->controller())->selectedRows().size());
}

NSInteger NSTableView::selectedRow() const {
    if (*this == nil) return 0;
    NSUInteger const index = bodyOf(*this)->controller().selectionIndex();
    return index == NSNotFound ? -1 : static_cast<NSInteger>(index);
}

void registerAppKit() { registerClasses<NSTableView, NSWindow>(); }

} // namespace mac
