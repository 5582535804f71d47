#pragma once

#include <QString>

#include <chrono>
#include <optional>

namespace server {

// The time that `text` spells, such as "500ms", "0.5s" or "2s"; nothing if it is none, or not from
// 0 to a day.
std::optional<std::chrono::milliseconds> durationFromText(const QString& text);

} // namespace server
