// Calls, errors, bytes and durations of what is shown, for each operation.
"use strict";

const SLOWEST = 10;

function statisticsOf(view) {
  const operations = new Map();
  const slowest = [];
  const open = [];
  for (let index = 0; index < view.rowCount(); ++index) {
    const row = view.row(index);
    if (row.kind !== "exchange") continue;
    const name = `${row.family}.${row.operation}`;
    let entry = operations.get(name);
    if (!entry) operations.set(name, (entry = {name, row, count: 0, errors: 0, bytes: 0, durations: []}));
    ++entry.count;
    entry.bytes += row.bytes;
    if (row.error) ++entry.errors;
    if (row.duration >= 0) entry.durations.push(row.duration);
    if (row.open) open.push(row);
    keepSlowest(slowest, row);
  }
  return {operations: [...operations.values()].map(finished), slowest, open};
}

function keepSlowest(slowest, row) {
  if (row.duration < 0 || (slowest.length === SLOWEST && row.duration <= slowest.at(-1).duration)) return;
  const place = slowest.findIndex((other) => other.duration < row.duration);
  slowest.splice(place < 0 ? slowest.length : place, 0, row);
  if (slowest.length > SLOWEST) slowest.pop();
}

// The value that this part of the durations does not exceed.
function percentile(sorted, part) {
  return sorted.length === 0 ? -1 : sorted[Math.max(0, Math.ceil(sorted.length * part) - 1)];
}

function finished(entry) {
  const sorted = Float64Array.from(entry.durations).sort();
  return {...entry, p50: percentile(sorted, 0.5), p99: percentile(sorted, 0.99), max: percentile(sorted, 1)};
}

const STATISTICS_COLUMNS = [
  ["operation", (entry) => entry.name],
  ["calls", (entry) => entry.count],
  ["errors", (entry) => entry.errors],
  ["bytes", (entry) => entry.bytes],
  ["p50", (entry) => entry.p50],
  ["p99", (entry) => entry.p99],
  ["max", (entry) => entry.max],
];

class Statistics {
  constructor(view, store, panel) {
    Object.assign(this, {view, store, panel});
    this.order = {column: 1, down: true};
  }

  draw() {
    const {operations, slowest, open} = statisticsOf(this.view);
    const value = STATISTICS_COLUMNS[this.order.column][1];
    operations.sort((a, b) => (value(a) < value(b) ? -1 : value(a) > value(b) ? 1 : 0) * (this.order.down ? -1 : 1));
    const calls = operations.reduce((sum, entry) => sum + entry.count, 0);
    const errors = operations.reduce((sum, entry) => sum + entry.errors, 0);
    const bytes = operations.reduce((sum, entry) => sum + entry.bytes, 0);
    this.panel.replaceChildren(
        element(
            "div", {className: "tiles"}, tile(countText(calls), calls === 1 ? "call or event" : "calls and events"),
            tile(countText(errors), errors === 1 ? "error" : "errors", errors > 0 ? "error" : ""),
            tile(sizeText(bytes), "with headers"),
            tile(countText(open.length), "without reply yet", open.length > 0 ? "very-slow" : "")),
        element(
            "div", {className: "columns"}, this.table(operations),
            element(
                "div", {}, this.list("Slowest", slowest),
                ...(open.length > 0 ? [this.list("Open", open.slice(0, 100))] : []))));
  }

  table(operations) {
    const longest = Math.max(1, ...operations.map((entry) => entry.max));
    const head = STATISTICS_COLUMNS.map(
        ([title], column) => element(
            "th",
            {ariaSort: this.order.column !== column ? "none" :
                 this.order.down                    ? "descending" :
                                                      "ascending"},
            element("button", {onclick: () => this.sort(column)}, title)));
    const body = operations.map(
        (entry) => element(
            "tr", {},
            element(
                "td", {},
                element(
                    "button", {
                      className: "link",
                      onclick: () =>
                          this.view.filterBy(`family:${entry.row.family} & op:${quotedWord(entry.row.operation)}`)
                    },
                    entry.name)),
            element("td", {}, countText(entry.count)),
            element("td", {className: entry.errors > 0 ? "error" : "zero"}, countText(entry.errors)),
            element("td", {}, sizeText(entry.bytes)),
            ...[entry.p50, entry.p99, entry.max].map((us) => durationCell(us, longest))));
    return element("table", {}, element("thead", {}, element("tr", {}, ...head)), element("tbody", {}, ...body));
  }

  sort(column) {
    this.order = {column, down: this.order.column === column ? !this.order.down : column > 0};
    this.draw();
  }

  list(title, rows) {
    return element(
        "div", {}, element("h3", {}, title),
        element(
            "ol", {className: "links"},
            ...rows.map(
                (row) => element(
                    "li", {},
                    element(
                        "button", {className: "link", onclick: () => this.view.go(row)},
                        element(
                            "b", {className: speedOf(row)}, row.duration >= 0 ? durationText(row.duration) : "open"),
                        ` ${row.family}.${row.operation} `, element("small", {}, this.view.clock(row)))))));
  }
}

function tile(value, meaning, className = "") {
  return element("div", {className: `tile ${className}`}, element("b", {}, value), element("span", {}, meaning));
}

function durationCell(us, longest) {
  if (us < 0) return element("td", {className: "zero"}, "–");
  const cell = element("td", {className: "bar"}, durationText(us));
  cell.style.setProperty("--part", `${Math.max(1, (Math.log1p(us) / Math.log1p(longest)) * 100).toFixed(0)}%`);
  return cell;
}
