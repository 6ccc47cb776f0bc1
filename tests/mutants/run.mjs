// node tests/mutants/run.mjs [--every N] [--only TEXT] [--workers N]
//
// Builds mutants of the product and runs the tests on each: those of the limits and intervals, or
// also every Nth. See scripts/checks/mutants. Fails if a mutant survives that neither equivalent.txt
// nor survivors.txt explains.

import { execFileSync } from 'node:child_process';
import { appendFileSync, readFileSync, writeFileSync } from 'node:fs';
import { availableParallelism } from 'node:os';
import { Base, Workshop } from './build.mjs';
import { apply, mutationsOf } from './mutations.mjs';
import { outcome, programs } from './stages.mjs';

const place = 'build/mutants';
const results = `${place}/results.txt`;
const product = ['main.cpp', 'process_setup.cpp', 'server', 'catalogue', 'bridge', 'json', 'common'];
/** Lines of the limits and intervals; their mutants are always taken. */
const limits = /constexpr (?:auto|off_t) \w+ = |mostBytes = |deepestNesting = /;
/** Other lines of which every mutant is in a sample: sizes, memory, and reading unfinished lines. */
const sampled = /constexpr (?:std::size_t|int) \w+ = |mallopt|partial\(|silenceEnds_|sleep_for/;

function parseArguments(words) {
  // The tests wait most of the time.
  const options = { every: 0, only: '', workers: 3 * availableParallelism() };
  for (let i = 0; i < words.length; i += 2) {
    const name = words[i].replace(/^--/, '');
    if (!(name in options) || words[i + 1] === undefined) throw new Error(`unknown: ${words[i]}`);
    options[name] = name === 'only' ? words[i + 1] : Number(words[i + 1]);
  }
  return options;
}

/**
 * What identifies a mutant when lines move: its file, its line's text, and the change. Of equal ones
 * in a file the second has " (2)" at its end, and so on.
 */
function identityOf(mutant, source, seen) {
  const line = source.split('\n')[mutant.line - 1].trim();
  const flat = (text) => text.replace(/\s+/g, ' ');
  const text = `${mutant.file} | ${line} | ${flat(mutant.original)} -> ${mutant.replacement || 'nothing'}`;
  seen.set(text, (seen.get(text) ?? 0) + 1);
  return seen.get(text) > 1 ? `${text} (${seen.get(text)})` : text;
}

function allMutants() {
  const list = execFileSync('git', ['ls-files', '-z', '--', ...product]).toString().split('\0');
  const files = list.filter((file) => /\.(?:h|cpp)$/.test(file) && !file.endsWith('_test.cpp'));
  return files.flatMap((file) => {
    const source = readFileSync(file, 'utf8');
    const seen = new Map();
    return mutationsOf(file, source).map((mutant) =>
      ({ ...mutant, source, identity: identityOf(mutant, source, seen) }));
  });
}

function chosen(mutants, { every, only }) {
  const isTaken = ({ identity }, index) => limits.test(identity) ||
    (every > 0 && (index % every === 0 || sampled.test(identity)));
  return mutants.filter(isTaken).filter(({ identity }) => identity.includes(only));
}

/** The lines of a list of mutants, each of the form of identityOf(). */
function listed(name, mutants) {
  const text = readFileSync(new URL(name, import.meta.url), 'utf8');
  const lines = new Set(text.split('\n').filter((line) => line.includes(' | ')));
  const known = new Set(mutants.map((mutant) => mutant.identity));
  for (const line of lines) if (!known.has(line)) throw new Error(`no such mutant: ${line}`);
  return lines;
}

/** Files that are built without a change, on which every test must pass. */
function unchanged({ every }) {
  const files = every > 0 ? ['common/bytes.h', 'bridge/launch.cpp'] : ['server/handle.cpp'];
  return files.map((file) => ({ file, changed: readFileSync(file, 'utf8'), isUnchanged: true }));
}

async function work(base, name, queue, counts) {
  const workshop = new Workshop(base, `${place}/${name}`);
  for (let mutant = queue.shift(); mutant; mutant = queue.shift()) {
    workshop.begin(mutant.file, mutant.changed ?? apply(mutant.source, mutant));
    const { result, output } = await outcome(workshop, mutant.file);
    if (mutant.isUnchanged) {
      if (result !== 'survived') throw new Error(`fails unchanged: ${mutant.file}\n${output}`);
      continue;
    }
    ++counts[result];
    if (result === 'survived') console.log(`survived: ${mutant.identity}`);
    appendFileSync(results, `${result}: ${mutant.identity}\n`);
  }
}

async function main() {
  const options = parseArguments(process.argv.slice(2));
  const mutants = allMutants();
  const equivalent = listed('equivalent.txt', mutants);
  const survivors = listed('survivors.txt', mutants);
  const all = chosen(mutants, options);
  const countIn = (list) => all.filter((mutant) => list.has(mutant.identity)).length;
  const queue = unchanged(options).concat(
    all.filter(({ identity }) => !equivalent.has(identity) && !survivors.has(identity)));
  console.log(`${all.length} of ${mutants.length} mutants`);
  const base = new Base(`${place}/base`);
  await base.build(programs);
  const counts = { invalid: 0, killed: 0, late: 0, survived: 0 };
  writeFileSync(results, '');
  await Promise.all(Array.from({ length: options.workers }, (_, i) =>
    work(base, `worker-${i}`, queue, counts)));
  console.log(`${counts.killed} killed, ${counts.late} did not end, ${counts.survived} survived, ` +
    `${counts.invalid} do not compile: see ${results}`);
  console.log(`not run: ${countIn(equivalent)} equivalent, ${countIn(survivors)} known to survive`);
  process.exitCode = counts.survived > 0 || counts.killed === 0 ? 1 : 0;
}

await main();
