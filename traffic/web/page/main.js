// Connects the parts of the page: filter, views, keys, theme.
"use strict";

const PRESETS = [
  ["All", ""],
  ["Errors", "error"],
  ["Slow", "ms>100"],
  ["Open", "open"],
  ["Events", "event"],
  ["Channel changes", "op:SetChannel | op:TOLM_VB_EVENT_CHANNEL* | op:TOLM_VB_EVENT_PLAY_STATE"],
  ["Applications", "family:application_manager | family:mtm"],
  ["Connections", "kind:connected | kind:closed"],
  ["Without pings", "!op:Ping"],
  ["Without hbbtvctl", "!process:hbbtvctl"],
];

const VIEWS = ["rows", "ladder", "statistics", "television"];
const THEMES = ["light dark", "light", "dark"];

class Page {
  constructor(settings) {
    this.store = new Store(new Protocol(settings.protocol));
    this.source = settings.live ? new LiveSource(settings) : new FileSource();
    this.view = new View(this.store, settings, settings.live);
    this.settings = settings;
    this.view.onChange = () => this.changed();
    this.parts();
    this.controls();
    document.addEventListener("keydown", (event) => this.keyPressed(event));
    this.show("rows");
    this.detail.show(null);
  }

  parts() {
    const {view, store} = this;
    Object.assign(view, {
      select: (index) => this.select(view.row(index)),
      selectRow: (row) => this.select(row),
      show: (name) => this.show(name),
      go: (row) => (this.show("rows"), this.select(row)),
      filterBy: (text) => this.filterBy(text),
      notice: (text) => this.notice(text),
      showLadder: (row) => (this.select(row), this.show("ladder")),
      setSpan: (span) => this.setSpan(span),
    });
    this.list = new RowList(view, store, byId("rows"), byId("row-space"), byId("row-head"));
    this.detail = new Detail(view, store, byId("detail"));
    this.timeline = new Timeline(view, byId("timeline"));
    this.ladder = new Ladder(view, store, byId("view-ladder"));
    this.statistics = new Statistics(view, store, byId("view-statistics"));
    this.television = new TelevisionView(view, store, this.source, byId("view-television"));
  }

  controls() {
    const {head} = this.settings;
    byId("origin").textContent = [head.directory, head.program].filter(Boolean).join(", ");
    document.title = `HbbTV traffic ${head.directory ?? ""}`.trim();
    this.presets = PRESETS.map(
        ([name, text]) =>
            element("button", {type: "button", title: text || "everything", onclick: () => this.filterBy(text)}, name));
    byId("presets").append(...this.presets);
    this.markPreset("");
    byId("filter").addEventListener("input", () => this.filterTyped());
    byId("filter-form").addEventListener("submit", (event) => (event.preventDefault(), byId("rows").focus()));
    byId("span").addEventListener("click", () => this.setSpan(null));
    byId("pause").hidden = !this.settings.live;
    byId("pause").addEventListener("click", () => this.pause());
    byId("theme").addEventListener("click", () => this.nextTheme());
    byId("help").addEventListener("click", () => this.showKeys());
    document.querySelectorAll("[role=tab]")
        .forEach((tab) => tab.addEventListener("click", () => this.show(tab.dataset.view)));
    makeSplitter(byId("splitter"), byId("detail"));
  }

  async read() {
    const onLine = (line) => this.store.add(line);
    await this.source.read(onLine, () => this.added(), (state) => this.reported(state));
    if (!this.settings.live) this.loaded = true;
    this.added();
    await this.view.restart();
  }

  // Records were added.
  added() {
    const dropped = this.store.trim();
    if (dropped > 0) this.view.dropped(dropped);
    if (this.view.takeAdded()) this.again ??= setTimeout(() => (this.again = null, this.added()));
    this.changed();
  }

