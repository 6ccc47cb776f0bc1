// Finds the mutants of a C++ source: each changes one token or removes one statement.

const binary = new Map(Object.entries({
  '==': ['!='], '!=': ['=='], '<': ['<=', '>='], '<=': ['<', '>'], '>': ['>=', '<='],
  '>=': ['>', '<'], '&&': ['||'], '||': ['&&'], '+': ['-'], '-': ['+'], '*': ['/'], '/': ['*'],
  '%': ['/'], '<<': ['>>'], '>>': ['<<'], '&': ['|'], '|': ['&'], '^': ['|'],
  '+=': ['-='], '-=': ['+='], '|=': ['&='], '&=': ['|='],
}));

const words = new Map(Object.entries({
  true: ['false'], false: ['true'], break: ['continue'], continue: ['break'],
}));

/** What is compiled for other systems and processors than those of the tests. */
const elsewhere = /^#ifdef __APPLE__$[\s\S]*?(?=^#(?:else|endif))|^#if defined\(__aarch64__\)$[\s\S]*?(?=^#else)|(?<=maskOf\(Block block\)[\s\S]{0,140})^#else$[\s\S]*?(?=^#endif)/gm;

/** The source with all that is not compiled code of these systems replaced by spaces. */
function codeOnly(source) {
  const blank = (text) => text.replace(/[^\n]/g, ' ');
  source = source.replace(elsewhere, blank);
  const noise = /\/\/[^\n]*|\/\*[\s\S]*?\*\/|R"\((?:[\s\S]*?)\)"|"(?:\\.|[^"\\\n])*"|(?<![0-9A-F])'(?:\\.|[^'\\])+'|^[ \t]*#[^\n]*|\[\[[^\]]*\]\]/gm;
  return source.replace(noise, blank);
}

function lineOf(source, offset) {
  return source.slice(0, offset).split('\n').length;
}

/** Calls `add(offset, length, replacement)` for every change of one token. */
function addTokenChanges(code, add) {
  for (const match of code.matchAll(/(?<= )(?:<<|>>|[=!<>+\-|&]=|&&|\|\||[<>+\-*\/%&|^])(?= )/g)) {
    for (const other of binary.get(match[0]) ?? []) add(match.index, match[0].length, other);
  }
  for (const match of code.matchAll(/\+\+|--/g)) {
    add(match.index, 2, match[0] === '++' ? '--' : '++');
  }
  for (const match of code.matchAll(/(?<![\w)\]] ?)!(?=[\w(:])/g)) add(match.index, 1, '');
  for (const match of code.matchAll(/(?<![\w.'])(0x[0-9A-Fa-f]+|\d+)(U|UZ|ms|s)?\b/g)) {
    const number = Number(match[1]);
    const isTime = match[2] === 'ms' || match[2] === 's';
    const others = isTime ? [Math.floor(number / 2), number * 2] : [number + 1];
    for (const other of others) add(match.index, match[1].length, String(other));
  }
  for (const match of code.matchAll(/\b(?:true|false|break|continue)\b/g)) {
    for (const other of words.get(match[0])) add(match.index, match[0].length, other);
  }
}

/** The offset after the bracket that closes the one at `offset`. */
function closing(code, offset) {
  let depth = 0;
  for (let at = offset; at < code.length; ++at) {
    if (code[at] === '(') ++depth;
    if (code[at] === ')' && --depth === 0) return at + 1;
  }
  return -1;
}

/** Calls `add` for conditions that become true or false, and for statements that are removed. */
function addStatementChanges(code, add) {
  for (const match of code.matchAll(/\b(?:if|while) \(/g)) {
    const open = match.index + match[0].length - 1;
    const end = closing(code, open);
    if (end < 0 || code.slice(open, end).includes(';')) continue;
    for (const value of ['true', 'false']) {
      if (code.slice(open, end) !== `(${value})`) add(open, end - open, `(${value})`);
    }
  }
  for (const match of code.matchAll(/(?<=[;{}:)]\s*\n\s+|\) )[A-Za-z_][\w:.>\-\[\]()]*(?:\(| [-+|]?= |\+\+)[^;{}]*;/g)) {
    if (/^(?:return|using|const|constexpr|static|case|default|auto|namespace|struct)\b|= (?:default|delete);$/.test(match[0])) continue;
    add(match.index, match[0].length, ';');
  }
}

/**
 * The mutants of one file: { file, line, offset, length, original, replacement }, in the order of
 * their places.
 */
export function mutationsOf(file, source) {
  const code = codeOnly(source);
  const found = [];
  const add = (offset, length, replacement) => found.push({
    file,
    line: lineOf(source, offset),
    offset,
    length,
    original: source.slice(offset, offset + length),
    replacement,
  });
  addTokenChanges(code, add);
  addStatementChanges(code, add);
  return found.sort((a, b) => a.offset - b.offset || a.length - b.length);
}

export function apply(source, mutant) {
  return source.slice(0, mutant.offset) + mutant.replacement +
    source.slice(mutant.offset + mutant.length);
}
