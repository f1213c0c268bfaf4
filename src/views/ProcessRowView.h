#pragma once

#include "monitor/ProcessMonitoring.h"
#include "views/ViewStyle.h"

#include <QWidget>

namespace brenvik {

// A rounded pill behind a short label, "Waiting for you · 2 min": yellow
// while running, violet while waiting, grey while idle.
class StatusCapsule : public StyledLabel {
    Q_OBJECT

public:
    explicit StatusCapsule(QWidget* parent = nullptr);

    void setStatus(ProcessActivityStatus status, const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ProcessActivityStatus m_status = ProcessActivityStatus::idle;
};

// The shown command: selectable, one line; what does not fit fades out at
// the trailing edge instead of being cut mid-letter.
class CommandLabel : public StyledLabel {
    Q_OBJECT

public:
    explicit CommandLabel(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

// One session: its project directory with its status capsule, and the shown
// command, which the user can select and copy. 38 points high. The tool tip
// tells the PID, the start time and what decided the status.
class ProcessRowView : public QWidget {
    Q_OBJECT

public:
    // `now` is what the capsule's "how long" counts to.
    ProcessRowView(const ProcessMatch& match, const QDateTime& now, QWidget* parent = nullptr);

    void setMatch(const ProcessMatch& match, const QDateTime& now);
    [[nodiscard]] const ProcessMatch& match() const noexcept { return m_match; }

    static constexpr int kHeight = 38;

private:
    ProcessMatch m_match;
    ElidingLabel* m_title;
    StatusCapsule* m_capsule;
    CommandLabel* m_command;
    StyledLabel* m_usage; // "gpt-5.5 · 63 % context left", beside the command
};

} // namespace brenvik
