// The whole road with the real solver: examples are drawn, from INP files and by hand, and exported, the
// exported file is solved, the report is imported, and the values that stand on the drawing are held against
// those that the solver's own interface returns.
//
//   node road.cjs BIN_FOLDER EXAMPLES_FOLDER
'use strict';
const fs = require('fs');
const os = require('os');
const path = require('path');
const { execFileSync } = require('child_process');
const { Project, Workspace, NodeProperty, LinkProperty, CountType } = require('epanet-js');

const [bin, examples] = process.argv.slice(2);
const folder = fs.mkdtempSync(path.join(os.tmpdir(), 'vessora-road-'));
// The classic way: the files here and the tables of results beside them are its own.
const vessora = (command, ...args) => full(command, '--classic', ...args);
const full = (command, ...args) =>
  execFileSync(path.join(bin, 'vessora'), [command, ...args], { cwd: folder, encoding: 'utf8', env: { ...process.env, LC_ALL: 'C' }, maxBuffer: 1 << 28 });

// Solves a file: the report, and for each reporting time the values of the solver's own interface.
function solve(inp) {
  const ws = new Workspace();
  const model = new Project(ws);
  ws.writeFile('net.inp', fs.readFileSync(inp));
  model.open('net.inp', 'net.rpt', 'net.out');
  const periods = new Map();
  model.openH();
  model.initH(11);
  let step = Infinity;
  do {
    const t = model.runH();
    if (t % 3600 === 0) periods.set(t, snapshot(model));
    step = model.nextH();
  } while (step > 0);
  model.closeH();
  model.solveH();
  model.solveQ();
  model.report();
  model.close();
  return { report: ws.readFile('net.rpt'), periods };
}

function snapshot(model) {
  const nodes = new Map(), links = new Map();
  for (let i = 1; i <= model.getCount(CountType.NodeCount); ++i) {
    nodes.set(model.getNodeId(i), [NodeProperty.Demand, NodeProperty.Head, NodeProperty.Pressure].map((p) => model.getNodeValue(i, p)));
  }
  for (let i = 1; i <= model.getCount(CountType.LinkCount); ++i) {
    const flow = model.getLinkValue(i, LinkProperty.Flow), velocity = model.getLinkValue(i, LinkProperty.Velocity);
    const pipe = model.getLinkType(i) <= 1;
    // Reports give the loss of a pipe in metres a kilometre, the interface in metres.
    const loss = model.getLinkValue(i, LinkProperty.Headloss) * (pipe ? 1000 / model.getLinkValue(i, LinkProperty.Length) : 1);
    links.set(model.getLinkId(i), [flow, velocity, loss]);
  }
  return { nodes, links };
}

// Every element's results as they stand on the drawing, by the list command.
function onDrawing(drawing) {
  fs.writeFileSync(path.join(folder, 'script'), 'LISTADATI\ntutto\n<invio>\n');
  const found = { nodes: new Map(), links: new Map(), periods: new Set() };
  let id = null, app = null, values = [];
  for (const line of vessora('run', drawing, 'script').split('\n')) {
    if (/^\S/.test(line)) id = null;
    const item = line.match(/^ {4,}(-?\d+)  (.*)$/);
    if (!item) continue;
    const [, code, text] = item;
    if (code === '1001') { app = text; values = []; continue; }
    values.push(text);
    if (app === 'HN-C_EPAHNIMPORT' && values.length === 1) id = text;
    if (app === 'HN-C_NODE_RESULT' && values.length === 3) found.nodes.set(id, values.map(Number));
    if (app === 'HN-C_LINK_RESULT' && values.length === 3) found.links.set(id, values.map(Number));
    if (app === 'HN-C_PERIOD_RPT') found.periods.add(text);
  }
  return found;
}

// Reports have two decimals, rounded from single precision.
function compare(what, wanted, got, tolerance) {
  let checked = 0;
  for (const [id, values] of got) {
    const own = wanted.get(id);
    if (!own) throw new Error(`${what} ${id} is unknown to the solver`);
    values.forEach((v, i) => {
      if (Math.abs(v - own[i]) > tolerance + 1e-4 * Math.abs(own[i])) {
        throw new Error(`${what} ${id}, value ${i + 1}: the drawing has ${v}, the solver ${own[i]}`);
      }
    });
    ++checked;
  }
  if (checked !== wanted.size) throw new Error(`${checked} of ${wanted.size} ${what}s have results`);
  return checked;
}

// A network from a file, or drawn by a script, which exports it too.
function draw(name) {
  const script = path.join(examples, name + '.script');
  if (fs.existsSync(script)) return vessora('run', '-', script, '-o', name + '.dxf');
  vessora('import', path.join(examples, name + '.inp'), '-o', name + '.dxf');
  return vessora('export', name + '.dxf', '-o', name + '.inp');
}

