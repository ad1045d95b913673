//! Walks the table of the C API and proves that this binding declares and calls all of it.

use corvale::{Corvale, Error, KeyMode, Values, DECLARATIONS};
use std::{env, fs, path::PathBuf};

fn setting(name: &str) -> String {
    env::var(name).unwrap_or_else(|_| panic!("{name} is not set: run scripts/test-bindings.sh"))
}

/// How this binding has to declare an argument of the table.
fn declared(kind: &str, width: &str, way: &str) -> String {
    let element = match kind {
        "char" | "text" => "u8",
        "int32" => "i32",
        "int64" => "i64",
        _ => "f64",
    };
    let reference = if way == "in" { "&" } else { "&mut " };
    match (kind, width, way) {
        ("text", ..) => format!("{reference}[{element}; {width}]"),
        (_, "1", "in") => element.to_string(),
        (_, "1", _) => format!("{reference}{element}"),
        (_, "count", _) => format!("*mut {element}"),
        _ => format!("{reference}[{element}; {width}]"),
    }
}

/// Compares declarations and table; returns the table's functions and how many arguments agreed.
fn check_declarations(table: &str) -> (Vec<&str>, usize) {
    let (mut wanted, mut have) = (Vec::new(), Vec::new());
    for line in table.lines().filter(|line| !line.starts_with('#')) {
        match line.split_whitespace().collect::<Vec<_>>()[..] {
            ["function", name, result] => {
                wanted.push((name, "result", result.replace("int32", "i32").replace("void", "")))
            }
            ["argument", name, kind, width, way] => {
                wanted.push(("", name, declared(kind, width, way)))
            }
            _ => assert!(line.is_empty(), "unreadable line of the table: {line}"),
        }
    }
    for (name, arguments, result) in DECLARATIONS {
        have.push((*name, "result", result.to_string()));
        have.extend(arguments.iter().map(|(name, kind)| ("", *name, kind.to_string())));
    }
    assert_eq!(have, wanted);
    let functions: Vec<_> =
        wanted.iter().map(|row| row.0).filter(|name| !name.is_empty()).collect();
    let arguments = wanted.len() - functions.len();
    (functions, arguments)
}

fn identity(corvale: &Corvale) {
    assert_eq!(corvale.init(), Ok(()));
    assert!(corvale.info().starts_with("Arvenit Corvale - Version: v9.4 - Build: "));
    assert_eq!(corvale.init_dll_names(), "");
}

fn modes(corvale: &Corvale) {
    corvale.set_dup_key_mode(KeyMode::On).unwrap();
    corvale.set_all_key_mode(KeyMode::On).unwrap();
    assert_eq!(
        (corvale.dup_key_mode(), corvale.all_key_mode(), corvale.elset_key_mode()),
        (KeyMode::On, KeyMode::On, KeyMode::default())
    );
    corvale.set_elset_key_mode(KeyMode::On).unwrap();
    corvale.reset_all_key_mode();
    assert_eq!(
        (corvale.dup_key_mode(), corvale.all_key_mode(), corvale.elset_key_mode()),
        (KeyMode::Off, KeyMode::Off, KeyMode::On)
    );
    corvale.set_elset_key_mode(KeyMode::Off).unwrap();
    let reason = "SetDupKeyMode: invalid input value for DUPLICATION key mode.";
    let refused = corvale.set_dup_key_mode(KeyMode::Other(2));
    assert_eq!(refused, Err(Error::Failed(reason.to_string())));
    assert_eq!(corvale.last_err_msg(), reason);
    for number in [0, 1, 2, -1] {
        assert_eq!(i32::from(KeyMode::from(number)), number);
    }
}

fn log(corvale: &Corvale) {
    let name: PathBuf = env::temp_dir().join(format!("corvale-rust-{}.log", std::process::id()));
    corvale.open_log_file(&name).unwrap();
    corvale.log_message("pass 1 of 3").unwrap();
    assert!(corvale.load_file("no such file").is_err());
    corvale.close_log_file();
    assert_eq!(
        (corvale.last_info_msg(), corvale.last_err_msg()),
        ("pass 1 of 3".into(), "".into())
    );
    let lines = format!(
        "{:128}\nError-FileOpen: Unable to open file \"no such file\" for reading.\n",
        "pass 1 of 3"
    );
    assert_eq!(fs::read_to_string(&name).unwrap(), lines);
    fs::remove_file(&name).unwrap();
    let reason = "OpenLogFile: log file failed to open.".to_string();
    assert_eq!(corvale.open_log_file(env::temp_dir()), Err(Error::Failed(reason)));
    corvale.close_log_file();
}

