// One stream of random numbers.

import * as check from './arguments.js';
import {Library, RandomError} from './library.js';

const MOST_AHEAD = 512;
const UNIFORM = 0;
const NORMAL = 1;
const INTEGER = 2;

// Arrays that can be filled, with the end of the function's name.
const FLOATS = new Map([[Float64Array, ''], [Float32Array, '_float']]);
const INTEGERS = new Map([
  ...FLOATS, [Int8Array, '_int8'], [Uint8Array, '_uint8'], [Uint8ClampedArray, '_uint8'],
  [Int16Array, '_int16'], [Uint16Array, '_uint16'], [Int32Array, '_int32'],
  [Uint32Array, '_uint32'], [BigInt64Array, '_int64'], [BigUint64Array, '_uint64'],
]);

const forgotten = new FinalizationRegistry(({library, handle, ahead}) => {
  library.functions.tvjs_ahead_destroy(ahead);
  library.functions.tvrng_destroy(handle);
});

export class Stream {
  #library;
  #call;   // the library's functions
  #handle = 0;
  #ahead = 0;
  // Values drawn ahead for calls that take one: those from #at to #end are still to be given.
  #values = new Float64Array(MOST_AHEAD);
  #at = 0;
  #end = 0;
  #kind = UNIFORM;
  #lowest = 0;
  #highest = 0;
  #next = 1;  // how many are drawn ahead next: more, as one kind goes on

