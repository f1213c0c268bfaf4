<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR">
<context>
    <name>AutostartText</name>
    <message>
        <source>The location of Brenvik&apos;s program file is unknown, so it cannot be started at login.</source>
        <translation>L’emplacement du programme de Brenvik est inconnu&#xa0;: il ne peut donc pas être lancé à l’ouverture de session.</translation>
    </message>
    <message>
        <source>Brenvik&apos;s program file %1 was moved or removed while it runs. Start Brenvik again to turn on launch at login.</source>
        <translation>Le programme de Brenvik %1 a été déplacé ou supprimé pendant qu’il tourne. Relancez Brenvik pour activer le lancement à l’ouverture de session.</translation>
    </message>
    <message>
        <source>Brenvik runs from a temporary location (%1), so it cannot be started at login from there.</source>
        <translation>Brenvik tourne depuis un emplacement temporaire (%1)&#xa0;: il ne peut pas être lancé de là à l’ouverture de session.</translation>
    </message>
</context>
<context>
    <name>BrenvikApp</name>
    <message>
        <source>unknown option &apos;%1&apos;

</source>
        <translation>option inconnue «&#xa0;%1&#xa0;»

</translation>
    </message>
    <message>
        <source>unexpected argument &apos;%1&apos;

</source>
        <translation>argument inattendu «&#xa0;%1&#xa0;»

</translation>
    </message>
    <message>
        <source>no graphical session to show a tray icon in (no reachable DISPLAY or WAYLAND_DISPLAY); brenvik-status --watch works in a terminal
</source>
        <translation>aucune session graphique où afficher une icône dans la zone de notification (aucun DISPLAY ni WAYLAND_DISPLAY joignable)&#xa0;; brenvik-status --watch fonctionne dans un terminal
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
        <translation>Utilisation&#xa0;: brenvik [--autostart] [--verbose]

Montre dans la zone de notification si vos sessions Codex CLI tournent,
vous attendent ou sont inactives, et ouvre son panneau de contrôle. Lancé
de nouveau pendant qu’il tourne, il affiche le panneau de celui qui tourne.

