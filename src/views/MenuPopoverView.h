#pragma once

#include "monitor/ProcessMonitoring.h"
#include "views/ViewActions.h"

#include <QPushButton>
#include <QWidget>

namespace brenvik {

class CoalescedUpdate;
class StatusHeaderView;

// A button filled with the palette's accent colour: the one prominent action
// of a surface.
class ProminentButton : public QPushButton {
    Q_OBJECT

public:
    explicit ProminentButton(const QString& text, QWidget* parent = nullptr);

protected:
    void changeEvent(QEvent* event) override;

private:
    void applyPalette();
    bool m_applying = false;
};

// The popover: the status header and "Open Control Panel". 300 points wide;
// its height follows the content.
class MenuPopoverView : public QWidget {
    Q_OBJECT

public:
    MenuPopoverView(CodexProcessMonitor& monitor, ViewActions& actions, QWidget* parent = nullptr);

    static constexpr int kWidth = 300;

    [[nodiscard]] StatusHeaderView* header() const noexcept { return m_header; }
    [[nodiscard]] QPushButton* openControlPanelButton() const noexcept { return m_openButton; }
    [[nodiscard]] int updateCount() const;

private:
    void updateFromMonitor();

    CodexProcessMonitor& m_monitor;
    ViewActions& m_actions;
    CoalescedUpdate* m_updates;
    StatusHeaderView* m_header;
    ProminentButton* m_openButton;
};

} // namespace brenvik
