#include "Base/PathText.h"
#include "Base/SplitText.h"
#include "Platform/files/FileSystem.h"
#include "Platform/programs/EngineMarks_linux.h"
#include "Platform/programs/LauncherScript.h"
#include "Platform/programs/ProgramFile_linux.h"
#include "Platform/programs/ProgramResolution.h"

#include <algorithm>
#include <cstdlib>

namespace quorvel {
namespace fs = std::filesystem;
using Engine = ResolvedProgram::Engine;
using Packaging = ResolvedProgram::Packaging;
namespace {

bool liesInBinFolder(const fs::path& file) {
    const fs::path folder = file.parent_path().filename();
    return folder == "bin" || folder == "sbin" || folder == "games";
}

// A wrapper's first 64 KiB say what it starts; what follows may be an archive.
constexpr std::size_t maxScript = std::size_t{64} << 10U;

// The programs in machine code that a script names, in its order.
std::vector<fs::path> programsIn(const LauncherScript& script) {
    constexpr int maxTried = 100;
    int tried = 0;
    std::vector<fs::path> programs;
    for (const std::string& word : script.words) {
        if (!word.starts_with('/') || liesInBinFolder(word)) {
            continue;
        }
        if (++tried > maxTried) {
            break;
        }
        const auto file = ProgramFile::open(word);
        if (file && file->isElf()) {
            programs.emplace_back(word);
        }
    }
    return programs;
}

// Folders that are named after the launcher, each with the program that may be in it.
std::vector<fs::path> namesakes(const std::string& name, const std::vector<fs::path>& roots) {
    std::vector<fs::path> programs;
    programs.reserve(roots.size());
    for (const fs::path& root : roots) {
        programs.push_back(root / name / name);
    }
    return programs;
}

Engine engineBeside(const fs::path& program) {
    return engineIn(program.parent_path(), program.filename().native());
}

// The first that has an engine's marks beside it.
bool takeFirstWithMarks(const std::vector<fs::path>& programs, ResolvedProgram& result) {
    for (const fs::path& program : programs) {
        const Engine engine = engineBeside(program);
        if (engine != Engine::other) {
            result.engine = engine;
            result.executable = program;
            return true;
        }
    }
    return false;
}

constexpr const char* snapFolders[] = {"/snap/bin/", "/var/lib/snapd/snap/bin/"};

// Whether the word is the path of a Snap of that name, which may be longer than the Snap's:
// "chromium-browser".
bool namesSnapOf(const std::string& word, const std::string& name) {
    return std::any_of(std::begin(snapFolders), std::end(snapFolders), [&](const auto& folder) {
        const std::string snap =
            word.starts_with(folder) ? word.substr(std::string_view(folder).size()) : "";
        return !snap.empty() && (name == snap || name.starts_with(snap + "-"));
    });
}

// Some packages install a script that starts the Snap of their name. Others only look whether there
// is one.
bool startsSnapOfItsName(const LauncherScript& script, const std::string& name,
                         const fs::path& root) {
    return std::any_of(script.words.begin(), script.words.end(), [&](const std::string& word) {
        return namesSnapOf(word, name) && itemOrLinkExists(root / word.substr(1));
    });
}

bool startsJava(const LauncherScript& script, const fs::path& folder) {
    return script.mentionsJava() && (script.namesJar() || hasJar(folder));
}

void lookThroughScript(const ProgramFile& file, const std::vector<fs::path>& roots,
                       const fs::path& snapRoot, ResolvedProgram& result) {
    const LauncherScript script = LauncherScript::parse(file.bytesAt(0, maxScript));
    result.interpreter = script.interpreter;
    if (script.interpreter.empty() || takeFirstWithMarks({result.executable}, result)) {
        return;
    }
    if (startsSnapOfItsName(script, result.launcher.filename().native(), snapRoot)) {
        result.packaging = Packaging::snap;
        return;
    }
    if (script.startsElectron()) {
        result.engine = Engine::electron;
        return;
    }
    const std::vector<fs::path> named = programsIn(script);
    if (takeFirstWithMarks(named, result)) {
        return;
    }
    if (startsJava(script, result.executable.parent_path())) {
        result.engine = Engine::java;
        return;
    }
    if (!named.empty()) {
        result.executable = named.front();
        return;
    }
    const std::vector<fs::path> others = namesakes(result.launcher.filename().native(), roots);
    if (takeFirstWithMarks(others, result)) {
        return;
    }
    const auto program = std::find_if(others.begin(), others.end(), isExecutableFile);
    if (program != others.end()) {
        result.executable = *program;
    }
}

// Its runtime puts these in the place of the home that it is given.
std::vector<fs::path> portableFoldersBeside(const ResolvedProgram& program) {
    std::vector<fs::path> folders;
    for (const fs::path& file : {program.launcher, program.executable}) {
        for (const char* ending : {".home", ".config", ".share", ".cache"}) {
            const fs::path folder = file.native() + ending;
            if (itemExists(folder) &&
                std::find(folders.begin(), folders.end(), folder) == folders.end()) {
                folders.push_back(folder);
            }
        }
    }
    return folders;
}

bool isSnap(const ResolvedProgram& program) {
    const std::string folder = program.launcher.parent_path().native() + "/";
    return std::find(std::begin(snapFolders), std::end(snapFolders), folder) !=
               std::end(snapFolders) ||
           (program.executable.filename() == "snap" && program.launcher.filename() != "snap");
}

bool runs(const ExecLine& line, const char* tool) {
    return fs::path(line.program).filename() == tool && !line.words.empty() &&
           line.words.front().text == "run";
}

} // namespace

const std::vector<fs::path>& applicationRoots() {
    static const std::vector<fs::path> roots{"/usr/lib", "/usr/share", "/opt"};
    return roots;
}

std::optional<fs::path> findProgram(std::string_view program,
                                    const std::optional<fs::path>& except) {
    if (program.find('/') != std::string_view::npos) {
        const fs::path file(program);
        return file.is_absolute() && isExecutableFile(file) ? std::optional(file) : std::nullopt;
    }
    const char* variable = std::getenv("PATH");
    std::string_view folders = variable == nullptr ? "/usr/local/bin:/usr/bin:/bin" : variable;
    while (!program.empty() && !folders.empty()) {
        const std::string_view folder = takePart(folders, ':');
        const fs::path file = joinAsText(std::string(folder), program);
        if (folder.starts_with('/') && isExecutableFile(file) &&
            !(except && isSameItem(file, *except))) {
            return file;
        }
    }
    return std::nullopt;
}

bool isAppImage(const fs::path& file) {
    const auto opened = ProgramFile::open(file);
    return opened && opened->isAppImage();
}

std::optional<ResolvedProgram> resolveProgram(std::string_view program,
                                              const std::vector<fs::path>& roots,
                                              const fs::path& snapRoot) {
    ResolvedProgram result;
    const auto launcher = findProgram(program);
    if (!launcher) {
        return std::nullopt;
    }
    std::error_code error;
    result.launcher = *launcher;
    result.executable = fs::canonical(*launcher, error);
    if (error) {
        return std::nullopt;
    }
    if (isSnap(result)) {
        result.packaging = Packaging::snap;
        return result;
    }
    const auto file = ProgramFile::open(result.executable);
    if (!file) {
        return result; // one may be allowed to run what one may not read
    }
    if (file->isAppImage()) {
        result.packaging = Packaging::appImage;
        result.portableFolders = portableFoldersBeside(result);
        return result;
    }
    if (file->isElf()) {
        result.engine =
            result.executable.filename() == "java" ? Engine::java : engineBeside(result.executable);
    } else {
        const fs::path script = result.executable;
        lookThroughScript(*file, roots, snapRoot, result);
        result.interpreter = result.executable == script ? result.interpreter : std::string();
    }
    if (result.engine == Engine::firefox) {
        result.remotingName = remotingNameIn(result.executable.parent_path());
    }
    if (const auto real = ProgramFile::open(result.executable)) {
        result.toolkit = toolkitOf(real->neededLibraries());
    }
    return result;
}

std::optional<ResolvedProgram> resolveProgram(const DesktopEntry& entry, const ExecLine& line,
                                              const std::vector<fs::path>& roots) {
    auto result = resolveProgram(line.program, roots);
    if (result && (!entry.snapInstance.empty() || runs(line, "snap"))) {
        result->packaging = Packaging::snap;
    } else if (result && (!entry.flatpakId.empty() || runs(line, "flatpak"))) {
        result->packaging = Packaging::flatpak;
    }
    return result;
}

} // namespace quorvel
