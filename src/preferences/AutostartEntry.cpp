#include "preferences/AutostartEntry.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>
#include <iterator>
#include <utility>

namespace brenvik {

namespace {

const QString kEntryFileName = QStringLiteral("brenvik.desktop");

struct AutostartText {
    Q_DECLARE_TR_FUNCTIONS(AutostartText)
};

bool isReservedInExec(QChar c) {
    static const QString reserved = QStringLiteral(" \t\n\"'\\><~|&;$*?#()`");
    return reserved.contains(c);
}

QString quoteExecArgument(const QString& argument) {
    QString text = argument;
    text.replace(QLatin1Char('%'), QStringLiteral("%%"));
    const bool needsQuotes =
        text.isEmpty() || std::any_of(text.cbegin(), text.cend(), isReservedInExec);
    if (!needsQuotes)
        return text;
    QString quoted = QStringLiteral("\"");
    for (const QChar c : text) {
        if (c == u'"' || c == u'`' || c == u'$' || c == u'\\')
            quoted += QLatin1Char('\\');
        quoted += c;
    }
    return quoted + QLatin1Char('"');
}

// The string type's escapes, so that a value stays on its one line: each
// character and the letter that stands for it behind a backslash.
constexpr std::pair<char16_t, char16_t> kStringEscapes[] = {
    {u'\\', u'\\'}, {u'\n', u'n'}, {u'\t', u't'}, {u'\r', u'r'}};

QString escapeString(const QString& value) {
    QString escaped;
    escaped.reserve(value.size());
    for (const QChar c : value) {
        const auto* escape = std::find_if(std::begin(kStringEscapes), std::end(kStringEscapes),
                                          [c](const auto& e) { return e.first == c; });
        if (escape != std::end(kStringEscapes))
            escaped.append(QLatin1Char('\\')).append(QChar(escape->second));
        else
            escaped += c;
    }
    return escaped;
}

QString unescapeString(QStringView value) {
    QString plain;
    plain.reserve(value.size());
    for (qsizetype i = 0; i < value.size(); ++i) {
        const QChar c = value[i];
        if (c != u'\\' || i + 1 == value.size()) {
            plain += c;
            continue;
        }
        const QChar next = value[++i];
        if (next == u's') { // a space, read though never written
            plain += QLatin1Char(' ');
            continue;
        }
        const auto* escape = std::find_if(std::begin(kStringEscapes), std::end(kStringEscapes),
                                          [next](const auto& e) { return e.second == next; });
        if (escape != std::end(kStringEscapes))
            plain += QChar(escape->first);
        else // not an escape of the string type: keep it for the Exec rules
            plain.append(c).append(next);
    }
    return plain;
}

// "%%" is a percent sign; any other field code expands to nothing here, and
// an argument that is only a field code disappears.
void appendExpanded(QStringList& arguments, const QString& argument) {
    if (argument.size() == 2 && argument[0] == u'%' && argument[1] != u'%')
        return;
    QString out;
    for (qsizetype i = 0; i < argument.size(); ++i) {
        if (argument[i] != u'%') {
            out += argument[i];
        } else if (i + 1 < argument.size()) {
            if (argument[++i] == u'%')
                out += QLatin1Char('%');
        }
    }
    arguments.append(out);
}

bool isPathInside(const QString& path, const QString& root) {
    if (root.isEmpty())
        return false;
    const QString cleanRoot = QDir::cleanPath(root);
    return path == cleanRoot || path.startsWith(cleanRoot + QLatin1Char('/'));
}

} // namespace

QString desktopEntryExecValue(const QStringList& arguments) {
    QStringList quoted;
    quoted.reserve(arguments.size());
    for (const QString& argument : arguments)
        quoted.append(quoteExecArgument(argument));
    return escapeString(quoted.join(QLatin1Char(' ')));
}

std::optional<QStringList> parseDesktopEntryExecValue(QStringView value) {
    const QString text = unescapeString(value);
    QStringList arguments;
    QString current;
    bool inArgument = false;
    bool inQuotes = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (inQuotes) {
            if (c == u'"') {
                inQuotes = false;
            } else if (c == u'\\' && i + 1 < text.size() &&
                       QStringView(u"\"`$\\").contains(text[i + 1])) {
                current += text[++i];
            } else {
                current += c;
            }
        } else if (c == u' ' || c == u'\t' || c == u'\n') {
            if (inArgument)
                appendExpanded(arguments, current);
            current.clear();
            inArgument = false;
        } else if (c == u'"') {
            inQuotes = true;
            inArgument = true;
        } else {
            current += c;
            inArgument = true;
        }
    }
    if (inQuotes)
        return std::nullopt;
    if (inArgument)
        appendExpanded(arguments, current);
    return arguments;
}

