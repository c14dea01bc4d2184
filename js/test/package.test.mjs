// The package as it was installed from its file.

import assert from 'node:assert/strict';
import {readdirSync, readFileSync, writeFileSync} from 'node:fs';
import {test} from 'node:test';
import {fromSnapshot, generators, RandomError, stream, version} from 'tvmathrng';

const names = await generators();
const refused = (identifier, hint) => (error) => {
  assert.ok(error instanceof RandomError);
  assert.equal(error.identifier, identifier);
  assert.match(error.message, /[.?]$/);
  if (hint) assert.match(error.hint, hint);
  return true;
};

test('the first lines of the README', async () => {
  const page = readFileSync(new URL('../node_modules/tvmathrng/README.md', import.meta.url), 'utf8');
  const program = new URL('readme.mjs', import.meta.url);
  writeFileSync(program, /```js\n(.*?)```/s.exec(page)[1]);
  await import(program);
});

test('published first draws', async () => {
  const folder = new URL('draws/', import.meta.url);
  for (const file of readdirSync(folder)) {
    const rows = readFileSync(new URL(file, folder), 'utf8').split('\n')
        .filter((line) => line && !line.startsWith('#'));
    assert.ok(rows.length > 0);
    for (const row of rows) {
      const [seed, mode, ...values] = row.split(' ');
      const s = await stream(file.replace('.txt', ''),
                             {seed: Number(seed), fullPrecision: mode === 'full'});
      assert.deepEqual([...s.uniform(values.length)], values.map(Number));
    }
  }
});

test('one by one, in pieces and at once are the same, of every generator and method', async () => {
  for (const name of names) {
    for (const normalMethod of ['Ziggurat', 'Polar', 'Inversion']) {
      const [a, b, c] = await Promise.all([1, 2, 3].map(() => stream(name, {seed: 5, normalMethod})));
      // More than a block, and changes of kind where a block is half taken.
      for (const n of [1, 2, 3, 700, 5]) {
        assert.deepEqual(Array.from({length: n}, () => a.uniform()), [...b.uniform(n)]);
        assert.deepEqual(Array.from({length: n}, () => a.integers(1, 6)), [...b.integers(1, 6, n)]);
        const singles = Array.from({length: n}, () => a.normal());
        assert.deepEqual(singles, Array.from({length: n}, () => b.normal(1)[0]));
        c.uniform(n), c.integers(1, 6, n);
        for (let i = 0; i < n; ++i) c.normal(1);
        assert.equal(a.snapshot(), c.snapshot(), `${name} ${normalMethod} ${n}`);
      }
      assert.equal(a.permutation(9).join(), b.permutation(9).join());
    }
  }
});

test('long arrays do not show where they are cut', async () => {
  const n = 30001;  // more than goes through at once
  for (const name of names) {
    const [a, b] = [await stream(name, {seed: 1}), await stream(name, {seed: 1})];
    const whole = a.normal(n);
    // Pairs are not parted: a method may drop the second of one at the end of a request.
    const parts = [...b.normal(1000), ...b.normal(new Float64Array(n - 1000))];
    assert.deepEqual([...whole], parts, name);
    assert.equal(a.snapshot(), b.snapshot());
  }
});

test('arrays of every kind', async () => {
  const s = await stream('philox', {seed: 7});
  const t = await stream('philox', {seed: 7});
  const dice = s.integers(1, 6, 100);
  assert.ok(dice.every((x) => Number.isInteger(x) && x >= 1 && x <= 6));
  for (const Kind of [Float32Array, Int8Array, Uint8Array, Uint8ClampedArray, Int16Array,
                      Uint16Array, Int32Array, Uint32Array, BigInt64Array, BigUint64Array]) {
    t.reset();
    assert.deepEqual(Array.from(t.integers(1, 6, new Kind(100)), Number), [...dice], Kind.name);
  }
  const wide = t.integers(-(2n ** 63n), 2n ** 63n - 1n, new BigInt64Array(64));
  assert.ok(wide.some((x) => x < -(2n ** 60n)) && wide.some((x) => x > 2n ** 60n));
  s.reset(), t.reset();
  assert.deepEqual(s.uniform(new Float32Array(9)), Float32Array.from(t.uniform(9)));
  assert.deepEqual([...s.permutation(100)].sort((a, b) => a - b), Array.from({length: 100}, (_, i) => i + 1));
  assert.equal(new Set(s.sample(40, 2n ** 53n - 1n)).size, 40);
});

