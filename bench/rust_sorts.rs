// The sorts of Rust's standard library as peers: `sort_unstable` (ipnsort) and `sort` (driftsort).
// Compiled where rustc is 1.81 or newer, the first with both.

#[repr(C)]
pub struct Record {
    key: [u8; 32],
    companion: i64,
}

// Eight bytes at a time, as all peers compare.
fn words(record: &Record) -> [u64; 4] {
    std::array::from_fn(|i| u64::from_be_bytes(record.key[8 * i..8 * i + 8].try_into().unwrap()))
}

/// # Safety
/// `records` points to `n` records, which nobody else uses meanwhile.
#[no_mangle]
pub unsafe extern "C" fn rust_ipnsort(records: *mut Record, n: usize) {
    std::slice::from_raw_parts_mut(records, n).sort_unstable_by(|a, b| words(a).cmp(&words(b)));
}

/// # Safety
/// As `rust_ipnsort`.
#[no_mangle]
pub unsafe extern "C" fn rust_driftsort(records: *mut Record, n: usize) {
    std::slice::from_raw_parts_mut(records, n).sort_by(|a, b| words(a).cmp(&words(b)));
}

/// Sorts `n` integers and drops repeats; returns how many are left.
///
/// # Safety
/// `list` points to `n` integers, which nobody else uses meanwhile.
#[no_mangle]
pub unsafe extern "C" fn rust_sort_dedup(list: *mut i32, n: usize) -> usize {
    let list = std::slice::from_raw_parts_mut(list, n);
    list.sort_unstable();
    let mut kept = usize::from(n > 0);
    for i in 1..n {
        list[kept] = list[i];
        kept += usize::from(list[kept] != list[kept - 1]);
    }
    kept
}
