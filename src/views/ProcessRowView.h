#pragma once

#include "monitor/ProcessMonitoring.h"
#include "views/ViewStyle.h"

#include <QAbstractButton>
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

// A small "Go to" button, as high as a line of caption text.
class GoToButton : public QAbstractButton {
    Q_OBJECT

public:
    explicit GoToButton(QWidget* parent = nullptr);
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

// One session: its project directory with its status capsule, the shown
// command (which the user can select and copy) and where it runs. 38 points
// high. The tool tip tells the PID, the start time and what decided the
// status. A double click, Enter while it has the focus, or its "Go to"
// button (shown while the pointer is over the row or the row has the focus)
// asks to go to the session.
class ProcessRowView : public QWidget {
    Q_OBJECT

public:
    // `now` is what the capsule's "how long" counts to; `place` is
    // processRowPlace() of where it runs.
    ProcessRowView(const ProcessMatch& match, const QDateTime& now, QWidget* parent = nullptr);

    void setMatch(const ProcessMatch& match, const QDateTime& now, const QString& place = {});
    [[nodiscard]] const ProcessMatch& match() const noexcept { return m_match; }
    [[nodiscard]] QString placeText() const;
    [[nodiscard]] GoToButton* goToButton() const noexcept { return m_goTo; }

    static constexpr int kHeight = 38;

Q_SIGNALS:
    void goRequested(qint64 pid);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    ProcessMatch m_match;
    ElidingLabel* m_title;
    StatusCapsule* m_capsule;
    CommandLabel* m_command;
    ElidingLabel* m_usage; // "gpt-5.5 · 63 % context left", beside the command
    StyledLabel* m_place;
    GoToButton* m_goTo;
};

} // namespace brenvik
