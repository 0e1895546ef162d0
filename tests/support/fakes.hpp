#pragma once

#include <vector>

#include "document/controls.hpp"
#include "document/date_stamp.hpp"

namespace lorekeep::testing {

// Records every message box instead of showing it.
class RecordingMessageBox final : public MessageBox {
  public:
    struct Shown {
        Text text;
        Text title;
        bool operator==(const Shown&) const = default;
    };

    void ShowMessage(TextView text, TextView title) override {
        shown.push_back({Text(text), Text(title)});
    }

    std::vector<Shown> shown;
};

// A clock that answers `first` and then one second later on every further
// reading, so a writer that reads it more than once is caught.
class SteppingClock final : public Clock {
  public:
    explicit SteppingClock(LocalDateTime first) : next_(first) {}

    LocalDateTime Now() const override {
        ++readings;
        LocalDateTime now = next_;
        next_.second = (next_.second + 1) % 60;
        return now;
    }

    mutable int readings = 0;

  private:
    mutable LocalDateTime next_;
};

}  // namespace lorekeep::testing
