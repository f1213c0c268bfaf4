<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>AutostartText</name>
    <message>
        <source>The location of Brenvik&apos;s program file is unknown, so it cannot be started at login.</source>
        <translation>Der Ort von Brenviks Programmdatei ist unbekannt, daher kann es nicht beim Anmelden gestartet werden.</translation>
    </message>
    <message>
        <source>Brenvik&apos;s program file %1 was moved or removed while it runs. Start Brenvik again to turn on launch at login.</source>
        <translation>Brenviks Programmdatei %1 wurde verschoben oder entfernt, während es läuft. Starten Sie Brenvik erneut, um den Start beim Anmelden einzuschalten.</translation>
    </message>
    <message>
        <source>Brenvik runs from a temporary location (%1), so it cannot be started at login from there.</source>
        <translation>Brenvik läuft von einem temporären Ort (%1) und kann von dort nicht beim Anmelden gestartet werden.</translation>
    </message>
</context>
<context>
    <name>BrenvikApp</name>
    <message>
        <source>unknown option &apos;%1&apos;

</source>
        <translation>unbekannte Option „%1“

</translation>
    </message>
    <message>
        <source>unexpected argument &apos;%1&apos;

</source>
        <translation>unerwartetes Argument „%1“

</translation>
    </message>
    <message>
        <source>no graphical session to show a tray icon in (no reachable DISPLAY or WAYLAND_DISPLAY); brenvik-status --watch works in a terminal
</source>
        <translation>keine grafische Sitzung, in der ein Symbol im Infobereich erscheinen kann (kein erreichbares DISPLAY oder WAYLAND_DISPLAY); brenvik-status --watch funktioniert im Terminal
</translation>
    </message>
    <message>
        <source>Usage: brenvik [--autostart] [--verbose]

Shows in the tray whether your Codex CLI sessions are running, waiting for
you, or idle, and opens its control panel. Started again while it runs, it
brings the running one&apos;s control panel to the front.

Options:
  --autostart  start in the tray without opening the control panel (the
               login entry that &quot;Launch at login&quot; writes uses it)
  --verbose    log on standard error what could not be read, and why
  -h, --help   show this help and exit
  --version    show the version and exit

For terminals and status bars: brenvik-status.
</source>
        <translation>Aufruf: brenvik [--autostart] [--verbose]

Zeigt im Infobereich, ob Ihre Codex-CLI-Sitzungen laufen, auf Sie warten
oder inaktiv sind, und öffnet sein Bedienfeld. Wird es erneut gestartet,
während es läuft, holt es das Bedienfeld des laufenden nach vorn.

Optionen:
  --autostart  im Infobereich starten, ohne das Bedienfeld zu öffnen (der
               Anmeldeeintrag, den „Beim Anmelden starten“ schreibt, nutzt es)
  --verbose    auf der Standardfehlerausgabe protokollieren, was nicht
               gelesen werden konnte, und warum
  -h, --help   diese Hilfe zeigen und beenden
  --version    die Version zeigen und beenden

Für Terminals und Statusleisten: brenvik-status.
</translation>
    </message>
</context>
<context>
    <name>DetectionText</name>
    <message>
        <source>Cannot read %1: %2</source>
        <translation>%1 kann nicht gelesen werden: %2</translation>
    </message>
    <message>
        <source>ps failed with exit code %1</source>
        <translation>ps endete mit dem Fehlercode %1</translation>
    </message>
</context>
<context>
    <name>LimitNoticeText</name>
    <message>
        <source>Codex %1 limit reached</source>
        <translation>Codex-Limit (%1) erreicht</translation>
    </message>
    <message>
        <source>Codex %1 limit at %2 %</source>
        <translation>Codex-Limit (%1) bei %2 %</translation>
    </message>
