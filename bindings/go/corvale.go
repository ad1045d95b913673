// Package corvale is the C API of libCorvale: messages and log, key modes, input-file cards and
// interface self-tests. Open comes first; any other call before it panics.
//
//	if err := corvale.Open(""); err != nil { ... }
//	if err := corvale.LoadFile("orbit.inp"); err != nil { ... }
//	values := corvale.MOICData(128)
//
// The library has one state for the whole process. Every function may be called by any number of
// goroutines: the package makes their calls one after another. Code that reaches the same library by
// another way (C, another binding) is not held back by that.
package corvale

/*
#cgo LDFLAGS: -ldl
#include <stdlib.h>
#include "api.h"
*/
import "C"

import (
	"errors"
	"os"
	"sync"
	"unsafe"
)

// StatusError is the library's message after a status of 2.
type StatusError string

func (e StatusError) Error() string { return string(e) }

// Values holds one of every kind of argument, for the interface tests.
type Values struct {
	Ch   byte
	I    int32
	L    int64
	D    float64
	Text string // at most 512 printable ASCII characters; comes back without trailing blanks
	I3   [3]int32
	L3   [3]int64
	D3   [3]float64
	I6   [6]int32
	L6   [6]int64
	D6   [6]float64
}

var (
	oneAtATime sync.Mutex
	opened     string // the library's path, once it is loaded
)

// Open loads the library by its path, or by its name from where the system looks, to the end of the
// process. An empty path stands for what CORVALE_LIBRARY names, or else for libCorvale.so.9. Opening it
// again does nothing; opening another one fails.
func Open(path string) error {
	if path == "" {
		path = os.Getenv("CORVALE_LIBRARY")
	}
	if path == "" {
		path = "libCorvale.so.9"
	}
	oneAtATime.Lock()
	defer oneAtATime.Unlock()
	if opened == path {
		return nil
	}
	if opened != "" {
		return errors.New("corvale: " + opened + " is loaded already")
	}
	name := C.CString(path)
	defer C.free(unsafe.Pointer(name))
	if reason := C.OpenFace(name); reason != nil {
		return errors.New(C.GoString(reason))
	}
	opened = path
	return nil
}

// Init calls CorvaleInit, which does nothing: the library is ready once it is loaded.
func Init() error {
	defer turn()()
	return check(C.CorvaleInit())
}

// Info (CorvaleGetInfo) tells name, version, build date, platform and compiler of the library.
func Info() string {
	defer turn()()
	var info message
	C.CorvaleGetInfo(info.chars())
	return trimmed(info[:])
}

// InitDllNames (GetInitDllNames) lists the libraries that have to be initialised first: none.
func InitDllNames() string {
	defer turn()()
	var names name
	C.GetInitDllNames(names.chars())
	return trimmed(names[:])
}

// OpenLogFile opens the log, created or emptied; from then on every message is also a line of it.
func OpenLogFile(fileName string) error {
	defer turn()()
	var buffer name
	if err := fillUnindented(buffer[:], fileName); err != nil {
		return err
	}
	return check(C.OpenLogFile(buffer.chars()))
}

// CloseLogFile closes the log, if one is open, and blanks the last error message.
func CloseLogFile() {
	defer turn()()
	C.CloseLogFile()
}

// LogMessage stores an informational message of at most 128 characters and writes it to an open log.
func LogMessage(text string) error {
	defer turn()()
	var buffer message
	if err := fillUnindented(buffer[:], text); err != nil {
		return err
	}
	C.LogMessage(buffer.chars())
	return nil
}

// LastErrMsg (GetLastErrMsg) is the last error message. It stays until the next error or CloseLogFile.
func LastErrMsg() string {
	defer turn()()
	return lastErrMsg()
}

// LastInfoMsg (GetLastInfoMsg) is the last informational message.
func LastInfoMsg() string {
	defer turn()()
	var text message
	C.GetLastInfoMsg(text.chars())
	return trimmed(text[:])
}

// DupKeyMode (GetDupKeyMode) is the duplication key mode, 0 or 1.
func DupKeyMode() int32 {
	defer turn()()
	return int32(C.GetDupKeyMode())
}

// SetDupKeyMode sets it; a mode other than 0 and 1 fails and changes nothing.
func SetDupKeyMode(mode int32) error {
	defer turn()()
	return check(C.SetDupKeyMode(C.int32_t(mode)))
}

