#include "places/TerminalNames.h"

#include <array>
#include <utility>

namespace brenvik {

namespace {

// Program file names (argv[0]'s, or comm cut to 15 bytes) and the names
// users know. comm alone cuts "gnome-terminal-server" to "gnome-terminal-".
constexpr std::array<std::pair<const char16_t*, const char16_t*>, 36> kNames{{
    {u"xterm", u"xterm"},
    {u"uxterm", u"xterm"},
    {u"konsole", u"Konsole"},
    {u"gnome-terminal-server", u"GNOME Terminal"},
    {u"gnome-terminal-", u"GNOME Terminal"},
    {u"gnome-terminal", u"GNOME Terminal"},
    {u"kgx", u"Console"},
    {u"ptyxis", u"Ptyxis"},
    {u"ptyxis-agent", u"Ptyxis"},
    {u"xfce4-terminal", u"Xfce Terminal"},
    {u"mate-terminal", u"MATE Terminal"},
    {u"lxterminal", u"LXTerminal"},
    {u"qterminal", u"QTerminal"},
    {u"terminator", u"Terminator"},
    {u"tilix", u"Tilix"},
    {u"guake", u"Guake"},
    {u"yakuake", u"Yakuake"},
    {u"kitty", u"kitty"},
    {u"wezterm-gui", u"WezTerm"},
    {u"wezterm", u"WezTerm"},
    {u"alacritty", u"Alacritty"},
    {u"foot", u"foot"},
    {u"ghostty", u"Ghostty"},
    {u"urxvt", u"urxvt"},
    {u"urxvtd", u"urxvt"},
    {u"rxvt", u"rxvt"},
    {u"st", u"st"},
    {u"code", u"Visual Studio Code"},
    {u"code-insiders", u"Visual Studio Code"},
    {u"code-oss", u"Visual Studio Code"},
    {u"codium", u"VSCodium"},
    {u"cursor", u"Cursor"},
    {u"zed", u"Zed"},
    {u"zed-editor", u"Zed"},
    {u"zeditor", u"Zed"},
    {u"emacs", u"Emacs"},
}};

QString known(const QString& program) {
    for (const auto& [file, name] : kNames) {
        if (program == QStringView(file))
            return QString::fromUtf16(name);
    }
    return {};
}

} // namespace

QString terminalName(const AncestorProcess& process) {
    const QString byProgram = known(process.programName());
    return byProgram.isEmpty() ? known(process.name) : byProgram;
}

} // namespace brenvik
