// The library as WebAssembly: loading it, its memory, its errors.

/** A call that was refused or failed. A call refused for its arguments has drawn nothing. */
export class RandomError extends Error {
  constructor(identifier, message, hint = '') {
    super(message);
    this.name = 'RandomError';
    this.identifier = identifier;
    this.hint = hint;
  }
}

const decoder = new TextDecoder();
const encoder = new TextEncoder();

// Under node `fetch` does not read files.
async function wasmBytes(url) {
  if (url.protocol !== 'file:') return fetch(url);
  const {readFile} = await import('node:fs/promises');
  return readFile(url);
}

async function instantiate(url, imports) {
  const source = await wasmBytes(url);
  if (!(source instanceof globalThis.Response)) return WebAssembly.instantiate(source, imports);
  if (!source.ok) throw new Error(`${url}: ${source.status} ${source.statusText}`);
  // Servers that do not know the type of the file keep it from being compiled as it arrives.
  const typed = source.headers.get('Content-Type') === 'application/wasm';
  return typed ? WebAssembly.instantiateStreaming(source, imports)
               : WebAssembly.instantiate(await source.arrayBuffer(), imports);
}

/** The exported functions, and views of the memory that they share with JavaScript. */
export class Library {
  static async load(url = new URL('./tvmathrng.wasm', import.meta.url)) {
    const library = new Library();
    // It neither reads nor writes files: what its C library would ask of a system is refused.
    const badFile = () => 8;
    const noWords = (count, size) => {
      library.words[count >> 2] = 0;
      library.words[size >> 2] = 0;
      return 0;
    };
    const known = {
      proc_exit: (status) => { throw new Error(`the library ended with status ${status}`); },
      emscripten_notify_memory_growth: () => library.refresh(),
      environ_sizes_get: noWords,
      environ_get: () => 0,
    };
    const refusing = {get: (_, name) => known[name] ?? badFile};
    const imports = new Proxy({}, {get: () => new Proxy({}, refusing)});
    const {instance} = await instantiate(url, imports);
    library.functions = instance.exports;
    library.refresh();
    instance.exports._initialize?.();
    library.room = library.functions.malloc(Library.roomBytes);
    return library;
  }

  /** Bytes at `room`, for the arguments and results of one call. */
  static roomBytes = 1 << 16;

  /** Memory that has grown is another buffer. */
  refresh() {
    this.buffer = this.functions.memory.buffer;
    this.bytes = new Uint8Array(this.buffer);
    this.words = new Uint32Array(this.buffer);
  }

  text(pointer) {
    return decoder.decode(this.bytes.subarray(pointer, this.bytes.indexOf(0, pointer)));
  }

  /** body(address) with `size` bytes of memory. */
  withMemory(size, body) {
    if (size <= Library.roomBytes) return body(this.room);
    const address = this.functions.malloc(size);
    if (address === 0) throw new RandomError('TALVOR:nomem', 'There is not enough memory.');
    try {
      return body(address);
    } finally {
      this.functions.free(address);
    }
  }

  /** body(address, bytes) with the text's UTF-8, a zero behind it. */
  withText(text, body) {
    const utf8 = encoder.encode(text);
    return this.withMemory(utf8.length + 1 + 16, (address) => {
      this.bytes.set(utf8, address);
      this.bytes[address + utf8.length] = 0;
      return body(address, utf8.length);
    });
  }

  /** Throws the last error where a call's status is not 0. */
  check(status) {
    if (status === 0) return;
    const {tvrng_error_identifier: identifier, tvrng_error_text: text, tvjs_error_hint: hint} =
        this.functions;
    throw new RandomError(this.text(identifier()), this.text(text()), this.text(hint()));
  }
}
