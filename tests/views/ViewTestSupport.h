#pragma once

// Stand-ins shared by the view tests and the tray shell's tests.

#include "preferences/AppVisibilityController.h"
#include "preferences/LaunchAtLoginController.h"
#include "preferences/NotificationsController.h"
#include "tests/monitor/MonitorTestSupport.h"
#include "views/ViewActions.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <vector>

namespace brenvik::test {

// Records the button actions instead of reaching for the app.
struct RecordingActions : ViewActions {
    void openControlPanel() override { ++openControlPanelCalls; }
    void refreshNow() override { ++refreshNowCalls; }
    void quit() override { ++quitCalls; }
    void goToSession(qint64 pid) override { wentTo.push_back(pid); }

    int openControlPanelCalls = 0;
    std::vector<qint64> wentTo; // not QList: Qt 6.4 compares an emptied one with memcmp
    int refreshNowCalls = 0;
    int quitCalls = 0;
};

// An activation policy that accepts or refuses as told, and records what it was asked.
struct RecordingPolicy : ActivationPolicy {
    bool setPolicy(ActivationPolicyKind policy) override {
        requested.append(policy);
        return accept;
    }
    void activate() override { ++activations; }
    bool desktopCanHide() const override { return canHide; }

    bool accept = true;
    bool canHide = true;
    QList<ActivationPolicyKind> requested;
    int activations = 0;
};

// Lets queued updates run.
inline void settle() {
    for (int i = 0; i < 3; ++i)
        QCoreApplication::processEvents();
}

inline DetectedProcessSample group(qint64 pid, QString command, double cpuPercent = 0) {
    return sample(pid, cpuPercent, 1.0, false, std::move(command));
}

// What a session log says while the agent waits for the user since `since`.
inline CodexProcessMonitor::LogState waitingLog(const QDateTime& since) {
    SessionLogState log;
    log.phase = TurnPhase::awaitingToolOutput;
    log.phaseSince = since;
    return log;
}

// The preference controllers on files in a temporary folder.
class PrivatePreferences {
    QTemporaryDir m_dir;
    bool m_temporaryProgram;
    // A program file that exists, so the entry can be registered unless it
    // counts as temporary.
    AutostartEntry entry() const {
        const QString program = m_dir.filePath(QStringLiteral("brenvik"));
        QFile(program).open(QIODevice::WriteOnly);
        return AutostartEntry({m_dir.filePath(QStringLiteral("autostart")), program,
                               m_temporaryProgram ? QStringList{m_dir.path()} : QStringList()});
    }

public:
    // A temporary program: launch at login is not available, and the panel says why.
    explicit PrivatePreferences(bool temporaryProgram = false)
        : m_temporaryProgram(temporaryProgram) {}
    RecordingPolicy policy;
    LaunchAtLoginController launchAtLogin{entry()};
    StoredPreferences stored{m_dir.filePath(QStringLiteral("Brenvik.conf"))};
    AppVisibilityController appVisibility{policy, stored};
    NotificationsController notifications{stored};
};

} // namespace brenvik::test
