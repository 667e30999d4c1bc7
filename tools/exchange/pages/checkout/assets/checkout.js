// The Lumenmoss demo checkout: cart, form, discount dialog, pixel steps, completion, and the
// scripted scenarios of ?auto=... (see tools/exchange/README.md).
//
// The page starts (first pixel events, the variant's error message, the scenario) when the sheet
// first sends "presented", or right after load when there is no bridge (a recovery view, a
// browser). "Pay now" sends the step pixels and "completed" when there is a bridge, then always
// goes to <this path>/thank-you?order_id=N, so it also completes a checkout without a bridge.
(function () {
  "use strict";
  var site = window.VembaSite;
  var pixels = window.VembaPixels;
  var CURRENCY = "USD";
  var TAX_RATE = 0.08;
  var THANK_YOU_DELAY_MS = 250;
  var DISCOUNTS = { WELCOME10: { percentage: 10, title: "WELCOME10" } };
  var PRODUCTS = [
    { id: "lm-prod-tidepool", variantId: "lm-var-tidepool-350", title: "Tidepool Mug",
      variant: "Sea glaze · 350 ml", image: "mug.svg", cents: 2400, quantity: 2, sku: "LM-MUG-TP" },
    { id: "lm-prod-ember", variantId: "lm-var-ember-100", title: "Ember Leaf Tea Tin",
      variant: "Smoked black tea · 100 g", image: "tea-tin.svg", cents: 1650, quantity: 1,
      sku: "LM-TEA-EL" },
    { id: "lm-prod-towel", variantId: "lm-var-towel-moss", title: "Linen Tea Towel",
      variant: "Moss check", image: "towel.svg", cents: 1200, quantity: 1, sku: "LM-TWL-MS" }
  ];
  var DELIVERY = [
    { handle: "standard", title: "Standard", description: "3–5 working days", cents: 490 },
    { handle: "express", title: "Express", description: "Next working day", cents: 990 }
  ];
  var ERRORS = {
    authentication: { group: "authentication", code: "customer_account_required",
                      reason: "Sign in to your Lumenmoss account to continue." },
    configuration: { group: "configuration", code: "storefront_password_required",
                     reason: "This shop is password protected." },
    unrecoverable: { group: "unrecoverable", code: "invalid_cart",
                     reason: "Checkout is unavailable for this cart." },
    checkout: { group: "checkout", code: "payment_declined", reason: "The test payment failed." },
    expired: { group: "expired", code: "cart_expired", reason: "Your cart has expired." },
    unsupported: { group: "unsupported", code: "unsupported_flow",
                   reason: "This checkout flow is not supported here." },
    "unknown-group": { group: "outage", code: "unknown", reason: "A group no sheet knows." }
  };

  var config = readConfig();
  var query = new URLSearchParams(window.location.search);
  var autoDelay = Math.max(0, parseInt(query.get("autoDelay") || "400", 10) || 0);
  var orderId = query.get("orderId") || String(1000 + Math.floor(Math.random() * 9000));
  var cartToken = "lm-cart-" + (config.variant || "checkout") + "-" + orderId;
  var state = { delivery: "standard", discount: null, started: false, paying: false,
                dialogOpen: false };

  function readConfig() {
    var node = document.getElementById("site-config");
    try { return node ? JSON.parse(node.textContent) : { variant: "checkout" }; }
    catch (error) { return { variant: "checkout" }; }
  }
  function $(id) { return document.getElementById(id); }
  function sleep(ms) { return new Promise(function (resolve) { setTimeout(resolve, ms); }); }
  function dollars(cents) { return Math.round(cents) / 100; }
  function format(cents) { return "$" + (Math.round(cents) / 100).toFixed(2); }
  function imageUrl(name) { return window.location.origin + "/checkout/assets/img/" + name; }
  function money(cents) { return { amount: dollars(cents), currencyCode: CURRENCY }; }

  // --- prices ---------------------------------------------------------------------------------

  function totals() {
    var subtotal = PRODUCTS.reduce(function (sum, p) { return sum + p.cents * p.quantity; }, 0);
    var discount = state.discount ? Math.round(subtotal * state.discount.percentage / 100) : 0;
    var shipping = DELIVERY.filter(function (d) { return d.handle === state.delivery; })[0].cents;
    var taxes = Math.round((subtotal - discount) * TAX_RATE);
    return { subtotal: subtotal, discount: discount, shipping: shipping, taxes: taxes,
             total: subtotal - discount + shipping + taxes };
  }

  function render() {
    $("cart-lines").innerHTML = PRODUCTS.map(function (p) {
      return '<li class="line"><span class="thumb"><img src="' + imageUrl(p.image) + '" alt="">' +
        '<span class="qty">' + p.quantity + '</span></span><span><span class="title">' + p.title +
        '</span><br><span class="variant">' + p.variant + '</span></span>' +
        '<span class="money">' + format(p.cents * p.quantity) + "</span></li>";
    }).join("");
    var t = totals();
    var rows = [["Subtotal", format(t.subtotal), ""]];
    if (t.discount) { rows.push(["Discount " + state.discount.title, "−" + format(t.discount), "discount"]); }
    rows.push(["Shipping", format(t.shipping), ""], ["Estimated taxes", format(t.taxes), ""],
              ["Total", CURRENCY + " " + format(t.total), "grand"]);
    $("totals").innerHTML = rows.map(function (r) {
      return '<dt class="' + r[2] + '">' + r[0] + '</dt><dd class="money ' + r[2] + '">' + r[1] + "</dd>";
    }).join("");
    $("pay-now").textContent = "Pay now · " + format(t.total);
  }

  function renderDelivery() {
    $("delivery-options").innerHTML = DELIVERY.map(function (d) {
      return '<label class="choice"><input type="radio" name="delivery" id="delivery-' + d.handle +
        '" value="' + d.handle + '"' + (d.handle === state.delivery ? " checked" : "") + ">" +
        "<span>" + d.title + "<small>" + d.description + "</small></span>" +
        '<span class="price">' + format(d.cents) + "</span></label>";
    }).join("");
  }

  // --- form -----------------------------------------------------------------------------------

  var REQUIRED = ["contact-email", "ship-first-name", "ship-last-name", "ship-address1",
                  "ship-city", "ship-zip"];
  var SAMPLE = { "contact-email": "ada.quill@lumenmoss.example", "contact-phone": "+1 555 0100",
                 "ship-first-name": "Ada", "ship-last-name": "Quill",
                 "ship-address1": "12 Harbour Lane", "ship-city": "Port Alder", "ship-zip": "90210",
                 "ship-province": "CA", "pay-name": "Ada Quill" };

  function fillSample() {
    Object.keys(SAMPLE).forEach(function (id) { if (!$(id).value) { $(id).value = SAMPLE[id]; } });
  }
  function missingFields() { return REQUIRED.filter(function (id) { return !$(id).value.trim(); }); }
  function notice(text) {
    $("notice").textContent = text || "";
    $("notice").classList.toggle("show", !!text);
  }
  function value(id) { return $(id).value.trim(); }

  function mailingAddress() {
    var country = $("ship-country");
    return { address1: value("ship-address1"), city: value("ship-city"),
             country: country.options[country.selectedIndex].text, countryCode: country.value,
             firstName: value("ship-first-name"), lastName: value("ship-last-name"),
             phone: value("contact-phone"), province: value("ship-province"),
             provinceCode: value("ship-province"), zip: value("ship-zip") };
  }
  function completedAddress() {
    var a = mailingAddress();
    return { address1: a.address1, city: a.city, countryCode: a.countryCode, firstName: a.firstName,
             lastName: a.lastName, name: a.firstName + " " + a.lastName, phone: a.phone,
             postalCode: a.zip, zoneCode: a.provinceCode };
  }

  // --- pixel data -----------------------------------------------------------------------------

  function discountApplication() {
    return { allocationMethod: "ACROSS", targetSelection: "ALL", targetType: "LINE_ITEM",
             title: state.discount.title, type: "DISCOUNT_CODE",
             value: { percentage: state.discount.percentage } };
  }

  // The checkout as commerce data; `withOrder` adds the order and its transaction.
  function commerceData(withOrder) {
    var t = totals();
    var delivery = DELIVERY.filter(function (d) { return d.handle === state.delivery; })[0];
    var checkout = {
      attributes: [{ key: "giftNote", value: $("gift-note-toggle").checked ? value("gift-note") : "" }],
      buyerAcceptsEmailMarketing: $("contact-marketing").checked,
      buyerAcceptsSmsMarketing: false,
      currencyCode: CURRENCY,
      delivery: { selectedDeliveryOptions: [{ cost: money(delivery.cents),
        costAfterDiscounts: money(delivery.cents), description: delivery.description,
        handle: delivery.handle, title: delivery.title, type: "shipping" }] },
      discountApplications: state.discount ? [discountApplication()] : [],
      discountsAmount: money(t.discount),
      lineItems: PRODUCTS.map(function (p) {
        var line = { finalLinePrice: money(p.cents * p.quantity), id: "lm-line-" + p.variantId,
          properties: [], quantity: p.quantity, title: p.title,
          variant: { id: p.variantId, image: { src: imageUrl(p.image) }, price: money(p.cents),
            product: { id: p.id, title: p.title, type: "Homeware", untranslatedTitle: p.title,
                       url: "/products/" + p.id, vendor: "Lumenmoss" },
            sku: p.sku, title: p.variant, untranslatedTitle: p.variant } };
        if (state.discount) {
          line.discountAllocations = [{ amount: money(p.cents * p.quantity * state.discount.percentage / 100),
                                        discountApplication: discountApplication() }];
        }
        return line;
      }),
      localization: { country: { isoCode: $("ship-country").value }, language: { isoCode: "EN" },
                      market: { handle: "lumenmoss-test", id: "lm-market-1" } },
      shippingLine: { price: money(t.shipping) },
      subtotalPrice: money(t.subtotal),
      token: cartToken,
      totalPrice: money(t.total),
      totalTax: money(t.taxes)
    };
    if (value("contact-email")) { checkout.email = value("contact-email"); }
    if (value("contact-phone")) { checkout.phone = value("contact-phone"); }
    if (value("ship-address1")) {
      checkout.shippingAddress = mailingAddress();
      checkout.billingAddress = mailingAddress();
    }
    if (withOrder) {
      checkout.order = { customer: { id: "lm-customer-7", isFirstOrder: true }, id: orderId };
      checkout.transactions = [{ amount: money(t.total), gateway: "lumenmoss-test",
        paymentMethod: { name: "Lumenmoss test payment", type: "test" } }];
    }
    return { checkout: checkout };
  }

  function completedSummary() {
    var t = totals();
    var address = completedAddress();
    var priceDiscounts = state.discount ? [{ amount: money(t.discount), applicationType: "DISCOUNT_CODE",
      title: state.discount.title, value: state.discount.percentage, valueType: "PERCENTAGE" }] : undefined;
    var delivery = DELIVERY.filter(function (d) { return d.handle === state.delivery; })[0];
    return { orderDetails: {
      billingAddress: address,
      cart: {
        lines: PRODUCTS.map(function (p) {
          var line = { image: { altText: p.title, lg: imageUrl(p.image), md: imageUrl(p.image),
                                sm: imageUrl(p.image) },
                       merchandiseId: p.variantId, price: money(p.cents), productId: p.id,
                       quantity: p.quantity, title: p.title };
          if (state.discount) {
            line.discounts = [{ amount: money(p.cents * p.quantity * state.discount.percentage / 100),
              applicationType: "DISCOUNT_CODE", title: state.discount.title,
              value: state.discount.percentage, valueType: "PERCENTAGE" }];
          }
          return line;
        }),
        price: { discounts: priceDiscounts, shipping: money(t.shipping), subtotal: money(t.subtotal),
                 taxes: money(t.taxes), total: money(t.total) },
        token: cartToken
      },
      deliveries: [{ details: { additionalInfo: delivery.description, location: address,
                                name: delivery.title }, method: "SHIPPING" }],
      email: value("contact-email"),
      id: orderId,
      paymentMethods: [{ details: { label: "Lumenmoss test payment", reference: "lm-test-" + orderId,
                                    last4: null }, type: "test" }],
      phone: value("contact-phone") || undefined
    } };
  }

  function stepPixels() {
    pixels.standard("checkout_contact_info_submitted", commerceData(false));
    pixels.standard("checkout_address_info_submitted", commerceData(false));
    pixels.standard("checkout_shipping_info_submitted", commerceData(false));
    pixels.standard("payment_info_submitted", commerceData(false));
  }

  function giftNotePixel() {
    return pixels.custom("lumenmoss_gift_note_added",
                         { noteLength: value("gift-note").length, wrapping: "kraft", lines: [1, "card"] });
  }

  // --- actions --------------------------------------------------------------------------------

  function setDialog(open) {
    if (state.dialogOpen === open) { return; }
    state.dialogOpen = open;
    $("discount-dialog").classList.toggle("open", open);
    $("discount-message").textContent = "";
    site.send("checkoutBlockingEvent", open ? "true" : "false");
    if (open) { $("discount-code").focus(); }
  }

  function applyDiscount() {
    var code = value("discount-code").toUpperCase();
    if (!DISCOUNTS[code]) {
      $("discount-message").textContent = code ? "That code is not valid here." : "Enter a code.";
      return false;
    }
    state.discount = DISCOUNTS[code];
    render();
    setDialog(false);
    return true;
  }

  function thankYouUrl() {
    var path = window.location.pathname.replace(/\/+$/, "");
    return path + "/thank-you?order_id=" + encodeURIComponent(orderId);
  }

  function pay() {
    if (state.paying) { return; }
    var missing = missingFields();
    if (missing.length) {
      notice("Please fill in: " + missing.map(function (id) {
        return $(id).closest("label").firstChild.textContent.trim();
      }).join(", ") + ".");
      $(missing[0]).focus();
      return;
    }
    notice("");
    state.paying = true;
    $("pay-now").disabled = true;
    $("pay-now").textContent = "Processing test payment…";
    stepPixels();
    if ($("gift-note-toggle").checked) { giftNotePixel(); }
    site.send("completed", JSON.stringify(completedSummary()));
    pixels.standard("checkout_completed", commerceData(true));
    setTimeout(function () { window.location.assign(thankYouUrl()); }, THANK_YOU_DELAY_MS);
  }

  function sendVariantError() {
    var name = config.error;
    var text;
    if (name === "malformed") {
      text = "{this is not JSON";
    } else if (name === "object") {
      text = JSON.stringify(ERRORS.expired);
    } else {
      var record = Object.assign({ flowType: "regular", type: "checkout_error" }, ERRORS[name]);
      // ?code= and ?reason= override; an empty value leaves the key out.
      ["code", "reason"].forEach(function (key) {
        if (config[key] === "") { delete record[key]; } else if (config[key]) { record[key] = config[key]; }
      });
      text = JSON.stringify([record]);
    }
    notice("This demo checkout reports an error on purpose: " + name + ".");
    site.send("error", text);
  }

  // --- scripted scenarios ---------------------------------------------------------------------

  var SCENARIOS = {
    pay: function () { fillSample(); pay(); },
    discount: async function () {
      setDialog(true);
      await sleep(autoDelay);
      $("discount-code").value = query.get("code") || "WELCOME10";
      if (!applyDiscount()) { setDialog(false); }
    },
    terms: function () { $("terms-link").click(); },
    mailto: function () { $("support-link").click(); },
    pixels: function () {
      fillSample();
      stepPixels();
      $("gift-note-toggle").checked = true;
      $("gift-note-field").hidden = false;
      $("gift-note").value = "Happy slow mornings!";
      giftNotePixel();
    },
    deeplink: function () { window.location.href = "lumenmoss-app://orders/" + orderId; },
    unknown: function () { site.send("Completed", "{}"); site.send("orderShipped", "{}"); },
    garbage: function () { site.sendRaw("not an envelope"); },
    "completed-empty": function () { site.send("completed", "{}"); }
  };

  async function runScenario(names) {
    for (var i = 0; i < names.length; i += 1) {
      await sleep(autoDelay);
      if (!SCENARIOS[names[i]]) { console.warn("unknown scenario " + names[i]); continue; }
      await SCENARIOS[names[i]]();
    }
  }

  function start() {
    if (state.started) { return; }
    state.started = true;
    pixels.standard("page_viewed", null);
    pixels.standard("checkout_started", commerceData(false));
    var steps = (query.get("auto") || "").split(",").filter(Boolean);
    if (config.variant === "error") {
      sleep(autoDelay).then(sendVariantError);
    }
    runScenario(steps);
  }

  // --- wiring ---------------------------------------------------------------------------------

  $("checkout-form").addEventListener("submit", function (event) { event.preventDefault(); pay(); });
  $("discount-open").addEventListener("click", function () { setDialog(true); });
  $("discount-cancel").addEventListener("click", function () { setDialog(false); });
  $("discount-apply").addEventListener("click", applyDiscount);
  $("discount-code").addEventListener("keydown", function (event) {
    if (event.key === "Enter") { event.preventDefault(); applyDiscount(); }
    if (event.key === "Escape") { setDialog(false); }
  });
  $("delivery-options").addEventListener("change", function (event) {
    state.delivery = event.target.value;
    render();
  });
  $("gift-note-toggle").addEventListener("change", function () {
    $("gift-note-field").hidden = !$("gift-note-toggle").checked;
  });
  $("gift-note").addEventListener("change", function () {
    if (value("gift-note")) { giftNotePixel(); }
  });

  renderDelivery();
  render();
  site.on("presented", start);
  site.ready();
  if (!site.hasBridge()) { start(); }
  window.VembaCheckout = { pay: pay, setDialog: setDialog, orderId: orderId, config: config,
                           thankYouUrl: thankYouUrl, scenarios: Object.keys(SCENARIOS) };
})();
