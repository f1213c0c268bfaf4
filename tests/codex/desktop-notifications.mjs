// The tray app `brenvik --autostart` beside a real notification server (dunst on Xvfb),
// all on a private session bus of their own, with dbus-monitor recording what Brenvik
// asks of the server: each Notify (its summary and the id the server gave it) and each
// CloseNotification.
import { spawn, spawnSync } from "node:child_process";
import fs from "node:fs";
import path from "node:path";
import readline from "node:readline";

const notificationsInterface = "org.freedesktop.Notifications";
const header = /^(method call|method return|signal|error) time=([\d.]+) sender=(\S+) -> destination=(.*?) serial=(\d+)(?: reply_serial=(\d+))?(?: path=[^;]*; interface=([^;]*); member=(\S+))?/;

// Starts the bus, Xvfb, dunst, the recorder and Brenvik; `track` gets every process
// started, so the caller ends them. Resolves once Brenvik owns its name on the bus.
export async function startDesktop({ app, dir, home, track, note, until }) {
  for (const d of ["runtime", "config", "bus"]) fs.mkdirSync(path.join(dir, d), { recursive: true, mode: 0o700 });
  // Neither the caller's session bus nor its Wayland display.
  const { DBUS_SESSION_BUS_ADDRESS, WAYLAND_DISPLAY, ...outer } = process.env;
  const env = { ...outer, HOME: home, XDG_RUNTIME_DIR: path.join(dir, "runtime"), XDG_CONFIG_HOME: path.join(dir, "config") };

  const bus = track(spawn("dbus-daemon", ["--session", "--nofork", `--address=unix:path=${path.join(dir, "bus/socket")}`, "--print-address=1"],
    { env, stdio: ["ignore", "pipe", "inherit"] }));
  env.DBUS_SESSION_BUS_ADDRESS = await firstLine(bus.stdout, "dbus-daemon's address", until);

  const xvfb = track(spawn("Xvfb", ["-displayfd", "3", "-screen", "0", "1024x700x24", "-nolisten", "tcp"],
    { env, stdio: ["ignore", "ignore", "ignore", "pipe"] }));
  env.DISPLAY = `:${await firstLine(xvfb.stdio[3], "Xvfb's display", until)}`;

  // Notices stay until Brenvik closes them: nothing expires on its own here.
  const dunstrc = path.join(dir, "dunstrc");
  fs.writeFileSync(dunstrc, "[global]\n    idle_threshold = 0\n[urgency_low]\n    timeout = 0\n[urgency_normal]\n    timeout = 0\n[urgency_critical]\n    timeout = 0\n");
  track(spawn("dunst", ["-config", dunstrc], { env, stdio: "ignore" }));

  const record = new Recorder();
  const monitor = track(spawn("dbus-monitor", ["--session", `interface='${notificationsInterface}'`, "type='method_return'"],
    { env, stdio: ["ignore", "pipe", "ignore"] }));
  readline.createInterface({ input: monitor.stdout }).on("line", (l) => record.line(l));
  await until("dunst on the private bus", () => hasOwner(env, notificationsInterface), 20);

  track(spawn(app, ["--autostart"], { env: { ...env, QT_QPA_PLATFORM: "offscreen" }, stdio: ["ignore", "ignore", "pipe"] }));
  await until("brenvik on the private bus", () => hasOwner(env, "io.github.brenvik.Brenvik"), 60);
  note("driver", `brenvik --autostart up beside dunst on ${env.DISPLAY}`);
  return { record };
}

async function firstLine(stream, what, until) {
  let text = "";
  stream.on("data", (d) => (text += d));
  await until(what, () => text.includes("\n"), 20);
  return text.slice(0, text.indexOf("\n")).trim();
}

function hasOwner(env, name) {
  const r = spawnSync("dbus-send", ["--session", "--print-reply", "--dest=org.freedesktop.DBus", "/org/freedesktop/DBus",
    "org.freedesktop.DBus.NameHasOwner", `string:${name}`], { env, encoding: "utf8", timeout: 5_000 });
  return /boolean true/.test(r.stdout ?? "");
}

// What dbus-monitor printed, as notices: { t, summary, replaces, id, closedAt }.
class Recorder {
  notices = [];
  closes = []; // { t, id }
  #pending = new Map(); // sender/serial of a Notify -> notice
  #block = null;

  line(l) {
    const h = header.exec(l);
    if (h) {
      this.flush();
      const [, kind, time, sender, destination, serial, replySerial, iface, member] = h;
      this.#block = { kind, t: Number(time) * 1000, sender, destination, serial, replySerial, iface, member, args: [] };
      return;
    }
    // Top-level arguments only: nested ones are indented further.
    const arg = /^ {3}(string|uint32|int32) (.*)$/.exec(l);
    if (arg && this.#block) this.#block.args.push({ type: arg[1], value: arg[2] });
  }

  // Takes in the message read last: everything up to now is then recorded.
  flush() {
    const b = this.#block;
    this.#block = null;
    if (!b) return;
    if (b.kind === "method call" && b.iface === notificationsInterface && b.member === "Notify") {
      const strings = b.args.filter((a) => a.type === "string").map((a) => a.value.replace(/^"|"$/g, ""));
      const notice = { t: b.t, summary: strings[2] ?? "", replaces: Number(b.args.find((a) => a.type === "uint32")?.value ?? 0) };
      this.notices.push(notice);
      this.#pending.set(`${b.sender}/${b.serial}`, notice);
    } else if (b.kind === "method call" && b.iface === notificationsInterface && b.member === "CloseNotification") {
      this.closes.push({ t: b.t, id: Number(b.args[0]?.value) });
    } else if (b.kind === "method return") {
      const notice = this.#pending.get(`${b.destination}/${b.replySerial}`);
      if (notice && b.args[0]?.type === "uint32") notice.id = Number(b.args[0].value);
    }
  }

  // When Brenvik closed NOTICE (undefined: it did not).
  closedAt(notice) {
    return this.closes.find((c) => c.id === notice.id && c.t >= notice.t)?.t;
  }
}

// The projects a notice names, from "Codex finished · A, B".
export const projectsOf = (notice) => notice.summary.replace(/^.*? · /, "").split(", ");