// AllKeyMode (GetAllKeyMode) is the all-key mode, 0 or 1.
func AllKeyMode() int32 {
	defer turn()()
	return int32(C.GetAllKeyMode())
}

// SetAllKeyMode sets it; a mode other than 0 and 1 fails and changes nothing.
func SetAllKeyMode(mode int32) error {
	defer turn()()
	return check(C.SetAllKeyMode(C.int32_t(mode)))
}

// ResetAllKeyMode sets the all-key and the duplication key mode back to 0.
func ResetAllKeyMode() {
	defer turn()()
	C.ResetAllKeyMode()
}

// ElsetKeyMode (GetElsetKeyMode) is the element-set key mode, 0 or 1.
func ElsetKeyMode() int32 {
	defer turn()()
	return int32(C.GetElsetKeyMode())
}

// SetElsetKeyMode sets it; a mode other than 0 and 1 fails and changes nothing.
func SetElsetKeyMode(mode int32) error {
	defer turn()()
	return check(C.SetElsetKeyMode(C.int32_t(mode)))
}

// LoadFile (CorvaleLoadFile) reads the cards of an input file. It fails when the file cannot be opened,
// never for what it holds.
func LoadFile(fileName string) error {
	defer turn()()
	var buffer name
	if err := fillUnindented(buffer[:], fileName); err != nil {
		return err
	}
	return check(C.CorvaleLoadFile(buffer.chars()))
}

// MOICData (GetMOICData) is the first count values of the array that QZ_MOIC cards fill; for more than
// 128 the library gives zeros.
func MOICData(count uint16) []float64 {
	defer turn()()
	if count == 0 {
		return nil
	}
	values := make([]float64, count)
	C.GetMOICData(C.int32_t(count), reals(&values[0]))
	return values
}

// TestInterface gives every value back as it arrived in the library.
func TestInterface(from Values) (Values, error) {
	defer turn()()
	var to Values
	var textIn, textOut name
	if err := fill(textIn[:], from.Text); err != nil {
		return to, err
	}
	C.TestInterface(C.char(from.Ch), chars(&to.Ch), C.int32_t(from.I), int32s(&to.I), C.int64_t(from.L),
		int64s(&to.L), C.double(from.D), reals(&to.D), textIn.chars(), textOut.chars(),
		int32s(&from.I3[0]), int32s(&to.I3[0]), int64s(&from.L3[0]), int64s(&to.L3[0]),
		reals(&from.D3[0]), reals(&to.D3[0]), int32s(&from.I6[0]), int32s(&to.I6[0]),
		int64s(&from.L6[0]), int64s(&to.L6[0]), reals(&from.D6[0]), reals(&to.D6[0]))
	to.Text = trimmed(textOut[:])
	return to, nil
}

// TestInterface2 changes every value by a fixed amount; integers wrap.
func TestInterface2(values *Values) error {
	defer turn()()
	v := *values
	var text name
	if err := fill(text[:], v.Text); err != nil {
		return err
	}
	C.TestInterface2(chars(&v.Ch), int32s(&v.I), int64s(&v.L), reals(&v.D), text.chars(),
		int32s(&v.I3[0]), int64s(&v.L3[0]), reals(&v.D3[0]), int32s(&v.I6[0]), int64s(&v.L6[0]),
		reals(&v.D6[0]))
	v.Text = trimmed(text[:])
	*values = v
	return nil
}

// TestInterface3 gives 4 times i3 and 5 times i6; products wrap.
func TestInterface3(i3 [3]int32, i6 [6]int32) (i3Out [3]int32, i6Out [6]int32) {
	defer turn()()
	C.TestInterface3(int32s(&i3[0]), int32s(&i3Out[0]), int32s(&i6[0]), int32s(&i6Out[0]))
	return i3Out, i6Out
}

// turn waits until no other goroutine is in the library; the caller defers what it returns.
func turn() func() {
	oneAtATime.Lock()
	if opened == "" {
		oneAtATime.Unlock()
		panic("corvale: the library is not loaded, call Open first")
	}
	return oneAtATime.Unlock
}

// check turns a status into an error, within the turn of the call that failed.
func check(status C.int32_t) error {
	if status == 0 {
		return nil
	}
	return StatusError(lastErrMsg())
}

func lastErrMsg() string {
	var text message
	C.GetLastErrMsg(text.chars())
	return trimmed(text[:])
}
