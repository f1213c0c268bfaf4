#include "cli/StatusReport.h"

#include <QCoreApplication>
#include <cmath>
#include <string_view>

namespace brenvik {

namespace {

struct StatusTable {
    Q_DECLARE_TR_FUNCTIONS(StatusTable)
};

// A row's status; the JSON keeps the untranslated value.
[[nodiscard]] QString statusName(ProcessActivityStatus status) {
    return status == ProcessActivityStatus::running   ? StatusTable::tr("running")
           : status == ProcessActivityStatus::waiting ? StatusTable::tr("waiting")
                                                      : StatusTable::tr("idle");
}

[[nodiscard]] QString stateName(const CodexRunState& state) {
    if (state.asObserved())
        return QStringLiteral("observed");
    if (state.asError())
        return QStringLiteral("error");
    return QStringLiteral("idle");
}

// A command line may hold line breaks or other controls (they are legal in
// arguments); in a table row they would break the layout.
[[nodiscard]] QString singleLine(QString text) {
    for (QChar& c : text) {
        if (c.category() == QChar::Other_Control)
            c = u' ';
    }
    return text;
}

[[nodiscard]] QString jsonString(QStringView text) {
    QString out;
    out.reserve(text.size() + 2);
    out += u'"';
    // Characters with a short escape, and the letter after the backslash.
    constexpr std::u16string_view kShort = u"\"\\\b\f\n\r\t";
    constexpr std::u16string_view kLetter = u"\"\\bfnrt";
    for (const QChar c : text) {
        if (const auto at = kShort.find(c.unicode()); at != std::u16string_view::npos)
            out.append(u'\\').append(QChar(kLetter[at]));
        else if (c.unicode() < 0x20)
            out += u"\\u" + QString::number(c.unicode(), 16).rightJustified(4, u'0');
        else
            out += c;
    }
    out += u'"';
    return out;
}

// Shortest text that reads back as the same double; JSON has no NaN or infinity.
[[nodiscard]] QString jsonNumber(double value) {
    if (!std::isfinite(value))
        return QStringLiteral("null");
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

[[nodiscard]] QString jsonNumber(qint64 value) {
    return QString::number(value);
}

// {"terminal":…,"window":…,"tmux":{…}|null,"guess":…}, every key there
// also when nothing is known.
[[nodiscard]] QString jsonOrNull(const QString& text) {
    return text.isEmpty() ? QStringLiteral("null") : jsonString(text);
}

[[nodiscard]] QString jsonWindow(const std::optional<RateLimitWindow>& window,
                                 const QDateTime& now) {
    if (!window)
        return QStringLiteral("null");
    return u"{\"usedPercent\":" + jsonNumber(usedPercentNow(*window, now)) +
           u",\"windowMinutes\":" +
           (window->windowMinutes ? jsonNumber(*window->windowMinutes) : QStringLiteral("null")) +
           u",\"resetsAt\":" +
           (window->resetsAt ? jsonString(isoTimestamp(*window->resetsAt))
                             : QStringLiteral("null")) +
           u'}';
}

[[nodiscard]] QString jsonLimits(const AccountLimits& account, const QDateTime& now) {
    const RateLimits& limits = account.limits;
    return u"{\"codexHome\":" + jsonString(account.codexHome) + u",\"primary\":" +
           jsonWindow(limits.primary, now) + u",\"secondary\":" +
           jsonWindow(limits.secondary, now) + u",\"planType\":" + jsonOrNull(limits.planType) +
           u",\"reachedType\":" + jsonOrNull(limits.reachedType) + u",\"observedAt\":" +
           (limits.observedAt.isValid() ? jsonString(isoTimestamp(limits.observedAt))
                                        : QStringLiteral("null")) +
           u'}';
}

[[nodiscard]] QString jsonPlace(const SessionPlace& place) {
    QString tmux = QStringLiteral("null");
    if (place.tmux) {
        tmux = u"{\"socket\":" + jsonString(place.tmux->socket) + u",\"session\":" +
               jsonString(place.tmux->session) + u",\"window\":" +
               jsonNumber(qint64(place.tmux->window)) + u",\"pane\":" +
               jsonNumber(qint64(place.tmux->pane)) + u'}';
    }
    return u"{\"terminal\":" +
           (place.terminal.isEmpty() ? QStringLiteral("null") : jsonString(place.terminal)) +
           u",\"window\":" +
           (place.window ? jsonNumber(qint64(*place.window)) : QStringLiteral("null")) +
           u",\"tmux\":" + tmux + u",\"guess\":" +
           (place.guess ? QStringLiteral("true") : QStringLiteral("false")) + u'}';
}

} // namespace

StatusReport StatusReport::of(const CodexProcessMonitor& monitor, const SessionPlaces* places) {
    // The monitor keeps UTC so that a zone change cannot stretch its grace
    // period; a reader wants the time where the machine is now.
    std::optional<QDateTime> updated = monitor.lastUpdated();
    if (updated)
        updated = updated->toLocalTime();
    QList<ProcessMatch> matches = monitor.matches();
    for (ProcessMatch& match : matches) {
        for (std::optional<QDateTime>* time : {&match.startedAt, &match.since}) {
            if (*time)
                *time = (*time)->toLocalTime();
        }
    }
    QHash<qint64, SessionPlace> placeOf;
    for (const ProcessMatch& match : matches) {
        const auto lookup = places ? places->lookupOf(match.pid) : std::nullopt;
        if (lookup && lookup->place)
            placeOf.insert(match.pid, *lookup->place);
    }
    QList<AccountLimits> limits = monitor.accountLimits();
    for (AccountLimits& account : limits) {
        account.limits.observedAt = account.limits.observedAt.toLocalTime();
        for (auto* window : {&account.limits.primary, &account.limits.secondary}) {
            if (*window && (*window)->resetsAt)
                (*window)->resetsAt = (*window)->resetsAt->toLocalTime();
        }
    }
    return {monitor.runState(),
            monitor.summary(),
            std::move(matches),
            updated,
            std::move(placeOf),
            std::move(limits),
            monitor.lastUpdated().value_or(QDateTime::currentDateTimeUtc())};
}

QString statusLine(const StatusReport& report) {
    return singleLine(detailText(report.state));
}

QString statusText(const StatusReport& report, std::optional<qsizetype> width) {
    // A terminal wraps what is wider than it; cut in time instead.
    const auto fitted = [width](QString line) -> QString {
        if (width && line.size() > *width) {
            qsizetype keep = std::max<qsizetype>(*width - 1, 0);
            if (keep > 0 && line.at(keep - 1).isHighSurrogate())
                --keep; // never half a character
            line = line.left(keep) + u'\u2026';
        }
        return line + u'\n';
    };
    QString text = fitted(statusLine(report));
    for (const QString& line : limitsLines(report.limits, report.now))
        text += fitted(singleLine(line));
    if (report.matches.isEmpty())
        return text;

    const QString pidHeading = StatusTable::tr("PID");
    const QString statusHeading = StatusTable::tr("STATUS");
    const QString membersHeading = StatusTable::tr("MEMBERS");
    const QString projectHeading = StatusTable::tr("PROJECT");
    const auto project = [](const ProcessMatch& match) -> QString {
        return match.cwd.isEmpty() ? QStringLiteral("-")
                                   : singleLine(abbreviatedDirectory(match.cwd));
    };
    qsizetype pidWidth = pidHeading.size();
    qsizetype projectWidth = projectHeading.size();
    qsizetype statusWidth = statusHeading.size();
    for (const auto status : {ProcessActivityStatus::running, ProcessActivityStatus::waiting,
                              ProcessActivityStatus::idle})
        statusWidth = std::max(statusWidth, statusName(status).size());
    for (const ProcessMatch& match : report.matches) {
        pidWidth = std::max(pidWidth, QString::number(match.pid).size());
        projectWidth = std::max(projectWidth, project(match).size());
    }

    const auto row = [&](const QString& pid, const QString& status, const QString& members,
                         const QString& projectText, const QString& command) -> QString {
        return fitted(u"  " + pid.rightJustified(pidWidth) + u"  " +
                      status.leftJustified(statusWidth) + u"  " +
                      members.rightJustified(membersHeading.size()) + u"  " +
                      projectText.leftJustified(projectWidth) + u"  " + command);
    };
    text +=
        row(pidHeading, statusHeading, membersHeading, projectHeading, StatusTable::tr("COMMAND"));
    for (const ProcessMatch& match : report.matches) {
        text += row(QString::number(match.pid), statusName(match.status),
                    QString::number(match.memberCount), project(match),
                    singleLine(match.command.trimmed()));
    }
    return text;
}

QString statusJson(const StatusReport& report) {
    qint64 total = 0;
    qint64 running = 0;
    qint64 idle = 0;
    qint64 waiting = 0;
    if (const auto* observed = report.state.asObserved()) {
        total = observed->total;
        running = observed->running;
        idle = observed->idle;
        waiting = observed->waiting;
    }
    const auto* error = report.state.asError();

    QString json =
        u"{\"state\":" + jsonString(stateName(report.state)) + u",\"total\":" + jsonNumber(total) +
        u",\"running\":" + jsonNumber(running) + u",\"idle\":" + jsonNumber(idle) +
        u",\"waiting\":" + jsonNumber(waiting) + u",\"summary\":" + jsonString(report.summary) +
        u",\"detail\":" + jsonString(detailText(report.state)) + u",\"error\":" +
        (error ? jsonString(error->message) : QStringLiteral("null")) + u",\"updated\":" +
        (report.updated ? jsonString(isoTimestamp(*report.updated)) : QStringLiteral("null")) +
        u",\"groups\":[";
    bool first = true;
    for (const ProcessMatch& match : report.matches) {
        if (!first)
            json += u',';
        first = false;
        json += u"{\"pid\":" + jsonNumber(match.pid) + u",\"command\":" +
                jsonString(match.command) + u",\"status\":" + jsonString(rawValue(match.status)) +
                u",\"instantaneousCPUPercent\":" + jsonNumber(match.instantaneousCPUPercent) +
                u",\"cumulativeCPUTime\":" + jsonNumber(match.cumulativeCPUTime) +
                u",\"memberCount\":" + jsonNumber(match.memberCount) + u",\"processCount\":" +
                jsonNumber(match.processCount) + u",\"cwd\":" +
                (match.cwd.isEmpty() ? QStringLiteral("null") : jsonString(match.cwd)) +
                u",\"startedAt\":" +
                (match.startedAt ? jsonString(isoTimestamp(*match.startedAt))
                                 : QStringLiteral("null")) +
                u",\"since\":" +
                (match.since ? jsonString(isoTimestamp(*match.since)) : QStringLiteral("null")) +
                u",\"source\":" + jsonString(rawValue(match.source)) + u",\"place\":" +
                jsonPlace(report.places.value(match.pid)) + u",\"model\":" +
                jsonOrNull(match.model) + u",\"tokens\":" +
                (match.tokens ? jsonNumber(*match.tokens) : QStringLiteral("null")) +
                u",\"contextLeftPercent\":" +
                (match.contextLeftPercent ? jsonNumber(qint64(*match.contextLeftPercent))
                                          : QStringLiteral("null")) +
                u'}';
    }
    json += u"],\"limits\":[";
    for (qsizetype i = 0; i < report.limits.size(); ++i)
        json +=
            (i > 0 ? QStringView(u",") : QStringView()) + jsonLimits(report.limits[i], report.now);
    json += u"]}";
    return json;
}

QString isoTimestamp(const QDateTime& time) {
    const int offsetSeconds = time.offsetFromUtc();
    const int offsetMinutes = std::abs(offsetSeconds) / 60;
    return time.toString(u"yyyy-MM-dd'T'HH:mm:ss") + (offsetSeconds < 0 ? u'-' : u'+') +
           QString::number(offsetMinutes / 60).rightJustified(2, u'0') + u':' +
           QString::number(offsetMinutes % 60).rightJustified(2, u'0');
}

} // namespace brenvik
