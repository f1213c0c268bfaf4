#include "sessionlog/SessionLogReader.h"

#include "detection/FailureLog.h"
#include "detection/FileDescriptor.h"
#include "sessionlog/SessionLogLogging.h"

#include <QFile>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace brenvik {

namespace {

constexpr qint64 kReadChunk = 64 * 1024;
constexpr qint64 kBackwardChunk = 256 * 1024;
// The first line and the head of an over-long line: the types and ids sit at
// the start of a line, long values (instructions, tool output) after them.
constexpr qint64 kHeadLimit = 64 * 1024;
// Longer lines are judged by their head and never buffered whole.
constexpr qint64 kLineLimit = 1024 * 1024;
// How far back the first look goes for the last turn event, and how much an
// update reads forward before it rather looks from the end again.
constexpr qint64 kLookBackLimit = 16 * 1024 * 1024;

// Reads up to `size` bytes at `offset`; short only at the end of the file.
qint64 readAt(int fd, char* buffer, qint64 size, qint64 offset) {
    qint64 done = 0;
    while (done < size) {
        const ssize_t n = ::pread(fd, buffer + done, size_t(size - done), off_t(offset + done));
        if (n > 0)
            done += n;
        else if (n == 0)
            break;
        else if (errno != EINTR)
            return -1;
    }
    return done;
}

} // namespace

struct SessionLogReader::Start {
    qint64 offset = 0;         // a line start
    bool turnsWritten = false; // the lines before it hold turn events
    bool insideLine = false;   // `offset` is inside a line too long to look at
    bool unseen = false;       // lines before it were not looked at
    // The latest lines with usage figures, where they lie before `offset`.
    qint64 tokensAt = -1;
    qint64 modelAt = -1;
};

SessionLogReader::SessionLogReader(QString path)
    : m_path(std::move(path))
    , m_nativePath(QFile::encodeName(m_path)) {}

void SessionLogReader::reset() {
    m_attached = false;
    m_offset = 0;
    m_partialStart = 0;
    m_partial = QByteArray();
    m_partialIsHead = false;
    m_tracker = SessionTurnTracker();
}

