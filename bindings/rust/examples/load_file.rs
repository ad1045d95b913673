//! Loads an input file and prints what its cards set.
//!
//!     load_file INPUT-FILE

use std::process::ExitCode;

fn main() -> ExitCode {
    let result = match std::env::args_os().nth(1) {
        Some(name) => show(name.as_ref()).map_err(|error| error.to_string()),
        None => Err("usage: load_file INPUT-FILE".to_string()),
    };
    match result {
        Ok(()) => ExitCode::SUCCESS,
        Err(reason) => {
            eprintln!("{reason}");
            ExitCode::from(2)
        }
    }
}

fn show(name: &std::path::Path) -> Result<(), corvale::Error> {
    let corvale = corvale::Corvale::open_default()?;
    corvale.load_file(name)?;
    println!(
        "element-set key mode {}, all-key mode {}",
        corvale.elset_key_mode(),
        corvale.all_key_mode()
    );
    for (index, value) in corvale.moic_data(128).iter().enumerate() {
        if *value != 0.0 {
            println!("MOIC({}) = {}", index + 1, value);
        }
    }
    Ok(())
}
