// A module in the web host's place: shows nothing, and does what STUB says.
#include "WebHost/WebHostModule.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

extern "C" __attribute__((visibility("default"))) int
quorvel_web_host_run(const QuorvelWebHostRequest* request) {
    const char* const stub = std::getenv("STUB");
    const std::string folder = stub == nullptr ? "" : stub;
    if (folder.empty()) {
        return 69; // as for a request of another version
    }
    // Runs until there is a file "end", without ever answering on its socket.
    request->started(request->context);
    std::ofstream(folder + "/shown", std::ios::app) << "shown\n";
    while (!std::filesystem::exists(folder + "/end")) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return 0;
}
