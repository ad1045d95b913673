// Texts of unknown origin, made safe to print anywhere. Bytes outside printable ASCII could steer a
// terminal, hide what follows or forge a line of output; they are written as \xNN and a backslash as
// two, so that the printed text means one sequence of bytes and no other. Names of files and content
// of files go through here wherever people read them, on terminals and in pipes alike.
#pragma once

#include <string>
#include <string_view>

namespace corvale::tool {

/// All of `text`. A shell reads it back between $' and '.
[[nodiscard]] std::string Escaped(std::string_view text);

/// `Escaped` for each line of a text that ends its lines with LF.
[[nodiscard]] std::string EscapedLines(std::string_view text);

/// The first 40 bytes of `text` between quotation marks; "..." stands for more.
[[nodiscard]] std::string Quoted(std::string_view text);

/// All of a file's name between quotation marks.
[[nodiscard]] std::string QuotedName(std::string_view name);

/// %XX, as addresses on the web and some commands write a character.
[[nodiscard]] std::string PercentOf(char c);

/// "a tab", "a NUL", "the byte 0xA0", or the character between apostrophes.
[[nodiscard]] std::string ByteName(char c);

}  // namespace corvale::tool
