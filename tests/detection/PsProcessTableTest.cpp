#include "detection/PsProcessTable.h"

#include "DetectionTestSupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cerrno>
#include <gtest/gtest.h>
#include <variant>

namespace brenvik {
namespace {

// Writes a shell script standing in for ps into a private folder.
class FakePs {
public:
    QString write(const char* name, const QByteArray& body,
                  QFile::Permissions permissions = QFile::ReadOwner | QFile::ExeOwner) {
        const QString path = m_dir.filePath(QString::fromLatin1(name));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n" + body + '\n');
        file.close();
        file.setPermissions(permissions | QFile::WriteOwner);
        return path;
    }
    [[nodiscard]] QString path(const char* name) const {
        return m_dir.filePath(QString::fromLatin1(name));
    }

private:
    QTemporaryDir m_dir{test::scratchTemplate("fake-ps")};
};

struct Failure {
    QString domain;
    qint64 code;
    QString message;
};
using Outcome = std::variant<QStringList, Failure>; // commands of the rows, or the error

Outcome run(const QString& executable) {
    try {
        QStringList commands;
        for (const auto& row : readProcessTable(executable))
            commands.append(row.command);
        return commands;
    } catch (const ProcessSnapshotError& error) {
        return Failure{error.domain(), error.code(), error.message()};
    }
}

void expectOutcome(const Outcome& actual, const Outcome& expected, const char* name) {
    ASSERT_EQ(actual.index(), expected.index()) << name;
    if (const auto* rows = std::get_if<QStringList>(&expected)) {
        EXPECT_EQ(std::get<QStringList>(actual), *rows) << name;
    } else {
        const auto& want = std::get<Failure>(expected);
        const auto& got = std::get<Failure>(actual);
        EXPECT_EQ(got.domain, want.domain) << name;
        EXPECT_EQ(got.code, want.code) << name;
        EXPECT_EQ(got.message, want.message) << name;
    }
}

const QString kDomain = QStringLiteral("Brenvik.ProcessMonitor");

TEST(PsProcessTable, ExitStatusAndOutput) {
    struct Case {
        const char* name;
        QByteArray script;
        Outcome expected;
    };
    const Case cases[] = {
        {"illegal option", "echo 'ps: illegal option' >&2; exit 1",
         Failure{kDomain, 1, QStringLiteral("ps: illegal option")}},
        {"silent failure", "exit 2",
         Failure{kDomain, 2, QStringLiteral("ps failed with exit code 2")}},
        {"killed by a signal", "kill -9 $$",
         Failure{kDomain, 137, QStringLiteral("ps failed with exit code 137")}},
        {"only white space", "printf '  \\n\\t\\n'", QStringList{}},
        {"stderr parsed and dropped",
         "echo 'ps: warning' >&2; echo '5 1 S 0.0 0:00 /bin/codex'; echo 'junk' >&2",
         QStringList{QStringLiteral("/bin/codex")}},
        {"invalid UTF-8 replaced", "printf '1 0 S 0.0 0:01 a\\377b\\n'",
         QStringList{QStringLiteral("a\uFFFDb")}},
        {"large output read before the wait",
         "pad=$(printf %0100d 0); i=0; "
         "while [ $i -lt 1000 ]; do echo \"$i 1 S 0.0 0:00 $pad\"; i=$((i+1)); done",
         QStringList(1000, QStringLiteral("0").repeated(100))},
    };
    FakePs fake;
    for (const auto& c : cases)
        expectOutcome(run(fake.write(c.name, c.script)), c.expected, c.name);
}

TEST(PsProcessTable, LaunchFailuresCarryTheSystemText) {
    FakePs fake;
    const QString notExecutable = fake.write("plain", "exit 0", QFile::ReadOwner);
    expectOutcome(run(fake.path("missing")),
                  Failure{QStringLiteral("POSIX"), ENOENT, qt_error_string(ENOENT)}, "missing");
    expectOutcome(run(notExecutable),
                  Failure{QStringLiteral("POSIX"), EACCES, qt_error_string(EACCES)},
                  "not executable");
}

TEST(PsProcessTable, PassesExactlyTheThreeArguments) {
    FakePs fake;
    const QString log = fake.path("args");
    const QString script =
        fake.write("args-ps", "printf '%s\\n' \"$#\" \"$@\" > '" + QFile::encodeName(log) + "'");
    ASSERT_TRUE(std::holds_alternative<QStringList>(run(script)));
    QFile file(log);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "3\n-axww\n-o\npid=,ppid=,state=,%cpu=,time=,command=\n");
}

} // namespace
} // namespace brenvik
