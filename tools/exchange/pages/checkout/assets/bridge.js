// The page's end of the checkout sheet's bridge, shared by the checkout and thank-you pages.
//
// Page to sheet: window.webkit.messageHandlers.mobileCheckoutSdk.postMessage(text), where text is
// the JSON of {"name": ..., "body": ...} and body is always a string (JSON text where structured).
// Sheet to page: the sheet evaluates a script that calls
// window.MobileCheckoutSdk.dispatchMessage(name[, body]), or waits for the window event
// "mobileCheckoutBridgeReady" while the page is not ready (its listeners not yet in place). The sheet may send "presented"
// more than once; listeners must tolerate that.
//
// Everything received and sent is kept in window.VembaSite.received / .sent for scripted checks,
// and summed up in the status line (#status).
(function () {
  "use strict";
  var CHANNEL = "mobileCheckoutSdk";
  var READY_EVENT = "mobileCheckoutBridgeReady";
  var listeners = {};
  var received = [];
  var sent = [];
  var presentedCount = 0;
  var lastInstrumentation = null;
  var lastSent = null;
  var isReady = false;

  function handler() {
    try {
      return window.webkit.messageHandlers[CHANNEL] || null;
    } catch (error) {
      return null;
    }
  }

  function renderStatus() {
    var line = document.getElementById("status");
    if (!line) { return; }
    var parts = [];
    if (handler()) {
      line.classList.remove("nobridge");
      parts.push("bridge: connected");
    } else {
      line.classList.add("nobridge");
      parts.push("no bridge (" + CHANNEL + " handler absent): the page works on its own");
    }
    parts.push("presented ×" + presentedCount);
    if (lastInstrumentation) {
      var d = lastInstrumentation;
      parts.push("instrumentation: " + d.name + " " + d.value + " ms" +
                 (d.tags && d.tags.preloading !== undefined ? " (preloading " + d.tags.preloading + ")" : ""));
    }
    if (lastSent) { parts.push("sent: " + lastSent); }
    line.textContent = parts.join(" · ");
    document.documentElement.dataset.presented = String(presentedCount);
  }

  // The instrumentation body arrives as a JavaScript object (the sheet inserts its JSON into the
  // script as a literal); a string holding the same JSON is accepted too.
  function readDetail(body) {
    var value = body;
    if (typeof body === "string") {
      try { value = JSON.parse(body); } catch (error) { return null; }
    }
    return value && typeof value === "object" && value.detail ? value.detail : null;
  }

  // Tells the exchange what the sheet sent, so that a test outside the page can see it in the
  // request log: GET /_seen?name=<message>&detail=<instrumentation name> (answered 404, recorded
  // with kind "other").
  function report(name, body) {
    var detail = name === "instrumentation" ? readDetail(body) : null;
    var query = "name=" + encodeURIComponent(name) +
                (detail && detail.name ? "&detail=" + encodeURIComponent(detail.name) : "");
    try {
      fetch("/_seen?" + query, { cache: "no-store", keepalive: true }).catch(function () {});
    } catch (error) { /* a page opened as a file has nowhere to report to */ }
  }

  function dispatchMessage(name, body) {
    received.push({ name: name, body: body === undefined ? null : body,
                    at: performance.timeOrigin + performance.now() });
    report(name, body);
    if (name === "presented") { presentedCount += 1; }
    if (name === "instrumentation") { lastInstrumentation = readDetail(body) || lastInstrumentation; }
    renderStatus();
    (listeners[name] || []).slice().forEach(function (listener) {
      try { listener(body); } catch (error) { console.error(error); }
    });
  }

  // Posts one message; body is a string (already JSON text where structured). Returns false,
  // and says so in the status line, when the page runs without the sheet's handler.
  function send(name, body) {
    var channel = handler();
    lastSent = name + (name === "checkoutBlockingEvent" ? " " + body : "");
    if (!channel) {
      lastSent += " (not delivered: no bridge)";
      renderStatus();
      return false;
    }
    var envelope = JSON.stringify({ name: name, body: body });
    sent.push({ name: name, body: body, at: Date.now() });
    channel.postMessage(envelope);
    renderStatus();
    return true;
  }

  // Posts a raw value on the channel, bypassing the envelope: for the misbehaving variants only.
  function sendRaw(value) {
    var channel = handler();
    if (!channel) { return false; }
    sent.push({ raw: value, at: Date.now() });
    channel.postMessage(value);
    return true;
  }

  function on(name, listener) {
    (listeners[name] = listeners[name] || []).push(listener);
  }

  // Publishes the dispatcher and announces it once the page's listeners are in place. Not before:
  // the sheet's script calls the dispatcher whenever it exists, and a "presented" taken while the
  // page's later scripts are still loading would reach no listener and be lost.
  function ready() {
    if (isReady) { return; }
    isReady = true;
    window.MobileCheckoutSdk = { dispatchMessage: dispatchMessage };
    window.dispatchEvent(new Event(READY_EVENT));
  }

  window.VembaSite = {
    hasBridge: function () { return handler() !== null; },
    send: send,
    sendRaw: sendRaw,
    on: on,
    ready: ready,
    received: received,
    sent: sent,
    presentedCount: function () { return presentedCount; },
    renderStatus: renderStatus
  };
  renderStatus();
})();