Options&#xa0;:
  --autostart  démarrer dans la zone de notification sans ouvrir le panneau
               (l’entrée de connexion qu’écrit «&#xa0;Lancer à l’ouverture de
               session&#xa0;» l’utilise)
  --verbose    journaliser sur la sortie d’erreur ce qui n’a pas pu être
               lu, et pourquoi
  -h, --help   afficher cette aide et quitter
  --version    afficher la version et quitter

Pour les terminaux et les barres d’état&#xa0;: brenvik-status.
</translation>
    </message>
</context>
<context>
    <name>DetectionText</name>
    <message>
        <source>Cannot read %1: %2</source>
        <translation>Impossible de lire %1&#xa0;: %2</translation>
    </message>
    <message>
        <source>ps failed with exit code %1</source>
        <translation>ps a échoué avec le code de sortie %1</translation>
    </message>
</context>
<context>
    <name>LimitNoticeText</name>
    <message>
        <source>Codex %1 limit reached</source>
        <translation>Limite Codex (%1) atteinte</translation>
    </message>
    <message>
        <source>Codex %1 limit at %2 %</source>
        <translation>Limite Codex (%1) à %2 %</translation>
    </message>
</context>
<context>
    <name>LimitsText</name>
    <message>
        <source>limit</source>
        <translation>limite</translation>
    </message>
    <message>
        <source>week</source>
        <translation>semaine</translation>
    </message>
    <message>
        <source>%1 d</source>
        <comment>days</comment>
        <translation>%1 j</translation>
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
        <translation>réinitialisée à %1</translation>
    </message>
    <message>
        <source>reset</source>
        <comment>a limit window</comment>
        <translation>réinitialisée</translation>
    </message>
    <message>
        <source>Limits: %1</source>
        <translation>Limites&#xa0;: %1</translation>
    </message>
</context>
<context>
    <name>NoticeText</name>
    <message>
        <source>Codex finished · %1</source>
        <translation>Codex a terminé · %1</translation>
    </message>
    <message>
        <source>Worked %1</source>
        <translation>A travaillé %1</translation>
    </message>
    <message numerus="yes">
        <source>%n sessions are done.</source>
        <translation>
            <numerusform>%n session a terminé.</numerusform>
            <numerusform>%n sessions ont terminé.</numerusform>
        </translation>
    </message>
    <message>
        <source>Codex is waiting for you · %1</source>
        <translation>Codex vous attend · %1</translation>
    </message>
    <message>
        <source>A command needs your approval.</source>
        <translation>Une commande attend votre approbation.</translation>
    </message>
    <message numerus="yes">
        <source>%n sessions need your approval.</source>
        <translation>
            <numerusform>%n session attend votre approbation.</numerusform>
            <numerusform>%n sessions attendent votre approbation.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>PlaceText</name>
    <message>
        <source>Cannot go to the session: %1</source>
        <translation>Impossible d’aller à la session&#xa0;: %1</translation>
    </message>
    <message>
        <source>tmux could not select the pane of the session in %1</source>
        <translation>tmux n’a pas pu sélectionner le volet de la session dans %1</translation>
    </message>
    <message>
        <source>In %1, which no terminal shows: its pane is selected for the next attach</source>
        <translation>Dans %1, qu’aucun terminal n’affiche&#xa0;: son volet est sélectionné pour le prochain attachement</translation>
    </message>
    <message>
        <source>no window of its terminal was found</source>
        <translation>aucune fenêtre de son terminal n’a été trouvée</translation>
    </message>
    <message>
        <source>In %1: its pane is selected; the window was not raised: %2</source>
        <translation>Dans %1&#xa0;: son volet est sélectionné&#xa0;; la fenêtre n’a pas été mise au premier plan&#xa0;: %2</translation>
    </message>
    <message>
        <source>In %1: the window was not raised: %2</source>
        <translation>Dans %1&#xa0;: la fenêtre n’a pas été mise au premier plan&#xa0;: %2</translation>
    </message>
    <message>
        <source>the session has ended</source>
        <translation>la session est terminée</translation>
    </message>
    <message>
        <source>the session belongs to another user</source>
        <translation>la session appartient à un autre utilisateur</translation>
    </message>
    <message>
        <source>the tmux server at %1 names no pane of it</source>
        <translation>le serveur tmux de %1 ne lui connaît aucun volet</translation>
    </message>
    <message>
        <source>it runs in no tmux pane and no known terminal</source>
        <translation>elle ne tourne dans aucun volet tmux ni aucun terminal connu</translation>
    </message>
    <message>
        <source>%1; no window was looked for: %2</source>
        <translation>%1&#xa0;; aucune fenêtre n’a été cherchée&#xa0;: %2</translation>
    </message>
    <message>
        <source>The session has ended</source>
        <translation>La session est terminée</translation>
    </message>
    <message>
        <source>there is no screen (QT_QPA_PLATFORM=%1)</source>
        <translation>il n’y a pas d’écran (QT_QPA_PLATFORM=%1)</translation>
    </message>
    <message>
        <source>a Wayland desktop lets no program raise another&apos;s window</source>
        <translation>un bureau Wayland ne laisse aucun programme mettre au premier plan la fenêtre d’un autre</translation>
    </message>
    <message>
        <source>there is no X server (DISPLAY is not set)</source>
        <translation>il n’y a pas de serveur X (DISPLAY n’est pas défini)</translation>
    </message>
    <message>
        <source>cannot connect to the X server %1</source>
        <translation>connexion impossible au serveur X %1</translation>
    </message>
    <message>
        <source>the X server&apos;s EWMH atoms cannot be read</source>
        <translation>les atomes EWMH du serveur X ne peuvent pas être lus</translation>
    </message>
    <message>
        <source>no EWMH window manager runs on the X server</source>
        <translation>aucun gestionnaire de fenêtres EWMH ne tourne sur le serveur X</translation>
    </message>
    <message>
        <source>its window is gone</source>
        <translation>sa fenêtre a disparu</translation>
    </message>
    <message>
        <source>the X server closed the connection</source>
        <translation>le serveur X a fermé la connexion</translation>
    </message>
</context>
<context>
    <name>PreferencesText</name>
    <message>
        <source>Launch at login is off</source>
        <translation>Le lancement à l’ouverture de session est désactivé</translation>
    </message>
    <message>
        <source>Launch at login is enabled</source>
        <translation>Le lancement à l’ouverture de session est activé</translation>
    </message>
    <message>
        <source>Launch at login is waiting for approval by the desktop</source>
        <translation>Le lancement à l’ouverture de session attend l’approbation du bureau</translation>
    </message>
    <message>
        <source>Launch at login is not available: %1</source>
        <translation>Le lancement à l’ouverture de session n’est pas disponible&#xa0;: %1</translation>
    </message>
    <message>
        <source>Launch at login is not available</source>
        <translation>Le lancement à l’ouverture de session n’est pas disponible</translation>
    </message>
    <message>
        <source>Launch-at-login status is unavailable</source>
        <translation>L’état du lancement à l’ouverture de session est inconnu</translation>
    </message>
    <message>
        <source>The app appears in the taskbar while running</source>
        <translation>L’application apparaît dans la barre des tâches pendant son exécution</translation>
    </message>
    <message>
        <source>The app runs in the tray and stays out of the taskbar</source>
        <translation>L’application tourne dans la zone de notification, hors de la barre des tâches</translation>
    </message>
</context>
<context>
    <name>ProcessListText</name>
    <message>
        <source>No process list available while detection is in an error state. %1</source>
        <translation>Aucune liste de processus tant que la détection est en erreur. %1</translation>
    </message>
    <message>
        <source>Checking the local process list…</source>
        <translation>Vérification de la liste des processus locaux…</translation>
    </message>
    <message>
        <source>No matching Codex CLI processes found.</source>
        <translation>Aucun processus Codex CLI trouvé.</translation>
    </message>
    <message>
        <source>Running</source>
        <translation>En cours</translation>
    </message>
    <message>
        <source>Waiting for you</source>
        <translation>Vous attend</translation>
    </message>
    <message>
        <source>Idle</source>
        <translation>Inactif</translation>
    </message>
    <message>
        <source>%1 % context left</source>
        <translation>%1 % de contexte restant</translation>
    </message>
    <message>
        <source>PID %1 · 1 process</source>
        <translation>PID %1 · 1 processus</translation>
    </message>
    <message numerus="yes">
        <source>PID %1 · %n processes</source>
        <translation>
            <numerusform>PID %1 · %n processus</numerusform>
            <numerusform>PID %1 · %n processus</numerusform>
        </translation>
    </message>
    <message>
        <source>Started %1</source>
        <translation>Démarré le %1</translation>
    </message>
    <message>
        <source>Status from its session log</source>
        <translation>État tiré de son journal de session</translation>
    </message>
    <message>
        <source>Status from its CPU use</source>
        <translation>État tiré de son usage du processeur</translation>
    </message>
    <message>
        <source>%1 tokens used</source>
        <translation>%1 jetons utilisés</translation>
    </message>
</context>
<context>
    <name>RunStateText</name>
    <message numerus="yes">
        <source>%n running</source>
        <translation>
            <numerusform>%n en cours</numerusform>
            <numerusform>%n en cours</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n waiting</source>
        <translation>
            <numerusform>%n en attente</numerusform>
            <numerusform>%n en attente</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n idle</source>
        <translation>
            <numerusform>%n inactif</numerusform>
            <numerusform>%n inactifs</numerusform>
        </translation>
    </message>
    <message>
        <source>1 Codex process running</source>
        <translation>1 processus Codex en cours</translation>
    </message>
    <message numerus="yes">
        <source>%n Codex processes running</source>
        <translation>
            <numerusform>%n processus Codex en cours</numerusform>
            <numerusform>%n processus Codex en cours</numerusform>
        </translation>
    </message>
    <message>
        <source>1 Codex process waiting</source>
        <translation>1 processus Codex en attente</translation>
    </message>
    <message numerus="yes">
        <source>%n Codex processes waiting</source>
        <translation>
            <numerusform>%n processus Codex en attente</numerusform>
            <numerusform>%n processus Codex en attente</numerusform>
        </translation>
    </message>
    <message>
        <source>1 Codex process idle</source>
        <translation>1 processus Codex inactif</translation>
    </message>
    <message numerus="yes">
        <source>%n Codex processes idle</source>
        <translation>
            <numerusform>%n processus Codex inactif</numerusform>
            <numerusform>%n processus Codex inactifs</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n total</source>
        <translation>
            <numerusform>%n au total</numerusform>
            <numerusform>%n au total</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 in %2</source>
        <translation>%1 dans %2</translation>
    </message>
    <message>
        <source>%1 — waiting in %2</source>
        <translation>%1 — en attente dans %2</translation>
    </message>
    <message>
        <source>Codex process detection failed: %1</source>
        <translation>Échec de la détection des processus Codex&#xa0;: %1</translation>
    </message>
    <message>
        <source>No Codex CLI process detected</source>
        <translation>Aucun processus Codex CLI détecté</translation>
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
        <translation>%1 j</translation>
    </message>
    <message>
        <source>Unknown error while reading the process table</source>
        <translation>Erreur inconnue lors de la lecture de la table des processus</translation>
    </message>
    <message>
        <source>Checking for Codex CLI processes…</source>
        <translation>Recherche des processus Codex CLI…</translation>
    </message>
    <message>
        <source>Process detection failed</source>
        <translation>Échec de la détection des processus</translation>
    </message>
</context>
<context>
    <name>StatusCommand</name>
    <message>
        <source>--go needs a PID, &apos;waiting&apos; or &apos;running&apos;</source>
        <translation>--go attend un PID, «&#xa0;waiting&#xa0;» ou «&#xa0;running&#xa0;»</translation>
    </message>
    <message>
        <source>--go takes a PID, &apos;waiting&apos; or &apos;running&apos;, not &apos;%1&apos;</source>
        <translation>--go attend un PID, «&#xa0;waiting&#xa0;» ou «&#xa0;running&#xa0;», pas «&#xa0;%1&#xa0;»</translation>
    </message>
    <message>
        <source>unknown option &apos;%1&apos;</source>
        <translation>option inconnue «&#xa0;%1&#xa0;»</translation>
    </message>
    <message>
        <source>unexpected argument &apos;%1&apos;</source>
        <translation>argument inattendu «&#xa0;%1&#xa0;»</translation>
    </message>
    <message>
        <source>--go takes neither --json nor --watch</source>
        <translation>--go ne se combine ni avec --json ni avec --watch</translation>
    </message>
    <message>
        <source>no Codex session waits</source>
        <translation>aucune session Codex n’attend</translation>
    </message>
    <message>
        <source>no Codex session runs</source>
        <translation>aucune session Codex ne tourne</translation>
    </message>
    <message>
        <source>no Codex session has PID %1</source>
        <translation>aucune session Codex n’a le PID %1</translation>
    </message>
    <message>
        <source>cannot write the report: %1</source>
        <translation>impossible d’écrire le rapport&#xa0;: %1</translation>
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
        <translation>Utilisation&#xa0;: brenvik-status [--json] [--watch] [--verbose]
              brenvik-status --go PID|waiting|running

Montre les processus Codex CLI de cette machine et si chacun tourne ou est
inactif. Sans --watch, il attend deux actualisations (environ 2 secondes,
pour mesurer l’usage du processeur), affiche le résultat et se termine.

Options&#xa0;:
  --json        afficher du JSON au lieu de texte
  --watch       afficher une ligne après chaque actualisation (toutes les
                2 secondes) jusqu’à interruption&#xa0;; avec --json, un objet
                JSON par ligne
  --go CIBLE    aller à une session&#xa0;: mettre la fenêtre de son terminal au
                premier plan et sélectionner son volet tmux. CIBLE est le PID
                d’une session, «&#xa0;waiting&#xa0;» (celle qui attend depuis le
                plus longtemps) ou «&#xa0;running&#xa0;» (celle qui tourne depuis
                le plus longtemps)
  --verbose     journaliser sur la sortie d’erreur ce qui n’a pas pu être
                lu, et pourquoi
  -h, --help    afficher cette aide et quitter
  --version     afficher la version et quitter

