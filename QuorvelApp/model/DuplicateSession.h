#pragma once

#include "LaunchKit/Copying/CloneDuplication.h"
#include "QuorvelApp/AppModel.h"
#include "QuorvelApp/model/BackgroundCopy.h"
#include "QuorvelApp/model/Outcome.h"

#include <QObject>

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace quorvel {

/// The state of one duplicate panel: what to make of a clone, its progress and its outcome.
class DuplicateSession : public QObject {
    Q_OBJECT

public:
    /// `model` must outlive the session.
    DuplicateSession(AppModel& model, InstanceRecord original, QObject* parent = nullptr);
    /// Cancels a copy under way, which leaves nothing behind.
    ~DuplicateSession() override;

    [[nodiscard]] const InstanceRecord& original() const { return original_; }
    /// Returns whether the duplicate is being made.
    [[nodiscard]] bool isWorking() const { return isWorking_; }
    /// The new clone's name; at first the next one that is free.
    [[nodiscard]] const std::string& name() const { return name_; }
    [[nodiscard]] bool withData() const { return withData_; }
    /// Returns the size of the data in bytes; `std::nullopt` if it is not known, or not yet.
    [[nodiscard]] const std::optional<std::uintmax_t>& dataSize() const { return dataSize_; }
    /// Returns whether there is a name, and nothing is under way.
    [[nodiscard]] bool canDuplicate() const;

    /// Sets the new clone's name, which may be one that can't be used yet.
    void setName(const std::string& name);
    /// Sets whether the duplicate gets a copy of the data.
    void setWithData(bool withData);

    /// Makes the duplicate. Ends with `duplicated`, or with the model's `lastError`; or with
    /// neither if the copy of the data is cancelled. The outcome of the copy becomes the model's
    /// `statusMessage`.
    void duplicate();

Q_SIGNALS:
    void changed();
    /// Data is being copied, until `copy` is destroyed.
    void copyBegan(quorvel::BackgroundCopy* copy);
    /// The clone with this identity was made.
    void duplicated(const std::string& id);

private:
    struct Made {
        DuplicatedClone clone{};
        std::vector<std::string> warnings{};
        bool isCancelled = false; ///< nothing was made
    };

    /// Makes the duplicate of the clone in `wrapper`, as it is now. Any thread.
    static Made make(const InstanceRegistry& registry, const std::filesystem::path& wrapper,
                     DuplicationOptions options);
    static void report(AppModel& model, const Outcome<Made>& outcome);
    void findSize();
    void ended(const Outcome<Made>& outcome);

    AppModel& model_;
    InstanceRecord original_;
    bool isWorking_ = false;
    std::string name_;
    bool withData_ = false;
    std::optional<std::uintmax_t> dataSize_{};
    std::shared_ptr<std::atomic<bool>> gone_ = std::make_shared<std::atomic<bool>>(false);
    std::unique_ptr<BackgroundCopy> copy_{};
};

} // namespace quorvel
