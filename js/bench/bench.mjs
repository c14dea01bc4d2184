// Nanoseconds a value, fills of 10,000 and single values, beside Math.random and two packages: the
// median of rounds in which all take turns. `tools/web.sh bench` runs this.

import prand from 'pure-rand';
import seedrandom from 'seedrandom';
import {generators, stream} from 'tvmathrng';

const N = 10000;
const ROUNDS = 31;
const out = new Float64Array(N);
const rows = [];
const row = (name, what, body) => rows.push({name, what, body, times: []});
const fill = (next) => () => { for (let i = 0; i < N; ++i) out[i] = next(); };

// 53 bits, as pure-rand's own documentation makes them.
function uniformOf(generator) {
  return () => {
    const high = prand.unsafeUniformIntDistribution(0, (1 << 26) - 1, generator);
    const low = prand.unsafeUniformIntDistribution(0, (1 << 27) - 1, generator);
    return (high * 2 ** 27 + low) * 2 ** -53;
  };
}
const uniforms = [['Math.random', Math.random], ['seedrandom alea', seedrandom.alea('1')],
  ['seedrandom arc4, 53 bits', seedrandom('1')],
  ['pure-rand mersenne', uniformOf(prand.mersenne(1))],
  ['pure-rand xoroshiro128plus', uniformOf(prand.xoroshiro128plus(1))]];
for (const [name, next] of uniforms) row(name, 'uniform, single', fill(next));
for (const name of await generators()) {
  const s = await stream(name, {seed: 1});
  row(name, 'uniform, array', () => s.uniform(out));
  row(name, 'normal, array', () => s.normal(out));
  const single = await stream(name, {seed: 1});
  row(name, 'uniform, single', fill(() => single.uniform()));
  const normal = await stream(name, {seed: 1});
  row(name, 'normal, single', fill(() => normal.normal()));
}
for (let round = 0; round < ROUNDS; ++round) {
  for (const {body, times} of rows) {
    if (round === 0) for (let i = 0; i < 30; ++i) body();  // compiled well
    const start = process.hrtime.bigint();
    for (let i = 0; i < 5; ++i) body();
    times.push(Number(process.hrtime.bigint() - start) / (5 * N));
  }
}
const whats = ['uniform, array', 'uniform, single', 'normal, array', 'normal, single'];
const median = (times) => times.sort((a, b) => a - b)[times.length >> 1].toFixed(1);
console.log(['ns a value'.padEnd(28), ...whats.map((what) => what.padStart(16))].join(''));
for (const name of new Set(rows.map((r) => r.name))) {
  console.log([name.padEnd(28), ...whats.map((what) => {
    const found = rows.find((r) => r.name === name && r.what === what);
    return (found ? median(found.times) : '').padStart(16);
  })].join(''));
}
