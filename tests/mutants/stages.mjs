// Which tests run on a mutant, and in which order: those nearest to the changed file first, quick
// ones before slow ones.

import { join } from 'node:path';
import { start } from './commands.mjs';

const endToEnd = 'tests/end_to_end/end_to_end_test';
const near = (folder) => `tests/mutants/near_${folder}_test`;

/** The folders whose tests also exercise a folder's code. */
const users = { common: ['json', 'server', 'bridge'], json: ['catalogue', 'server', 'bridge'] };

/** Cases that compute for long, and cases that wait for real time limits. */
const slow = {
  [near('json')]: '*Reference*:WriteCharacter.*:SkipNonAscii.*',
  [near('bridge')]: 'AbandonedExchange.*:Exchange.*:NWConnectionBox.TriesAgainEvery20Milliseconds:' +
    'Reachable.*:WaitForApp*',
  [endToEnd]: '*Probe.*:BigReplies.*:CallLimit.*:ForeignListener.*:Launch.*:NonBlockingPipes.Wait*:' +
    'PendingConnection.*:RestartedApplication.*:StartLimit.*:TwoApplications.*:UnusualApplication.*',
};

export const server = 'quillmark-mcp';
export const programs = [server, endToEnd,
  ...['bridge', 'catalogue', 'common', 'json', 'server'].map(near)];

/** { program, filter, seconds } in the order in which they run. */
export function stagesFor(file) {
  const folder = file.includes('/') ? file.split('/')[0] : '';
  const stages = [];
  for (const name of folder ? [folder, ...users[folder] ?? []] : []) {
    const program = near(name);
    const hard = slow[program];
    stages.push({ program, filter: hard ? `-${hard}` : '*', seconds: 150 });
    if (hard && (name !== 'bridge' || folder === 'bridge')) {
      stages.push({ program, filter: hard, seconds: 240 });
    }
  }
  stages.push({ program: endToEnd, filter: `-${slow[endToEnd]}`, seconds: 240 });
  // What is computed from a message does not depend on time limits.
  if (!['json', 'common', 'catalogue'].includes(folder)) {
    stages.push({ program: endToEnd, filter: slow[endToEnd], seconds: 400 });
  }
  return stages;
}

/**
 * Runs cases of a program in parts, side by side. The first that fails ends the others. Returns
 * { late, output } of it, or undefined if all pass.
 */
export async function failure(program, filter, seconds, { temporary, testedServer }) {
  const parts = program.endsWith('json_test') ? 4 : 24;
  const runs = Array.from({ length: parts }, (_, index) => start(
    `exec ${program} --gtest_fail_fast --gtest_brief=1 '--gtest_filter=${filter}'`, {
      seconds,
      environment: {
        GTEST_TOTAL_SHARDS: parts,
        GTEST_SHARD_INDEX: index,
        TMPDIR: temporary,
        ...(testedServer ? { QUILLMARK_TESTED_SERVER: testedServer } : {}),
      },
    }));
  const results = runs.map(({ done }) => done.then(({ passed, late, output }) => {
    if (!passed) runs.forEach(({ kill }) => kill());
    return passed ? undefined : { late, output };
  }));
  return (await Promise.all(results)).find(Boolean);
}

/**
 * What the tests make of a workshop's mutant: { result, output }. The result is "survived", "killed",
 * "late", which means that a test did not end, or "invalid", which means that it does not compile.
 */
export async function outcome(workshop, file) {
  const surroundings = { temporary: workshop.path('temporary') };
  for (const { program, filter, seconds } of stagesFor(file)) {
    const built = program === endToEnd
      ? join(workshop.base.folder, endToEnd) : await workshop.program(program);
    if (!built) return { result: 'invalid' };
    if (program === endToEnd) {
      surroundings.testedServer = await workshop.program(server);
      if (!surroundings.testedServer) return { result: 'invalid' };
    }
    const failed = await failure(built, filter, seconds, surroundings);
    if (failed) return { result: failed.late ? 'late' : 'killed', output: failed.output };
  }
  return { result: 'survived' };
}
