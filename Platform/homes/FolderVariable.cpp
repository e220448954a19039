#include "Platform/homes/FolderVariable.h"

#include "Base/PathText.h"

namespace quorvel {

std::string folderVariable(const Environment& session, const char* name,
                           const std::string& otherwise) {
    const std::string value = valueOf(session, name);
    return value.starts_with('/') ? withoutTrailingSlashes(value) : otherwise;
}

} // namespace quorvel
