#include "detection/ProcessTree.h"

#include "DetectionTestSupport.h"
#include "detection/CodexRecognition.h"

#include <gtest/gtest.h>
#include <vector>

namespace brenvik {
namespace {

using test::row;

// A session as the table states it: root, command, tree CPU, hot state,
// members (Codex and launchers) and the whole tree's process count.
DetectedProcessSample sample(qint64 pid, const char16_t* command, double cpu, double time, bool hot,
                             qint64 members, qint64 processes, const char16_t* cwd = u"",
                             qint64 commands = 0) {
    const QString text = QString::fromUtf16(command);
    const bool tui = codexRole(lowerCasedCommand(text)) == CodexRole::interactive;
    return {pid,          text,    cpu,       time,
            hot,          members, processes, QString::fromUtf16(cwd),
            std::nullopt, tui,     commands,  QList<qint64>()};
}

ObservedProcess in(ObservedProcess process, const char16_t* cwd) {
    process.cwd = QString::fromUtf16(cwd);
    return process;
}

struct TreeCase {
    const char* name;
    QList<ObservedProcess> rows;
    QList<DetectedProcessSample> expected;
};

const char16_t* const kAdapter = u"npm exec @zed-industries/codex-acp";
const char16_t* const kDaemon = u"/h/.codex/packages/app-server-daemon/releases/1/bin/codex "
                                u"app-server --listen unix:// --managed-daemon";
const char16_t* const kSandbox = u"codex-linux-sandbox --sandbox-policy-cwd /w/a";

TEST(ProcessTree, Sessions) {
    const TreeCase cases[] = {
        {"adapter tree is one session",
         {row(100, 9, kAdapter, 1, 10),
          row(101, 100, u"node /u/.npm/_npx/a1/node_modules/.bin/codex-acp", 2, 20),
          row(102, 101, u"/u/.npm/_npx/a1/lib/codex-acp --stdio", 3, 30), row(9, 1, u"zed")},
         {sample(100, kAdapter, 6, 60, false, 3, 3)}},
        {"a launcher of two front-ends roots neither",
         {row(300, 1, u"node /usr/local/bin/acpx", 1, 1), row(301, 300, u"codex-acp --stdio", 2, 2),
          row(302, 300, u"codex-acp --stdio", 4, 4)},
         {sample(301, u"codex-acp --stdio", 2, 2, false, 1, 1),
          sample(302, u"codex-acp --stdio", 4, 4, false, 1, 1)}},
        {"codex started by a session's command belongs to it",
         {row(400, 1, u"codex"), row(401, 400, u"/bin/sh -c x"),
          row(402, 401, u"codex exec run tests", 5, 5)},
         {sample(400, u"codex", 5, 5, false, 2, 3, u"", 1)}},
        {"the service is no session; short tools neither",
         {row(600, 1, kDaemon, 1, 1), row(601, 1, u"codex login"), row(602, 600, kSandbox)},
         {}},
        {"zombies take no part",
         {row(700, 1, u"codex", 0, 0, u"Z"), row(710, 1, u"codex"),
          row(711, 710, u"cc", 9, 9, u"Z")},
         {sample(710, u"codex", 0, 0, false, 1, 1)}},
        {"ascending root PID",
         {row(900, 1, u"codex"), row(35, 1, u"codex"), row(120, 1, u"codex")},
         {sample(35, u"codex", 0, 0, false, 1, 1), sample(120, u"codex", 0, 0, false, 1, 1),
          sample(900, u"codex", 0, 0, false, 1, 1)}},
        {"repeated PID: the first row wins",
         {row(500, 1, u"codex", 1, 1), row(500, 1, u"codex exec other", 5, 5), row(600, 1, u"vim")},
         {sample(500, u"codex", 1, 1, false, 1, 1)}},
        {"PID cycle ends the walks",
         {row(800, 801, u"cc"), row(801, 800, u"codex")},
         {sample(801, u"codex", 0, 0, false, 1, 2)}},
        {"the service's work counts for the TUI of its directory",
         {in(row(10, 1, u"codex"), u"/w/a"), in(row(20, 1, u"codex"), u"/w/b"),
          in(row(21, 1, u"codex"), u"/w/c"), in(row(22, 1, u"codex"), u"/w/c"),
          in(row(30, 1, kDaemon, 5, 5), u"/w/a"), in(row(31, 30, kSandbox), u"/w/b"),
          row(32, 31, u"sh -c burn", 100, 4, u"R"),
          in(row(33, 30, u"/bin/bash -c make"), u"/w/c"),  // two TUIs there: nobody's
          in(row(34, 30, u"/bin/bash -c make"), u"/w/x")}, // no TUI there
         {sample(10, u"codex", 0, 0, false, 1, 1, u"/w/a"),
          sample(20, u"codex", 100, 4, true, 2, 3, u"/w/b", 2),
          sample(21, u"codex", 0, 0, false, 1, 1, u"/w/c"),
          sample(22, u"codex", 0, 0, false, 1, 1, u"/w/c")}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(detectCodexProcesses(c.rows), c.expected) << c.name;
}

// Where a session's log may be open: its own Codex executable (the native
// binary under its npm shim, not the shim), and for a TUI the service's too.
TEST(ProcessTree, LogHolders) {
    const auto running = [](ObservedProcess process) {
        process.executable = QStringLiteral("/p/@openai/codex/vendor/x86_64/codex/codex");
        return process;
    };
    const auto sessions = detectCodexProcesses(
        {row(300, 1, u"node /p/@openai/codex/bin/codex.js exec hi"),
         running(row(301, 300, u"/p/@openai/codex/vendor/x86_64/codex/codex exec hi")),
         running(row(400, 1, u"codex")), running(row(500, 1, kDaemon))});
    ASSERT_EQ(sessions.size(), 2);
    EXPECT_EQ(sessions[0].pid, 300);
    EXPECT_EQ(sessions[0].logHolderPIDs, QList<qint64>{301});
    EXPECT_EQ(sessions[1].pid, 400);
    EXPECT_EQ(sessions[1].logHolderPIDs, (QList<qint64>{400, 500}));
}

TEST(ProcessTree, HotStates) {
    for (const char16_t* hot : {u"R", u"R+", u"U", u" u", u"D", u"d\n"})
        EXPECT_TRUE(isHotState(hot)) << QString::fromUtf16(hot).toStdString();
    for (const char16_t* cold : {u"S", u"Ss", u"I", u"T", u"Z", u"", u"  "})
        EXPECT_FALSE(isHotState(cold)) << QString::fromUtf16(cold).toStdString();
}

using Role = CodexRole;

// Commands grouped by what a check of their lower-cased text must tell.
template <typename Value> struct Commands {
    Value expected;
    std::vector<const char16_t*> commands;
};
template <typename Value, typename Check>
void expectEach(Check check, std::initializer_list<Commands<Value>> groups) {
    for (const auto& group : groups) {
        for (const char16_t* command : group.commands) {
            const QString text = QString::fromUtf16(command);
            EXPECT_EQ(check(lowerCasedCommand(text)), group.expected) << text.toStdString();
        }
    }
}

TEST(CodexRecognition, RoleByCommand) {
    expectEach<Role>(
        [](const QString& lowered) { return codexRole(lowered); },
        {
            // The Codex CLI's own shapes: npm shim and native binary, old npm
            // layouts, the standalone installer. The service's shapes are the
            // tree cases'.
            {Role::headless,
             {u"node /usr/lib/node_modules/@openai/codex/bin/codex.js exec -s workspace-write hi",
              u"/p/@openai/codex/vendor/x86_64-unknown-linux-musl/codex/codex e fix",
              u"/p/@openai/codex/bin/codex-x86_64-unknown-linux-musl review", u"codex app-server"}},
            {Role::interactive,
             {u"/usr/lib/node_modules/@openai/codex/node_modules/@openai/codex-linux-x64/vendor/"
              u"x86_64-unknown-linux-musl/bin/codex -a on-request -s workspace-write",
              u"/home/u/.local/bin/codex resume --last",
              u"codex -c model=o3 --cd /w \"fix the tests\"",
              // Examples that stay recognised, whatever their letter case.
              u"/Users/Me/Tools/CODEX", u"node /opt/lib/node_modules/@openai/codex/main.js",
              u"sh /tmp/codex", u"codex\u3000--full-auto"}},
            {Role::helper,
             {u"codex-linux-sandbox --sandbox-policy-cwd /w --command-cwd /w", u"codex login",
              u"node /opt/homebrew/bin/codex --help"}},
            // Adapters: codex-acp and acpx running the codex agent.
            {Role::adapter,
             {u"node /x/openclaw/dist/extensions/acpx/index.js run agent:codex:main",
              u"node acpx --agent codex x"}},
            // Arguments never make a Codex process.
            {Role::none,
             {u"vim /home/u/.codex/config.toml", u"git clone https://github.com/openai/codex",
              u"tmux new cd x && codex", u"npm exec @zed-industries/codex-acp",
              u"/users/me/src/codex-site/server", u"",
              u"node /home/u/src/codex-acp/scripts/build.js",
              u"node /p/node_modules/acpx/dist/cli.js claude exec compare with codex output"}},
        });
}

// Under another name the file that runs tells; nor does the program itself
// make a Codex process. Where the source keeps each argument whole, a prompt
// is never a subcommand.
TEST(CodexRecognition, RoleByTheFileThatRunsAndWholeArguments) {
    const struct {
        QStringList arguments;
        const char16_t* executable;
        Role expected;
    } cases[] = {
        {{u"codex"_qs},
         u"/home/linuxbrew/.linuxbrew/bin/codex-x86_64-unknown-linux-musl",
         Role::interactive},
        {{u"apply_patch"_qs},
         u"/usr/lib/node_modules/@openai/codex/bin/codex (deleted)",
         Role::helper},
        {{u"codex"_qs, u"exec"_qs, u"hi"_qs},
         u"/nix/store/x-codex/bin/.codex-wrapped",
         Role::headless},
        {{u"/opt/Brenvik/bin/BRENVIK"_qs, u"--watch"_qs, u"/x/codex"_qs},
         u"/opt/Brenvik/bin/codex",
         Role::none},
        {{u"node"_qs, u"server.js"_qs}, u"/usr/bin/node", Role::none},
        {{u"codex"_qs, u"help me write tests"_qs}, u"", Role::interactive},
        {{u"codex"_qs, u"review"_qs}, u"", Role::headless},
        {{u"node"_qs, u"/home/u/My Tools/node_modules/.bin/codex"_qs, u"exec"_qs, u"x"_qs},
         u"",
         Role::headless},
    };
    for (const auto& c : cases) {
        const QString command = c.arguments.join(u' ');
        EXPECT_EQ(
            codexRole(lowerCasedCommand(command), QString::fromUtf16(c.executable), c.arguments),
            c.expected)
            << command.toStdString();
    }
}

TEST(CodexRecognition, LauncherCommands) {
    expectEach<bool>([](const QString& lowered) { return isLauncherCommand(lowered); },
                     {
                         {true,
                          {u"node /usr/lib/node_modules/npm/bin/npx-cli.js codex",
                           u"/usr/bin/node /usr/lib/node_modules/@openai/codex/bin/codex.js",
                           u"/p/node_modules/.bin/tsx a.ts", u"x __queue-owner",
                           u"/home/u/openclaw/dist/extensions/acpx/run"}},
                         // npm neither at the start nor with a blank before; a program that
                         // may start sessions, no launcher.
                         {false, {u"/usr/bin/npm exec x", u"node server.js", u"/bin/zsh -l"}},
                     });
}

TEST(CodexRecognition, LinkRule) {
    const struct {
        const char* name;
        const char16_t* parent;
        const char16_t* child;
        bool expected;
    } cases[] = {
        {"adapter parent links anything", u"node /n/.bin/codex-acp", u"/bin/zsh", true},
        {"launcher above launcher", u"npm exec x", u"node /p/node_modules/.bin/y", true},
        {"launcher above plain codex", u"npm exec x", u"/opt/homebrew/bin/codex", false},
        {"shell", u"-zsh", u"codex-acp", false},
        {"excluded parent", u"brenvik npm exec codex-acp", u"codex-acp", false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(isLauncherLink(lowerCasedCommand(QString::fromUtf16(c.parent)),
                                 lowerCasedCommand(QString::fromUtf16(c.child))),
                  c.expected)
            << c.name;
    }
}

TEST(CodexRecognition, LowerCasingIsFullUnicode) {
    EXPECT_EQ(lowerCasedCommand(u"/ÄPFEL/ΣΟΦΊΑ/CODEX"), QStringLiteral("/äpfel/σοφία/codex"));
}

} // namespace
} // namespace brenvik
