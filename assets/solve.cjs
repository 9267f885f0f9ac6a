// Runs the solver of the npm package epanet-js under Node, as its own program would run:
//
//   node solve.cjs PACKAGE_FOLDER NET.inp NET.rpt NET.out
//
// Exit status 0: solved, perhaps with warnings, which the report tells; 1: the solver's errors are in the
// report; 3: the package cannot be used; 4: a file cannot be read or written. What happened is told on
// standard error in a line.
'use strict';
const fs = require('fs');

const [folder, inp, rpt, out] = process.argv.slice(2);

function fail(status, error) {
  fs.writeSync(2, String((error && error.message) || error).split('\n')[0] + '\n');
  process.exit(status);
}
// The package complains of what the report tells anyway.
console.log = console.warn = console.error = () => {};
process.on('uncaughtException', (error) => fail(3, error));
process.on('unhandledRejection', (error) => fail(3, error));

async function load() {
  const { Project, Workspace } = require(folder);
  const workspace = new Workspace();
  if (workspace.loadModule) await workspace.loadModule();
  return { workspace, project: new Project(workspace) };
}

function run(project) {
  project.open('net.inp', 'net.rpt', 'net.out');
  project.solveH();
  project.solveQ();
  project.report();
}

// The solver writes into files of its own memory.
function copyOut(workspace, name, to) {
  let bytes = null;
  try {
    bytes = workspace.readFile(name, 'binary');
  } catch {
    return;  // it did not come to write it
  }
  fs.writeFileSync(to, bytes);
}

async function main() {
  if (!out) fail(4, 'solve.cjs PACKAGE_FOLDER NET.inp NET.rpt NET.out');
  let text = null;
  try { text = fs.readFileSync(inp); } catch (error) { fail(4, error); }
  let solver = null;
  try { solver = await load(); } catch (error) { fail(3, error); }
  let fault = null;
  solver.workspace.writeFile('net.inp', text);
  try { run(solver.project); } catch (error) { fault = error; }
  // Only closing writes the end of the report.
  try { solver.project.close(); } catch { /* it never opened */ }
  try {
    copyOut(solver.workspace, 'net.rpt', rpt);
    copyOut(solver.workspace, 'net.out', out);
  } catch (error) { fail(4, error); }
  if (fault) fail(1, fault);
}
main();
