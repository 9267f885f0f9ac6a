// What the reader of input files makes of a file, against what the solver itself makes of it: the same
// errors on the same rows, and of an accepted file the same elements with the same values.
//
//   node problems.cjs LIST_PROBLEMS FILE_OR_FOLDER...
'use strict';
const fs = require('fs');
const path = require('path');
const { execFileSync } = require('child_process');
const solver = require('epanet-js-2.3');
const { NodeProperty, LinkProperty, CountType, Option, TimeParameter } = solver;

const [program, ...places] = process.argv.slice(2);
const files = places.flatMap((place) =>
  fs.statSync(place).isDirectory() ? fs.readdirSync(place).filter((name) => name.endsWith('.inp')).sort().map((name) => path.join(place, name)) : [place]);

// Properties of the newest release that the package has no names for.
const node = { ...NodeProperty };
const option = { ...Option, DefaultPattern: 23 };
const link = { ...LinkProperty, LeakArea: 26, LeakExpan: 27 };

// What the solver tests only when a file is solved.
const atSolving = new Set([223, 224, 225, 226, 227, 230, 231, 232, 233]);
// After these the others of its kind are not told.
const ends = { 223: 1, 224: 1 };

const ask = (...args) => execFileSync(program, args, { encoding: 'latin1', maxBuffer: 1 << 30 });
const rowsOf = (text) => text.split('\n').filter((row) => row !== '').map((row) => row.replace(/\r$/, '').split('\t'));
const blank = (row) => row.trim().split(/[ \t\r]+/).join(' ');
const utf8 = (text) => Buffer.from(text, 'latin1').toString('utf8');

