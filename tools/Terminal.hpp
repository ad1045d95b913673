// What the program does on a terminal only: colours, and a bar that shows how far a long file is.
#pragma once

#include <chrono>
#include <cstdint>
#include <future>
#include <string>
#include <string_view>
#include <thread>

namespace corvale::tool {

enum class Colour : std::uint8_t { Plain, Place, Warning, Mark, Error, Note };

/// Whether standard output shows colours. "auto", as at first: on a terminal that is not dumb, and
/// without NO_COLOR; "always" and "never" whatever it is.
void UseColours(std::string_view when);

/// `text` in a colour where standard output shows colours, else as it is.
[[nodiscard]] std::string Coloured(Colour colour, std::string_view text);

/// A bar on standard error. It comes up once work has lasted half a second, so that short files show
/// none, and is wiped out before anything else is printed. Where standard error is no terminal
/// nothing is shown.
class ProgressBar {
  public:
    enum class Show : std::uint8_t { Never, WhenLong, AtOnce };

    /// `size` of 0: not known, nothing is shown.
    ProgressBar(std::string_view title, std::uint64_t size, Show show);
    ~ProgressBar() { Clear(); }
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// Whether it could ever come up.
    [[nodiscard]] bool IsWanted() const { return isWanted_; }
    /// Draws the bar if it is time to.
    void Update(std::uint64_t done);
    void Clear();
    /// Before output: wipes the bar out if standard output goes to a terminal, too.
    void MakeWay();

  private:
    using Clock = std::chrono::steady_clock;

    void Draw(std::uint64_t done);

    std::string title_;
    std::uint64_t size_;
    bool isWanted_;
    bool isShown_ = false;
    Clock::time_point begun_ = Clock::now();
    Clock::time_point next_;
};

/// Follows a file that the library reads in this process, by the position of its descriptor, and
/// draws `bar` from a thread of its own as long as it lives.
class ReadingWatch {
  public:
    ReadingWatch(const std::string& name, ProgressBar& bar);
    ~ReadingWatch();
    ReadingWatch(const ReadingWatch&) = delete;
    ReadingWatch& operator=(const ReadingWatch&) = delete;

  private:
    std::promise<void> isOver_;
    std::thread thread_;
};

/// How a bar is to be shown: at once where `isForced`, never where `isQuiet` alone.
[[nodiscard]] ProgressBar::Show ShowProgress(bool isQuiet, bool isForced);

/// The size of a regular file, else 0.
[[nodiscard]] std::uint64_t RegularFileSize(const std::string& name);

}  // namespace corvale::tool
