#pragma once

#include "monitor/ProcessMonitoring.h"

#include <QList>
#include <QWidget>

class QVBoxLayout;

namespace brenvik {

class ProcessRowView;

// One row per match, in list order, 6 points apart, top-aligned. Rows are
// kept by PID so a refresh that changes only a status keeps the rows (and any
// selection in them).
class ProcessRowsView : public QWidget {
    Q_OBJECT

public:
    ProcessRowsView(const QList<ProcessMatch>& matches, const QDateTime& now,
                    QWidget* parent = nullptr);

    // `now` is what the rows' "how long" counts to; `places` are the rows'
    // processRowPlace() texts, in the same order (fewer: no place).
    void setMatches(const QList<ProcessMatch>& matches, const QDateTime& now,
                    const QStringList& places = {});
    [[nodiscard]] const QList<ProcessRowView*>& rows() const noexcept { return m_rows; }

Q_SIGNALS:
    // A row asks to go to its session.
    void goRequested(qint64 pid);

private:
    QVBoxLayout* m_layout;
    QList<ProcessRowView*> m_rows;
};

} // namespace brenvik
