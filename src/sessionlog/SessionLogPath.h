#pragma once

#include <QStringView>

namespace brenvik {

// Whether a path, as readlink of /proc/PID/fd/N gives it (" (deleted)" after
// a removed file), names a Codex rollout log:
// <CODEX_HOME>/sessions/YYYY/MM/DD/rollout-<time>-<uuid>.jsonl. Compressed
// and archived logs are not written to any more and do not count.
[[nodiscard]] bool isSessionLogPath(QStringView path);

} // namespace brenvik
