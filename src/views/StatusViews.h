#pragma once

#include "monitor/ProcessMonitoring.h"
#include "views/StatusPresentation.h"
#include "views/ViewStyle.h"

#include <QWidget>
#include <optional>

class QLabel;

namespace brenvik {

// An 11-point dot in the state's colour with a faint ring, shaped as the
// tray's dot is (a speech bubble while a session waits), centred in at least
// 14 points of width.
class StatusDotShapeView : public QWidget {
    Q_OBJECT

public:
    explicit StatusDotShapeView(StateColor color, QWidget* parent = nullptr);

    void setColor(StateColor color);
    [[nodiscard]] NamedColor color() const noexcept;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    StateColor m_color;
};

// The dot, "Codex CLI Status" over the summary, and the count badge at the
// trailing edge (absent while nothing is found). While sessions wait for the
// user, a third line in violet names their projects.
class StatusHeaderView : public QWidget {
    Q_OBJECT

public:
    StatusHeaderView(const CodexRunState& state, const QString& summary, QWidget* parent = nullptr);

    void setState(const CodexRunState& state, const QString& summary);

    [[nodiscard]] NamedColor stateColor() const noexcept { return m_dot->color(); }
    [[nodiscard]] QString summaryText() const;
    // Empty while the badge is absent.
    [[nodiscard]] QString badgeText() const;
    // "Waiting for you: brenvik" in full; empty while the line is absent.
    [[nodiscard]] QString waitingText() const;
    // The plan's limits under the summary ("Limits: 5 h 42 % · week 13 % ·
    // resets 19:20"), coloured by how near they are; absent without lines.
    void setLimits(const QStringList& lines, LimitsLevel level);
    [[nodiscard]] QString limitsText() const;
    [[nodiscard]] NamedColor limitsColor() const;
    // How much taller the line makes the header while it shows.
    [[nodiscard]] int waitingLineHeight() const;
    [[nodiscard]] ElidingLabel* waitingLine() const noexcept { return m_waiting; }
    // Makes the waiting line a link: a click on it emits waitingClicked().
    void setWaitingClickable(bool clickable);

Q_SIGNALS:
    void waitingClicked();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    StatusDotShapeView* m_dot;
    StyledLabel* m_summary;
    ElidingLabel* m_waiting;
    StyledLabel* m_limits;
    StyledLabel* m_badge;
    bool m_waitingClickable = false;
};

// "Checking now", or "Updated " and the time of day of the last refresh.
class LastUpdatedLabel : public StyledLabel {
    Q_OBJECT

public:
    explicit LastUpdatedLabel(const std::optional<QDateTime>& lastUpdated,
                              QWidget* parent = nullptr);

    void setLastUpdated(const std::optional<QDateTime>& lastUpdated);
};

// The named colour of a state colour.
[[nodiscard]] NamedColor namedColor(StateColor color);

} // namespace brenvik
