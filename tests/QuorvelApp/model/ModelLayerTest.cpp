#include <QString>
#include <QStringList>

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

// CMake refuses to build the window's model on more of Qt than its core. What that can't see is in
// the sources.
namespace quorvel {
namespace {

namespace fs = std::filesystem;

std::vector<fs::path> modelFiles() {
    std::vector<fs::path> files;
    for (const QString& name : QStringLiteral(QUORVEL_MODEL_SOURCES).split(u'|')) {
        const fs::path source = fs::path(QUORVEL_SOURCE_DIR) / "QuorvelApp" / name.toStdString();
        if (source.extension() == ".cpp" && !name.startsWith(u'/')) { // not what is generated
            files.push_back(source);
            files.push_back(fs::path(source).replace_extension(".h"));
        }
    }
    for (const auto& entry : fs::directory_iterator(QUORVEL_SOURCE_DIR "/QuorvelApp/model")) {
        files.push_back(entry.path());
    }
    return files;
}

TEST(ModelLayerTest, TheModelIncludesNothingOfWidgetsOrOfAnotherModuleOfQt) {
    const std::regex above(
        R"(#include (<Qt(?!Core/)\w+/|"QuorvelApp/(?!model/|AppModel\.h|Updater\.h)).*)");
    const std::vector<fs::path> files = modelFiles();
    EXPECT_GT(files.size(), 20U);
    for (const fs::path& file : files) {
        std::ifstream stream(file);
        EXPECT_TRUE(stream.good()) << file;
        for (std::string line; std::getline(stream, line);) {
            EXPECT_FALSE(std::regex_search(line, above)) << file << ": " << line;
        }
    }
}

} // namespace
} // namespace quorvel
