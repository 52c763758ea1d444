"use strict";

// Quarn.Model: what the page knows of the run. Facts, films and steps are there at once; the heights of a step
// are unpacked when they are asked for.
//
// Heights travel as planes, one for each surface that a step made. A plane is the difference from an earlier plane,
// or from nothing, less what its neighbours let expect; export/page_plane.h says how. What a step made lies
// one plane behind the other in one packed block, the lowest bytes of all points first.

(function () {
  const Quarn = (window.Quarn = window.Quarn || {});

  // Enough for some dozens of steps of a grid of 1000 x 1000 points.
  const CACHE_BYTES = 768 * 1024 * 1024;

  // Milliseconds of unpacking after which the page may do something else.
  const SLICE_MS = 25;

  const DAMAGED = "This page is damaged or was not saved whole";

  function read_element(id) {
    const element = document.getElementById(id);
    return element === null ? null : element.textContent;
  }

  function pause() {
    return new Promise((resolve) => setTimeout(resolve, 0));
  }

  function bytes_of_base64(text) {
    const characters = atob(text);
    const bytes = new Uint8Array(characters.length);
    for (let i = 0; i < bytes.length; ++i) {
      bytes[i] = characters.charCodeAt(i);
    }
    return bytes;
  }

  async function inflate(bytes) {
    const stream = new Blob([bytes]).stream().pipeThrough(new DecompressionStream("deflate"));
    return new Uint8Array(await new Response(stream).arrayBuffer());
  }

  // The heights of a plane.
  //   bytes      of the block, from the plane's first one on
  //   count      bytes of each point
  //   reference  the plane that it is the difference from, or null
  function unpack_plane(bytes, count, columns, rows, reference) {
    const points = columns * rows;
    const plane = new Int32Array(points);
    for (let k = 0; k < count; ++k) {
      const shift = 8 * k;
      const start = k * points;
      for (let i = 0; i < points; ++i) {
        plane[i] |= bytes[start + i] << shift;
      }
    }
    for (let m = 0, i = 0; m < rows; ++m) {
      // What the row rises from its beginning on, less what the row in front does, adds up to the row.
      let sum = 0;
      if (m === 0) {
        for (let n = 0; n < columns; ++n, ++i) {
          sum = (sum + ((plane[i] >>> 1) ^ -(plane[i] & 1))) | 0;
          plane[i] = sum;
        }
      } else {
        for (let n = 0; n < columns; ++n, ++i) {
          sum = (sum + ((plane[i] >>> 1) ^ -(plane[i] & 1))) | 0;
          plane[i] = (sum + plane[i - columns]) | 0;
        }
      }
    }
    if (reference !== null) {
      for (let i = 0; i < points; ++i) {
        plane[i] = (plane[i] + reference[i]) | 0;
      }
    }
    return plane;
  }

  class Model {
    constructor(told, read, cache_bytes) {
      this.facts = told.facts;
      this.columns = told.columns;
      this.rows = told.rows;
      this.spacing = told.spacing;
      this.quantum = told.quantum;
      this.films = told.films.map((film, id) => ({ id, ...film }));
      this.steps = told.steps.map((step) => ({
        number: step.number,
        title: step.title,
        kind: step.kind,
        line: step.line,
        changed: [...step.changes.map((change) => change[0]), ...step.removed].sort((a, b) => a - b),
      }));
      this._read = read;
      this._cache_bytes = cache_bytes;
      this._forms = [];  // of each plane: {step, offset in the step's block, reference, bytes}
      this._block_sizes = [];
      this._states = [];  // of each step: the films that there are, [film, bottom, top], from the bottom up
      this._planes = new Map();  // unpacked planes by number, those used last at the end
      this._queue = Promise.resolve();
      this._list(told.steps);
    }

    // What the page's own elements tell.
    //   read         gives the text of the element of an id, or null
    //   cache_bytes  of unpacked planes that are kept for steps which are not asked for
    // Throws an error in words when the page or the browser is not fit for it.
    static async open(read = read_element, cache_bytes = CACHE_BYTES) {
      if (typeof DecompressionStream === "undefined") {
        throw new Error("This browser is too old to unpack the heights: it has no DecompressionStream");
      }
      const text = read("quarn-facts");
      let told = null;
      try {
        told = JSON.parse(text);
      } catch (error) {
        throw new Error(DAMAGED + ": " + error.message);
      }
      if (told === null) {
        throw new Error(DAMAGED + ": it holds no run");
      }
      return new Model(told, read, cache_bytes);
    }

    _list(steps) {
      const points = this.columns * this.rows;
      let films = new Map();
      steps.forEach((step, index) => {
        let offset = 0;
        for (const [reference, bytes] of step.planes) {
          this._forms.push({ step: index, offset, reference, bytes });
          offset += bytes * points;
        }
        this._block_sizes.push(offset);
        films = new Map(films);
        step.removed.forEach((film) => films.delete(film));
        step.changes.forEach(([film, bottom, top]) => films.set(film, [film, bottom, top]));
        this._states.push([...films.values()].sort((a, b) => a[0] - b[0]));
      });
    }

    // The films of a step from the bottom up: [{film, bottom, top}], heights in quanta, a film being absent where
    // its top is not above its bottom. A film that a step left as it was keeps its arrays; they are not to be
    // written to. Throws an error in words when the page is damaged or memory is lacking.
    heights(index) {
      const result = this._queue.then(() => this._heights(index));
      this._queue = result.catch(() => {});
      return result;
    }

    async _heights(index) {
      const state = this._states[index];
      if (state === undefined) {
        throw new Error("The page has no step of index " + index);
      }
      const wanted = new Set(state.flatMap(([, bottom, top]) => [bottom, top]));
      await this._unpack(wanted);
      for (const number of wanted) {
        const plane = this._planes.get(number);
        this._planes.delete(number);
        this._planes.set(number, plane);
      }
      this._forget(wanted.size);
      return state.map(([film, bottom, top]) => ({
        film,
        bottom: this._planes.get(bottom),
        top: this._planes.get(top),
      }));
    }

    // Unpacks planes that are not there yet, with those they refer to, which have lower numbers.
    async _unpack(wanted) {
      const missing = new Set();
      for (const number of wanted) {
        let next = number;
        while (next >= 0 && !this._planes.has(next) && !missing.has(next)) {
          missing.add(next);
          next = this._forms[next].reference;
        }
      }
      let block = null;
      let step = -1;
      let start = performance.now();
      for (const number of [...missing].sort((a, b) => a - b)) {
        const form = this._forms[number];
        if (form.step !== step) {
          step = form.step;
          block = await this._block(step);
        }
        this._planes.set(number, this._plane(form, block));
        if (performance.now() - start > SLICE_MS) {
          await pause();
          start = performance.now();
        }
      }
    }

    _plane(form, block) {
      const reference = form.reference >= 0 ? this._planes.get(form.reference) : null;
      if (form.bytes === 0 && reference !== null) {
        return reference;
      }
      return unpack_plane(block.subarray(form.offset), form.bytes, this.columns, this.rows, reference);
    }

    async _block(step) {
      const text = this._read("quarn-step-" + step);
      let block = null;
      try {
        block = await inflate(bytes_of_base64(text));
      } catch (error) {
        throw new Error(DAMAGED + ": the heights of step " + this.steps[step].number + " cannot be unpacked");
      }
      if (block.length !== this._block_sizes[step]) {
        throw new Error(DAMAGED + ": the heights of step " + this.steps[step].number + " are others");
      }
      return block;
    }

    // Drops the planes that were used longest ago, but never the `used` last ones.
    _forget(used) {
      const bytes = 4 * this.columns * this.rows;
      const most = Math.max(used, Math.floor(this._cache_bytes / bytes));
      for (const number of this._planes.keys()) {
        if (this._planes.size <= most) {
          return;
        }
        this._planes.delete(number);
      }
    }
  }

  Quarn.Model = Model;
})();
