#include "Platform/files/DatabaseCount.h"

#include "Base/PathText.h"
#include "Base/RandomUuid.h"
#include "Platform/files/FileCopy.h"
#include "Platform/files/FileRemoval.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"

#include <memory>
#include <sqlite3.h>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// A private folder with a copy of the database.
class DatabaseCopy {
public:
    explicit DatabaseCopy(const fs::path& database)
        : folder_(fs::temp_directory_path() / ("quorvel-count-" + randomUuid())) {
        createPrivateFolder(folder_);
        try {
            for (const char* end : {"", "-wal", "-journal"}) {
                const fs::path part = database.native() + end;
                if (*end == '\0' || itemExists(part)) {
                    copyFile(part, file().native() + end);
                }
            }
        } catch (...) {
            remove();
            throw;
        }
    }
    DatabaseCopy(const DatabaseCopy&) = delete;
    DatabaseCopy& operator=(const DatabaseCopy&) = delete;
    ~DatabaseCopy() { remove(); }

    [[nodiscard]] fs::path file() const { return folder_ / "database"; }

private:
    void remove() noexcept {
        try {
            removeItem(folder_);
        } catch (const std::exception&) {
            return; // the system empties the temporary folder
        }
    }

    fs::path folder_;
};

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

std::optional<std::size_t> countInDatabase(const fs::path& database, const char* query) {
    constexpr std::uintmax_t largest = std::uintmax_t{256} << 20U;
    std::error_code code;
    const std::uintmax_t size = fs::file_size(database, code);
    if (code || size == 0 || size > largest) {
        return std::nullopt;
    }
    try {
        const DatabaseCopy copy(database);
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
