#pragma once

#include <QString>
#include <QStringView>

namespace brenvik {

// Whether a path, as readlink of /proc/PID/fd/N gives it (" (deleted)" after
// a removed file), names a Codex rollout log:
// <CODEX_HOME>/sessions/YYYY/MM/DD/rollout-<time>-<uuid>.jsonl. Compressed
// and archived logs are not written to any more and do not count.
[[nodiscard]] bool isSessionLogPath(QStringView path);

// The CODEX_HOME a session log lies in: what comes before its last
// "/sessions/"; empty for any other path.
[[nodiscard]] QString codexHomeOf(QStringView logPath);

} // namespace brenvik
