//! The C API of libCorvale: messages and log, key modes, input-file cards, interface self-tests.
//!
//! ```no_run
//! let corvale = corvale::Corvale::open_default()?;
//! corvale.load_file("orbit.inp")?;
//! println!("{:?}", corvale.moic_data(128));
//! # Ok::<(), corvale::Error>(())
//! ```
//!
//! The library has one state for the whole process, whichever [`Corvale`] is used. Every method may be
//! called by any number of threads: the binding makes their calls one after another. Code that
//! reaches the same library by another way (C, another binding) is not held back by that.

mod api;
mod loader;
mod text;

use std::path::Path;
use std::sync::{Mutex, MutexGuard, PoisonError};
use std::{env, fmt};

use api::Api;
use text::{filled, filled_unindented, trimmed};

/// Why a call had no effect.
#[derive(Clone, Debug, PartialEq, Eq)]
#[non_exhaustive]
pub enum Error {
    /// The library, or one of its functions, was not found: the loader's reason.
    NotLoaded(String),
    /// A text that the library would have cut silently, and where: it was not called.
    Refused(String),
    /// The library returned status 2: its message.
    Failed(String),
}

impl fmt::Display for Error {
    fn fmt(&self, out: &mut fmt::Formatter) -> fmt::Result {
        match self {
            Error::NotLoaded(why) | Error::Refused(why) | Error::Failed(why) => out.write_str(why),
        }
    }
}

impl std::error::Error for Error {}

/// What a key mode is set to. C++ libraries of the process may set numbers that the C functions refuse.
#[derive(Clone, Copy, Debug, Default, PartialEq, Eq, Hash)]
#[non_exhaustive]
pub enum KeyMode {
    /// 0, as when the library is loaded.
    #[default]
    Off,
    /// 1.
    On,
    /// Another number; setting it fails.
    Other(i32),
}

impl From<i32> for KeyMode {
    fn from(number: i32) -> KeyMode {
        match number {
            0 => KeyMode::Off,
            1 => KeyMode::On,
            other => KeyMode::Other(other),
        }
    }
}

impl From<KeyMode> for i32 {
    fn from(mode: KeyMode) -> i32 {
        match mode {
            KeyMode::Off => 0,
            KeyMode::On => 1,
            KeyMode::Other(number) => number,
        }
    }
}

/// The number, as in the C API.
impl fmt::Display for KeyMode {
    fn fmt(&self, out: &mut fmt::Formatter) -> fmt::Result {
        i32::from(*self).fmt(out)
    }
}

/// One of every kind of argument, for the interface tests.
#[derive(Clone, Debug, Default, PartialEq)]
#[allow(missing_docs)]
pub struct Values {
    pub ch: u8,
    pub i: i32,
    pub l: i64,
    pub d: f64,
    /// At most 512 printable ASCII characters; comes back without trailing blanks.
    pub text: String,
    pub i3: [i32; 3],
    pub l3: [i64; 3],
    pub d3: [f64; 3],
    pub i6: [i32; 6],
    pub l6: [i64; 6],
    pub d6: [f64; 6],
}

/// The loaded library. It is never unloaded.
pub struct Corvale(Api);

static ONE_AT_A_TIME: Mutex<()> = Mutex::new(());

impl Corvale {
    /// Loads what `CORVALE_LIBRARY` names, or else `libCorvale.so.9` from where the system looks.
    pub fn open_default() -> Result<Corvale, Error> {
        Corvale::open(env::var_os("CORVALE_LIBRARY").unwrap_or_else(|| "libCorvale.so.9".into()))
    }

    /// Loads a library by its path, or by its name from where the system looks.
    pub fn open(library: impl AsRef<Path>) -> Result<Corvale, Error> {
        let library = loader::Library::open(library.as_ref())?;
        // SAFETY: a library that has all 20 names is taken to be libCorvale.
        Ok(Corvale(unsafe { Api::find(&library)? }))
    }

