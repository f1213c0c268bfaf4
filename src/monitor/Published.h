#pragma once

#include <utility>

namespace brenvik {

// Assigns a published property the way observers expect: the owner's
// objectWillChange() first, then the property's own changed signal with the
// new value, and only then the stored value. Equal values are published too,
// so subscribers hear from every assignment.
template <typename Owner, typename T, typename Value, typename... SignalArgs>
void publish(Owner* owner, T& storage, Value&& value, void (Owner::*changed)(SignalArgs...)) {
    T next(std::forward<Value>(value));
    Q_EMIT owner->objectWillChange();
    Q_EMIT(owner->*changed)(next);
    storage = std::move(next);
}

} // namespace brenvik
