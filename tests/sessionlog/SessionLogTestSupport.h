#pragma once

#include "../detection/DetectionTestSupport.h"
#include "sessionlog/SessionLogState.h"

#include <QByteArray>
#include <QFile>
#include <ostream>

namespace brenvik {

inline void PrintTo(TurnPhase phase, std::ostream* out) {
    constexpr const char* names[] = {"unknown", "notStarted", "idle", "running",
                                     "awaitingToolOutput"};
    *out << names[int(phase)];
}

inline void PrintTo(const SessionLogState& state, std::ostream* out) {
    PrintTo(state.phase, out);
    *out << " since "
         << (state.phaseSince ? state.phaseSince->toString(Qt::ISODateWithMs).toStdString() : "-")
         << ", message "
         << (state.lastAgentMessageLine ? state.lastAgentMessageLine->toStdString() : "-")
         << ", meta " << (state.meta ? state.meta->id.toStdString() : "-");
}

namespace test {

using namespace Qt::StringLiterals;

// Rollout lines shaped as Codex 0.169.0 writes them, with their long values
// left out. Line `second` carries the timestamp 13:00:<second>.
inline QDateTime timeAt(int second) {
    return QDateTime(QDate(2026, 11, 23), QTime(13, second / 60, second % 60, 250), Qt::UTC);
}

inline QByteArray line(int second, const QByteArray& type, const QByteArray& payload) {
    return R"({"timestamp":")" + timeAt(second).toString(Qt::ISODateWithMs).toLatin1() +
           R"(","ordinal":)" + QByteArray::number(second) + R"(,"type":")" + type +
           R"(","payload":)" + payload + "}\n";
}

inline QByteArray sessionMeta(int second, const QByteArray& id = "S1") {
    return line(second, "session_meta",
                R"({"session_id":")" + id + R"(","id":")" + id +
                    R"(","cwd":"/home/u/proj","originator":"codex-tui","cli_version":"0.169.0",)"
                    R"("base_instructions":{"text":"You are a coding agent…"}})");
}
inline QByteArray taskStarted(int second, const QByteArray& turn = "T1") {
    return line(second, "event_msg",
                R"({"type":"task_started","turn_attribution":{"turn_id":")" + turn +
                    R"("},"turn_id":")" + turn + R"(","model_context_window":258400})");
}
inline QByteArray taskComplete(int second, const QByteArray& messageJson = "null") {
    return line(second, "event_msg",
                R"({"type":"task_complete","turn_id":"T1","last_agent_message":)" + messageJson +
                    R"(,"duration_ms":3320})");
}
inline QByteArray turnAborted(int second) {
    return line(second, "event_msg",
                R"({"type":"turn_aborted","turn_id":"T1","reason":"interrupted"})");
}
inline QByteArray agentMessage(int second, const QByteArray& messageJson) {
    return line(second, "event_msg", R"({"type":"agent_message","message":)" + messageJson + "}");
}
inline QByteArray toolCall(int second, const QByteArray& callId,
                           const QByteArray& type = "function_call") {
    return line(second, "response_item",
                R"({"type":")" + type +
                    R"(","id":"fc_1","name":"exec_command",)"
                    R"("arguments":"{\"cmd\": \"make test\"}","call_id":")" +
                    callId + R"("})");
}
inline QByteArray toolOutput(int second, const QByteArray& callId,
                             const QByteArray& outputJson = R"("Process exited with code 0")",
                             const QByteArray& type = "function_call_output") {
    return line(second, "response_item",
                R"({"type":")" + type + R"(","id":"fco_1","call_id":")" + callId +
                    R"(","output":)" + outputJson + "}");
}
inline QByteArray userMessage(int second, const QByteArray& textJson) {
    return line(second, "response_item",
                R"({"type":"message","role":"user","content":[{"type":"input_text","text":)" +
                    textJson + "}]}");
}
inline QByteArray
tokenCount(int second, const QByteArray& info = R"({"total_token_usage":{"input_tokens":10}})",
           const QByteArray& rateLimits = "null") {
    return line(second, "event_msg",
                R"({"type":"token_count","info":)" + info + R"(,"rate_limits":)" + rateLimits +
                    "}");
}

// A log file in a private scratch folder, written the way Codex writes it.
class LogFile {
public:
    explicit LogFile(const char* name = "rollout-2026-11-23T13-00-00-S1.jsonl")
        : m_path(m_dir.path(u"sessions/"_s + QLatin1StringView(name))) {}

    [[nodiscard]] const QString& path() const { return m_path; }
    void append(const QByteArray& bytes) const { m_dir.write(m_path, bytes, true); }
    // Replaces the file by another one (a new inode), as a rotation does.
    void replace(const QByteArray& bytes) const {
        QFile::remove(m_path);
        QFile::rename(m_dir.write(m_path + u".next", bytes), m_path);
    }
    void truncate(qint64 size) const { QFile::resize(m_path, size); }

private:
    ScratchDir m_dir{"sessions"};
    QString m_path;
};

inline QByteArray readFixture(const char* name) {
    QFile file(qEnvironmentVariable("BRENVIK_SOURCE_DIR") + u"/tests/sessionlog/data/" +
               QString::fromLatin1(name));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("missing fixture %s", name);
    return file.readAll();
}

} // namespace test
} // namespace brenvik
