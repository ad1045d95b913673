// CorvaleCardReading: the library's own cards in text input files, the array of 128 reals that they
// fill, and the modes of satellite keys.
//
// A card is a line that begins, in column 1, with a keyword in any case. Lines end with LF or CR LF
// and are taken as 512 columns: shorter ones are filled with blanks, what follows column 512 is not
// looked at. Lines that begin with "*", blank lines and the cards of other programs are passed over
// without a message.
//
// QZ_MOIC        column 8 is a blank; columns 9 to 512 hold up to 128 numbers for MoicArr, in free
//                form: separated by blanks, tabs or one comma; "1.5", "-.5", "2.", "1E3", "1D3",
//                "1Q3", "1+3" (the same), "1E" (1); n*v stands for n times v and n* for n values
//                that keep what they held, as does nothing between two commas; a slash ends the
//                list, and so does anything that is not a number ("X", ".", "Inf", "1;2", "0*5").
//                What was not reached keeps its value, the 129th value and all that follow are not
//                used
// QZ_DMA_ON      sets ElsetKeyMode to 1; compared in columns 1 to 9 only
// QZ_DMA_ALL_ON  sets gAllKeyMode and gUseAllKeyMode to 1; compared in columns 1 to 13 only
//
// Loading only ever raises modes and overwrites elements: several files, or one file twice,
// accumulate.
//
// Bad input  every mode is stored as it is
// Threads    modes are read and written whole from any thread; everything that touches MoicArr or
//            loads a file is for its callers to serialise, in the whole process
// Exactness  the numbers of cards are correctly rounded to nearest, ties to even, in every locale
//            and whatever the thread's rounding mode
#pragma once

#include <corvale/base/Module.hpp>

#include <array>
#include <atomic>
#include <cstdint>
#include <string_view>

namespace corvale::CorvaleCardReading {

/// The element-set key mode, 0 when the library is loaded. No reset touches it.
extern CORVALE_API std::atomic<std::int32_t> ElsetKeyMode;

/// The reals of the QZ_MOIC cards: element i of the card is `MoicArr[i - 1]`. All 0.0 when the
/// library is loaded; nothing resets it.
extern CORVALE_API std::array<double, 128> MoicArr;

// The modes as the family's libraries read and set them.

[[nodiscard]] CORVALE_API std::int32_t DupKeyModeGet() noexcept;  ///< `gDupKeyMode`
CORVALE_API void DupKeyModeSet(std::int32_t mode) noexcept;       ///< sets `gDupKeyMode`
[[nodiscard]] CORVALE_API std::int32_t AllKeyModeGet() noexcept;  ///< `gAllKeyMode`
/// Sets `gAllKeyMode` to `mode`, then `gUseAllKeyMode` to 1, whatever `mode` is.
CORVALE_API void AllKeyModeSet(std::int32_t mode) noexcept;
[[nodiscard]] CORVALE_API std::int32_t UseAllKeyMode() noexcept;    ///< `gUseAllKeyMode`
[[nodiscard]] CORVALE_API std::int32_t ElsetKeyModeGet() noexcept;  ///< `ElsetKeyMode`
CORVALE_API void ElsetKeyModeSet(std::int32_t mode) noexcept;       ///< sets `ElsetKeyMode`

/// Reads the cards of the file `fileName`, through unit 3. Memory does not grow with the file or
/// its lines.
///
/// Width      any; trailing blanks are not part of the name
/// Bad input  status 2 and the message of `FileIO::FileOpen` when the file cannot be opened; once
///            it is open the status is 0, whatever its lines hold, and a read error ends it like
///            its end
[[nodiscard]] CORVALE_API std::int32_t ReadCorvaleFrFile(std::string_view fileName) noexcept;

/// Reads the cards of the file that is open for reading on `unit`, from its first line to its end,
/// and leaves it open. Always 0, which may be ignored.
///
/// Bad input  a unit that is not open for reading, or cannot be rewound: nothing is read
CORVALE_API std::int32_t ReadCorvaleFrFileUnit(std::int32_t unit) noexcept;

/// What card a line is: 1 QZ_MOIC with a blank in column 8, 2 QZ_DMA_ON, 3 QZ_DMA_ALL_ON, 100 any
/// other line. Keywords are compared as they stand: callers pass capitals.
///
/// Width      13 characters tell; a shorter text counts as filled with blanks
/// Threads    no state: any number of threads at once
[[nodiscard]] CORVALE_API std::int32_t CorvaleCardType(std::string_view card) noexcept;

/// Copies the first `count` elements of `MoicArr` to `values`.
///
/// Shape      room for `count` values
/// Bad input  `count` < 1 or a null `values`: nothing is written; more than 128: the first 128 are
CORVALE_API void RetrieveMocData(double* values, std::int32_t count) noexcept;

}  // namespace corvale::CorvaleCardReading
