const LONGEST_NAME = 200;

// Control characters, marks of direction and line breaks: they change what is read beside a name, not the name. Halves
// of a character count among them.
const UNWANTED = /[\p{Cc}\p{Cs}\u061c\u200b\u200e\u200f\u2028-\u202e\u2060-\u2069\ufeff\ufff9-\ufffb]+/gu;

/** Text from outside as it may stand in a menu: on one line, of at most `longest` characters. */
export function shownText(text, longest = LONGEST_NAME) {
  const clean = text
    .slice(0, 4 * longest)
    .replace(UNWANTED, ' ')
    .replace(/\s+/gu, ' ')
    .trim();
  const characters = [...clean];
  return characters.length > longest ? `${characters.slice(0, longest - 1).join('')}…` : clean;
}

/** Whether text can be shown as it is: what is run must be what is read. */
export const isShownWhole = (text, longest) => shownText(text, longest) === text;
