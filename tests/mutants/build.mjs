// Builds mutants. Everything is built once, unchanged, with CMake. For a mutant only the objects
// that depend on its file are compiled again, into a folder of its own, so that several mutants can
// be built at the same time.

import { execFileSync } from 'node:child_process';
import { mkdirSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { basename, dirname, join, relative, resolve } from 'node:path';
import { mustRun, start } from './commands.mjs';

const root = process.cwd();

/** The build of the unchanged program. */
export class Base {
  constructor(folder) {
    this.folder = resolve(folder);
  }

  async build(targets) {
    await mustRun(`cmake -S . -B ${this.folder} -G Ninja -DCMAKE_BUILD_TYPE= ` +
      '-DCMAKE_CXX_FLAGS=-O0 -DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=gold', { seconds: 600 });
    await mustRun(`ninja -C ${this.folder} ${targets.join(' ')}`, { seconds: 3600 });
    const commands = JSON.parse(readFileSync(join(this.folder, 'compile_commands.json'), 'utf8'));
    this.compile = new Map(commands.map(({ command }) => [/ -o (\S+)/.exec(command)[1], command]));
    this.dependencies = this.readDependencies();
    this.links = new Map(targets.map((target) => [target, this.lastCommand(target)]));
    this.productObjects = this.objectsIn(this.lastCommand('libquillmark_core.a'));
  }

  ninja(...words) {
    return execFileSync('ninja', ['-C', this.folder, ...words], { maxBuffer: 1 << 30 }).toString();
  }

  lastCommand(target) {
    return this.ninja('-t', 'commands', '-s', target).trim().split('\n').at(-1);
  }

  objectsIn(link) {
    return link.split(' ').filter((word) => word.endsWith('.o'));
  }

  /** For each object, the files of the project that it was compiled from. */
  readDependencies() {
    const found = new Map();
    let files;
    for (const line of this.ninja('-t', 'deps').split('\n')) {
      const start = /^(\S+): #deps/.exec(line);
      if (start) found.set(start[1], files = new Set());
      else if (line.includes(root)) files.add(relative(root, line.trim()));
    }
    return found;
  }

  dependsOn(object, file) {
    return this.dependencies.get(object)?.has(file);
  }
}

/** A folder in which one mutant at a time is built. */
export class Workshop {
  constructor(base, folder) {
    this.base = base;
    this.folder = resolve(folder);
  }

  /** Starts with a new mutant: this text is the content of `file`. */
  begin(file, text) {
    this.file = file;
    this.built = new Map();
    rmSync(this.folder, { recursive: true, force: true });
    const copy = this.path('changed', file);
    mkdirSync(dirname(copy), { recursive: true });
    mkdirSync(this.path('temporary'));
    writeFileSync(copy, text);
  }

  path(...parts) {
    return join(this.folder, ...parts);
  }

  /** The program that the mutant makes of a target; undefined if it does not compile. */
  async program(target) {
    const link = this.base.links.get(target);
    const product = this.base.productObjects;
    const replaced = new Map();
    for (const object of [...this.base.objectsIn(link), ...product]) {
      if (!this.base.dependsOn(object, this.file)) continue;
      if (!this.built.has(object)) this.built.set(object, await this.compileAgain(object));
      if (!this.built.get(object)) return undefined;
      replaced.set(object, this.built.get(object));
    }
    const program = this.path(basename(target));
    // An object before the library makes the linker ignore the one of the same name in it.
    const own = product.map((object) => replaced.get(object)).filter(Boolean).join(' ');
    const words = link.replace(/ -o \S+/, ` -o ${program}`)
      .replace('libquillmark_core.a', `${own} libquillmark_core.a`).split(' ');
    const command = words.map((word) => replaced.get(word) ?? word).join(' ');
    return (await this.run(command)).passed ? program : undefined;
  }

  async compileAgain(object) {
    const output = this.path(`${this.built.size}.o`);
    const command = this.base.compile.get(object)
      .replace(/ -o \S+/, ` -o ${output}`)
      .replace(` -I${root} `, ` -w -I${this.path('changed')} -I${root} `)
      .replace(` -c ${join(root, this.file)}`, ` -c ${this.path('changed', this.file)}`);
    return (await this.run(command)).passed ? output : undefined;
  }

  run(command) {
    return start(command, { seconds: 900, directory: this.base.folder }).done;
  }
}