// The errors of a report: code, word and row.
function errorsOf(report) {
  // A word that took the line end along divides the message.
  const whole = report.replace(/\r/g, '').replace(/\n in \[/g, ' in [');
  const errors = [], lines = whole.split('\n');
  lines.forEach((line, i) => {
    const found = line.match(/^ *(?:Input )?Error (\d+): (.*)$/);
    if (!found) return;
    const code = Number(found[1]), row = /section:?$|Rule .*:$|ignored\.$/.test(found[2]) ? blank(lines[i + 1] || '') : '';
    if (code === 200 || code === 110 || code === 233) return;
    // It names each unconnected node under a number of its own.
    errors.push({ code: code === 234 ? 233 : code, row, words: found[2] });
  });
  return errors;
}

async function openInSolver(bytes) {
  const workspace = new solver.Workspace();
  await workspace.loadModule();
  const model = new solver.Project(workspace);
  workspace.writeFile('n.inp', bytes);
  const quiet = console.warn;
  console.warn = console.log = () => {};
  let opened = false, errors = [];
  const report = () => { try { return Buffer.from(workspace.readFile('n.rpt', 'binary')).toString('latin1'); } catch { return ''; } };
  try { model.open('n.inp', 'n.rpt', 'n.out'); opened = true; } catch (error) { errors.push(error.message); }
  const close = () => { try { model.close(); } catch { /* it never opened */ } };
  if (!opened) {
    close();  // or the report is not whole
    errors = errorsOf(report());
  }
  return { model, opened, errors, report, close, done: () => { console.warn = quiet; console.log = log; if (opened) close(); } };
}
const log = console.log;

// Errors that only solving shows are in the report, or are the call's own failure.
function solveErrors({ model, report, close }) {
  try { model.openH(); model.closeH(); } catch (error) {
    const own = Number((error.message.match(/Error (\d+)/) || [])[1]);
    close();
    const told = errorsOf(report());
    return told.length || own === 110 || !own ? told : [{ code: own, row: '', words: error.message }];
  }
  return [];
}

// Some errors name no word, and those of tags and leakage none that helps.
// Of a time it names the part before the first colon.
const namesWord = ({ code, words }) => !/Rule |RULES/.test(words) && !/(TAGS|LEAKAGE)/.test(words) && code !== 220 && !/(syntax error|ID name|value) *( in|$)/.test(words);
// Of links in these sections the solver speaks as of nodes.
const codeOf = ({ code, words }) => (code === 203 && /LEAKAGE|node LINK in .TAGS/.test(words) ? 204 : code);

// Both lists, sorted: an error is its number and, where the solver tells it, its row.
function compareErrors(theirs, ours, solving) {
  const faults = [];
  const wanted = theirs.filter((error) => atSolving.has(error.code) === solving);
  const left = ours.filter((error) => atSolving.has(error.code) === solving);
  for (const error of wanted) {
    const fits = (own) => own.code === codeOf(error) && (solving || !error.row || own.row.startsWith(error.row) || error.row.startsWith(own.row)) ;
    const at = left.findIndex(fits);
    if (at < 0) { faults.push(`not seen: ${error.code} ${error.words} | ${error.row}`); continue; }
    const own = left.splice(at, 1)[0];
    if (own.text && namesWord(error) && !error.words.includes(own.text.replace(/:.*/, '')) && !error.words.includes(own.text)) faults.push(`another word: ${own.text} for ${error.code} ${error.words}`);
  }
  if (solving && wanted.some((error) => ends[error.code])) return faults;
  // A name of a pattern or curve that is too long ends its reading before anything else.
  if (wanted.some((error) => error.code === 252 && !error.row)) return faults;
  // It looks at what is connected when all else is well.
  const early = solving && wanted.some((error) => error.code !== 233);
  for (const own of left) if (!early || own.code !== 233) faults.push(`not the solver's: ${own.code} ${own.text} | line ${own.line}: ${own.row}`);
  return faults;
}

const same = (a, b) => a === b || Math.abs(a - b) <= 1e-7 * Math.max(Math.abs(a), Math.abs(b)) + 1e-12;

function nodeValue(model, id, field) {
  const index = model.getNodeIndex(id);
  if (field === 'Type') return model.getNodeType(index);
  if (field === 'DemandPattern') {
    const pattern = model.getDemandPattern(index, 1);
    return pattern ? model.getPatternId(pattern) : '';
  }
  if (field !== 'DemandSum') return model.getNodeValue(index, node[field]);
  let sum = 0;
  for (let i = 1, n = model.getNumberOfDemands(index); i <= n; ++i) sum += model.getBaseDemand(index, i);
  return sum;
}

function linkValue(model, id, field) {
  const index = model.getLinkIndex(id);
  if (field === 'Type') return model.getLinkType(index);
  const ends = field.startsWith('Node') && model.getLinkNodes(index);
  return ends ? model.getNodeId(field === 'Node1' ? ends.node1 : ends.node2) : model.getLinkValue(index, link[field]);
}

function table(model, kind, id) {
  const values = [];
  if (kind === 'pattern') {
    const index = model.getPatternIndex(id), n = model.getPatternLength(index);
    for (let i = 1; i <= n; ++i) values.push(model.getPatternValue(index, i));
    return [n, ...values];
  }
  const index = model.getCurveIndex(id), n = model.getCurveLenth ? model.getCurveLenth(index) : model.getCurveLength(index);
  for (let i = 1; i <= n; ++i) { const point = model.getCurveValue(index, i); values.push(point.x, point.y); }
  return [n, ...values];
}

function whole(model, kind, field) {
  const count = { nodes: CountType.NodeCount, links: CountType.LinkCount, patterns: CountType.PatCount, curves: CountType.CurveCount, controls: CountType.ControlCount, rules: CountType.RuleCount };
  if (kind === 'count') return model.getCount(count[field]);
  if (kind === 'option') return model.getOption(option[field]);
  if (kind === 'time') return model.getTimeParameter(TimeParameter[field]);
  if (kind === 'pda') { const { pmin, preq, pexp } = model.getDemandModel(); return { MinimumPressure: pmin, RequiredPressure: preq, PressureExponent: pexp }[field]; }
  return field === 'flow' ? model.getFlowUnits() : field === 'formula' ? model.getOption(Option.HeadlossForm) : model.getOption(25);
}

const kControls = [0, 1, 2, 3];
function control(model, index, field) {
  const { type, linkIndex, setting, nodeIndex, level } = model.getControl(index);
  if (field === 'type') return kControls[type];
  if (field === 'link') return model.getLinkId(linkIndex);
  if (field === 'node') return nodeIndex ? model.getNodeId(nodeIndex) : '';
  return field === 'setting' ? setting : level;
}

function compareValues(model, rows) {
  const faults = [], tables = new Map(), last = new Map();
  let controls = 0, rules = 0;
  const check = (what, theirs, own) => {
    const equal = typeof theirs === 'string' ? theirs === utf8(own) : same(theirs, Number(own));
    if (!equal) faults.push(`${what}: ${own}, the solver has ${theirs}`);
  };
  for (const [kind, id, field, value] of rows) {
    if (kind === 'pattern' || kind === 'curve') {
      const key = `${kind}\t${id}`;
      if (!tables.has(key)) tables.set(key, []);
      tables.get(key).push(Number(value));
    } else if (kind === 'control') {
      if (field === 'type') ++controls;
      check(`control ${controls} ${field}`, control(model, controls, field), value);
    } else if (kind === 'rule') {
      if (field === 'clauses') ++rules;
      const { premiseCount, thenActionCount, elseActionCount, priority } = model.getRule(rules);
      check(`rule ${rules} ${field}`, field === 'clauses' ? premiseCount + thenActionCount + elseActionCount : priority, value);
    } else {
      last.set(`${kind}\t${id}\t${field}`, value);
    }
  }
  for (const [key, value] of last) {
    const [kind, id, field] = key.split('\t');
    const get = kind === 'node' ? nodeValue : kind === 'link' ? linkValue : (m, _, f) => whole(m, kind, f);
    try { check(key.replaceAll('\t', ' '), get(model, utf8(id), field), value); } catch (error) { faults.push(`${key.replaceAll('\t', ' ')}: ${value}, ${String(error.message).split('\n')[0]}`); }
  }
  for (const [key, own] of tables) {
    const [kind, id] = key.split('\t');
    let theirs = [];
    try { theirs = table(model, kind, utf8(id)); } catch (error) { faults.push(`${kind} ${id}: the solver has none`); continue; }
    if (theirs.length !== own.length || theirs.some((v, i) => !same(v, own[i]))) faults.push(`${kind} ${id}: ${own}, the solver has ${theirs}`);
  }
  return faults;
}

// The solver is asked of what we read over and it cannot: a mark, carriage returns alone, names in another encoding.
function readable(bytes) {
  let text = bytes.toString('latin1').replace(/^\xef\xbb\xbf/, '');
  if (!text.includes('\n')) text = text.replaceAll('\r', '\n');
  return Buffer.from(text, 'latin1');
}

async function compare(file) {
  const bytes = readable(fs.readFileSync(file)), lines = bytes.toString('latin1').split('\n');
  const told = rowsOf(ask(file)).map(([line, code, text, note]) => ({ line: Number(line), code: Number(code), text: utf8(text), note, row: blank(lines[line - 1] || '') }));
  const ours = told.filter((error) => error.code);
  const misread = new Set(told.filter((error) => error.note).map((error) => error.row));
  const session = await openInSolver(bytes);
  let faults = compareErrors(session.errors.filter((e) => !misread.has(e.row)).map((e) => ({ ...e, words: utf8(e.words) })), ours, false), checked = session.errors.length;
  if (session.opened) {
    const rows = rowsOf(ask('--values', file));
    faults = faults.concat(compareValues(session.model, rows));
    checked = rows.length;
    faults = faults.concat(compareErrors(solveErrors(session), ours, true));
  }
  session.done();
  return { faults, opened: session.opened, checked };
}

async function main() {
  let bad = 0, values = 0;
  for (const file of files) {
    const { faults, opened, checked } = await compare(file);
    values += checked;
    log(`${path.basename(file)}: ${opened ? 'accepted' : 'refused'}, ${checked} compared, ${faults.length} differ`);
    faults.slice(0, 12).forEach((fault) => log(`  ${fault}`));
    if (faults.length) ++bad;
  }
  log(`${files.length} files, ${values} values and errors compared, ${bad} files differ`);
  process.exit(bad || !files.length ? 1 : 0);
}
main().catch((error) => { console.error(error); process.exit(1); });
