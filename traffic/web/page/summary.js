// One line of text for each part of a record: what was asked, what came back.
"use strict";

const KIND_SIGNS = {
  connected: "+",
  closed: "−",
  damaged: "✗",
  note: "i"
};

function signOf(row) { return KIND_SIGNS[row.kind] ?? (row.event ? "★" : "→"); }

// Returns the members of the message that are not of its envelope.
function membersText(record, store) {
  if (record.kind !== "exchange" && record.kind !== "damaged") return processesText(record);
  const json = record.message?.json;
  if (json === undefined || json === null || typeof json !== "object") return rawText(record.message);
  const envelope = store.protocol.envelopeKeys(record);
  return textOfMembers(json, store.names, envelope) + (record.rule ? `  ⚑ ${record.rule}` : "");
}

function textOfMembers(json, names, without) {
  return Object.entries(json)
      .filter(([key]) => !without.has(key))
      .map(([key, value]) => `${key}=${shortText(value, names)}`)
      .join(" ");
}

// A payload that is not an object. The reply to an event that no client received is null.
function rawText(message) {
  if (!message) return "";
  if (message.json !== undefined) return JSON.stringify(message.json);
  const text = atob(message.base64 ?? "").trim();
  return /^[ -~]{1,40}$/.test(text) ? text : `${sizeText(message.size ?? 0)}, not JSON`;
}

// Of a connection, or of a note.
function processesText(record) {
  const ends = [["library", record.library], ["platform", record.platform]].filter(([, peer]) => peer);
  const text = ends.map(([side, peer]) => `${side} ${peer.name || "process"} (${peer.pid})`).join(", ");
  return [text, record.note].filter(Boolean).join(": ");
}

const RET = new Set(["ret"]);

// Returns what came back, or why nothing did. `age`: of an open exchange, in microseconds, if it is known.
function resultText(row, record, store) {
  if (row.kind !== "exchange") return "";
  if (!record.reply) return row.open ? "no reply yet" : record.message?.type === 2 ? "no reply" : "one-way";
  const json = record.reply.json;
  if (json === undefined || json === null || typeof json !== "object") return rawText(record.reply);
  const members = textOfMembers(json, store.names, RET);
  return row.status === null ? members : row.status === 0 ? members || "0" : `ret ${row.status} ${members}`.trim();
}

// The command line that sends the same message again.
function commandLine(record, protocol) {
  const json = record.message?.json;
  if (!record.family || !record.operation || !json || Array.isArray(json) || typeof json !== "object") return "";
  const {words, known} = protocol.arguments(record, json);
  const target = record.event ? `emit ${record.family} ${shellWord(record.operation)}` :
                                `send ${record.family}.${record.operation}`;
  const form = record.event ? [record.message.type === 2 ? "--request" : "--one-way"] : [];
  const flags = known ? form : [...form, "--unchecked"];
  return ["hbbtvctl", target, ...words.map(shellWord), ...flags].join(" ");
}

function shellWord(word) { return /^[\w@%+=:,./-]+$/.test(word) ? word : `'${word.replaceAll("'", "'\\''")}'`; }
