// A module in the web host's place, of the version STUB_ABI: shows nothing, and does what STUB
// says.
#include "WebHost/WebHostModule.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

extern "C" __attribute__((visibility("default"))) int
quorvel_web_host_run(const QuorvelWebHostRequest* request) {
    const auto variable = [](const char* name) {
        const char* const value = std::getenv(name);
        return std::string(value == nullptr ? "" : value);
    };
    // As the real one does with a request of another version.
    if (std::to_string(request->abi) != variable("STUB_ABI")) {
        return 69;
    }
    const std::string folder = variable("STUB");
    // Runs until there is a file "end", without ever answering on its socket.
    request->started(request->context);
    std::ofstream(folder + "/shown", std::ios::app) << "shown\n";
    while (!std::filesystem::exists(folder + "/end")) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return 0;
}
