// node tests/mutants/run.mjs [--every N] [--only TEXT]
//
// Builds each mutant of the product and runs the tests on it. See scripts/checks/mutants.

import { execFileSync, spawn } from 'node:child_process';
import { cpSync, mkdirSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { availableParallelism } from 'node:os';
import { dirname, join } from 'node:path';
import { apply, mutationsOf } from './mutations.mjs';

const place = 'build/mutants';
const products = ['main.cpp', 'process_setup.cpp', 'server', 'catalogue', 'bridge', 'json', 'common'];
const targets = ['quillmark-mcp', 'unit_test', 'end_to_end_test'];

/** The tests in the order in which they run. Each runs in that many parts at the same time. */
const stages = [
  { program: 'tests/unit/unit_test', parts: 8, seconds: 180 },
  { program: 'tests/end_to_end/end_to_end_test', parts: 24, seconds: 240 },
];

function gitFiles(...paths) {
  const list = execFileSync('git', ['ls-files', '-z', '-co', '--exclude-standard', '--', ...paths]);
  return list.toString().split('\0').filter(Boolean);
}

function parseArguments(words) {
  const options = { every: 1, only: '' };
  for (let i = 0; i < words.length; i += 2) {
    if (words[i] === '--every') options.every = Number(words[i + 1]);
    else if (words[i] === '--only') options.only = words[i + 1];
    else throw new Error(`unknown option: ${words[i]}`);
  }
  return options;
}

function chosenMutants({ every, only }) {
  const files = gitFiles(...products).filter((f) => /\.(?:h|cpp)$/.test(f) && !/_test\.cpp$/.test(f));
  return files.flatMap((file) => mutationsOf(file, readFileSync(file, 'utf8')))
    .filter((mutant, index) => index % every === 0 && mutant.file.includes(only));
}

/** Runs a command with limits on time and memory. Resolves to true if it succeeds. */
function run(command, seconds, options = {}) {
  const child = spawn('bash', ['-c', `ulimit -c 0 -v ${16 << 20}; exec ${command}`],
    { stdio: 'ignore', detached: true, ...options });
  const kill = () => { try { process.kill(-child.pid, 'SIGKILL'); } catch { /* it has ended */ } };
  const timer = setTimeout(kill, seconds * 1000);
  const done = new Promise((resolve) => {
    child.on('close', (code) => { clearTimeout(timer); kill(); resolve(code === 0); });
  });
  return { done, kill };
}

/** Runs a stage in parts; the first part that fails ends the others. True if all pass. */
async function passes(build, { program, parts, seconds }) {
  const runs = Array.from({ length: parts }, (_, index) => run(
    `${join(build, program)} --gtest_fail_fast --gtest_brief=1`, seconds,
    { env: { ...process.env, GTEST_TOTAL_SHARDS: parts, GTEST_SHARD_INDEX: index } }));
  const results = runs.map(({ done }) => done.then((passed) => {
    if (!passed) runs.forEach(({ kill }) => kill());
    return passed;
  }));
  return (await Promise.all(results)).every(Boolean);
}

/** A copy of the tree that mutants are built in, one after another. */
class Workshop {
  constructor(name) {
    this.tree = join(place, name);
    this.build = join(this.tree, 'build');
  }

  async prepare() {
    for (const file of gitFiles('.')) {
      mkdirSync(dirname(join(this.tree, file)), { recursive: true });
      cpSync(file, join(this.tree, file));
    }
    const configure = `cmake -S ${this.tree} -B ${this.build} -G Ninja -DCMAKE_BUILD_TYPE=Debug`;
    if (!await run(configure, 120).done || !await this.compile(3600)) throw new Error('no build');
    for (const stage of stages) {
      if (!await passes(this.build, stage)) throw new Error(`${stage.program} fails unchanged`);
    }
  }

  compile(seconds) {
    return run(`ninja -C ${this.build} -j 1 ${targets.join(' ')}`, seconds).done;
  }

  /** "invalid" if it does not compile, the stage that fails, or "survived". */
  async outcome(mutant) {
    const source = readFileSync(mutant.file, 'utf8');
    const copy = join(this.tree, mutant.file);
    writeFileSync(copy, apply(source, mutant));
    try {
      if (!await this.compile(600)) return 'invalid';
      for (const stage of stages) {
        if (!await passes(this.build, stage)) return 'killed';
      }
      return 'survived';
    } finally {
      writeFileSync(copy, source);
    }
  }
}

/** What identifies a mutant when lines move: its file, its line's text, and the change. */
function identity(mutant) {
  const line = readFileSync(mutant.file, 'utf8').split('\n')[mutant.line - 1].trim();
  const flat = (text) => text.replace(/\s+/g, ' ');
  return `${mutant.file} | ${line} | ${flat(mutant.original)} -> ${mutant.replacement || 'nothing'}`;
}

function explained() {
  const text = readFileSync(new URL('equivalent.txt', import.meta.url), 'utf8');
  return new Set(text.split('\n').filter((line) => line.includes(' | ')));
}

const mutants = chosenMutants(parseArguments(process.argv.slice(2)));
const counts = { invalid: 0, killed: 0, survived: 0, equivalent: 0 };
const known = explained();
const queue = [...mutants];
rmSync(place, { recursive: true, force: true });
console.log(`${mutants.length} mutants`);

async function work(name) {
  const workshop = new Workshop(name);
  await workshop.prepare();
  for (let mutant = queue.shift(); mutant; mutant = queue.shift()) {
    let outcome = await workshop.outcome(mutant);
    if (outcome === 'survived' && known.has(identity(mutant))) outcome = 'equivalent';
    ++counts[outcome];
    if (outcome === 'survived') console.log(`survived: ${identity(mutant)}`);
  }
}

await Promise.all(Array.from({ length: availableParallelism() }, (_, i) => work(`tree-${i}`)));
const relevant = counts.killed + counts.survived;
console.log(`${counts.killed} of ${relevant} killed, ${counts.survived} survived, ` +
  `${counts.equivalent} known to be equivalent, ${counts.invalid} do not compile`);
process.exitCode = counts.survived * 100 > relevant * 3 ? 1 : 0;
