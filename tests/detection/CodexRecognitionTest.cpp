#include "detection/CodexRecognition.h"

#include <gtest/gtest.h>
#include <vector>

namespace brenvik {
namespace {

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
            // layouts, the standalone installer, Homebrew, the shared service.
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
              u"/opt/homebrew/bin/codex", u"/Users/Me/Tools/CODEX",
              u"node /opt/lib/node_modules/@openai/codex/main.js", u"sh /tmp/codex",
              u"codex\u3000--full-auto"}},
            {Role::helper,
             {u"codex-linux-sandbox --sandbox-policy-cwd /w --command-cwd /w", u"codex login",
              u"codex --version", u"node /opt/homebrew/bin/codex --help"}},
            // Adapters: codex-acp and acpx running the codex agent.
            {Role::adapter,
             {u"node /u/.npm/_npx/a1/node_modules/.bin/codex-acp",
              u"node /x/openclaw/dist/extensions/acpx/index.js run agent:codex:main",
              u"node acpx --agent codex x"}},
            // Arguments never make a Codex process.
            {Role::none,
             {u"node /p/node_modules/.bin/acpx claude exec hi", u"vim /home/u/.codex/config.toml",
              u"git clone https://github.com/openai/codex", u"less /home/u/proj/codex",
              u"tmux new cd x && codex", u"bash -c codex exec hi",
              u"npm exec @zed-industries/codex-acp", u"/users/me/src/codex-site/server", u"",
              u"node /home/u/src/codex-acp/scripts/build.js",
              u"node /p/node_modules/acpx/dist/cli.js claude exec compare with codex output"}},
        });
}

// Under another name the file that runs tells; nor does the program itself
// make a Codex process.
TEST(CodexRecognition, RoleByTheFileThatRuns) {
    const struct {
        const char16_t* command;
        const char16_t* executable;
        Role expected;
    } cases[] = {
        {u"codex", u"/home/linuxbrew/.linuxbrew/bin/codex-x86_64-unknown-linux-musl",
         Role::interactive},
        {u"apply_patch", u"/usr/lib/node_modules/@openai/codex/bin/codex (deleted)", Role::helper},
        {u"codex exec hi", u"/nix/store/x-codex/bin/.codex-wrapped", Role::headless},
        {u"/opt/Brenvik/bin/BRENVIK --watch /x/codex", u"/opt/Brenvik/bin/codex", Role::none},
        {u"node server.js", u"/usr/bin/node", Role::none},
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
    expectEach<bool>(
        [](const QString& lowered) { return isLauncherCommand(lowered); },
        {
            {true,
             {u"npm exec @zed-industries/codex-acp",
              u"node /usr/lib/node_modules/npm/bin/npx-cli.js codex", u"node /usr/local/bin/acpx",
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
