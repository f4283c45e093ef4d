/** A path as people write it: with "~" for the home directory. */
export function shortPath(path, home) {
  if (path === home) return '~';
  return home && path.startsWith(`${home}/`) ? `~${path.slice(home.length)}` : path;
}

export const folderOf = (path) => path.slice(0, path.lastIndexOf('/')) || '/';

const plurals = new Intl.PluralRules('en');
const numbers = new Intl.NumberFormat('en');

/** "1 project", "2 projects". */
export function count(number, noun) {
  return `${numbers.format(number)} ${plurals.select(number) === 'one' ? noun : `${noun}s`}`;
}

const sameDay = new Intl.DateTimeFormat(undefined, { hour: '2-digit', minute: '2-digit' });
const otherDay = new Intl.DateTimeFormat(undefined, { month: 'short', day: 'numeric', hour: '2-digit', minute: '2-digit' });

/** A time of day, with the date when it is not today. */
export function clock(milliseconds) {
  const time = new Date(milliseconds);
  const isToday = time.toDateString() === new Date().toDateString();
  return (isToday ? sameDay : otherDay).format(time);
}

/** Text without the terminal's colour and cursor sequences. */
export function plainOutput(text) {
  return text.replace(/\u001b\[[0-?]*[ -/]*[@-~]|\u001b\][^\u0007\u001b]*(?:\u0007|\u001b\\)|\u001b[@-_]/g, '').replace(/\r+\n/g, '\n');
}

/** "a, b and c". */
export function listed(items) {
  return items.length < 2 ? items.join('') : `${items.slice(0, -1).join(', ')} and ${items.at(-1)}`;
}
