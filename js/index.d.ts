/** A whole number: a BigInt, or a number below 2^53. */
export type Count = bigint | number;
export type Floats = Float64Array | Float32Array;
export type Integers = Int8Array | Uint8Array | Uint8ClampedArray | Int16Array | Uint16Array |
    Int32Array | Uint32Array;

export interface StreamOptions {
  /** 0 to 4294967295; 0 unless given. */
  seed?: number;
  /** Which of the `count` streams of the seed, from 0. */
  index?: Count;
  count?: Count;
  /** Where to begin, from 0: work item k draws from substream k. */
  substream?: Count;
  /** 'Ziggurat', 'Polar' or 'Inversion'. */
  normalMethod?: string;
  /** Draws 1 - u for u and -z for z. */
  antithetic?: boolean;
  /** false lets some generators make a double of fewer bits, in less time. */
  fullPrecision?: boolean;
}

/** A call that was refused or failed. A call refused for its arguments has drawn nothing. */
export class RandomError extends Error {
  /** For programs: 'TALVOR:RandStream:create:UnknownRNGType'. */
  readonly identifier: string;
  /** What would work instead; '' where that is not known. */
  readonly hint: string;
}

/** One source of random numbers. n numbers are the same whether they are asked for at once or one
 * by one. Made by stream() and fromSnapshot(). */
export class Stream {
  private constructor();

  /** Uniform values of the open interval (0,1). */
  uniform(): number;
  uniform(n: number): Float64Array;
  uniform<T extends Floats>(out: T): T;
  /** Standard normal values. */
  normal(): number;
  normal(n: number): Float64Array;
  normal<T extends Floats>(out: T): T;
  /** Whole numbers from `lowest` to `highest`, both included and below 2^53 in magnitude; what a
   * type cannot hold becomes the nearest that it can. */
  integers(lowest: number, highest: number): number;
  integers(lowest: number, highest: number, n: number): Float64Array;
  integers<T extends Floats | Integers>(lowest: number, highest: number, out: T): T;
  /** Any limits of the type. */
  integers<T extends BigInt64Array | BigUint64Array>(lowest: Count, highest: Count, out: T): T;
  /** The numbers 1 to n in random order. */
  permutation(n: number): Float64Array;
  /** k distinct numbers of 1 to n in random order. */
  sample(k: number, n: Count): Float64Array;

  /** Back to the start, or to that of another seed. Settings stay. */
  reset(seed?: number): void;
  /** Passes over n draws as if they had been drawn. */
  advance(n: Count): void;
  /** A stream of its own with this one's settings, at the start of substream k. */
  atSubstream(k: Count): Stream;
  /** A stream of its own that goes on as this one will. */
  copy(): Stream;
  /** The whole stream as text, for every interface and machine. */
  snapshot(): string;
  /** Back to where a stream of this generator was when the snapshot was taken. */
  restore(text: string): void;

  readonly generator: string;
  readonly seed: number;
  readonly index: bigint;
  readonly count: bigint;
  get substream(): bigint;
  set substream(k: Count);
  normalMethod: string;
  antithetic: boolean;
  fullPrecision: boolean;

  /** Gives the memory back now; without it that happens when the object is collected. Where the
   * language has `using`, the end of the block calls it. */
  free(): void;
}

/** A stream of a generator, by its name or a short one ('twister', 'philox', ...), in any case;
 * mt19937ar unless given. */
export function stream(generator?: string, options?: StreamOptions): Promise<Stream>;
/** A stream that goes on as the one of the snapshot would have. */
export function fromSnapshot(text: string): Promise<Stream>;
/** The names of all generators. */
export function generators(): Promise<string[]>;
/** The library's version. */
export function version(): Promise<string>;
