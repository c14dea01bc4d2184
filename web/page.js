// The page: the session's log, the buttons, and what comes from a link.

import {buttonItem} from './buttons.js';
import {EXAMPLES} from './examples.js';
import {showFile, showText} from './output.js';
import {fromHash, toHash} from './link.js';
import {Prompt} from './prompt.js';
import {Session} from './session.js';

const [log, state, stop, link] =
    ['log', 'state', 'stop', 'link'].map((id) => document.getElementById(id));
let entry = log;  // where output goes
let queue = Promise.resolve();
let generation = 0;  // lines that wait are dropped when it changes

const session = new Session({
  ready: () => setState('ready'),
  text: (text, isError) => follow(() => showText(entry, text, isError)),
  file: (name, content) => follow(() => showFile(entry, name, content)),
});

function setState(text) {
  state.textContent = text;
  stop.disabled = text !== 'running';
  document.body.dataset.state = text;
}

// Output keeps the prompt in sight, unless the reader is further up.
function follow(change) {
  const page = document.documentElement;
  const atEnd = page.scrollHeight - page.scrollTop - page.clientHeight < 80;
  change();
  if (atEnd) page.scrollTop = page.scrollHeight;
}

function note(text) {
  const line = document.createElement('p');
  line.className = 'note';
  line.textContent = text;
  log.append(line);
}

// Columns that the log has room for.
function width() {
  const probe = document.createElement('pre');
  probe.style.cssText = 'position:absolute; visibility:hidden';
  probe.textContent = 'm'.repeat(100);
  log.append(probe);
  const columns = Math.floor(100 * log.clientWidth / probe.scrollWidth);
  probe.remove();
  return Math.max(20, Math.min(columns, 120));
}

function openEntry(source) {
  entry = document.createElement('section');
  const shown = document.createElement('pre');
  shown.className = 'in';
  shown.textContent = '> ' + source.replaceAll('\n', '\n. ');
  entry.append(shown);
  log.append(entry);
}

// Runs a statement; false when more lines may complete it, which leaves nothing behind.
async function run(source) {
  setState('running');
  const before = entry;
  openEntry(source);
  const opened = entry;
  document.documentElement.scrollTop = document.documentElement.scrollHeight;
  const outcome = await session.run(source + '\n', width());
  if (outcome === 'incomplete') {
    opened.remove();
    entry = before;
    setState('ready');
    return false;
  }
  if (outcome === 'exit') restart('The session ended, and a new one has begun.');
  else if (outcome.startsWith('broken')) restart(`The session broke (${outcome.slice(8)}); a new one has begun.`);
  else if (outcome !== 'stopped') setState('ready');
  document.documentElement.scrollTop = document.documentElement.scrollHeight;
  return true;
}

function enqueue(lines) {
  const mine = generation;
  queue = lines.reduce((last, line) => last.then(async () => {
    if (mine !== generation) return;
    if (!await run(line)) note(`This is not complete: ${line}`);
  }), queue);
  return queue;
}

function restart(text) {
  ++generation;
  session.reset();
  note(text);
}

async function stopRunning() {
  if (!session.running) return;
  ++generation;
  setState('restarting');
  await session.stop(width());
  note('Stopped. Variables and streams are as before the statement.');
  prompt.focus();
}

const prompt = new Prompt({
  run,
  busy: () => session.running,
  complete: (line) => session.complete(line),
  stop: stopRunning,
});

stop.addEventListener('click', stopRunning);
document.getElementById('restart').addEventListener('click', () => {
  log.replaceChildren();
  entry = log;
  history.replaceState(null, '', location.pathname + location.search);
  restart('A new session.');
  prompt.focus();
});
link.addEventListener('click', async () => {
  const address = location.href.split('#')[0] + toHash(session.lines);
  history.replaceState(null, '', address);
  try {
    await navigator.clipboard.writeText(address);
    note('The link is copied: it runs these lines again, to the same numbers.');
  } catch {
    note('The link is in the address bar: it runs these lines again, to the same numbers.');
  }
});
for (const [name, lines] of EXAMPLES) {
  document.getElementById('examples').append(buttonItem(name, () => enqueue(lines)));
}
enqueue(fromHash(location.hash));
window.addEventListener('hashchange', () => enqueue(fromHash(location.hash)));
prompt.focus();
