// Our parse of an input file against the solver's own opening of it, in turns within one run.
//
//   node engine_open.cjs BENCH_VESSORA FILE.inp [TIMES]
'use strict';
const fs = require('fs');
const path = require('path');
const { execFileSync } = require('child_process');
const { Project, Workspace } = require(path.join(__dirname, '../tests/solver/node_modules/epanet-js-2.3'));

// Seconds of processor that the solver takes to open a file. A file of which it accepts nothing
// fails here.
async function opening(bytes) {
  const workspace = new Workspace();
  if (workspace.loadModule) await workspace.loadModule();
  const project = new Project(workspace);
  workspace.writeFile('net.inp', bytes);
  const start = process.cpuUsage();
  project.open('net.inp', 'net.rpt', 'net.out');
  const used = process.cpuUsage(start);
  project.close();
  return (used.user + used.system) / 1e6;
}

function parsing(bench, file) {
  const [user, system] = execFileSync(bench, ['--child', 'inp-parse', file, '-'], { encoding: 'utf8' }).trim().split(' ').map(Number);
  return user + system;
}

async function main([bench, file, times = '5']) {
  if (!file) {
    console.error('usage: node engine_open.cjs BENCH_VESSORA FILE.inp [TIMES]');
    return 2;
  }
  const bytes = fs.readFileSync(file);
  let solver = Infinity;
  let ours = Infinity;
  for (let i = 0; i < Number(times); ++i) {
    solver = Math.min(solver, await opening(bytes));
    ours = Math.min(ours, parsing(bench, file));
  }
  console.log(`the solver opens it in ${solver.toFixed(3)} s, vessora parses it in ${ours.toFixed(3)} s: ${(solver / ours).toFixed(1)} times as fast`);
  return 0;
}

main(process.argv.slice(2)).then((status) => { process.exitCode = status; });
