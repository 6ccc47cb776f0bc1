// Runs commands with limits, so that a mutant that loops or hangs or takes all memory ends.

import { spawn } from 'node:child_process';

// Tests with hundreds of threads reserve gigabytes for their stacks.
const mostKibibytes = 8 << 20;
const mostProcessorSeconds = 120;

/**
 * Runs a shell command. `done` resolves to { passed, late, output }; it is late if it was ended
 * after `seconds`. `kill` ends it and everything it has started.
 */
export function start(command, { seconds, environment = {}, directory = '.' }) {
  const limits = `ulimit -c 0 -v ${mostKibibytes} -t ${mostProcessorSeconds}`;
  const child = spawn('bash', ['-c', `${limits}; ${command}`], {
    stdio: ['ignore', 'pipe', 'pipe'],
    detached: true,
    cwd: directory,
    env: { ...process.env, ...environment },
  });
  let output = '';
  for (const stream of [child.stdout, child.stderr]) {
    stream.on('data', (text) => { output = (output + text).slice(-20000); });
  }
  const kill = () => { try { process.kill(-child.pid, 'SIGKILL'); } catch { /* it has ended */ } };
  let late = false;
  const timer = setTimeout(() => { late = true; kill(); }, seconds * 1000);
  const done = new Promise((resolve) => {
    child.on('exit', (code) => {
      clearTimeout(timer);
      kill();
      resolve({ passed: code === 0, late, output });
    });
  });
  return { done, kill };
}

/** Runs a command that must succeed and returns its output. */
export async function mustRun(command, options) {
  const { passed, output } = await start(command, options).done;
  if (!passed) throw new Error(`failed: ${command}\n${output}`);
  return output;
}
