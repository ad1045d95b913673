#include "FileFixer.hpp"

#include "Escapes.hpp"
#include "Joined.hpp"
#include "Spool.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <cerrno>
#include <deque>
#include <filesystem>
#include <iostream>
#include <utility>

namespace corvale::tool {

namespace {

constexpr std::size_t kContext = 3;  // lines around a change in a difference

// A part of a file, from its first byte to the one after its last.
struct Range {
    std::uint64_t begin = 0, end = 0;
};

// The library takes a backslash for a slash.
std::string PathOf(std::string name) {
    std::replace(name.begin(), name.end(), '\\', '/');
    return name;
}

// A file that is read twice: line by line, and byte for byte where lines are copied as they are.
class Source {
  public:
    explicit Source(const std::string& name)
        : path_(PathOf(name)), lines_(name), failure_(Open(name)) {}
    ~Source() {
        if (descriptor_ >= 0) close(descriptor_);
    }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    [[nodiscard]] const std::optional<std::string>& Failure() const {
        return failure_ ? failure_ : lines_.Failure();
    }
    [[nodiscard]] const std::string& Path() const { return path_; }
    [[nodiscard]] const struct stat& Status() const { return status_; }

    // Whether the name is still that of the same file, and nobody has written to it.
    [[nodiscard]] bool IsUnchanged() const {
        struct stat now = {};
        return lstat(path_.c_str(), &now) == 0 && now.st_dev == status_.st_dev &&
               now.st_ino == status_.st_ino && now.st_size == status_.st_size &&
               now.st_mtim.tv_sec == status_.st_mtim.tv_sec &&
               now.st_mtim.tv_nsec == status_.st_mtim.tv_nsec;
    }

    // The next line, and where it stands with its end.
    [[nodiscard]] bool Next(Line& line, Range& range) {
        range.begin = lines_.Position();
        const bool isThere = lines_.ReadLine(line, kLineKept);
        range.end = lines_.Position();
        return isThere;
    }

    // Hands out the bytes of a range in blocks. False where they cannot be read.
    template <class Take>
    [[nodiscard]] bool Copy(Range range, Take take) const {
        std::array<char, 0x10000> block;
        while (range.begin < range.end) {
            const auto size = static_cast<std::size_t>(
                std::min<std::uint64_t>(block.size(), range.end - range.begin));
            const ssize_t count =
                pread(descriptor_, block.data(), size, static_cast<off_t>(range.begin));
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) return false;
            if (!take(std::string_view(block.data(), static_cast<std::size_t>(count))))
                return false;
            range.begin += static_cast<std::uint64_t>(count);
        }
        return true;
    }

  private:
    std::optional<std::string> Open(const std::string& name) {
        if (name == "-") return "it is no file";
        if (lstat(path_.c_str(), &status_) != 0) return SystemReason(errno);
        if (S_ISLNK(status_.st_mode)) return "it is a symbolic link";
        if (!S_ISREG(status_.st_mode)) return "it is no regular file";
        descriptor_ = open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
        return descriptor_ < 0 ? std::optional(SystemReason(errno)) : std::nullopt;
    }

    std::string path_;
    InputFile lines_;
    struct stat status_ = {};
    int descriptor_ = -1;
    std::optional<std::string> failure_;
};

// The end of a line as it stands in the file: what is behind its text.
std::string_view EndOf(const Line& line, const Range& range) {
    const std::uint64_t size = range.end - range.begin - line.length;
    return size == 0 ? "" : (line.hasReturn ? "\r\n" : "\n");
}

// A new file beside the old one, which is gone again unless it takes its place.
class Replacement {
  public:
    explicit Replacement(const Source& source) : source_(source) {
        const std::filesystem::path path(source.Path());
        name_ = path.parent_path() / Joined(".", path.filename().string(), ".XXXXXX");
        descriptor_ = mkostemp(name_.data(), O_CLOEXEC);
        if (descriptor_ < 0 || !BecomesLike(source.Status())) Fail();
    }
    ~Replacement() {
        if (descriptor_ < 0) return;
        close(descriptor_);
        if (!isDone_) unlink(name_.c_str());
    }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    [[nodiscard]] const std::optional<std::string>& Failure() const { return failure_; }

    bool Write(std::string_view text) {
        waiting_.append(text);
        if (waiting_.size() >= kBlock) Flush();
        return !failure_;
    }

    // Takes the place of the old file.
    void Finish() {
        Flush();
        if (failure_) return;
        if (fsync(descriptor_) != 0) return Fail();
        if (!source_.IsUnchanged()) {
            failure_ = "it was changed in the meantime";
            return;
        }
        if (rename(name_.c_str(), source_.Path().c_str()) != 0) return Fail();
        isDone_ = true;
        const std::string folder = std::filesystem::path(name_).parent_path();
        const int parent = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_CLOEXEC);
        if (parent < 0) return;
        static_cast<void>(fsync(parent));  // where the file system cannot, the name waits
        close(parent);
    }

  private:
    void Fail() { failure_ = SystemReason(errno); }

    void Flush() {
        for (std::string_view text = waiting_; !text.empty() && !failure_;) {
            const ssize_t count = write(descriptor_, text.data(), text.size());
            if (count < 0 && errno == EINTR) continue;
            if (count < 0) Fail();
            text.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        }
        waiting_.clear();
    }

    [[nodiscard]] bool BecomesLike(const struct stat& old) const {
        struct stat own = {};
        if (fstat(descriptor_, &own) != 0) return false;
        const bool isOwn = own.st_uid == old.st_uid && own.st_gid == old.st_gid;
        return (isOwn || fchown(descriptor_, old.st_uid, old.st_gid) == 0) &&
               fchmod(descriptor_, old.st_mode & 07777U) == 0;
    }

