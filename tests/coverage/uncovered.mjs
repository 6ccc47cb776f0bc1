// llvm-cov export ... | node tests/coverage/uncovered.mjs
//
// Lists the lines, branches and MC/DC conditions that no test covers, except those explained in
// exceptions.txt. Fails if there are any, or if an exception is covered or gone.

import { readFileSync } from 'node:fs';
import { relative } from 'node:path';

const [data] = JSON.parse(readFileSync(0, 'utf8')).data;

/** Adds up the counts of all instantiations of a template: one value for each place. */
function byPlace(records, counts, add) {
  const places = new Map();
  for (const record of records) {
    const place = record.slice(0, 4).join(':');
    const before = places.get(place)?.total;
    places.set(place, { line: record[0], total: before ? add(before, counts(record)) : counts(record) });
  }
  return [...places.values()];
}

/** { key, line, what } for everything uncovered in a file; the key survives when lines move. */
function uncovered({ filename, segments, branches, mcdc_records: decisions }) {
  const lines = readFileSync(filename, 'utf8').split('\n');
  const file = relative('.', filename);
  const found = [];
  const report = (line, what) => found.push({ key: `${file} | ${lines[line - 1].trim()}`, line, what });
  for (const [line, , count, hasCount, isEntry] of segments) {
    if (hasCount && isEntry && count === 0) report(line, 'not executed');
  }
  const sum = (a, b) => a.map((value, index) => value + b[index]);
  for (const { line, total: [yes, no] } of byPlace(branches, (r) => r.slice(4, 6), sum)) {
    if (yes + no === 0) continue;  // a constant condition, or not executed
    if (yes === 0) report(line, 'never true');
    if (no === 0) report(line, 'never false');
  }
  const either = (a, b) => a.map((value, index) => value || b[index]);
  for (const { line, total } of byPlace(decisions, (r) => r[6], either)) {
    if (total.includes(false)) report(line, 'a condition that decides nothing by itself');
  }
  return found;
}

/** { key, sometimes }, from lines of the form `[Sometimes | ]file | line of code | reason`. */
function exceptions() {
  const text = readFileSync(new URL('exceptions.txt', import.meta.url), 'utf8');
  return text.split('\n').filter((line) => line.includes(' | ')).map((line) => ({
    key: line.slice(0, line.lastIndexOf(' | ')).replace(/^Sometimes \| /, ''),
    sometimes: line.startsWith('Sometimes | '),
  }));
}

const all = data.files.flatMap(uncovered);
const listed = exceptions();
const known = new Set(listed.map(({ key }) => key));
const open = all.filter(({ key }) => !known.has(key));
for (const { key, line, what } of open) console.log(`${key.replace(' | ', `:${line} | `)} | ${what}`);

const seen = new Set(all.map(({ key }) => key));
const stale = listed.filter(({ key, sometimes }) => !sometimes && !seen.has(key));
for (const { key } of stale) console.log(`no longer needed in exceptions.txt: ${key}`);

const { lines, branches, mcdc } = data.totals;
const share = ({ covered, count }) => `${covered} of ${count}`;
console.log(`lines ${share(lines)}, branches ${share(branches)}, MC/DC conditions ${share(mcdc)}, ` +
  `${known.size} lines explained`);
process.exitCode = open.length + stale.length > 0 ? 1 : 0;
