#include "benchmarks/Benchmarks.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

// core_benchmarks [NAME]...: runs all benchmarks, or the named ones.
int main(int count, char** arguments) {
    namespace fs = std::filesystem;
    using namespace quorvel::benchmarks;
    std::string folder = (fs::temp_directory_path() / "quorvel-bench-XXXXXX").string();
    if (::mkdtemp(folder.data()) == nullptr) {
        std::perror(folder.c_str());
        return 1;
    }
    ::setenv("CFFIXED_USER_HOME", (folder + "/home").c_str(), 1);
    std::vector<Row> rows;
    const std::vector<std::pair<std::string, Benchmark>> benchmarks{
        {"registry", registryRows}, {"generator", generatorRows},
        {"runner", runnerRows},     {"running", runningApplicationsRows},
        {"catalog", catalogRows},   {"recorder", recorderRows},
        {"icons", iconRows},        {"entries", entriesRows},
        {"menu", menuRows},         {"copy", copyRows},
        {"refresh", refreshRows},
    };
    const std::vector<std::string> wanted(arguments + 1, arguments + count);
    for (const auto& [name, benchmark] : benchmarks) {
        if (!wanted.empty() && std::find(wanted.begin(), wanted.end(), name) == wanted.end()) {
            continue;
        }
        const fs::path own = fs::path(folder) / std::to_string(rows.size());
        fs::create_directories(own);
        const std::vector<Row> more = benchmark(own);
        rows.insert(rows.end(), more.begin(), more.end());
    }
    fs::remove_all(folder);
    print(rows);
    return 0;
}
