// Streams of random numbers: the same bits as in C++, C, Python and the shell.

import {Library, RandomError} from './library.js';
import {Stream} from './stream.js';

export {RandomError, Stream};

let loading;
const library = () => loading ??= Library.load().catch((error) => {
  loading = undefined;  // the next call tries again
  throw error;
});

export async function stream(generator = 'mt19937ar', options = {}) {
  return Stream.create(await library(), generator, options);
}

export async function fromSnapshot(text) {
  return Stream.fromSnapshot(await library(), text);
}

export async function generators() {
  const loaded = await library();
  const {tvrng_generator_count: count, tvrng_generator_name: name} = loaded.functions;
  return Array.from({length: count()}, (_, i) => loaded.text(name(i)));
}

export async function version() {
  const loaded = await library();
  return loaded.text(loaded.functions.tvrng_version());
}
