//! Opens a shared library with local scope, by the system's own loader.

use std::ffi::{c_void, CStr, CString};
use std::os::raw::{c_char, c_int};
use std::os::unix::ffi::OsStrExt;
use std::path::Path;

use crate::Error;

extern "C" {
    fn dlopen(name: *const c_char, mode: c_int) -> *mut c_void;
    fn dlsym(library: *mut c_void, symbol: *const c_char) -> *mut c_void;
    fn dlerror() -> *mut c_char;
}

const RTLD_NOW: c_int = 2; // as on Linux; RTLD_LOCAL is 0 there

/// A library that stays loaded to the end of the process.
pub(crate) struct Library(*mut c_void);

impl Library {
    /// Loads it; its symbols are visible to this binding alone.
    pub fn open(path: &Path) -> Result<Library, Error> {
        let name = CString::new(path.as_os_str().as_bytes())
            .map_err(|_| Error::NotLoaded(format!("{}: holds a NUL", path.display())))?;
        // SAFETY: name is terminated and outlives the call.
        let library = unsafe { dlopen(name.as_ptr(), RTLD_NOW) };
        if library.is_null() {
            return Err(Error::NotLoaded(last_error()));
        }
        Ok(Library(library))
    }

    /// The address of a function. `name` ends in a NUL.
    pub fn symbol(&self, name: &str) -> Result<*mut c_void, Error> {
        debug_assert!(name.ends_with('\0'));
        // SAFETY: name is terminated, the library is never closed.
        let symbol = unsafe { dlsym(self.0, name.as_ptr().cast()) };
        if symbol.is_null() {
            return Err(Error::NotLoaded(last_error()));
        }
        Ok(symbol)
    }
}

fn last_error() -> String {
    // SAFETY: the loader's message is a terminated text that lives until its next call in this thread.
    let message = unsafe { dlerror() };
    if message.is_null() {
        return "the loader gave no reason".to_string();
    }
    unsafe { CStr::from_ptr(message) }.to_string_lossy().into_owned()
}
