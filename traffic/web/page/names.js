// What the traffic reports about handles: "Das Erste HD". A name is learned from the reply to an operation that returns
// the name of its object.
"use strict";

const MOST_NAMES = 20000;  // the latest ones

class Names {
  constructor(protocol) {
    this.protocol = protocol;
    this.names = new Map();
  }

  // Returns the name of a handle, or "".
  of(handle) { return this.names.get(handle) ?? ""; }

  learn(record) {
    if (record.kind !== "exchange" || record.event || record.status !== 0) return;
    const request = record.message?.json;
    const definition = this.protocol.definition(record);
    const object = handleOf(request?.[definition?.members.find((member) => member.handle)?.key]);
    if (!object) return;
    if (definition.effect === "release")
      this.names.delete(object);
    else if (/.Name$/.test(record.operation))
      this.remember(object, nameIn(record.reply?.json) ?? nameIn(request));
  }

  remember(handle, name) {
    if (!name) return;
    this.names.delete(handle);
    this.names.set(handle, name);
    if (this.names.size > MOST_NAMES) this.names.delete(this.names.keys().next().value);
  }
}

function nameIn(payload) {
  return ["name", "out_name", "in_name"].map((key) => payload?.[key]).find((name) => typeof name === "string");
}
