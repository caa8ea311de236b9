// Values as people read them: JSON, handles, times, sizes, durations.
"use strict";

const HANDLE = /^0x[0-9a-f]{1,16}$/i;

// Returns the handle as the wire writes it, or "" if the value is not one, or null.
function handleOf(value) {
  if (typeof value !== "string" || !HANDLE.test(value)) return "";
  const digits = value.slice(2).toLowerCase().replace(/^0+/, "");
  return digits && "0x" + digits;
}

// Returns the low half of a handle as a number, or null: on the wire, handles have 32 bits; a client's are wider.
function handleNumber(value) {
  const handle = handleOf(value);
  return handle ? parseInt(handle.slice(2).slice(-8), 16) : null;
}

// Returns 0x and eight digits.
function handleText(handle) { return "0x" + handle.slice(2).padStart(8, "0"); }

// Parses a document whose integers may be above 2^53.
function parseExactly(text) {
  return JSON.parse(
      text,
      (key, value, context) => typeof value === "number" && Math.abs(value) > Number.MAX_SAFE_INTEGER &&
              /^-?\d+$/.test(context?.source ?? "") ?
          BigInt(context.source) :
          value);
}

// Returns the text of a value that was parsed exactly.
function exactText(value) {
  return JSON.stringify(value, (key, item) => (typeof item === "bigint" ? JSON.rawJSON(String(item)) : item));
}

// Returns a value on one line.
function shortText(value, names, longest = 60) {
  const handle = handleOf(value);
  if (handle) return withName(handleText(handle), names.of(handle));
  const text = exactText(value);
  return text.length > longest ? text.slice(0, longest - 1) + "…" : text;
}

function withName(text, name) { return name ? `${text} ${JSON.stringify(name)}` : text; }

const THOUSANDS = new Intl.NumberFormat("en");

function countText(count) { return THOUSANDS.format(count); }

// Returns "1 message", "2 messages".
function counted(count, noun) { return `${countText(count)} ${noun}${count === 1 ? "" : "s"}`; }

function sizeText(bytes) {
  if (bytes < 10000) return `${countText(bytes)} B`;
  return bytes < 1e7 ? `${(bytes / 1024).toFixed(0)} KiB` : `${(bytes / 1048576).toFixed(1)} MiB`;
}

// Of microseconds, with three digits.
function durationText(us) {
  const [value, unit] = us < 1000 ? [us, "µs"] : us < 1e6 ? [us / 1000, "ms"] : [us / 1e6, "s"];
  const digits = unit === "µs" || value >= 100 ? 0 : value >= 10 ? 1 : 2;
  return `${value.toFixed(digits)} ${unit}`;
}

// Returns the offset of a zone, "+01:00", in minutes.
function minutesOf(zone) {
  const match = /^([+-])(\d\d):(\d\d)$/.exec(zone ?? "");
  return match ? (match[1] === "-" ? -1 : 1) * (Number(match[2]) * 60 + Number(match[3])) : 0;
}

// Returns "17:04:05.311" of microseconds since 1970, `minutes` east of Greenwich.
function clockText(us, minutes) { return new Date(us / 1000 + minutes * 60000).toISOString().slice(11, 23); }

function dateText(us, minutes) { return new Date(us / 1000 + minutes * 60000).toISOString().slice(0, 10); }

// Returns the characters of Base64 as a dump: offset, hexadecimal, printable.
function hexDump(base64, most = 4096) {
  const bytes = Uint8Array.from(atob(base64), (character) => character.charCodeAt(0));
  const lines = [];
  for (let at = 0; at < Math.min(bytes.length, most); at += 16) {
    const line = [...bytes.subarray(at, at + 16)];
    const digits = line.map((byte) => byte.toString(16).padStart(2, "0")).join(" ");
    const text = line.map((byte) => (byte >= 32 && byte < 127 ? String.fromCharCode(byte) : ".")).join("");
    lines.push(`${at.toString(16).padStart(6, "0")}  ${digits.padEnd(47)}  ${text}`);
  }
  if (bytes.length > most) lines.push(`… and ${countText(bytes.length - most)} bytes`);
  return lines.join("\n");
}

// Creates an element. `content`: strings and nodes; nothing is ever read as HTML.
function element(name, attributes = {}, ...content) {
  const created = document.createElement(name);
  for (const [key, value] of Object.entries(attributes)) {
    if (key.startsWith("on"))
      created.addEventListener(key.slice(2), value);
    else if (key in created && key !== "role" && key !== "title")
      created[key] = value;
    else
      created.setAttribute(key, value);
  }
  created.append(...content);
  return created;
}

const byId = (id) => document.getElementById(id);