  // What is shown has changed. The views that count everything are drawn less often.
  changed() {
    this.list.update();
    this.drawState();
    this.drawing ??= setTimeout(() => {
      this.drawing = null;
      this.timeline.draw();
      if (this.shownView === "statistics") this.statistics.draw();
      if (this.shownView === "television") this.television.draw();
    }, 250);
  }

  drawState() {
    const total = this.store.rows.length;
    const shown = this.view.rowCount();
    const parts = [shown === total ? counted(total, "record") : `${countText(shown)} of ${counted(total, "record")}`];
    if (this.store.dropped > 0) parts.push(`the oldest ${countText(this.store.dropped)} were dropped here`);
    if (this.store.missing > 0) parts.push(`${countText(this.store.missing)} are missing`);
    if (this.store.damaged > 0) parts.push(`${counted(this.store.damaged, "line")} could not be read`);
    if (this.paused) parts.push(`${countText(total - 1 - this.indexOfLimit())} since the pause`);
    if (this.live?.open > 0)
      parts.push(`${this.live.oldest} open for ${durationText(this.live.oldest_us)}${
          this.live.open > 1 ? `, ${this.live.open - 1} more` : ""}`);
    if (!this.settings.live && !this.loaded) parts.push("reading");
    const connection = !this.settings.live ? "" :
        this.live?.connected === false     ? "disconnected" :
        this.paused                        ? "paused" :
                                             "live";
    byId("state").className = connection;
    byId("state").textContent = [connection, ...parts].filter(Boolean).join(" · ");
  }

  indexOfLimit() { return Math.min(this.view.limit - this.store.dropped, this.store.rows.length - 1); }

  reported(state) {
    this.store.missing += state.missing ?? 0;
    this.live = {...this.live, ...state};
    this.drawState();
  }

  select(row) {
    this.view.selected = row;
    this.detail.show(row);
    const index = this.view.indexOf(row);
    if (index >= 0)
      this.list.show(index);
    else
      this.list.draw();
    if (this.shownView === "ladder") this.ladder.draw();
  }

  move(by) {
    const index = this.view.indexOf(this.view.selected);
    const count = this.view.rowCount();
    if (count > 0)
      this.select(this.view.row(
          index < 0 ? Math.min(count - 1, Math.max(0, Math.ceil(this.list.first))) :
                      Math.min(count - 1, Math.max(0, index + by))));
  }

  filterBy(text) {
    byId("filter").value = text;
    this.filterTyped();
  }

  async filterTyped() {
    const text = byId("filter").value;
    this.markPreset(text);
    try {
      const done = this.view.setFilter(text);
      byId("filter-error").textContent = "";
      byId("filter").setAttribute("aria-invalid", "false");
      await done;
    } catch (problem) {
      byId("filter-error").textContent = problem.message;
      byId("filter").setAttribute("aria-invalid", "true");
      return;
    }
    this.afterSelection();
  }

  markPreset(text) {
    this.presets.forEach((button, index) => button.setAttribute("aria-pressed", PRESETS[index][1] === text));
  }

  async setSpan(span) {
    this.view.span = span;
    byId("span").hidden = !span;
    const clock = (time) => clockText(time, this.view.zone);
    if (span) byId("span").textContent = `${clock(span.begin)} to ${clock(span.end)} ×`;
    await this.view.restart();
    this.afterSelection();
  }

  afterSelection() {
    const index = this.view.indexOf(this.view.selected);
    if (index >= 0)
      this.list.show(index);
    else if (!this.list.follow)
      this.list.scrollTo(Math.min(this.list.first, this.list.lastFirst()));
    if (this.shownView !== "rows") this.show(this.shownView);
  }

  show(name) {
    this.shownView = name;
    for (const view of VIEWS) {
      byId(`view-${view}`).hidden = view !== name;
      byId(`tab-${view}`).setAttribute("aria-selected", view === name);
    }
    if (name === "rows") this.list.update();
    if (name === "ladder") this.ladder.draw();
    if (name === "statistics") this.statistics.draw();
    if (name === "television") this.television.open();
  }

