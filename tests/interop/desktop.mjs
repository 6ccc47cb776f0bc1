// The other side of the server: two folders as drives, served by the stand-in.
import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import fs from 'node:fs/promises';
import os from 'node:os';
import path from 'node:path';
import { fileURLToPath } from 'node:url';

const build = fileURLToPath(new URL('../../build/dev/', import.meta.url));
const watchedServer = fileURLToPath(new URL('watched_server.mjs', import.meta.url));

/** Names the user's home directory for the server, which ignores HOME on macOS. */
const homeVariable = process.platform === 'darwin' ? 'CFFIXED_USER_HOME' : 'HOME';

// Something for every tool to find: a plan to rewrite, a file that exists twice, and a large, old
// file.
async function prepareDrives(place) {
  const drives = ['Studio', 'Archive'].map((name) => path.join(place, name));
  const [studio, archive] = drives;
  for (const drive of drives) {
    await fs.mkdir(path.join(drive, 'Photos'), { recursive: true });
    await fs.writeFile(path.join(drive, 'Photos/panorama.raw'), Buffer.alloc(200000));
  }
  await fs.mkdir(path.join(studio, 'Plans'));
  await fs.writeFile(path.join(studio, 'Plans/Harbour plan.md'), 'Start with the west quay.\n');
  const recording = path.join(archive, 'old recording.wav');
  await fs.writeFile(recording, Buffer.alloc(12000000));
  await fs.utimes(recording, new Date('2020-01-02'), new Date('2020-01-02'));
  return drives;
}

/** A home folder of its own, in which the stand-in may run and the server finds it. */
export class Desktop {
  #place;
  #standin;

  /** A new home without the application; stop() removes it. */
  static async prepare() {
    const desktop = new Desktop();
    desktop.#place = await fs.mkdtemp(path.join(os.tmpdir(), 'quillmark-interop.'));
    await fs.mkdir(desktop.home);
    return desktop;
  }

  get home() {
    return path.join(this.#place, 'home');
  }

  /** Starts the stand-in; it answers by the time this returns. */
  async startApplication() {
    const drives = await prepareDrives(this.#place);
    this.#standin = spawn(path.join(build, 'standin/quillmark-standin'), [this.home, ...drives], {
      stdio: ['ignore', 'pipe', 'inherit'],
    });
    const gone = once(this.#standin, 'exit').then(() => assert.fail('the stand-in has ended'));
    await Promise.race([once(this.#standin.stdout, 'data'), gone]); // it prints a line once it listens
  }

  /** What to start as the server: { command, args, env }. */
  get server() {
    return {
      command: process.execPath,
      args: [watchedServer, path.join(build, 'quillmark-mcp'), this.#endings],
      env: { [homeVariable]: this.home },
    };
  }

  /** How each server process ended, in order: "status 0", "signal SIGTERM". */
  async endings(count) {
    for (let tries = 0; tries < 500; ++tries) {
      const said = await fs.readFile(this.#endings, 'utf8').catch(() => '');
      const endings = said.split('\n').slice(0, -1);
      if (endings.length >= count) return endings;
      await new Promise((resolve) => setTimeout(resolve, 20));
    }
    throw new Error(`fewer than ${count} servers have ended`);
  }

  async stop() {
    if (this.#standin?.exitCode === null) {
      this.#standin.kill();
      await once(this.#standin, 'exit');
    }
    await fs.rm(this.#place, { recursive: true });
  }

  get #endings() {
    return path.join(this.#place, 'endings');
  }
}
