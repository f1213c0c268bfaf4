#include "sessionlog/SessionLogPath.h"

namespace brenvik {

bool isSessionLogPath(QStringView path) {
    if (path.endsWith(u" (deleted)"))
        path.chop(10);
    if (!path.startsWith(u'/'))
        return false;
    const QStringView name = path.sliced(path.lastIndexOf(u'/') + 1);
    constexpr QStringView prefix = u"rollout-", suffix = u".jsonl";
    if (name.size() <= prefix.size() + suffix.size() || !name.startsWith(prefix) ||
        !name.endsWith(suffix))
        return false;
    return path.contains(u"/sessions/");
}

QString codexHomeOf(QStringView logPath) {
    if (!isSessionLogPath(logPath))
        return {};
    const qsizetype at = logPath.lastIndexOf(u"/sessions/");
    return at <= 0 ? QStringLiteral("/") : logPath.first(at).toString();
}

} // namespace brenvik
