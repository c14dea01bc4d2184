// The page's side of a session: a worker, the lines that made the session what it is, and what
// comes back. Stop ends the worker; a new one runs the earlier lines again, which give the same
// numbers.

export class Session {
  #worker;
  #listener;
  #pending = new Map();
  #nextId = 1;
  #lines = [];
  running = false;

  /** `listener` has ready(), text(text, isError), file(name, content). */
  constructor(listener) {
    this.#listener = listener;
    this.#start();
  }

  /** What was run, in order. */
  get lines() { return [...this.#lines]; }

  /** 'done', 'failed', 'incomplete', 'exit', 'stopped', or 'broken: why'. */
  async run(source, width) {
    this.running = true;
    const {done} = await this.#ask({run: source, width});
    this.running = false;
    if (done === 'done' || done === 'failed') this.#lines.push(source.replace(/\n$/, ''));
    return done;
  }

  /** {start, words}: `start` in bytes of UTF-8. Nothing while a statement runs. */
  async complete(line) {
    return this.running ? {start: 0, words: []} : this.#ask({complete: line});
  }

  /** Ends what runs. Told is whether earlier lines could be run again. */
  async stop(width) {
    const lines = this.#lines;
    const listener = this.#listener;
    this.#end('stopped');
    this.#listener = {ready() {}, text() {}, file() {}};
    this.#lines = [];
    this.#start();
    for (const line of lines) await this.run(line + '\n', width);
    this.#listener = listener;
    listener.ready();
  }

  /** From the start: no variables, streams as they were. */
  reset() {
    this.#end('stopped');
    this.#lines = [];
    this.#start();
  }

  #start() {
    const worker = new Worker(new URL('worker.js', import.meta.url), {type: 'module'});
    this.#worker = worker;
    worker.onmessage = ({data}) => {
      if (data.ready) this.#listener.ready();
      else if (data.text !== undefined) this.#listener.text(data.text, data.isError);
      else if (data.file !== undefined) this.#listener.file(data.file, data.content);
      else if (data.broken !== undefined) this.#end(`broken: ${data.broken}`);
      else this.#answer(data.id, data);
    };
    worker.onerror = (event) => this.#end(`broken: ${event.message ?? 'the worker did not start'}`);
  }

  #ask(message) {
    const id = this.#nextId++;
    return new Promise((resolve) => {
      this.#pending.set(id, resolve);
      this.#worker.postMessage({...message, id});
    });
  }

  #answer(id, answer) {
    this.#pending.get(id)?.(answer);
    this.#pending.delete(id);
  }

  #end(why) {
    this.#worker.terminate();
    this.running = false;
    for (const id of [...this.#pending.keys()]) this.#answer(id, {done: why, start: 0, words: []});
  }
}
