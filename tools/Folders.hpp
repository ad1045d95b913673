// The files in a folder and in the folders in it.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace corvale::tool {

[[nodiscard]] bool IsFolder(const std::string& name);

/// What a walk tells of: a file whose name matches, or a folder that cannot be read, and why.
struct FolderWalk {
    std::function<void(const std::string& file)> onFile;
    std::function<void(const std::string& folder, const std::string& why)> onFailure;
};

/// Walks through the files of `folder` whose own names match one of the shell patterns, by name,
/// and then through its folders. Names that begin with a point are passed over, and so are symbolic
/// links to folders. Memory holds the names of one folder and of those around it.
void WalkFolder(const std::string& folder, const std::vector<std::string>& patterns,
                const FolderWalk& walk);

}  // namespace corvale::tool
