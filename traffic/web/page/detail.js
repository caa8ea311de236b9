// What is known about one message: its facts, and both bodies side by side.
"use strict";

class Detail {
  // `view` has filterBy(text), showLadder(row) and notice(text).
  constructor(view, store, panel) { Object.assign(this, {view, store, panel}); }

  show(row) {
    if (!row) {
      this.panel.replaceChildren(element(
          "p", {className: "hint"}, "Select a message to see its bodies. ", key("↓"), " and ", key("↑"), " move, ",
          key("/"), " filters, ", key("?"), " lists all keys."));
      return;
    }
    const record = parseExactly(row.line);
    this.panel.replaceChildren(this.facts(row, record), ...this.bodies(row, record));
  }

  facts(row, record) {
    const line = commandLine(record, this.store.protocol);
    const copy =
        element("button", {id: "copy", disabled: !line, title: "c", onclick: () => this.copy(line)}, "Copy command");
    const buttons = element(
        "div", {className: "buttons"}, copy,
        element("button", {onclick: () => this.view.showLadder(row), title: "l"}, "Ladder around it"),
        element("button", {onclick: () => this.copy(row.line)}, "Copy record"));
    return element(
        "div", {className: "facts"},
        element("h2", {}, signOf(row), " ", row.family, row.operation ? "." : "", row.operation || row.kind),
        element("p", {className: "doc"}, this.store.protocol.definition(record)?.doc ?? ""), buttons,
        element("code", {id: "command", className: "command"}, line || "No command sends this message."),
        factList(this.view, row, record));
  }

  bodies(row, record) {
    if (record.kind !== "exchange" && record.kind !== "damaged") return [];
    const request = this.body(record.event ? "event" : "request", record.message);
    if (!record.reply)
      return [
        request,
        element(
            "div", {className: "body"}, element("h3", {}, "reply"),
            element("p", {className: "hint"}, resultText(row, record, this.store)))
      ];
    return [request, this.body("reply", record.reply)];
  }

  body(title, message = {}) {
    const readable = message.json !== undefined && message.json !== null;
    const content = readable ? printJson(message.json, "", (value) => this.handle(value)) :
                               [message.base64 ? hexDump(message.base64) : "no bytes"];
    return element(
        "div", {className: "body"},
        element(
            "h3", {}, title, " ",
            element("small", {}, `${sizeText(message.size ?? 0)}, type ${message.type}, port ${message.port}`)),
        element("pre", {tabIndex: 0}, ...content));
  }

  // A handle is a button that shows all messages with it.
  handle(text) {
    const name = this.store.names.of(handleOf(text));
    const button = element(
        "button", {
          className: "handle",
          title: "Show all messages with this handle",
          onclick: () => this.view.filterBy(`handle:${text}`)
        },
        JSON.stringify(text));
    return name ? [button, element("span", {className: "name"}, ` ${name}`)] : [button];
  }

  async copy(text) {
    try {
      await navigator.clipboard.writeText(text);
    } catch {
      copyBySelection(text);  // a page without the permission
    }
    this.view.notice("Copied");
  }
}

function key(name) { return element("kbd", {}, name); }

function factList(view, row, record) {
  const peer = (one) => (one ? `${one.name || "process"} (${one.pid}), user ${one.uid}` : "unknown");
  const facts = [
    ["time", `${dateText(row.wall, view.zone)} ${view.clock(row)} ${view.zoneName}`],
    ["monotonic", `${(row.monotonic / 1e6).toFixed(6)} s`],
    ["duration",
     row.duration >= 0 ? durationText(row.duration) :
         row.open      ? "open" :
                         "none"],
    ["status", row.status ?? "none"],
    ["code", record.code ?? "none"],
    ["connection", row.connection || "none"],
    ["socket", record.socket || "none"],
    ["library", peer(record.library)],
    ["platform", peer(record.platform)],
    ["rule", record.rule],
    ["note", record.note],
  ];
  return element(
      "dl", {},
      ...facts.filter(([, value]) => value !== undefined)
          .flatMap(([name, value]) => [element("dt", {}, name), element("dd", {}, String(value))]));
}

function copyBySelection(text) {
  const area = element("textarea", {value: text});
  document.body.append(area);
  area.select();
  document.execCommand("copy");
  area.remove();
}

// Returns the nodes of a document on several lines. `handle` returns the nodes of a string that is a handle.
function printJson(value, indent, handle) {
  const inner = indent + "  ";
  const list = (open, items, close) => items.length === 0 ? [open + close] : [
    open, ...items.flatMap((nodes, index) => ["\n" + inner, ...nodes, index < items.length - 1 ? "," : ""]),
    "\n" + indent, close
  ];
  if (Array.isArray(value)) return list("[", value.map((item) => printJson(item, inner, handle)), "]");
  if (value !== null && typeof value === "object") {
    return list(
        "{",
        Object.entries(value).map(
            ([
              name, item
            ]) => [element("span", {className: "key"}, JSON.stringify(name)), ": ", ...printJson(item, inner, handle)]),
        "}");
  }
  if (handleOf(value)) return handle(value);
  return [element("span", {className: typeof value === "bigint" ? "number" : typeof value}, exactText(value))];
}
