// The television as the traffic shows it: channel, tabs, applications, preferences. A live page also asks the platform,
// and commands a simulator.
"use strict";

const PLAY_STATES = ["unrealized", "connecting", "presenting", "stopped"];

class Television {
  constructor() {
    this.channel = "";  // handle
    this.playState = null;
    this.tabs = new Map();  // url, title, shown
    this.applications = new Map();
    this.preferences = new Map();
    this.device = new Map();
  }

  learn(record) {
    if (record.kind !== "exchange") return;
    const learner = LEARNERS[record.family];
    const request = record.message?.json;
    const reply = record.status === undefined || record.status === 0 || record.event ? record.reply?.json : null;
    if (learner && request !== null && typeof request === "object") learner(this, record, request, reply ?? null);
  }

  tab(id, facts) {
    if (typeof id !== "number") return;
    this.tabs.set(id, {...this.tabs.get(id), ...facts});
  }
}

const LEARNERS = {
  video_broadcast(television, record, request) {
    if (!record.event) return;
    if (record.operation === "TOLM_VB_EVENT_CHANNEL_CHANGED") television.channel = handleOf(request.channelHandle);
    if (record.operation === "TOLM_VB_EVENT_PLAY_STATE") television.playState = request.state;
  },
  channel_config(television, record, request, reply) {
    if (record.operation === "GetCurrentChannel" && reply) television.channel = handleOf(reply.handle);
  },
  mtm(television, record, request, reply) {
    const change = TAB_CHANGES[record.operation];
    if (change) change(television, request, reply);
  },
  application_manager(television, record, request, reply) {
    const known = {...request, ...reply};
    if (typeof known.appid !== "number" || known.appid < 0) return;
    const name = `${known.orgid?.toString(16) ?? "?"}.${known.appid.toString(16)}`;
    if (/^Destroy/.test(record.operation))
      television.applications.delete(name);
    else
      television.applications.set(name, record.operation);
  },
  configuration(television, record, request, reply) {
    const members = record.event || /^Set/.test(record.operation) ? request : reply;
    remember(television.preferences, members, record);
  },
  local_system(television, record, request, reply) { remember(television.device, reply, record); },
};

const TAB_CHANGES = {
  CreateApp: (television, {url}, reply) => television.tab(reply?.tabid, {url, shown: true}),
  LoadURLInTab: (television, {tabid, url}) => television.tab(tabid, {url}),
  ShowHideTab: (television, {tabid, showHide}) => television.tab(tabid, {shown: showHide}),
  SetAppConfig: (television, {tabid, isBR}) => television.tab(tabid, {broadcast: isBR}),
  OnTabTitleChanged: (television, {tabid, title}) => television.tab(tabid, {title}),
  OnTabLoadFinished: (television, {tabid, url}) => television.tab(tabid, {url}),
  OnTabShow: (television, {tabid}) => television.tab(tabid, {shown: true}),
  OnTabHide: (television, {tabid}) => television.tab(tabid, {shown: false}),
  DestroyApp: (television, {tabid}) => television.tabs.delete(tabid),
  OnTabDestroyed: (television, {tabid}) => television.tabs.delete(tabid),
  DestroyAllApps: (television) => television.tabs.clear(),
  OnAllTabsDestroyed: (television) => television.tabs.clear(),
};

const ENVELOPE = new Set(["type", "method", "event", "ret", "context", "t"]);

// Named by the operation: "GetCountryId" returns the country id.
function remember(facts, members, record) {
  if (!members) return;
  const subject = record.operation.replace(/^(Get|Set)/, "")
                      .replace(/([a-z])([A-Z])|([A-Z])(?=[A-Z][a-z])/g, "$1$3 $2")
                      .replace(/^Preferred /, "")
                      .toLowerCase();
  const values = Object.entries(members).filter(([name]) => !ENVELOPE.has(name));
  if (values.length === 1)
    facts.set(subject, values[0][1]);
  else
    values.forEach(([name, value]) => facts.set(`${subject} ${name}`, value));
}

// What the platform is asked when the view is opened: it changes nothing.
const QUESTIONS = [
  "channel_config.GetCurrentChannel", "configuration.GetPreferredAudioLanguage",
  "configuration.GetPreferredSubtitleLanguage", "configuration.GetPreferredUILanguage", "configuration.GetCountryId",
  "configuration.GetSubtitleEnable", "configuration.GetAudioDescriptionEnable", "configuration.GetRatingAge",
  "configuration.GetDNTPolicy", "application_manager.GetCurrentApp", "local_system.GetVendorName",
  "local_system.GetModelName", "local_system.GetSoftwareVersion", "local_system.GetPvrEnabled",
  "local_system.GetCiplusEnabled"
];

