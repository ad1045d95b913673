// Loads an input file and prints what its cards set.
//
//	load_file INPUT-FILE
package main

import (
	"fmt"
	"os"

	"corvale"
)

func main() {
	if len(os.Args) != 2 {
		fmt.Fprintln(os.Stderr, "usage: load_file INPUT-FILE")
		os.Exit(2)
	}
	if err := show(os.Args[1]); err != nil {
		fmt.Fprintln(os.Stderr, err)
		os.Exit(2)
	}
}

func show(fileName string) error {
	if err := corvale.Open(""); err != nil {
		return err
	}
	if err := corvale.LoadFile(fileName); err != nil {
		return err
	}
	fmt.Printf("element-set key mode %d, all-key mode %d\n", corvale.ElsetKeyMode(), corvale.AllKeyMode())
	for i, value := range corvale.MOICData(128) {
		if value != 0 {
			fmt.Printf("MOIC(%d) = %v\n", i+1, value)
		}
	}
	return nil
}
