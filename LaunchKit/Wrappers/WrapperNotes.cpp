#include "LaunchKit/Wrappers/WrapperNotes.h"

#include "Base/StableHash.h"
#include "LaunchKit/Records/RecordReader.h"
#include "LaunchKit/Records/RecordWriter.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/FileWriting.h"

#include <chrono>
#include <cstdint>
#include <filesystem>

namespace quorvel {

template<>
struct RecordTable<WrapperNotes> {
    static constexpr std::string_view name = "wrapper's notes";
    static constexpr auto fields = sortedByKey(std::array{
        Row<WrapperNotes>::required<&WrapperNotes::version>("version"),
        Row<WrapperNotes>::required<&WrapperNotes::arguments>("arguments"),
        Row<WrapperNotes>::of<&WrapperNotes::helpers>("helpers"),
        Row<WrapperNotes>::required<&WrapperNotes::hidesIcon>("hidesIcon"),
        Row<WrapperNotes>::required<&WrapperNotes::icon>("icon"),
        Row<WrapperNotes>::of<&WrapperNotes::targetIcon>("targetIcon"),
        Row<WrapperNotes>::of<&WrapperNotes::writtenArguments>("writtenArguments"),
        Row<WrapperNotes>::of<&WrapperNotes::writtenIcon>("writtenIcon"),
        Row<WrapperNotes>::of<&WrapperNotes::writtenList>("writtenList"),
    });
};

std::optional<WrapperNotes> WrapperNotes::read(const std::string& wrapper) {
    constexpr std::size_t limit = 65536;
    std::optional<std::string> bytes = readFile(notesOf(wrapper), limit);
    std::optional<WrapperNotes> notes;
    if (bytes && !readRecord(*bytes, notes.emplace()).empty()) {
        notes.reset();
    }
    return notes;
}

void WrapperNotes::write(const std::string& wrapper) const {
    // All of it is valid UTF-8, so it can always be written.
    writeFile(notesOf(wrapper), writeRecord(*this).value_or(""), Flush::later);
}

std::string fileState(const std::string& file) {
    std::error_code code;
    const std::uintmax_t size = std::filesystem::file_size(file, code);
    if (code) {
        return {};
    }
    const auto written = std::chrono::duration_cast<std::chrono::nanoseconds>(
        std::filesystem::last_write_time(file, code).time_since_epoch());
    std::string state = file + " " + std::to_string(size);
    return stableHash(state.append(" ").append(std::to_string(std::int64_t{written.count()})));
}

std::string argumentsHash(const std::vector<std::string>& arguments) {
    std::string all;
    for (const std::string& argument : arguments) {
        all.append(argument).push_back('\0');
    }
    return stableHash(all);
}

std::string fileHash(const std::string& file) {
    constexpr std::size_t limit = std::size_t{256} << 20U;
    const auto bytes = readFile(file, limit);
    return bytes ? stableHash(*bytes) : std::string();
}

} // namespace quorvel
