/** A path as people write it: with "~" for the home directory. */
export function shortPath(path, home) {
  if (path === home) return '~';
  return home && path.startsWith(`${home}/`) ? `~${path.slice(home.length)}` : path;
}

export const folderOf = (path) => path.slice(0, path.lastIndexOf('/')) || '/';

// Numbers and times are written as the user's system writes them; the sentences around them are English.
const numbers = new Intl.NumberFormat();
const plurals = new Intl.PluralRules('en');
const lists = new Intl.ListFormat('en-GB');

/** A number of things; not for ports and the like, which are names. */
export const amount = (number) => numbers.format(number);

/** "1 project", "2 projects". */
export function count(number, noun, plural = `${noun}s`) {
  return `${amount(number)} ${plurals.select(number) === 'one' ? noun : plural}`;
}

const timeOfDay = new Intl.DateTimeFormat(undefined, { timeStyle: 'short' });
const dateAndTime = new Intl.DateTimeFormat(undefined, { dateStyle: 'medium', timeStyle: 'short' });

const formatFor = (time) => (new Date(time).toDateString() === new Date().toDateString() ? timeOfDay : dateAndTime);

/** A time of day, with the date when it is not today; both in milliseconds. */
export const clock = (time) => formatFor(time).format(time);

/** From one time to another, with what they have in common said once. */
export const period = (from, to) => formatFor(from).formatRange(from, to);

/** Text without the terminal's colour and cursor sequences. */
export function plainOutput(text) {
  return text
    .replace(/\u001b\[[0-?]*[ -/]*[@-~]|\u001b\][^\u0007\u001b]*(?:\u0007|\u001b\\)|\u001b[@-_]/g, '')
    .replace(/\r+\n/g, '\n');
}

/** "a, b and c". */
export const listed = (items) => lists.format(items);
