// save.js: files that the user takes away from the page.
(function () {
  "use strict";
  const Quarn = (globalThis.Quarn = globalThis.Quarn || {});

  const PIXELS = 2;            // of a picture for each of the drawing
  const KEPT_MS = 60 * 1000;   // until the browser has surely fetched a file

  function save(blob, name) {
    const url = URL.createObjectURL(blob);
    const link = Quarn.dom.element("a", { href: url, download: name });
    document.body.append(link);
    link.click();
    link.remove();
    setTimeout(() => URL.revokeObjectURL(url), KEPT_MS);
  }

  function saveText(text, type, name) {
    save(new Blob([text], { type: type + ";charset=utf-8" }), name);
  }

  function svgText(svg) {
    return '<?xml version="1.0" encoding="UTF-8"?>\n' + new XMLSerializer().serializeToString(svg) + "\n";
  }

  // A drawing as pixels: a promise of a PNG file's bytes.
  function svgPicture(svg) {
    const width = Number(svg.getAttribute("width")) * PIXELS;
    const height = Number(svg.getAttribute("height")) * PIXELS;
    return new Promise((resolve, reject) => {
      const image = new Image();
      image.onerror = () => reject(new Error("The drawing could not be made into a picture."));
      image.onload = () => {
        const canvas = Quarn.dom.element("canvas", { width, height });
        canvas.getContext("2d").drawImage(image, 0, 0, width, height);
        canvas.toBlob((blob) => (blob ? resolve(blob) : image.onerror()), "image/png");
      };
      image.src = "data:image/svg+xml;charset=utf-8," + encodeURIComponent(svgText(svg));
    });
  }

  Quarn.save = { save, saveText, svgText, svgPicture };
})();