fn cards(corvale: &Corvale) {
    corvale.load_file(setting("CORVALE_INPUT")).unwrap();
    let values = corvale.moic_data(9);
    assert_eq!(values[..3], [6378.135, 398600.8, 1.0826158e-3]);
    assert_eq!(values[6..], [0.25, 0.0, 1e-12]);
    assert_eq!((corvale.elset_key_mode(), corvale.all_key_mode()), (KeyMode::On, KeyMode::On));
    assert_eq!((corvale.moic_data(0).len(), corvale.moic_data(129)), (0, vec![0.0; 129]));
}

fn self_tests(corvale: &Corvale) {
    let given = Values {
        ch: b'A',
        i: i32::MAX,
        l: i64::MAX,
        d: 0.1,
        text: "  text".into(),
        i3: [i32::MAX, 2, -3],
        l3: [i64::MAX, 5, -6],
        d3: [-0.0, 5e-324, 1e308],
        i6: [i32::MIN, 8, 9, 10, 11, i32::MAX],
        l6: [i64::MIN, 14, 15, 16, 17, i64::MAX],
        d6: [0.2, 0.3, 0.4, 0.5, 0.6, 0.7],
    };
    let mut values = corvale.test_interface(&given).unwrap();
    assert_eq!(values, given);
    assert_eq!(values.d3.map(f64::to_bits), given.d3.map(f64::to_bits));
    corvale.test_interface2(&mut values).unwrap();
    let changed = Values {
        ch: b'Z',
        i: i32::MIN,
        l: i64::MIN + 1,
        d: 0.1 + 42.123456,
        text: "It doesn't matter what your string was.".into(),
        i3: given.i3.map(|i| i.wrapping_add(1)),
        l3: given.l3.map(|l| l.wrapping_add(1234567890123456789)),
        d3: given.d3.map(|d| d + 42.0),
        i6: given.i6.map(|i| i.wrapping_add(1)),
        l6: given.l6.map(|l| l.wrapping_add(6)),
        d6: given.d6.map(|d| d + 7.6),
    };
    assert_eq!(values, changed);
    let products = (given.i3.map(|i| i.wrapping_mul(4)), given.i6.map(|i| i.wrapping_mul(5)));
    assert_eq!(corvale.test_interface3(&given.i3, &given.i6), products);
}

fn refusals(corvale: &Corvale) {
    let long = "n".repeat(513);
    for name in [" blank", "tab\t", "\u{e9}t\u{e9}", "del\u{7f}", "nul\0", &long] {
        assert!(matches!(corvale.load_file(name), Err(Error::Refused(_))), "{name:?}");
        assert!(matches!(corvale.open_log_file(name), Err(Error::Refused(_))), "{name:?}");
    }
    assert!(matches!(corvale.load_file(&long[1..]), Err(Error::Failed(_))), "512 bytes fit");
    for message in [" blank", "tab\t", &long[..129]] {
        assert!(matches!(corvale.log_message(message), Err(Error::Refused(_))), "{message:?}");
    }
    assert!(
        matches!(corvale.load_file(""), Err(Error::Failed(_))),
        "the library reports an empty name"
    );
    assert!(matches!(Corvale::open("no-such.so"), Err(Error::NotLoaded(_))));
}

type Scene = fn(&Corvale);

/// What is called where: together every function of the table.
const CALLS: &[(Scene, &str)] = &[
    (identity, "CorvaleInit CorvaleGetInfo GetInitDllNames"),
    (modes, "GetDupKeyMode SetDupKeyMode GetAllKeyMode SetAllKeyMode ResetAllKeyMode GetElsetKeyMode SetElsetKeyMode"),
    (log, "OpenLogFile LogMessage GetLastInfoMsg GetLastErrMsg CloseLogFile"),
    (cards, "CorvaleLoadFile GetMOICData"),
    (self_tests, "TestInterface TestInterface2 TestInterface3"),
    (refusals, ""),
];

fn main() {
    let table = fs::read_to_string(setting("CORVALE_INTERFACE")).unwrap();
    let (mut functions, arguments) = check_declarations(&table);
    let corvale = Corvale::open_default().unwrap();
    let mut called = Vec::new();
    for (call, names) in CALLS {
        call(&corvale);
        called.extend(names.split_whitespace());
    }
    functions.sort_unstable();
    called.sort_unstable();
    assert_eq!(called, functions);
    println!("Rust: {} of 20 functions called, {} arguments checked, ok", called.len(), arguments);
}
