// Pages of real runs, with the heights that the program itself writes for the last step.
"use strict";

const { execFileSync } = require("node:child_process");
const fs = require("node:fs");
const os = require("node:os");
const path = require("node:path");

const PROJECT = process.env.QUARN_PROJECT;

// A trench with oxide, a line of metal across it and a film over both that has a hostile name; resist is made and
// taken away on the way. The layout is an example's; 200 grid points of 40 nm.
const HOSTILE_NAME = "</script><img/src=x/onerror=alert(1)>";
const PROCESS = `# A page's <b>process</b>
settings -version 3 -N 200 -angle 30
gds -cell INVERTER
location -x 0.0 -y 1.2 -dx 8.0 -dy 3.2
deposition -name SILICON -type si -thickness 600 -color 150 155 165 100
photo -name ACTIVE -mask_id 1 -type 1 -res 0.1 -taper 80 -thickness 500
etch -name TRENCH -targets si -depth 350 -iso 0.1
strip
coating -name OXIDE -type ox -thickness 300 -dop 1 -scolor LightBlue
etch -targets ox -depth 100
deposition -name METAL -type m -thickness 200 -sc 1 -scolor firebrick
photo -name GATE -mask_id 2 -type 1 -res 0.1 -thickness 500
etch -targets m -depth 450
strip
deposition -name ${HOSTILE_NAME} -type cap -thickness 150 -sc 1 -scolor goldenrod
dump
`;

// {row, column, slot, bottom, top, thickness} of each line that a dump has, micrometres.
function parse_dump(text) {
  const line = /M: (\d+)\tN: (\d+)\tL: (\d+)\tBOT: (\S+)\tTOP: (\S+)\tTHI: (\S+)/g;
  return [...text.matchAll(line)].map((match) => {
    const [row, column, slot, bottom, top, thickness] = match.slice(1).map(Number);
    return { row, column, slot, bottom, top, thickness };
  });
}

// Runs a process over the layout of an example in a folder of its own: {folder, page (its path), dump}.
function make_report(text = PROCESS, layout = "cmos-inverter/cmos_inverter.gds") {
  const folder = fs.mkdtempSync(path.join(os.tmpdir(), "quarn-page-"));
  fs.writeFileSync(path.join(folder, "process.txt"), text);
  const page = path.join(folder, "page.html");
  const program = process.env.QUARN_BATCH || path.join(PROJECT, "build/linux/bin/quarn-batch");
  execFileSync(program, ["--no-images", "--data", path.join(PROJECT, "data"), "--report", page, "-o", "out",
    path.join(PROJECT, "examples", layout), "process.txt"], { cwd: folder, stdio: "ignore" });
  const dump = path.join(folder, "VertexData.txt");
  return { folder, page, dump: fs.existsSync(dump) ? parse_dump(fs.readFileSync(dump, "utf8")) : [] };
}

function remove_report(report) {
  fs.rmSync(report.folder, { recursive: true, force: true });
}

module.exports = { HOSTILE_NAME, PROCESS, make_report, remove_report };
