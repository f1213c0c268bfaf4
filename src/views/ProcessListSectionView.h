#pragma once

#include "monitor/ProcessMonitoring.h"
#include "views/ProcessListPresentation.h"

#include <QWidget>

class QScrollArea;
class QStackedLayout;

namespace brenvik {

class CoalescedUpdate;
class ProcessRowsView;
class SessionPlaceTracker;
class StyledLabel;

// The placeholder text, a plain stack of up to three rows, or a scrolling
// list with its scroll bar always showing; re-read whenever the monitor
// publishes. Rows that do not fit (the preferences above grew with failure
// texts) scroll too, rather than being cut off.
class ProcessListSectionView : public QWidget {
    Q_OBJECT

public:
    // With `places`, each row shows where its session runs.
    explicit ProcessListSectionView(CodexProcessMonitor& monitor, QWidget* parent = nullptr,
                                    const SessionPlaceTracker* places = nullptr);

    [[nodiscard]] ProcessListForm form() const noexcept { return m_form; }
    [[nodiscard]] QString placeholderText() const;
    [[nodiscard]] ProcessRowsView* rowsView() const noexcept { return m_rows; }
    [[nodiscard]] QScrollArea* scrollArea() const noexcept { return m_scroll; }
    [[nodiscard]] int updateCount() const;

Q_SIGNALS:
    // A row asks to go to its session.
    void goRequested(qint64 pid);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void updateFromMonitor();
    [[nodiscard]] ProcessListForm fittingForm() const;
    void setForm(ProcessListForm form);

    CodexProcessMonitor& m_monitor;
    const SessionPlaceTracker* m_places;
    CoalescedUpdate* m_updates;
    QStackedLayout* m_pages;
    StyledLabel* m_placeholder;
    QWidget* m_plainPage;
    QScrollArea* m_scroll;
    ProcessRowsView* m_rows;
    ProcessListForm m_form = ProcessListForm::placeholder;
};

} // namespace brenvik
