// The picture of solids in the documentation: node solid_picture.js SOLIDS.glb PICTURE.png
// The file is read by the loader that comes with three.js, as any program that draws it would; then the bodies are
// lifted apart, so that each is seen to be closed.
"use strict";

const fs = require("node:fs");
const path = require("node:path");
const { start_browser } = require("./browser.js");

const [, , solids, picture] = process.argv;

const THREE_JS = process.env.QUARN_THREE_JS;
const LOADER_JS = path.join(path.dirname(THREE_JS), "examples/js/loaders/GLTFLoader.js");

const SIZE = { width: 900, height: 600, names: 110 };  // pixels; names: the width of their column
const GAP_UM = 3.2;       // between one body and the next
const TURN_DEGREES = 28;  // to the right, from the cut face
const TILT_DEGREES = 26;  // from above
const SHARP_DEGREES = 25; // an edge between faces that differ by more is drawn as a line

// The rest runs in the browser.

// Reads the file: its section, a node above the films.
async function read_section(base64) {
  const bytes = Uint8Array.from(atob(base64), (letter) => letter.charCodeAt(0));
  const file = await new Promise((done, failed) => new THREE.GLTFLoader().parse(bytes.buffer, "", done, failed));
  const section = file.scene.children[0];
  section.scale.multiplyScalar(1e6);  // metres to micrometres: nearer to what shadows and lines reckon with
  return section;
}

// Lifts each body off the one below it, and gives it the lines of its sharp edges.
function lift_apart(section, gap, sharp_degrees) {
  let lift = 0;
  let below = null;
  for (const film of section.children) {
    film.geometry.computeBoundingBox();
    const { min, max } = film.geometry.boundingBox;
    lift = below === null ? 0 : Math.max(lift, below + gap - min.y);
    film.position.y = lift;
    below = max.y + lift;
    film.castShadow = true;
    film.receiveShadow = true;
    film.material.polygonOffset = true;
    film.material.polygonOffsetFactor = 1;
    film.material.polygonOffsetUnits = 1;
    const lines = new THREE.LineSegments(new THREE.EdgesGeometry(film.geometry, sharp_degrees),
      new THREE.LineBasicMaterial({ color: 0x000000, transparent: true, opacity: 0.6 }));
    film.add(lines);
  }
  section.updateMatrixWorld(true);
}

// The corners of a body's triangles, in micrometres.
function corners_of(film) {
  const places = film.geometry.getAttribute("position");
  return Array.from({ length: places.count }, (_, i) =>
    new THREE.Vector3().fromBufferAttribute(places, i).applyMatrix4(film.matrixWorld));
}

// A camera without perspective that has all bodies in its picture, and room for names on the right.
function place_camera(films, size, turn_degrees, tilt_degrees) {
  const camera = new THREE.OrthographicCamera(-1, 1, 1, -1, -500, 500);
  const [turn, tilt] = [THREE.Math.degToRad(turn_degrees), THREE.Math.degToRad(tilt_degrees)];
  camera.position.set(Math.sin(turn) * Math.cos(tilt), Math.sin(tilt), Math.cos(turn) * Math.cos(tilt));
  camera.lookAt(0, 0, 0);
  camera.updateMatrixWorld(true);
  const seen = new THREE.Box3();
  for (const corner of films.flatMap(corners_of)) {
    seen.expandByPoint(corner.applyMatrix4(camera.matrixWorldInverse));
  }
  const [width, height] = [seen.max.x - seen.min.x, seen.max.y - seen.min.y];
  const margin = 24;
  const free = { width: size.width - size.names - 2 * margin, height: size.height - 2 * margin };
  const scale = Math.max(width / free.width, height / free.height);  // micrometres a pixel
  const middle_y = (seen.min.y + seen.max.y) / 2;
  camera.left = seen.min.x - scale * (margin + (free.width - width / scale) / 2);
  camera.right = camera.left + scale * size.width;
  camera.top = middle_y + scale * size.height / 2;
  camera.bottom = middle_y - scale * size.height / 2;
  camera.updateProjectionMatrix();
  return camera;
}

