// The tests that every client must pass. A client is a function that connects to a server,
// { command, args, env }, and returns an object with
//   listTools()            returns the tools, in the protocol's form
//   call(name, arguments)  returns the result of a tool call, in the protocol's form
//   close()                ends the conversation
//   endings                a pattern for the end of each server process it started, in order
import assert from 'node:assert/strict';
import fs from 'node:fs';
import test from 'node:test';

import { calls, notStarted, refusal, refusedCall } from './calls.mjs';
import { Desktop } from './desktop.mjs';

const catalogue = new URL('../../catalogue/tools.json', import.meta.url);
const { tools } = JSON.parse(fs.readFileSync(catalogue, 'utf8'));

// On a Mac with the application, this call would start it.
const skip = process.platform === 'darwin' && 'would start the application itself';

function textOf(result) {
  assert.equal(result.content.length, 1);
  assert.equal(result.content[0].type, 'text');
  return result.content[0].text;
}

async function callEveryTool(client) {
  const called = calls.map(([name]) => name);
  assert.deepEqual(called.sort(), tools.map(({ name }) => name).sort());
  for (const [name, args, isRight] of calls) {
    const result = await client.call(name, args);
    const text = textOf(result);
    assert.ok(!result.isError, `${name}: ${text}`);
    assert.ok(isRight(JSON.parse(text)), `${name}: ${text}`);
  }
}

async function meetFailure(client, [name, args], message) {
  const result = await client.call(name, args);
  assert.equal(result.isError, true);
  assert.equal(textOf(result), message);
}

/** Connects a client, lets it talk, closes it and checks how its servers ended. */
export async function hold(desktop, connect, talk) {
  const client = await connect(desktop.server);
  try {
    await talk(client);
  } finally {
    await client.close();
  }
  const endings = await desktop.endings(client.endings.length);
  assert.equal(endings.length, client.endings.length);
  client.endings.forEach((ending, i) => assert.match(endings[i], ending));
}

/** Declares a test with a desktop of its own, which is always removed afterwards. */
export function testWithDesktop(name, options, run) {
  test(name, { timeout: 120000, ...options }, async () => {
    const desktop = await Desktop.prepare();
    try {
      await run(desktop);
    } finally {
      await desktop.stop();
    }
  });
}

/** Declares the tests that every client must pass. */
export function testClient(name, connect) {
  testWithDesktop(`${name}: catalogue, every tool, a refusal`, {}, async (desktop) => {
    await desktop.startApplication();
    await hold(desktop, connect, async (client) => {
      assert.deepEqual(await client.listTools(), tools);
      await callEveryTool(client);
      await meetFailure(client, refusedCall, refusal);
    });
  });

  testWithDesktop(`${name}: the application is not there`, { skip }, async (desktop) => {
    await hold(desktop, connect, (client) => meetFailure(client, ['drive_status', {}], notStarted));
  });
}
