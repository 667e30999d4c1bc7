// The Lumenmoss ad creatives' script, shared by the interstitial and the rewarded page.
//
// The ad talks to the SDK on the "vemba" script-message channel: the bare strings "close" and
// "click", and the dictionaries {"action": "openURL", "url": ...} and
// {"action": "openCheckout", "url": ...}. Each page defines window.VembaAd.channel() (the
// handler, or an exception when absent) and window.VembaAd.format before loading this script.
//
// ?auto=a,b,c&autoDelay=300 posts one message per token, one every autoDelay ms after load; a
// token that names no entry of MESSAGES is posted as that bare string (so "dance" or "Close"
// are unknown messages). See tools/exchange/README.md for the tokens.
(function () {
  "use strict";
  var ad = window.VembaAd;
  var query = new URLSearchParams(window.location.search);
  var origin = /^https?:\/\//.test(window.location.origin) ? window.location.origin
                                                           : (query.get("origin") || "");
  var checkoutPath = sameOriginPath(query.get("checkout")) || "/checkout/demo";
  var landingUrl = origin + "/landing/" + ad.format + "?from=" + ad.format;
  var checkoutUrl = origin + checkoutPath;
  var hugeBytes = Math.min(Math.max(parseInt(query.get("hugeBytes") || "1048576", 10) || 0, 1),
                           64 * 1048576);
  var floodCount = Math.min(Math.max(parseInt(query.get("floodCount") || "5000", 10) || 0, 1),
                            100000);
  var posted = [];

  function sameOriginPath(path) {
    return path && path.charAt(0) === "/" && path.charAt(1) !== "/" ? path : null;
  }
  function $(id) { return document.getElementById(id); }
  function describe(message) {
    var text = typeof message === "string" ? JSON.stringify(message) : JSON.stringify(message);
    return text === undefined ? String(message) : text.length > 80 ? text.slice(0, 77) + "…" : text;
  }

  function post(message) {
    var status = $("status");
    try {
      ad.channel().postMessage(message);
    } catch (error) {
      status.textContent = "no vemba message handler: " + describe(message) + " not sent";
      status.className = "status nohandler";
      return false;
    }
    posted.push(message);
    status.textContent = "sent: " + describe(message);
    status.className = "status";
    return true;
  }

  function openUrl(url) { return { action: "openURL", url: url }; }
  function openCheckout(url) { return { action: "openCheckout", url: url }; }

  // Token -> the message(s) it posts. Functions so that huge bodies are built only when asked.
  var MESSAGES = {
    click: function () { return ["click"]; },
    close: function () { return ["close"]; },
    openURL: function () { return [openUrl(landingUrl)]; },
    openCheckout: function () { return [openCheckout(checkoutUrl)]; },
    clickthrough: function () { return ["click", openUrl(landingUrl)]; },
    "dict-empty": function () { return [{}]; },
    "dict-noaction": function () { return [{ url: landingUrl }]; },
    "dict-emptyaction": function () { return [{ action: "", url: landingUrl }]; },
    "dict-numberaction": function () { return [{ action: 7, url: landingUrl }]; },
    "dict-close": function () { return [{ action: "close" }]; },
    "dict-click": function () { return [{ action: "click" }]; },
    "dict-unknown": function () { return [{ action: "openMap", url: landingUrl }]; },
    "dict-caseaction": function () { return [{ action: "openurl", url: landingUrl }]; },
    "openURL-nourl": function () { return [{ action: "openURL" }]; },
    "openURL-numberurl": function () { return [{ action: "openURL", url: 42 }]; },
    "openURL-unparsable": function () { return [openUrl("not a url <with> spaces")]; },
    "openURL-javascript": function () { return [openUrl("javascript:alert('vemba')")]; },
    "openURL-file": function () { return [openUrl("file:///tmp/vemba-no-such-file.html")]; },
    "openURL-data": function () {
      return [openUrl("data:text/html,%3Cb%3Elumenmoss%3C%2Fb%3E")];
    },
    "openURL-custom": function () { return [openUrl("lumenmoss-app://orders/7")]; },
    "openCheckout-nourl": function () { return [{ action: "openCheckout" }]; },
    "openCheckout-unparsable": function () { return [openCheckout("not a url <with> spaces")]; },
    number: function () { return [42]; },
    bool: function () { return [true]; },
    "null": function () { return [null]; },
    array: function () { return [["close"]]; },
    "huge-string": function () { return ["x".repeat(hugeBytes)]; },
    "huge-dict": function () { return [openUrl(landingUrl + "&pad=" + "x".repeat(hugeBytes))]; },
    navigate: function () { navigateAgain(); return []; },
    // Endless reloading: the query keeps auto=reload, so every load reloads again.
    reload: function () { window.location.reload(); return []; },
    // One burst of floodCount messages, none of which the SDK acts on.
    flood: function () { return repeat(FLOOD_JUNK, floodCount); },
    // One burst of floodCount bare "close" messages.
    "flood-close": function () { return repeat(["close"], floodCount); }
  };
  var FLOOD_JUNK = ["dance", "Close", "", {}, { action: "close" }, { action: "openURL" },
                    { action: "openurl", url: landingUrl }, 42, null, ["click"]];

  function repeat(messages, count) {
    var out = [];
    for (var i = 0; i < count; i += 1) { out.push(messages[i % messages.length]); }
    return out;
  }

  // Endless navigation: every load replaces the page with itself and hop=N+1, forever.
  function navigateAgain() {
    var next = new URL(window.location.href);
    next.searchParams.set("hop", String((parseInt(next.searchParams.get("hop") || "0", 10) || 0) + 1));
    window.location.replace(next.toString());
  }

  function postToken(token) {
    var messages = MESSAGES.hasOwnProperty(token) ? MESSAGES[token]() : [token];
    messages.forEach(post);
  }

  $("vemba-click").addEventListener("click", function () { postToken("clickthrough"); });
  $("vemba-close").addEventListener("click", function () { post("close"); });
  $("vemba-shop").addEventListener("click", function () { postToken("openCheckout"); });
  try { ad.channel(); } catch (error) {
    $("status").textContent = "no vemba message handler: this page is not inside the SDK's ad view";
    $("status").className = "status nohandler";
  }

  (function autoPost() {
    var tokens = (query.get("auto") || "").split(",").filter(Boolean);
    var delay = parseInt(query.get("autoDelay") || "300", 10);
    tokens.forEach(function (token, index) {
      setTimeout(function () { postToken(token); }, delay * (index + 1));
    });
  })();

  window.VembaAd.post = post;
  window.VembaAd.posted = posted;
  window.VembaAd.landingUrl = landingUrl;
  window.VembaAd.checkoutUrl = checkoutUrl;
  window.VembaAd.tokens = Object.keys(MESSAGES);
})();
