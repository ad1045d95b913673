//! Between Rust's texts and the blank-filled buffers of the library.

use crate::Error;

/// `text` in a buffer of `WIDTH` bytes; refused when the library would not see all of it.
pub(crate) fn filled<const WIDTH: usize>(text: &[u8]) -> Result<[u8; WIDTH], Error> {
    if text.len() > WIDTH {
        return Err(refused(text, &format!("{} bytes, {} fit", text.len(), WIDTH)));
    }
    if let Some(at) = text.iter().position(|byte| !(32..=126).contains(byte)) {
        return Err(refused(
            text,
            &format!("byte {} is {}, not printable ASCII", at + 1, text[at]),
        ));
    }
    let mut buffer = [b' '; WIDTH];
    buffer[..text.len()].copy_from_slice(text);
    Ok(buffer)
}

/// A name or message; also refused when it begins with a blank, which the library drops.
pub(crate) fn filled_unindented<const WIDTH: usize>(text: &[u8]) -> Result<[u8; WIDTH], Error> {
    if text.starts_with(b" ") {
        return Err(refused(text, "begins with a blank"));
    }
    filled(text)
}

/// What a buffer holds, without the blanks that fill it. Bytes are taken as Latin-1.
pub(crate) fn trimmed(buffer: &[u8]) -> String {
    let length = buffer.iter().rposition(|&byte| byte != b' ').map_or(0, |last| last + 1);
    buffer[..length].iter().map(|&byte| char::from(byte)).collect()
}

fn refused(text: &[u8], why: &str) -> Error {
    Error::Refused(format!("\"{}\": {}", text.escape_ascii(), why))
}
