// The wire protocol, as protocol/ defines it: which members belong to the envelope, and how arguments are named on a
// command line.
"use strict";

class Protocol {
  // `families`: an object by name of those parts of the files that are used here.
  constructor(families) { this.families = families; }

  definition(record) {
    const family = this.families[record.family];
    return family?.[record.event ? "events" : "operations"].find((entry) => entry.name === record.operation);
  }

  // Returns all operations and events.
  entries() { return Object.values(this.families).flatMap((family) => [...family.operations, ...family.events]); }

  // Returns the keys that say which operation or event it is.
  envelopeKeys(record) {
    const envelope = this.families[record.family]?.[record.event ? "event_envelope" : "envelope"];
    return new Set(envelope ?? []);
  }

  // Returns NAME=VALUE for each argument of the message, and whether protocol/ knows all of them with these types.
  arguments(record, json) {
    const members = this.definition(record)?.members ?? [];
    const left = new Map(Object.entries(json).filter(([key]) => !this.envelopeKeys(record).has(key)));
    const words = [];
    let known = true;
    for (const member of members) {
      const word = member.repeat ? listWord(member, left, json) : plainWord(member, left);
      if (word === undefined)
        known = false;
      else if (word !== "")
        words.push(word);
    }
    if (known && left.size === 0) return {words, known};
    // As it is on the wire.
    const entries = Object.entries(json).filter(([key]) => !this.envelopeKeys(record).has(key));
    return {words: entries.map(([key, value]) => `${key}=${exactText(value)}`), known: false};
  }
}

const isWhole = (value) => Number.isSafeInteger(value) || typeof value === "bigint";

const FITS = {
  pointer: (value) => value === "" || /^0x[1-9a-f][0-9a-f]{0,7}$/.test(value),
  string: (value) => typeof value === "string",
  bool: (value) => typeof value === "boolean",
  int: isWhole,
  uint: isWhole,
  int64: isWhole,
  uint64: isWhole,
  double: Number.isFinite,
  array: Array.isArray,
};

// The command line has other words for null, and reads "-" and "@" as files.
function wordOf(type, value) {
  if (!FITS[type]?.(value)) return undefined;
  if (type === "pointer") return value || "0";
  if (type !== "string") return exactText(value);
  return value === "-" || value.includes("\0") ? undefined : value.startsWith("@") ? "@" + value : value;
}

// Takes the member out of `left`. Returns undefined if it is not as defined, "" if it is a count.
function plainWord(member, left) {
  const value = left.get(member.key);
  left.delete(member.key);
  if (member.counts) return isWhole(value) ? "" : undefined;
  const word = wordOf(member.type, value);
  return word === undefined ? undefined : `${member.key}=${word}`;
}

// Of a member that is repeated under numbered keys.
function listWord(member, left, json) {
  const values = [];
  for (let number = 0; left.has(member.key.replace("%d", number)); ++number) {
    const key = member.key.replace("%d", number);
    values.push(left.get(key));
    left.delete(key);
  }
  if (values.length !== json[member.repeat] || !values.every(FITS[member.type])) return undefined;
  return `${member.key.slice(0, member.key.indexOf("%d"))}=${exactText(values)}`;
}