    /// `CorvaleInit`. Does nothing: the library is ready once it is loaded.
    pub fn init(&self) -> Result<(), Error> {
        self.check(|api| unsafe { (api.CorvaleInit)() })
    }

    /// `CorvaleGetInfo`. Name, version, build date, platform and compiler of the library.
    pub fn info(&self) -> String {
        self.read::<128>(|api, info| unsafe { (api.CorvaleGetInfo)(info) })
    }

    /// `GetInitDllNames`. The libraries that have to be initialised first: none.
    pub fn init_dll_names(&self) -> String {
        self.read::<512>(|api, names| unsafe { (api.GetInitDllNames)(names) })
    }

    /// `OpenLogFile`. Opens the log, created or emptied; from then on every message is also a line of it.
    pub fn open_log_file(&self, name: impl AsRef<Path>) -> Result<(), Error> {
        let name = filled_unindented(bytes(name.as_ref()))?;
        self.check(|api| unsafe { (api.OpenLogFile)(&name) })
    }

    /// `CloseLogFile`. Closes the log, if one is open, and blanks the last error message.
    pub fn close_log_file(&self) {
        self.alone(|api| unsafe { (api.CloseLogFile)() })
    }

    /// `LogMessage`. Stores an informational message of at most 128 characters and writes it to an open log.
    pub fn log_message(&self, message: &str) -> Result<(), Error> {
        let message = filled_unindented(message.as_bytes())?;
        self.alone(|api| unsafe { (api.LogMessage)(&message) });
        Ok(())
    }

    /// `GetLastErrMsg`. The last error message. It stays until the next error or [`Corvale::close_log_file`].
    pub fn last_err_msg(&self) -> String {
        self.read::<128>(|api, message| unsafe { (api.GetLastErrMsg)(message) })
    }

    /// `GetLastInfoMsg`. The last informational message.
    pub fn last_info_msg(&self) -> String {
        self.read::<128>(|api, message| unsafe { (api.GetLastInfoMsg)(message) })
    }

    /// `GetDupKeyMode`. The duplication key mode.
    pub fn dup_key_mode(&self) -> KeyMode {
        self.alone(|api| unsafe { (api.GetDupKeyMode)() }).into()
    }

    /// `SetDupKeyMode`. Sets the duplication key mode; [`KeyMode::Other`] fails and changes nothing.
    pub fn set_dup_key_mode(&self, mode: KeyMode) -> Result<(), Error> {
        self.check(|api| unsafe { (api.SetDupKeyMode)(mode.into()) })
    }

    /// `GetAllKeyMode`. The all-key mode, 0 or 1.
    pub fn all_key_mode(&self) -> KeyMode {
        self.alone(|api| unsafe { (api.GetAllKeyMode)() }).into()
    }

    /// `SetAllKeyMode`. Sets the all-key mode; [`KeyMode::Other`] fails and changes nothing.
    pub fn set_all_key_mode(&self, mode: KeyMode) -> Result<(), Error> {
        self.check(|api| unsafe { (api.SetAllKeyMode)(mode.into()) })
    }

    /// `ResetAllKeyMode`. Sets the all-key and the duplication key mode back to 0.
    pub fn reset_all_key_mode(&self) {
        self.alone(|api| unsafe { (api.ResetAllKeyMode)() })
    }

    /// `GetElsetKeyMode`. The element-set key mode.
    pub fn elset_key_mode(&self) -> KeyMode {
        self.alone(|api| unsafe { (api.GetElsetKeyMode)() }).into()
    }

    /// `SetElsetKeyMode`. Sets the element-set key mode; [`KeyMode::Other`] fails and changes nothing.
    pub fn set_elset_key_mode(&self, mode: KeyMode) -> Result<(), Error> {
        self.check(|api| unsafe { (api.SetElsetKeyMode)(mode.into()) })
    }

