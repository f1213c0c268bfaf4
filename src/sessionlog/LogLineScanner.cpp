#include "sessionlog/LogLineScanner.h"

#include <QByteArray>
#include <optional>
#include <utility>

namespace brenvik {

namespace {

using Kind = LogLineEvent::Kind;

// Strictly the JSON grammar for the two levels the tracker reads (the line
// and its payload); deeper values are only checked for balanced brackets and
// well-formed strings, which is all that skipping them needs.
class JsonWalker {
public:
    explicit JsonWalker(QByteArrayView text)
        : m_at(text.data())
        , m_end(text.data() + text.size()) {}

    [[nodiscard]] bool atEnd() const { return m_at >= m_end; }
    [[nodiscard]] char peek() const { return m_at < m_end ? *m_at : '\0'; }
    [[nodiscard]] const char* position() const { return m_at; }

    void skipSpace() {
        while (m_at < m_end && (*m_at == ' ' || *m_at == '\t' || *m_at == '\r' || *m_at == '\n'))
            ++m_at;
    }
    bool take(char c) {
        skipSpace();
        if (m_at < m_end && *m_at == c) {
            ++m_at;
            return true;
        }
        return false;
    }

    bool string(QByteArrayView& contents) {
        skipSpace();
        if (m_at >= m_end || *m_at != '"')
            return false;
        const char* const begin = ++m_at;
        while (m_at < m_end) {
            const auto c = static_cast<unsigned char>(*m_at);
            if (c == '"') {
                contents = QByteArrayView(begin, m_at - begin);
                ++m_at;
                return true;
            }
            if (c == '\\')
                m_at = m_end - m_at > 2 ? m_at + 2 : m_end;
            else if (c < 0x20)
                return false;
            else
                ++m_at;
        }
        return false;
    }

    bool skipValue() {
        skipSpace();
        if (m_at >= m_end)
            return false;
        switch (*m_at) {
        case '"': {
            QByteArrayView ignored;
            return string(ignored);
        }
        case '{':
        case '[':
            return skipNested();
        default: {
            const char* const begin = m_at;
            while (m_at < m_end && isLiteralChar(*m_at))
                ++m_at;
            return m_at > begin;
        }
        }
    }

private:
    static bool isLiteralChar(char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || c == '-' || c == '+' ||
               c == '.' || c == 'E';
    }

    bool skipNested() {
        // Iterative with a fixed stack: deep nesting cannot exhaust ours.
        constexpr int kMaxDepth = 128;
        char closers[kMaxDepth];
        int depth = 0;
        while (m_at < m_end) {
            const char c = *m_at;
            if (c == '"') {
                QByteArrayView ignored;
                if (!string(ignored))
                    return false;
                continue;
            }
            if (c == '{' || c == '[') {
                if (depth == kMaxDepth)
                    return false;
                closers[depth++] = c == '{' ? '}' : ']';
            } else if (c == '}' || c == ']') {
                if (depth == 0 || closers[depth - 1] != c)
                    return false;
                if (--depth == 0) {
                    ++m_at;
                    return true;
                }
            } else if (static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\r' &&
                       c != '\n') {
                return false;
            }
            ++m_at;
        }
        return false;
    }

