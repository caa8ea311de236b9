// Filters as people type them: "family:channel & !op:GetName & ms>5". The grammar, the fields and what they mean are
// those of the command line; tests/traffic/view/ has the cases that hold for both.
"use strict";

class FilterError extends Error {
  constructor(position, problem) {
    super(`character ${position}: ${problem}`);
    this.position = position;
  }
}

const DEEPEST = 100;

class FilterParser {
  constructor(text, protocol) { Object.assign(this, {text, protocol, at: 0, depth: 0}); }

  // Returns a function of a subject, or null for an empty text.
  parse() {
    this.skipBlanks();
    if (this.atEnd()) return null;
    const root = this.or();
    if (!this.atEnd()) throw new FilterError(this.at + 1, '")" without "("');
    return root;
  }

  atEnd() { return this.at >= this.text.length; }
  here() { return this.text[this.at] ?? ""; }
  skipBlanks() {
    while (/\s/.test(this.here())) ++this.at;
  }

  // Takes "&" or "&&".
  take(sign) {
    if (this.here() !== sign) return false;
    ++this.at;
    if ("&|".includes(sign) && this.here() === sign) ++this.at;
    this.skipBlanks();
    return true;
  }

  or() {
    const operands = [this.and()];
    while (this.take("|")) operands.push(this.and());
    return operands.length === 1 ? operands[0] : (subject) => operands.some((operand) => operand(subject));
  }

  and() {
    const operands = [this.operand()];
    while (this.take("&") || (!this.atEnd() && !"|)".includes(this.here()))) operands.push(this.operand());
    return operands.length === 1 ? operands[0] : (subject) => operands.every((operand) => operand(subject));
  }

  operand() {
    if (++this.depth > DEEPEST) throw new FilterError(this.at + 1, "nested too deeply");
    const result = this.take("!") ? inverted(this.operand()) :
        this.here() === "("       ? this.group() :
                                    testOf(this.word(), this.protocol);
    --this.depth;
    return result;
  }

  group() {
    const begin = this.at + 1;
    this.take("(");
    const inner = this.or();
    if (!this.take(")")) throw new FilterError(begin, '"(" without ")"');
    return inner;
  }

  quoted() {
    const begin = ++this.at;
    let value = "";
    for (; !this.atEnd() && this.here() !== '"'; ++this.at) {
      if (this.here() === "\\" && this.at + 1 < this.text.length) ++this.at;
      value += this.here();
    }
    if (this.atEnd()) throw new FilterError(begin, "the quote is not closed");
    ++this.at;
    return value;
  }

  plain(ends) {
    const begin = this.at;
    while (!this.atEnd() && !/\s/.test(this.here()) && !ends.includes(this.here())) ++this.at;
    return this.text.slice(begin, this.at);
  }

  word() {
    const word = {position: this.at + 1, field: "", comparison: "", value: "", quoted: this.here() === '"'};
    word.value = word.quoted ? this.quoted() : this.plain('&|()!<>=~:"');
    const comparison = word.quoted ? null : /^(!=|>=|<=|==|[:=><~])/.exec(this.text.slice(this.at));
    if (comparison) this.comparedWith(word, comparison[0]);
    if (!word.value && !word.field && !word.quoted) throw new FilterError(this.at + 1, "a word is missing");
    this.skipBlanks();
    return word;
  }

  comparedWith(word, comparison) {
    if (!word.value) throw new FilterError(word.position, `a field is missing before "${comparison}"`);
    this.at += comparison.length;
    [word.field, word.comparison] = [word.value, comparison];
    word.quoted = this.here() === '"';
    word.value = word.quoted ? this.quoted() : this.plain("&|()");
    if (!word.value && !word.quoted) throw new FilterError(this.at + 1, `a value is missing after ${word.field}`);
  }
}

const inverted = (test) => (subject) => !test(subject);

// A row, with what several tests need of its record.
class Subject {
  constructor(row) { this.row = row; }
  get record() { return (this.parsed ??= JSON.parse(this.row.line)); }
  get text() { return (this.lower ??= lowerCase(textOfRecord(this.row, this.record))); }
}

// Only ASCII letters change, as on the command line.
function lowerCase(text) { return text.replace(/[A-Z]+/g, (letters) => letters.toLowerCase()); }

function textOfRecord(row, record) {
  const payload = (message) => !message                   ? "" :
      message.json !== undefined && message.json !== null ? JSON.stringify(message.json) :
                                                            atob(message.base64 ?? "");
  return [
    fullName(row), record.socket, record.note, record.rule, record.library?.name, record.platform?.name,
    payload(record.message), payload(record.reply)
  ].map((part) => part ?? "")
      .join("\n");
}

