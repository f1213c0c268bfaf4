#!/usr/bin/env node
// The real Codex CLI (codex exec, the TUI in tmux, acpx driving codex-acp), offline
// against our fake model on 127.0.0.1, watched by `brenvik-status --watch --json`, and
// with --brenvik by the tray app, whose desktop notifications go to dunst. Each pinned
// release runs its own scenarios, the releases side by side.
//
// Usage: real-codex-e2e.sh --brenvik-status PATH [--brenvik PATH] [--codex-cache DIR]
//                           [--record DIR] [--timeline] [--keep] [--only ID,...]
//   (the wrapper installs the pinned packages and runs this under a Node.js new enough
//   for Codex, codex-acp and acpx)
//   --brenvik PATH     also run the tray app on a private bus with dunst (needs Xvfb,
//                      dunst and dbus-monitor) and check its notifications
//   --codex-cache DIR  where tools/install-codex.sh keeps the pinned npm installs
//   --record DIR       also write the process table of each marked moment to DIR/<moment>.tsv
//   --timeline         print the timeline on success too
//   --keep             keep the temporary folder
//   --only ID,...      run only these scenarios (ids as in the table below, e.g. tui,
//                      exec-0.80.0) or releases (0.130.0)
import { spawn, spawnSync } from "node:child_process";
import fs from "node:fs";
import os from "node:os";
import path from "node:path";
import readline from "node:readline";
import { fileURLToPath } from "node:url";
import { parseArgs } from "node:util";
import { projectsOf, startDesktop } from "./desktop-notifications.mjs";
import { startFakeModel } from "./fake-model-server.mjs";

const REFRESH = 2000; // brenvik-status refreshes every 2 s
const HARD_CAP_S = 420;
const sourceDir = path.resolve(path.dirname(fileURLToPath(import.meta.url)), "../..");

// The releases tools/install-codex.sh installs (the newest also brings codex-acp and acpx):
//   daemon: its TUIs share a background service (app-server --managed-daemon)
//   turnEvents: its log opens and closes each turn (task_started, task_complete); older
//     logs only show the user's message and the final answer
const newest = "0.169.0";
const releases = { "0.169.0": { daemon: true, turnEvents: true }, "0.130.0": { turnEvents: true }, "0.80.0": { turnEvents: false } };

// A tool command that waits, then burns one core, writing when the burn starts and ends.
const burn = `sleep 2; date +%s.%N > burn-start; timeout 5 sh -c 'while :; do :; done'; date +%s.%N > burn-end`;
// A front-end that runs the burn as its one prompt, recorded while it burns, then exits.
const burnSteps = (moment, what) => [{ until: "burning", record: [moment, what] }, { until: "exited" }];

// A TUI's turns: an answer, a tool command, and an approval question, answered.
const tuiTurns = [
  { type: "[say:Hello from the fake model]", until: "turn done", hold: 5 },
  { type: `[shell:${burn}]`, until: "burning", record: ["tui-tool-burning", "TUI turn: the daemon runs the tool command, which burns a core"] },
  { until: "turn done", hold: 5 },
  { type: "[escalate][shell:sleep 8; touch approved]", until: "approval shown", record: ["tui-waiting-approval", "TUI asks the user to approve an escalated command"] },
  { hold: 6, window: "approval" },
  { keys: ["y"], until: "file:approved", window: "approved", record: ["tui-approved-command", "TUI: the approved command runs outside the sandbox"] },
  { until: "turn done", hold: 5 },
];

