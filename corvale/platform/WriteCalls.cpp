// Writing of a line by system calls, any of which may be
//
// interrupted           and is made again
// carried out in part   (a file-size limit, a disk nearly full, a long line to a pipe): further
//                       calls write the rest, and until then the file ends inside a line
// refused               (a full pipe, a stopped terminal): where nothing is written yet the caller
//                       waits, who can let go of the unit meanwhile; where a part is, this waits
// failed                and the line, or its rest, is lost
//
// The descriptors of pipes and terminals do not block (Descriptors.cpp), so that a wait is ours to
// make: a blocking call would hold the unit.
#include <corvale/platform/Descriptors.hpp>

#include <corvale/platform/CancelHold.hpp>
#include <corvale/platform/SignalHold.hpp>

#include <poll.h>
#include <algorithm>
#include <cerrno>
#include <ctime>

namespace corvale::internal {

namespace {

constexpr int kRoomWaitMs = 1000;  // one wait; the caller then looks whether the unit is still open
constexpr int kMostRefusals = 100;  // of a line by what says that it has room
constexpr timespec kPause{0, 10'000'000};

// Drops the first `count` bytes of `parts` and every part that is empty.
std::span<iovec> Advance(std::span<iovec> parts, std::size_t count) noexcept {
    while (!parts.empty()) {
        iovec& part = parts.front();
        const std::size_t taken = std::min(count, part.iov_len);
        part.iov_base = static_cast<char*>(part.iov_base) + taken;
        part.iov_len -= taken;
        count -= taken;
        if (part.iov_len > 0) break;
        parts = parts.subspan(1);
    }
    return parts;
}

std::ptrdiff_t WriteParts(int descriptor, std::span<iovec> parts) noexcept {
    if (parts.size() == 1) return write(descriptor, parts[0].iov_base, parts[0].iov_len);
    return writev(descriptor, parts.data(), static_cast<int>(parts.size()));
}

// Writes without letting the system end the host by a signal.
std::ptrdiff_t WriteQuietly(const TextFile& file, std::span<iovec> parts) noexcept {
    if (!file.mayRaiseSignals) return WriteParts(file.descriptor, parts);
    const SignalHold hold;
    return WriteParts(file.descriptor, parts);
}

}  // namespace

Outcome FinishLine(TextFile& file, std::span<iovec> parts, std::ptrdiff_t written,
                   bool isBegun) noexcept {
    const CancelHold hold;
    for (int refusals = 0;; written = WriteQuietly(file, parts)) {
        if (written < 0 && errno == EINTR) continue;
        if (written < 0 && errno == EAGAIN) {
            if (!isBegun) return Outcome::Refused;
            WaitForRoom(file.descriptor, ++refusals);
            continue;
        }
        if (written <= 0) return Outcome::Lost;
        isBegun = true;
        refusals = 0;
        parts = Advance(parts, static_cast<std::size_t>(written));
        file.lacksLineEnd = !parts.empty();
        if (parts.empty()) return Outcome::Written;
        // A limit that was set after opening mostly shows as a short write first.
        file.mayRaiseSignals = true;
    }
}

Outcome WriteAll(TextFile& file, std::span<iovec> parts, bool isBegun) noexcept {
    const CancelHold hold;
    parts = Advance(parts, 0);
    return FinishLine(file, parts, WriteQuietly(file, parts), isBegun);
}

void WaitForRoom(int descriptor, int refusals) noexcept {
    const CancelHold hold;
    pollfd waiting = {descriptor, POLLOUT, 0};
    static_cast<void>(poll(&waiting, 1, kRoomWaitMs));
    // poll() reports the pipe writable, but writes are refused all the same, or poll() itself
    // fails.
    if (refusals > kMostRefusals) nanosleep(&kPause, nullptr);
}

}  // namespace corvale::internal
