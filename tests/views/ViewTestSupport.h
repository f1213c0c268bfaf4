#pragma once

#include "app/AppVisibilityController.h"
#include "app/LaunchAtLoginController.h"
#include "detection/ProcessSnapshot.h"
#include "monitor/ProcessMonitoring.h"
#include "views/ViewActions.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <mutex>

namespace brenvik::test {

// Records the button actions instead of reaching for the app.
class RecordingActions : public ViewActions {
public:
    void openControlPanel() override { ++openControlPanelCalls; }
    void refreshNow() override { ++refreshNowCalls; }
    void quit() override { ++quitCalls; }

    int openControlPanelCalls = 0;
    int refreshNowCalls = 0;
    int quitCalls = 0;
};

// An activation policy that accepts or refuses as told.
class FakePolicy : public ActivationPolicy {
public:
    bool setPolicy(ActivationPolicyKind) override { return accept; }
    void activate() override {}
    bool accept = true;
};

inline DetectedProcessSample group(qint64 pid, QString command, double cpuPercent = 0) {
    return DetectedProcessSample{pid, std::move(command), cpuPercent, 1.0, false, 1};
}

// A monitor on a scripted scan and a fixed clock, brought into a state by
// refreshing and waiting for the refresh to end.
class ScriptedMonitor {
public:
    ScriptedMonitor()
        : monitor(
              [this] {
                  std::lock_guard lock(m_mutex);
                  if (m_error)
                      throw ProcessSnapshotError(kProcessMonitorErrorDomain, 1, *m_error);
                  return m_samples;
              },
              [] { return QDateTime(QDate(2026, 11, 23), QTime(14, 5, 30)); }) {}

    // True once the refresh has ended within the bound.
    bool refreshWith(QList<DetectedProcessSample> samples) {
        {
            std::lock_guard lock(m_mutex);
            m_samples = std::move(samples);
            m_error.reset();
        }
        return refresh();
    }
    bool failWith(QString message) {
        {
            std::lock_guard lock(m_mutex);
            m_samples.clear();
            m_error = std::move(message);
        }
        return refresh();
    }

private:
    bool refresh() {
        QSignalSpy ended(&monitor, &CodexProcessMonitor::lastUpdatedChanged);
        monitor.refresh();
        return ended.count() > 0 || ended.wait(20'000);
    }

    std::mutex m_mutex;
    QList<DetectedProcessSample> m_samples;
    std::optional<QString> m_error;

public:
    CodexProcessMonitor monitor; // last: waits for its scan, which reads the fields above
};

// Both preference controllers on private files: an autostart folder and a
// settings file in a temporary folder, and a fake activation policy.
class PrivatePreferences {
public:
    PrivatePreferences()
        : launchAtLogin(entryIn(m_dir))
        , appVisibility(policy, m_dir.filePath(QStringLiteral("Brenvik.conf"))) {}

private:
    // A program file that exists, so the entry can be registered.
    static AutostartEntry entryIn(const QTemporaryDir& dir) {
        const QString program = dir.filePath(QStringLiteral("brenvik"));
        QFile(program).open(QIODevice::WriteOnly);
        return AutostartEntry({dir.filePath(QStringLiteral("autostart")), program, {}});
    }

    QTemporaryDir m_dir;

public:
    FakePolicy policy;
    LaunchAtLoginController launchAtLogin;
    AppVisibilityController appVisibility;
};

} // namespace brenvik::test
