// A scripted stand-in for the model: answers the Responses API on 127.0.0.1 with
// server-sent events, steered by directives in the latest user prompt:
//   [think:S]       keep the stream open S seconds before answering
//   [shell:CMD]     call the shell tool the request offers: exec_command {"cmd": CMD}, or
//                   shell {"command": ["bash", "-lc", CMD]} (releases before ~0.100)
//   [escalate]      ... asking to run it outside the sandbox (the TUI asks for approval)
//   [say:TEXT]      answer TEXT; with [shell], the same response also carries TEXT as a
//                   message before the call
//   [pad:K]         ... followed by K KiB of filler lines
//   [usage:T]       every response of the turn reports T tokens used (else 2)
//   [limits:P/S/R]  ... and the rate-limit headers: the 5 h window P % used, resetting
//                   R s after the turn's first request, the week S %, resetting in 7 days
// Once the tool's output comes back, it answers with a final message. Requests for a
// structured answer (the thread title Codex asks for beside a turn) get one at once.
// It also serves as the HTTP(S) proxy of the run and refuses every tunnel, so that
// nothing Codex fetches on its own (announcements and the like) leaves the machine.
import { once } from "node:events";
import http from "node:http";
import { text as readText } from "node:stream/consumers";

const directivePattern = /\[(think|shell|escalate|say|pad|usage|limits)(?::([^\]]*))?\]/g;
const parseDirectives = (text) => Object.fromEntries([...text.matchAll(directivePattern)].map(([, name, arg]) => [name, arg ?? true]));
const textOf = (item) => (item.content ?? []).map((c) => c.text ?? "").join("\n");
const message = (n, text) => ({ type: "message", role: "assistant", id: `msg_${n}`, content: [{ type: "output_text", text }] });
const sse = (res, type, body) => res.write(`event: ${type}\ndata: ${JSON.stringify({ type, ...body })}\n\n`);

// The items of one response: a message, a tool call, or a message and then a call.
function outputItems(n, { directives: { shell, escalate, say, pad = 0 }, followUp, title, shellTool }) {
  if (title) return [message(n, JSON.stringify({ title: "Test turn" }))];
  if (!followUp && typeof shell === "string") {
    const args = shellTool === "exec_command" ? { cmd: shell, yield_time_ms: 30000 } : { command: ["bash", "-lc", shell], timeout_ms: 60000 };
    if (escalate) Object.assign(args, { sandbox_permissions: "require_escalated", justification: "the test asks for it" });
    const call = { type: "function_call", id: `fc_${n}`, call_id: `call_${n}`, name: shellTool, arguments: JSON.stringify(args) };
    return typeof say === "string" ? [message(n, say), call] : [call];
  }
  const text = followUp ? "The command finished." : typeof say === "string" ? say : "Done.";
  return [message(n, `${text}${"\nfiller: a long answer that fills a pipe, sixty-four bytes a line".repeat(Number(pad) * 16)}`)];
}

// The figures of a turn's responses, fixed at its first request: the usage object of
// response.completed and the rate-limit headers, with what Codex should log of them.
const figuresByPrompt = new Map();
function figuresOf(prompt) {
  const { usage = 2, limits } = parseDirectives(prompt);
  const [primary, secondary, resetIn] = typeof limits === "string" ? limits.split("/").map(Number) : [];
  const now = Math.floor(Date.now() / 1000);
  const windows = primary === undefined ? undefined : {
    primary: { usedPercent: primary, windowMinutes: 300, resetsAt: now + resetIn },
    secondary: { usedPercent: secondary, windowMinutes: 10080, resetsAt: now + 7 * 86400 },
  };
  return {
    usage: { input_tokens: Number(usage) - 1, input_tokens_details: { cached_tokens: 0 }, output_tokens: 1, output_tokens_details: { reasoning_tokens: 0 }, total_tokens: Number(usage) },
    limits: windows,
    headers: Object.fromEntries(Object.entries(windows ?? {}).flatMap(([name, w]) => Object.entries({
      "used-percent": w.usedPercent, "window-minutes": w.windowMinutes, "reset-at": w.resetsAt }).map(([k, v]) => [`x-codex-${name}-${k}`, String(v)]))),
  };
}

// Resolves to { port, requests, close() }; each request is logged in `requests` as it arrives.
export async function startFakeModel() {
  const requests = [];
  let count = 0;
  const server = http.createServer(async (req, res) => {
    const entry = { t: Date.now(), method: req.method, path: req.url.split("?")[0] };
    requests.push(entry);
    try {
      const raw = await readText(req);
      // Models list and the like: an empty answer, so nothing waits on it.
      if (req.method !== "POST" || !entry.path.endsWith("/responses")) {
        return res.writeHead(200, { "content-type": "application/json" }).end(JSON.stringify({ object: "list", data: [], models: [] }));
      }
      // What the model is asked to do: a tool's output to answer, or the newest prompt
      // (`prompt`, the user's text, tells which turn a request belongs to).
      const { input = [], tools = [], text } = JSON.parse(raw);
      const prompt = textOf(input.findLast((i) => i.type === "message" && i.role === "user" && !textOf(i).startsWith("<")) ?? {});
      const followUp = input.at(-1)?.type === "function_call_output";
      const shellTool = tools.some((t) => t.name === "exec_command") ? "exec_command" : "shell";
      const n = ++count;
      Object.assign(entry, { n, title: text?.format?.type === "json_schema", followUp, prompt, directives: followUp ? {} : parseDirectives(prompt), shellTool });
      entry.figures = figuresByPrompt.get(prompt) ?? figuresByPrompt.set(prompt, figuresOf(prompt)).get(prompt);
      res.writeHead(200, { "content-type": "text/event-stream", "cache-control": "no-cache", ...entry.figures.headers });
      sse(res, "response.created", { response: { id: `resp_${n}` } });
      entry.timer = setTimeout(() => {
        const items = outputItems(n, entry);
        entry.answeredAt = Date.now();
        // A response without a tool call that is no title ends the turn.
        entry.final = items.every((i) => i.type === "message") && !entry.title;
        for (const item of items) sse(res, "response.output_item.done", { item });
        sse(res, "response.completed", { response: { id: `resp_${n}`, usage: entry.figures.usage } });
        res.end();
      }, entry.followUp || entry.title ? 0 : Number(entry.directives.think ?? 0) * 1000);
      res.on("close", () => clearTimeout(entry.timer));
    } catch (err) {
      entry.error = String(err);
      res.writeHead(400).end();
    }
  });
  server.on("connect", (req, socket) => {
    requests.push({ t: Date.now(), method: "CONNECT", path: req.url, refused: true });
    socket.end("HTTP/1.1 403 Forbidden\r\n\r\n");
  });
  await once(server.listen(0, "127.0.0.1"), "listening");
  return {
    port: server.address().port,
    requests,
    close() {
      for (const r of requests) clearTimeout(r.timer);
      server.closeAllConnections();
      return new Promise((r) => server.close(r));
    },
  };
}
