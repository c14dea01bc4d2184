// The interpreter, away from the page, so that the page can end it at any time.
//
// Told: {run, id, width}, {complete, id}. Tells: {ready}, {text, isError} as it is written, {file}
// for what was drawn, {done: outcome, id}, {words, start, id}.

import {loadShell} from './load.js';

const decoder = new TextDecoder();
let bytes = [];
let isError = false;

function flush() {
  if (bytes.length > 0) postMessage({text: decoder.decode(Uint8Array.from(bytes)), isError});
  bytes = [];
}

function write(byte, ofErrors) {
  if (ofErrors !== isError) {
    flush();
    isError = ofErrors;
  }
  bytes.push(byte);
  // Whole lines, in one message for many.
  if (byte === 10 && (bytes.length > 4000 || performance.now() - lastFlush > 50)) {
    flush();
    lastFlush = performance.now();
  }
}
let lastFlush = 0;

// What a statement wrote to files is shown once.
function sendFiles(shell) {
  for (const name of shell.FS.readdir('.')) {
    if (name === '.' || name === '..') continue;
    postMessage({file: name, content: shell.FS.readFile(name, {encoding: 'utf8'})});
    shell.FS.unlink(name);
  }
}

const OUTCOMES = ['done', 'failed', 'incomplete', 'exit'];

function handle(shell, message) {
  const {id} = message;
  if (message.run !== undefined) {
    const outcome = shell.ccall('tv_session_run', 'number', ['string', 'number'],
                                [message.run, message.width]);
    flush();
    sendFiles(shell);
    postMessage({done: OUTCOMES[outcome], id});
  } else {
    const [start, ...words] = shell.ccall('tv_session_complete', 'string', ['string'],
                                          [message.complete]).split('\n');
    postMessage({words, start: Number(start), id});
  }
}

const waiting = [];
self.onmessage = ({data}) => waiting.push(data);
try {
  const shell = await loadShell(write);
  shell.ccall('tv_session_start', null, [], []);
  postMessage({ready: true});
  const guarded = (message) => {
    try {
      handle(shell, message);
    } catch (error) {
      flush();
      postMessage({broken: String(error), id: message.id});
    }
  };
  self.onmessage = ({data}) => guarded(data);
  waiting.splice(0).forEach(guarded);
} catch (error) {
  postMessage({broken: String(error)});
}
