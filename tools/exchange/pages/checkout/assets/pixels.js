// Web pixel events of the demo checkout: the browser context snapshot and the two event kinds.
// Numbers stay JSON numbers (amounts, quantities, window sizes); the location port stays a
// string and the scheme goes under "protocol", as a browser reports them.
(function () {
  "use strict";
  var counter = 0;

  function locationOf(l) {
    return {
      hash: l.hash, host: l.host, hostname: l.hostname, href: l.href, origin: l.origin,
      pathname: l.pathname, port: l.port, protocol: l.protocol, search: l.search
    };
  }

  function context() {
    return {
      document: {
        characterSet: document.characterSet,
        location: locationOf(document.location),
        referrer: document.referrer,
        title: document.title
      },
      navigator: {
        cookieEnabled: navigator.cookieEnabled,
        language: navigator.language,
        languages: Array.prototype.slice.call(navigator.languages || []),
        userAgent: navigator.userAgent
      },
      window: {
        innerHeight: window.innerHeight, innerWidth: window.innerWidth,
        location: locationOf(window.location), origin: window.location.origin,
        outerHeight: window.outerHeight, outerWidth: window.outerWidth,
        pageXOffset: window.pageXOffset, pageYOffset: window.pageYOffset,
        screen: { height: window.screen.height, width: window.screen.width },
        screenX: window.screenX, screenY: window.screenY,
        scrollX: window.scrollX, scrollY: window.scrollY
      }
    };
  }

  function nextId() {
    counter += 1;
    return "lm-px-" + Date.now().toString(36) + "-" + counter;
  }

  function envelope(name, event) {
    return JSON.stringify({ name: name, event: event });
  }

  // A standard event with the checkout's commerce data ({"checkout": {...}}).
  function standard(name, data) {
    var event = { id: nextId(), name: name, timestamp: new Date().toISOString(),
                  type: "standard", context: context() };
    if (data) { event.data = data; }
    return window.VembaSite.send("webPixels", envelope(name, event));
  }

  // A merchant-defined event; customData is a JSON object.
  function custom(name, customData) {
    var event = { id: nextId(), name: name, timestamp: new Date().toISOString(),
                  type: "custom", context: context(), customData: customData };
    return window.VembaSite.send("webPixels", envelope(name, event));
  }

  window.VembaPixels = { standard: standard, custom: custom, context: context };
})();
