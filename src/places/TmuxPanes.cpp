#include "places/TmuxPanes.h"

namespace brenvik {

namespace {

// Each line of tmux's output with exactly `count` blank-separated fields, made
// a row by `rowOf`; lines it refuses (nullopt) are dropped.
template <typename Row, typename RowOf>
QList<Row> rowsOf(QStringView output, qsizetype count, RowOf rowOf) {
    QList<Row> rows;
    for (const QStringView line : output.split(u'\n')) {
        const QList<QStringView> fields = line.trimmed().split(u' ', Qt::SkipEmptyParts);
        if (fields.size() != count)
            continue;
        if (std::optional<Row> row = rowOf(fields))
            rows << std::move(*row);
    }
    return rows;
}

bool isId(QStringView text, QChar sigil) {
    if (text.size() < 2 || text.front() != sigil)
        return false;
    bool ok = false;
    (void)text.sliced(1).toULongLong(&ok);
    return ok;
}

} // namespace

QList<TmuxPaneRow> parseTmuxPanes(QStringView output) {
    return rowsOf<TmuxPaneRow>(output, 6, [](const QList<QStringView>& fields) {
        bool pidOk = false, windowOk = false, paneOk = false;
        TmuxPaneRow row{.pid = fields[0].toLongLong(&pidOk),
                        .paneId = fields[1].toString(),
                        .sessionId = fields[2].toString(),
                        .windowId = fields[3].toString(),
                        .window = fields[4].toInt(&windowOk),
                        .pane = fields[5].toInt(&paneOk)};
        const bool valid = pidOk && windowOk && paneOk && row.pid > 0 && isId(row.paneId, u'%') &&
                           isId(row.sessionId, u'$') && isId(row.windowId, u'@');
        return valid ? std::optional(std::move(row)) : std::nullopt;
    });
}

QList<TmuxClientRow> parseTmuxClients(QStringView output) {
    return rowsOf<TmuxClientRow>(output, 4, [](const QList<QStringView>& fields) {
        bool pidOk = false, activityOk = false;
        TmuxClientRow row{.pid = fields[0].toLongLong(&pidOk),
                          .activity = fields[1].toLongLong(&activityOk),
                          .sessionId = fields[2].toString(),
                          .tty = fields[3].toString()};
        const bool valid = pidOk && activityOk && row.pid > 0 && isId(row.sessionId, u'$') &&
                           row.tty.startsWith(u'/');
        return valid ? std::optional(std::move(row)) : std::nullopt;
    });
}

std::optional<TmuxPaneRow> paneOf(const QList<TmuxPaneRow>& panes,
                                  const QList<AncestorProcess>& ancestry) {
    for (const AncestorProcess& process : ancestry) {
        for (const TmuxPaneRow& pane : panes) {
            if (pane.pid == process.pid)
                return pane;
        }
    }
    return std::nullopt;
}

std::optional<TmuxClientRow> latestClientOf(const QList<TmuxClientRow>& clients,
                                            QStringView sessionId) {
    std::optional<TmuxClientRow> latest;
    for (const TmuxClientRow& client : clients) {
        if (client.sessionId == sessionId && (!latest || client.activity > latest->activity))
            latest = client;
    }
    return latest;
}

bool isTmux(const AncestorProcess& process) {
    return process.name.startsWith(u"tmux") || process.programName() == u"tmux";
}

QString tmuxSocketOf(const QStringList& serverArguments, qint64 uid, const QString& tmpDir) {
    // tmux's own options: those in kWithValue take one, glued or as the next argument.
    static const QString kWithValue = QStringLiteral("cfLST");
    QString name = QStringLiteral("default");
    for (qsizetype i = 1; i < serverArguments.size(); ++i) {
        const QString& argument = serverArguments[i];
        if (argument == u"--" || !argument.startsWith(u'-') || argument.size() < 2)
            break;
        for (qsizetype c = 1; c < argument.size(); ++c) {
            const QChar option = argument[c];
            if (!kWithValue.contains(option))
                continue;
            QString value = argument.mid(c + 1);
            if (value.isEmpty() && i + 1 < serverArguments.size())
                value = serverArguments[++i];
            if (option == u'S')
                return value;
            if (option == u'L')
                name = value;
            break;
        }
    }
    const QString directory = tmpDir.isEmpty() ? QStringLiteral("/tmp") : tmpDir;
    return directory + u"/tmux-" + QString::number(uid) + u'/' + name;
}

} // namespace brenvik
