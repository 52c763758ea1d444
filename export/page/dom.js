// dom.js: elements made by hand. Texts of a run enter the page as text nodes only, here.
(function () {
  "use strict";
  const Quarn = (globalThis.Quarn = globalThis.Quarn || {});
  const SVG = "http://www.w3.org/2000/svg";

  function fill(node, attributes, children) {
    for (const [name, value] of Object.entries(attributes || {})) {
      if (value !== null && value !== undefined && value !== false) {
        node.setAttribute(name, value === true ? "" : String(value));
      }
    }
    for (const child of children) {
      if (child !== null && child !== undefined) {
        node.append(child);  // a text becomes a text node, whatever it holds
      }
    }
    return node;
  }

  function element(tag, attributes, ...children) {
    return fill(document.createElement(tag), attributes, children);
  }

  function drawn(tag, attributes, ...children) {
    return fill(document.createElementNS(SVG, tag), attributes, children);
  }

  // One of the icons that stand once in the page as symbols.
  function icon(name) {
    return drawn("svg", { class: "icon", "aria-hidden": "true" }, drawn("use", { href: "#icon-" + name }));
  }

  function byId(id) {
    return document.getElementById(id);
  }

  Quarn.dom = { element, drawn, icon, byId };
})();
