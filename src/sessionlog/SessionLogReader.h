#pragma once

#include "sessionlog/SessionLogState.h"
#include "sessionlog/SessionTurnTracker.h"

#include <QByteArray>
#include <QString>

namespace brenvik {

// Follows one rollout log, read-only. The first update reads the first line
// (session_meta) and then backwards from the end until the last turn event
// and the latest usage figures;
// later updates read only what was appended. A replaced, truncated or
// rewritten file is read afresh; a missing one reads as unknown.
//
// `path` may be a /proc/PID/fd/N link, which still reaches a log that was
// deleted while its writer holds it open. Not thread-safe; cheap to keep.
class SessionLogReader {
public:
    explicit SessionLogReader(QString path);

    [[nodiscard]] const QString& path() const noexcept { return m_path; }

    // Never throws; anything it cannot read or understand reads as unknown.
    SessionLogState update() noexcept;

private:
    struct Start; // where reading forward begins after a first look

    void reset();
    void readAfresh(int fd, qint64 size);
    [[nodiscard]] Start findStart(int fd, qint64 size) const;
    [[nodiscard]] bool continuesAtLineStart(int fd) const;
    // Reads the line at `at` alone: the first (session_meta), or one with usage figures.
    void readLineAt(int fd, qint64 size, qint64 at, bool usageOnly);
    bool readForward(int fd, qint64 end);
    void takeLine(QByteArrayView line, qint64 start, bool cut);

    void failed(const QString& why);
    QString m_path;
    QByteArray m_nativePath;
    bool m_attached = false;
    bool m_failed = false; // the last update could not read the log
    quint64 m_device = 0;
    quint64 m_inode = 0;
    qint64 m_offset = 0;          // bytes of the file read so far
    qint64 m_partialStart = 0;    // file offset of m_partial's first byte
    QByteArray m_partial;         // an unfinished line
    bool m_partialIsHead = false; // m_partial holds only the head of an over-long line
    SessionTurnTracker m_tracker;
};

} // namespace brenvik
