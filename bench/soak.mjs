#!/usr/bin/env node
// A long run of the tray app while stand-in Codex sessions come, go and change state.
// Every few seconds one change: a session starts or ends, a session's log opens or ends
// a turn or asks for approval, a session without a log starts or stops burning CPU.
// After each change the app's tool tip (read from its StatusNotifierItem) must show
// the expected counts within a bound and then hold still until the next change.
// Prints the app's RSS growth, the changes expected and seen, and every change the app
// missed or invented. Runs inside a private bus with a tray host (bench/soak.sh).
//
// Usage: node soak.mjs APP FAKE_WATCHER MINUTES
import { spawn, spawnSync } from "node:child_process";
import fs from "node:fs";
import os from "node:os";
import path from "node:path";
import readline from "node:readline";

const [app, fakeWatcher, minutesArg] = process.argv.slice(2);
const minutes = Number(minutesArg ?? 30);
if (!app || !fakeWatcher || !(minutes > 0)) {
  console.error("usage: soak.mjs APP FAKE_WATCHER MINUTES");
  process.exit(2);
}
const sleep = (ms) => new Promise((r) => setTimeout(r, ms));
const t0 = Date.now();
const clock = () => `${((Date.now() - t0) / 1000).toFixed(0).padStart(5)} s`;

// Brenvik passes over command lines that name it: a neutral folder.
const temp = fs.realpathSync(fs.mkdtempSync(path.join(os.tmpdir(), "soak-")));
const home = path.join(temp, "home");
const codex = path.join(temp, "bin/codex"); // bash under Codex's name: its -c takes a value as Codex's does
fs.mkdirSync(path.dirname(codex), { recursive: true });
fs.copyFileSync("/bin/bash", codex);
fs.chmodSync(codex, 0o755);
const sessionsDir = path.join(home, ".codex/sessions/2026/11/24");
fs.mkdirSync(sessionsDir, { recursive: true });

const helpers = new Set();
function start(cmd, args, options = {}) {
  const child = spawn(cmd, args, { detached: true, stdio: "ignore", ...options });
  helpers.add(child);
  child.on("exit", () => helpers.delete(child));
  return child;
}
function endAll() {
  for (const c of helpers) try { process.kill(-c.pid, "SIGKILL"); } catch {}
}
process.on("exit", () => { endAll(); fs.rmSync(temp, { recursive: true, force: true }); });
for (const sig of ["SIGINT", "SIGTERM", "SIGHUP"]) process.on(sig, () => process.exit(130));

// --- the stand-in sessions --------------------------------------------------------------
let serial = 0;
const sessions = []; // { id, kind: "log" | "cpu", state, child, log?, burner? }
const now = () => new Date().toISOString();
const logLine = (s, type, payload) => fs.appendFileSync(s.log, JSON.stringify({ timestamp: now(), type, payload }) + "\n");

function startSession(kind) {
  const id = `p${++serial}`;
  const dir = path.join(home, "src", id);
  fs.mkdirSync(dir, { recursive: true });
  const s = { id, kind, state: "idle", turn: 0 };
  if (kind === "log") {
    // `codex exec` holding its log open, waiting on a pipe that never speaks.
    s.log = path.join(sessionsDir, `rollout-2026-11-24T00-00-00-0000000${serial}-aaaa-7000-8000-00000000000${serial % 10}.jsonl`);
    logLine(s, "session_meta", { id: s.id, cwd: dir, originator: "codex_exec", cli_version: "0.169.0" });
    const fd = fs.openSync(s.log, "r");
    s.child = start(codex, ["-c", "read -r _; :", "exec"], { cwd: dir, stdio: ["pipe", "ignore", "ignore", fd] });
    fs.closeSync(fd);
  } else {
    // A TUI without a log: its CPU use decides. It works (a few percent of a core,
    // as a TUI does during a turn) until stopped.
    s.child = start(codex, ["-c", "while :; do for ((i = 0; i < 3000; i++)); do :; done; sleep 0.05; done"], { cwd: dir });
    s.state = "running";
  }
  sessions.push(s);
  return s;
}

function setState(s, state) {
  if (s.kind === "log") {
    if (state === "running" && s.state === "idle") logLine(s, "event_msg", { type: "task_started", turn_id: String(++s.turn) });
    if (state === "running" && s.state === "waiting") logLine(s, "response_item", { type: "function_call_output", call_id: `call_${s.turn}`, output: "ok" });
    if (state === "waiting") logLine(s, "response_item", { type: "function_call", name: "exec_command", arguments: "{}", call_id: `call_${s.turn}` });
    if (state === "idle") logLine(s, "event_msg", { type: "task_complete", turn_id: String(s.turn), last_agent_message: `turn ${s.turn} done` });
  } else {
    process.kill(-s.child.pid, state === "running" ? "SIGCONT" : "SIGSTOP");
  }
  s.state = state;
}

function endSession(s) {
  try { process.kill(-s.child.pid, "SIGKILL"); } catch {}
  sessions.splice(sessions.indexOf(s), 1);
}

// A repeatable walk: the same changes in the same order on every run.
let seed = 20261124;
const random = (n) => { seed = (seed * 1103515245 + 12345) % 2147483648; return seed % n; };