    /// `CorvaleLoadFile`. Reads the cards of an input file. Fails when it cannot be opened, never for what it holds.
    pub fn load_file(&self, name: impl AsRef<Path>) -> Result<(), Error> {
        let name = filled_unindented(bytes(name.as_ref()))?;
        self.check(|api| unsafe { (api.CorvaleLoadFile)(&name) })
    }

    /// `GetMOICData`. The first `count` values of the array that QZ_MOIC cards fill; for more than 128
    /// the library gives zeros.
    pub fn moic_data(&self, count: u16) -> Vec<f64> {
        let mut values = vec![0.0; count.into()];
        // SAFETY: values has room for count.
        self.alone(|api| unsafe { (api.GetMOICData)(count.into(), values.as_mut_ptr()) });
        values
    }

    /// `TestInterface`. Gives every value back as it arrived in the library.
    pub fn test_interface(&self, from: &Values) -> Result<Values, Error> {
        let text = filled(from.text.as_bytes())?;
        let (mut to, mut text_out) = (Values::default(), [0; 512]);
        #[rustfmt::skip]
        unsafe {
            (self.0.TestInterface)(
                from.ch, &mut to.ch, from.i, &mut to.i, from.l, &mut to.l, from.d, &mut to.d,
                &text, &mut text_out, &from.i3, &mut to.i3, &from.l3, &mut to.l3, &from.d3, &mut to.d3,
                &from.i6, &mut to.i6, &from.l6, &mut to.l6, &from.d6, &mut to.d6,
            )
        };
        to.text = trimmed(&text_out);
        Ok(to)
    }

    /// `TestInterface2`. Changes every value by a fixed amount; integers wrap.
    pub fn test_interface2(&self, values: &mut Values) -> Result<(), Error> {
        let mut text = filled(values.text.as_bytes())?;
        let v = &mut *values;
        #[rustfmt::skip]
        unsafe {
            (self.0.TestInterface2)(
                &mut v.ch, &mut v.i, &mut v.l, &mut v.d, &mut text, &mut v.i3, &mut v.l3, &mut v.d3,
                &mut v.i6, &mut v.l6, &mut v.d6,
            )
        };
        values.text = trimmed(&text);
        Ok(())
    }

    /// `TestInterface3`. 4 times `i3` and 5 times `i6`; products wrap.
    pub fn test_interface3(&self, i3: &[i32; 3], i6: &[i32; 6]) -> ([i32; 3], [i32; 6]) {
        let (mut i3_out, mut i6_out) = ([0; 3], [0; 6]);
        unsafe { (self.0.TestInterface3)(i3, &mut i3_out, i6, &mut i6_out) };
        (i3_out, i6_out)
    }

    fn alone<Result>(&self, call: impl FnOnce(&Api) -> Result) -> Result {
        let _turn = turn();
        call(&self.0)
    }

    /// A call with a status; the reason is read before another thread can fail.
    fn check(&self, call: impl FnOnce(&Api) -> i32) -> Result<(), Error> {
        let _turn = turn();
        if call(&self.0) == 0 {
            return Ok(());
        }
        let mut reason = [0; 128];
        unsafe { (self.0.GetLastErrMsg)(&mut reason) };
        Err(Error::Failed(trimmed(&reason)))
    }

    fn read<const WIDTH: usize>(&self, call: impl FnOnce(&Api, &mut [u8; WIDTH])) -> String {
        let mut buffer = [0; WIDTH];
        self.alone(|api| call(api, &mut buffer));
        trimmed(&buffer)
    }
}

fn turn() -> MutexGuard<'static, ()> {
    // A thread that panicked left nothing half done: the lock guards no data of Rust.
    ONE_AT_A_TIME.lock().unwrap_or_else(PoisonError::into_inner)
}

fn bytes(name: &Path) -> &[u8] {
    use std::os::unix::ffi::OsStrExt;
    name.as_os_str().as_bytes()
}
