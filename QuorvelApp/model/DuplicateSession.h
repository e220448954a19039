#pragma once

#include "LaunchKit/CloneDuplication.h"
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

/// The state of one duplicate panel: what to make of a clone, how far that is, and what came of it.
class DuplicateSession : public QObject {
    Q_OBJECT

public:
    enum class Phase { asking, working, done };

    /// `model` must outlive the session.
    DuplicateSession(AppModel& model, InstanceRecord original, QObject* parent = nullptr);
    /// Cancels a copy under way, which leaves nothing behind.
    ~DuplicateSession() override;

    [[nodiscard]] const InstanceRecord& original() const { return original_; }
    [[nodiscard]] Phase phase() const { return phase_; }
    /// The new clone's name; at first the next one that is free.
    [[nodiscard]] const std::string& name() const { return name_; }
    [[nodiscard]] bool withData() const { return withData_; }
    /// Returns the size of the data in bytes; std::nullopt if it is not known, or not yet.
    [[nodiscard]] const std::optional<std::uintmax_t>& dataSize() const { return dataSize_; }
    /// Returns whether there is a name, and nothing is under way.
    [[nodiscard]] bool canDuplicate() const;
    /// Returns the copy under way; null if there is none.
    [[nodiscard]] const BackgroundCopy* copy() const { return copy_.get(); }
    /// Returns what came of the copy, in sentences on lines of their own.
    [[nodiscard]] const std::string& result() const { return result_; }

    void setName(const std::string& name);
    void setWithData(bool withData);

    /// Makes the duplicate. Ends with `duplicated`, or with the model's `lastError` and another
    /// `asking`.
    void duplicate();
    /// Cancels the copy under way, which goes back to `asking` as soon as all of it is removed.
    void cancel();

Q_SIGNALS:
    void changed();
    /// The clone at `wrapper` was made. There is a `result` if data was copied.
    void duplicated(const std::string& wrapper);

private:
    struct Made {
        DuplicatedClone clone{};
        std::vector<std::string> warnings{};
    };

    void findSize();
    void ended(const Outcome<Made>& outcome);

    AppModel& model_;
    InstanceRecord original_;
    Phase phase_ = Phase::asking;
    std::string name_;
    bool withData_ = false;
    std::optional<std::uintmax_t> dataSize_{};
    std::shared_ptr<std::atomic<bool>> gone_ = std::make_shared<std::atomic<bool>>(false);
    std::unique_ptr<BackgroundCopy> copy_{};
    std::string result_{};
};

} // namespace quorvel