// Scenarios, each run once per release it names, in its own project directory (the
// directory named here, with "-<release>" for all but the newest). A release's scenarios
// run in this order; the releases run at the same time. Each starts one front-end (the
// TUI scenario opens a second one). Steps run in order, each doing what it names in this order:
//   open: start another front-end of the scenario (its definition), which the step acts on
//   at: the front-end a step acts on (default: the scenario's own)
//   type: text to type into the TUI (then Enter)   keys: tmux keys to send
//   release: read the front-end's output again (see `holdOutput`)
//   until: condition to wait for (see `conditions`)
//   record: [moment, what Codex is doing] to record then (--record; newest release only)
//   hold: seconds to stay in this state
//   window: a name for the step's span, from its start (since: "launch": from the
//     front-end's launch) to its end, for the checks.
// Beside the named windows, each prompt gives its own: `turn` from Codex's taking it up
// (its user message in the log) to the model's final answer (unless it asks for
// approval), `thinking` while the model thinks
// ([think:S]) and `turn end` from the final answer until the front-end's next prompt or
// exit. `windowRules` says what Brenvik must show in each.
// holdOutput: the driver does not read the front-end's standard output until a
// `release` step; codex exec then blocks writing a long final answer, after its turn.
const all = Object.keys(releases);
const scenarioTable = [
  { id: "fresh", name: "TUI left alone", dir: "F", kind: "tui", releases: [newest, "0.130.0"],
    steps: [{ hold: 20, window: "left alone", since: "launch" }, { type: "/quit", until: "exited" }] },
  { id: "exec-think", name: "codex exec thinking", dir: "E", kind: "exec", holdOutput: true, releases: all, prompt: "[think:15][say:Thought it over][pad:256]",
    steps: [
      { until: "thinking", record: ["exec-thinking", "codex exec waits 15 s on the model's open stream, no tool"] },
      { until: "turn done", hold: 3 },
      { record: ["exec-turn-over", "codex exec's turn is over; it blocks writing its answer to a full pipe"], hold: 3 },
      { release: true, until: "exited" },
    ] },
  { id: "exec", name: "codex exec", dir: "A", kind: "exec", releases: all, prompt: `[think:3][shell:${burn}]`,
    steps: burnSteps("exec-tool-burning", "codex exec runs its tool command, which burns a core") },
  { id: "tui", name: "TUI", dir: "B", kind: "tui", releases: [newest],
    steps: [
      { record: ["tui-fresh", "TUI just started, its daemon up, no turn yet"] },
      ...tuiTurns,
      // A second TUI of the same CODEX_HOME, in another project: one daemon serves both.
      { open: { id: "tui2", name: "second TUI", dir: "D", kind: "tui" } },
      { at: "tui2", type: "[say:Hello from the second TUI][usage:95608][limits:42/13/600]", until: "turn done" },
      { at: "tui2", until: "usage", hold: 3 },
      { type: "[think:6][say:The first TUI thought]", until: "turn done", hold: 3,
        record: ["tui-thinking-other-idle", "two TUIs, one daemon: the first thinks, the second is idle"] },
      { at: "tui2", type: "[think:6][say:The second TUI thought][usage:120000][limits:92/20/15]", until: "turn done" },
      { at: "tui2", until: "usage", hold: 5 },
      { at: "tui2", type: "/quit", until: "exited" },
      { hold: 20, window: "idle", record: ["tui-idle", "TUI idle after its turns"] },
      { until: "limits reset" },
      { type: "/quit", until: "exited" },
      { hold: 8, record: ["tui-after-quit-daemon-alive", "TUI quit; its shared daemon lives on"] },
    ] },
  { id: "tui", name: "TUI", dir: "B", kind: "tui", releases: all.filter((r) => r !== newest),
    steps: [...tuiTurns, { type: "[think:6][say:Thought]", until: "turn done", hold: 5 }, { type: "/quit", until: "exited" }] },
  { id: "acpx", name: "acpx + codex-acp", dir: "C", kind: "acpx", releases: [newest], prompt: `[shell:${burn}]`,
    steps: burnSteps("acpx-tool-burning", "acpx drives codex-acp, whose tool command burns a core") },
];
// One scenario (and front-end) per release it names; the newest keeps the plain names.
const scenarios = scenarioTable.flatMap((s) => s.releases.map((r) => {
  const suffix = r === newest ? "" : `-${r}`;
  const ofRelease = (def) => def && { ...def, release: r, id: def.id + suffix, dir: def.dir + suffix, name: suffix ? `${def.name} ${r}` : def.name };
  return { ...ofRelease(s), steps: s.steps.map((st) => ({ ...st, at: st.at && st.at + suffix, open: ofRelease(st.open), record: !suffix && st.record })) };
}));
const frontEndDefinitions = scenarios.flatMap((s) => [s, ...s.steps.filter((st) => st.open).map((st) => st.open)]);

// What Brenvik must show in each kind of window, from `from` ms after its start to its
// end. A turn from 2 s after Codex took up its prompt; a burn from one refresh after it began; thinking
// from one refresh after the model got the request; a turn's end from the first refresh
// after it, an approval question and an approved command within one or two refreshes; a
// TUI left alone from 4 s after its launch; an idle TUI after its turns gets 10 s
// ("not running": idle or waiting, the session's verdict once its turns are over).
// A span shorter than a refresh (codex exec exits as its turn ends) may hold no refresh.
const windowRules = {
  turn: { status: "running", from: 2000 },
  burn: { status: "running", from: REFRESH + 500 },
  thinking: { status: "running", from: REFRESH },
  "turn end": { status: "idle", from: 1000 },
  approval: { status: "waiting", from: 2 * REFRESH },
  approved: { status: "running", from: 2 * REFRESH },
  "left alone": { status: "idle", from: 4000 },
  idle: { status: "not running", from: 10_000 },
};

// ---------------------------------------------------------------------------------------

const tryOr = (f, fallback) => { try { return f(); } catch { return fallback; } };
const readOr = (f, fallback) => tryOr(() => fs.readFileSync(f, "utf8"), fallback);
const linkOr = (f) => tryOr(() => fs.readlinkSync(f), "");
const [text, flag] = [{ type: "string" }, { type: "boolean" }];
// --codex-cache is the wrapper's, which hands its install over in BRENVIK_CODEX_INSTALL.
const opts = tryOr(() => parseArgs({ options: { "brenvik-status": text, brenvik: text, "codex-cache": text, record: text, timeline: flag, keep: flag, only: text } }).values, {});
if (!opts["brenvik-status"]) fatal("give the brenvik-status to test with --brenvik-status PATH (and no unknown arguments; see the usage at the top)");
const t0 = Date.now();
const events = []; // { t, who, text }
const lines = []; // { t, report }: each line of brenvik-status and when it came
const failures = [];
const note = (who, text) => events.push({ t: Date.now(), who, text });
const sleep = (ms) => new Promise((r) => setTimeout(r, ms));

// What tools/install-codex.sh printed for the wrapper: the install's folder, and the
// Node.js this runs under.
const [prefix, node] = (process.env.BRENVIK_CODEX_INSTALL ?? fatal("run it with real-codex-e2e.sh, which installs the Codex CLI")).split("\n");
// Each older release sits in a prefix of its own, codex-<release>/.
const bin = (name, release = newest) => path.join(prefix, release === newest ? "" : `codex-${release}`, "node_modules/.bin", name);
// codex-acp finds no bwrap of its own; the one Codex ships will do.
const [arch, triple] = process.arch === "arm64" ? ["arm64", "aarch64"] : ["x64", "x86_64"];
const bwrapDir = path.join(prefix, `node_modules/@openai/codex-linux-${arch}/vendor/${triple}-unknown-linux-musl/codex-resources`);
if (spawnSync("tmux", ["-V"]).status !== 0) fatal("tmux not found: the real-Codex test needs it (tools/install-deps.sh installs it)");