    const Source& source_;
    static constexpr std::size_t kBlock = 0x10000;
    std::string name_, waiting_;
    int descriptor_ = -1;
    bool isDone_ = false;
    std::optional<std::string> failure_;
};

// The difference of a file, in hunks with some lines around each change.
class Difference {
  public:
    Difference(const Source& source, std::string shownName)
        : source_(source),
          shownName_(std::move(shownName)),
          isForPeople_(isatty(STDOUT_FILENO) == 1) {}

    void Same(const Range& line) {
        if (isOpen_ && trailing_.size() + 1 > 2 * kContext) Close();
        if (isOpen_) {
            trailing_.push_back(line);
        } else {
            leading_.push_back(line);
            if (leading_.size() > kContext) leading_.pop_front();
        }
        ++oldLine_;
        ++newLine_;
    }
    void Changed(const Line& line, const Range& range, const std::string& text) {
        if (!isOpen_) Open();
        for (const Range& each : std::exchange(trailing_, {})) AddOld(each);
        Add('-', line.text, EndOf(line, range));
        ++oldCount_;
        ++oldLine_;
        for (std::size_t begin = 0; begin <= text.size();) {
            const std::size_t end = text.find('\n', begin);
            const bool isLast = end == std::string::npos;
            Add('+', std::string_view(text).substr(begin, isLast ? end : end - begin),
                isLast ? EndOf(line, range) : "\n");
            ++newCount_;
            ++newLine_;
            begin = isLast ? text.size() + 1 : end + 1;
        }
    }
    [[nodiscard]] bool Finish() {
        if (isOpen_) Close();
        return isDifferent_;
    }

  private:
    void Open() {
        if (!isDifferent_) std::cout << "--- " << shownName_ << "\n+++ " << shownName_ << '\n';
        isDifferent_ = isOpen_ = true;
        oldStart_ = oldLine_ - leading_.size();
        newStart_ = newLine_ - leading_.size();
        oldCount_ = newCount_ = 0;
        for (const Range& each : std::exchange(leading_, {})) AddOld(each);
    }
    void Close() {
        const std::size_t kept = std::min(trailing_.size(), kContext);
        for (std::size_t i = 0; i < kept; ++i) AddOld(trailing_[i]);
        leading_.assign(trailing_.begin() + static_cast<std::ptrdiff_t>(kept), trailing_.end());
        while (leading_.size() > kContext) leading_.pop_front();
        trailing_.clear();
        std::cout << "@@ -" << oldStart_ << ',' << oldCount_ << " +" << newStart_ << ','
                  << newCount_ << " @@\n";
        body_.Print();
        isOpen_ = false;
    }
    void AddOld(const Range& range) {
        std::string text;
        static_cast<void>(source_.Copy(range, [&](std::string_view block) {
            text.append(block);
            return true;
        }));
        const bool hasEnd = text.ends_with('\n');
        if (hasEnd) text.pop_back();
        Add(' ', text, hasEnd ? "\n" : "");
        ++oldCount_;
        ++newCount_;
    }
    // On a terminal without the bytes that could steer it.
    void Add(char sign, std::string_view text, std::string_view end) {
        body_.Add(std::string_view(&sign, 1));
        body_.Add(isForPeople_ ? Escaped(text) : text);
        if (isForPeople_ && end == "\r\n") end = "\n";
        body_.Add(end.empty() ? "\n\\ No newline at end of file\n" : end);
    }

    const Source& source_;
    std::string shownName_;
    bool isForPeople_;
    bool isDifferent_ = false, isOpen_ = false;
    std::uint64_t oldLine_ = 1, newLine_ = 1;  // of the next line
    std::uint64_t oldStart_ = 0, newStart_ = 0, oldCount_ = 0, newCount_ = 0;
    std::deque<Range> leading_, trailing_;  // unchanged lines before and behind the hunk's last
    Spool body_;
};

}  // namespace

std::optional<std::string> FixFile(const std::string& name, const FileFix& fix) {
    Source source(name);
    LineFixer fixer(fix.unwanted, fix.withCommas);
    std::optional<Replacement> replacement;
    std::uint64_t copied = 0;  // how much of the old file is in the new one
    const auto copyTo = [&](std::uint64_t end) {
        const bool isCopied = source.Copy(
            {copied, end}, [&](std::string_view block) { return replacement->Write(block); });
        copied = end;
        return isCopied;
    };
    Line line;
    Range range;
    bool isWhole = true;
    while (isWhole && !source.Failure() && source.Next(line, range)) {
        const auto fixed = fixer.Fix(line);
        if (!fixed) continue;
        if (!replacement) replacement.emplace(source);
        isWhole = copyTo(range.begin) && replacement->Write(fixed->text) &&
                  replacement->Write(EndOf(line, range));
        copied = range.end;
        if (fix.onFix) fix.onFix(line, *fixed);
    }
    if (source.Failure() || !replacement) return source.Failure();
    isWhole = isWhole && copyTo(range.end);
    if (isWhole) replacement->Finish();
    if (replacement->Failure()) return replacement->Failure();
    return isWhole ? std::nullopt : std::optional<std::string>("it was changed in the meantime");
}

DiffOutcome PrintDiff(const std::string& name, const FileFix& fix) {
    Source source(name);
    LineFixer fixer(fix.unwanted, fix.withCommas);
    Difference difference(source, Escaped(name));
    Line line;
    Range range;
    while (std::cout && !source.Failure() && source.Next(line, range)) {
        if (const auto fixed = fixer.Fix(line))
            difference.Changed(line, range, fixed->text);
        else
            difference.Same(range);
    }
    const bool isDifferent = difference.Finish();
    return {source.Failure(), isDifferent};
}

}  // namespace corvale::tool