  // Stops the view only: records still arrive.
  pause() {
    if (!this.settings.live) return;
    this.paused = !this.paused;
    this.view.pause(this.paused);
    byId("pause").textContent = this.paused ? "Continue" : "Pause";
    this.added();
  }

  nextTheme() {
    this.theme = ((this.theme ?? 0) + 1) % THEMES.length;
    document.documentElement.style.colorScheme = THEMES[this.theme];
    this.notice(["Theme of the system", "Light", "Dark"][this.theme]);
    this.timeline.draw();
  }

  notice(text) {
    byId("notice").textContent = text;
    clearTimeout(this.noticeEnd);
    this.noticeEnd = setTimeout(() => (byId("notice").textContent = ""), 1500);
  }

  showKeys() {
    const rows = KEYS.map(
        ([names, meaning]) => element(
            "tr", {}, element("td", {}, ...names.split(" ").flatMap((name) => [key(name), " "])),
            element("td", {}, meaning)));
    byId("keys").replaceChildren(
        element("table", {}, ...rows), element("form", {method: "dialog"}, element("button", {}, "Close")));
    byId("keys").showModal();
  }

  keyPressed(event) {
    const typing = /^(INPUT|TEXTAREA)$/.test(event.target.tagName);
    if (event.key === "Escape" && typing) return event.target.blur();
    if (event.ctrlKey || event.metaKey || event.altKey || typing || byId("keys").open) return;
    const action = ACTIONS[event.key];
    if (!action || (event.key === "Enter" && event.target.tagName === "BUTTON")) return;
    if (VERTICAL.has(event.key) && event.target.tagName === "PRE") return;
    event.preventDefault();
    action(this);
  }
}

const VERTICAL = new Set(["ArrowDown", "ArrowUp", "PageDown", "PageUp", "Home", "End"]);

const ACTIONS = {
  ArrowDown: (page) => page.move(1),
  j: (page) => page.move(1),
  ArrowUp: (page) => page.move(-1),
  k: (page) => page.move(-1),
  PageDown: (page) => page.move(page.list.visibleCount()),
  PageUp: (page) => page.move(-page.list.visibleCount()),
  Home: (page) => page.move(-Infinity),
  End: (page) => page.move(Infinity),
  "/": () => byId("filter").focus(),
  x: (page) => page.filterBy(""),
  c: () => byId("copy")?.click(),
  l: (page) => page.show("ladder"),
  p: (page) => page.pause(),
  d: (page) => page.nextTheme(),
  "?": (page) => page.showKeys(),
  Escape: (page) => page.setSpan(null),
  ...Object.fromEntries(VIEWS.map((name, index) => [String(index + 1), (page) => page.show(name)])),
};

const KEYS = [
  ["↑ ↓", "previous, next message (also k, j)"],
  ["PgUp PgDn Home End", "further"],
  ["1 2 3 4", "messages, ladder, statistics, television"],
  ["/", "edit the filter; Esc leaves it"],
  ["x", "remove the filter"],
  ["Esc", "remove the span of time"],
  ["c", "copy the command of the message"],
  ["l", "ladder around the message"],
  ["p", "pause a live view; nothing is lost"],
  ["d", "theme: system, light, dark"],
];

// Changes the height of what is below it.
function makeSplitter(bar, below) {
  bar.addEventListener("pointerdown", (event) => {
    bar.setPointerCapture(event.pointerId);
    const height = below.clientHeight + event.clientY;
    bar.onpointermove = (moved) =>
        (below.style.height = `${Math.max(60, Math.min(height - moved.clientY, window.innerHeight - 300))}px`);
    bar.onpointerup = () => (bar.onpointermove = bar.onpointerup = null);
  });
}

const page = new Page(JSON.parse(byId("settings").textContent));
page.read();
