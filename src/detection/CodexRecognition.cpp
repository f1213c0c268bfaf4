#include "detection/CodexRecognition.h"

#include <string_view>

namespace brenvik {

namespace {

// A plain search: the literals are short and so are most command lines, where
// a general-purpose search spends more on set-up than on searching.
bool contains(QStringView text, std::u16string_view literal) {
    return std::u16string_view(text.utf16(), size_t(text.size())).find(literal) !=
           std::u16string_view::npos;
}

// The first maximal run of non-white-space characters; empty when none.
QStringView firstWord(QStringView text) {
    qsizetype begin = 0;
    while (begin < text.size() && text[begin].isSpace())
        ++begin;
    qsizetype end = begin;
    while (end < text.size() && !text[end].isSpace())
        ++end;
    return text.sliced(begin, end - begin);
}

// The executable's file name is "codex": the last non-empty "/" piece of the
// first word, or the word itself when it has no such piece.
bool hasCodexExecutableName(QStringView lowered) {
    const QStringView word = firstWord(lowered);
    if (word.isEmpty())
        return false;
    QStringView last;
    for (const QStringView piece : word.tokenize(QChar(u'/'), Qt::SkipEmptyParts))
        last = piece;
    return (last.isEmpty() ? word : last) == u"codex";
}

} // namespace

QString lowerCasedCommand(QStringView command) {
    return command.toString().toLower();
}

QString lowerCasedCommand(const QString& command) {
    return command.toLower();
}

bool isExcludedCommand(QStringView lowered) {
    return contains(lowered, u"brenvik") || contains(lowered, u"grep codex") ||
           contains(lowered, u"rg codex");
}

bool isCodexCommand(QStringView lowered) {
    return contains(lowered, u"@openai/codex") || contains(lowered, u"/.codex/") ||
           contains(lowered, u" codex exec") || hasCodexExecutableName(lowered) ||
           contains(lowered, u"/codex ") || lowered.endsWith(u"/codex");
}

bool isACPXCodexCommand(QStringView lowered) {
    const bool acpx =
        contains(lowered, u"/acpx/") || contains(lowered, u" acpx ") || lowered.endsWith(u"/acpx");
    return acpx && (contains(lowered, u" codex ") || contains(lowered, u"agent:codex:"));
}

bool isCodexACPCommand(QStringView lowered) {
    return contains(lowered, u"codex-acp");
}

bool isLauncherCommand(QStringView lowered) {
    return contains(lowered, u"__queue-owner") ||
           contains(lowered, u"openclaw/dist/extensions/acpx") ||
           lowered.startsWith(u"npm exec ") || contains(lowered, u" npm exec ") ||
           lowered.startsWith(u"node ") || contains(lowered, u"/bin/node ") ||
           contains(lowered, u"/node_modules/.bin/");
}

bool isCandidateCommand(QStringView lowered) {
    if (isExcludedCommand(lowered))
        return false;
    return isCodexCommand(lowered) || isACPXCodexCommand(lowered) || isCodexACPCommand(lowered);
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

} // namespace brenvik