SessionLogState SessionLogReader::update() noexcept {
    try {
        // O_NONBLOCK: a FIFO at the path must not block the refresh.
        const FileDescriptor fd(
            ::open(m_nativePath.constData(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
        struct stat status {};
        if (!fd.isValid() || ::fstat(fd.get(), &status) != 0) {
            failed(qt_error_string(errno));
            return {};
        }
        if (!S_ISREG(status.st_mode)) {
            failed(QStringLiteral("not a regular file"));
            return {};
        }
        if (m_failed) {
            m_failed = false;
            failureCleared(m_path);
        }
        const qint64 size = status.st_size;
        const bool sameFile = m_attached && m_device == quint64(status.st_dev) &&
                              m_inode == quint64(status.st_ino) && size >= m_offset;
        const bool appended = sameFile && size > m_offset;
        if (!sameFile ||
            (appended && (size - m_offset > kLookBackLimit || !continuesAtLineStart(fd.get())))) {
            reset();
            m_attached = true;
            m_device = quint64(status.st_dev);
            m_inode = quint64(status.st_ino);
            readAfresh(fd.get(), size);
        } else if (appended) {
            readForward(fd.get(), size);
        }
        return m_tracker.state();
    } catch (const std::exception& error) {
        failed(QString::fromLocal8Bit(error.what()));
        return {};
    } catch (...) {
        failed(QStringLiteral("unknown error"));
        return {};
    }
}

void SessionLogReader::failed(const QString& why) {
    reset();
    m_failed = true;
    logFailureOnce(
        lcSessionLog(), m_path,
        QStringLiteral("cannot read the session log %1 (%2): its session is judged by its CPU use")
            .arg(m_path, why));
}

// A log rewritten in place to at least its old size no longer has a line
// break where the last complete line ended.
bool SessionLogReader::continuesAtLineStart(int fd) const {
    if (m_offset == 0 || !m_partial.isEmpty() || m_partialIsHead)
        return true;
    char last = 0;
    return readAt(fd, &last, 1, m_offset - 1) == 1 && last == '\n';
}

void SessionLogReader::readAfresh(int fd, qint64 size) {
    const Start start = findStart(fd, size);
    if (start.turnsWritten)
        m_tracker.assumeTurnsWritten();
    if (start.unseen)
        m_tracker.assumeLinesUnseen();
    if (start.offset > 0)
        readLineAt(fd, size, 0, false);
    for (const qint64 at : {start.modelAt, start.tokensAt}) {
        if (at > 0)
            readLineAt(fd, size, at, true);
    }
    m_offset = start.offset;
    m_partialStart = start.offset;
    m_partialIsHead = start.insideLine;
    readForward(fd, size);
}

void SessionLogReader::readLineAt(int fd, qint64 size, qint64 at, bool usageOnly) {
    QByteArray head(std::min(size - at, kHeadLimit), Qt::Uninitialized);
    const qint64 n = readAt(fd, head.data(), head.size(), at);
    if (n <= 0)
        return;
    const QByteArrayView read(head.constData(), n);
    const qsizetype end = read.indexOf('\n');
    if (end < 0 && n < kHeadLimit)
        return;
    const QByteArrayView line = end >= 0 ? read.first(end) : read;
    if (usageOnly)
        m_tracker.applyUsage(scanLogLine(line, end < 0));
    else
        takeLine(line, at, end < 0);
}

// Looks backwards from the end for where reading forward gives the same state
// as having read the whole log: the last line that opens a turn, or closes it
// with the agent's message (else the message before it). A session_meta after
// the first line marks copied history: reading starts at the last such marker
// once a turn event before it shows that this log writes them. A log without
// turn events is read from its last prompt. The look goes on, within the same
// bound, to the latest token_count with tokens and the latest turn_context,
// which may lie just before that line (a turn's figures precede its close).
SessionLogReader::Start SessionLogReader::findStart(int fd, qint64 size) const {
    using Kind = LogLineEvent::Kind;
    QByteArray chunk(std::min(size, kBackwardChunk), Qt::Uninitialized);
    QByteArray line;
    qint64 position = size; // everything from here on has been looked at
    qint64 lineEnd = -1;    // the line break ending the line being looked for
    qint64 tailStart = -1;  // start of the unfinished last line
    qint64 marker = -1;     // the last copied-history marker
    qint64 closed = -1;     // the last turn close, if it had no message
    qint64 message = -1;    // the last agent_message
    qint64 prompt = -1;     // the last user_message
    qint64 activity = -1;   // the last tool call or output

    // What the line [begin, end) is, from the chunk if it is there.
    struct Look {
        Kind kind = Kind::other;
        bool hasMessage = false;
        bool figures = false; // a token_count with tokens, a turn_context with a model
    };
    qint64 tokensAt = -1; // the latest token_count with tokens
    qint64 modelAt = -1;  // the latest turn_context with a model
    std::optional<Start> start;
    const auto usageFound = [&] { return tokensAt >= 0 && modelAt >= 0; };
    const auto scan = [&](qint64 begin, qint64 end, qint64 chunkStart, qint64 chunkSize) -> Look {
        LogLineEvent event;
        if (begin >= chunkStart && end <= chunkStart + chunkSize) {
            event =
                scanLogLine(QByteArrayView(chunk.constData() + (begin - chunkStart), end - begin));
        } else {
            const bool cut = end - begin > kLineLimit;
            line.resize(cut ? kHeadLimit : end - begin);
            if (readAt(fd, line.data(), line.size(), begin) != line.size())
                return {};
            event = scanLogLine(line, cut);
        }
        const bool figures = (event.kind == Kind::tokenCount && parseTokenUsage(event.info)) ||
                             (event.kind == Kind::turnContext && !event.model.isEmpty());
        return {event.kind, event.hasMessage, figures};
    };
    // Where reading forward starts, decided by the line at `begin`, if it decides.
    const auto decide = [&](Kind kind, bool hasMessage, qint64 begin) -> std::optional<Start> {
        const bool turnEvent = kind == Kind::turnStarted || kind == Kind::turnEnded;
        if (turnEvent && marker >= 0)
            return Start{marker, true, false};
        if (kind == Kind::turnStarted || (kind == Kind::turnEnded && hasMessage))
            return Start{begin, false, false};
        if (closed >= 0 && (turnEvent || kind == Kind::sessionMeta))
            return Start{closed, false, false}; // that turn had no message
        if (closed >= 0 && kind == Kind::agentMessage)
            return Start{begin, false, false};
        if (kind == Kind::turnEnded)
            closed = begin;
        else if (kind == Kind::agentMessage && message < 0)
            message = begin;
        else if (kind == Kind::sessionMeta && marker < 0)
            marker = begin;
        else if (kind == Kind::userMessage && prompt < 0)
            prompt = begin;
        else if ((kind == Kind::toolCall || kind == Kind::toolOutput) && activity < 0)
            activity = begin;
        return std::nullopt;
    };

    while (position > 0 && size - position < kLookBackLimit && !(start && usageFound())) {
        const qint64 chunkSize = std::min(qint64(chunk.size()), position);
        const qint64 chunkStart = position - chunkSize;
        if (readAt(fd, chunk.data(), chunkSize, chunkStart) != chunkSize)
            break;
        qint64 searchEnd = chunkSize;
        while (const void* found = ::memrchr(chunk.constData(), '\n', size_t(searchEnd))) {
            searchEnd = static_cast<const char*>(found) - chunk.constData();
            const qint64 lineBreak = chunkStart + searchEnd;
            const qint64 begin = lineBreak + 1;
            const qint64 end = std::exchange(lineEnd, lineBreak);
            if (end < 0) {
                tailStart = begin;
                continue;
            }
            const Look look = scan(begin, end, chunkStart, chunkSize);
            if (look.figures && look.kind == Kind::tokenCount && tokensAt < 0)
                tokensAt = begin;
            else if (look.figures && look.kind == Kind::turnContext && modelAt < 0)
                modelAt = begin;
            if (!start)
                start = decide(look.kind, look.hasMessage, begin);
            if (start && usageFound())
                break;
        }
        position = chunkStart;
    }
    // No turn events: an older log, or none of its turns within reach.
    const auto fallbackStart = [&]() -> Start {
        if (closed >= 0)
            return {closed, false, false};
        for (const qint64 at : {prompt, message, activity}) {
            if (at >= 0)
                return {at, false, false};
        }
        if (tailStart >= 0)
            return {tailStart, false, false, position > 0};
        if (position == 0)
            return {0, false, false};     // a single unfinished line
        return {size, false, true, true}; // its end is in a line too long to look at
    };
    if (!start)
        start = fallbackStart();
    if (tokensAt < start->offset)
        start->tokensAt = tokensAt;
    if (modelAt < start->offset)
        start->modelAt = modelAt;
    return *start;
}

bool SessionLogReader::readForward(int fd, qint64 end) {
    char skipped[4096];
    while (m_offset < end) {
        const qint64 want = std::min(kReadChunk, end - m_offset);
        if (m_partialIsHead) {
            // Skip the rest of an over-long line without keeping it.
            const qint64 n = readAt(fd, skipped, std::min(want, qint64(sizeof skipped)), m_offset);
            if (n <= 0)
                return false;
            const void* found = std::memchr(skipped, '\n', size_t(n));
            if (!found) {
                m_offset += n;
                continue;
            }
            m_offset += static_cast<const char*>(found) - skipped + 1;
            takeLine(m_partial, m_partialStart, true);
            m_partial.truncate(0);
            m_partialIsHead = false;
            m_partialStart = m_offset;
            continue;
        }
        const qsizetype old = m_partial.size();
        m_partial.resize(old + want);
        const qint64 n = readAt(fd, m_partial.data() + old, want, m_offset);
        if (n <= 0) {
            m_partial.truncate(old);
            return false;
        }
        m_partial.truncate(old + n);
        m_offset += n;

        qsizetype lineStart = 0;
        qsizetype searchFrom = old;
        while (const void* found = std::memchr(m_partial.constData() + searchFrom, '\n',
                                               size_t(m_partial.size() - searchFrom))) {
            const qsizetype lineBreak = static_cast<const char*>(found) - m_partial.constData();
            takeLine(QByteArrayView(m_partial.constData() + lineStart, lineBreak - lineStart),
                     m_partialStart + lineStart, false);
            lineStart = searchFrom = lineBreak + 1;
        }
        if (lineStart > 0) {
            m_partial.remove(0, lineStart);
            m_partialStart += lineStart;
        }
        if (m_partial.size() > kLineLimit) {
            m_partial.truncate(kHeadLimit);
            m_partial.squeeze();
            m_partialIsHead = true;
        }
        if (n < want)
            return false; // the file ended early: shrunk meanwhile
    }
    if (m_partial.isEmpty() && m_partial.capacity() > kReadChunk)
        m_partial = QByteArray();
    return true;
}

void SessionLogReader::takeLine(QByteArrayView line, qint64 start, bool cut) {
    if (!line.isEmpty())
        m_tracker.apply(scanLogLine(line, cut), start == 0);
}

} // namespace brenvik