const REMOTE = [
  ["zap previous", "CH −"], ["key UP", "▲"], ["zap next", "CH +"], ["key LEFT", "◀"], ["key ENTER", "OK"],
  ["key RIGHT", "▶"], ["key BACK", "BACK"], ["key DOWN", "▼"], ["key TELETEXT", "TEXT"], ["key RED", " ", "red"],
  ["key GREEN", " ", "green"], ["key YELLOW", " ", "yellow"], ["key BLUE", " ", "blue"],
  ...["1", "2", "3", "4", "5", "6", "7", "8", "9"].map((digit) => [`key ${digit}`, digit]), ["key PLAY_PAUSE", "PLAY"],
  ["key 0", "0"], ["key STOP", "STOP"]
];

class TelevisionView {
  // `source` asks and commands; it has neither in a file.
  constructor(view, store, source, panel) {
    Object.assign(this, {view, store, source, panel, asked: null, simulator: null, answers: []});
    this.facts = element("div", {className: "cards"});
    this.remote = element("div", {className: "remote-side"});
    panel.replaceChildren(this.facts, this.remote);
    if (source.live) this.makeRemote();
  }

  // Called when the view is opened.
  open() {
    this.draw();
    if (this.source.live) this.ask();
  }

  async ask() {
    if (this.asking) return;
    this.asking = true;
    this.problem = "";
    for (const question of QUESTIONS) await this.askOne(question);
    this.asking = false;
    this.draw();
  }

  async askOne(question, members = {}) {
    const answer = await this.source.ask(question, members);
    if (answer.problem)
      this.problem ||= answer.problem;
    else
      this.answered(question, members, answer.reply);
  }

  // Once for each channel.
  async askName() {
    const handle = this.store.television.channel;
    if (!handle || this.named === handle || this.store.names.of(handle)) return;
    this.named = handle;
    await this.askOne("channel.GetName", {c_handle: handle});
    this.draw();
  }

  // An answer teaches what a message of the traffic would.
  answered(question, members, reply) {
    const [family, operation] = question.split(".");
    const record = {
      kind: "exchange",
      family,
      operation,
      event: false,
      status: reply?.ret ?? null,
      message: {json: members},
      reply: {json: reply}
    };
    this.store.names.learn(record);
    this.store.television.learn(record);
  }

  draw() {
    const {television, names} = this.store;
    const name = names.of(television.channel);
    if (this.source.live) this.askName();
    const channel = element(
        "div", {className: "card wide"}, element("h3", {}, "Channel"),
        element("p", {className: "channel"}, television.channel ? name || handleText(television.channel) : "unknown"),
        element(
            "p", {className: "hint"},
            [name && handleText(television.channel), PLAY_STATES[television.playState]].filter(Boolean).join(", ")),
        ...(this.source.live ? [element("button", {id: "ask", onclick: () => this.ask()}, "Ask the platform again")] :
                               []),
        ...(this.problem ? [element("p", {className: "very-slow"}, this.problem)] : []));
    const tabs = [...television.tabs].map(
        ([id, tab]) => [`tab ${id}`, [
          tab.title, tab.url, tab.shown === false ? "hidden" : "shown", tab.broadcast ? "broadcast-related" : ""
        ].filter(Boolean).join(", ")]);
    const applications = [...television.applications].map(([id, last]) => [id, `last message: ${last}`]);
    this.facts.replaceChildren(
        channel, card("Tabs", tabs), card("Applications", applications),
        card("Preferences", [...television.preferences]), card("Device", [...television.device]));
  }

  makeRemote() {
    const keys = REMOTE.map(
        ([command, label, className = ""]) => element(
            "button", {className, title: command, ariaLabel: command, onclick: () => this.command(command)}, label));
    this.line = element("input", {
      id: "command-line",
      spellcheck: false,
      placeholder: "simulator command: help",
      ariaLabel: "Simulator command"
    });
    this.answerList = element("ol", {id: "answers", reversed: true});
    const form = element("form", {onsubmit: (event) => this.typed(event)}, this.line, element("button", {}, "Send"));
    this.remote.append(element("div", {className: "remote", id: "remote"}, ...keys), form, this.answerList);
    this.remote.hidden = !this.source.simulator;
  }

  typed(event) {
    event.preventDefault();
    const command = this.line.value.trim();
    this.line.value = "";
    if (command) this.command(command);
  }

  async command(command) {
    const {answer, problem} = await this.source.command(command);
    this.answerList.prepend(element(
        "li", {className: problem || /^error/.test(answer) ? "error" : ""}, element("code", {}, command), " ",
        problem || answer));
    while (this.answerList.children.length > 30) this.answerList.lastChild.remove();
    // Without an object that presents it, no event reports another channel.
    await this.askOne("channel_config.GetCurrentChannel");
    this.draw();
  }
}

function card(title, facts) {
  const list = facts.flatMap(
      ([name, value]) =>
          [element("dt", {}, name),
           element("dd", {}, typeof value === "string" ? value || "(empty)" : JSON.stringify(value))]);
  return element(
      "div", {className: "card"}, element("h3", {}, title),
      facts.length > 0 ? element("dl", {}, ...list) :
                         element("p", {className: "hint"}, "The traffic has not shown any."));
}
