// The shell under node: node run.mjs doctor, node run.mjs -e "rand(3)".

import {readFileSync, writeSync} from 'node:fs';
import {loadShell} from './load.js';

const written = [[], []];
function flush(stream) {
  const bytes = Uint8Array.from(written[stream].splice(0));
  for (let at = 0; at < bytes.length;) {
    try {
      at += writeSync(stream + 1, bytes, at);
    } catch (error) {
      if (error.code !== 'EAGAIN') throw error;  // a full pipe
    }
  }
}
const shell = await loadShell((byte, isError) => {
  const stream = Number(isError);
  written[stream].push(byte);
  if (byte === 10) flush(stream);
}, readFileSync(new URL('tvrng.wasm', import.meta.url)));
process.exitCode = shell.callMain(process.argv.slice(2));
flush(0);
flush(1);
