#pragma once

#include "app/TraySurface.h"
#include "views/ViewActions.h"

#include <QList>

namespace brenvik::test {

// Stands in for the system tray: keeps what was pushed, and where the icon is.
class RecordingSurface : public TraySurface {
public:
    void setIcon(const QIcon& icon) override { icons.append(icon); }
    void setToolTip(const QString& text) override { toolTips.append(text); }
    [[nodiscard]] QRect geometry() const override { return iconGeometry; }
    void click() { Q_EMIT triggered(); }

    QList<QIcon> icons;
    QList<QString> toolTips;
    QRect iconGeometry;
};

class RecordingActions : public ViewActions {
public:
    void openControlPanel() override { ++openControlPanelCalls; }
    void refreshNow() override { ++refreshNowCalls; }
    void quit() override { ++quitCalls; }

    int openControlPanelCalls = 0;
    int refreshNowCalls = 0;
    int quitCalls = 0;
};

} // namespace brenvik::test
