// The list of messages. Only the visible rows are in the document.
"use strict";

const ROW_HEIGHT = 22;
const SPARE_ROWS = 6;  // above and below what is visible
// No element can be higher; with more rows, each pixel of the scroll bar stands for more than a pixel.
const HIGHEST = 16000000;

const COLUMNS = [
  ["number", "#"],
  ["time", "time"],
  ["sign", ""],
  ["family", "family"],
  ["operation", "operation"],
  ["members", "members"],
  ["result", "result"],
  ["duration", "duration"],
];

class RowList {
  // `view` has rowCount(), row(index) and select(index).
  constructor(view, store, list, space, head) {
    Object.assign(this, {view, store, list, space});
    this.pool = [];
    this.first = 0;  // index of the row at the top, which may be a fraction
    this.follow = true;
    head.append(...COLUMNS.map(([name, title]) => element("span", {className: name}, title)));
    list.addEventListener("scroll", () => this.scrolled(), {passive: true});
    list.addEventListener("mousedown", (event) => this.pressed(event));
    new ResizeObserver(() => this.update()).observe(list);
  }

  visibleCount() { return Math.max(1, Math.floor(this.list.clientHeight / ROW_HEIGHT)); }

  lastFirst() { return Math.max(0, this.view.rowCount() - this.list.clientHeight / ROW_HEIGHT); }

  // Sets what is at the top.
  scrollTo(first) {
    this.first = Math.min(Math.max(0, first), this.lastFirst());
    this.list.scrollTop = this.toPixels(this.first);
    this.update();
  }

  toPixels(first) {
    const height = Math.min(this.view.rowCount() * ROW_HEIGHT, HIGHEST);
    return this.lastFirst() === 0 ? 0 : (first / this.lastFirst()) * (height - this.list.clientHeight);
  }

  scrolled() {
    const room = this.list.scrollHeight - this.list.clientHeight;
    this.first = room <= 0 ? 0 : (this.list.scrollTop / room) * this.lastFirst();
    this.follow = this.list.scrollTop >= room - 2;
    this.draw();
  }

  show(index) {
    if (index < this.first + 1)
      this.scrollTo(index - 1);
    else if (index > this.first + this.visibleCount() - 2)
      this.scrollTo(index - this.visibleCount() + 2);
    else
      this.draw();
  }

  // Draws after rows were added or removed, or the size has changed.
  update() {
    const height = Math.min(this.view.rowCount() * ROW_HEIGHT, HIGHEST);
    if (this.height !== height) this.space.style.height = `${(this.height = height)}px`;
    if (this.follow && this.view.live) {
      this.first = this.lastFirst();
      this.list.scrollTop = this.list.scrollHeight;
    }
    this.draw();
  }

  draw() {
    this.asked ??= requestAnimationFrame(() => {
      this.asked = null;
      this.drawNow();
    });
  }

  drawNow() {
    const begin = Math.max(0, Math.floor(this.first) - SPARE_ROWS);
    const end = Math.min(this.view.rowCount(), Math.ceil(this.first) + this.visibleCount() + 1 + SPARE_ROWS);
    while (this.pool.length < end - begin) this.pool.push(this.makeRow());
    const top = this.list.scrollTop - this.first * ROW_HEIGHT;
    // A row keeps its element while it is visible, so that scrolling by some rows changes few elements.
    for (let index = begin; index < end; ++index) this.fill(this.pool[index % this.pool.length], index, top);
    this.pool.forEach((line, slot) => {
      const unused = end - begin < this.pool.length && !within(slot, begin, end, this.pool.length);
      if (line.hidden !== unused) line.hidden = unused;
    });
    this.drawn = performance.now();
  }

  makeRow() {
    const cells = COLUMNS.map(([name]) => element("span", {className: name}));
    cells.at(-1).append(element("i"), element("b"));
    const line = element("div", {className: "row", role: "option"}, ...cells);
    this.list.append(line);
    return line;
  }

  fill(line, index, top) {
    const row = this.view.row(index);
    const selected = row === this.view.selected;
    line.style.transform = `translateY(${top + index * ROW_HEIGHT}px)`;
    line.index = index;
    const version =
        `${row.number}/${this.store.rows.length > 0 ? this.store.names.names.size : 0}/${selected}/${index % 2}`;
    if (line.version === version && line.row === row) return;
    [line.row, line.version] = [row, version];
    line.className = classesOf(row, index, selected);
    line.setAttribute("aria-selected", selected);
    const record = this.store.record(row);
    const texts = [
      String(row.number), this.view.clock(row), signOf(row), row.family, row.operation || row.kind,
      membersText(record, this.store), resultText(row, record, this.store)
    ];
    texts.forEach((text, column) => {
      const cell = line.children[column];
      if (cell.textContent !== text) cell.textContent = text;
    });
    line.children[3].style.setProperty("--hue", hueOf(row.family));
    drawDuration(line.lastChild, row);
  }

  pressed(event) {
    const line = event.target.closest(".row");
    if (line && event.button === 0) this.view.select(line.index);
  }
}

// Returns whether an index in [begin, end) has this place in a ring of `size`.
function within(slot, begin, end, size) { return (slot - (begin % size) + size) % size < end - begin; }

function classesOf(row, index, selected) {
  return [
    "row", row.kind, row.event ? "event" : "", row.error ? "error" : "", row.open ? "open" : "",
    selected ? "selected" : "", index % 2 ? "odd" : ""
  ].filter(Boolean)
      .join(" ");
}

// From 100 microseconds to 10 seconds, each power of ten has the same width.
function drawDuration(cell, row) {
  const [bar, text] = cell.children;
  const known = row.duration >= 0;
  text.textContent = known ? durationText(row.duration) : row.open ? "open" : "";
  const width = known ? Math.min(1, Math.max(0.02, Math.log10(Math.max(row.duration, 1) / 100) / 5)) : 0;
  bar.style.width = `${(width * 100).toFixed(1)}%`;
  bar.className = speedOf(row);
}

const SLOW = 100000;
const VERY_SLOW = 1000000;

function speedOf(row) {
  return row.open || row.duration >= VERY_SLOW ? "very-slow" : row.duration >= SLOW ? "slow" : "fast";
}

const HUES = new Map();

// The same family has the same color everywhere; neighbours differ.
function hueOf(family) {
  if (!HUES.has(family)) HUES.set(family, (HUES.size * 137 + 210) % 360);
  return HUES.get(family);
}
