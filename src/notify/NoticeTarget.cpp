#include "notify/NoticeTarget.h"

namespace brenvik {

std::optional<qint64> noticeTarget(const QList<qint64>& named, const QList<ProcessMatch>& matches) {
    const auto statusOf = [&](qint64 pid) -> std::optional<ProcessActivityStatus> {
        for (const ProcessMatch& match : matches) {
            if (match.pid == pid)
                return match.status;
        }
        return std::nullopt;
    };
    std::optional<qint64> firstAlive;
    for (const qint64 pid : named) {
        const std::optional<ProcessActivityStatus> status = statusOf(pid);
        if (status == ProcessActivityStatus::waiting)
            return pid;
        if (status && !firstAlive)
            firstAlive = pid;
    }
    return firstAlive;
}

} // namespace brenvik