function fullName(row) {
  if (row.kind !== "exchange") return row.family;
  return `${row.family}.${row.operation || (row.code === null ? "?" : `code ${row.code}`)}`;
}

const NUMBER_FIELDS = {
  ms: (row) => (row.duration >= 0 ? row.duration / 1000 : null),
  status: (row) => row.status,
  code: (row) => row.code,
  bytes: (row) => row.bytes || null,
  number: (row) => row.number || null,
  connection: (row) => row.connection || null,
};

const TEXT_FIELDS = {
  socket: (subject) => subject.record.socket ?? "",
  kind: (subject) => subject.row.kind,
  rule: (subject) => subject.record.rule ?? "",
  note: (subject) => subject.record.note ?? "",
};

const WORDS = {
  event: (row) => row.kind === "exchange" && row.event,
  request: (row) => row.kind === "exchange" && !row.event,
  "one-way": (row) => row.kind === "exchange" && !row.wantsReply,
  open: (row) => row.open,
  error: (row) => row.error,
  damaged: (row) => row.kind === "damaged",
  ruled: (row) => row.ruled,
};

const OTHER_FIELDS = ["family", "op", "handle", "app", "tab", "pid", "process", "request.NAME", "reply.NAME"];
const EQUALITY = [":", "=", "==", "!="];
const ORDER = [...EQUALITY, "<", ">", "<=", ">="];

function allow(word, comparisons) {
  if (!comparisons.includes(word.comparison)) {
    throw new FilterError(word.position, `"${word.field}" cannot be compared by "${word.comparison}"`);
  }
}

function numberIn(text) { return /^[+-]?(\d+\.?\d*|\.\d+)(e[+-]?\d+)?$/i.test(text) ? Number(text) : null; }

function holds(comparison, left, right) {
  switch (comparison) {
    case "!=":
      return left !== right;
    case ">":
      return left > right;
    case "<":
      return left < right;
    case ">=":
      return left >= right;
    case "<=":
      return left <= right;
    default:
      return left === right;
  }
}

// A pattern in which * stands for any characters.
function fits(pattern) {
  const parts = pattern.split(/\*+/).map((part) => part.replace(/[\\^$.|?+()[\]{}]/g, "\\$&"));
  const expression = new RegExp(`^${parts.join("[^]*")}$`);
  return (text) => expression.test(text);
}

const folded = (name) => lowerCase(name).replaceAll("_", "");
const unlessInverted = (word, test) => (word.comparison === "!=" ? inverted(test) : test);

function testOf(word, protocol) {
  if (word.field) return fieldTest(word, protocol);
  const known = word.quoted ? undefined : Object.hasOwn(WORDS, lowerCase(word.value)) && WORDS[lowerCase(word.value)];
  if (known) return (subject) => known(subject.row);
  return containing(lowerCase(word.value));
}

// Most records are decided without parsing them: what a record contains is in its line or in its name.
function containing(wanted) {
  const plain = /^[\w ]*$/.test(wanted);
  return (subject) => {
    if (plain && !lowerCase(subject.row.line).includes(wanted) && !lowerCase(fullName(subject.row)).includes(wanted)) {
      return subject.row.encoded && subject.text.includes(wanted);
    }
    return subject.text.includes(wanted);
  };
}

function fieldTest(word, protocol) {
  const field = lowerCase(word.field);
  if (Object.hasOwn(NUMBER_FIELDS, field)) return numberTest(word, NUMBER_FIELDS[field]);
  if (Object.hasOwn(TEXT_FIELDS, field)) return textTest(word, TEXT_FIELDS[field]);
  if (field === "family") return familyTest(word, protocol);
  if (field === "op" || field === "operation") return operationTest(word, protocol);
  if (field === "handle") return handleTest(word);
  if (field === "app" || field === "tab") return numberOfAnySideTest(word, `${field}id`);
  if (field === "pid" || field === "process") return processTest(word, field);
  if (field.startsWith("request.")) return memberTest(word, (record) => record.message, word.field.slice(8));
  if (field.startsWith("reply.")) return memberTest(word, (record) => record.reply, word.field.slice(6));
  const known = [...OTHER_FIELDS, ...Object.keys(NUMBER_FIELDS), ...Object.keys(TEXT_FIELDS)];
  throw new FilterError(
      word.position,
      `unknown field "${word.field}"; known are ${known.join(", ")} ` +
          `(text with "${word.comparison}" in it has to be in quotes)`);
}

