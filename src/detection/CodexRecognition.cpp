#include "detection/CodexRecognition.h"

#include <QVarLengthArray>
#include <algorithm>
#include <string_view>

namespace brenvik {

namespace {

// A plain search: the literals are short and so are most command lines, where
// a general-purpose search spends more on set-up than on searching.
bool contains(QStringView text, std::u16string_view literal) {
    return std::u16string_view(text.utf16(), size_t(text.size())).find(literal) !=
           std::u16string_view::npos;
}

// The first words of a command line: maximal runs of non-white-space. Only
// the first few matter (program, script, options, subcommand), and a prompt
// can be long, so the rest is never split.
constexpr qsizetype kWordsExamined = 24;
using Words = QVarLengthArray<QStringView, kWordsExamined>;

Words leadingWords(QStringView text) {
    Words words;
    qsizetype at = 0;
    while (words.size() < kWordsExamined) {
        while (at < text.size() && text[at].isSpace())
            ++at;
        if (at == text.size())
            break;
        const qsizetype begin = at;
        while (at < text.size() && !text[at].isSpace())
            ++at;
        words.append(text.sliced(begin, at - begin));
    }
    return words;
}

// The last non-empty "/" piece of a path, or the path itself when it has none.
QStringView fileName(QStringView path) {
    qsizetype end = path.size();
    while (end > 0 && path[end - 1] == u'/')
        --end;
    if (end == 0)
        return path;
    const qsizetype slash = path.first(end).lastIndexOf(u'/');
    return path.sliced(slash + 1, end - slash - 1);
}

bool isOneOf(QStringView word, std::initializer_list<std::u16string_view> names) {
    return std::any_of(names.begin(), names.end(), [word](std::u16string_view name) {
        return word == QStringView(name.data(), qsizetype(name.size()));
    });
}

// "codex-x86_64-unknown-linux-musl" and the like: Homebrew's and old npm
// layouts' file name for the native binary.
bool isTargetTripleName(QStringView name) {
    if (!name.startsWith(u"codex-"))
        return false;
    const QStringView triple = name.sliced(6);
    for (const std::u16string_view arch : {u"x86_64-", u"aarch64-", u"arm64-", u"armv7", u"i686-",
                                           u"riscv64", u"powerpc64", u"s390x-"}) {
        if (triple.startsWith(QStringView(arch.data(), qsizetype(arch.size()))))
            return true;
    }
    return false;
}

enum class Executable { other, codex, adapter, sandbox };

Executable executableKind(QStringView name) {
    // Nix wraps programs as ".NAME-wrapped".
    if (name.startsWith(u'.') && name.endsWith(u"-wrapped"))
        name = name.sliced(1).chopped(8);
    if (name == u"codex" || isTargetTripleName(name))
        return Executable::codex;
    if (name == u"codex-acp")
        return Executable::adapter;
    if (name == u"codex-linux-sandbox")
        return Executable::sandbox;
    return Executable::other;
}

// Programs that run a script named by their first non-option argument.
bool isInterpreter(QStringView name) {
    return isOneOf(name, {u"node", u"nodejs", u"bun", u"deno", u"sh", u"bash", u"dash", u"zsh",
                          u"ksh", u"mksh"});
}

enum class Entry { other, codex, adapter, acpx };

// What a script path an interpreter runs is.
Entry entryScript(QStringView path) {
    const QStringView name = fileName(path);
    // Inside the packages themselves, not any folder that happens to share a name.
    if (isOneOf(name, {u"codex-acp", u"codex-acp.js", u"codex-acp.mjs", u"codex-acp.cjs"}) ||
        contains(path, u"@zed-industries/codex-acp"))
        return Entry::adapter;
    if (isOneOf(name, {u"codex", u"codex.js", u"codex.mjs", u"codex.cjs"}) ||
        contains(path, u"@openai/codex/") || contains(path, u"@openai/codex-"))
        return Entry::codex;
    if (isOneOf(name, {u"acpx", u"acpx.js", u"acpx.mjs"}) ||
        contains(path, u"node_modules/acpx/") || contains(path, u"openclaw/dist/extensions/acpx"))
        return Entry::acpx;
    return Entry::other;
}

// The index of the script an interpreter runs, or -1 when it runs none (an
// inline program such as `sh -c '…'` or `node -e …`).
qsizetype scriptIndex(const Words& words) {
    const QStringView interpreter = fileName(words[0]);
    qsizetype i = 1;
    if ((interpreter == u"deno" || interpreter == u"bun") && i < words.size() && words[i] == u"run")
        ++i;
    for (; i < words.size(); ++i) {
        const QStringView word = words[i];
        if (isOneOf(word, {u"-c", u"-e", u"-p", u"--eval", u"--print", u"-"}) ||
            word.startsWith(u"--eval=") || word.startsWith(u"--print="))
            return -1;
        if (word == u"--")
            return i + 1 < words.size() ? i + 1 : -1;
        if (!word.startsWith(u'-'))
            return i;
    }
    return -1;
}

// What runs: the program and, for an interpreter, the entry script. The
// index is that of the first argument after them.
struct Running {
    Executable executable = Executable::other;
    Entry entry = Entry::other;
    qsizetype arguments = 1;
};

Running whatRuns(const Words& words) {
    Running running;
    const QStringView program = fileName(words[0]);
    running.executable = executableKind(program);
    if (running.executable != Executable::other)
        return running;
    running.entry = entryScript(words[0]); // a script run through its shebang line
    if (running.entry != Entry::other || !isInterpreter(program))
        return running;
    const qsizetype script = scriptIndex(words);
    if (script >= 0) {
        running.entry = entryScript(words[script]);
        running.arguments = script + 1;
    }
    return running;
}

// acpx's agent choice: its first positional argument (`acpx codex exec …`),
// its --agent (`--agent …/codex-acp`), or openclaw's `agent:codex:…` — never
// words of the prompt.
bool namesCodexAgent(QStringView lowered, const Words& words, qsizetype from) {
    if (contains(lowered, u"agent:codex:"))
        return true;
    const auto isCodexAgent = [](QStringView value) {
        return value == u"codex" || fileName(value).startsWith(u"codex-acp") ||
               contains(value, u"@zed-industries/codex-acp");
    };
    for (qsizetype i = from; i < words.size(); ++i) {
        const QStringView word = words[i];
        if (word == u"--agent")
            return i + 1 < words.size() && isCodexAgent(words[i + 1]);
        if (word.startsWith(u"--agent="))
            return isCodexAgent(word.sliced(8));
        if (!word.startsWith(u'-'))
            return isCodexAgent(word);
        if (isOneOf(word, {u"--cwd", u"--format", u"--timeout", u"--model", u"--session"}))
            ++i;
    }
    return false;
}

// The Codex CLI's subcommand decides whether a front-end runs.
CodexRole codexCommandRole(const Words& words, qsizetype from) {
    // Options that take the next word as their value.
    static constexpr std::u16string_view kValued[] = {u"-c",        u"--config",
                                                      u"-m",        u"--model",
                                                      u"-p",        u"--profile",
                                                      u"-s",        u"--sandbox",
                                                      u"-a",        u"--ask-for-approval",
                                                      u"-C",        u"--cd",
                                                      u"-i",        u"--image",
                                                      u"--enable",  u"--disable",
                                                      u"--add-dir", u"--local-provider"};
    qsizetype i = from;
    for (; i < words.size(); ++i) {
        const QStringView word = words[i];
        if (word == u"--")
            return CodexRole::interactive; // a prompt follows
        if (!word.startsWith(u'-'))
            break;
        if (isOneOf(word, {u"-h", u"--help", u"-v", u"--version"}))
            return CodexRole::helper;
        if (std::find(std::begin(kValued), std::end(kValued),
                      std::u16string_view(word.utf16(), size_t(word.size()))) != std::end(kValued))
            ++i;
    }
    if (i >= words.size())
        return CodexRole::interactive;
    const QStringView subcommand = words[i];
    if (isOneOf(subcommand, {u"resume", u"fork"}))
        return CodexRole::interactive;
    if (isOneOf(subcommand, {u"exec", u"e", u"review", u"mcp-server"}))
        return CodexRole::headless;
    if (subcommand == u"app-server") {
        const bool daemon = std::any_of(words.begin() + i + 1, words.end(), [](QStringView w) {
            return w == u"--managed-daemon" || w == u"daemon";
        });
        return daemon ? CodexRole::service : CodexRole::headless;
    }
    if (isOneOf(subcommand,
                {u"login", u"logout", u"mcp", u"completion", u"sandbox", u"debug", u"apply", u"a",
                 u"features", u"help", u"cloud", u"responses-api-proxy", u"stdio-to-uds",
                 u"generate-ts", u"generate-json-schema", u"execpolicy"}))
        return CodexRole::helper;
    return CodexRole::interactive; // `codex "fix the tests"`
}

// What /proc/PID/exe names, as a file name to compare: " (deleted)" dropped,
// lower-cased as command lines are.
QString executableName(QStringView path) {
    if (path.endsWith(u" (deleted)"))
        path.chop(10);
    return fileName(path).toString().toLower();
}

} // namespace

bool mayMentionCodex(QStringView command) {
    const char16_t* const text = command.utf16();
    const qsizetype size = command.size();
    // Branch-free so that the compiler can vectorize it; command lines are
    // short, so scanning to the end costs less than stopping early would save.
    char16_t any = 0;
    for (qsizetype i = 0; i < size; ++i)
        any |= text[i];
    // ASCII letters differ from their upper case only in bit 0x20; a zero
    // difference at some position means "codex" starts there.
    char16_t least = 1;
    for (qsizetype i = 0; i + 5 <= size; ++i) {
        const char16_t difference =
            char16_t((text[i] | 0x20) ^ u'c') | char16_t((text[i + 1] | 0x20) ^ u'o') |
            char16_t((text[i + 2] | 0x20) ^ u'd') | char16_t((text[i + 3] | 0x20) ^ u'e') |
            char16_t((text[i + 4] | 0x20) ^ u'x');
        least = std::min(least, difference);
    }
    const bool found = least == 0;
    return found || any >= 0x80;
}

QString lowerCasedCommand(QStringView command) {
    return command.toString().toLower();
}

QString lowerCasedCommand(const QString& command) {
    return command.toLower();
}

bool isExcludedCommand(QStringView lowered) {
    const Words words = leadingWords(lowered);
    return !words.isEmpty() && fileName(words[0]).startsWith(u"brenvik");
}

bool isCodexCommand(QStringView lowered) {
    const Words words = leadingWords(lowered);
    if (words.isEmpty())
        return false;
    const Running running = whatRuns(words);
    return running.executable == Executable::codex || running.executable == Executable::sandbox ||
           running.entry == Entry::codex;
}

bool isACPXCodexCommand(QStringView lowered) {
    const Words words = leadingWords(lowered);
    if (words.isEmpty())
        return false;
    const Running running = whatRuns(words);
    return running.entry == Entry::acpx && namesCodexAgent(lowered, words, running.arguments);
}

bool isCodexACPCommand(QStringView lowered) {
    const Words words = leadingWords(lowered);
    if (words.isEmpty())
        return false;
    const Running running = whatRuns(words);
    return running.executable == Executable::adapter || running.entry == Entry::adapter;
}

bool isLauncherCommand(QStringView lowered) {
    if (contains(lowered, u"__queue-owner") ||
        contains(lowered, u"openclaw/dist/extensions/acpx") || lowered.startsWith(u"npm exec ") ||
        contains(lowered, u" npm exec ") || contains(lowered, u"/node_modules/.bin/"))
        return true;
    // node is a launcher when what it runs launches: npm, npx, a package's
    // program, acpx or Codex's own shim. `node server.js` is some program
    // that may start Codex sessions, and each of those is a session of its own.
    const Words words = leadingWords(lowered);
    if (words.isEmpty() || !isOneOf(fileName(words[0]), {u"node", u"nodejs"}))
        return false;
    const qsizetype script = scriptIndex(words);
    if (script < 0)
        return false;
    return entryScript(words[script]) != Entry::other ||
           isOneOf(fileName(words[script]), {u"npm", u"npx", u"npm-cli.js", u"npx-cli.js"}) ||
           contains(words[script], u"/node_modules/npm/");
}

bool isCandidateCommand(QStringView lowered) {
    return codexRole(lowered) != CodexRole::none;
}

bool isCodexExecutable(QStringView executablePath) {
    // Every name it knows holds "codex": most files are ruled out without
    // lower-casing (a copy) at every refresh.
    return mayMentionCodex(fileName(executablePath)) &&
           executableKind(executableName(executablePath)) != Executable::other;
}

bool isLauncherLink(QStringView loweredParent, QStringView loweredChild) {
    if (isExcludedCommand(loweredParent))
        return false;
    if (isACPXCodexCommand(loweredParent) || isCodexACPCommand(loweredParent))
        return true;
    if (isLauncherCommand(loweredParent)) {
        return isACPXCodexCommand(loweredChild) || isCodexACPCommand(loweredChild) ||
               isLauncherCommand(loweredChild);
    }
    return false;
}

CodexRole codexRole(QStringView lowered, QStringView executablePath, const QStringList& arguments) {
    // Whole arguments where the source kept them, lower-cased as the line is.
    QStringList loweredArguments;
    Words words;
    if (!arguments.isEmpty()) {
        for (const QString& argument : arguments.first(std::min(arguments.size(), kWordsExamined)))
            loweredArguments.append(argument.toLower());
        for (const QString& argument : std::as_const(loweredArguments))
            words.append(argument);
    } else {
        words = leadingWords(lowered);
    }
    if (words.isEmpty() || fileName(words[0]).startsWith(u"brenvik"))
        return CodexRole::none;
    Running running = whatRuns(words);
    if (running.executable == Executable::other && running.entry == Entry::other &&
        !executablePath.isEmpty()) {
        // Started under another name (a link such as ~/bin/cx, or an alias):
        // the file that runs still tells. Codex's own aliases are its helpers.
        running.executable = executableKind(executableName(executablePath));
        if (running.executable == Executable::codex &&
            isOneOf(fileName(words[0]), {u"apply_patch", u"applypatch"}))
            return CodexRole::helper;
    }
    // The executable decides; a script's entry point only where the executable is none we know.
    if (running.executable == Executable::other) {
        if (running.entry == Entry::acpx)
            return namesCodexAgent(lowered, words, running.arguments) ? CodexRole::adapter
                                                                      : CodexRole::none;
        running.executable = running.entry == Entry::codex     ? Executable::codex
                             : running.entry == Entry::adapter ? Executable::adapter
                                                               : Executable::other;
    }
    if (running.executable == Executable::codex)
        return codexCommandRole(words, running.arguments);
    if (running.executable == Executable::adapter)
        return CodexRole::adapter;
    if (running.executable == Executable::sandbox)
        return CodexRole::helper;
    return CodexRole::none;
}

} // namespace brenvik
