// Where the files of a module are. Internal to the package.
//
// A folder of files has a prefix, which the paths that the module asks for lack, and open(path, how), which gives
// a handle or throws; of a handle: read(bytes, position), write(bytes), size() and close(). `how` says what
// shall happen: create, truncate, exclusive.

/** Bytes that grow at their end: space is doubled, so that a log is not copied for each line. */
class Content {
  #space;
  #length;

  constructor(bytes = new Uint8Array()) {
    this.#space = Uint8Array.from(bytes);
    this.#length = bytes.length;
  }

  get bytes() {
    return this.#space.subarray(0, this.#length);
  }

  append(bytes) {
    const length = this.#length + bytes.length;
    if (length > this.#space.length) {
      const space = new Uint8Array(2 * length);
      space.set(this.bytes);
      this.#space = space;
    }
    this.#space.set(bytes, this.#length);
    this.#length = length;
  }
}

/** Files in memory, by name; there are no folders. */
export class MemoryFiles {
  #files = new Map();
  prefix = '';

  /** Puts a file there: its bytes, or a text, which becomes UTF-8. */
  write(name, content) {
    this.#files.set(name, new Content(typeof content === 'string' ? new TextEncoder().encode(content) : content));
  }

  /** A copy of the bytes of a file; undefined where there is none. */
  read(name) {
    return this.#files.get(name)?.bytes.slice();
  }

  /** A file as a text. */
  readText(name) {
    const bytes = this.read(name);
    return bytes && new TextDecoder().decode(bytes);
  }

  names() {
    return [...this.#files.keys()];
  }

  delete(name) {
    return this.#files.delete(name);
  }

  open(name, { create, truncate, exclusive }) {
    const isThere = this.#files.has(name);
    if (exclusive && isThere) throw new Error('exists');
    if (!isThere && !create) throw new Error('missing');
    if (!isThere || truncate) this.#files.set(name, new Content());
    const content = this.#files.get(name);
    return {
      read: (bytes, position) => {
        const part = content.bytes.subarray(position, position + bytes.length);
        bytes.set(part);
        return part.length;
      },
      write: (bytes) => {
        content.append(bytes);
        return bytes.length;
      },
      size: () => content.bytes.length,
      close: () => {},
    };
  }
}

/** The files of the system, by Node's module fs. */
export class SystemFiles {
  #fs;
  prefix = '/';

  constructor(fs) {
    this.#fs = fs;
  }

  open(path, { create, truncate, exclusive }) {
    const fs = this.#fs;
    const { O_APPEND, O_CREAT, O_EXCL, O_NONBLOCK, O_RDONLY, O_TRUNC, O_WRONLY } = fs.constants;
    const flags = !create ? O_RDONLY | O_NONBLOCK
      : O_WRONLY | O_APPEND | O_CREAT | (truncate ? O_TRUNC : 0) | (exclusive ? O_EXCL : 0);
    const descriptor = fs.openSync(path, flags, 0o666);
    if (!fs.fstatSync(descriptor).isFile()) {
      fs.closeSync(descriptor);
      throw new Error('no file');
    }
    return {
      read: (bytes, position) => fs.readSync(descriptor, bytes, 0, bytes.length, position),
      write: (bytes) => fs.writeSync(descriptor, bytes),
      size: () => fs.fstatSync(descriptor).size,
      close: () => fs.closeSync(descriptor),
    };
  }
}
