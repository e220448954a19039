#include "Platform/homes/FolderVariable.h"

#include "Base/PathText.h"

namespace quorvel {

std::string valueOf(const Environment& environment, const std::string& name) {
    const auto found = environment.find(name);
    return found == environment.end() ? std::string() : found->second;
}

std::string folderVariable(const Environment& session, const char* name,
                           const std::string& otherwise) {
    const std::string value = valueOf(session, name);
    return value.starts_with('/') ? withoutTrailingSlashes(value) : otherwise;
}

} // namespace quorvel
