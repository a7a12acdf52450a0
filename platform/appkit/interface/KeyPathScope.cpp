#include "platform/appkit/interface/KeyPathScope.h"
#include "platform/appkit/interface/VisibleText.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/NSNull.h"
#include "platform/foundation/running/EventLoop.h"
#include "platform/foundation/running/Log.h"
#include <algorithm>

namespace mac {

bool isTruth(id const& value) {
    if (value == nil || value.isKindOfClass_(classOf<NSNull>())) return false;
    NSNumber const number = as<NSNumber>(value);
    return number == nil || number.boolValue();
}

id KeyPathScope::objectNamed(QString const& name) const {
    auto const found = m_objects.find(name);
    return found == m_objects.end() ? id() : found->second;
}

KeyPathScope::Start KeyPathScope::startOf(QString const& keyPath) const {
    qsizetype const dot = keyPath.indexOf('.');
    id const named = dot < 0 ? id() : objectNamed(keyPath.first(dot));
    if (named == nil) return {m_controller, stringOf(keyPath)};
    return {named, stringOf(keyPath.sliced(dot + 1))};
}

namespace {

NSValueTransformer transformerNamed(QString const& name) {
    NSValueTransformer const transformer = NSValueTransformer::valueTransformerForName_(stringOf(name));
    if (transformer == nil) NSLog("Interface file: there is no value transformer \"%@\"", stringOf(name));
    return transformer;
}

} // namespace

BoundValue::BoundValue(KeyPathScope const& scope, QString const& keyPath, std::function<void()> changed) {
    auto const [object, path] = scope.startOf(keyPath.section('|', 0, 0));
    m_object = object;
    m_keyPath = path;
    m_isTransformed = keyPath.contains('|');
    if (m_isTransformed) m_transformer = transformerNamed(keyPath.section('|', 1));
    try {
        m_observer = std::make_unique<KeyPathObserver>(object, path, std::move(changed));
    } catch (NSUndefinedKeyException const&) {
        // Reading the value logs it.
        m_observer.reset();
    }
}

id BoundValue::value() const {
    if (m_isUnknown) return nil;
    try {
        id const value = m_object.load().valueForKeyPath_(m_keyPath);
        return m_isTransformed ? m_transformer.transformedValue_(value) : value;
    } catch (NSUndefinedKeyException const& exception) {
        m_isUnknown = true;
        NSLog("Interface file: the key path \"%@\" cannot be read: %s", m_keyPath, exception.reason());
        return nil;
    }
}

Condition::Condition(KeyPathScope const& scope, QStringList const& keyPaths, int delay,
                     std::function<void(bool)> changed)
    : m_changed(std::move(changed)) {
    m_delay.setSingleShot(true);
    m_delay.setInterval(delay);
    QObject::connect(&m_delay, &QTimer::timeout, &m_delay, [this] { guarded([&] { m_changed(isTrue()); }); });
    for (QString const& entry : keyPaths) {
        QString const keyPath = entry.trimmed();
        bool const isNegated = keyPath.startsWith('!');
        m_terms.push_back(
            {std::make_unique<BoundValue>(scope, keyPath.sliced(isNegated ? 1 : 0), [this] { follow(); }), isNegated});
    }
    follow();
}

bool Condition::isTrue() const {
    return std::ranges::all_of(m_terms,
                               [](Term const& term) { return isTruth(term.value->value()) != term.isNegated; });
}

void Condition::follow() {
    bool const isTrueNow = isTrue();
    if (isTrueNow && m_delay.interval() > 0) {
        if (!m_delay.isActive()) m_delay.start();
        return;
    }
    m_delay.stop();
    m_changed(isTrueNow);
}

} // namespace mac