bool desktopEntryIsActive(const QByteArray& contents) {
    bool inMainGroup = false;
    bool active = true;
    for (const QByteArray& rawLine : contents.split('\n')) {
        const QByteArray line = rawLine.trimmed();
        if (line.isEmpty() || line.startsWith('#'))
            continue;
        if (line.startsWith('[')) {
            inMainGroup = line == "[Desktop Entry]";
            continue;
        }
        const qsizetype equals = line.indexOf('=');
        if (!inMainGroup || equals < 0)
            continue;
        const QByteArray key = line.left(equals).trimmed();
        const QByteArray value = line.mid(equals + 1).trimmed();
        if (key == "Hidden" && value == "true")
            active = false;
        else if (key == "X-GNOME-Autostart-enabled" && value == "false")
            active = false;
    }
    return active;
}

AutostartEntry::AutostartEntry()
    : AutostartEntry(Location{defaultDirectory(), QCoreApplication::applicationFilePath(),
                              defaultTemporaryRoots()}) {}

AutostartEntry::AutostartEntry(Location location)
    : m_location(std::move(location)) {}

QString AutostartEntry::defaultDirectory() {
    QString config = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (config.isEmpty() || !QDir::isAbsolutePath(config))
        config = QDir::homePath() + QStringLiteral("/.config");
    return QDir::cleanPath(config + QStringLiteral("/autostart"));
}

QStringList AutostartEntry::defaultTemporaryRoots() {
    QStringList roots{QStringLiteral("/tmp"), QStringLiteral("/var/tmp"),
                      QStringLiteral("/dev/shm")};
    const QString systemTemp = QDir::cleanPath(QDir::tempPath());
    if (!roots.contains(systemTemp))
        roots.append(systemTemp);
    return roots;
}

QString AutostartEntry::filePath() const {
    return m_location.directory + QLatin1Char('/') + kEntryFileName;
}

std::optional<QString> AutostartEntry::unstableExecutableReason() const {
    const QString& executable = m_location.executable;
    if (executable.isEmpty() || !QDir::isAbsolutePath(executable))
        return AutostartText::tr(
            "The location of Brenvik's program file is unknown, so it cannot be "
            "started at login.");
    // A running program whose file was replaced or removed reads " (deleted)".
    const QString deletedSuffix = QStringLiteral(" (deleted)");
    QString path = executable;
    const bool replaced = path.endsWith(deletedSuffix);
    if (replaced)
        path.chop(deletedSuffix.size());
    if (replaced || !QFileInfo(executable).isFile()) {
        return AutostartText::tr("Brenvik's program file %1 was moved or removed while it runs. "
                                 "Start Brenvik again to turn on launch at login.")
            .arg(path);
    }
    const QString clean = QDir::cleanPath(executable);
    if (std::any_of(m_location.temporaryRoots.cbegin(), m_location.temporaryRoots.cend(),
                    [&](const QString& root) { return isPathInside(clean, root); }))
        return AutostartText::tr("Brenvik runs from a temporary location (%1), so it cannot be "
                                 "started at login from there.")
            .arg(executable);
    return std::nullopt;
}

LaunchAtLoginStatus AutostartEntry::status() const {
    QFile file(filePath());
    if (file.open(QIODevice::ReadOnly) && desktopEntryIsActive(file.readAll()))
        return LaunchAtLoginStatus::enabled;
    return hasStableExecutable() ? LaunchAtLoginStatus::notRegistered
                                 : LaunchAtLoginStatus::notFound;
}

QByteArray AutostartEntry::contents() const {
    const QString text =
        QStringLiteral("[Desktop Entry]\n"
                       "Type=Application\n"
                       "Name=Brenvik\n"
                       "Comment=Shows whether Codex CLI sessions are running or idle\n"
                       "Exec=") +
        desktopEntryExecValue({m_location.executable, kAutostartOption.toString()}) +
        QStringLiteral("\n"
                       "Icon=brenvik\n"
                       "Terminal=false\n"
                       "X-GNOME-Autostart-enabled=true\n"
                       "X-GNOME-Autostart-Delay=3\n"
                       "X-KDE-autostart-after=panel\n");
    return text.toUtf8();
}

std::optional<QString> AutostartEntry::install() const {
    if (auto reason = unstableExecutableReason())
        return reason;
    // mkpath reports no reason; when it fails, opening the file below does.
    QDir().mkpath(m_location.directory);
    QSaveFile file(filePath());
    if (!file.open(QIODevice::WriteOnly))
        return file.errorString();
    const QByteArray data = contents();
    if (file.write(data) != data.size()) {
        const QString error = file.errorString();
        file.cancelWriting();
        return error;
    }
    if (!file.commit())
        return file.errorString();
    return std::nullopt;
}

std::optional<QString> AutostartEntry::remove() const {
    QFile file(filePath());
    if (!file.exists() && !QFileInfo(filePath()).isSymLink())
        return std::nullopt;
    if (!file.remove())
        return file.errorString();
    return std::nullopt;
}

} // namespace brenvik
