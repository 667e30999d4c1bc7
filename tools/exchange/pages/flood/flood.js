// A page that floods its SDK channel: `rate` messages a second for `seconds` seconds, paced by the
// page's clock (a late timer catches up in one burst, so the total is exact whatever the pace).
//
// Message i of the run is, in this order of precedence:
//   - every `hugeEvery`-th: a huge message, its size cycling through HUGE_SIZES up to `huge` bytes;
//     every other huge message is a valid event (the next number) padded to that size, the rest
//     are junk of that size;
//   - every `validEvery`-th: the next valid event, numbered from 0;
//   - otherwise junk: a message the SDK must ignore, cycling through the page's junk list.
// Then the page's end marker, then `tail` more valid events that the SDK must no longer deliver
// (numbered on from the last). Nothing is sent before `delay` ms after load.
//
// The page defines window.VembaFlood.channel before loading this script:
//   post(message)        posts one message on the channel (throws when there is none);
//   valid(n, padBytes)   the valid event numbered n, padded by about padBytes (0: none);
//   junk                 the list of junk messages;
//   hugeJunk(bytes)      one junk message of about `bytes` bytes;
//   end()                the message that ends the run.
// window.VembaFlood.report holds what was sent, for scripts.
(function () {
  "use strict";
  var query = new URLSearchParams(window.location.search);
  function number(name, fallback, low, high) {
    var value = parseInt(query.get(name) || String(fallback), 10);
    return Math.min(Math.max(isNaN(value) ? fallback : value, low), high);
  }
  var rate = number("rate", 10000, 1, 1000000);
  var seconds = number("seconds", 10, 0, 600);
  var hugeMax = number("huge", 4194304, 0, 64 * 1048576);
  var hugeEvery = number("hugeEvery", 1000, 0, 1000000000);
  var validEvery = number("validEvery", 2, 1, 1000000);
  var tail = number("tail", 0, 0, 100000);
  var delay = number("delay", 500, 0, 600000);
  var total = Math.round(rate * seconds);
  var HUGE_SIZES = [4096, 65536, 1048576, 4194304].filter(function (size) { return size < hugeMax; })
                                                  .concat(hugeMax > 0 ? [hugeMax] : []);
  var channel = window.VembaFlood.channel;
  var report = { total: total, sent: 0, valid: 0, huge: 0, junk: 0, startedAt: 0, endedAt: 0,
                 tail: 0, error: "" };
  window.VembaFlood.report = report;

  function status(text) {
    var line = document.getElementById("status");
    if (line) { line.textContent = text; }
  }

  function messageAt(i) {
    if (hugeEvery > 0 && HUGE_SIZES.length > 0 && i % hugeEvery === hugeEvery - 1) {
      var which = Math.floor(i / hugeEvery);
      var size = HUGE_SIZES[Math.floor(which / 2) % HUGE_SIZES.length];
      report.huge += 1;
      if (which % 2 === 0) { return channel.valid(report.valid++, size); }
      return channel.hugeJunk(size);
    }
    if (i % validEvery === 0) { return channel.valid(report.valid++, 0); }
    report.junk += 1;
    return channel.junk[i % channel.junk.length];
  }

  function send(message) {
    channel.post(message);
    report.sent += 1;
  }

  function finish() {
    report.endedAt = performance.now();
    send(channel.end());
    for (var k = 0; k < tail; k += 1) { send(channel.valid(report.valid + k, 0)); }
    report.tail = tail;
    status("flood done: " + report.sent + " messages in " +
           Math.round(report.endedAt - report.startedAt) + " ms");
  }

  function tick() {
    var due = Math.min(total, Math.floor((performance.now() - report.startedAt) * rate / 1000));
    try {
      while (report.sent < due) { send(messageAt(report.sent)); }
      if (report.sent >= total) {
        finish();
        return;
      }
    } catch (error) {
      report.error = String(error);
      status("flood stopped: " + report.error);
      return;
    }
    setTimeout(tick, 4);
  }

  setTimeout(function () {
    report.startedAt = performance.now();
    status("flooding: " + total + " messages over " + seconds + " s");
    tick();
  }, delay);
})();