Code de sortie&#xa0;: 0 en cas de succès, 1 si la table des processus n’a pas
pu être lue ou si --go n’a pas pu y aller, 2 en cas d’erreur d’utilisation.
</translation>
    </message>
</context>
<context>
    <name>StatusTable</name>
    <message>
        <source>running</source>
        <translation>en cours</translation>
    </message>
    <message>
        <source>waiting</source>
        <translation>en attente</translation>
    </message>
    <message>
        <source>idle</source>
        <translation>inactif</translation>
    </message>
    <message>
        <source>PID</source>
        <translation>PID</translation>
    </message>
    <message>
        <source>STATUS</source>
        <translation>ÉTAT</translation>
    </message>
    <message>
        <source>MEMBERS</source>
        <translation>MEMBRES</translation>
    </message>
    <message>
        <source>PROJECT</source>
        <translation>PROJET</translation>
    </message>
    <message>
        <source>COMMAND</source>
        <translation>COMMANDE</translation>
    </message>
</context>
<context>
    <name>StatusText</name>
    <message>
        <source>Waiting for you: %1</source>
        <translation>Vous attend&#xa0;: %1</translation>
    </message>
    <message>
        <source>Waiting for you</source>
        <translation>Vous attend</translation>
    </message>
    <message>
        <source>Running</source>
        <translation>En cours</translation>
    </message>
    <message>
        <source>No tray for the icon: install gnome-shell-extension-appindicator</source>
        <translation>Aucune zone de notification pour l’icône&#xa0;: installez gnome-shell-extension-appindicator</translation>
    </message>
    <message>
        <source>No tray for the icon: add one to your panel, or install trayer</source>
        <translation>Aucune zone de notification pour l’icône&#xa0;: ajoutez-en une à votre panneau ou installez trayer</translation>
    </message>
