#pragma once

#include "monitor/ProcessMonitoring.h"
#include "views/ViewStyle.h"

#include <QWidget>

namespace brenvik {

// A rounded pill behind a short label: "Running" or "Idle".
class StatusCapsule : public StyledLabel {
    Q_OBJECT

public:
    explicit StatusCapsule(QWidget* parent = nullptr);

    void setStatus(ProcessActivityStatus status);

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

// One process group: "PID n" with its status capsule, and the shown command,
// which the user can select and copy. 38 points high.
class ProcessRowView : public QWidget {
    Q_OBJECT

public:
    explicit ProcessRowView(const ProcessMatch& match, QWidget* parent = nullptr);

    void setMatch(const ProcessMatch& match);
    [[nodiscard]] const ProcessMatch& match() const noexcept { return m_match; }

    static constexpr int kHeight = 38;

private:
    ProcessMatch m_match;
    StyledLabel* m_pid;
    StatusCapsule* m_capsule;
    CommandLabel* m_command;
};

} // namespace brenvik
