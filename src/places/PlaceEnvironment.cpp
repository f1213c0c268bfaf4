#include "places/PlaceEnvironment.h"

#include "places/X11Desktop.h"

#include <unistd.h>

namespace brenvik {

namespace {

QString environmentVariable(const char* name) {
    return qEnvironmentVariable(name);
}

} // namespace

PlaceEnvironment PlaceEnvironment::system() {
    return {
        .process = readProcess,
        .tmux = runTmux,
        .windows = [](QString* reason) -> std::optional<QList<ClientWindow>> {
            *reason = windowsUnavailableReason(environmentVariable);
            if (!reason->isEmpty())
                return std::nullopt;
            const std::unique_ptr<X11Desktop> desktop = X11Desktop::open(reason);
            if (!desktop)
                return std::nullopt;
            return desktop->clientWindows();
        },
        .activate =
            [](quint32 window, QString* reason) {
                *reason = windowsUnavailableReason(environmentVariable);
                if (!reason->isEmpty())
                    return false;
                const std::unique_ptr<X11Desktop> desktop = X11Desktop::open(reason);
                return desktop && desktop->activate(window, reason);
            },
        .variableOf = readEnvironmentVariable,
        .uid = static_cast<qint64>(::getuid()),
        .tmuxTmpDir = qEnvironmentVariable("TMUX_TMPDIR"),
        .invokingTmuxSocket = qEnvironmentVariable("TMUX").section(u',', 0, 0),
    };
}

} // namespace brenvik
