// Answers the cases of tests/bindings/check.py with this binding.
package main

import (
	"bufio"
	"encoding/hex"
	"errors"
	"fmt"
	"math"
	"os"
	"strconv"
	"strings"

	"corvale"
)

// given is what goes in, value by value.
type given []string

func (g *given) next() string {
	value := (*g)[0][1:]
	*g = (*g)[1:]
	return value
}

func (g *given) integer(bits int) int64 {
	value, err := strconv.ParseInt(g.next(), 10, bits)
	if err != nil {
		panic(err)
	}
	return value
}

func (g *given) real() float64 {
	bits, err := strconv.ParseUint(g.next(), 16, 64)
	if err != nil {
		panic(err)
	}
	return math.Float64frombits(bits)
}

func (g *given) text() string {
	text, err := hex.DecodeString(g.next())
	if err != nil {
		panic(err)
	}
	return string(text)
}

func (g *given) int32s(into []int32) {
	for k := range into {
		into[k] = int32(g.integer(32))
	}
}

func (g *given) int64s(into []int64) {
	for k := range into {
		into[k] = g.integer(64)
	}
}

func (g *given) reals(into []float64) {
	for k := range into {
		into[k] = g.real()
	}
}

func (g *given) values() (v corvale.Values) {
	v.Ch, v.I, v.L, v.D, v.Text = byte(g.integer(16)), int32(g.integer(32)), g.integer(64), g.real(), g.text()
	g.int32s(v.I3[:])
	g.int64s(v.L3[:])
	g.reals(v.D3[:])
	g.int32s(v.I6[:])
	g.int64s(v.L6[:])
	g.reals(v.D6[:])
	return v
}

func text(said string) string { return "x" + hex.EncodeToString([]byte(said)) }

func reals(values ...float64) (said string) {
	for _, value := range values {
		said += fmt.Sprintf("r%016x ", math.Float64bits(value))
	}
	return said
}

// ints says integers of any type, arrays among them.
func ints(values ...any) string {
	return strings.NewReplacer("[", "", "]", "").Replace(fmt.Sprint(values...)) + " "
}

func fields(v corvale.Values) string {
	return text(string([]byte{v.Ch})) + " " + ints(v.I, v.L) + reals(v.D) + text(v.Text) + " " + ints(v.I3, v.L3) +
		reals(v.D3[:]...) + ints(v.I6, v.L6) + reals(v.D6[:]...)
}

// outcome is what a call of the C function gives, as it is said.
func outcome(name string, g *given) (said string, err error) {
	switch name {
	case "Open":
		path := ""
		if len(*g) > 0 {
			path = g.text()
		}
		err = corvale.Open(path)
	case "CorvaleInit":
		err = corvale.Init()
	case "CorvaleGetInfo":
		said = text(corvale.Info())
	case "GetInitDllNames":
		said = text(corvale.InitDllNames())
	case "OpenLogFile":
		err = corvale.OpenLogFile(g.text())
	case "CloseLogFile":
		corvale.CloseLogFile()
	case "LogMessage":
		err = corvale.LogMessage(g.text())
	case "GetLastErrMsg":
		said = text(corvale.LastErrMsg())
	case "GetLastInfoMsg":
		said = text(corvale.LastInfoMsg())
	case "GetDupKeyMode":
		said = ints(corvale.DupKeyMode())
	case "SetDupKeyMode":
		err = corvale.SetDupKeyMode(int32(g.integer(32)))
	case "GetAllKeyMode":
		said = ints(corvale.AllKeyMode())
	case "SetAllKeyMode":
		err = corvale.SetAllKeyMode(int32(g.integer(32)))
	case "ResetAllKeyMode":
		corvale.ResetAllKeyMode()
	case "GetElsetKeyMode":
		said = ints(corvale.ElsetKeyMode())
	case "SetElsetKeyMode":
		err = corvale.SetElsetKeyMode(int32(g.integer(32)))
	case "CorvaleLoadFile":
		err = corvale.LoadFile(g.text())
	case "GetMOICData":
		said = reals(corvale.MOICData(uint16(g.integer(32)))...)
	case "TestInterface":
		var v corvale.Values
		v, err = corvale.TestInterface(g.values())
		said = fields(v)
	case "TestInterface2":
		v := g.values()
		err = corvale.TestInterface2(&v)
		said = fields(v)
	case "TestInterface3":
		var i3 [3]int32
		var i6 [6]int32
		g.int32s(i3[:])
		g.int32s(i6[:])
		i3, i6 = corvale.TestInterface3(i3, i6)
		said = ints(i3, i6)
	default:
		panic("no call of " + name)
	}
	return said, err
}

func main() {
	lines := bufio.NewScanner(os.Stdin)
	for lines.Scan() {
		name, rest, _ := strings.Cut(lines.Text(), " ")
		g := given(strings.FieldsFunc(rest, func(r rune) bool { return r == ' ' || r == ',' }))
		said, err := outcome(name, &g)
		var failed corvale.StatusError
		var refused *corvale.TextError
		switch {
		case err == nil:
			fmt.Println("ok", strings.Join(strings.Fields(said), " "))
		case errors.As(err, &failed):
			fmt.Println("failed", text(err.Error()))
		case errors.As(err, &refused):
			fmt.Println("refused")
		default:
			fmt.Println("unloaded", text(err.Error()))
		}
	}
}