</context>
<context>
    <name>StoredPreferences</name>
    <message>
        <source>The preference could not be saved to %1. It applies until Brenvik quits.</source>
        <translation>La préférence n’a pas pu être enregistrée dans %1. Elle s’applique jusqu’à la fermeture de Brenvik.</translation>
    </message>
</context>
<context>
    <name>UpdatedText</name>
    <message>
        <source>Checking now</source>
        <translation>Vérification en cours</translation>
    </message>
    <message>
        <source>Updated %1</source>
        <translation>Mis à jour à %1</translation>
    </message>
</context>
<context>
    <name>brenvik::AppVisibilityController</name>
    <message>
        <source>The desktop rejected the taskbar visibility change right now. Try toggling it again after the app is fully running.</source>
        <translation>Le bureau a refusé pour l’instant de changer la visibilité dans la barre des tâches. Réessayez une fois l’application complètement lancée.</translation>
    </message>
    <message>
        <source>The desktop cannot keep windows out of the taskbar, so the control panel stays in it.</source>
        <translation>Le bureau ne peut pas tenir les fenêtres hors de la barre des tâches&#xa0;: le panneau de contrôle y reste.</translation>
    </message>
</context>
<context>
    <name>brenvik::ControlPanelView</name>
    <message>
        <source>Refresh Now</source>
        <translation>Actualiser</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Quitter</translation>
    </message>
    <message>
        <source>Preferences</source>
        <translation>Préférences</translation>
    </message>
    <message>
        <source>Active processes</source>
        <translation>Processus actifs</translation>
    </message>
    <message>
        <source>Refresh Now (R)</source>
        <translation>Actualiser (R)</translation>
    </message>