</context>
<context>
    <name>LimitsText</name>
    <message>
        <source>limit</source>
        <translation>Limit</translation>
    </message>
    <message>
        <source>week</source>
        <translation>Woche</translation>
    </message>
    <message>
        <source>%1 d</source>
        <comment>days</comment>
        <translation>%1 T</translation>
    </message>
    <message>
        <source>%1 h</source>
        <comment>hours</comment>
        <translation>%1 h</translation>
    </message>
    <message>
        <source>%1 min</source>
        <comment>minutes</comment>
        <translation>%1 min</translation>
    </message>
    <message>
        <source>resets %1</source>
        <comment>a limit window, at a time</comment>
        <translation>neu ab %1</translation>
    </message>
    <message>
        <source>reset</source>
        <comment>a limit window</comment>
        <translation>zurückgesetzt</translation>
    </message>
    <message>
        <source>Limits: %1</source>
        <translation>Limits: %1</translation>
    </message>
</context>
<context>
    <name>NoticeText</name>
    <message>
        <source>Codex finished · %1</source>
        <translation>Codex fertig · %1</translation>
    </message>
    <message>
        <source>Worked %1</source>
        <translation>%1 gearbeitet</translation>
    </message>
    <message numerus="yes">
        <source>%n sessions are done.</source>
        <translation>
            <numerusform>%n Sitzung ist fertig.</numerusform>
            <numerusform>%n Sitzungen sind fertig.</numerusform>
        </translation>
    </message>
    <message>
        <source>Codex is waiting for you · %1</source>
        <translation>Codex wartet auf Sie · %1</translation>
    </message>
    <message>
        <source>A command needs your approval.</source>
        <translation>Ein Befehl braucht Ihre Freigabe.</translation>
    </message>
    <message numerus="yes">
        <source>%n sessions need your approval.</source>
        <translation>
            <numerusform>%n Sitzung braucht Ihre Freigabe.</numerusform>
            <numerusform>%n Sitzungen brauchen Ihre Freigabe.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>PlaceText</name>
    <message>
        <source>Cannot go to the session: %1</source>
        <translation>Wechsel zur Sitzung nicht möglich: %1</translation>
    </message>
    <message>
        <source>tmux could not select the pane of the session in %1</source>
        <translation>tmux konnte den Bereich der Sitzung in %1 nicht auswählen</translation>
    </message>
    <message>
        <source>In %1, which no terminal shows: its pane is selected for the next attach</source>
        <translation>In %1, das kein Terminal zeigt: Ihr Bereich ist für das nächste Anhängen ausgewählt</translation>
    </message>
    <message>
        <source>no window of its terminal was found</source>
        <translation>kein Fenster ihres Terminals wurde gefunden</translation>
    </message>
    <message>
        <source>In %1: its pane is selected; the window was not raised: %2</source>
        <translation>In %1: Ihr Bereich ist ausgewählt; das Fenster wurde nicht nach vorn geholt: %2</translation>
    </message>
    <message>
        <source>In %1: the window was not raised: %2</source>
        <translation>In %1: Das Fenster wurde nicht nach vorn geholt: %2</translation>
    </message>
    <message>
        <source>the session has ended</source>
        <translation>die Sitzung ist beendet</translation>
    </message>
    <message>
        <source>the session belongs to another user</source>
        <translation>die Sitzung gehört einem anderen Benutzer</translation>
    </message>
    <message>
        <source>the tmux server at %1 names no pane of it</source>
        <translation>der tmux-Server unter %1 kennt keinen Bereich von ihr</translation>
    </message>
    <message>
        <source>it runs in no tmux pane and no known terminal</source>
        <translation>sie läuft in keinem tmux-Bereich und keinem bekannten Terminal</translation>
    </message>
    <message>
        <source>%1; no window was looked for: %2</source>
        <translation>%1; nach keinem Fenster gesucht: %2</translation>
    </message>
    <message>
        <source>The session has ended</source>
        <translation>Die Sitzung ist beendet</translation>
    </message>
    <message>
        <source>there is no screen (QT_QPA_PLATFORM=%1)</source>
        <translation>es gibt keinen Bildschirm (QT_QPA_PLATFORM=%1)</translation>
    </message>
    <message>
        <source>a Wayland desktop lets no program raise another&apos;s window</source>
        <translation>ein Wayland-Desktop lässt kein Programm das Fenster eines anderen nach vorn holen</translation>
    </message>
    <message>
        <source>there is no X server (DISPLAY is not set)</source>
        <translation>es gibt keinen X-Server (DISPLAY ist nicht gesetzt)</translation>
    </message>
    <message>
        <source>cannot connect to the X server %1</source>
        <translation>keine Verbindung zum X-Server %1</translation>
    </message>
    <message>
        <source>the X server&apos;s EWMH atoms cannot be read</source>
        <translation>die EWMH-Atome des X-Servers können nicht gelesen werden</translation>
    </message>
    <message>
        <source>no EWMH window manager runs on the X server</source>
        <translation>auf dem X-Server läuft kein EWMH-Fenstermanager</translation>
    </message>
    <message>
        <source>its window is gone</source>
        <translation>ihr Fenster ist verschwunden</translation>
    </message>
    <message>
        <source>the X server closed the connection</source>
        <translation>der X-Server hat die Verbindung geschlossen</translation>
    </message>
