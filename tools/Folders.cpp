#include "Folders.hpp"

#include <fnmatch.h>
#include <algorithm>
#include <filesystem>
#include <system_error>

namespace corvale::tool {

namespace {

namespace fs = std::filesystem;

bool Matches(const std::string& name, const std::vector<std::string>& patterns) {
    return std::any_of(patterns.begin(), patterns.end(), [&](const std::string& pattern) {
        return fnmatch(pattern.c_str(), name.c_str(), 0) == 0;
    });
}

struct Contents {
    std::vector<std::string> files, folders;
};

Contents ContentsOf(const std::string& folder, const std::vector<std::string>& patterns,
                    std::error_code& error) {
    Contents contents;
    for (fs::directory_iterator at(folder, error); !error && at != fs::directory_iterator();
         at.increment(error)) {
        const std::string name = at->path().filename().string();
        std::error_code vanished;
        if (name.front() == '.') continue;
        if (at->is_directory(vanished)) {
            if (!at->is_symlink(vanished)) contents.folders.push_back(at->path().string());
        } else if (Matches(name, patterns)) {
            contents.files.push_back(at->path().string());
        }
    }
    std::sort(contents.files.begin(), contents.files.end());
    std::sort(contents.folders.begin(), contents.folders.end());
    return contents;
}

}  // namespace

bool IsFolder(const std::string& name) {
    std::error_code notThere;
    return fs::is_directory(name, notThere);
}

void WalkFolder(const std::string& folder, const std::vector<std::string>& patterns,
                const FolderWalk& walk) {
    std::error_code error;
    const Contents contents = ContentsOf(folder, patterns, error);
    if (error) walk.onFailure(folder, error.message());
    for (const std::string& file : contents.files) walk.onFile(file);
    for (const std::string& each : contents.folders) WalkFolder(each, patterns, walk);
}

}  // namespace corvale::tool
