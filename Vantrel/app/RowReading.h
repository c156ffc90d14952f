#pragma once

#include "Vantrel/ui/MeterRow.h"

#include <optional>
#include <string>

namespace vantrel {

// Puts one reading on a row; the portable presentation carries its texts as UTF-8 strings.
inline void showReading(ui::MeterRow& row, std::optional<double> value,
                        const std::optional<std::string>& tooltip)
{
    row.update(value, tooltip ? std::optional<QString>(QString::fromStdString(*tooltip)) : std::nullopt);
}

} // namespace vantrel
