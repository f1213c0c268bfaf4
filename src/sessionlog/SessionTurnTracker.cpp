#include "sessionlog/SessionTurnTracker.h"

#include <QStringTokenizer>

namespace brenvik {

namespace {

// Parallel calls are few; a log that never answers its calls must not grow us.
constexpr qsizetype kMaxPendingCalls = 64;
constexpr qsizetype kMaxCallIdSize = 256; // Codex's are about 30 bytes
constexpr qsizetype kMaxMessageLine = 120;

std::optional<QDateTime> parseTimestamp(QByteArrayView raw) {
    if (raw.isEmpty() || raw.size() > 64)
        return std::nullopt;
    const QDateTime time = QDateTime::fromString(jsonStringText(raw), Qt::ISODateWithMs);
    if (!time.isValid())
        return std::nullopt;
    return time.toUTC();
}

} // namespace

QString firstMessageLine(const QString& message) {
    for (const QStringView line : QStringTokenizer(message, u'\n')) {
        const QStringView text = line.trimmed();
        if (text.isEmpty())
            continue;
        if (text.size() <= kMaxMessageLine)
            return text.toString();
        qsizetype cut = kMaxMessageLine - 1;
        if (text[cut - 1].isHighSurrogate())
            --cut;
        return text.first(cut).toString() + u'…';
    }
    return {};
}

void SessionTurnTracker::setPhase(TurnPhase phase, QByteArrayView timestamp) {
    m_state.phase = phase;
    m_state.phaseSince = parseTimestamp(timestamp);
}

void SessionTurnTracker::openTurn(QByteArrayView timestamp) {
    m_turnOpen = true;
    m_answered = false;
    m_pendingCalls.clear();
    m_state.lastAgentMessageLine.reset();
    setPhase(TurnPhase::running, timestamp);
}

void SessionTurnTracker::closeTurn(QByteArrayView timestamp) {
    m_turnOpen = false;
    m_pendingCalls.clear();
    setPhase(TurnPhase::idle, timestamp);
}

void SessionTurnTracker::apply(const LogLineEvent& event, bool firstLine) {
    using Kind = LogLineEvent::Kind;
    switch (event.kind) {
    case Kind::sessionMeta:
        if (firstLine) {
            m_state.meta = SessionMeta{.id = jsonStringText(event.id),
                                       .cwd = jsonStringText(event.cwd),
                                       .originator = jsonStringText(event.originator),
                                       .cliVersion = jsonStringText(event.cliVersion)};
            if (m_state.phase == TurnPhase::unknown && !m_linesUnseen)
                setPhase(TurnPhase::notStarted, event.timestamp);
            return;
        }
        // History copied from another run follows; a turn it left open is
        // not this run's.
        m_turnOpen = false;
        m_pendingCalls.clear();
        m_state.lastAgentMessageLine.reset();
        if (!outsideAnyTurn())
            setPhase(TurnPhase::idle, event.timestamp);
        return;
    case Kind::turnStarted:
        m_turnsWritten = true;
        openTurn(event.timestamp);
        return;
    case Kind::turnEnded:
        m_turnsWritten = true;
        if (event.hasMessage)
            m_state.lastAgentMessageLine = firstMessageLine(jsonStringText(event.message));
        closeTurn(event.timestamp);
        return;
    case Kind::userMessage:
        if (m_turnsWritten)
            return; // task_started opened the turn already
        m_promptsWritten = true;
        openTurn(event.timestamp);
        return;
    case Kind::agentMessage:
        if (event.hasMessage)
            m_state.lastAgentMessageLine = firstMessageLine(jsonStringText(event.message));
        m_answered = true;
        if (outsideAnyTurn())
            setPhase(TurnPhase::unknown, {});
        return;
    case Kind::tokenCount:
        if (!m_turnsWritten && m_turnOpen && m_answered && m_pendingCalls.isEmpty())
            closeTurn(event.timestamp);
        return;
    case Kind::toolCall:
        m_answered = false;
        if (outsideAnyTurn())
            setPhase(TurnPhase::unknown, {});
        // A call whose id was lost cannot be answered: better running than
        // waiting forever.
        if (!m_turnOpen || event.callId.isEmpty() || event.callId.size() > kMaxCallIdSize)
            return;
        if (m_pendingCalls.size() == kMaxPendingCalls)
            m_pendingCalls.removeFirst();
        m_pendingCalls.append(event.callId.toByteArray());
        if (m_state.phase != TurnPhase::awaitingToolOutput)
            setPhase(TurnPhase::awaitingToolOutput, event.timestamp);
        return;
    case Kind::toolOutput:
        m_answered = false;
        if (!m_turnOpen)
            return;
        m_pendingCalls.removeOne(event.callId.toByteArray());
        if (m_pendingCalls.isEmpty() && m_state.phase == TurnPhase::awaitingToolOutput)
            setPhase(TurnPhase::running, event.timestamp);
        return;
    case Kind::other:
        return;
    }
}

} // namespace brenvik