</context>
<context>
    <name>PreferencesText</name>
    <message>
        <source>Launch at login is off</source>
        <translation>Start beim Anmelden ist aus</translation>
    </message>
    <message>
        <source>Launch at login is enabled</source>
        <translation>Start beim Anmelden ist eingeschaltet</translation>
    </message>
    <message>
        <source>Launch at login is waiting for approval by the desktop</source>
        <translation>Start beim Anmelden wartet auf die Freigabe durch den Desktop</translation>
    </message>
    <message>
        <source>Launch at login is not available: %1</source>
        <translation>Start beim Anmelden ist nicht verfügbar: %1</translation>
    </message>
    <message>
        <source>Launch at login is not available</source>
        <translation>Start beim Anmelden ist nicht verfügbar</translation>
    </message>
    <message>
        <source>Launch-at-login status is unavailable</source>
        <translation>Der Status des Starts beim Anmelden ist unbekannt</translation>
    </message>
    <message>
        <source>The app appears in the taskbar while running</source>
        <translation>Die App erscheint während der Ausführung in der Taskleiste</translation>
    </message>
    <message>
        <source>The app runs in the tray and stays out of the taskbar</source>
        <translation>Die App läuft im Infobereich, nicht in der Taskleiste</translation>
    </message>
</context>
<context>
    <name>ProcessListText</name>
    <message>
        <source>No process list available while detection is in an error state. %1</source>
        <translation>Keine Prozessliste, solange die Erkennung fehlschlägt. %1</translation>
    </message>
    <message>
        <source>Checking the local process list…</source>
        <translation>Lokale Prozessliste wird geprüft …</translation>
    </message>
    <message>
        <source>No matching Codex CLI processes found.</source>
        <translation>Keine passenden Codex-CLI-Prozesse gefunden.</translation>
    </message>
    <message>
        <source>Running</source>
        <translation>Läuft</translation>
    </message>
    <message>
        <source>Waiting for you</source>
        <translation>Wartet auf Sie</translation>
    </message>
    <message>
        <source>Idle</source>
        <translation>Inaktiv</translation>
    </message>
    <message>
        <source>%1 % context left</source>
        <translation>%1 % Kontext übrig</translation>
    </message>
    <message>
        <source>PID %1 · 1 process</source>
        <translation>PID %1 · 1 Prozess</translation>
    </message>
    <message numerus="yes">
        <source>PID %1 · %n processes</source>
        <translation>
            <numerusform>PID %1 · %n Prozess</numerusform>
            <numerusform>PID %1 · %n Prozesse</numerusform>
        </translation>
    </message>
    <message>
        <source>Started %1</source>
        <translation>Gestartet: %1</translation>
    </message>
    <message>
        <source>Status from its session log</source>
        <translation>Status aus ihrem Sitzungsprotokoll</translation>
    </message>
    <message>
        <source>Status from its CPU use</source>
        <translation>Status aus ihrer CPU-Nutzung</translation>
    </message>
    <message>
        <source>%1 tokens used</source>
        <translation>%1 Tokens verbraucht</translation>
    </message>
