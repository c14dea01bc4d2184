// Arguments of the calls: checked before anything is drawn.

import {RandomError} from './library.js';

function refuse(name, wanted, given) {
  const shown = typeof given === 'string' ? `'${given}'` : typeof given === 'bigint' ? `${given}n`
      : Array.isArray(given) ? 'an array' : given === null || typeof given !== 'object' ? String(given)
      : given.constructor?.name ?? 'an object';
  throw new RandomError('TALVOR:js:argument', `'${name}' must be ${wanted}, not ${shown}.`);
}

const MAX_COUNT = 2n ** 64n - 1n;

/** A count, an index or a number of draws: a BigInt, or a number that is exact. */
export function count(name, value) {
  if (typeof value === 'number' && Number.isSafeInteger(value)) value = BigInt(value);
  if (typeof value !== 'bigint' || value < 0n || value > MAX_COUNT) {
    refuse(name, 'a whole number from 0 to 2^64 - 1 (a BigInt from 2^53 on)', value);
  }
  return value;
}

export function seed(value) {
  if (!Number.isInteger(value) || value < 0 || value > 0xffffffff) {
    refuse('seed', 'a whole number from 0 to 4294967295', value);
  }
  return value;
}

/** The length of an array. */
export function length(name, value) {
  if (!Number.isInteger(value) || value < 0 || value > 2 ** 28) {
    refuse(name, 'a whole number from 0 to 2^28', value);
  }
  return value;
}

export function text(name, value) {
  if (typeof value !== 'string') refuse(name, 'a text', value);
  return value.replaceAll('\0', '?');
}

export function flag(name, value) {
  if (typeof value !== 'boolean') refuse(name, 'true or false', value);
  return value;
}

export function number(name, value) {
  if (typeof value !== 'number') refuse(name, 'a number', value);
  return value;
}

const MIN_INT64 = -(2n ** 63n);

/** A limit of 64-bit integers. */
export function wide(name, value, signed) {
  if (typeof value === 'number' && Number.isSafeInteger(value)) value = BigInt(value);
  const [low, high] = signed ? [MIN_INT64, 2n ** 63n - 1n] : [0n, MAX_COUNT];
  if (typeof value !== 'bigint' || value < low || value > high) {
    refuse(name, `a whole number from ${low} to ${high}`, value);
  }
  return value;
}

/** The array to fill: the one given, of one of the kinds, or a new one of doubles for a length. */
export function target(given, kinds) {
  if (typeof given === 'number') return new Float64Array(length('n', given));
  if (!kinds.has(given?.constructor)) {
    refuse('out', `a length, or one of ${[...kinds.keys()].map((kind) => kind.name).join(', ')}`,
           given);
  }
  return given;
}

/** Refuses names that are no option, so that a misspelled one is not passed over. */
export function onlyOptions(options, names) {
  if (options === null || typeof options !== 'object') refuse('options', 'an object', options);
  for (const name of Object.keys(options)) {
    if (names.includes(name)) continue;
    throw new RandomError('TALVOR:js:option', `There is no option '${name}'.`,
                          `the options are ${names.join(', ')}`);
  }
}
