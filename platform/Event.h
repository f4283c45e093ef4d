#pragma once

namespace harbrook {

/// Kinds of event that the shell tells apart, with the platform's values.
enum class EventType { other = 0, leftMouseDown = 1 };

/// An event of the user's. The platform's own event stays behind it.
class Event {
public:
    virtual ~Event() = default;
    [[nodiscard]] virtual EventType type() const = 0;
};

} // namespace harbrook