</context>
<context>
    <name>brenvik::DBusNotificationBus</name>
    <message>
        <source>Go to the session</source>
        <translation>Aller à la session</translation>
    </message>
    <message>
        <source>Open Control Panel</source>
        <translation>Ouvrir le panneau</translation>
    </message>
</context>
<context>
    <name>brenvik::GoToButton</name>
    <message>
        <source>Go to</source>
        <translation>Y aller</translation>
    </message>
</context>
<context>
    <name>brenvik::MenuPopoverView</name>
    <message>
        <source>Open Control Panel</source>
        <translation>Ouvrir le panneau</translation>
    </message>
</context>
<context>
    <name>brenvik::PreferencesControlsView</name>
    <message>
        <source>Launch at login</source>
        <translation>Lancer à l’ouverture de session</translation>
    </message>
    <message>
        <source>Show in taskbar while running</source>
        <translation>Afficher dans la barre des tâches pendant l’exécution</translation>
    </message>
    <message>
        <source>Notify when a session finishes or needs you</source>
        <translation>Notifier quand une session se termine ou a besoin de vous</translation>
    </message>
    <message>
        <source>A desktop notification when a session is done or asks you</source>
        <translation>Une notification de bureau quand une session a fini ou vous sollicite</translation>
    </message>
</context>
<context>
    <name>brenvik::StatusHeaderView</name>
    <message>
        <source>Codex CLI Status</source>
        <translation>État de Codex CLI</translation>
    </message>
</context>
<context>
    <name>brenvik::SystemTraySurface</name>
    <message>
        <source>Open Control Panel</source>
        <translation>Ouvrir le panneau</translation>
    </message>
    <message>
        <source>Refresh Now</source>
        <translation>Actualiser</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Quitter</translation>
    </message>
</context>
</TS>