function light(scene, box) {
  scene.add(new THREE.HemisphereLight(0xffffff, 0xb4c0cc, 0.78));
  const sun = new THREE.DirectionalLight(0xffffff, 0.4);
  const middle = box.getCenter(new THREE.Vector3());
  const reach = box.getSize(new THREE.Vector3()).length() / 2;
  sun.position.copy(middle).add(new THREE.Vector3(-0.35, 1, 0.75).multiplyScalar(2 * reach));
  sun.target.position.copy(middle);
  Object.assign(sun.shadow.camera, { left: -reach, right: reach, top: reach, bottom: -reach, near: 0, far: 5 * reach });
  sun.shadow.mapSize.set(2048, 2048);
  sun.shadow.bias = -0.002;
  sun.castShadow = true;
  scene.add(sun, sun.target);
}

// The name of each body and its volume, in a column on the right, with a line to where the body ends.
function write_names(films, camera, size) {
  const column = size.width - size.names;
  for (const film of films) {
    const places = corners_of(film).map((corner) => corner.project(camera));
    const end = places.reduce((best, each) => (each.x > best.x ? each : best));
    const x = size.width / 2 * (1 + end.x) + 6;
    const y = size.height / 2 * (1 - end.y);
    const line = document.createElement("div");
    line.style.cssText = `position:absolute;left:${x}px;width:${column - 8 - x}px;top:${y}px;height:1px;
      background:#1c2530`;
    const label = document.createElement("div");
    const name = document.createElement("b");
    name.textContent = film.name;
    label.append(name, document.createElement("br"), film.userData.volume_um3.toPrecision(4) + " \u00b5m\u00b3");
    label.style.cssText = `position:absolute;left:${column}px;top:${y - 17}px;
      font:13px/17px "Liberation Sans",Arial,sans-serif;color:#1c2530`;
    document.body.append(line, label);
  }
}

async function draw(base64, options) {
  const { size } = options;
  const section = await read_section(base64);
  lift_apart(section, options.gap, options.sharp);
  const scene = new THREE.Scene();
  scene.background = new THREE.Color(0xffffff);
  scene.add(section);
  light(scene, new THREE.Box3().setFromObject(section));
  const films = section.children;
  const camera = place_camera(films, size, options.turn, options.tilt);
  const renderer = new THREE.WebGLRenderer({ antialias: true, preserveDrawingBuffer: true });
  renderer.setPixelRatio(2);
  renderer.setSize(size.width, size.height);
  renderer.gammaOutput = true;  // colours of the file are linear
  renderer.gammaFactor = 2.2;
  renderer.shadowMap.enabled = true;
  renderer.shadowMap.type = THREE.PCFSoftShadowMap;
  document.body.style.margin = "0";
  document.body.append(renderer.domElement);
  renderer.render(scene, camera);
  write_names(films, camera, size);
}

(async () => {
  const browser = await start_browser();
  try {
    const page = await browser.newPage();
    page.on("pageerror", (error) => console.error(error.message));
    await page.setViewport({ width: SIZE.width, height: SIZE.height });
    for (const script of [THREE_JS, LOADER_JS]) {
      await page.addScriptTag({ path: script });
    }
    for (const each of [read_section, lift_apart, corners_of, place_camera, light, write_names, draw]) {
      await page.addScriptTag({ content: each.toString() });
    }
    await page.evaluate((base64, options) => draw(base64, options), fs.readFileSync(solids).toString("base64"),
      { size: SIZE, gap: GAP_UM, turn: TURN_DEGREES, tilt: TILT_DEGREES, sharp: SHARP_DEGREES });
    await page.screenshot({ path: picture });
  } finally {
    await browser.close();
  }
})();
