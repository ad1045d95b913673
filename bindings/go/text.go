package corvale

// #include <stdint.h>
import "C"

import (
	"bytes"
	"fmt"
	"strings"
	"unsafe"
)

// TextError is a text that the library would have cut silently, and where: it was not called.
type TextError struct{ Text, Reason string }

func (e *TextError) Error() string { return fmt.Sprintf("corvale: %q: %s", e.Text, e.Reason) }

// The library's two kinds of text buffers, filled with blanks.
type (
	name    [512]byte
	message [128]byte
)

func (b *name) chars() *C.char    { return chars(&b[0]) }
func (b *message) chars() *C.char { return chars(&b[0]) }

func chars(b *byte) *C.char      { return (*C.char)(unsafe.Pointer(b)) }
func int32s(i *int32) *C.int32_t { return (*C.int32_t)(i) }
func int64s(l *int64) *C.int64_t { return (*C.int64_t)(l) }
func reals(d *float64) *C.double { return (*C.double)(d) }

// fill refuses what the library would not see whole.
func fill(buffer []byte, text string) error {
	if len(text) > len(buffer) {
		return &TextError{text, fmt.Sprintf("%d bytes, %d fit", len(text), len(buffer))}
	}
	for i := 0; i < len(text); i++ {
		if text[i] < 32 || text[i] > 126 {
			return &TextError{text, fmt.Sprintf("byte %d is %d, not printable ASCII", i+1, text[i])}
		}
	}
	for i := copy(buffer, text); i < len(buffer); i++ {
		buffer[i] = ' '
	}
	return nil
}

// fillUnindented also refuses a leading blank, which the library drops from names and messages.
func fillUnindented(buffer []byte, text string) error {
	if strings.HasPrefix(text, " ") {
		return &TextError{text, "begins with a blank"}
	}
	return fill(buffer, text)
}

// trimmed leaves out the blanks that fill a buffer; bytes stay as they are.
func trimmed(buffer []byte) string { return string(bytes.TrimRight(buffer, " ")) }