  /** Not for callers: stream() and fromSnapshot() make streams. */
  constructor(library, handle) {
    this.#library = library;
    this.#call = library.functions;
    this.#handle = handle;
    this.#ahead = this.#call.tvjs_ahead_create(handle);
    forgotten.register(this, {library, handle, ahead: this.#ahead}, this);
  }

  static create(library, generator, options = {}) {
    check.onlyOptions(options, ['seed', 'index', 'count', 'substream', 'normalMethod',
                                'antithetic', 'fullPrecision']);
    const name = check.text('generator', generator);
    const seed = check.seed(options.seed ?? 0);
    const index = check.count('index', options.index ?? 0);
    const count = check.count('count', options.count ?? 1);
    const stream = library.withText(name, (address, length) => {
      const place = (address + length + 8) & ~7;
      library.check(library.functions.tvrng_create(address, seed, index, count, place));
      return new Stream(library, library.words[place >> 2]);
    });
    try {
      for (const setting of ['normalMethod', 'antithetic', 'fullPrecision', 'substream']) {
        if (options[setting] !== undefined) stream[setting] = options[setting];
      }
    } catch (error) {
      stream.free();
      throw error;
    }
    return stream;
  }

  static fromSnapshot(library, text) {
    return library.withText(check.text('text', text), (address, length) => {
      const place = (address + length + 8) & ~7;
      library.check(library.functions.tvrng_from_snapshot(length, address, place));
      return new Stream(library, library.words[place >> 2]);
    });
  }

  uniform(out) {
    if (out === undefined) {
      if (this.#kind === UNIFORM && this.#at < this.#end) return this.#values[this.#at++];
      return this.#draw(UNIFORM, 0, 0);
    }
    return this.#fill('tvrng_uniform', check.target(out, FLOATS), FLOATS, []);
  }

  normal(out) {
    if (out === undefined) {
      if (this.#kind === NORMAL && this.#at < this.#end) return this.#values[this.#at++];
      return this.#draw(NORMAL, 0, 0);
    }
    return this.#fill('tvrng_normal', check.target(out, FLOATS), FLOATS, []);
  }

  integers(lowest, highest, out) {
    if (out === undefined) {
      if (this.#kind === INTEGER && this.#at < this.#end && lowest === this.#lowest &&
          highest === this.#highest) {
        return this.#values[this.#at++];
      }
      return this.#draw(INTEGER, check.number('lowest', lowest), check.number('highest', highest));
    }
    out = check.target(out, INTEGERS);
    const wide = out instanceof BigInt64Array || out instanceof BigUint64Array;
    const limit = wide ? (name, value) => check.wide(name, value, out instanceof BigInt64Array)
                       : check.number;
    const limits = [limit('lowest', lowest), limit('highest', highest)];
    return this.#fill('tvrng_integers', out, INTEGERS, limits);
  }

  permutation(n) {
    const out = new Float64Array(check.length('n', n));
    return this.#whole(out, (address) => this.#call.tvrng_permutation(this.#handle, n, address));
  }

  sample(k, n) {
    const out = new Float64Array(check.length('k', k));
    const population = check.count('n', n);
    return this.#whole(
        out, (address) => this.#call.tvrng_sample(this.#handle, population, k, address));
  }

  reset(seed = this.seed) {
    check.seed(seed);
    this.#settle();
    this.#library.check(this.#call.tvrng_reset(this.#handle, seed));
  }

  advance(n) {
    const draws = check.count('n', n);
    this.#settle();
    this.#library.check(this.#call.tvrng_advance(this.#handle, draws));
  }

  atSubstream(k) {
    const index = check.count('k', k);
    const place = this.#library.room;
    this.#library.check(this.#call.tvrng_at_substream(this.#live(), index, place));
    return new Stream(this.#library, this.#library.words[place >> 2]);
  }

  snapshot() {
    this.#settle();
    const library = this.#library;
    library.check(this.#call.tvrng_snapshot_size(this.#handle, library.room));
    const size = library.words[library.room >> 2];
    return library.withMemory(size, (address) => {
      library.check(this.#call.tvrng_snapshot(this.#handle, size, address));
      return new TextDecoder().decode(library.bytes.subarray(address, address + size));
    });
  }

  restore(text) {
    check.text('text', text);
    this.#settle();
    const library = this.#library;
    library.withText(text, (address, length) =>
        library.check(this.#call.tvrng_restore(this.#handle, length, address)));
  }

  /** A stream of its own that goes on as this one will. */
  copy() {
    return Stream.fromSnapshot(this.#library, this.snapshot());
  }

  free() {
    if (this.#handle === 0) return;
    forgotten.unregister(this);
    this.#call.tvjs_ahead_destroy(this.#ahead);
    this.#call.tvrng_destroy(this.#handle);
    this.#handle = 0;
    this.#at = this.#end = 0;
  }

  get generator() { return this.#library.text(this.#get('generator')); }
  get seed() { return this.#get('seed'); }
  get index() { return this.#getWide('index'); }
  get count() { return this.#getWide('count'); }
  get substream() { return this.#getWide('substream'); }
  set substream(k) { this.#set('substream', check.count('substream', k)); }
  get normalMethod() { return this.#library.text(this.#get('normal_method')); }
  set normalMethod(name) {
    const method = check.text('normalMethod', name);
    this.#library.withText(method, (address) => this.#set('normal_method', address));
  }
  get antithetic() { return this.#get('antithetic') !== 0; }
  set antithetic(on) { this.#set('antithetic', Number(check.flag('antithetic', on))); }
  get fullPrecision() { return this.#get('full_precision') !== 0; }
  set fullPrecision(on) { this.#set('full_precision', Number(check.flag('fullPrecision', on))); }

  #live() {
    if (this.#handle !== 0) return this.#handle;
    throw new RandomError('TALVOR:js:freed', 'This stream has been freed.', 'make another one');
  }

  // The stream where its last value left it: before anything but another single value.
  #settle() {
    this.#live();
    if (this.#at < this.#end) this.#call.tvjs_ahead_give_back(this.#ahead, this.#at);
    this.#at = this.#end = 0;
    this.#next = 1;
  }

  #draw(kind, lowest, highest) {
    this.#live();
    const same = this.#kind === kind && this.#lowest === lowest && this.#highest === highest;
    if (!same || this.#at < this.#end) this.#settle();
    const n = this.#next;
    const address = this.#library.room;
    // What is refused leaves no values that a later call could take.
    this.#at = this.#end = 0;
    this.#library.check(
        this.#call.tvjs_ahead_draw(this.#ahead, kind, lowest, highest, n, address));
    this.#values.set(new Float64Array(this.#library.buffer, address, n));
    this.#kind = kind;
    this.#lowest = lowest;
    this.#highest = highest;
    this.#at = 1;
    this.#end = n;
    this.#next = Math.min(2 * n, MOST_AHEAD);
    return this.#values[0];
  }

  // Fills an array through the room, a part at a time: n numbers are the same in pieces. Parts are
  // even in number, for methods that make pairs.
  #fill(name, out, kinds, limits) {
    const draw = this.#call[name + kinds.get(out.constructor)];
    const library = this.#library;
    this.#settle();
    const most = Library.roomBytes / out.BYTES_PER_ELEMENT;
    let at = 0;
    do {  // an empty one too, so that limits are checked
      const n = Math.min(most, out.length - at);
      library.check(draw(this.#handle, ...limits, n, library.room));
      out.set(new out.constructor(library.buffer, library.room, n), at);
      at += n;
    } while (at < out.length);
    return out;
  }

  #whole(out, draw) {
    this.#settle();
    return this.#library.withMemory(out.byteLength, (address) => {
      this.#library.check(draw(address));
      out.set(new Float64Array(this.#library.buffer, address, out.length));
      return out;
    });
  }

  #get(what) {
    const place = this.#library.room;
    this.#library.check(this.#call[`tvrng_get_${what}`](this.#live(), place));
    return this.#library.words[place >> 2];
  }
  #getWide(what) {
    const low = this.#get(what);
    return BigInt(this.#library.words[(this.#library.room >> 2) + 1]) << 32n | BigInt(low);
  }
  #set(what, value) {
    this.#settle();
    this.#library.check(this.#call[`tvrng_set_${what}`](this.#handle, value));
  }
}

// Where the language has `using`, a stream is freed at the end of its block.
if (Symbol.dispose) Stream.prototype[Symbol.dispose] = Stream.prototype.free;
