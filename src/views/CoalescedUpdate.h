#pragma once

#include <QObject>
#include <functional>

namespace brenvik {

// Re-reads observed objects once per turn of the event loop after any of them
// announced a change, however many properties changed in that turn, and never
// without an announcement.
class CoalescedUpdate : public QObject {
    Q_OBJECT

public:
    CoalescedUpdate(std::function<void()> update, QObject* parent);

    template <typename Observed> void observe(Observed* object) {
        connect(object, &Observed::objectWillChange, this, &CoalescedUpdate::schedule);
    }

    void schedule();
    // How many updates ran; the views report it for tests.
    [[nodiscard]] int count() const noexcept { return m_count; }

private:
    void run();

    std::function<void()> m_update;
    bool m_pending = false;
    int m_count = 0;
};

} // namespace brenvik
