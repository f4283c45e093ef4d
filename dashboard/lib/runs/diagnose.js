// Why a project ended, in a sentence, as far as its last output tells.
import { stripVTControlCharacters } from 'node:util';

const LAST_LINES = 60;
const LONGEST_LINE = 2000;

/** @type {[RegExp, (match: RegExpExecArray) => string][]} */
const CAUSES = [
  [
    /EADDRINUSE.*?:(\d{2,5})\b|port (\d{2,5}) (?:is )?(?:already )?in use/i,
    (match) => `Port ${match[1] ?? match[2]} is taken by another program.`,
  ],
  [/address already in use/i, () => 'The port it wants is taken by another program.'],
  [
    /\b(?:sh|bash|zsh)(?:: line)?:? ?\d*: ([\w./@-]+): (?:command )?not found/,
    (match) => `The program “${match[1]}” was not found. It may have to be installed first.`,
  ],
  [
    /Cannot find (?:module|package) '([^'./][^']*)'/,
    (match) => `The package “${match[1]}” is missing. Its dependencies may not be installed.`,
  ],
  [
    /ModuleNotFoundError: No module named '([^']+)'/,
    (match) => `The Python module “${match[1]}” is missing. Its dependencies may not be installed.`,
  ],
  [/ECONNREFUSED.*?:5432\b/, () => 'PostgreSQL does not answer on port 5432.'],
  [/ECONNREFUSED.*?:6379\b/, () => 'Redis does not answer on port 6379.'],
  [/Cannot connect to the Docker daemon/, () => 'The Docker engine is not running.'],
  [/EACCES: permission denied.*?'([^']+)'/, (match) => `It may not use ${match[1]}.`],
  [/Missing script: "?([\w:-]+)"?/, (match) => `package.json has no script “${match[1]}”.`],
];

/** What a program says of a trouble that it got over by itself. */
const RECOVERED =
  /(?<!\btry )\b(?:trying|using|switching|falling back|picking)\b.*\b(?:another|instead|next|again|available|other)\b|\bretrying\b/i;

/** The last lines of `output`, without colours, without those of a trouble that was got over. */
function lastLines(output) {
  const lines = stripVTControlCharacters(output).split('\n');
  return lines
    .slice(-LAST_LINES)
    .map((line) => line.slice(0, LONGEST_LINE))
    .filter((line) => !RECOVERED.test(line));
}

/** The known causes that the end of `output` shows, each once, in the order of the list. */
export function diagnose(output) {
  const lines = lastLines(output);
  const hints = new Set();
  for (const [pattern, sentence] of CAUSES) {
    // The last time that it was said counts: before that there may have been another attempt.
    const match = lines.map((line) => pattern.exec(line)).findLast(Boolean);
    if (match) hints.add(sentence(match));
  }
  if (hints.size > 1) hints.delete('The port it wants is taken by another program.');
  return [...hints].slice(0, 3);
}
