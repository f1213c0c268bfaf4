#pragma once

#include "places/ProcessAncestry.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

namespace brenvik {

// What tmux prints for its panes and clients, and which of them a session is
// in. Plain logic: running tmux is Tmux.h's.

// One line of `list-panes -a -F kTmuxPaneFormat`.
struct TmuxPaneRow {
    qint64 pid = 0; // the pane's process
    QString paneId;
    QString sessionId;
    QString windowId;
    int window = 0;
    int pane = 0;

    friend bool operator==(const TmuxPaneRow&, const TmuxPaneRow&) = default;
};

// One line of `list-clients -F kTmuxClientFormat`.
struct TmuxClientRow {
    qint64 pid = 0;
    qint64 activity = 0; // seconds since the epoch of its last key or resize
    QString sessionId;   // the session it shows
    QString tty;

    friend bool operator==(const TmuxClientRow&, const TmuxClientRow&) = default;
};

// Only numbers and IDs, so that no name can break a line or a field; the
// names are asked for alone, once the pane is known.
inline constexpr char kTmuxPaneFormat[] =
    "#{pane_pid} #{pane_id} #{session_id} #{window_id} #{window_index} #{pane_index}";
inline constexpr char kTmuxClientFormat[] =
    "#{client_pid} #{client_activity} #{session_id} #{client_tty}";

// Lines that do not parse are skipped.
[[nodiscard]] QList<TmuxPaneRow> parseTmuxPanes(QStringView output);
[[nodiscard]] QList<TmuxClientRow> parseTmuxClients(QStringView output);

// The pane whose process is the nearest of `ancestry` (a session's root and
// its ancestors, nearest first).
[[nodiscard]] std::optional<TmuxPaneRow> paneOf(const QList<TmuxPaneRow>& panes,
                                                const QList<AncestorProcess>& ancestry);

// The client showing the session that was active last.
[[nodiscard]] std::optional<TmuxClientRow> latestClientOf(const QList<TmuxClientRow>& clients,
                                                          QStringView sessionId);

// Whether a process is a tmux server (its name, or its program's; a pane's
// ancestor that is tmux can only be the server).
[[nodiscard]] bool isTmux(const AncestorProcess& process);

// The socket a tmux server listens on, from the arguments it was started
// with: -S PATH, or -L NAME (default "default") under TMPDIR/tmux-UID.
[[nodiscard]] QString tmuxSocketOf(const QStringList& serverArguments, qint64 uid,
                                   const QString& tmpDir);

} // namespace brenvik
