#include "ProbeKit/Farewell.h"

#include <algorithm>
#include <csignal>
#include <system_error>
#include <thread>

namespace quorvel {

void waitForEnd(std::vector<Process> processes, std::chrono::milliseconds grace) {
    const auto end = std::chrono::steady_clock::now() + grace;
    const auto isRunning = [](Process& process) { return process.isRunning(); };
    while (std::any_of(processes.begin(), processes.end(), isRunning) &&
           std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    for (Process& process : processes) {
        process.sendSignal(SIGKILL);
        process.waitUntilExit();
    }
}

void endInBackground(Process process, std::chrono::milliseconds grace) {
    if (!process.isRunning()) {
        return;
    }
    try {
        std::thread([ending = std::move(process), grace]() mutable {
            std::vector<Process> processes;
            processes.push_back(std::move(ending));
            waitForEnd(std::move(processes), grace);
        }).detach();
    } catch (const std::system_error&) {
        // Without a thread it was still asked politely to end.
    }
}

} // namespace quorvel
