// The prompt: editing, recall of earlier statements, completion.

import {buttonItem} from './buttons.js';

const KEPT = 200;
const STORE = 'tvrng.history';

function loadHistory() {
  try {
    const kept = JSON.parse(localStorage.getItem(STORE));
    return Array.isArray(kept) ? kept.filter((line) => typeof line === 'string') : [];
  } catch {
    return [];  // none, or no room to keep it
  }
}

const commonPrefix = (words) => words.reduce((common, word) => {
  let length = 0;
  while (length < common.length && common[length] === word[length]) ++length;
  return common.slice(0, length);
});

export class Prompt {
  #actions;
  #input = document.getElementById('input');
  #words = document.getElementById('words');
  #history = loadHistory();
  #recalled;     // position in the history; its length is the line that is being written
  #draft = '';
  #leaves = false;  // after Escape: the next Tab moves the focus

  /** `actions` has run(source), busy(), complete(line), stop(). */
  constructor(actions) {
    this.#actions = actions;
    this.#recalled = this.#history.length;
    document.getElementById('form').addEventListener('submit', (event) => {
      event.preventDefault();
      this.#submit();
    });
    this.#input.addEventListener('input', () => this.#changed());
    this.#input.addEventListener('keydown', (event) => this.#key(event));
  }

  focus() { this.#input.focus(); }

  #set(text, caret = text.length) {
    this.#input.value = text;
    this.#input.setSelectionRange(caret, caret);
    this.#changed();
  }

  #changed() {
    this.#words.hidden = true;
    this.#input.style.height = 'auto';
    this.#input.style.height = `${this.#input.scrollHeight}px`;
  }

  async #submit() {
    const source = this.#input.value;
    if (source.trim() === '' || this.#actions.busy()) return;
    this.#set('');
    if (!await this.#actions.run(source)) return this.#set(source + '\n');
    if (this.#history.at(-1) !== source) this.#history.push(source);
    this.#history = this.#history.slice(-KEPT);
    this.#recalled = this.#history.length;
    try {
      localStorage.setItem(STORE, JSON.stringify(this.#history));
    } catch {
      // Kept for this page alone.
    }
  }

  #key(event) {
    const {key} = event;
    const leaves = this.#leaves;
    this.#leaves = key === 'Escape';
    if (event.isComposing) return;
    if (key === 'Enter' && !event.shiftKey) {
      event.preventDefault();
      this.#submit();
    } else if (key === 'Escape') {
      this.#words.hidden = true;
    } else if (key === 'Tab' && !event.shiftKey && !leaves && this.#input.value !== '') {
      event.preventDefault();
      this.#complete();
    } else if ((key === 'ArrowUp' || key === 'ArrowDown') && this.#recall(key === 'ArrowUp')) {
      event.preventDefault();
    } else if (key === 'c' && event.ctrlKey && this.#input.selectionStart === this.#input.selectionEnd) {
      event.preventDefault();
      if (this.#actions.busy()) this.#actions.stop();
      else this.#set('');
    }
  }

  // Up in the first line, down in the last one.
  #recall(up) {
    const {value, selectionStart: at} = this.#input;
    if (up ? value.slice(0, at).includes('\n') : value.slice(at).includes('\n')) return false;
    const next = this.#recalled + (up ? -1 : 1);
    if (next < 0 || next > this.#history.length) return false;
    if (this.#recalled === this.#history.length) this.#draft = value;
    this.#recalled = next;
    this.#set(next === this.#history.length ? this.#draft : this.#history[next]);
    return true;
  }

  async #complete() {
    const {value, selectionStart: caret} = this.#input;
    const line = value.slice(0, caret).split('\n').pop();
    const found = await this.#actions.complete(line);
    if (found.words.length === 0 || this.#input.value !== value) return;
    const utf8 = new TextEncoder().encode(line);
    const begin = caret - line.length +
        new TextDecoder().decode(utf8.subarray(0, found.start)).length;
    const put = (word) => {
      this.#set(value.slice(0, begin) + word + value.slice(caret), begin + word.length);
      this.focus();
    };
    const common = commonPrefix(found.words);
    if (common.length > caret - begin || found.words.length === 1) put(common);
    if (found.words.length > 1) this.#offer(found.words, put);
  }

  #offer(words, put) {
    this.#words.replaceChildren(...words.map((word) => buttonItem(word, () => put(word))));
    this.#words.hidden = false;
  }
}
