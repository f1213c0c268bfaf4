#include "detection/CodexRecognition.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {

using Role = CodexRole;

TEST(CodexRecognition, RoleByWhatRuns) {
    struct Case {
        const char16_t* command;
        Role expected;
        const char16_t* executable = u""; // the file that runs, where the case names one
    };
    const Case cases[] = {
        // The Codex CLI's own shapes: npm shim and native binary, old npm
        // layouts, the standalone installer, Homebrew, the shared service.
        {u"node /usr/lib/node_modules/@openai/codex/bin/codex.js exec -s workspace-write hi",
         Role::headless},
        {u"/usr/lib/node_modules/@openai/codex/node_modules/@openai/codex-linux-x64/vendor/"
         u"x86_64-unknown-linux-musl/bin/codex -a on-request -s workspace-write",
         Role::interactive},
        {u"/p/@openai/codex/vendor/x86_64-unknown-linux-musl/codex/codex e fix", Role::headless},
        {u"/p/@openai/codex/bin/codex-x86_64-unknown-linux-musl review", Role::headless},
        {u"/home/u/.local/bin/codex resume --last", Role::interactive},
        {u"codex", Role::interactive,
         u"/home/linuxbrew/.linuxbrew/bin/codex-x86_64-unknown-linux-musl"},
        {u"codex -c model=o3 --cd /w \"fix the tests\"", Role::interactive},
        {u"codex app-server", Role::headless},
        {u"codex mcp-server", Role::headless},
        {u"/h/.codex/packages/app-server-daemon/releases/0.169.0-x86_64-unknown-linux-musl/bin/"
         u"codex app-server --listen unix:// --analytics-default-enabled --managed-daemon",
         Role::service},
        {u"/h/.codex/packages/app-server-daemon/releases/0.169.0/bin/codex app-server daemon "
         u"pid-update-loop",
         Role::service},
        {u"codex-linux-sandbox --sandbox-policy-cwd /w --command-cwd /w", Role::helper},
        {u"apply_patch", Role::helper, u"/usr/lib/node_modules/@openai/codex/bin/codex (deleted)"},
        {u"codex login", Role::helper},
        {u"codex --version", Role::helper},
        // Adapters: codex-acp and acpx running the codex agent.
        {u"node /u/.npm/_npx/a1/node_modules/.bin/codex-acp", Role::adapter},
        {u"/u/node_modules/@zed-industries/codex-acp-linux-x64/bin/codex-acp", Role::adapter},
        {u"node /p/node_modules/.bin/acpx --agent /p/node_modules/.bin/codex-acp exec hi",
         Role::adapter},
        {u"node /x/openclaw/dist/extensions/acpx/index.js run agent:codex:main", Role::adapter},
        {u"node acpx --agent codex x", Role::adapter},
        {u"node /p/node_modules/.bin/acpx claude exec hi", Role::none},
        // Examples that stay recognised, whatever their letter case.
        {u"/opt/homebrew/bin/codex", Role::interactive},
        {u"/Users/Me/Tools/CODEX", Role::interactive},
        {u"node /opt/lib/node_modules/@openai/codex/main.js", Role::interactive},
        {u"node /opt/homebrew/bin/codex --help", Role::helper},
        {u"sh /tmp/codex", Role::interactive},
        {u"codex\u3000--full-auto", Role::interactive},
        // Arguments never make a Codex process; nor does the program itself.
        {u"vim /home/u/.codex/config.toml", Role::none},
        {u"git clone https://github.com/openai/codex", Role::none},
        {u"less /home/u/proj/codex", Role::none},
        {u"make -C /home/u/proj/codex test", Role::none},
        {u"tmux new cd x && codex", Role::none},
        {u"bash -c codex exec hi", Role::none},
        {u"grep -r codex /users/me/.codex/", Role::none},
        {u"npm exec @zed-industries/codex-acp", Role::none},
        {u"/users/me/src/codex-site/server", Role::none},
        {u"/opt/Brenvik/bin/BRENVIK --watch /x/codex", Role::none, u"/opt/Brenvik/bin/codex"},
        {u"node server.js", Role::none, u"/usr/bin/node"},
        {u"", Role::none},
        {u"node /home/u/src/codex-acp/scripts/build.js", Role::none},
        {u"node /p/node_modules/acpx/dist/cli.js claude exec compare with codex output",
         Role::none},
        // Under another name, the file that runs tells.
        {u"cx", Role::interactive, u"/usr/lib/node_modules/@openai/codex/vendor/codex"},
        {u"codex exec hi", Role::headless, u"/nix/store/x-codex/bin/.codex-wrapped"},
    };
    for (const auto& c : cases) {
        const QString command = QString::fromUtf16(c.command);
        EXPECT_EQ(codexRole(lowerCasedCommand(command), QString::fromUtf16(c.executable)),
                  c.expected)
            << command.toStdString();
    }
}

// Where the source keeps each argument whole, a prompt is never a subcommand.
TEST(CodexRecognition, WholeArguments) {
    const struct {
        QStringList arguments;
        Role expected;
    } cases[] = {
        {{u"codex"_qs, u"help me write tests"_qs}, Role::interactive},
        {{u"codex"_qs, u"review the auth module"_qs}, Role::interactive},
        {{u"codex"_qs, u"review"_qs}, Role::headless},
        {{u"node"_qs, u"/home/u/My Tools/node_modules/.bin/codex"_qs, u"exec"_qs, u"x"_qs},
         Role::headless},
    };
    for (const auto& c : cases) {
        const QString command = c.arguments.join(u' ');
        EXPECT_EQ(codexRole(lowerCasedCommand(command), {}, c.arguments), c.expected)
            << command.toStdString();
    }
}

TEST(CodexRecognition, LauncherCommands) {
    struct Case {
        const char16_t* command;
        bool expected;
    };
    const Case cases[] = {
        {u"npm exec some-tool", true},
        {u"npm exec @zed-industries/codex-acp", true},
        {u"/usr/bin/npm exec x", false}, // neither at the start nor with a blank before
        {u"node /usr/lib/node_modules/npm/bin/npx-cli.js codex", true},
        {u"node /usr/local/bin/acpx", true},
        {u"/usr/bin/node /usr/lib/node_modules/@openai/codex/bin/codex.js", true},
        {u"node server.js", false}, // a program that may start sessions, no launcher
        {u"/p/node_modules/.bin/tsx a.ts", true},
        {u"x __queue-owner", true},
        {u"/home/u/openclaw/dist/extensions/acpx/run", true},
        {u"/bin/zsh -l", false},
    };
    for (const auto& c : cases) {
        const QString command = QString::fromUtf16(c.command);
        EXPECT_EQ(isLauncherCommand(lowerCasedCommand(command)), c.expected)
            << command.toStdString();
    }
}

TEST(CodexRecognition, LinkRule) {
    struct Case {
        const char* name;
        const char16_t* parent;
        const char16_t* child;
        bool expected;
    };
    const Case cases[] = {
        {"adapter parent links anything", u"node /n/.bin/codex-acp", u"/bin/zsh", true},
        {"launcher above adapter", u"node /usr/local/bin/acpx", u"codex-acp --stdio", true},
        {"launcher above launcher", u"npm exec x", u"node /p/node_modules/.bin/y", true},
        {"launcher above plain codex", u"npm exec x", u"/opt/homebrew/bin/codex", false},
        {"program above shim", u"node driver.mjs", u"node /p/.bin/codex exec hi", false},
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
