// The converters: fields that follow each other, each through a filter of the program.

// What is made of a field: the fields that follow it, and by which filter.
const FOLLOWERS = {
  number: [['code', 'encodeAlpha5']],
  code: [['number', 'decodeAlpha5']],
  degrees: [['degree-text', 'encodeDegrees'], ['hour-text', 'encodeHours']],
  'degree-text': [['degrees', 'decodeDegrees']],
  'hour-text': [['degrees', 'decodeHours']],
  field: [['plain', 'readNumber']],
  row: [['short-row', 'compressRow']],
};
const SHOWN_AT_FIRST = ['number', 'degrees', 'field', 'row'];

const fieldOf = (id) => document.getElementById(id);

/** Where the reason stands that a field cannot be used. */
function placeOfReason(id) {
  const place = document.createElement('p');
  place.id = `${id}-why`;
  place.className = 'why';
  place.setAttribute('aria-live', 'polite');
  fieldOf(id).after(place);
  fieldOf(id).setAttribute('aria-describedby', place.id);
  return place;
}

/** Binds the fields; `send(filter, line, id)` asks for a conversion, whose outcome `take` is given. */
export function startConverters(send) {
  const reasons = new Map(Object.keys(FOLLOWERS).map((id) => [id, placeOfReason(id)]));
  const asked = []; // by number

  function follow(from, typed) {
    const line = fieldOf(from).value;
    for (const [to, filter] of FOLLOWERS[from]) {
      if (to === typed) continue;
      if (line.trim() === '') fieldOf(to).value = '';
      else send(filter, line, asked.push({ typed, from, to, line }) - 1);
    }
  }

  function forgive(id) {
    reasons.get(id).textContent = '';
    fieldOf(id).removeAttribute('aria-invalid');
  }

  /** Says why a field stays empty: below what was typed where nothing can be made of that, else below the field. */
  function complain({ typed, from, to }, why) {
    const others = FOLLOWERS[from].map(([id]) => id).filter((id) => id !== to);
    const isOfTyped = from === typed && others.every((id) => reasons.get(id).textContent === why);
    if (isOfTyped) others.forEach(forgive);
    const at = isOfTyped ? typed : to;
    reasons.get(at).textContent = why;
    fieldOf(at).setAttribute('aria-invalid', 'true');
  }

  for (const id of reasons.keys()) {
    fieldOf(id).addEventListener('input', () => {
      for (const other of fieldOf(id).closest('fieldset').querySelectorAll('input')) {
        if (reasons.has(other.id)) forgive(other.id);
      }
      follow(id, id);
    });
  }
  for (const id of SHOWN_AT_FIRST) follow(id, id);

  return {
    take(id, { text, why }) {
      const { typed, from, to, line } = asked[id];
      if (fieldOf(from).value !== line) return; // has been typed over meanwhile
      fieldOf(to).value = text ?? '';
      if (why !== undefined) complain(asked[id], why);
      else if (from === typed && FOLLOWERS[to]) follow(to, typed);
    },
  };
}
