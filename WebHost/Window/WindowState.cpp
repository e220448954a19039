#include "WebHost/Window/WindowState.h"

#include "WebHost/Links/WebAddress.h"
#include "WebHost/Storage/WebRecords.h"

#include <charconv>

namespace quorvel {
namespace {

// Records have no numbers.
struct Saved {
    std::map<std::string, std::string> numbers{};
    std::string page{};
    bool isMaximized = false;
    bool isMuted = false;
    bool hidesHeader = false;
};

constexpr int smallestSide = 200;
constexpr int largestSide = 16'384;

int numberIn(const Saved& saved, const std::string& key, int least, int most, int otherwise) {
    const auto found = saved.numbers.find(key);
    if (found == saved.numbers.end()) {
        return otherwise;
    }
    const std::string& text = found->second;
    int number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isOne = result.ec == std::errc{} && result.ptr == text.data() + text.size();
    return isOne && number >= least && number <= most ? number : otherwise;
}

} // namespace

template<>
struct RecordTable<Saved> {
    static constexpr std::string_view name = "state of the window";
    static constexpr auto fields = sortedByKey(std::array{
        Row<Saved>::of<&Saved::numbers>("numbers"),
        Row<Saved>::of<&Saved::page>("page"),
        Row<Saved>::of<&Saved::isMaximized>("isMaximized"),
        Row<Saved>::of<&Saved::isMuted>("isMuted"),
        Row<Saved>::of<&Saved::hidesHeader>("hidesHeader"),
    });
};

WindowState readWindowState(const std::string& file) {
    Saved saved;
    const WindowState usual;
    if (!readWebRecord(file, saved).empty()) {
        return usual;
    }
    WindowState state;
    state.width = numberIn(saved, "width", smallestSide, largestSide, usual.width);
    state.height = numberIn(saved, "height", smallestSide, largestSide, usual.height);
    state.zoom = numberIn(saved, "zoom", smallestZoom, largestZoom, usual.zoom);
    state.isMaximized = saved.isMaximized;
    state.isMuted = saved.isMuted;
    state.hidesHeader = saved.hidesHeader;
    if (startAddress(saved.page) == StartAddress{StartAddress::Case::page, saved.page}) {
        state.page = saved.page;
    }
    return state;
}

bool writeWindowState(const std::filesystem::path& home, const std::string& file,
                      const WindowState& state) {
    const Saved saved{{{"width", std::to_string(state.width)},
                       {"height", std::to_string(state.height)},
                       {"zoom", std::to_string(state.zoom)}},
                      state.page,
                      state.isMaximized,
                      state.isMuted,
                      state.hidesHeader};
    return writeWebRecord(home, file, saved);
}

} // namespace quorvel
