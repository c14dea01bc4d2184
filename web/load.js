// Loads the shell. write(byte, isError) gets what it writes.

import create from './tvrng.mjs';

export async function loadShell(write, wasmBinary) {
  const shell = await create({
    ...(wasmBinary && {wasmBinary}),
    stdin: () => null,
    stdout: (byte) => byte !== null && write(byte, false),
    stderr: (byte) => byte !== null && write(byte, true),
  });
  shell.FS.mkdir('/session');
  shell.FS.chdir('/session');
  return shell;
}
