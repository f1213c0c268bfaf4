#pragma once

#include "monitor/ProcessMonitoring.h"
#include "views/CoalescedUpdate.h"
#include "views/StatusViews.h"
#include "views/ViewActions.h"

#include <QWidget>

namespace brenvik {

// What the popover and the control panel share: the status header over the
// monitor, re-read once per event-loop turn after the monitor publishes, and
// only then.
class MonitorStatusView : public QWidget {
public:
    [[nodiscard]] StatusHeaderView* header() const noexcept { return m_header; }
    // How many updates ran; for tests.
    [[nodiscard]] int updateCount() const { return m_updates->count(); }

protected:
    MonitorStatusView(CodexProcessMonitor& monitor, ViewActions& actions, QWidget* parent)
        : QWidget(parent)
        , m_monitor(monitor)
        , m_actions(actions)
        , m_updates(new CoalescedUpdate([this] { updateFromMonitor(); }, this))
        , m_header(new StatusHeaderView(monitor.runState(), monitor.summary(), this)) {
        m_updates->observe(&m_monitor);
        updateLimits();
    }

    // Overrides call this first, then update their own parts.
    virtual void updateFromMonitor() {
        m_header->setState(m_monitor.runState(), m_monitor.summary());
        updateLimits();
    }

    CodexProcessMonitor& m_monitor;
    ViewActions& m_actions;

private:
    void updateLimits() {
        const QDateTime now = QDateTime::currentDateTimeUtc();
        m_header->setLimits(limitsLines(m_monitor.accountLimits(), now),
                            limitsLevel(m_monitor.accountLimits(), now));
    }

    CoalescedUpdate* m_updates;
    StatusHeaderView* m_header;
};

} // namespace brenvik
