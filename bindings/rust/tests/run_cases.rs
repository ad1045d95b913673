//! Answers the cases of tests/bindings/check.py with this binding.

use corvale::{Corvale, Error, KeyMode, Values};
use std::fmt::Write;
use std::io::{self, BufRead};

/// What goes in, value by value.
struct Given<'a>(std::str::Split<'a, [char; 2]>);

impl Given<'_> {
    fn next(&mut self) -> &str {
        &self.0.next().expect("a value")[1..]
    }

    fn int<T: std::str::FromStr<Err = std::num::ParseIntError>>(&mut self) -> T {
        self.next().parse().expect("an integer")
    }

    fn mode(&mut self) -> KeyMode {
        let number = self.int();
        assert_eq!(i32::from(KeyMode::from(number)), number);
        number.into()
    }

    fn bits(&mut self) -> f64 {
        f64::from_bits(u64::from_str_radix(self.next(), 16).expect("the bits of a real"))
    }

    fn text(&mut self) -> String {
        let byte = |pair| u8::from_str_radix(std::str::from_utf8(pair).unwrap(), 16).unwrap();
        String::from_utf8(self.next().as_bytes().chunks(2).map(byte).collect()).expect("UTF-8")
    }

    fn values(&mut self) -> Values {
        Values {
            ch: self.int(),
            i: self.int(),
            l: self.int(),
            d: self.bits(),
            text: self.text(),
            i3: [(); 3].map(|_| self.int()),
            l3: [(); 3].map(|_| self.int()),
            d3: [(); 3].map(|_| self.bits()),
            i6: [(); 6].map(|_| self.int()),
            l6: [(); 6].map(|_| self.int()),
            d6: [(); 6].map(|_| self.bits()),
        }
    }
}

fn text(said: &str) -> String {
    said.chars().fold("x".to_string(), |mut hex, c| {
        write!(hex, "{:02x}", c as u32).unwrap();
        hex
    })
}

fn reals(values: &[f64]) -> String {
    values.iter().map(|value| format!("r{:016x} ", value.to_bits())).collect()
}

fn ints<T: ToString>(values: &[T]) -> String {
    values.iter().map(|value| value.to_string() + " ").collect()
}

fn fields(v: &Values) -> String {
    let numbers = format!("{} {} {}", ints(&[v.i]), ints(&[v.l]), reals(&[v.d]));
    let threes = format!("{} {} {}", ints(&v.i3), ints(&v.l3), reals(&v.d3));
    let sixes = format!("{} {} {}", ints(&v.i6), ints(&v.l6), reals(&v.d6));
    format!("x{:02x} {numbers} {} {threes} {sixes}", v.ch, text(&v.text))
}

/// What a call of the C function gives, as it is said.
fn outcome(corvale: &Corvale, name: &str, given: &mut Given) -> Result<String, Error> {
    let done = |result: Result<(), Error>| result.map(|()| String::new());
    match name {
        "CorvaleInit" => done(corvale.init()),
        "CorvaleGetInfo" => Ok(text(&corvale.info())),
        "GetInitDllNames" => Ok(text(&corvale.init_dll_names())),
        "OpenLogFile" => done(corvale.open_log_file(given.text())),
        "CloseLogFile" => done(Ok(corvale.close_log_file())),
        "LogMessage" => done(corvale.log_message(&given.text())),
        "GetLastErrMsg" => Ok(text(&corvale.last_err_msg())),
        "GetLastInfoMsg" => Ok(text(&corvale.last_info_msg())),
        "GetDupKeyMode" => Ok(corvale.dup_key_mode().to_string()),
        "SetDupKeyMode" => done(corvale.set_dup_key_mode(given.mode())),
        "GetAllKeyMode" => Ok(corvale.all_key_mode().to_string()),
        "SetAllKeyMode" => done(corvale.set_all_key_mode(given.mode())),
        "ResetAllKeyMode" => done(Ok(corvale.reset_all_key_mode())),
        "GetElsetKeyMode" => Ok(corvale.elset_key_mode().to_string()),
        "SetElsetKeyMode" => done(corvale.set_elset_key_mode(given.mode())),
        "CorvaleLoadFile" => done(corvale.load_file(given.text())),
        "GetMOICData" => Ok(reals(&corvale.moic_data(given.int()))),
        "TestInterface" => corvale.test_interface(&given.values()).map(|values| fields(&values)),
        "TestInterface2" => {
            let mut values = given.values();
            corvale.test_interface2(&mut values).map(|()| fields(&values))
        }
        "TestInterface3" => {
            let (i3, i6) = ([(); 3].map(|_| given.int()), [(); 6].map(|_| given.int()));
            let (i3_out, i6_out) = corvale.test_interface3(&i3, &i6);
            Ok(ints(&i3_out) + &ints(&i6_out))
        }
        _ => panic!("no call of {name}"),
    }
}

fn main() {
    let mut corvale = None;
    for line in io::stdin().lock().lines().map(Result::unwrap) {
        let mut words = line.split([' ', ',']);
        let name = words.next().unwrap();
        let mut given = Given(words);
        let said = if name == "Open" {
            let opened = match line.contains(" x") {
                true => Corvale::open(given.text()),
                false => Corvale::open_default(),
            };
            opened.map(|library| {
                corvale = Some(library);
                String::new()
            })
        } else {
            outcome(corvale.as_ref().expect("Open first"), name, &mut given)
        };
        match said {
            Ok(said) => println!("ok {}", said.split_whitespace().collect::<Vec<_>>().join(" ")),
            Err(Error::Failed(message)) => println!("failed {}", text(&message)),
            Err(Error::Refused(_)) => println!("refused"),
            Err(Error::NotLoaded(reason)) => println!("unloaded {}", text(&reason)),
            Err(other) => panic!("{other}"),
        }
    }
}