// Brenvik ignores every command line that names it, so neither path may.
for (const p of [prefix, os.tmpdir()]) if (/brenvik/i.test(p)) fatal(`${p} names Brenvik, which then ignores the Codex run there`);
const runId = `${process.pid}-${t0}`;
const temp = fs.realpathSync(fs.mkdtempSync(path.join(os.tmpdir(), "codex-e2e-")));
const home = path.join(temp, "home");
// One per release (releases keep state files of different versions there); the newest
// keeps the plain name that the recorded process tables show.
const codexHome = (release) => path.join(temp, release === newest ? "codex-home" : `codex-home-${release}`);
const frontEnds = new Map(); // id -> { scenario, release, dir, env, start, exit, windows, prompts, child?, tmux? }
const children = new Set();
let model, brenvik, desktop;

// What every front-end gets; each adds its release's `codex` and CODEX_HOME (fe.env).
// The shims' `#!/usr/bin/env node` finds first the Node.js the installer brought, if it did.
const env = {
  PATH: `${node.startsWith(prefix) ? `${path.dirname(node)}:` : ""}${path.dirname(bin("codex"))}:${bwrapDir}:${process.env.PATH}`,
  HOME: home, TMPDIR: path.join(temp, "tmp"), TMUX_TMPDIR: path.join(temp, "tmp"), MOCK_API_KEY: "offline", TERM: "xterm-256color", LANG: "C.UTF-8",
  BRENVIK_E2E_RUN: runId,
};

// ---------------------------------------------------------------------------------------

function fatal(message) {
  console.error(`real-codex-e2e: ${message}`);
  process.exit(1);
}

// Every child is ended at clean-up; `exited` says what an exit before then is (by
// default, a failure).
function track(child, exited = (how) => `${child.spawnfile} exited early (${how})`) {
  children.add(child);
  child.stderrText = "";
  child.stderr?.on("data", (d) => (child.stderrText = (child.stderrText + d).slice(-20_000)));
  child.on("exit", (code, sig) => {
    children.delete(child);
    const problem = exited(code ?? sig);
    if (problem && !cleaning) failures.push(`${problem}${child.stderrText ? `:\n${child.stderrText.trim().slice(-2000)}` : ""}`);
  });
  return child;
}

async function setUp() {
  const homes = [...new Set(frontEndDefinitions.map((s) => codexHome(s.release)))];
  for (const d of [home, env.TMPDIR, ...homes, ...frontEndDefinitions.map((s) => path.join(home, s.dir))]) fs.mkdirSync(d, { recursive: true });
  model = await startFakeModel();
  // What Codex would fetch from outside goes to the fake model, which refuses it.
  const proxy = `http://127.0.0.1:${model.port}`;
  Object.assign(env, { HTTPS_PROXY: proxy, https_proxy: proxy, HTTP_PROXY: proxy, http_proxy: proxy, ALL_PROXY: proxy,
    NO_PROXY: "127.0.0.1,localhost", no_proxy: "127.0.0.1,localhost" });
  // Every outside service off: the update check, plugin sync, apps, analytics, tips.
  // Sections of `key = value` lines: JSON's strings, numbers and booleans are TOML's too.
  const config = Object.entries({
    "": { model: "mock-model", model_provider: "mock", check_for_update_on_startup: false },
    "model_providers.mock": { name: "Mock", base_url: `${proxy}/v1`, env_key: "MOCK_API_KEY", wire_api: "responses", request_max_retries: 0, stream_max_retries: 0 },
    features: { plugins: false, remote_plugin: false, apps: false }, analytics: { enabled: false },
    notice: { hide_rate_limit_model_nudge: true }, tui: { show_tooltips: false, disable_paste_burst: true },
    ...Object.fromEntries(frontEndDefinitions.map((s) => [`projects.${JSON.stringify(path.join(home, s.dir))}`, { trust_level: "trusted" }])),
  }).map(([name, keys]) => (name ? `[${name}]\n` : "") + Object.entries(keys).map(([k, v]) => `${k} = ${JSON.stringify(v)}\n`).join("")).join("");
  for (const h of homes) fs.writeFileSync(path.join(h, "config.toml"), config);

  brenvik = track(spawn(opts["brenvik-status"], ["--watch", "--json"], { env: { ...process.env, HOME: home }, stdio: ["ignore", "pipe", "pipe"] }));
  readline.createInterface({ input: brenvik.stdout }).on("line", (l) =>
    tryOr(() => lines.push({ t: Date.now(), report: JSON.parse(l) }), null) ?? note("brenvik", `unreadable line: ${l.slice(0, 200)}`));
  if (opts.brenvik) desktop = await startDesktop({ app: opts.brenvik, dir: path.join(temp, "desktop"), home, track, note, until });
  await until("brenvik-status's first refresh", () => lines.length > 0, 30);
  // Notes the daemons, and marks a TUI front-end exited once none of its processes (the
  // daemon's aside) is left.
  setInterval(() => {
    const procs = scan();
    for (const p of procs) if (isDaemon(p)) daemons.add(p.pid);
    const byPid = new Map(procs.map((p) => [p.pid, p]));
    const underDaemon = (p) => { for (let q = p; q; q = byPid.get(q.ppid)) if (isDaemon(q)) return true; return false; };
    const logged = new Set(sessionLogs().map((l) => l.cwd));
    for (const [id, fe] of frontEnds) {
      if (fe.logSeen === undefined && logged.has(fe.dir)) fe.logSeen = Date.now();
      if (fe.child || fe.exit !== undefined) continue;
      const alive = procs.some((p) => p.env.BRENVIK_E2E_FRONTEND === id && !underDaemon(p));
      if (alive) fe.seen = true;
      else if (fe.seen) { fe.exit = Date.now(); note(id, "gone"); }
    }
  }, 250).unref();
}

