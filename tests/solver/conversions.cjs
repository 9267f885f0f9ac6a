// Whole files in other flow units are solved to the same results: each file that the solver accepts is
// converted for two of its releases and solved by them.
//
//   node conversions.cjs CONVERT_UNITS FILE_OR_FOLDER...
'use strict';
const fs = require('fs');
const os = require('os');
const path = require('path');
const { execFileSync } = require('child_process');
const releases = { 2.3: require('epanet-js-2.3'), 2.2: require('epanet-js') };

const [program, ...places] = process.argv.slice(2);
const files = places.flatMap((place) =>
  fs.statSync(place).isDirectory() ? fs.readdirSync(place).filter((name) => name.endsWith('.inp')).sort().map((name) => path.join(place, name)) : [place]);
const folder = fs.mkdtempSync(path.join(os.tmpdir(), 'vessora-units-'));
const targets = ['LPS', 'GPM', 'CMH', 'CFS'];
// The solver's own constants, in its order of units.
const perCfs = [1, 448.831, 0.64632, 0.5382, 1.9837, 28.317, 1699, 2.4466, 101.94, 2446.6, 0.028317];

// Heads in metres and flows in l/s of all elements, and quality, at the first steps of a day; null of
// a file that the release does not solve.
async function solve(release, file) {
  const { Project, Workspace, CountType, NodeProperty, LinkProperty } = releases[release];
  const workspace = new Workspace();
  if (workspace.loadModule) await workspace.loadModule();
  const model = new Project(workspace);
  workspace.writeFile('n.inp', fs.readFileSync(file));
  const times = [];
  try {
    model.open('n.inp', 'n.rpt', 'n.out');
    const units = model.getFlowUnits(), length = units < 5 ? 0.3048 : 1, flow = 28.317 / perCfs[units];
    const nodes = model.getCount(CountType.NodeCount), links = model.getCount(CountType.LinkCount);
    model.openH();
    model.initH(11);
    for (let step = 1; step > 0 && times.length < 30; step = model.nextH()) {
      const values = [model.runH()];
      for (let i = 1; i <= nodes; ++i) values.push(model.getNodeValue(i, NodeProperty.Head) * length, model.getNodeValue(i, NodeProperty.Demand) * flow);
      for (let i = 1; i <= links; ++i) values.push(model.getLinkValue(i, LinkProperty.Flow) * flow, model.getLinkValue(i, LinkProperty.Status));
      times.push(values);
    }
    model.closeH();
  } catch {
    return null;
  }
  return nodesOnly(times);
}
// A run that did not come out has no numbers to compare.
const nodesOnly = (times) => (times.length && times.flat().every(Number.isFinite) ? times : null);

function difference(a, b) {
  if (!b) return 'is not solved';
  for (let t = 0; t < Math.min(a.length, b.length); ++t) {
    for (let i = 0; i < a[t].length; ++i) {
      // A step that ends with a tank's filling may come a second earlier.
      const allowed = i ? 1e-3 + 1e-4 * Math.abs(a[t][i]) : 2;
      if (Math.abs(a[t][i] - b[t][i]) > allowed) return `step ${t}, value ${i}: ${b[t][i]} for ${a[t][i]}`;
    }
  }
  return a.length === b.length ? '' : `${b.length} steps for ${a.length}`;
}

async function main() {
  const log = console.log;
  console.log = console.warn = () => {};
  let bad = 0, compared = 0;
  for (const file of files) {
    for (const release of Object.keys(releases)) {
      const own = await solve(release, file);
      if (!own) continue;
      for (const units of targets) {
        const converted = path.join(folder, 'c.inp');
        execFileSync(program, [file, units, converted, ...(release === '2.2' ? ['2.2'] : [])], { stdio: 'ignore' });
        const fault = difference(own, await solve(release, converted));
        ++compared;
        if (!fault) continue;
        ++bad;
        log(`${path.basename(file)} in ${units}, release ${release}: ${fault}`);
      }
    }
  }
  fs.rmSync(folder, { recursive: true });
  log(`${compared} conversions solved, ${bad} to other results`);
  process.exit(bad || compared < files.length ? 1 : 0);
}
main().catch((error) => { console.error(error); process.exit(1); });
