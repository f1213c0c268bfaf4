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

  const address = `unix:path=${path.join(dir, "bus/socket")}`;
  track(spawn("dbus-daemon", ["--session", "--nofork", `--address=${address}`], { env, stdio: ["ignore", "ignore", "inherit"] }));
  env.DBUS_SESSION_BUS_ADDRESS = address;
  await until("the private bus", () => hasOwner(env, "org.freedesktop.DBus"), 20);

  // Xvfb picks a free display and writes its number to fd 3.
  const xvfb = track(spawn("Xvfb", ["-displayfd", "3", "-screen", "0", "1024x700x24", "-nolisten", "tcp", "-noreset"], { env, stdio: ["ignore", "ignore", "ignore", "pipe"] }));
  let display = "";
  xvfb.stdio[3].on("data", (d) => (display += d));
  await until("Xvfb's display", () => display.includes("\n"), 20);
  env.DISPLAY = `:${display.trim()}`;

  // Notices stay until Brenvik closes them: nothing expires on its own here.
  const dunstrc = path.join(dir, "dunstrc");
  fs.writeFileSync(dunstrc, "[global]\n    idle_threshold = 0\n[urgency_low]\n    timeout = 0\n[urgency_normal]\n    timeout = 0\n[urgency_critical]\n    timeout = 0\n");
  track(spawn("dunst", ["-config", dunstrc], { env, stdio: "ignore" }));

  const record = recorder();
  const monitor = track(spawn("dbus-monitor", ["--session", `interface='${notificationsInterface}'`, "type='method_return'"], { env, stdio: ["ignore", "pipe", "ignore"] }));
  readline.createInterface({ input: monitor.stdout }).on("line", (l) => record.line(l));
  await until("dunst on the private bus", () => hasOwner(env, notificationsInterface), 20);

  track(spawn(app, ["--autostart"], { env: { ...env, QT_QPA_PLATFORM: "offscreen" }, stdio: ["ignore", "ignore", "pipe"] }));
  await until("brenvik on the private bus", () => hasOwner(env, "io.github.brenvik.Brenvik"), 60);
  note("driver", `brenvik --autostart up beside dunst on ${env.DISPLAY}`);
  return { record };
}

const hasOwner = (env, name) => /boolean true/.test(spawnSync("dbus-send", ["--session", "--print-reply", "--dest=org.freedesktop.DBus", "/org/freedesktop/DBus",
  "org.freedesktop.DBus.NameHasOwner", `string:${name}`], { env, encoding: "utf8", timeout: 5_000 }).stdout ?? "");

// What dbus-monitor prints, as notices { t, summary, replaces, id } and closes { t, id },
// and when Brenvik closed a notice (undefined: it did not).
function recorder() {
  const record = { notices: [], closes: [], closedAt: (n) => record.closes.find((c) => c.id === n.id && c.t >= n.t)?.t };
  const pending = new Map(); // sender/serial of a Notify -> notice
  let message = null; // the message being read, with its top-level arguments so far
  record.line = (l) => {
    const h = header.exec(l);
    if (h) {
      const [, kind, time, sender, destination, serial, replySerial, iface, member] = h;
      const call = kind === "method call" && iface === notificationsInterface ? member : "";
      message = { t: Number(time) * 1000, args: [], close: call === "CloseNotification", reply: kind === "method return" && pending.get(`${destination}/${replySerial}`) };
      if (call === "Notify") {
        message.notice = { t: message.t, summary: "", replaces: 0 };
        record.notices.push(message.notice);
        pending.set(`${sender}/${serial}`, message.notice);
      }
      return;
    }
    // Top-level arguments only: nested ones are indented further.
    const arg = /^ {3}(string|uint32) "?(.*?)"?$/.exec(l);
    if (!arg || !message) return;
    message.args.push({ type: arg[1], value: arg[2] });
    // Notify(app_name, replaces_id, app_icon, summary, ...); its return and CloseNotification carry an id.
    const [strings, ids] = ["string", "uint32"].map((type) => message.args.filter((a) => a.type === type).map((a) => a.value));
    if (message.notice) Object.assign(message.notice, { summary: strings[2] ?? "", replaces: Number(ids[0] ?? 0) });
    else if (message.reply && ids.length) message.reply.id = Number(ids[0]);
    else if (message.close && ids.length === 1) record.closes.push({ t: message.t, id: Number(ids[0]) });
  };
  return record;
}

// The projects a notice names, from "Codex finished · A, B".
export const projectsOf = (notice) => notice.summary.replace(/^.*? · /, "").split(", ");
