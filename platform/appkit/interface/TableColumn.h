#pragma once

#include "platform/appkit/workspace/NSColor.h"
#include "platform/foundation/collections/NSSortDescriptor.h"
#include "platform/foundation/objects/NSValueTransformer.h"
#include <QStringList>
#include <optional>

namespace mac {

// A column of a table, as the interface file describes it: what it shows of an object and how it sorts. Transformers
// are looked up when the column is made.
struct TableColumn {
    NSString identifier;
    QString title;
    NSString keyPath;
    // The key path of the bundle whose icon stands before the text; nil for a column without icons.
    NSString iconKeyPath;
    NSValueTransformer textTransformer;
    NSValueTransformer colorTransformer;
    // The order that the first click on the header asks for; nil: the column does not sort.
    NSSortDescriptor sortDescriptor;
    // The widest text that is expected; the column starts wide enough for it.
    QString sample;
    // What stands in a cell for a value that was missing when the object's text was made, "(null)"; empty: just that.
    QString nullText;
    // What stands in a cell whose text would be empty.
    QString emptyText;
    // The key of another order whose rows stand as this column sorts them, or nearly so: the header shows it as its
    // own.
    NSString orderKey;
    // A column of paths. Cells that are too narrow leave out what all paths have in common, and not what differs; a
    // slash at the end is not shown.
    bool elidesCommonPath{false};
    bool fillsWidth{false};
    bool fitsContents{false};
    bool isCentered{false};

    // From lines such as "title=Version" and "keyPath=versionString". A line or a transformer that is not known is
    // logged and left out.
    static TableColumn fromLines(QString const& name, QStringList const& lines);

    // What the object's cell shows. An object that does not know the key raises NSUndefinedKeyException.
    QString textOf(id const& object) const;
    // Nil for an object without a path.
    NSString iconPathOf(id const& object) const;
    NSColor colorOf(id const& object) const;
    // Whether a sort descriptor is this column's, in whatever direction.
    bool sortsLike(NSSortDescriptor const& descriptor) const;
};

} // namespace mac