async function runScenario(s) {
  const own = await openFrontEnd(s, s);
  for (const step of s.steps) {
    const from = Date.now();
    const fe = step.open ? await openFrontEnd(step.open, s) : frontEnds.get(step.at) ?? own;
    note(fe.id, `step ${JSON.stringify(step, (k, v) => (k === "record" || k === "open" ? undefined : v))}`);
    if (step.type !== undefined) {
      const text = tagged(fe, step.type);
      fe.turnsBefore = turnsDone(fe);
      tmux(fe, "send-keys", "-t", "main", "-l", text);
      await until(`"${text}" typed`, () => pane(fe).includes(text.slice(-30)), 10);
      tmux(fe, "send-keys", "-t", "main", "Enter");
      fe.prompts.push({ text, at: Date.now() });
    }
    if (step.keys) tmux(fe, "send-keys", "-t", "main", ...step.keys);
    if (step.release) fe.child.stdout.resume(); // its output read again
    if (step.until) {
      const [name, arg] = step.until.split(/:(.*)/);
      await until(`${fe.name}: ${step.until}`, () => conditions[name](fe, arg), 60)
        .catch((e) => { throw new Error(`${e.message}${fe.lastUsage ? `; brenvik-status said ${fe.lastUsage}` : ""}`); });
      note(fe.id, step.until);
    }
    if (step.record) record(...step.record);
    if (step.hold) await sleep(step.hold * 1000); // the scenario's own duration, not a synchronisation
    if (step.window) fe.windows.push({ kind: step.window, start: step.since === "launch" ? fe.start : from, end: Date.now() });
  }
  for (const fe of [...frontEnds.values()].filter((f) => f.scenario === s)) {
    // The burn's own markers prove that the tool command really ran.
    const [start, end] = ["start", "end"].map((e) => Number(readOr(path.join(fe.dir, `burn-${e}`), NaN)) * 1000);
    if (fe.burnt && start && end) fe.windows.push({ kind: "burn", start, end });
    else if (fe.burnt) failures.push(`${fe.name}: the tool command left no burn markers`);
    if (fe.tmux) tmux(fe, "kill-server");
  }
}

