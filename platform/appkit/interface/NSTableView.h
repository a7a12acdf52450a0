#pragma once

#include "platform/appkit/views/NSControl.h"
#include "platform/foundation/collections/NSArray.h"

namespace mac {

// A table that shows the arranged objects of an array controller, one a row, and follows them by observing. Which
// columns there are and what they show is for the interface file to say. Main thread.
class NSTableView : public Handle<NSTableView, NSControl> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // The order of the rows, first criterion first; it is handed on to the array controller, and a click on a header
    // changes it: the column's criterion comes first, turned round when it was first already, and the older ones stay
    // behind it. Key "sortDescriptors" can be observed.
    NSArray sortDescriptors() const;
    void setSortDescriptors_(NSArray const& descriptors) const;

    // Puts the files of the selected rows on the clipboard, as text and as files to paste; nothing happens where the
    // interface file does not say which files rows are, or no row is selected. The sender is ignored.
    void copy_(id const& sender) const;
    // Selects all rows that are shown.
    void selectAll_(id const& sender) const;

    // Gives the columns the widths that they would have without the user's own. The sender is ignored.
    void resetColumnWidths_(id const& sender) const;
    // The name under which the widths that the user chooses are kept in the user's defaults; nil, as at first, keeps
    // nothing. A name takes over the widths that are kept there; values that are no widths are left out.
    NSString autosaveName() const;
    void setAutosaveName_(NSString const& name) const;

    NSInteger numberOfRows() const;
    NSInteger numberOfSelectedRows() const;
    // The first selected row, or -1.
    NSInteger selectedRow() const;
};

} // namespace mac
