//! The 20 functions of libCorvale as the library sees them. A text or array carries its width in its
//! type, so that no call can pass a buffer of another size. Names are those of the C header.

use crate::loader::Library;
use crate::Error;

macro_rules! api {
    ($(fn $name:ident($($argument:ident: $kind:ty),*) $(-> $result:ty)?;)*) => {
        #[allow(non_snake_case)]
        pub(crate) struct Api {
            $(pub $name: unsafe extern "C" fn($($kind),*) $(-> $result)?,)*
        }

        impl Api {
            /// Finds every function.
            ///
            /// # Safety
            /// `library` must be libCorvale: nothing else vouches for the types above.
            pub unsafe fn find(library: &Library) -> Result<Api, Error> {
                Ok(Api {
                    $($name: std::mem::transmute::<
                        *mut std::ffi::c_void,
                        unsafe extern "C" fn($($kind),*) $(-> $result)?,
                    >(library.symbol(concat!(stringify!($name), "\0"))?),)*
                })
            }
        }
    };
}

api! {
    fn CorvaleInit() -> i32;
    fn CorvaleGetInfo(info: &mut [u8; 128]);
    fn GetInitDllNames(names: &mut [u8; 512]);
    fn OpenLogFile(fileName: &[u8; 512]) -> i32;
    fn CloseLogFile();
    fn LogMessage(message: &[u8; 128]);
    fn GetLastErrMsg(message: &mut [u8; 128]);
    fn GetLastInfoMsg(message: &mut [u8; 128]);
    fn GetDupKeyMode() -> i32;
    fn SetDupKeyMode(mode: i32) -> i32;
    fn GetAllKeyMode() -> i32;
    fn SetAllKeyMode(mode: i32) -> i32;
    fn ResetAllKeyMode();
    fn GetElsetKeyMode() -> i32;
    fn SetElsetKeyMode(mode: i32) -> i32;
    fn CorvaleLoadFile(fileName: &[u8; 512]) -> i32;
    fn GetMOICData(count: i32, values: *mut f64);
    fn TestInterface(cIn: u8, cOut: &mut u8, iIn: i32, iOut: &mut i32, lIn: i64, lOut: &mut i64,
                     dIn: f64, dOut: &mut f64, strIn: &[u8; 512], strOut: &mut [u8; 512],
                     i3In: &[i32; 3], i3Out: &mut [i32; 3], l3In: &[i64; 3], l3Out: &mut [i64; 3],
                     d3In: &[f64; 3], d3Out: &mut [f64; 3], i6In: &[i32; 6], i6Out: &mut [i32; 6],
                     l6In: &[i64; 6], l6Out: &mut [i64; 6], d6In: &[f64; 6], d6Out: &mut [f64; 6]);
    fn TestInterface2(ch: &mut u8, i: &mut i32, l: &mut i64, d: &mut f64, str: &mut [u8; 512],
                      i3: &mut [i32; 3], l3: &mut [i64; 3], d3: &mut [f64; 3], i6: &mut [i32; 6],
                      l6: &mut [i64; 6], d6: &mut [f64; 6]);
    fn TestInterface3(i3In: &[i32; 3], i3Out: &mut [i32; 3], i6In: &[i32; 6], i6Out: &mut [i32; 6]);
}
