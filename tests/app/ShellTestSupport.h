#pragma once

#include "app/TraySurface.h"
#include "tests/views/ViewTestSupport.h"

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

} // namespace brenvik::test
