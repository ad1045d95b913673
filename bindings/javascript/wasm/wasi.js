// The calls of WASI (preview 1) that the module imports, over one folder of files (files.js). Internal
// to the package.

const SUCCESS = 0, BAD_DESCRIPTOR = 8, IO = 29, NO_ENTRY = 44;
const CHARACTER_DEVICE = 2, DIRECTORY = 3, REGULAR_FILE = 4;
const CREATE = 1, EXCLUSIVE = 4, TRUNCATE = 8; // of path_open
const FROM_START = 0, FROM_HERE = 1;
const ALL_RIGHTS = 0xFFFFFFFFFFFFFFFFn;

// The one folder that the module is given has the descriptor 3: all names are looked up from there.
const ROOT = 3, ROOT_NAME = '/';
const FIRST_FILE = 4;
const STANDARD_INPUT = 0, STANDARD_OUTPUT = 1, STANDARD_ERROR = 2;

/**
 * What a module of WASI imports. `memory()` is its memory; `print(bytes, descriptor)` takes its standard output and
 * errors; `input`, a handle of a file, is its standard input.
 */
export function wasiImports(memory, files, print, input) {
  const open = new Map(input ? [[STANDARD_INPUT, { handle: input, position: 0 }]] : []);
  const view = () => new DataView(memory().buffer);
  const bytesAt = (address, length) => new Uint8Array(memory().buffer, address, length);

  const buffers = (address, count) => Array.from({ length: count }, (_, k) =>
    bytesAt(view().getUint32(address + 8 * k, true), view().getUint32(address + 8 * k + 4, true)));

  /** Runs `act`; what it throws is an error of input or output. */
  const guarded = (act) => {
    try {
      return act();
    } catch {
      return IO;
    }
  };

  const readAt = (file, address, count, position, sum) => guarded(() => {
    let total = 0;
    for (const bytes of buffers(address, count)) {
      const got = file.handle.read(bytes, position + total);
      total += got;
      if (got < bytes.length) break;
    }
    view().setUint32(sum, total, true);
    return SUCCESS;
  });

  const typeOf = (descriptor) => {
    if (open.has(descriptor)) return REGULAR_FILE;
    return descriptor === ROOT ? DIRECTORY : CHARACTER_DEVICE;
  };

  return {
    fd_prestat_get(descriptor, result) {
      if (descriptor !== ROOT) return BAD_DESCRIPTOR;
      view().setUint32(result, 0, true);
      view().setUint32(result + 4, ROOT_NAME.length, true);
      return SUCCESS;
    },
    fd_prestat_dir_name(_descriptor, address, length) {
      bytesAt(address, length).set(new TextEncoder().encode(ROOT_NAME));
      return SUCCESS;
    },
    fd_fdstat_get(descriptor, result) {
      if (!open.has(descriptor) && descriptor >= FIRST_FILE) return BAD_DESCRIPTOR;
      view().setUint16(result, typeOf(descriptor), true);
      view().setUint16(result + 2, 0, true);
      view().setBigUint64(result + 8, ALL_RIGHTS, true);
      view().setBigUint64(result + 16, ALL_RIGHTS, true);
      return SUCCESS;
    },
    fd_filestat_get(descriptor, result) {
      const file = open.get(descriptor);
      if (!file) return BAD_DESCRIPTOR;
      bytesAt(result, 64).fill(0);
      view().setUint8(result + 16, REGULAR_FILE);
      view().setBigUint64(result + 32, BigInt(file.handle.size()), true);
      return SUCCESS;
    },
    path_filestat_get(_root, _lookup, _address, _length, result) { // asked for when the working folder is set
      bytesAt(result, 64).fill(0);
      view().setUint8(result + 16, DIRECTORY);
      return SUCCESS;
    },
    path_open(_root, _lookup, address, length, how, _rights, _inherited, _flags, result) {
      const path = files.prefix + new TextDecoder().decode(bytesAt(address, length));
      const wanted = { create: (how & CREATE) !== 0, truncate: (how & TRUNCATE) !== 0, exclusive: (how & EXCLUSIVE) !== 0 };
      try {
        const handle = files.open(path, wanted);
        let descriptor = FIRST_FILE;
        while (open.has(descriptor)) ++descriptor;
        open.set(descriptor, { handle, position: 0 });
        view().setUint32(result, descriptor, true);
        return SUCCESS;
      } catch {
        return NO_ENTRY;
      }
    },
    fd_close(descriptor) {
      const file = open.get(descriptor);
      if (!file) return BAD_DESCRIPTOR;
      open.delete(descriptor);
      return guarded(() => {
        file.handle.close();
        return SUCCESS;
      });
    },
    fd_read(descriptor, address, count, sum) {
      const file = open.get(descriptor);
      if (!file) return BAD_DESCRIPTOR;
      const status = readAt(file, address, count, file.position, sum);
      if (status === SUCCESS) file.position += view().getUint32(sum, true);
      return status;
    },
    fd_pread(descriptor, address, count, position, sum) {
      const file = open.get(descriptor);
      return file ? readAt(file, address, count, Number(position), sum) : BAD_DESCRIPTOR;
    },
    fd_seek(descriptor, distance, whence, result) {
      const file = open.get(descriptor);
      if (!file) return BAD_DESCRIPTOR;
      const from = whence === FROM_START ? 0 : whence === FROM_HERE ? file.position : file.handle.size();
      file.position = from + Number(distance);
      view().setBigUint64(result, BigInt(file.position), true);
      return SUCCESS;
    },
    fd_write(descriptor, address, count, sum) {
      const isStandard = descriptor === STANDARD_OUTPUT || descriptor === STANDARD_ERROR;
      const file = open.get(descriptor);
      if (!file && !isStandard) return BAD_DESCRIPTOR;
      return guarded(() => {
        let total = 0;
        for (const bytes of buffers(address, count)) {
          total += isStandard ? (print(bytes.slice(), descriptor), bytes.length) : file.handle.write(bytes);
        }
        view().setUint32(sum, total, true);
        return SUCCESS;
      });
    },
    proc_exit(status) {
      throw new Error(`the module ended with status ${status}`);
    },
  };
}
