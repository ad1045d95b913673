package corvale

import (
	"errors"
	"fmt"
	"math"
	"os"
	"path/filepath"
	"reflect"
	"regexp"
	"sort"
	"strings"
	"testing"
)

var functions, called []string // of the table; by the tests that passed
var arguments int

// TestMain ends with one line on how far the tests went.
func TestMain(m *testing.M) {
	status := m.Run()
	if status == 0 {
		fmt.Printf("Go: %d of 20 functions called, %d arguments checked, ok\n", len(called), arguments)
	}
	os.Exit(status)
}

func expect(t *testing.T, got, want any) {
	t.Helper()
	if !reflect.DeepEqual(got, want) {
		t.Fatalf("got %#v, wanted %#v", got, want)
	}
}

func read(t *testing.T, path string) string {
	t.Helper()
	content, err := os.ReadFile(path)
	expect(t, err, nil)
	return string(content)
}

// declared is how api.h has to declare an argument of the table.
func declared(name, kind, width, way string) string {
	text := map[string]string{"text": "char ", "char": "char ", "int32": "int32_t ", "int64": "int64_t ",
		"real64": "double "}[kind] + name
	if width == "1" && way == "in" {
		return text
	}
	if way == "in" {
		text = "const " + text
	}
	return text + "[" + strings.TrimPrefix(width, "count") + "]"
}

// What api.h has to hold: result, name, arguments declared, arguments passed, for each function.
func wanted(t *testing.T) (lines []string) {
	for _, line := range strings.Split(read(t, os.Getenv("CORVALE_INTERFACE")), "\n") {
		switch f := strings.Fields(line); {
		case strings.HasPrefix(line, "function "):
			functions = append(functions, f[1])
			lines = append(lines, strings.Replace(f[2], "int32", "int32_t", 1)+" "+f[1])
		case strings.HasPrefix(line, "argument "):
			arguments++
			lines = append(lines, declared(f[1], f[2], f[3], f[4])+" as "+f[1])
		}
	}
	return lines
}

func TestDeclarationsAgreeWithTheTable(t *testing.T) {
	var have []string
	header := regexp.MustCompile(`[\s\\]+`).ReplaceAllString(read(t, "api.h"), " ")
	for _, f := range regexp.MustCompile(`F\((\w+), (\w+), \(([^)]+)\), \(([^)]*)\)\)`).FindAllStringSubmatch(header, -1) {
		have = append(have, f[1]+" "+f[2])
		if f[3] == "void" {
			continue
		}
		passed := strings.Split(f[4], ", ")
		for i, argument := range strings.Split(f[3], ", ") {
			have = append(have, argument+" as "+passed[i])
		}
	}
	expect(t, have, wanted(t))
}

func TestIdentity(t *testing.T) {
	expect(t, Open(""), nil)
	expect(t, Init(), nil)
	expect(t, strings.HasPrefix(Info(), "Arvenit Corvale - Version: v9.4 - Build: "), true)
	expect(t, InitDllNames(), "")
	called = append(called, "CorvaleInit", "CorvaleGetInfo", "GetInitDllNames")
}

func TestModes(t *testing.T) {
	modes := func() [3]int32 { return [3]int32{DupKeyMode(), AllKeyMode(), ElsetKeyMode()} }
	expect(t, [2]error{SetDupKeyMode(1), SetAllKeyMode(1)}, [2]error{})
	expect(t, modes(), [3]int32{1, 1, 0})
	expect(t, SetElsetKeyMode(1), nil)
	ResetAllKeyMode()
	expect(t, modes(), [3]int32{0, 0, 1})
	expect(t, SetElsetKeyMode(0), nil)
	expect(t, SetDupKeyMode(2), StatusError("SetDupKeyMode: invalid input value for DUPLICATION key mode."))
	expect(t, LastErrMsg(), "SetDupKeyMode: invalid input value for DUPLICATION key mode.")
	called = append(called, "GetDupKeyMode", "SetDupKeyMode", "GetAllKeyMode", "SetAllKeyMode", "ResetAllKeyMode",
		"GetElsetKeyMode", "SetElsetKeyMode", "GetLastErrMsg")
}

