#include "Platform/files/DatabaseCount.h"

#include "Platform/copying/FileCopy.h"
#include "Platform/files/FileSystem.h"

#include <array>
#include <memory>
#include <sqlite3.h>
#include <unistd.h>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

constexpr std::array<const char*, 3> copiedParts{"", "-wal", "-journal"};
constexpr std::array<const char*, 4> allParts{"", "-wal", "-journal", "-shm"};

// A copy of a database, with its journals. All its files are removed with the object.
class DatabaseCopy {
public:
    explicit DatabaseCopy(const fs::path& scratch) : file_(scratch / "database") {}
    DatabaseCopy(const DatabaseCopy&) = delete;
    DatabaseCopy& operator=(const DatabaseCopy&) = delete;
    ~DatabaseCopy() {
        for (const char* end : allParts) {
            (void)::unlink((file_.native() + end).c_str());
        }
    }

    void fillFrom(const fs::path& database) const {
        for (const char* end : copiedParts) {
            const fs::path part = database.native() + end;
            if (*end == '\0' || itemExists(part)) {
                copyFile(part, file_.native() + end);
            }
        }
    }

    [[nodiscard]] const fs::path& file() const { return file_; }

private:
    fs::path file_;
};

// Returns 0 if there is no database.
std::uintmax_t bytesOf(const fs::path& database) {
    std::uintmax_t total = 0;
    for (const char* end : copiedParts) {
        std::error_code code;
        const std::uintmax_t size = fs::file_size(database.native() + end, code);
        if (*end == '\0' && code) {
            return 0;
        }
        total += code ? 0 : size;
    }
    return total;
}

std::optional<std::size_t> answer(sqlite3* database, const char* query) {
    sqlite3_stmt* prepared = nullptr;
    if (sqlite3_prepare_v2(database, query, -1, &prepared, nullptr) != SQLITE_OK) {
        return std::nullopt;
    }
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> statement(prepared,
                                                                          &sqlite3_finalize);
    return sqlite3_step(statement.get()) == SQLITE_ROW
               ? std::optional(static_cast<std::size_t>(sqlite3_column_int64(statement.get(), 0)))
               : std::nullopt;
}

} // namespace

std::optional<std::size_t> countInDatabase(const fs::path& database, const fs::path& scratch,
                                           const char* query) {
    constexpr std::uintmax_t largest = std::uintmax_t{256} << 20U;
    const std::uintmax_t size = bytesOf(database);
    if (size == 0 || size > largest) {
        return std::nullopt;
    }
    try {
        const DatabaseCopy copy(scratch);
        copy.fillFrom(database);
        sqlite3* opened = nullptr;
        const int status =
            sqlite3_open_v2(copy.file().c_str(), &opened, SQLITE_OPEN_READWRITE, nullptr);
        const std::unique_ptr<sqlite3, int (*)(sqlite3*)> connection(opened, &sqlite3_close);
        return status == SQLITE_OK ? answer(connection.get(), query) : std::nullopt;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

} // namespace quorvel
