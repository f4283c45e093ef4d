// Why a project ended, in a sentence, as far as its last output tells.

const CAUSES = [
  [
    /EADDRINUSE[^\n]*?:(\d{2,5})\b|port (\d{2,5}) (?:is )?(?:already )?in use/i,
    (match) => `Port ${match[1] ?? match[2]} is taken by another program.`,
  ],
  [/address already in use/i, () => 'The port it wants is taken by another program.'],
  [
    /(?:^|\n)[^\n]*?(?:sh|bash|zsh)(?:: line)?:? ?\d*: ([\w./@-]+): (?:command )?not found/,
    (match) => `The program “${match[1]}” was not found. It may have to be installed first.`,
  ],
  [
    /Cannot find (?:module|package) '([^'.\/][^']*)'/,
    (match) => `The package “${match[1]}” is missing. Its dependencies may not be installed.`,
  ],
  [
    /ModuleNotFoundError: No module named '([^']+)'/,
    (match) => `The Python module “${match[1]}” is missing. Its dependencies may not be installed.`,
  ],
  [/ECONNREFUSED[^\n]*?:5432\b/, () => 'PostgreSQL does not answer on port 5432.'],
  [/ECONNREFUSED[^\n]*?:6379\b/, () => 'Redis does not answer on port 6379.'],
  [/Cannot connect to the Docker daemon/, () => 'The Docker engine is not running.'],
  [/EACCES: permission denied[^\n]*?'([^']+)'/, (match) => `It may not use ${match[1]}.`],
  [/Missing script: "?([\w:-]+)"?/, (match) => `package.json has no script “${match[1]}”.`],
];

/** The known causes that `output` shows, each once, in the order of the list. */
export function diagnose(output) {
  const hints = new Set();
  for (const [pattern, sentence] of CAUSES) {
    const match = pattern.exec(output);
    if (match) hints.add(sentence(match));
  }
  if (hints.size > 1) hints.delete('The port it wants is taken by another program.');
  return [...hints].slice(0, 3);
}
