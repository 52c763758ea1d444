// stage.js: the films as the graphics draw them. Light is that of the program's pictures: a level top shows the
// film's own colour, a cut face a ninth less, and it comes around with the viewer.
(function () {
  "use strict";
  const Quarn = (globalThis.Quarn = globalThis.Quarn || {});

  // What is cut away of a surface is left out pixel by pixel, so that a cut moves without a new mesh. Faces are
  // made for their cut and have nothing to leave out: at their edges they would lose pixels.
  const CLIPPED = "if (place.x < cut.x || place.y < cut.y) discard;";
  const NO_CUT = -1e9;

  const VERTEX = `
    attribute vec4 facing;
    uniform vec3 mainLight;
    uniform vec3 sideLight;
    uniform float verticalScale;
    varying float brightness;
    varying vec2 place;
    void main() {
      vec3 normal = normalize(vec3(facing.xy * verticalScale, facing.z));
      float ambient = 0.45 * (0.80 + 0.20 * normal.z);
      brightness = ambient + 0.60 * max(dot(normal, mainLight), 0.0) + 0.24 * max(dot(normal, sideLight), 0.0);
      place = position.xy;
      gl_Position = projectionMatrix * modelViewMatrix * vec4(position, 1.0);
    }`;

  // Beyond its own brightness a colour cannot grow, so what faces the light turns paler instead.
  const FRAGMENT = `
    uniform vec3 color;
    uniform float alpha;
    uniform vec2 cut;
    uniform float glow;
    varying float brightness;
    varying vec2 place;
    void main() {
      ${CLIPPED}
      vec3 lit = color * min(brightness, 1.0);
      lit += (vec3(1.0) - lit) * clamp(brightness - 1.0, 0.0, 1.0);
      gl_FragColor = vec4(mix(lit, vec3(1.0), glow), alpha);
    }`;

  // Red: of the films that are outlined; green: of those among them that are gone.
  const MASK_FRAGMENT = `
    uniform vec2 chosen;
    uniform vec2 cut;
    varying float brightness;
    varying vec2 place;
    void main() {
      ${CLIPPED}
      gl_FragColor = vec4(chosen, 0.0, 1.0);
    }`;

  const SHEET_VERTEX = `
    varying vec2 at;
    void main() {
      at = position.xy * 0.5 + 0.5;
      gl_Position = vec4(position.xy, 0.0, 1.0);
    }`;

  // A line along the border of what the mask shows, dark on light or light on dark, with a rim of the other kind,
  // so that it stands out from films of any colour. What is gone is hatched, as drawings do with what is not
  // there any more.
  const OUTLINE_FRAGMENT = `
    uniform sampler2D mask;
    uniform vec2 pixel;
    uniform vec3 ink;
    uniform vec3 rim;
    varying vec2 at;
    float chosen(float x, float y) {
      return texture2D(mask, at + pixel * vec2(x, y)).r;
    }
    // How evenly a place is divided between what is outlined and the rest.
    float edge(float part) {
      return min(1.0, 5.0 * part * (1.0 - part));
    }
    void main() {
      float far = chosen(2.0, 2.0) + chosen(-2.0, 2.0) + chosen(2.0, -2.0) + chosen(-2.0, -2.0);
      vec2 here = texture2D(mask, at).rg;
      float line = 0.0;
      float around = 0.0;
      if (far != 4.0 * here.r) {  // most places are not near a border
        far += chosen(2.8, 0.0) + chosen(-2.8, 0.0) + chosen(0.0, 2.8) + chosen(0.0, -2.8);
        float near = chosen(1.3, 0.0) + chosen(-1.3, 0.0) + chosen(0.0, 1.3) + chosen(0.0, -1.3) +
          chosen(0.9, 0.9) + chosen(-0.9, 0.9) + chosen(0.9, -0.9) + chosen(-0.9, -0.9);
        line = edge(near / 8.0);
        around = edge(far / 8.0);
      } else if (here.g == 0.0) {
        discard;
      }
      float stripe = abs(fract((at.x / pixel.x + at.y / pixel.y) / 9.0) - 0.5);
      float hatch = here.g * smoothstep(0.14, 0.04, stripe) * 0.55;
      float strength = max(max(line, 0.75 * around), hatch);
      gl_FragColor = vec4(mix(rim, ink, max(line, hatch)), strength);
    }`;

  const MAIN_LIGHT = [0, -0.743, 0.669];  // from the front and above
  const SIDE_LIGHT = [-0.701, -0.35, 0.621];  // a weak one that tells left slopes from right ones

  function turned(direction, azimuth) {
    const [s, c] = [Math.sin(azimuth), Math.cos(azimuth)];
    return [c * direction[0] - s * direction[1], s * direction[0] + c * direction[1], direction[2]];
  }

  // A context of the graphics, or null where there are none.
  function openContext(canvas) {
    const wishes = { alpha: true, antialias: true, stencil: false, powerPreference: "high-performance" };
    try {
      return canvas.getContext("webgl", wishes) || canvas.getContext("experimental-webgl", wishes);
    } catch (error) {
      return null;
    }
  }

  function createGeometry({ positions, normals, indices }) {
    const geometry = new THREE.BufferGeometry();
    geometry.setAttribute("position", new THREE.BufferAttribute(positions, 3));
    geometry.setAttribute("facing", new THREE.BufferAttribute(normals, 4, true));
    geometry.setIndex(new THREE.BufferAttribute(indices, 1));
    return geometry;
  }

  class Stage {
    // Throws where there are no graphics.
    constructor(canvas) {
      const context = openContext(canvas);
      if (!context) {
        throw new Error("no graphics");
      }
      this.renderer = new THREE.WebGLRenderer({ canvas, context, alpha: true, antialias: true });
      this.renderer.setClearColor(0x000000, 0);
      this.renderer.autoClear = false;
      this.scene = new THREE.Scene();
      this.content = new THREE.Group();
      this.scene.add(this.content);
      this.camera = new THREE.PerspectiveCamera();
      this.shared = {
        mainLight: { value: new THREE.Vector3() },
        sideLight: { value: new THREE.Vector3() },
        verticalScale: { value: 1 },
      };
      this.cut = { value: new THREE.Vector2(NO_CUT, NO_CUT) };
      this.noCut = { value: new THREE.Vector2(NO_CUT, NO_CUT) };
      this.films = new Map();  // by number: its uniforms and the materials of its surfaces and faces
      this.parts = new Map();  // by name of the part: meshes
      this.sheet = this.createSheet();
      const createMask = (red, green) =>
        this.createLook(MASK_FRAGMENT, { chosen: { value: new THREE.Vector2(red, green) } });
      this.masks = { other: createMask(0, 0), outlined: createMask(1, 0), gone: createMask(1, 1) };
    }

    // How something is drawn. Surfaces lie a little behind the faces of cuts, in which their edges lie.
    createLook(fragmentShader, own) {
      const make = (more) => {
        const uniforms = { ...this.shared, ...own, ...more };
        return new THREE.ShaderMaterial({ vertexShader: VERTEX, fragmentShader, uniforms });
      };
      const surface = make({ cut: this.cut });
      surface.polygonOffset = true;
      surface.polygonOffsetFactor = 1;
      surface.polygonOffsetUnits = 1;
      return { uniforms: own, surface, face: make({ cut: this.noCut }) };
    }

    // What the outline is drawn on: the whole picture.
    createSheet() {
      const geometry = new THREE.BufferGeometry();
      const corners = new Float32Array([-1, -1, 0, 3, -1, 0, -1, 3, 0]);
      geometry.setAttribute("position", new THREE.BufferAttribute(corners, 3));
      const material = new THREE.ShaderMaterial({
        vertexShader: SHEET_VERTEX,
        fragmentShader: OUTLINE_FRAGMENT,
        uniforms: {
          mask: { value: null },
          pixel: { value: new THREE.Vector2() },
          ink: { value: new THREE.Color() },
          rim: { value: new THREE.Color() },
        },
        transparent: true,
        depthTest: false,
        depthWrite: false,
      });
      const mesh = new THREE.Mesh(geometry, material);
      mesh.frustumCulled = false;
      const scene = new THREE.Scene();
      scene.add(mesh);
      return { scene, geometry, material, target: null };
    }

    // The pixels of the picture: its size in those of the page, and how many there are to one of them.
    setSize(width, height, ratio) {
      this.renderer.setPixelRatio(ratio);
      this.renderer.setSize(width, height, false);
      if (this.sheet.target) {
        this.sheet.target.dispose();
        this.sheet.target = null;
      }
    }

    // How a film looks: its number, color (red, green, blue from 0 to 1) and alpha.
    setFilm(id, color, alpha) {
      if (!this.films.has(id)) {
        const uniforms = { color: { value: new THREE.Color() }, alpha: { value: 1 }, glow: { value: 0 } };
        this.films.set(id, this.createLook(FRAGMENT, uniforms));
      }
      const look = this.films.get(id);
      look.uniforms.color.value.setRGB(...color);
      look.uniforms.alpha.value = alpha;
      for (const material of [look.surface, look.face]) {
        material.transparent = alpha < 1;
        material.depthWrite = alpha >= 1;
      }
    }

    // Takes meshes, [{film, mesh}], in the place of those that the part had.
    //   kind   "surface" or "face"
    //   gone   true for films that are not there any more: only their outlines are drawn
    setPart(name, kind, meshes, gone = false) {
      for (const old of this.parts.get(name) || []) {
        this.content.remove(old);
        old.geometry.dispose();
      }
      const made = [];
      for (const { film, mesh } of meshes) {
        if (mesh.indices.length > 0) {
          const object = new THREE.Mesh(createGeometry(mesh), this.films.get(film)[kind]);
          object.frustumCulled = false;
          object.matrixAutoUpdate = false;
          object.userData = { film, kind, gone };
          object.visible = !gone;
          this.content.add(object);
          made.push(object);
        }
      }
      this.parts.set(name, made);
    }

    triangleCount() {
      let count = 0;
      for (const object of this.content.children) {
        count += object.geometry.index.count / 3;
      }
      return count;
    }

    // The camera as camera.js places it.
    //   aspect   width of the picture by its height
    aim(placed, aspect) {
      const { camera } = this;
      camera.position.set(...placed.eye);
      const basis = new THREE.Matrix4().makeBasis(
        new THREE.Vector3(...placed.right), new THREE.Vector3(...placed.up), new THREE.Vector3(...placed.back)
      );
      camera.quaternion.setFromRotationMatrix(basis);
      camera.updateMatrixWorld();
      const half = placed.field * placed.near;  // of the picture's height
      const [x, y] = [2 * placed.x * half, 2 * placed.y * half];
      const wide = half * aspect;
      camera.projectionMatrix.makePerspective(-wide - x, wide - x, half + y, -half + y, placed.near, placed.far);
      camera.projectionMatrixInverse.getInverse(camera.projectionMatrix);
    }

    // Draws a picture.
    //   frame   {placed, aspect, azimuth, cut: [x, y] (micrometres; what is before them is left out),
    //           verticalScale, outlined: set of films or null, ink and rim: colours of the outline, glow: 0..1}
    draw(frame) {
      const { shared, renderer } = this;
      this.aim(frame.placed, frame.aspect);
      shared.mainLight.value.set(...turned(MAIN_LIGHT, frame.azimuth));
      shared.sideLight.value.set(...turned(SIDE_LIGHT, frame.azimuth));
      shared.verticalScale.value = frame.verticalScale;
      this.cut.value.set(...frame.cut);
      this.content.scale.z = frame.verticalScale;
      const isAbove = frame.placed.back[2] >= 0;
      for (const object of this.content.children) {
        // Films that light goes through lie on each other: the far ones first.
        object.renderOrder = isAbove ? object.userData.film : -object.userData.film;
      }
      for (const [id, { uniforms }] of this.films) {
        uniforms.glow.value = frame.outlined && frame.outlined.has(id) ? frame.glow : 0;
      }
      renderer.setRenderTarget(null);
      renderer.clear();
      renderer.render(this.scene, this.camera);
      if (frame.outlined && frame.outlined.size > 0) {
        this.drawOutline(frame);
      }
    }

    // Gives all meshes the looks by which the mask of the outlines is drawn, or their own ones back.
    dressForMask(outlined) {
      for (const object of this.content.children) {
        const { film, kind, gone } = object.userData;
        const look = this.films.get(film);
        const isOutlined = gone || (outlined !== null && outlined.has(film));
        object.visible = outlined === null ? !gone : isOutlined || !look[kind].transparent;
        const mask = gone ? this.masks.gone : isOutlined ? this.masks.outlined : this.masks.other;
        object.material = outlined === null ? look[kind] : mask[kind];
      }
    }

    drawOutline(frame) {
      const { renderer, sheet } = this;
      const size = renderer.getDrawingBufferSize(new THREE.Vector2());
      if (!sheet.target) {
        sheet.target = new THREE.WebGLRenderTarget(size.x, size.y, { stencilBuffer: false });
      }
      this.dressForMask(frame.outlined);
      renderer.setRenderTarget(sheet.target);
      renderer.clear();
      renderer.render(this.scene, this.camera);
      this.dressForMask(null);
      const { uniforms } = sheet.material;
      const ratio = renderer.getPixelRatio();
      uniforms.mask.value = sheet.target.texture;
      uniforms.pixel.value.set(ratio / size.x, ratio / size.y);
      uniforms.ink.value.setRGB(...frame.ink);
      uniforms.rim.value.setRGB(...frame.rim);
      renderer.setRenderTarget(null);
      renderer.render(sheet.scene, this.camera);
    }

    dispose() {
      for (const name of this.parts.keys()) {
        this.setPart(name, "surface", []);
      }
      for (const { surface, face } of [...this.films.values(), ...Object.values(this.masks)]) {
        surface.dispose();
        face.dispose();
      }
      this.sheet.material.dispose();
      this.sheet.geometry.dispose();
      if (this.sheet.target) {
        this.sheet.target.dispose();
      }
      this.renderer.dispose();
    }
  }

  Quarn.Stage = Stage;
})();
