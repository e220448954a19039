#include "benchmarks/Benchmarks.h"

#include <cstdio>
#include <cstdlib>
#include <string>

int main() {
    namespace fs = std::filesystem;
    using namespace quorvel::benchmarks;
    std::string folder = (fs::temp_directory_path() / "quorvel-bench-XXXXXX").string();
    if (::mkdtemp(folder.data()) == nullptr) {
        std::perror(folder.c_str());
        return 1;
    }
    ::setenv("CFFIXED_USER_HOME", (folder + "/home").c_str(), 1);
    std::vector<Row> rows;
    for (const auto& benchmark :
         {registryRows, generatorRows, runnerRows, runningApplicationsRows}) {
        const fs::path own = fs::path(folder) / std::to_string(rows.size());
        fs::create_directories(own);
        const std::vector<Row> more = benchmark(own);
        rows.insert(rows.end(), more.begin(), more.end());
    }
    fs::remove_all(folder);
    print(rows);
    return 0;
}
