#include "platform/appkit/interface/FormReader.h"
#include "platform/appkit/interface/VisibleText.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/running/Log.h"
#include <QBuffer>
#include <QCoreApplication>
#include <QUiLoader>

namespace mac {

namespace {

class FormLoader : public QUiLoader {
public:
    QWidget* createWidget(QString const& className, QWidget* parent, QString const& name) override {
        if (QWidget* const widget = QUiLoader::createWidget(className, parent, name)) return widget;
        NSLog("Interface file: there is no widget class \"%@\"", stringOf(className));
        return QUiLoader::createWidget("QWidget", parent, name);
    }
};

// While one of these lives, Qt looks for no plugins: a loader would load all those that Designer has on this machine.
class WithoutPlugins {
public:
    WithoutPlugins() : m_paths(QCoreApplication::libraryPaths()) { QCoreApplication::setLibraryPaths({}); }
    ~WithoutPlugins() { QCoreApplication::setLibraryPaths(m_paths); }
    WithoutPlugins(WithoutPlugins const&) = delete;
    WithoutPlugins& operator=(WithoutPlugins const&) = delete;

private:
    QStringList m_paths;
};

} // namespace

std::unique_ptr<QWidget> readForm(NSString const& path, QString& error) {
    NSData const data = NSData::dataWithContentsOfFile_(path);
    if (data == nil) {
        error = "it cannot be read";
        return nullptr;
    }
    QByteArray const bytes(reinterpret_cast<char const*>(data.bytes()), static_cast<qsizetype>(data.length()));
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    WithoutPlugins const without;
    FormLoader loader;
    std::unique_ptr<QWidget> window(loader.load(&buffer));
    if (!window) error = "it is no form: " + loader.errorString();
    return window;
}

} // namespace mac