// The results in the report beside an example are those that the solver writes of it today.
function checkReport(name) {
  const beside = path.join(examples, name + '.rpt');
  if (!fs.existsSync(beside)) return;
  const script = path.join(examples, name + '.script');
  if (fs.existsSync(script)) full('run', '-', script, '-o', 'own.dxf');
  const text = fs.readFileSync(path.join(fs.existsSync(script) ? folder : examples, name + '.inp'), 'latin1');
  const own = path.join(folder, 'own.inp');
  fs.writeFileSync(own, /^\s*nodes\s+all/im.test(text) ? text : text.replace(/^\[REPORT\].*$/im, '$&\n Nodes All\n Links All'), 'latin1');
  const report = solve(own).report;
  const lines = (text) => text.slice(text.indexOf('Node Results at')).split(/\r?\n/).filter((line) => !/^ *Analysis ended /.test(line));
  const old = lines(fs.readFileSync(beside, 'utf8')), now = lines(report);
  const at = now.findIndex((line, i) => line !== old[i]);
  if (at >= 0 || old.length !== now.length) throw new Error(`${name}.rpt is out of date: it has "${old[at]}" for "${now[at]}"`);
}

// The town drawn by hand is whole, and its pressures are those of a town's taps at every hour.
function checkTown({ report, periods }) {
  const warning = report.match(/^ *WARNING.*/m);
  if (warning) throw new Error(`the solver says: ${warning[0].trim()}`);
  for (const [seconds, { nodes, links }] of periods) {
    if (nodes.size !== 22 || links.size !== 29) throw new Error(`${nodes.size} nodes and ${links.size} links were drawn`);
    for (const [id, [, , pressure]] of nodes) {
      if (/^N\d+$/.test(id) && !(pressure >= 20 && pressure <= 60)) throw new Error(`${id} has ${pressure} m at ${seconds / 3600}:00`);
    }
  }
  if (periods.size !== 25) throw new Error(`the day has ${periods.size} hours`);
}

// The way of the programs: a file comes back as it was, and what is drawn by hand arrives whole.
function checkFull() {
  for (const name of ['borgo', 'collina']) {
    const example = path.join(examples, name + '.inp');
    full('import', example, '-o', 'full.dxf');
    full('export', 'full.dxf', '-o', 'full.inp');
    if (!fs.readFileSync(example).equals(fs.readFileSync(path.join(folder, 'full.inp')))) throw new Error(`${name} does not come back as it was`);
  }
  full('run', '-', path.join(examples, 'pieve.script'), '-o', 'town.dxf');
  full('export', 'town.dxf', '-o', 'town.inp');
  checkTown(solve(path.join(folder, 'town.inp')));
  // The classic way a drawn valve loses its setting.
  fs.writeFileSync(path.join(folder, 'script'), 'HNMODEPA\n=SEZIONE\n[Valvola]\nTipo = PRV\nSetting = 15.5\nStato = None\nOK\n');
  full('run', 'town.dxf', 'script', '-o', 'valve.dxf');
  full('export', 'valve.dxf', '-o', 'valve.inp');
  const { periods } = solve(path.join(folder, 'valve.inp'));
  for (const { nodes } of periods.values()) {
    const [, , pressure] = nodes.get('N17');
    if (Math.abs(pressure - 15.5) > 0.001) throw new Error(`behind the valve, set to 15.5 m, stand ${pressure} m`);
  }
  console.log('in full: two files come back as they were, the town is solved, its valve keeps its setting');
}

try {
  checkFull();
  for (const name of ['borgo', 'collina', 'pieve']) {
    checkReport(name);
    draw(name);
    const { report, periods } = solve(path.join(folder, name + '.inp'));
    if (name === 'pieve') checkTown({ report, periods });
    fs.writeFileSync(path.join(folder, name + '.rpt'), report);
    for (const hour of [0, 7, 24]) {
      const period = `${hour}:00:00`;
      vessora('results', name + '.dxf', name + '.rpt', '--period', period, '-o', 'with.dxf');
      const drawn = onDrawing('with.dxf');
      if (drawn.periods.size !== 1 || !drawn.periods.has(period)) throw new Error(`${name}: the period on the drawing is ${[...drawn.periods]}`);
      const own = periods.get(hour * 3600);
      const n = compare('node', own.nodes, drawn.nodes, 0.006);
      const l = compare('link', own.links, drawn.links, 0.006);
      console.log(`${name} at ${period}: ${n} nodes and ${l} links equal the solver's values`);
    }
  }
  fs.rmSync(folder, { recursive: true });
} catch (error) {
  console.error(String(error.message || error));
  if (error.stderr) console.error(String(error.stderr));
  console.error(`files are in ${folder}`);
  process.exit(1);
}
