// The records. A row keeps what is shown, sorted and counted; the rest is parsed again from the record's line when it
// is needed, since 200,000 parsed records would not fit into a page.
"use strict";

const MOST_ROWS = 200000;  // of a live page; a file has as many as it has
const CACHED_RECORDS = 400;

class Store {
  constructor(protocol) {
    this.protocol = protocol;
    this.names = new Names(protocol);
    this.television = new Television();
    this.rows = [];
    this.dropped = 0;  // the oldest ones, which a live page does not keep
    this.missing = 0;  // that did not reach a live page
    this.damaged = 0;  // lines that are not records
    this.cache = new Map();
  }

  // Adds a line of a recording. Returns whether it is a record.
  add(line) {
    let record;
    try {
      record = JSON.parse(line);
      this.rows.push(rowOf(record, line, this.dropped + this.rows.length));
    } catch {
      ++this.damaged;
      return false;
    }
    this.names.learn(record);
    this.television.learn(record);
    return true;
  }

  // Drops the oldest tenth if there are too many rows. Returns how many were dropped.
  trim() {
    if (this.rows.length <= MOST_ROWS) return 0;
    const count = MOST_ROWS / 10;
    this.rows.splice(0, count);
    this.dropped += count;
    return count;
  }

  // Returns the record of a row.
  record(row) {
    let record = this.cache.get(row);
    if (record) return record;
    record = JSON.parse(row.line);
    if (this.cache.size >= CACHED_RECORDS) this.cache.delete(this.cache.keys().next().value);
    this.cache.set(row, record);
    return record;
  }
}

const HEADER = 12;

// Of headers and payloads.
function bytesOf(record) {
  if (record.kind === "damaged") return Math.floor(((record.message?.base64 ?? "").replace(/=+$/, "").length * 3) / 4);
  if (record.kind !== "exchange") return 0;
  return HEADER + (record.message?.size ?? 0) + (record.reply ? HEADER + (record.reply.size ?? 0) : 0);
}

// `place`: from 0, in the order of arrival.
function rowOf(record, line, place) {
  if (typeof record.number !== "number" || typeof record.kind !== "string") throw new Error("not a record");
  const row = {
    line,
    place,
    number: record.number,
    wall: record.wall_us ?? 0,
    monotonic: record.monotonic_us ?? 0,
    kind: record.kind,
    family: record.family || record.socket || "",
    knownFamily: record.family ?? "",
    operation: record.operation ?? "",
    code: record.code ?? null,
    event: record.event === true,
    wantsReply: record.message?.type === 2,
    connection: record.connection ?? 0,
    duration: record.duration_us ?? -1,  // -1: none
    status: record.status ?? null,
    open: record.open === true,
    ruled: Boolean(record.rule),
    bytes: bytesOf(record),
    error: false,
    encoded: record.message?.base64 !== undefined || record.reply?.base64 !== undefined || line.includes("\\u"),
  };
  row.error = isWrong(row, record);
  return row;
}

// An exchange that is open is not an error yet; null is the reply to an event that no client received, and an error.
function isWrong(row, record) {
  if (row.kind === "damaged") return true;
  if (row.kind !== "exchange") return false;
  if (row.status !== null) return row.status !== 0;
  if (!row.wantsReply || row.open) return false;
  const reply = record.reply?.json;
  return reply === null || typeof reply !== "object" || Array.isArray(reply);
}
