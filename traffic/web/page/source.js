// Where records come from: the page itself, or the program that serves it.
"use strict";

const SLICE = 12;  // milliseconds of work before the page may draw

// Kept, since a channel that nothing refers to may be collected before its message arrives.
const BREATHS = new MessageChannel();
const breathing = [];
BREATHS.port1.onmessage = () => breathing.shift()();

// Lets the page draw and take input. A timer would wait for longer.
function breathe() {
  return new Promise((resolve) => {
    breathing.push(resolve);
    BREATHS.port2.postMessage(null);
  });
}

// The records in the page, in script elements of some thousand lines, which are read while the rest still arrives.
class FileSource {
  constructor() {
    this.live = false;
    this.simulator = false;
  }

  // Calls `onLine` for each record, `onPause` now and then, and resolves when all are read.
  async read(onLine, onPause) {
    let begun = performance.now();
    for (;;) {
      const loaded = document.readyState !== "loading";
      const blocks = [...document.querySelectorAll('script[type="application/x-ndjson"]')];
      if (!loaded) blocks.pop();  // it may not be whole
      for (const block of blocks) {
        const lines = block.textContent.split("\n");
        block.remove();
        for (const line of lines) {
          if (line) onLine(line);
          if (performance.now() - begun < SLICE) continue;
          onPause();
          await breathe();
          begun = performance.now();
        }
      }
      if (loaded) return;
      await new Promise((resolve) => setTimeout(resolve, 20));
      begun = performance.now();
    }
  }
}

// Server-sent events. The browser connects again by itself, and asks for what it has missed.
class LiveSource {
  constructor(settings) {
    this.live = true;
    this.simulator = settings.simulator;
    this.waiting = [];
  }

  // `onLine` is called for each record, `onPause` after some, `onState` with what the program reports.
  read(onLine, onPause, onState) {
    const stream = new EventSource("events");
    const take = () => {
      this.asked = null;
      const begun = performance.now();
      let taken = 0;
      while (taken < this.waiting.length && performance.now() - begun < SLICE) onLine(this.waiting[taken++]);
      this.waiting.splice(0, taken);
      onPause();
      if (this.waiting.length > 0) this.asked = requestAnimationFrame(take);
    };
    stream.addEventListener("record", (event) => {
      this.waiting.push(event.data);
      this.asked ??= document.hidden ? setTimeout(take, 200) : requestAnimationFrame(take);
    });
    stream.addEventListener("state", (event) => onState({connected: true, ...JSON.parse(event.data)}));
    stream.addEventListener("open", () => onState({connected: true}));
    stream.addEventListener("error", () => onState({connected: false}));
  }

  ask(operation, members) { return post("ask", {operation, members}); }

  command(command) { return post("simulator", {command}); }
}

// Returns the answer, or an object with the `problem`.
async function post(path, content) {
  try {
    const response = await fetch(path, {
      method: "POST",
      headers: {"Content-Type": "application/json"},
      body: JSON.stringify(content),
    });
    return await response.json();
  } catch {
    return {problem: "hbbtvctl does not answer; it may have ended"};
  }
}