</context>
<context>
    <name>RunStateText</name>
    <message numerus="yes">
        <source>%n running</source>
        <translation>
            <numerusform>%n läuft</numerusform>
            <numerusform>%n laufen</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n waiting</source>
        <translation>
            <numerusform>%n wartet</numerusform>
            <numerusform>%n warten</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n idle</source>
        <translation>
            <numerusform>%n inaktiv</numerusform>
            <numerusform>%n inaktiv</numerusform>
        </translation>
    </message>
    <message>
        <source>1 Codex process running</source>
        <translation>1 Codex-Prozess läuft</translation>
    </message>
    <message numerus="yes">
        <source>%n Codex processes running</source>
        <translation>
            <numerusform>%n Codex-Prozess läuft</numerusform>
            <numerusform>%n Codex-Prozesse laufen</numerusform>
        </translation>
    </message>
    <message>
        <source>1 Codex process waiting</source>
        <translation>1 Codex-Prozess wartet</translation>
    </message>
    <message numerus="yes">
        <source>%n Codex processes waiting</source>
        <translation>
            <numerusform>%n Codex-Prozess wartet</numerusform>
            <numerusform>%n Codex-Prozesse warten</numerusform>
        </translation>
    </message>
    <message>
        <source>1 Codex process idle</source>
        <translation>1 Codex-Prozess ist inaktiv</translation>
    </message>
    <message numerus="yes">
        <source>%n Codex processes idle</source>
        <translation>
            <numerusform>%n Codex-Prozess ist inaktiv</numerusform>
            <numerusform>%n Codex-Prozesse sind inaktiv</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n total</source>
        <translation>
            <numerusform>%n gesamt</numerusform>
            <numerusform>%n gesamt</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 in %2</source>
        <translation>%1 in %2</translation>
    </message>
    <message>
        <source>%1 — waiting in %2</source>
        <translation>%1 — wartend in %2</translation>
    </message>
    <message>
        <source>Codex process detection failed: %1</source>
        <translation>Erkennung der Codex-Prozesse fehlgeschlagen: %1</translation>
    </message>
    <message>
        <source>No Codex CLI process detected</source>
        <translation>Kein Codex-CLI-Prozess erkannt</translation>
    </message>
    <message>
        <source>%1 s</source>
        <comment>seconds</comment>
        <translation>%1 s</translation>
    </message>
    <message>
        <source>%1 min</source>
        <comment>minutes</comment>
        <translation>%1 min</translation>
    </message>
    <message>
        <source>%1 h</source>
        <comment>hours</comment>
        <translation>%1 h</translation>
    </message>
    <message>
        <source>%1 d</source>
        <comment>days</comment>
        <translation>%1 T</translation>
    </message>
    <message>
        <source>Unknown error while reading the process table</source>
        <translation>Unbekannter Fehler beim Lesen der Prozesstabelle</translation>
    </message>
    <message>
        <source>Checking for Codex CLI processes…</source>
        <translation>Suche nach Codex-CLI-Prozessen …</translation>
    </message>
    <message>
        <source>Process detection failed</source>
        <translation>Prozesserkennung fehlgeschlagen</translation>
    </message>
</context>
<context>
    <name>StatusCommand</name>
    <message>
        <source>--go needs a PID, &apos;waiting&apos; or &apos;running&apos;</source>
        <translation>--go braucht eine PID, „waiting“ oder „running“</translation>
    </message>
    <message>
        <source>--go takes a PID, &apos;waiting&apos; or &apos;running&apos;, not &apos;%1&apos;</source>
        <translation>--go nimmt eine PID, „waiting“ oder „running“, nicht „%1“</translation>
    </message>
    <message>
        <source>unknown option &apos;%1&apos;</source>
        <translation>unbekannte Option „%1“</translation>
    </message>
    <message>
        <source>unexpected argument &apos;%1&apos;</source>
        <translation>unerwartetes Argument „%1“</translation>
    </message>
    <message>
        <source>--go takes neither --json nor --watch</source>
        <translation>--go geht weder mit --json noch mit --watch</translation>
    </message>
    <message>
        <source>no Codex session waits</source>
        <translation>keine Codex-Sitzung wartet</translation>
    </message>
    <message>
        <source>no Codex session runs</source>
        <translation>keine Codex-Sitzung läuft</translation>
    </message>
    <message>
        <source>no Codex session has PID %1</source>
        <translation>keine Codex-Sitzung hat die PID %1</translation>
    </message>
    <message>
        <source>cannot write the report: %1</source>
        <translation>der Bericht kann nicht geschrieben werden: %1</translation>
    </message>
    <message>
        <source>Usage: brenvik-status [--json] [--watch] [--verbose]
       brenvik-status --go PID|waiting|running

