// Messages over time: a bar for each pixel, slow and failed messages on top. Dragging selects a span.
"use strict";

const LAYERS = ["message", "event", "slow", "error"];

class Timeline {
  // `view` has rowCount(), row(index), clock(row), span and setSpan(begin, end).
  constructor(view, canvas) {
    Object.assign(this, {view, canvas});
    this.drag = null;
    canvas.addEventListener("pointerdown", (event) => this.begin(event));
    canvas.addEventListener("pointermove", (event) => this.move(event));
    canvas.addEventListener("pointerup", (event) => this.end(event));
    canvas.addEventListener("dblclick", () => view.setSpan(null));
    new ResizeObserver(() => this.draw()).observe(canvas);
  }

  draw() {
    this.asked ??= requestAnimationFrame(() => {
      this.asked = null;
      this.drawNow();
    });
  }

  // Returns the span of the shown rows in microseconds.
  range() {
    const count = this.view.rowCount();
    if (count === 0) return [0, 1];
    const [begin, end] = [this.view.row(0).wall, this.view.row(count - 1).wall];
    return [begin, Math.max(end, begin + 1000)];
  }

  drawNow() {
    const width = Math.max(1, this.canvas.clientWidth);
    const height = this.canvas.clientHeight;
    const scale = window.devicePixelRatio || 1;
    this.canvas.width = width * scale;
    this.canvas.height = height * scale;
    const context = this.canvas.getContext("2d");
    context.scale(scale, scale);
    const bars = this.count(width);
    const style = getComputedStyle(this.canvas);
    const chart = height - 14;
    const highest = Math.log1p(Math.max(1, ...bars.map((bar) => bar[0] + bar[1] + bar[2] + bar[3])));
    bars.forEach((bar, x) => drawBar(context, bar, x, chart, highest, style));
    this.drawScale(context, width, height, style);
    this.drawDrag(context, chart, style);
  }

  count(width) {
    const [begin, end] = this.range();
    const bars = Array.from({length: Math.ceil(width / 2)}, () => [0, 0, 0, 0]);
    const factor = (bars.length - 1) / (end - begin);
    for (let index = 0; index < this.view.rowCount(); ++index) {
      const row = this.view.row(index);
      const bar = bars[Math.min(bars.length - 1, Math.max(0, Math.round((row.wall - begin) * factor)))];
      ++bar[row.error ? 3 : row.open || row.duration >= SLOW ? 2 : row.event ? 1 : 0];
    }
    return bars;
  }

  drawScale(context, width, height, style) {
    if (this.view.rowCount() === 0) return;
    const [begin, end] = this.range();
    context.fillStyle = style.getPropertyValue("--faint");
    context.font = "11px system-ui, sans-serif";
    const labels = Math.max(2, Math.floor(width / 160));
    for (let label = 0; label < labels; ++label) {
      const part = label / (labels - 1);
      context.textAlign = label === 0 ? "left" : label === labels - 1 ? "right" : "center";
      context.fillText(clockText(begin + part * (end - begin), this.view.zone), part * (width - 8) + 4, height - 3);
    }
  }

  drawDrag(context, chart, style) {
    if (!this.drag) return;
    const [left, right] = [Math.min(this.drag.from, this.drag.to), Math.max(this.drag.from, this.drag.to)];
    context.fillStyle = style.getPropertyValue("--accent");
    context.globalAlpha = 0.25;
    context.fillRect(left, 0, right - left, chart);
    context.globalAlpha = 1;
  }

  begin(event) {
    this.canvas.setPointerCapture(event.pointerId);
    this.drag = {from: event.offsetX, to: event.offsetX};
  }

  move(event) {
    if (!this.drag) return;
    this.drag.to = event.offsetX;
    this.draw();
  }

  end() {
    const drag = this.drag;
    this.drag = null;
    this.draw();
    if (!drag || Math.abs(drag.to - drag.from) < 4) return;
    const [begin, end] = this.range();
    const at = (x) => Math.round(begin + (Math.min(Math.max(x / this.canvas.clientWidth, 0), 1)) * (end - begin));
    this.view.setSpan({begin: at(Math.min(drag.from, drag.to)), end: at(Math.max(drag.from, drag.to))});
  }
}

// The height is logarithmic, so that a single message is visible beside thousands.
function drawBar(context, bar, x, chart, highest, style) {
  const total = bar[0] + bar[1] + bar[2] + bar[3];
  if (total === 0) return;
  const height = Math.max(2, (Math.log1p(total) / highest) * (chart - 2));
  let y = chart;
  LAYERS.forEach((layer, index) => {
    if (bar[index] === 0) return;
    const part = Math.max(2, (bar[index] / total) * height);
    context.fillStyle = style.getPropertyValue(`--${layer}`);
    context.fillRect(x * 2, y - part, 1.6, part);
    y -= part;
  });
}