// Starts a front-end of scenario `s` (def: the scenario or a front-end its steps open):
// codex exec or acpx with its prompt, or a TUI in tmux, ready for its first prompt.
async function openFrontEnd(def, scenario) {
  const fe = { ...def, scenario, dir: path.join(home, def.dir), start: Date.now(), windows: [], prompts: [], turnsBefore: 0,
    env: { ...env, PATH: `${path.dirname(bin("codex", def.release))}:${env.PATH}`, CODEX_HOME: codexHome(def.release) } };
  frontEnds.set(fe.id, fe);
  note(fe.id, `start in ${fe.dir}`);
  if (fe.kind === "tui") {
    fe.tmux = `codex-e2e-${fe.id}`;
    tmux(fe, "-f", "/dev/null", "new-session", "-d", "-s", "main", "-x", "220", "-y", "50", "-c", fe.dir, "bash", "--noprofile", "--norc");
    await until("a shell prompt in tmux", () => /[$#] *$/m.test(pane(fe)), 10);
    // The marker goes to the Codex process only: tmux and the shell belong to no front-end.
    tmux(fe, "send-keys", "-t", "main", `BRENVIK_E2E_FRONTEND=${fe.id} codex -a on-request -s workspace-write`, "Enter");
    fe.start = Date.now();
    // The pid file appears empty first; the daemon is up once it names a PID.
    const daemonPid = () => JSON.parse(fs.readFileSync(path.join(fe.env.CODEX_HOME, "app-server-daemon/daemon.pid"), "utf8")).pid;
    if (releases[fe.release].daemon) await until("the TUI's daemon pid file", () => tryOr(daemonPid, 0) > 0, 60);
    await until("the TUI's prompt", () => pane(fe).includes("›"), 30);
    return fe;
  }
  const prompt = tagged(fe, def.prompt);
  fe.prompts.push({ text: prompt, at: fe.start });
  const [command, args] = fe.kind === "exec"
    ? [bin("codex", fe.release), ["exec", "--skip-git-repo-check", "-s", "workspace-write", prompt]]
    : [bin("acpx"), ["--agent", bin("codex-acp"), "--cwd", fe.dir, "--approve-all", "--format", "quiet", "exec", prompt]];
  const stdio = ["ignore", fe.holdOutput ? "pipe" : "ignore", "pipe"]; // a pipe nobody reads until `release`
  fe.child = track(spawn(command, args, { cwd: fe.dir, env: { ...fe.env, BRENVIK_E2E_FRONTEND: fe.id }, stdio }), (how) => {
    fe.exit = Date.now();
    note(fe.id, `gone (exit ${how})`);
    return how !== 0 && `${fe.name} exited with ${how}`;
  });
  return fe;
}

// A prompt names its front-end, so that the model's requests tell whose they are.
const tagged = (fe, text) => (text.startsWith("/") ? text : `${text} [from:${fe.id}]`);
const ownerOf = (request) => /\[from:([^\]]+)\]$/.exec(request.prompt ?? "")?.[1] ?? "?";

// Each prompt's own windows, from what the model was asked and when it answered.
function promptWindows(fe) {
  const windows = [];
  fe.prompts.forEach((p, i) => {
    const asked = model.requests.filter((r) => r.prompt === p.text && !r.title && r.t >= p.at - 1000);
    windows.push(...asked.filter((r) => r.directives?.think && !r.followUp && r.answeredAt).map((r) => ({ kind: "thinking", start: r.t, end: r.answeredAt })));
    const final = asked.findLast((r) => r.final && r.answeredAt);
    // As for "while it runs": a refresh just before its exit is seen may no longer show it.
    const next = fe.prompts[i + 1]?.at ?? (fe.exit && fe.exit - 500);
    // A turn that waits for an approval is judged by its approval windows instead.
    const approval = fe.windows.some((w) => w.kind === "approval" && w.start >= p.at && (!final || w.start <= final.answeredAt));
    // codex exec takes up its prompt once it has started, 1-3 s after its launch.
    if (final && !approval) windows.push({ kind: "turn", start: promptTakenAt.get(p.text) ?? p.at, end: final.answeredAt });
    if (final && next) windows.push({ kind: "turn end", start: final.answeredAt, end: next });
  });
  return windows;
}

function tmux(fe, ...args) {
  const r = spawnSync("tmux", ["-L", fe.tmux, ...args], { env: fe.env, encoding: "utf8", timeout: 10_000 });
  if (r.status !== 0) throw new Error(`tmux ${args.join(" ")}: ${r.stderr}`);
  return r.stdout;
}

const pane = (fe) => tmux(fe, "capture-pane", "-p", "-t", "main");

// Conditions a step waits for (`until: "name"` or `"name:arg"`); each holds once it is true.
const conditions = {
  thinking: (fe) => model.requests.some((r) => ownerOf(r) === fe.id && r.directives?.think && !r.answeredAt),
  // Noted, so that the burn's markers are read at the scenario's end.
  burning: (fe) => (fe.burnt = fs.existsSync(path.join(fe.dir, "burn-start")) &&
    scan().some((p) => p.cmdline.includes("while :; do :; done") && p.argv[0] === "sh" && p.cwd === fe.dir)),
  "turn done": (fe) => turnsDone(fe) > fe.turnsBefore,
  "approval shown": (fe) => pane(fe).includes("Would you like to run"),
  file: (fe, name) => fs.existsSync(path.join(fe.dir, name)),
  exited: (fe) => fe.exit !== undefined,
  // brenvik-status's latest report holds exactly the figures the fake chose for the
  // front-end's latest turn: its model, the tokens of all its responses, the context
  // left after the last one, and the account's limits. The run fails where it never does.
  usage: (fe) => {
    const mine = model.requests.filter((r) => r.n && !r.title && fe.prompts.some((p) => p.text === r.prompt));
    const last = mine.at(-1)?.figures;
    const report = lines.at(-1)?.report;
    const group = report?.groups.find((g) => g.cwd === fe.dir);
    const limits = report?.limits.find((l) => l.codexHome === codexHome(fe.release));
    const windowIs = (w, want) => w?.usedPercent === want.usedPercent && w.windowMinutes === want.windowMinutes && Date.parse(w.resetsAt) === want.resetsAt * 1000;
    const ok = last && group?.model === "mock-model" &&
      group.tokens === mine.reduce((sum, r) => sum + r.figures.usage.total_tokens, 0) && group.contextLeftPercent === Math.floor(100 * (1 - last.usage.total_tokens / 258400)) &&
      windowIs(limits?.primary, last.limits.primary) && windowIs(limits?.secondary, last.limits.secondary);
    if (ok) usageSeen.push(`${fe.name}: ${group.tokens} tokens, ${group.contextLeftPercent} % context left, 5 h ${limits.primary.usedPercent} %, week ${limits.secondary.usedPercent} %`);
    fe.lastUsage = JSON.stringify({ group: group && { model: group.model, tokens: group.tokens, contextLeftPercent: group.contextLeftPercent }, limits });
    return ok;
  },
  "limits reset": (fe) => {
    const primary = lines.at(-1)?.report.limits.find((l) => l.codexHome === codexHome(fe.release))?.primary;
    const reset = primary?.usedPercent === 0 && Date.parse(primary.resetsAt) <= Date.now();
    if (reset) usageSeen.push(`the 5 h window reset at ${primary.resetsAt}`);
    return reset;
  },
};
const usageSeen = []; // what brenvik-status reported as the fake chose it, for the summary

// The session logs of this run: { file, cwd } once their first line is written.
const logCwds = new Map(); // file -> cwd
function sessionLogs() {
  const sessions = all.map((r) => path.join(codexHome(r), "sessions"));
  for (const f of sessions.flatMap((d) => tryOr(() => fs.readdirSync(d, { recursive: true }).map((name) => path.join(d, name)), []))) {
    const first = f.endsWith(".jsonl") && !logCwds.has(f) && entries(f)[0]; // none while it is still being written
    if (first) logCwds.set(f, first.payload?.cwd);
  }
  return [...logCwds].map(([file, cwd]) => ({ file, cwd }));
}

// A log's entries, each line that is written in full.
const entries = (file) => readOr(file, "").split("\n").flatMap((line) => tryOr(() => [JSON.parse(line)], []));

// Completed turns of a front-end's sessions, from their logs: task_complete events, or
// where the release writes none, each response that answered without calling a tool
// (closed by the token_count that follows it).
function turnsDone(fe) {
  let [n, answered] = [0, false];
  for (const p of sessionLogs().filter((l) => l.cwd === fe.dir).flatMap(({ file }) => entries(file).map((e) => e.payload ?? {}))) {
    if (releases[fe.release].turnEvents) n += p.type === "task_complete" ? 1 : 0;
    else if (p.type === "message" && p.role === "assistant") answered = true;
    else if (p.type === "function_call" || p.type === "user_message") answered = false;
    else if (p.type === "token_count" && answered) { n++; answered = false; }
  }
  return n;
}

// What the logs of this run say, for the timeline: turns and tool calls; and when Codex
// took up each prompt (its user message), for the checks.
const promptTakenAt = new Map(); // prompt text -> time
function logEvents() {
  const byDir = new Map([...frontEnds.values()].map((fe) => [fe.dir, fe.id]));
  const shown = ["task_started", "task_complete", "turn_aborted", "user_message", "function_call", "function_call_output"];
  for (const { file, cwd } of sessionLogs()) {
    for (const { timestamp, payload } of entries(file).filter((e) => shown.includes(e.payload?.type))) {
      if (payload.type === "user_message") promptTakenAt.set(payload.message, Date.parse(timestamp));
      events.push({ t: Date.parse(timestamp), who: "log", text: `${byDir.get(cwd) ?? cwd}: ${payload.type}` });
    }
  }
}

// Waits, at most `seconds`, until `test` holds.
async function until(what, test, seconds) {
  for (const end = Date.now() + seconds * 1000; !(await test()); await sleep(100)) {
    if (Date.now() > end) throw new Error(`gave up after ${seconds} s waiting for ${what}`);
  }
}

// --- the processes of this run ---------------------------------------------------------

// Every process that carries this run's marker, or runs or works inside its folder.
function scan() {
  const pids = fs.readdirSync("/proc").filter((name) => /^\d+$/.test(name)).map(Number).filter((pid) => pid !== process.pid);
  // A zombie shows neither environment nor command line: it is gone already.
  return pids.map(describe).filter((p) => p && p.state !== "Z" && (p.env.BRENVIK_E2E_RUN === runId || p.exe.startsWith(temp) || p.cwd.startsWith(temp)));
}

function describe(pid) {
  const stat = readOr(`/proc/${pid}/stat`, null);
  if (!stat) return null;
  const fields = stat.slice(stat.lastIndexOf(")") + 2).split(" ");
  const argv = readOr(`/proc/${pid}/cmdline`, "").replace(/\0$/, "").split("\0");
  const env = Object.fromEntries(readOr(`/proc/${pid}/environ`, "").split("\0").filter((kv) => kv.startsWith("BRENVIK_E2E_")).map((kv) => kv.split(/=(.*)/s).slice(0, 2)));
  return { pid, ppid: Number(fields[1]), state: fields[0], exe: linkOr(`/proc/${pid}/exe`), cwd: linkOr(`/proc/${pid}/cwd`), argv, cmdline: argv.join(" "), env };
}

const isDaemon = (p) => p.argv[1] === "app-server";
// The shared daemons' PIDs, kept after they exit so that a late refresh still tells them.
const daemons = new Set();

// Which front-end of ours a Brenvik group is, by its project directory and start time.
// Returns a front-end id, "daemon", "run" (ours but no front-end's) or null (not ours).
function attribute(group) {
  if (daemons.has(group.pid)) return "daemon";
  const cwd = group.cwd?.replace(/^~(?=\/|$)/, home);
  if (!cwd?.startsWith(temp + "/")) return null;
  const fe = [...frontEnds.values()].find((f) => cwd === f.dir && (!group.startedAt || Date.parse(group.startedAt) >= f.start - 5000));
  return fe?.id ?? "run";
}

// --- recording -------------------------------------------------------------------------

function record(moment, what) {
  note("driver", `moment ${moment}`);
  if (!opts.record) return;
  const procs = new Map(scan().map((p) => [p.pid, p]));
  // Ancestors up to this driver, so every tree has its root.
  for (let todo = [...procs.values()], p = todo.pop(); p; p = todo.pop()) {
    const parent = p.pid !== process.pid && p.ppid > 1 && !procs.has(p.ppid) && describe(p.ppid);
    if (parent) todo.push(procs.set(parent.pid, parent).get(parent.pid));
  }
  const stable = (s) => s.replaceAll(temp, "/tmp/codex-e2e").replaceAll(prefix, "/opt/codex-npm").replaceAll(sourceDir, "/work/src");
  const rows = [...procs.values()].sort((a, b) => a.pid - b.pid)
    // This driver's own arguments name local paths and say nothing.
    .map((p) => [p.pid, p.ppid, p.state, p.exe, p.cwd, p.pid === process.pid ? p.argv.slice(0, 2).join(" ") : p.cmdline].map((f) => stable(String(f).replace(/[\t\n]/g, " "))).join("\t"));
  fs.mkdirSync(opts.record, { recursive: true });
  fs.writeFileSync(path.join(opts.record, `${moment}.tsv`), `# ${what}\n${rows.join("\n")}\n`);
}

// --- checks ----------------------------------------------------------------------------

const sessionStatus = (groups) => ["running", "waiting"].find((s) => groups.some((g) => g.status === s)) ?? (groups.length ? "idle" : "absent");

// Judges the recorded refreshes; returns the problems and what held, each with the
// number of refreshes it held at.
function check() {
  const [problems, summaries] = [[], []];
  const judge = (name, selected, ok, why) => {
    const bad = selected.filter((l) => !ok(l));
    if (selected.length === 0) problems.push(`${name}: no refresh to judge`);
    else if (bad.length) problems.push(`${name}: failed at ${bad.length} of ${selected.length} refreshes, first at ${rel(bad[0].t)}: ${why(bad[0])}`);
    else summaries.push(`ok  ${name}: at all ${selected.length} refreshes`);
  };
  const ofKind = (l, kind) => l.report.groups.filter((g) => attribute(g) === kind);
  judge("the shared daemon never appears as a session", lines, (l) => ofKind(l, "daemon").length === 0, (l) => describeGroups(ofKind(l, "daemon")));
  judge("every group of this run belongs to a front-end", lines, (l) => ofKind(l, "run").length === 0, (l) => describeGroups(ofKind(l, "run")));

  for (const [id, fe] of frontEnds) {
    const mine = (l) => ofKind(l, id);
    const one = (l) => mine(l).length === 1;
    const judgeMine = (what, selected, ok, why = (l) => describeGroups(mine(l))) => judge(`${fe.name}: ${what}`, selected, ok, why);
    const alive = lines.filter((l) => l.t >= fe.start + REFRESH && l.t <= (fe.exit ?? Infinity) - 500);
    judgeMine("exactly one session while it runs", alive, one, (l) => `${mine(l).length} groups ${describeGroups(mine(l))}`);
    if (fe.exit !== undefined) judgeMine("no session once it has exited", lines.filter((l) => l.t >= fe.exit + 1500), (l) => mine(l).length === 0);
    for (const w of [...fe.windows, ...promptWindows(fe)].sort((a, b) => a.start - b.start)) {
      const rule = windowRules[w.kind];
      const selected = lines.filter((l) => l.t >= w.start + rule.from && l.t <= w.end);
      if (selected.length === 0 && w.end - w.start - rule.from < REFRESH) continue;
      const status = (l) => sessionStatus(mine(l));
      const ok = (l) => (rule.status === "not running" ? status(l) !== "running" : status(l) === rule.status);
      judgeMine(`${rule.status} during ${w.kind} ${rel(w.start)}..${rel(w.end)}`, selected, ok, (l) => `${status(l)} ${describeGroups(mine(l))}`);
    }
    // Once the session's log exists, every release's, the log decides (source "log").
    if (fe.logSeen !== undefined) judgeMine("judged by its log once it exists", alive.filter((l) => l.t >= fe.logSeen + REFRESH && one(l)), (l) => mine(l)[0].source === "log");
    // The TUI runs in pane 0.0 of session "main" of its own tmux server (-L, and a
    // TMUX_TMPDIR that brenvik-status does not share).
    if (fe.tmux) {
      const want = { session: "main", window: 0, pane: 0, socket: path.join(env.TMUX_TMPDIR, `tmux-${process.getuid()}`, fe.tmux) };
      judgeMine("its place names its tmux pane", alive.filter(one), (l) => Object.entries(want).every(([k, v]) => mine(l)[0].place?.tmux?.[k] === v),
        (l) => JSON.stringify(mine(l)[0].place));
    }
  }
  if (usageSeen.length) summaries.push(`ok  usage as the fake reported it: ${usageSeen.join("; ")}`);
  if (desktop) checkNotifications(problems, summaries);
  return { problems, summaries };
}

// The tray app's notices: each codex exec 15 s turn is announced once as finished after
// it ended; each TUI approval question once as waiting, closed once it was approved, and
// nothing else as waiting; a TUI left alone gets none; the second TUI's turn that took
// the 5 h limit to 92 % gets one notice.
function checkNotifications(problems, summaries) {
  const { notices, closedAt } = desktop.record;
  const after = (from, to) => `${((to - from) / 1000).toFixed(1)} s after`;
  const said = [];
  // The one notice of `list` shown within from..to, or none (and a problem).
  const theOne = (who, what, list, from, to = Infinity) => {
    if (list.length === 1 && list[0].t >= from && list[0].t <= to) return list[0];
    problems.push(`${who}: ${list.length} ${what} notices, not one within ${rel(from)}..${to === Infinity ? "" : rel(to)}: ${describeNotices(list)}`);
  };
  for (const fe of frontEnds.values()) {
    const naming = (kind) => notices.filter((n) => n.summary.startsWith(kind) && projectsOf(n).includes(path.basename(fe.dir)));
    const turnEnd = promptWindows(fe).find((w) => w.kind === "turn end")?.start;
    const finished = fe.holdOutput && theOne(fe.name, '"finished"', naming("Codex finished · "), turnEnd);
    if (finished) said.push(`"${finished.summary}" ${after(turnEnd, finished.t)} its turn ended`);
    const [approval, approved] = ["approval", "approved"].map((kind) => fe.windows.find((w) => w.kind === kind));
    const waiting = naming("Codex is waiting for you · ");
    if (!approval && waiting.length) problems.push(`${fe.name}: "waiting" notices, but no approval question: ${describeNotices(waiting)}`);
    // The question shows as soon as the model asks: from the prompt that makes it ask.
    const asked = approved && fe.prompts.find((p) => p.text.includes("[escalate]")).at;
    const shown = approved && theOne(fe.name, '"waiting"', waiting, asked, approval.end);
    const closed = shown && closedAt(shown);
    if (shown && !(closed >= approved.start && closed <= approved.start + 3 * REFRESH)) {
      problems.push(`${fe.name}: the "waiting" notice (id ${shown.id}) closed at ${closed ? rel(closed) : "no time"}, not within 3 refreshes of the approval at ${rel(approved.start)}`);
    } else if (shown) said.push(`"${shown.summary}" ${after(asked, shown.t)} the prompt that asks, closed ${after(approved.start, closed)} the approval`);
    const aboutFresh = fe.windows.some((w) => w.kind === "left alone") && naming("");
    if (aboutFresh?.length) problems.push(`${fe.name}: notices about a TUI left alone: ${describeNotices(aboutFresh)}`);
    else if (aboutFresh) said.push(`none about ${fe.name}`);
  }
  const near = notices.filter((n) => n.summary.startsWith("Codex 5 h limit at "));
  const at92 = near.length === 1 && near[0].summary.startsWith("Codex 5 h limit at 92 % · resets ");
  if (frontEnds.get("tui2") && !at92) problems.push(`limits: ${near.length} "5 h limit" notices, not one at 92 %: ${describeNotices(near)}`);
  else if (frontEnds.get("tui2")) said.push(`"${near[0].summary}"`);
  if (said.length) summaries.push(`ok  notifications: ${said.join("; ")}; ${notices.length} notices in all`);
}

const describeNotices = (notices) => notices.map((n) => `[${rel(n.t)} "${n.summary}" id ${n.id}]`).join(" ") || "none";

const rel = (t) => `+${((t - t0) / 1000).toFixed(1)}s`;
const describeGroups = (groups) => groups.map((g) => `[${attribute(g) ?? "other"} ${g.pid} ${g.status}/${g.source ?? "-"} ${g.cwd ?? "-"} m${g.memberCount}]`).join(" ");

// Everything that happened, the driver's notes, the model's answers, the tray app's
// notices and each refresh of brenvik-status, in time order.
function printTimeline() {
  const rows = [
    ...events,
    ...(model?.requests ?? []).map((r) => ({ t: r.t, who: "model", text: r.followUp ? `#${r.n} ${ownerOf(r)}: tool output back: final answer`
      : r.n ? `#${r.n} ${ownerOf(r)}: ${r.title ? "title request" : JSON.stringify(r.directives)}`
      : `${r.method} ${r.path}${r.refused ? " (outside, refused)" : ""}${r.error ? `: ${r.error}` : ""}` })),
    ...(model?.requests ?? []).filter((r) => r.answeredAt && !r.title).map((r) => ({ t: r.answeredAt, who: "model", text: `#${r.n} answered${r.final ? ": final answer" : ""}` })),
    ...(desktop?.record.notices ?? []).map((n) => ({ t: n.t, who: "notice", text: `"${n.summary}" id ${n.id}${n.replaces ? ` replacing ${n.replaces}` : ""}` })),
    ...(desktop?.record.closes ?? []).map((c) => ({ t: c.t, who: "notice", text: `closed id ${c.id}` })),
    ...lines.map((l) => {
      const ours = describeGroups(l.report.groups.filter((g) => attribute(g) !== null)) || "(none of ours)";
      const others = l.report.groups.filter((g) => attribute(g) === null).map((g) => `${g.pid} ${g.cwd ?? "-"}`);
      return { t: l.t, who: "brenvik", text: `${ours}${others.length ? ` + other: ${others.join(", ")}` : ""}` };
    }),
  ].sort((a, b) => a.t - b.t);
  console.log("timeline (time since start, who, what):");
  for (const r of rows) console.log(`  ${rel(r.t).padStart(7)}  ${r.who.padEnd(16)} ${r.text}`);
}

// --- the end ---------------------------------------------------------------------------

// Ends the run, the first call only; `why` tells what cut it short.
function finish(code, why) {
  if (why) failures.push(why);
  cleaning ??= (async () => {
    clearTimeout(watchdog);
    try { logEvents(); } catch (err) { note("driver", `logs unreadable: ${err.message}`); }
    await cleanUp();
    const { problems, summaries } = check();
    problems.unshift(...failures);
    if (problems.length || opts.timeline) printTimeline();
    if (problems.length) console.log(`real-codex-e2e FAILED after ${((Date.now() - t0) / 1000).toFixed(0)} s:\n${problems.map((p) => `  - ${p}`).join("\n")}`);
    else console.log(summaries.join("\n"));
    process.exit(code ?? (problems.length ? 1 : 0));
  })();
  return cleaning;
}

async function cleanUp() {
  // The daemon's updater keeps its socket under /tmp whatever TMPDIR says; its link
  // may go with the daemon, so read it first.
  const withDaemon = Object.keys(releases).filter((r) => releases[r].daemon && fs.existsSync(codexHome(r)));
  const socks = withDaemon.map((r) => linkOr(path.join(codexHome(r), "app-server-daemon/daemon-updater.sock")));
  for (const fe of frontEnds.values()) if (fe.tmux) spawnSync("tmux", ["-L", fe.tmux, "kill-server"], { env, timeout: 10_000 });
  for (const c of children) if (c !== brenvik) c.kill("SIGTERM");
  // `daemon stop` waits for a turn in progress; the sweep below ends what it leaves.
  for (const r of withDaemon) spawnSync(bin("codex", r), ["app-server", "daemon", "stop"], { env: { ...env, CODEX_HOME: codexHome(r) }, stdio: "ignore", timeout: 5_000 });
  // Whatever is left (`daemon stop` leaves its pid-update-loop running): TERM, then KILL.
  for (const sig of ["SIGTERM", "SIGKILL"]) {
    for (const p of scan()) tryOr(() => process.kill(p.pid, sig));
    await until("the run's processes to end", () => scan().length === 0, 5).catch(() => {});
  }
  const survivors = scan();
  if (survivors.length) failures.push(`processes left behind: ${survivors.map((p) => `${p.pid} ${p.cmdline}`).join("; ")}`);
  brenvik?.kill("SIGTERM");
  await until("brenvik-status to exit", () => !children.has(brenvik), 10).catch(() => brenvik.kill("SIGKILL"));
  await model?.close();
  for (const sock of socks) if (/^\/tmp\/codex-daemon-\d+\/[0-9a-f]+$/.test(sock)) for (const f of [sock, `${sock}.lock`]) fs.rmSync(f, { force: true });
  if (opts.keep) console.log(`kept ${temp}`);
  else fs.rmSync(temp, { recursive: true, force: true });
}

// --- the run (last, so that every declaration above is initialised) ---------------------

let cleaning;
for (const sig of ["SIGINT", "SIGTERM", "SIGHUP"]) process.on(sig, () => finish(130, `interrupted by ${sig}`));
const watchdog = setTimeout(() => finish(1, `the whole run exceeded its cap of ${HARD_CAP_S} s`), HARD_CAP_S * 1000);

try {
  await setUp();
  const only = opts.only?.split(",");
  const chosen = scenarios.filter((s) => !only || only.includes(s.id) || only.includes(s.release));
  // Each release's scenarios one after another, the releases side by side.
  const ended = await Promise.allSettled(all.map(async (r) => { for (const s of chosen.filter((c) => c.release === r)) await runScenario(s); }));
  for (const e of ended) if (e.status === "rejected") failures.push(String(e.reason?.message ?? e.reason));
  // Two more refreshes, so that the last front-end's exit is seen.
  const seen = lines.length;
  await until("two more refreshes", () => lines.length >= seen + 2, 3 * REFRESH / 1000 + 5);
} catch (err) {
  failures.push(String(err.message ?? err));
}
await finish();
