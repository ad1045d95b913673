#include "Terminal.hpp"

#include "Escapes.hpp"

#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <utility>

namespace corvale::tool {

namespace {

using namespace std::chrono_literals;

constexpr auto kLong = 500ms;  // work shorter than this shows no bar
constexpr auto kRedraw = 100ms;
constexpr std::size_t kCells = 30;

bool hasColours = false;

std::string_view Variable(const char* name) {
    const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): nobody sets any
    return value == nullptr ? "" : value;
}

bool IsTerminal(int descriptor) {
    return isatty(descriptor) == 1 && Variable("TERM") != "dumb";
}

std::size_t TerminalWidth() {
    winsize size = {};
    constexpr std::size_t usual = 80;
    const bool isKnown = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? size.ws_col : usual;
}

// A signal that ends the program wipes the bar out first, or half of it would stay on the line.
constexpr std::string_view kWipe = "\r\033[K";
volatile std::sig_atomic_t barIsOnTerminal = 0;

void WipeAndEnd(int signal) {
    if (barIsOnTerminal != 0) static_cast<void>(!write(STDERR_FILENO, kWipe.data(), kWipe.size()));
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

void WipeAtSignals() {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        if (std::signal(signal, WipeAndEnd) == SIG_IGN) std::signal(signal, SIG_IGN);
}

// The descriptor through which this process reads the file `wanted`; -1 while there is none.
int FindDescriptor(const struct stat& wanted) {
    constexpr int most = 64;
    for (int descriptor = STDERR_FILENO + 1; descriptor < most; ++descriptor) {
        struct stat status = {};
        if (fstat(descriptor, &status) == 0 && status.st_dev == wanted.st_dev &&
            status.st_ino == wanted.st_ino && lseek(descriptor, 0, SEEK_CUR) >= 0)
            return descriptor;
    }
    return -1;
}

void Watch(const struct stat& file, ProgressBar& bar, const std::future<void>& isOver) {
    constexpr auto step = 20ms;
    while (isOver.wait_for(step) == std::future_status::timeout) {
        const int descriptor = FindDescriptor(file);
        const off_t position = descriptor < 0 ? -1 : lseek(descriptor, 0, SEEK_CUR);
        if (position >= 0) bar.Update(static_cast<std::uint64_t>(position));
    }
}

}  // namespace

void UseColours(std::string_view when) {
    const bool isWanted = IsTerminal(STDOUT_FILENO) && Variable("NO_COLOR").empty();
    hasColours = when == "always" || (when != "never" && isWanted);
}

std::string Coloured(Colour colour, std::string_view text) {
    constexpr std::array<std::string_view, 6> codes = {"",           "\033[1m",    "\033[1;35m",
                                                       "\033[1;32m", "\033[1;31m", "\033[1;36m"};
    const std::string_view code = codes[static_cast<std::size_t>(colour)];
    if (code.empty() || !hasColours) return std::string(text);
    return std::string(code).append(text).append("\033[0m");
}

ProgressBar::ProgressBar(std::string_view title, std::uint64_t size, Show show)
    : title_(Escaped(title)),
      size_(size),
      isWanted_(size > 0 && show != Show::Never && IsTerminal(STDERR_FILENO)),
      next_(begun_ + (show == Show::AtOnce ? 0ms : kLong)) {
    if (isWanted_) WipeAtSignals();
    if (show == Show::AtOnce) Update(0);
}

void ProgressBar::Update(std::uint64_t done) {
    if (!isWanted_) return;
    const Clock::time_point now = Clock::now();
    if (now < next_) return;
    next_ = now + kRedraw;
    Draw(std::min(done, size_));
}

void ProgressBar::Draw(std::uint64_t done) {
    const double share = static_cast<double>(done) / static_cast<double>(size_);
    const auto full = static_cast<std::size_t>(share * static_cast<double>(kCells));
    const std::chrono::duration<double> seconds = Clock::now() - begun_;
    const auto megabytes = static_cast<std::uint64_t>(static_cast<double>(done) / 1e6 /
                                                      std::max(seconds.count(), 0.001));
    const std::string percent = std::to_string(static_cast<int>(share * 100.0));
    std::string text = " [" + std::string(full, '#');
    text.append(kCells - full, '-').append("] ").append(3 - percent.size(), ' ').append(percent);
    text.append("%  ").append(std::to_string(megabytes)).append(" MB/s");

    const std::size_t width = TerminalWidth() - 1;
    if (text.size() > width) text.resize(width);
    const std::size_t left = width - text.size();
    const std::string title =
        title_.size() <= left ? title_ : title_.substr(title_.size() - left);  // its end tells more
    std::cout.flush();
    std::cerr << '\r' << title << text << "\033[K" << std::flush;
    isShown_ = true;
    barIsOnTerminal = 1;
}

void ProgressBar::Clear() {
    if (std::exchange(isShown_, false)) std::cerr << kWipe << std::flush;
    barIsOnTerminal = 0;
}

void ProgressBar::MakeWay() {
    static const bool sharesTerminal = isatty(STDOUT_FILENO) == 1;
    if (sharesTerminal) Clear();
}

ReadingWatch::ReadingWatch(const std::string& name, ProgressBar& bar) {
    struct stat file = {};
    if (!bar.IsWanted() || stat(name.c_str(), &file) != 0) return;
    thread_ =
        std::thread([file, &bar, isOver = isOver_.get_future()] { Watch(file, bar, isOver); });
}

ReadingWatch::~ReadingWatch() {
    isOver_.set_value();
    if (thread_.joinable()) thread_.join();
}

ProgressBar::Show ShowProgress(bool isQuiet, bool isForced) {
    if (isForced) return ProgressBar::Show::AtOnce;
    return isQuiet ? ProgressBar::Show::Never : ProgressBar::Show::WhenLong;
}

std::uint64_t RegularFileSize(const std::string& name) {
    struct stat file = {};
    if (stat(name.c_str(), &file) != 0 || !S_ISREG(file.st_mode)) return 0;
    return static_cast<std::uint64_t>(file.st_size);
}

}  // namespace corvale::tool
