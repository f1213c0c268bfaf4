#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

namespace brenvik {

// Every predicate takes a command line already lower-cased with
// lowerCasedCommand(); the records keep the command as it was read.
// A process is recognised by what runs (its executable, or the script an
// interpreter runs), never by the arguments it is given: `vim ~/.codex/x` and
// `git clone …/openai/codex` are no Codex processes.
[[nodiscard]] QString lowerCasedCommand(QStringView command);
// The same; shares the text instead of copying it when nothing changes.
[[nodiscard]] QString lowerCasedCommand(const QString& command);

// False only when the command surely names no Codex program: it holds no
// "codex" in any letter case and is plain ASCII. Cheap enough for every row.
[[nodiscard]] bool mayMentionCodex(QStringView command);

// The program itself: never reported and never climbed through.
[[nodiscard]] bool isExcludedCommand(QStringView lowered);
// The Codex CLI: its executable (`codex`, `codex-<target triple>`, the sandbox
// helper) or an interpreter running a Codex entry script.
[[nodiscard]] bool isCodexCommand(QStringView lowered);
// acpx (or openclaw's acpx extension) running the codex agent.
[[nodiscard]] bool isACPXCodexCommand(QStringView lowered);
// The codex-acp adapter, as its executable or its entry script.
[[nodiscard]] bool isCodexACPCommand(QStringView lowered);
// A generic launcher: npm exec, node, a node_modules/.bin program, the queue
// owner, openclaw's acpx extension. Judged on the text: launchers only link.
[[nodiscard]] bool isLauncherCommand(QStringView lowered);

// A Codex process: any of the three kinds above, and not the program itself.
[[nodiscard]] bool isCandidateCommand(QStringView lowered);

// The executable file /proc/PID/exe names (" (deleted)" allowed) is Codex's.
[[nodiscard]] bool isCodexExecutable(QStringView executablePath);

// The link rule: the chain walk may step from the child (already in the
// chain) up to its parent.
[[nodiscard]] bool isLauncherLink(QStringView loweredParent, QStringView loweredChild);

// What a Codex process is to the user.
enum class CodexRole {
    none,        // no Codex process
    interactive, // the TUI: `codex`, `codex "prompt"`, `codex resume`, `codex fork`
    headless,    // `codex exec`/`e`/`review`, `app-server` over stdio, `mcp-server`
    adapter,     // codex-acp, or acpx running the codex agent
    service,     // the shared background service of one CODEX_HOME
    helper,      // sandbox, apply_patch, login, --version and other short tools
};

// A front-end is what the user started: one session each.
[[nodiscard]] constexpr bool isFrontEnd(CodexRole role) {
    return role == CodexRole::interactive || role == CodexRole::headless ||
           role == CodexRole::adapter;
}

// The role of a process from its lower-cased command line and, where known,
// its executable path and its arguments each whole (empty when the source
// cannot tell; then the command line's words stand in for them).
[[nodiscard]] CodexRole codexRole(QStringView lowered, QStringView executablePath = {},
                                  const QStringList& arguments = {});

} // namespace brenvik
