#pragma once

#include "platform/Platform.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace harbrook::contract {

/// A program that a test has the platform run.
struct Program {
    std::string output = {};
    std::string errorOutput = {};
    /// Otherwise it ends once it has printed.
    bool runsUntilTerminated = false;
};

/// What becomes of an answer whose head and body have been sent: it is at its end, or there should be more.
enum class Ending { whole, cutOff, stalled };

/// What a web server says to a request for one address.
struct Answer {
    int status = 200;
    std::string body = {};
    /// Seconds from the request to the answer.
    double delay = 0;
    Ending ending = Ending::whole;
};

/// One implementation of the seam, and what the suite needs to drive it. Main thread.
class Desktop {
public:
    virtual ~Desktop() = default;

    [[nodiscard]] virtual Platform& platform() = 0;
    /// Runs what the main thread has to do, and lets time pass, until `condition` holds. Whether it came to
    /// hold within half a minute.
    [[nodiscard]] virtual bool runUntil(const std::function<bool()>& condition) = 0;
    /// Lets `seconds` pass, running what falls due.
    virtual void pass(double seconds) = 0;
    /// Seconds on the clock that the platform's delays are measured on.
    [[nodiscard]] virtual double now() = 0;

    /// Makes windows and views possible. Why they are not, or none.
    [[nodiscard]] virtual std::optional<std::string> provideDisplay() = 0;
    /// An empty directory that can be written to, with nothing else in it.
    [[nodiscard]] virtual std::filesystem::path directory() = 0;
    /// What the file at `path` holds, or none.
    [[nodiscard]] virtual std::optional<std::string> contents(const std::filesystem::path& path) = 0;
    [[nodiscard]] virtual std::filesystem::path makeProgram(const Program& program) = 0;
    /// An address that answers like this, on this machine.
    [[nodiscard]] virtual URL serve(const Answer& answer) = 0;
};

/// Makes one desktop for one test.
struct Factory {
    std::string name;
    std::function<std::unique_ptr<Desktop>()> make;
};

/// How failures name the implementation.
inline void PrintTo(const Factory& factory, std::ostream* stream) {
    *stream << factory.name;
}

/// A test that every implementation has to pass.
class Contract : public testing::TestWithParam<Factory> {
protected:
    void SetUp() override { desktop_ = GetParam().make(); }

    [[nodiscard]] Desktop& desktop() { return *desktop_; }
    [[nodiscard]] Platform& platform() { return desktop_->platform(); }
    [[nodiscard]] bool runUntil(const std::function<bool()>& condition) {
        return desktop_->runUntil(condition);
    }

private:
    std::unique_ptr<Desktop> desktop_;
};

/// The implementation that this program tries: each has a folder, which defines it, and a program of its own.
[[nodiscard]] Factory implementation();

inline std::string nameOf(const testing::TestParamInfo<Factory>& info) {
    return info.param.name;
}

} // namespace harbrook::contract