    const char* m_at;
    const char* m_end;
};

bool hasEscape(QByteArrayView raw) {
    return raw.contains('\\');
}

// Compares a raw JSON string with plain ASCII text; escapes are resolved only
// if there are any, which Codex never writes in these values.
bool rawEquals(QByteArrayView raw, QByteArrayView text) {
    if (!hasEscape(raw))
        return raw == text;
    return jsonStringText(raw, text.size() + 1) == QLatin1StringView(text);
}

struct Fields {
    std::optional<QByteArrayView> type;
    std::optional<QByteArrayView> payloadType;
    QByteArrayView timestamp;
    QByteArrayView callId, message, lastAgentMessage;
    bool hasMessage = false, hasLastAgentMessage = false;
    QByteArrayView id, cwd, originator, cliVersion;
    QByteArrayView model, info, rateLimits;
};

// What a type names, by its raw (still escaped) JSON text; `otherwise` for
// types Brenvik does not follow.
template <typename Value, std::size_t N>
Value named(QByteArrayView type, const std::pair<QByteArrayView, Value> (&names)[N],
            Value otherwise) {
    for (const auto& [name, value] : names) {
        if (rawEquals(type, name))
            return value;
    }
    return otherwise;
}

// The types Brenvik follows, by the line's type and by its payload's.
enum class LineType { sessionMeta, turnContext, eventMsg, responseItem, other };
constexpr std::pair<QByteArrayView, LineType> kLineTypes[] = {
    {"event_msg", LineType::eventMsg},
    {"response_item", LineType::responseItem},
    {"session_meta", LineType::sessionMeta},
    {"turn_context", LineType::turnContext}};
constexpr std::pair<QByteArrayView, Kind> kEventKinds[] = {
    {"task_started", Kind::turnStarted}, {"task_complete", Kind::turnEnded},
    {"turn_aborted", Kind::turnEnded},   {"agent_message", Kind::agentMessage},
    {"user_message", Kind::userMessage}, {"token_count", Kind::tokenCount}};
constexpr std::pair<QByteArrayView, Kind> kResponseItemKinds[] = {
    {"function_call", Kind::toolCall},
    {"custom_tool_call", Kind::toolCall},
    {"local_shell_call", Kind::toolCall},
    {"function_call_output", Kind::toolOutput},
    {"custom_tool_call_output", Kind::toolOutput}};

// The kind once both types are known; nullopt while that is still open.
std::optional<Kind> kindOf(const Fields& fields) {
    if (!fields.type)
        return std::nullopt;
    const LineType type = named(*fields.type, kLineTypes, LineType::other);
    if (type == LineType::other)
        return Kind::other;
    if (type == LineType::sessionMeta)
        return Kind::sessionMeta;
    if (type == LineType::turnContext)
        return Kind::turnContext;
    if (!fields.payloadType)
        return std::nullopt;
    return type == LineType::eventMsg ? named(*fields.payloadType, kEventKinds, Kind::other)
                                      : named(*fields.payloadType, kResponseItemKinds, Kind::other);
}

LogLineEvent eventFrom(const Fields& fields, Kind kind) {
    LogLineEvent event;
    event.kind = kind;
    event.timestamp = fields.timestamp;
    switch (kind) {
    case Kind::sessionMeta:
        event.id = fields.id;
        event.cwd = fields.cwd;
        event.originator = fields.originator;
        event.cliVersion = fields.cliVersion;
        break;
    case Kind::turnEnded: // the turn's last answer, repeated
    case Kind::agentMessage: {
        const bool ended = kind == Kind::turnEnded;
        event.message = ended ? fields.lastAgentMessage : fields.message;
        event.hasMessage = ended ? fields.hasLastAgentMessage : fields.hasMessage;
        break;
    }
    case Kind::toolCall:
    case Kind::toolOutput:
        event.callId = fields.callId;
        break;
    case Kind::turnContext:
        event.model = fields.model;
        break;
    case Kind::tokenCount:
        event.info = fields.info;
        event.rateLimits = fields.rateLimits;
        break;
    default:
        break;
    }
    return event;
}

enum class Walk { done, irrelevant, failed };

// Walks an object's members after its "{": `member(key)` reads or skips each
// value and says whether to go on (done), stop early (irrelevant) or give up.
template <typename Member> Walk walkMembers(JsonWalker& walker, Member member) {
    if (walker.take('}'))
        return Walk::done;
    for (;;) {
        QByteArrayView key;
        if (!walker.string(key) || !walker.take(':'))
            return Walk::failed;
        walker.skipSpace();
        if (const Walk walk = member(key); walk != Walk::done)
            return walk;
        if (walker.take(','))
            continue;
        return walker.take('}') ? Walk::done : Walk::failed;
    }
}

// Reads the payload object's own keys; stops early once it is irrelevant.
Walk walkPayload(JsonWalker& walker, Fields& fields) {
    const auto stringField = [&walker](QByteArrayView& value, bool* present = nullptr) {
        if (walker.peek() != '"')
            return walker.skipValue();
        if (!walker.string(value))
            return false;
        if (present)
            *present = true;
        return true;
    };
    return walkMembers(walker, [&](QByteArrayView key) {
        bool ok = true;
        if (key == "type") {
            QByteArrayView type;
            ok = stringField(type);
            if (ok)
                fields.payloadType = type;
            if (ok && kindOf(fields) == Kind::other)
                return Walk::irrelevant;
        } else if (key == "call_id") {
            ok = stringField(fields.callId);
        } else if (key == "message") {
            ok = stringField(fields.message, &fields.hasMessage);
        } else if (key == "last_agent_message") {
            ok = stringField(fields.lastAgentMessage, &fields.hasLastAgentMessage);
        } else if (key == "id") {
            ok = stringField(fields.id);
        } else if (key == "cwd") {
            ok = stringField(fields.cwd);
        } else if (key == "originator") {
            ok = stringField(fields.originator);
        } else if (key == "cli_version") {
            ok = stringField(fields.cliVersion);
        } else if (key == "model") {
            ok = stringField(fields.model);
        } else if (key == "info" || key == "rate_limits") {
            const char* const begin = walker.position();
            ok = walker.skipValue();
            if (ok)
                (key == "info" ? fields.info : fields.rateLimits) =
                    QByteArrayView(begin, walker.position() - begin);
        } else {
            ok = walker.skipValue();
        }
        return ok ? Walk::done : Walk::failed;
    });
}

Walk walkLine(JsonWalker& walker, Fields& fields) {
    if (!walker.take('{'))
        return Walk::failed;
    const Walk walk = walkMembers(walker, [&](QByteArrayView key) {
        bool ok = true;
        if (key == "type") {
            QByteArrayView type;
            ok = walker.string(type);
            if (ok)
                fields.type = type;
            if (ok && kindOf(fields) == Kind::other)
                return Walk::irrelevant;
        } else if (key == "timestamp") {
            ok = walker.peek() == '"' ? walker.string(fields.timestamp) : walker.skipValue();
        } else if (key == "payload" && walker.peek() == '{') {
            walker.take('{');
            return walkPayload(walker, fields);
        } else {
            ok = walker.skipValue();
        }
        return ok ? Walk::done : Walk::failed;
    });
    if (walk != Walk::done)
        return walk;
    walker.skipSpace();
    return walker.atEnd() ? Walk::done : Walk::failed;
}

void appendUtf8(QByteArray& out, char32_t code) {
    if (code < 0x80) {
        out += char(code);
    } else if (code < 0x800) {
        out += char(0xc0 | (code >> 6));
        out += char(0x80 | (code & 0x3f));
    } else if (code < 0x10000) {
        out += char(0xe0 | (code >> 12));
        out += char(0x80 | ((code >> 6) & 0x3f));
        out += char(0x80 | (code & 0x3f));
    } else {
        out += char(0xf0 | (code >> 18));
        out += char(0x80 | ((code >> 12) & 0x3f));
        out += char(0x80 | ((code >> 6) & 0x3f));
        out += char(0x80 | (code & 0x3f));
    }
}

// Four hex digits at `at`, or -1.
int hexQuad(QByteArrayView raw, qsizetype at) {
    if (raw.size() - at < 4)
        return -1;
    int value = 0;
    for (qsizetype i = at; i < at + 4; ++i) {
        const char c = raw[i];
        const int digit = c >= '0' && c <= '9'   ? c - '0'
                          : c >= 'a' && c <= 'f' ? c - 'a' + 10
                          : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                                 : -1;
        if (digit < 0)
            return -1;
        value = value * 16 + digit;
    }
    return value;
}

} // namespace

LogLineEvent scanLogLine(QByteArrayView line, bool cut) {
    JsonWalker walker(line);
    Fields fields;
    const Walk walk = walkLine(walker, fields);
    if (walk == Walk::irrelevant)
        return {};
    // A failure at the end of a head is the cut, not bad JSON.
    if (walk == Walk::failed && !(cut && walker.atEnd()))
        return {};
    const auto kind = kindOf(fields);
    return kind ? eventFrom(fields, *kind) : LogLineEvent{};
}

QString jsonStringText(QByteArrayView raw, qsizetype limit) {
    if (!hasEscape(raw))
        return QString::fromUtf8(raw.first(std::min(raw.size(), limit)));
    QByteArray out;
    out.reserve(std::min(raw.size(), limit) + 4);
    for (qsizetype i = 0; i < raw.size() && out.size() < limit; ++i) {
        const char c = raw[i];
        if (c != '\\' || i + 1 == raw.size()) {
            out += c;
            continue;
        }
        const char escaped = raw[++i];
        switch (escaped) {
        case 'n':
            out += '\n';
            break;
        case 't':
            out += '\t';
            break;
        case 'r':
            out += '\r';
            break;
        case 'b':
            out += '\b';
            break;
        case 'f':
            out += '\f';
            break;
        case 'u': {
            const int high = hexQuad(raw, i + 1);
            if (high < 0) {
                out += "\xef\xbf\xbd";
                break;
            }
            i += 4;
            char32_t code = char32_t(high);
            if (high >= 0xd800 && high <= 0xdbff) {
                const int low = i + 2 < raw.size() && raw[i + 1] == '\\' && raw[i + 2] == 'u'
                                    ? hexQuad(raw, i + 3)
                                    : -1;
                if (low >= 0xdc00 && low <= 0xdfff) {
                    code = 0x10000 + ((char32_t(high) - 0xd800) << 10) + (char32_t(low) - 0xdc00);
                    i += 6;
                } else {
                    code = 0xfffd;
                }
            } else if (high >= 0xdc00 && high <= 0xdfff) {
                code = 0xfffd;
            }
            appendUtf8(out, code);
            break;
        }
        default: // '"', '\\', '/' and anything not JSON: the character itself
            out += escaped;
            break;
        }
    }
    return QString::fromUtf8(out);
}

} // namespace brenvik
