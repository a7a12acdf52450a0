#include "platform/applescript/runtime/HeapObjects.h"
#include "platform/applescript/language/Operation.h"
#include <algorithm>
#include <cmath>

namespace mac::applescript {

namespace {

// The containers that live, in one ring of links.
ContainerObject* firstContainer = nullptr;
std::size_t containerCount = 0;
constexpr std::size_t FewestForCollection = 100000;
std::size_t collectionThreshold = FewestForCollection;

// Neither list is ever destroyed, since values may be destroyed while the process ends.
std::vector<HeapObject*>& waitingForDisposal() {
    static std::vector<HeapObject*>& waiting = *std::make_unique<std::vector<HeapObject*>>().release();
    return waiting;
}
bool isDisposing = false;

// The containers that the visitors have still to look into; a visitor is a plain function and cannot hold it.
std::vector<ContainerObject*>& reachedContainers() {
    static std::vector<ContainerObject*>& reached = *std::make_unique<std::vector<ContainerObject*>>().release();
    return reached;
}

ContainerObject* containerIn(Value const& value) {
    switch (value.kind()) {
    case ValueKind::List:
    case ValueKind::Record:
    case ValueKind::Specifier:
    case ValueKind::Test:
    case ValueKind::Script:
    case ValueKind::Handler:
        return static_cast<ContainerObject*>(value.object());
    default:
        return nullptr;
    }
}

} // namespace

void HeapObject::dispose() {
    waitingForDisposal().push_back(this);
    if (isDisposing) return;
    isDisposing = true;
    while (!waitingForDisposal().empty()) {
        std::unique_ptr<HeapObject> const last(waitingForDisposal().back());
        waitingForDisposal().pop_back();
    }
    isDisposing = false;
}

ContainerObject::ContainerObject() {
    if (containerCount >= collectionThreshold) {
        collectCircles();
        collectionThreshold = std::max(FewestForCollection, containerCount * 2);
    }
    m_next = firstContainer;
    if (m_next) m_next->m_previous = this;
    firstContainer = this;
    ++containerCount;
}

ContainerObject::~ContainerObject() {
    (m_previous ? m_previous->m_next : firstContainer) = m_next;
    if (m_next) m_next->m_previous = m_previous;
    --containerCount;
}

std::size_t ContainerObject::countOfAll() { return containerCount; }

// A container that is held more often than containers hold it is held from outside, and so is what it holds.
void ContainerObject::collectCircles() {
    for (ContainerObject* container = firstContainer; container; container = container->m_next) {
        container->m_outside = container->count();
        container->m_reached = false;
    }
    for (ContainerObject const* container = firstContainer; container; container = container->m_next)
        container->visit([](Value const& held) {
            if (ContainerObject* const inner = containerIn(held)) --inner->m_outside;
        });
    for (ContainerObject* container = firstContainer; container; container = container->m_next) {
        // A reference count of 0 means an object under construction.
        if (container->m_outside == 0 && container->count() != 0) continue;
        container->m_reached = true;
        reachedContainers().push_back(container);
    }
    while (!reachedContainers().empty()) {
        ContainerObject const* const container = reachedContainers().back();
        reachedContainers().pop_back();
        container->visit([](Value const& held) {
            ContainerObject* const inner = containerIn(held);
            if (!inner || inner->m_reached) return;
            inner->m_reached = true;
            reachedContainers().push_back(inner);
        });
    }
    std::vector<ContainerObject*> lost;
    for (ContainerObject* container = firstContainer; container; container = container->m_next)
        if (!container->m_reached) lost.push_back(container);
    for (ContainerObject* const container : lost)
        container->retain();
    for (ContainerObject* const container : lost)
        container->clear();
    for (ContainerObject* const container : lost)
        container->release();
}

void ListObject::visit(void (*visitor)(Value const& held)) const {
    for (Value const& item : items)
        visitor(item);
}

void ListObject::clear() { ValueList const released = std::exchange(items, {}); }

void RecordObject::visit(void (*visitor)(Value const& held)) const {
    for (auto const& [key, value] : fields)
        visitor(value);
}

void RecordObject::clear() { std::vector<std::pair<Symbol, Value>> const released = std::exchange(fields, {}); }

Value Value::number(double number) {
    if (number == std::trunc(number) && number >= LeastInteger && number <= MostInteger)
        return integer(static_cast<std::int32_t>(number));
    return real(number);
}

Value Value::type(Code code) {
    Value value(ValueKind::Type);
    value.m_content.code = code;
    return value;
}

Value Value::constant(Code code) {
    Value value(ValueKind::Constant);
    value.m_content.code = code;
    return value;
}

Value Value::text(std::u16string units) { return makeObject<TextObject>(ValueKind::Text, std::move(units)); }
Value Value::listOf(ValueList items) { return makeObject<ListObject>(ValueKind::List, std::move(items)); }
Value Value::list(std::vector<Value> items) { return makeObject<ListObject>(ValueKind::List, std::move(items)); }
Value Value::record(std::vector<std::pair<Symbol, Value>> fields) {
    return makeObject<RecordObject>(ValueKind::Record, std::move(fields));
}
Value Value::date(std::int64_t seconds) { return makeObject<DateObject>(ValueKind::Date, seconds); }

Value Value::object(ValueKind kind, HeapObject& object) {
    Value value(kind);
    value.m_content.object = &object;
    object.retain();
    return value;
}

} // namespace mac::applescript
