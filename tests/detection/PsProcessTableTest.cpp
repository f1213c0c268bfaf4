#include "detection/PsProcessTable.h"

#include "DetectionTestSupport.h"

#include <QFile>
#include <QTemporaryDir>
#include <cerrno>
#include <gtest/gtest.h>

namespace brenvik {
namespace {

// The commands of the rows, one a line, or "domain code: message" for an error.
QString run(const QString& executable) {
    try {
        QStringList commands;
        for (const auto& row : readProcessTable(executable))
            commands.append(row.command);
        return commands.join(u'\n');
    } catch (const ProcessSnapshotError& error) {
        return QStringLiteral("%1 %2: %3")
            .arg(error.domain())
            .arg(error.code())
            .arg(error.message());
    }
}

// Shell scripts standing in for ps, in a private folder.
class FakePs {
public:
    QString write(const char* name, const QByteArray& body,
                  QFile::Permissions permissions = QFile::ReadOwner | QFile::ExeOwner) {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n" + body + '\n');
        file.setPermissions(permissions | QFile::WriteOwner);
        return file.fileName();
    }
    [[nodiscard]] QString path(const char* name) const {
        return m_dir.filePath(QString::fromLatin1(name));
    }

private:
    QTemporaryDir m_dir{test::scratchTemplate("fake-ps")};
};

TEST(PsProcessTable, ExitStatusOutputAndLaunchFailures) {
    FakePs fake;
    const struct {
        const char* name;
        QString executable;
        QString expected;
    } cases[] = {
        {"illegal option", fake.write("a", "echo 'ps: illegal option' >&2; exit 1"),
         QStringLiteral("Brenvik.ProcessMonitor 1: ps: illegal option")},
        {"silent failure", fake.write("b", "exit 2"),
         QStringLiteral("Brenvik.ProcessMonitor 2: ps failed with exit code 2")},
        {"killed by a signal", fake.write("c", "kill -9 $$"),
         QStringLiteral("Brenvik.ProcessMonitor 137: ps failed with exit code 137")},
        {"only white space", fake.write("d", "printf '  \\n\\t\\n'"), QString()},
        {"stderr dropped", fake.write("e", "echo 'ps: x' >&2; echo '5 1 S 0.0 0:00 /bin/codex'"),
         QStringLiteral("/bin/codex")},
        {"invalid UTF-8 replaced", fake.write("f", "printf '1 0 S 0.0 0:01 a\\377b\\n'"),
         QStringLiteral("a\uFFFDb")},
        {"large output read before the wait",
         fake.write("g",
                    "i=0; while [ $i -lt 1000 ]; do echo \"$i 1 S 0.0 0:00 $(printf %0100d 0)\"; "
                    "i=$((i+1)); done"),
         QStringList(1000, QStringLiteral("0").repeated(100)).join(u'\n')},
        {"cannot launch: missing", fake.path("missing"),
         u"POSIX " + QString::number(ENOENT) + u": " + qt_error_string(ENOENT)},
        {"cannot launch: not executable", fake.write("h", "exit 0", QFile::ReadOwner),
         u"POSIX " + QString::number(EACCES) + u": " + qt_error_string(EACCES)},
    };
    for (const auto& c : cases)
        EXPECT_EQ(run(c.executable), c.expected) << c.name;
}

} // namespace
} // namespace brenvik