function numberTest(word, value) {
  allow(word, ORDER);
  const wanted = numberIn(word.value);
  if (wanted === null) throw new FilterError(word.position, `"${word.value}" is not a number`);
  return ({row}) => value(row) !== null && holds(word.comparison, value(row), wanted);
}

function textTest(word, value) {
  allow(word, [...EQUALITY, "~"]);
  const wanted = lowerCase(word.value);
  const equal = word.comparison === "~" ? (text) => text.includes(wanted) : fits(wanted);
  return unlessInverted(word, (subject) => equal(lowerCase(value(subject))));
}

function familyTest(word, protocol) {
  allow(word, EQUALITY);
  const known =
      Object.keys(protocol.families).find((name) => [folded(name), "i" + folded(name)].includes(folded(word.value)));
  if (!known && !word.value.includes("*")) throw new FilterError(word.position, `unknown family "${word.value}"`);
  const equal = fits(folded(known ?? word.value));
  return unlessInverted(word, ({row}) => equal(folded(row.knownFamily)));
}

function operationTest(word, protocol) {
  allow(word, EQUALITY);
  const equal = fits(folded(word.value));
  const names = new Set(
      protocol.entries()
          .filter((entry) => [entry.name, entry.method, entry.callback].some((name) => name && equal(folded(name))))
          .map((entry) => entry.name));
  if (names.size === 0 && !word.value.includes("*")) {
    throw new FilterError(word.position, `unknown operation or event "${word.value}"`);
  }
  return unlessInverted(word, ({row}) => names.has(row.operation) || equal(folded(row.operation)));
}

function hasHandle(value, wanted) {
  if (value !== null && typeof value === "object") return Object.values(value).some((item) => hasHandle(item, wanted));
  return handleNumber(value) === wanted;
}

function handleTest(word) {
  allow(word, EQUALITY);
  const digits = /^(0x)?([0-9a-f]{1,16})$/i.exec(word.value);
  if (!digits) throw new FilterError(word.position, `"${word.value}" is not a handle, such as 0x1388f0af`);
  const wanted = parseInt(digits[2].slice(-8), 16);
  return unlessInverted(
      word,
      ({row, record}) => row.kind === "exchange" &&
          (hasHandle(record.message?.json, wanted) || hasHandle(record.reply?.json, wanted)));
}

// Applications and tabs are numbers in members of one name.
function numberOfAnySideTest(word, key) {
  allow(word, EQUALITY);
  const wanted = numberIn(word.value);
  if (wanted === null) throw new FilterError(word.position, `"${word.value}" is not a number`);
  const has = (message) => message?.json?.[key] === wanted;
  return unlessInverted(word, ({record}) => has(record.message) || has(record.reply));
}

function processTest(word, field) {
  allow(word, EQUALITY);
  const wanted = field === "pid" ? numberIn(word.value) : lowerCase(word.value);
  if (wanted === null) throw new FilterError(word.position, `"${word.value}" is not a number`);
  const equal =
      field === "pid" ? (peer) => (peer?.pid ?? 0) === wanted : (peer) => lowerCase(peer?.name ?? "").includes(wanted);
  return unlessInverted(word, ({record}) => equal(record.library) || equal(record.platform));
}

function memberTest(word, messageOf, key) {
  allow(word, [...ORDER, "~"]);
  return ({record}) => {
    const payload = messageOf(record)?.json;
    const object = payload !== null && typeof payload === "object" && !Array.isArray(payload);
    return object && Object.hasOwn(payload, key) && memberHolds(word, payload[key]);
  };
}

// Compares as numbers if both are numbers, as handles if both are handles, else as text.
function memberHolds(word, value) {
  const text = lowerCase(typeof value === "string" ? value : JSON.stringify(value));
  const wanted = word.quoted ? null : numberIn(word.value);
  if (word.comparison === "~") return text.includes(lowerCase(word.value));
  if (wanted !== null && typeof value === "number") return holds(word.comparison, value, wanted);
  if (!EQUALITY.includes(word.comparison)) return false;
  const handle = handleNumber(value);
  const equal = handle === null ? fits(lowerCase(word.value))(text) : handle === handleNumber(word.value);
  return equal === (word.comparison !== "!=");
}

// Returns a text as a filter can contain it: quoted if necessary.
function quotedWord(text) { return /^[\w.*-]+$/.test(text) ? text : `"${text.replace(/["\\]/g, "\\$&")}"`; }

class Filter {
  // Throws FilterError.
  constructor(text, protocol) { this.root = new FilterParser(text, protocol).parse(); }

  matches(row) { return this.root === null || this.root(new Subject(row)); }
}