test('places: substreams, streams, jumps, snapshots', async () => {
  const s = await stream('threefry', {seed: 9, index: 2, count: 5n, substream: 3n});
  assert.deepEqual([s.generator, s.seed, s.index, s.count, s.substream, s.normalMethod],
                   ['threefry4x64_20', 9, 2n, 5n, 3n, 'Inversion']);
  const item = s.atSubstream(3);
  assert.equal(item.uniform(), s.uniform());
  s.advance(10n ** 12n), item.advance(5n * 10n ** 11n), item.advance(5n * 10n ** 11n);
  assert.equal(item.uniform(), s.uniform());
  s.substream = 2n ** 60n;
  assert.equal(s.substream, 2n ** 60n);
  s.antithetic = true;
  const text = s.snapshot();
  const [later, copy] = [s.uniform(10), s.copy()];
  s.restore(text);
  assert.deepEqual(s.uniform(10), later);
  const other = await fromSnapshot(text);
  assert.ok(other.antithetic);
  assert.deepEqual(other.uniform(10), later);
  assert.equal(copy.snapshot(), s.snapshot());
});

test('what is refused says why, and draws nothing', async () => {
  await assert.rejects(stream('filox'), refused('TALVOR:RandStream:create:UnknownRNGType'));
  await assert.rejects(stream('philox', {sead: 1}), refused('TALVOR:js:option', /seed/));
  await assert.rejects(stream('philox', {seed: -1}), refused('TALVOR:js:argument'));
  await assert.rejects(stream('mt19937ar', {substream: 1}),
                       refused('TALVOR:RandStream:set:SubstreamsNotSupported'));
  await assert.rejects(fromSnapshot('no'), refused('TALVOR:RandStream:snapshot:NotASnapshot'));
  const s = await stream('philox');
  s.uniform(), s.uniform(), s.uniform();
  const before = s.snapshot();
  const [js, randi] = ['TALVOR:js:argument', 'TALVOR:RandStream:randi:invalidLimits'];
  for (const [call, identifier] of [
    [() => s.uniform([1, 2]), js], [() => s.uniform(new Int8Array(2)), js],
    [() => s.uniform(-1), js], [() => s.normal(1.5), js], [() => s.advance(-1n), js],
    [() => s.advance(2 ** 60), js], [() => s.integers(1), js], [() => s.integers(6, 1), randi],
    [() => s.integers(6, 1, 0), randi], [() => s.integers(6, 1, new Int8Array(3)), randi],
    [() => s.integers(-1, 1, new BigUint64Array(1)), js], [() => s.permutation('3'), js],
    [() => s.sample(3, 2), 'TALVOR:RandStream:randperm:inputKTooLarge'],
    [() => { s.normalMethod = 'Best'; }, 'TALVOR:RandStream:set:UnknownRandnAlg'],
    [() => { s.antithetic = 1; }, js], [() => s.restore('x'), 'TALVOR:RandStream:snapshot:NotASnapshot'],
  ]) {
    assert.throws(call, refused(identifier), String(call));
    assert.equal(s.snapshot(), before, String(call));
  }
});

test('memory comes back, by hand and by collection', async () => {
  const s = await stream('mt19937ar');
  s.uniform(), s.uniform(), s.uniform();
  s.free(), s.free();
  for (const call of [() => s.uniform(), () => s.uniform(3), () => s.seed, () => s.snapshot(),
                      () => s.atSubstream(0)]) {
    assert.throws(call, refused('TALVOR:js:freed'));
  }
  // Twenty times what the memory starts with, at 7 KB a stream.
  for (let i = 0; i < 50000; ++i) (await stream('mt19937ar', {seed: i})).free();
  assert.equal((await stream('mt19937ar')).uniform(), 0.81472368639317894);
  assert.match(await version(), /^\d+\.\d+\.\d+$/);
});