Shows the Codex CLI processes on this machine and whether each is running
or idle. Without --watch it waits for two refreshes (about 2 seconds, so
that CPU use is measured), prints the result and exits.

Options:
  --json        print JSON instead of text
  --watch       print one line after every refresh (every 2 seconds) until
                interrupted; with --json one JSON object per line
  --go TARGET   go to a session: raise its terminal&apos;s window and select its
                tmux pane. TARGET is a session&apos;s PID, &quot;waiting&quot; (the one
                waiting longest) or &quot;running&quot; (the one running longest)
  --verbose     log on standard error what could not be read, and why
  -h, --help    show this help and exit
  --version     show the version and exit

Exit status: 0 on success, 1 if the process table could not be read or
--go could not go there, 2 on a usage error.
</source>
        <translation>Aufruf: brenvik-status [--json] [--watch] [--verbose]
        brenvik-status --go PID|waiting|running

Zeigt die Codex-CLI-Prozesse auf diesem Rechner und ob jeder läuft oder
inaktiv ist. Ohne --watch wartet es zwei Aktualisierungen ab (etwa 2
Sekunden, damit die CPU-Nutzung gemessen wird), gibt das Ergebnis aus und
endet.

Optionen:
  --json        JSON statt Text ausgeben
  --watch       nach jeder Aktualisierung (alle 2 Sekunden) eine Zeile
                ausgeben, bis es unterbrochen wird; mit --json ein
                JSON-Objekt pro Zeile
  --go ZIEL     zu einer Sitzung wechseln: das Fenster ihres Terminals nach
                vorn holen und ihren tmux-Bereich auswählen. ZIEL ist die
                PID einer Sitzung, „waiting“ (die am längsten wartende) oder
                „running“ (die am längsten laufende)
  --verbose     auf der Standardfehlerausgabe protokollieren, was nicht
                gelesen werden konnte, und warum
  -h, --help    diese Hilfe zeigen und beenden
  --version     die Version zeigen und beenden

Rückgabewert: 0 bei Erfolg, 1, wenn die Prozesstabelle nicht gelesen werden
konnte oder --go nicht dorthin wechseln konnte, 2 bei einem Aufruffehler.
</translation>
    </message>
</context>
<context>
    <name>StatusTable</name>
    <message>
        <source>running</source>
        <translation>läuft</translation>
    </message>
    <message>
        <source>waiting</source>
        <translation>wartet</translation>
    </message>
    <message>
        <source>idle</source>
        <translation>inaktiv</translation>
    </message>
    <message>
        <source>PID</source>
        <translation>PID</translation>
    </message>
    <message>
        <source>STATUS</source>
        <translation>STATUS</translation>
    </message>
    <message>
        <source>MEMBERS</source>
        <translation>MITGLIEDER</translation>
    </message>
    <message>
        <source>PROJECT</source>
        <translation>PROJEKT</translation>
    </message>
    <message>
        <source>COMMAND</source>
        <translation>BEFEHL</translation>
    </message>
