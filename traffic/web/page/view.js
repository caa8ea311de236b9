// What is shown of the records: those that the filter and the span select, and the selected one. Filtering many records
// takes several slices of time, between which the page draws.
"use strict";

class View {
  constructor(store, settings, live) {
    Object.assign(this, {store, live});
    this.zone = minutesOf(settings.head.zone);
    this.zoneName = settings.head.zone || "UTC";
    this.shown = [];
    this.taken = 0;         // rows of the store that have been looked at
    this.limit = Infinity;  // while paused: the place of the last row that is looked at
    this.filter = new Filter("", store.protocol);
    this.span = null;
    this.selected = null;
    this.round = 0;  // of filtering
    this.onChange = () => {};
  }

  rowCount() { return this.shown.length; }
  row(index) { return this.shown[index]; }
  clock(row) { return clockText(row.wall, this.zone); }

  // Returns the place among the shown rows, or -1. They are in the order of their places.
  indexOf(row) {
    if (!row) return -1;
    let [low, high] = [0, this.shown.length];
    while (low < high) {
      const middle = (low + high) >> 1;
      if (this.shown[middle].place < row.place)
        low = middle + 1;
      else
        high = middle;
    }
    return this.shown[low] === row ? low : -1;
  }

  selects(row) {
    if (this.span && (row.wall < this.span.begin || row.wall > this.span.end)) return false;
    return this.filter.matches(row);
  }

  // Looks at the rows that were added, for some milliseconds. Returns whether there are more.
  takeAdded() {
    const begun = performance.now();
    const rows = this.store.rows;
    const first = this.taken;
    for (; this.taken < rows.length; ++this.taken) {
      const row = rows[this.taken];
      if (row.place > this.limit) return false;
      if (this.taken % 64 === 0 && this.taken > first && performance.now() - begun > SLICE) return true;
      if (this.selects(row)) this.shown.push(row);
    }
    return false;
  }

  // Selects again from the beginning.
  async restart() {
    const round = ++this.round;
    this.shown = [];
    this.taken = 0;
    let drawn = 0;
    while (round === this.round && this.takeAdded()) {
      if (performance.now() - drawn > 100) {
        this.onChange();
        drawn = performance.now();
      }
      await breathe();
    }
    if (round === this.round) this.onChange();
  }

  // The store has dropped its first rows.
  dropped(count) {
    this.taken = Math.max(0, this.taken - count);
    const first = this.store.rows[0]?.place ?? 0;
    const gone = this.shown.findIndex((row) => row.place >= first);
    this.shown.splice(0, gone < 0 ? this.shown.length : gone);
  }

  // Throws FilterError.
  setFilter(text) {
    this.filter = new Filter(text, this.store.protocol);
    return this.restart();
  }

  pause(paused) { this.limit = paused ? this.store.rows.at(-1)?.place ?? -1 : Infinity; }
}
