// The messages as a sequence chart: library on the left, platform on the right, time downwards.
"use strict";

const MOST_STEPS = 400;
const STEP = 26;
const GAP_STEP = 34;
const GAP = 1000000;  // a longer pause, in microseconds, is marked

class Ladder {
  constructor(view, store, panel) { Object.assign(this, {view, store, panel}); }

  draw() {
    const rows = this.around(this.view.selected);
    const steps = stepsOf(rows).sort((a, b) => a.time - b.time || a.row.number - b.row.number);
    const count = this.view.rowCount();
    const heading = rows.length === count ?
        counted(count, "message") :
        `${countText(rows.length)} of ${
            counted(count, "message")}, around the selected one; a filter selects an object or a span`;
    const picture = rows.length === 0 ? element("p", {className: "hint"}, "No messages.") : this.picture(steps);
    this.panel.replaceChildren(element("p", {className: "hint"}, heading), picture);
    this.panel.querySelector(".selected")?.scrollIntoView({block: "center"});
  }

  // Returns exchanges and events: all that are shown, or as many as can be read.
  around(selected) {
    const count = this.view.rowCount();
    const middle = Math.max(0, this.view.indexOf(selected));
    const begin = count <= MOST_STEPS ? 0 : Math.min(Math.max(0, middle - MOST_STEPS / 2), count - MOST_STEPS);
    const rows = [];
    for (let index = begin; index < Math.min(count, begin + MOST_STEPS); ++index) rows.push(this.view.row(index));
    return rows;
  }

  picture(steps) {
    const width = Math.max(560, Math.min(1100, this.panel.clientWidth - 40));
    const lines = {left: 110, right: width - 110};
    const nodes = [];
    let y = 44;
    let last = steps[0].time;
    for (const step of steps) {
      if (step.time - last > GAP) nodes.push(...gapNodes(lines, (y += GAP_STEP) - GAP_STEP / 2 + 4, step.time - last));
      nodes.push(this.stepNode(step, lines, (y += STEP)));
      last = step.time;
    }
    const height = y + STEP;
    const pole = (x, name) =>
        [svg("line", {x1: x, x2: x, y1: 34, y2: height, class: "pole"}), svg("text", {x, y: 22, class: "end"}, name)];
    return svg(
        "svg", {
          width,
          height,
          viewBox: `0 0 ${width} ${height}`,
          class: "ladder",
          role: "img",
          "aria-label": "Sequence chart"
        },
        arrowHead(), ...pole(lines.left, "library"), ...pole(lines.right, "platform"), ...nodes);
  }

  stepNode(step, lines, y) {
    const {row} = step;
    const [from, to] = step.toPlatform ? [lines.left, lines.right] : [lines.right, lines.left];
    const node =
        svg("g", {
          class: [
            "step", step.reply ? "reply" : "", row.event ? "event" : "", row.error ? "error" : "",
            row === this.view.selected ? "selected" : ""
          ].filter(Boolean)
                     .join(" "),
          tabindex: 0
        },
            svg("rect", {x: 0, y: y - STEP / 2 - 4, width: "100%", height: STEP, class: "target"}),
            svg("line", {x1: from, x2: to + (to > from ? -2 : 2), y1: y, y2: y, "marker-end": "url(#arrow)"}),
            svg("text", {x: 8, y: y + 4, class: "time"}, clockText(step.time, this.view.zone)),
            svg("text", {x: (lines.left + lines.right) / 2, y: y - 5, class: "label"}, this.label(step)));
    if (step.reply && row.duration >= 0) {
      node.append(
          svg("text", {x: lines.right + 10, y: y + 4, class: `time ${speedOf(row)}`}, durationText(row.duration)));
    }
    node.addEventListener("click", () => this.view.selectRow(row));
    node.addEventListener("dblclick", () => this.view.show("rows"));
    return node;
  }

  label(step) {
    const record = this.store.record(step.row);
    if (step.row.kind !== "exchange") return `${step.row.kind} ${step.row.family}`;
    const text = step.reply ? `${step.row.operation}: ${resultText(step.row, record, this.store)}` :
                              `${step.row.family}.${step.row.operation}  ${membersText(record, this.store)}`;
    return text.length > 96 ? text.slice(0, 95) + "…" : text;
  }
}

// A message and its reply are two steps.
function stepsOf(rows) {
  return rows.flatMap((row) => {
    const steps = [{row, time: row.wall, toPlatform: !row.event}];
    if (row.duration >= 0) steps.push({row, time: row.wall + row.duration, toPlatform: row.event, reply: true});
    return steps;
  });
}

function svg(name, attributes, ...content) {
  const created = document.createElementNS("http://www.w3.org/2000/svg", name);
  for (const [key, value] of Object.entries(attributes)) created.setAttribute(key, value);
  created.append(...content);
  return created;
}

function arrowHead() {
  return svg(
      "defs", {},
      svg("marker", {
        id: "arrow",
        viewBox: "0 0 8 8",
        refX: 7,
        refY: 4,
        markerWidth: 8,
        markerHeight: 8,
        orient: "auto-start-reverse"
      },
          svg("path", {d: "M0 0 L8 4 L0 8 z", fill: "context-stroke"})));
}

function gapNodes(lines, y, time) {
  return [
    svg("line", {x1: lines.left - 30, x2: lines.right + 30, y1: y, y2: y, class: "gap"}),
    svg("text", {x: (lines.left + lines.right) / 2, y: y - 4, class: "gap"}, `${durationText(time)} later`)
  ];
}
