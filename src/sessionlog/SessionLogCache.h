#pragma once

#include "sessionlog/SessionLogReader.h"

#include <QSet>
#include <QString>
#include <unordered_map>

namespace brenvik {

// One reader per log path, for a refresh that asks about every session's log:
// a log asked about again is read only where it grew.
class SessionLogCache {
public:
    // Never throws; see SessionLogReader::update().
    SessionLogState stateOf(const QString& path) noexcept;
    // Forgets the logs no longer referenced.
    void retainOnly(const QSet<QString>& paths);

    [[nodiscard]] qsizetype size() const noexcept { return qsizetype(m_readers.size()); }

private:
    std::unordered_map<QString, SessionLogReader> m_readers;
};

} // namespace brenvik