// One change, and how long the app may take to show it: a turn's events show at the
// next refresh; work seen through CPU shows at once, its end after 8 s of quiet.
function change() {
  const pick = () => sessions[random(sessions.length)];
  const r = random(10);
  if (sessions.length < 2 || (r < 2 && sessions.length < 8)) {
    const s = startSession(random(3) ? "log" : "cpu");
    return { what: `${s.id} starts (${s.kind}, ${s.state})`, bound: 6_000 };
  }
  if (r < 3) {
    const s = pick();
    endSession(s);
    return { what: `${s.id} ends`, bound: 6_000 };
  }
  const s = pick();
  const next = s.kind === "cpu" ? (s.state === "running" ? "idle" : "running")
    : { idle: "running", running: random(3) ? "idle" : "waiting", waiting: "running" }[s.state];
  const was = s.state;
  setState(s, next);
  return { what: `${s.id} ${was} -> ${next}`, bound: s.kind === "cpu" && next === "idle" ? 14_000 : 6_000 };
}

const expected = () => {
  const n = { total: sessions.length, running: 0, waiting: 0, idle: 0 };
  for (const s of sessions) n[s.state]++;
  return n;
};
const key = (n) => (n ? `${n.total} total, ${n.running} running, ${n.waiting} waiting, ${n.idle} idle` : "unreadable");

// --- the app and what it shows ----------------------------------------------------------
const watcher = start(fakeWatcher, [], { stdio: ["ignore", "pipe", "ignore"] });
const registered = new Promise((resolve) =>
  readline.createInterface({ input: watcher.stdout }).on("line", (l) => l.startsWith("registered ") && resolve(l.slice(11))));
const brenvik = start(app, ["--autostart"], { env: { ...process.env, HOME: home } });
const item = await Promise.race([registered, sleep(60_000).then(() => null)]);
if (!item) { console.error("soak: the app registered no tray item within 60 s"); process.exit(1); }

// The counts in the tool tip: "3 total · 1 running · 2 idle", "2 Codex processes idle",
// "1 Codex process waiting in p3", "No Codex CLI process detected".
function shown() {
  const r = spawnSync("dbus-send", ["--session", "--print-reply", `--dest=${item}`, "/StatusNotifierItem",
    "org.freedesktop.DBus.Properties.Get", "string:org.kde.StatusNotifierItem", "string:ToolTip"], { encoding: "utf8", timeout: 5_000 });
  const text = [...(r.stdout ?? "").matchAll(/string "([^"]*)"/g)].map((m) => m[1]).find((t) => /Codex|total/.test(t));
  if (text === undefined) return null;
  const n = { total: 0, running: 0, waiting: 0, idle: 0 };
  if (/^No Codex CLI process/.test(text)) return n;
  const sole = /^(\d+) Codex process(?:es)? (running|waiting|idle)/.exec(text);
  if (sole) return { ...n, total: Number(sole[1]), [sole[2]]: Number(sole[1]) };
  for (const [, count, what] of text.matchAll(/(\d+) (total|running|waiting|idle)/g)) n[what] = Number(count);
  return n;
}
const rss = () => Number(/VmRSS:\s+(\d+)/.exec(fs.readFileSync(`/proc/${brenvik.pid}/status`, "utf8"))?.[1] ?? 0);

// --- the run ----------------------------------------------------------------------------
console.log(`soak: ${minutes} min of changes beside the tray app (PID ${brenvik.pid}), tool tip read from ${item}`);
await sleep(20_000); // start-up settles before the memory baseline
const rssStart = rss();
let rssMax = rssStart;
const problems = [];
let changes = 0, seen = 0, slowest = 0;
const end = t0 + minutes * 60_000;
// Caches and allocator pools fill during the first minutes; a leak keeps growing after.
const warmAt = t0 + Math.min(5 * 60_000, (minutes * 60_000) / 3);
let rssWarm;
while (Date.now() < end) {
  if (rssWarm === undefined && Date.now() >= warmAt) rssWarm = rss();
  const { what, bound } = change();
  changes++;
  const want = key(expected());
  const from = Date.now();
  let got = key(shown());
  while (got !== want && Date.now() - from < bound) {
    await sleep(250);
    got = key(shown());
  }
  if (got === want) {
    seen++;
    slowest = Math.max(slowest, Date.now() - from);
  } else {
    problems.push(`${clock()} missed: after "${what}" the app shows ${got}, not ${want}`);
  }
  // Then it holds still until the next change.
  const hold = Date.now() + 2_000 + random(3_000);
  while (Date.now() < hold) {
    await sleep(500);
    const now = key(shown());
    if (now !== want && got === want) {
      problems.push(`${clock()} invented: with nothing changed since "${what}" the app shows ${now}, not ${want}`);
      got = now;
    }
  }
  rssMax = Math.max(rssMax, rss());
  if (changes % 20 === 0) console.log(`${clock()}  ${changes} changes, RSS ${(rss() / 1024).toFixed(1)} MiB`);
  if (brenvik.exitCode !== null) { problems.push(`${clock()} the app exited (${brenvik.exitCode})`); break; }
}
const rssEnd = rss();
rssWarm ??= rssEnd;
const mib = (kib) => `${(kib / 1024).toFixed(1)} MiB`;
console.log(`\nRSS: ${mib(rssStart)} after start-up, ${mib(rssWarm)} at ${((warmAt - t0) / 60_000).toFixed(1)} min, ` +
  `${mib(rssEnd)} at the end, ${mib(rssMax)} at most; growth ${((rssEnd - rssStart) / 1024).toFixed(2)} MiB in all, ` +
  `${((rssEnd - rssWarm) / 1024).toFixed(2)} MiB after the first minutes (goal < 2 MB)`);
console.log(`state changes: ${changes} expected, ${seen} seen in time (slowest ${(slowest / 1000).toFixed(1)} s), ` +
  `${changes - seen} missed, ${problems.filter((p) => p.includes("invented")).length} invented`);
for (const p of problems) console.log(`  ${p}`);
process.exit(problems.length ? 1 : 0);
