// StrFunctions: the text toolkit of the family.
//
// A text is a run of N bytes, filled on the right with blanks (code 32 and nothing else), without a
// terminator. Its width N travels with it; a width of 0 is an empty text. Positions count from 1.
// An input line is a text of the form key = value, split at its first "=".
//
// FixedWidthText.hpp  buffers in and out, clean-up, case, replacement, the value of an input line
// NumericFields.hpp   numbers and yes/no words from fields and input lines
// CompactNumbers.hpp  short numbers into fields, short CSV rows
#pragma once

#include <corvale/text/CompactNumbers.hpp>
#include <corvale/text/FixedWidthText.hpp>
#include <corvale/text/NumericFields.hpp>