func TestLog(t *testing.T) {
	log := filepath.Join(t.TempDir(), "go.log")
	expect(t, OpenLogFile(log), nil)
	expect(t, LogMessage("pass 1 of 3"), nil)
	failure := `FileOpen: Unable to open file "no such file" for reading.`
	expect(t, LoadFile("no such file"), StatusError(failure))
	CloseLogFile()
	expect(t, [2]string{LastInfoMsg(), LastErrMsg()}, [2]string{"pass 1 of 3", ""})
	expect(t, read(t, log), fmt.Sprintf("%-128s\nError-%s\n", "pass 1 of 3", failure))
	expect(t, OpenLogFile(t.TempDir()), StatusError("OpenLogFile: log file failed to open."))
	CloseLogFile()
	called = append(called, "OpenLogFile", "LogMessage", "GetLastInfoMsg", "CloseLogFile")
}

func TestCards(t *testing.T) {
	expect(t, LoadFile(os.Getenv("CORVALE_INPUT")), nil)
	values := MOICData(9)
	expect(t, values[:3], []float64{6378.135, 398600.8, 1.0826158e-3})
	expect(t, values[6:], []float64{0.25, 0, 1e-12})
	expect(t, [2]int32{ElsetKeyMode(), AllKeyMode()}, [2]int32{1, 1})
	expect(t, MOICData(0), []float64(nil))
	expect(t, MOICData(129), make([]float64, 129))
	called = append(called, "CorvaleLoadFile", "GetMOICData")
}

func TestSelfTests(t *testing.T) {
	const maxInt, maxLong = 1<<31 - 1, 1<<63 - 1
	given := Values{'A', maxInt, maxLong, 0.1, "  text", [3]int32{maxInt, 2, -3}, [3]int64{maxLong, 5, -6},
		[3]float64{math.Copysign(0, -1), 5e-324, 1e308}, [6]int32{-maxInt - 1, 8, 9, 10, 11, maxInt},
		[6]int64{-maxLong - 1, 14, 15, 16, 17, maxLong}, [6]float64{0.2, 0.3, 0.4, 0.5, 0.6, 0.7}}
	values, err := TestInterface(given)
	expect(t, err, nil)
	expect(t, values, given)
	expect(t, math.Signbit(values.D3[0]), true)
	expect(t, TestInterface2(&values), nil)
	d3, d6 := given.D3, given.D6
	for k := range d3 {
		d3[k] += 42
	}
	for k := range d6 {
		d6[k] += 7.6
	}
	const step = 1234567890123456789
	expect(t, values, Values{'Z', -maxInt - 1, -maxLong, given.D + 42.123456, "It doesn't matter what your string was.",
		[3]int32{-maxInt - 1, 3, -2}, [3]int64{step - maxLong - 2, step + 5, step - 6}, d3,
		[6]int32{-maxInt, 9, 10, 11, 12, -maxInt - 1}, [6]int64{5 - maxLong, 20, 21, 22, 23, 4 - maxLong}, d6})
	i3Out, i6Out := TestInterface3(given.I3, given.I6)
	expect(t, i3Out, [3]int32{-4, 8, -12})
	expect(t, i6Out, [6]int32{-maxInt - 1, 40, 45, 50, 55, maxInt - 4})
	called = append(called, "TestInterface", "TestInterface2", "TestInterface3")
}

func TestRefusals(t *testing.T) {
	long := strings.Repeat("n", 513)
	for _, name := range []string{" blank", "tab\t", "\u00e9t\u00e9", "del\x7f", "nul\x00", long} {
		var refusal *TextError
		expect(t, errors.As(LoadFile(name), &refusal), true)
		expect(t, errors.As(OpenLogFile(name), &refusal), true)
	}
	var failure StatusError
	expect(t, errors.As(LoadFile(long[1:]), &failure), true) // 512 bytes fit
	expect(t, errors.As(LoadFile(""), &failure), true)       // the library reports it
	for _, message := range []string{" blank", "tab\t", long[:129]} {
		expect(t, LogMessage(message) != nil, true)
	}
	expect(t, Open("no-such.so") != nil, true)
}

// Last: all of the table was called by the tests above.
func TestWalk(t *testing.T) {
	sort.Strings(functions)
	sort.Strings(called)
	expect(t, called, functions)
}
