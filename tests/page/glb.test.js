// Solids of the examples as other programs read them: every step is taken to the format's own validator, and the
// last step to a reader that shares nothing with the writer.
"use strict";

const assert = require("node:assert");
const { execFileSync } = require("node:child_process");
const fs = require("node:fs");
const os = require("node:os");
const path = require("node:path");
const { after, before, test } = require("node:test");
const validator = require("gltf-validator");

const PROJECT = process.env.QUARN_PROJECT;
// With the columns of the grid: that of the lens is fine enough for films whose indices need 32 bits.
const EXAMPLES = [["cmos-inverter", 200], ["damascene", 200], ["mems-cantilever", 200], ["standard-cell", 200],
  ["waveguide-lens", 400]];

let folder;
before(() => {
  folder = fs.mkdtempSync(path.join(os.tmpdir(), "quarn-glb-"));
});
after(() => {
  fs.rmSync(folder, { recursive: true });
});

// The solids and the table of an example. Returns its folder and the solids in the order of the steps.
function run_example(name, columns) {
  const files = path.join(PROJECT, "examples", name, name.replaceAll("-", "_"));
  const output = path.join(folder, name);
  const text = fs.readFileSync(files + ".txt", "utf8").replace(/-N \d+/, "-N " + columns);
  fs.writeFileSync(output + ".txt", text);
  execFileSync(path.join(PROJECT, "build/linux/bin/quarn-batch"),
    [files + ".gds", output + ".txt", "--mesh", "glb", "--profile", "csv", "--no-images", "--output", output],
    { cwd: folder, stdio: "pipe" });
  const solids = fs.readdirSync(output).filter((file) => file.endsWith(".glb")).sort();
  return { output, solids };
}

function read_glb(file) {
  const bytes = fs.readFileSync(file);
  const json_size = bytes.readUInt32LE(12);
  const start = 20 + json_size + 8;
  return {
    json: JSON.parse(bytes.subarray(20, 20 + json_size).toString("utf8")),
    binary: bytes.buffer.slice(bytes.byteOffset + start, bytes.byteOffset + bytes.length),
  };
}

function read_accessor(glb, index) {
  const accessor = glb.json.accessors[index];
  const view = glb.json.bufferViews[accessor.bufferView];
  const kinds = { 5123: Uint16Array, 5125: Uint32Array, 5126: Float32Array };
  const parts = accessor.type === "VEC3" ? 3 : 1;
  return new kinds[accessor.componentType](glb.binary, view.byteOffset, accessor.count * parts);
}

// Volume of a surface in which every edge has two faces, in opposite directions: by places,
// so that a crack between vertices at one place is none.
function closed_volume(places, indices, name) {
  const numbers = new Map();
  const number_of = new Array(places.length / 3);
  for (let i = 0; i < number_of.length; ++i) {
    const key = places[3 * i] + "," + places[3 * i + 1] + "," + places[3 * i + 2];
    if (!numbers.has(key)) {
      numbers.set(key, numbers.size);
    }
    number_of[i] = numbers.get(key);
  }
  const edges = new Set();
  let volume = 0;
  for (let i = 0; i < indices.length; i += 3) {
    const corner = (k) => number_of[indices[i + k]];
    for (const [from, to] of [[corner(0), corner(1)], [corner(1), corner(2)], [corner(2), corner(0)]]) {
      const edge = from * numbers.size + to;
      assert.ok(from !== to && !edges.has(edge), name + ": an edge is there twice");
      edges.add(edge);
    }
    const [a, b, c] = [0, 1, 2].map((k) => {
      const at = 3 * indices[i + k];
      return [places[at], places[at + 1], places[at + 2]];
    });
    volume += a[0] * (b[1] * c[2] - b[2] * c[1]) + a[1] * (b[2] * c[0] - b[0] * c[2]) +
      a[2] * (b[0] * c[1] - b[1] * c[0]);
  }
  for (const edge of edges) {
    const [from, to] = [Math.floor(edge / numbers.size), edge % numbers.size];
    assert.ok(edges.has(to * numbers.size + from), name + ": an edge has a single face");
  }
  return volume / 6;
}

// The volumes that the table has for a step, from the substrate up.
function table_volumes(output, number) {
  const [head, ...rows] = fs.readFileSync(path.join(output, "thickness.csv"), "utf8").trim().split("\n");
  const column = head.split(",").indexOf("volume_um3");
  return rows.map((row) => row.split(",")).filter((row) => Number(row[0]) === number)
    .map((row) => Number(row[column]));
}

for (const [name, columns] of EXAMPLES) {
  test("the validator finds nothing in the solids of " + name, async () => {
    const { output, solids } = run_example(name, columns);
    assert.ok(solids.length > 5, "steps");
    for (const solid of solids) {
      const report = await validator.validateBytes(new Uint8Array(fs.readFileSync(path.join(output, solid))));
      assert.deepStrictEqual(report.issues.messages, [], solid);
    }
  });

  test("the solids of the last step of " + name + " are closed and have the table's volumes", () => {
    const output = path.join(folder, name);
    const last = fs.readdirSync(output).filter((file) => file.endsWith(".glb")).sort().pop();
    const glb = read_glb(path.join(output, last));
    const [section, ...films] = glb.json.nodes;
    const [across, up, along] = section.scale;
    assert.strictEqual(up, 1e-6);
    assert.strictEqual(along, across);
    assert.ok(Math.abs(across - 1e-6) <= 1e-6 / 8192, "the mesh is as good as in micrometres");
    const expected = table_volumes(output, Number.parseInt(last, 10));
    assert.strictEqual(films.length, expected.length);
    films.forEach((film, i) => {
      const primitive = glb.json.meshes[film.mesh].primitives[0];
      const volume = closed_volume(read_accessor(glb, primitive.attributes.POSITION),
        read_accessor(glb, primitive.indices), film.name) * across * along * up * 1e18;
      assert.ok(Math.abs(volume - expected[i]) <= 1e-6 * expected[i], film.name + ": " + volume + ", not " +
        expected[i]);
    });
  });
}
