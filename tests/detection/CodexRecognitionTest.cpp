#include "detection/CodexRecognition.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {

struct CommandCase {
    const char16_t* command;
    bool expected;
};

void expectPredicate(bool (*predicate)(QStringView), std::initializer_list<CommandCase> cases) {
    for (const auto& c : cases) {
        const QString command = QString::fromUtf16(c.command);
        EXPECT_EQ(predicate(lowerCasedCommand(command)), c.expected) << command.toStdString();
    }
}

TEST(CodexRecognition, CandidateRule) {
    expectPredicate(
        isCandidateCommand,
        {
            {u"/opt/homebrew/bin/codex", true},
            {u"/Users/Me/Tools/CODEX", true},
            {u"node /opt/lib/node_modules/@openai/codex/main.js", true},
            {u"node /opt/homebrew/bin/codex --help", true},
            {u"sh /tmp/codex", true},
            {u"codex\u3000--full-auto", true}, // any Unicode white space ends the first word
            {u"//codex// resume", true},
            {u"/usr/bin/python3 -m x /home/u/.codex/log", true},
            {u"vim codex.md", false},
            {u"/users/me/src/codex-site/server", false},
            {u"grep codex /users/me/.codex/notes.txt", false},
            {u"rg codex /src", false},
            {u"ripgrep codex /src", false},
            {u"grep -r codex /users/me/.codex/", true},
            {u"/opt/Brenvik/bin/BRENVIK --watch /x/codex", false},
            {u"npm exec @zed-industries/codex-acp", true},
            {u"node /x/openclaw/dist/extensions/acpx/index.js run agent:codex:main", true},
            {u"node acpx --agent codex x", true},
            {u"acpx-server --port 9000", false},
            {u"npm exec some-tool", false},
            {u"node server.js", false},
            {u"///", false},
            {u"", false},
            {u"/ÄPFEL/CODEX", true},
        });
}

TEST(CodexRecognition, LauncherCommands) {
    expectPredicate(isLauncherCommand, {
                                           {u"npm exec some-tool", true},
                                           {u"/usr/bin/npm exec x",
                                            false}, // neither at the start nor with a blank before
                                           {u"sh -c npm exec x", true},
                                           {u"node server.js", true},
                                           {u"/usr/local/bin/node server.js", true},
                                           {u"nodejs server.js", false},
                                           {u"/p/node_modules/.bin/tsx a.ts", true},
                                           {u"x __queue-owner", true},
                                           {u"/home/u/openclaw/dist/extensions/acpx/run", true},
                                           {u"/bin/zsh -l", false},
                                       });
}

TEST(CodexRecognition, LinkRule) {
    struct Case {
        const char* name;
        const char16_t* parent;
        const char16_t* child;
        bool expected;
    };
    const Case cases[] = {
        {"adapter parent links anything", u"npm exec @zed-industries/codex-acp", u"/bin/zsh", true},
        {"acpx codex parent links anything", u"/usr/lib/acpx/cli.js run agent:codex:1", u"sleep 1",
         true},
        {"launcher above adapter", u"node /usr/local/bin/acpx", u"codex-acp --stdio", true},
        {"launcher above launcher", u"npm exec x", u"node /p/node_modules/.bin/y", true},
        {"launcher above plain codex", u"node server.js", u"/opt/homebrew/bin/codex", false},
        {"codex above codex", u"/opt/homebrew/bin/codex", u"codex exec x", false},
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
