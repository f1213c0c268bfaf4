#pragma once

#include "places/SessionPlace.h"
#include "places/TmuxPanes.h"

#include <QStringList>
#include <functional>
#include <optional>

namespace brenvik {

// Runs `tmux` with the arguments (never through a shell): its standard
// output when it exits with 0, none otherwise.
using TmuxRunner = std::function<std::optional<QString>(const QStringList& arguments)>;

// The tmux program from PATH, bounded in time.
[[nodiscard]] std::optional<QString> runTmux(const QStringList& arguments);

// One tmux server, spoken to through its socket. Targets are IDs, never names.
class TmuxServer {
public:
    TmuxServer(QString socket, TmuxRunner run)
        : m_socket(std::move(socket))
        , m_run(std::move(run)) {}

    [[nodiscard]] const QString& socket() const noexcept { return m_socket; }

    // The pane whose process is the nearest of `ancestry`, with its names.
    [[nodiscard]] std::optional<TmuxPane> paneOf(const QList<AncestorProcess>& ancestry) const;
    // Every client; none when the server cannot be asked.
    [[nodiscard]] QList<TmuxClientRow> clients() const;

    // Makes the pane its window's active one and the window its session's.
    [[nodiscard]] bool select(const TmuxPane& pane) const;
    // Shows the pane's session in a client: the one on `tty`, or with no
    // tty the one that runs this command (run-shell from a key binding).
    [[nodiscard]] bool switchClient(const QString& tty, const TmuxPane& pane) const;

private:
    [[nodiscard]] std::optional<QString> run(QStringList arguments) const;
    [[nodiscard]] std::optional<QString> format(const QString& target, const QString& format) const;

    QString m_socket;
    TmuxRunner m_run;
};

} // namespace brenvik
