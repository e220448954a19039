#include "tests/support/BusProgram.h"

#include "tests/support/Waiting.h"

#include <stdexcept>

namespace quorvel::testing {
namespace {

constexpr std::string_view firstLine = "ready\n";

Process runWith(const std::string& program, const std::filesystem::path& log) {
    Process::Options options;
    options.executable = program;
    options.arguments = {log.string()};
    return Process::run(options);
}

} // namespace

BusProgram::BusProgram(const std::string& program, std::filesystem::path log)
    : log_(std::move(log)),
      process_(runWith(program, log_)) {
    if (!waitUntil([&] { return read(log_).starts_with(firstLine); })) {
        process_.terminate();
        throw std::runtime_error(program + " does not come up");
    }
}

BusProgram::~BusProgram() {
    process_.terminate();
    process_.waitUntilExit();
}

std::string BusProgram::asked() const {
    return read(log_).substr(firstLine.size());
}

} // namespace quorvel::testing
