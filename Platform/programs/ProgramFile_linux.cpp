#include "Platform/programs/ProgramFile_linux.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>
#include <elf.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel {
namespace {

struct Elf32 {
    using Header = Elf32_Ehdr;
    using Segment = Elf32_Phdr;
    using Dynamic = Elf32_Dyn;
};

struct Elf64 {
    using Header = Elf64_Ehdr;
    using Segment = Elf64_Phdr;
    using Dynamic = Elf64_Dyn;
};

// As many records as are there, up to `count`.
template<typename Record>
std::vector<Record> recordsAt(const ProgramFile& file, std::uint64_t offset, std::size_t count) {
    const std::string bytes = file.bytesAt(offset, count * sizeof(Record));
    std::vector<Record> records(bytes.size() / sizeof(Record));
    if (!records.empty()) { // else there is no memory to copy to
        std::memcpy(records.data(), bytes.data(), records.size() * sizeof(Record));
    }
    return records;
}

template<typename Segment>
std::optional<std::uint64_t> offsetOf(std::uint64_t address, const std::vector<Segment>& segments) {
    for (const Segment& segment : segments) {
        if (segment.p_type == PT_LOAD && segment.p_vaddr <= address &&
            address - segment.p_vaddr < segment.p_filesz) {
            return address - segment.p_vaddr + segment.p_offset;
        }
    }
    return std::nullopt;
}

template<typename Elf>
std::vector<typename Elf::Dynamic>
dynamicTable(const ProgramFile& file, const std::vector<typename Elf::Segment>& segments) {
    constexpr std::uint64_t maxEntries = 4096;
    using Dynamic = typename Elf::Dynamic;
    for (const auto& segment : segments) {
        if (segment.p_type == PT_DYNAMIC) {
            return recordsAt<Dynamic>(
                file, segment.p_offset,
                std::min<std::uint64_t>(segment.p_filesz / sizeof(Dynamic), maxEntries));
        }
    }
    return {};
}

template<typename Elf>
std::vector<std::string> librariesOf(const ProgramFile& file) {
    constexpr std::size_t maxSegments = 256;
    constexpr std::size_t maxName = 256;
    const auto headers = recordsAt<typename Elf::Header>(file, 0, 1);
    if (headers.empty() || headers[0].e_phentsize != sizeof(typename Elf::Segment)) {
        return {};
    }
    const auto segments = recordsAt<typename Elf::Segment>(
        file, headers[0].e_phoff, std::min<std::size_t>(headers[0].e_phnum, maxSegments));
    const auto table = dynamicTable<Elf>(file, segments);
    std::optional<std::uint64_t> names;
    for (const auto& record : table) {
        if (record.d_tag == DT_STRTAB) {
            names = offsetOf(record.d_un.d_ptr, segments);
        }
    }
    std::vector<std::string> libraries;
    for (const auto& record : table) {
        if (record.d_tag == DT_NULL || !names || libraries.size() == ProgramFile::maxLibraries) {
            break;
        }
        if (record.d_tag == DT_NEEDED) {
            const std::string bytes = file.bytesAt(*names + record.d_un.d_val, maxName);
            libraries.push_back(bytes.substr(0, bytes.find('\0')));
        }
    }
    return libraries;
}

} // namespace

std::optional<ProgramFile> ProgramFile::open(const std::filesystem::path& file) {
    // Without O_NONBLOCK, opening a FIFO would wait for its other end.
    FileHandle handle(::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    struct stat status {};
    if (handle.descriptor() < 0 || ::fstat(handle.descriptor(), &status) != 0 ||
        !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    return ProgramFile(std::move(handle));
}

std::string ProgramFile::bytesAt(std::uint64_t offset, std::size_t length) const {
    constexpr auto farthest = static_cast<std::uint64_t>(INT64_MAX);
    std::string bytes(offset > farthest - length ? 0 : length, '\0');
    std::size_t filled = 0;
    while (filled < bytes.size()) {
        const ssize_t count = ::pread(file_.descriptor(), bytes.data() + filled,
                                      bytes.size() - filled, static_cast<off_t>(offset + filled));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            break;
        }
        filled += static_cast<std::size_t>(count);
    }
    bytes.resize(filled);
    return bytes;
}

bool ProgramFile::isElf() const {
    return bytesAt(0, SELFMAG) == ELFMAG;
}

bool ProgramFile::isAppImage() const {
    constexpr std::uint64_t markOffset = 8;
    return isElf() && bytesAt(markOffset, 3) == "AI\x02";
}

std::vector<std::string> ProgramFile::neededLibraries() const {
    const std::string identity = bytesAt(0, EI_NIDENT);
    constexpr int own = std::endian::native == std::endian::little ? ELFDATA2LSB : ELFDATA2MSB;
    if (identity.size() != EI_NIDENT || !isElf() || identity[EI_DATA] != own) {
        return {};
    }
    return identity[EI_CLASS] == ELFCLASS32 ? librariesOf<Elf32>(*this) : librariesOf<Elf64>(*this);
}

} // namespace quorvel