</context>
<context>
    <name>StatusText</name>
    <message>
        <source>Waiting for you: %1</source>
        <translation>Wartet auf Sie: %1</translation>
    </message>
    <message>
        <source>Waiting for you</source>
        <translation>Wartet auf Sie</translation>
    </message>
    <message>
        <source>Running</source>
        <translation>Läuft</translation>
    </message>
    <message>
        <source>No tray for the icon: install gnome-shell-extension-appindicator</source>
        <translation>Kein Infobereich für das Symbol: Installieren Sie gnome-shell-extension-appindicator</translation>
    </message>
    <message>
        <source>No tray for the icon: add one to your panel, or install trayer</source>
        <translation>Kein Infobereich für das Symbol: Fügen Sie Ihrer Leiste einen hinzu oder installieren Sie trayer</translation>
    </message>
</context>
<context>
    <name>StoredPreferences</name>
    <message>
        <source>The preference could not be saved to %1. It applies until Brenvik quits.</source>
        <translation>Die Einstellung konnte nicht in %1 gespeichert werden. Sie gilt, bis Brenvik beendet wird.</translation>
    </message>
</context>
<context>
    <name>UpdatedText</name>
    <message>
        <source>Checking now</source>
        <translation>Wird gerade geprüft</translation>
    </message>
    <message>
        <source>Updated %1</source>
        <translation>Aktualisiert um %1</translation>
    </message>
</context>
<context>
    <name>brenvik::AppVisibilityController</name>
    <message>
        <source>The desktop rejected the taskbar visibility change right now. Try toggling it again after the app is fully running.</source>
        <translation>Der Desktop hat die Änderung der Taskleisten-Sichtbarkeit gerade abgelehnt. Schalten Sie sie erneut um, sobald die App ganz gestartet ist.</translation>
    </message>
    <message>
        <source>The desktop cannot keep windows out of the taskbar, so the control panel stays in it.</source>
        <translation>Der Desktop kann Fenster nicht aus der Taskleiste heraushalten, daher bleibt das Bedienfeld darin.</translation>
    </message>
</context>
<context>
    <name>brenvik::ControlPanelView</name>
    <message>
        <source>Refresh Now</source>
        <translation>Jetzt aktualisieren</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Preferences</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Active processes</source>
        <translation>Aktive Prozesse</translation>
    </message>
    <message>
        <source>Refresh Now (R)</source>
        <translation>Jetzt aktualisieren (R)</translation>
    </message>
</context>
<context>
    <name>brenvik::DBusNotificationBus</name>
    <message>
        <source>Go to the session</source>
        <translation>Zur Sitzung wechseln</translation>
    </message>
    <message>
        <source>Open Control Panel</source>
        <translation>Bedienfeld öffnen</translation>
    </message>
</context>
<context>
    <name>brenvik::GoToButton</name>
    <message>
        <source>Go to</source>
        <translation>Wechseln</translation>
    </message>
</context>
<context>
    <name>brenvik::MenuPopoverView</name>
    <message>
        <source>Open Control Panel</source>
        <translation>Bedienfeld öffnen</translation>
    </message>
</context>
<context>
    <name>brenvik::PreferencesControlsView</name>
    <message>
        <source>Launch at login</source>
        <translation>Beim Anmelden starten</translation>
    </message>
    <message>
        <source>Show in taskbar while running</source>
        <translation>Während der Ausführung in der Taskleiste zeigen</translation>
    </message>
    <message>
        <source>Notify when a session finishes or needs you</source>
        <translation>Benachrichtigen, wenn eine Sitzung fertig ist oder Sie braucht</translation>
    </message>
    <message>
        <source>A desktop notification when a session is done or asks you</source>
        <translation>Eine Desktop-Benachrichtigung, wenn eine Sitzung fertig ist oder Sie etwas fragt</translation>
    </message>
</context>
<context>
    <name>brenvik::StatusHeaderView</name>
    <message>
        <source>Codex CLI Status</source>
        <translation>Codex-CLI-Status</translation>
    </message>
</context>
<context>
    <name>brenvik::SystemTraySurface</name>
    <message>
        <source>Open Control Panel</source>
        <translation>Bedienfeld öffnen</translation>
    </message>
    <message>
        <source>Refresh Now</source>
        <translation>Jetzt aktualisieren</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
</context>
</TS>
