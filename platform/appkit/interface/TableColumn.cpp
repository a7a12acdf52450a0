#include "platform/appkit/interface/TableColumn.h"
#include "platform/appkit/arrangement/KeptOrder.h"
#include "platform/appkit/interface/VisibleText.h"
#include "platform/foundation/running/Log.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include "platform/foundation/text/PathSlashes.h"
#include <QHash>
#include <functional>

namespace mac {

namespace {

NSValueTransformer transformerNamed(QString const& wanted, QString const& columnTitle) {
    NSValueTransformer const transformer = NSValueTransformer::valueTransformerForName_(stringOf(wanted));
    if (transformer == nil)
        NSLog(R"(Interface file: the column "%@" names the value transformer "%@", which does not exist)",
              stringOf(columnTitle), stringOf(wanted));
    return transformer;
}

// The parts of a sort descriptor as far as they were read.
struct Sorting {
    NSString key;
    bool ascending{true};
    QString selector{"compare:"};

    NSSortDescriptor descriptor() const {
        if (key == nil) return nil;
        return NSSortDescriptor::sortDescriptorWithKey_ascending_selector_(key, BOOL(ascending),
                                                                           SEL(selector.toStdString()));
    }
};

} // namespace

TableColumn TableColumn::fromLines(QString const& name, QStringList const& lines) {
    TableColumn column;
    column.identifier = stringOf(name);
    column.title = name;
    Sorting sorting;
    QHash<QString, std::function<void(QString const&)>> const readers{
        {"title", [&](QString const& value) { column.title = visibleText(NSLocalizedString(stringOf(value), nil)); }},
        {"keyPath", [&](QString const& value) { column.keyPath = stringOf(value); }},
        {"iconKeyPath", [&](QString const& value) { column.iconKeyPath = stringOf(value); }},
        {"textTransformer", [&](QString const& value) { column.textTransformer = transformerNamed(value, name); }},
        {"colorTransformer", [&](QString const& value) { column.colorTransformer = transformerNamed(value, name); }},
        {"sortKey", [&](QString const& value) { sorting.key = stringOf(value); }},
        {"sortSelector", [&](QString const& value) { sorting.selector = value; }},
        {"sortOrder", [&](QString const& value) { sorting.ascending = value != "descending"; }},
        {"orderKey", [&](QString const& value) { column.orderKey = stringOf(value); }},
        {"nullText", [&](QString const& value) { column.nullText = value; }},
        {"emptyText", [&](QString const& value) { column.emptyText = value; }},
        {"elides", [&](QString const& value) { column.elidesCommonPath = value == "commonPath"; }},
        {"sample", [&](QString const& value) { column.sample = value; }},
        {"width",
         [&](QString const& value) { column.fillsWidth = value == "fill", column.fitsContents = value == "fit"; }},
        {"alignment", [&](QString const& value) { column.isCentered = value == "center"; }},
    };
    for (QString const& line : lines) {
        auto const reader = readers.find(line.section('=', 0, 0).trimmed());
        if (reader == readers.end() || !line.contains('='))
            NSLog("Interface file: the column \"%@\" has a line that is not known: %@", stringOf(name), stringOf(line));
        else
            (*reader)(line.section('=', 1).trimmed());
    }
    if (column.keyPath == nil) {
        NSLog("Interface file: the column \"%@\" has no keyPath and shows nothing", stringOf(name));
        return column;
    }
    column.sortDescriptor = sorting.descriptor();
    return column;
}

QString TableColumn::textOf(id const& object) const {
    if (keyPath == nil) return {};
    id const value = valueOfKeyPath(object, keyPath);
    QString text = visibleTextOf(textTransformer == nil ? value : textTransformer.transformedValue_(value));
    if (text.isEmpty()) return emptyText;
    if (elidesCommonPath) text.truncate(static_cast<qsizetype>(withoutTrailingSlashes(text.toStdU16String()).size()));
    return nullText.isEmpty() ? text : text.replace("(null)", nullText);
}

bool TableColumn::sortsLike(NSSortDescriptor const& descriptor) const {
    if (sortDescriptor == nil || descriptor == nil) return false;
    NSString const key = descriptor.key();
    return sortDescriptor.key().isEqual_(key) || (orderKey != nil && orderKey.isEqual_(key));
}

NSString TableColumn::iconPathOf(id const& object) const {
    return iconKeyPath == nil ? NSString() : as<NSString>(valueOfKeyPath(object, iconKeyPath));
}

NSColor TableColumn::colorOf(id const& object) const {
    if (keyPath == nil || colorTransformer == nil) return nil;
    return as<NSColor>(colorTransformer.transformedValue_(valueOfKeyPath(object, keyPath)));
}

} // namespace mac
