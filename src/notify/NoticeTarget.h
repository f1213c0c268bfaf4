#pragma once

#include "monitor/ProcessMonitoring.h"

#include <QList>
#include <optional>

namespace brenvik {

// The session a notice's default action takes the user to, of those it
// names (`named`, in its order): the first that waits now, else the first
// still there. None once all of them ended.
[[nodiscard]] std::optional<qint64> noticeTarget(const QList<qint64>& named,
                                                 const QList<ProcessMatch>& matches);

} // namespace brenvik
