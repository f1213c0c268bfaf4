#pragma once

#include <QObject>
#include <QStringView>

namespace brenvik {

// One Brenvik per session: the first instance owns a name on the session bus;
// a later launch asks it to show its control panel and ends. Without a
// session bus every launch simply runs.
class SingleInstance : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "io.github.brenvik.Brenvik")

public:
    static constexpr QStringView serviceName = u"io.github.brenvik.Brenvik";
    static constexpr QStringView objectPath = u"/io/github/brenvik/Brenvik";

    enum class Claim {
        first,          // this process owns the name and serves it
        alreadyRunning, // another process owns it and was asked to show its panel
        noBus,          // no session bus: run anyway
    };

    explicit SingleInstance(QObject* parent = nullptr);
    ~SingleInstance() override;

    // With `showRunning`, a running instance is asked to show its control panel.
    [[nodiscard]] Claim claim(bool showRunning = true);

public Q_SLOTS:
    // Called over the bus by a later launch.
    Q_SCRIPTABLE void ShowControlPanel();

Q_SIGNALS:
    void showControlPanelRequested();
};

} // namespace brenvik
