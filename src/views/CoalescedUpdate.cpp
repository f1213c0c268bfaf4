#include "views/CoalescedUpdate.h"

namespace brenvik {

CoalescedUpdate::CoalescedUpdate(std::function<void()> update, QObject* parent)
    : QObject(parent)
    , m_update(std::move(update)) {}

void CoalescedUpdate::schedule() {
    if (m_pending)
        return;
    m_pending = true;
    // Queued: the object announces before it stores the new value.
    QMetaObject::invokeMethod(this, &CoalescedUpdate::run, Qt::QueuedConnection);
}

void CoalescedUpdate::run() {
    m_pending = false;
    ++m_count;
    m_update();
}

} // namespace brenvik
